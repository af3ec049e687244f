// Roots of quartics: counts, orders and quirks, the backward error on seeded polynomials, and what Ferrari's method
// loses.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "polynomials.h"
#include "random.h"
#include "zelm/mathRoots.h"

namespace {

using zelmtest::polynomialOf;
using zelmtest::Random;
using zelmtest::rootScale;
using zelmtest::scaledResidual;
using Coefficients = std::vector<double>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kGuard = 7.25;
constexpr int kRounds = 20000;

struct Roots {
    std::int32_t count;
    std::array<double, 4> x;
};

Roots quarticRoots(const Coefficients& coefficients) {
    Roots roots{0, {kGuard, kGuard, kGuard, kGuard}};
    roots.count = zelmMathQuarticRoots(coefficients.data(), roots.x.data());
    for (std::int32_t k = roots.count; k < 4; ++k) {
        EXPECT_EQ(roots.x[static_cast<std::size_t>(k)], kGuard) << "beyond the number of roots";
    }
    return roots;
}

double worstResidual(const Coefficients& c, const Roots& roots) {
    double worst = 0.0;
    for (std::int32_t k = 0; k < roots.count; ++k) {
        const double residual = scaledResidual(c, roots.x[static_cast<std::size_t>(k)]);
        worst = residual <= worst ? worst : residual;  // a NaN stays the worst
    }
    return worst;
}

void expectRoots(const Roots& roots, const std::vector<double>& expected, double tolerance) {
    ASSERT_EQ(roots.count, static_cast<std::int32_t>(expected.size()));
    for (std::size_t k = 0; k < expected.size(); ++k) {
        EXPECT_NEAR(roots.x[k], expected[k], tolerance) << k;
    }
}

TEST(QuarticRoots, FourRootsOfABiquadratic) {
    expectRoots(quarticRoots({1, 0, -5, 0, 4}), {2, 1, -2, -1}, 0.0);
}

TEST(QuarticRoots, ABiquadraticWithoutRealRoots) {
    expectRoots(quarticRoots({1, 0, 5, 0, 4}), {}, 0.0);
}

// The first factor y^2 - S y + ... holds the larger roots; within a factor the order is the quadratic's.
TEST(QuarticRoots, TheRootsOfTheFirstFactorComeFirst) {
    expectRoots(quarticRoots({1, -10, 35, -50, 24}), {4, 3, 1, 2}, 1e-13);  // 1, 2, 3, 4
    expectRoots(quarticRoots({-2, 20, -70, 100, -48}), {4, 3, 1, 2}, 1e-13);
}

TEST(QuarticRoots, TwoRootsBesideAComplexPair) {
    expectRoots(quarticRoots({1, -3, 3, -3, 2}), {2, 1}, 1e-14);  // (x - 1)(x - 2)(x^2 + 1)
    expectRoots(quarticRoots({1, 3, 3, 3, 2}), {-2, -1}, 1e-14);  // mirrored: from the second factor
}

TEST(QuarticRoots, ADoubleRootOfAFactorIsReportedOnce) {
    expectRoots(quarticRoots({1, 0, -2, 0, 1}), {1, -1}, 0.0);  // (x - 1)^2 (x + 1)^2
}

TEST(QuarticRoots, ARootThatBothFactorsHaveIsReportedTwice) {
    expectRoots(quarticRoots({1, 0, -4, 0, 0}), {0, 2, 0, -2}, 0.0);  // x^2 (x - 2)(x + 2)
}

TEST(QuarticRoots, ATripleRoot) {
    // x^3 (x - 4): the resolvent has a triple root itself.
    const Roots roots = quarticRoots({1, -4, 0, 0, 0});
    expectRoots(roots, {4, 0, 0}, 0.0);
}

// z <= p: a double root y^2 = -p/2 of the whole, be it real (0) or not.
TEST(QuarticRoots, AResolventRootNotAbovePMeansNoRoots) {
    expectRoots(quarticRoots({1, 0, 0, 0, 0}), {}, 0.0);    // four times 0
    expectRoots(quarticRoots({1, -4, 6, -4, 1}), {}, 0.0);  // four times 1
    expectRoots(quarticRoots({1, 0, 2, 0, 1}), {}, 0.0);    // (x^2 + 1)^2
    expectRoots(quarticRoots({1, 0, 3, 0, 0}), {}, 0.0);    // x^2 (x^2 + 3)
}

// Follows from the method: with q = 0 and r < 0 the only root of the resolvent is p itself, and two roots stay unfound,
// whatever rounding does.
TEST(QuarticRoots, TheTwoRealRootsOfABiquadraticAreNotFound) {
    expectRoots(quarticRoots({1, 0, 0, 0, -1}), {}, 0.0);    // +-1
    expectRoots(quarticRoots({1, 0, -5, 0, -36}), {}, 0.0);  // +-3
    Random random(311);
    for (int i = 0; i < kRounds; ++i) {
        const double u = random.uniform(0.01, 10.0);
        const double v = random.uniform(0.01, 10.0);
        ASSERT_EQ(quarticRoots({1, 0, v - u, 0, -u * v}).count, 0) << u << ' ' << v;
    }
}

TEST(QuarticRoots, AVanishingLeadingTermIsNotReducedToACubic) {
    for (const double a : {0.0, 1e-9, -1e-9, 1e-10}) {
        EXPECT_EQ(quarticRoots({a, 1, -6, 11, -6}).count, 0) << a;
    }
    EXPECT_EQ(quarticRoots({1.001e-9, 0, -5 * 1.001e-9, 0, 4 * 1.001e-9}).count, 4);
}

TEST(QuarticRoots, MayOverwriteTheirCoefficients) {
    std::array<double, 5> shared = {1, 0, -5, 0, 4};
    EXPECT_EQ(zelmMathQuarticRoots(shared.data(), shared.data()), 4);
    EXPECT_EQ(shared[0], 2.0);
    EXPECT_EQ(shared[3], -1.0);
}

TEST(QuarticRoots, CoefficientsThatAreNotFiniteGiveNoRoots) {
    for (const double bad : {kNan, kInf, -kInf, 1e200}) {
        for (std::size_t place = 0; place < 5; ++place) {
            Coefficients c = {1, 1, -5, 1, 1};
            c[place] = bad;
            if (place > 0 || !std::isfinite(bad)) {
                EXPECT_EQ(quarticRoots(c).count, 0) << bad << " at " << place;
            }
        }
    }
}

// Four real roots at least a fortieth of the largest apart. The value of the polynomial carries some ten roundings
// relative to |a| s^4; the cube root's exponent adds as much at the ends of the range.
TEST(QuarticRoots, FourSeparatedRootsAreFoundAtEveryScale) {
    Random random(312);
    for (int i = 0; i < kRounds; ++i) {
        const double size = std::pow(10.0, random.uniform(-23.0, 24.0));
        std::vector<double> x(4);
        for (std::size_t k = 0; k < 4; ++k) {
            x[k] = size * (0.5 * static_cast<double>(k) - 0.75 + random.uniform(-0.225, 0.225));
        }
        const Coefficients c = polynomialOf(std::pow(10.0, random.uniform(-8.0, 8.0)), x);
        const Roots roots = quarticRoots(c);
        ASSERT_EQ(roots.count, 4) << i;
        ASSERT_LE(worstResidual(c, roots), 1e-14) << i;
        std::array<double, 4> sorted = roots.x;
        std::sort(sorted.begin(), sorted.end());
        for (std::size_t k = 0; k < 4; ++k) {
            // Slopes down to 0.04 a size^3, scales s up to 3 size: 1e-15 * 3^4 / 0.04.
            ASSERT_NEAR(sorted[k] / size, x[k] / size, 2e-12) << i;
        }
    }
}

// Two pairs of roots, each d wide: both found with a small backward error down to a width of 1e-6.
TEST(QuarticRoots, PairsOfCloseRootsAreFoundDownToAMillionth) {
    Random random(313);
    for (int i = 0; i < kRounds; ++i) {
        const double d = std::pow(10.0, random.uniform(-6.0, -1.0));
        const double low = random.uniform(-1.0, -0.2);
        const double high = random.uniform(0.2, 1.0);
        const Coefficients c = polynomialOf(1.0, {low, low + d, high, high + d * random.uniform(0.5, 1.0)});
        const Roots roots = quarticRoots(c);
        ASSERT_EQ(roots.count, 4) << d;
        ASSERT_LE(worstResidual(c, roots), 1e-14) << d;
    }
}

// The loss: z/2 +- t carry a rounding of s^2, the discriminant of a factor is the square of the pair's width, so that
// pairs narrower than the square root of rounding vanish. Measured at a width of 1e-8: two in three polynomials.
TEST(QuarticRoots, PairsNarrowerThanTheRootOfRoundingMayVanish) {
    Random random(314);
    int lost = 0;
    for (int i = 0; i < 1000; ++i) {
        const double low = random.uniform(-1.0, -0.2);
        const double high = random.uniform(0.2, 1.0);
        const Coefficients c = polynomialOf(1.0, {low, low + 1e-8, high, high + 1e-8});
        const Roots roots = quarticRoots(c);
        lost += roots.count < 4 ? 1 : 0;
        ASSERT_LE(worstResidual(c, roots), 1e-14) << "what is reported is a root";
    }
    EXPECT_GT(lost, 250) << "found more reliably than the header says";
    EXPECT_LT(lost, 1000);
}

// Two real roots in [-1, 1] and a complex pair whose real part is at the distance S from their mean.
struct TwoRoots {
    double low;
    double high;
    Coefficients c;
};

TwoRoots randomTwoRoots(Random& random, double meanDistance) {
    const double low = random.uniform(-1.0, 0.4);
    const double high = random.uniform(low + 0.1, 1.0);
    const double re = (low + high) / 2.0 + (random.integer(0, 1) == 0 ? meanDistance : -meanDistance);
    return {low, high, polynomialOf(1.0, {low, high}, {{re, random.uniform(0.1, 1.0)}})};
}

// z - p = S^2 is a difference of values of size s^2 which carry a few roundings each: t, and with it the factors, is
// off by some 1e-15 (s/S)^2 (two orders of magnitude more in the worst of many polynomials).
TEST(QuarticRoots, TwoRootsAreFoundToWhatTheDistanceOfTheMeansLeaves) {
    Random random(315);
    for (int i = 0; i < kRounds; ++i) {
        const double meanDistance = std::pow(10.0, random.uniform(-6.0, 0.0));
        const TwoRoots truth = randomTwoRoots(random, meanDistance);
        const Roots roots = quarticRoots(truth.c);
        ASSERT_EQ(roots.count, 2) << meanDistance;
        const double loss = std::pow(static_cast<double>(rootScale(truth.c)) / meanDistance, 2.0);
        ASSERT_LE(worstResidual(truth.c, roots), 1e-13 * loss) << meanDistance;
        if (meanDistance > 0.05) {
            // s up to 4, hence a backward error of up to 1e-13 * 80^2: the tenth digit is kept.
            ASSERT_LE(worstResidual(truth.c, roots), 1e-10) << meanDistance;
        }
    }
}

// The same loss carried to its end: not a digit is left at S = 1e-8, and what comes out is no root at all.
TEST(QuarticRoots, TwoRootsWithTheMeanOfTheComplexPairAreReportedWrong) {
    Random random(316);
    int wrong = 0;
    for (int i = 0; i < 1000; ++i) {
        const TwoRoots truth = randomTwoRoots(random, 1e-8);
        const Roots roots = quarticRoots(truth.c);
        wrong += roots.count != 2 || worstResidual(truth.c, roots) > 1e-4 ? 1 : 0;
    }
    EXPECT_GT(wrong, 500) << "found more reliably than the header says";
    const Roots example = quarticRoots({1, 0, -5, 1e-10, -36});  // close to -3 and 3
    EXPECT_EQ(example.count, 4);
    EXPECT_GT(worstResidual({1, 0, -5, 1e-10, -36}, example), 1e-2);
}

TEST(QuarticRoots, FourComplexRootsAreNoRoots) {
    Random random(317);
    for (int i = 0; i < kRounds; ++i) {
        const Coefficients c = polynomialOf(
            random.uniform(0.1, 10.0), {},
            {{random.uniform(-9, 9), random.uniform(0.1, 9)}, {random.uniform(-9, 9), random.uniform(0.1, 9)}});
        ASSERT_EQ(quarticRoots(c).count, 0) << i;
    }
}

// Beyond the range the twelfth power of s leaves that of double.
TEST(QuarticRoots, BeyondTheRangeOfTheirPowersThereAreNoRootsOrWrongOnes) {
    EXPECT_EQ(quarticRoots(polynomialOf(1.0, {1e30, 2e30, 3e30, 5e30})).count, 0);
    EXPECT_EQ(quarticRoots(polynomialOf(1.0, {1e24, 2e24, 3e24, 5e24})).count, 4);
    const Coefficients tiny = polynomialOf(1.0, {1e-30, 2e-30, 3e-30, 5e-30});
    EXPECT_GT(worstResidual(tiny, quarticRoots(tiny)), 1e-6) << "found better than the header says";
}

}  // namespace
