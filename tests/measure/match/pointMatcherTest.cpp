// What becomes of pixels whose counterparts are looked for: each status provoked, by the interface.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "matchedPoints.h"

namespace zelmtest {
namespace {

TEST(MeasureMatch, SlantedPlanesAreFoundByEveryMixOfCameras) {
    for (const auto projection : {render::Projection::perspective, render::Projection::parallel}) {
        SCOPED_TRACE(static_cast<int>(projection));
        const PlanePictures pictures(trueRig(240, 180, projection), slantedPlane());
        const std::vector<Point2d> pixels = gridOver(240, 180, 15);
        const MatchedPoints m = matched(pictures, pixels);
        const auto seen = std::count_if(pixels.begin(), pixels.end(), [&](Point2d p) { return isSeen(pictures, p); });
        EXPECT_GT(seen, 60);
        // Where waves happen to repeat a window, its way back may lead elsewhere: at one point here.
        EXPECT_GE(count(m, ZELM_MEASURE_MATCH_OK), seen - 1);
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            if (m.statuses[i] != ZELM_MEASURE_MATCH_OK) {
                continue;
            }
            const Point3d X = worldPointAt(pictures.rig, pictures.plane, pixels[i]);
            const Point2d truth = pictures.rig.raw('R', X);
            // Rounded gray values and interpolation of waves of 7 pixels and more: some hundredths of a pixel. A pixel
            // along the line is 1 to 1.3 units of depth.
            EXPECT_NEAR(m.pixels[2 * i], truth.x, 0.08);
            EXPECT_NEAR(m.pixels[2 * i + 1], truth.y, 0.08);
            EXPECT_NEAR(m.positions[3 * i], X.x, 0.1);
            EXPECT_NEAR(m.positions[3 * i + 1], X.y, 0.1);
            EXPECT_NEAR(m.positions[3 * i + 2], X.z, 0.1);
            const Point3d found{m.positions[3 * i], m.positions[3 * i + 1], m.positions[3 * i + 2]};
            EXPECT_NEAR(m.depths[i], pictures.rig.depth('L', found), 1e-9);
            EXPECT_GE(m.scores[i], 0.95);
            EXPECT_LE(m.scores[i], 1.0);
            EXPECT_GT(m.deviations[i], 0.0);
            EXPECT_LE(m.deviations[i], 0.1);
            // The place found lies on the epipolar line.
            const Point2d onLeft = pictures.rig.raw('L', found);
            const Point2d onRight = pictures.rig.raw('R', found);
            EXPECT_NEAR(m.errors[2 * i], std::hypot(pixels[i].x - onLeft.x, pixels[i].y - onLeft.y), 1e-8);
            EXPECT_NEAR(m.errors[2 * i + 1], std::hypot(m.pixels[2 * i] - onRight.x, m.pixels[2 * i + 1] - onRight.y),
                        1e-8);
            EXPECT_LE(m.errors[2 * i], 1e-3);
            EXPECT_LE(m.errors[2 * i + 1], 1e-3);
        }
    }
}

TEST(MeasureMatch, DeviationsOfDepthAreAsLargeAsTheErrorsThatNoiseMakes) {
    const PlanePictures pictures(trueRig(240, 180), slantedPlane(), 4.0);
    const std::vector<Point2d> pixels = gridOver(240, 180, 8);
    const MatchedPoints m = matched(pictures, pixels);
    double squares = 0.0;
    int count = 0;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        if (m.statuses[i] == ZELM_MEASURE_MATCH_OK) {
            const double error = (m.depths[i] - pictures.depthAt(pixels[i])) / m.deviations[i];
            squares += error * error;
            count += 1;
        }
    }
    ASSERT_GT(count, 200);
    // Neighbouring windows share pixels, so a few hundred points tell the RMS to about a fifth; interpolation smooths
    // the noise, which the expectation does not know.
    const double rms = std::sqrt(squares / count);
    EXPECT_GE(rms, 0.5);
    EXPECT_LE(rms, 1.4);
}

TEST(MeasureMatch, PixelsWithoutAWindowOrALineAreOutside) {
    const PlanePictures pictures(trueRig(240, 180), slantedPlane());
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    const std::vector<Point2d> pixels{{2.0, 90.0},  {120.0, 178.0}, {0.0, 0.0},       {-50.0, 90.0},    {1e9, 1e9},
                                      {none, 90.0}, {120.0, none},  {infinite, 90.0}, {90.0, -infinite}};
    const MatchedPoints m = matched(pictures, pixels);
    EXPECT_EQ(m, MatchedPoints(pixels.size(), ZELM_MEASURE_MATCH_OUTSIDE));
    // Depths at which the line has left the right image: 3 times as near as the plane.
    const MatchedPoints near = matched(pictures, {{120.0, 90.0}}, [](ZelmMeasureMatchOptions& o) {
        o.limits.leftMin = 140.0;
        o.limits.leftMax = 150.0;
    });
    EXPECT_EQ(near, MatchedPoints(1, ZELM_MEASURE_MATCH_OUTSIDE));
}

TEST(MeasureMatch, SmoothSurroundingsHaveNoTexture) {
    TexturedPlane plane = slantedPlane();
    const Waves waves(2.2);
    plane.gray = [=](double x, double y) { return std::hypot(x, y) < 12.0 ? 128.0 : waves(x, y); };
    const PlanePictures pictures(trueRig(240, 180), plane);
    // The origin of the plane, with 44 pixels of nothing around; and a textured place.
    const Point2d middle = pictures.rig.raw('L', plane.world({0.0, 0.0}));
    const Point2d beside{130.0, 130.0};
    ASSERT_TRUE(isSeen(pictures, beside));
    const MatchedPoints m = matched(pictures, {middle, beside});
    EXPECT_EQ(m.statuses[0], ZELM_MEASURE_MATCH_NO_TEXTURE);
    EXPECT_EQ(m.statuses[1], ZELM_MEASURE_MATCH_OK);
    EXPECT_EQ(m.scores[0], kNotWritten);
    // The same where noise is so strong that the texture does not promise the precision asked for.
    const MatchedPoints strict = matched(pictures, {beside}, [](ZelmMeasureMatchOptions& o) {
        o.noise = 10.0;
        o.precision = 0.01;
    });
    EXPECT_EQ(strict.statuses[0], ZELM_MEASURE_MATCH_NO_TEXTURE);
}

TEST(MeasureMatch, WhatTheRightImageDoesNotShowHasNoMatch) {
    PlanePictures pictures(trueRig(240, 180), slantedPlane());
    std::fill(pictures.right.begin(), pictures.right.end(), std::uint8_t{128});
    EXPECT_EQ(matched(pictures, {{120.0, 90.0}, {140.0, 60.0}}), MatchedPoints(2, ZELM_MEASURE_MATCH_NO_MATCH));
    // Another texture there: nothing is found, or what is found does not lead back.
    TexturedPlane other = slantedPlane();
    other.gray = Waves(2.2, 99);
    pictures.right = pictureOf(pictures.rig, other, 'R');
    const MatchedPoints m = matched(pictures, gridOver(240, 180, 15));
    EXPECT_EQ(count(m, ZELM_MEASURE_MATCH_OK), 0);
    EXPECT_GT(count(m, ZELM_MEASURE_MATCH_NO_MATCH), 60);
}

TEST(MeasureMatch, RepeatedPatternsAreAmbiguous) {
    // Stripes across the epipolar lines, 2.4 units apart: every 9 pixels the same again.
    TexturedPlane plane = slantedPlane();
    plane.gray = [](double x, double y) { return 128.0 + 60.0 * std::sin(x * 2.618 + 0.05 * y); };
    const PlanePictures pictures(trueRig(240, 180), plane);
    const std::vector<Point2d> pixels = gridOver(240, 180, 15);
    const MatchedPoints m = matched(pictures, pixels);
    // Near the border of the right image there may be room for one period alone; such a point looks like any other.
    EXPECT_GT(count(m, ZELM_MEASURE_MATCH_AMBIGUOUS), 40);
    EXPECT_LE(4 * count(m, ZELM_MEASURE_MATCH_OK), count(m, ZELM_MEASURE_MATCH_AMBIGUOUS));
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        EXPECT_EQ(m.scores[i] == kNotWritten, m.statuses[i] != ZELM_MEASURE_MATCH_OK);
    }
}

TEST(MeasureMatch, AWayBackThatLeadsElsewhereIsInconsistent) {
    // The left image shows a window twice: where it belongs, and, a little fainter and noisier, where the right
    // camera's ray is seen that goes there, 30 units nearer. The fainter one is found in the right image at the place
    // of the true one, which leads back to that.
    PlanePictures pictures(trueRig(240, 180), slantedPlane());
    const GrayPixels clean = pictures.left;
    const Point2d there{100.0, 90.0};
    const Point3d X = worldPointAt(pictures.rig, pictures.plane, there);
    const Point3d centre = inWorld(pictures.rig.rightPose, {0.0, 0.0, 0.0});
    const auto along = [](double from, double to) { return to + (from - to) * 30.0 / 450.0; };
    const Point2d copied = pictures.rig.raw('L', {along(centre.x, X.x), along(centre.y, X.y), along(centre.z, X.z)});
    ASSERT_GT(std::hypot(copied.x - there.x, copied.y - there.y), 20.0);
    constexpr int kHalf = 14;
    const int cx = static_cast<int>(std::lround(copied.x));
    const int cy = static_cast<int>(std::lround(copied.y));
    Random random(51);
    for (int y = cy - kHalf; y <= cy + kHalf; ++y) {
        for (int x = cx - kHalf; x <= cx + kHalf; ++x) {
            const double gray = grayAt(clean, 240, x + there.x - copied.x, y + there.y - copied.y);
            const double value = 128.0 + 0.9 * (gray - 128.0) + 10.0 * random.normal();
            pictures.left[static_cast<std::size_t>(240 * y + x)] =
                static_cast<std::uint8_t>(std::clamp(value + 0.5, 0.0, 255.0));
        }
    }
    const MatchedPoints m =
        matched(pictures, {there, copied}, [](ZelmMeasureMatchOptions& options) { options.noise = 8.0; });
    EXPECT_EQ(m.statuses[0], ZELM_MEASURE_MATCH_OK);
    EXPECT_EQ(m.statuses[1], ZELM_MEASURE_MATCH_INCONSISTENT);
    EXPECT_EQ(m.depths[1], kNotWritten);
}

TEST(MeasureMatch, FewAgainstTheirNeighboursAreInconsistent) {
    // A window of the right image moved along the epipolar line to where a plane 8 units farther away would be: the few
    // points of the grid inside agree with each other, and nothing around agrees with them.
    PlanePictures pictures(trueRig(240, 180), slantedPlane());
    const GrayPixels clean = pictures.right;
    const TexturedPlane farther{poseOfVectors({0.2, 0.3, 0.0}, {0.0, 0.0, 12.0}), Waves(2.2)};
    const Point2d before = pictures.rig.raw('R', worldPointAt(pictures.rig, pictures.plane, {120.0, 90.0}));
    const Point2d after = pictures.rig.raw('R', worldPointAt(pictures.rig, farther, {120.0, 90.0}));
    const double dx = after.x - before.x;
    const double dy = after.y - before.y;
    ASSERT_GT(std::hypot(dx, dy), 5.0);
    constexpr int kHalf = 17;
    const int cx = static_cast<int>(after.x);
    const int cy = static_cast<int>(after.y);
    for (int y = cy - kHalf; y <= cy + kHalf; ++y) {
        for (int x = cx - kHalf; x <= cx + kHalf; ++x) {
            pictures.right[static_cast<std::size_t>(240 * y + x)] =
                static_cast<std::uint8_t>(grayAt(clean, 240, x - dx, y - dy) + 0.5);
        }
    }
    // On its own the point is found, 8 units farther away; among its neighbours it is not believed.
    const MatchedPoints alone = matched(pictures, {{120.0, 90.0}});
    ASSERT_EQ(alone.statuses[0], ZELM_MEASURE_MATCH_OK);
    EXPECT_GT(std::fabs(alone.depths[0] - pictures.depthAt({120.0, 90.0})), 4.0);
    std::vector<Point2d> pixels = gridOver(240, 180, 12);
    pixels.push_back({120.0, 90.0});
    const MatchedPoints m = matched(pictures, pixels);
    EXPECT_EQ(m.statuses.back(), ZELM_MEASURE_MATCH_INCONSISTENT);
    EXPECT_GT(count(m, ZELM_MEASURE_MATCH_OK), 80);
}

TEST(MeasureMatch, OverlapTellsWhetherAnyLineCrossesTheRightImage) {
    const PlanePictures pictures(trueRig(240, 180), slantedPlane());
    const OpenedRig rig(pictures.rig.block());
    ZelmMeasureMatchOptions options = defaultsOf(rig);
    const auto anyOf = [&](const std::vector<double>& pixels) {
        std::int32_t any = -7;
        EXPECT_EQ(
            zelmMeasureOverlap(rig.get(), &options, static_cast<std::int64_t>(pixels.size() / 2), pixels.data(), &any),
            ZELM_OK);
        return any;
    };
    EXPECT_EQ(anyOf({120.0, 90.0}), 1);
    EXPECT_EQ(anyOf({}), 0);
    EXPECT_EQ(anyOf({1e9, 1e9}), 0);
    EXPECT_EQ(anyOf({std::numeric_limits<double>::quiet_NaN(), 1.0, 1e9, 1e9, 120.0, 90.0}), 1);
    options.limits.leftMin = 140.0;
    options.limits.leftMax = 150.0;
    EXPECT_EQ(anyOf({120.0, 90.0, 20.0, 20.0}), 0);
}

}  // namespace
}  // namespace zelmtest
