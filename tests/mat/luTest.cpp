// LU factorisation, systems and inverses: pivot choice and ties, refusals, residuals, non-finite input.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "denseMatrix.h"
#include "isClose.h"
#include "lu.h"
#include "zelm/mat.h"

namespace {

using zelmtest::hasSameBits;
using zelmtest::Matrix;
using zelmtest::product;
using zelmtest::Random;
using zelmtest::randomMatrix;
using zelmtest::relativeDifference;

constexpr double kGuard = 7.25;
constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

// The factors, multiplied out into the row order of the input.
Matrix multipliedOut(const Matrix& work, const std::vector<int32_t>& perm) {
    const std::size_t n = work.rows;
    Matrix lower(n, n);
    Matrix upper(n, n);
    Matrix result(n, n);
    for (std::size_t i = 0; i < n; ++i) {
        const auto row = static_cast<std::size_t>(perm[i]);
        for (std::size_t j = 0; j < n; ++j) {
            lower(i, j) = j < i ? work(row, j) : (j == i ? 1.0 : 0.0);
            upper(i, j) = j >= i ? work(row, j) : 0.0;
        }
    }
    const Matrix ordered = product(lower, upper);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            result(static_cast<std::size_t>(perm[i]), j) = ordered(i, j);
        }
    }
    return result;
}

TEST(InnerLuDecomp, FactorsReproduceTheMatrix) {
    Random random(21);
    for (int trial = 0; trial < 500; ++trial) {
        const auto n = static_cast<std::size_t>(random.integer(1, 10));
        const Matrix a = randomMatrix(random, n, n);
        Matrix work = a;
        std::vector<int32_t> perm(n);
        ASSERT_EQ(zelm::innerLUDecomp(a.m(), work.data(), perm.data()), ZELM_OK);
        // Backward error of elimination: n * epsilon times a growth that is small for random matrices.
        EXPECT_LT(relativeDifference(multipliedOut(work, perm), a), 50.0 * kEpsilon) << "trial " << trial;
    }
}

TEST(InnerLuDecomp, FirstOfEqualCandidatesKeepsThePivot) {
    // Scales 1 and 0.5: both rows score exactly 1 for the first position.
    std::array<double, 4> work = {1, 0, 2, 2};
    std::array<int32_t, 2> perm = {9, 9};
    ASSERT_EQ(zelm::innerLUDecomp(2, work.data(), perm.data()), ZELM_OK);
    EXPECT_EQ(perm, (std::array<int32_t, 2>{0, 1}));
    EXPECT_EQ(work, (std::array<double, 4>{1, 0, 2, 2}));
}

TEST(InnerLuDecomp, ScaledCandidatesDecideNotTheEntriesThemselves) {
    // 10 is larger than 1, but small in its own row.
    std::array<double, 4> work = {10, 1000, 1, 1};
    std::array<int32_t, 2> perm = {9, 9};
    ASSERT_EQ(zelm::innerLUDecomp(2, work.data(), perm.data()), ZELM_OK);
    EXPECT_EQ(perm, (std::array<int32_t, 2>{1, 0}));
}

TEST(InnerLuDecomp, AZeroFirstPivotExchangesTheRows) {
    std::array<double, 4> work = {0, 1, 1, 0};
    std::array<int32_t, 2> perm = {9, 9};
    ASSERT_EQ(zelm::innerLUDecomp(2, work.data(), perm.data()), ZELM_OK);
    EXPECT_EQ(perm, (std::array<int32_t, 2>{1, 0}));
    EXPECT_EQ(work, (std::array<double, 4>{0, 1, 1, 0})) << "the rows stay where they are";
}

TEST(InnerLuDecomp, ScalesAreThoseOfTheGivenRows) {
    // After the first step rows 1 and 2 hold (., 2, 0) and (., 1, 0.5). By the scales of the given rows (1/8 and 1) row
    // 2 wins with 1 against 0.25; by scales taken anew both would score 1 and row 1 would stay.
    std::array<double, 9> work = {1, 0, 0, 8, 2, 0.5, 0, 1, 0.5};
    std::array<int32_t, 3> perm{};
    ASSERT_EQ(zelm::innerLUDecomp(3, work.data(), perm.data()), ZELM_OK);
    EXPECT_EQ(perm, (std::array<int32_t, 3>{0, 2, 1}));
}

TEST(InnerLuDecomp, NothingToFactorIsSuccess) {
    EXPECT_EQ(zelm::innerLUDecomp(0, nullptr, nullptr), ZELM_OK);
    EXPECT_EQ(zelm::innerLUDecomp(-1, nullptr, nullptr), ZELM_OK);
}

TEST(MatLu, ExchangeMatrixIsItsOwnInverse) {
    const std::array<double, 4> a = {0, 1, 1, 0};
    std::array<double, 4> inverse{};
    EXPECT_EQ(zelmMatInvert(2, a.data(), inverse.data()), ZELM_OK);
    EXPECT_EQ(inverse, a);
    const std::array<double, 2> b = {3, 5};
    std::array<double, 2> x{};
    EXPECT_EQ(zelmMatSolveLU(2, a.data(), b.data(), x.data()), ZELM_OK);
    EXPECT_EQ(x, (std::array<double, 2>{5, 3}));
}

// Unlike the exchange of two rows, this permutation is not its own inverse.
TEST(MatLu, ACycleOfThreeRowsIsInvertedByItsTranspose) {
    const std::array<double, 9> a = {0, 1, 0, 0, 0, 1, 1, 0, 0};
    std::array<double, 9> inverse{};
    EXPECT_EQ(zelmMatInvert(3, a.data(), inverse.data()), ZELM_OK);
    EXPECT_EQ(inverse, (std::array<double, 9>{0, 0, 1, 1, 0, 0, 0, 1, 0}));
    const std::array<double, 3> b = {1, 2, 3};
    std::array<double, 3> x{};
    EXPECT_EQ(zelmMatSolveLU(3, a.data(), b.data(), x.data()), ZELM_OK);
    EXPECT_EQ(x, (std::array<double, 3>{3, 1, 2}));
}

TEST(MatLu, KnownSystem) {
    const std::array<double, 9> a = {2, 1, 1, 4, -6, 0, -2, 7, 2};
    const std::array<double, 3> b = {5, -2, 9};
    std::array<double, 3> x{};
    EXPECT_EQ(zelmMatSolveLU(3, a.data(), b.data(), x.data()), ZELM_OK);
    EXPECT_TRUE(zelmtest::isClose(x[0], 1.0, 1e-14));
    EXPECT_TRUE(zelmtest::isClose(x[1], 1.0, 1e-14));
    EXPECT_TRUE(zelmtest::isClose(x[2], 2.0, 1e-14));
}

struct Singular {
    const char* why;
    std::array<double, 4> a;
};

TEST(MatLu, SingularMatricesAreRefusedAndNothingIsWritten) {
    const Singular cases[] = {
        {"a row of zeros", {2, 0, 0, 0}},
        {"zero second pivot", {1, 1, 1, 1}},
        {"zero first pivots", {0, 1, 0, 1}},
        {"the product of pivots underflows", {1e-200, 0, 0, 1e-200}},
    };
    for (const auto& [why, a] : cases) {
        std::array<double, 4> out;
        out.fill(kGuard);
        const auto untouched = out;
        const std::array<double, 2> b = {1, 1};
        EXPECT_EQ(zelmMatInvert(2, a.data(), out.data()), ZELM_ERR_SINGULAR) << why;
        EXPECT_EQ(zelmMatSolveLU(2, a.data(), b.data(), out.data()), ZELM_ERR_SINGULAR) << why;
        EXPECT_EQ(out, untouched) << why;
    }
}

TEST(MatLu, ProductOfPivotsJustAboveUnderflowIsAccepted) {
    const std::array<double, 4> a = {1e-150, 0, 0, 1e-150};
    std::array<double, 4> inverse{};
    EXPECT_EQ(zelmMatInvert(2, a.data(), inverse.data()), ZELM_OK);
    EXPECT_TRUE(zelmtest::isClose(inverse[0], 1e150, 4.0 * kEpsilon));
}

TEST(MatLu, NothingToSolveIsSuccessAndWritesNothing) {
    double guard = kGuard;
    for (const int32_t n : {0, -1}) {
        EXPECT_EQ(zelmMatInvert(n, nullptr, &guard), ZELM_OK);
        EXPECT_EQ(zelmMatSolveLU(n, nullptr, nullptr, &guard), ZELM_OK);
        EXPECT_EQ(zelmMatCholeskyDecomp(n, nullptr, &guard), ZELM_OK);
    }
    EXPECT_EQ(guard, kGuard);
}

TEST(MatLu, ResidualOfSystemsIsSmallHoweverBadTheirCondition) {
    Random random(22);
    for (int trial = 0; trial < 500; ++trial) {
        const auto n = static_cast<std::size_t>(random.integer(1, 10));
        Matrix a = trial % 2 == 0 ? randomMatrix(random, n, n) : zelmtest::hilbert(n, n);
        for (std::size_t i = 0; i < n; ++i) {  // rows of any scale
            const double scale = std::pow(10.0, random.integer(-10, 10));
            for (std::size_t j = 0; j < n; ++j) {
                a(i, j) *= scale;
            }
        }
        const Matrix b = randomMatrix(random, n, 1);
        const Matrix original = a;
        Matrix x(n, 1);
        ASSERT_EQ(zelmMatSolveLU(a.m(), a.data(), b.data(), x.data()), ZELM_OK);
        EXPECT_EQ(a.entries, original.entries) << "the matrix must not change";
        for (std::size_t i = 0; i < n; ++i) {
            long double residual = b(i, 0);
            double size = std::fabs(b(i, 0));
            for (std::size_t j = 0; j < n; ++j) {
                residual -= static_cast<long double>(a(i, j)) * x(j, 0);
                size += std::fabs(a(i, j)) * zelmtest::frobeniusNorm(x);
            }
            // Row-wise backward error with a modest growth factor; row scaling does not hurt scaled pivoting.
            EXPECT_LT(std::fabs(static_cast<double>(residual)), 100.0 * kEpsilon * size) << "trial " << trial;
        }
    }
}

TEST(MatLu, InverseTimesMatrixIsIdentityWithinTheCondition) {
    Random random(23);
    for (int trial = 0; trial < 500; ++trial) {
        const auto n = static_cast<std::size_t>(random.integer(1, 10));
        const Matrix a = randomMatrix(random, n, n);
        Matrix inverse(n, n);
        ASSERT_EQ(zelmMatInvert(a.m(), a.data(), inverse.data()), ZELM_OK);
        const double condition = zelmtest::frobeniusNorm(a) * zelmtest::frobeniusNorm(inverse);
        EXPECT_LT(relativeDifference(product(a, inverse), zelmtest::identity(n)), 50.0 * kEpsilon * condition);
    }
}

TEST(MatLu, InverseAgreesToTheBitWithSystemsSolvedColumnByColumn) {
    Random random(24);
    for (int trial = 0; trial < 100; ++trial) {
        const auto n = static_cast<std::size_t>(random.integer(1, 10));
        const Matrix a = randomMatrix(random, n, n);
        Matrix inverse(n, n);
        ASSERT_EQ(zelmMatInvert(a.m(), a.data(), inverse.data()), ZELM_OK);
        for (std::size_t c = 0; c < n; ++c) {
            Matrix unit(n, 1);
            Matrix x(n, 1);
            unit(c, 0) = 1.0;
            ASSERT_EQ(zelmMatSolveLU(a.m(), a.data(), unit.data(), x.data()), ZELM_OK);
            for (std::size_t i = 0; i < n; ++i) {
                EXPECT_TRUE(hasSameBits(inverse(i, c), x(i, 0)));
            }
        }
    }
}

TEST(MatLu, SubstitutionSubtractsInIncreasingOrder) {
    // Unit lower triangle, so that elimination leaves it as it is: x2 = (1 - 1e16) + 1e16 = 0 in this order.
    const std::array<double, 9> a = {1, 0, 0, 0, 1, 0, 1, 1, 1};
    const std::array<double, 3> b = {1e16, -1e16, 1};
    std::array<double, 3> x{};
    ASSERT_EQ(zelmMatSolveLU(3, a.data(), b.data(), x.data()), ZELM_OK);
    EXPECT_EQ(x, (std::array<double, 3>{1e16, -1e16, 0.0 + (1.0 - 1e16) + 1e16}));
}

TEST(MatLu, InverseMayReplaceItsMatrix) {
    Random random(25);
    const Matrix a = randomMatrix(random, 6, 6);
    Matrix apart(6, 6);
    Matrix inPlace = a;
    ASSERT_EQ(zelmMatInvert(6, a.data(), apart.data()), ZELM_OK);
    ASSERT_EQ(zelmMatInvert(6, inPlace.data(), inPlace.data()), ZELM_OK);
    EXPECT_EQ(apart.entries, inPlace.entries);
}

TEST(MatLu, MatricesThatAreNotFiniteAreRefusedAndNothingIsWritten) {
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        for (std::size_t at = 0; at < 9; ++at) {
            Matrix a(3, 3, {4, 1, 2, 1, 5, 3, 2, 3, 6});
            a.entries[at] = bad;
            const Matrix b(3, 1, 1.0);
            Matrix out(3, 3, kGuard);
            EXPECT_EQ(zelmMatInvert(3, a.data(), out.data()), ZELM_ERR_SINGULAR) << "entry " << at;
            EXPECT_EQ(zelmMatSolveLU(3, a.data(), b.data(), out.data()), ZELM_ERR_SINGULAR) << "entry " << at;
            EXPECT_EQ(out.entries, Matrix(3, 3, kGuard).entries);
        }
    }
}

}  // namespace
