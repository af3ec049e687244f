// True depths of a scene whose surfaces are known: between pixels, at edges, and where the right camera does not see.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "measureRigs.h"

namespace zelmtest {
namespace {

constexpr double kUnit = 0.01;  // of the maps, plate units
constexpr int kWidth = 200;
constexpr int kHeight = 150;

// Cameras without lenses, side by side and alike; the right one `apart` units to the right and `ahead` units farther
// on.
RigTruth sideBySide(double apart, double ahead = 0.0) {
    RigTruth rig = trueRig(kWidth, kHeight);
    rig.left.k1 = rig.left.k2 = 0.0;
    rig.left.fx = rig.left.fy = 300.0;
    rig.right = rig.left;
    rig.leftPose = poseOfVectors({0.0, 0.0, 0.0}, {0.0, 0.0, 400.0});
    rig.rightPose = poseOfVectors({0.0, 0.0, 0.0}, {-apart, 0.0, 400.0 - ahead});
    return rig;
}

// What a camera without lens sees at each pixel: depths by depth(x, y), 0 for nothing.
std::vector<std::uint16_t> mapOf(const std::function<double(double, double)>& depth) {
    std::vector<std::uint16_t> map;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            map.push_back(static_cast<std::uint16_t>(std::lround(depth(x, y) / kUnit)));
        }
    }
    return map;
}

struct Truths {
    std::vector<double> depths;
    std::vector<std::int32_t> seen;
};

Truths truthsAt(const RigTruth& truth, const std::vector<std::uint16_t>& map, const std::vector<double>& pixels) {
    const OpenedRig rig(truth.block());
    const std::size_t count = pixels.size() / 2;
    Truths result{std::vector<double>(count, -7.0), std::vector<std::int32_t>(count, -7)};
    EXPECT_EQ(zelmMeasureTrueDepths(rig.get(), map.data(), kUnit, static_cast<std::int64_t>(count), pixels.data(),
                                    result.depths.data(), result.seen.data()),
              ZELM_OK)
        << rig.error();
    return result;
}

TEST(MeasureTrueDepths, PlanesHaveTheirDepthBetweenPixels) {
    const RigTruth rig = sideBySide(20.0);
    // 1 / depth is affine over the pixels of a plane.
    const auto depth = [](double x, double y) { return 1.0 / (0.0025 + 1e-6 * x - 2e-6 * y); };
    std::vector<double> pixels;
    Random random(6);
    for (int i = 0; i < 200; ++i) {
        pixels.insert(pixels.end(), {random.uniform(0.0, kWidth - 1.0), random.uniform(0.0, kHeight - 1.0)});
    }
    // On pixels, and on the last ones.
    pixels.insert(pixels.end(), {0.0, 0.0, kWidth - 1.0, 0.0, 0.0, kHeight - 1.0, kWidth - 1.0, kHeight - 1.0});
    const Truths truths = truthsAt(rig, mapOf(depth), pixels);
    for (std::size_t i = 0; i < truths.depths.size(); ++i) {
        // Half a step of the map, and what bends between four pixels: 1e-3 of a unit.
        EXPECT_NEAR(truths.depths[i], depth(pixels[2 * i], pixels[2 * i + 1]), 0.5 * kUnit + 1e-3);
    }
}

TEST(MeasureTrueDepths, BetweenPixelsTheFourAroundAreMixed) {
    const RigTruth rig = sideBySide(20.0);
    std::vector<std::uint16_t> map = mapOf([](double, double) { return 400.0; });
    // 400, 400.4; 400.8, 401.6 around (10.25, 20.75)
    map[20 * kWidth + 11] = 40040;
    map[21 * kWidth + 10] = 40080;
    map[21 * kWidth + 11] = 40160;
    const Truths truths = truthsAt(rig, map, {10.25, 20.75, 11.0, 20.5, 10.5, 21.0});
    EXPECT_NEAR(truths.depths[0], (0.75 * 400.0 + 0.25 * 400.4) * 0.25 + (0.75 * 400.8 + 0.25 * 401.6) * 0.75, 1e-9);
    EXPECT_NEAR(truths.depths[1], 0.5 * (400.4 + 401.6), 1e-9);
    EXPECT_NEAR(truths.depths[2], 0.5 * (400.8 + 401.6), 1e-9);
}

TEST(MeasureTrueDepths, EdgesAndMissingDepthsHaveNoTruth) {
    const RigTruth rig = sideBySide(20.0);
    // Nothing in column 50; from columns 100 and 150 on a little farther away each.
    const auto depth = [](double x, double) { return x == 50.0 ? 0.0 : x < 100.0 ? 400.0 : x < 150.0 ? 401.5 : 403.0; };
    const std::vector<double> pixels{49.5, 70.0, 50.0, 70.0,  50.5, 70.0,  49.0, 70.0,  51.0,
                                     70.0, 99.5, 70.0, 149.5, 70.0, 149.0, 70.0, 150.0, 70.0};
    const Truths truths = truthsAt(rig, mapOf(depth), pixels);
    const double none = std::numeric_limits<double>::quiet_NaN();
    // 401.5 is within 0.4 % of 400 and so the same surface; 403 of 401.5 as well.
    const double expected[] = {none, none, none, 400.0, 400.0, 400.75, 402.25, 401.5, 403.0};
    for (std::size_t i = 0; i < truths.depths.size(); ++i) {
        SCOPED_TRACE(pixels[2 * i]);
        EXPECT_EQ(std::isnan(truths.depths[i]), std::isnan(expected[i]));
        if (!std::isnan(expected[i])) {
            EXPECT_NEAR(truths.depths[i], expected[i], 1e-9);
        }
        EXPECT_EQ(truths.seen[i] == 1, !std::isnan(expected[i]));
    }
    // A step of more than 0.4 % is an edge.
    const Truths step = truthsAt(rig, mapOf([](double x, double) { return x < 100.0 ? 400.0 : 402.0; }),
                                 {99.5, 70.0, 99.0, 70.0, 100.0, 70.0});
    EXPECT_TRUE(std::isnan(step.depths[0]));
    EXPECT_EQ(step.seen[0], 0);
    EXPECT_EQ(step.depths[1], 400.0);
    EXPECT_EQ(step.depths[2], 402.0);
}

TEST(MeasureTrueDepths, OutsideTheImageThereIsNone) {
    const RigTruth rig = sideBySide(20.0);
    const double infinite = std::numeric_limits<double>::infinity();
    const double none = std::numeric_limits<double>::quiet_NaN();
    const Truths truths =
        truthsAt(rig, mapOf([](double, double) { return 400.0; }),
                 {-0.25,    70.0,           -0.001, 70.0,      100.0,        -0.25, kWidth - 0.75, 70.0,
                  100.0,    kHeight - 0.75, -30.0,  70.0,      kWidth + 3.0, 70.0,  1e300,         70.0,
                  infinite, 70.0,           100.0,  -infinite, none,         70.0,  100.0,         none});
    for (std::size_t i = 0; i < truths.depths.size(); ++i) {
        EXPECT_TRUE(std::isnan(truths.depths[i])) << i << ": " << truths.depths[i];
        EXPECT_EQ(truths.seen[i], 0) << i;
    }
}

TEST(MeasureTrueDepths, WhatANearerSurfaceHidesIsTold) {
    // A bar of columns 80 to 100 at 300 units in front of a wall at 450: the right camera, 30 units to the right, sees
    // it 300 * 30 / 300 = 30 columns to the left, and the wall 300 * 30 / 450 = 20 columns. It hides the wall's columns
    // that come to lie behind the bar: 50 to 70 there, 70 to 90 here, of which 70 to 79 are seen by the left camera.
    const RigTruth rig = sideBySide(30.0);
    const auto depth = [](double x, double) { return x >= 80.0 && x <= 100.0 ? 300.0 : 450.0; };
    std::vector<double> pixels;
    for (int x = 0; x < kWidth; ++x) {
        pixels.insert(pixels.end(), {static_cast<double>(x), 75.0});
    }
    const Truths truths = truthsAt(rig, mapOf(depth), pixels);
    for (int x = 0; x < kWidth; ++x) {
        SCOPED_TRACE(x);
        const auto i = static_cast<std::size_t>(x);
        EXPECT_EQ(truths.depths[i], depth(x, 75.0));
        const bool isBar = x >= 80 && x <= 100;
        const bool isInImage = isBar || x >= 20;
        const bool isHidden = !isBar && x >= 70 && x <= 90;
        // A column beside the bar may count as hidden: its pixels cover their neighbours.
        if (x != 69) {
            EXPECT_EQ(truths.seen[i], isInImage && !isHidden ? 1 : 0);
        }
    }
}

TEST(MeasureTrueDepths, WhatLiesBehindTheRightCameraIsNotSeenByIt) {
    // The right camera stands 300 units ahead of the left one, beyond a near bar; a point behind it projects into its
    // image like any other.
    const RigTruth rig = sideBySide(0.0, 300.0);
    const auto depth = [](double x, double) { return x < 100.0 ? 200.0 : 600.0; };
    const Truths truths = truthsAt(rig, mapOf(depth), {95.0, 72.0, 103.0, 72.0});
    EXPECT_EQ(truths.depths[0], 200.0);
    EXPECT_EQ(truths.seen[0], 0);
    EXPECT_EQ(truths.depths[1], 600.0);
    EXPECT_EQ(truths.seen[1], 1);
}

TEST(MeasureTrueDepths, LensesAreTakenIntoAccount) {
    // Where a point of a wall is seen through a lens, its depth is the wall's; where the right camera sees it is told
    // by the edge of its image.
    RigTruth truth = sideBySide(40.0);
    truth.left.k1 = 0.3;
    truth.right.k1 = -0.3;
    std::vector<double> pixels;
    std::vector<bool> isSeen;
    for (int y = 1; y < kHeight - 1; y += 7) {
        for (int x = 1; x < kWidth - 1; x += 3) {
            const Point3d X{(x - 100.0) * 1.2, (y - 75.0) * 1.2, 0.0};
            const Point2d l = truth.raw('L', X);
            const Point2d r = truth.raw('R', X);
            const bool isInLeft = l.x >= 0.0 && l.y >= 0.0 && l.x <= kWidth - 1 && l.y <= kHeight - 1;
            const double inside = std::min({r.x, r.y, kWidth - 1 - r.x, kHeight - 1 - r.y});
            if (isInLeft && std::fabs(inside) > 1e-6) {
                pixels.insert(pixels.end(), {l.x, l.y});
                isSeen.push_back(inside > 0.0);
            }
        }
    }
    const Truths truths = truthsAt(truth, mapOf([](double, double) { return 400.0; }), pixels);
    std::size_t seen = 0;
    for (std::size_t i = 0; i < isSeen.size(); ++i) {
        EXPECT_NEAR(truths.depths[i], 400.0, 1e-9);
        EXPECT_EQ(truths.seen[i] == 1, isSeen[i]) << pixels[2 * i] << ' ' << pixels[2 * i + 1];
        seen += isSeen[i] ? 1U : 0U;
    }
    EXPECT_GT(seen, 300U);
    EXPECT_LT(seen, isSeen.size() - 100U);
}

TEST(MeasureTrueDepths, WhoSeesAPointNeedNotBeAskedFor) {
    const RigTruth truth = sideBySide(20.0);
    const OpenedRig rig(truth.block());
    const std::vector<std::uint16_t> map = mapOf([](double, double) { return 400.0; });
    const double pixel[] = {10.0, 10.0};
    double depth = 0.0;
    ASSERT_EQ(zelmMeasureTrueDepths(rig.get(), map.data(), kUnit, 1, pixel, &depth, nullptr), ZELM_OK);
    EXPECT_EQ(depth, 400.0);
    EXPECT_EQ(zelmMeasureTrueDepths(rig.get(), map.data(), kUnit, 0, nullptr, nullptr, nullptr), ZELM_OK);
}

TEST(MeasureTrueDepths, RigsWithAParallelCameraAreRefused) {
    const OpenedRig rig(trueRig(kWidth, kHeight, render::Projection::parallel).block());
    const std::vector<std::uint16_t> map = mapOf([](double, double) { return 400.0; });
    const double pixel[] = {10.0, 10.0};
    double depth = -7.0;
    EXPECT_EQ(zelmMeasureTrueDepths(rig.get(), map.data(), kUnit, 1, pixel, &depth, nullptr), ZELM_MEASURE_ERR_DATA);
    EXPECT_EQ(rig.error(), "true depths are compared for perspective cameras alone");
    EXPECT_EQ(depth, -7.0);
}

}  // namespace
}  // namespace zelmtest
