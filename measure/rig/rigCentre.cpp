#include "rigCentre.h"

#include <optional>

#include "meetingPoint.h"

namespace zelm::measure {
namespace {

Point2d centreOf(const RigCamera& camera) {
    return {static_cast<double>(camera.width / 2), static_cast<double>(camera.height / 2)};
}

// The undistorted pixel at which a camera sees a point of space; nothing when it does not see it.
std::optional<Point2d> viewOf(const Rig& rig, char side, const Point3d& X) {
    const RigCamera& camera = rig.camera(side);
    Point2d raw{};
    Point2d ideal{};
    if ((!camera.isParallel() && !(camera.depthOf(X) > 0.0)) ||
        zelm2ViewChange3Dto2D(rig.calib.get(), side, &X, &raw) < 0 || !camera.holds(raw) ||
        zelm2ViewUnDistortPoint(rig.calib.get(), side, &raw, &ideal) < 0) {
        return std::nullopt;
    }
    return ideal;
}

std::optional<RigCentre> centreAt(const Rig& rig, const Point3d& X, int origin) {
    const auto left = viewOf(rig, 'L', X);
    const auto right = viewOf(rig, 'R', X);
    if (!left || !right) {
        return std::nullopt;
    }
    return RigCentre{*left, *right, origin};
}

}  // namespace

// A point of the scene in the middle of both images keeps the field of view that they share: first where the rays of
// the image centres come closest; then, for cameras that look past each other or along each other, the plate of view 0.
RigCentre rigCentre(const Rig& rig) {
    const Point2d left = centreOf(rig.left);
    const Point2d right = centreOf(rig.right);
    Point3d X{};
    const std::int32_t status = zelm2ViewChange2Dto3D(rig.calib.get(), &left, &right, &X);
    requireMemory(status);
    const Zelm2ViewCalib* const calib = rig.calib.get();
    if (status == ZELM_OK && isMeetingPoint(rig, left, right, reprojectionError(calib, 'L', X, left),
                                            reprojectionError(calib, 'R', X, right))) {
        if (const auto found = centreAt(rig, X, 0)) {
            return *found;
        }
    }
    if (const auto found = centreAt(rig, {0.0, 0.0, 0.0}, 1)) {
        return *found;
    }
    return {left, right, 2};
}

}  // namespace zelm::measure
