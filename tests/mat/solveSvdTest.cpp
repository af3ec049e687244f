// Least-squares and minimum-norm solutions: closed forms, the relative threshold, padding of wide matrices.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "denseMatrix.h"
#include "isClose.h"
#include "zelm/mat.h"

namespace {

using zelmtest::isClose;
using zelmtest::Matrix;
using zelmtest::product;
using zelmtest::Random;
using zelmtest::randomMatrix;
using zelmtest::transposed;

constexpr double kGuard = 7.25;
constexpr double kEpsilon = 2.220446049250313e-16;

TEST(MatSolveSvd, LeastSquaresResidualIsOrthogonalToTheColumns) {
    Random random(61);
    for (int trial = 0; trial < 300; ++trial) {
        const auto n = static_cast<std::size_t>(1 + trial % 10);
        const auto m = n + static_cast<std::size_t>(random.integer(0, 30));
        const Matrix a = randomMatrix(random, m, n);
        const Matrix b = randomMatrix(random, m, 1);
        Matrix x(n, 1);
        ASSERT_EQ(zelmMatSolveSVD(a.m(), a.n(), a.data(), b.data(), x.data()), ZELM_OK);
        Matrix residual = product(a, x);
        for (std::size_t i = 0; i < m; ++i) {
            residual(i, 0) -= b(i, 0);
        }
        const double normA = zelmtest::frobeniusNorm(a);
        // Backward stable: a few hundred epsilon of the data's own size.
        const double bound = 1e-13 * normA * (zelmtest::frobeniusNorm(b) + normA * zelmtest::frobeniusNorm(x));
        EXPECT_LT(zelmtest::frobeniusNorm(product(transposed(a), residual)), bound) << "trial " << trial;
    }
}

TEST(MatSolveSvd, WideSystemHasTheMinimumNormSolution) {
    Random random(62);
    for (int trial = 0; trial < 200; ++trial) {
        const auto n = static_cast<std::size_t>(2 + trial % 9);
        const auto m = static_cast<std::size_t>(random.integer(1, static_cast<int32_t>(n) - 1));
        const Matrix a = randomMatrix(random, m, n);
        const Matrix b = randomMatrix(random, m, 1);
        Matrix x(n, 1);
        ASSERT_EQ(zelmMatSolveSVD(a.m(), a.n(), a.data(), b.data(), x.data()), ZELM_OK);
        const Matrix aat = product(a, transposed(a));
        Matrix y(m, 1);
        ASSERT_EQ(zelmMatSolveLU(a.m(), aat.data(), b.data(), y.data()), ZELM_OK);
        Matrix inverse(m, m);
        ASSERT_EQ(zelmMatInvert(a.m(), aat.data(), inverse.data()), ZELM_OK);
        const double condition = zelmtest::frobeniusNorm(aat) * zelmtest::frobeniusNorm(inverse);
        // The reference squares the condition of A; that is what limits the agreement.
        EXPECT_LT(zelmtest::relativeDifference(x, product(transposed(a), y)), 100.0 * kEpsilon * condition);
    }
}

TEST(MatSolveSvd, OneEquationInTwoUnknowns) {
    const std::array<double, 2> a = {3, 4};
    const double b = 10;
    std::array<double, 2> x{};
    EXPECT_EQ(zelmMatSolveSVD(1, 2, a.data(), &b, x.data()), ZELM_OK);
    EXPECT_TRUE(isClose(x[0], 1.2, 1e-15));
    EXPECT_TRUE(isClose(x[1], 1.6, 1e-15));
}

TEST(MatSolveSvd, EqualColumnsShareTheirPart) {
    const std::array<double, 6> a = {1, 1, 2, 2, 3, 3};
    const std::array<double, 3> b = {2, 4, 6};
    std::array<double, 2> x{};
    EXPECT_EQ(zelmMatSolveSVD(3, 2, a.data(), b.data(), x.data()), ZELM_OK);
    EXPECT_TRUE(isClose(x[0], 1.0, 1e-14));
    EXPECT_TRUE(isClose(x[1], 1.0, 1e-14));
}

TEST(MatSolveSvd, NegligibleSingularValueContributesNothing) {
    const std::array<double, 4> a = {1, 0, 0, 1e-17};
    for (const double b1 : {0.0, 1.0, -1e30}) {
        const std::array<double, 2> b = {5, b1};
        std::array<double, 2> x = {kGuard, kGuard};
        EXPECT_EQ(zelmMatSolveSVD(2, 2, a.data(), b.data(), x.data()), ZELM_OK);
        EXPECT_EQ(x[0], 5.0);
        EXPECT_EQ(std::fabs(x[1]), 0.0);
    }
}

TEST(MatSolveSvd, ThresholdIsRowCountTimesEpsilonAndKeepsEquality) {
    const std::array<double, 2> b = {1, 1};
    const double threshold = 2.0 * kEpsilon;
    for (const auto& [value, kept] : {std::pair{std::nextafter(threshold, 0.0), false}, std::pair{threshold, true},
                                      std::pair{std::nextafter(threshold, 1.0), true}}) {
        const std::array<double, 4> a = {1, 0, 0, value};
        std::array<double, 2> x{};
        EXPECT_EQ(zelmMatSolveSVD(2, 2, a.data(), b.data(), x.data()), ZELM_OK);
        EXPECT_EQ(x[1], kept ? 1.0 / value : 0.0) << value;
    }
}

TEST(MatSolveSvd, ThresholdCountsTheRowsGivenNotThePaddedOnes) {
    const double value = 2.5 * kEpsilon;  // above 2 epsilon, below 3
    const std::array<double, 6> wide = {1, 0, 0, 0, value, 0};
    const std::array<double, 9> square = {1, 0, 0, 0, value, 0, 0, 0, 0};
    const std::array<double, 3> b = {1, 1, 0};
    std::array<double, 3> x{};
    EXPECT_EQ(zelmMatSolveSVD(2, 3, wide.data(), b.data(), x.data()), ZELM_OK);
    EXPECT_EQ(x[1], 1.0 / value);
    EXPECT_EQ(zelmMatSolveSVD(3, 3, square.data(), b.data(), x.data()), ZELM_OK);
    EXPECT_EQ(std::fabs(x[1]), 0.0);
}

TEST(MatSolveSvd, ZeroMatrixHasTheZeroSolution) {
    const std::array<double, 6> a{};
    const std::array<double, 3> b = {1, 2, 3};
    std::array<double, 3> x;
    x.fill(kGuard);
    EXPECT_EQ(zelmMatSolveSVD(3, 2, a.data(), b.data(), x.data()), ZELM_OK);
    EXPECT_EQ(x, (std::array<double, 3>{0, 0, kGuard}));
    x.fill(kGuard);
    EXPECT_EQ(zelmMatSolveSVD(2, 3, a.data(), b.data(), x.data()), ZELM_OK);
    EXPECT_EQ(x, (std::array<double, 3>{0, 0, 0}));
    for (const int32_t none : {0, -3}) {
        x.fill(kGuard);
        EXPECT_EQ(zelmMatSolveSVD(none, 2, a.data(), b.data(), x.data()), ZELM_OK) << "no equations at all";
        EXPECT_EQ(x, (std::array<double, 3>{0, 0, kGuard}));
    }
}

TEST(MatSolveSvd, NoUnknownsIsSuccessAndWritesNothing) {
    double guard = kGuard;
    EXPECT_EQ(zelmMatSolveSVD(3, 0, nullptr, nullptr, &guard), ZELM_OK);
    EXPECT_EQ(zelmMatSolveSVD(3, -1, nullptr, nullptr, &guard), ZELM_OK);
    EXPECT_EQ(guard, kGuard);
}

TEST(MatSolveSvd, NonFiniteMatrixFailsAndLeavesTheSolutionUntouched) {
    const std::array<double, 2> b = {1, 1};
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        for (std::size_t at = 0; at < 4; ++at) {
            std::array<double, 4> a = {1, 2, 3, 5};
            a[at] = bad;
            std::array<double, 2> x = {kGuard, kGuard};
            EXPECT_EQ(zelmMatSolveSVD(2, 2, a.data(), b.data(), x.data()), ZELM_ERR_SVD_FAILED);
            EXPECT_EQ(x, (std::array<double, 2>{kGuard, kGuard}));
        }
    }
}

TEST(MatSolveSvd, InputsAreUnchangedAndTheSolutionMayReplaceTheRightHandSide) {
    Random random(63);
    const Matrix a = randomMatrix(random, 5, 3);
    const Matrix b = randomMatrix(random, 5, 1);
    const Matrix originalA = a;
    Matrix x(3, 1);
    ASSERT_EQ(zelmMatSolveSVD(5, 3, a.data(), b.data(), x.data()), ZELM_OK);
    EXPECT_EQ(a.entries, originalA.entries);
    Matrix inPlace = b;
    ASSERT_EQ(zelmMatSolveSVD(5, 3, a.data(), inPlace.data(), inPlace.data()), ZELM_OK);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(inPlace(i, 0), x(i, 0));
    }
}

}  // namespace
