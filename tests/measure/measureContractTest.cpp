// Arguments that cannot be meant: every function of the interface answers them with ZELM_ERR_PARAM, writes nothing, and
// lets nothing that is thrown cross its border.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "adjustedRigs.h"
#include "dottedPair.h"
#include "matchedPoints.h"
#include "planFixtures.h"

namespace zelmtest {
namespace {

// What every call may be given: all of it sound.
struct Sound {
    std::vector<unsigned char> block = trueRig(64, 48).block();
    OpenedRig rig{block};
    GrayPixels gray = GrayPixels(64 * 48, 100);
    ZelmMeasureImage image{gray.data(), 64, 48, 64};
    Zelm2ViewPatternDesc pattern = plainPattern();
    ZelmMeasureMatchOptions options = defaultsOf(rig);
    double pixels[4] = {30.0, 20.0, 31.0, 21.0};
    double shape[6] = {30.0, 20.0, 6.0, 0.0, 0.0, 6.0};
    std::vector<std::uint16_t> map = std::vector<std::uint16_t>(64 * 48, 1000);
};

// Outputs of all calls, none of which may change.
struct Outputs {
    std::int32_t integers[8];
    std::int64_t longs[2];
    double numbers[40];

    Outputs() {
        std::fill(std::begin(integers), std::end(integers), -7);
        std::fill(std::begin(longs), std::end(longs), -7);
        std::fill(std::begin(numbers), std::end(numbers), -7.0);
    }
    [[nodiscard]] bool areUntouched() const {
        const auto isSeven = [](auto value) { return value == -7; };
        return std::all_of(std::begin(integers), std::end(integers), isSeven) &&
               std::all_of(std::begin(longs), std::end(longs), isSeven) &&
               std::all_of(std::begin(numbers), std::end(numbers), isSeven);
    }
};

class MeasureContract : public testing::Test {
protected:
    void expectParam(const char* what, std::int32_t status) {
        EXPECT_EQ(status, ZELM_ERR_PARAM) << what;
        EXPECT_TRUE(out.areUntouched()) << what;
        const std::string words = sound.rig.error();
        EXPECT_EQ(words.find('\n'), std::string::npos) << words;
    }
    // A record whose size is not set is refused by every function that takes one.
    template <class Record, class Call>
    void expectRecordRefused(const char* what, Call call) {
        expectParam(what, call(static_cast<Record*>(nullptr)));
        for (const std::int32_t size : {0, 3, -8}) {
            auto record = emptyRecord<Record>();
            record.size = size;
            Record before = record;
            expectParam(what, call(&record));
            EXPECT_EQ(std::memcmp(&record, &before, sizeof record), 0) << what;
        }
    }

    Sound sound;
    Outputs out;
};

TEST_F(MeasureContract, RigsAreOpenedIntoEmptyHandlesAlone) {
    const auto size = static_cast<std::int64_t>(sound.block.size());
    ZelmMeasureRig* rig = nullptr;
    expectParam("block", zelmMeasureRigOpen(nullptr, size, &rig));
    expectParam("size", zelmMeasureRigOpen(sound.block.data(), -1, &rig));
    expectParam("calib", zelmMeasureRigOfCalib(nullptr, &rig));
    EXPECT_EQ(rig, nullptr);
    expectParam("handle", zelmMeasureRigOpen(sound.block.data(), size, nullptr));
    expectParam("handle", zelmMeasureRigOfCalib(zelmMeasureRigCalib(sound.rig.get()), nullptr));
    ZelmMeasureRig* live = sound.rig.get();
    expectParam("live", zelmMeasureRigOpen(sound.block.data(), size, &live));
    expectParam("live", zelmMeasureRigOfCalib(zelmMeasureRigCalib(sound.rig.get()), &live));
    EXPECT_EQ(live, sound.rig.get());
}

TEST_F(MeasureContract, RigsAnswerSoundQuestionsAlone) {
    ZelmMeasureRig* const rig = sound.rig.get();
    std::int32_t* const i = out.integers;
    double* const d = out.numbers;
    ZelmCameraExtrinsics pose{};
    const ZelmCameraExtrinsics before = pose;
    expectParam("views", zelmMeasureRigViews(nullptr, i));
    expectParam("views", zelmMeasureRigViews(rig, nullptr));
    for (const std::int32_t side : {0, static_cast<int>('l'), static_cast<int>('r'), 256 + 'L', -1}) {
        auto camera = emptyRecord<ZelmMeasureCamera>();
        expectParam("camera", zelmMeasureRigCamera(rig, side, &camera));
        EXPECT_EQ(camera.width, 0);
        expectParam("pose", zelmMeasureRigPose(rig, side, 0, &pose));
        expectParam("tilt", zelmMeasureRigTilt(rig, side, d));
        expectParam("dots", zelmMeasureRigDots(rig, &sound.pattern, side, 0, nullptr, out.longs, nullptr));
    }
    for (const std::int32_t view : {-1, 3, std::numeric_limits<std::int32_t>::max()}) {
        expectParam("pose", zelmMeasureRigPose(rig, 'L', view, &pose));
        expectParam("dots", zelmMeasureRigDots(rig, &sound.pattern, 'L', view, nullptr, out.longs, nullptr));
        expectParam("epipolar", zelmMeasureRigEpipolar(rig, &sound.pattern, view, 1, d, out.longs));
    }
    EXPECT_EQ(std::memcmp(&pose, &before, sizeof pose), 0);
    expectParam("pose", zelmMeasureRigPose(nullptr, 'L', 0, &pose));
    expectParam("pose", zelmMeasureRigPose(rig, 'L', 0, nullptr));
    expectParam("fundamental", zelmMeasureRigFundamental(nullptr, d));
    expectParam("fundamental", zelmMeasureRigFundamental(rig, nullptr));
    expectParam("tilt", zelmMeasureRigTilt(nullptr, 'L', d));
    expectParam("tilt", zelmMeasureRigTilt(rig, 'L', nullptr));
    expectParam("centre", zelmMeasureRigCentre(nullptr, d, d, i));
    expectParam("centre", zelmMeasureRigCentre(rig, nullptr, d, i));
    expectParam("centre", zelmMeasureRigCentre(rig, d, nullptr, i));
    expectRecordRefused<ZelmMeasureCamera>("camera", [&](auto* r) { return zelmMeasureRigCamera(rig, 'L', r); });
    expectRecordRefused<ZelmMeasureRelativePose>("relative",
                                                 [&](auto* r) { return zelmMeasureRigRelativePose(rig, r); });
    auto camera = emptyRecord<ZelmMeasureCamera>();
    auto relative = emptyRecord<ZelmMeasureRelativePose>();
    expectParam("camera", zelmMeasureRigCamera(nullptr, 'L', &camera));
    expectParam("relative", zelmMeasureRigRelativePose(nullptr, &relative));
}

TEST_F(MeasureContract, FiguresAndDotsOfRigs) {
    ZelmMeasureRig* const rig = sound.rig.get();
    const double distances[] = {1.0};
    auto figures = emptyRecord<ZelmMeasureFigures>();
    expectParam("figures", zelmMeasureFigures(-1, distances, &figures));
    expectParam("figures", zelmMeasureFigures(1, nullptr, &figures));
    EXPECT_EQ(figures.count, 0);
    expectRecordRefused<ZelmMeasureFigures>("figures", [&](auto* r) { return zelmMeasureFigures(1, distances, r); });
    auto dots = emptyRecord<ZelmMeasureDots>();
    expectParam("dots", zelmMeasureRigDots(nullptr, &sound.pattern, 'L', 0, &dots, out.longs, out.longs + 1));
    expectParam("dots", zelmMeasureRigDots(rig, nullptr, 'L', 0, &dots, out.longs, out.longs + 1));
    expectParam("dots", zelmMeasureRigDots(rig, &sound.pattern, 'L', 0, &dots, nullptr, out.longs + 1));
    dots.capacity = -1;
    expectParam("dots", zelmMeasureRigDots(rig, &sound.pattern, 'L', 0, &dots, out.longs, out.longs + 1));
    dots.size = 0;
    expectParam("dots", zelmMeasureRigDots(rig, &sound.pattern, 'L', 0, &dots, out.longs, out.longs + 1));
    expectParam("epipolar", zelmMeasureRigEpipolar(nullptr, &sound.pattern, 0, 1, out.numbers, out.longs));
    expectParam("epipolar", zelmMeasureRigEpipolar(rig, nullptr, 0, 1, out.numbers, out.longs));
    expectParam("epipolar", zelmMeasureRigEpipolar(rig, &sound.pattern, 0, -1, out.numbers, out.longs));
    expectParam("epipolar", zelmMeasureRigEpipolar(rig, &sound.pattern, 0, 1, out.numbers, nullptr));
}

TEST_F(MeasureContract, PlatesThatCannotBeMeant) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    const std::function<void(Zelm2ViewPatternDesc&)> changes[] = {
        [](auto& p) { p.d4 = 0.0; },   [](auto& p) { p.d5 = -10.0; },   [=](auto& p) { p.d4 = none; },
        [=](auto& p) { p.d5 = none; }, [](auto& p) { p.polarity = 2; }, [](auto& p) { p.polarity = -1; }};
    for (const auto& change : changes) {
        Zelm2ViewPatternDesc plate = sound.pattern;
        change(plate);
        auto traits = emptyRecord<ZelmMeasurePlateTraits>();
        auto dots = emptyRecord<ZelmMeasureDots>();
        expectParam("dots", zelmMeasureRigDots(sound.rig.get(), &plate, 'L', 0, &dots, out.longs, nullptr));
        expectParam("epipolar", zelmMeasureRigEpipolar(sound.rig.get(), &plate, 0, 1, out.numbers, out.longs));
        expectParam("plate", zelmMeasurePlateDots(&sound.image, &plate, nullptr, &dots, out.longs, nullptr));
        expectParam("traits", zelmMeasurePlateTraits(&sound.image, &plate, &traits));
        EXPECT_EQ(traits.brightLevel, 0);
    }
    // What the reader refuses.
    for (const auto& change : {std::function<void(Zelm2ViewPatternDesc&)>([](auto& p) { p.markers = 0; }),
                               std::function<void(Zelm2ViewPatternDesc&)>([](auto& p) { p.d2 = 0.0; })}) {
        Zelm2ViewPatternDesc plate = sound.pattern;
        change(plate);
        expectParam("plate", zelmMeasurePlateDots(&sound.image, &plate, nullptr, nullptr, out.longs, nullptr));
    }
}

TEST_F(MeasureContract, ImagesThatCannotBeMeant) {
    const std::uint8_t* const p = sound.gray.data();
    const ZelmMeasureImage images[] = {{nullptr, 64, 48, 64}, {p, 0, 48, 64},  {p, 64, 0, 64},
                                       {p, 64, -48, 64},      {p, 64, 48, 63}, {p, 64, 48, -64}};
    std::vector<const ZelmMeasureImage*> wrong{nullptr};
    for (const ZelmMeasureImage& image : images) {
        wrong.push_back(&image);
    }
    for (const ZelmMeasureImage* image : wrong) {
        auto traits = emptyRecord<ZelmMeasurePlateTraits>();
        auto matches = emptyRecord<ZelmMeasureMatches>();
        matches.statuses = out.integers;
        expectParam("plate", zelmMeasurePlateDots(image, &sound.pattern, nullptr, nullptr, out.longs, nullptr));
        expectParam("traits", zelmMeasurePlateTraits(image, &sound.pattern, &traits));
        expectParam("centres", zelmMeasureDotCentres(image, 1, sound.pixels, 0, out.numbers, out.integers));
        expectParam("noise", zelmMeasureNoise(image, out.numbers));
        auto refined = emptyRecord<ZelmMeasureRefinedDots>();
        refined.statuses = out.integers;
        expectParam("refine", zelmMeasureRefineDots(image, 1, sound.shape, nullptr, 0, &refined));
        for (const bool isLeft : {true, false}) {
            const ZelmMeasureImage* const left = isLeft ? image : &sound.image;
            const ZelmMeasureImage* const right = isLeft ? &sound.image : image;
            expectParam("match",
                        zelmMeasureMatch(sound.rig.get(), left, right, &sound.options, 1, sound.pixels, &matches));
            expectParam("dense", zelmMeasureMatchDense(sound.rig.get(), left, right, &sound.options, &matches));
        }
    }
    expectParam("noise", zelmMeasureNoise(&sound.image, nullptr));
}

TEST_F(MeasureContract, DotsOfImages) {
    auto dots = emptyRecord<ZelmMeasureDots>();
    auto traits = emptyRecord<ZelmMeasurePlateTraits>();
    expectParam("plate", zelmMeasurePlateDots(&sound.image, nullptr, nullptr, &dots, out.longs, nullptr));
    expectParam("plate", zelmMeasurePlateDots(&sound.image, &sound.pattern, nullptr, &dots, nullptr, nullptr));
    expectParam("traits", zelmMeasurePlateTraits(&sound.image, nullptr, &traits));
    expectRecordRefused<ZelmMeasurePlateTraits>(
        "traits", [&](auto* r) { return zelmMeasurePlateTraits(&sound.image, &sound.pattern, r); });
    double* const d = out.numbers;
    std::int32_t* const i = out.integers;
    expectParam("count", zelmMeasureDotCentres(&sound.image, -1, sound.pixels, 0, d, i));
    expectParam("seeds", zelmMeasureDotCentres(&sound.image, 1, nullptr, 0, d, i));
    expectParam("centres", zelmMeasureDotCentres(&sound.image, 1, sound.pixels, 0, nullptr, i));
    expectParam("statuses", zelmMeasureDotCentres(&sound.image, 1, sound.pixels, 0, d, nullptr));
    expectParam("polarity", zelmMeasureDotCentres(&sound.image, 1, sound.pixels, 2, d, i));
    expectParam("polarity", zelmMeasureDotCentres(&sound.image, 1, sound.pixels, -1, d, i));
}

TEST_F(MeasureContract, DotsToRefine) {
    auto refined = emptyRecord<ZelmMeasureRefinedDots>();
    refined.statuses = refined.flags = out.integers;
    refined.centres = refined.covariances = refined.levels = out.numbers;
    const double* const s = sound.shape;
    expectParam("count", zelmMeasureRefineDots(&sound.image, -1, s, nullptr, 0, &refined));
    expectParam("shapes", zelmMeasureRefineDots(&sound.image, 1, nullptr, nullptr, 0, &refined));
    expectParam("polarity", zelmMeasureRefineDots(&sound.image, 1, s, nullptr, 2, &refined));
    expectParam("polarity", zelmMeasureRefineDots(&sound.image, 1, s, nullptr, -1, &refined));
    expectRecordRefused<ZelmMeasureRefinedDots>(
        "dots", [&](auto* r) { return zelmMeasureRefineDots(&sound.image, 1, s, nullptr, 0, r); });
}

TEST_F(MeasureContract, RoundTargets) {
    ZelmMeasureRig* const rig = sound.rig.get();
    auto targets = emptyRecord<ZelmMeasureTargets>();
    targets.statuses = out.integers;
    targets.centres = out.numbers;
    const double* const p = sound.pixels;
    const ZelmMeasureImage* const image = &sound.image;
    expectParam("rig", zelmMeasureCircles(nullptr, image, image, 1, p, p, 0, &targets));
    expectParam("left", zelmMeasureCircles(rig, nullptr, image, 1, p, p, 0, &targets));
    expectParam("right", zelmMeasureCircles(rig, image, nullptr, 1, p, p, 0, &targets));
    ZelmMeasureImage other = sound.image;
    other.width = 63;
    expectParam("left size", zelmMeasureCircles(rig, &other, image, 1, p, p, 0, &targets));
    expectParam("right size", zelmMeasureCircles(rig, image, &other, 1, p, p, 0, &targets));
    expectParam("count", zelmMeasureCircles(rig, image, image, -1, p, p, 0, &targets));
    expectParam("left seeds", zelmMeasureCircles(rig, image, image, 1, nullptr, p, 0, &targets));
    expectParam("right seeds", zelmMeasureCircles(rig, image, image, 1, p, nullptr, 0, &targets));
    expectParam("polarity", zelmMeasureCircles(rig, image, image, 1, p, p, 2, &targets));
    for (const double wrong : {-1.0, std::numeric_limits<double>::quiet_NaN()}) {
        auto limited = targets;
        limited.maxError = wrong;
        expectParam("maxError", zelmMeasureCircles(rig, image, image, 1, p, p, 0, &limited));
        limited.maxError = 0.0;
        limited.minShare = wrong;
        expectParam("minShare", zelmMeasureCircles(rig, image, image, 1, p, p, 0, &limited));
    }
    expectRecordRefused<ZelmMeasureTargets>(
        "targets", [&](auto* r) { return zelmMeasureCircles(rig, image, image, 1, p, p, 0, r); });
}

TEST_F(MeasureContract, PointsOfSpace) {
    ZelmMeasureRig* const rig = sound.rig.get();
    auto points = emptyRecord<ZelmMeasurePoints>();
    points.statuses = out.integers;
    points.positions = out.numbers;
    const double* const p = sound.pixels;
    expectParam("rig", zelmMeasureTriangulate(nullptr, 1, p, p, &points));
    expectParam("count", zelmMeasureTriangulate(rig, -1, p, p, &points));
    expectParam("left", zelmMeasureTriangulate(rig, 1, nullptr, p, &points));
    expectParam("right", zelmMeasureTriangulate(rig, 1, p, nullptr, &points));
    expectRecordRefused<ZelmMeasurePoints>("points", [&](auto* r) { return zelmMeasureTriangulate(rig, 1, p, p, r); });
    for (const double wrong : {-1.0, std::numeric_limits<double>::quiet_NaN()}) {
        points.maxError = wrong;
        expectParam("maxError", zelmMeasureTriangulate(rig, 1, p, p, &points));
    }
    points.maxError = 0.0;
    points.outside = 2;
    expectParam("outside", zelmMeasureTriangulate(rig, 1, p, p, &points));
    const std::uint16_t* const map = sound.map.data();
    double* const d = out.numbers;
    std::int32_t* const i = out.integers;
    expectParam("rig", zelmMeasureTrueDepths(nullptr, map, 1.0, 1, p, d, i));
    expectParam("map", zelmMeasureTrueDepths(rig, nullptr, 1.0, 1, p, d, i));
    expectParam("unit", zelmMeasureTrueDepths(rig, map, 0.0, 1, p, d, i));
    expectParam("unit", zelmMeasureTrueDepths(rig, map, -1.0, 1, p, d, i));
    expectParam("unit", zelmMeasureTrueDepths(rig, map, std::numeric_limits<double>::quiet_NaN(), 1, p, d, i));
    expectParam("unit", zelmMeasureTrueDepths(rig, map, std::numeric_limits<double>::infinity(), 1, p, d, i));
    expectParam("count", zelmMeasureTrueDepths(rig, map, 1.0, -1, p, d, i));
    expectParam("pixels", zelmMeasureTrueDepths(rig, map, 1.0, 1, nullptr, d, i));
    expectParam("depths", zelmMeasureTrueDepths(rig, map, 1.0, 1, p, nullptr, i));
}

TEST_F(MeasureContract, Correspondences) {
    ZelmMeasureRig* const rig = sound.rig.get();
    const ZelmMeasureImage* const image = &sound.image;
    const double* const p = sound.pixels;
    auto matches = emptyRecord<ZelmMeasureMatches>();
    matches.statuses = out.integers;
    matches.depths = out.numbers;
    std::int32_t* const any = out.integers + 7;
    expectRecordRefused<ZelmMeasureMatchOptions>("defaults", [&](auto* r) { return zelmMeasureMatchDefaults(rig, r); });
    expectParam("rig", zelmMeasureMatch(nullptr, image, image, &sound.options, 1, p, &matches));
    expectParam("rig", zelmMeasureMatchDense(nullptr, image, image, &sound.options, &matches));
    expectParam("rig", zelmMeasureOverlap(nullptr, &sound.options, 1, p, any));
    expectRecordRefused<ZelmMeasureMatchOptions>(
        "options", [&](auto* r) { return zelmMeasureMatch(rig, image, image, r, 1, p, &matches); });
    expectRecordRefused<ZelmMeasureMatchOptions>(
        "options", [&](auto* r) { return zelmMeasureMatchDense(rig, image, image, r, &matches); });
    expectRecordRefused<ZelmMeasureMatchOptions>("options",
                                                 [&](auto* r) { return zelmMeasureOverlap(rig, r, 1, p, any); });
    expectRecordRefused<ZelmMeasureMatches>(
        "matches", [&](auto* r) { return zelmMeasureMatch(rig, image, image, &sound.options, 1, p, r); });
    expectRecordRefused<ZelmMeasureMatches>(
        "matches", [&](auto* r) { return zelmMeasureMatchDense(rig, image, image, &sound.options, r); });
    expectParam("count", zelmMeasureMatch(rig, image, image, &sound.options, -1, p, &matches));
    expectParam("pixels", zelmMeasureMatch(rig, image, image, &sound.options, 1, nullptr, &matches));
    expectParam("count", zelmMeasureOverlap(rig, &sound.options, -1, p, any));
    expectParam("pixels", zelmMeasureOverlap(rig, &sound.options, 1, nullptr, any));
    expectParam("any", zelmMeasureOverlap(rig, &sound.options, 1, p, nullptr));
}

TEST_F(MeasureContract, AdjustmentsAreOpenedOfSoundArgumentsAlone) {
    const AdjustScene scene = makeAdjustScene({});
    Handle core;
    calibrateScene(scene, scene.views, core);
    const OpenedRig dotted(core.get());
    ZelmMeasureRig* const rig = dotted.get();
    const Zelm2ViewPatternDesc& plate = scene.plate;
    ZelmMeasureAdjustment* none = nullptr;
    expectParam("rig", zelmMeasureAdjustOpen(nullptr, &plate, nullptr, &none));
    expectParam("plate", zelmMeasureAdjustOpen(rig, nullptr, nullptr, &none));
    expectParam("handle", zelmMeasureAdjustOpen(rig, &plate, nullptr, nullptr));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::function<void(ZelmMeasureAdjustOptions&)> wrongOptions[] = {
        [](auto& o) { o.size = 0; },          [](auto& o) { o.holdSkew = 2; },
        [](auto& o) { o.squarePixels = -1; }, [](auto& o) { o.estimateDiameters = 7; },
        [](auto& o) { o.estimateBow = 2; },   [](auto& o) { o.noise = -0.1; },
        [=](auto& o) { o.noise = nan; },      [](auto& o) { o.noise = 1e-200; },
        [](auto& o) { o.noise = 1e200; },     [](auto& o) { o.placeCount = -1; },
        [](auto& o) { o.placeCount = 1; }};
    for (const auto& change : wrongOptions) {
        auto options = emptyRecord<ZelmMeasureAdjustOptions>();
        change(options);
        expectParam("options", zelmMeasureAdjustOpen(rig, &plate, &options, &none));
    }
    const std::int32_t grid[] = {1, 1};
    const double places[] = {10.0, nan, 0.0};
    auto options = emptyRecord<ZelmMeasureAdjustOptions>();
    options.placeCount = 1;
    options.placeGrid = grid;
    options.places = places;
    expectParam("places", zelmMeasureAdjustOpen(rig, &plate, &options, &none));
    const std::function<void(Zelm2ViewPatternDesc&)> wrongPlates[] = {
        [](auto& p) { p.d4 = 0.0; },  [=](auto& p) { p.d0 = nan; },  [](auto& p) { p.polarity = 2; },
        [](auto& p) { p.d4 = 1e-6; }, [](auto& p) { p.d6 = 1e300; }, [](auto& p) { p.d7 = 1e300; }};
    for (const auto& change : wrongPlates) {
        Zelm2ViewPatternDesc wrong = plate;
        change(wrong);
        expectParam("plate", zelmMeasureAdjustOpen(rig, &wrong, nullptr, &none));
    }
    EXPECT_EQ(none, nullptr);
    Zelm2ViewPatternDesc wide = plate;
    wide.d2 = wide.d5;
    EXPECT_EQ(zelmMeasureAdjustOpen(rig, &wide, nullptr, &none), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(std::string(zelmMeasureAdjustError(none)).find("wider than their pitch"), std::string::npos);
    zelmMeasureAdjustClose(&none);
    OpenedAdjustment live;
    ASSERT_EQ(live.open(core.get(), plate), ZELM_OK);
    ZelmMeasureAdjustment* const before = live.handle;
    expectParam("live", zelmMeasureAdjustOpen(rig, &plate, nullptr, &live.handle));
    EXPECT_EQ(live.handle, before);
}

TEST_F(MeasureContract, AdjustmentsAnswerSoundQuestionsAlone) {
    const AdjustScene scene = makeAdjustScene({});
    Handle core;
    calibrateScene(scene, scene.views, core);
    OpenedAdjustment opened;
    ASSERT_EQ(opened.open(core.get(), scene.plate), ZELM_OK);
    ZelmMeasureAdjustment* const a = opened.handle;
    std::int32_t* const i = out.integers;
    std::int64_t* const n = out.longs;
    auto summary = emptyRecord<ZelmMeasureAdjustSummary>();
    auto dots = emptyRecord<ZelmMeasureAdjustedDots>();
    ZelmMeasureRig* rig = nullptr;
    const GrayPixels gray(static_cast<std::size_t>(kSceneWidth) * kSceneHeight, 100);
    const ZelmMeasureImage image{gray.data(), kSceneWidth, kSceneHeight, kSceneWidth};
    // Before it is solved.
    const auto expectData = [&](const char* what, std::int32_t status) {
        EXPECT_EQ(status, ZELM_MEASURE_ERR_DATA) << what;
        EXPECT_NE(opened.error(), "") << what;
        EXPECT_TRUE(out.areUntouched()) << what;
    };
    expectData("summary", zelmMeasureAdjustSummary(a, &summary));
    expectData("dots", zelmMeasureAdjustDots(a, 'L', 0, nullptr, n));
    expectData("rig", zelmMeasureAdjustRig(a, &rig));
    expectData("refine", zelmMeasureAdjustRefine(a, 'L', 0, &image, nullptr));
    expectData("view", zelmMeasureAdjustAddView(a, &image, &image, i, i + 1));
    // Wrong arguments are told first.
    expectParam("summary", zelmMeasureAdjustSummary(a, nullptr));
    dots.capacity = -1;
    expectParam("capacity", zelmMeasureAdjustDots(a, 'L', 0, &dots, n));
    ASSERT_EQ(zelmMeasureAdjustSolve(a), ZELM_OK) << opened.error();
    const ZelmMeasureImage other{gray.data(), 640, 480, 640};
    expectData("size", zelmMeasureAdjustRefine(a, 'L', 0, &other, nullptr));
    expectData("size", zelmMeasureAdjustAddView(a, &image, &other, i, i + 1));

    expectParam("handle", zelmMeasureAdjustSolve(nullptr));
    expectParam("handle", zelmMeasureAdjustSummary(nullptr, &summary));
    expectParam("handle", zelmMeasureAdjustDots(nullptr, 'L', 0, nullptr, n));
    expectParam("handle", zelmMeasureAdjustRig(nullptr, &rig));
    expectParam("handle", zelmMeasureAdjustRefine(nullptr, 'L', 0, &image, nullptr));
    expectParam("handle", zelmMeasureAdjustAddView(nullptr, &image, &image, i, i + 1));
    for (const std::int32_t side : {0, static_cast<int>('l'), 256 + 'L'}) {
        expectParam("side", zelmMeasureAdjustDots(a, side, 0, nullptr, n));
        expectParam("side", zelmMeasureAdjustRefine(a, side, 0, &image, nullptr));
    }
    for (const std::int32_t view : {-1, 12, std::numeric_limits<std::int32_t>::max()}) {
        expectParam("view", zelmMeasureAdjustDots(a, 'L', view, nullptr, n));
        expectParam("view", zelmMeasureAdjustRefine(a, 'L', view, &image, nullptr));
        EXPECT_EQ(zelmMeasureAdjustView(a, view), nullptr);
    }
    EXPECT_STREQ(zelmMeasureAdjustView(a, 0), "");
    EXPECT_EQ(zelmMeasureAdjustView(nullptr, 0), nullptr);
    EXPECT_STREQ(zelmMeasureAdjustError(nullptr), "");
    expectParam("count", zelmMeasureAdjustDots(a, 'L', 0, nullptr, nullptr));
    expectParam("capacity", zelmMeasureAdjustDots(a, 'L', 0, &dots, n));
    dots.size = 0;
    expectParam("size", zelmMeasureAdjustDots(a, 'L', 0, &dots, n));
    expectRecordRefused<ZelmMeasureAdjustSummary>("summary", [&](auto* r) { return zelmMeasureAdjustSummary(a, r); });
    expectParam("image", zelmMeasureAdjustRefine(a, 'L', 0, nullptr, nullptr));
    auto refined = emptyRecord<ZelmMeasureRefined>();
    refined.size = 0;
    expectParam("refined", zelmMeasureAdjustRefine(a, 'L', 0, &image, &refined));
    expectParam("image", zelmMeasureAdjustAddView(a, nullptr, &image, i, i + 1));
    expectParam("image", zelmMeasureAdjustAddView(a, &image, nullptr, i, i + 1));
    expectParam("dots", zelmMeasureAdjustAddView(a, &image, &image, nullptr, i + 1));
    expectParam("dots", zelmMeasureAdjustAddView(a, &image, &image, i, nullptr));
    expectParam("rig", zelmMeasureAdjustRig(a, nullptr));
    ZelmMeasureRig* live = sound.rig.get();
    expectParam("live", zelmMeasureAdjustRig(a, &live));
    zelmMeasureAdjustClose(nullptr);
    // Dots that no solution knows have no residuals yet, and are no rig's.
    ASSERT_EQ(zelmMeasureAdjustRefine(a, 'L', 0, &image, nullptr), ZELM_OK) << opened.error();
    expectData("dots", zelmMeasureAdjustDots(a, 'L', 0, nullptr, n));
    expectData("rig", zelmMeasureAdjustRig(a, &rig));
    EXPECT_EQ(rig, nullptr);
}

// A covariance that a rig takes.
ZelmMeasureCovariance unitCovariance() {
    auto covariance = emptyRecord<ZelmMeasureCovariance>();
    covariance.noise = 0.05;
    for (std::size_t i = 0; i < ZELM_MEASURE_PARAMETERS; ++i) {
        covariance.matrix[27 * i] = 1e-6;
    }
    return covariance;
}

TEST_F(MeasureContract, CovariancesOfRigs) {
    ZelmMeasureRig* const rig = sound.rig.get();
    ZelmMeasureCovariance given = unitCovariance();
    expectParam("rig", zelmMeasureRigSetCovariance(nullptr, &given));
    for (const std::int32_t size : {0, 3, -8, static_cast<std::int32_t>(sizeof given) - 8}) {
        given.size = size;
        expectParam("size", zelmMeasureRigSetCovariance(rig, &given));
    }
    given = unitCovariance();
    ASSERT_EQ(zelmMeasureRigSetCovariance(rig, &given), ZELM_OK);
    auto taken = emptyRecord<ZelmMeasureCovariance>();
    expectParam("rig", zelmMeasureRigCovariance(nullptr, &taken));
    expectRecordRefused<ZelmMeasureCovariance>("covariance", [&](auto* r) { return zelmMeasureRigCovariance(rig, r); });
    expectParam("rig", zelmMeasureCovarianceSize(nullptr, out.longs));
    expectParam("size", zelmMeasureCovarianceSize(rig, nullptr));
    std::vector<unsigned char> bytes(2856, 7);
    expectParam("rig", zelmMeasureCovarianceSave(nullptr, 2856, bytes.data()));
    expectParam("bytes", zelmMeasureCovarianceSave(rig, 2856, nullptr));
    for (const std::int64_t capacity : {std::int64_t{2855}, std::int64_t{0}, std::int64_t{-1}}) {
        expectParam("capacity", zelmMeasureCovarianceSave(rig, capacity, bytes.data()));
    }
    EXPECT_EQ(bytes, std::vector<unsigned char>(2856, 7));
    expectParam("rig", zelmMeasureCovarianceLoad(nullptr, bytes.data(), 2856));
    expectParam("bytes", zelmMeasureCovarianceLoad(rig, nullptr, 2856));
    expectParam("size", zelmMeasureCovarianceLoad(rig, bytes.data(), -1));
}

TEST_F(MeasureContract, NoiseThatCannotBeMeant) {
    ZelmMeasureRig* const rig = sound.rig.get();
    const ZelmMeasureCovariance covariance = unitCovariance();
    ASSERT_EQ(zelmMeasureRigSetCovariance(rig, &covariance), ZELM_OK);
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double wrong[][3] = {{-1.0, 0.0, 1.0}, {1.0, 1.1, 1.0}, {1.0, none, 1.0}, {none, 0.0, 1.0}, {1.0, 0.0, none}};
    const double wrongPoints[][6] = {{-1.0, 0.0, 0.0, 1.0, 0.0, 1.0}, {1.0, 1.1, 0.0, 1.0, 0.0, 1.0},
                                     {1.0, 0.0, 1.1, 1.0, 0.0, 1.0},  {1.0, 0.0, 0.0, 1.0, 1.1, 1.0},
                                     {1.0, 0.9, 0.9, 1.0, -0.9, 1.0}, {1.0, none, 0.0, 1.0, 0.0, 1.0},
                                     {1.0, 0.0, 0.0, 1.0, 0.0, none}};
    std::vector<ZelmMeasurePixelNoise> noises(4 + 2 * std::size(wrong) + std::size(wrongPoints),
                                              emptyRecord<ZelmMeasurePixelNoise>());
    for (std::size_t i = 0; i < std::size(wrongPoints); ++i) {
        noises[4 + 2 * std::size(wrong) + i].points = wrongPoints[i];
    }
    noises[0].sigma = -0.1;
    noises[1].sigma = none;
    noises[2].freedom = 0.5;
    noises[3].freedom = none;
    for (std::size_t i = 0; i < std::size(wrong); ++i) {
        noises[4 + 2 * i].left = wrong[i];
        noises[5 + 2 * i].right = wrong[i];
    }
    const double* const p = sound.pixels;
    const std::int64_t ends[] = {0, 0};
    auto points = emptyRecord<ZelmMeasurePointCovariances>();
    points.statuses = out.integers;
    points.image = out.numbers;
    auto lengths = emptyRecord<ZelmMeasureLengths>();
    lengths.statuses = out.integers;
    lengths.lengths = out.numbers;
    for (const ZelmMeasurePixelNoise& noise : noises) {
        expectParam("points", zelmMeasurePointCovariance(rig, 1, p, p, &noise, &points));
        expectParam("lengths", zelmMeasureLengths(rig, 1, p, p, &noise, 1, ends, &lengths));
    }
    ZelmMeasurePixelNoise unset{};
    expectParam("points", zelmMeasurePointCovariance(rig, 1, p, p, &unset, &points));
    expectParam("lengths", zelmMeasureLengths(rig, 1, p, p, &unset, 1, ends, &lengths));
}

TEST_F(MeasureContract, UncertaintyOfPointsAndLengths) {
    ZelmMeasureRig* const rig = sound.rig.get();
    const ZelmMeasureCovariance covariance = unitCovariance();
    ASSERT_EQ(zelmMeasureRigSetCovariance(rig, &covariance), ZELM_OK);
    const double* const p = sound.pixels;
    const std::int64_t ends[] = {0, 1};
    const std::int64_t beyond[] = {0, 2};
    auto points = emptyRecord<ZelmMeasurePointCovariances>();
    points.statuses = out.integers;
    points.image = out.numbers;
    auto lengths = emptyRecord<ZelmMeasureLengths>();
    lengths.statuses = out.integers;
    lengths.lengths = out.numbers;
    expectParam("rig", zelmMeasurePointCovariance(nullptr, 1, p, p, nullptr, &points));
    expectParam("count", zelmMeasurePointCovariance(rig, -1, p, p, nullptr, &points));
    expectParam("left", zelmMeasurePointCovariance(rig, 1, nullptr, p, nullptr, &points));
    expectParam("right", zelmMeasurePointCovariance(rig, 1, p, nullptr, nullptr, &points));
    expectRecordRefused<ZelmMeasurePointCovariances>(
        "points", [&](auto* r) { return zelmMeasurePointCovariance(rig, 1, p, p, nullptr, r); });
    expectParam("rig", zelmMeasureLengths(nullptr, 2, p, p, nullptr, 1, ends, &lengths));
    expectParam("count", zelmMeasureLengths(rig, -1, p, p, nullptr, 1, ends, &lengths));
    expectParam("left", zelmMeasureLengths(rig, 2, nullptr, p, nullptr, 1, ends, &lengths));
    expectParam("right", zelmMeasureLengths(rig, 2, p, nullptr, nullptr, 1, ends, &lengths));
    expectParam("lengths", zelmMeasureLengths(rig, 2, p, p, nullptr, -1, ends, &lengths));
    expectParam("ends", zelmMeasureLengths(rig, 2, p, p, nullptr, 1, nullptr, &lengths));
    expectParam("ends", zelmMeasureLengths(rig, 2, p, p, nullptr, 1, beyond, &lengths));
    expectRecordRefused<ZelmMeasureLengths>(
        "lengths", [&](auto* r) { return zelmMeasureLengths(rig, 2, p, p, nullptr, 1, ends, r); });
}

TEST_F(MeasureContract, PlatesInSpace) {
    ZelmMeasureRig* const rig = sound.rig.get();
    const std::int32_t grid[] = {0, 0, 1, 0};
    const double* const p = sound.pixels;
    auto points = emptyRecord<ZelmMeasurePlatePoints>();
    points.statuses = out.integers;
    points.positions = out.numbers;
    auto fit = emptyRecord<ZelmMeasurePlateFit>();
    const auto call = [&](ZelmMeasureRig* r, const Zelm2ViewPatternDesc* plate, std::int64_t n, const std::int32_t* g,
                          const double* left, const double* right) {
        return zelmMeasurePlatePoints(r, plate, n, g, left, right, &points, &fit);
    };
    expectParam("rig", call(nullptr, &sound.pattern, 2, grid, p, p));
    expectParam("plate", call(rig, nullptr, 2, grid, p, p));
    expectParam("count", call(rig, &sound.pattern, -1, grid, p, p));
    expectParam("grid", call(rig, &sound.pattern, 2, nullptr, p, p));
    expectParam("left", call(rig, &sound.pattern, 2, grid, nullptr, p));
    expectParam("right", call(rig, &sound.pattern, 2, grid, p, nullptr));
    const double none = std::numeric_limits<double>::quiet_NaN();
    for (const double wrong : {-1.0, none, std::numeric_limits<double>::infinity()}) {
        for (const auto field : {&Zelm2ViewPatternDesc::d2, &Zelm2ViewPatternDesc::d3, &Zelm2ViewPatternDesc::d4,
                                 &Zelm2ViewPatternDesc::d5, &Zelm2ViewPatternDesc::d6, &Zelm2ViewPatternDesc::d7}) {
            Zelm2ViewPatternDesc plate = sound.pattern;
            plate.*field = wrong;
            expectParam("plate", call(rig, &plate, 2, grid, p, p));
        }
    }
    EXPECT_EQ(fit.count, 0);
    expectRecordRefused<ZelmMeasurePlateFit>(
        "fit", [&](auto* r) { return zelmMeasurePlatePoints(rig, &sound.pattern, 2, grid, p, p, &points, r); });
    points.size = 3;
    expectParam("points", call(rig, &sound.pattern, 2, grid, p, p));
    double* const d = out.numbers;
    const ZelmMeasureImage* const image = &sound.image;
    const auto refine = zelmMeasureRefinePlate;
    std::int32_t* const s = out.integers;
    expectParam("rig", refine(nullptr, &sound.pattern, image, image, 2, grid, d, d, s));
    expectParam("plate", refine(rig, nullptr, image, image, 2, grid, d, d, s));
    expectParam("left image", refine(rig, &sound.pattern, nullptr, image, 2, grid, d, d, s));
    expectParam("right image", refine(rig, &sound.pattern, image, nullptr, 2, grid, d, d, s));
    expectParam("count", refine(rig, &sound.pattern, image, image, -1, grid, d, d, s));
    expectParam("grid", refine(rig, &sound.pattern, image, image, 2, nullptr, d, d, s));
    expectParam("left", refine(rig, &sound.pattern, image, image, 2, grid, nullptr, d, s));
    expectParam("right", refine(rig, &sound.pattern, image, image, 2, grid, d, nullptr, s));
    expectParam("statuses", refine(rig, &sound.pattern, image, image, 2, grid, d, d, nullptr));
    std::int64_t* const l = out.longs;
    expectParam("plate", zelmMeasurePlateLengths(nullptr, 2, grid, 1, l, d, l + 1));
    expectParam("count", zelmMeasurePlateLengths(&sound.pattern, -1, grid, 1, l, d, l + 1));
    expectParam("grid", zelmMeasurePlateLengths(&sound.pattern, 2, nullptr, 1, l, d, l + 1));
    expectParam("capacity", zelmMeasurePlateLengths(&sound.pattern, 2, grid, -1, l, d, l + 1));
    expectParam("chosen", zelmMeasurePlateLengths(&sound.pattern, 2, grid, 1, l, d, nullptr));
}

TEST_F(MeasureContract, LengthsAndDrift) {
    ZelmMeasureRig* const rig = sound.rig.get();
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double positions[] = {0.0, 0.0, 0.0, 1.0, 0.0, 0.0, none, 0.0, 0.0};
    const std::int64_t ends[] = {0, 1};
    const double nominal[] = {1.0};
    auto lengths = emptyRecord<ZelmMeasureLengthErrors>();
    lengths.measured = out.numbers;
    auto summary = emptyRecord<ZelmMeasureLengthSummary>();
    const auto call = [&](ZelmMeasureRig* r, std::int64_t points, const double* X, std::int64_t n,
                          const std::int64_t* e, const double* size) {
        return zelmMeasureLengthErrors(r, points, X, n, e, size, &lengths, &summary);
    };
    expectParam("rig", call(nullptr, 3, positions, 1, ends, nominal));
    expectParam("points", call(rig, -1, positions, 1, ends, nominal));
    expectParam("points", call(rig, 3, nullptr, 1, ends, nominal));
    expectParam("count", call(rig, 3, positions, 0, ends, nominal));
    expectParam("count", call(rig, 3, positions, -1, ends, nominal));
    expectParam("ends", call(rig, 3, positions, 1, nullptr, nominal));
    expectParam("nominal", call(rig, 3, positions, 1, ends, nullptr));
    for (const std::int64_t wrong :
         {std::int64_t{-1}, std::int64_t{3}, std::int64_t{2}, std::numeric_limits<std::int64_t>::max()}) {
        const std::int64_t outside[] = {0, wrong};
        expectParam("end", call(rig, 3, positions, 1, outside, nominal));
    }
    for (const double wrong : {0.0, -1.0, none, std::numeric_limits<double>::infinity()}) {
        expectParam("size", call(rig, 3, positions, 1, ends, &wrong));
    }
    EXPECT_EQ(summary.all.count, 0);
    expectRecordRefused<ZelmMeasureLengthSummary>(
        "summary", [&](auto* r) { return zelmMeasureLengthErrors(rig, 3, positions, 1, ends, nominal, &lengths, r); });
    lengths.size = 0;
    expectParam("lengths", call(rig, 3, positions, 1, ends, nominal));

    const double* const p = sound.pixels;
    auto drift = emptyRecord<ZelmMeasureDrift>();
    expectParam("rig", zelmMeasureDrift(nullptr, 2, p, p, nullptr, out.integers, &drift));
    expectParam("count", zelmMeasureDrift(rig, -1, p, p, nullptr, out.integers, &drift));
    expectParam("left", zelmMeasureDrift(rig, 2, nullptr, p, nullptr, out.integers, &drift));
    expectParam("right", zelmMeasureDrift(rig, 2, p, nullptr, nullptr, out.integers, &drift));
    expectRecordRefused<ZelmMeasureDrift>(
        "drift", [&](auto* r) { return zelmMeasureDrift(rig, 2, p, p, nullptr, out.integers, r); });
    for (const auto field : {&ZelmMeasureDriftOptions::noise, &ZelmMeasureDriftOptions::calibrationError,
                             &ZelmMeasureDriftOptions::level}) {
        for (const double wrong : {-1.0, none, std::numeric_limits<double>::infinity()}) {
            auto options = emptyRecord<ZelmMeasureDriftOptions>();
            options.*field = wrong;
            expectParam("options", zelmMeasureDrift(rig, 2, p, p, &options, out.integers, &drift));
        }
    }
    auto options = emptyRecord<ZelmMeasureDriftOptions>();
    options.size = -8;
    expectParam("options", zelmMeasureDrift(rig, 2, p, p, &options, out.integers, &drift));
    EXPECT_EQ(drift.used, 0);
}

TEST_F(MeasureContract, CountsThatNoMemoryHoldsAreOutOfMemory) {
    ZelmMeasureRig* const rig = sound.rig.get();
    auto points = emptyRecord<ZelmMeasurePoints>();
    points.statuses = out.integers;
    auto matches = emptyRecord<ZelmMeasureMatches>();
    matches.statuses = out.integers;
    const double* const p = sound.pixels;
    const ZelmMeasureImage* const image = &sound.image;
    auto figures = emptyRecord<ZelmMeasureFigures>();
    constexpr std::int64_t kMany = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(zelmMeasureTriangulate(rig, kMany, p, p, &points), ZELM_ERR_MEMORY);
    EXPECT_EQ(sound.rig.error(), "out of memory");
    auto targets = emptyRecord<ZelmMeasureTargets>();
    targets.centres = out.numbers;
    EXPECT_EQ(zelmMeasureCircles(rig, image, image, kMany, p, p, 0, &targets), ZELM_ERR_MEMORY);
    EXPECT_EQ(zelmMeasureDotCentres(image, kMany, p, 0, out.numbers, out.integers), ZELM_ERR_MEMORY);
    auto refined = emptyRecord<ZelmMeasureRefinedDots>();
    refined.statuses = out.integers;
    EXPECT_EQ(zelmMeasureRefineDots(image, kMany, sound.shape, nullptr, 0, &refined), ZELM_ERR_MEMORY);
    EXPECT_EQ(zelmMeasureMatch(rig, image, image, &sound.options, kMany, p, &matches), ZELM_ERR_MEMORY);
    EXPECT_EQ(zelmMeasureOverlap(rig, &sound.options, kMany, p, out.integers), ZELM_ERR_MEMORY);
    EXPECT_EQ(zelmMeasureFigures(kMany, p, &figures), ZELM_ERR_MEMORY);
    auto noise = emptyRecord<ZelmMeasurePixelNoise>();
    noise.sigma = 0.1;
    const std::int64_t ends[] = {0, 1};
    auto covariances = emptyRecord<ZelmMeasurePointCovariances>();
    covariances.image = out.numbers;
    auto lengths = emptyRecord<ZelmMeasureLengths>();
    lengths.lengths = out.numbers;
    EXPECT_EQ(zelmMeasurePointCovariance(rig, kMany, p, p, &noise, &covariances), ZELM_ERR_MEMORY);
    EXPECT_EQ(zelmMeasureLengths(rig, kMany, p, p, &noise, 1, ends, &lengths), ZELM_ERR_MEMORY);
    EXPECT_EQ(zelmMeasureLengths(rig, 2, p, p, &noise, kMany, ends, &lengths), ZELM_ERR_MEMORY);
    PlanSetup setup;
    setup.options.extent[2] = 0.0;  // fewer poses
    const OpenedPlan plan(setup);
    const ZelmCameraExtrinsics pose{};
    EXPECT_EQ(zelmMeasurePlanTake(plan.get(), kMany, &pose), ZELM_ERR_MEMORY);
    auto drift = emptyRecord<ZelmMeasureDrift>();
    EXPECT_EQ(zelmMeasureDrift(rig, kMany, p, p, nullptr, out.integers, &drift), ZELM_ERR_MEMORY);
    const std::int32_t grid[] = {0, 0};
    EXPECT_EQ(zelmMeasurePlateLengths(&sound.pattern, kMany, grid, 0, nullptr, nullptr, out.longs), ZELM_ERR_MEMORY);
    auto fit = emptyRecord<ZelmMeasurePlateFit>();
    EXPECT_EQ(zelmMeasurePlatePoints(rig, &sound.pattern, kMany, grid, p, p, nullptr, &fit), ZELM_ERR_MEMORY);
    auto summary = emptyRecord<ZelmMeasureLengthSummary>();
    EXPECT_EQ(zelmMeasureLengthErrors(rig, 1, p, kMany, ends, p, nullptr, &summary), ZELM_ERR_MEMORY);
    EXPECT_EQ(figures.count, 0);
    EXPECT_TRUE(out.areUntouched());
}

TEST_F(MeasureContract, PlansAreOpenedIntoEmptyHandlesAlone) {
    const PlanSetup p;
    ZelmMeasurePlan* plan = nullptr;
    expectParam("handle", zelmMeasurePlanOpen(&p.left, &p.right, &p.relative, &p.plate, &p.options, nullptr));
    expectParam("handle", zelmMeasurePlanOfRig(sound.rig.get(), &p.plate, &p.options, nullptr));
    expectParam("plate", zelmMeasurePlanOpen(&p.left, &p.right, &p.relative, nullptr, &p.options, &plan));
    expectParam("plate", zelmMeasurePlanOfRig(sound.rig.get(), nullptr, &p.options, &plan));
    expectParam("rig", zelmMeasurePlanOfRig(nullptr, &p.plate, &p.options, &plan));
    expectRecordRefused<ZelmMeasureCamera>(
        "left", [&](auto* r) { return zelmMeasurePlanOpen(r, &p.right, &p.relative, &p.plate, &p.options, &plan); });
    expectRecordRefused<ZelmMeasureCamera>(
        "right", [&](auto* r) { return zelmMeasurePlanOpen(&p.left, r, &p.relative, &p.plate, &p.options, &plan); });
    expectRecordRefused<ZelmMeasureRelativePose>(
        "relative", [&](auto* r) { return zelmMeasurePlanOpen(&p.left, &p.right, r, &p.plate, &p.options, &plan); });
    expectRecordRefused<ZelmMeasurePlanOptions>(
        "options", [&](auto* r) { return zelmMeasurePlanOpen(&p.left, &p.right, &p.relative, &p.plate, r, &plan); });
    expectRecordRefused<ZelmMeasurePlanOptions>(
        "options", [&](auto* r) { return zelmMeasurePlanOfRig(sound.rig.get(), &p.plate, r, &plan); });
    for (std::int32_t ZelmMeasurePlanOptions::*field :
         {&ZelmMeasurePlanOptions::criterion, &ZelmMeasurePlanOptions::holdSkew,
          &ZelmMeasurePlanOptions::squarePixels}) {
        PlanSetup wrong;
        wrong.options.*field = 2;
        expectParam("options", zelmMeasurePlanOpen(&p.left, &p.right, &p.relative, &p.plate, &wrong.options, &plan));
    }
    EXPECT_EQ(plan, nullptr);
}

TEST_F(MeasureContract, PlansAnswerSoundQuestionsAlone) {
    PlanSetup setup;
    setup.options.extent[2] = 0.0;  // fewer poses
    const OpenedPlan plan(setup);
    ZelmMeasurePlan* live = plan.get();
    expectParam("live",
                zelmMeasurePlanOpen(&setup.left, &setup.right, &setup.relative, &setup.plate, &setup.options, &live));
    EXPECT_EQ(live, plan.get());
    const ZelmCameraExtrinsics pose = plan.next().pose;
    auto view = emptyRecord<ZelmMeasurePlanView>();
    auto figures = emptyRecord<ZelmMeasurePlanFigures>();
    expectParam("take", zelmMeasurePlanTake(nullptr, 1, &pose));
    expectParam("take", zelmMeasurePlanTake(plan.get(), -1, &pose));
    expectParam("take", zelmMeasurePlanTake(plan.get(), 1, nullptr));
    expectParam("next", zelmMeasurePlanNext(nullptr, &view));
    expectParam("fewest", zelmMeasurePlanFewest(nullptr, 0.0, 3));
    for (const double tolerance : {-1.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
        expectParam("fewest", zelmMeasurePlanFewest(plan.get(), tolerance, 3));
    }
    for (const std::int32_t most : {-1, 0, 2, 1001}) {
        expectParam("fewest", zelmMeasurePlanFewest(plan.get(), 0.0, most));
    }
    expectParam("views", zelmMeasurePlanViews(nullptr, out.integers));
    expectParam("views", zelmMeasurePlanViews(plan.get(), nullptr));
    for (const std::int32_t index : {-1, 0, 1}) {
        expectParam("view", zelmMeasurePlanView(plan.get(), index, &view));
    }
    expectParam("figures", zelmMeasurePlanFigures(nullptr, &figures));
    EXPECT_EQ(view.dots[0], 0);
    EXPECT_STREQ(zelmMeasurePlanError(nullptr), "");
    zelmMeasurePlanClose(nullptr);
    ASSERT_EQ(zelmMeasurePlanFewest(plan.get(), 0.0, 5), ZELM_OK) << plan.error();
    expectRecordRefused<ZelmMeasurePlanView>("next", [&](auto* r) { return zelmMeasurePlanNext(plan.get(), r); });
    expectRecordRefused<ZelmMeasurePlanView>("view", [&](auto* r) { return zelmMeasurePlanView(plan.get(), 0, r); });
    expectRecordRefused<ZelmMeasurePlanFigures>("figures",
                                                [&](auto* r) { return zelmMeasurePlanFigures(plan.get(), r); });
}

TEST_F(MeasureContract, ChecksOfAdjustments) {
    const DottedPair pair(6);
    const OpenedRig rig(pair.handle.get());
    const Zelm2ViewPatternDesc pattern = describe(pair.plate);
    ZelmMeasureAdjustment* adjustment = nullptr;
    ASSERT_EQ(zelmMeasureAdjustOpen(rig.get(), &pattern, nullptr, &adjustment), ZELM_OK);
    std::vector<ZelmMeasureCheck> checks(8, emptyRecord<ZelmMeasureCheck>());
    EXPECT_EQ(zelmMeasureAdjustChecks(adjustment, checks.data(), 8, out.longs), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(std::string(zelmMeasureAdjustError(adjustment)).find("not solved"), std::string::npos);
    ASSERT_EQ(zelmMeasureAdjustSolve(adjustment), ZELM_OK);
    expectParam("adjustment", zelmMeasureAdjustChecks(nullptr, checks.data(), 8, out.longs));
    expectParam("capacity", zelmMeasureAdjustChecks(adjustment, checks.data(), -1, out.longs));
    expectParam("count", zelmMeasureAdjustChecks(adjustment, checks.data(), 8, nullptr));
    for (const std::int32_t size : {0, 3, -8, 12}) {
        checks[0].size = size;
        expectParam("size", zelmMeasureAdjustChecks(adjustment, checks.data(), 8, out.longs));
        EXPECT_EQ(checks[0].kind, 0);
    }
    zelmMeasureAdjustClose(&adjustment);
}

}  // namespace
}  // namespace zelmtest
