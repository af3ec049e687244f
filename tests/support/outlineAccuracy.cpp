#include "outlineAccuracy.h"

#include <numbers>

#include "patternFixtures.h"
#include "plateDots.h"
#include "rig.h"

namespace zelmtest {

using namespace zelm::measure;

namespace {

constexpr double kFocal = 1100.0;  // pixels
constexpr double kScale = 5.0;     // pixels a plate unit, of a parallel camera
constexpr double kWidth = 1280.0;
constexpr double kHeight = 960.0;

ProjectionCamera cameraOf(int model, double k1) {
    const bool isParallel = model == ZELM_CAMERA_PARALLEL;
    const double f = isParallel ? kScale : kFocal;
    // The same distortion of the image, whatever the unit of the normalised coordinates.
    const double unit = f / kFocal;
    const double k2 = -0.3 * k1;
    const double skew = model == ZELM_CAMERA_TILTED ? 0.004 * f : 0.0;
    return {isParallel, {f, skew, f * 1.001, 0.5 * kWidth, 0.5 * kHeight, k1 * unit * unit, k2 * std::pow(unit, 4)}};
}

}  // namespace

OutlineCase outlineWith(int model, double radiusPixels, double tiltDegrees, double k1, Random& random) {
    OutlineCase one;
    one.camera = cameraOf(model, k1);
    const double f = one.camera.p[kFx];
    const double x = random.uniform(-0.45, 0.45) * kWidth / f;
    const double y = random.uniform(-0.45, 0.45) * kHeight / f;
    const double depth = one.camera.isParallel ? 1.0 : 300.0;
    one.circle.centre = {x * depth, y * depth, depth};
    const double tilt = tiltDegrees * std::numbers::pi / 180.0;
    const double axis = random.uniform(0.0, 2.0 * std::numbers::pi);
    const Matrix3 R = rotationOf({tilt * std::cos(axis), tilt * std::sin(axis), 0.0});
    const double r = radiusPixels / f * depth;
    one.circle.first = {r * R[0], r * R[3], r * R[6]};
    one.circle.second = {r * R[1], r * R[4], r * R[7]};
    return one;
}

OutlineCase randomOutline(int model, double radiusPixels, double tiltDegrees, Random& random) {
    return outlineWith(model, radiusPixels, tiltDegrees, random.uniform(-0.3, 0.1), random);
}

std::vector<Point2d> sampledOutline(const OutlineCase& one, int count) {
    const int fine = 8 * count;
    std::vector<Point2d> points;
    std::vector<double> along;
    for (int i = 0; i <= fine; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / fine;
        Vector3 X{};
        for (std::size_t k = 0; k < 3; ++k) {
            X[k] =
                one.circle.centre[k] + std::cos(angle) * one.circle.first[k] + std::sin(angle) * one.circle.second[k];
        }
        points.push_back(pixelOf(one.camera, X));
        const std::size_t n = points.size();
        along.push_back(n < 2 ? 0.0
                              : along.back() +
                                    std::hypot(points[n - 1].x - points[n - 2].x, points[n - 1].y - points[n - 2].y));
    }
    std::vector<Point2d> even;
    std::size_t at = 0;
    for (int i = 0; i < count; ++i) {
        const double length = along.back() * i / count;
        while (along[at + 1] < length) {
            ++at;
        }
        const double share = (length - along[at]) / (along[at + 1] - along[at]);
        even.push_back({points[at].x + share * (points[at + 1].x - points[at].x),
                        points[at].y + share * (points[at + 1].y - points[at].y)});
    }
    return even;
}

double outlineError(const OutlineCase& one) {
    const std::vector<Point2d> points = sampledOutline(one, 2000);
    Ellipse2d ellipse{};
    if (zelmFitEllipse(static_cast<int32_t>(points.size()), points.data(), 0, 0.0, &ellipse) < 0) {
        return 1e9;
    }
    const Point2d centre = dotOutline(one.camera, one.circle).centre;
    return std::hypot(centre.x - ellipse.x, centre.y - ellipse.y);
}

OutlineErrors readerErrors(int model, double radiusPixels, double tiltDegrees, double k1) {
    const ProjectionCamera camera = cameraOf(model, k1);
    render::Camera rendered;
    rendered.width = static_cast<int>(kWidth);
    rendered.height = static_cast<int>(kHeight);
    rendered.projection = camera.isParallel ? render::Projection::parallel : render::Projection::perspective;
    rendered.fx = camera.p[kFx];
    rendered.fy = camera.p[kFy];
    rendered.theta = std::atan2(camera.p[kSkew], camera.p[kFy]);
    rendered.cx = camera.p[kCx];
    rendered.cy = camera.p[kCy];
    rendered.k1 = camera.p[kK1];
    rendered.k2 = camera.p[kK2];
    render::Plate plate;  // of 13 x 11 dots
    render::Aim aim = aimAt(rendered, kScale, 20.0, tiltDegrees, 35.0);
    // The dots' radius as asked for; the pitch leaves room between markers that are seen at that tilt.
    plate.dotDiameter = 2.0 * radiusPixels / kScale;
    plate.markerDiameter = 1.75 * plate.dotDiameter;
    plate.pitchX = plate.pitchY = 2.5 * plate.dotDiameter / std::cos(tiltDegrees * std::numbers::pi / 180.0);
    const auto columns = static_cast<int>(0.32 * kWidth / (plate.pitchX * kScale));
    const auto rows = static_cast<int>(0.32 * kHeight / (plate.pitchY * kScale));
    plate.minX = -std::max(columns, 2);
    plate.maxX = std::max(columns, 2);
    plate.minY = -std::max(rows, 2);
    plate.maxY = std::max(rows, 2);
    plate.markerX = plate.markerY = 2;
    plate.marginX = plate.marginY = 1.2 * plate.pitchX;
    const render::Pose pose = render::aimedPose(rendered, aim);
    render::Optics optics;
    optics.levels = render::GrayLevels::matching(plate.polarity);
    const render::RenderedView view = render::renderView(plate, rendered, pose, optics);
    const Zelm2ViewPatternDesc pattern = describe(plate);
    const ZelmMeasureImage record{view.image.pixels.data(), view.image.width, view.image.height, view.image.width};
    const DenseImage image(record);
    const DotReading read = readDots(image, pattern, nullptr);
    OutlineErrors errors;
    if (read.status < 0) {
        return errors;
    }
    for (const Dot& dot : indexDots(image, pattern, read.points)) {
        const auto truth = std::find_if(view.dots.begin(), view.dots.end(), [&](const render::DotTruth& t) {
            return t.dot.index.x == dot.index.x && t.dot.index.y == dot.index.y;
        });
        const double r = truth->dot.radius;
        const double x = dot.index.x * plate.pitchX;
        const double y = dot.index.y * plate.pitchY;
        const auto& R = pose.R;
        const CircleInCamera circle{
            {R[0] * x + R[1] * y + pose.t[0], R[3] * x + R[4] * y + pose.t[1], R[6] * x + R[7] * y + pose.t[2]},
            {r * R[0], r * R[3], r * R[6]},
            {r * R[1], r * R[4], r * R[7]}};
        const Point2d centre = dotOutline(camera, circle).centre;
        errors.add(std::hypot(centre.x - dot.pixel.x, centre.y - dot.pixel.y));
    }
    return errors;
}

}  // namespace zelmtest
