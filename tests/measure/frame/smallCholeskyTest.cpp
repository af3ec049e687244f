// Small positive definite systems against known solutions.
#include <gtest/gtest.h>

#include <limits>

#include "cholesky.h"
#include "isClose.h"
#include "random.h"

namespace zelm::measure {
namespace {

using zelmtest::isClose;
using zelmtest::Random;

// B' B + shift, the upper triangle alone: positive definite for a positive shift. What is below the diagonal is not to
// be read.
template <std::size_t n>
Matrix<n> definiteMatrix(Random& random, double shift) {
    Matrix<n> B{};
    for (auto& row : B) {
        for (double& value : row) {
            value = random.uniform(-1.0, 1.0);
        }
    }
    Matrix<n> N{};
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            N[i][j] = i == j ? shift : 0.0;
            for (std::size_t k = 0; k < n; ++k) {
                N[i][j] += B[k][i] * B[k][j];
            }
            if (j < i) {
                N[i][j] = std::numeric_limits<double>::quiet_NaN();
            }
        }
    }
    return N;
}

template <std::size_t n>
void expectKnownSolutions() {
    Random random(n);
    for (int round = 0; round < 20; ++round) {
        Matrix<n> N = definiteMatrix<n>(random, 0.5);
        Vector<n> known{};
        for (double& value : known) {
            value = random.uniform(-3.0, 3.0);
        }
        Vector<n> right{};
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < n; ++j) {
                right[i] += N[std::min(i, j)][std::max(i, j)] * known[j];
            }
        }
        ASSERT_TRUE(factor<n>(N));
        const Vector<n> x = solve<n>(N, right);
        for (std::size_t i = 0; i < n; ++i) {
            EXPECT_TRUE(isClose(x[i], known[i], 1e-13));  // rounding, times a condition of some ten
        }
    }
}

TEST(MeasureCholesky, KnownSolutionsAreFound) {
    expectKnownSolutions<3>();
    expectKnownSolutions<5>();
    expectKnownSolutions<8>();
}

TEST(MeasureCholesky, FactorIsTheUpperRoot) {
    Matrix<3> N{{{4.0, 2.0, -2.0}, {0.0, 10.0, 5.0}, {0.0, 0.0, 9.0}}};
    ASSERT_TRUE(factor<3>(N));
    const Matrix<3> root{{{2.0, 1.0, -1.0}, {0.0, 3.0, 2.0}, {0.0, 0.0, 2.0}}};
    EXPECT_EQ(N, root);
}

TEST(MeasureCholesky, IndefiniteMatricesAreRefused) {
    Matrix<3> indefinite{{{1.0, 2.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};
    EXPECT_FALSE(factor<3>(indefinite));
    Matrix<3> negative{{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, -1.0}}};
    EXPECT_FALSE(factor<3>(negative));
    Matrix<3> zero{};
    EXPECT_FALSE(factor<3>(zero));
    Matrix<3> none{{{1.0, std::numeric_limits<double>::quiet_NaN(), 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};
    EXPECT_FALSE(factor<3>(none));
}

TEST(MeasureCholesky, NearlyDependentColumnsAreRefusedAtTheLimit) {
    // The second pivot is d of its diagonal 1 + d: refused up to 1e-9.
    const auto isDefinite = [](double d) {
        Matrix<3> N{{{1.0, 1.0, 0.0}, {0.0, 1.0 + d, 0.0}, {0.0, 0.0, 1.0}}};
        return factor<3>(N);
    };
    EXPECT_FALSE(isDefinite(0.9e-9));
    EXPECT_TRUE(isDefinite(1.1e-9));
}

}  // namespace
}  // namespace zelm::measure
