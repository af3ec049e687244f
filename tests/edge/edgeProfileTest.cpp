// The profile: bilinear samples and their border, the mean across the segment, what stands outside the image, and
// rounding. What the searches make of it is in edgeSelectTest.cpp and edgeSubpixelTest.cpp.
#include <gtest/gtest.h>

#include <cmath>

#include "edgeProfile.h"
#include "edgeScene.h"

namespace {

using zelm::EdgeProfile;
using zelm::EdgeSegment;
using zelm::innerEdge1dSampleGray;
using zelm::kEdgeGuard;
using zelmtest::GrayScene;
using zelmtest::Random;

constexpr int32_t kKeepAll = 1 << 20;

EdgeProfile profileOf(const ZelmImage& image, Point2d p1, Point2d p2, int32_t halfWidth, int32_t keep = kKeepAll,
                      int32_t expected = ZELM_OK) {
    EdgeSegment segment = {};
    EXPECT_EQ(zelm::makeEdgeSegment(p1, p2, segment), ZELM_OK);
    EdgeProfile profile;
    EXPECT_EQ(zelm::readEdgeProfile(image, segment, halfWidth, keep, profile), expected);
    return profile;
}

double grayAt(const EdgeProfile& profile, int64_t sample) {
    return profile.gray[static_cast<std::size_t>(sample + kEdgeGuard)];
}

GrayScene textured(int width, int height, std::uint64_t seed) {
    Random random(seed);
    return GrayScene(width, height, [&](double, double) { return random.uniform(0.0, 255.0); });
}

TEST(EdgeSample, IsBilinearAndNotRounded) {
    const GrayScene scene(3, 3, [](double x, double y) { return 10.0 * x + 40.0 * y; });
    EXPECT_DOUBLE_EQ(innerEdge1dSampleGray(scene.image, 0.0, 0.0), 0.0);
    EXPECT_DOUBLE_EQ(innerEdge1dSampleGray(scene.image, 0.25, 1.5), 62.5);
    EXPECT_DOUBLE_EQ(innerEdge1dSampleGray(scene.image, 1.125, 0.0625), 13.75);
}

TEST(EdgeSample, TheLastRowAndColumnAreNeverSampled) {
    const GrayScene scene(4, 3, [](double, double) { return 100.0; });
    const double lastX = std::nextafter(3.0, 0.0);
    const double lastY = std::nextafter(2.0, 0.0);
    EXPECT_EQ(innerEdge1dSampleGray(scene.image, 3.0, 1.0), -1.0);
    EXPECT_EQ(innerEdge1dSampleGray(scene.image, 1.0, 2.0), -1.0);
    EXPECT_NEAR(innerEdge1dSampleGray(scene.image, lastX, lastY), 100.0, 1e-12);
    EXPECT_EQ(innerEdge1dSampleGray(scene.image, -1e-300, 1.0), -1.0);
    EXPECT_EQ(innerEdge1dSampleGray(scene.image, 1.0, -1e-300), -1.0);
    EXPECT_DOUBLE_EQ(innerEdge1dSampleGray(scene.image, 0.0, 0.0), 100.0);
}

TEST(EdgeSegment, ItsLengthIsTheRootOfTheSumOfSquares) {
    Random random(14);
    for (int trial = 0; trial < 10000; ++trial) {
        const Point2d p1 = {random.uniform(-50.0, 50.0), random.uniform(-50.0, 50.0)};
        const Point2d p2 = {random.uniform(-50.0, 50.0), random.uniform(-50.0, 50.0)};
        EdgeSegment segment = {};
        ASSERT_EQ(zelm::makeEdgeSegment(p1, p2, segment), ZELM_OK);
        const double dx = p2.x - p1.x;
        const double dy = p2.y - p1.y;
        const double length = std::sqrt(dx * dx + dy * dy);
        EXPECT_EQ(segment.length, length);
        EXPECT_EQ(segment.last, static_cast<int64_t>(length));
        EXPECT_EQ(segment.unit.x, dx / length);
        EXPECT_EQ(segment.unit.y, dy / length);
    }
}

TEST(EdgeProfile, HoldsTheMeanAcrossTheSegment) {
    const GrayScene scene = textured(40, 30, 11);
    const Point2d p1 = {6.3, 8.1};
    const Point2d p2 = {30.2, 19.7};
    const double length = std::hypot(p2.x - p1.x, p2.y - p1.y);
    const double ux = (p2.x - p1.x) / length;
    const double uy = (p2.y - p1.y) / length;
    for (const int32_t halfWidth : {0, 1, 3}) {
        const EdgeProfile profile = profileOf(scene.image, p1, p2, halfWidth);
        ASSERT_EQ(profile.count, static_cast<int64_t>(length) + 1);
        for (int64_t i = 0; i < profile.count; ++i) {
            double sum = 0.0;
            for (int32_t j = -halfWidth; j <= halfWidth; ++j) {
                const auto k = static_cast<double>(i);
                sum += innerEdge1dSampleGray(scene.image, p1.x + k * ux - j * uy, p1.y + k * uy + j * ux);
            }
            // Rounding of sums of at most seven values below 256.
            EXPECT_NEAR(grayAt(profile, i), sum / (2 * halfWidth + 1), 1e-12);
        }
    }
}

TEST(EdgeProfile, TheWideningStopsAtTheFirstPairOutside) {
    // Along row 1 of 12 rows: one step to the side reaches row 0, two steps leave the image on one side only.
    const GrayScene scene(20, 12, [](double, double y) { return 10.0 * y * y; });
    const EdgeProfile profile = profileOf(scene.image, {2.0, 1.0}, {12.0, 1.0}, 5);
    for (int64_t i = 0; i <= 10; ++i) {
        EXPECT_DOUBLE_EQ(grayAt(profile, i), (10.0 + 0.0 + 40.0) / 3.0);
    }
    const EdgeProfile onBorder = profileOf(scene.image, {2.0, 0.0}, {12.0, 0.0}, 5);
    EXPECT_DOUBLE_EQ(grayAt(onBorder, 4), 0.0);
}

TEST(EdgeProfile, SamplesOutsideRepeatTheNearestInside) {
    const GrayScene scene(20, 10, [](double x, double) { return 5.0 * x; });
    const EdgeProfile profile = profileOf(scene.image, {-4.5, 4.0}, {24.5, 4.0}, 1);
    ASSERT_EQ(profile.first, 0);
    ASSERT_EQ(profile.count, 30);
    for (int64_t i = -kEdgeGuard; i <= 5; ++i) {
        EXPECT_DOUBLE_EQ(grayAt(profile, i), 2.5) << i;  // the first sample inside stands at 0.5
    }
    for (int64_t i = 6; i <= 23; ++i) {
        EXPECT_NEAR(grayAt(profile, i), 5.0 * (static_cast<double>(i) - 4.5), 1e-12) << i;
    }
    for (int64_t i = 23; i < 30 + kEdgeGuard; ++i) {
        EXPECT_NEAR(grayAt(profile, i), 92.5, 1e-12) << i;  // the last one at 18.5; 19.5 needs the last column
    }
}

TEST(EdgeProfile, IsRoundedHalfUpAndItsRangeKept) {
    const GrayScene scene(20, 6, [](double x, double) { return x < 10.0 ? 40.0 : 41.0; });
    const EdgeProfile profile = profileOf(scene.image, {2.5, 2.0}, {14.5, 2.0}, 0);
    const auto quantised = [&](int64_t i) { return profile.quantised[static_cast<std::size_t>(i + kEdgeGuard)]; };
    EXPECT_EQ(quantised(0), 40);
    EXPECT_EQ(quantised(7), 41);  // 40.5
    EXPECT_EQ(profile.minimum, 40);
    EXPECT_EQ(profile.maximum, 41);
}

TEST(EdgeProfile, AWindowOfALongSegmentHoldsTheSameSamples) {
    const GrayScene scene = textured(50, 40, 12);
    Random random(13);
    for (int trial = 0; trial < 300; ++trial) {
        const Point2d middle = {random.uniform(1.0, 47.0), random.uniform(1.0, 37.0)};
        const double angle = random.uniform(0.0, 6.283185307179586);
        const double before = random.uniform(30.0, 900.0);
        const double after = random.uniform(30.0, 900.0);
        const Point2d p1 = {middle.x - before * std::cos(angle), middle.y - before * std::sin(angle)};
        const Point2d p2 = {middle.x + after * std::cos(angle), middle.y + after * std::sin(angle)};
        const EdgeProfile whole = profileOf(scene.image, p1, p2, 1);
        const EdgeProfile window = profileOf(scene.image, p1, p2, 1, 12);
        ASSERT_EQ(whole.first, 0);
        ASSERT_LE(window.count, 100);
        ASSERT_LE(window.first + window.count, whole.count);
        EXPECT_EQ(window.minimum, whole.minimum);
        EXPECT_EQ(window.maximum, whole.maximum);
        for (int64_t i = 0; i < whole.count; ++i) {
            const int64_t inWindow = std::clamp<int64_t>(i - window.first, 0, window.count - 1);
            ASSERT_EQ(grayAt(window, inWindow), grayAt(whole, i)) << trial << " " << i;
        }
    }
}

TEST(EdgeProfile, ALineThatPassesWithinAPixelOfTheImageIsOutside) {
    const GrayScene scene(20, 10, [](double, double) { return 9.0; });
    profileOf(scene.image, {2.0, -0.5}, {15.0, -0.5}, 1, kKeepAll, ZELM_ERR_DEGENERATE);
    profileOf(scene.image, {2.0, 9.5}, {15.0, 9.5}, 1, kKeepAll, ZELM_ERR_DEGENERATE);
}

}  // namespace
