// Points, lines in coefficient form and triangles: distances and nearest points; crossing points and angles, lines
// through points, perpendiculars, (r, q) form; areas and their sign.
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
constexpr double kPi = std::numbers::pi;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

struct Line {
    double a = kGuard;
    double b = kGuard;
    double c = kGuard;
};

double crossAngle(const Line& l, const Line& m) {
    return zelmMathCrossAngle(l.a, l.b, l.c, m.a, m.b, m.c);
}

// Through the point, its normal at the given angle, scaled as given.
Line lineAt(double normalAngle, double x, double y, double scale) {
    const double a = scale * std::cos(normalAngle);
    const double b = scale * std::sin(normalAngle);
    return {a, b, -(a * x + b * y)};
}

TEST(MathCrossPoint, AxisParallelLines) {
    double x = kGuard;
    double y = kGuard;
    EXPECT_EQ(zelmMathCrossPoint(1, 0, -1, 0, 1, -2, &x, &y), ZELM_OK);
    EXPECT_EQ(x, 1.0);
    EXPECT_EQ(y, 2.0);
}

TEST(MathCrossPoint, CrossingLiesOnBothLines) {
    Random random(161);
    for (int trial = 0; trial < 500; ++trial) {
        const Line l = {random.normal(), random.normal(), random.normal()};
        const Line m = {random.normal(), random.normal(), random.normal()};
        double x = kGuard;
        double y = kGuard;
        ASSERT_EQ(zelmMathCrossPoint(l.a, l.b, l.c, m.a, m.b, m.c, &x, &y), ZELM_OK);
        const double size = 1.0 + std::fabs(x) + std::fabs(y);
        const double det = std::fabs(l.b * m.a - l.a * m.b);
        // Roundings of the two numerators, amplified by 1 / det.
        const double tolerance = 1e-14 * size * (1.0 + 1.0 / det);
        EXPECT_NEAR((l.a * x + l.b * y + l.c), 0.0, 10.0 * tolerance);
        EXPECT_NEAR((m.a * x + m.b * y + m.c), 0.0, 10.0 * tolerance);
    }
}

TEST(MathCrossPoint, ParallelLinesUpToTheThresholdAreDegenerateAndNothingIsWritten) {
    for (const double b : {0.0, 1e-9, -1e-9, kNan, kInfinity}) {
        double x = kGuard;
        double y = kGuard;
        EXPECT_EQ(zelmMathCrossPoint(1, 0, -1, 1, b, -2, &x, &y), ZELM_ERR_DEGENERATE) << b;
        EXPECT_EQ(x, kGuard);
        EXPECT_EQ(y, kGuard);
    }
    double x = kGuard;
    double y = kGuard;
    EXPECT_EQ(zelmMathCrossPoint(1, 0, -1, 1, std::nextafter(1e-9, 1.0), -2, &x, &y), ZELM_OK);
    EXPECT_EQ(x, 1.0);
}

TEST(MathLineFromPoints, NormalIsTheDirectionTurnedBackwards) {
    Line l;
    EXPECT_EQ(zelmMathGetLineFrom2Points(0, 0, 1, 0, &l.a, &l.b, &l.c), ZELM_OK);
    EXPECT_EQ(l.a, 0.0);
    EXPECT_EQ(l.b, -1.0) << "the opposite of the record-based primitive; both are relied on";
    EXPECT_EQ(l.c, 0.0);
}

TEST(MathLineFromPoints, BothPointsLieOnTheNormalisedLine) {
    Random random(162);
    for (int trial = 0; trial < 500; ++trial) {
        const Point2d p = {random.uniform(-99, 99), random.uniform(-99, 99)};
        const Point2d q = {random.uniform(-99, 99), random.uniform(-99, 99)};
        Line l;
        ASSERT_EQ(zelmMathGetLineFrom2Points(p.x, p.y, q.x, q.y, &l.a, &l.b, &l.c), ZELM_OK);
        EXPECT_TRUE(isClose(l.a * l.a + l.b * l.b, 1.0, 1e-15));
        // Coordinates of 100, products of 10000 divided by the distance.
        const double tolerance = 1e-11 / std::fmin(1.0, std::hypot(p.x - q.x, p.y - q.y));
        EXPECT_NEAR(l.a * p.x + l.b * p.y + l.c, 0.0, tolerance);
        EXPECT_NEAR(l.a * q.x + l.b * q.y + l.c, 0.0, tolerance);
    }
}

TEST(MathLineFromPoints, PointsUpToTheThresholdAreDegenerateAndNothingIsWritten) {
    for (const double x : {0.0, 1e-9, kNan, kInfinity}) {
        Line l;
        EXPECT_EQ(zelmMathGetLineFrom2Points(0, 0, x, 0, &l.a, &l.b, &l.c), ZELM_ERR_DEGENERATE) << x;
        EXPECT_EQ(l.a, kGuard);
        EXPECT_EQ(l.b, kGuard);
        EXPECT_EQ(l.c, kGuard);
    }
    Line l;
    EXPECT_EQ(zelmMathGetLineFrom2Points(0, 0, 1.0000001e-9, 0, &l.a, &l.b, &l.c), ZELM_OK);
}

TEST(MathPerpendicular, GoesThroughThePointAndIgnoresTheConstant) {
    Line l;
    zelmMathGetOrthogonalLineFromLineAndPoint(3, 4, kNan, 10, 20, &l.a, &l.b, &l.c);
    EXPECT_EQ(l.a, 4.0);
    EXPECT_EQ(l.b, -3.0);
    EXPECT_EQ(l.c, 20.0);
    EXPECT_EQ(l.a * 10 + l.b * 20 + l.c, 0.0);
}

TEST(MathAbcToRq, LargerCoefficientDividesAndTiesTakeTheFirst) {
    double r = kGuard;
    double q = kGuard;
    zelmMathTransAbcToRq(2, 0, -6, &r, &q);
    EXPECT_EQ(r, 3.0);
    EXPECT_EQ(q, 0.0);
    zelmMathTransAbcToRq(1, -4, 8, &r, &q);
    EXPECT_EQ(r, 2.0) << "-8 / -4: the sign of the divisor is kept";
    EXPECT_EQ(q, std::atan2(1.0, -0.25));
    zelmMathTransAbcToRq(-3, 3, 6, &r, &q);
    EXPECT_EQ(r, 2.0) << "a tie takes a";
    EXPECT_EQ(q, std::atan2(-1.0, 1.0));
}

TEST(MathAbcToRq, NoNormalGivesNoNumber) {
    double r = 0.0;
    double q = 0.0;
    zelmMathTransAbcToRq(0, 0, 1, &r, &q);
    EXPECT_FALSE(std::isfinite(r));
    EXPECT_TRUE(std::isnan(q));
}

TEST(MathCrossAngle, KnownAngles) {
    EXPECT_TRUE(isClose(crossAngle({1, 0, -1}, {0, 1, -2}), kPi / 2, 1e-15));
    EXPECT_TRUE(isClose(crossAngle({1, 0, -1}, {1, 1, -2}), kPi / 4, 1e-15));
    EXPECT_TRUE(isClose(crossAngle({1, 0, -1}, {-1, 1, -2}), kPi / 4, 1e-15)) << "the acute one of 135 degrees";
    EXPECT_NEAR(crossAngle({1, 0, -1}, {-3, 0, -2}), 0.0, 1e-15);
}

TEST(MathCrossAngle, AcuteAngleWhateverTheScaleSignAndPosition) {
    Random random(163);
    for (int trial = 0; trial < 1000; ++trial) {
        const double direction = random.uniform(-kPi, kPi);
        const double angle = random.uniform(0.0, kPi / 2);
        const double s1 = random.integer(0, 1) != 0 ? 1.0 : -2.5;
        const double s2 = random.integer(0, 1) != 0 ? -1.0 : 30.0;
        const Line l = lineAt(direction, random.uniform(-9, 9), random.uniform(-9, 9), s1);
        const Line m = lineAt(direction + angle, random.uniform(-9, 9), random.uniform(-9, 9), s2);
        // The arc cosine is blunt near 0: sqrt of a few roundings; lines may pass near the origin.
        const double tolerance = angle < 1e-3 ? 1e-7 : 1e-11;
        EXPECT_NEAR(crossAngle(l, m), angle, tolerance);
        EXPECT_NEAR(crossAngle(m, l), angle, tolerance);
        EXPECT_GE(crossAngle(l, m), 0.0);
        EXPECT_LE(crossAngle(l, m), kPi / 2);
    }
}

TEST(MathCrossAngle, LinesThroughTheOriginHaveTheirAngleToo) {
    EXPECT_TRUE(isClose(crossAngle({1, 0, 0}, {1, 1, 0}), kPi / 4, 1e-15));
    EXPECT_TRUE(isClose(crossAngle({1, 0, 0}, {0, 1, -5}), kPi / 2, 1e-15));
    EXPECT_TRUE(isClose(crossAngle({0, 2, -5}, {3, 0, 0}), kPi / 2, 1e-15));
    EXPECT_TRUE(isClose(crossAngle({1, 0, 1e-10}, {1, 1, 1}), kPi / 4, 1e-15));
}

TEST(MathCrossAngle, LineWithoutANormalGivesNoNumber) {
    EXPECT_TRUE(std::isnan(crossAngle({0, 0, 1}, {1, 0, 1})));
    EXPECT_TRUE(std::isnan(crossAngle({1, 0, 1}, {0, 0, 0})));
    EXPECT_TRUE(std::isnan(crossAngle({kNan, 0, 1}, {1, 0, 0})));
}

// Distances.

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

// Triangles.

TEST(MathTriangles, AreaOfARightTriangle) {
    EXPECT_EQ(zelmMathSignAreaTriangle(0, 0, 4, 0, 0, 3), 6.0);
    EXPECT_EQ(zelmMathSignAreaTriangle(0, 0, 0, 3, 4, 0), -6.0) << "the other way round";
    EXPECT_EQ(zelmMathAreaTriangle(0, 0, 4, 0, 0, 3), 6.0);
    EXPECT_EQ(zelmMathAreaTriangle(0, 0, 0, 3, 4, 0), 6.0);
}

TEST(MathTriangles, CollinearPointsHaveNoArea) {
    EXPECT_EQ(zelmMathAreaTriangle(1, 1, 2, 2, 5, 5), 0.0);
    EXPECT_EQ(zelmMathAreaTriangle(1, 1, 1, 1, 5, 7), 0.0);
}

TEST(MathTriangles, CyclicOrderKeepsTheSignAndSwapsChangeIt) {
    Random random(121);
    for (int trial = 0; trial < 300; ++trial) {
        double p[6];
        for (double& value : p) {
            value = random.uniform(-10.0, 10.0);
        }
        const double area = zelmMathSignAreaTriangle(p[0], p[1], p[2], p[3], p[4], p[5]);
        const double tolerance = 1e-12;  // roundings of products up to 400
        EXPECT_NEAR(zelmMathSignAreaTriangle(p[2], p[3], p[4], p[5], p[0], p[1]), area, tolerance);
        EXPECT_NEAR(zelmMathSignAreaTriangle(p[2], p[3], p[0], p[1], p[4], p[5]), -area, tolerance);
        EXPECT_EQ(zelmMathAreaTriangle(p[0], p[1], p[2], p[3], p[4], p[5]), std::fabs(area));
    }
}

}  // namespace
