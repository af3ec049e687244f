// How two segments meet: known cases of every kind, an exact integer oracle, and the tolerance of 1e-13.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "random.h"
#include "zelm/cg.h"

namespace {

using zelmtest::Random;

struct Meeting {
    std::int32_t kind;
    Point2d point;
};

Meeting meet(const Point2d& a1, const Point2d& a2, const Point2d& b1, const Point2d& b2) {
    Meeting m{-1, {777.0, 777.0}};
    EXPECT_EQ(zelmCgIntersectionOfTwoSegments(&a1, &a2, &b1, &b2, &m.kind, &m.point), ZELM_OK);
    return m;
}

void expectMeeting(const Meeting& m, std::int32_t kind, double x, double y) {
    EXPECT_EQ(m.kind, kind);
    EXPECT_NEAR(m.point.x, x, 1e-14);
    EXPECT_NEAR(m.point.y, y, 1e-14);
}

constexpr double kUnwritten = 777.0;

TEST(CgIntersectionOfTwoSegments, NullPointersAreRefused) {
    const Point2d p{};
    Point2d out{};
    std::int32_t kind = 7;
    EXPECT_EQ(zelmCgIntersectionOfTwoSegments(nullptr, &p, &p, &p, &kind, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgIntersectionOfTwoSegments(&p, nullptr, &p, &p, &kind, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgIntersectionOfTwoSegments(&p, &p, nullptr, &p, &kind, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgIntersectionOfTwoSegments(&p, &p, &p, nullptr, &kind, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgIntersectionOfTwoSegments(&p, &p, &p, &p, nullptr, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCgIntersectionOfTwoSegments(&p, &p, &p, &p, &kind, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(kind, 7);
}

TEST(CgIntersectionOfTwoSegments, KnownCasesOfEveryKind) {
    expectMeeting(meet({0, 0}, {2, 2}, {0, 2}, {2, 0}), ZELM_SEGMENTS_CROSS, 1.0, 1.0);
    expectMeeting(meet({0, 0}, {1, 0}, {1, 0}, {2, 0}), ZELM_SEGMENTS_ENDPOINTS, 1.0, 0.0);
    expectMeeting(meet({0, 0}, {1, 0}, {1, 0}, {1, 5}), ZELM_SEGMENTS_ENDPOINTS, 1.0, 0.0);
    expectMeeting(meet({1, 0}, {1, 3}, {0, 0}, {2, 0}), ZELM_SEGMENTS_A_ON_B, 1.0, 0.0);
    expectMeeting(meet({0, 0}, {2, 0}, {1, 0}, {1, 1}), ZELM_SEGMENTS_B_ON_A, 1.0, 0.0);
    expectMeeting(meet({0, 0}, {2, 0}, {1, 0}, {3, 0}), ZELM_SEGMENTS_OVERLAP, kUnwritten, kUnwritten);
    expectMeeting(meet({0, 0}, {1, 0}, {2, 0}, {3, 0}), ZELM_SEGMENTS_APART, kUnwritten, kUnwritten);
    expectMeeting(meet({0, 0}, {1, 0}, {0, 1}, {1, 1}), ZELM_SEGMENTS_APART, kUnwritten, kUnwritten);
}

TEST(CgIntersectionOfTwoSegments, CollinearSegmentsByTheSumOfTheirScores) {
    EXPECT_EQ(meet({0, 0}, {3, 0}, {1, 0}, {2, 0}).kind, ZELM_SEGMENTS_OVERLAP);  // one inside the other
    EXPECT_EQ(meet({0, 0}, {2, 0}, {0, 0}, {2, 0}).kind, ZELM_SEGMENTS_OVERLAP);  // the same segment
    EXPECT_EQ(meet({0, 0}, {2, 0}, {2, 0}, {0, 0}).kind, ZELM_SEGMENTS_OVERLAP);  // the same segment reversed
    EXPECT_EQ(meet({0, 0}, {2, 0}, {0, 0}, {1, 0}).kind, ZELM_SEGMENTS_OVERLAP);  // a common end, one inside
    expectMeeting(meet({2, 0}, {1, 0}, {0, 0}, {1, 0}), ZELM_SEGMENTS_ENDPOINTS, 1.0, 0.0);
    // A point on the end of a segment: three endpoints coincide, one lies beyond.
    expectMeeting(meet({1, 0}, {1, 0}, {1, 0}, {2, 0}), ZELM_SEGMENTS_ENDPOINTS, 1.0, 0.0);
}

// On a grid of integers all cross products are exact, so the relation can be told without tolerance.
std::int32_t exactKind(const std::int64_t (&v)[8]) {
    const auto cross = [](std::int64_t ax, std::int64_t ay, std::int64_t bx, std::int64_t by) {
        return ax * by - ay * bx;
    };
    const std::int64_t dx = v[2] - v[0];
    const std::int64_t dy = v[3] - v[1];
    const std::int64_t fx = v[6] - v[4];
    const std::int64_t fy = v[7] - v[5];
    const std::int64_t b1 = cross(dx, dy, v[4] - v[0], v[5] - v[1]);
    const std::int64_t b2 = cross(dx, dy, v[6] - v[0], v[7] - v[1]);
    const std::int64_t a1 = cross(fx, fy, v[0] - v[4], v[1] - v[5]);
    const std::int64_t a2 = cross(fx, fy, v[2] - v[4], v[3] - v[5]);
    if (b1 * b2 > 0 || a1 * a2 > 0) {
        return ZELM_SEGMENTS_APART;
    }
    const bool onA = b1 == 0 || b2 == 0;
    const bool onB = a1 == 0 || a2 == 0;
    if (onA && onB) {
        return ZELM_SEGMENTS_ENDPOINTS;
    }
    if (onB) {
        return ZELM_SEGMENTS_A_ON_B;
    }
    return onA ? ZELM_SEGMENTS_B_ON_A : ZELM_SEGMENTS_CROSS;
}

TEST(CgIntersectionOfTwoSegments, AgreesWithExactArithmeticOnAnIntegerGrid) {
    Random random(61);
    int seen[6] = {};
    for (int round = 0; round < 60000; ++round) {
        std::int64_t v[8];
        double d[8];
        for (int i = 0; i < 8; ++i) {
            v[i] = random.integer(-4, 4);
            d[i] = static_cast<double>(v[i]);
        }
        const bool parallel = (v[2] - v[0]) * (v[7] - v[5]) == (v[3] - v[1]) * (v[6] - v[4]);
        if (parallel) {
            continue;  // collinear ones have cases of their own
        }
        const Meeting m = meet({d[0], d[1]}, {d[2], d[3]}, {d[4], d[5]}, {d[6], d[7]});
        const std::int32_t expected = exactKind(v);
        ASSERT_EQ(m.kind, expected) << "round " << round;
        seen[m.kind] += 1;
        if (m.kind == ZELM_SEGMENTS_APART) {
            ASSERT_EQ(m.point.x, kUnwritten);
        } else {
            const double off = (d[2] - d[0]) * (m.point.y - d[1]) - (d[3] - d[1]) * (m.point.x - d[0]);
            const double offB = (d[6] - d[4]) * (m.point.y - d[5]) - (d[7] - d[5]) * (m.point.x - d[4]);
            ASSERT_NEAR(off, 0.0, 1e-12);
            ASSERT_NEAR(offB, 0.0, 1e-12);
        }
    }
    for (int kind = 0; kind < 5; ++kind) {
        EXPECT_GT(seen[kind], 100) << "kind " << kind;
    }
}

// An end that misses the other segment's line by less than 1e-13 (as a cross product) touches it.
TEST(CgIntersectionOfTwoSegments, TheToleranceAppliesToTheCrossProduct) {
    EXPECT_EQ(meet({0, 0}, {1, 0}, {0.5, 0.9e-13}, {0.5, 1}).kind, ZELM_SEGMENTS_B_ON_A);
    EXPECT_EQ(meet({0, 0}, {1, 0}, {0.5, 1.1e-13}, {0.5, 1}).kind, ZELM_SEGMENTS_APART);
    EXPECT_EQ(meet({0, 0}, {1, 0}, {0.5, -0.9e-13}, {0.5, 1}).kind, ZELM_SEGMENTS_B_ON_A);
    EXPECT_EQ(meet({0, 0}, {1, 0}, {0.5, -1.1e-13}, {0.5, 1}).kind, ZELM_SEGMENTS_CROSS);
}

// The same for each of the four ends in its turn, and for A's ends against B's line.
TEST(CgIntersectionOfTwoSegments, EachEndHasTheTolerance) {
    struct Case {
        double height;
        std::int32_t kind;  // of an end of B over A; A's ends over B give the mirrored kind
    };
    for (const Case& c : {Case{0.9e-13, ZELM_SEGMENTS_B_ON_A}, Case{1.1e-13, ZELM_SEGMENTS_APART},
                          Case{-0.9e-13, ZELM_SEGMENTS_B_ON_A}, Case{-1.1e-13, ZELM_SEGMENTS_CROSS}}) {
        const Point2d left{0.0, 0.0};
        const Point2d right{1.0, 0.0};
        const Point2d foot{0.5, c.height};
        const Point2d top{0.5, 1.0};
        const std::int32_t mirrored = c.kind == ZELM_SEGMENTS_B_ON_A ? ZELM_SEGMENTS_A_ON_B : c.kind;
        EXPECT_EQ(meet(left, right, foot, top).kind, c.kind) << c.height;
        EXPECT_EQ(meet(left, right, top, foot).kind, c.kind) << c.height;
        EXPECT_EQ(meet(foot, top, left, right).kind, mirrored) << c.height;
        EXPECT_EQ(meet(top, foot, left, right).kind, mirrored) << c.height;
    }
}

// "On one side" is a product of two cross products: segments that end shortly before the other's line count as
// crossing it, deliberately.
TEST(CgIntersectionOfTwoSegments, OneSideIsToldByTheProductOfBothEnds) {
    const Point2d left{0.0, 0.0};
    const Point2d right{1.0, 0.0};
    const Point2d low{0.5, 1e-6};
    const Point2d nearby{0.5, 0.9e-7};
    const Point2d away{0.5, 1.1e-7};
    expectMeeting(meet(left, right, low, nearby), ZELM_SEGMENTS_CROSS, 0.5, 0.0);
    expectMeeting(meet(low, nearby, left, right), ZELM_SEGMENTS_CROSS, 0.5, 0.0);
    expectMeeting(meet(left, right, low, away), ZELM_SEGMENTS_APART, kUnwritten, kUnwritten);
    expectMeeting(meet(low, away, left, right), ZELM_SEGMENTS_APART, kUnwritten, kUnwritten);
}

// The lines of parallel segments that close have no intersection; it is not guarded.
TEST(CgIntersectionOfTwoSegments, CloseParallelsCrossNowhere) {
    const Meeting m = meet({0, 0}, {1, 0}, {0, 1e-7}, {1, 1e-7});
    EXPECT_EQ(m.kind, ZELM_SEGMENTS_CROSS);
    EXPECT_FALSE(std::isfinite(m.point.x));
    EXPECT_EQ(meet({0, 0}, {1, 0}, {0, 1e-6}, {1, 1e-6}).kind, ZELM_SEGMENTS_APART);
}

// Both ends of a short segment lie near the other's line while the long one's do not lie near the short one's: a touch,
// not an overlap.
TEST(CgIntersectionOfTwoSegments, CollinearityAsksForAllFourEnds) {
    EXPECT_EQ(meet({0, 0}, {1e-6, 0}, {0, 5e-8}, {1, 5e-8}).kind, ZELM_SEGMENTS_B_ON_A);
    EXPECT_EQ(meet({0, 5e-8}, {1, 5e-8}, {0, 0}, {1e-6, 0}).kind, ZELM_SEGMENTS_A_ON_B);
}

TEST(CgIntersectionOfTwoSegments, CollinearEndsCoincideWithinTheTolerance) {
    expectMeeting(meet({0, 0}, {1, 0}, {1 + 0.9e-13, 0}, {2, 0}), ZELM_SEGMENTS_ENDPOINTS, 1.0 + 0.45e-13, 0.0);
    EXPECT_EQ(meet({0, 0}, {1, 0}, {1 + 1.1e-13, 0}, {2, 0}).kind, ZELM_SEGMENTS_APART);
    EXPECT_EQ(meet({0, 0}, {1, 0}, {1 - 0.9e-13, 0}, {2, 0}).kind, ZELM_SEGMENTS_ENDPOINTS);
    EXPECT_EQ(meet({0, 0}, {1, 0}, {1 - 1.1e-13, 0}, {2, 0}).kind, ZELM_SEGMENTS_OVERLAP);
}

// One end near, three beyond: no sum that is named, so it counts as an overlap although the segments are apart.
TEST(CgIntersectionOfTwoSegments, AnyOtherSumOfScoresIsAnOverlap) {
    const Meeting m = meet({1.1e-7, 0}, {1, 0}, {0, 0}, {1e-8, 0});
    expectMeeting(m, ZELM_SEGMENTS_OVERLAP, kUnwritten, kUnwritten);
}

TEST(CgIntersectionOfTwoSegments, ThePointOfACrossingIsExactToRounding) {
    Random random(62);
    for (int round = 0; round < 5000; ++round) {
        const Point2d at{random.uniform(-100, 100), random.uniform(-100, 100)};
        const double angle = random.uniform(-3.1, 3.1);
        const double other = angle + random.uniform(0.1, 3.0);
        const double s = random.uniform(1.0, 50.0);
        const double t = random.uniform(1.0, 50.0);
        const Meeting m = meet({at.x - s * std::cos(angle), at.y - s * std::sin(angle)},
                               {at.x + t * std::cos(angle), at.y + t * std::sin(angle)},
                               {at.x - t * std::cos(other), at.y - t * std::sin(other)},
                               {at.x + s * std::cos(other), at.y + s * std::sin(other)});
        ASSERT_EQ(m.kind, ZELM_SEGMENTS_CROSS);
        // Rounding of the input, some ulp of 100, over the sine of the angle between, 0.1.
        ASSERT_NEAR(m.point.x, at.x, 1e-11);
        ASSERT_NEAR(m.point.y, at.y, 1e-11);
    }
}

}  // namespace
