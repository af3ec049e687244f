// Points in space through the whole camera.
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
using zelmtest::inCamera;
using zelmtest::isClose;
using zelmtest::Random;
using zelmtest::randomCamera;

constexpr double kGuard = 7.25;

TEST(CalibChange3Dto2D, BadArgumentsAreRefusedAndNothingIsWritten) {
    Random random(35);
    const Camera camera = randomCamera(random);
    const Point3d X = {1, 2, 3};
    Point2d p = {kGuard, kGuard};
    for (const int32_t model : {-1, 3}) {
        EXPECT_EQ(zelmCalibChange3Dto2D(&X, &camera.cam, &camera.ext, &p, model), ZELM_ERR_PARAM) << model;
    }
    EXPECT_EQ(zelmCalibChange3Dto2D(nullptr, &camera.cam, &camera.ext, &p, 0), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibChange3Dto2D(&X, nullptr, &camera.ext, &p, 0), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibChange3Dto2D(&X, &camera.cam, nullptr, &p, 0), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibChange3Dto2D(&X, &camera.cam, &camera.ext, nullptr, 0), ZELM_ERR_PARAM);
    EXPECT_EQ(p.x, kGuard);
    EXPECT_EQ(p.y, kGuard);
}

// The pinhole by hand: divide by the depth, apply A, distort with xn = x, yn = y cos(theta) for an unsheared A.
TEST(CalibChange3Dto2D, PerspectiveAgreesWithThePinholeWrittenOut) {
    Random random(36);
    for (int trial = 0; trial < 2000; ++trial) {
        const Camera camera = randomCamera(random);
        const ZelmCameraIntrinsics& cam = camera.cam;
        const Point3d X = {random.uniform(-60, 60), random.uniform(-60, 60), random.uniform(-30, 30)};
        const Point3d c = inCamera(camera.ext, X);
        const double xn = c.x / c.z;
        const double yn = c.y / c.z;
        for (const int32_t model : {0, 1}) {
            const double v = yn * (model == 1 ? std::cos(cam.theta) : 1.0);
            const double r2 = xn * xn + v * v;
            const double D = cam.k1 * r2 + cam.k2 * r2 * r2;
            Point2d p;
            ASSERT_EQ(zelmCalibChange3Dto2D(&X, &cam, &camera.ext, &p, model), ZELM_OK);
            EXPECT_TRUE(isClose(p.x, cam.cx + (1 + D) * (cam.alpha * xn + cam.gamma * yn), 1e-13));
            EXPECT_TRUE(isClose(p.y, cam.cy + (1 + D) * cam.beta * yn, 1e-13));
        }
    }
}

TEST(CalibChange3Dto2D, ThetaTakesPartUnderModelOneOnly) {
    Random random(37);
    Camera camera = randomCamera(random);
    const Point3d X = {40, 50, 0};
    Point2d tilted[3];
    Point2d straight[3];
    for (int32_t model = 0; model < 3; ++model) {
        camera.cam.theta = 0.3;
        ASSERT_EQ(zelmCalibChange3Dto2D(&X, &camera.cam, &camera.ext, &tilted[model], model), ZELM_OK);
        EXPECT_EQ(camera.cam.theta, 0.3);
        camera.cam.theta = 0.0;
        ASSERT_EQ(zelmCalibChange3Dto2D(&X, &camera.cam, &camera.ext, &straight[model], model), ZELM_OK);
    }
    EXPECT_EQ(tilted[0].x, straight[0].x);
    EXPECT_EQ(tilted[0].y, straight[0].y);
    EXPECT_EQ(tilted[2].x, straight[2].x);
    EXPECT_EQ(tilted[2].y, straight[2].y);
    EXPECT_NE(tilted[1].x, straight[1].x);
    EXPECT_NE(tilted[1].y, straight[1].y);
}

TEST(CalibChange3Dto2D, ParallelProjectionDoesNotSeeTheDepth) {
    Random random(38);
    for (int trial = 0; trial < 500; ++trial) {
        Camera camera = randomCamera(random);
        const Point3d X = {random.uniform(-60, 60), random.uniform(-60, 60), random.uniform(-30, 30)};
        Point2d p;
        ASSERT_EQ(zelmCalibChange3Dto2D(&X, &camera.cam, &camera.ext, &p, 2), ZELM_OK);
        const double* const R = camera.ext.R;
        const double along = random.uniform(-100, 100);
        // Moved along the line of sight, the third row of R.
        const Point3d moved = {X.x + along * R[6], X.y + along * R[7], X.z + along * R[8]};
        Point2d q;
        ASSERT_EQ(zelmCalibChange3Dto2D(&moved, &camera.cam, &camera.ext, &q, 2), ZELM_OK);
        // Coordinates of some 1e5 pixels, which the strong lens multiplies further: compared relative to their size.
        EXPECT_TRUE(isClose(q.x, p.x, 1e-10));
        EXPECT_TRUE(isClose(q.y, p.y, 1e-10));
        camera.ext.t[2] += along;
        ASSERT_EQ(zelmCalibChange3Dto2D(&X, &camera.cam, &camera.ext, &q, 2), ZELM_OK);
        EXPECT_EQ(q.x, p.x);
        EXPECT_EQ(q.y, p.y);
    }
}

TEST(CalibChange3Dto2D, PointInThePlaneOfTheCameraIsNotFinite) {
    ZelmCameraIntrinsics cam{};
    cam.A[0] = cam.A[4] = cam.A[8] = cam.alpha = cam.beta = 1;
    ZelmCameraExtrinsics ext{};
    ext.R[0] = ext.R[4] = ext.R[8] = 1;
    ext.t[2] = 5;
    const Point3d X = {1, 2, -5};
    Point2d p = {0, 0};
    EXPECT_EQ(zelmCalibChange3Dto2D(&X, &cam, &ext, &p, 0), ZELM_OK);
    EXPECT_FALSE(std::isfinite(p.x));
    EXPECT_FALSE(std::isfinite(p.y));
}

TEST(CalibChange3Dto2D, RecordsAreNotChanged) {
    Random random(39);
    Camera camera = randomCamera(random);
    for (double& entry : camera.cam.reserved) {
        entry = kGuard;
    }
    const Camera before = camera;
    const Point3d X = {1, 2, 3};
    Point2d p;
    for (int32_t model = 0; model < 3; ++model) {
        ASSERT_EQ(zelmCalibChange3Dto2D(&X, &camera.cam, &camera.ext, &p, model), ZELM_OK);
    }
    EXPECT_TRUE(std::equal(&camera.cam.A[0], &camera.cam.A[0] + 9, before.cam.A));
    EXPECT_TRUE(std::equal(camera.cam.reserved, camera.cam.reserved + 5, before.cam.reserved));
    EXPECT_TRUE(std::equal(camera.ext.R, camera.ext.R + 9, before.ext.R));
    EXPECT_TRUE(std::equal(camera.ext.r, camera.ext.r + 3, before.ext.r));
}

}  // namespace
