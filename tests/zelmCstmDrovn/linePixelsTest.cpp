// The pixels of a line inside a rectangle.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

#include "expandedFixtures.h"
#include "lattice.h"

namespace {

using namespace zelmtest;

TEST(CstmPixelOnEpiLine, AHorizontalLineGivesItsRow) {
    const ZelmRect rect{10, 20, 5, 8};
    const Line2d line{0.0, 2.0, -48.8};  // y = 24.4, any scale
    std::int32_t count = 0;
    Point2i points[8];
    ASSERT_EQ(zelmCstmDrovnGetPixelOnEpiLine(&rect, &line, &count, points), ZELM_OK);
    ASSERT_EQ(count, 5);
    // From the first crossing of the sides, in their order top, right, bottom, left.
    for (std::int32_t i = 0; i < 5; ++i) {
        EXPECT_EQ(points[i].x, 14 - i);
        EXPECT_EQ(points[i].y, 24);
    }
}

TEST(CstmPixelOnEpiLine, HalvesAreRoundedUp) {
    const ZelmRect rect{0, 0, 4, 9};
    const Line2d line{0.0, 1.0, -4.5};
    std::int32_t count = 0;
    Point2i points[9];
    ASSERT_EQ(zelmCstmDrovnGetPixelOnEpiLine(&rect, &line, &count, points), ZELM_OK);
    ASSERT_EQ(count, 4);
    EXPECT_EQ(points[0].y, 5);
}

// Every pixel lies in the rectangle and within half a pixel, along the minor axis, of the segment between the rounded
// crossings; these are at most half a pixel off.
TEST(CstmPixelOnEpiLine, PixelsFollowTheLineInsideTheRectangle) {
    Random random(241);
    int crossed = 0;
    for (int i = 0; i < 5000; ++i) {
        const ZelmRect rect{random.integer(0, 500), random.integer(0, 500), random.integer(1, 300),
                            random.integer(1, 300)};
        const double angle = random.uniform(0.0, 6.28318530717958648);
        const double x = rect.x + random.uniform(-0.2, 1.2) * rect.width;
        const double y = rect.y + random.uniform(-0.2, 1.2) * rect.height;
        const Line2d line{std::cos(angle), std::sin(angle), -(std::cos(angle) * x + std::sin(angle) * y)};
        const auto room = static_cast<std::size_t>(std::max(rect.width, rect.height));
        std::vector<Point2i> points(room);
        std::int32_t count = 0;
        const std::int32_t status = zelmCstmDrovnGetPixelOnEpiLine(&rect, &line, &count, points.data());
        if (status == ZELM_ERR_DEGENERATE) {
            continue;
        }
        ASSERT_EQ(status, ZELM_OK);
        crossed += 1;
        ASSERT_GE(count, 1);
        ASSERT_LE(static_cast<std::size_t>(count), room);
        for (std::int32_t k = 0; k < count; ++k) {
            const Point2i p = points[static_cast<std::size_t>(k)];
            ASSERT_TRUE(p.x >= rect.x && p.x < rect.x + rect.width);
            ASSERT_TRUE(p.y >= rect.y && p.y < rect.y + rect.height);
            // Half a pixel of the rounded ends plus half a pixel of the raster, both diagonal at worst.
            ASSERT_LE(std::fabs(line.a * p.x + line.b * p.y + line.c), 1.42);
            if (k > 0) {
                const Point2i q = points[static_cast<std::size_t>(k - 1)];
                ASSERT_EQ(std::max(std::abs(p.x - q.x), std::abs(p.y - q.y)), 1);
            }
        }
    }
    EXPECT_GT(crossed, 2000);
}

TEST(CstmPixelOnEpiLine, ALineThatMissesIsDegenerate) {
    const ZelmRect rect{10, 20, 5, 8};
    const Line2d line{0.0, 1.0, -28.0};  // the last row is 27
    std::int32_t count = 77;
    Point2i points[8] = {{7, 7}};
    EXPECT_EQ(zelmCstmDrovnGetPixelOnEpiLine(&rect, &line, &count, points), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(count, 77);
    EXPECT_EQ(points[0].x, 7);
}

TEST(CstmPixelOnEpiLine, ALineThatTouchesACornerIsDegenerate) {
    const ZelmRect rect{10, 20, 5, 8};
    const Line2d line{1.0, 1.0, -30.0};
    std::int32_t count = 77;
    Point2i points[8];
    EXPECT_EQ(zelmCstmDrovnGetPixelOnEpiLine(&rect, &line, &count, points), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(count, 77);
}

// A rectangle of one row is a segment: a line along it finds no crossing.
TEST(CstmPixelOnEpiLine, ALineAlongASideIsDegenerate) {
    const ZelmRect rect{10, 20, 5, 1};
    const Line2d line{0.0, 1.0, -20.0};
    std::int32_t count = 77;
    Point2i points[8];
    EXPECT_EQ(zelmCstmDrovnGetPixelOnEpiLine(&rect, &line, &count, points), ZELM_ERR_DEGENERATE);
}

TEST(CstmPixelOnEpiLine, BadArgumentsAreRefused) {
    const ZelmRect rect{10, 20, 5, 8};
    const Line2d line{0.0, 1.0, -24.0};
    std::int32_t count = 77;
    Point2i points[8];
    EXPECT_EQ(zelmCstmDrovnGetPixelOnEpiLine(nullptr, &line, &count, points), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCstmDrovnGetPixelOnEpiLine(&rect, nullptr, &count, points), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCstmDrovnGetPixelOnEpiLine(&rect, &line, nullptr, points), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCstmDrovnGetPixelOnEpiLine(&rect, &line, &count, nullptr), ZELM_ERR_PARAM);
    for (const ZelmRect& bad :
         {ZelmRect{-1, 0, 9, 9}, ZelmRect{0, -1, 9, 9}, ZelmRect{0, 0, 0, 9}, ZelmRect{0, 0, 9, 0}}) {
        EXPECT_EQ(zelmCstmDrovnGetPixelOnEpiLine(&bad, &line, &count, points), ZELM_ERR_PARAM);
    }
    EXPECT_EQ(count, 77);
}

TEST(CstmPixelOnEpiLine, ALineWithoutDirectionIsRefusedByTheClipping) {
    const ZelmRect rect{0, 0, 5, 8};
    const Line2d line{0.0, 0.0, 1.0};
    std::int32_t count = 77;
    Point2i points[8];
    EXPECT_EQ(zelmCstmDrovnGetPixelOnEpiLine(&rect, &line, &count, points), ZELM_ERR_PARAM);
    EXPECT_EQ(count, 77);
}

TEST(CstmPixelOnEpiLine, ExtremeInputsAreDegenerate) {
    constexpr std::int32_t kMaxInt = std::numeric_limits<std::int32_t>::max();
    std::int32_t count = 77;
    Point2i points[8];
    const ZelmRect huge{kMaxInt, kMaxInt, kMaxInt, kMaxInt};
    const Line2d through{1.0, -1.0, 0.5};
    EXPECT_EQ(zelmCstmDrovnGetPixelOnEpiLine(&huge, &through, &count, points), ZELM_ERR_DEGENERATE);
    const ZelmRect rect{0, 0, 5, 8};
    for (const double v : {kNan, kInfinity, -kInfinity, 1e300}) {
        const Line2d line{v, 1.0, v};
        EXPECT_EQ(zelmCstmDrovnGetPixelOnEpiLine(&rect, &line, &count, points), ZELM_ERR_DEGENERATE) << v;
    }
    EXPECT_EQ(count, 77);
}

// A line almost along a side crosses it where rounding says; its pixels stay inside the rectangle all the same.
TEST(CstmPixelOnEpiLine, LinesAlmostAlongASideStayInside) {
    const ZelmRect rect{3, 4, 1000, 5};
    std::vector<Point2i> points(1000);
    for (int i = 1; i <= 600; ++i) {
        const double slope = std::pow(10.0, -9.0 - i / 100.0);
        for (const double sign : {1.0, -1.0}) {
            const Line2d line{sign * slope, 1.0, -4.0 - sign * slope * 700.0};
            zelm::LatticeSpan span{};
            if (zelm::innerLatticeSpan(rect, line, &span) != ZELM_OK) {
                continue;
            }
            for (const Point2i& p : {span.first, span.last}) {
                ASSERT_TRUE(p.x >= 3 && p.x <= 1002 && p.y >= 4 && p.y <= 8) << slope;
            }
        }
    }
}

}  // namespace
