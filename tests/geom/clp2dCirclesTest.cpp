// Circles: through points, cut by lines, tangents, closest points; closed forms, seeded properties and both sides of
// the 1e-14 threshold.
#include <gtest/gtest.h>

#include <cmath>

#include "random.h"
#include "zelm/clp2d.h"

namespace {

using zelmtest::Random;

constexpr double kPi = 3.14159265358979323846;
constexpr int kRounds = 4000;
constexpr double kExact = 1e-14;
constexpr double kPointTolerance = 1e-10;  // coordinates to 100, 2x2 and 3x3 solves of moderate condition

const Circle2d kUnit{0.0, 0.0, 1.0};

Line2d lineThrough(const Point2d& p, double angle) {
    return {-std::sin(angle), std::cos(angle), std::sin(angle) * p.x - std::cos(angle) * p.y};
}

double distanceTo(const Circle2d& c, const Point2d& p) {
    return std::hypot(p.x - c.x, p.y - c.y);
}

TEST(Clp2dCircleThreePoints, KnownCircleAndCollinearPoints) {
    const Point2d east{1.0, 0.0};
    const Point2d north{0.0, 1.0};
    const Point2d west{-1.0, 0.0};
    Circle2d circle{};
    EXPECT_EQ(zelmClp2dCircleThreePoints(&east, &north, &west, &circle), ZELM_OK);
    EXPECT_NEAR(circle.x, 0.0, kExact);
    EXPECT_NEAR(circle.y, 0.0, kExact);
    EXPECT_NEAR(circle.r, 1.0, kExact);
    const Point2d middle{0.0, 0.0};
    circle = {7.0, 8.0, 9.0};
    EXPECT_EQ(zelmClp2dCircleThreePoints(&east, &middle, &west, &circle), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmClp2dCircleThreePoints(&east, &east, &west, &circle), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(circle.x, 7.0);
    EXPECT_EQ(circle.r, 9.0);
}

TEST(Clp2dCircleThreePoints, RecoversSeededCircles) {
    Random random(31);
    for (int i = 0; i < kRounds; ++i) {
        const Circle2d truth{random.uniform(-50.0, 50.0), random.uniform(-50.0, 50.0), random.uniform(1.0, 40.0)};
        const double start = random.uniform(-kPi, kPi);
        Point2d p[3];
        for (int k = 0; k < 3; ++k) {
            const double angle = start + k * 2.0 + random.uniform(0.0, 1.0);
            p[k] = {truth.x + truth.r * std::cos(angle), truth.y + truth.r * std::sin(angle)};
        }
        Circle2d circle{};
        ASSERT_EQ(zelmClp2dCircleThreePoints(&p[0], &p[1], &p[2], &circle), ZELM_OK);
        ASSERT_NEAR(circle.x, truth.x, kPointTolerance);
        ASSERT_NEAR(circle.y, truth.y, kPointTolerance);
        ASSERT_NEAR(circle.r, truth.r, kPointTolerance);
    }
}

// Three points much closer to each other than to the origin: cancellation can make the squared radius negative.
TEST(Clp2dCircleThreePoints, ANegativeSquaredRadiusIsDegenerateNeverNotANumber) {
    Random random(36);
    int refused = 0;
    int found = 0;
    for (int i = 0; i < kRounds; ++i) {
        Point2d p[3];
        const double spread = std::pow(10.0, random.uniform(-8.0, -3.0));
        for (Point2d& point : p) {
            point = {1e4 + random.uniform(-spread, spread), 1e4 + random.uniform(-spread, spread)};
        }
        Circle2d circle{7.0, 8.0, 9.0};
        if (zelmClp2dCircleThreePoints(&p[0], &p[1], &p[2], &circle) == ZELM_OK) {
            ASSERT_GE(circle.r, 0.0);
            found += 1;
        } else {
            ASSERT_EQ(circle.r, 9.0);
            refused += 1;
        }
    }
    EXPECT_GT(found, 100);
    EXPECT_GT(refused, 10);
}

TEST(Clp2dCircleTwoPoints, HasThePointsAsADiameter) {
    const Point2d p{1.0, 2.0};
    const Point2d q{5.0, 5.0};
    Circle2d circle{};
    zelmClp2dCircleTwoPoints(&p, &q, &circle);
    EXPECT_EQ(circle.x, 3.0);
    EXPECT_EQ(circle.y, 3.5);
    EXPECT_EQ(circle.r, 2.5);
}

TEST(Clp2dIntersectionLineAndCircle, SecantTangentAndMiss) {
    const Line2d y0{0.0, 1.0, 0.0};
    const Line2d y1{0.0, 1.0, -1.0};
    const Line2d above{0.0, 1.0, -1.1};
    Point2d q1{};
    Point2d q2{};
    EXPECT_EQ(zelmClp2dIntersectionLineAndCircle(&y0, &kUnit, &q1, &q2), ZELM_OK);
    EXPECT_NEAR(q1.x, -1.0, kExact);
    EXPECT_NEAR(q2.x, 1.0, kExact);
    EXPECT_EQ(zelmClp2dIntersectionLineAndCircle(&y1, &kUnit, &q1, &q2), ZELM_OK);
    EXPECT_EQ(q1.x, 0.0);
    EXPECT_EQ(q1.y, 1.0);
    EXPECT_EQ(q2.x, 0.0);
    EXPECT_EQ(q2.y, 1.0);
    q1 = {7.0, 8.0};
    EXPECT_EQ(zelmClp2dIntersectionLineAndCircle(&above, &kUnit, &q1, &q2), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(q1.x, 7.0);
}

TEST(Clp2dIntersectionLineAndCircle, BothPointsLieOnLineAndCircle) {
    Random random(32);
    for (int i = 0; i < kRounds; ++i) {
        const Circle2d circle{random.uniform(-50.0, 50.0), random.uniform(-50.0, 50.0), random.uniform(1.0, 40.0)};
        const double angle = random.uniform(-kPi, kPi);
        const double offset = random.uniform(-0.99, 0.99) * circle.r;
        const Point2d on{circle.x - std::sin(angle) * offset, circle.y + std::cos(angle) * offset};
        const Line2d line = lineThrough(on, angle);
        Point2d q1{};
        Point2d q2{};
        ASSERT_EQ(zelmClp2dIntersectionLineAndCircle(&line, &circle, &q1, &q2), ZELM_OK);
        for (const Point2d& q : {q1, q2}) {
            ASSERT_NEAR(distanceTo(circle, q), circle.r, kPointTolerance);
            ASSERT_NEAR(line.a * q.x + line.b * q.y + line.c, 0.0, kPointTolerance);
        }
        // The first lies along (-b, a) from the second.
        ASSERT_GT(-line.b * (q1.x - q2.x) + line.a * (q1.y - q2.y), 0.0);
    }
}

// The step from the foot uses a and b as stored: deliberate, callers hand in normalised lines.
TEST(Clp2dIntersectionLineAndCircle, TheOffsetsUseTheLinesOwnScale) {
    const Line2d doubled{0.0, 2.0, 0.0};
    Point2d q1{};
    Point2d q2{};
    EXPECT_EQ(zelmClp2dIntersectionLineAndCircle(&doubled, &kUnit, &q1, &q2), ZELM_OK);
    EXPECT_NEAR(q1.x, -2.0, kExact);
    EXPECT_NEAR(q2.x, 2.0, kExact);
}

// Distances within 1e-14 of the radius count as tangent on both sides, beyond it the line misses.
TEST(Clp2dIntersectionLineAndCircle, TheTangentThreshold) {
    // A small circle, so that distances of 1e-15 are resolved.
    const Circle2d circle{0.0, 0.0, 0.01};
    Point2d q1{};
    Point2d q2{};
    for (const double gap : {-0.9e-14, -1e-16, 0.0, 1e-16, 0.9e-14}) {
        const Line2d line{0.0, 1.0, -(0.01 + gap)};
        ASSERT_EQ(zelmClp2dIntersectionLineAndCircle(&line, &circle, &q1, &q2), ZELM_OK) << gap;
        EXPECT_EQ(q1.x, q2.x) << gap;
        EXPECT_EQ(q1.y, q2.y) << gap;
    }
    const Line2d inside{0.0, 1.0, -(0.01 - 1.1e-14)};
    ASSERT_EQ(zelmClp2dIntersectionLineAndCircle(&inside, &circle, &q1, &q2), ZELM_OK);
    EXPECT_LT(q1.x, q2.x);
    const Line2d outside{0.0, 1.0, -(0.01 + 1.1e-14)};
    EXPECT_EQ(zelmClp2dIntersectionLineAndCircle(&outside, &circle, &q1, &q2), ZELM_ERR_DEGENERATE);
}

TEST(Clp2dTangentPointToCircle, FromTwoRadiiAway) {
    const Point2d p{2.0, 0.0};
    Line2d l1{};
    Line2d l2{};
    Point2d t1{};
    Point2d t2{};
    EXPECT_EQ(zelmClp2dTangentPointToCircle(&p, &kUnit, &l1, &t1, &l2, &t2), ZELM_OK);
    EXPECT_NEAR(t1.x, 0.5, kExact);
    EXPECT_NEAR(t1.y, std::sqrt(0.75), kExact);
    EXPECT_NEAR(t2.x, 0.5, kExact);
    EXPECT_NEAR(t2.y, -std::sqrt(0.75), kExact);
}

TEST(Clp2dTangentPointToCircle, TangentsPassThroughThePointAndTouchTheCircle) {
    Random random(33);
    for (int i = 0; i < kRounds; ++i) {
        const Circle2d circle{random.uniform(-50.0, 50.0), random.uniform(-50.0, 50.0), random.uniform(1.0, 20.0)};
        const double away = circle.r * random.uniform(1.01, 4.0);
        const double angle = random.uniform(-kPi, kPi);
        const Point2d p{circle.x + away * std::cos(angle), circle.y + away * std::sin(angle)};
        Line2d lines[2];
        Point2d points[2];
        ASSERT_EQ(zelmClp2dTangentPointToCircle(&p, &circle, &lines[0], &points[0], &lines[1], &points[1]), ZELM_OK);
        for (int k = 0; k < 2; ++k) {
            ASSERT_NEAR(std::hypot(lines[k].a, lines[k].b), 1.0, 1e-12);
            ASSERT_NEAR(lines[k].a * p.x + lines[k].b * p.y + lines[k].c, 0.0, kPointTolerance);
            ASSERT_NEAR(distanceTo(circle, points[k]), circle.r, kPointTolerance);
            ASSERT_NEAR(lines[k].a * points[k].x + lines[k].b * points[k].y + lines[k].c, 0.0, kPointTolerance);
        }
        const double turn = (p.x - circle.x) * (points[0].y - circle.y) - (p.y - circle.y) * (points[0].x - circle.x);
        ASSERT_GT(turn, 0.0) << "the first contact lies counter-clockwise (y up) of the point";
    }
}

TEST(Clp2dTangentPointToCircle, InsideIsRefusedAndOnTheCircleBothTangentsCoincide) {
    Line2d l1{7.0, 8.0, 9.0};
    Line2d l2{};
    Point2d t1{};
    Point2d t2{};
    const Point2d inside{0.5, 0.0};
    EXPECT_EQ(zelmClp2dTangentPointToCircle(&inside, &kUnit, &l1, &t1, &l2, &t2), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(l1.a, 7.0);
    const Point2d on{1.0, 0.0};
    EXPECT_EQ(zelmClp2dTangentPointToCircle(&on, &kUnit, &l1, &t1, &l2, &t2), ZELM_OK);
    EXPECT_EQ(t1.x, 1.0);
    EXPECT_EQ(t2.x, 1.0);
    EXPECT_EQ(l1.a, l2.a);
    EXPECT_EQ(l1.b, l2.b);
    const Point2d justInside{1.0 - 2e-14, 0.0};
    EXPECT_EQ(zelmClp2dTangentPointToCircle(&justInside, &kUnit, &l1, &t1, &l2, &t2), ZELM_ERR_DEGENERATE);
}

// Distances within 1e-14 of the radius count as on the circle on both sides; farther inside is refused.
TEST(Clp2dTangentPointToCircle, TheThresholdOnBothSidesOfTheCircle) {
    // A small circle, so that distances of 1e-15 are resolved.
    const Circle2d circle{0.0, 0.0, 0.01};
    Line2d l1{};
    Line2d l2{};
    Point2d t1{};
    Point2d t2{};
    for (const double gap : {-0.9e-14, -1e-16, 0.0, 1e-16, 0.9e-14}) {
        const Point2d p{0.01 + gap, 0.0};
        ASSERT_EQ(zelmClp2dTangentPointToCircle(&p, &circle, &l1, &t1, &l2, &t2), ZELM_OK) << gap;
        EXPECT_EQ(t1.y, t2.y) << gap;
        EXPECT_EQ(l1.b, l2.b) << gap;
    }
    const Point2d outside{0.01 + 1.1e-14, 0.0};
    ASSERT_EQ(zelmClp2dTangentPointToCircle(&outside, &circle, &l1, &t1, &l2, &t2), ZELM_OK);
    EXPECT_GT(t1.y, t2.y);
    const Point2d inside{0.01 - 1.1e-14, 0.0};
    EXPECT_EQ(zelmClp2dTangentPointToCircle(&inside, &circle, &l1, &t1, &l2, &t2), ZELM_ERR_DEGENERATE);
}

TEST(Clp2dClosestToCircle, IsTheProjectionOfThePoint) {
    Random random(34);
    for (int i = 0; i < kRounds; ++i) {
        const Circle2d circle{random.uniform(-50.0, 50.0), random.uniform(-50.0, 50.0), random.uniform(1.0, 20.0)};
        const double away = random.uniform(0.01, 60.0);
        const double angle = random.uniform(-kPi, kPi);
        const Point2d p{circle.x + away * std::cos(angle), circle.y + away * std::sin(angle)};
        Point2d closest{};
        double distance = 0.0;
        ASSERT_EQ(zelmClp2dClosestToCircle(&p, &circle, &closest, &distance), ZELM_OK);
        ASSERT_NEAR(closest.x, circle.x + circle.r * std::cos(angle), kPointTolerance);
        ASSERT_NEAR(closest.y, circle.y + circle.r * std::sin(angle), kPointTolerance);
        ASSERT_NEAR(distance, std::fabs(away - circle.r), kPointTolerance);
    }
}

TEST(Clp2dClosestToCircle, TheCentreGivesNonFiniteOutputs) {
    const Point2d centre{0.0, 0.0};
    Point2d closest{};
    double distance = 0.0;
    EXPECT_EQ(zelmClp2dClosestToCircle(&centre, &kUnit, &closest, &distance), ZELM_OK);
    EXPECT_FALSE(std::isfinite(closest.x));
}

TEST(Clp2dCircles, RadiiBelowTheThresholdAreRefused) {
    const Circle2d none{0.0, 0.0, 0.999e-14};
    const Line2d line{0.0, 1.0, 0.0};
    const Line2d noLine{0.0, 0.999e-14, 0.0};
    const Point2d p{2.0, 0.0};
    Point2d q1{};
    Point2d q2{};
    Line2d l1{};
    Line2d l2{};
    double distance = 0.0;
    EXPECT_EQ(zelmClp2dIntersectionLineAndCircle(&line, &none, &q1, &q2), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmClp2dIntersectionLineAndCircle(&noLine, &kUnit, &q1, &q2), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmClp2dTangentPointToCircle(&p, &none, &l1, &q1, &l2, &q2), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmClp2dClosestToCircle(&p, &none, &q1, &distance), ZELM_ERR_DEGENERATE);
    const Circle2d tiny{0.0, 0.0, 1.001e-14};
    EXPECT_EQ(zelmClp2dClosestToCircle(&p, &tiny, &q1, &distance), ZELM_OK);
    EXPECT_EQ(zelmClp2dTangentPointToCircle(&p, &tiny, &l1, &q1, &l2, &q2), ZELM_OK);
    EXPECT_EQ(zelmClp2dIntersectionLineAndCircle(&line, &tiny, &q1, &q2), ZELM_OK);
}

}  // namespace
