// Stationary points of quadratic curves and surfaces.
#include <gtest/gtest.h>

#include <cmath>

#include "random.h"
#include "zelm/math.h"

namespace {

constexpr double kGuard = 7.25;

TEST(MathExtrema, VertexOfAParabola) {
    double x = kGuard;
    EXPECT_EQ(zelmMathExtremumOfQuadraticCurves(2, -8, 3, &x), -5.0);
    EXPECT_EQ(x, 2.0);
}

TEST(MathExtrema, ParabolaWithoutCurvatureGivesNoFinitePlace) {
    double x = kGuard;
    EXPECT_FALSE(std::isfinite(zelmMathExtremumOfQuadraticCurves(0, 1, 3, &x)));
    EXPECT_FALSE(std::isfinite(x));
}

TEST(MathExtrema, BottomOfABowlAndSaddle) {
    double x = kGuard;
    double y = kGuard;
    // (x - 1)^2 + 2 (y + 3)^2 + 4
    EXPECT_EQ(zelmMathExtremumOfQuadraticSurface(1, 0, 2, -2, 12, 23, &x, &y), 4.0);
    EXPECT_EQ(x, 1.0);
    EXPECT_EQ(y, -3.0);
    // x * y has its saddle at the origin
    EXPECT_EQ(zelmMathExtremumOfQuadraticSurface(0, 1, 0, 0, 0, 5, &x, &y), 5.0);
    EXPECT_EQ(std::fabs(x), 0.0);
    EXPECT_EQ(std::fabs(y), 0.0);
}

TEST(MathExtrema, FlatSurfaceGivesNoFinitePlace) {
    double x = kGuard;
    double y = kGuard;
    zelmMathExtremumOfQuadraticSurface(1, 2, 1, 1, 0, 0, &x, &y);
    EXPECT_FALSE(std::isfinite(x));
}

TEST(MathExtrema, GradientVanishesAtTheStationaryPoint) {
    zelmtest::Random random(181);
    for (int trial = 0; trial < 500; ++trial) {
        double p[6];
        for (double& value : p) {
            value = random.normal();
        }
        const auto [a, b, c, d, e, f] = p;
        double x = kGuard;
        double y = kGuard;
        const double value = zelmMathExtremumOfQuadraticSurface(a, b, c, d, e, f, &x, &y);
        const double det = std::fabs(b * b - 4.0 * a * c);
        const double size = 1.0 + std::fabs(x) + std::fabs(y);
        const double tolerance = 1e-13 * size * (1.0 + 1.0 / det);  // numerators rounded, divided by det
        EXPECT_NEAR(2.0 * a * x + b * y + d, 0.0, tolerance);
        EXPECT_NEAR(b * x + 2.0 * c * y + e, 0.0, tolerance);
        EXPECT_NEAR(value, a * x * x + b * x * y + c * y * y + d * x + e * y + f, tolerance * size);

        const double vertex = zelmMathExtremumOfQuadraticCurves(a, b, c, &x);
        EXPECT_NEAR(2.0 * a * x + b, 0.0, 1e-14 * (1.0 + std::fabs(b)));
        EXPECT_NEAR(vertex, c - b * b / (4.0 * a), 1e-14 * (1.0 + std::fabs(c) + b * b / std::fabs(a)));
    }
}

}  // namespace
