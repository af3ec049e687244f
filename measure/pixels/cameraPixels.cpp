#include "cameraPixels.h"

#include <cmath>
#include <limits>

#include "lensReach.h"

namespace zelm::measure {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// A pixel of a call that may have failed, or whose numbers went beyond those that there are.
Point2d told(std::int32_t status, const Point2d& pixel) {
    const bool isKnown = status >= 0 && std::isfinite(pixel.x) && std::isfinite(pixel.y);
    return isKnown ? pixel : Point2d{kNone, kNone};
}

}  // namespace

CameraPixels::CameraPixels(const Rig& rig, char cameraSide)
    : calib(rig.calib.get()), camera(rig.camera(cameraSide)), side(cameraSide) {
    const CameraParameters p = parametersOf(camera.intrinsics);
    matrix = {p[kFx], p[kSkew], p[kFy], p[kCx], p[kCy]};
    fold = foldOf(p);
}

bool CameraPixels::isImaged(const Point2d& undistorted) const {
    const auto [fx, skew, fy, cx, cy] = matrix;
    const double y = (undistorted.y - cy) / fy;
    return isWithinFold((undistorted.x - cx - skew * y) / fx, y);
}

Point2d CameraPixels::project(const Point3d& point) const {
    const ZelmCameraExtrinsics& pose = camera.pose();
    const Vector3 v = times(
        Matrix3{pose.R[0], pose.R[1], pose.R[2], pose.R[3], pose.R[4], pose.R[5], pose.R[6], pose.R[7], pose.R[8]},
        {point.x, point.y, point.z});
    const double z = camera.isParallel() ? 1.0 : v[2] + pose.t[2];
    if (!(z > 0.0) || !isWithinFold((v[0] + pose.t[0]) / z, (v[1] + pose.t[1]) / z)) {
        return {kNone, kNone};
    }
    Point2d pixel{};
    const std::int32_t status = zelm2ViewChange3Dto2D(calib, side, &point, &pixel);
    return told(status, pixel);
}

Point2d CameraPixels::undistort(const Point2d& raw) const {
    Point2d undistorted{};
    const std::int32_t status = zelm2ViewUnDistortPoint(calib, side, &raw, &undistorted);
    // Of a pixel that the lens shows nothing at, the iteration may end on the other branch of the polynomial.
    return isImaged(undistorted) ? told(status, undistorted) : Point2d{kNone, kNone};
}

Point2d CameraPixels::distort(const Point2d& undistorted) const {
    if (!isImaged(undistorted)) {
        return {kNone, kNone};
    }
    Point2d raw{};
    const std::int32_t status = zelm2ViewDistortPoint(calib, side, &undistorted, &raw);
    return told(status, raw);
}

std::array<double, 3> CameraPixels::epipolarLine(const Point2d& raw) const {
    if (!std::isfinite(undistort(raw).x)) {
        return {kNone, kNone, kNone};
    }
    Zelm2ViewEpiLine line{kNone, kNone, kNone, 0.0, 0.0, 0.0, 0.0};
    // The line is there before its ends in the image, which take memory: that they fail does not matter.
    static_cast<void>(zelm2ViewCalcEpiLine(calib, side == 'L' ? 'R' : 'L', &raw, &line));
    if (!std::isfinite(line.a) || !std::isfinite(line.b) || !std::isfinite(line.c)) {
        return {kNone, kNone, kNone};
    }
    return {line.a, line.b, line.c};
}

}  // namespace zelm::measure
