// Whole runs of matching: alike for any number of threads and any padding, told of as they go, and ended by the caller.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "matchedPoints.h"

namespace zelmtest {
namespace {

constexpr int kWidth = 120;
constexpr int kHeight = 90;

// What the progress function was told.
struct Told {
    struct Step {
        std::string stage;
        std::int64_t done;
        std::int64_t total;
        bool operator==(const Step&) const = default;
    };
    std::vector<Step> steps;
    std::size_t endAfter = static_cast<std::size_t>(-1);  // calls

    static std::int32_t report(void* context, const char* stage, std::int64_t done, std::int64_t total) {
        auto* const self = static_cast<Told*>(context);
        self->steps.push_back({stage, done, total});
        return self->steps.size() >= self->endAfter ? 1 : 0;
    }
    [[nodiscard]] Change listen() {
        return [this](ZelmMeasureMatchOptions& options) {
            options.progress = &Told::report;
            options.context = this;
        };
    }
};

// Noise makes some points fail that their neighbours then lead to.
const PlanePictures& noisyPictures() {
    static const PlanePictures pictures(trueRig(kWidth, kHeight), slantedPlane(), 6.0);
    return pictures;
}

std::int32_t matchAll(const PlanePictures& pictures, bool dense, const Change& change, MatchedPoints& out,
                      const std::vector<Point2d>& pixels, std::string* error = nullptr) {
    const OpenedRig rig(pictures.rig.block());
    ZelmMeasureMatchOptions options = defaultsOf(rig);
    options.window = 15;
    options.limits.leftMin = 400.0;  // the plane lies at 430 to 490 units
    options.limits.leftMax = 520.0;
    change(options);
    const ZelmMeasureImage left = pictures.image('L');
    const ZelmMeasureImage right = pictures.image('R');
    const std::vector<double> flat = flatPixels(pixels);
    const ZelmMeasureMatches matches = out.record();
    const std::int32_t status = dense
                                    ? zelmMeasureMatchDense(rig.get(), &left, &right, &options, &matches)
                                    : zelmMeasureMatch(rig.get(), &left, &right, &options,
                                                       static_cast<std::int64_t>(pixels.size()), flat.data(), &matches);
    if (error != nullptr) {
        *error = rig.error();
    }
    return status;
}

TEST(MeasureMatchRun, ResultsAreTheSameForAnyNumberOfThreads) {
    const std::vector<Point2d> pixels = gridOver(kWidth, kHeight, 4);
    for (const bool dense : {false, true}) {
        SCOPED_TRACE(dense);
        const std::size_t count = dense ? static_cast<std::size_t>(kWidth * kHeight) : pixels.size();
        MatchedPoints one(count);
        ASSERT_EQ(matchAll(
                      noisyPictures(), dense, [](auto& o) { o.threads = 1; }, one, pixels),
                  ZELM_OK);
        EXPECT_GT(zelmtest::count(one, ZELM_MEASURE_MATCH_OK), static_cast<int>(count) / 10);
        for (const std::int32_t threads : {2, 0, 64}) {
            MatchedPoints many(count);
            ASSERT_EQ(matchAll(
                          noisyPictures(), dense, [=](auto& o) { o.threads = threads; }, many, pixels),
                      ZELM_OK);
            EXPECT_TRUE(many == one) << threads;
            if (dense) {
                break;  // takes its time, and shows no more
            }
        }
    }
}

TEST(MeasureMatchRun, PaddedRowsGiveTheSameResults) {
    const PlanePictures& pictures = noisyPictures();
    const std::vector<Point2d> pixels = gridOver(kWidth, kHeight, 6);
    MatchedPoints dense(pixels.size());
    ASSERT_EQ(matchAll(
                  pictures, false, [](auto&) {}, dense, pixels),
              ZELM_OK);
    const auto padded = [](const GrayPixels& picture, std::size_t stride) {
        GrayPixels result(stride * kHeight, 200);
        for (std::size_t y = 0; y < kHeight; ++y) {
            std::copy_n(picture.begin() + static_cast<std::ptrdiff_t>(kWidth * y), kWidth,
                        result.begin() + static_cast<std::ptrdiff_t>(stride * y));
        }
        return result;
    };
    const GrayPixels left = padded(pictures.left, 123);
    const GrayPixels right = padded(pictures.right, 200);
    const ZelmMeasureImage leftImage{left.data(), kWidth, kHeight, 123};
    const ZelmMeasureImage rightImage{right.data(), kWidth, kHeight, 200};
    const OpenedRig rig(pictures.rig.block());
    ZelmMeasureMatchOptions options = defaultsOf(rig);
    options.window = 15;
    options.limits.leftMin = 400.0;
    options.limits.leftMax = 520.0;
    const std::vector<double> flat = flatPixels(pixels);
    MatchedPoints strided(pixels.size());
    const ZelmMeasureMatches matches = strided.record();
    ASSERT_EQ(zelmMeasureMatch(rig.get(), &leftImage, &rightImage, &options, static_cast<std::int64_t>(pixels.size()),
                               flat.data(), &matches),
              ZELM_OK);
    EXPECT_TRUE(strided == dense);
}

TEST(MeasureMatchRun, ProgressGoesFromNoneToAllOfEachStage) {
    // More pixels than a step holds.
    const std::vector<Point2d> pixels = gridOver(kWidth, kHeight, 2);
    ASSERT_EQ(pixels.size(), 2700U);
    Told told;
    MatchedPoints out(pixels.size());
    ASSERT_EQ(matchAll(noisyPictures(), false, told.listen(), out, pixels), ZELM_OK);
    MatchedPoints silent(pixels.size());
    ASSERT_EQ(matchAll(
                  noisyPictures(), false, [](auto&) {}, silent, pixels),
              ZELM_OK);
    EXPECT_TRUE(out == silent);
    ASSERT_GE(told.steps.size(), 4U);
    EXPECT_EQ(told.steps[0], (Told::Step{"matching", 0, 2}));
    EXPECT_EQ(told.steps[1], (Told::Step{"matching", 1, 2}));
    EXPECT_EQ(told.steps[2], (Told::Step{"matching", 2, 2}));
    int rounds = 0;
    for (std::size_t i = 3; i < told.steps.size(); ++i) {
        const Told::Step& step = told.steps[i];
        const Told::Step& before = told.steps[i - 1];
        EXPECT_EQ(step.stage, "filling");
        EXPECT_GE(step.total, 0);
        if (step.done == 0) {
            EXPECT_EQ(before.done, before.total);  // the stage before was told to its end
            rounds += 1;
        } else {
            EXPECT_EQ(step.done, before.done + 1);
            EXPECT_EQ(step.total, before.total);
        }
    }
    EXPECT_EQ(told.steps.back().done, told.steps.back().total);
    EXPECT_GE(rounds, 1);
}

TEST(MeasureMatchRun, TheCallerMayEndItAtAnyReport) {
    const std::vector<Point2d> pixels = gridOver(kWidth, kHeight, 4);
    for (const bool dense : {false, true}) {
        Told whole;
        const std::size_t room = dense ? static_cast<std::size_t>(kWidth * kHeight) : pixels.size();
        MatchedPoints done(room);
        ASSERT_EQ(matchAll(noisyPictures(), dense, whole.listen(), done, pixels), ZELM_OK);
        const std::size_t calls = whole.steps.size();
        for (const std::size_t end : {std::size_t{1}, std::size_t{2}, calls / 2, calls}) {
            SCOPED_TRACE(end);
            Told told;
            told.endAfter = end;
            MatchedPoints out(room);
            std::string error;
            EXPECT_EQ(matchAll(noisyPictures(), dense, told.listen(), out, pixels, &error), ZELM_MEASURE_ERR_CANCELLED);
            EXPECT_EQ(error, "ended by the caller");
            EXPECT_EQ(told.steps.size(), end);
            EXPECT_TRUE(out == MatchedPoints(room));
        }
    }
}

TEST(MeasureMatchRun, ArraysThatAreNotWantedMayBeMissing) {
    const std::vector<Point2d> pixels = gridOver(kWidth, kHeight, 30);
    const PlanePictures& pictures = noisyPictures();
    const OpenedRig rig(pictures.rig.block());
    const ZelmMeasureMatchOptions options = defaultsOf(rig);
    const ZelmMeasureImage left = pictures.image('L');
    const ZelmMeasureImage right = pictures.image('R');
    const std::vector<double> flat = flatPixels(pixels);
    const MatchedPoints all = matched(pictures, pixels);
    for (int missing = 0; missing < 7; ++missing) {
        SCOPED_TRACE(missing);
        MatchedPoints out(pixels.size());
        MatchedPoints expected = all;
        const MatchedPoints untouched(pixels.size());
        ZelmMeasureMatches m = out.record();
        switch (missing) {
            case 0:
                m.statuses = nullptr, expected.statuses = untouched.statuses;
                break;
            case 1:
                m.pixels = nullptr, expected.pixels = untouched.pixels;
                break;
            case 2:
                m.scores = nullptr, expected.scores = untouched.scores;
                break;
            case 3:
                m.positions = nullptr, expected.positions = untouched.positions;
                break;
            case 4:
                m.depths = nullptr, expected.depths = untouched.depths;
                break;
            case 5:
                m.deviations = nullptr, expected.deviations = untouched.deviations;
                break;
            default:
                m.errors = nullptr, expected.errors = untouched.errors;
                break;
        }
        ASSERT_EQ(zelmMeasureMatch(rig.get(), &left, &right, &options, static_cast<std::int64_t>(pixels.size()),
                                   flat.data(), &m),
                  ZELM_OK);
        EXPECT_TRUE(out == expected);
    }
}

TEST(MeasureMatchRun, NoPixelsAreSuccess) {
    MatchedPoints out(1);
    EXPECT_EQ(matchAll(noisyPictures(), false, [](auto&) {}, out, {}), ZELM_OK);
    EXPECT_EQ(out, MatchedPoints(1));
}

}  // namespace
}  // namespace zelmtest
