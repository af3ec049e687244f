// Points and lines in space, against closed forms on seeded input and on both sides of the 1e-14 threshold.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "random.h"
#include "vectors3d.h"
#include "zelm/clp3d.h"

namespace {

using namespace zelmtest;

constexpr int kRounds = 4000;

// Coordinates reach 100; a handful of products and one division leave a few hundred ulp of 100.
constexpr double kPointTolerance = 1e-11;
// Directions: a few ulp of 1.
constexpr double kUnitTolerance = 1e-14;

const Line3d kUntouchedLine{1, 2, 3, 4, 5, 6};
const Point3d kUntouchedPoint{7, 8, 9};

bool isUntouched(const Line3d& line) {
    return line.x == 1 && line.y == 2 && line.z == 3 && line.dx == 4 && line.dy == 5 && line.dz == 6;
}

bool isUntouched(const Point3d& p) {
    return p.x == 7 && p.y == 8 && p.z == 9;
}

TEST(Clp3dDistanceTwoPoints, IsTheEuclideanDistance) {
    const Point3d p{1, 2, 3};
    const Point3d q{3, 5, 9};
    double distance = 0.0;
    zelmClp3dDistanceTwoPoints(&p, &q, &distance);
    EXPECT_EQ(distance, 7.0);
}

TEST(Clp3dCenterTwoPoints, IsTheMidpoint) {
    Point3d p{1, 2, 3};
    const Point3d q{4, -2, 9};
    zelmClp3dCenterTwoPoints(&p, &q, &p);
    EXPECT_EQ(p.x, 2.5);
    EXPECT_EQ(p.y, 0.0);
    EXPECT_EQ(p.z, 6.0);
}

TEST(Clp3dLineTwoPoints, StartsAtTheFirstPointWithAUnitDirection) {
    const Point3d p{0, 0, 0};
    const Point3d q{0, 0, 2};
    Line3d line{};
    EXPECT_EQ(zelmClp3dLineTwoPoints(&p, &q, &line), ZELM_OK);
    EXPECT_EQ(line.x, 0.0);
    EXPECT_EQ(line.y, 0.0);
    EXPECT_EQ(line.z, 0.0);
    EXPECT_EQ(line.dx, 0.0);
    EXPECT_EQ(line.dy, 0.0);
    EXPECT_EQ(line.dz, 1.0);
}

TEST(Clp3dLineTwoPoints, PassesThroughBothPoints) {
    Random random(401);
    for (int i = 0; i < kRounds; ++i) {
        const Point3d p = randomPoint(random);
        const Point3d q = randomPoint(random);
        Line3d line{};
        ASSERT_EQ(zelmClp3dLineTwoPoints(&p, &q, &line), ZELM_OK);
        const Point3d direction{line.dx, line.dy, line.dz};
        ASSERT_NEAR(norm(direction), 1.0, kUnitTolerance);
        ASSERT_EQ(distance({line.x, line.y, line.z}, p), 0.0);
        ASSERT_NEAR(distance(along(p, distance(p, q), direction), q), 0.0, kPointTolerance);
    }
}

TEST(Clp3dLineTwoPoints, PointsCloserThanTheThresholdAreRefused) {
    const Point3d p{0, 0, 0};
    for (const double gap : {0.0, 1e-15, 0.999e-14}) {
        for (const Point3d& q : {Point3d{gap, 0, 0}, Point3d{0, -gap, 0}, Point3d{0, 0, gap}}) {
            Line3d line = kUntouchedLine;
            EXPECT_EQ(zelmClp3dLineTwoPoints(&p, &q, &line), ZELM_ERR_DEGENERATE) << gap;
            EXPECT_TRUE(isUntouched(line));
        }
    }
    const Point3d q{0, 0, 1.001e-14};
    Line3d line{};
    EXPECT_EQ(zelmClp3dLineTwoPoints(&p, &q, &line), ZELM_OK);
    EXPECT_NEAR(line.dz, 1.0, kUnitTolerance);
}

// A line through a point at a chosen distance and direction from the foot, known by construction.
struct PointAndLine {
    Point3d p;
    Point3d foot;
    double distance;
    Line3d line;
};

PointAndLine randomPointAndLine(Random& random) {
    const Frame frame = randomFrame(random);
    const Point3d foot = randomPoint(random);
    const double d = random.uniform(0.01, 50.0);
    const Point3d start = along(foot, random.uniform(-50.0, 50.0), frame.u);
    return {along(foot, d, frame.v), foot, d, lineAt(start, scaled(frame.u, random.uniform(0.01, 9.0)))};
}

TEST(Clp3dPointAndLine, FootDistanceAndPerpendicularAreThoseOfTheConstruction) {
    Random random(402);
    for (int i = 0; i < kRounds; ++i) {
        const PointAndLine truth = randomPointAndLine(random);
        Point3d foot{};
        double d = 0.0;
        Line3d perpendicular{};
        ASSERT_EQ(zelmClp3dFootOfPerpendicularToLine(&truth.p, &truth.line, &foot), ZELM_OK);
        ASSERT_EQ(zelmClp3dDistancePointToLine(&truth.p, &truth.line, &d), ZELM_OK);
        ASSERT_EQ(zelmClp3dVerticalLinePointAndLine(&truth.p, &truth.line, &perpendicular), ZELM_OK);
        ASSERT_NEAR(distance(foot, truth.foot), 0.0, kPointTolerance);
        ASSERT_NEAR(d, truth.distance, kPointTolerance);
        ASSERT_EQ(distance({perpendicular.x, perpendicular.y, perpendicular.z}, truth.p), 0.0) << "it starts at P";
        const Point3d direction{perpendicular.dx, perpendicular.dy, perpendicular.dz};
        ASSERT_NEAR(norm(direction), 1.0, kUnitTolerance);
        ASSERT_NEAR(distance(along(truth.p, truth.distance, direction), truth.foot), 0.0, 10.0 * kPointTolerance)
            << "towards the foot";
    }
}

TEST(Clp3dVerticalLinePointAndLine, APointOnTheLineIsRefused) {
    const Line3d xAxis{-4, 0, 0, 2, 0, 0};
    for (const double x : {-4.0, 0.0, 17.5}) {
        const Point3d p{x, 0, 0};
        Line3d line = kUntouchedLine;
        EXPECT_EQ(zelmClp3dVerticalLinePointAndLine(&p, &xAxis, &line), ZELM_ERR_DEGENERATE);
        EXPECT_TRUE(isUntouched(line));
    }
}

TEST(Clp3dVerticalLinePointAndLine, APointOnBothSidesOfTheThresholdBesideTheLine) {
    const Line3d xAxis{0, 0, 0, 1, 0, 0};
    Line3d line = kUntouchedLine;
    const Point3d on{5, 0.999e-14, 0};
    EXPECT_EQ(zelmClp3dVerticalLinePointAndLine(&on, &xAxis, &line), ZELM_ERR_DEGENERATE);
    EXPECT_TRUE(isUntouched(line));
    const Point3d beside{5, 1.001e-14, 0};
    EXPECT_EQ(zelmClp3dVerticalLinePointAndLine(&beside, &xAxis, &line), ZELM_OK);
    EXPECT_EQ(line.dy, -1.0);
}

TEST(Clp3dDistanceTwoLines, OfSkewAndOfParallelLines) {
    const Line3d xAxis{0, 0, 0, 1, 0, 0};
    const Line3d skew{0, 0, 1, 0, 1, 0};
    const Line3d parallel{5, 0, 2, -3, 0, 0};
    double d = 0.0;
    EXPECT_EQ(zelmClp3dDistanceTwoLines(&xAxis, &skew, &d), ZELM_OK);
    EXPECT_EQ(d, 1.0);
    EXPECT_EQ(zelmClp3dDistanceTwoLines(&xAxis, &parallel, &d), ZELM_OK);
    EXPECT_EQ(d, 2.0);
    EXPECT_EQ(zelmClp3dDistanceTwoLines(&xAxis, &xAxis, &d), ZELM_OK);
    EXPECT_EQ(d, 0.0);
}

TEST(Clp3dDistanceTwoLines, IsThatOfTheConstructionAtAnyScale) {
    Random random(403);
    for (int i = 0; i < kRounds; ++i) {
        const Frame frame = randomFrame(random);
        const double truth = random.uniform(0.0, 50.0);
        const double angle = random.uniform(0.05, 3.09);
        const Point3d at = randomPoint(random);
        const Point3d direction = along(scaled(frame.u, std::cos(angle)), std::sin(angle), frame.v);
        const Line3d line1 =
            lineAt(along(at, random.uniform(-50, 50), frame.u), scaled(frame.u, random.uniform(0.1, 9)));
        const Line3d line2 = lineAt(along(along(at, truth, frame.w), random.uniform(-50, 50), direction),
                                    scaled(direction, -random.uniform(0.1, 9)));
        double d = 0.0;
        ASSERT_EQ(zelmClp3dDistanceTwoLines(&line1, &line2, &d), ZELM_OK);
        ASSERT_NEAR(d, truth, 20.0 * kPointTolerance);  // rounding grows with 1 / sin of the angle, 20 at 0.05
    }
}

TEST(Clp3dDistanceTwoLines, ParallelLinesTakeTheDistanceOfAPoint) {
    Random random(404);
    for (int i = 0; i < kRounds; ++i) {
        const PointAndLine truth = randomPointAndLine(random);
        // Exactly parallel: the same direction, or its double turned round.
        const double factor = i % 2 == 0 ? 1.0 : -2.0;
        const Line3d parallel =
            lineAt(truth.p, {factor * truth.line.dx, factor * truth.line.dy, factor * truth.line.dz});
        double d = 0.0;
        ASSERT_EQ(zelmClp3dDistanceTwoLines(&parallel, &truth.line, &d), ZELM_OK);
        ASSERT_NEAR(d, truth.distance, kPointTolerance);
    }
}

// The test is of the directions as given. Just below it the lines count as parallel and the distance is that of the
// first line's point, 5; just above it that of the lines, which cross at the origin: 0.
TEST(Clp3dDistanceTwoLines, NearlyParallelOnBothSidesOfTheThreshold) {
    for (const double length : {1.0, 1e-3}) {
        const Line3d xAxis{0, 0, 0, length, 0, 0};
        const double bend = 1e-14 / length;
        const Line3d parallel{0, 0, 5, 1, 0.999 * bend, 0};
        const Line3d bent{0, 0, 0, 1, 1.001 * bend, 0};
        const Line3d through{100, 0, 0, length, 0, 0};
        double d = 0.0;
        EXPECT_EQ(zelmClp3dDistanceTwoLines(&parallel, &xAxis, &d), ZELM_OK);
        EXPECT_EQ(d, 5.0);
        EXPECT_EQ(zelmClp3dDistanceTwoLines(&bent, &through, &d), ZELM_OK);
        EXPECT_EQ(d, 0.0);
        const Line3d across{0, 3, 0, length, 0, 0};  // meets the bent line, 3 / bend away
        EXPECT_EQ(zelmClp3dDistanceTwoLines(&across, &bent, &d), ZELM_OK);
        EXPECT_EQ(d, 0.0);
        const Line3d straight{0, 0, 0, 1, 0.999 * bend, 0};
        EXPECT_EQ(zelmClp3dDistanceTwoLines(&across, &straight, &d), ZELM_OK);
        EXPECT_NEAR(d, 3.0, 1e-10) << "taken as parallel";
    }
}

// A direction just below 1e-14 is none for any of them, one just above is.
TEST(Clp3dLines, DirectionsBelowTheThresholdAreRefusedEverywhere) {
    const Line3d good{0, 0, 0, 1, 0, 0};
    const Point3d p{1, 2, 3};
    for (const double length : {0.0, 0.999e-14}) {
        const Line3d none{0, 0, 0, 0, length, 0};
        Point3d point = kUntouchedPoint;
        Line3d line = kUntouchedLine;
        double value = 7.0;
        EXPECT_EQ(zelmClp3dFootOfPerpendicularToLine(&p, &none, &point), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dVerticalLinePointAndLine(&p, &none, &line), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dDistancePointToLine(&p, &none, &value), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dDistanceTwoLines(&none, &good, &value), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dDistanceTwoLines(&good, &none, &value), ZELM_ERR_DEGENERATE);
        EXPECT_TRUE(isUntouched(point));
        EXPECT_TRUE(isUntouched(line));
        EXPECT_EQ(value, 7.0);
    }
    const Line3d faint{0, 0, 0, 0, 1.001e-14, 0};
    Point3d point{};
    Line3d line{};
    double value = 0.0;
    EXPECT_EQ(zelmClp3dFootOfPerpendicularToLine(&p, &faint, &point), ZELM_OK);
    EXPECT_EQ(point.y, 2.0);
    EXPECT_EQ(zelmClp3dVerticalLinePointAndLine(&p, &faint, &line), ZELM_OK);
    EXPECT_EQ(zelmClp3dDistancePointToLine(&p, &faint, &value), ZELM_OK);
    EXPECT_NEAR(value, std::sqrt(10.0), kUnitTolerance);
    // Its cross product with any direction up to 1 is too short: parallel, hence from the first line's point.
    EXPECT_EQ(zelmClp3dDistanceTwoLines(&faint, &good, &value), ZELM_OK);
}

TEST(Clp3dLines, InputThatIsNotFiniteIsPassedOn) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Point3d p{1, 2, 3};
    const Line3d bad{0, 0, 0, nan, 0, 0};
    Point3d foot{};
    EXPECT_EQ(zelmClp3dFootOfPerpendicularToLine(&p, &bad, &foot), ZELM_OK);
    EXPECT_TRUE(std::isnan(foot.x));
    double d = 0.0;
    EXPECT_EQ(zelmClp3dDistanceTwoLines(&bad, &bad, &d), ZELM_OK);
    EXPECT_TRUE(std::isnan(d));
}

}  // namespace
