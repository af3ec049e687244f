// Cholesky factorisation: known factors, residuals, the absolute threshold, what a refusal leaves behind.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "denseMatrix.h"
#include "zelm/mat.h"

namespace {

using zelmtest::Matrix;
using zelmtest::Random;

constexpr double kGuard = 7.25;
constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

TEST(MatCholesky, KnownFactor) {
    const std::array<double, 4> a = {4, 2, 2, 3};
    std::array<double, 4> u;
    u.fill(kGuard);
    EXPECT_EQ(zelmMatCholeskyDecomp(2, a.data(), u.data()), ZELM_OK);
    EXPECT_EQ(u, (std::array<double, 4>{2, 1, 0, std::sqrt(2.0)}));
}

TEST(MatCholesky, OnlyTheUpperTriangleIsRead) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::array<double, 4> a = {4, 2, nan, 3};
    std::array<double, 4> u{};
    EXPECT_EQ(zelmMatCholeskyDecomp(2, a.data(), u.data()), ZELM_OK);
    EXPECT_EQ(u, (std::array<double, 4>{2, 1, 0, std::sqrt(2.0)}));
}

TEST(MatCholesky, FactorReproducesTheMatrix) {
    Random random(31);
    for (int trial = 0; trial < 500; ++trial) {
        const auto n = static_cast<std::size_t>(random.integer(1, 10));
        const Matrix b = zelmtest::randomMatrix(random, n + 3, n);
        const Matrix a = zelmtest::product(zelmtest::transposed(b), b);
        Matrix u(n, n, kGuard);
        ASSERT_EQ(zelmMatCholeskyDecomp(a.m(), a.data(), u.data()), ZELM_OK);
        // The method is backward stable: (n + 1) * epsilon.
        EXPECT_LT(zelmtest::relativeDifference(zelmtest::product(zelmtest::transposed(u), u), a), 12.0 * kEpsilon);
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < i; ++j) {
                EXPECT_EQ(u(i, j), 0.0);
            }
        }
    }
}

TEST(MatCholesky, MayReplaceItsMatrix) {
    std::array<double, 4> a = {4, 2, 2, 3};
    EXPECT_EQ(zelmMatCholeskyDecomp(2, a.data(), a.data()), ZELM_OK);
    EXPECT_EQ(a, (std::array<double, 4>{2, 1, 0, std::sqrt(2.0)}));
}

TEST(MatCholesky, ThresholdIsAbsolute) {
    double u = kGuard;
    const double below = std::nextafter(1e-11, 0.0);
    const double at = 1e-11;
    const double tiny = 1e-12;
    EXPECT_EQ(zelmMatCholeskyDecomp(1, &tiny, &u), ZELM_ERR_NOT_POSITIVE_DEFINITE);
    EXPECT_EQ(zelmMatCholeskyDecomp(1, &below, &u), ZELM_ERR_NOT_POSITIVE_DEFINITE);
    EXPECT_EQ(u, kGuard);
    EXPECT_EQ(zelmMatCholeskyDecomp(1, &at, &u), ZELM_OK);
    EXPECT_EQ(u, std::sqrt(1e-11));
}

TEST(MatCholesky, RefusalKeepsFinishedRowsAndTheZeroedLowerPart) {
    const std::array<double, 9> a = {4, 2, 2, 2, 1, 5, 2, 5, 9};  // the second term is 1 - 1 = 0
    std::array<double, 9> u;
    u.fill(kGuard);
    EXPECT_EQ(zelmMatCholeskyDecomp(3, a.data(), u.data()), ZELM_ERR_NOT_POSITIVE_DEFINITE);
    EXPECT_EQ(u, (std::array<double, 9>{2, 1, 1, 0, kGuard, kGuard, 0, 0, kGuard}));
}

TEST(MatCholesky, IndefiniteAndNonFiniteMatricesAreRefused) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const auto& a : {std::array<double, 4>{1, 2, 2, 1}, std::array<double, 4>{-1, 0, 0, 1},
                          std::array<double, 4>{nan, 0, 0, 1}, std::array<double, 4>{1, nan, nan, 1},
                          std::array<double, 4>{1, inf, inf, 1}, std::array<double, 4>{1, 0, 0, -inf}}) {
        std::array<double, 4> u{};
        EXPECT_EQ(zelmMatCholeskyDecomp(2, a.data(), u.data()), ZELM_ERR_NOT_POSITIVE_DEFINITE);
    }
}

}  // namespace
