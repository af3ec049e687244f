#include "triangulator.h"

#include <cmath>

#include "meetingPoint.h"

namespace zelm::measure {
namespace {

// Pixels cover half a pixel to every side of their centres.
bool isInside(const RigCamera& camera, const Point2d& pixel) {
    return pixel.x >= -0.5 && pixel.y >= -0.5 && pixel.x <= camera.width - 0.5 && pixel.y <= camera.height - 0.5;
}

}  // namespace

Triangulator::Triangulator(const Rig& calibrated, const PairLimits& pairLimits)
    : rig(calibrated), calib(rig.calib.get()), limits(pairLimits), left(viewOf(rig.left)), right(viewOf(rig.right)) {
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

SpacePoint Triangulator::operator()(const Point2d& leftPixel, const Point2d& rightPixel) const {
    SpacePoint point;
    if (limits.isInside && !(isInside(rig.left, leftPixel) && isInside(rig.right, rightPixel))) {
        point.status = PointStatus::outside;
        return point;
    }
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
    point.errorLeft = reprojectionError(calib, 'L', X, leftPixel);
    point.errorRight = reprojectionError(calib, 'R', X, rightPixel);
    point.angle = angleBetween(leftRay, rightRay);
    if (!isMeetingPoint(rig, leftPixel, rightPixel, point.errorLeft, point.errorRight)) {
        point.status = PointStatus::parallel;
    }
    if (point.status == PointStatus::ok && limits.maxError > 0.0 &&
        std::hypot(point.errorLeft, point.errorRight) > limits.maxError) {
        point.status = PointStatus::mismatch;
    }
    return point;
}

}  // namespace zelm::measure
