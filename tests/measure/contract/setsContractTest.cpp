// Arguments that cannot be meant: dots of objects, sets of images, images that are diagnosed.
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "dottedPair.h"
#include "measureContract.h"

namespace zelmtest {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

TEST_F(MeasureContract, DotsAndPitchesOfObjects) {
    const DottedPair pair(3);
    const Zelm2ViewCalib* const calib = pair.handle.get();
    const Zelm2ViewCalib* const loaded = zelmMeasureRigCalib(sound.rig.get());
    auto dots = emptyRecord<ZelmMeasureDots>();
    dots.capacity = 4;
    dots.grid = out.integers;
    std::int64_t* const n = out.longs;
    expectParam("object", ZELM_CASE(zelmMeasureReadDots)(nullptr, 'L', 0, &dots, n));
    expectParam("loaded", ZELM_CASE(zelmMeasureReadDots)(loaded, 'L', 0, &dots, n));
    expectParam("count", ZELM_CASE(zelmMeasureReadDots)(calib, 'L', 0, &dots, nullptr));
    auto ratio = emptyRecord<ZelmMeasurePitchRatio>();
    for (const std::int32_t side : {0, static_cast<int>('l'), 256 + 'L'}) {
        expectParam("side", ZELM_CASE(zelmMeasureReadDots)(calib, side, 0, &dots, n));
        expectParam("side", ZELM_CASE(zelmMeasurePitchRatio)(calib, side, &ratio));
    }
    for (const std::int32_t view : {-1, 3, std::numeric_limits<std::int32_t>::max()}) {
        expectParam("view", ZELM_CASE(zelmMeasureReadDots)(calib, 'L', view, &dots, n));
    }
    dots.capacity = -1;
    expectParam("capacity", ZELM_CASE(zelmMeasureReadDots)(calib, 'L', 0, &dots, n));
    for (const std::int32_t size : {0, 3, -8}) {
        dots.size = size;
        expectParam("size", ZELM_CASE(zelmMeasureReadDots)(calib, 'L', 0, &dots, n));
    }
    expectParam("object", ZELM_CASE(zelmMeasurePitchRatio)(nullptr, 'L', &ratio));
    expectParam("loaded", ZELM_CASE(zelmMeasurePitchRatio)(loaded, 'L', &ratio));
    EXPECT_EQ(ratio.ratio, 0.0);
    expectRecordRefused<ZelmMeasurePitchRatio>(
        "ratio", [&](auto* r) { return ZELM_CASE(zelmMeasurePitchRatio)(calib, 'L', r); });
}

TEST_F(MeasureContract, SetsOfImages) {
    const Zelm2ViewCameraDesc cameras = cameraPair(0, 0);
    const std::int64_t counts[] = {2, 0};
    const double plane[] = {0.0, 0.0, 10.0, 0.0};
    const double pixels[] = {100.0, 100.0, 120.0, 100.0};
    const ZelmMeasureImageSet set{sizeof(set), 2,      &sound.pattern, &cameras, counts,
                                  plane,       pixels, counts,         plane,    pixels};
    auto view = emptyRecord<ZelmMeasurePairedView>();
    auto cause = emptyRecord<ZelmMeasureSetCause>();
    auto pairing = emptyRecord<ZelmMeasurePairing>();
    const auto judge = [&](const ZelmMeasureImageSet* s) {
        return ZELM_CASE(zelmMeasurePairImages)(s, &view, &cause, 1, &pairing);
    };
    expectRecordRefused<ZelmMeasureImageSet>("set", [&](auto* r) { return judge(r); });
    Zelm2ViewPatternDesc flat = sound.pattern;
    flat.d4 = 0.0;
    Zelm2ViewPatternDesc nowhere = sound.pattern;
    nowhere.d2 = kNone;
    Zelm2ViewCameraDesc parallel = cameraPair(0, 2);
    Zelm2ViewCameraDesc empty = cameras;
    empty.rightHeight = 0;
    const std::int64_t negative[] = {-1, 0};
    const std::int64_t many[] = {std::numeric_limits<std::int64_t>::max(), 0};
    const double none[] = {0.0, kNone, 10.0, 0.0};
    const double far[] = {0.0, 1e9, 10.0, 0.0};
    const std::function<void(ZelmMeasureImageSet&)> changes[] = {[](auto& s) { s.views = -1; },
                                                                 [](auto& s) { s.pattern = nullptr; },
                                                                 [&](auto& s) { s.pattern = &flat; },
                                                                 [&](auto& s) { s.pattern = &nowhere; },
                                                                 [](auto& s) { s.cameras = nullptr; },
                                                                 [&](auto& s) { s.cameras = &parallel; },
                                                                 [&](auto& s) { s.cameras = &empty; },
                                                                 [](auto& s) { s.leftCounts = nullptr; },
                                                                 [](auto& s) { s.rightCounts = nullptr; },
                                                                 [&](auto& s) { s.leftCounts = negative; },
                                                                 [&](auto& s) { s.rightCounts = many; },
                                                                 [](auto& s) { s.leftPlane = nullptr; },
                                                                 [](auto& s) { s.rightPixels = nullptr; },
                                                                 [&](auto& s) { s.leftPixels = none; },
                                                                 [&](auto& s) { s.rightPlane = none; },
                                                                 [&](auto& s) { s.rightPlane = far; }};
    std::size_t number = 0;
    for (const auto& change : changes) {
        ZelmMeasureImageSet wrong = set;
        change(wrong);
        expectParam(std::to_string(number++).c_str(), judge(&wrong));
    }
    expectRecordRefused<ZelmMeasurePairing>(
        "pairing", [&](auto* r) { return ZELM_CASE(zelmMeasurePairImages)(&set, &view, &cause, 1, r); });
    expectParam("capacity", ZELM_CASE(zelmMeasurePairImages)(&set, &view, &cause, -1, &pairing));
    for (const std::int32_t size : {0, 3, -8, 12}) {
        view.size = size;
        expectParam("view", judge(&set));
        view.size = sizeof view;
        cause.size = size;
        expectParam("cause", judge(&set));
        cause.size = sizeof cause;
    }
    EXPECT_EQ(view.fate, 0);
    EXPECT_EQ(cause.kind, 0);
    EXPECT_EQ(pairing.limit, 0.0);
    // Of no images nothing is wrong.
    const ZelmMeasureImageSet no{sizeof(set), 0,       &sound.pattern, &cameras, nullptr,
                                 nullptr,     nullptr, nullptr,        nullptr,  nullptr};
    EXPECT_EQ(ZELM_CASE(zelmMeasurePairImages)(&no, nullptr, nullptr, 0, &pairing), ZELM_OK);
}

TEST_F(MeasureContract, ImagesThatAreDiagnosed) {
    const ZelmMeasureImage* const image = &sound.image;
    auto sharpness = emptyRecord<ZelmMeasureSharpness>();
    const double* const p = sound.pixels;
    expectParam("image", ZELM_CASE(zelmMeasureSharpness)(nullptr, 1, p, 0, &sharpness));
    expectParam("count", ZELM_CASE(zelmMeasureSharpness)(image, -1, p, 0, &sharpness));
    expectParam("seeds", ZELM_CASE(zelmMeasureSharpness)(image, 1, nullptr, 0, &sharpness));
    expectParam("polarity", ZELM_CASE(zelmMeasureSharpness)(image, 1, p, 2, &sharpness));
    expectParam("polarity", ZELM_CASE(zelmMeasureSharpness)(image, 1, p, -1, &sharpness));
    expectRecordRefused<ZelmMeasureSharpness>(
        "sharpness", [&](auto* r) { return ZELM_CASE(zelmMeasureSharpness)(image, 1, p, 0, r); });
    const double nowhere[] = {kNone, 3.0, 1e300, -1e300};
    EXPECT_EQ(ZELM_CASE(zelmMeasureSharpness)(image, 2, nowhere, 0, &sharpness), ZELM_OK);
    EXPECT_EQ(sharpness.dots, 0);
    auto diagnosis = emptyRecord<ZelmMeasureImageDiagnosis>();
    auto spots = emptyRecord<ZelmMeasureSpots>();
    const auto diagnose = [&](const ZelmMeasureImage* of, const Zelm2ViewPatternDesc* plate, const ZelmRect* region) {
        return ZELM_CASE(zelmMeasureDiagnoseImage)(of, plate, region, &diagnosis, &spots);
    };
    expectParam("image", diagnose(nullptr, &sound.pattern, nullptr));
    expectParam("plate", diagnose(image, nullptr, nullptr));
    const std::function<void(Zelm2ViewPatternDesc&)> changes[] = {
        [](auto& w) { w.d2 = 0.0; },    [](auto& w) { w.d3 = -1.0; },    [](auto& w) { w.d7 = kNone; },
        [](auto& w) { w.markers = 0; }, [](auto& w) { w.polarity = 2; }, [](auto& w) { w.polarity = -1; }};
    for (const auto& change : changes) {
        Zelm2ViewPatternDesc wrong = sound.pattern;
        change(wrong);
        expectParam("plate", diagnose(image, &wrong, nullptr));
    }
    for (const ZelmRect& region : {ZelmRect{-1, 0, 10, 10}, ZelmRect{0, 0, 0, 10}, ZelmRect{0, 0, 65, 10},
                                   ZelmRect{60, 0, std::numeric_limits<std::int32_t>::max(), 10}}) {
        expectParam("region", diagnose(image, &sound.pattern, &region));
    }
    spots.capacity = -1;
    expectParam("capacity", diagnose(image, &sound.pattern, nullptr));
    spots.size = 0;
    expectParam("spots", diagnose(image, &sound.pattern, nullptr));
    EXPECT_EQ(diagnosis.cause, 0);
    EXPECT_EQ(diagnosis.expected, 0);
    expectRecordRefused<ZelmMeasureImageDiagnosis>("diagnosis", [&](auto* r) {
        return ZELM_CASE(zelmMeasureDiagnoseImage)(image, &sound.pattern, nullptr, r, nullptr);
    });
    for (const std::int32_t cause : {-1, 21, std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_STREQ(ZELM_CASE(zelmMeasureImageCauseName)(cause), "unknown");
    }
}

}  // namespace
}  // namespace zelmtest
