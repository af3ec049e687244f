// The projection matrix of each model, and its scaling.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "isClose.h"
#include "random.h"
#include "randomCamera.h"
#include "zelm/calib.h"

namespace {

using zelmtest::Camera;
using zelmtest::isClose;
using zelmtest::Random;
using zelmtest::randomCamera;

constexpr double kGuard = 7.25;

TEST(CalibCameraMatrix, BadArgumentsAreRefusedAndNothingIsWritten) {
    Random random(31);
    const Camera camera = randomCamera(random);
    double P[12];
    std::fill_n(P, 12, kGuard);
    for (const int32_t model : {-1, 3, std::numeric_limits<int32_t>::min()}) {
        EXPECT_EQ(zelmCalibCameraMatrix(camera.cam.A, &camera.ext, P, model), ZELM_ERR_PARAM) << model;
    }
    EXPECT_EQ(zelmCalibCameraMatrix(nullptr, &camera.ext, P, 0), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibCameraMatrix(camera.cam.A, nullptr, P, 0), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibCameraMatrix(camera.cam.A, &camera.ext, nullptr, 0), ZELM_ERR_PARAM);
    EXPECT_TRUE(std::all_of(P, P + 12, [](double entry) { return entry == kGuard; }));
}

TEST(CalibCameraMatrix, PerspectiveModelsGiveCameraTimesPoseDividedByTheLastEntry) {
    Random random(32);
    for (int trial = 0; trial < 1000; ++trial) {
        const Camera camera = randomCamera(random);
        for (const int32_t model : {0, 1}) {
            double P[12];
            ASSERT_EQ(zelmCalibCameraMatrix(camera.cam.A, &camera.ext, P, model), ZELM_OK);
            for (int i = 0; i < 3; ++i) {
                for (int j = 0; j < 4; ++j) {
                    double expected = 0.0;
                    for (int k = 0; k < 3; ++k) {
                        expected += camera.cam.A[3 * i + k] * (j < 3 ? camera.ext.R[3 * k + j] : camera.ext.t[k]);
                    }
                    EXPECT_TRUE(isClose(P[4 * i + j], expected / camera.ext.t[2], 1e-14));
                }
            }
            EXPECT_EQ(P[11], 1.0);
        }
    }
}

TEST(CalibCameraMatrix, ParallelModelHasTheThirdRowOfAPlaneAtInfinity) {
    Random random(33);
    const Camera camera = randomCamera(random);
    double P[12];
    ASSERT_EQ(zelmCalibCameraMatrix(camera.cam.A, &camera.ext, P, 2), ZELM_OK);
    const ZelmCameraIntrinsics& cam = camera.cam;
    for (int j = 0; j < 3; ++j) {
        EXPECT_TRUE(isClose(P[j], cam.alpha * camera.ext.R[j] + cam.gamma * camera.ext.R[3 + j], 1e-14));
        EXPECT_TRUE(isClose(P[4 + j], cam.beta * camera.ext.R[3 + j], 1e-14));
        EXPECT_EQ(P[8 + j], 0.0);
    }
    EXPECT_TRUE(isClose(P[3], cam.alpha * camera.ext.t[0] + cam.gamma * camera.ext.t[1] + cam.cx, 1e-14));
    EXPECT_TRUE(isClose(P[7], cam.beta * camera.ext.t[1] + cam.cy, 1e-14));
    EXPECT_EQ(P[11], 1.0);
}

// With A = I and R = I, P[2][3] is the depth t[2].
TEST(CalibCameraMatrix, IsDividedByItsLastEntryOnlyAboveTheThreshold) {
    const double A[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    ZelmCameraExtrinsics ext{};
    ext.R[0] = ext.R[4] = ext.R[8] = 1;
    for (const double depth : {0.0, 1e-12, 0.999e-9, 1e-9, 1.001e-9, 1e-6, 2.0}) {
        for (const double sign : {1.0, -1.0}) {
            ext.t[2] = sign * depth;
            double P[12];
            ASSERT_EQ(zelmCalibCameraMatrix(A, &ext, P, 0), ZELM_OK);
            const bool divided = depth > 1e-9;
            EXPECT_EQ(P[11], divided ? 1.0 : ext.t[2]);
            EXPECT_EQ(P[0], divided ? 1.0 / ext.t[2] : 1.0);
            EXPECT_EQ(P[10], divided ? 1.0 / ext.t[2] : 1.0);
        }
    }
}

TEST(CalibCameraMatrix, RotationVectorIsNotRead) {
    Random random(34);
    Camera camera = randomCamera(random);
    double P[12];
    double other[12];
    ASSERT_EQ(zelmCalibCameraMatrix(camera.cam.A, &camera.ext, P, 0), ZELM_OK);
    std::fill_n(camera.ext.r, 3, std::numeric_limits<double>::quiet_NaN());
    ASSERT_EQ(zelmCalibCameraMatrix(camera.cam.A, &camera.ext, other, 0), ZELM_OK);
    EXPECT_TRUE(std::equal(P, P + 12, other));
}

}  // namespace
