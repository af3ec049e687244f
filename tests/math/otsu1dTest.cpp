// Otsu's threshold of a list of values, against the variance between the classes of every split.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "isClose.h"
#include "random.h"
#include "zelm/mathCorrelation.h"

namespace {

using zelmtest::Random;
using Values = std::vector<double>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kGuard = 7.25;

double thresholdOf(const Values& values) {
    double threshold = kGuard;
    EXPECT_EQ(zelmMathOtsuThreshold1d(static_cast<std::int32_t>(values.size()), values.data(), &threshold), ZELM_OK);
    return threshold;
}

// The variance between two classes of the sorted values, the lower one of the first count: the textbook form, w0 w1
// (mean1 - mean0)^2 of the classes' shares and means.
long double varianceBetween(const Values& sorted, std::size_t count) {
    long double lower = 0.0L;
    long double upper = 0.0L;
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        (i < count ? lower : upper) += sorted[i];
    }
    const auto n = static_cast<long double>(sorted.size());
    const auto w = static_cast<long double>(count);
    const long double difference = upper / (n - w) - lower / w;
    return w / n * ((n - w) / n) * difference * difference;
}

TEST(OtsuThreshold1d, IsHalfwayAcrossTheSplit) {
    EXPECT_EQ(thresholdOf({1, 2, 10, 11}), 6.0);
    EXPECT_EQ(thresholdOf({10, 1, 11, 2}), 6.0) << "in any order";
}

TEST(OtsuThreshold1d, DoesNotDependOnTheUnit) {
    for (const double unit : {1e-60, 1e-6, 1e60}) {
        EXPECT_NEAR(thresholdOf({1 * unit, 2 * unit, 10 * unit, 11 * unit}) / unit, 6.0, 1e-14);
    }
}

TEST(OtsuThreshold1d, ASingleValueIsItsOwnThreshold) {
    EXPECT_EQ(thresholdOf({42.5}), 42.5);
}

TEST(OtsuThreshold1d, OfTwoValuesTheMean) {
    EXPECT_EQ(thresholdOf({7, 3}), 5.0);
}

TEST(OtsuThreshold1d, OfEqualSplitsTheLowestWins) {
    EXPECT_EQ(thresholdOf({0, 1, 2}), 0.5);  // both splits have the same variance, and exact scores
    EXPECT_EQ(thresholdOf({4, 4, 4, 4}), 4.0);
}

TEST(OtsuThreshold1d, BadArgumentsAreDegenerate) {
    const Values values = {1, 2};
    double threshold = kGuard;
    EXPECT_EQ(zelmMathOtsuThreshold1d(0, values.data(), &threshold), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmMathOtsuThreshold1d(-1, values.data(), &threshold), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmMathOtsuThreshold1d(2, nullptr, &threshold), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmMathOtsuThreshold1d(2, values.data(), nullptr), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(threshold, kGuard);
}

TEST(OtsuThreshold1d, TheDataStayInTheirOrder) {
    const Values values = {3, 1, 2};
    Values copy = values;
    thresholdOf(copy);
    EXPECT_EQ(copy, values);
}

TEST(OtsuThreshold1d, ValuesThatAreNotNumbersGiveNone) {
    EXPECT_TRUE(std::isnan(thresholdOf({1, kNan, 3})));
    EXPECT_TRUE(std::isnan(thresholdOf({kNan})));
    Values many(1000, kNan);  // a sort that is not told about them may leave the array
    for (std::size_t i = 0; i < many.size(); i += 2) {
        many[i] = static_cast<double>(i % 37);
    }
    EXPECT_TRUE(std::isnan(thresholdOf(many)));
}

TEST(OtsuThreshold1d, InfiniteValuesEndWithoutHarm) {
    EXPECT_EQ(thresholdOf({1, 2, kInf}), 1.5) << "no finite score: the lowest split";
    EXPECT_EQ(thresholdOf({1, 2, -kInf}), -kInf);
}

// The chosen split has the greatest variance of all, up to the rounding of the scores: 1e-13 of the greatest for some
// ten operations and a mean that cancels against sums of up to 60 values.
TEST(OtsuThreshold1d, NoSplitHasAGreaterVariance) {
    Random random(341);
    for (int trial = 0; trial < 3000; ++trial) {
        Values values(static_cast<std::size_t>(random.integer(2, 60)));
        const double gap = random.uniform(0.0, 8.0);
        for (double& value : values) {
            value = random.normal() + (random.uniform() < 0.4 ? gap : 0.0);
        }
        const double threshold = thresholdOf(values);
        std::sort(values.begin(), values.end());
        const auto count = static_cast<std::size_t>(
            std::count_if(values.begin(), values.end(), [&](double value) { return value < threshold; }));
        ASSERT_GE(count, 1U);
        ASSERT_LT(count, values.size());
        ASSERT_EQ(threshold, (values[count - 1] + values[count]) * 0.5);
        const long double chosen = varianceBetween(values, count);
        for (std::size_t split = 1; split < values.size(); ++split) {
            ASSERT_LE(varianceBetween(values, split), chosen * (1.0L + 1e-13L)) << trial;
        }
    }
}

}  // namespace
