// Products, norms, normalisation and angles of vectors.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "isClose.h"
#include "random.h"
#include "zelm/math.h"

namespace {

using zelmtest::hasSameBits;
using zelmtest::isClose;
using zelmtest::Random;

constexpr double kGuard = 7.25;
constexpr double kPi = std::numbers::pi;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kFewRoundings = 4e-15;

TEST(MathVectors, InnerProductIsSummedInOrder) {
    const std::array<double, 3> u = {1e16, 1, -1e16};
    const std::array<double, 3> ones = {1, 1, 1};
    EXPECT_EQ(zelmMathCalcInnerProduct(3, u.data(), ones.data()), 0.0) << "1e16 + 1 rounds to 1e16 first";
    Random random(101);
    for (int trial = 0; trial < 200; ++trial) {
        std::vector<double> a(static_cast<std::size_t>(random.integer(1, 30)));
        std::vector<double> b(a.size());
        double expected = 0.0;
        for (std::size_t i = 0; i < a.size(); ++i) {
            a[i] = random.normal() * std::pow(10.0, random.integer(-8, 8));
            b[i] = random.normal();
            expected += a[i] * b[i];
        }
        EXPECT_TRUE(
            hasSameBits(zelmMathCalcInnerProduct(static_cast<int32_t>(a.size()), a.data(), b.data()), expected));
    }
}

TEST(MathVectors, ProductsAndNormsOfNothingAreZero) {
    for (const int32_t none : {0, -1}) {
        EXPECT_EQ(zelmMathCalcInnerProduct(none, nullptr, nullptr), 0.0);
        EXPECT_EQ(zelmMathCalcNorm(none, nullptr), 0.0);
    }
}

TEST(MathVectors, OuterProductOfTheAxesIsRightHanded) {
    const std::array<double, 3> x = {1, 0, 0};
    const std::array<double, 3> y = {0, 1, 0};
    std::array<double, 3> z{};
    zelmMathCalcOuterProduct(x.data(), y.data(), z.data());
    EXPECT_EQ(z, (std::array<double, 3>{0, 0, 1}));
}

TEST(MathVectors, OuterProductKnownValuesAndInPlace) {
    std::array<double, 3> u = {1, 2, 3};
    const std::array<double, 3> v = {4, 5, 6};
    zelmMathCalcOuterProduct(u.data(), v.data(), u.data());
    EXPECT_EQ(u, (std::array<double, 3>{-3, 6, -3}));
}

TEST(MathVectors, OuterProductIsOrthogonalToBothAndAsLongAsTheirParallelogram) {
    Random random(102);
    for (int trial = 0; trial < 300; ++trial) {
        std::array<double, 3> u{};
        std::array<double, 3> v{};
        std::array<double, 3> w{};
        for (std::size_t i = 0; i < 3; ++i) {
            u[i] = random.normal();
            v[i] = random.normal();
        }
        zelmMathCalcOuterProduct(u.data(), v.data(), w.data());
        EXPECT_NEAR(zelmMathCalcInnerProduct(3, u.data(), w.data()), 0.0, 1e-14);
        EXPECT_NEAR(zelmMathCalcInnerProduct(3, v.data(), w.data()), 0.0, 1e-14);
        const double uu = zelmMathCalcInnerProduct(3, u.data(), u.data());
        const double vv = zelmMathCalcInnerProduct(3, v.data(), v.data());
        const double uv = zelmMathCalcInnerProduct(3, u.data(), v.data());
        EXPECT_NEAR(zelmMathCalcInnerProduct(3, w.data(), w.data()), uu * vv - uv * uv, 1e-13 * (1.0 + uu * vv));
    }
}

TEST(MathVectors, NormOfAPythagoreanTriple) {
    const std::array<double, 3> v = {2, -3, 6};
    EXPECT_EQ(zelmMathCalcNorm(3, v.data()), 7.0);
    EXPECT_EQ(zelmMathCalcNorm(1, v.data()), 2.0);
}

TEST(MathVectors, ArgumentCoversAllQuadrants) {
    const auto argument = [](double x, double y) {
        const Point2d p = {x, y};
        return zelmMathCalcArgument(&p);
    };
    EXPECT_EQ(argument(1, 0), 0.0);
    EXPECT_EQ(argument(0, 2), kPi / 2);
    EXPECT_EQ(argument(-3, 0), kPi);
    EXPECT_EQ(argument(0, -1), -kPi / 2);
    EXPECT_EQ(argument(-1, -1), -3 * kPi / 4);
    EXPECT_EQ(argument(0, 0), 0.0);
}

TEST(MathVectors, NormalizationGivesUnitLengthAndKeepsTheDirection) {
    std::array<double, 2> v = {3, -4};
    EXPECT_EQ(zelmMathNormalization(2, v.data()), ZELM_OK);
    EXPECT_EQ(v, (std::array<double, 2>{3.0 / 5.0, -4.0 / 5.0}));
}

TEST(MathVectors, NormalizationRefusesShortAndNonFiniteVectorsUnchanged) {
    for (const double x : {0.0, 1e-9, -1e-9, kInfinity, kNan, 1e200}) {
        std::array<double, 1> v = {x};
        EXPECT_EQ(zelmMathNormalization(1, v.data()), ZELM_ERR_DEGENERATE) << x;
        EXPECT_TRUE(hasSameBits(v[0], x));
    }
    double guard = kGuard;
    EXPECT_EQ(zelmMathNormalization(0, &guard), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmMathNormalization(-5, &guard), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(guard, kGuard);
    double justLong = 1.0000001e-9;
    EXPECT_EQ(zelmMathNormalization(1, &justLong), ZELM_OK);
    EXPECT_EQ(justLong, 1.0);
}

TEST(MathVectors, AngleOfKnownPairs) {
    const auto angle = [](double ux, double uy, double vx, double vy) {
        const std::array<double, 2> u = {ux, uy};
        const std::array<double, 2> v = {vx, vy};
        double result = kGuard;
        EXPECT_EQ(zelmMathCalcAngle(2, u.data(), v.data(), &result), ZELM_OK);
        return result;
    };
    EXPECT_EQ(angle(1, 0, 0, 5), std::acos(0.0));
    EXPECT_EQ(angle(1, 0, -2, 0), std::acos(-1.0));
    EXPECT_EQ(angle(2, 0, 8, 0), 0.0);
    EXPECT_TRUE(isClose(angle(1, 0, 1, 1), kPi / 4, kFewRoundings));
}

TEST(MathVectors, AngleOfParallelVectorsNeverLeavesTheArcCosine) {
    Random random(103);
    for (int trial = 0; trial < 1000; ++trial) {
        std::array<double, 3> u = {random.normal(), random.normal(), random.normal()};
        const double scale = random.uniform(-3.0, 3.0);
        const std::array<double, 3> v = {scale * u[0], scale * u[1], scale * u[2]};
        double angle = kGuard;
        ASSERT_EQ(zelmMathCalcAngle(3, u.data(), v.data(), &angle), ZELM_OK);
        // The arc cosine turns one rounding near 1 into its square root.
        EXPECT_NEAR(angle, scale > 0.0 ? 0.0 : kPi, 1e-7);
    }
}

TEST(MathVectors, AngleWithAShortOrNonFiniteVectorIsDegenerateAndNotWritten) {
    const std::array<double, 2> good = {1, 2};
    for (const std::array<double, 2>& bad : {std::array<double, 2>{0, 0}, std::array<double, 2>{1e-9, 0},
                                             std::array<double, 2>{kNan, 1}, std::array<double, 2>{1, kInfinity}}) {
        double angle = kGuard;
        EXPECT_EQ(zelmMathCalcAngle(2, good.data(), bad.data(), &angle), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmMathCalcAngle(2, bad.data(), good.data(), &angle), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(angle, kGuard);
    }
    double angle = kGuard;
    EXPECT_EQ(zelmMathCalcAngle(0, good.data(), good.data(), &angle), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(angle, kGuard);
}

}  // namespace
