#include "simulateTruth.h"

#include <cmath>

namespace zelm::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kUnits =
    "plate units and pixels; pixel centres at integer coordinates; camera axes x right, y "
    "down, z forward; angles in radians";
constexpr const char* kModel =
    "perspective: (xn, yn) = (X/Z, Y/Z), parallel: (xn, yn) = (X, Y); ideal pixel = K (xn, yn, 1); r2 = xn^2+yn^2, "
    "D = (k2*r2+k1)*r2; distorted pixel = (x+D*(x-cx), y+D*(y-cy)); gamma = K[1], theta = atan of the shear in it";

Json patternJson(const render::Plate& plate) {
    const render::PlateBounds b = render::plateBounds(plate);
    return {{"d0", render::fieldExtentX(plate)},
            {"d1", render::fieldExtentY(plate)},
            {"d2", plate.dotDiameter},
            {"d3", plate.markerDiameter},
            {"d4", plate.pitchX},
            {"d5", plate.pitchY},
            {"d6", plate.markerX * plate.pitchX},
            {"d7", plate.markerY * plate.pitchY},
            {"markers", 3},
            {"polarity", static_cast<int>(plate.polarity)},
            {"grid_x", {plate.minX, plate.maxX}},
            {"grid_y", {plate.minY, plate.maxY}},
            {"plate_size", {b.right - b.left, b.bottom - b.top}}};
}

Json cameraJson(const render::Camera& camera) {
    const auto K = render::cameraMatrix(camera);
    return {{"width", camera.width},
            {"height", camera.height},
            {"projection", camera.projection == render::Projection::parallel ? "parallel" : "perspective"},
            {"fx", camera.fx},
            {"fy", camera.fy},
            {"gamma", K[1]},
            {"cx", camera.cx},
            {"cy", camera.cy},
            {"theta", camera.theta},
            {"k1", camera.k1},
            {"k2", camera.k2},
            {"K", K}};
}

Json poseJson(const render::Pose& pose) {
    return {{"R", pose.R}, {"t", pose.t}, {"r", render::vectorFromRotation(pose.R)}};
}

Json pairJson(const render::Pose& rightFromLeft) {
    Json json = poseJson(rightFromLeft);
    const auto& t = rightFromLeft.t;
    json["note"] = "X_right = R X_left + t";
    json["baseline"] = std::hypot(t[0], t[1], t[2]);
    return json;
}

Json dotJson(const render::DotTruth& truth) {
    const render::EllipseTruth& e = truth.ellipse;
    return {{"grid", {truth.dot.index.x, truth.dot.index.y}},
            {"marker", truth.dot.marker},
            {"plane", {truth.dot.centre.x, truth.dot.centre.y}},
            {"pixel", {truth.centre.x, truth.centre.y}},
            {"centroid", {truth.centroid.x, truth.centroid.y}},
            {"ellipse", {e.centre.x, e.centre.y, e.a, e.b, e.angle}},
            {"radius", truth.radius}};
}

Json sideJson(const render::Pose& pose, const std::vector<render::DotTruth>& dots) {
    Json json = poseJson(pose);
    json["dots"] = Json::array();
    for (const render::DotTruth& dot : dots) {
        json["dots"].push_back(dotJson(dot));
    }
    return json;
}

Json viewJson(std::size_t index, const ViewTruth& view) {
    return {{"index", index},
            {"left_image", view.leftImage},
            {"right_image", view.rightImage},
            {"left", sideJson(view.left, view.leftDots)},
            {"right", sideJson(view.right, view.rightDots)}};
}

}  // namespace

Json truthJson(const SimulateDescription& d, const std::vector<ViewTruth>& views) {
    Json json = {
        {"set", d.set},
        {"image_width", d.rig.left.width},
        {"image_height", d.rig.left.height},
        {"units", kUnits},
        {"model", kModel},
        {"dot_note",
         "pixel: image of the dot's centre; centroid: of the area inside the projected outline; ellipse: "
         "centre, semi-axes and angle of the ellipse nearest to that outline; radius: of the same area"},
        {"pattern", patternJson(d.plate)},
        {"noise", {{"sigma", d.optics.noiseSigma}, {"note", "Gaussian, gray levels, the same at every brightness"}}},
        {"seed", d.seed},
        {"psf_sigma_px", d.optics.blurSigma},
        {"cameras", {{"left", cameraJson(d.rig.left)}, {"right", cameraJson(d.rig.right)}}},
        {"right_from_left", pairJson(d.rig.rightFromLeft)},
        {"views", Json::array()}};
    for (std::size_t i = 0; i < views.size(); ++i) {
        json["views"].push_back(viewJson(i, views[i]));
    }
    return json;
}

Json plateJson(const render::Plate& plate) {
    return {{"fieldWidth", render::fieldExtentX(plate)},
            {"fieldHeight", render::fieldExtentY(plate)},
            {"dotDiameter", plate.dotDiameter},
            {"markerDiameter", plate.markerDiameter},
            {"dotPitchX", plate.pitchX},
            {"dotPitchY", plate.pitchY},
            {"markerDistanceX", plate.markerX * plate.pitchX},
            {"markerDistanceY", plate.markerY * plate.pitchY},
            {"markers", 3},
            {"polarity", plate.polarity == render::Polarity::darkDots ? "dark" : "bright"}};
}

}  // namespace zelm::tool
