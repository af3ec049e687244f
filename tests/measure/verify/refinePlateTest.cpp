// Dots of a view measured anew on their pixels, against rendered truth.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "driftTrials.h"
#include "patternFixtures.h"
#include "renderView.h"

namespace zelmtest {
namespace {

render::Pose turnedPlate() {
    return poseOfVectors({0.3, -0.2, 0.1}, {5.0, -3.0, 4.0});
}

ZelmMeasureImage imageOf(const render::GrayImage& image) {
    return {image.pixels.data(), image.width, image.height, image.width};
}

// A view of the rig as it is now, and the dots as a reader gives them, here and there some tenths of a pixel off.
struct RenderedPlate {
    render::Plate plate;
    Zelm2ViewPatternDesc pattern = describe(plate);
    render::RenderedView left;
    render::RenderedView right;
    std::vector<std::int32_t> grid;
    std::vector<double> leftPixels;
    std::vector<double> rightPixels;
    std::vector<std::int32_t> statuses;

    explicit RenderedPlate(const RigTruth& rig) {
        render::Optics optics;
        optics.blurSigma = 0.8;
        optics.noiseSigma = 1.5;
        left = render::renderView(plate, rig.left, render::compose(rig.leftPose, turnedPlate()), optics, 1);
        right = render::renderView(plate, rig.right, render::compose(rig.rightPose, turnedPlate()), optics, 2);
        Random random(3);
        const auto off = [&random](double x) { return x + 0.2 * random.normal(); };
        for (std::size_t i = 0; i < left.dots.size(); ++i) {
            const auto& l = left.dots[i].ellipse.centre;
            const auto& r = right.dots[i].ellipse.centre;
            grid.insert(grid.end(), {left.dots[i].dot.index.x, left.dots[i].dot.index.y});
            leftPixels.insert(leftPixels.end(), {off(l.x), off(l.y)});
            rightPixels.insert(rightPixels.end(), {off(r.x), off(r.y)});
        }
        statuses.assign(left.dots.size(), -7);
    }

    std::int32_t refine(const OpenedRig& rig, std::int64_t count = -1) {
        const ZelmMeasureImage leftImage = imageOf(left.image);
        const ZelmMeasureImage rightImage = imageOf(right.image);
        return zelmMeasureRefinePlate(rig.get(), &pattern, &leftImage, &rightImage,
                                      count < 0 ? static_cast<std::int64_t>(statuses.size()) : count, grid.data(),
                                      leftPixels.data(), rightPixels.data(), statuses.data());
    }

    // Root mean square distance of the confirmed dots from the truth, pixels.
    [[nodiscard]] double rmsError() const {
        double squares = 0.0;
        double count = 0.0;
        for (std::size_t i = 0; i < statuses.size(); ++i) {
            if (statuses[i] == ZELM_MEASURE_DOT_OK) {
                const auto& l = left.dots[i].ellipse.centre;
                const auto& r = right.dots[i].ellipse.centre;
                squares += std::pow(leftPixels[2 * i] - l.x, 2.0) + std::pow(leftPixels[2 * i + 1] - l.y, 2.0) +
                           std::pow(rightPixels[2 * i] - r.x, 2.0) + std::pow(rightPixels[2 * i + 1] - r.y, 2.0);
                count += 2.0;
            }
        }
        return std::sqrt(squares / count);
    }
    [[nodiscard]] std::size_t confirmed() const {
        return static_cast<std::size_t>(std::count(statuses.begin(), statuses.end(), ZELM_MEASURE_DOT_OK));
    }
};

TEST(RefinePlate, EveryDotIsMeasuredOnItsPixels) {
    const RigTruth truth = sideBySideRig();
    RenderedPlate view(truth);
    ASSERT_EQ(view.refine(OpenedRig(truth.block())), ZELM_OK);
    EXPECT_EQ(view.confirmed(), view.statuses.size());
    // Noise of 1.5 levels on edges of 170: some 0.004 px a coordinate. The reader's were 0.28 off.
    EXPECT_LT(view.rmsError(), 0.012);
}

TEST(RefinePlate, CamerasThatHaveMovedDoNotMatter) {
    const RigTruth calibrated = sideBySideRig();
    RightMove move;
    move.turn = {radiansOf(1.0), radiansOf(-0.8), radiansOf(0.5)};  // some 30 pixels
    RenderedPlate view(moved(calibrated, move));
    ASSERT_EQ(view.refine(OpenedRig(calibrated.block())), ZELM_OK);
    EXPECT_EQ(view.confirmed(), view.statuses.size());
    EXPECT_LT(view.rmsError(), 0.012);
}

TEST(RefinePlate, AParallelCameraIsPlacedByTheOther) {
    const RigTruth truth = trueRig(1280, 960, render::Projection::parallel);
    RenderedPlate view(truth);
    const OpenedRig rig(truth.block());
    ASSERT_EQ(view.refine(rig), ZELM_OK) << rig.error();
    EXPECT_EQ(view.confirmed(), view.statuses.size());
    EXPECT_LT(view.rmsError(), 0.012);
}

TEST(RefinePlate, ADotThatIsNotSeenIsMissingAndItsPixelsStay) {
    const RigTruth truth = sideBySideRig();
    RenderedPlate view(truth);
    constexpr std::size_t kHidden = 40;
    const auto centre = view.right.dots[kHidden].ellipse.centre;
    for (int y = -12; y <= 12; ++y) {
        for (int x = -12; x <= 12; ++x) {
            const auto at = std::lround(centre.y + y) * view.right.image.width + std::lround(centre.x + x);
            view.right.image.pixels[static_cast<std::size_t>(at)] = 190;
        }
    }
    const double before[] = {view.leftPixels[2 * kHidden], view.rightPixels[2 * kHidden]};
    ASSERT_EQ(view.refine(OpenedRig(truth.block())), ZELM_OK);
    EXPECT_EQ(view.statuses[kHidden], ZELM_MEASURE_DOT_MISSING);
    EXPECT_EQ(view.leftPixels[2 * kHidden], before[0]);
    EXPECT_EQ(view.rightPixels[2 * kHidden], before[1]);
    EXPECT_GE(view.confirmed(), view.statuses.size() - 3);  // the patch may reach into a neighbour's surroundings
    EXPECT_LT(view.rmsError(), 0.012);
}

TEST(RefinePlate, WhatDoesNotPlaceThePlateIsRefused) {
    const RigTruth truth = sideBySideRig();
    RenderedPlate view(truth);
    const std::vector<double> before = view.leftPixels;
    const auto expectRefused = [&](const OpenedRig& rig, std::int64_t count, const std::string& words) {
        EXPECT_EQ(view.refine(rig, count), ZELM_MEASURE_ERR_DATA);
        EXPECT_NE(rig.error().find(words), std::string::npos) << rig.error();
        EXPECT_EQ(view.leftPixels, before);
        EXPECT_EQ(view.statuses.front(), -7);
    };
    const OpenedRig rig(truth.block());
    expectRefused(rig, 5, "the 5 dots that both images show do not place the plate before the left camera");
    expectRefused(rig, 0, "the 0 dots");
    RigTruth parallel = trueRig(1280, 960, render::Projection::parallel);
    parallel.right = parallel.left;
    expectRefused(OpenedRig(parallel.block()), 100, "parallel");

    const auto expectParam = [&](const char* what, const auto& change) {
        SCOPED_TRACE(what);
        RenderedPlate& v = view;
        const Zelm2ViewPatternDesc sound = v.pattern;
        ZelmMeasureImage left = imageOf(v.left.image);
        const ZelmMeasureImage right = imageOf(v.right.image);
        change(v.pattern, left);
        EXPECT_EQ(zelmMeasureRefinePlate(rig.get(), &v.pattern, &left, &right, 10, v.grid.data(), v.leftPixels.data(),
                                         v.rightPixels.data(), v.statuses.data()),
                  ZELM_ERR_PARAM);
        v.pattern = sound;
        EXPECT_EQ(v.leftPixels, before);
        EXPECT_EQ(v.statuses.front(), -7);
    };
    expectParam("width", [](auto&, auto& image) { image.width -= 1; });
    expectParam("pixels", [](auto&, auto& image) { image.pixels = nullptr; });
    expectParam("pitch", [](auto& pattern, auto&) { pattern.d4 = 0.0; });
    expectParam("diameter", [](auto& pattern, auto&) { pattern.d2 = -1.0; });
    expectParam("a million dots", [](auto& pattern, auto&) { pattern.d0 = 1e9; });
    expectParam("side", [](auto& pattern, auto&) { pattern.d1 = std::nan(""); });
    expectParam("polarity", [](auto& pattern, auto&) { pattern.polarity = 2; });
}

}  // namespace
}  // namespace zelmtest
