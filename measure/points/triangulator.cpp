#include "triangulator.h"

#include <cmath>

namespace zelm::measure {

Triangulator::Triangulator(const Rig& rig)
    : calib(rig.calib.get()), left(viewOf(rig.left)), right(viewOf(rig.right)), fundamental(rig.fundamental) {
    rig.requireTriangulation();
}

Triangulator::View Triangulator::viewOf(const RigCamera& camera) {
    const double* const R = camera.pose().R;
    const double* const t = camera.pose().t;
    View view;
    view.parallel = camera.isParallel();
    view.centre = {-(R[0] * t[0] + R[3] * t[1] + R[6] * t[2]), -(R[1] * t[0] + R[4] * t[1] + R[7] * t[2]),
                   -(R[2] * t[0] + R[5] * t[1] + R[8] * t[2])};
    view.axis = {R[6], R[7], R[8]};
    return view;
}

Vector3 Triangulator::rayTo(const View& view, const Point3d& X) {
    return view.parallel ? view.axis : Vector3{X.x - view.centre[0], X.y - view.centre[1], X.z - view.centre[2]};
}

double Triangulator::reprojectionError(char side, const Point3d& X, const Point2d& pixel) const {
    Point2d projected{};
    zelm2ViewChange3Dto2D(calib, side, &X, &projected);
    return std::hypot(pixel.x - projected.x, pixel.y - projected.y);
}

// Pixels from the right one to the epipolar line of the left one.
double Triangulator::epipolarDistance(const Point2d& leftPixel, const Point2d& rightPixel) const {
    Point2d l{};
    Point2d r{};
    zelm2ViewUnDistortPoint(calib, 'L', &leftPixel, &l);
    zelm2ViewUnDistortPoint(calib, 'R', &rightPixel, &r);
    const Vector3 line = timesTransposed(fundamental, {l.x, l.y, 1.0});
    return std::fabs(line[0] * r.x + line[1] * r.y + line[2]) / std::hypot(line[0], line[1]);
}

SpacePoint Triangulator::operator()(const Point2d& leftPixel, const Point2d& rightPixel) const {
    SpacePoint point;
    Point3d& X = point.position;
    const std::int32_t status = zelm2ViewChange2Dto3D(calib, &leftPixel, &rightPixel, &X);
    requireMemory(status);
    if (status < 0 || !std::isfinite(X.x) || !std::isfinite(X.y) || !std::isfinite(X.z)) {
        point.status = status == ZELM_ERR_UNDISTORT ? PointStatus::distortion : PointStatus::parallel;
        return point;
    }
    const Vector3 leftRay = rayTo(left, X);
    const Vector3 rightRay = rayTo(right, X);
    if (!(dot(leftRay, left.axis) > 0.0) || !(dot(rightRay, right.axis) > 0.0)) {
        point.status = PointStatus::behind;
    }
    point.errorLeft = reprojectionError('L', X, leftPixel);
    point.errorRight = reprojectionError('R', X, rightPixel);
    point.angle = angleBetween(leftRay, rightRay);
    // The two corrections are together no longer than this distance, about. Of rays side by side the equations give the
    // solution of least norm, which is on neither.
    constexpr double kLongest = 2.0;
    constexpr double kSlack = 1.0;  // pixels
    if (point.errorLeft + point.errorRight > kLongest * epipolarDistance(leftPixel, rightPixel) + kSlack) {
        point.status = PointStatus::parallel;
    }
    return point;
}

}  // namespace zelm::measure
