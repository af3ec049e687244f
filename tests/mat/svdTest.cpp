// Singular value decomposition: residual and orthogonality on every class of matrix, conventions, refusals, outputs
// that are left out, extreme scales, non-finite input.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "denseMatrix.h"
#include "isClose.h"
#include "zelm/mat.h"

namespace {

using zelmtest::columnOrthogonalityError;
using zelmtest::isClose;
using zelmtest::Matrix;
using zelmtest::product;
using zelmtest::Random;
using zelmtest::relativeDifference;
using zelmtest::Spectrum;
using zelmtest::transposed;

constexpr double kGuard = 7.25;
// Relative residual and orthogonality that the library promises; a few hundred roundings.
constexpr double kPromise = 1e-13;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

struct Decomposition {
    Matrix u;
    Matrix w;
    Matrix v;
    int32_t status;

    explicit Decomposition(const Matrix& a) : u(a.rows, a.cols), w(1, a.cols), v(a.cols, a.cols) {
        status = zelmMatSVD(a.m(), a.n(), a.data(), u.data(), w.data(), v.data());
    }
    [[nodiscard]] Matrix multipliedOut() const {
        Matrix scaled = u;
        for (std::size_t i = 0; i < u.rows; ++i) {
            for (std::size_t j = 0; j < u.cols; ++j) {
                scaled(i, j) *= w(0, j);
            }
        }
        return product(scaled, v);
    }
};

void expectProven(const Matrix& a, const std::string& name) {
    const Matrix original = a;
    const Decomposition d(a);
    ASSERT_EQ(d.status, ZELM_OK) << name;
    EXPECT_EQ(a.entries, original.entries) << name << ": the input must not change";
    EXPECT_LE(relativeDifference(d.multipliedOut(), a), kPromise) << name;
    EXPECT_LE(columnOrthogonalityError(d.u), kPromise) << name;
    EXPECT_LE(columnOrthogonalityError(transposed(d.v)), kPromise) << name;
    EXPECT_TRUE(std::is_sorted(d.w.entries.begin(), d.w.entries.end(), std::greater<>())) << name;
    EXPECT_GE(d.w.entries.back(), 0.0) << name;
}

TEST(MatSvd, ResidualAndOrthogonalityOfRandomMatrices) {
    Random random(51);
    for (int trial = 0; trial < 600; ++trial) {
        const auto n = static_cast<std::size_t>(1 + trial % 10);
        const auto m = n + static_cast<std::size_t>(random.integer(0, 12));
        expectProven(zelmtest::randomMatrix(random, m, n), "random");
    }
}

TEST(MatSvd, ResidualAndOrthogonalityOfGivenSpectra) {
    Random random(52);
    for (const Spectrum kind : {Spectrum::kSpread, Spectrum::kGraded, Spectrum::kNearlySingular, Spectrum::kTied,
                                Spectrum::kRepeated, Spectrum::kClustered}) {
        for (int trial = 0; trial < 100; ++trial) {
            const auto n = static_cast<std::size_t>(1 + trial % 10);
            const auto values = zelmtest::spectrumOf(kind, n, random);
            const Matrix a = zelmtest::withSingularValues(random, n + static_cast<std::size_t>(trial % 3), values);
            expectProven(a, nameOf(kind));
        }
    }
}

TEST(MatSvd, ResidualAndOrthogonalityOfHilbertGradedAndTallMatrices) {
    Random random(53);
    for (std::size_t n = 1; n <= 10; ++n) {
        expectProven(zelmtest::hilbert(n, n), "Hilbert");
        expectProven(zelmtest::hilbert(n + 3, n), "tall Hilbert");
        Matrix graded = zelmtest::randomMatrix(random, n, n);
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < n; ++j) {
                graded(i, j) *= std::pow(10.0, -static_cast<double>(i + j));
            }
        }
        expectProven(graded, "graded");
    }
    expectProven(zelmtest::randomMatrix(random, 2000, 6), "tall");
    for (const Spectrum kind : {Spectrum::kGraded, Spectrum::kNearlySingular, Spectrum::kRepeated}) {
        expectProven(zelmtest::withSingularValues(random, 2000, zelmtest::spectrumOf(kind, 6, random)),
                     "tall " + nameOf(kind));
    }
}

TEST(MatSvd, RankDeficientMatricesKeepTheResidualAndTheOrthogonality) {
    Random random(54);
    for (int trial = 0; trial < 100; ++trial) {
        const auto n = static_cast<std::size_t>(2 + trial % 9);
        Matrix a = zelmtest::randomMatrix(random, n + 2, n);
        for (std::size_t i = 0; i < a.rows; ++i) {
            a(i, n - 1) = a(i, 0);
            a(i, n / 2) = trial % 3 == 0 ? 0.0 : a(i, n / 2);
        }
        expectProven(a, "rank deficient");
    }
    expectProven(Matrix(4, 3), "zero");
    const Decomposition zero(Matrix(4, 3));
    EXPECT_EQ(zero.w.entries, (std::vector<double>{0, 0, 0}));
}

TEST(MatSvd, GivenSingularValuesAreRecovered) {
    Random random(55);
    for (int trial = 0; trial < 100; ++trial) {
        const auto n = static_cast<std::size_t>(1 + trial % 10);
        auto values = zelmtest::spectrumOf(Spectrum::kGraded, n, random);
        const Decomposition d(zelmtest::withSingularValues(random, n + 2, values));
        for (std::size_t j = 0; j < n; ++j) {
            // Weyl: no value moves by more than the error of the matrix, a few epsilon of the largest value.
            EXPECT_NEAR(d.w(0, j), values[j], 1e-14);
        }
    }
}

TEST(MatSvd, SubdiagonalZerosOnTheDiagonalAreSplitOff) {
    // A zero on the diagonal of the bidiagonal form: its superdiagonal entry has to be rotated away first.
    for (std::size_t zeroAt = 0; zeroAt < 5; ++zeroAt) {
        Matrix a(6, 5);
        for (std::size_t i = 0; i < 5; ++i) {
            a(i, i) = i == zeroAt ? 0.0 : 1.0 + static_cast<double>(i);
            if (i + 1 < 5) {
                a(i, i + 1) = 0.5;
            }
        }
        expectProven(a, "zero on the diagonal at " + std::to_string(zeroAt));
    }
}

// Conventions.

TEST(MatSvd, DiagonalMatrixIsSortedWithItsVectors) {
    const Decomposition d(Matrix(2, 2, {1, 0, 0, 3}));
    ASSERT_EQ(d.status, ZELM_OK);
    EXPECT_EQ(d.w.entries, (std::vector<double>{3, 1}));
    EXPECT_EQ(std::fabs(d.u(0, 0)), 0.0);
    EXPECT_EQ(std::fabs(d.u(1, 0)), 1.0);
    EXPECT_EQ(std::fabs(d.v(0, 1)), 1.0);
    EXPECT_EQ(std::fabs(d.v(1, 0)), 1.0);
    EXPECT_EQ(d.multipliedOut().entries, (std::vector<double>{1, 0, 0, 3}));
}

TEST(MatSvd, NegativeIdentityHasPositiveSingularValues) {
    const Decomposition d(Matrix(2, 2, {-1, 0, 0, -1}));
    ASSERT_EQ(d.status, ZELM_OK);
    EXPECT_EQ(d.w.entries, (std::vector<double>{1, 1}));
    EXPECT_EQ(d.multipliedOut().entries, (std::vector<double>{-1, 0, 0, -1}));
}

TEST(MatSvd, RowsOfVAndColumnsOfUAreTheSingularVectors) {
    // A = 5 * (0.6, 0.8) * (0, 1)^T has one singular value.
    const Matrix a(2, 2, {0, 3, 0, 4});
    const Decomposition d(a);
    EXPECT_TRUE(isClose(d.w(0, 0), 5.0, 1e-15));
    EXPECT_TRUE(isClose(std::fabs(d.v(0, 1)), 1.0, 1e-15));
    EXPECT_TRUE(isClose(std::fabs(d.u(0, 0)), 0.6, 1e-15));
    EXPECT_TRUE(isClose(std::fabs(d.u(1, 0)), 0.8, 1e-15));
}

TEST(MatSvd, OutputsThatAreLeftOutDoNotChangeTheOthers) {
    Random random(56);
    for (int trial = 0; trial < 50; ++trial) {
        const Matrix a = zelmtest::randomMatrix(random, 7, 4);
        const Decomposition all(a);
        for (int wanted = 1; wanted < 7; ++wanted) {
            Matrix u(7, 4);
            Matrix w(1, 4);
            Matrix v(4, 4);
            const bool wantU = (wanted & 1) != 0;
            const bool wantW = (wanted & 2) != 0;
            const bool wantV = (wanted & 4) != 0;
            ASSERT_EQ(zelmMatSVD(7, 4, a.data(), wantU ? u.data() : nullptr, wantW ? w.data() : nullptr,
                                 wantV ? v.data() : nullptr),
                      ZELM_OK);
            EXPECT_EQ(wantU ? u.entries : all.u.entries, all.u.entries);
            EXPECT_EQ(wantW ? w.entries : all.w.entries, all.w.entries);
            EXPECT_EQ(wantV ? v.entries : all.v.entries, all.v.entries);
        }
    }
}

// Contract.

TEST(MatSvd, NothingWantedIsSuccessWhateverTheShape) {
    EXPECT_EQ(zelmMatSVD(2, 3, nullptr, nullptr, nullptr, nullptr), ZELM_OK);
}

TEST(MatSvd, WideMatrixIsRefusedAndNothingIsWritten) {
    const std::array<double, 6> a = {1, 2, 3, 4, 5, 6};
    std::array<double, 9> u;
    std::array<double, 9> w;
    std::array<double, 9> v;
    u.fill(kGuard);
    w = u;
    v = u;
    const auto untouched = u;
    EXPECT_EQ(zelmMatSVD(2, 3, a.data(), u.data(), w.data(), v.data()), ZELM_ERR_SVD_FAILED);
    EXPECT_EQ(u, untouched);
    EXPECT_EQ(w, untouched);
    EXPECT_EQ(v, untouched);
}

TEST(MatSvd, NoColumnsIsSuccessAndWritesNothing) {
    double guard = kGuard;
    EXPECT_EQ(zelmMatSVD(3, 0, nullptr, &guard, &guard, &guard), ZELM_OK);
    EXPECT_EQ(zelmMatSVD(0, 0, nullptr, &guard, &guard, &guard), ZELM_OK);
    EXPECT_EQ(zelmMatSVD(0, -1, nullptr, &guard, &guard, &guard), ZELM_OK);
    EXPECT_EQ(guard, kGuard);
}

TEST(MatSvd, NonFiniteMatricesFailInsteadOfHanging) {
    Random random(57);
    for (const double bad : {kNan, kInfinity, -kInfinity}) {
        for (std::size_t n = 1; n <= 5; ++n) {
            const Matrix good = zelmtest::randomMatrix(random, n + 1, n);
            for (std::size_t at = 0; at < good.entries.size(); ++at) {
                Matrix a = good;
                a.entries[at] = bad;
                EXPECT_EQ(Decomposition(a).status, ZELM_ERR_SVD_FAILED) << n << " columns, entry " << at;
            }
        }
    }
}

TEST(MatSvd, NormBeyondTheLargestNumberFails) {
    const double most = std::numeric_limits<double>::max();
    EXPECT_EQ(Decomposition(Matrix(2, 2, {most, most, most, most})).status, ZELM_ERR_SVD_FAILED);
}

TEST(MatSvd, ExtremeScalesChangeNothingButTheValues) {
    Random random(58);
    for (const double scale : {0x1p-960, 0x1p-500, 0x1p500, 0x1p1000}) {
        for (int trial = 0; trial < 50; ++trial) {
            Matrix a = zelmtest::randomMatrix(random, 6, 5);
            const Decomposition plain(a);
            for (double& entry : a.entries) {
                entry *= scale;
            }
            expectProven(a, "scaled");
            const Decomposition scaled(a);
            for (std::size_t j = 0; j < 5; ++j) {
                EXPECT_TRUE(isClose(scaled.w(0, j) / scale, plain.w(0, j), 1e-14));
            }
        }
    }
}

// Between tied values the last superdiagonal can settle one rounding above what the stopping rule takes for negligible,
// where no further step changes it. Seen once in some 10^4 matrices R - I and [r1 r2 r3] of rotations.
TEST(MatSvd, TiedValuesThatStallOneRoundingAwayConverge) {
    const double angle = 0.1;
    Random random(59);
    expectProven(Matrix(3, 3,
                        {-0.0049893065574666551, -0.0083355877547562005, 0.099419504684904639,  //
                         0.0079758469730934339, -3.9869310795803692e-05, 0.0040153327497791172, -0.099449011056273531,
                         -0.0032023442682526976, -0.0049624935756859001}),
                 "stalled");
    for (int trial = 0; trial < 50000; ++trial) {
        Matrix a(3, 3);
        double u[3] = {random.normal(), random.normal(), random.normal()};
        const double length = std::sqrt(u[0] * u[0] + u[1] * u[1] + u[2] * u[2]);
        for (double& component : u) {
            component /= length;
        }
        const double cross[9] = {0, -u[2], u[1], u[2], 0, -u[0], -u[1], u[0], 0};
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 3; ++j) {
                a(i, j) = (1 - std::cos(angle)) * (u[i] * u[j] - (i == j ? 1 : 0)) + std::sin(angle) * cross[3 * i + j];
            }
        }
        ASSERT_EQ(Decomposition(a).status, ZELM_OK) << trial;
    }
}

}  // namespace
