#include "epipolarModel.h"

#include <algorithm>
#include <cmath>

namespace zelm::measure {
namespace {

constexpr double kMinSine = 1e-3;  // between baseline and viewing direction, for the latter to tell the shifts' plane

Vector3 sum(const Vector3& a, const Vector3& b, double s) {
    return {a[0] + s * b[0], a[1] + s * b[1], a[2] + s * b[2]};
}

// Directions of both shifts: at right angles to the baseline t, the first also to the viewing direction.
std::array<Vector3, 2> shiftsOf(const Vector3& t) {
    Vector3 across = cross(t, {0.0, 0.0, 1.0});
    if (dot(across, across) < kMinSine * kMinSine * dot(t, t)) {
        across = cross(t, {0.0, 1.0, 0.0});
    }
    across = unit(across);
    const double largest = std::fabs(across[0]) > std::fabs(across[1]) ? across[0] : across[1];
    if (largest < 0.0) {
        across = {-across[0], -across[1], -across[2]};
    }
    Vector3 along = unit(cross(across, t));
    if (along[2] < 0.0) {
        along = {-along[0], -along[1], -along[2]};
    }
    return {across, along};
}

std::optional<Vector3> rayOf(const Rig& rig, char side, const ProjectionCamera& camera, Point2d pixel) {
    Point2d ideal{};
    const std::int32_t status = zelm2ViewUnDistortPoint(rig.calib.get(), side, &pixel, &ideal);
    requireMemory(status);
    const double y = (ideal.y - camera.p[kCy]) / camera.p[kFy];
    const double x = (ideal.x - camera.p[kCx] - camera.p[kSkew] * y) / camera.p[kFx];
    if (status < 0 || !std::isfinite(x) || !std::isfinite(y)) {
        return std::nullopt;
    }
    return Vector3{x, y, 1.0};
}

// What a raw pixel changes of its normalised coordinates: the inverse of the projection's derivative.
std::optional<std::array<double, 4>> byPixel(const ProjectionCamera& camera, const Vector3& ray) {
    const Projection p = project(camera, ray);
    const double a = p.byPoint[0][0];
    const double b = p.byPoint[0][1];
    const double c = p.byPoint[1][0];
    const double d = p.byPoint[1][1];
    const double w = 1.0 / (a * d - b * c);
    if (!std::isfinite(w)) {
        return std::nullopt;
    }
    return std::array<double, 4>{d * w, -b * w, -c * w, a * w};
}

// What the camera's parameters change along a line, in normalised coordinates, of the ray of a pixel that is held.
std::array<double, kCameraParameters> alongByParameters(const ProjectionCamera& camera, const Vector3& ray,
                                                        const std::array<double, 4>& byPixel, const Vector3& line) {
    const Projection p = project(camera, ray);
    const double x = byPixel[0] * line[0] + byPixel[2] * line[1];
    const double y = byPixel[1] * line[0] + byPixel[3] * line[1];
    std::array<double, kCameraParameters> along{};
    for (std::size_t k = 0; k < kCameraParameters; ++k) {
        along[k] = -(x * p.byParameters[0][k] + y * p.byParameters[1][k]);
    }
    return along;
}

double squaredChange(const std::array<double, 4>& D, const Vector3& line) {
    const double x = D[0] * line[0] + D[2] * line[1];
    const double y = D[1] * line[0] + D[3] * line[1];
    return x * x + y * y;
}

}  // namespace

EpipolarModel::EpipolarModel(const Rig& calibrated)
    : rig(calibrated), leftCamera(projectionOf(rig.left)), rightCamera(projectionOf(rig.right)) {
    if (rig.left.isParallel() || rig.right.isParallel()) {
        refuse(
            "drift is told for two perspective cameras alone, and this rig has a parallel one: check lengths instead");
    }
    motion = motionBetween(rig.left, rig.right);
    const double squared = dot(motion.t, motion.t);
    if (!(squared > 0.0) || !std::isfinite(squared)) {
        refuse("the cameras of this rig have no baseline: calibrate again");
    }
    shifts = shiftsOf(motion.t);
}

std::optional<RayPair> EpipolarModel::rays(Point2d left, Point2d right) const {
    const auto l = rayOf(rig, 'L', leftCamera, left);
    const auto r = rayOf(rig, 'R', rightCamera, right);
    if (!l || !r) {
        return std::nullopt;
    }
    const auto byLeft = byPixel(leftCamera, *l);
    const auto byRight = byPixel(rightCamera, *r);
    if (!byLeft || !byRight) {
        return std::nullopt;
    }
    return RayPair{*l, *r, *byLeft, *byRight};
}

DriftedPair EpipolarModel::at(const Drift& drift) const {
    const Vector3 r{drift[0], drift[1], drift[2]};
    DriftedPair pair;
    pair.fromLeft = motion.R;
    pair.t = sum(sum(motion.t, shifts[0], -drift[3]), shifts[1], -drift[4]);
    pair.back = rotationOf(r);
    pair.jacobian = leftJacobian(r);
    pair.shifts = shifts;
    return pair;
}

// With q the left ray and r the right one in the calibrated frame of the right camera, the pair meets if r . (t x q) is
// nothing. A turn d moves r by d x r, a shift c moves t by -c.
SignedDistance DriftedPair::distance(const RayPair& pair) const {
    const Vector3 q = times(fromLeft, pair.left);
    const Vector3 r = times(back, pair.right);
    const Vector3 lineOfLeft = cross(t, q);                             // in the turned right camera's frame
    const Vector3 lineInRight = timesTransposed(back, lineOfLeft);      //
    const Vector3 lineInLeft = timesTransposed(fromLeft, cross(r, t));  // r . (t x q) = (r x t) . q
    const double w = 1.0 / std::sqrt(squaredChange(pair.byLeft, lineInLeft) + squaredChange(pair.byRight, lineInRight));
    const Vector3 turn = timesTransposed(jacobian, cross(r, lineOfLeft));
    const Vector3 shift = cross(q, r);  // r . (-c x q) = -c . (q x r)
    return {w * dot(r, lineOfLeft),
            {w * turn[0], w * turn[1], w * turn[2], -w * dot(shifts[0], shift), -w * dot(shifts[1], shift)}};
}

// Of r . (t x q) with q the left ray in the right camera's frame, as far as it is linear where it is next to nothing.
ByCalibration EpipolarModel::byCalibration(const RayPair& pair) const {
    const Vector3 q = times(motion.R, pair.left);
    const Vector3 lineInRight = cross(motion.t, q);
    const Vector3 across = cross(pair.right, motion.t);
    const Vector3 lineInLeft = timesTransposed(motion.R, across);
    const double w = 1.0 / std::sqrt(squaredChange(pair.byLeft, lineInLeft) + squaredChange(pair.byRight, lineInRight));
    ByCalibration by{};
    const auto put = [&by, w](std::size_t at, const auto& values) {
        std::transform(values.begin(), values.end(), by.begin() + static_cast<std::ptrdiff_t>(at),
                       [w](double value) { return w * value; });
    };
    put(kLeftCamera, alongByParameters(leftCamera, pair.left, pair.byLeft, lineInLeft));
    put(kRightCamera, alongByParameters(rightCamera, pair.right, pair.byRight, lineInRight));
    put(kRelativeRotation, cross(q, across));         // (d x q) . (r x t) = d . (q x (r x t))
    put(kRelativeTranslation, cross(q, pair.right));  // r . (c x q) = c . (q x r)
    return by;
}

}  // namespace zelm::measure
