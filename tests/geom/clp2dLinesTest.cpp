// Lines: construction, perpendiculars, intersections, angles, bisectors, distances, against closed forms on seeded
// input and on both sides of the 1e-14 degeneracy threshold.
#include <gtest/gtest.h>

#include <cmath>

#include "random.h"
#include "zelm/clp2d.h"

namespace {

using zelmtest::Random;

constexpr double kPi = 3.14159265358979323846;
constexpr int kRounds = 4000;

// Coordinates reach 100; a handful of products and one division leave a few hundred ulp of 100.
constexpr double kPointTolerance = 1e-11;
// Directions, normals and angles: a few ulp of 1.
constexpr double kUnitTolerance = 1e-14;

const Line2d kUntouched{7.0, 8.0, 9.0};

Point2d randomPoint(Random& random) {
    return {random.uniform(-100.0, 100.0), random.uniform(-100.0, 100.0)};
}

// A unit line through the point with the normal (-sin, cos).
Line2d lineThrough(const Point2d& p, double angle) {
    return {-std::sin(angle), std::cos(angle), std::sin(angle) * p.x - std::cos(angle) * p.y};
}

Line2d scaled(const Line2d& line, double factor) {
    return {line.a * factor, line.b * factor, line.c * factor};
}

double valueAt(const Line2d& line, const Point2d& p) {
    return line.a * p.x + line.b * p.y + line.c;
}

void expectLine(const Line2d& line, double a, double b, double c, double tolerance = kUnitTolerance) {
    EXPECT_NEAR(line.a, a, tolerance);
    EXPECT_NEAR(line.b, b, tolerance);
    EXPECT_NEAR(line.c, c, tolerance);
}

void expectUntouched(const Line2d& line) {
    expectLine(line, kUntouched.a, kUntouched.b, kUntouched.c, 0.0);
}

TEST(Clp2dDistanceTwoPoints, IsTheEuclideanDistance) {
    const Point2d p{1.0, 2.0};
    const Point2d q{4.0, -2.0};
    double distance = 0.0;
    zelmClp2dDistanceTwoPoints(&p, &q, &distance);
    EXPECT_EQ(distance, 5.0);
}

TEST(Clp2dCenterTwoPoints, IsTheMidpoint) {
    const Point2d p{1.0, 2.0};
    const Point2d q{4.0, -2.0};
    Point2d centre{};
    zelmClp2dCenterTwoPoints(&p, &q, &centre);
    EXPECT_EQ(centre.x, 2.5);
    EXPECT_EQ(centre.y, 0.0);
}

TEST(Clp2dLineTwoPoints, TheNormalPointsLeftOfTheDirection) {
    const Point2d origin{0.0, 0.0};
    const Point2d east{1.0, 0.0};
    const Point2d north{0.0, 1.0};
    Line2d line{};
    EXPECT_EQ(zelmClp2dLineTwoPoints(&origin, &east, &line), ZELM_OK);
    expectLine(line, 0.0, 1.0, 0.0, 0.0);
    EXPECT_EQ(zelmClp2dLineTwoPoints(&origin, &north, &line), ZELM_OK);
    expectLine(line, -1.0, 0.0, 0.0, 0.0);
}

TEST(Clp2dLineTwoPoints, PassesThroughBothPointsWithAUnitNormal) {
    Random random(21);
    for (int i = 0; i < kRounds; ++i) {
        const Point2d p = randomPoint(random);
        const Point2d q = randomPoint(random);
        Line2d line{};
        ASSERT_EQ(zelmClp2dLineTwoPoints(&p, &q, &line), ZELM_OK);
        ASSERT_NEAR(std::hypot(line.a, line.b), 1.0, kUnitTolerance);
        ASSERT_NEAR(valueAt(line, p), 0.0, kPointTolerance);
        ASSERT_NEAR(valueAt(line, q), 0.0, kPointTolerance);
        ASSERT_GT(-line.a * (q.y - p.y) + line.b * (q.x - p.x), 0.0);
    }
}

// Points just closer than 1e-14 are one point, points just farther apart are two.
TEST(Clp2dLineTwoPoints, PointsCloserThanTheThresholdAreRefused) {
    const Point2d p{0.0, 0.0};
    for (const double gap : {0.0, 1e-15, 0.999e-14}) {
        const Point2d q{gap, 0.0};
        Line2d line = kUntouched;
        EXPECT_EQ(zelmClp2dLineTwoPoints(&p, &q, &line), ZELM_ERR_DEGENERATE) << gap;
        expectUntouched(line);
        EXPECT_EQ(zelmClp2dMidperpendicularTwoPoints(&p, &q, &line), ZELM_ERR_DEGENERATE) << gap;
        expectUntouched(line);
    }
    const Point2d q{1.001e-14, 0.0};
    Line2d line{};
    EXPECT_EQ(zelmClp2dLineTwoPoints(&p, &q, &line), ZELM_OK);
    EXPECT_EQ(zelmClp2dMidperpendicularTwoPoints(&p, &q, &line), ZELM_OK);
}

TEST(Clp2dMidperpendicularTwoPoints, EveryPointOfItIsAsFarFromBoth) {
    Random random(22);
    for (int i = 0; i < kRounds; ++i) {
        const Point2d p = randomPoint(random);
        const Point2d q = randomPoint(random);
        Line2d line{};
        ASSERT_EQ(zelmClp2dMidperpendicularTwoPoints(&p, &q, &line), ZELM_OK);
        const double t = random.uniform(-50.0, 50.0);
        const Point2d on{(p.x + q.x) / 2.0 - line.b * t, (p.y + q.y) / 2.0 + line.a * t};
        ASSERT_NEAR(valueAt(line, on), 0.0, kPointTolerance);
        ASSERT_NEAR(std::hypot(on.x - p.x, on.y - p.y), std::hypot(on.x - q.x, on.y - q.y), kPointTolerance);
        ASSERT_GT(line.a * (q.x - p.x) + line.b * (q.y - p.y), 0.0) << "the normal points from the first to the second";
    }
}

TEST(Clp2dVerticalLinePointAndLine, IsTheUnitPerpendicularThroughThePoint) {
    Random random(23);
    for (int i = 0; i < kRounds; ++i) {
        const Point2d p = randomPoint(random);
        const Line2d line =
            scaled(lineThrough(randomPoint(random), random.uniform(-kPi, kPi)), random.uniform(0.1, 9.0));
        Line2d out{};
        ASSERT_EQ(zelmClp2dVerticalLinePointAndLine(&p, &line, &out), ZELM_OK);
        const double n = std::hypot(line.a, line.b);
        ASSERT_NEAR(out.a, line.b / n, kUnitTolerance);
        ASSERT_NEAR(out.b, -line.a / n, kUnitTolerance);
        ASSERT_NEAR(valueAt(out, p), 0.0, kPointTolerance);
    }
}

TEST(Clp2dLinePointAndSlope, HasTheDirectionOfTheAngle) {
    const Point2d p{3.0, 4.0};
    Line2d line{};
    zelmClp2dLinePointAndSlope(&p, 0.0, &line);
    expectLine(line, 0.0, 1.0, -4.0, 0.0);
    zelmClp2dLinePointAndSlope(&p, kPi / 2.0, &line);
    expectLine(line, -1.0, 0.0, 3.0);
}

TEST(Clp2dIntersectionTwoLines, ParallelLinesAreRefusedAndAxesMeetAtTheOrigin) {
    const Line2d y0{0.0, 1.0, 0.0};
    const Line2d y1{0.0, 1.0, -1.0};
    const Line2d x0{1.0, 0.0, 0.0};
    Point2d p{7.0, 8.0};
    EXPECT_EQ(zelmClp2dIntersectionTwoLines(&y0, &y1, &p), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(p.x, 7.0);
    EXPECT_EQ(p.y, 8.0);
    EXPECT_EQ(zelmClp2dIntersectionTwoLines(&x0, &y0, &p), ZELM_OK);
    EXPECT_EQ(p.x, 0.0);
    EXPECT_EQ(p.y, 0.0);
}

TEST(Clp2dIntersectionTwoLines, LinesThroughAPointMeetThereAtAnyScale) {
    Random random(24);
    for (int i = 0; i < kRounds; ++i) {
        const Point2d p = randomPoint(random);
        const double angle = random.uniform(-kPi, kPi);
        const double between = random.uniform(0.05, kPi - 0.05);
        const Line2d l1 = scaled(lineThrough(p, angle), random.uniform(0.01, 100.0));
        const Line2d l2 = scaled(lineThrough(p, angle + between), -random.uniform(0.01, 100.0));
        Point2d q{};
        ASSERT_EQ(zelmClp2dIntersectionTwoLines(&l1, &l2, &q), ZELM_OK);
        // The error grows with 1 / sin of the angle between the lines: 20 at 0.05 rad.
        ASSERT_NEAR(q.x, p.x, 20.0 * kPointTolerance);
        ASSERT_NEAR(q.y, p.y, 20.0 * kPointTolerance);
    }
}

TEST(Clp2dAngleTwoLines, KnownAnglesAndParallels) {
    const Line2d y0{0.0, 1.0, 0.0};
    const Line2d y1{0.0, 1.0, -1.0};
    const Line2d x0{1.0, 0.0, 0.0};
    const Line2d diagonal{-1.0, 1.0, 0.0};  // y = x, not normalised
    double angle = 7.0;
    EXPECT_EQ(zelmClp2dAngleTwoLines(&y0, &y1, &angle), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(angle, 7.0);
    EXPECT_EQ(zelmClp2dAngleTwoLines(&y0, &y0, &angle), ZELM_OK);
    EXPECT_EQ(angle, 0.0);
    EXPECT_EQ(zelmClp2dAngleTwoLines(&y0, &x0, &angle), ZELM_OK);
    EXPECT_NEAR(angle, kPi / 2.0, kUnitTolerance);
    EXPECT_EQ(zelmClp2dAngleTwoLines(&y0, &diagonal, &angle), ZELM_OK);
    EXPECT_NEAR(angle, kPi / 4.0, kUnitTolerance);
}

TEST(Clp2dAngleTwoLines, OneLineWrittenWithOpposedNormalsOrScalesIsOneLine) {
    const Line2d line{0.6, 0.8, -5.0};
    double angle = 7.0;
    for (const double factor : {-1.0, 3.0, -0.25}) {
        const Line2d same = scaled(line, factor);
        EXPECT_EQ(zelmClp2dAngleTwoLines(&line, &same, &angle), ZELM_OK) << factor;
        EXPECT_NEAR(angle, 0.0, kUnitTolerance);
        EXPECT_EQ(zelmClp2dAngleTwoLines(&same, &line, &angle), ZELM_OK) << factor;
        EXPECT_NEAR(angle, 0.0, kUnitTolerance);
    }
}

// Below 1e-14 rad lines are parallel and must then be one line; above it they are not, however far they are apart.
TEST(Clp2dAngleTwoLines, LinesThatTurnByLessThanTheThresholdAreParallel) {
    const Line2d y0{0.0, 1.0, 0.0};
    const Line2d turnedLess{0.9e-14, 1.0, -1.0};
    const Line2d turnedMore{1.1e-14, 1.0, -1.0};
    double angle = 7.0;
    EXPECT_EQ(zelmClp2dAngleTwoLines(&y0, &turnedLess, &angle), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(angle, 7.0);
    EXPECT_EQ(zelmClp2dAngleTwoLines(&y0, &turnedMore, &angle), ZELM_OK);
    EXPECT_EQ(angle, 1.1e-14);
}

TEST(Clp2dAngleTwoLines, ParallelsCloserThanTheThresholdAreOneLine) {
    const Line2d y0{0.0, 1.0, 0.0};
    for (const double sign : {1.0, -1.0}) {
        const Line2d nearby{0.0, 1.0, sign * 0.9e-14};
        const Line2d apart{0.0, 1.0, sign * 1.1e-14};
        double angle = 7.0;
        EXPECT_EQ(zelmClp2dAngleTwoLines(&y0, &apart, &angle), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(angle, 7.0);
        EXPECT_EQ(zelmClp2dAngleTwoLines(&y0, &nearby, &angle), ZELM_OK);
        EXPECT_EQ(angle, 0.0);
    }
}

// Rounding takes the sine of a right angle above 1, where there is no arc sine, unless it is clamped.
TEST(Clp2dAngleTwoLines, RightAnglesAtAnyDirectionAndScaleAreNumbers) {
    Random random(28);
    int above = 0;
    for (int i = 0; i < kRounds; ++i) {
        const double a = random.uniform(-5.0, 5.0);
        const double b = random.uniform(-5.0, 5.0);
        const Line2d l1{a, b, 0.0};
        const Line2d l2{-b, a, 1.0};
        double angle = 0.0;
        ASSERT_EQ(zelmClp2dAngleTwoLines(&l1, &l2, &angle), ZELM_OK);
        ASSERT_NEAR(angle, kPi / 2.0, 5e-8);
        const double length = std::sqrt(a * a + b * b);
        above += (a * a + b * b) / (length * length) > 1.0 ? 1 : 0;
    }
    EXPECT_GT(above, 100) << "the case at hand";
}

TEST(Clp2dAngleTwoLines, IsTheAcuteAngleAtAnyScale) {
    Random random(25);
    for (int i = 0; i < kRounds; ++i) {
        const double first = random.uniform(-kPi, kPi);
        const double between = random.uniform(0.01, kPi - 0.01);
        const Line2d l1 = scaled(lineThrough(randomPoint(random), first), random.uniform(-5.0, -0.1));
        const Line2d l2 = scaled(lineThrough(randomPoint(random), first + between), random.uniform(0.1, 5.0));
        double angle = 0.0;
        ASSERT_EQ(zelmClp2dAngleTwoLines(&l1, &l2, &angle), ZELM_OK);
        // Near a right angle the arc sine amplifies rounding to its square root.
        ASSERT_NEAR(angle, std::min(between, kPi - between), 5e-8);
    }
}

TEST(Clp2dCenterLineOfTwoLines, OpposedParallelsGiveTheMiddleLine) {
    const Line2d y0{0.0, 1.0, 0.0};
    const Line2d y2{0.0, -1.0, 2.0};
    Line2d out{};
    EXPECT_EQ(zelmClp2dCenterLineOfTwoLines(&y0, &y2, &out), ZELM_OK);
    expectLine(out, 0.0, 1.0, -1.0);
}

TEST(Clp2dCenterLineOfTwoLines, PerpendicularNormalsLeaveTheSecondLineAsItIs) {
    const Line2d x0{1.0, 0.0, 0.0};
    const Line2d y0{0.0, -1.0, 0.0};
    Line2d out{};
    EXPECT_EQ(zelmClp2dCenterLineOfTwoLines(&x0, &y0, &out), ZELM_OK);
    expectLine(out, std::sqrt(0.5), -std::sqrt(0.5), 0.0);
}

TEST(Clp2dCenterLineOfTwoLines, ItsPointsAreAsFarFromBothLines) {
    Random random(26);
    for (int i = 0; i < kRounds; ++i) {
        const Point2d p = randomPoint(random);
        const double angle = random.uniform(-kPi, kPi);
        const Line2d l1 = scaled(lineThrough(p, angle), random.uniform(0.1, 9.0));
        const Line2d l2 = scaled(lineThrough(p, angle + random.uniform(0.05, 3.0)), random.uniform(-9.0, -0.1));
        Line2d out{};
        ASSERT_EQ(zelmClp2dCenterLineOfTwoLines(&l1, &l2, &out), ZELM_OK);
        ASSERT_NEAR(std::hypot(out.a, out.b), 1.0, kUnitTolerance);
        const double t = random.uniform(-50.0, 50.0);
        const Point2d on{p.x - out.b * t, p.y + out.a * t};
        double d1 = 0.0;
        double d2 = 0.0;
        ASSERT_EQ(zelmClp2dDistancePointToLine(&on, &l1, &d1), ZELM_OK);
        ASSERT_EQ(zelmClp2dDistancePointToLine(&on, &l2, &d2), ZELM_OK);
        ASSERT_NEAR(d1, d2, 10.0 * kPointTolerance);
    }
}

TEST(Clp2dFootOfPerpendicularToLine, IsTheClosestPointOfTheLine) {
    Random random(27);
    for (int i = 0; i < kRounds; ++i) {
        const Point2d p = randomPoint(random);
        const Line2d line =
            scaled(lineThrough(randomPoint(random), random.uniform(-kPi, kPi)), random.uniform(0.1, 9.0));
        Point2d foot{};
        double distance = 0.0;
        ASSERT_EQ(zelmClp2dFootOfPerpendicularToLine(&p, &line, &foot), ZELM_OK);
        ASSERT_EQ(zelmClp2dDistancePointToLine(&p, &line, &distance), ZELM_OK);
        const double n = std::hypot(line.a, line.b);
        const double along = valueAt(line, p) / (n * n);
        ASSERT_NEAR(foot.x, p.x - line.a * along, kPointTolerance);
        ASSERT_NEAR(foot.y, p.y - line.b * along, kPointTolerance);
        ASSERT_NEAR(distance, std::hypot(foot.x - p.x, foot.y - p.y), kPointTolerance);
    }
}

TEST(Clp2dTranslationOfLine, MovesThePointsAndKeepsTheScale) {
    const Line2d line{3.0, 4.0, 5.0};
    const Point2d shift{10.0, -20.0};
    Line2d out{};
    EXPECT_EQ(zelmClp2dTranslationOfLine(&line, &shift, &out), ZELM_OK);
    expectLine(out, 3.0, 4.0, 5.0 - 30.0 + 80.0, 0.0);
}

TEST(Clp2dArea, TheSignIsPositiveForACounterClockwiseTurnWithYUp) {
    const Point2d p{0.0, 0.0};
    const Point2d q{4.0, 0.0};
    const Point2d r{0.0, 3.0};
    double area = 0.0;
    zelmClp2dSignAreaTriangle(&p, &q, &r, &area);
    EXPECT_EQ(area, 6.0);
    zelmClp2dSignAreaTriangle(&p, &r, &q, &area);
    EXPECT_EQ(area, -6.0);
    zelmClp2dAreaTriangle(&p, &r, &q, &area);
    EXPECT_EQ(area, 6.0);
}

// A normal just below 1e-14 is no line for any of them, one just above is.
TEST(Clp2dLines, NormalsBelowTheThresholdAreRefusedEverywhere) {
    const Line2d good{0.0, 1.0, 0.0};
    const Point2d p{1.0, 2.0};
    for (const double length : {0.0, 0.999e-14}) {
        const Line2d none{length, 0.0, 1.0};
        Line2d line = kUntouched;
        Point2d point{7.0, 8.0};
        double value = 7.0;
        EXPECT_EQ(zelmClp2dVerticalLinePointAndLine(&p, &none, &line), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp2dIntersectionTwoLines(&none, &good, &point), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp2dIntersectionTwoLines(&good, &none, &point), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp2dAngleTwoLines(&none, &good, &value), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp2dAngleTwoLines(&good, &none, &value), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp2dCenterLineOfTwoLines(&none, &good, &line), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp2dCenterLineOfTwoLines(&good, &none, &line), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp2dDistancePointToLine(&p, &none, &value), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp2dFootOfPerpendicularToLine(&p, &none, &point), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp2dTranslationOfLine(&none, &p, &line), ZELM_ERR_DEGENERATE);
        expectUntouched(line);
        EXPECT_EQ(point.x, 7.0);
        EXPECT_EQ(value, 7.0);
    }
    const Line2d faint{1.001e-14, 0.0, 1e-14};
    double distance = 0.0;
    Line2d line{};
    EXPECT_EQ(zelmClp2dDistancePointToLine(&p, &faint, &distance), ZELM_OK);
    EXPECT_EQ(zelmClp2dVerticalLinePointAndLine(&p, &faint, &line), ZELM_OK);
    EXPECT_EQ(zelmClp2dTranslationOfLine(&faint, &p, &line), ZELM_OK);
}

}  // namespace
