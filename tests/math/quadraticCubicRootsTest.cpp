// Roots of quadratics and cubics: counts, orders and quirks, and the backward error on seeded polynomials.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "isClose.h"
#include "polynomials.h"
#include "random.h"
#include "zelm/mathRoots.h"

namespace {

using zelmtest::isClose;
using zelmtest::polynomialOf;
using zelmtest::Random;
using zelmtest::scaledResidual;
using Coefficients = std::vector<double>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kGuard = 7.25;
constexpr int kRounds = 20000;

struct Roots {
    std::int32_t count;
    std::array<double, 3> x;
};

Roots quadraticRoots(const Coefficients& coefficients) {
    Roots roots{0, {kGuard, kGuard, kGuard}};
    roots.count = zelmMathQuadraticRoots(coefficients.data(), roots.x.data());
    EXPECT_EQ(roots.x[2], kGuard) << "room for two only";
    return roots;
}

Roots cubicRoots(const Coefficients& coefficients) {
    Roots roots{0, {kGuard, kGuard, kGuard}};
    roots.count = zelmMathCubicRoots(coefficients.data(), roots.x.data());
    return roots;
}

TEST(QuadraticRoots, TheLargerInMagnitudeComesFirst) {
    const Roots roots = quadraticRoots({1, -3, 2});
    EXPECT_EQ(roots.count, 2);
    EXPECT_EQ(roots.x[0], 2.0);
    EXPECT_EQ(roots.x[1], 1.0);
}

TEST(QuadraticRoots, ADoubleRootIsReportedOnce) {
    const Roots roots = quadraticRoots({1, 2, 1});
    EXPECT_EQ(roots.count, 1);
    EXPECT_EQ(roots.x[0], -1.0);
    EXPECT_EQ(roots.x[1], kGuard);
}

TEST(QuadraticRoots, NoRealRoots) {
    const Roots roots = quadraticRoots({1, 0, 1});
    EXPECT_EQ(roots.count, 0);
    EXPECT_EQ(roots.x[0], kGuard);
}

TEST(QuadraticRoots, WithoutALeadingTermTheLineIsSolved) {
    const Roots roots = quadraticRoots({0, 2, -4});
    EXPECT_EQ(roots.count, 1);
    EXPECT_EQ(roots.x[0], 2.0);
    EXPECT_EQ(roots.x[1], kGuard);
}

TEST(QuadraticRoots, ConstantsHaveNoRoots) {
    EXPECT_EQ(quadraticRoots({0, 0, 3}).count, 0);
    EXPECT_EQ(quadraticRoots({0, 0, 0}).count, 0);
}

TEST(QuadraticRoots, WithoutAConstantTermZeroComesFirst) {
    const Roots roots = quadraticRoots({2, 4, 0});
    EXPECT_EQ(roots.count, 2);
    EXPECT_EQ(roots.x[0], 0.0);
    EXPECT_EQ(roots.x[1], -2.0);
}

TEST(QuadraticRoots, ASquareAloneHasTheRootZeroOnce) {
    const Roots roots = quadraticRoots({5, 0, 0});
    EXPECT_EQ(roots.count, 1);
    EXPECT_EQ(roots.x[0], 0.0);
    EXPECT_EQ(roots.x[1], kGuard);
}

TEST(QuadraticRoots, ABOfZeroTakesThePositiveSign) {
    const Roots roots = quadraticRoots({1, 0, -4});
    EXPECT_EQ(roots.count, 2);
    EXPECT_EQ(roots.x[0], -2.0);
    EXPECT_EQ(roots.x[1], 2.0);
}

// Any leading coefficient but zero makes a quadratic, unlike in the higher degrees.
TEST(QuadraticRoots, ATinyLeadingTermIsKept) {
    const Roots roots = quadraticRoots({1e-20, 1, -1});
    EXPECT_EQ(roots.count, 2);
    EXPECT_TRUE(isClose(roots.x[0], -1e20, 1e-15));
    EXPECT_TRUE(isClose(roots.x[1], 1.0, 1e-15)) << "the naive formula gives 0 here";
}

TEST(QuadraticRoots, CoefficientsThatAreNotFiniteEndWithoutHarm) {
    EXPECT_EQ(quadraticRoots({1, kNan, 1}).count, 0);
    EXPECT_EQ(quadraticRoots({1, 1, kNan}).count, 0);
    EXPECT_EQ(quadraticRoots({kInf, kInf, kInf}).count, 0);
    EXPECT_EQ(quadraticRoots({kNan, 2, -4}).x[0], 2.0) << "not a number counts as no leading term";
    for (const double a : {kNan, kInf, -kInf, 0.0, 1e308}) {
        for (const double b : {kNan, kInf, -kInf, 0.0, 1e308}) {
            for (const double c : {kNan, kInf, -kInf, 0.0, 1e308}) {
                const std::int32_t count = quadraticRoots({a, b, c}).count;
                EXPECT_TRUE(count >= 0 && count <= 2);
            }
        }
    }
}

TEST(QuadraticRoots, MayOverwriteTheirCoefficients) {
    std::array<double, 3> shared = {1, -3, 2};
    EXPECT_EQ(zelmMathQuadraticRoots(shared.data(), shared.data()), 2);
    EXPECT_EQ(shared[0], 2.0);
    EXPECT_EQ(shared[1], 1.0);
}

// Backward stable: four roundings in q and the quotients, and those of D, which q takes in by half: some 8 units of
// 1.1e-16 relative to the sum of the terms' magnitudes, at every scale.
TEST(QuadraticRoots, SolveAPolynomialWithinRoundingOfTheGivenOne) {
    Random random(301);
    int withRoots = 0;
    for (int i = 0; i < kRounds; ++i) {
        Coefficients c(3);
        for (double& value : c) {
            value = random.normal() * std::pow(10.0, random.uniform(-40.0, 40.0));
        }
        const Roots roots = quadraticRoots(c);
        withRoots += roots.count > 0 ? 1 : 0;
        for (std::int32_t k = 0; k < roots.count; ++k) {
            const long double x = roots.x[static_cast<std::size_t>(k)];
            const long double terms[3] = {c[0] * x * x, c[1] * x, c[2]};
            const long double magnitude = std::fabs(terms[0]) + std::fabs(terms[1]) + std::fabs(terms[2]);
            ASSERT_LE(std::fabs(terms[0] + terms[1] + terms[2]), 1e-15L * magnitude) << i;
        }
    }
    EXPECT_GT(withRoots, kRounds / 2);
}

// What rounding of D loses: roots a relative 1e-8 apart are told apart no more; at 1e-6 they are.
TEST(QuadraticRoots, CloseRootsAreLostAtTheSquareRootOfRounding) {
    const auto pair = [](double gap) { return quadraticRoots(polynomialOf(1.0, {1.0, 1.0 + gap})); };
    EXPECT_EQ(pair(1e-6).count, 2);
    EXPECT_TRUE(isClose(pair(1e-6).x[0], 1.0 + 1e-6, 1e-9));
    EXPECT_EQ(pair(1e-9).count, 1);
}

TEST(CubicRoots, ThreeRootsComeInTheTrigonometricOrder) {
    const Roots roots = cubicRoots({1, -6, 11, -6});
    EXPECT_EQ(roots.count, 3);
    EXPECT_NEAR(roots.x[0], 1.0, 1e-14);
    EXPECT_NEAR(roots.x[1], 3.0, 1e-14);
    EXPECT_NEAR(roots.x[2], 2.0, 1e-14);
}

// The angles phi/3, (phi + 2 pi)/3, (phi + 4 pi)/3 with phi in [0, pi] give the smallest, the largest, the middle root.
TEST(CubicRoots, TheOrderIsSmallestLargestMiddleWhateverTheSignOfTheLeadingTerm) {
    Random random(302);
    for (int i = 0; i < kRounds; ++i) {
        std::array<double, 3> x = {random.uniform(-5, -2), random.uniform(-1, 1), random.uniform(2, 5)};
        const double a = (i % 2 == 0 ? 1.0 : -1.0) * random.uniform(0.1, 10.0);
        const Roots roots = cubicRoots(polynomialOf(a, {x[0], x[1], x[2]}));
        ASSERT_EQ(roots.count, 3);
        ASSERT_NEAR(roots.x[0], x[0], 1e-12);
        ASSERT_NEAR(roots.x[1], x[2], 1e-12);
        ASSERT_NEAR(roots.x[2], x[1], 1e-12);
    }
}

TEST(CubicRoots, AVanishingLeadingTermIsNotReducedToAQuadratic) {
    EXPECT_EQ(cubicRoots({1e-10, 1, 1, 1}).count, 0);
    for (const double a : {0.0, 1e-9, -1e-9, 0.5e-9}) {
        const Roots roots = cubicRoots({a, 1, -3, 2});
        EXPECT_EQ(roots.count, 0) << a;
        EXPECT_EQ(roots.x[0], kGuard);
    }
    EXPECT_EQ(cubicRoots({1.001e-9, 0, 0, -1.001e-9}).count, 1);
    EXPECT_EQ(cubicRoots({-1.001e-9, 0, 0, 1.001e-9}).count, 1);
}

TEST(CubicRoots, ASingleRootLeavesZerosBehindIt) {
    for (const double d : {-8.0, 8.0}) {
        const Roots roots = cubicRoots({1, 0, 0, d});
        EXPECT_EQ(roots.count, 1);
        EXPECT_NEAR(roots.x[0], -d / 4.0, 1e-14);
        EXPECT_EQ(roots.x[1], 0.0);
        EXPECT_EQ(roots.x[2], 0.0);
    }
}

// The formula has 0/0 here; the roots are -p/3 whatever the angle.
TEST(CubicRoots, ATripleRootIsReportedThreeTimes) {
    for (const double x : {1.0, -2.0, 0.0}) {
        const Roots roots = cubicRoots(polynomialOf(1.0, {x, x, x}));
        EXPECT_EQ(roots.count, 3);
        for (const double root : roots.x) {
            EXPECT_EQ(root, x);
        }
    }
}

TEST(CubicRoots, ADoubleRootIsReportedTwice) {
    const Roots roots = cubicRoots({1, 0, -3, 2});  // (x - 1)^2 (x + 2), exact in all steps
    EXPECT_EQ(roots.count, 3);
    EXPECT_NEAR(roots.x[0], -2.0, 1e-15);
    EXPECT_NEAR(roots.x[1], 1.0, 1e-15);
    EXPECT_NEAR(roots.x[2], 1.0, 1e-15);
}

// R^2 and Q^3 are equal but for rounding, which decides: here the double root 1 is lost.
TEST(CubicRoots, RoundingMayLoseADoubleRoot) {
    const Roots roots = cubicRoots({1, -4, 5, -2});  // (x - 1)^2 (x - 2)
    EXPECT_EQ(roots.count, 1);
    EXPECT_NEAR(roots.x[0], 2.0, 1e-15);
}

TEST(CubicRoots, MayOverwriteTheirCoefficients) {
    std::array<double, 4> shared = {1, 0, 0, -8};
    EXPECT_EQ(zelmMathCubicRoots(shared.data(), shared.data()), 1);
    EXPECT_NEAR(shared[0], 2.0, 1e-15);
}

TEST(CubicRoots, CoefficientsThatAreNotFiniteEndWithoutHarm) {
    EXPECT_EQ(cubicRoots({kNan, 1, 1, 1}).count, 0);
    EXPECT_EQ(cubicRoots({kInf, 1, 1, 1}).count, 0);
    for (const double bad : {kNan, kInf, -kInf, 1e200}) {
        for (std::size_t place = 1; place < 4; ++place) {
            Coefficients c = {1, 1, 1, 1};
            c[place] = bad;
            const Roots roots = cubicRoots(c);
            EXPECT_TRUE(roots.count == 1 || roots.count == 3);
            EXPECT_FALSE(std::isfinite(roots.x[0])) << bad << " at " << place;
        }
    }
}

enum class Cluster { kSeparated, kPair, kTriple, kComplexPair };

// Three roots within [-size, size], as leading coefficient and roots; a complex pair as its real quadratic.
Coefficients randomCubic(Random& random, Cluster cluster, double size) {
    const double a = (random.integer(0, 1) == 0 ? 1.0 : -1.0) * std::pow(10.0, random.uniform(-8.0, 8.0));
    const double x = size * random.uniform(-1.0, 1.0);
    switch (cluster) {
        case Cluster::kSeparated:
            return polynomialOf(a, {size * random.uniform(-1.0, -0.6), size * random.uniform(-0.4, 0.4),
                                    size * random.uniform(0.6, 1.0)});
        case Cluster::kPair:
            return polynomialOf(a, {x, x * (1.0 + 1e-4 * random.normal()), size * random.uniform(-1.0, 1.0)});
        case Cluster::kTriple:
            return polynomialOf(a, {x, x + 1e-3 * size * random.normal(), x + 1e-3 * size * random.normal()});
        case Cluster::kComplexPair:
            break;
    }
    return polynomialOf(a, {x}, {{size * random.uniform(-1.0, 1.0), size * random.uniform(0.05, 1.0)}});
}

// Relative to |a| s^3 the value at a root carries some ten roundings (1e-15), and that of the exponent
// 0.3333333333333333, which is 1.9e-17 * ln(s^3) in the root and thrice that in the value: 2e-14 at s = 1e39.
TEST(CubicRoots, HaveASmallBackwardErrorAtEveryScale) {
    Random random(303);
    for (const Cluster cluster : {Cluster::kSeparated, Cluster::kPair, Cluster::kTriple, Cluster::kComplexPair}) {
        for (int i = 0; i < kRounds; ++i) {
            const Coefficients c = randomCubic(random, cluster, std::pow(10.0, random.uniform(-44.0, 49.0)));
            const Roots roots = cubicRoots(c);
            ASSERT_GE(roots.count, 1);
            for (std::int32_t k = 0; k < roots.count; ++k) {
                ASSERT_LE(scaledResidual(c, roots.x[static_cast<std::size_t>(k)]), 5e-14)
                    << static_cast<int>(cluster) << ' ' << i;
            }
        }
    }
}

TEST(CubicRoots, SeparatedRootsAreAllFound) {
    Random random(304);
    for (int i = 0; i < kRounds; ++i) {
        const double size = std::pow(10.0, random.uniform(-44.0, 49.0));
        EXPECT_EQ(cubicRoots(randomCubic(random, Cluster::kSeparated, size)).count, 3);
        EXPECT_EQ(cubicRoots(randomCubic(random, Cluster::kComplexPair, size)).count, 1);
    }
}

// The loss that cancellation in A + Q/A causes: the root -1e-6 beside a complex pair of size 1e3 is right to 1e-13, a
// rounding of 1e3, not of itself.
TEST(CubicRoots, ARootFarSmallerThanTheOthersHasLostDigits) {
    const Roots roots = cubicRoots({1, 0, 1e6, 1});
    EXPECT_EQ(roots.count, 1);
    EXPECT_NEAR(roots.x[0], -1e-6, 5e-13);
    EXPECT_GT(std::fabs(roots.x[0] + 1e-6), 1e-15) << "no loss any more: say so in the header";
}

// sigma is -1 for R = 0: the root of x^3 + c x is minus the rounding of A + Q/A.
TEST(CubicRoots, AnROfZeroTakesTheNegativeSign) {
    bool sawRounding = false;
    for (double c = 1.0; c < 100.0; c += 1.0) {
        const double q = -3.0 * c / 9.0;
        const double a = std::pow(std::sqrt(-std::pow(q, 3.0)), 0.3333333333333333);
        const Roots roots = cubicRoots({1, 0, c, 0});
        EXPECT_EQ(roots.count, 1);
        EXPECT_EQ(roots.x[0], -(a + q / a));
        sawRounding = sawRounding || a + q / a != 0.0;
    }
    EXPECT_TRUE(sawRounding);
}

// Where R^2 and Q^3 are denormal the arc cosine's argument may leave [-1, 1] by far more than rounding.
TEST(CubicRoots, AtTheLowerEndOfTheirRangeTheRootsAreStillNumbers) {
    Random random(305);
    for (int i = 0; i < kRounds; ++i) {
        const double size = std::pow(10.0, random.uniform(-56.0, -50.0));
        const Roots roots = cubicRoots(randomCubic(random, Cluster::kPair, size));
        for (std::int32_t k = 0; k < roots.count; ++k) {
            ASSERT_TRUE(std::isfinite(roots.x[static_cast<std::size_t>(k)])) << i;
        }
    }
}

// Where squares and cubes of the scaled coefficients leave the range of double, the result says so or is a plain mean.
TEST(CubicRoots, BeyondTheRangeOfTheirPowersTheResultIsNoRoot) {
    const Roots huge = cubicRoots({1, 1e60, 1, 1});
    EXPECT_EQ(huge.count, 1);
    EXPECT_TRUE(std::isnan(huge.x[0]));
    for (const Coefficients& tiny : {Coefficients{1, 0, 0, 1e-200}, Coefficients{1, 0, 1e-120, 0}}) {
        const Roots roots = cubicRoots(tiny);
        EXPECT_EQ(roots.count, 3);
        for (const double root : roots.x) {
            EXPECT_EQ(root, 0.0);
        }
    }
}

}  // namespace
