// Mean, variance and deviation of a sample.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

#include "isClose.h"
#include "random.h"
#include "zelm/math.h"

namespace {

constexpr double kGuard = 7.25;

struct Statistics {
    double mean = kGuard;
    double variance = kGuard;
    double deviation = kGuard;
    int32_t status;

    Statistics(int32_t n, const double* data) { status = zelmMathStat(n, data, &mean, &variance, &deviation); }
};

TEST(MathStat, VarianceIsDividedByTheCountNotByOneLess) {
    const std::array<double, 2> data = {1, 3};
    const Statistics s(2, data.data());
    EXPECT_EQ(s.status, ZELM_OK);
    EXPECT_EQ(s.mean, 2.0);
    EXPECT_EQ(s.variance, 1.0);
    EXPECT_EQ(s.deviation, 1.0);
}

TEST(MathStat, FewerThanTwoValuesAreDegenerateAndNothingIsWritten) {
    const double one = 5.0;
    for (const int32_t n : {1, 0, -3}) {
        const Statistics s(n, &one);
        EXPECT_EQ(s.status, ZELM_ERR_DEGENERATE);
        EXPECT_EQ(s.mean, kGuard);
        EXPECT_EQ(s.variance, kGuard);
        EXPECT_EQ(s.deviation, kGuard);
    }
}

TEST(MathStat, EqualValuesHaveNoSpread) {
    const std::vector<double> data(64, 0.125);
    const Statistics s(64, data.data());
    EXPECT_EQ(s.mean, 0.125);
    EXPECT_EQ(s.deviation, 0.0);
}

TEST(MathStat, TwoPassesKeepTheSpreadOfAFarAwaySample) {
    zelmtest::Random random(111);
    std::vector<double> data(1000);
    for (double& value : data) {
        value = 1e9 + random.integer(0, 1) * 2.0;  // exactly 0 or 2 above 1e9
    }
    double ones = 0.0;
    for (const double value : data) {
        ones += value > 1e9 ? 1.0 : 0.0;
    }
    const double share = ones / 1000.0;
    const Statistics s(1000, data.data());
    EXPECT_TRUE(zelmtest::isClose(s.variance, 4.0 * share * (1.0 - share), 1e-6));  // the mean rounds at 1e-7
    EXPECT_EQ(s.deviation, std::sqrt(s.variance));
}

TEST(MathStat, SumsRunInOrder) {
    const std::array<double, 3> data = {1e16, 1, -1e16};
    EXPECT_EQ(Statistics(3, data.data()).mean, 0.0);
}

}  // namespace
