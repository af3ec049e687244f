// Tails of distributions, against closed forms and tabulated values.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "significance.h"

namespace zelm::measure {
namespace {

// Series and fractions are summed until they stop changing; logarithms of gamma functions lose a digit or two.
constexpr double kRounding = 1e-12;

TEST(Significance, ChiSquareOfTwoFreedomsIsExponential) {
    for (const double x : {0.01, 1.0, 5.0, 30.0, 400.0}) {
        EXPECT_NEAR(chiSquareTail(x, 2.0) / std::exp(-0.5 * x), 1.0, kRounding) << x;
    }
}

TEST(Significance, ChiSquareOfOneFreedomIsTheNormalTail) {
    for (const double z : {0.1, 1.0, 1.96, 4.0, 10.0}) {
        EXPECT_NEAR(chiSquareTail(z * z, 1.0) / std::erfc(z / std::sqrt(2.0)), 1.0, kRounding) << z;
    }
}

TEST(Significance, ChiSquareOfEvenFreedomsIsASumOfPoisson) {
    for (const double x : {0.5, 6.0, 12.0, 60.0}) {
        const double h = 0.5 * x;
        EXPECT_NEAR(chiSquareTail(x, 6.0) / (std::exp(-h) * (1.0 + h + 0.5 * h * h)), 1.0, kRounding) << x;
    }
}

TEST(Significance, FisherOfTwoAboveIsAPower) {
    for (const double below : {3.0, 10.0, 195.0}) {
        for (const double x : {0.1, 1.0, 8.0, 40.0}) {
            const double power = std::pow(1.0 + 2.0 * x / below, -0.5 * below);
            EXPECT_NEAR(fisherTail(x, 2.0, below) / power, 1.0, 10.0 * kRounding) << below << ' ' << x;
        }
    }
}

TEST(Significance, FisherOfOneAndOneIsCauchys) {
    for (const double t : {0.2, 1.0, 7.0}) {
        EXPECT_NEAR(fisherTail(t * t, 1.0, 1.0), 1.0 - 2.0 * std::atan(t) / std::acos(-1.0), kRounding) << t;
    }
}

TEST(Significance, ManyFreedomsBelowAreAKnownVariance) {
    // F tends to chi-square over its freedoms; a million are off by some parts in a million of the exponent.
    EXPECT_NEAR(squaresTail(30.0, 5.0, 1e6) / squaresTail(30.0, 5.0, 0.0), 1.0, 1e-3);
}

TEST(Significance, SquareOfTailIsTheInverse) {
    for (const double freedom : {0.0, 15.0, 500.0}) {
        for (const double tail : {0.5, 1e-4, 1e-9}) {
            EXPECT_NEAR(squaresTail(squareOfTail(tail, freedom), 1.0, freedom) / tail, 1.0, 1e-9);
        }
    }
}

TEST(Significance, ExtremesAreProbabilities) {
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    for (const double freedom : {0.0, 10.0}) {
        EXPECT_EQ(squaresTail(0.0, 5.0, freedom), 1.0);
        EXPECT_EQ(squaresTail(-1.0, 5.0, freedom), 1.0);
        EXPECT_EQ(squaresTail(kNone, 5.0, freedom), 1.0);
        EXPECT_EQ(squaresTail(kInfinite, 5.0, freedom), 0.0);
        EXPECT_LE(squaresTail(1e300, 5.0, freedom), 1e-100);
    }
}

}  // namespace
}  // namespace zelm::measure
