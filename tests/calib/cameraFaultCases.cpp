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

// Runs the estimation under the probe; alpha is what it is to find.
void expectMemoryOrResult(zelmtest::FaultProbe& probe, zelmtest::CameraScene& scene, double alpha) {
    const auto entries = scene.entries();
    ZelmCameraIntrinsics intrinsics;
    std::memset(&intrinsics, 0x41, sizeof intrinsics);
    intrinsics.alpha = intrinsics.beta = 20.0;  // of use under model 2, like cx and cy
    intrinsics.cx = scene.camera.cx;
    intrinsics.cy = scene.camera.cy;
    const ZelmCameraIntrinsics before = intrinsics;
    ZelmCameraExtrinsics poses[3];
    double error = -7.0;
    const int32_t status = probe.call([&] {
        return zelmCalibCameraParam(static_cast<int32_t>(entries.size()), entries.data(), 3.5, &intrinsics, poses,
                                    &error, scene.model);
    });
    if (status == ZELM_OK) {
        // Also under a fault: the rotation vector of a start pose has a form of its own for when its decomposition
        // fails.
        EXPECT_NEAR(intrinsics.alpha, alpha, 1e-6 * alpha);
        return;
    }
    EXPECT_TRUE(probe.failed());
    // The refinement of a homography does not tell a fault from a singular system.
    EXPECT_TRUE(status == ZELM_ERR_MEMORY || status == ZELM_ERR_CALIB_HOMOGRAPHY) << status;
    EXPECT_EQ(std::memcmp(&before, &intrinsics, sizeof before), 0);
    EXPECT_EQ(error, -7.0);
}

}  // namespace

ZELM_FAULT_CASE(zelmCalibCameraParam) {
    zelmtest::CameraScene perspective;
    perspective.camera = zelmtest::perspectiveCamera(1800.0, 1790.0, 0.0, 640.0, 500.0, 0.0, 0.0, 0);
    for (int v = 0; v < 3; ++v) {
        perspective.addView(smallPlate(), zelmtest::tiltedPose(0.1, 0.5, 2.1 * v, {0.0, 0.0, 80.0}, 10.0, 10.0));
    }
    expectMemoryOrResult(probe, perspective, 1800.0);
    zelmtest::CameraScene parallel;
    parallel.model = 2;
    parallel.camera = zelmtest::parallelCamera(12.0, 12.0, 640.0, 500.0, 0.0, 0.0);
    parallel.addView(smallPlate(), zelmtest::tiltedPose(0.1, 0.0, 0.0, {0.0, 0.0, 80.0}, 10.0, 10.0));
    expectMemoryOrResult(probe, parallel, 12.0);
}
