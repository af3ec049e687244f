// Angular sort, convex hull and the approximate enclosing circle, against brute force and a literal reference.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "cgCommon.h"
#include "random.h"
#include "zelm/cg.h"

namespace {

using zelmtest::Random;
using Points = std::vector<Point2d>;

double cross(const Point2d& o, const Point2d& a, const Point2d& b) {
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

double distance(const Point2d& p, const Point2d& q) {
    return std::hypot(p.x - q.x, p.y - q.y);
}

bool same(const Point2d& p, const Point2d& q) {
    return p.x == q.x && p.y == q.y;
}

std::int32_t count(const Points& points) {
    return static_cast<std::int32_t>(points.size());
}

// Real coordinates, or a small integer grid full of ties and collinear triples.
Points randomPoints(Random& random, std::int32_t n, bool grid) {
    Points points(static_cast<std::size_t>(n));
    for (Point2d& p : points) {
        p = grid ? Point2d{static_cast<double>(random.integer(-3, 3)), static_cast<double>(random.integer(-3, 3))}
                 : Point2d{random.uniform(-10.0, 10.0), random.uniform(-10.0, 10.0)};
    }
    return points;
}

bool isPermutation(Points a, Points b) {
    const auto less = [](const Point2d& p, const Point2d& q) { return p.x < q.x || (p.x == q.x && p.y < q.y); };
    std::sort(a.begin(), a.end(), less);
    std::sort(b.begin(), b.end(), less);
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), same);
}

TEST(CompareByArgument, OrdersByAngleThenByDistance) {
    const Point2d o{1.0, 2.0};
    EXPECT_EQ(zelm::compareByArgument(o, {3.0, 2.0}, {1.0, 5.0}), 6.0) << "the cross product";
    EXPECT_EQ(zelm::compareByArgument(o, {1.0, 5.0}, {3.0, 2.0}), -6.0);
    EXPECT_EQ(zelm::compareByArgument(o, {2.0, 2.0}, {4.0, 2.0}), 8.0) << "farther on the same ray: squared lengths";
    EXPECT_EQ(zelm::compareByArgument(o, {4.0, 2.0}, {2.0, 2.0}), -8.0);
    EXPECT_EQ(zelm::compareByArgument(o, o, {3.0, 2.0}), 4.0);
    EXPECT_EQ(zelm::compareByArgument(o, {3.0, 2.0}, {-2.0, 2.0}), 6.0) << "opposite: positive either way round";
    EXPECT_EQ(zelm::compareByArgument(o, {-2.0, 2.0}, {3.0, 2.0}), 6.0);
    EXPECT_EQ(zelm::compareByArgument(o, {3.0, 2.0}, {3.0, 2.0}), 0.0);
    // Products that overflow: the cross product is no number and is returned as such.
    EXPECT_TRUE(std::isnan(zelm::compareByArgument({0.0, 0.0}, {1e155, 1e155}, {-1e155, -1e155})));
}

TEST(CgSortByArgument, BadArgumentsAreRefused) {
    Point2d p[2] = {};
    EXPECT_EQ(zelmCgSortByArgument(1, p, p), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgSortByArgument(2, nullptr, p), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgSortByArgument(2, p, nullptr), ZELM_ERR_PARAM);
}

TEST(CgSortByArgument, SortsTheUnitSquareAboutItsLowestCorner) {
    const Points in{{1.0, 1.0}, {0.0, 0.0}, {1.0, 0.0}, {0.0, 1.0}};
    const Points expected{{0.0, 0.0}, {1.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}};
    Points out(4);
    EXPECT_EQ(zelmCgSortByArgument(4, in.data(), out.data()), ZELM_OK);
    EXPECT_TRUE(std::equal(out.begin(), out.end(), expected.begin(), same));
}

TEST(CgSortByArgument, AnglesGrowAndNearerComesFirstOnARay) {
    Random random(51);
    for (int round = 0; round < 3000; ++round) {
        const Points in = randomPoints(random, random.integer(2, 30), round % 2 == 0);
        Points out(in.size());
        ASSERT_EQ(zelmCgSortByArgument(count(in), in.data(), out.data()), ZELM_OK);
        ASSERT_TRUE(isPermutation(in, out));
        for (std::size_t i = 1; i < out.size(); ++i) {
            ASSERT_TRUE(out[0].y < out[i].y || (out[0].y == out[i].y && out[0].x <= out[i].x)) << "pivot";
            if (i + 1 < out.size()) {
                const double turn = cross(out[0], out[i], out[i + 1]);
                ASSERT_GE(turn, 0.0);
                if (turn == 0.0 && !same(out[0], out[i])) {
                    ASSERT_LE(distance(out[0], out[i]), distance(out[0], out[i + 1]));
                }
            }
        }
    }
}

// The heap sort written down once more, position by position.
Points literalSort(Points points) {
    const std::size_t n = points.size();
    std::size_t pivot = 0;
    for (std::size_t i = 1; i < n; ++i) {
        if (points[i].y < points[pivot].y || (points[i].y == points[pivot].y && points[i].x < points[pivot].x)) {
            pivot = i;
        }
    }
    std::swap(points[0], points[pivot]);
    const auto sift = [&points](Point2d moving, std::size_t k, std::size_t last) {
        for (std::size_t child = 2 * k; child <= last; child = 2 * k) {
            if (child < last && zelm::compareByArgument(points[0], points[child], points[child + 1]) > 0.0) {
                ++child;
            }
            if (zelm::compareByArgument(points[0], points[child], moving) >= 0.0) {
                break;
            }
            points[k] = points[child];
            k = child;
        }
        points[k] = moving;
    };
    for (std::size_t k = (n - 1) / 2; k >= 1; --k) {
        sift(points[k], k, n - 1);
    }
    for (std::size_t i = n - 1; i >= 2; --i) {
        const Point2d taken = points[i];
        points[i] = points[1];
        sift(taken, 1, i - 1);
    }
    return points;
}

// Equal points are told apart by the signs of their zeros, which no comparison sees.
TEST(CgSortByArgument, TiesFollowTheHeapToTheBit) {
    Random random(55);
    for (int round = 0; round < 2000; ++round) {
        Points in = randomPoints(random, random.integer(2, 40), true);
        for (Point2d& p : in) {
            p.x = p.x == 0.0 && random.integer(0, 1) == 1 ? -0.0 : p.x;
            p.y = p.y == 0.0 && random.integer(0, 1) == 1 ? -0.0 : p.y;
        }
        Points out(in.size());
        ASSERT_EQ(zelmCgSortByArgument(count(in), in.data(), out.data()), ZELM_OK);
        const Points expected = literalSort(in);
        ASSERT_EQ(std::memcmp(out.data(), expected.data(), out.size() * sizeof(Point2d)), 0) << "round " << round;
    }
}

TEST(CgSortByArgument, InputAndOutputMayBeOneArray) {
    Points points{{1.0, 1.0}, {0.0, 0.0}, {1.0, 0.0}};
    EXPECT_EQ(zelmCgSortByArgument(3, points.data(), points.data()), ZELM_OK);
    EXPECT_TRUE(same(points[0], {0.0, 0.0}));
    EXPECT_TRUE(same(points[2], {1.0, 1.0}));
}

Points hullOf(const Points& in) {
    Points out(in.size());
    std::int32_t n = -1;
    EXPECT_EQ(zelmCgConvexHull(count(in), in.data(), &n, out.data()), ZELM_OK);
    EXPECT_TRUE(isPermutation(in, out)) << "the other points follow the hull";
    out.resize(static_cast<std::size_t>(n));
    return out;
}

TEST(CgConvexHull, BadArgumentsAreRefused) {
    Point2d p{};
    std::int32_t n = 7;
    EXPECT_EQ(zelmCgConvexHull(0, &p, &n, &p), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgConvexHull(1, nullptr, &n, &p), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgConvexHull(1, &p, nullptr, &p), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgConvexHull(1, &p, &n, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(n, 7);
}

TEST(CgConvexHull, KnownHulls) {
    const Points square = hullOf({{1.0, 1.0}, {0.5, 0.5}, {0.0, 0.0}, {1.0, 0.0}, {0.0, 1.0}});
    const Points expected{{0.0, 0.0}, {1.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}};
    ASSERT_EQ(square.size(), 4U);
    EXPECT_TRUE(std::equal(square.begin(), square.end(), expected.begin(), same));
    EXPECT_EQ(hullOf({{2.0, 3.0}}).size(), 1U);
    EXPECT_EQ(hullOf({{2.0, 3.0}, {2.0, 3.0}}).size(), 1U);
    EXPECT_EQ(hullOf({{2.0, 3.0}, {2.0, 4.0}}).size(), 2U);
    EXPECT_EQ(hullOf({{2.0, 3.0}, {2.0, 3.0}, {2.0, 3.0}}).size(), 1U);
    EXPECT_EQ(hullOf({{0.0, 0.0}, {1.0, 0.0}, {2.0, 0.0}}).size(), 2U);
}

TEST(CgConvexHull, TurnsLeftAndHoldsEveryPoint) {
    Random random(52);
    for (int round = 0; round < 3000; ++round) {
        const bool grid = round % 2 == 0;
        const Points in = randomPoints(random, random.integer(3, 40), grid);
        const Points hull = hullOf(in);
        for (std::size_t i = 0; i < hull.size() && hull.size() > 2; ++i) {
            const Point2d& from = hull[i];
            const Point2d& to = hull[(i + 1) % hull.size()];
            const Point2d& next = hull[(i + 2) % hull.size()];
            // Collinear points may stay on an edge that leads away from the pivot's ray.
            ASSERT_GE(cross(from, to, next), grid ? 0.0 : -1e-12);
            for (const Point2d& p : in) {
                ASSERT_GE(cross(from, to, p), -1e-12) << "a point outside the hull, round " << round;
            }
        }
    }
}

// Far more points than a hull has vertices, all on one line: dropped in one go, not one by one.
TEST(CgConvexHull, ManyCollinearPointsLeaveTheTwoEnds) {
    Points in;
    for (int i = 200000; i >= 0; --i) {
        in.push_back({3.0 * i, 4.0 * i});
    }
    const Points hull = hullOf(in);
    ASSERT_EQ(hull.size(), 2U);
    EXPECT_TRUE(same(hull[0], {0.0, 0.0}));
    EXPECT_TRUE(same(hull[1], {600000.0, 800000.0}));
}

TEST(CgConvexHull, WhatIsNotANumberEndsWithACountWithinThePoints) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    Random random(56);
    for (int round = 0; round < 1000; ++round) {
        Points in = randomPoints(random, random.integer(1, 20), round % 2 == 0);
        const std::int32_t bad = random.integer(1, 4);
        for (std::int32_t k = 0; k < bad; ++k) {
            Point2d& p = in[static_cast<std::size_t>(random.integer(0, count(in) - 1))];
            (random.integer(0, 1) == 0 ? p.x : p.y) = random.integer(0, 1) == 0 ? kNan : kInfinity;
        }
        Points out(in.size());
        std::int32_t n = 0;
        ASSERT_EQ(zelmCgConvexHull(count(in), in.data(), &n, out.data()), ZELM_OK);
        ASSERT_GE(n, 1);
        ASSERT_LE(n, count(in));
        Point2d centre{};
        double radius = 0.0;
        ASSERT_EQ(zelmCgSmallestEnclosingCircle(count(in), in.data(), &centre, &radius), ZELM_OK);
    }
}

// The procedure written down once more, step by step.
Circle2d literalEnclosingCircle(const Points& in) {
    const Points hull = hullOf(in);
    Point2d c{(hull[0].x + hull[1].x) * 0.5, (hull[0].y + hull[1].y) * 0.5};
    double step = 0.5;
    double farthest = -1.0;
    do {
        for (int pass = 1; pass <= 5; ++pass) {
            std::size_t best = 0;
            farthest = -1.0;
            for (std::size_t i = 0; i < hull.size(); ++i) {
                const double dx = hull[i].x - c.x;
                const double dy = hull[i].y - c.y;
                if (dx * dx + dy * dy > farthest) {
                    farthest = dx * dx + dy * dy;
                    best = i;
                }
            }
            const Point2d moved{c.x + (hull[best].x - c.x) * step, c.y + (hull[best].y - c.y) * step};
            if (std::fabs(moved.x - c.x) < 1e-10 && std::fabs(moved.y - c.y) < 1e-10) {
                return {moved.x, moved.y, std::sqrt(farthest)};
            }
            c = moved;
        }
        step *= 0.5;
    } while (step > 1e-13);
    return {c.x, c.y, std::sqrt(farthest)};
}

TEST(CgSmallestEnclosingCircle, BadArgumentsAreRefused) {
    Point2d p{};
    double radius = 7.0;
    EXPECT_EQ(zelmCgSmallestEnclosingCircle(0, &p, &p, &radius), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgSmallestEnclosingCircle(1, nullptr, &p, &radius), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgSmallestEnclosingCircle(1, &p, nullptr, &radius), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgSmallestEnclosingCircle(1, &p, &p, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(radius, 7.0);
}

TEST(CgSmallestEnclosingCircle, OneAndTwoPoints) {
    const Points points{{1.0, 2.0}, {4.0, 6.0}};
    Point2d centre{};
    double radius = 7.0;
    EXPECT_EQ(zelmCgSmallestEnclosingCircle(1, points.data(), &centre, &radius), ZELM_OK);
    EXPECT_EQ(centre.x, 1.0);
    EXPECT_EQ(radius, 0.0);
    EXPECT_EQ(zelmCgSmallestEnclosingCircle(2, points.data(), &centre, &radius), ZELM_OK);
    EXPECT_EQ(centre.x, 2.5);
    EXPECT_EQ(centre.y, 4.0);
    EXPECT_EQ(radius, 2.5);
}

TEST(CgSmallestEnclosingCircle, FollowsTheProcedureToTheBit) {
    Random random(53);
    for (int round = 0; round < 1000; ++round) {
        Points in = randomPoints(random, random.integer(3, 25), false);
        // Small sets settle; large ones walk until the step is used up.
        const double scale = round % 2 == 0 ? 1.0 : 1e6;
        for (Point2d& p : in) {
            p = {p.x * scale, p.y * scale};
        }
        Point2d centre{};
        double radius = 0.0;
        ASSERT_EQ(zelmCgSmallestEnclosingCircle(count(in), in.data(), &centre, &radius), ZELM_OK);
        const Circle2d expected = literalEnclosingCircle(in);
        ASSERT_EQ(centre.x, expected.x);
        ASSERT_EQ(centre.y, expected.y);
        ASSERT_EQ(radius, expected.r);
    }
}

// Not exact by design: the walk ends near the smallest circle. The share by which its radius may exceed the distance of
// the farthest point is what the last moves leave.
TEST(CgSmallestEnclosingCircle, HoldsThePointsAndComesNearTheSmallestCircle) {
    Random random(54);
    for (int round = 0; round < 500; ++round) {
        // Three points on a circle at large angles: the circle itself is the smallest one.
        const Circle2d truth{random.uniform(-5.0, 5.0), random.uniform(-5.0, 5.0), random.uniform(1.0, 9.0)};
        Points in;
        for (int k = 0; k < 3; ++k) {
            const double angle = 2.0943951 * k + random.uniform(-0.3, 0.3);
            in.push_back({truth.x + truth.r * std::cos(angle), truth.y + truth.r * std::sin(angle)});
        }
        for (int k = 0; k < 10; ++k) {
            const double angle = random.uniform(0.0, 6.28);
            const double r = truth.r * random.uniform(0.0, 0.95);
            in.push_back({truth.x + r * std::cos(angle), truth.y + r * std::sin(angle)});
        }
        Point2d centre{};
        double radius = 0.0;
        ASSERT_EQ(zelmCgSmallestEnclosingCircle(count(in), in.data(), &centre, &radius), ZELM_OK);
        ASSERT_NEAR(radius, truth.r, 1e-4 * truth.r);
        for (const Point2d& p : in) {
            ASSERT_LE(distance(p, centre), radius * (1.0 + 1e-8));
        }
    }
}

TEST(CgSmallestEnclosingCircle, ManyEqualPointsGiveRadiusZero) {
    const Points in(5, Point2d{3.0, 4.0});
    Point2d centre{};
    double radius = 7.0;
    EXPECT_EQ(zelmCgSmallestEnclosingCircle(5, in.data(), &centre, &radius), ZELM_OK);
    EXPECT_EQ(centre.x, 3.0);
    EXPECT_EQ(centre.y, 4.0);
    EXPECT_EQ(radius, 0.0);
}

}  // namespace
