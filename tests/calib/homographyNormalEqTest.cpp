// Normal equations of the homography refinement, against differences and a plain reading of the formulas; the median.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "homographyNormalEq.h"
#include "isClose.h"
#include "random.h"
#include "robustStatistics.h"

namespace {

using zelmtest::isClose;
using zelmtest::Random;

struct Data {
    std::vector<Point2d> src;
    std::vector<Point2d> dst;
    double H[9];

    [[nodiscard]] double e2(std::size_t i, const double* h) const {
        const Point2d& s = src[i];
        const double q2 = h[6] * s.x + h[7] * s.y + h[8];
        const double rx = dst[i].x - (h[0] * s.x + h[1] * s.y + h[2]) / q2;
        const double ry = dst[i].y - (h[3] * s.x + h[4] * s.y + h[5]) / q2;
        return rx * rx + ry * ry;
    }
};

Data randomData(Random& random, std::size_t n) {
    Data data{std::vector<Point2d>(n), std::vector<Point2d>(n), {}};
    for (std::size_t k = 0; k < 9; ++k) {
        data.H[k] = (k % 4 == 0 ? 0.6 : 0.0) + random.uniform(-0.05, 0.05);
    }
    for (std::size_t i = 0; i < n; ++i) {
        data.src[i] = {random.uniform(-1.5, 1.5), random.uniform(-1.5, 1.5)};
        data.dst[i] = {random.uniform(-1.5, 1.5), random.uniform(-1.5, 1.5)};
    }
    return data;
}

double sortedMedian(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t n = values.size();
    return n % 2 == 1 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

struct Equations {
    double N[81];
    double g[9];
    double cost = 0.0;
    int32_t status;

    Equations(const Data& data, double robustK) {
        status = zelm::innerCalcHomographyNormalEq(static_cast<int32_t>(data.src.size()), data.src.data(),
                                                   data.dst.data(), data.H, &cost, N, g, robustK);
    }
};

// Gradients by central differences: rounding / step and step^2 balance near 1e-10.
constexpr double kDifference = 1e-6;
constexpr double kDifferenceError = 1e-7;

void expectPlainReading(const Data& data, double robustK) {
    const std::size_t n = data.src.size();
    std::vector<double> squares(n);
    for (std::size_t i = 0; i < n; ++i) {
        squares[i] = data.e2(i, data.H);
    }
    const double scale = 1.4826 * robustK;
    const double c2 = std::max(1e-10, scale * scale * sortedMedian(squares));
    double N[81] = {};
    double g[9] = {};
    double cost = 0.0;
    double W = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        double w = 1.0;
        if (robustK > 0) {
            w = squares[i] < c2 ? (1 - squares[i] / c2) * (1 - squares[i] / c2) : 0.0;
        }
        double d[9];
        for (std::size_t k = 0; k < 9; ++k) {
            double up[9];
            double down[9];
            std::copy_n(data.H, 9, up);
            std::copy_n(data.H, 9, down);
            up[k] += kDifference;
            down[k] -= kDifference;
            d[k] = (data.e2(i, up) - data.e2(i, down)) / (2 * kDifference);
        }
        for (std::size_t k = 0; k < 9; ++k) {
            for (std::size_t l = 0; l < 9; ++l) {
                N[9 * k + l] += w * d[k] * d[l];
            }
            g[k] -= w * std::sqrt(squares[i]) * d[k];
        }
        cost += w * squares[i];
        W += w;
    }
    const Equations actual(data, robustK);
    ASSERT_EQ(actual.status, ZELM_OK);
    EXPECT_TRUE(isClose(actual.cost, cost / W, 1e-14));
    for (std::size_t k = 0; k < 81; ++k) {
        EXPECT_TRUE(isClose(actual.N[k], N[k], kDifferenceError)) << k;
    }
    for (std::size_t k = 0; k < 9; ++k) {
        EXPECT_TRUE(isClose(actual.g[k], g[k], kDifferenceError)) << k;
    }
}

TEST(HomographyNormalEq, AgreeWithDifferencesOfTheSquaredDistances) {
    Random random(41);
    for (int trial = 0; trial < 50; ++trial) {
        const Data data = randomData(random, static_cast<std::size_t>(random.integer(4, 30)));
        expectPlainReading(data, -1.0);
        expectPlainReading(data, 1.0);
        expectPlainReading(data, 3.5);
    }
}

TEST(HomographyNormalEq, MatrixIsSymmetricToTheBit) {
    Random random(42);
    const Equations equations(randomData(random, 20), 2.0);
    for (std::size_t i = 0; i < 9; ++i) {
        for (std::size_t j = 0; j < 9; ++j) {
            EXPECT_TRUE(zelmtest::hasSameBits(equations.N[9 * i + j], equations.N[9 * j + i]));
        }
    }
}

TEST(HomographyNormalEq, ExactPairsKeepTheirWeightByTheLeastCutOff) {
    Data data{{{-1, -1}, {1, -1}, {1, 1}, {-1, 1}, {0, 0}}, {}, {1, 0, 0, 0, 1, 0, 0, 0, 1}};
    data.dst = data.src;
    data.dst[4].x = 0.9e-5;  // inside the least cut-off, the root of 1e-10
    const double u = 1 - 0.81;
    const double w = u * u;
    const Equations inside(data, 3.5);
    EXPECT_TRUE(isClose(inside.cost * 1e10, w * 0.81 / (4 + w), 1e-10));
    data.dst[4].x = 1.1e-5;  // outside
    const Equations outside(data, 3.5);
    EXPECT_EQ(outside.cost, 0.0);
}

TEST(HomographyNormalEq, WeightsThatAreAllZeroLeaveACostThatIsNotFinite) {
    Data data{{{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}, {}, {1, 0, 0, 0, 1, 0, 0, 0, 1}};
    data.dst = {{-1, 0}, {1, 0}, {1, 2}, {-1, 2}};
    // Every squared distance is 1; the cut-off is (1.4826 * 0.5)^2 < 1.
    const Equations equations(data, 0.5);
    EXPECT_EQ(equations.status, ZELM_OK);
    EXPECT_FALSE(std::isfinite(equations.cost));
}

TEST(Median, IsTheMiddleOrTheMeanOfTheTwoMiddleOnes) {
    Random random(43);
    for (int trial = 0; trial < 2000; ++trial) {
        std::vector<double> values(static_cast<std::size_t>(random.integer(1, 12)));
        for (double& value : values) {
            value = random.integer(0, 5);
        }
        const double expected = sortedMedian(values);
        EXPECT_EQ(zelm::innerMedian(static_cast<int32_t>(values.size()), values.data()), expected);
    }
}

TEST(Median, ValuesThatAreNotNumbersCountAsLargest) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    double values[] = {nan, 3, nan, 1, 2};
    EXPECT_EQ(zelm::innerMedian(5, values), 3.0);
    double half[] = {nan, 3, nan, 1};
    EXPECT_TRUE(std::isnan(zelm::innerMedian(4, half)));
}

}  // namespace
