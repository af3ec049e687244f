// How sharp images are said to be, against the blur and the smear they were rendered with.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "imageFaults.h"
#include "measureRigs.h"
#include "patternReading.h"

namespace zelmtest {
namespace {

struct SharpnessCase {
    double scale;  // pixels a plate unit; a dot's radius is 2.5 of these
    double blur;
    double smear;
    render::Polarity polarity;
};

ZelmMeasureSharpness sharpnessOf(const render::GrayImage& image, const std::vector<double>& seeds, int polarity) {
    const ZelmMeasureImage record{image.pixels.data(), image.width, image.height, image.width};
    auto sharpness = emptyRecord<ZelmMeasureSharpness>();
    EXPECT_EQ(
        zelmMeasureSharpness(&record, static_cast<std::int64_t>(seeds.size() / 2), seeds.data(), polarity, &sharpness),
        ZELM_OK);
    return sharpness;
}

struct SmearedView {
    render::GrayImage image;
    std::vector<double> seeds;
};

SmearedView viewOf(const SharpnessCase& c, double direction, std::uint64_t seed) {
    render::Plate plate = smallPlate();
    plate.polarity = c.polarity;
    const render::Camera camera = testCamera();
    render::Optics optics;
    optics.levels = render::GrayLevels::matching(plate.polarity);
    optics.blurSigma = c.blur;
    const auto turn = static_cast<double>(seed);
    const render::Pose pose =
        render::aimedPose(camera, aimAt(camera, c.scale, 37.0 * turn, 8.0 * std::fmod(turn, 4.0), 61.0 * turn));
    render::LevelImage levels = render::renderLevels(plate, camera, pose, optics);
    if (c.smear > 0.0) {
        levels = smeared(levels, c.smear, direction);
    }
    SmearedView view{render::digitise(levels, 2.0, seed), {}};
    for (const render::DotTruth& dot : render::dotTruths(plate, camera, pose)) {
        view.seeds.push_back(dot.ellipse.centre.x);
        view.seeds.push_back(dot.ellipse.centre.y);
    }
    return view;
}

double angleBetweenLines(double a, double b) {
    const double difference = a - b;
    return std::fabs(difference - std::numbers::pi * std::round(difference / std::numbers::pi));
}

TEST(MeasureSharpness, BlurAndSmearAreToldByDirection) {
    const auto dark = render::Polarity::darkDots;
    const auto light = render::Polarity::lightDots;
    const SharpnessCase cases[] = {{2.0, 0.5, 0.0, dark}, {2.0, 1.4, 0.0, light}, {2.0, 1.0, 5.0, dark},
                                   {3.0, 2.4, 0.0, dark}, {3.0, 1.2, 3.0, light}, {5.0, 0.7, 0.0, light},
                                   {5.0, 4.0, 0.0, dark}, {5.0, 1.5, 8.0, dark},  {5.0, 0.8, 12.0, dark},
                                   {8.0, 2.5, 0.0, dark}, {8.0, 1.0, 4.0, light}, {8.0, 1.0, 14.0, dark}};
    std::uint64_t seed = 1;
    for (const SharpnessCase& c : cases) {
        SCOPED_TRACE(testing::Message() << "scale " << c.scale << " blur " << c.blur << " smear " << c.smear);
        const double direction = -1.5 + 0.7 * static_cast<double>(seed % 5);
        const SmearedView view = viewOf(c, direction, seed++);
        const ZelmMeasureSharpness s = sharpnessOf(view.image, view.seeds, c.polarity == dark ? 0 : 1);
        EXPECT_GE(s.dots, 20);
        // The smear of the test interpolates between pixels, which blurs by a sixth of a square pixel at most.
        const double smallest = c.smear > 0.0 ? std::sqrt(c.blur * c.blur + 1.0 / 6.0) : c.blur;
        const double largest = std::sqrt(smallest * smallest + c.smear * c.smear / 12.0);
        // A normal point spread stands for a straight one, whose ends are sharper: it is taken for 11 % more.
        EXPECT_NEAR(s.largest, largest, (c.smear > 0.0 ? 0.12 : 0.05) * largest);
        EXPECT_NEAR(s.smallest, smallest, (c.smear > 0.0 ? 0.12 : 0.05) * smallest);
        EXPECT_NEAR(s.noise, 2.0, 1.5);
        if (c.smear > 0.0) {
            EXPECT_NEAR(s.smear, c.smear, 0.12 * c.smear);
            EXPECT_LE(angleBetweenLines(s.direction, direction), 0.07);  // 4 degrees
        } else {
            EXPECT_LE(s.largest, 1.05 * s.smallest + 0.02);
        }
    }
}

TEST(MeasureSharpness, LevelsAndRadiusAreThoseOfTheDots) {
    const SmearedView view = viewOf({5.0, 1.0, 0.0, render::Polarity::darkDots}, 0.0, 4);  // not tilted
    const ZelmMeasureSharpness s = sharpnessOf(view.image, view.seeds, 0);
    EXPECT_NEAR(s.inside, 20.0, 2.0);
    EXPECT_NEAR(s.outside, 190.0, 2.0);
    EXPECT_NEAR(s.radius, 12.5, 0.5);
}

TEST(MeasureSharpness, SeedsThatAreNoDotsDoNotCount) {
    const SmearedView view = viewOf({5.0, 1.0, 0.0, render::Polarity::darkDots}, 0.0, 4);
    EXPECT_EQ(sharpnessOf(view.image, {}, 0).dots, 0);
    EXPECT_EQ(sharpnessOf(view.image, {-5.0, 3.0, 1e9, 3.0, std::nan(""), 2.0}, 0).dots, 0);
    EXPECT_EQ(sharpnessOf(view.image, view.seeds, 1).dots, 0);  // of the other polarity
    const render::GrayImage flat{640, 480, std::vector<std::uint8_t>(640 * 480, 128)};
    const ZelmMeasureSharpness none = sharpnessOf(flat, view.seeds, 0);
    EXPECT_EQ(none.dots, 0);
    EXPECT_EQ(none.largest, 0.0);
}

TEST(MeasureSharpness, WhatCannotBeMeantIsRefused) {
    const SmearedView view = viewOf({5.0, 1.0, 0.0, render::Polarity::darkDots}, 0.0, 4);
    const ZelmMeasureImage image{view.image.pixels.data(), 640, 480, 640};
    const ZelmMeasureImage narrow{view.image.pixels.data(), 640, 480, 639};
    auto sharpness = emptyRecord<ZelmMeasureSharpness>();
    const double* const seeds = view.seeds.data();
    EXPECT_EQ(zelmMeasureSharpness(nullptr, 3, seeds, 0, &sharpness), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasureSharpness(&narrow, 3, seeds, 0, &sharpness), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasureSharpness(&image, -1, seeds, 0, &sharpness), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasureSharpness(&image, 3, nullptr, 0, &sharpness), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasureSharpness(&image, 3, seeds, 2, &sharpness), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasureSharpness(&image, 3, seeds, 0, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(sharpness.dots, 0);
    sharpness.size = 0;
    EXPECT_EQ(zelmMeasureSharpness(&image, 3, seeds, 0, &sharpness), ZELM_ERR_PARAM);
}

TEST(MeasureSharpness, AShorterRecordGetsWhatItHas) {
    const SmearedView view = viewOf({5.0, 1.0, 0.0, render::Polarity::darkDots}, 0.0, 4);
    const ZelmMeasureImage image{view.image.pixels.data(), 640, 480, 640};
    ZelmMeasureSharpness sharpness{};
    sharpness.size = static_cast<std::int32_t>(offsetof(ZelmMeasureSharpness, smallest));
    sharpness.smallest = -7.0;
    ASSERT_EQ(zelmMeasureSharpness(&image, 35, view.seeds.data(), 0, &sharpness), ZELM_OK);
    EXPECT_NEAR(sharpness.largest, 1.0, 0.05);
    EXPECT_EQ(sharpness.smallest, -7.0);
}

}  // namespace
}  // namespace zelmtest
