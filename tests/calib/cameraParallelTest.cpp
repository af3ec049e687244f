// zelmCalibCameraParam under model 2: one view of a parallel-projection camera at any roll, mirrored or not, head-on or
// tilted.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "cameraProjection.h"
#include "cameraScene.h"
#include "random.h"
#include "telecentricClosedForm.h"
#include "zelm/calib.h"

namespace {

using zelmtest::CameraEstimate;
using zelmtest::CameraScene;
using zelmtest::meanDistance;
using zelmtest::Random;

constexpr double kDegree = 0.017453292519943295;
constexpr double kNoiseless = 1e-6;  // relative, what the library promises
constexpr double kPitch = 6.0;
constexpr double kXDistance = 12.0;
constexpr double kYDistance = 18.0;

CameraScene parallelScene(const ZelmCameraIntrinsics& camera, double rollDegrees, double tiltDegrees,
                          double axisDegrees) {
    CameraScene scene;
    scene.model = 2;
    scene.camera = camera;
    scene.addView(zelmtest::plateDots(kPitch, kPitch, false),
                  zelmtest::tiltedPose(rollDegrees * kDegree, tiltDegrees * kDegree, axisDegrees * kDegree,
                                       {3.0, -2.0, 50.0}, 36.0, 30.0));
    return scene;
}

CameraEstimate estimate(CameraScene& scene, double threshold = -1.0) {
    ZelmCameraIntrinsics preset{};
    preset.alpha = kXDistance;
    preset.beta = kYDistance;
    preset.cx = scene.camera.cx;
    preset.cy = scene.camera.cy;
    return zelmtest::estimateCamera(scene, threshold, preset);
}

constexpr double kRolls[] = {0,   15,  44,  45, 46,  60,  89,  90,  91,   120,  134,  135,
                             136, 170, 180, -1, -44, -45, -46, -90, -134, -135, -136, -179};

TEST(ParallelCameraParam, HeadOnViewsGiveTheScalesBackAtEveryRoll) {
    for (const double roll : kRolls) {
        for (const double k1 : {0.0, -2e-6}) {
            SCOPED_TRACE(roll);
            const auto camera = zelmtest::parallelCamera(12.0, 12.3, 640.0, 500.0, k1, 0.0);
            CameraScene scene = parallelScene(camera, roll, 0.0, 0.0);
            const CameraEstimate result = estimate(scene);
            ASSERT_EQ(result.status, ZELM_OK);
            EXPECT_NEAR(result.camera.alpha, 12.0, kNoiseless * 12.0);
            EXPECT_NEAR(result.camera.beta, 12.3, kNoiseless * 12.3);
            EXPECT_NEAR(result.camera.gamma, 0.0, kNoiseless);
            // A coefficient that may be 0 is judged by what it moves the outermost dot (r^2 = 2545, 600 px): 1e-5 px.
            EXPECT_NEAR(result.camera.k1, k1, 1e-5 / (2545.0 * 600.0));
            EXPECT_NEAR(result.camera.k2, 0.0, 1e-5 / (2545.0 * 2545.0 * 600.0));
            EXPECT_NEAR(result.poses[0].t[0], scene.poses[0].t[0], 1e-5);
            EXPECT_NEAR(result.poses[0].t[1], scene.poses[0].t[1], 1e-5);
            for (const std::size_t i : {0U, 1U, 3U, 4U, 8U}) {
                EXPECT_NEAR(result.poses[0].R[i], scene.poses[0].R[i], kNoiseless);
            }
        }
    }
}

TEST(ParallelCameraParam, VeryUnequalScalesAreFoundAtEveryRoll) {
    for (const double roll : kRolls) {
        SCOPED_TRACE(roll);
        CameraScene scene = parallelScene(zelmtest::parallelCamera(16.0, 9.0, 640.0, 500.0, 0.0, 0.0), roll, 0.0, 0.0);
        const CameraEstimate result = estimate(scene);
        ASSERT_EQ(result.status, ZELM_OK);
        EXPECT_NEAR(result.camera.alpha, 16.0, kNoiseless * 16.0);
        EXPECT_NEAR(result.camera.beta, 9.0, kNoiseless * 9.0);
    }
}

TEST(ParallelCameraParam, AMirroredImageGivesOneNegativeScale) {
    for (const double roll : kRolls) {
        SCOPED_TRACE(roll);
        CameraScene scene =
            parallelScene(zelmtest::parallelCamera(-12.0, 12.3, 640.0, 500.0, -2e-6, 0.0), roll, 0.0, 0.0);
        const CameraEstimate result = estimate(scene);
        ASSERT_EQ(result.status, ZELM_OK);
        EXPECT_LT(result.camera.alpha * result.camera.beta, 0.0);
        EXPECT_NEAR(std::fabs(result.camera.alpha), 12.0, kNoiseless * 12.0);
        EXPECT_NEAR(std::fabs(result.camera.beta), 12.3, kNoiseless * 12.3);
        EXPECT_NEAR(result.camera.k1, -2e-6, kNoiseless * 2e-6);
    }
}

TEST(ParallelCameraParam, WhatOneViewCannotTellStaysAsPresetOrStated) {
    CameraScene scene = parallelScene(zelmtest::parallelCamera(12.0, 12.3, 640.5, 499.5, 0.0, 0.0), 33.0, 7.0, 20.0);
    Random random(1);
    scene.addNoise(0.05, random);
    const CameraEstimate result = estimate(scene);
    ASSERT_EQ(result.status, ZELM_OK);
    EXPECT_NEAR(result.camera.cx, 640.5, 1e-10);  // rounding of the way to normalised units and back
    EXPECT_NEAR(result.camera.cy, 499.5, 1e-10);
    EXPECT_EQ(result.camera.theta, 0.0);
    EXPECT_EQ(result.poses[0].t[2], 1.0);
    EXPECT_GE(result.poses[0].R[6], 0.0);  // the x axis points away
}

TEST(ParallelCameraParam, ATiltAcrossTheImageAxesIsFoundUpToItsMirrorImage) {
    for (const double axis : {45.0, -45.0}) {
        for (const double tilt : {1.0, 5.0, 15.0}) {
            for (const double roll : {0.0, 50.0, 170.0, -80.0}) {
                SCOPED_TRACE(testing::Message() << "tilt " << tilt << " roll " << roll);
                CameraScene scene =
                    parallelScene(zelmtest::parallelCamera(12.0, 12.0, 640.0, 500.0, -2e-6, 0.0), roll, tilt, axis);
                const CameraEstimate result = estimate(scene);
                ASSERT_EQ(result.status, ZELM_OK);
                EXPECT_NEAR(std::acos(result.poses[0].R[8]) / kDegree, tilt, 1e-4);
                EXPECT_NEAR(result.camera.alpha, 12.0, 1e-5);
                EXPECT_NEAR(result.camera.beta, 12.0, 1e-5);
                // The mirrored tilt changes the sign of the depths and nothing else.
                const double sign = scene.poses[0].R[6] < 0.0 ? -1.0 : 1.0;
                EXPECT_NEAR(result.poses[0].R[6], sign * scene.poses[0].R[6], 1e-5);
                EXPECT_NEAR(result.poses[0].R[7], sign * scene.poses[0].R[7], 1e-5);
            }
        }
    }
}

TEST(ParallelCameraParam, ATiltAlongAnImageAxisGoesToTheScales) {
    CameraScene scene = parallelScene(zelmtest::parallelCamera(12.0, 12.0, 640.0, 500.0, 0.0, 0.0), 0.0, 10.0, 90.0);
    const CameraEstimate result = estimate(scene);
    ASSERT_EQ(result.status, ZELM_OK);
    EXPECT_NEAR(result.camera.alpha, 12.0 * std::cos(10.0 * kDegree), 1e-5);
    EXPECT_NEAR(result.camera.beta, 12.0, 1e-5);
    EXPECT_NEAR(result.poses[0].R[8], 1.0, 1e-9);
}

TEST(ParallelCameraParam, TiltedViewsAreReproducedToTheNoise) {
    // 143 dots less 8 parameters: mean length of the residuals is 0.05 * sqrt(pi / 2) * sqrt(1 - 8 / 286), to 5
    // standard errors; the shape of the distortion takes up to 0.003 px beside (2 % of some 0.15 px).
    const double expected = 0.05 * 1.2533 * std::sqrt(1.0 - 8.0 / 286.0);
    const double tolerance = 5.0 * 0.05 * 0.655 / std::sqrt(143.0);
    std::uint64_t seed = 0;
    for (const double roll : {0.0, 44.0, 46.0, 90.0, 135.0, -100.0}) {
        for (const double tilt : {0.0, 2.0, 8.0, 15.0}) {
            for (const double axis : {0.0, 30.0, 45.0, 90.0, 150.0}) {
                for (const double threshold : {-1.0, 3.5}) {
                    SCOPED_TRACE(testing::Message() << "roll " << roll << " tilt " << tilt << " axis " << axis);
                    CameraScene scene =
                        parallelScene(zelmtest::parallelCamera(12.0, 12.3, 640.0, 500.0, -4e-7, 0.0), roll, tilt, axis);
                    Random random(++seed);
                    scene.addNoise(0.05, random);
                    const CameraEstimate result = estimate(scene, threshold);
                    ASSERT_EQ(result.status, ZELM_OK);
                    EXPECT_NEAR(result.error, expected, tolerance + 0.003);
                    EXPECT_NEAR(result.error, meanDistance(scene, result), 1e-11);  // rounding of pixel coordinates
                    EXPECT_LT(std::fabs(result.camera.gamma), 1e-3);
                }
            }
        }
    }
}

// Cramer-Rao bound of the scales for a head-on view, from the linear model u = cx + sx X + D(k1, k2) ..., at k1 = k2 =
// 0 and a roll of 0: the x scale meets, in u, the x shift and the rotation, and k1 and k2, which it shares with v.
double scaleBound(const CameraScene& scene, double sigma) {
    // Unknowns: sx, sy, roll + shear, tx, ty, k1, k2; one row of derivatives for u and one for v.
    constexpr std::size_t n = 8;
    double N[n][n + 1] = {};
    for (const Point2d& dot : scene.planes[0]) {
        const double x = dot.x + scene.poses[0].t[0];
        const double y = dot.y + scene.poses[0].t[1];
        const double r2 = (x * x + y * y) / 1000.0;
        const double du[n] = {x, 0, y, 0, 1, 0, x * r2, x * r2 * r2};
        const double dv[n] = {0, y, 0, x, 0, 1, y * r2, y * r2 * r2};
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < n; ++j) {
                N[i][j] += du[i] * du[j] + dv[i] * dv[j];
            }
        }
    }
    N[0][n] = 1.0;  // solves N z = e0; z0 is the variance of the x scale
    for (std::size_t k = n; k-- > 0;) {
        for (std::size_t i = 0; i < k; ++i) {
            const double f = N[i][k] / N[k][k];
            for (std::size_t j = 0; j <= n; ++j) {
                N[i][j] -= f * N[k][j];
            }
        }
    }
    return sigma * std::sqrt(N[0][n] / N[0][0]);
}

TEST(ParallelCameraParam, HeadOnScalesReachTheCramerRaoBound) {
    constexpr int kTrials = 200;
    constexpr double kSigma = 0.05;
    const CameraScene base = parallelScene(zelmtest::parallelCamera(12.0, 12.0, 640.0, 500.0, 0.0, 0.0), 0.0, 0.0, 0.0);
    double mean = 0.0;
    double square = 0.0;
    for (int trial = 0; trial < kTrials; ++trial) {
        CameraScene scene = base;
        Random random(1000 + static_cast<std::uint64_t>(trial));
        scene.addNoise(kSigma, random);
        const CameraEstimate result = estimate(scene);
        ASSERT_EQ(result.status, ZELM_OK);
        const double deviation = result.camera.alpha - 12.0;
        mean += deviation / kTrials;
        square += deviation * deviation / kTrials;
    }
    const double bound = scaleBound(base, kSigma);
    // 200 trials give a spread to 5 %, three of which are allowed; the shear of the noise, read as a tilt, adds half
    // its size, some 0.4 of the bound at most.
    EXPECT_LT(std::sqrt(square), 1.25 * bound);
    EXPECT_GT(std::sqrt(square), 0.8 * bound);
    EXPECT_LT(std::fabs(mean), 0.5 * bound);
}

TEST(ParallelCameraParam, OutliersHaveNoWeight) {
    CameraScene scene = parallelScene(zelmtest::parallelCamera(12.0, 12.3, 640.0, 500.0, -2e-6, 0.0), 20.0, 5.0, 45.0);
    Random random(9);
    scene.addNoise(0.02, random);
    const CameraEstimate clean = estimate(scene, 3.5);
    for (std::size_t i = 7; i < scene.images[0].size(); i += 20) {
        scene.images[0][i].x += random.uniform(2.0, 5.0);
    }
    const CameraEstimate spoiled = estimate(scene, 3.5);
    ASSERT_EQ(spoiled.status, ZELM_OK);
    EXPECT_NEAR(spoiled.camera.alpha, clean.camera.alpha, 5e-4);  // some 3 standard deviations of the scale
    EXPECT_NEAR(spoiled.camera.beta, clean.camera.beta, 5e-4);
}

TEST(ReferenceDots, ALaterMatchReplacesAnEarlierOne) {
    const Point2d plane[5] = {{0, 0}, {12, 0}, {0, 18}, {5e-6, -5e-6}, {12, 0.9e-5}};
    zelm::ReferenceDots dots{};
    ASSERT_TRUE(zelm::findReferenceDots(5, plane, 12.0, 18.0, &dots));
    EXPECT_EQ(dots.origin, 3U);
    EXPECT_EQ(dots.onX, 4U);
    EXPECT_EQ(dots.onY, 2U);
    EXPECT_FALSE(zelm::findReferenceDots(1, plane, 12.0, 18.0, &dots));
    EXPECT_FALSE(zelm::findReferenceDots(0, plane, 12.0, 18.0, &dots));
}

TEST(ImageScales, BranchAtExactly45And135DegreesReadsXFromTheXDot) {
    // With exactly equal baselines the two branches agree; telling them apart takes unequal y distances.
    const auto scalesAt = [](double degrees) {
        const double c = std::cos(degrees * kDegree);
        const double s = std::sin(degrees * kDegree);
        // A y dot that is off by 10 %: the branch that reads the x scale from the x dot does not see it.
        return zelm::scalesFromBaselines({20.0 * c, 20.0 * s}, 10.0, {-22.0 * s, 22.0 * c}, 10.0);
    };
    EXPECT_NEAR(scalesAt(44.9).x, 2.0, 1e-12);
    EXPECT_NEAR(scalesAt(44.9).y, 2.2, 1e-12);
    EXPECT_NEAR(scalesAt(45.1).x, 2.2, 1e-12);
    EXPECT_NEAR(scalesAt(45.1).y, 2.0, 1e-12);
    EXPECT_NEAR(scalesAt(134.9).x, 2.2, 1e-12);
    EXPECT_NEAR(scalesAt(135.1).x, 2.0, 1e-12);
    EXPECT_NEAR(scalesAt(-90.0).x, 2.2, 1e-12);
    EXPECT_NEAR(scalesAt(-90.0).y, 2.0, 1e-12);
}

TEST(ShearToTilt, KeepsTheImageOfThePlate) {
    Random random(3);
    for (int trial = 0; trial < 200; ++trial) {
        double intrinsics[zelm::kIntrinsics] = {random.uniform(0.8, 1.2),
                                                random.uniform(0.8, 1.2),
                                                random.uniform(-0.3, 0.3),
                                                random.uniform(-1.0, 1.0),
                                                random.uniform(-1.0, 1.0),
                                                0.0,
                                                0.0};
        double pose[zelm::kPose] = {random.uniform(-0.2, 0.2), random.uniform(-0.2, 0.2), random.uniform(-3.1, 3.1),
                                    random.uniform(-1.0, 1.0), random.uniform(-1.0, 1.0), 0.0};
        if (trial % 2 == 1) {
            intrinsics[zelm::kAlpha] = -intrinsics[zelm::kAlpha];
        }
        const Point2d dots[3] = {{0.0, 0.0}, {1.0, 0.0}, {0.3, -2.0}};
        Point2d before[3];
        for (int i = 0; i < 3; ++i) {
            before[i] = zelm::DotProjector{intrinsics, true}.project(zelm::ViewFrame(pose), dots[i]);
        }
        ASSERT_EQ(zelm::shearToTilt(intrinsics, pose), ZELM_OK);
        EXPECT_EQ(intrinsics[zelm::kGamma], 0.0);
        for (int i = 0; i < 3; ++i) {
            const Point2d after = zelm::DotProjector{intrinsics, true}.project(zelm::ViewFrame(pose), dots[i]);
            EXPECT_NEAR(after.x, before[i].x, 1e-12);
            EXPECT_NEAR(after.y, before[i].y, 1e-12);
        }
    }
}

}  // namespace
