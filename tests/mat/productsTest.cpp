// Matrix products: shapes, refusals, the documented order of every sum to the bit, in-place use of zelmMatGenMul.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

#include "denseMatrix.h"
#include "isClose.h"
#include "zelm/mat.h"

namespace {

using zelmtest::hasSameBits;
using zelmtest::Matrix;
using zelmtest::Random;
using zelmtest::randomMatrix;
using zelmtest::transposed;

constexpr double kGuard = 7.25;

// The contract, literally: from 0.0, in increasing k, one product added at a time.
double dotInOrder(const Matrix& a, std::size_t i, const Matrix& b, std::size_t j) {
    double sum = 0.0;
    for (std::size_t k = 0; k < a.cols; ++k) {
        sum += a(i, k) * b(k, j);
    }
    return sum;
}

void expectOrderedProduct(const Matrix& actual, const Matrix& a, const Matrix& b) {
    for (std::size_t i = 0; i < a.rows; ++i) {
        for (std::size_t j = 0; j < b.cols; ++j) {
            ASSERT_TRUE(hasSameBits(actual(i, j), dotInOrder(a, i, b, j))) << i << ", " << j;
        }
    }
}

// Entries of very different size, so that any other order of a sum shows.
Matrix wildMatrix(Random& random, std::size_t rows, std::size_t cols) {
    Matrix result = randomMatrix(random, rows, cols);
    for (double& entry : result.entries) {
        entry *= std::pow(10.0, random.integer(-8, 8));
    }
    return result;
}

TEST(MatProducts, EveryProductIsSummedInIncreasingOrderToTheBit) {
    Random random(11);
    for (int trial = 0; trial < 300; ++trial) {
        const auto m = static_cast<std::size_t>(random.integer(1, 12));
        const auto n = static_cast<std::size_t>(random.integer(1, 40));
        const auto p = static_cast<std::size_t>(random.integer(1, 12));
        const Matrix a = wildMatrix(random, m, n);
        const Matrix b = wildMatrix(random, n, p);
        Matrix c(m, p);
        ASSERT_EQ(zelmMatMul(a.m(), a.n(), a.data(), b.m(), b.n(), b.data(), c.data()), ZELM_OK);
        expectOrderedProduct(c, a, b);

        const Matrix bt = transposed(b);
        ASSERT_EQ(zelmMatMulTransposed2(0, a.m(), a.n(), a.data(), bt.m(), bt.n(), bt.data(), c.data()), ZELM_OK);
        expectOrderedProduct(c, a, b);

        const Matrix at = transposed(a);
        ASSERT_EQ(zelmMatMulTransposed2(1, at.m(), at.n(), at.data(), b.m(), b.n(), b.data(), c.data()), ZELM_OK);
        expectOrderedProduct(c, a, b);

        Matrix aat(m, m);
        zelmMatMulTransposed(0, a.m(), a.n(), a.data(), aat.data());
        expectOrderedProduct(aat, a, at);
        Matrix ata(n, n);
        zelmMatMulTransposed(1, a.m(), a.n(), a.data(), ata.data());
        expectOrderedProduct(ata, at, a);
    }
}

TEST(MatProducts, NormalMatrixOfATallMatrixIsBitwiseSymmetric) {
    Random random(12);
    const Matrix a = wildMatrix(random, 2000, 6);
    Matrix ata(6, 6);
    zelmMatMulTransposed(1, a.m(), a.n(), a.data(), ata.data());
    expectOrderedProduct(ata, transposed(a), a);
    for (std::size_t i = 0; i < 6; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            EXPECT_TRUE(hasSameBits(ata(i, j), ata(j, i)));
        }
    }
}

TEST(MatProducts, GenMulScalesTheFinishedSum) {
    Random random(13);
    for (int trial = 0; trial < 200; ++trial) {
        const auto n = static_cast<std::size_t>(random.integer(1, 12));
        const Matrix a = wildMatrix(random, 4, n);
        const Matrix b = wildMatrix(random, n, 3);
        const Matrix c = wildMatrix(random, 4, 3);
        const double alpha = random.normal();
        const double beta = random.normal();
        Matrix d(4, 3);
        ASSERT_EQ(zelmMatGenMul(alpha, 4, a.n(), a.data(), b.m(), 3, b.data(), beta, c.data(), d.data()), ZELM_OK);
        for (std::size_t i = 0; i < 4; ++i) {
            for (std::size_t j = 0; j < 3; ++j) {
                EXPECT_TRUE(hasSameBits(d(i, j), c(i, j) * beta + dotInOrder(a, i, b, j) * alpha));
            }
        }
    }
}

TEST(MatProducts, GenMulInPlaceGivesProductMinusC) {
    const std::array<double, 4> a = {1, 2, 3, 4};
    const std::array<double, 4> b = {0, 1, 1, 0};
    std::array<double, 4> d = {10, 20, 30, 40};
    ASSERT_EQ(zelmMatGenMul(1.0, 2, 2, a.data(), 2, 2, b.data(), -1.0, d.data(), d.data()), ZELM_OK);
    EXPECT_EQ(d, (std::array<double, 4>{2 - 10, 1 - 20, 4 - 30, 3 - 40}));
}

TEST(MatProducts, ColumnVectorTimesTransposedMatrix) {
    const std::array<double, 6> a = {1, 2, 3, 4, 5, 6};
    const std::array<double, 3> b = {1, -1, 2};
    std::array<double, 3> c = {kGuard, kGuard, kGuard};
    EXPECT_EQ(zelmMatMulTransposed2(1, 3, 2, a.data(), 3, 1, b.data(), c.data()), ZELM_OK);
    EXPECT_EQ(c, (std::array<double, 3>{1 - 3 + 10, 2 - 4 + 12, kGuard}));
}

// Contract: a mismatch of the inner sizes is -100, not -2, and comes before every other test.

TEST(MatProducts, MismatchedInnerSizesAreDegenerateAndNothingIsWritten) {
    const std::array<double, 6> a = {1, 2, 3, 4, 5, 6};
    const std::array<double, 6> b = {1, 2, 3, 4, 5, 6};
    std::array<double, 9> c;
    c.fill(kGuard);
    const auto untouched = c;
    EXPECT_EQ(zelmMatMul(2, 3, a.data(), 2, 2, b.data(), c.data()), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmMatGenMul(1, 2, 3, a.data(), 2, 2, b.data(), 0, a.data(), c.data()), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmMatMulTransposed2(1, 3, 2, a.data(), 2, 1, b.data(), c.data()), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmMatMulTransposed2(0, 3, 2, a.data(), 2, 3, b.data(), c.data()), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(c, untouched);
}

TEST(MatProducts, MismatchIsTestedBeforeEmptyShapes) {
    EXPECT_EQ(zelmMatMul(0, 3, nullptr, 2, 2, nullptr, nullptr), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmMatMul(-1, 3, nullptr, 2, 0, nullptr, nullptr), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmMatGenMul(1, 0, 3, nullptr, 2, 2, nullptr, 1, nullptr, nullptr), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmMatMulTransposed2(1, 3, 0, nullptr, 2, 0, nullptr, nullptr), ZELM_ERR_DEGENERATE);
}

TEST(MatProducts, FlagSelectsWhichSizesMustAgree) {
    const std::array<double, 6> a = {1, 2, 3, 4, 5, 6};
    std::array<double, 9> c{};
    EXPECT_EQ(zelmMatMulTransposed2(0, 3, 2, a.data(), 3, 2, a.data(), c.data()), ZELM_OK);
    EXPECT_EQ(zelmMatMulTransposed2(-5, 3, 2, a.data(), 3, 2, a.data(), c.data()), ZELM_OK);
    EXPECT_EQ(zelmMatMulTransposed2(0, 3, 2, a.data(), 2, 3, a.data(), c.data()), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmMatMulTransposed2(-5, 3, 2, a.data(), 2, 3, a.data(), c.data()), ZELM_ERR_DEGENERATE);
}

TEST(MatProducts, EmptyOuterShapesSucceedAndWriteNothing) {
    const std::array<double, 4> a = {1, 2, 3, 4};
    std::array<double, 4> c;
    c.fill(kGuard);
    const auto untouched = c;
    for (const int32_t none : {0, -2}) {
        EXPECT_EQ(zelmMatMul(none, 2, a.data(), 2, 2, a.data(), c.data()), ZELM_OK);
        EXPECT_EQ(zelmMatMul(2, 2, a.data(), 2, none, a.data(), c.data()), ZELM_OK);
        EXPECT_EQ(zelmMatGenMul(1, none, 2, a.data(), 2, 2, a.data(), 1, a.data(), c.data()), ZELM_OK);
        zelmMatMulTransposed(0, none, 2, a.data(), c.data());
        zelmMatMulTransposed(1, 2, none, a.data(), c.data());
        EXPECT_EQ(zelmMatMulTransposed2(0, none, 2, a.data(), 2, 2, a.data(), c.data()), ZELM_OK);
        EXPECT_EQ(zelmMatMulTransposed2(1, 2, none, a.data(), 2, 2, a.data(), c.data()), ZELM_OK);
    }
    EXPECT_EQ(c, untouched);
}

TEST(MatProducts, EmptyInnerSizeWritesZeroSums) {
    for (const int32_t none : {0, -2}) {
        const std::array<double, 4> a = {1, 2, 3, 4};
        const std::array<double, 4> zeros{};
        std::array<double, 4> c;
        c.fill(kGuard);
        EXPECT_EQ(zelmMatMul(2, none, a.data(), none, 2, a.data(), c.data()), ZELM_OK);
        EXPECT_EQ(c, zeros);
        c.fill(kGuard);
        EXPECT_EQ(zelmMatGenMul(3, 2, none, a.data(), none, 2, a.data(), 2, a.data(), c.data()), ZELM_OK);
        EXPECT_EQ(c, (std::array<double, 4>{2, 4, 6, 8}));
        c.fill(kGuard);
        zelmMatMulTransposed(0, 2, none, a.data(), c.data());
        EXPECT_EQ(c, zeros);
        c.fill(kGuard);
        zelmMatMulTransposed(1, none, 2, a.data(), c.data());
        EXPECT_EQ(c, zeros);
        c.fill(kGuard);
        EXPECT_EQ(zelmMatMulTransposed2(0, 2, none, a.data(), 2, none, a.data(), c.data()), ZELM_OK);
        EXPECT_EQ(c, zeros);
        c.fill(kGuard);
        EXPECT_EQ(zelmMatMulTransposed2(1, none, 2, a.data(), none, 2, a.data(), c.data()), ZELM_OK);
        EXPECT_EQ(c, zeros);
    }
}

}  // namespace
