// Convex polygons: points inside, lines and segments clipped by them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "random.h"
#include "zelm/cg.h"
#include "zelm/clp2d.h"

namespace {

using zelmtest::Random;
using Polygon = std::vector<Point2d>;

const Polygon kSquare{{0.0, 0.0}, {1.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}};

std::int32_t count(const Polygon& polygon) {
    return static_cast<std::int32_t>(polygon.size());
}

// A convex polygon inscribed in a circle, in either orientation.
Polygon randomPolygon(Random& random, Circle2d* circle) {
    *circle = {random.uniform(-20.0, 20.0), random.uniform(-20.0, 20.0), random.uniform(2.0, 15.0)};
    const std::int32_t n = random.integer(3, 9);
    Polygon polygon;
    for (std::int32_t i = 0; i < n; ++i) {
        const double angle = 6.283185307179586 * (i + random.uniform(0.1, 0.9)) / n;
        polygon.push_back({circle->x + circle->r * std::cos(angle), circle->y + circle->r * std::sin(angle)});
    }
    if (random.integer(0, 1) == 1) {
        std::reverse(polygon.begin(), polygon.end());
    }
    return polygon;
}

// Signed distance to the polygon's boundary: positive inside.
double depthOf(const Polygon& polygon, const Point2d& p) {
    double depth = std::numeric_limits<double>::infinity();
    double area = 0.0;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Point2d& a = polygon[i];
        const Point2d& b = polygon[(i + 1) % polygon.size()];
        area += a.x * b.y - a.y * b.x;
    }
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Point2d& a = polygon[i];
        const Point2d& b = polygon[(i + 1) % polygon.size()];
        const double side = ((b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x)) / std::hypot(b.x - a.x, b.y - a.y);
        depth = std::min(depth, area > 0.0 ? side : -side);
    }
    return depth;
}

std::int32_t where(const Polygon& polygon, const Point2d& p) {
    std::int32_t result = -1;
    EXPECT_EQ(zelmCgPointInConvexPolygon(count(polygon), polygon.data(), &p, &result), ZELM_OK);
    return result;
}

TEST(CgPointInConvexPolygon, BadArgumentsAreRefused) {
    const Point2d p{};
    std::int32_t result = 7;
    EXPECT_EQ(zelmCgPointInConvexPolygon(2, kSquare.data(), &p, &result), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgPointInConvexPolygon(4, nullptr, &p, &result), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgPointInConvexPolygon(4, kSquare.data(), nullptr, &result), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgPointInConvexPolygon(4, kSquare.data(), &p, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(result, 7);
}

TEST(CgPointInConvexPolygon, InsideOutsideAndOnTheBoundary) {
    EXPECT_EQ(where(kSquare, {0.5, 0.5}), 1);
    EXPECT_EQ(where(kSquare, {2.0, 0.5}), 0);
    EXPECT_EQ(where(kSquare, {1.0, 0.5}), 2);
    EXPECT_EQ(where(kSquare, {0.25, 0.75}), 1);
}

TEST(CgPointInConvexPolygon, CornersAreOnTheBoundaryAndWhatLiesBehindThemIsOutside) {
    for (const Point2d& corner : kSquare) {
        EXPECT_EQ(where(kSquare, corner), 2);
        EXPECT_EQ(where(kSquare, {0.5 + 3.0 * (corner.x - 0.5), 0.5 + 3.0 * (corner.y - 0.5)}), 0);
    }
}

TEST(CgPointInConvexPolygon, OnAPolygonWithoutAreaIsOnTheBoundary) {
    const Polygon flat{{0.0, 0.0}, {1.0, 0.0}, {2.0, 0.0}};
    EXPECT_EQ(where(flat, {0.5, 0.0}), 2);
}

// The segments' tolerance holds for products of areas, so that polygons of less than a thousandth of a unit are too
// small to tell inside from outside; the first edge that reports anything decides.
TEST(CgPointInConvexPolygon, TinyPolygonsAreBelowTheTolerance) {
    const auto square = [](double side) { return Polygon{{0.0, 0.0}, {side, 0.0}, {side, side}, {0.0, side}}; };
    EXPECT_EQ(where(square(1e-3), {0.5e-3, 0.5e-3}), 1);
    EXPECT_EQ(where(square(5e-4), {2.5e-4, 2.5e-4}), 0);
    EXPECT_EQ(where(square(1e-4), {0.0, 0.5e-4}), 0) << "on the last edge, but the first one speaks first";
}

TEST(CgPointInConvexPolygon, AgreesWithSignedDistances) {
    Random random(71);
    int seen[2] = {};
    for (int round = 0; round < 6000; ++round) {
        Circle2d circle{};
        const Polygon polygon = randomPolygon(random, &circle);
        const Point2d p{circle.x + random.uniform(-1.2, 1.2) * circle.r,
                        circle.y + random.uniform(-1.2, 1.2) * circle.r};
        const double depth = depthOf(polygon, p);
        if (std::fabs(depth) > 1e-9) {
            const std::int32_t expected = depth > 0.0 ? 1 : 0;
            ASSERT_EQ(where(polygon, p), expected) << "round " << round << " depth " << depth;
            seen[expected] += 1;
        }
    }
    EXPECT_GT(seen[0], 1000);
    EXPECT_GT(seen[1], 1000);
}

struct Cut {
    std::int32_t count;
    Point2d points[2];
};

Cut cutByLine(const Polygon& polygon, const Line2d& line) {
    Cut cut{-1, {{7.0, 7.0}, {7.0, 7.0}}};
    cut.count = zelmCgIntersectionLineAndConvexPolygon(count(polygon), polygon.data(), &line, cut.points);
    return cut;
}

TEST(CgIntersectionLineAndConvexPolygon, BadArgumentsAreRefused) {
    const Line2d line{0.0, 1.0, 0.0};
    const Line2d none{0.999e-13, 0.0, 1.0};
    Point2d out[2] = {};
    EXPECT_EQ(zelmCgIntersectionLineAndConvexPolygon(1, kSquare.data(), &line, out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgIntersectionLineAndConvexPolygon(4, nullptr, &line, out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgIntersectionLineAndConvexPolygon(4, kSquare.data(), &line, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgIntersectionLineAndConvexPolygon(4, kSquare.data(), &none, out), ZELM_ERR_PARAM)
        << "a normal shorter than 1e-13 is a bad argument here";
    const Line2d faint{1.001e-13, 0.0, -0.5e-13};
    EXPECT_EQ(zelmCgIntersectionLineAndConvexPolygon(4, kSquare.data(), &faint, out), 2);
}

TEST(CgIntersectionLineAndConvexPolygon, KnownCuts) {
    const Cut through = cutByLine(kSquare, {0.0, 1.0, -0.5});
    ASSERT_EQ(through.count, 2);
    EXPECT_EQ(through.points[0].x, 1.0);
    EXPECT_EQ(through.points[0].y, 0.5);
    EXPECT_EQ(through.points[1].x, 0.0);
    EXPECT_EQ(through.points[1].y, 0.5);
    EXPECT_EQ(cutByLine(kSquare, {0.0, 1.0, 0.0}).count, 0) << "along an edge";
    const Cut corner = cutByLine(kSquare, {1.0, 1.0, -2.0});
    ASSERT_EQ(corner.count, 1);
    EXPECT_NEAR(corner.points[0].x, 1.0, 1e-15);
    EXPECT_NEAR(corner.points[0].y, 1.0, 1e-15);
    EXPECT_EQ(cutByLine(kSquare, {0.0, 1.0, -5.0}).count, 0) << "misses";
}

// The line y = 1 - 0.5e-13 crosses the edge x = 1 (a point is stored), then runs along the edge y = 1.
TEST(CgIntersectionLineAndConvexPolygon, ALineAlongALaterEdgeGivesNoPointEvenAfterOneWasFound) {
    const Cut cut = cutByLine(kSquare, {0.0, 1.0, -(1.0 - 0.5e-13)});
    EXPECT_EQ(cut.count, 0);
    EXPECT_EQ(cut.points[0].x, 1.0);
    EXPECT_EQ(cutByLine(kSquare, {0.0, -1.0, 1.0}).count, 0);
}

// Within 1e-13 of both its ends a line runs along an edge, at any scale of the line.
TEST(CgIntersectionLineAndConvexPolygon, TheToleranceOfALineAlongAnEdge) {
    for (const double scale : {1.0, -1.0, 50.0, 0.02}) {
        EXPECT_EQ(cutByLine(kSquare, {0.0, scale, -0.9e-13 * scale}).count, 0) << scale;
        EXPECT_EQ(cutByLine(kSquare, {0.0, scale, 0.9e-13 * scale}).count, 0) << scale;
        EXPECT_EQ(cutByLine(kSquare, {0.0, scale, -1.1e-13 * scale}).count, 2) << scale;
        EXPECT_EQ(cutByLine(kSquare, {0.0, scale, 1.1e-13 * scale}).count, 0) << "outside, " << scale;
    }
}

// A corner counts for one edge only when it lies on the line exactly; a hair inside, both its edges are cut.
TEST(CgIntersectionLineAndConvexPolygon, ACornerOnTheLineIsCountedOnceOnlyWhenItIsExactlyOnIt) {
    EXPECT_EQ(cutByLine(kSquare, {1.0, 1.0, -2.0}).count, 1);
    EXPECT_EQ(cutByLine(kSquare, {1.0, 1.0, -2.0 + 0.5e-13}).count, 2);
    const Polygon triangle{{0.0, 0.0}, {2.0, 0.0}, {1.0, 1.0}};
    EXPECT_EQ(cutByLine(triangle, {0.0, 1.0, -1.0}).count, 1);
}

TEST(CgIntersectionLineAndConvexPolygon, PointsAreThoseOfTheLineAndTheEdgesLineToTheBit) {
    Random random(74);
    for (int round = 0; round < 500; ++round) {
        const Polygon triangle{{random.uniform(-9.0, -5.0), random.uniform(-9.0, -5.0)},
                               {random.uniform(5.0, 9.0), random.uniform(-9.0, -5.0)},
                               {random.uniform(-1.0, 1.0), random.uniform(5.0, 9.0)}};
        const Line2d line{random.uniform(-0.2, 0.2), random.uniform(0.5, 3.0), random.uniform(-1.0, 1.0)};
        const Cut cut = cutByLine(triangle, line);
        ASSERT_EQ(cut.count, 2);
        for (std::size_t i = 0; i < 2; ++i) {
            Line2d edge{};
            Point2d expected{};
            ASSERT_EQ(zelmClp2dLineTwoPoints(&triangle[i + 1], &triangle[(i + 2) % 3], &edge), ZELM_OK);
            ASSERT_EQ(zelmClp2dIntersectionTwoLines(&line, &edge, &expected), ZELM_OK);
            ASSERT_EQ(cut.points[i].x, expected.x);
            ASSERT_EQ(cut.points[i].y, expected.y);
        }
    }
}

TEST(CgIntersectionLineAndConvexPolygon, ADiagonalCountsEachCornerOnce) {
    const Cut diagonal = cutByLine(kSquare, {1.0, -1.0, 0.0});
    ASSERT_EQ(diagonal.count, 2);
    EXPECT_NEAR(diagonal.points[0].x + diagonal.points[1].x, 1.0, 1e-15);
}

TEST(CgIntersectionLineAndConvexPolygon, TwoVerticesAreOneSegment) {
    const Polygon segment{{0.0, 0.0}, {2.0, 0.0}};
    const Cut cut = cutByLine(segment, {1.0, 0.0, -1.0});
    ASSERT_EQ(cut.count, 1);
    EXPECT_EQ(cut.points[0].x, 1.0);
    EXPECT_EQ(cutByLine(segment, {1.0, 0.0, -2.0}).count, 1) << "through its end";
    EXPECT_EQ(cutByLine(segment, {1.0, 0.0, -3.0}).count, 0);
}

TEST(CgIntersectionLineAndConvexPolygon, ZeroLengthEdgesAreSkipped) {
    const Polygon doubled{{0.0, 0.0}, {1.0, 0.0}, {1.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}};
    EXPECT_EQ(cutByLine(doubled, {0.0, 1.0, -0.5}).count, 2);
}

// A polygon whose right tip is an edge of the given length; cut half-way up that edge.
Polygon withShortEdge(double length) {
    return {{-1.0, -1.0}, {0.0, -1.0}, {1.0, 0.0}, {1.0, length}, {0.0, 1.0}, {-1.0, 1.0}};
}

// Both sides of 1e-13. A line within it of both ends of the tip runs along it, unless the tip is skipped.
TEST(CgIntersectionLineAndConvexPolygon, TheLengthOfAnEdgeThatIsSkipped) {
    EXPECT_EQ(cutByLine(withShortEdge(0.9e-13), {0.0, 1.0, -0.45e-13}).count, 1);
    EXPECT_EQ(cutByLine(withShortEdge(1.1e-13), {0.0, 1.0, -0.55e-13}).count, 0);
}

TEST(CgIntersectionLineAndConvexPolygon, ALineThatIsNotFiniteFindsNothing) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(cutByLine(kSquare, {kNan, kNan, kNan}).count, 0);
}

TEST(CgIntersectionLineAndConvexPolygon, LinesThroughInnerPointsCutTheBoundaryTwice) {
    Random random(72);
    for (int round = 0; round < 5000; ++round) {
        Circle2d circle{};
        const Polygon polygon = randomPolygon(random, &circle);
        Point2d inner{0.0, 0.0};
        double total = 0.0;
        for (const Point2d& vertex : polygon) {
            const double weight = random.uniform(0.1, 1.0);
            inner = {inner.x + weight * vertex.x, inner.y + weight * vertex.y};
            total += weight;
        }
        inner = {inner.x / total, inner.y / total};
        const double angle = random.uniform(-3.1, 3.1);
        const double scale = random.uniform(0.01, 50.0);
        const Line2d line{-std::sin(angle) * scale, std::cos(angle) * scale,
                          scale * (std::sin(angle) * inner.x - std::cos(angle) * inner.y)};
        const Cut cut = cutByLine(polygon, line);
        ASSERT_EQ(cut.count, 2) << "round " << round;
        for (const Point2d& p : cut.points) {
            ASSERT_NEAR(depthOf(polygon, p), 0.0, 1e-11);
            ASSERT_NEAR((line.a * p.x + line.b * p.y + line.c) / scale, 0.0, 1e-11);
        }
    }
}

Cut cutBySegment(const Polygon& polygon, const Point2d& s1, const Point2d& s2) {
    Cut cut{-1, {{7.0, 7.0}, {7.0, 7.0}}};
    cut.count = zelmCgIntersectionSegmentAndConvexPolygon(count(polygon), polygon.data(), &s1, &s2, cut.points);
    return cut;
}

TEST(CgIntersectionSegmentAndConvexPolygon, BadArgumentsAreRefused) {
    const Point2d p{};
    Point2d out[2] = {};
    EXPECT_EQ(zelmCgIntersectionSegmentAndConvexPolygon(1, kSquare.data(), &p, &p, out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgIntersectionSegmentAndConvexPolygon(4, nullptr, &p, &p, out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgIntersectionSegmentAndConvexPolygon(4, kSquare.data(), nullptr, &p, out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgIntersectionSegmentAndConvexPolygon(4, kSquare.data(), &p, nullptr, out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgIntersectionSegmentAndConvexPolygon(4, kSquare.data(), &p, &p, nullptr), ZELM_ERR_PARAM);
}

TEST(CgIntersectionSegmentAndConvexPolygon, KnownCuts) {
    EXPECT_EQ(cutBySegment(kSquare, {-1.0, 0.5}, {2.0, 0.5}).count, 2);
    EXPECT_EQ(cutBySegment(kSquare, {0.5, 0.5}, {2.0, 0.5}).count, 1);
    EXPECT_EQ(cutBySegment(kSquare, {0.25, 0.5}, {0.75, 0.5}).count, 0) << "wholly inside";
    EXPECT_EQ(cutBySegment(kSquare, {2.0, 0.5}, {3.0, 0.5}).count, 0) << "wholly outside";
    EXPECT_EQ(cutBySegment(kSquare, {0.25, 0.0}, {2.0, 0.0}).count, 0) << "along an edge";
    const Cut diagonal = cutBySegment(kSquare, {-1.0, -1.0}, {2.0, 2.0});
    EXPECT_EQ(diagonal.count, 2) << "each corner, found on two edges, counts once";
    const Cut corner = cutBySegment(kSquare, {0.0, 2.0}, {2.0, 0.0});
    ASSERT_EQ(corner.count, 1);
    EXPECT_NEAR(corner.points[0].x, 1.0, 1e-15);
}

TEST(CgIntersectionSegmentAndConvexPolygon, TheLengthOfAnEdgeThatIsSkipped) {
    EXPECT_EQ(cutBySegment(withShortEdge(0.9e-13), {0.0, 0.45e-13}, {2.0, 0.45e-13}).count, 0);
    EXPECT_EQ(cutBySegment(withShortEdge(1.1e-13), {0.0, 0.55e-13}, {2.0, 0.55e-13}).count, 1);
}

// The segment finds the corner (1, 1) on the edge x = 1 first, then runs along the edge y = 1.
TEST(CgIntersectionSegmentAndConvexPolygon, ASegmentAlongALaterEdgeGivesNoPointEvenAfterOneWasFound) {
    const Cut cut = cutBySegment(kSquare, {-1.0, 1.0}, {2.0, 1.0});
    EXPECT_EQ(cut.count, 0);
    EXPECT_EQ(cut.points[0].x, 1.0);
}

// A segment across a corner, cutting its edges the given distance from each other.
std::int32_t cutsAtACorner(double apart) {
    const double off = apart / std::sqrt(2.0);
    return cutBySegment(kSquare, {1.5, 0.5 - off}, {0.5, 1.5 - off}).count;
}

TEST(CgIntersectionSegmentAndConvexPolygon, PointsWithinTheToleranceAreOne) {
    EXPECT_EQ(cutsAtACorner(0.8e-13), 1);
    EXPECT_EQ(cutsAtACorner(1.2e-13), 2);
}

// The point is taken on the edge, so that it keeps an axis-parallel edge's coordinate exactly.
TEST(CgIntersectionSegmentAndConvexPolygon, PointsLieOnTheEdgesTheyWereFoundOn) {
    Random random(75);
    for (int round = 0; round < 500; ++round) {
        const Cut cut = cutBySegment(kSquare, {random.uniform(-3.0, -1.0), random.uniform(0.4, 0.6)},
                                     {random.uniform(2.0, 3.0), random.uniform(0.4, 0.6)});
        ASSERT_EQ(cut.count, 2);
        ASSERT_EQ(cut.points[0].x, 1.0);
        ASSERT_EQ(cut.points[1].x, 0.0);
    }
}

TEST(CgIntersectionSegmentAndConvexPolygon, AgreesWithTheLineWhereTheSegmentIsLong) {
    Random random(73);
    for (int round = 0; round < 3000; ++round) {
        Circle2d circle{};
        const Polygon polygon = randomPolygon(random, &circle);
        const double angle = random.uniform(-3.1, 3.1);
        const double offset = random.uniform(-1.2, 1.2) * circle.r;
        const Point2d on{circle.x - std::sin(angle) * offset, circle.y + std::cos(angle) * offset};
        const double reach = 3.0 * circle.r;
        const Cut segment = cutBySegment(polygon, {on.x - reach * std::cos(angle), on.y - reach * std::sin(angle)},
                                         {on.x + reach * std::cos(angle), on.y + reach * std::sin(angle)});
        const Cut line =
            cutByLine(polygon, {-std::sin(angle), std::cos(angle), std::sin(angle) * on.x - std::cos(angle) * on.y});
        ASSERT_EQ(segment.count, line.count) << "round " << round;
        for (std::int32_t i = 0; i < line.count; ++i) {
            ASSERT_NEAR(segment.points[i].x, line.points[i].x, 1e-10);
            ASSERT_NEAR(segment.points[i].y, line.points[i].y, 1e-10);
        }
    }
}

}  // namespace
