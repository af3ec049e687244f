// The inverse of a 3 x 3 matrix by its adjugate, and its silence about singular ones.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "denseMatrix.h"
#include "zelm/math.h"

namespace {

using zelmtest::Matrix;

constexpr double kGuard = 7.25;

TEST(MathInverse3x3, MatrixNeedNotBeSymmetric) {
    const std::array<double, 9> m = {1, 2, 3, 0, 1, 4, 5, 6, 0};
    std::array<double, 9> inverse{};
    zelmMathInvMatrixOfSyn3X3(m.data(), inverse.data());
    EXPECT_EQ(inverse, (std::array<double, 9>{-24, 18, 5, 20, -15, -4, -5, 4, 1}));
}

TEST(MathInverse3x3, InverseTimesMatrixIsIdentity) {
    zelmtest::Random random(131);
    for (int trial = 0; trial < 300; ++trial) {
        const Matrix m = zelmtest::withSingularValues(random, 3, {3.0, 2.0, 1.0});
        Matrix inverse(3, 3);
        zelmMathInvMatrixOfSyn3X3(m.data(), inverse.data());
        // Condition 3: a few roundings.
        EXPECT_LT(zelmtest::relativeDifference(zelmtest::product(m, inverse), zelmtest::identity(3)), 1e-14);
    }
}

TEST(MathInverse3x3, MayReplaceItsMatrix) {
    std::array<double, 9> m = {1, 2, 3, 0, 1, 4, 5, 6, 0};
    zelmMathInvMatrixOfSyn3X3(m.data(), m.data());
    EXPECT_EQ(m, (std::array<double, 9>{-24, 18, 5, 20, -15, -4, -5, 4, 1}));
}

TEST(MathInverse3x3, DeterminantUpToTheThresholdWritesNothing) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double d : {0.0, 1e-9, -1e-9, nan, infinity}) {
        const std::array<double, 9> m = {1, 0, 0, 0, 1, 0, 0, 0, d};
        std::array<double, 9> out;
        out.fill(kGuard);
        const auto untouched = out;
        zelmMathInvMatrixOfSyn3X3(m.data(), out.data());
        EXPECT_EQ(out, untouched) << d;
    }
    const double above = std::nextafter(1e-9, 1.0);
    const std::array<double, 9> m = {1, 0, 0, 0, 1, 0, 0, 0, above};
    std::array<double, 9> out;
    out.fill(kGuard);
    zelmMathInvMatrixOfSyn3X3(m.data(), out.data());
    EXPECT_EQ(out[8], 1.0 / above);
}

}  // namespace
