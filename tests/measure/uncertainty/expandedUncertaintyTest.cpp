// Coverage factors against the tables of Student's distribution.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "expandedUncertainty.h"

namespace zelmtest {
namespace {

using namespace zelm::measure;

TEST(ExpandedUncertainty, FactorsAreThoseOfTheTables) {
    const struct {
        double freedom;
        double factor;
    } table[] = {{1.0, 12.706205}, {2.0, 4.302653},   {3.0, 3.182446},    {4.0, 2.776445},
                 {5.0, 2.570582},  {6.0, 2.446912},   {7.0, 2.364624},    {8.0, 2.306004},
                 {10.0, 2.228139}, {15.0, 2.131450},  {20.0, 2.085963},   {30.0, 2.042272},
                 {60.0, 2.000298}, {120.0, 1.979930}, {1000.0, 1.962339}, {5000.0, 1.960439}};
    for (const auto& row : table) {
        // Six decimals of the tables; the expansion promises six digits from five degrees on, four below.
        EXPECT_NEAR(coverageFactor(row.freedom), row.factor, row.freedom < 5.0 ? 3e-4 : 3e-6) << row.freedom;
    }
    for (const double known : {0.0, -1.0, 1e12, std::numeric_limits<double>::infinity(), std::nan("")}) {
        EXPECT_NEAR(coverageFactor(known), 1.959964, 1e-6) << known;
    }
}

TEST(ExpandedUncertainty, FactorsFallWithFreedomAndRoundItDown) {
    double before = std::numeric_limits<double>::infinity();
    for (int n = 1; n < 3000; ++n) {
        const double factor = coverageFactor(n);
        EXPECT_LT(factor, before) << n;
        EXPECT_EQ(coverageFactor(n + 0.99), factor) << n;
        before = factor;
    }
    EXPECT_EQ(coverageFactor(0.3), coverageFactor(1.0));
}

TEST(ExpandedUncertainty, EffectiveFreedom) {
    // u^4 / (u1^4 / v1 + u2^4 / v2).
    EXPECT_DOUBLE_EQ(effectiveFreedom({4.0, 10.0}, {4.0, 10.0}), 20.0);
    EXPECT_DOUBLE_EQ(effectiveFreedom({1.0, 5.0}, {3.0, 0.0}), 80.0);
    EXPECT_DOUBLE_EQ(effectiveFreedom({3.0, 0.0}, {1.0, 5.0}), 80.0);
    EXPECT_DOUBLE_EQ(effectiveFreedom({2.0, 7.0}, {0.0, 3.0}), 7.0);
    EXPECT_EQ(effectiveFreedom({2.0, 0.0}, {3.0, 0.0}), 0.0);
    EXPECT_EQ(effectiveFreedom({0.0, 4.0}, {0.0, 4.0}), 0.0);
}

}  // namespace
}  // namespace zelmtest
