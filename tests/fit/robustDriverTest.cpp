// The frame that the fits share: normalisation, robust weights and the driver, the driver with models that count their
// calls.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <numeric>
#include <vector>

#include "faultAlloc.h"
#include "normalizeFitData.h"
#include "random.h"
#include "robustDriver.h"
#include "robustWeights.h"
#include "zelm/fit.h"

using zelm::innerCalcRobustWeights;
using zelm::innerFitRobust;
using zelm::innerNormalizeFitData;
using zelmtest::Random;

namespace {

const double kSqrt2 = std::sqrt(2.0);
const double kNan = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

// --- normalisation

// Deliberate: sqrt(2) also for points on a line and in space.
TEST(NormalizeFitData, TheMeanDistanceIsSqrt2InEveryDimension) {
    Random random(501);
    for (int32_t dim = 1; dim <= 3; ++dim) {
        for (int trial = 0; trial < 200; ++trial) {
            const int32_t n = random.integer(2, 30);
            const double size = std::pow(10.0, random.uniform(-3.0, 4.0));
            const double shift = random.uniform(-1000.0, 1000.0);
            std::vector<double> src(static_cast<size_t>(n * dim));
            for (auto& v : src) {
                v = shift + size * random.normal();
            }
            std::vector<double> dst(src.size());
            double centre[3];
            double scale;
            innerNormalizeFitData(dim, n, src.data(), dst.data(), centre, &scale);
            const auto d = static_cast<size_t>(dim);
            double distances = 0.0;
            std::vector<double> sums(d, 0.0);
            for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
                double squares = 0.0;
                for (size_t c = 0; c < d; ++c) {
                    const double v = dst[i * d + c];
                    EXPECT_EQ(v, (src[i * d + c] - centre[c]) * scale);
                    sums[c] += v;
                    squares += v * v;
                }
                distances += std::sqrt(squares);
            }
            // Rounding of the centre, seen through the scale.
            const double tolerance = 1e-15 * n * (10.0 + (std::fabs(shift) + size) * scale);
            EXPECT_NEAR(distances, kSqrt2 * n, tolerance);
            for (const double sum : sums) {
                EXPECT_NEAR(sum, 0.0, tolerance);
            }
        }
    }
}

TEST(NormalizeFitData, TheSpreadOfOneDimensionIsTheMeanDeviation) {
    const double src[4] = {1.0, 2.0, 3.0, 100.0};
    double dst[4];
    double centre;
    double scale;
    innerNormalizeFitData(1, 4, src, dst, &centre, &scale);
    EXPECT_EQ(centre, 26.5);
    EXPECT_DOUBLE_EQ(scale, kSqrt2 / 36.75);
}

TEST(NormalizeFitData, CoincidingPointsKeepTheScaleOne) {
    const double src[6] = {4.0, 5.0, 4.0, 5.0, 4.0, 5.0};
    double dst[6];
    double centre[2];
    double scale;
    innerNormalizeFitData(2, 3, src, dst, centre, &scale);
    EXPECT_EQ(scale, 1.0);
    EXPECT_EQ(centre[0], 4.0);
    EXPECT_EQ(centre[1], 5.0);
    for (const double v : dst) {
        EXPECT_EQ(v, 0.0);
    }
}

TEST(NormalizeFitData, ASpreadThatIsNotANumberGivesNoNumber) {
    const double src[2] = {1.0, kNan};
    double dst[2];
    double centre;
    double scale;
    innerNormalizeFitData(1, 2, src, dst, &centre, &scale);
    EXPECT_TRUE(std::isnan(scale));
}

// --- weights

TEST(RobustWeights, BiweightsOfAnOddCountUseTheMiddleResidual) {
    const double r[5] = {0.5, -3.0, 1.0, 2.0, 0.0};  // median |r| = 1
    double w[5] = {1, 1, 1, 1, 1};
    ASSERT_EQ(innerCalcRobustWeights(1, 5, r, w, 2.5), 0);
    const auto expected = [](double u) { return std::fabs(u) < 1.0 ? (1 - u * u) * (1 - u * u) : 0.0; };
    for (int i = 0; i < 5; ++i) {
        EXPECT_DOUBLE_EQ(w[i], expected(r[i] / 2.5)) << i;
    }
}

TEST(RobustWeights, AnEvenCountUsesTheMeanOfTheTwoMiddleResiduals) {
    const double r[4] = {8.0, 1.0, -2.0, 0.0};  // median |r| = 1.5
    double w[4] = {1, 1, 1, 1};
    ASSERT_EQ(innerCalcRobustWeights(1, 4, r, w, 2.0), 0);
    EXPECT_EQ(w[0], 0.0);
    EXPECT_DOUBLE_EQ(w[1], std::pow(1.0 - 1.0 / 9.0, 2));
    EXPECT_DOUBLE_EQ(w[2], std::pow(1.0 - 4.0 / 9.0, 2));
    EXPECT_EQ(w[3], 1.0);
}

TEST(RobustWeights, KindZeroIsTheParabola) {
    const double r[3] = {0.5, -1.0, 4.0};
    double w[3] = {1, 1, 1};
    ASSERT_EQ(innerCalcRobustWeights(0, 3, r, w, 2.0), 0);
    EXPECT_DOUBLE_EQ(w[0], 1.0 - 1.0 / 16.0);
    EXPECT_DOUBLE_EQ(w[1], 0.75);
    EXPECT_EQ(w[2], 0.0);
}

TEST(RobustWeights, AResidualAtTheCutOffGetsNoWeight) {
    const double k = 3.0;
    for (const int32_t kind : {0, 1}) {
        const double r[3] = {1.0, k, std::nextafter(k, 0.0)};
        double w[3] = {1, 1, 1};
        // The median is just below 3; a factor of 1 makes it the cut-off itself, so only the first point stays.
        ASSERT_EQ(innerCalcRobustWeights(kind, 3, r, w, 1.0), 0);
        EXPECT_GT(w[0], 0.0);
        EXPECT_EQ(w[1], 0.0);
        EXPECT_EQ(w[2], 0.0);
    }
}

TEST(RobustWeights, ACutOffBelow1e12SettlesAndLeavesTheWeights) {
    for (const double cutoff : {0.0, 0.99e-12}) {
        const double r[3] = {cutoff, cutoff, 5.0};
        double w[3] = {0.25, 0.5, 0.75};
        EXPECT_EQ(innerCalcRobustWeights(1, 3, r, w, 1.0), 1);
        EXPECT_EQ(innerCalcRobustWeights(7, 3, r, w, 1.0), 1);  // found before the kind is looked at
        EXPECT_EQ(w[0], 0.25);
        EXPECT_EQ(w[1], 0.5);
        EXPECT_EQ(w[2], 0.75);
    }
    const double r[3] = {0.5e-12, 1.01e-12, 5.0};
    double w[3] = {1, 1, 1};
    EXPECT_EQ(innerCalcRobustWeights(1, 3, r, w, 1.0), 0);
    EXPECT_EQ(w[2], 0.0);
}

TEST(RobustWeights, UnknownKindsAndNoPointsAreRefused) {
    const double r[2] = {1.0, 2.0};
    double w[2] = {0.5, 0.5};
    for (const int32_t kind : {-1, 2, 100}) {
        EXPECT_EQ(innerCalcRobustWeights(kind, 2, r, w, 3.0), ZELM_ERR_FIT_DATA);
    }
    EXPECT_EQ(innerCalcRobustWeights(1, 0, r, w, 3.0), ZELM_ERR_FIT_DATA);
    EXPECT_EQ(innerCalcRobustWeights(1, -4, r, w, 3.0), ZELM_ERR_FIT_DATA);
    EXPECT_EQ(w[0], 0.5);
}

TEST(RobustWeights, RejectingEveryPointIsAFailure) {
    const double r[4] = {1.0, -1.0, 1.0, 1.0};
    double w[4] = {1, 1, 1, 1};
    EXPECT_EQ(innerCalcRobustWeights(1, 4, r, w, 0.5), ZELM_ERR_FIT_DATA);
    EXPECT_EQ(innerCalcRobustWeights(1, 4, r, w, 1.0), ZELM_ERR_FIT_DATA);
    EXPECT_NE(innerCalcRobustWeights(1, 4, r, w, 1.01), ZELM_ERR_FIT_DATA);
}

TEST(RobustWeights, PointsCountAsRejectedWhenTheirWeightsSumUpToLessThan1e12) {
    const double r[4] = {1.0, -1.0, 1.0, 1.0};
    for (const double beyond : {1e-7, 2.4e-7, 2.6e-7, 1e-5}) {  // four weights of about (2 beyond)^2
        double w[4] = {1, 1, 1, 1};
        EXPECT_EQ(innerCalcRobustWeights(1, 4, r, w, 1.0 + beyond), beyond < 2.5e-7 ? ZELM_ERR_FIT_DATA : 0) << beyond;
    }
}

TEST(RobustWeights, ResidualsThatAreNotNumbersAreAFailure) {
    const double r[3] = {1.0, kNan, 2.0};
    double w[3] = {1, 1, 1};
    EXPECT_EQ(innerCalcRobustWeights(1, 3, r, w, 3.0), ZELM_ERR_FIT_DATA);
    EXPECT_EQ(w[0], 1.0);
    const double infinite[3] = {1.0, kInf, 2.0};
    EXPECT_EQ(innerCalcRobustWeights(1, 3, infinite, w, 3.0), 0);
    EXPECT_EQ(w[1], 0.0);
}

TEST(RobustWeights, WeightsSettleWhenTheyChangeByLessThanTwoPercentOfTheirSum) {
    const double r[5] = {0.1, 0.3, 0.5, 0.7, 0.9};
    double fresh[5] = {1, 1, 1, 1, 1};
    ASSERT_EQ(innerCalcRobustWeights(1, 5, r, fresh, 3.0), 0);
    double sum = 0.0;
    for (const double w : fresh) {
        sum += w;
    }
    for (const double part : {0.0, 0.01, 0.0199, 0.0201, 0.05}) {
        double w[5];
        std::copy(fresh, fresh + 5, w);
        w[1] += part * sum / 2.0;  // spread over two points, one up and one down
        w[3] -= part * sum / 2.0;
        EXPECT_EQ(innerCalcRobustWeights(1, 5, r, w, 3.0), part < 0.02 ? 1 : 0) << part;
        EXPECT_TRUE(std::equal(w, w + 5, fresh));  // the new weights are handed out either way
    }
}

TEST(RobustWeights, TheMedianIsThatOfASortedCopy) {
    Random random(502);
    for (int trial = 0; trial < 1000; ++trial) {
        const int32_t n = random.integer(1, 40);
        std::vector<double> r(static_cast<size_t>(n));
        for (auto& v : r) {
            v = random.uniform() < 0.3 ? random.integer(-3, 3) : random.normal();
        }
        std::vector<double> sorted = r;
        std::for_each(sorted.begin(), sorted.end(), [](double& v) { v = std::fabs(v); });
        std::sort(sorted.begin(), sorted.end());
        const size_t half = r.size() / 2;
        const double median = r.size() % 2 == 1 ? sorted[half] : (sorted[half - 1] + sorted[half]) / 2.0;
        const double k = median * 2.0;
        std::vector<double> w(r.size(), 1.0);
        const std::vector<double> before = r;
        const int32_t status = innerCalcRobustWeights(1, n, r.data(), w.data(), 2.0);
        EXPECT_EQ(r, before);
        if (k < 1e-12) {
            EXPECT_EQ(status, 1);
            continue;
        }
        for (size_t i = 0; i < r.size(); ++i) {
            const double u = std::fabs(r[i]) / k;
            EXPECT_EQ(w[i], std::fabs(r[i]) < k ? (1 - u * u) * (1 - u * u) : 0.0);
        }
    }
}

// --- the driver, with a model that records what is asked of it

struct Calls {
    int32_t solves = 0;
    int32_t residuals = 0;
    int32_t failAtSolve = 0;
    int32_t failWith = 0;
    bool swinging = false;  // residuals that reject one half of the points and then the other
    std::vector<std::vector<double>> weights;
};
Calls calls;

int32_t recordSolve(int32_t n, const double* weights, const double*, double* parameters) {
    ++calls.solves;
    calls.weights.emplace_back(weights, weights + n);
    parameters[0] = calls.solves;
    return calls.solves == calls.failAtSolve ? calls.failWith : ZELM_OK;
}

void recordResidual(int32_t n, const double*, const double* parameters, double* residuals) {
    ++calls.residuals;
    EXPECT_EQ(parameters[0], calls.solves);
    for (int32_t i = 0; i < n; ++i) {
        const bool far = calls.swinging ? (i + calls.residuals) % 2 == 0 : i == n - 1;
        residuals[i] = far ? 10.0 : 1.0;
    }
}

class Driver : public ::testing::Test {
protected:
    void SetUp() override {
        calls = Calls();
        std::iota(std::begin(points), std::end(points), 1.0);
    }

    int32_t run(int32_t n, int32_t minPoints, int32_t robust, double threshold) {
        return innerFitRobust(1, minPoints, n, points, robust, &result, &centre, &scale, recordSolve, recordResidual,
                              threshold);
    }

    double points[200];
    double result = -7.0;
    double centre = -7.0;
    double scale = -7.0;
};

TEST_F(Driver, BadArgumentsAreRefusedBeforeAnythingIsDone) {
    const auto call = [&](int32_t dim, int32_t minPoints, int32_t n, const double* p, int32_t robust, double* r,
                          double* c, double* s, zelm::ZelmFitSolveFn solve, zelm::ZelmFitResidualFn residual,
                          double threshold) {
        EXPECT_EQ(innerFitRobust(dim, minPoints, n, p, robust, r, c, s, solve, residual, threshold), ZELM_ERR_PARAM);
    };
    zelmtest::armAllocFault(0);
    call(4, 2, 4, points, 0, &result, &centre, &scale, recordSolve, recordResidual, 1.0);
    call(0, 2, 4, points, 0, &result, &centre, &scale, recordSolve, recordResidual, 1.0);
    call(1, -1, 4, points, 0, &result, &centre, &scale, recordSolve, recordResidual, 1.0);
    call(1, 2, 1, points, 0, &result, &centre, &scale, recordSolve, recordResidual, 1.0);
    call(1, 2, 4, nullptr, 0, &result, &centre, &scale, recordSolve, recordResidual, 1.0);
    call(1, 2, 4, points, 2, &result, &centre, &scale, recordSolve, recordResidual, 1.0);
    call(1, 2, 4, points, -1, &result, &centre, &scale, recordSolve, recordResidual, 1.0);
    call(1, 2, 4, points, 1, &result, &centre, &scale, recordSolve, recordResidual, 0.0);
    call(1, 2, 4, points, 1, &result, &centre, &scale, recordSolve, recordResidual, -1.0);
    call(1, 2, 4, points, 1, &result, &centre, &scale, recordSolve, recordResidual, kNan);
    call(1, 2, 4, points, 0, nullptr, &centre, &scale, recordSolve, recordResidual, 1.0);
    call(1, 2, 4, points, 0, &result, nullptr, &scale, recordSolve, recordResidual, 1.0);
    call(1, 2, 4, points, 0, &result, &centre, nullptr, recordSolve, recordResidual, 1.0);
    call(1, 2, 4, points, 0, &result, &centre, &scale, nullptr, recordResidual, 1.0);
    call(1, 2, 4, points, 0, &result, &centre, &scale, recordSolve, nullptr, 1.0);
    EXPECT_EQ(zelmtest::allocCounters().requests, 0);
    EXPECT_EQ(calls.solves, 0);
    EXPECT_EQ(result, -7.0);
    EXPECT_EQ(centre, -7.0);
    EXPECT_EQ(scale, -7.0);
}

TEST_F(Driver, ThePlainFitSolvesOnceWithWeightsOfOne) {
    EXPECT_EQ(run(8, 2, 0, 0.0), ZELM_OK);
    EXPECT_EQ(calls.solves, 1);
    EXPECT_EQ(calls.residuals, 0);
    EXPECT_EQ(calls.weights[0], std::vector<double>(8, 1.0));
}

TEST_F(Driver, ThePlainFitIgnoresTheThreshold) {
    for (const double threshold : {0.0, -1.0, kNan}) {
        EXPECT_EQ(run(8, 2, 0, threshold), ZELM_OK);
    }
}

TEST_F(Driver, ExactlyTheLeastPointsAreNotReweighted) {
    EXPECT_EQ(run(8, 8, 1, 2.0), ZELM_OK);
    EXPECT_EQ(calls.solves, 1);
    EXPECT_EQ(calls.residuals, 0);
    EXPECT_EQ(run(8, 7, 1, 2.0), ZELM_OK);
    EXPECT_GT(calls.residuals, 0);
}

// Deliberate: the third weights equal the second, so they settle and are not used for another solve.
TEST_F(Driver, WeightsThatSettledAreNotUsedForAnotherSolve) {
    EXPECT_EQ(run(8, 2, 1, 2.0), ZELM_OK);
    EXPECT_EQ(calls.residuals, 2);
    EXPECT_EQ(calls.solves, 2);
    EXPECT_EQ(result, 2.0);
    EXPECT_EQ(calls.weights[1][7], 0.0);
}

TEST_F(Driver, AtMostTwentyReweightedSolvesAndThenSuccess) {
    calls.swinging = true;
    EXPECT_EQ(run(8, 2, 1, 1.0), ZELM_OK);
    EXPECT_EQ(calls.solves, 21);
    EXPECT_EQ(calls.residuals, 20);
    EXPECT_EQ(result, 21.0);
}

TEST_F(Driver, AFailedFirstSolveIsReturnedAndNotReweighted) {
    calls.failAtSolve = 1;
    calls.failWith = ZELM_ERR_EIGEN_NOT_CONVERGED;
    EXPECT_EQ(run(8, 2, 1, 2.0), ZELM_ERR_EIGEN_NOT_CONVERGED);
    EXPECT_EQ(calls.solves, 1);
    EXPECT_EQ(calls.residuals, 0);
}

TEST_F(Driver, AFailedReweightedSolveEndsTheFit) {
    calls.swinging = true;
    calls.failAtSolve = 5;
    calls.failWith = ZELM_ERR_FIT_NOT_ELLIPSE;
    EXPECT_EQ(run(8, 2, 1, 1.0), ZELM_ERR_FIT_NOT_ELLIPSE);
    EXPECT_EQ(calls.solves, 5);
}

TEST_F(Driver, RejectingEveryPointFails) {
    // The residuals are 1 but for one; a threshold of 0.5 puts the cut-off at 0.74.
    EXPECT_EQ(run(8, 2, 1, 0.5), ZELM_ERR_FIT_DATA);
    EXPECT_EQ(calls.solves, 1);
}

TEST_F(Driver, TheResultStaysInTheNormalisedFrame) {
    EXPECT_EQ(run(8, 2, 0, 0.0), ZELM_OK);
    EXPECT_EQ(centre, 4.5);
    EXPECT_DOUBLE_EQ(scale, kSqrt2 / 2.0);
    EXPECT_EQ(result, 1.0);
}

TEST_F(Driver, EveryAllocationMayFail) {
    for (long k = 1; k <= 4; ++k) {  // copy, weights, residuals, and a step's magnitudes
        calls = Calls();
        zelmtest::armAllocFault(k);
        EXPECT_EQ(run(200, 2, 1, 2.0), ZELM_ERR_MEMORY) << k;
        zelmtest::disarmAllocFault();
    }
}

TEST_F(Driver, FewPointsTakeNoMemory) {
    zelmtest::armAllocFault(1);
    EXPECT_EQ(run(128, 2, 1, 2.0), ZELM_OK);
    zelmtest::disarmAllocFault();
    EXPECT_EQ(zelmtest::allocCounters().requests, 0);
}

}  // namespace
