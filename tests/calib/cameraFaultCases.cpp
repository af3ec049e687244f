// Allocation faults in the estimation of camera parameters.
#include <cstring>
#include <vector>

#include "cameraScene.h"
#include "faultCase.h"
#include "zelm/calib.h"

namespace {

// A plate of few dots keeps the many runs short.
std::vector<Point2d> smallPlate() {
    std::vector<Point2d> dots;
    for (int i = 0; i < 9; ++i) {
        dots.push_back({10.0 * (i % 3), 10.0 * static_cast<double>(i / 3)});
    }
    return dots;
}

}  // namespace

ZELM_FAULT_CASE(zelmCalibCameraParam) {
    zelmtest::CameraScene scene;
    scene.camera = zelmtest::perspectiveCamera(1800.0, 1790.0, 0.0, 640.0, 500.0, 0.0, 0.0, 0);
    for (int v = 0; v < 3; ++v) {
        scene.addView(smallPlate(), zelmtest::tiltedPose(0.1, 0.5, 2.1 * v, {0.0, 0.0, 80.0}, 10.0, 10.0));
    }
    const auto entries = scene.entries();
    ZelmCameraIntrinsics intrinsics;
    ZelmCameraExtrinsics poses[3];
    std::memset(&intrinsics, 0x41, sizeof intrinsics);
    std::memset(poses, 0x41, sizeof poses);
    const ZelmCameraIntrinsics before = intrinsics;
    double error = -7.0;
    const int32_t status =
        probe.call([&] { return zelmCalibCameraParam(3, entries.data(), 3.5, &intrinsics, poses, &error, 0); });
    if (probe.failed()) {
        // The rotation vector of a start pose has a form of its own for when its decomposition fails, so that a fault
        // there is no failure.
        if (status != ZELM_OK) {
            // The refinement of a homography does not tell a fault from a singular system.
            EXPECT_TRUE(status == ZELM_ERR_MEMORY || status == ZELM_ERR_CALIB_HOMOGRAPHY) << status;
            EXPECT_EQ(std::memcmp(&before, &intrinsics, sizeof before), 0);
            EXPECT_EQ(error, -7.0);
        }
    } else {
        EXPECT_EQ(status, ZELM_OK);
    }
    if (status == ZELM_OK) {
        EXPECT_NEAR(intrinsics.alpha, 1800.0, 1e-4);
    }
}
