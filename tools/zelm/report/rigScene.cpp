#include "rigScene.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>

#include "numberText.h"
#include "svgPlot.h"

namespace zelm::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMaxDots = 20000;  // in all plates

// The frame of the right camera, or of the left one, as the left camera sees it, by the plate of view 0.
struct Frames {
    Motion left;   // from the plate of view 0
    Motion right;  //

    Point3 fromRight(const Point3& point) const { return left(right.back(point)); }
    Point3 from(std::size_t side, const Point3& point) const { return side == 0 ? point : fromRight(point); }
};

Point3 minus(const Point3& a, const Point3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

// Depths of the plates' corner markers before a camera, in order.
std::vector<double> plateDepths(const RigCamera& camera) {
    std::vector<double> depths;
    for (const ZelmCameraExtrinsics& pose : camera.poses) {
        if (std::isfinite(pose.t[2])) {
            depths.push_back(pose.t[2]);
        }
    }
    std::sort(depths.begin(), depths.end());
    return depths;
}

// The depth of the drawn window of a camera: a part of the way to the plates, or before them for a parallel one.
double windowDepth(const RigCamera& camera, const Plate& plate) {
    constexpr double kPart = 0.22;
    const std::vector<double> depths = plateDepths(camera);
    const double size = std::hypot(plate.pattern.d0, plate.pattern.d1);
    if (depths.empty()) {
        return size;
    }
    return camera.isParallel() ? depths.front() - size : kPart * depths[depths.size() / 2];
}

SceneCamera sceneCamera(const RigCamera& camera, std::size_t side, const Frames& frames, const Plate& plate) {
    const ZelmCameraIntrinsics& k = camera.intrinsics;
    const double depth = windowDepth(camera, plate);
    const double reach = camera.isParallel() ? 1.0 : depth;
    const double right = camera.width - 0.5;
    const double foot = camera.height - 0.5;
    SceneCamera drawn;
    drawn.name = side == 0 ? "left camera" : "right camera";
    drawn.isParallel = camera.isParallel();
    drawn.centre = frames.from(side, {0.0, 0.0, camera.isParallel() ? depth : 0.0});
    drawn.axis = minus(frames.from(side, {0.0, 0.0, 1.0}), frames.from(side, {0.0, 0.0, 0.0}));
    const std::array<std::array<double, 2>, 4> corners{{{-0.5, -0.5}, {right, -0.5}, {right, foot}, {-0.5, foot}}};
    for (std::size_t i = 0; i < corners.size(); ++i) {
        drawn.window[i] = frames.from(
            side, {reach * (corners[i][0] - k.cx) / k.A[0], reach * (corners[i][1] - k.cy) / k.A[4], depth});
    }
    return drawn;
}

// The dots of a view that either camera has, where the left camera's pose, or else the right one's, puts them.
ScenePlate scenePlate(const Calibration& c, std::size_t view, const Frames& frames, std::size_t every) {
    const bool isOfLeft = !c.figures.left.views[view].dots.empty() && view < c.rig.left.poses.size();
    const RigCamera& camera = isOfLeft ? c.rig.left : c.rig.right;
    const Motion motion = motionOf(camera.poses[view]);
    const auto place = [&](double x, double y) { return frames.from(isOfLeft ? 0 : 1, motion({x, y, 0.0})); };
    const double x = 0.5 * c.plate.pattern.d0;
    const double y = 0.5 * c.plate.pattern.d1;
    ScenePlate plate{view, {place(-x, -y), place(x, -y), place(x, y), place(-x, y)}, {}};
    std::map<GridIndex, Point2d> seen;
    for (const CameraFigures* figures : {&c.figures.left, &c.figures.right}) {
        for (const Dot& dot : figures->views[view].dots) {
            seen.emplace(dot.index, dot.plane);
        }
    }
    std::size_t number = 0;
    for (const auto& [index, plane] : seen) {
        if (number++ % every == 0) {
            plate.dots.push_back(place(plane.x, plane.y));
        }
    }
    return plate;
}

bool isShown(const Calibration& c, std::size_t view) {
    const bool left = !c.figures.left.views[view].dots.empty() && view < c.rig.left.poses.size();
    const bool right = !c.figures.right.views[view].dots.empty() && view < c.rig.right.poses.size();
    return left || right;
}

// Six digits tell a point apart from its neighbours on any screen.
Json jsonOf(const Point3& point) {
    Json json = Json::array();
    for (const double value : point) {
        json.push_back(numberOf(fmt::format("{:.6g}", value)).value_or(0.0));
    }
    return json;
}

template <class Points>
Json jsonOf(const Points& points) {
    Json json = Json::array();
    for (const Point3& point : points) {
        json.push_back(jsonOf(point));
    }
    return json;
}

// Looks at the scene from the right, from above and from behind the cameras, in parallel rays.
class StillView {
public:
    explicit StillView(const RigScene& scene) {
        for (const SceneCamera& camera : scene.cameras) {
            take(camera.centre);
            std::for_each(camera.window.begin(), camera.window.end(), [this](const Point3& p) { take(p); });
        }
        for (const ScenePlate& plate : scene.plates) {
            std::for_each(plate.corners.begin(), plate.corners.end(), [this](const Point3& p) { take(p); });
        }
        scale = std::min((kWidth - 2.0 * kEdge) / std::max(high[0] - low[0], 1e-12),
                         (kHeight - 2.0 * kEdge) / std::max(high[1] - low[1], 1e-12));
    }

    std::string path(const std::vector<Point3>& points, bool isClosed) const {
        std::string d;
        for (const Point3& point : points) {
            const auto [x, y, depth] = at(point);
            d += fmt::format("{}{:.1f} {:.1f}", d.empty() ? "M" : "L", x, y);
        }
        return isClosed ? d + "Z" : d;
    }

    // Of the drawing; the third is the depth into it.
    Point3 at(const Point3& point) const {
        const Point3 turned = turn(point);
        return {0.5 * kWidth + scale * (turned[0] - 0.5 * (low[0] + high[0])),
                0.5 * kHeight + scale * (turned[1] - 0.5 * (low[1] + high[1])), turned[2]};
    }

    static constexpr double kWidth = 760.0;
    static constexpr double kHeight = 440.0;

private:
    static constexpr double kEdge = 34.0;

    static Point3 turn(const Point3& p) {
        constexpr double kAside = 0.9;   // radians about the vertical
        constexpr double kAbove = 0.42;  // radians about the horizontal
        const double x = std::cos(kAside) * p[0] + std::sin(kAside) * p[2];
        const double z = -std::sin(kAside) * p[0] + std::cos(kAside) * p[2];
        return {x, std::cos(kAbove) * p[1] - std::sin(kAbove) * z, std::sin(kAbove) * p[1] + std::cos(kAbove) * z};
    }

    void take(const Point3& point) {
        const Point3 turned = turn(point);
        for (std::size_t i = 0; i < 2; ++i) {
            low[i] = std::min(low[i], turned[i]);
            high[i] = std::max(high[i], turned[i]);
        }
    }

    std::array<double, 2> low{1e300, 1e300};
    std::array<double, 2> high{-1e300, -1e300};
    double scale = 1.0;
};

std::string cameraDrawing(const SceneCamera& camera, const char* side, const StillView& still) {
    std::string d = still.path({camera.window.begin(), camera.window.end()}, true);
    for (const Point3& corner : camera.window) {
        d += camera.isParallel ? "" : still.path({camera.centre, corner}, false);
    }
    const Point3 label = still.at(camera.centre);
    return fmt::format("<path class=\"camera {}\" d=\"{}\"/>", side, d) +
           svgText(label[0], label[1] - 10.0, "middle", camera.name, fmt::format("label {}", side).c_str());
}

}  // namespace

RigScene rigScene(const Calibration& c) {
    const Frames frames{motionOf(c.rig.left.poses.front()), motionOf(c.rig.right.poses.front())};
    RigScene scene{{}, {}, c.plate.units};
    scene.cameras.push_back(sceneCamera(c.rig.left, 0, frames, c.plate));
    scene.cameras.push_back(sceneCamera(c.rig.right, 1, frames, c.plate));
    std::size_t dots = 0;
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        dots += std::max(c.figures.left.views[i].dots.size(), c.figures.right.views[i].dots.size());
    }
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        if (isShown(c, i)) {
            scene.plates.push_back(scenePlate(c, i, frames, 1 + dots / kMaxDots));
        }
    }
    return scene;
}

Json sceneJson(const RigScene& scene, const Calibration& c) {
    Json cameras = Json::array();
    for (const SceneCamera& camera : scene.cameras) {
        cameras.push_back({{"name", camera.name},
                           {"parallel", camera.isParallel},
                           {"centre", jsonOf(camera.centre)},
                           {"window", jsonOf(camera.window)},
                           {"axis", jsonOf(camera.axis)}});
    }
    const std::vector<ViewPose> poses = viewPoses(c);
    Json plates = Json::array();
    for (const ScenePlate& plate : scene.plates) {
        Json tilts = Json::array();
        for (const auto& pose : poses[plate.view].cameras) {
            tilts.push_back(pose ? Json(std::round(10.0 * pose->tilt * kDegreesPerRadian) / 10.0) : Json());
        }
        plates.push_back(
            {{"view", plate.view}, {"tilts", tilts}, {"corners", jsonOf(plate.corners)}, {"dots", jsonOf(plate.dots)}});
    }
    return {{"units", scene.units}, {"cameras", cameras}, {"plates", plates}};
}

std::string sceneDrawing(const RigScene& scene) {
    const StillView still(scene);
    std::vector<const ScenePlate*> plates;  // from far to near
    for (const ScenePlate& plate : scene.plates) {
        plates.push_back(&plate);
    }
    const auto depth = [&](const ScenePlate* p) { return still.at(p->corners[0])[2] + still.at(p->corners[2])[2]; };
    std::sort(plates.begin(), plates.end(),
              [&](const ScenePlate* a, const ScenePlate* b) { return depth(a) > depth(b); });
    std::string svg;
    for (const ScenePlate* plate : plates) {
        svg += fmt::format("<path class=\"plate\" d=\"{}\"/>",
                           still.path({plate->corners.begin(), plate->corners.end()}, true));
    }
    svg += cameraDrawing(scene.cameras[0], "left", still) + cameraDrawing(scene.cameras[1], "right", still);
    return svgElement(StillView::kWidth, StillView::kHeight, "Both cameras and the plates of all views in space", svg);
}

}  // namespace zelm::tool
