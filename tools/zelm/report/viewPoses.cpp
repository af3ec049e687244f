#include "viewPoses.h"

#include <algorithm>
#include <cmath>

namespace zelm::tool {
namespace {

PlatePose plateBefore(const RigCamera& camera, const ZelmCameraExtrinsics& pose) {
    const Motion motion = motionOf(pose);
    const double distance = std::hypot(motion.t[0], motion.t[1], motion.t[2]);
    Point3 sight{0.0, 0.0, 1.0};
    if (!camera.isParallel() && distance > 0.0) {
        sight = {motion.t[0] / distance, motion.t[1] / distance, motion.t[2] / distance};
    }
    Point3 face{motion.R[2], motion.R[5], motion.R[8]};  // the normal, turned towards the camera
    double along = face[0] * sight[0] + face[1] * sight[1] + face[2] * sight[2];
    if (along > 0.0) {
        face = {-face[0], -face[1], -face[2]};
        along = -along;
    }
    const double tilt = std::acos(std::clamp(-along, -1.0, 1.0));
    return {camera.isParallel() ? 0.0 : distance, tilt,
            std::atan2(face[1] - along * sight[1], face[0] - along * sight[0])};
}

}  // namespace

std::vector<ViewPose> viewPoses(const Calibration& c) {
    std::vector<ViewPose> poses(c.views.size());
    for (std::size_t i = 0; i < poses.size(); ++i) {
        const auto add = [i](const RigCamera& camera, const CameraFigures& figures) -> std::optional<PlatePose> {
            if (i >= camera.poses.size() || figures.views[i].dots.empty()) {
                return std::nullopt;
            }
            return plateBefore(camera, camera.poses[i]);
        };
        poses[i].cameras = {add(c.rig.left, c.figures.left), add(c.rig.right, c.figures.right)};
    }
    return poses;
}

Motion motionOf(const ZelmCameraExtrinsics& pose) {
    Motion motion;
    std::copy_n(pose.R, 9, motion.R.begin());
    std::copy_n(pose.t, 3, motion.t.begin());
    return motion;
}

Point3 Motion::operator()(const Point3& from) const {
    Point3 to = t;
    for (std::size_t i = 0; i < 9; ++i) {
        to[i / 3] += R[i] * from[i % 3];
    }
    return to;
}

Point3 Motion::back(const Point3& to) const {
    Point3 from{};
    for (std::size_t i = 0; i < 9; ++i) {
        from[i % 3] += R[i] * (to[i / 3] - t[i / 3]);
    }
    return from;
}

}  // namespace zelm::tool
