// Options of matching: the defaults, what is refused, and what each does.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "matchedPoints.h"

namespace zelmtest {
namespace {

const double kNone = std::numeric_limits<double>::quiet_NaN();
const double kInfinite = std::numeric_limits<double>::infinity();

TEST(MeasureMatchDefaults, AreThoseThatTheHeaderTells) {
    const OpenedRig rig(trueRig().block());
    ZelmMeasureMatchOptions o = emptyRecord<ZelmMeasureMatchOptions>();
    o.threads = 9;
    ASSERT_EQ(zelmMeasureMatchDefaults(rig.get(), &o), ZELM_OK);
    EXPECT_EQ(o.size, static_cast<std::int32_t>(sizeof o));
    EXPECT_EQ(o.window, 21);
    EXPECT_EQ(o.minScore, 0.8);
    EXPECT_EQ(o.returnTolerance, 1.0);
    EXPECT_EQ(o.precision, 0.1);
    EXPECT_EQ(o.noise, 0.0);
    EXPECT_EQ(o.reach, 42.0);
    EXPECT_EQ(o.limits.leftMin, 227.5);
    EXPECT_EQ(o.limits.leftMax, 910.0);
    EXPECT_EQ(o.limits.rightMin, 224.0);
    EXPECT_EQ(o.limits.rightMax, 896.0);
    EXPECT_EQ(o.threads, 0);
    EXPECT_EQ(o.progress, nullptr);
    EXPECT_EQ(o.context, nullptr);
}

TEST(MeasureMatchDefaults, OlderRecordsGetWhatTheyKnow) {
    const OpenedRig rig(trueRig().block());
    ZelmMeasureMatchOptions o = emptyRecord<ZelmMeasureMatchOptions>();
    o.size = offsetof(ZelmMeasureMatchOptions, reach);
    o.reach = -7.0;
    ASSERT_EQ(zelmMeasureMatchDefaults(rig.get(), &o), ZELM_OK);
    EXPECT_EQ(o.precision, 0.1);
    EXPECT_EQ(o.reach, -7.0);
}

TEST(MeasureMatchDefaults, NoRigHasNoLimits) {
    auto o = emptyRecord<ZelmMeasureMatchOptions>();
    ASSERT_EQ(zelmMeasureMatchDefaults(nullptr, &o), ZELM_OK);
    EXPECT_EQ(o.minScore, 0.8);
    EXPECT_EQ(o.limits.leftMin, 0.0);
    EXPECT_EQ(o.limits.rightMin, 0.0);
    EXPECT_EQ(o.limits.leftMax, kInfinite);
    EXPECT_EQ(o.limits.rightMax, kInfinite);
}

// A picture pair that need not be matched.
struct Call {
    PlanePictures pictures{trueRig(240, 180), slantedPlane()};
    OpenedRig rig{pictures.rig.block()};

    std::int32_t match(const ZelmMeasureMatchOptions* options, MatchedPoints& out, bool dense = false) const {
        const ZelmMeasureImage left = pictures.image('L');
        const ZelmMeasureImage right = pictures.image('R');
        const ZelmMeasureMatches matches = out.record();
        const double pixel[] = {120.0, 90.0};
        return dense ? zelmMeasureMatchDense(rig.get(), &left, &right, options, &matches)
                     : zelmMeasureMatch(rig.get(), &left, &right, options, 1, pixel, &matches);
    }
};

TEST(MeasureMatchOptions, WhatCannotBeMeantIsRefused) {
    const Call call;
    const struct {
        const char* words;
        Change change;
    } cases[] = {
        {"window", [](auto& o) { o.window = 20; }},
        {"window", [](auto& o) { o.window = 3; }},
        {"window", [](auto& o) { o.window = 0; }},
        {"window", [](auto& o) { o.window = -21; }},
        {"window", [](auto& o) { o.window = 179; }},
        {"window", [](auto& o) { o.window = std::numeric_limits<std::int32_t>::max() - 1; }},
        {"minScore", [](auto& o) { o.minScore = -0.01; }},
        {"minScore", [](auto& o) { o.minScore = 1.01; }},
        {"minScore", [](auto& o) { o.minScore = kNone; }},
        {"returnTolerance", [](auto& o) { o.returnTolerance = 0.0; }},
        {"returnTolerance", [](auto& o) { o.returnTolerance = kNone; }},
        {"precision", [](auto& o) { o.precision = -0.1; }},
        {"precision", [](auto& o) { o.precision = kNone; }},
        {"noise", [](auto& o) { o.noise = -1.0; }},
        {"noise", [](auto& o) { o.noise = kNone; }},
        {"noise", [](auto& o) { o.noise = kInfinite; }},
        {"reach", [](auto& o) { o.reach = 0.0; }},
        {"reach", [](auto& o) { o.reach = kNone; }},
        {"reach", [](auto& o) { o.reach = kInfinite; }},
        {"threads", [](auto& o) { o.threads = -1; }},
        {"range", [](auto& o) { o.limits.leftMax = o.limits.leftMin; }},
        {"range", [](auto& o) { o.limits.rightMin = 500.0, o.limits.rightMax = 400.0; }},
        {"range", [](auto& o) { o.limits.leftMin = kNone; }},
        {"range", [](auto& o) { o.limits.rightMax = kNone; }},
        {"not negative", [](auto& o) { o.limits.leftMin = -1.0; }},
        {"not negative", [](auto& o) { o.limits.rightMin = -kInfinite; }},
        {"size", [](auto& o) { o.size = 0; }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.words);
        ZelmMeasureMatchOptions options = defaultsOf(call.rig);
        c.change(options);
        for (const bool dense : {false, true}) {
            MatchedPoints out(1);
            EXPECT_EQ(call.match(&options, out, dense), ZELM_ERR_PARAM);
            EXPECT_NE(call.rig.error().find(c.words), std::string::npos) << call.rig.error();
            EXPECT_EQ(call.rig.error().find('\n'), std::string::npos);
            EXPECT_EQ(out, MatchedPoints(1));
        }
        std::int32_t any = -7;
        EXPECT_EQ(zelmMeasureOverlap(call.rig.get(), &options, 0, nullptr, &any), ZELM_ERR_PARAM);
        EXPECT_EQ(any, -7);
    }
}

TEST(MeasureMatchOptions, ParallelCamerasMayHaveNegativeDepths) {
    const OpenedRig rig(trueRig(240, 180, render::Projection::parallel).block());
    ZelmMeasureMatchOptions options = defaultsOf(rig);
    EXPECT_EQ(options.limits.leftMin, -kInfinite);
    EXPECT_EQ(options.limits.leftMax, kInfinite);
    options.limits.leftMin = -100.0;
    std::int32_t any = -7;
    EXPECT_EQ(zelmMeasureOverlap(rig.get(), &options, 0, nullptr, &any), ZELM_OK);
    options.limits.rightMin = -100.0;
    EXPECT_EQ(zelmMeasureOverlap(rig.get(), &options, 0, nullptr, &any), ZELM_ERR_PARAM);
}

TEST(MeasureMatchOptions, SmallestAndLargestWindowsWork) {
    const Call call;
    for (const std::int32_t window : {5, 177}) {
        SCOPED_TRACE(window);
        ZelmMeasureMatchOptions options = defaultsOf(call.rig);
        options.window = window;
        MatchedPoints out(1);
        EXPECT_EQ(call.match(&options, out), ZELM_OK);
        EXPECT_NE(out.statuses[0], -7);
    }
}

TEST(MeasureMatchOptions, ReachesSmallAndLargeWork) {
    const Call call;
    for (const double reach : {1e-300, 1e-9, 0.5, 1e9}) {
        SCOPED_TRACE(reach);
        ZelmMeasureMatchOptions options = defaultsOf(call.rig);
        options.reach = reach;
        MatchedPoints out(1);
        EXPECT_EQ(call.match(&options, out), ZELM_OK) << call.rig.error();
        EXPECT_EQ(out.statuses[0], ZELM_MEASURE_MATCH_OK);
    }
}

TEST(MeasureMatchOptions, DepthLimitsKeepOtherDepthsOut) {
    const Call call;
    const std::vector<Point2d> pixels = gridOver(240, 180, 20);
    const auto withDepths = [&](double nearest, double farthest) {
        return matched(call.pictures, pixels, [=](ZelmMeasureMatchOptions& o) {
            o.limits.leftMin = nearest;
            o.limits.leftMax = farthest;
        });
    };
    const MatchedPoints all = withDepths(400.0, 520.0);
    EXPECT_GT(count(all, ZELM_MEASURE_MATCH_OK), 30);
    // The plane lies at 430 to 490 units.
    const MatchedPoints behind = withDepths(520.0, 650.0);
    EXPECT_EQ(count(behind, ZELM_MEASURE_MATCH_OK), 0);
}

TEST(MeasureMatchOptions, AScoreBelowTheLeastIsNoMatch) {
    // Each pixel on its own, so that none is led by another.
    const Call call;
    int tried = 0;
    for (const Point2d& pixel : gridOver(240, 180, 40)) {
        const auto withScore = [&](double score) {
            return matched(call.pictures, {pixel}, [=](ZelmMeasureMatchOptions& o) { o.minScore = score; });
        };
        const MatchedPoints m = withScore(0.8);
        const double score = m.scores[0];
        if (m.statuses[0] == ZELM_MEASURE_MATCH_OK && score < 1.0) {
            EXPECT_EQ(withScore(score).statuses[0], ZELM_MEASURE_MATCH_OK);
            EXPECT_EQ(withScore(0.5 * (score + 1.0)).statuses[0], ZELM_MEASURE_MATCH_NO_MATCH);
            tried += 1;
        }
    }
    EXPECT_GT(tried, 3);
}

TEST(MeasureMatchOptions, ImagesMustBeOfTheCalibratedSize) {
    const Call call;
    const ZelmMeasureMatchOptions options = defaultsOf(call.rig);
    const ZelmMeasureImage sound = call.pictures.image('L');
    ZelmMeasureImage narrow = sound;
    narrow.width = 239;
    ZelmMeasureImage low = sound;
    low.height = 179;
    const double pixel[] = {120.0, 90.0};
    for (const ZelmMeasureImage& wrong : {narrow, low}) {
        for (const bool isLeft : {true, false}) {
            MatchedPoints out(1);
            const ZelmMeasureMatches matches = out.record();
            const ZelmMeasureImage* const left = isLeft ? &wrong : &sound;
            const ZelmMeasureImage* const right = isLeft ? &sound : &wrong;
            EXPECT_EQ(zelmMeasureMatch(call.rig.get(), left, right, &options, 1, pixel, &matches), ZELM_ERR_PARAM);
            EXPECT_EQ(call.rig.error(), std::string("the ") + (isLeft ? "left" : "right") +
                                            " image is not of the size that was calibrated");
            EXPECT_EQ(zelmMeasureMatchDense(call.rig.get(), left, right, &options, &matches), ZELM_ERR_PARAM);
            EXPECT_EQ(out, MatchedPoints(1));
        }
    }
}

TEST(MeasureMatchOptions, TwoParallelCamerasAreRefused) {
    const OpenedRig rig(parallelBlock());
    ZelmMeasureMatchOptions options = defaultsOf(rig);
    const GrayPixels pixels(1280 * 960, 100);
    const ZelmMeasureImage image{pixels.data(), 1280, 960, 1280};
    MatchedPoints out(1);
    const ZelmMeasureMatches matches = out.record();
    const double pixel[] = {120.0, 90.0};
    EXPECT_EQ(zelmMeasureMatch(rig.get(), &image, &image, &options, 1, pixel, &matches), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(rig.error().find("both cameras are parallel"), std::string::npos);
    EXPECT_EQ(zelmMeasureMatchDense(rig.get(), &image, &image, &options, &matches), ZELM_MEASURE_ERR_DATA);
    EXPECT_EQ(out, MatchedPoints(1));
}

}  // namespace
}  // namespace zelmtest
