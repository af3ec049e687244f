// Two calibrations beside each other, where the difference is known.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "measureRigs.h"

namespace zelmtest {
namespace {

ZelmMeasureComparison compared(const TruePair& first, const TruePair& second) {
    const OpenedRig a(blockOf(first));
    const OpenedRig b(blockOf(second));
    auto options = emptyRecord<ZelmMeasureCompareOptions>();
    options.nearest = 300.0;
    options.farthest = 600.0;
    auto c = emptyRecord<ZelmMeasureComparison>();
    EXPECT_EQ(zelmMeasureCompare(a.get(), b.get(), &options, &c), ZELM_OK) << a.error();
    return c;
}

double lengthOf(const double* v) {
    return std::hypot(v[0], v[1], v[2]);
}

TEST(CompareRigs, TheSameCalibrationDoesNotDiffer) {
    const ZelmMeasureComparison c = compared(makePair(0, 0), makePair(0, 0));
    EXPECT_LT(c.left.worst, 1e-8);
    EXPECT_LT(c.right.worst, 1e-8);
    EXPECT_LT(c.volume.worst, 1e-7);
    EXPECT_LT(c.volume.lengthRms, 1e-9);
    EXPECT_GT(c.volume.count, 100);
    EXPECT_EQ(c.covariances, 0);
    EXPECT_EQ(c.probability, 1.0);
}

// A pair of the same rays with its plate elsewhere, and a frame of one camera that is turned with its principal point.
TEST(CompareRigs, TheFramesOfPlatesDoNotMatter) {
    const TruePair first = makePair(0, 0);
    TruePair second = first;
    // X' = D X + e of the world: R' = R D', t' = t - R' e.
    const ZelmCameraExtrinsics moved = truePose(0.3, -0.2, 0.1, 11.0, -5.0, 20.0);
    for (zelm::CalibratedCamera* camera : {&second.left, &second.right}) {
        const ZelmCameraExtrinsics p = camera->pose;
        double R[9]{};
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                for (int k = 0; k < 3; ++k) {
                    R[3 * i + j] += p.R[3 * i + k] * moved.R[3 * j + k];
                }
            }
        }
        std::copy(R, R + 9, camera->pose.R);
        for (int i = 0; i < 3; ++i) {
            camera->pose.t[i] =
                p.t[i] - (R[3 * i] * moved.t[0] + R[3 * i + 1] * moved.t[1] + R[3 * i + 2] * moved.t[2]);
        }
        zelmCalibRodrigues(1, camera->pose.r, camera->pose.R);
    }
    const ZelmMeasureComparison c = compared(first, second);
    EXPECT_LT(c.volume.worst, 1e-6);
    EXPECT_LT(lengthOf(c.pairTurn), 1e-9);
}

// A principal point that moves by 2 pixels is a turn of 2 / f; what the turn leaves is of second order.
TEST(CompareRigs, APrincipalPointIsMostlyATurn) {
    const TruePair first = makePair(0, 0);
    TruePair second = first;
    second.left.intrinsics.cx += 2.0;
    second.left.intrinsics.A[2] += 2.0;
    const ZelmMeasureComparison c = compared(first, second);
    EXPECT_NEAR(c.left.unturned, 2.0, 1e-9);
    EXPECT_NEAR(c.left.turn[1], -2.0 / 1688.6, 0.05 * 2.0 / 1688.6);
    EXPECT_LT(c.left.rms, 0.25);
    EXPECT_GT(c.left.rms, 0.01);
    EXPECT_LT(c.right.worst, 1e-8);
}

// All lengths a tenth of a per mille longer: the translations are.
TEST(CompareRigs, AScaleIsTold) {
    const TruePair first = makePair(0, 0);
    TruePair second = first;
    for (zelm::CalibratedCamera* camera : {&second.left, &second.right}) {
        for (double& t : camera->pose.t) {
            t *= 1.0001;
        }
    }
    const ZelmMeasureComparison c = compared(first, second);
    EXPECT_NEAR(c.volume.scale, 1e-4, 1e-9);
    EXPECT_NEAR(c.volume.lengthRms, 1e-4, 1e-9);
    EXPECT_NEAR(c.volume.lengthWorst, 1e-4, 1e-9);
    EXPECT_GT(c.baseline, 0.0);
    EXPECT_LT(c.volume.alignedRms, c.volume.rms);
}

// A focal length 0.1 % longer: the image grows by that from the principal point.
TEST(CompareRigs, AFocalLengthShowsAtTheEdges) {
    const TruePair first = makePair(0, 0);
    TruePair second = first;
    second.right.intrinsics.alpha *= 1.001;
    second.right.intrinsics.A[0] *= 1.001;
    const ZelmMeasureComparison c = compared(first, second);
    EXPECT_NEAR(c.right.worst, 0.001 * 640.0, 0.05);
    EXPECT_LT(std::min(c.right.worstAt[0], 1279.0 - c.right.worstAt[0]), 40.0);
    const OpenedRig a(blockOf(first));
    const OpenedRig b(blockOf(second));
    const double pixel[2] = {1279.0, 484.4};
    double difference[2];
    ASSERT_EQ(zelmMeasureCompareImage(a.get(), b.get(), 'R', 1, pixel, difference), ZELM_OK);
    EXPECT_NEAR(std::hypot(difference[0], difference[1]), 0.001 * (1279.0 - 636.7), 0.05);
}

// By the covariance of one: differences drawn from it have chi-squares of their freedom.
TEST(CompareRigs, ChiSquareIsOfTheParametersThatWereEstimated) {
    const TruePair first = makePair(0, 0);
    TruePair second = first;
    second.left.intrinsics.k1 += 0.003;
    second.left.intrinsics.cy += 0.2;
    second.left.intrinsics.A[5] += 0.2;
    const OpenedRig a(blockOf(first));
    const OpenedRig b(blockOf(second));
    auto covariance = emptyRecord<ZelmMeasureCovariance>();
    const auto at = [&](int i) -> double& { return covariance.matrix[27 * i]; };
    for (int i = 0; i < 26; ++i) {
        at(i) = 1e-12;
    }
    at(5) = 1e-6;  // k1: a deviation of 0.001
    at(4) = 0.04;  // cy: 0.2
    at(1) = 0.0;   // the skews are held
    at(8) = 0.0;
    covariance.noise = 0.01;
    ASSERT_EQ(zelmMeasureRigSetCovariance(a.get(), &covariance), ZELM_OK) << a.error();
    auto options = emptyRecord<ZelmMeasureCompareOptions>();
    options.nearest = 300.0;
    options.farthest = 600.0;
    auto c = emptyRecord<ZelmMeasureComparison>();
    ASSERT_EQ(zelmMeasureCompare(a.get(), b.get(), &options, &c), ZELM_OK) << a.error();
    EXPECT_EQ(c.covariances, 1);
    EXPECT_EQ(c.freedom, 18);
    EXPECT_NEAR(c.chiSquare, 9.0 + 1.0, 1e-6);
    EXPECT_NEAR(c.probability, 0.932, 0.001);  // of 18 degrees beyond 10
}

TEST(CompareRigs, RefusalsSayWhy) {
    const OpenedRig a(blockOf(makePair(0, 0)));
    TruePair other = makePair(0, 0);
    other.width = 640;
    const OpenedRig b(blockOf(other));
    const OpenedRig parallel(blockOf(makePair(2, 0)));
    auto c = emptyRecord<ZelmMeasureComparison>();
    const ZelmMeasureComparison before = c;
    EXPECT_EQ(zelmMeasureCompare(a.get(), b.get(), nullptr, &c), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(a.error().find("sizes"), std::string::npos) << a.error();
    EXPECT_EQ(zelmMeasureCompare(a.get(), parallel.get(), nullptr, &c), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(a.error().find("perspective"), std::string::npos) << a.error();
    auto options = emptyRecord<ZelmMeasureCompareOptions>();
    options.nearest = 0.001;
    options.farthest = 0.002;
    EXPECT_EQ(zelmMeasureCompare(a.get(), a.get(), &options, &c), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(a.error().find("no volume"), std::string::npos) << a.error();
    EXPECT_EQ(zelmMeasureCompare(a.get(), nullptr, nullptr, &c), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasureCompareImage(a.get(), a.get(), 'L', 1, nullptr, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(std::memcmp(&c, &before, sizeof c), 0);
}

}  // namespace
}  // namespace zelmtest
