// Correlation of one-dimensional signals, against sums written out, bit for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "guardedBuffer.h"
#include "isClose.h"
#include "random.h"
#include "zelm/math.h"
#include "zelm/mathCorrelation.h"

namespace {

using zelmtest::Guard;
using zelmtest::GuardedBuffer;
using zelmtest::hasSameBits;
using zelmtest::Random;
using Signal = std::vector<double>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kGuard = 7.25;

Signal randomSignal(Random& random, std::int32_t n) {
    Signal signal(static_cast<std::size_t>(n));
    for (double& value : signal) {
        value = random.normal();
    }
    return signal;
}

std::int32_t sizeOf(const Signal& signal) {
    return static_cast<std::int32_t>(signal.size());
}

// The sum over one turn from 0.0 in increasing i.
double circularSum(const Signal& signal, std::size_t lag) {
    double sum = 0.0;
    for (std::size_t i = 0; i < signal.size(); ++i) {
        sum += signal[i] * signal[(i + lag) % signal.size()];
    }
    return sum;
}

double cosineOf(const double* u, const double* v, std::size_t n) {
    double uv = 0.0;
    double uu = 0.0;
    double vv = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        uv += u[i] * v[i];
        uu += u[i] * u[i];
        vv += v[i] * v[i];
    }
    const double norms = std::sqrt(uu) * std::sqrt(vv);
    return norms < 1e-9 ? 0.0 : uv / norms;
}

struct Match {
    std::int32_t status;
    std::int32_t index;
    double score;
};

Match search(const Signal& signal, const Signal& pattern) {
    Match match{1, -7, kGuard};
    match.status = zelmMathSearchOf1DWithNormCorrelation(sizeOf(signal), signal.data(), sizeOf(pattern), pattern.data(),
                                                         &match.index, &match.score);
    return match;
}

TEST(CrossCorrelation, IsTheSumOfProducts) {
    const Signal u = {1, 2, 3};
    const Signal v = {4, -5, 6};
    EXPECT_EQ(zelmMathCrossCorrelation(3, u.data(), v.data()), 12.0);
    EXPECT_EQ(zelmMathCrossCorrelation(0, u.data(), v.data()), 0.0);
    EXPECT_EQ(zelmMathCrossCorrelation(-3, u.data(), v.data()), 0.0);
}

TEST(NormCorrelation, IsTheCosineOfTheTwoWithTheirMeans) {
    const Signal u = {3, 4};
    const Signal v = {4, 3};
    EXPECT_EQ(zelmMathNormCorrelation(2, u.data(), v.data()), 24.0 / 25.0);
    EXPECT_EQ(zelmMathNormCorrelation(0, u.data(), v.data()), 0.0);
    const Signal flat = {5, 5};
    EXPECT_NEAR(zelmMathNormCorrelation(2, flat.data(), flat.data()), 1.0, 1e-15) << "means are not taken off";
}

TEST(NormCorrelation, SignalsWhoseNormsMultiplyToLessThanABillionthCorrelateWithNothing) {
    const Signal one = {1, 0};
    for (const double faint : {0.0, 0.999e-9, -0.999e-9}) {
        const Signal u = {faint, 0};
        EXPECT_EQ(zelmMathNormCorrelation(2, u.data(), one.data()), 0.0) << faint;
    }
    const Signal u = {1.001e-9, 0};
    EXPECT_NEAR(zelmMathNormCorrelation(2, u.data(), one.data()), 1.0, 1e-15);
    // Only the product counts: a faint signal against a strong one.
    const Signal faint = {1e-20, 0};
    const Signal strong = {1e20, 0};
    EXPECT_NEAR(zelmMathNormCorrelation(2, faint.data(), strong.data()), 1.0, 1e-15);
}

TEST(NormCorrelation, SignalsThatAreNotFiniteHaveNoNumber) {
    const Signal u = {1, kNan};
    const Signal v = {1, kInf};
    EXPECT_TRUE(std::isnan(zelmMathNormCorrelation(2, u.data(), v.data())));
    EXPECT_TRUE(std::isnan(zelmMathNormCorrelation(2, v.data(), v.data())));
}

TEST(AutoCorrelation, IsCircular) {
    const Signal signal = {1, 2, 3};
    Signal out(3, kGuard);
    EXPECT_EQ(zelmMathAutoCorrelation(3, signal.data(), 3, out.data()), ZELM_OK);
    EXPECT_EQ(out[0], 14.0);
    EXPECT_EQ(out[1], 11.0);
    EXPECT_EQ(out[2], 11.0);
}

TEST(AutoCorrelation, MoreLagsThanValuesAreRefused) {
    const Signal signal = {1, 2, 3};
    Signal out(4, kGuard);
    EXPECT_EQ(zelmMathAutoCorrelation(3, signal.data(), 4, out.data()), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmMathNormAutoCorrelation(3, signal.data(), 4, out.data()), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(out, Signal(4, kGuard));
}

TEST(AutoCorrelation, CountsBelowOneAreRefused) {
    const Signal signal = {1, 2, 3};
    Signal out(3, kGuard);
    const std::int32_t bad[][2] = {{3, 0}, {3, -1}, {0, 0}, {0, -1}, {-1, -2}};
    for (const auto& [n, m] : bad) {
        EXPECT_EQ(zelmMathAutoCorrelation(n, signal.data(), m, out.data()), ZELM_ERR_DEGENERATE) << n << ' ' << m;
        EXPECT_EQ(zelmMathNormAutoCorrelation(n, signal.data(), m, out.data()), ZELM_ERR_DEGENERATE) << n << ' ' << m;
    }
    EXPECT_EQ(out, Signal(3, kGuard));
}

TEST(AutoCorrelation, MayOverwriteItsSignal) {
    Signal shared = {1, 2, 3};
    EXPECT_EQ(zelmMathAutoCorrelation(3, shared.data(), 3, shared.data()), ZELM_OK);
    EXPECT_EQ(shared, (Signal{14, 11, 11}));
    EXPECT_EQ(zelmMathNormAutoCorrelation(3, shared.data(), 1, shared.data()), ZELM_OK);
    EXPECT_NEAR(shared[0], 1.0, 1e-15);
}

TEST(AutoCorrelation, EqualsTheSumsWrittenOut) {
    Random random(331);
    for (std::int32_t n = 1; n <= 40; ++n) {
        const Signal signal = randomSignal(random, n);
        for (const std::int32_t m : {1, (n + 1) / 2, n}) {
            const auto lags = static_cast<std::size_t>(m);
            GuardedBuffer<double> sums(lags, Guard::atEnd);
            GuardedBuffer<double> cosines(lags, Guard::atEnd);
            ASSERT_EQ(zelmMathAutoCorrelation(n, signal.data(), m, sums.data()), ZELM_OK);
            ASSERT_EQ(zelmMathNormAutoCorrelation(n, signal.data(), m, cosines.data()), ZELM_OK);
            Signal twice = signal;
            twice.insert(twice.end(), signal.begin(), signal.end());
            for (std::size_t k = 0; k < lags; ++k) {
                ASSERT_TRUE(hasSameBits(sums[k], circularSum(signal, k))) << n << ' ' << k;
                ASSERT_TRUE(hasSameBits(cosines[k], cosineOf(twice.data(), twice.data() + k, signal.size())));
                ASSERT_TRUE(hasSameBits(cosines[k], zelmMathNormCorrelation(n, twice.data(), twice.data() + k)));
            }
        }
    }
}

TEST(AutoCorrelation, ASignalOfZerosCorrelatesWithNothing) {
    const Signal signal(5, 0.0);
    Signal out(5, kGuard);
    EXPECT_EQ(zelmMathNormAutoCorrelation(5, signal.data(), 5, out.data()), ZELM_OK);
    EXPECT_EQ(out, Signal(5, 0.0));
}

TEST(SearchWithNormCorrelation, FindsTheTemplateWhereItIs) {
    const Signal signal = {0.5, -1, 2, 1, 3, -2, 0.25, 1};
    const Match match = search(signal, {1, 3, -2});
    EXPECT_EQ(match.status, ZELM_OK);
    EXPECT_EQ(match.index, 3);
    EXPECT_NEAR(match.score, 1.0, 1e-15);
}

TEST(SearchWithNormCorrelation, TheFirstOfEqualScoresWins) {
    const Match match = search({0, 1, 0, 1, 0, 1}, {1});
    EXPECT_EQ(match.index, 1);
    EXPECT_EQ(match.score, 1.0);
}

TEST(SearchWithNormCorrelation, WithoutAPositiveScoreTheFirstOffsetIsReportedWithZero) {
    const Match opposed = search({-1, -2, -3}, {1});
    EXPECT_EQ(opposed.status, ZELM_OK);
    EXPECT_EQ(opposed.index, 0);
    EXPECT_EQ(opposed.score, 0.0);
    const Match faint = search({1e-10, 2e-10}, {1});
    EXPECT_EQ(faint.index, 0);
    EXPECT_EQ(faint.score, 0.0);
}

TEST(SearchWithNormCorrelation, ATemplateLongerThanTheSignalIsRefused) {
    const Match match = search({1, 2}, {1, 2, 3});
    EXPECT_EQ(match.status, ZELM_ERR_DEGENERATE);
    EXPECT_EQ(match.index, -7);
    EXPECT_EQ(match.score, kGuard);
}

TEST(SearchWithNormCorrelation, ATemplateWithoutEntriesCorrelatesNowhere) {
    const Signal signal = {1, 2};
    const std::int32_t counts[][2] = {{2, 0}, {0, 0}, {2, -5}, {-3, -3}, {INT32_MAX, INT32_MIN}};
    for (const auto& [n, m] : counts) {
        std::int32_t index = -7;
        double score = kGuard;
        EXPECT_EQ(zelmMathSearchOf1DWithNormCorrelation(n, signal.data(), m, signal.data(), &index, &score), ZELM_OK);
        EXPECT_EQ(index, 0);
        EXPECT_EQ(score, 0.0);
    }
}

TEST(SearchWithNormCorrelation, OffsetsWithoutANumberArePassedOver) {
    const Match match = search({kNan, 1, 2, kInf, 2, 4}, {1, 2});
    EXPECT_EQ(match.index, 1);
    EXPECT_NEAR(match.score, 1.0, 1e-15);
}

TEST(SearchWithNormCorrelation, EqualsTheCorrelationAtEveryOffset) {
    Random random(332);
    for (int trial = 0; trial < 400; ++trial) {
        const std::int32_t n = random.integer(1, 60);
        const std::int32_t m = random.integer(1, n);
        const Signal pattern = randomSignal(random, m);
        GuardedBuffer<double> signal(static_cast<std::size_t>(n), trial % 2 == 0 ? Guard::atEnd : Guard::atStart);
        for (double& value : signal) {
            value = random.normal();
        }
        std::int32_t best = 0;
        double bestScore = 0.0;
        for (std::int32_t k = 0; k <= n - m; ++k) {
            const double score = cosineOf(signal.data() + k, pattern.data(), pattern.size());
            if (score > bestScore) {
                best = k;
                bestScore = score;
            }
        }
        std::int32_t index = -7;
        double score = kGuard;
        ASSERT_EQ(zelmMathSearchOf1DWithNormCorrelation(n, signal.data(), m, pattern.data(), &index, &score), ZELM_OK);
        ASSERT_EQ(index, best) << n << ' ' << m;
        ASSERT_TRUE(hasSameBits(score, bestScore)) << n << ' ' << m;
    }
}

}  // namespace
