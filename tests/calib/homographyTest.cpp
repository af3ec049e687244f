// The homography between two planes: statuses and counts, exact and noisy data, outliers, degenerate points.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "cameraScene.h"
#include "isClose.h"
#include "random.h"
#include "zelm/calib.h"

namespace {

using zelmtest::isClose;
using zelmtest::Random;

constexpr double kGuard = 7.25;
constexpr double kPi = std::numbers::pi;
// Exact data in and out: a few hundred roundings of coordinates up to 1e3 pixels.
constexpr double kExactPixels = 1e-8;

using Points = std::vector<Point2d>;

struct Homography {
    double H[9];

    [[nodiscard]] Point2d map(const Point2d& p) const {
        const double w = H[6] * p.x + H[7] * p.y + H[8];
        return {(H[0] * p.x + H[1] * p.y + H[2]) / w, (H[3] * p.x + H[4] * p.y + H[5]) / w};
    }
    [[nodiscard]] Points map(const Points& points) const {
        Points mapped(points.size());
        std::transform(points.begin(), points.end(), mapped.begin(), [this](const Point2d& p) { return map(p); });
        return mapped;
    }
};

Points plate() {
    return zelmtest::plateDots(10, 10, false);
}

// Four points, each within its own quarter of the plate: no three near a line.
Points quadruple(Random& random) {
    return {{random.uniform(0, 40), random.uniform(0, 30)},
            {random.uniform(80, 120), random.uniform(0, 30)},
            {random.uniform(80, 120), random.uniform(70, 100)},
            {random.uniform(0, 40), random.uniform(70, 100)}};
}

// The view of a plate by a camera of some 6 pixels a unit, at any roll; depth changes by up to a third over the plate.
Homography randomView(Random& random) {
    const double roll = random.uniform(0, 2 * kPi);
    const double s = random.uniform(3, 8);
    const double px = random.uniform(-1e-3, 1e-3);
    const double py = random.uniform(-1e-3, 1e-3);
    const double cx = random.uniform(300, 900);
    const double cy = random.uniform(300, 700);
    return {{s * std::cos(roll) + cx * px, -s * std::sin(roll) + cx * py, cx,  //
             s * std::sin(roll) + cy * px, s * std::cos(roll) + cy * py, cy,   //
             px, py, 1}};
}

Points noisy(const Points& points, double sigma, Random& random) {
    Points result = points;
    for (Point2d& p : result) {
        p.x += sigma * random.normal();
        p.y += sigma * random.normal();
    }
    return result;
}

double sumOfSquares(const Points& a, const Points& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += (a[i].x - b[i].x) * (a[i].x - b[i].x) + (a[i].y - b[i].y) * (a[i].y - b[i].y);
    }
    return sum;
}

double largestDistance(const Points& a, const Points& b) {
    double largest = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        largest = std::fmax(largest, std::hypot(a[i].x - b[i].x, a[i].y - b[i].y));
    }
    return largest;
}

int32_t estimate(const Points& src, const Points& dst, double robustK, Homography* result) {
    return zelmCalibCalcHomography(static_cast<int32_t>(src.size()), src.data(), dst.data(), robustK, result->H);
}

TEST(CalibCalcHomography, BadArgumentsAreRefusedAndNothingIsWritten) {
    const Points points = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    double H[9];
    std::fill_n(H, 9, kGuard);
    for (const int32_t n : {3, 0, -1, std::numeric_limits<int32_t>::min()}) {
        EXPECT_EQ(zelmCalibCalcHomography(n, points.data(), points.data(), -1, H), ZELM_ERR_PARAM) << n;
    }
    EXPECT_EQ(zelmCalibCalcHomography(4, nullptr, points.data(), -1, H), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibCalcHomography(4, points.data(), nullptr, -1, H), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibCalcHomography(4, points.data(), points.data(), -1, nullptr), ZELM_ERR_PARAM);
    EXPECT_TRUE(std::all_of(H, H + 9, [](double entry) { return entry == kGuard; }));
}

TEST(CalibCalcHomography, SourceEqualToDestinationIsTheIdentityWithTheLeastCount) {
    for (const double robustK : {-1.0, 0.0, 3.5}) {
        Homography result;
        const Points grid = plate();
        EXPECT_EQ(estimate(grid, grid, robustK, &result), 2);
        for (std::size_t i = 0; i < 9; ++i) {
            EXPECT_TRUE(isClose(result.H[i], i % 4 == 0 ? 1.0 : 0.0, 1e-11)) << i;
        }
    }
}

// Exact up to rounding: whatever is left of the normal equations, the answer is success.
TEST(CalibCalcHomography, PerfectDataAlwaysSucceed) {
    Random random(51);
    int leastCounts = 0;
    int runs = 0;
    for (int trial = 0; trial < 3000; ++trial) {
        const Homography truth = randomView(random);
        const Points src = trial % 3 == 0 ? plate() : quadruple(random);
        const Points dst = truth.map(src);
        for (const double robustK : {-1.0, 3.5}) {
            Homography result;
            const int32_t count = estimate(src, dst, robustK, &result);
            ASSERT_GE(count, 2) << trial;
            ASSERT_LE(count, 30) << trial;
            EXPECT_LE(largestDistance(result.map(src), dst), kExactPixels) << trial;
            leastCounts += count == 2 ? 1 : 0;
            ++runs;
        }
    }
    EXPECT_GE(leastCounts, runs * 8 / 10);  // the refinement has nothing to do, bar unlucky roundings
}

// A shift of either plane by 10^4 times its extent leaves the pairs exact to 10^-12 of it only.
TEST(CalibCalcHomography, PerfectDataFarFromTheOriginSucceed) {
    Random random(52);
    for (int trial = 0; trial < 1000; ++trial) {
        const Homography truth = randomView(random);
        Points src = trial % 2 == 0 ? plate() : quadruple(random);
        Points dst = truth.map(src);
        const double shift = trial % 4 < 2 ? 1e5 : 1e6;
        for (std::size_t i = 0; i < src.size(); ++i) {
            src[i].x += shift;
            dst[i].y -= shift;
        }
        for (const double robustK : {-1.0, 3.5}) {
            Homography result;
            ASSERT_GE(estimate(src, dst, robustK, &result), 2) << trial;
            // The shift enters H times 1e6 again: 1e-16 * 1e6 * 1e6 / 1e2 pixels.
            EXPECT_LE(largestDistance(result.map(src), dst), 1e-4) << trial;
        }
    }
}

TEST(CalibCalcHomography, PerfectDataAtAnyScaleSucceed) {
    Random random(53);
    for (const double scale : {1e-100, 1e-12, 1e-3, 1e6, 1e12, 1e100}) {
        const Homography truth = randomView(random);
        Points src = plate();
        Points dst = truth.map(src);
        for (std::size_t i = 0; i < src.size(); ++i) {
            src[i] = {src[i].x * scale, src[i].y * scale};
            dst[i] = {dst[i].x / scale, dst[i].y / scale};
        }
        Homography result;
        ASSERT_GE(estimate(src, dst, -1, &result), 2) << scale;
        EXPECT_LE(largestDistance(result.map(src), dst) * scale, kExactPixels) << scale;
    }
}

TEST(CalibCalcHomography, NegativeAndZeroConstantsSwitchTheWeightsOffAlike) {
    Random random(54);
    const Points src = plate();
    const Points dst = noisy(randomView(random).map(src), 0.3, random);
    Homography negative;
    Homography zero;
    const int32_t count = estimate(src, dst, -1.0, &negative);
    EXPECT_EQ(estimate(src, dst, 0.0, &zero), count);
    EXPECT_TRUE(std::equal(negative.H, negative.H + 9, zero.H));
}

TEST(CalibCalcHomography, LastEntryIsOneUnlessItVanishes) {
    Random random(55);
    const Points src = plate();
    Homography result;
    ASSERT_GE(estimate(src, noisy(randomView(random).map(src), 0.1, random), -1, &result), 2);
    EXPECT_EQ(result.H[8], 1.0);
    // (x, y) -> (1 / x, y / x): H22 = 0. Rounding leaves less than the threshold, and the matrix stays unscaled.
    const Homography reciprocal = {{0, 0, 1, 0, 1, 0, 1, 0, 0}};
    const Points away = {{1, -1}, {2, -1}, {2, 1}, {1, 1}, {1.5, 0.3}, {1.2, -0.4}};
    ASSERT_GE(estimate(away, reciprocal.map(away), -1, &result), 2);
    EXPECT_LE(std::fabs(result.H[8]), 1e-9);
    EXPECT_LE(largestDistance(result.map(away), reciprocal.map(away)), 1e-12);
}

// What a least-squares fit of 8 parameters attains: a mean of 8 sigma^2 for the squared errors of the mapped dots. 3000
// trials leave that mean uncertain by sqrt(2 / (8 * 3000)) = 0.9 %; 1.05 is the promise plus a margin of three of them.
TEST(CalibCalcHomography, NoiseSpreadsTheEstimateByNoMoreThanTheCramerRaoBoundAllows) {
    Random random(56);
    const Points src = plate();
    for (const double sigma : {0.05, 1.0}) {
        double sum = 0.0;
        const int trials = 3000;
        for (int trial = 0; trial < trials; ++trial) {
            const Points truth = randomView(random).map(src);
            Homography result;
            ASSERT_GE(estimate(src, noisy(truth, sigma, random), -1, &result), 2) << trial;
            sum += sumOfSquares(result.map(src), truth);
        }
        const double ratio = sum / trials / (8 * sigma * sigma);
        EXPECT_LE(ratio, 1.05) << sigma;
        EXPECT_GE(ratio, 0.95) << sigma;
    }
}

TEST(CalibCalcHomography, RefinedEstimateFitsTheNoisyPairsNoWorseThanTheTruthDoes) {
    Random random(57);
    const Points src = plate();
    for (int trial = 0; trial < 200; ++trial) {
        const Points truth = randomView(random).map(src);
        const Points dst = noisy(truth, 0.5, random);
        Homography result;
        ASSERT_GE(estimate(src, dst, -1, &result), 2);
        // Eight parameters take up 8 of the 286 squares of noise that the truth leaves.
        EXPECT_LE(sumOfSquares(result.map(src), dst), sumOfSquares(truth, dst)) << trial;
    }
}

TEST(CalibCalcHomography, WeightsRejectOutliers) {
    Random random(58);
    const Points src = plate();
    const double sigma = 0.05;
    double plain = 0.0;
    double robust = 0.0;
    const int trials = 200;
    for (int trial = 0; trial < trials; ++trial) {
        const Points truth = randomView(random).map(src);
        Points dst = noisy(truth, sigma, random);
        for (int k = 0; k < 7; ++k) {  // 5 %
            Point2d& p = dst[static_cast<std::size_t>(random.integer(0, 142))];
            const double angle = random.uniform(0, 2 * kPi);
            const double distance = random.uniform(2, 10);
            p = {p.x + distance * std::cos(angle), p.y + distance * std::sin(angle)};
        }
        Homography result;
        ASSERT_GE(estimate(src, dst, -1, &result), 0);
        plain += sumOfSquares(result.map(src), truth);
        ASSERT_GE(estimate(src, dst, 3.5, &result), 0) << trial;
        robust += sumOfSquares(result.map(src), truth);
    }
    RecordProperty("plainOverRobust", std::to_string(plain / robust));
    EXPECT_LE(robust, plain / 2);
}

// Every homography of a family maps them alike, also where the pairs fit exactly.
TEST(CalibCalcHomography, PointsOnALineAreRefused) {
    Random random(59);
    for (int trial = 0; trial < 300; ++trial) {
        const double angle = random.uniform(0, kPi);
        Points src;
        for (int i = 0; i < 4 + trial % 20; ++i) {
            const double along = random.uniform(-60, 60);
            src.push_back({50 + along * std::cos(angle), 50 + along * std::sin(angle)});
        }
        const Points exact = randomView(random).map(src);
        for (const double robustK : {-1.0, 3.5}) {
            Homography result;
            std::fill_n(result.H, 9, kGuard);
            EXPECT_EQ(estimate(src, exact, robustK, &result), ZELM_ERR_CALIB_NOT_CONVERGED) << trial;
            EXPECT_EQ(estimate(src, noisy(exact, 0.1, random), robustK, &result), ZELM_ERR_CALIB_NOT_CONVERGED)
                << trial;
            EXPECT_EQ(result.H[0], kGuard);
        }
    }
}

TEST(CalibCalcHomography, ThreeOfFourPairsOnALineAreRefused) {
    const Points src = {{0, 0}, {1, 1}, {3, 3}, {0, 5}};
    Homography result;
    EXPECT_EQ(estimate(src, src, -1, &result), ZELM_ERR_CALIB_NOT_CONVERGED);
}

// A strip of dots: its width over its length sets the second least eigenvalue, which goes with the square.
TEST(CalibCalcHomography, NarrowStripsAreEstimatedDownToAMillionthAndRefusedBelowAHundredMillionth) {
    for (const double width : {1e-1, 1e-2, 1e-3, 1e-4, 1e-5, 1e-6, 1e-8, 1e-9, 1e-12, 0.0}) {
        Points src;
        for (int i = 0; i < 13; ++i) {
            src.push_back({10.0 * i, 0});
            src.push_back({10.0 * i + 5, 120 * width});
        }
        Homography result;
        const int32_t count = estimate(src, src, -1, &result);
        if (width >= 1e-6) {
            EXPECT_GE(count, 2) << width;
        } else {
            EXPECT_EQ(count, ZELM_ERR_CALIB_NOT_CONVERGED) << width;
        }
    }
}

TEST(CalibCalcHomography, IdenticalPointsEndInFailure) {
    const Points same(6, Point2d{3, 4});
    const Points spread = {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0.3, 0.6}, {0.8, 0.1}};
    Homography result;
    for (const double robustK : {-1.0, 3.5}) {
        EXPECT_LT(estimate(same, same, robustK, &result), 0);
        EXPECT_LT(estimate(same, spread, robustK, &result), 0);
        EXPECT_LT(estimate(spread, same, robustK, &result), 0);
    }
}

TEST(CalibCalcHomography, PointsThatAreNotFiniteEndInFailure) {
    const Points good = {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0.3, 0.6}, {0.8, 0.1}};
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e308}) {
        for (std::size_t i = 0; i < good.size(); ++i) {
            Points broken = good;
            broken[i].x = bad;
            Homography result;
            for (const double robustK : {-1.0, 3.5}) {
                EXPECT_LT(estimate(broken, good, robustK, &result), 0);
                EXPECT_LT(estimate(good, broken, robustK, &result), 0);
            }
        }
    }
}

// A count is the steps plus one. One pass of the test of the parameters needs every change below its limit; the damping
// grows tenfold with each refused step, so that it cannot take less than about seven of them from 0.001.
TEST(CalibCalcHomography, NoisyDataReportTheStepsTaken) {
    Random random(60);
    const Points src = plate();
    for (int trial = 0; trial < 200; ++trial) {
        Homography result;
        const int32_t count = estimate(src, noisy(randomView(random).map(src), 0.05, random), -1, &result);
        EXPECT_GE(count, 3);
        EXPECT_LE(count, 101);
    }
}

}  // namespace
