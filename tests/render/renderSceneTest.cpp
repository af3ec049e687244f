// Rendered noise, repeatability, and the poses drawn for a rig.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

#include "renderView.h"

namespace {

using namespace zelm::render;

LevelImage flat(double level) {
    return {400, 300, std::vector<double>(120000, level)};
}

TEST(RenderNoise, HasTheMeanSpreadAndTailsOfANormalDistribution) {
    constexpr double kSigma = 3.0, kN = 120000.0;
    const GrayImage image = digitise(flat(100.25), kSigma, 5);
    double sum = 0.0, squares = 0.0, neighbours = 0.0, below = 0.0;
    int outside = 0;
    double previous = 0.0;
    for (const std::uint8_t pixel : image.pixels) {
        const double d = pixel - 100.25;
        sum += d;
        squares += d * d;
        neighbours += d * previous;
        previous = d;
        outside += std::abs(d) > 2.0 * kSigma ? 1 : 0;
        below += d < 0.0 ? 1.0 : 0.0;
    }
    const double variance = kSigma * kSigma + 1.0 / 12.0;  // rounding adds its own
    // Each bound is 4.5 standard errors of its estimate.
    EXPECT_NEAR(sum / kN, 0.0, 4.5 * kSigma / std::sqrt(kN));
    EXPECT_NEAR(squares / kN, variance, 4.5 * variance * std::sqrt(2.0 / kN));
    EXPECT_NEAR(neighbours / kN, 0.0, 4.5 * variance / std::sqrt(kN));
    // Rounded values beyond 6: at most 94 and at least 107, that is beyond -5.75 and 6.25 of the level.
    const double tails =
        0.5 * std::erfc(5.75 / kSigma / std::sqrt(2.0)) + 0.5 * std::erfc(6.25 / kSigma / std::sqrt(2.0));
    EXPECT_NEAR(outside / kN, tails, 4.5 * std::sqrt(tails / kN));
    // Values up to 100, that is noise up to 0.25.
    const double share = 0.5 * std::erfc(-0.25 / kSigma / std::sqrt(2.0));
    EXPECT_NEAR(below / kN, share, 4.5 * 0.5 / std::sqrt(kN));
}

TEST(RenderNoise, NoNoiseMeansRoundingToTheNearestLevel) {
    EXPECT_EQ(digitise(flat(99.49), 0.0, 1).at(7, 7), 99);
    EXPECT_EQ(digitise(flat(99.5), 0.0, 1).at(7, 7), 100);
    EXPECT_EQ(digitise(flat(-3.0), 0.0, 1).at(7, 7), 0);
    EXPECT_EQ(digitise(flat(300.0), 0.0, 1).at(7, 7), 255);
}

TEST(RenderNoise, ASeedRepeatsAndSeedsAndCamerasDiffer) {
    const StereoRig rig = exampleRig();
    const Plate plate;
    Optics optics;
    optics.noiseSigma = 2.0;
    const Pose pose = makeViewPoses(plate, rig, 1, 3).front();
    const RenderedPair first = renderPair(plate, rig, pose, optics, 8);
    EXPECT_EQ(first.left.image.pixels, renderPair(plate, rig, pose, optics, 8).left.image.pixels);
    EXPECT_NE(first.left.image.pixels, renderPair(plate, rig, pose, optics, 9).left.image.pixels);

    StereoRig same = rig;  // two cameras at one place see the same plate with other noise
    same.right = same.left;
    same.rightFromLeft = Pose{};
    const RenderedPair twice = renderPair(plate, same, pose, optics, 8);
    EXPECT_NE(twice.left.image.pixels, twice.right.image.pixels);
}

void expectWholePlateInView(const Plate& plate, const Camera& camera, const Pose& pose, double border) {
    for (const DotTruth& truth : dotTruths(plate, camera, pose)) {
        EXPECT_GT(truth.centre.x, border);
        EXPECT_GT(truth.centre.y, border);
        EXPECT_LT(truth.centre.x, camera.width - 1 - border);
        EXPECT_LT(truth.centre.y, camera.height - 1 - border);
    }
    const PlateBounds b = plateBounds(plate);
    for (const PlanePoint corner :
         {PlanePoint{b.left, b.top}, {b.right, b.top}, {b.right, b.bottom}, {b.left, b.bottom}}) {
        const Pixel p = project(camera, pose, corner).pixel;
        EXPECT_GE(std::min(p.x, p.y), border);
        EXPECT_LE(p.x, camera.width - 1 - border);
        EXPECT_LE(p.y, camera.height - 1 - border);
    }
}

TEST(RenderRig, BothCamerasSeeTheWholePlateInEveryView) {
    const Plate plate;
    const StereoRig rig = exampleRig();
    const ViewRange range;
    for (const Pose& pose : makeViewPoses(plate, rig, 60, 17)) {
        expectWholePlateInView(plate, rig.left, pose, range.borderPixels);
        expectWholePlateInView(plate, rig.right, compose(rig.rightFromLeft, pose), range.borderPixels);
    }
}

TEST(RenderRig, ViewsCoverTiltsAndRollsAndFillTheImage) {
    const Plate plate;
    const StereoRig rig = exampleRig();
    double leastTilt = 90.0, mostTilt = 0.0, mostRightTilt = 0.0, quadrant[4] = {}, radius = 0.0;
    constexpr int kViews = 60;
    for (const Pose& pose : makeViewPoses(plate, rig, kViews, 17)) {
        const double tilt = std::acos(pose.R[8]) * 180.0 / std::numbers::pi;
        leastTilt = std::min(leastTilt, tilt);
        mostTilt = std::max(mostTilt, tilt);
        const Pose right = compose(rig.rightFromLeft, pose);
        mostRightTilt = std::max(mostRightTilt, std::acos(right.R[8]) * 180.0 / std::numbers::pi);
        quadrant[(pose.R[0] > 0.0 ? 1 : 0) + (pose.R[3] > 0.0 ? 2 : 0)] += 1.0;
        radius += dotTruths(plate, rig.left, pose).at(71).radius / kViews;
    }
    EXPECT_LT(leastTilt, 10.0);
    EXPECT_GT(mostTilt, 25.0);
    EXPECT_LE(mostTilt, 35.0 + 1e-6);
    EXPECT_LE(mostRightTilt, 35.0 + 1e-6);
    for (const double views : quadrant) {
        EXPECT_GE(views, 5.0);  // 15 expected of 60; fewer than 5 has a chance of 1e-3 a quadrant
    }
    EXPECT_GT(radius, 7.0);  // pixels; a plate that fills the image has dots of about 9
}

TEST(RenderRig, CamerasFartherApartThanTheLargestTiltAreServed) {
    ViewRange range;
    range.maxTiltDegrees = 5.0;  // the example's cameras stand 19.5 degrees apart
    EXPECT_EQ(makeViewPoses(Plate{}, exampleRig(), 5, 6, range).size(), 5U);
}

TEST(RenderRig, PosesRepeatWithTheirSeed) {
    const auto first = makeViewPoses(Plate{}, exampleRig(), 5, 4);
    const auto again = makeViewPoses(Plate{}, exampleRig(), 5, 4);
    const auto other = makeViewPoses(Plate{}, exampleRig(), 5, 5);
    ASSERT_EQ(first.size(), 5U);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(first[i].R, again[i].R);
        EXPECT_EQ(first[i].t, again[i].t);
        EXPECT_NE(first[i].t, other[i].t);
    }
}

TEST(RenderRig, AMeasuringLensPairIsServedToo) {
    StereoRig rig = exampleRig();
    rig.right.projection = rig.left.projection = Projection::parallel;
    rig.right.fx = rig.right.fy = rig.left.fx = rig.left.fy = 4.0;  // pixels per plane unit
    rig.right.k1 = rig.right.k2 = rig.left.k1 = rig.left.k2 = 0.0;
    rig.rightFromLeft.R = rotationFromVector({0.0, 0.3, 0.0});
    rig.rightFromLeft.t = {0.0, 0.0, 0.0};
    const Plate plate;
    for (const Pose& pose : makeViewPoses(plate, rig, 10, 2)) {
        expectWholePlateInView(plate, rig.left, pose, 6.0);
        expectWholePlateInView(plate, rig.right, compose(rig.rightFromLeft, pose), 6.0);
    }
}

TEST(RenderRig, CamerasThatLookAwayFromEachOtherAreRefused) {
    StereoRig rig = exampleRig();
    rig.rightFromLeft.R = rotationFromVector({0.0, 3.0, 0.0});
    EXPECT_THROW(makeViewPoses(Plate{}, rig, 3, 1), std::runtime_error);
}

TEST(RenderRig, GrayLevelsSuitThePolarity) {
    const GrayLevels dark = GrayLevels::matching(Polarity::darkDots), light = GrayLevels::matching(Polarity::lightDots);
    EXPECT_LT(dark.dots, dark.plate);
    EXPECT_LT(dark.ground, dark.plate);
    EXPECT_GT(light.dots, light.plate);
    EXPECT_GT(light.ground, light.plate);
}

}  // namespace
