// Radial distortion and its removal: the model, theta and shear, fixed points, accuracy of the inverse, folded images.
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

ZelmCameraIntrinsics plainCamera() {
    ZelmCameraIntrinsics cam{};
    cam.alpha = 1000;
    cam.beta = 1000;
    cam.cx = 640;
    cam.cy = 480;
    return cam;
}

// A lens over 1280 x 960 pixels whose k1 and k2 each move the corner by at most `share` of its radius.
ZelmCameraIntrinsics randomCamera(Random& random, double share) {
    ZelmCameraIntrinsics cam{};
    cam.alpha = random.uniform(600, 3000);
    cam.beta = cam.alpha * random.uniform(0.95, 1.05);
    cam.gamma = random.uniform(-5, 5);
    cam.cx = random.uniform(540, 740);
    cam.cy = random.uniform(400, 560);
    cam.theta = random.uniform(-0.05, 0.05);
    const double corner = (740.0 * 740.0 + 560.0 * 560.0) / (cam.alpha * cam.alpha);
    cam.k1 = share * random.uniform(-1, 1) / corner;
    cam.k2 = share * random.uniform(-1, 1) / (corner * corner);
    return cam;
}

struct RoundTrip {
    int32_t status;
    double error;
};

RoundTrip roundTrip(const ZelmCameraIntrinsics& cam, double x, double y) {
    double xd = 0.0;
    double yd = 0.0;
    double backX = 0.0;
    double backY = 0.0;
    EXPECT_EQ(zelmCalibDistortPoint(&cam, x, y, &xd, &yd), ZELM_OK);
    const int32_t status = zelmCalibUnDistortPoint(&cam, xd, yd, &backX, &backY);
    return {status, std::max(std::fabs(backX - x), std::fabs(backY - y))};
}

TEST(CalibDistortion, NullPointersAreRefusedAndNothingIsWritten) {
    const ZelmCameraIntrinsics cam = plainCamera();
    double out = kGuard;
    EXPECT_EQ(zelmCalibDistortPoint(nullptr, 1, 2, &out, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibDistortPoint(&cam, 1, 2, nullptr, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibDistortPoint(&cam, 1, 2, &out, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibUnDistortPoint(nullptr, 1, 2, &out, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibUnDistortPoint(&cam, 1, 2, nullptr, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibUnDistortPoint(&cam, 1, 2, &out, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(out, kGuard);
}

TEST(CalibDistortion, WithoutCoefficientsPointsStayAndOneStepIsCounted) {
    Random random(11);
    for (int trial = 0; trial < 1000; ++trial) {
        const ZelmCameraIntrinsics cam = randomCamera(random, 0.0);
        const double x = random.uniform(-2000, 4000);
        const double y = random.uniform(-2000, 4000);
        double outX = 0.0;
        double outY = 0.0;
        ASSERT_EQ(zelmCalibDistortPoint(&cam, x, y, &outX, &outY), ZELM_OK);
        EXPECT_EQ(outX, x);
        EXPECT_EQ(outY, y);
        EXPECT_EQ(zelmCalibUnDistortPoint(&cam, x, y, &outX, &outY), 1);
        EXPECT_EQ(outX, x);
        EXPECT_EQ(outY, y);
    }
}

TEST(CalibDistortion, PrincipalPointIsFixed) {
    Random random(12);
    for (int trial = 0; trial < 1000; ++trial) {
        const ZelmCameraIntrinsics cam = randomCamera(random, 0.1);
        double x = 0.0;
        double y = 0.0;
        ASSERT_EQ(zelmCalibDistortPoint(&cam, cam.cx, cam.cy, &x, &y), ZELM_OK);
        EXPECT_EQ(x, cam.cx);
        EXPECT_EQ(y, cam.cy);
        EXPECT_EQ(zelmCalibUnDistortPoint(&cam, cam.cx, cam.cy, &x, &y), 1);
        EXPECT_EQ(x, cam.cx);
        EXPECT_EQ(y, cam.cy);
    }
}

// dx = 100, dy = 200, xn = (100 - (5 / 500) 200) / 1000 = 0.098, yn = 0.4 cos(0.5).
TEST(CalibDistortion, DisplacementIsInPixelsAndTheRadiusIsNormalised) {
    ZelmCameraIntrinsics cam = plainCamera();
    cam.beta = 500;
    cam.gamma = 5;
    cam.theta = 0.5;
    cam.k1 = -0.2;
    cam.k2 = 0.3;
    const double yn = 0.4 * std::cos(0.5);
    const double r2 = 0.098 * 0.098 + yn * yn;
    const double D = -0.2 * r2 + 0.3 * r2 * r2;
    double xd = 0.0;
    double yd = 0.0;
    ASSERT_EQ(zelmCalibDistortPoint(&cam, 740, 680, &xd, &yd), ZELM_OK);
    EXPECT_TRUE(isClose(xd, 740 + D * 100, 1e-15));
    EXPECT_TRUE(isClose(yd, 680 + D * 200, 1e-15));
}

TEST(CalibDistortion, StoredThetaAlwaysTakesPart) {
    ZelmCameraIntrinsics cam = plainCamera();
    cam.k1 = 0.1;
    double plain = 0.0;
    double tilted = 0.0;
    double x = 0.0;
    ASSERT_EQ(zelmCalibDistortPoint(&cam, 640, 880, &x, &plain), ZELM_OK);
    cam.theta = 1.0;
    ASSERT_EQ(zelmCalibDistortPoint(&cam, 640, 880, &x, &tilted), ZELM_OK);
    const double shrunk = 0.4 * std::cos(1.0);
    EXPECT_TRUE(isClose(plain - 880, 0.1 * 0.4 * 0.4 * 400, 1e-12));
    EXPECT_TRUE(isClose(tilted - 880, 0.1 * shrunk * shrunk * 400, 1e-12));
}

TEST(CalibDistortion, CameraMatrixAndReservedEntriesPlayNoPart) {
    ZelmCameraIntrinsics cam = plainCamera();
    cam.k1 = -0.1;
    double x = 0.0;
    double y = 0.0;
    ASSERT_EQ(zelmCalibDistortPoint(&cam, 100, 200, &x, &y), ZELM_OK);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    std::fill_n(cam.A, 9, nan);
    std::fill_n(cam.reserved, 5, nan);
    double otherX = 0.0;
    double otherY = 0.0;
    ASSERT_EQ(zelmCalibDistortPoint(&cam, 100, 200, &otherX, &otherY), ZELM_OK);
    EXPECT_EQ(otherX, x);
    EXPECT_EQ(otherY, y);
}

// The last step, of at most 1e-4 pixel, is taken before the result is returned: what is left is of second order,
// curvature * 1e-8 pixel, curvature below 0.1 / pixel here.
TEST(CalibDistortion, RoundTripIsExactToABillionthOfAPixel) {
    Random random(13);
    double worst = 0.0;
    for (int trial = 0; trial < 20000; ++trial) {
        const ZelmCameraIntrinsics cam = randomCamera(random, 0.05);
        const RoundTrip result = roundTrip(cam, random.uniform(0, 1280), random.uniform(0, 960));
        ASSERT_GE(result.status, 1) << trial;
        ASSERT_LE(result.status, 5) << trial;
        worst = std::max(worst, result.error);
    }
    EXPECT_LE(worst, 1e-9);
    RecordProperty("worstErrorPixels", std::to_string(worst));
}

TEST(CalibDistortion, StrongLensesComeBackToTheStatedTolerance) {
    Random random(14);
    for (int trial = 0; trial < 20000; ++trial) {
        const ZelmCameraIntrinsics cam = randomCamera(random, 0.12);
        const RoundTrip result = roundTrip(cam, random.uniform(0, 1280), random.uniform(0, 960));
        ASSERT_GE(result.status, 1) << trial;
        EXPECT_LE(result.error, 1e-4) << trial;
    }
}

// Far beyond the fold a Newton step shortens the radius by a third only: 20 are not enough.
TEST(CalibUnDistortPoint, ImageFoldedByAHugeCoefficientFailsWithTheLastEstimateWritten) {
    for (const double k1 : {-1e12, 1e12}) {
        ZelmCameraIntrinsics cam = plainCamera();
        cam.k1 = k1;
        double x = kGuard;
        double y = kGuard;
        EXPECT_EQ(zelmCalibUnDistortPoint(&cam, 1200, 480, &x, &y), ZELM_ERR_UNDISTORT);
        EXPECT_EQ(y, 480.0);
        EXPECT_GT(x, 640.0);
        EXPECT_LT(x, 640.0 + 560.0 * 0.001);  // (2 / 3)^20 = 3e-4 of the way is left
    }
}

TEST(CalibUnDistortPoint, SingularStepFailsWithTheStartWritten) {
    ZelmCameraIntrinsics cam = plainCamera();
    cam.cx = 0;
    cam.cy = 0;
    cam.alpha = 1;
    cam.k1 = -1;
    cam.k2 = 0.25;  // D + 1 = 0.25 (r2 - 2)^2: zero together with its derivative at r2 = 2
    cam.beta = 2;
    double x = kGuard;
    double y = kGuard;
    EXPECT_EQ(zelmCalibUnDistortPoint(&cam, 1, 2, &x, &y), ZELM_ERR_UNDISTORT);
    EXPECT_EQ(x, 1.0);
    EXPECT_EQ(y, 2.0);
}

TEST(CalibUnDistortPoint, PointsThatAreNotFiniteFailWithinTheStepLimit) {
    ZelmCameraIntrinsics cam = plainCamera();
    cam.k1 = 0.1;
    double x = 0.0;
    double y = 0.0;
    EXPECT_EQ(zelmCalibUnDistortPoint(&cam, std::numeric_limits<double>::quiet_NaN(), 0, &x, &y), ZELM_ERR_UNDISTORT);
    EXPECT_EQ(zelmCalibUnDistortPoint(&cam, std::numeric_limits<double>::infinity(), 0, &x, &y), ZELM_ERR_UNDISTORT);
    cam.alpha = 0;
    EXPECT_EQ(zelmCalibUnDistortPoint(&cam, 700, 0, &x, &y), ZELM_ERR_UNDISTORT);
}

// Newton's steps for x + x^3 = 1 with unit focal length, started at 1: each step squares the error, and the first of at
// most 1e-4 ends the search and is taken.
TEST(CalibUnDistortPoint, StepsAreThoseOfNewtonAndTheLastIsTaken) {
    ZelmCameraIntrinsics cam{};
    cam.alpha = 1;
    cam.beta = 1;
    cam.k1 = 1;
    double estimate = 1.0;
    int32_t steps = 0;
    double step = 1.0;
    while (std::fabs(step) > 1e-4) {
        step = (estimate + estimate * estimate * estimate - 1.0) / (1.0 + 3.0 * estimate * estimate);
        estimate -= step;
        ++steps;
    }
    double x = 0.0;
    double y = 1.0;
    EXPECT_EQ(zelmCalibUnDistortPoint(&cam, 1, 0, &x, &y), steps);
    EXPECT_TRUE(isClose(x, estimate, 1e-15));
    EXPECT_EQ(y, 0.0);
}

}  // namespace
