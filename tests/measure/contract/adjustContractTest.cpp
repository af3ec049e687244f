// Arguments that cannot be meant: adjustments and their checks.
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "adjustedRigs.h"
#include "dottedPair.h"
#include "measureContract.h"

namespace zelmtest {
namespace {

TEST_F(MeasureContract, AdjustmentsAreOpenedOfSoundArgumentsAlone) {
    const AdjustScene scene = makeAdjustScene({});
    Handle core;
    calibrateScene(scene, scene.views, core);
    const OpenedRig dotted(core.get());
    ZelmMeasureRig* const rig = dotted.get();
    const Zelm2ViewPatternDesc& plate = scene.plate;
    ZelmMeasureAdjustment* none = nullptr;
    expectParam("rig", ZELM_CASE(zelmMeasureAdjustOpen)(nullptr, &plate, nullptr, &none));
    expectParam("plate", ZELM_CASE(zelmMeasureAdjustOpen)(rig, nullptr, nullptr, &none));
    expectParam("handle", ZELM_CASE(zelmMeasureAdjustOpen)(rig, &plate, nullptr, nullptr));
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
        expectParam("options", ZELM_CASE(zelmMeasureAdjustOpen)(rig, &plate, &options, &none));
    }
    const std::int32_t grid[] = {1, 1};
    const double places[] = {10.0, nan, 0.0};
    auto options = emptyRecord<ZelmMeasureAdjustOptions>();
    options.placeCount = 1;
    options.placeGrid = grid;
    options.places = places;
    expectParam("places", ZELM_CASE(zelmMeasureAdjustOpen)(rig, &plate, &options, &none));
    const std::function<void(Zelm2ViewPatternDesc&)> wrongPlates[] = {
        [](auto& p) { p.d4 = 0.0; },  [=](auto& p) { p.d0 = nan; },  [](auto& p) { p.polarity = 2; },
        [](auto& p) { p.d4 = 1e-6; }, [](auto& p) { p.d6 = 1e300; }, [](auto& p) { p.d7 = 1e300; }};
    for (const auto& change : wrongPlates) {
        Zelm2ViewPatternDesc wrong = plate;
        change(wrong);
        expectParam("plate", ZELM_CASE(zelmMeasureAdjustOpen)(rig, &wrong, nullptr, &none));
    }
    EXPECT_EQ(none, nullptr);
    Zelm2ViewPatternDesc wide = plate;
    wide.d2 = wide.d5;
    EXPECT_EQ(ZELM_CASE(zelmMeasureAdjustOpen)(rig, &wide, nullptr, &none), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(std::string(ZELM_CASE(zelmMeasureAdjustError)(none)).find("wider than their pitch"), std::string::npos);
    zelmMeasureAdjustClose(&none);
    OpenedAdjustment live;
    ASSERT_EQ(live.open(core.get(), plate), ZELM_OK);
    ZelmMeasureAdjustment* const before = live.handle;
    expectParam("live", ZELM_CASE(zelmMeasureAdjustOpen)(rig, &plate, nullptr, &live.handle));
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
    expectData("summary", ZELM_CASE(zelmMeasureAdjustSummary)(a, &summary));
    expectData("dots", ZELM_CASE(zelmMeasureAdjustDots)(a, 'L', 0, nullptr, n));
    expectData("rig", ZELM_CASE(zelmMeasureAdjustRig)(a, &rig));
    expectData("refine", ZELM_CASE(zelmMeasureAdjustRefine)(a, 'L', 0, &image, nullptr));
    expectData("view", ZELM_CASE(zelmMeasureAdjustAddView)(a, &image, &image, i, i + 1));
    // Wrong arguments are told first.
    expectParam("summary", ZELM_CASE(zelmMeasureAdjustSummary)(a, nullptr));
    dots.capacity = -1;
    expectParam("capacity", ZELM_CASE(zelmMeasureAdjustDots)(a, 'L', 0, &dots, n));
    ASSERT_EQ(zelmMeasureAdjustSolve(a), ZELM_OK) << opened.error();
    const ZelmMeasureImage other{gray.data(), 640, 480, 640};
    expectData("size", ZELM_CASE(zelmMeasureAdjustRefine)(a, 'L', 0, &other, nullptr));
    expectData("size", ZELM_CASE(zelmMeasureAdjustAddView)(a, &image, &other, i, i + 1));

    expectParam("handle", ZELM_CASE(zelmMeasureAdjustSolve)(nullptr));
    expectParam("handle", ZELM_CASE(zelmMeasureAdjustSummary)(nullptr, &summary));
    expectParam("handle", ZELM_CASE(zelmMeasureAdjustDots)(nullptr, 'L', 0, nullptr, n));
    expectParam("handle", ZELM_CASE(zelmMeasureAdjustRig)(nullptr, &rig));
    expectParam("handle", ZELM_CASE(zelmMeasureAdjustRefine)(nullptr, 'L', 0, &image, nullptr));
    expectParam("handle", ZELM_CASE(zelmMeasureAdjustAddView)(nullptr, &image, &image, i, i + 1));
    for (const std::int32_t side : {0, static_cast<int>('l'), 256 + 'L'}) {
        expectParam("side", ZELM_CASE(zelmMeasureAdjustDots)(a, side, 0, nullptr, n));
        expectParam("side", ZELM_CASE(zelmMeasureAdjustRefine)(a, side, 0, &image, nullptr));
    }
    for (const std::int32_t view : {-1, 12, std::numeric_limits<std::int32_t>::max()}) {
        expectParam("view", ZELM_CASE(zelmMeasureAdjustDots)(a, 'L', view, nullptr, n));
        expectParam("view", ZELM_CASE(zelmMeasureAdjustRefine)(a, 'L', view, &image, nullptr));
        EXPECT_EQ(ZELM_CASE(zelmMeasureAdjustView)(a, view), nullptr);
    }
    EXPECT_STREQ(ZELM_CASE(zelmMeasureAdjustView)(a, 0), "");
    EXPECT_EQ(ZELM_CASE(zelmMeasureAdjustView)(nullptr, 0), nullptr);
    EXPECT_STREQ(ZELM_CASE(zelmMeasureAdjustError)(nullptr), "");
    expectParam("count", ZELM_CASE(zelmMeasureAdjustDots)(a, 'L', 0, nullptr, nullptr));
    expectParam("capacity", ZELM_CASE(zelmMeasureAdjustDots)(a, 'L', 0, &dots, n));
    dots.size = 0;
    expectParam("size", ZELM_CASE(zelmMeasureAdjustDots)(a, 'L', 0, &dots, n));
    expectRecordRefused<ZelmMeasureAdjustSummary>("summary",
                                                  [&](auto* r) { return ZELM_CASE(zelmMeasureAdjustSummary)(a, r); });
    expectParam("image", ZELM_CASE(zelmMeasureAdjustRefine)(a, 'L', 0, nullptr, nullptr));
    auto refined = emptyRecord<ZelmMeasureRefined>();
    refined.size = 0;
    expectParam("refined", ZELM_CASE(zelmMeasureAdjustRefine)(a, 'L', 0, &image, &refined));
    expectParam("image", ZELM_CASE(zelmMeasureAdjustAddView)(a, nullptr, &image, i, i + 1));
    expectParam("image", ZELM_CASE(zelmMeasureAdjustAddView)(a, &image, nullptr, i, i + 1));
    expectParam("dots", ZELM_CASE(zelmMeasureAdjustAddView)(a, &image, &image, nullptr, i + 1));
    expectParam("dots", ZELM_CASE(zelmMeasureAdjustAddView)(a, &image, &image, i, nullptr));
    expectParam("rig", ZELM_CASE(zelmMeasureAdjustRig)(a, nullptr));
    ZelmMeasureRig* live = sound.rig.get();
    expectParam("live", ZELM_CASE(zelmMeasureAdjustRig)(a, &live));
    ZELM_CASE(zelmMeasureAdjustClose)(nullptr);
    // Dots that no solution knows have no residuals yet, and are no rig's.
    ASSERT_EQ(zelmMeasureAdjustRefine(a, 'L', 0, &image, nullptr), ZELM_OK) << opened.error();
    expectData("dots", ZELM_CASE(zelmMeasureAdjustDots)(a, 'L', 0, nullptr, n));
    expectData("rig", ZELM_CASE(zelmMeasureAdjustRig)(a, &rig));
    EXPECT_EQ(rig, nullptr);
}

TEST_F(MeasureContract, ChecksOfAdjustments) {
    const DottedPair pair(6);
    const OpenedRig rig(pair.handle.get());
    const Zelm2ViewPatternDesc pattern = describe(pair.plate);
    ZelmMeasureAdjustment* adjustment = nullptr;
    ASSERT_EQ(zelmMeasureAdjustOpen(rig.get(), &pattern, nullptr, &adjustment), ZELM_OK);
    std::vector<ZelmMeasureCheck> checks(8, emptyRecord<ZelmMeasureCheck>());
    EXPECT_EQ(ZELM_CASE(zelmMeasureAdjustChecks)(adjustment, checks.data(), 8, out.longs), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(std::string(ZELM_CASE(zelmMeasureAdjustError)(adjustment)).find("not solved"), std::string::npos);
    ASSERT_EQ(zelmMeasureAdjustSolve(adjustment), ZELM_OK);
    expectParam("adjustment", ZELM_CASE(zelmMeasureAdjustChecks)(nullptr, checks.data(), 8, out.longs));
    expectParam("capacity", ZELM_CASE(zelmMeasureAdjustChecks)(adjustment, checks.data(), -1, out.longs));
    expectParam("count", ZELM_CASE(zelmMeasureAdjustChecks)(adjustment, checks.data(), 8, nullptr));
    for (const std::int32_t size : {0, 3, -8, 12}) {
        checks[0].size = size;
        expectParam("size", ZELM_CASE(zelmMeasureAdjustChecks)(adjustment, checks.data(), 8, out.longs));
        EXPECT_EQ(checks[0].kind, 0);
    }
    zelmMeasureAdjustClose(&adjustment);
}

}  // namespace
}  // namespace zelmtest
