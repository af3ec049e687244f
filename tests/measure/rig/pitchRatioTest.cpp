// The ratio of a plate's pitches told from dots that were projected with another ratio than the one stated.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "adjustScene.h"
#include "adjustedRigs.h"
#include "calibObject.h"
#include "measureRigs.h"
#include "pitchRatio.h"

namespace zelmtest {
namespace {

using zelm::measure::PitchRatio;
using zelm::measure::pitchRatioOf;
using zelm::measure::ViewPlaces;

// Views of a plate of 13 x 11 dots whose pitch along x is `ratio` times the stated one.
std::vector<ViewPlaces> viewsOf(double ratio, double noise, bool areFrontal = false) {
    RigTruth truth = trueRig();
    Random random(11);
    std::vector<ViewPlaces> views;
    for (int v = 0; v < 8; ++v) {
        const double turn = areFrontal ? 0.0 : 0.9 * v;
        const double tilt = areFrontal ? 0.0 : 0.25 + 0.04 * v;
        const render::Pose pose =
            poseOfVectors({tilt * std::cos(turn), tilt * std::sin(turn), areFrontal ? 0.0 : 0.3 * v},
                          {3.0 * v - 10.0, 8.0 - 2.0 * v, 420.0 + (areFrontal ? 0.0 : 6.0 * v)});
        truth.leftPose = pose;
        ViewPlaces view;
        for (int x = -6; x <= 6; ++x) {
            for (int y = -5; y <= 5; ++y) {
                const Point2d p = truth.raw('L', {10.0 * ratio * x, 10.0 * y, 0.0});
                view.plane.push_back({10.0 * x, 10.0 * y});
                view.image.push_back({p.x + noise * random.normal(), p.y + noise * random.normal()});
            }
        }
        views.push_back(view);
    }
    return views;
}

TEST(PitchRatio, TheRatioOfTheDotsComesBack) {
    for (const double ratio : {0.8, 0.99, 0.9999, 1.0, 1.001, 1.01, 1.25}) {
        SCOPED_TRACE(ratio);
        const PitchRatio found = pitchRatioOf(viewsOf(ratio, 0.0), 0, 1280, 960);
        EXPECT_TRUE(found.isDetermined);
        EXPECT_NEAR(found.ratio, ratio, 5e-6);  // the search ends within a millionth
        EXPECT_LE(found.error, 0.01);
    }
}

TEST(PitchRatio, NoiseMovesItLittle) {
    const PitchRatio found = pitchRatioOf(viewsOf(1.01, 0.05), 0, 1280, 960);
    EXPECT_TRUE(found.isDetermined);
    // 1144 dots of 0.05 pixels over half a plate of some 240 pixels, and what the tilts share with it.
    EXPECT_NEAR(found.ratio, 1.01, 1e-4);
    EXPECT_NEAR(found.error, 0.05 * std::sqrt(std::acos(-1.0) / 2.0), 0.005);  // mean of a Rayleigh distribution
}

TEST(PitchRatio, PlatesThatFaceTheCameraTellNothing) {
    EXPECT_FALSE(pitchRatioOf(viewsOf(1.01, 0.02, true), 0, 1280, 960).isDetermined);
}

TEST(PitchRatio, OfAnObjectWithDots) {
    const AdjustScene scene = makeAdjustScene({});
    Handle core;
    calibrateScene(scene, scene.views, core);
    zelm::Zelm2ViewWork* const work = zelm::openedWork(*core.get());
    ASSERT_NE(work, nullptr);
    for (const zelm::Camera camera : {zelm::Camera::left, zelm::Camera::right}) {
        for (std::int32_t view = 0; view < work->views; ++view) {
            Zelm2ViewPtnEntry& entry = zelm::entriesOf(work, camera)[view];
            for (std::int32_t i = 0; i < entry.count; ++i) {
                entry.plane[i].y *= 1.01;  // stated too large, so that x over y is larger in truth
            }
        }
    }
    for (const char side : {'L', 'R'}) {
        auto ratio = emptyRecord<ZelmMeasurePitchRatio>();
        ASSERT_EQ(zelmMeasurePitchRatio(core.get(), side, &ratio), ZELM_OK);
        EXPECT_EQ(ratio.isDetermined, 1);
        // Centres of ellipses are not images of centres: 0.02 pixels over a plate of some hundred.
        EXPECT_NEAR(ratio.ratio, 1.01, 2e-4);
        EXPECT_LE(ratio.error, 0.1);
        EXPECT_TRUE(ratio.stated < 0.0 || ratio.stated > 1.5 * ratio.error) << ratio.stated;
    }
}

TEST(PitchRatio, Refusals) {
    auto ratio = emptyRecord<ZelmMeasurePitchRatio>();
    const ZelmMeasurePitchRatio before = ratio;
    EXPECT_EQ(zelmMeasurePitchRatio(nullptr, 'L', &ratio), ZELM_ERR_PARAM);
    const OpenedRig loaded(trueRig().block());
    EXPECT_EQ(zelmMeasurePitchRatio(zelmMeasureRigCalib(loaded.get()), 'L', &ratio), ZELM_ERR_PARAM);
    const AdjustScene scene = makeAdjustScene({});
    Handle core;
    calibrateScene(scene, scene.views, core);
    EXPECT_EQ(zelmMeasurePitchRatio(core.get(), 'M', &ratio), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasurePitchRatio(core.get(), 'L', nullptr), ZELM_ERR_PARAM);
    AdjustSceneOptions options;
    options.models = {2, 0};
    const AdjustScene parallel = makeAdjustScene(options);
    Handle other;
    calibrateScene(parallel, parallel.views, other);
    EXPECT_EQ(zelmMeasurePitchRatio(other.get(), 'L', &ratio), ZELM_MEASURE_ERR_DATA);
    EXPECT_EQ(std::memcmp(&ratio, &before, sizeof ratio), 0);
}

}  // namespace
}  // namespace zelmtest
