// Rectangle forms, bilinear gray levels and rasterised lines.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "random.h"
#include "zelm/misc.h"

namespace {

using zelmtest::Random;

TEST(MiscRects, FormsConvertIntoEachOther) {
    const ZelmRect rect{10, 20, 5, 1};
    ZelmRect2 rect2{};
    EXPECT_EQ(zelmMiscChangeRectToRect2(&rect, &rect2), ZELM_OK);
    EXPECT_EQ(rect2.x1, 10);
    EXPECT_EQ(rect2.y1, 20);
    EXPECT_EQ(rect2.x2, 14);
    EXPECT_EQ(rect2.y2, 20);
    ZelmRect back{};
    EXPECT_EQ(zelmMiscChangeRect2ToRect(&rect2, &back), ZELM_OK);
    EXPECT_EQ(back.x, 10);
    EXPECT_EQ(back.y, 20);
    EXPECT_EQ(back.width, 5);
    EXPECT_EQ(back.height, 1);
}

TEST(MiscRects, NullPointersAreRefused) {
    ZelmRect rect{};
    ZelmRect2 rect2{};
    EXPECT_EQ(zelmMiscChangeRectToRect2(nullptr, &rect2), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMiscChangeRectToRect2(&rect, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMiscChangeRect2ToRect(nullptr, &rect), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMiscChangeRect2ToRect(&rect2, nullptr), ZELM_ERR_PARAM);
}

TEST(MiscRects, TheEndsOfTheRangeWrapAround) {
    constexpr std::int32_t kMaxInt = std::numeric_limits<std::int32_t>::max();
    const ZelmRect rect{kMaxInt, 0, 2, 1};
    ZelmRect2 rect2{};
    EXPECT_EQ(zelmMiscChangeRectToRect2(&rect, &rect2), ZELM_OK);
    EXPECT_EQ(rect2.x2, std::numeric_limits<std::int32_t>::min());
    ZelmRect back{};
    EXPECT_EQ(zelmMiscChangeRect2ToRect(&rect2, &back), ZELM_OK);
    EXPECT_EQ(back.width, 2);
}

class BilinearGrayLevel : public ::testing::Test {
protected:
    std::vector<std::uint8_t> pixels{10, 20, 40, 50, 70, 110};
    ZelmImage image{pixels.data(), 3, 2};
};

TEST_F(BilinearGrayLevel, MixesTheFourNeighbours) {
    EXPECT_EQ(zelmMiscBilinearGrayLevel(&image, 1.0, 0.0), 20.0);
    EXPECT_EQ(zelmMiscBilinearGrayLevel(&image, 0.5, 0.0), 15.0);
    EXPECT_EQ(zelmMiscBilinearGrayLevel(&image, 0.0, 0.25), 20.0);
    EXPECT_EQ(zelmMiscBilinearGrayLevel(&image, 1.5, 0.5), (20.0 + 40.0 + 70.0 + 110.0) / 4.0);
}

TEST_F(BilinearGrayLevel, BeyondTheLastCentreTheEdgePixelIsItsOwnNeighbour) {
    EXPECT_EQ(zelmMiscBilinearGrayLevel(&image, 2.5, 0.0), 40.0);
    EXPECT_EQ(zelmMiscBilinearGrayLevel(&image, 0.0, 1.75), 50.0);
    EXPECT_EQ(zelmMiscBilinearGrayLevel(&image, 2.75, 1.5), 110.0);
}

TEST_F(BilinearGrayLevel, IsZeroOutsideAndForWhatIsNotANumber) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double outside : {-1e-300, 3.0, 1e300, kInfinity, -kInfinity, kNan}) {
        EXPECT_EQ(zelmMiscBilinearGrayLevel(&image, outside, 0.5), 0.0) << outside;
    }
    for (const double outside : {-1e-300, 2.0, 1e300, kInfinity, -kInfinity, kNan}) {
        EXPECT_EQ(zelmMiscBilinearGrayLevel(&image, 0.5, outside), 0.0) << outside;
    }
    EXPECT_EQ(zelmMiscBilinearGrayLevel(&image, 0.0, 0.0), 10.0);
    EXPECT_EQ(zelmMiscBilinearGrayLevel(&image, -0.0, -0.0), 10.0);
}

std::vector<Point2i> plot(Point2i from, Point2i to) {
    const std::int32_t longest = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y));
    std::vector<Point2i> points(static_cast<std::size_t>(longest + 2), Point2i{-99, -99});
    const std::int32_t count = zelmMiscPlotPointsOfLine(&from, &to, points.data());
    EXPECT_EQ(count, longest + 1);
    EXPECT_EQ(points.back().x, -99) << "written past the last point";
    points.resize(static_cast<std::size_t>(count));
    return points;
}

TEST(MiscPlotPointsOfLine, KnownCounts) {
    EXPECT_EQ(plot({0, 0}, {3, 1}).size(), 4U);
    EXPECT_EQ(plot({2, 2}, {2, 2}).size(), 1U);
}

// Where the error term stands half-way, the longer axis steps alone.
TEST(MiscPlotPointsOfLine, TiesStepAlongTheLongerAxis) {
    EXPECT_EQ(plot({0, 0}, {2, 1})[1].x, 1);
    EXPECT_EQ(plot({0, 0}, {2, 1})[1].y, 0);
    EXPECT_EQ(plot({0, 0}, {1, 2})[1].x, 0);
    EXPECT_EQ(plot({0, 0}, {1, 2})[1].y, 1);
    EXPECT_EQ(plot({5, 5}, {3, 4})[1].y, 5);
    EXPECT_EQ(plot({5, 5}, {4, 3})[1].x, 5);
}

TEST(MiscPlotPointsOfLine, NullPointersAreRefused) {
    Point2i p{};
    EXPECT_EQ(zelmMiscPlotPointsOfLine(nullptr, &p, &p), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMiscPlotPointsOfLine(&p, nullptr, &p), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMiscPlotPointsOfLine(&p, &p, nullptr), ZELM_ERR_PARAM);
}

TEST(MiscPlotPointsOfLine, StaysWithinHalfAPixelOfTheLineAndStepsByNeighbours) {
    Random random(41);
    for (int round = 0; round < 3000; ++round) {
        const Point2i from{random.integer(-60, 60), random.integer(-60, 60)};
        const Point2i to{random.integer(-60, 60), random.integer(-60, 60)};
        const std::vector<Point2i> points = plot(from, to);
        ASSERT_EQ(points.front().x, from.x);
        ASSERT_EQ(points.front().y, from.y);
        ASSERT_EQ(points.back().x, to.x);
        ASSERT_EQ(points.back().y, to.y);
        const double dx = to.x - from.x;
        const double dy = to.y - from.y;
        const double longest = std::max(std::fabs(dx), std::fabs(dy));
        for (std::size_t k = 1; k < points.size(); ++k) {
            ASSERT_LE(std::abs(points[k].x - points[k - 1].x), 1);
            ASSERT_LE(std::abs(points[k].y - points[k - 1].y), 1);
            // Distance along the minor axis.
            const double across = (points[k].x - from.x) * dy - (points[k].y - from.y) * dx;
            ASSERT_LE(std::fabs(across), 0.5 * longest + 1e-9);
        }
    }
}

}  // namespace
