// Every cause is named on random images that have it, and none on good ones: a few of each here, thousands in
// zelm_diagnosis_power.
#include <gtest/gtest.h>

#include "imageFaultTrials.h"
#include "measureRigs.h"
#include "patternReading.h"
#include "platelessScenes.h"

namespace zelmtest {
namespace {

using namespace zelm::accuracy;

constexpr std::uint64_t kFirst = 5000;  // seeds that the thresholds were not chosen by

TEST(MeasureImageCauses, AreNamed) {
    constexpr int kImages = 2;
    int right = 0;
    int made = 0;
    for (const TrialFault& fault : trialFaults()) {
        SCOPED_TRACE(fault.name);
        int named = 0;
        int tried = 0;
        for (std::uint64_t seed = kFirst; tried < kImages && seed < kFirst + 80; ++seed) {
            if (const auto image = faultyImage(fault, seed)) {
                const ZelmMeasureImageDiagnosis d = diagnosisOf(*image);
                EXPECT_LT(d.status, 0);
                named += isNamed(fault, *image, d) ? 1 : 0;
                ++tried;
            }
        }
        EXPECT_GE(tried, kImages / 2);  // some faults are mostly read all the same
        EXPECT_GE(named, tried - 1);    // nineteen of twenty are right
        right += named;
        made += tried;
    }
    EXPECT_GE(right, made * 93 / 100);
}

TEST(MeasureImageCauses, GoodImagesAreNotAccused) {
    for (std::uint64_t seed = kFirst; seed < kFirst + 8; ++seed) {
        const ZelmMeasureImageDiagnosis d = diagnosisOf(goodImage(seed));
        EXPECT_EQ(d.cause, ZELM_MEASURE_IMAGE_FINE) << zelmMeasureImageCauseName(d.cause) << ", seed " << seed;
        EXPECT_GE(d.status, 0) << seed;
        EXPECT_EQ(d.dots, d.expected) << seed;
    }
}

// Noise makes thousands of spots, some of which stand in rows by chance; slopes have no edges.
TEST(MeasureImageCauses, ImagesWithoutAPlateAreToldAsSuch) {
    const Zelm2ViewPatternDesc pattern = describe(smallPlate());
    for (int scene = 0; scene < kScenes; ++scene) {
        SCOPED_TRACE(sceneName(static_cast<Scene>(scene)));
        for (std::uint64_t seed = 1; seed <= 3; ++seed) {
            render::RandomSource random(seed + kFirst);
            TrialImage trial;
            trial.image = render::digitise(platelessScene(static_cast<Scene>(scene), 500, 400, random), 1.0, seed);
            trial.pattern = pattern;
            const std::int32_t cause = diagnosisOf(trial).cause;
            // Endless stripes are what a smear leaves of anything.
            const bool mayBeSmeared = static_cast<Scene>(scene) == Scene::stripes;
            EXPECT_TRUE(cause == ZELM_MEASURE_IMAGE_NO_PLATE || (mayBeSmeared && cause == ZELM_MEASURE_IMAGE_MOTION))
                << zelmMeasureImageCauseName(cause) << ", seed " << seed;
        }
    }
}

// The plate's ground is white, and dots are lost in it one after the other as the light grows.
TEST(MeasureImageCauses, ClippedPlatesAreSaturated) {
    for (const double gain : {4.0, 8.0, 12.0}) {
        render::Camera camera;
        camera.width = 640;
        camera.height = 480;
        camera.cx = 319.5;
        camera.cy = 239.5;
        render::Aim aim;
        aim.pixel = {320.0, 240.0};
        aim.scale = 3.2;
        aim.tiltDegrees = 15.0;
        render::Optics optics;
        optics.levels = {31.5, 150.0, 90.0};
        optics.light = {0.15, 0.1, 0.1};
        render::LevelImage levels = render::renderLevels({}, camera, render::aimedPose(camera, aim), optics);
        changeLevels(levels, [=](int, int, double level) { return gain * level; });
        TrialImage trial;
        trial.image = render::digitise(levels, 2.0, 3);
        trial.pattern = describe(render::Plate{});
        const ZelmMeasureImageDiagnosis d = diagnosisOf(trial);
        EXPECT_TRUE(d.cause == ZELM_MEASURE_IMAGE_SATURATED || d.status >= 0)
            << gain << " " << zelmMeasureImageCauseName(d.cause);
    }
}

TEST(MeasureImageCauses, HaveNamesOfTheirOwn) {
    EXPECT_STREQ(zelmMeasureImageCauseName(ZELM_MEASURE_IMAGE_OUT_OF_FOCUS), "out-of-focus");
    EXPECT_STREQ(zelmMeasureImageCauseName(ZELM_MEASURE_IMAGE_MARKER_DISTANCE), "marker-distance");
    EXPECT_STREQ(zelmMeasureImageCauseName(ZELM_MEASURE_IMAGE_MARKER_AXES), "marker-axes");
    for (const int none : {ZELM_MEASURE_IMAGE_UNKNOWN + 1, -1, 1 << 30}) {
        EXPECT_STREQ(zelmMeasureImageCauseName(none), "unknown");
    }
}

ZelmMeasureImage recordOf(const render::RenderedView& view) {
    return {view.image.pixels.data(), view.image.width, view.image.height, view.image.width};
}

TEST(MeasureImageCauses, FiguresAndSpotsAreThoseOfThePlate) {
    const render::RenderedView view = smallView(10.0, 20.0);
    const ZelmMeasureImage image = recordOf(view);
    const Zelm2ViewPatternDesc pattern = describe(smallPlate());
    auto d = emptyRecord<ZelmMeasureImageDiagnosis>();
    double centres[80];
    double axes[120];
    double strengths[40];
    std::int32_t verdicts[40];
    const ZelmMeasureSpots spots{sizeof(ZelmMeasureSpots), 0, 40, centres, axes, strengths, verdicts};
    ASSERT_EQ(zelmMeasureDiagnoseImage(&image, &pattern, nullptr, &d, &spots), ZELM_OK);
    EXPECT_EQ(d.cause, ZELM_MEASURE_IMAGE_FINE);
    EXPECT_EQ(d.dots, 35);
    EXPECT_EQ(d.read, 35);
    EXPECT_EQ(d.columns, 7);
    EXPECT_EQ(d.rows, 5);
    EXPECT_EQ(d.markers, 3);
    EXPECT_EQ(d.markerColumns, 2);
    EXPECT_EQ(d.markerRows, 2);
    EXPECT_NEAR(d.markerRatio, 1.75, 0.1);
    EXPECT_NEAR(d.dotRatio, 5.0 / 12.0, 0.03);
    EXPECT_NEAR(d.inside, 20.0, 3.0);
    EXPECT_NEAR(d.ground, 190.0, 3.0);
    EXPECT_NEAR(d.axisRatio, std::cos(20.0 * 3.14159 / 180.0), 0.03);
    EXPECT_EQ(d.hidden + d.outside, 0);
    int dots = 0;
    for (int i = 0; i < std::min(d.spots, 40); ++i) {
        if (verdicts[i] == ZELM_MEASURE_SPOT_DOT || verdicts[i] == ZELM_MEASURE_SPOT_MARKER) {
            ++dots;
            EXPECT_GE(strengths[i], pattern.minEdgeStrength);
            const render::DotTruth& truth = nearestTruth(view.dots, {centres[2 * i], centres[2 * i + 1]});
            EXPECT_NEAR(centres[2 * i], truth.ellipse.centre.x, 0.5);
            EXPECT_NEAR(centres[2 * i + 1], truth.ellipse.centre.y, 0.5);
            EXPECT_NEAR(axes[3 * i], truth.ellipse.a, 0.8);
        }
    }
    EXPECT_EQ(dots, 35);
}

TEST(MeasureImageCauses, WhatCannotBeMeantIsRefused) {
    const render::RenderedView view = smallView();
    const ZelmMeasureImage image = recordOf(view);
    const Zelm2ViewPatternDesc pattern = describe(smallPlate());
    auto d = emptyRecord<ZelmMeasureImageDiagnosis>();
    const auto expectRefused = [&](const ZelmMeasureImage* i, const Zelm2ViewPatternDesc* p, const ZelmRect* r,
                                   ZelmMeasureImageDiagnosis* out, const ZelmMeasureSpots* s) {
        EXPECT_EQ(zelmMeasureDiagnoseImage(i, p, r, out, s), ZELM_ERR_PARAM);
        EXPECT_EQ(d.dots, 0);
    };
    expectRefused(nullptr, &pattern, nullptr, &d, nullptr);
    expectRefused(&image, nullptr, nullptr, &d, nullptr);
    expectRefused(&image, &pattern, nullptr, nullptr, nullptr);
    for (const ZelmRect& region : {ZelmRect{0, 0, 641, 480}, ZelmRect{-1, 0, 5, 5}, ZelmRect{0, 0, 0, 5}}) {
        expectRefused(&image, &pattern, &region, &d, nullptr);
    }
    for (const auto field :
         {&Zelm2ViewPatternDesc::d0, &Zelm2ViewPatternDesc::d2, &Zelm2ViewPatternDesc::d4, &Zelm2ViewPatternDesc::d6}) {
        Zelm2ViewPatternDesc wrong = pattern;
        wrong.*field = std::nan("");
        expectRefused(&image, &wrong, nullptr, &d, nullptr);
    }
    ZelmMeasureSpots spots{sizeof(ZelmMeasureSpots), 0, -1, nullptr, nullptr, nullptr, nullptr};
    expectRefused(&image, &pattern, nullptr, &d, &spots);
    spots.size = 0;
    expectRefused(&image, &pattern, nullptr, &d, &spots);
}

TEST(MeasureImageCauses, TinyAndEmptyImagesAreNoPlate) {
    const Zelm2ViewPatternDesc pattern = describe(smallPlate());
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 50}, {5, 5}, {64, 48}}) {
        const std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width * height), 90);
        const ZelmMeasureImage image{pixels.data(), width, height, width};
        auto d = emptyRecord<ZelmMeasureImageDiagnosis>();
        ASSERT_EQ(zelmMeasureDiagnoseImage(&image, &pattern, nullptr, &d, nullptr), ZELM_OK);
        EXPECT_LT(d.status, 0);
        EXPECT_NE(d.cause, ZELM_MEASURE_IMAGE_FINE);
        EXPECT_EQ(d.dots, 0);
    }
}

}  // namespace
}  // namespace zelmtest
