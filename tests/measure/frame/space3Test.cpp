// Vectors, 3 x 3 matrices and homographies against closed forms.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "isClose.h"
#include "random.h"
#include "space3.h"

namespace zelm::measure {
namespace {

using zelmtest::isClose;
using zelmtest::Random;

// Sums of three products of numbers up to 10, and the inverse of a matrix of condition 100 or less.
constexpr double kRounding = 1e-12;

Vector3 randomVector(Random& random) {
    return {random.uniform(-5.0, 5.0), random.uniform(-5.0, 5.0), random.uniform(-5.0, 5.0)};
}

// Off-diagonal elements up to 1 beside diagonal ones of 3 to 5: far from singular.
Matrix3 randomMatrix(Random& random) {
    Matrix3 A{};
    for (std::size_t i = 0; i < 9; ++i) {
        A[i] = i % 4 == 0 ? random.uniform(3.0, 5.0) : random.uniform(-1.0, 1.0);
    }
    return A;
}

TEST(MeasureMatrix3, VectorProductsAreTheirClosedForms) {
    const Vector3 x{1.0, 0.0, 0.0};
    const Vector3 y{0.0, 1.0, 0.0};
    EXPECT_EQ(cross(x, y), (Vector3{0.0, 0.0, 1.0}));
    EXPECT_EQ(cross(y, x), (Vector3{0.0, 0.0, -1.0}));
    EXPECT_EQ(dot({1.0, 2.0, 3.0}, {4.0, -5.0, 6.0}), 12.0);
    EXPECT_EQ(unit({0.0, 3.0, -4.0}), (Vector3{0.0, 0.6, -0.8}));
    Random random(1);
    for (int i = 0; i < 20; ++i) {
        const Vector3 a = randomVector(random);
        const Vector3 b = randomVector(random);
        const Vector3 c = cross(a, b);
        EXPECT_TRUE(isClose(dot(c, a), 0.0, 100.0 * kRounding));  // products of three numbers
        EXPECT_TRUE(isClose(dot(c, b), 0.0, 100.0 * kRounding));
        EXPECT_TRUE(isClose(dot(unit(a), unit(a)), 1.0, kRounding));
    }
}

TEST(MeasureMatrix3, AnglesAreExactWhereCosinesAreNot) {
    // 1 - cos of 1e-9 is lost to rounding; the sine is not.
    for (const double angle : {0.0, 1e-9, 0.3, 0.5 * std::numbers::pi, 3.0, std::numbers::pi - 1e-9}) {
        const Vector3 a{2.0, 0.0, 0.0};
        const Vector3 b{3.0 * std::cos(angle), 0.0, 3.0 * std::sin(angle)};
        EXPECT_NEAR(angleBetween(a, b), angle, 1e-15 + 1e-14 * angle);
        EXPECT_NEAR(angleBetween(b, a), angle, 1e-15 + 1e-14 * angle);
    }
}

TEST(MeasureMatrix3, ProductsAreRowsTimesColumns) {
    const Matrix3 a{1, 2, 3, 4, 5, 6, 7, 8, 10};
    const Matrix3 b{-1, 0, 2, 3, 1, -2, 0, 4, 1};
    EXPECT_EQ(product(a, b), (Matrix3{5, 14, 1, 11, 29, 4, 17, 48, 8}));
    EXPECT_EQ(times(a, {1.0, -1.0, 2.0}), (Vector3{5.0, 11.0, 19.0}));
    EXPECT_EQ(timesTransposed(a, {1.0, -1.0, 2.0}), (Vector3{11.0, 13.0, 17.0}));
}

TEST(MeasureMatrix3, InverseTimesMatrixIsTheIdentity) {
    Random random(2);
    for (int i = 0; i < 50; ++i) {
        const Matrix3 A = randomMatrix(random);
        const auto inverted = inverse(A);
        ASSERT_TRUE(inverted.has_value());
        for (const Matrix3& one : {product(*inverted, A), product(A, *inverted)}) {
            for (std::size_t k = 0; k < 9; ++k) {
                EXPECT_TRUE(isClose(one[k], k % 4 == 0 ? 1.0 : 0.0, kRounding));
            }
        }
    }
}

TEST(MeasureMatrix3, SingularMatricesHaveNoInverse) {
    EXPECT_FALSE(inverse(Matrix3{}).has_value());
    EXPECT_FALSE(inverse(Matrix3{1, 2, 3, 2, 4, 6, 0, 1, 5}).has_value());  // whole numbers: exactly singular
    Matrix3 A{1, 0, 0, 0, 1, 0, 0, 0, 1};
    A[4] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(inverse(A).has_value());
    A[4] = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(inverse(A).has_value());
}

TEST(MeasureMatrix3, HomographiesDivideByTheirThirdRow) {
    const Matrix3 H{2, 0, 1, 0, 4, -2, 0, 1, 2};
    const Point2d q = apply(H, {3.0, 2.0});
    EXPECT_EQ(q.x, 7.0 / 4.0);
    EXPECT_EQ(q.y, 6.0 / 4.0);
    const auto back = inverse(H);
    ASSERT_TRUE(back.has_value());
    const Point2d p = apply(*back, q);
    EXPECT_TRUE(isClose(p.x, 3.0, kRounding));
    EXPECT_TRUE(isClose(p.y, 2.0, kRounding));
}

}  // namespace
}  // namespace zelm::measure
