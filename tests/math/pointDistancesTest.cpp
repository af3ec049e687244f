// Distances of points from points, lines and circles, and the nearest points.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "isClose.h"
#include "random.h"
#include "zelm/math.h"

namespace {

using zelmtest::isClose;
using zelmtest::Random;

constexpr double kGuard = 7.25;

TEST(MathDistances, PointToPoint) {
    EXPECT_EQ(zelmMathGetDistFromPointToPoint(1, 2, 4, 6), 5.0);
    EXPECT_EQ(zelmMathGetDistFromPointToPoint(4, 6, 1, 2), 5.0);
    EXPECT_EQ(zelmMathGetDistFromPointToPoint(3, 3, 3, 3), 0.0);
}

TEST(MathDistances, PointToLineWhateverTheLinesScale) {
    EXPECT_EQ(zelmMathGetDistFromPointToLine(3, 4, -5, 3, 4), 4.0);
    EXPECT_EQ(zelmMathGetDistFromPointToLine(-6, -8, 10, 3, 4), 4.0);
    EXPECT_FALSE(std::isfinite(zelmMathGetDistFromPointToLine(0, 0, 1, 3, 4))) << "no guard";
    EXPECT_FALSE(std::isfinite(zelmMathGetDistFromPointToLine(0, 0, 0, 3, 4)));
}

TEST(MathDistances, FootOfThePerpendicular) {
    double fx = kGuard;
    double fy = kGuard;
    EXPECT_EQ(zelmMathGetDistAndCrossPointFromPointToLine(0, 2, -4, 7, 5, &fx, &fy), 3.0);
    EXPECT_EQ(fx, 7.0);
    EXPECT_EQ(fy, 2.0);
}

TEST(MathDistances, FootLiesOnTheLineAndAtTheDistance) {
    Random random(171);
    for (int trial = 0; trial < 500; ++trial) {
        const double a = random.normal();
        const double b = random.normal();
        const double c = random.normal();
        const double x = random.uniform(-9, 9);
        const double y = random.uniform(-9, 9);
        double fx = kGuard;
        double fy = kGuard;
        const double distance = zelmMathGetDistAndCrossPointFromPointToLine(a, b, c, x, y, &fx, &fy);
        EXPECT_EQ(distance, zelmMathGetDistFromPointToLine(a, b, c, x, y));
        const double tolerance = 1e-13 * (1.0 + std::fabs(c) / std::hypot(a, b));  // foot coordinates grow with c
        EXPECT_NEAR((a * fx + b * fy + c) / std::hypot(a, b), 0.0, tolerance);
        EXPECT_NEAR(zelmMathGetDistFromPointToPoint(x, y, fx, fy), distance, tolerance);
    }
}

TEST(MathDistances, LineWithoutANormalHasNoFootAndNoFiniteDistance) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double a : {0.0, 1e-9, 3.16e-5, nan}) {  // squares up to 1e-9
        double fx = kGuard;
        double fy = kGuard;
        EXPECT_FALSE(std::isfinite(zelmMathGetDistAndCrossPointFromPointToLine(a, 0, 1, 2, 3, &fx, &fy))) << a;
        EXPECT_EQ(fx, kGuard);
        EXPECT_EQ(fy, kGuard);
    }
    double fx = kGuard;
    double fy = kGuard;
    EXPECT_TRUE(isClose(zelmMathGetDistAndCrossPointFromPointToLine(3.17e-5, 0, -3.17e-5, 2, 3, &fx, &fy), 1.0, 1e-15));
    EXPECT_TRUE(isClose(fx, 1.0, 1e-15));
    EXPECT_EQ(fy, 3.0);
}

TEST(MathDistances, PointToCircleFromOutsideInsideAndTheCentre) {
    double px = kGuard;
    double py = kGuard;
    EXPECT_EQ(zelmMathGetDistFromPointToCircle(1, 2, 3, 6, 2, &px, &py), 2.0);
    EXPECT_EQ(px, 4.0);
    EXPECT_EQ(py, 2.0);
    EXPECT_EQ(zelmMathGetDistFromPointToCircle(1, 2, 3, 2, 2, &px, &py), 2.0);
    EXPECT_EQ(px, 4.0);
    EXPECT_EQ(zelmMathGetDistFromPointToCircle(1, 2, 3, 1, 2, &px, &py), 3.0);
    EXPECT_EQ(px, 4.0) << "the centre takes the direction of the x axis";
    EXPECT_EQ(py, 2.0);
}

TEST(MathDistances, NearestPointLiesOnTheCircle) {
    Random random(172);
    for (int trial = 0; trial < 500; ++trial) {
        const double r = random.uniform(0.1, 9.0);
        const double x = random.uniform(-9, 9);
        const double y = random.uniform(-9, 9);
        double px = kGuard;
        double py = kGuard;
        const double distance = zelmMathGetDistFromPointToCircle(1, -2, r, x, y, &px, &py);
        EXPECT_NEAR(std::hypot(px - 1, py + 2), r, 1e-14 * 20);
        EXPECT_NEAR(distance, std::fabs(std::hypot(x - 1, y + 2) - r), 1e-14 * 20);
    }
}

}  // namespace
