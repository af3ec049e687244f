// Projection: the matrix of each model, its scaling, points through the whole camera.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "isClose.h"
#include "random.h"
#include "zelm/calib.h"

namespace {

using zelmtest::isClose;
using zelmtest::Random;

constexpr double kGuard = 7.25;

struct Camera {
    ZelmCameraIntrinsics cam{};
    ZelmCameraExtrinsics ext{};
};

Camera randomCamera(Random& random) {
    Camera camera;
    ZelmCameraIntrinsics& cam = camera.cam;
    cam.alpha = random.uniform(800, 2000);
    cam.beta = cam.alpha * random.uniform(0.95, 1.05);
    cam.gamma = random.uniform(-5, 5);
    cam.cx = random.uniform(540, 740);
    cam.cy = random.uniform(400, 560);
    cam.theta = random.uniform(-0.05, 0.05);
    cam.k1 = random.uniform(-0.1, 0.1);
    cam.k2 = random.uniform(-0.1, 0.1);
    const double A[9] = {cam.alpha, cam.gamma, cam.cx, 0, cam.beta, cam.cy, 0, 0, 1};
    std::copy_n(A, 9, cam.A);
    for (double& component : camera.ext.r) {
        component = random.uniform(-0.5, 0.5);
    }
    zelmCalibRodrigues(0, camera.ext.r, camera.ext.R);
    camera.ext.t[0] = random.uniform(-50, 50);
    camera.ext.t[1] = random.uniform(-50, 50);
    camera.ext.t[2] = random.uniform(400, 600);
    return camera;
}

Point3d inCamera(const ZelmCameraExtrinsics& ext, const Point3d& X) {
    const double* const R = ext.R;
    return {R[0] * X.x + R[1] * X.y + R[2] * X.z + ext.t[0], R[3] * X.x + R[4] * X.y + R[5] * X.z + ext.t[1],
            R[6] * X.x + R[7] * X.y + R[8] * X.z + ext.t[2]};
}

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
