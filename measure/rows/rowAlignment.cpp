#include "rowAlignment.h"

#include <algorithm>
#include <cmath>

#include "lensReach.h"
#include "plateDepths.h"
#include "rigCentre.h"

namespace zelm::measure {
namespace {

constexpr double kMinCosine = 0.17;  // of the turn: beyond 80 degrees a plane image has no use for what is left

// The direction of an undistorted pixel.
Vector3 rayOf(const RigCamera& camera, Point2d pixel) {
    const CameraParameters p = parametersOf(camera.intrinsics);
    const double y = (pixel.y - p[kCy]) / p[kFy];
    return {(pixel.x - p[kCx] - p[kSkew] * y) / p[kFx], y, 1.0};
}

// The x axis of both, in the left camera's frame: along the baseline, and to the right of images that stand upright.
// Where one camera is above the other, images have to lie on their side: then towards the right camera.
Vector3 rowAxis(const Vector3& towardsRight, const Vector3& xAxis, const Vector3& yAxis) {
    const double along = dot(towardsRight, xAxis);
    const double across = dot(towardsRight, yAxis);
    const double sign = std::abs(along) >= std::abs(across) && along < 0.0 ? -1.0 : 1.0;
    return {sign * towardsRight[0], sign * towardsRight[1], sign * towardsRight[2]};
}

Vector3 sum(const Vector3& a, const Vector3& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

// Where the direction of an undistorted pixel lies on the aligned plane of focal length 1.
Point2d onPlane(const Matrix3& rotation, const RigCamera& camera, Point2d pixel) {
    const Vector3 v = times(rotation, rayOf(camera, pixel));
    if (!(v[2] > 0.0)) {
        refuse("a camera looks along the baseline: its image cannot be turned into rows");
    }
    return {v[0] / v[2], v[1] / v[2]};
}

double meanFocal(const Rig& rig) {
    const CameraParameters l = parametersOf(rig.left.intrinsics);
    const CameraParameters r = parametersOf(rig.right.intrinsics);
    return 0.25 * (l[kFx] + l[kFy] + r[kFx] + r[kFy]);
}

// The field of view that both cameras share stays in the middle of both images; with one principal point it moves aside
// in each, and a shorter focal length keeps it whole.
void centre(const Rig& rig, const RowOptions& options, RowAlignment& a) {
    const RigCentre shared = rigCentre(rig);
    const Point2d l = onPlane(a.leftRotation, rig.left, shared.left);
    const Point2d r = onPlane(a.rightRotation, rig.right, shared.right);
    const double mean = meanFocal(rig);
    const double aside = options.zeroAtInfinity ? 0.5 * std::abs(l.x - r.x) : 0.0;
    a.focal = options.focal > 0.0 ? options.focal : mean / (1.0 + 2.0 * mean * aside / a.width);
    a.leftX = 0.5 * (a.width - 1) - a.focal * l.x;
    a.rightX = 0.5 * (a.width - 1) - a.focal * r.x;
    a.centreY = 0.5 * (a.height - 1) - a.focal * 0.5 * (l.y + r.y);
    if (options.zeroAtInfinity) {
        a.leftX = 0.5 * (a.leftX + a.rightX);
        a.rightX = a.leftX;
    }
}

}  // namespace

std::array<double, 12> RowAlignment::projection(char side) const {
    const double moved = side == 'L' ? 0.0 : focal * shift;
    return {focal, 0.0, centreX(side), moved, 0.0, focal, centreY, 0.0, 0.0, 0.0, 1.0, 0.0};
}

std::array<double, 16> RowAlignment::reprojection() const {
    return {1.0, 0.0, 0.0, -leftX, 0.0, 1.0, 0.0,          -centreY,
            0.0, 0.0, 0.0, focal,  0.0, 0.0, -1.0 / shift, (leftX - rightX) / shift};
}

RowAlignment alignRows(const Rig& rig, const RowOptions& options) {
    if (rig.left.isParallel() || rig.right.isParallel()) {
        refuse("a parallel camera has no centre to turn it about: rows are aligned of two perspective cameras");
    }
    const Motion motion = motionBetween(rig.left, rig.right);
    // The right camera's centre and axes, in the left one's frame.
    const Vector3 toLeft = timesTransposed(motion.R, motion.t);
    const Vector3 towardsRight = unit({-toLeft[0], -toLeft[1], -toLeft[2]});
    const auto axes = [&](std::size_t i) -> Vector3 {
        Vector3 own{};
        own[i] = 1.0;
        return unit(sum(own, {motion.R[3 * i], motion.R[3 * i + 1], motion.R[3 * i + 2]}));
    };
    const Vector3 x = rowAxis(towardsRight, axes(0), axes(1));
    const Vector3 forward = axes(2);
    const Vector3 y = unit(cross(forward, x));
    const Vector3 z = cross(x, y);

    RowAlignment a;
    a.width = options.width > 0 ? options.width : std::max(rig.left.width, rig.right.width);
    a.height = options.height > 0 ? options.height : std::max(rig.left.height, rig.right.height);
    a.leftRotation = {x[0], x[1], x[2], y[0], y[1], y[2], z[0], z[1], z[2]};
    const Matrix3 back{motion.R[0], motion.R[3], motion.R[6], motion.R[1], motion.R[4],
                       motion.R[7], motion.R[2], motion.R[5], motion.R[8]};
    a.rightRotation = product(a.leftRotation, back);
    if (!(a.leftRotation[8] > kMinCosine) || !(a.rightRotation[8] > kMinCosine)) {
        refuse("a camera looks along the baseline: its image cannot be turned into rows");
    }
    a.shift = times(a.rightRotation, motion.t)[0];
    centre(rig, options, a);
    return a;
}

std::optional<std::array<double, 2>> disparitiesOf(const Rig& rig, const RowAlignment& a, const RowOptions& options) {
    DepthRange range = plateDepths(rig.left).value_or(DepthRange{});
    range.nearest = options.nearest > 0.0 ? options.nearest : range.nearest;
    range.farthest = options.farthest > 0.0 ? options.farthest : range.farthest;
    if (!(range.nearest > 0.0) || !(range.farthest >= range.nearest)) {
        return std::nullopt;
    }
    const double near = a.disparityAt(range.nearest);
    const double far = a.disparityAt(range.farthest);
    return std::array{std::min(near, far), std::max(near, far)};
}

RowMapper::RowMapper(const RigCamera& source, const RowAlignment& alignment, char side)
    : camera(projectionOf(source)),
      rotation(alignment.rotation(side)),
      focal(alignment.focal),
      centre{alignment.centreX(side), alignment.centreY},
      corner{static_cast<double>(source.width - 1), static_cast<double>(source.height - 1)},
      fold(foldOf(camera.p)) {}

bool RowMapper::rawOf(Point2d aligned, Point2d& raw) const {
    const Vector3 v = timesTransposed(rotation, {(aligned.x - centre.x) / focal, (aligned.y - centre.y) / focal, 1.0});
    if (!(v[2] > 0.0) || !(v[0] * v[0] + v[1] * v[1] < fold * v[2] * v[2])) {
        return false;
    }
    raw = pixelOf(camera, v);
    return raw.x >= 0.0 && raw.y >= 0.0 && raw.x <= corner.x && raw.y <= corner.y;
}

}  // namespace zelm::measure
