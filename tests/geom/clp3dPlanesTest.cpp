// Planes in space, and lines against planes, against closed forms on seeded input and on both sides of the 1e-14
// threshold.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "random.h"
#include "vectors3d.h"
#include "zelm/clp3d.h"

namespace {

using namespace zelmtest;

constexpr double kPi = std::numbers::pi;
constexpr int kRounds = 4000;

// Coordinates reach 100; a handful of products and one division leave a few hundred ulp of 100.
constexpr double kPointTolerance = 1e-11;
// Normals and directions: a few ulp of 1.
constexpr double kUnitTolerance = 1e-14;
// The arc sine near a right angle amplifies rounding to its square root.
constexpr double kAngleTolerance = 5e-8;

const Plane3d kZ0{0, 0, 1, 0};
const Plane3d kZ1{0, 0, 1, -1};
const Plane3d kX0{1, 0, 0, 0};

const Line3d kUntouchedLine{1, 2, 3, 4, 5, 6};
const Plane3d kUntouchedPlane{1, 2, 3, 4};
const Point3d kUntouchedPoint{7, 8, 9};

bool isUntouched(const Line3d& line) {
    return line.x == 1 && line.y == 2 && line.z == 3 && line.dx == 4 && line.dy == 5 && line.dz == 6;
}

bool isUntouched(const Plane3d& plane) {
    return plane.a == 1 && plane.b == 2 && plane.c == 3 && plane.d == 4;
}

bool isUntouched(const Point3d& p) {
    return p.x == 7 && p.y == 8 && p.z == 9;
}

Point3d normalOf(const Plane3d& plane) {
    return {plane.a, plane.b, plane.c};
}

double valueAt(const Plane3d& plane, const Point3d& p) {
    return dot(normalOf(plane), p) + plane.d;
}

// cos(angle) * u + sin(angle) * v
Point3d turned(const Point3d& u, const Point3d& v, double angle) {
    return along(scaled(u, std::cos(angle)), std::sin(angle), v);
}

void expectPlane(const Plane3d& plane, double a, double b, double c, double d) {
    EXPECT_EQ(plane.a, a);
    EXPECT_EQ(plane.b, b);
    EXPECT_EQ(plane.c, c);
    EXPECT_EQ(plane.d, d);
}

TEST(Clp3dPlaneThreePoints, TheNormalFollowsTheTurnByTheRightHandRule) {
    const Point3d p{0, 0, 0};
    const Point3d q{1, 0, 0};
    const Point3d r{0, 1, 0};
    Plane3d plane{};
    EXPECT_EQ(zelmClp3dPlaneThreePoints(&p, &q, &r, &plane), ZELM_OK);
    expectPlane(plane, 0, 0, 1, 0);
    EXPECT_EQ(zelmClp3dPlaneThreePoints(&p, &r, &q, &plane), ZELM_OK);
    expectPlane(plane, 0, 0, -1, 0);
}

TEST(Clp3dPlaneThreePoints, CollinearPointsAreRefused) {
    const Point3d p{0, 0, 0};
    const Point3d q{1, 1, 1};
    const Point3d r{3, 3, 3};
    Plane3d plane = kUntouchedPlane;
    EXPECT_EQ(zelmClp3dPlaneThreePoints(&p, &q, &r, &plane), ZELM_ERR_DEGENERATE);
    EXPECT_TRUE(isUntouched(plane));
}

TEST(Clp3dPlaneThreePoints, PointsOrAreasBelowTheThresholdAreRefused) {
    const Point3d p{0, 0, 0};
    const Point3d far{1e6, 0, 0};
    Plane3d plane = kUntouchedPlane;
    const Point3d close{0, 0.999e-14, 0};  // spans an area of 1e-8 with the far point
    EXPECT_EQ(zelmClp3dPlaneThreePoints(&p, &close, &far, &plane), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmClp3dPlaneThreePoints(&p, &far, &close, &plane), ZELM_ERR_DEGENERATE);
    const Point3d q{1e-7, 0, 0};
    const Point3d below{0, 0.999e-7, 0};
    EXPECT_EQ(zelmClp3dPlaneThreePoints(&p, &q, &below, &plane), ZELM_ERR_DEGENERATE);
    EXPECT_TRUE(isUntouched(plane));
    const Point3d above{0, 1.001e-7, 0};
    EXPECT_EQ(zelmClp3dPlaneThreePoints(&p, &q, &above, &plane), ZELM_OK);
    EXPECT_NEAR(plane.c, 1.0, kUnitTolerance);
    const Point3d apart{0, 1.001e-14, 0};
    EXPECT_EQ(zelmClp3dPlaneThreePoints(&p, &far, &apart, &plane), ZELM_OK);
    EXPECT_NEAR(plane.c, 1.0, kUnitTolerance);
}

TEST(Clp3dPlaneThreePoints, ContainsTheThreePoints) {
    Random random(411);
    for (int i = 0; i < kRounds; ++i) {
        const Frame frame = randomFrame(random);
        const Point3d p = randomPoint(random);
        const double angle = random.uniform(0.1, 3.0);
        const Point3d q = along(p, random.uniform(0.1, 50.0), frame.u);
        const Point3d r = along(p, random.uniform(0.1, 50.0), turned(frame.u, frame.v, angle));
        Plane3d plane{};
        ASSERT_EQ(zelmClp3dPlaneThreePoints(&p, &q, &r, &plane), ZELM_OK);
        // The sides carry a rounding of 1e-14 in 0.1, the normal that over the sine of the angle, 0.1.
        ASSERT_NEAR(dot(normalOf(plane), frame.w), 1.0, kUnitTolerance);
        ASSERT_NEAR(distance(normalOf(plane), frame.w), 0.0, 1e-11);
        for (const Point3d& point : {p, q, r}) {
            ASSERT_NEAR(valueAt(plane, point), 0.0, kPointTolerance);
        }
    }
}

TEST(Clp3dVerticalPlanePointAndVector, IsThePlaneThroughThePointWithThatNormal) {
    const Point3d p{5, 6, 7};
    const Point3d vector{0, -3, 4};
    Plane3d plane{};
    EXPECT_EQ(zelmClp3dVerticalPlanePointAndVector(&p, &vector, &plane), ZELM_OK);
    EXPECT_EQ(plane.a, 0.0);
    EXPECT_NEAR(plane.b, -0.6, kUnitTolerance);
    EXPECT_NEAR(plane.c, 0.8, kUnitTolerance);
    EXPECT_NEAR(plane.d, -2.0, 10.0 * kUnitTolerance);
}

TEST(Clp3dVerticalLinePointAndPlane, StartsAtThePointAlongTheUnitNormal) {
    const Point3d p{5, 6, 7};
    const Plane3d plane{0, -3, 4, 11};
    Line3d line{};
    EXPECT_EQ(zelmClp3dVerticalLinePointAndPlane(&p, &plane, &line), ZELM_OK);
    EXPECT_EQ(distance({line.x, line.y, line.z}, p), 0.0);
    EXPECT_EQ(line.dx, 0.0);
    EXPECT_NEAR(line.dy, -0.6, kUnitTolerance);
    EXPECT_NEAR(line.dz, 0.8, kUnitTolerance);
}

TEST(Clp3dPointAndPlane, FootAndDistanceAreThoseOfTheConstructionAtAnyScale) {
    Random random(412);
    for (int i = 0; i < kRounds; ++i) {
        const Frame frame = randomFrame(random);
        const Point3d foot = randomPoint(random);
        const double truth = random.uniform(-50.0, 50.0);
        const Point3d p = along(foot, truth, frame.w);
        const Point3d inPlane = turned(frame.u, frame.v, random.uniform(-kPi, kPi));
        const Plane3d plane =
            planeAt(along(foot, random.uniform(-50, 50), inPlane), scaled(frame.w, random.uniform(-9.0, -0.01)));
        Point3d found{};
        double d = 0.0;
        ASSERT_EQ(zelmClp3dFootOfPerpendicularToPlane(&p, &plane, &found), ZELM_OK);
        ASSERT_EQ(zelmClp3dDistancePointToPlane(&p, &plane, &d), ZELM_OK);
        ASSERT_NEAR(distance(found, foot), 0.0, kPointTolerance);
        ASSERT_NEAR(d, std::fabs(truth), kPointTolerance);
    }
}

// The perpendicular is the normal as it is given, and the intersection tests the square of its length.
TEST(Clp3dFootOfPerpendicularToPlane, NormalsShorterThanTheRootOfTheThresholdAreRefused) {
    const Point3d p{1, 2, 3};
    Point3d foot = kUntouchedPoint;
    for (const double length : {0.0, 0.999e-14, 1.001e-14, 0.999e-7}) {
        const Plane3d faint{0, 0, length, 0};
        EXPECT_EQ(zelmClp3dFootOfPerpendicularToPlane(&p, &faint, &foot), ZELM_ERR_DEGENERATE) << length;
        EXPECT_TRUE(isUntouched(foot));
    }
    const Plane3d faint{0, 0, 1.001e-7, 0};
    EXPECT_EQ(zelmClp3dFootOfPerpendicularToPlane(&p, &faint, &foot), ZELM_OK);
    EXPECT_NEAR(foot.z, 0.0, kUnitTolerance);
}

TEST(Clp3dIntersectionLineAndPlane, OfTheZAxisAndALevel) {
    const Line3d zAxis{0, 0, 0, 0, 0, 1};
    Point3d p{};
    EXPECT_EQ(zelmClp3dIntersectionLineAndPlane(&zAxis, &kZ1, &p), ZELM_OK);
    EXPECT_EQ(p.x, 0.0);
    EXPECT_EQ(p.y, 0.0);
    EXPECT_EQ(p.z, 1.0);
}

TEST(Clp3dIntersectionLineAndPlane, AParallelLineIsRefusedAlsoWithinThePlane) {
    for (const double z : {0.0, 1.0, 5.0}) {
        const Line3d level{0, 0, z, 1, 1, 0};
        Point3d p = kUntouchedPoint;
        EXPECT_EQ(zelmClp3dIntersectionLineAndPlane(&level, &kZ1, &p), ZELM_ERR_DEGENERATE);
        EXPECT_TRUE(isUntouched(p));
    }
}

TEST(Clp3dIntersectionLineAndPlane, NearlyParallelOnBothSidesOfTheThreshold) {
    for (const double sign : {1.0, -1.0}) {
        const Line3d below{0, 0, 0, 1, 0, sign * 0.999e-14};
        const Line3d above{0, 0, 0, 1, 0, sign * 1.001e-14};
        Point3d p = kUntouchedPoint;
        EXPECT_EQ(zelmClp3dIntersectionLineAndPlane(&below, &kZ1, &p), ZELM_ERR_DEGENERATE);
        EXPECT_TRUE(isUntouched(p));
        EXPECT_EQ(zelmClp3dIntersectionLineAndPlane(&above, &kZ1, &p), ZELM_OK);
        EXPECT_NEAR(p.z, 1.0, kUnitTolerance);
        EXPECT_NEAR(p.x * sign * 1.001e-14, 1.0, kUnitTolerance);
    }
    // The product is of the vectors as given: a short direction straight through the plane is refused, too.
    const Line3d tiny{0, 0, 0, 0, 0, 1e-8};
    const Plane3d faint{0, 0, 0.999e-6, -1e-6};
    Point3d p = kUntouchedPoint;
    EXPECT_EQ(zelmClp3dIntersectionLineAndPlane(&tiny, &faint, &p), ZELM_ERR_DEGENERATE);
    EXPECT_TRUE(isUntouched(p));
}

TEST(Clp3dIntersectionLineAndPlane, IsThePointOfTheConstructionAtAnyScale) {
    Random random(413);
    for (int i = 0; i < kRounds; ++i) {
        const Frame frame = randomFrame(random);
        const Point3d truth = randomPoint(random);
        const double slope = (i % 2 == 0 ? 1.0 : -1.0) * random.uniform(0.05, kPi / 2.0);
        const Point3d direction = turned(frame.u, frame.w, slope);
        const Line3d line =
            lineAt(along(truth, random.uniform(-50, 50), direction), scaled(direction, random.uniform(0.1, 9)));
        const Plane3d plane =
            planeAt(along(truth, random.uniform(-50, 50), frame.v), scaled(frame.w, random.uniform(-9.0, -0.1)));
        Point3d p{};
        ASSERT_EQ(zelmClp3dIntersectionLineAndPlane(&line, &plane, &p), ZELM_OK);
        ASSERT_NEAR(distance(p, truth), 0.0, 20.0 * kPointTolerance);  // 1 / sin of the slope is up to 20
    }
}

TEST(Clp3dAngleLineAndPlane, AParallelLineAboveThePlaneIsRefusedBelowItHasTheAngleZero) {
    const Line3d above{0, 0, 1, 1, 0, 0};
    const Line3d below{0, 0, -1, 1, 0, 0};
    double angle = 7.0;
    EXPECT_EQ(zelmClp3dAngleLineAndPlane(&above, &kZ0, &angle), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(angle, 7.0);
    EXPECT_EQ(zelmClp3dAngleLineAndPlane(&below, &kZ0, &angle), ZELM_OK);
    EXPECT_EQ(angle, 0.0);
}

TEST(Clp3dAngleLineAndPlane, ALineAgainstTheNormalIsRefusedFromThePositiveSideOnly) {
    double angle = 7.0;
    const Line3d downFromAbove{0, 0, 1, 0, 0, -1};
    EXPECT_EQ(zelmClp3dAngleLineAndPlane(&downFromAbove, &kZ0, &angle), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(angle, 7.0);
    for (const Line3d& accepted : {Line3d{0, 0, -1, 0, 0, -1}, Line3d{0, 0, 0, 0, 0, -1}, Line3d{0, 0, 1, 0, 0, 1}}) {
        EXPECT_EQ(zelmClp3dAngleLineAndPlane(&accepted, &kZ0, &angle), ZELM_OK);
        EXPECT_EQ(angle, kPi / 2.0);
    }
}

// Refused: dot below 1e-14 and value above 1e-14, both signed.
TEST(Clp3dAngleLineAndPlane, TheSignedTestsOnBothSidesOfTheirThresholds) {
    const auto statusOf = [](double dotProduct, double value) {
        const Line3d line{0, 0, value, 1, 0, dotProduct};
        double angle = 0.0;
        return zelmClp3dAngleLineAndPlane(&line, &kZ0, &angle);
    };
    EXPECT_EQ(statusOf(0.999e-14, 1.001e-14), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(statusOf(1.001e-14, 1.001e-14), ZELM_OK);
    EXPECT_EQ(statusOf(0.999e-14, 0.999e-14), ZELM_OK);
    EXPECT_EQ(statusOf(-1.0, 1.001e-14), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(statusOf(-1.0, 0.999e-14), ZELM_OK);
    EXPECT_EQ(statusOf(-1.0, -1.0), ZELM_OK);
}

TEST(Clp3dAngleLineAndPlane, IsTheSlopeOfTheLineAtAnyScale) {
    Random random(414);
    int accepted = 0;
    for (int i = 0; i < kRounds; ++i) {
        const Frame frame = randomFrame(random);
        const double slope = random.uniform(-kPi / 2.0, kPi / 2.0);
        const double height = random.uniform(-50.0, 50.0);
        const Point3d at = randomPoint(random);
        const Point3d direction = scaled(turned(frame.u, frame.w, slope), random.uniform(0.1, 9.0));
        const Line3d line = lineAt(along(at, height, frame.w), direction);
        const Plane3d plane = planeAt(at, scaled(frame.w, random.uniform(0.1, 9.0)));
        double angle = 7.0;
        const std::int32_t status = zelmClp3dAngleLineAndPlane(&line, &plane, &angle);
        if (slope < 0.0 && height > 0.0) {
            ASSERT_EQ(status, ZELM_ERR_DEGENERATE) << slope << ' ' << height;
            continue;
        }
        ASSERT_EQ(status, ZELM_OK) << slope << ' ' << height;
        ASSERT_NEAR(angle, std::fabs(slope), kAngleTolerance);
        accepted += 1;
    }
    EXPECT_GT(accepted, kRounds / 2);
}

TEST(Clp3dIntersectionTwoPlanes, OfTwoLevels) {
    const Plane3d x1{1, 0, 0, -1};
    const Plane3d y2{0, 1, 0, -2};
    Line3d line{};
    EXPECT_EQ(zelmClp3dIntersectionTwoPlanes(&x1, &y2, &line), ZELM_OK);
    EXPECT_EQ(distance({line.x, line.y, line.z}, {1, 2, 0}), 0.0);
    EXPECT_EQ(distance({line.dx, line.dy, line.dz}, {0, 0, 1}), 0.0);
}

TEST(Clp3dIntersectionTwoPlanes, ParallelPlanesAreRefused) {
    Line3d line = kUntouchedLine;
    const Plane3d opposed{0, 0, -2, 0};
    EXPECT_EQ(zelmClp3dIntersectionTwoPlanes(&kZ0, &kZ1, &line), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmClp3dIntersectionTwoPlanes(&kZ0, &kZ0, &line), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmClp3dIntersectionTwoPlanes(&kZ1, &opposed, &line), ZELM_ERR_DEGENERATE);
    EXPECT_TRUE(isUntouched(line));
}

TEST(Clp3dIntersectionTwoPlanes, NearlyParallelOnBothSidesOfTheThreshold) {
    const Plane3d below{0.999e-14, 0, 1, 0};
    const Plane3d above{1.001e-14, 0, 1, 0};
    Line3d line = kUntouchedLine;
    EXPECT_EQ(zelmClp3dIntersectionTwoPlanes(&kZ0, &below, &line), ZELM_ERR_DEGENERATE);
    EXPECT_TRUE(isUntouched(line));
    EXPECT_EQ(zelmClp3dIntersectionTwoPlanes(&kZ0, &above, &line), ZELM_OK);
    EXPECT_EQ(distance({line.dx, line.dy, line.dz}, {0, 1, 0}), 0.0);
    // The cross product is of the normals as given: a right angle between short normals is refused, too.
    const Plane3d shortX{1e-8, 0, 0, 0};
    const Plane3d shortY{0, 0.999e-6, 0, 0};
    line = kUntouchedLine;
    EXPECT_EQ(zelmClp3dIntersectionTwoPlanes(&shortX, &shortY, &line), ZELM_ERR_DEGENERATE);
    EXPECT_TRUE(isUntouched(line));
}

TEST(Clp3dIntersectionTwoPlanes, IsTheLineOfTheConstructionAtItsPointNearestToTheOrigin) {
    Random random(415);
    for (int i = 0; i < kRounds; ++i) {
        const Frame frame = randomFrame(random);
        const Point3d at = randomPoint(random);
        const double angle = random.uniform(0.05, kPi - 0.05);
        const Plane3d plane1 =
            planeAt(along(at, random.uniform(-50, 50), frame.v), scaled(frame.u, random.uniform(0.1, 9)));
        const Point3d normal2 = turned(frame.u, frame.v, angle);
        const Plane3d plane2 = planeAt(at, scaled(normal2, random.uniform(0.1, 9)));
        // The line runs along u x v = w; where it is, solve in (u, v): u.p = u.at, normal2.p = normal2.at.
        const double pu = dot(frame.u, at);
        const double pv = (dot(normal2, at) - std::cos(angle) * pu) / std::sin(angle);
        const Point3d nearest = along(scaled(frame.u, pu), pv, frame.v);
        Line3d line{};
        ASSERT_EQ(zelmClp3dIntersectionTwoPlanes(&plane1, &plane2, &line), ZELM_OK);
        const Point3d p{line.x, line.y, line.z};
        const Point3d direction{line.dx, line.dy, line.dz};
        // Rounding of the offsets grows with 1 / sin^2 of the angle, 400 at 0.05, that of the direction with 1 / sin.
        ASSERT_NEAR(distance(p, nearest), 0.0, 400.0 * kPointTolerance);
        ASSERT_NEAR(distance(direction, frame.w), 0.0, 20.0 * kUnitTolerance);
        ASSERT_NEAR(norm(direction), 1.0, kUnitTolerance);
        ASSERT_NEAR(dot(p, direction), 0.0, 400.0 * kPointTolerance);
    }
}

TEST(Clp3dAngleTwoPlanes, KnownAnglesAndParallels) {
    double angle = 7.0;
    EXPECT_EQ(zelmClp3dAngleTwoPlanes(&kZ0, &kZ1, &angle), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(angle, 7.0);
    EXPECT_EQ(zelmClp3dAngleTwoPlanes(&kZ0, &kZ0, &angle), ZELM_OK);
    EXPECT_EQ(angle, 0.0);
    EXPECT_EQ(zelmClp3dAngleTwoPlanes(&kZ0, &kX0, &angle), ZELM_OK);
    EXPECT_EQ(angle, kPi / 2.0);
}

TEST(Clp3dAngleTwoPlanes, OnePlaneWrittenWithOpposedNormalsOrScalesIsOnePlane) {
    for (const double factor : {-1.0, 4.0, -0.25}) {
        const Plane3d same{0, 0, factor, -factor};
        double angle = 7.0;
        EXPECT_EQ(zelmClp3dAngleTwoPlanes(&kZ1, &same, &angle), ZELM_OK) << factor;
        EXPECT_EQ(angle, 0.0);
        const Plane3d mirrored{0, 0, factor, factor};
        angle = 7.0;
        EXPECT_EQ(zelmClp3dAngleTwoPlanes(&kZ1, &mirrored, &angle), ZELM_ERR_DEGENERATE) << factor;
        EXPECT_EQ(angle, 7.0);
    }
}

TEST(Clp3dAngleTwoPlanes, NearlyParallelAndNearlyTheSameOnBothSidesOfTheThresholds) {
    double angle = 7.0;
    const Plane3d below{0.999e-14, 0, 1, -1};
    const Plane3d above{1.001e-14, 0, 1, -1};
    EXPECT_EQ(zelmClp3dAngleTwoPlanes(&kZ0, &below, &angle), ZELM_ERR_DEGENERATE) << "parallel and distinct";
    EXPECT_EQ(angle, 7.0);
    EXPECT_EQ(zelmClp3dAngleTwoPlanes(&kZ0, &above, &angle), ZELM_OK);
    EXPECT_NEAR(angle, 1.001e-14, 1e-20);
    const Plane3d apart{0, 0, 1, 1.001e-14};
    const Plane3d same{0, 0, 1, 0.999e-14};
    EXPECT_EQ(zelmClp3dAngleTwoPlanes(&kZ0, &apart, &angle), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmClp3dAngleTwoPlanes(&kZ0, &same, &angle), ZELM_OK);
    EXPECT_EQ(angle, 0.0);
}

TEST(Clp3dAngleTwoPlanes, IsTheAcuteAngleAtAnyScale) {
    Random random(416);
    for (int i = 0; i < kRounds; ++i) {
        const Frame frame = randomFrame(random);
        const double truth = random.uniform(0.001, kPi - 0.001);
        const Plane3d plane1 = planeAt(randomPoint(random), scaled(frame.u, random.uniform(-9.0, -0.1)));
        const Plane3d plane2 =
            planeAt(randomPoint(random), scaled(turned(frame.u, frame.v, truth), random.uniform(0.1, 9.0)));
        double angle = 0.0;
        ASSERT_EQ(zelmClp3dAngleTwoPlanes(&plane1, &plane2, &angle), ZELM_OK);
        ASSERT_NEAR(angle, std::min(truth, kPi - truth), kAngleTolerance);
    }
}

// A normal or direction just below 1e-14 is none for any of them, one just above is.
TEST(Clp3dPlanes, NormalsBelowTheThresholdAreRefusedEverywhere) {
    const Line3d zAxis{0, 0, -1, 0, 0, 1};
    const Point3d p{1, 2, 3};
    for (const double length : {0.0, 0.999e-14}) {
        const Plane3d none{0, length, 0, -1};
        const Point3d noVector{0, length, 0};
        const Line3d noLine{0, 0, -1, 0, 0, length};
        Point3d point = kUntouchedPoint;
        Line3d line = kUntouchedLine;
        Plane3d plane = kUntouchedPlane;
        double value = 7.0;
        EXPECT_EQ(zelmClp3dVerticalPlanePointAndVector(&p, &noVector, &plane), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dVerticalLinePointAndPlane(&p, &none, &line), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dDistancePointToPlane(&p, &none, &value), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dIntersectionLineAndPlane(&zAxis, &none, &point), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dIntersectionLineAndPlane(&noLine, &kZ0, &point), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dFootOfPerpendicularToPlane(&p, &none, &point), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dAngleLineAndPlane(&zAxis, &none, &value), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dAngleLineAndPlane(&noLine, &kZ0, &value), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dIntersectionTwoPlanes(&none, &kZ0, &line), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dIntersectionTwoPlanes(&kZ0, &none, &line), ZELM_ERR_DEGENERATE);
        const Plane3d steep{0, 0, 1e3, 0};  // its cross product with the faint normal is long enough
        EXPECT_EQ(zelmClp3dIntersectionTwoPlanes(&none, &steep, &line), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dIntersectionTwoPlanes(&steep, &none, &line), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dAngleTwoPlanes(&none, &kZ0, &value), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmClp3dAngleTwoPlanes(&kZ0, &none, &value), ZELM_ERR_DEGENERATE);
        EXPECT_TRUE(isUntouched(point));
        EXPECT_TRUE(isUntouched(line));
        EXPECT_TRUE(isUntouched(plane));
        EXPECT_EQ(value, 7.0);
    }
    const Plane3d faint{0, 0, 1.001e-14, 0};
    const Point3d faintVector{0, 0, 1.001e-14};
    const Line3d strong{0, 0, -1, 0, 0, 1e3};
    Point3d point{};
    Line3d line{};
    Plane3d plane{};
    double value = 0.0;
    EXPECT_EQ(zelmClp3dVerticalPlanePointAndVector(&p, &faintVector, &plane), ZELM_OK);
    EXPECT_EQ(zelmClp3dVerticalLinePointAndPlane(&p, &faint, &line), ZELM_OK);
    EXPECT_EQ(zelmClp3dDistancePointToPlane(&p, &faint, &value), ZELM_OK);
    EXPECT_NEAR(value, 3.0, kUnitTolerance);
    EXPECT_EQ(zelmClp3dIntersectionLineAndPlane(&strong, &faint, &point), ZELM_OK);
    EXPECT_EQ(zelmClp3dAngleLineAndPlane(&strong, &faint, &value), ZELM_OK);
    EXPECT_EQ(zelmClp3dAngleTwoPlanes(&faint, &kX0, &value), ZELM_OK);
    const Plane3d steep{1e3, 0, 0, 0};
    EXPECT_EQ(zelmClp3dIntersectionTwoPlanes(&faint, &steep, &line), ZELM_OK);
}

TEST(Clp3dPlanes, InputThatIsNotFiniteIsPassedOn) {
    const Plane3d bad{std::numeric_limits<double>::quiet_NaN(), 0, 1, 0};
    double angle = 0.0;
    EXPECT_EQ(zelmClp3dAngleTwoPlanes(&bad, &kZ0, &angle), ZELM_OK);
    EXPECT_TRUE(std::isnan(angle));
    const Point3d p{1, 2, 3};
    Point3d foot{};
    EXPECT_EQ(zelmClp3dFootOfPerpendicularToPlane(&p, &bad, &foot), ZELM_OK);
    EXPECT_TRUE(std::isnan(foot.x));
}

TEST(Clp3dPlanes, AnOutputMayBeAnInput) {
    Point3d p{1, 2, 3};
    EXPECT_EQ(zelmClp3dFootOfPerpendicularToPlane(&p, &kZ0, &p), ZELM_OK);
    EXPECT_EQ(distance(p, {1, 2, 0}), 0.0);
    Point3d q{1, 2, 3};
    const Line3d xAxis{0, 0, 0, 1, 0, 0};
    EXPECT_EQ(zelmClp3dFootOfPerpendicularToLine(&q, &xAxis, &q), ZELM_OK);
    EXPECT_EQ(distance(q, {1, 0, 0}), 0.0);
    Line3d line{0, 0, 0, 1, 0, 0};
    const Point3d aside{5, 0, 4};
    EXPECT_EQ(zelmClp3dVerticalLinePointAndLine(&aside, &line, &line), ZELM_OK);
    EXPECT_EQ(distance({line.x, line.y, line.z}, aside), 0.0);
    EXPECT_EQ(line.dz, -1.0);
}

}  // namespace
