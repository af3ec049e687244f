#include "rigDots.h"

#include <array>
#include <cmath>
#include <limits>
#include <map>

namespace zelm::measure {
namespace {

// The homography from the plate's plane to the undistorted image: columns 1, 2 and 4 of the projection matrix.
Matrix3 planeHomography(const RigCamera& camera, const ZelmCameraExtrinsics& pose) {
    double P[12] = {};
    zelmCalibCameraMatrix(camera.intrinsics.A, &pose, P, camera.model);
    return {P[0], P[1], P[3], P[4], P[5], P[7], P[8], P[9], P[11]};
}

// A point without lens distortion; where that cannot be removed, a point without coordinates.
Point2d undistorted(const RigCamera& camera, Point2d p) {
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    Point2d ideal{};
    if (zelmCalibUnDistortPoint(&camera.intrinsics, p.x, p.y, &ideal.x, &ideal.y) < 0) {
        return {kNone, kNone};
    }
    return ideal;
}

std::vector<Dot> placedDots(const RigCamera& camera, const Pattern& plate, std::size_t view) {
    const Matrix3 H = planeHomography(camera, camera.poses[view]);
    std::vector<Dot> dots;
    if (view >= camera.dots.size()) {
        return dots;
    }
    for (const Point2d& point : camera.dots[view]) {
        for (Dot dot : indexDots(plate, {undistorted(camera, point)}, H.data())) {
            dot.pixel = point;
            dots.push_back(dot);
        }
    }
    return dots;
}

// From a point to the line l of homogeneous coordinates.
double distanceToLine(Point2d p, const Vector3& l) {
    return std::abs(l[0] * p.x + l[1] * p.y + l[2]) / std::hypot(l[0], l[1]);
}

}  // namespace

std::vector<CalibratedDot> calibratedDots(const Rig& rig, const Pattern& plate, char side, std::size_t view) {
    const RigCamera& camera = rig.camera(side);
    std::vector<CalibratedDot> dots;
    for (const Dot& dot : placedDots(camera, plate, view)) {
        const Point3d X{dot.plane.x, dot.plane.y, 0.0};
        Point2d projected{};
        zelmCalibChange3Dto2D(&X, &camera.intrinsics, &camera.poses[view], &projected, camera.model);
        dots.push_back({dot, {dot.pixel.x - projected.x, dot.pixel.y - projected.y}});
    }
    return dots;
}

std::vector<double> epipolarDistances(const Rig& rig, const Pattern& plate, std::size_t view) {
    std::map<GridIndex, Point2d> rightPixels;
    for (const Dot& dot : placedDots(rig.right, plate, view)) {
        rightPixels[dot.index] = dot.pixel;
    }
    const Matrix3& F = rig.fundamental;
    std::vector<double> distances;
    for (const Dot& dot : placedDots(rig.left, plate, view)) {
        const auto other = rightPixels.find(dot.index);
        if (other != rightPixels.end()) {
            const Point2d l = undistorted(rig.left, dot.pixel);
            const Point2d r = undistorted(rig.right, other->second);
            distances.push_back(distanceToLine(l, times(F, {r.x, r.y, 1.0})));
            distances.push_back(distanceToLine(r, timesTransposed(F, {l.x, l.y, 1.0})));
        }
    }
    return distances;
}

}  // namespace zelm::measure
