// Symmetric eigenvalues: residual and orthogonality on every class of matrix, the stopping rules one by one, signs and
// order, non-finite input.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "denseMatrix.h"
#include "isClose.h"
#include "zelm/mat.h"

namespace {

using zelmtest::isClose;
using zelmtest::Matrix;
using zelmtest::product;
using zelmtest::Random;
using zelmtest::Spectrum;
using zelmtest::transposed;

constexpr double kGuard = 7.25;
// Relative residual and orthogonality wherever the values are apart; a few hundred roundings.
constexpr double kPromise = 1e-13;
// Where values coincide or cluster, relative to the norm, the last sweep starts with off-diagonal entries below 1e-8 of
// the norm and need not shrink them quadratically. It never enlarges them, so 1e-8 is the bound; 6e-9 is the worst that
// a search over 10^5 such matrices showed.
constexpr double kClusterBound = 1e-8;

struct Decomposition {
    Matrix values;
    Matrix vectors;
    int32_t status;

    explicit Decomposition(const Matrix& a) : values(1, a.cols, kGuard), vectors(a.cols, a.cols, kGuard) {
        status = zelmMatJacobiEigen(a.n(), a.data(), values.data(), vectors.data());
    }
    [[nodiscard]] Matrix multipliedOut() const {
        Matrix scaled = vectors;
        for (std::size_t i = 0; i < vectors.rows; ++i) {
            for (std::size_t j = 0; j < vectors.cols; ++j) {
                scaled(i, j) *= values(0, i);
            }
        }
        return product(transposed(vectors), scaled);
    }
};

void expectProven(const Matrix& a, double residualBound, const std::string& name) {
    const Matrix original = a;
    const Decomposition d(a);
    ASSERT_EQ(d.status, ZELM_OK) << name;
    EXPECT_EQ(a.entries, original.entries) << name << ": the input must not change";
    EXPECT_LE(zelmtest::relativeDifference(d.multipliedOut(), a), residualBound) << name;
    EXPECT_LE(zelmtest::columnOrthogonalityError(transposed(d.vectors)), kPromise) << name;
    EXPECT_TRUE(std::is_sorted(d.values.entries.begin(), d.values.entries.end(), std::greater<>())) << name;
}

Matrix randomSymmetric(Random& random, std::size_t n) {
    Matrix a = zelmtest::randomMatrix(random, n, n);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            a(i, j) = a(j, i);
        }
    }
    return a;
}

TEST(MatJacobiEigen, ResidualAndOrthogonalityOfRandomHilbertAndNormalMatrices) {
    Random random(71);
    for (int trial = 0; trial < 500; ++trial) {
        const auto n = static_cast<std::size_t>(1 + trial % 10);
        expectProven(randomSymmetric(random, n), kPromise, "random");
        Matrix graded = randomSymmetric(random, n);
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < n; ++j) {
                graded(i, j) *= std::pow(10.0, -0.5 * static_cast<double>(i + j));
            }
        }
        expectProven(graded, kPromise, "graded");
        expectProven(zelmtest::hilbert(n, n), kPromise, "Hilbert");
        const Matrix design = zelmtest::randomMatrix(random, 30, n);
        Matrix normal(n, n);
        zelmMatMulTransposed(1, design.m(), design.n(), design.data(), normal.data());
        expectProven(normal, kPromise, "normal matrix");
    }
    const Matrix tall = zelmtest::randomMatrix(random, 2000, 6);
    Matrix normal(6, 6);
    zelmMatMulTransposed(1, tall.m(), tall.n(), tall.data(), normal.data());
    expectProven(normal, kPromise, "normal matrix of 2000 x 6");
}

TEST(MatJacobiEigen, ResidualAndOrthogonalityOfSpreadNearlySingularAndTiedSpectra) {
    Random random(72);
    for (const Spectrum kind : {Spectrum::kSpread, Spectrum::kNearlySingular, Spectrum::kTied}) {
        for (int trial = 0; trial < 300; ++trial) {
            const auto n = static_cast<std::size_t>(1 + trial % 10);
            expectProven(zelmtest::withEigenvalues(random, zelmtest::spectrumOf(kind, n, random)), kPromise,
                         nameOf(kind));
        }
    }
}

TEST(MatJacobiEigen, GapsOfAThousandthOfTheLargestValueKeepThePromise) {
    Random random(78);
    for (const double gap : {0.05, 0.01, 0.001}) {
        for (int trial = 0; trial < 500; ++trial) {
            std::vector<double> values(static_cast<std::size_t>(2 + trial % 9));
            for (std::size_t i = 0; i < values.size(); ++i) {
                values[i] = 1.0 - gap * static_cast<double>(i);
            }
            expectProven(zelmtest::withEigenvalues(random, values), kPromise, "gap " + std::to_string(gap));
        }
    }
}

TEST(MatJacobiEigen, CoincidingAndClusteredValuesStayWithinTheBoundOfTheStoppingRule) {
    Random random(73);
    for (const Spectrum kind : {Spectrum::kGraded, Spectrum::kRepeated, Spectrum::kClustered}) {
        double worst = 0.0;
        for (int trial = 0; trial < 2000; ++trial) {
            const auto n = static_cast<std::size_t>(2 + trial % 9);
            const Matrix a = zelmtest::withEigenvalues(random, zelmtest::spectrumOf(kind, n, random));
            expectProven(a, kClusterBound, nameOf(kind));
            worst = std::max(worst, zelmtest::relativeDifference(Decomposition(a).multipliedOut(), a));
        }
        EXPECT_GT(worst, kPromise) << nameOf(kind) << ": the stricter promise holds here too, so state it";
    }
}

TEST(MatJacobiEigen, GivenEigenvaluesAreRecovered) {
    Random random(74);
    for (const Spectrum kind : {Spectrum::kSpread, Spectrum::kNearlySingular, Spectrum::kTied, Spectrum::kRepeated,
                                Spectrum::kClustered, Spectrum::kGraded}) {
        for (int trial = 0; trial < 100; ++trial) {
            const auto n = static_cast<std::size_t>(1 + trial % 10);
            auto values = zelmtest::spectrumOf(kind, n, random);
            const Decomposition d(zelmtest::withEigenvalues(random, values));
            std::sort(values.begin(), values.end(), std::greater<>());
            for (std::size_t i = 0; i < n; ++i) {
                // Weyl: within the neglected off-diagonal part; where values are apart within rounding.
                const bool apart = kind == Spectrum::kSpread || kind == Spectrum::kNearlySingular;
                EXPECT_NEAR(d.values(0, i), values[i], (apart ? 1e-14 : kClusterBound) * 10.0 * values[0]);
            }
        }
    }
}

// Worked examples, order and signs.

TEST(MatJacobiEigen, OneRotationByFortyFiveDegrees) {
    const Decomposition d(Matrix(2, 2, {2, 1, 1, 2}));
    ASSERT_EQ(d.status, ZELM_OK);
    EXPECT_EQ(d.values.entries, (std::vector<double>{3, 1}));
    const double h = 1.0 / std::sqrt(2.0);
    EXPECT_EQ(d.vectors.entries, (std::vector<double>{h, h, h, -h}));
}

TEST(MatJacobiEigen, DiagonalMatrixIsSortedWithPermutedIdentityRows) {
    const Decomposition d(Matrix(3, 3, {1, 0, 0, 0, 3, 0, 0, 0, 2}));
    ASSERT_EQ(d.status, ZELM_OK);
    EXPECT_EQ(d.values.entries, (std::vector<double>{3, 2, 1}));
    EXPECT_EQ(d.vectors.entries, (std::vector<double>{0, 1, 0, 0, 0, 1, 1, 0, 0}));
}

// Its off-diagonal squares are not less than 1e-32 * 0, and no sweep changes that.
TEST(MatJacobiEigen, TheZeroMatrixIsRefused) {
    for (const std::size_t n : {1U, 2U, 4U}) {
        const Decomposition d(Matrix(n, n));
        EXPECT_EQ(d.status, ZELM_ERR_EIGEN_NOT_CONVERGED);
        EXPECT_EQ(d.values.entries, std::vector<double>(n, kGuard)) << "values are not written";
        EXPECT_EQ(zelmtest::columnOrthogonalityError(d.vectors), 0.0) << "no rotation was made";
    }
}

TEST(MatJacobiEigen, OneEntryThatIsNotZeroMakesADiagonalMatrixOfZeros) {
    const Decomposition d(Matrix(3, 3, {0, 0, 0, 0, 0, 0, 0, 0, -2}));
    ASSERT_EQ(d.status, ZELM_OK);
    EXPECT_EQ(d.values.entries, (std::vector<double>{0, 0, -2}));
    EXPECT_EQ(std::vector<double>(d.vectors.entries.begin() + 6, d.vectors.entries.end()),
              (std::vector<double>{0, 0, 1}));
}

// 1e200 squared is not finite.
TEST(MatJacobiEigen, DiagonalMatricesAreSortedWhateverTheSizeOfTheirEntries) {
    for (const double most : {1e155, 1e200, std::numeric_limits<double>::max()}) {
        const Decomposition d(Matrix(3, 3, {1, 0, 0, 0, most, 0, 0, 0, -most}));
        ASSERT_EQ(d.status, ZELM_OK);
        EXPECT_EQ(d.values.entries, (std::vector<double>{most, 1, -most}));
        EXPECT_EQ(d.vectors.entries, (std::vector<double>{0, 1, 0, 1, 0, 0, 0, 0, 1}));
    }
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double bad : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(Decomposition(Matrix(2, 2, {bad, 0, 0, 1})).status, ZELM_ERR_EIGEN_NOT_CONVERGED) << bad;
    }
    EXPECT_EQ(Decomposition(Matrix(2, 2, {1e200, 1e190, 1e190, 1})).status, ZELM_ERR_EIGEN_NOT_CONVERGED)
        << "not diagonal";
}

TEST(MatJacobiEigen, OnlyTheUpperTriangleIsRead) {
    Random random(75);
    const Matrix a = randomSymmetric(random, 6);
    Matrix upper = a;
    for (std::size_t i = 0; i < 6; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            upper(i, j) = std::numeric_limits<double>::quiet_NaN();
        }
    }
    const Decomposition full(a);
    const Decomposition half(upper);
    ASSERT_EQ(half.status, ZELM_OK);
    EXPECT_EQ(half.values.entries, full.values.entries);
    EXPECT_EQ(half.vectors.entries, full.vectors.entries);
}

TEST(MatJacobiEigen, OutputsThatAreLeftOutDoNotChangeTheOther) {
    Random random(76);
    const Matrix a = randomSymmetric(random, 7);
    const Decomposition both(a);
    Matrix values(1, 7);
    Matrix vectors(7, 7);
    ASSERT_EQ(zelmMatJacobiEigen(7, a.data(), values.data(), nullptr), ZELM_OK);
    ASSERT_EQ(zelmMatJacobiEigen(7, a.data(), nullptr, vectors.data()), ZELM_OK);
    EXPECT_EQ(values.entries, both.values.entries);
    EXPECT_EQ(vectors.entries, both.vectors.entries);
}

TEST(MatJacobiEigen, NothingWantedOrNothingGivenIsSuccess) {
    double guard = kGuard;
    EXPECT_EQ(zelmMatJacobiEigen(3, nullptr, nullptr, nullptr), ZELM_OK);
    EXPECT_EQ(zelmMatJacobiEigen(0, nullptr, &guard, &guard), ZELM_OK);
    EXPECT_EQ(zelmMatJacobiEigen(-2, nullptr, &guard, &guard), ZELM_OK);
    EXPECT_EQ(guard, kGuard);
}

// The stopping rules.

TEST(MatJacobiEigen, OffDiagonalBelowTheStartToleranceIsNotRotated) {
    // off = 1e-34 against 1e-32 * 2.5.
    const Decomposition d(Matrix(2, 2, {1, 1e-17, 1e-17, 2}));
    ASSERT_EQ(d.status, ZELM_OK);
    EXPECT_EQ(d.vectors.entries, (std::vector<double>{0, 1, 1, 0}));
    EXPECT_EQ(d.values.entries, (std::vector<double>{2, 1}));
}

TEST(MatJacobiEigen, OffDiagonalBelowTheStopToleranceGetsOneMoreSweep) {
    // off = 1e-18 against 1e-16 * 2.5: rotated once, by about 1e-9.
    const Decomposition d(Matrix(2, 2, {1, 1e-9, 1e-9, 2}));
    ASSERT_EQ(d.status, ZELM_OK);
    EXPECT_TRUE(isClose(d.vectors(0, 0) * 1e9, 1.0, 1e-6));
    EXPECT_TRUE(isClose(d.vectors(1, 1) * 1e9, -1.0, 1e-6));
}

TEST(MatJacobiEigen, EntriesBelowTheAbsoluteThresholdAreNeverRotated) {
    // So small a matrix is not finished by its own tolerance, and its entry is not rotated: 100 idle sweeps.
    const double below = std::nextafter(1e-20, 0.0);
    const Decomposition idle(Matrix(2, 2, {1e-18, below, below, 2e-18}));
    EXPECT_EQ(idle.status, ZELM_ERR_EIGEN_NOT_CONVERGED);
    EXPECT_EQ(idle.values.entries, (std::vector<double>{kGuard, kGuard})) << "values are not written";
    EXPECT_EQ(idle.vectors.entries, (std::vector<double>{1, 0, 0, 1})) << "no rotation was made";

    const Decomposition rotated(Matrix(2, 2, {1e-18, 1e-20, 1e-20, 2e-18}));
    ASSERT_EQ(rotated.status, ZELM_OK);
    EXPECT_NE(rotated.vectors(0, 0), 0.0);
}

TEST(MatJacobiEigen, ScaleFromWhichTheAbsoluteThresholdNeverMatters) {
    Random random(77);
    for (int trial = 0; trial < 200; ++trial) {
        Matrix a = randomSymmetric(random, 10);
        const double size = zelmtest::frobeniusNorm(a);
        for (double& entry : a.entries) {
            entry *= 1e-11 / size;  // 45 entries of 1e-20 on either side weigh less than 1e-8 of this norm
        }
        expectProven(a, kClusterBound, "small scale");
    }
}

TEST(MatJacobiEigen, NonFiniteMatricesFailInsteadOfHanging) {
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e200}) {
        for (const std::size_t at : {0U, 1U, 2U, 4U, 5U, 8U}) {
            Matrix a(3, 3, {4, 1, 2, 1, 5, 3, 2, 3, 6});
            a.entries[at] = bad;
            const Decomposition d(a);
            EXPECT_EQ(d.status, ZELM_ERR_EIGEN_NOT_CONVERGED) << "entry " << at << " = " << bad;
            EXPECT_EQ(d.values.entries, (std::vector<double>{kGuard, kGuard, kGuard}));
        }
    }
}

}  // namespace
