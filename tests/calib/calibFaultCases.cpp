// The functions of homographies and the camera model with each of their allocations failing.
#include <algorithm>
#include <cmath>

#include "faultCase.h"
#include "zelm/calib.h"

namespace {

constexpr double kGuard = 7.25;

const ZelmCameraIntrinsics kCamera = {
    {1000, 0, 640, 0, 1000, 480, 0, 0, 1}, 1000, 1000, 0, 640, 480, 0, -0.1, 0.02, {}};
const ZelmCameraExtrinsics kPose = {{1, 0, 0, 0, 1, 0, 0, 0, 1}, {0, 0, 500}, {0, 0, 0}};

}  // namespace

ZELM_NO_ALLOCATION_CASE(zelmCalibNormalizeData) {
    double points[4] = {1, 2, 3, 4};
    double T[9];
    EXPECT_EQ(probe.call([&] { return zelmCalibNormalizeData(2, 2, points, points, T, nullptr); }), ZELM_OK);
}

// The copies of the points and the linear system report want of memory; within the refinement it ends the refinement.
ZELM_FAULT_CASE(zelmCalibCalcHomography) {
    const Point2d src[] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0.4, 0.7}, {0.9, 0.3}};
    const Point2d dst[] = {{10, 0}, {30, 1}, {33, 20}, {9, 22}, {18, 15}, {27, 7}};
    constexpr long kReported = 3;  // two copies, the linear system
    double H[9];
    std::fill_n(H, 9, kGuard);
    const int32_t status = probe.call([&] { return zelmCalibCalcHomography(6, src, dst, 3.5, H); });
    if (probe.failed()) {
        EXPECT_EQ(status, probe.allocations() <= kReported ? ZELM_ERR_MEMORY : ZELM_ERR_CALIB_NOT_CONVERGED);
        EXPECT_TRUE(std::all_of(H, H + 9, [](double entry) { return entry == kGuard; }));
    } else {
        EXPECT_GE(status, 2);
        EXPECT_EQ(H[8], 1.0);
    }
}

ZELM_NO_ALLOCATION_CASE(zelmCalibCameraMatrix) {
    double P[12];
    EXPECT_EQ(probe.call([&] { return zelmCalibCameraMatrix(kCamera.A, &kPose, P, 0); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmCalibChange3Dto2D) {
    const Point3d X = {10, 20, 0};
    Point2d p;
    EXPECT_EQ(probe.call([&] { return zelmCalibChange3Dto2D(&X, &kCamera, &kPose, &p, 0); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmCalibDistortPoint) {
    double x = 0.0;
    double y = 0.0;
    EXPECT_EQ(probe.call([&] { return zelmCalibDistortPoint(&kCamera, 100, 200, &x, &y); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmCalibUnDistortPoint) {
    double x = 0.0;
    double y = 0.0;
    EXPECT_GE(probe.call([&] { return zelmCalibUnDistortPoint(&kCamera, 100, 200, &x, &y); }), 1);
}

ZELM_NO_ALLOCATION_CASE(zelmCalibRodrigues) {
    double r[3] = {0.3, -0.2, 0.9};
    double R[9];
    double back[3] = {kGuard, kGuard, kGuard};
    EXPECT_EQ(probe.call([&] { return zelmCalibRodrigues(0, r, R); }), ZELM_OK);
    EXPECT_EQ(probe.call([&] { return zelmCalibRodrigues(1, back, R); }), ZELM_OK);
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(back[i], r[i], 1e-14);
    }
}
