// Arguments that cannot be meant: images: dots, targets, matches.
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "measureContract.h"

namespace zelmtest {
namespace {

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
        expectParam("dots", ZELM_CASE(zelmMeasureRigDots)(sound.rig.get(), &plate, 'L', 0, &dots, out.longs, nullptr));
        expectParam("epipolar",
                    ZELM_CASE(zelmMeasureRigEpipolar)(sound.rig.get(), &plate, 0, 1, out.numbers, out.longs));
        expectParam("plate", ZELM_CASE(zelmMeasurePlateDots)(&sound.image, &plate, nullptr, &dots, out.longs, nullptr));
        expectParam("traits", ZELM_CASE(zelmMeasurePlateTraits)(&sound.image, &plate, &traits));
        EXPECT_EQ(traits.brightLevel, 0);
    }
    // What the reader refuses.
    for (const auto& change : {std::function<void(Zelm2ViewPatternDesc&)>([](auto& p) { p.markers = 0; }),
                               std::function<void(Zelm2ViewPatternDesc&)>([](auto& p) { p.d2 = 0.0; })}) {
        Zelm2ViewPatternDesc plate = sound.pattern;
        change(plate);
        expectParam("plate",
                    ZELM_CASE(zelmMeasurePlateDots)(&sound.image, &plate, nullptr, nullptr, out.longs, nullptr));
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
        expectParam("plate",
                    ZELM_CASE(zelmMeasurePlateDots)(image, &sound.pattern, nullptr, nullptr, out.longs, nullptr));
        expectParam("traits", ZELM_CASE(zelmMeasurePlateTraits)(image, &sound.pattern, &traits));
        expectParam("centres", ZELM_CASE(zelmMeasureDotCentres)(image, 1, sound.pixels, 0, out.numbers, out.integers));
        expectParam("noise", ZELM_CASE(zelmMeasureNoise)(image, out.numbers));
        auto refined = emptyRecord<ZelmMeasureRefinedDots>();
        refined.statuses = out.integers;
        expectParam("refine", ZELM_CASE(zelmMeasureRefineDots)(image, 1, sound.shape, nullptr, 0, &refined));
        for (const bool isLeft : {true, false}) {
            const ZelmMeasureImage* const left = isLeft ? image : &sound.image;
            const ZelmMeasureImage* const right = isLeft ? &sound.image : image;
            expectParam("match", ZELM_CASE(zelmMeasureMatch)(sound.rig.get(), left, right, &sound.options, 1,
                                                             sound.pixels, &matches));
            expectParam("dense",
                        ZELM_CASE(zelmMeasureMatchDense)(sound.rig.get(), left, right, &sound.options, &matches));
        }
    }
    expectParam("noise", ZELM_CASE(zelmMeasureNoise)(&sound.image, nullptr));
}

TEST_F(MeasureContract, DotsOfImages) {
    auto dots = emptyRecord<ZelmMeasureDots>();
    auto traits = emptyRecord<ZelmMeasurePlateTraits>();
    expectParam("plate", ZELM_CASE(zelmMeasurePlateDots)(&sound.image, nullptr, nullptr, &dots, out.longs, nullptr));
    expectParam("plate",
                ZELM_CASE(zelmMeasurePlateDots)(&sound.image, &sound.pattern, nullptr, &dots, nullptr, nullptr));
    expectParam("traits", ZELM_CASE(zelmMeasurePlateTraits)(&sound.image, nullptr, &traits));
    expectRecordRefused<ZelmMeasurePlateTraits>(
        "traits", [&](auto* r) { return ZELM_CASE(zelmMeasurePlateTraits)(&sound.image, &sound.pattern, r); });
    double* const d = out.numbers;
    std::int32_t* const i = out.integers;
    expectParam("count", ZELM_CASE(zelmMeasureDotCentres)(&sound.image, -1, sound.pixels, 0, d, i));
    expectParam("seeds", ZELM_CASE(zelmMeasureDotCentres)(&sound.image, 1, nullptr, 0, d, i));
    expectParam("centres", ZELM_CASE(zelmMeasureDotCentres)(&sound.image, 1, sound.pixels, 0, nullptr, i));
    expectParam("statuses", ZELM_CASE(zelmMeasureDotCentres)(&sound.image, 1, sound.pixels, 0, d, nullptr));
    expectParam("polarity", ZELM_CASE(zelmMeasureDotCentres)(&sound.image, 1, sound.pixels, 2, d, i));
    expectParam("polarity", ZELM_CASE(zelmMeasureDotCentres)(&sound.image, 1, sound.pixels, -1, d, i));
}

TEST_F(MeasureContract, DotsToRefine) {
    auto refined = emptyRecord<ZelmMeasureRefinedDots>();
    refined.statuses = refined.flags = out.integers;
    refined.centres = refined.covariances = refined.levels = out.numbers;
    const double* const s = sound.shape;
    expectParam("count", ZELM_CASE(zelmMeasureRefineDots)(&sound.image, -1, s, nullptr, 0, &refined));
    expectParam("shapes", ZELM_CASE(zelmMeasureRefineDots)(&sound.image, 1, nullptr, nullptr, 0, &refined));
    expectParam("polarity", ZELM_CASE(zelmMeasureRefineDots)(&sound.image, 1, s, nullptr, 2, &refined));
    expectParam("polarity", ZELM_CASE(zelmMeasureRefineDots)(&sound.image, 1, s, nullptr, -1, &refined));
    expectRecordRefused<ZelmMeasureRefinedDots>(
        "dots", [&](auto* r) { return ZELM_CASE(zelmMeasureRefineDots)(&sound.image, 1, s, nullptr, 0, r); });
}

TEST_F(MeasureContract, RoundTargets) {
    ZelmMeasureRig* const rig = sound.rig.get();
    auto targets = emptyRecord<ZelmMeasureTargets>();
    targets.statuses = out.integers;
    targets.centres = out.numbers;
    const double* const p = sound.pixels;
    const ZelmMeasureImage* const image = &sound.image;
    expectParam("rig", ZELM_CASE(zelmMeasureCircles)(nullptr, image, image, 1, p, p, 0, &targets));
    expectParam("left", ZELM_CASE(zelmMeasureCircles)(rig, nullptr, image, 1, p, p, 0, &targets));
    expectParam("right", ZELM_CASE(zelmMeasureCircles)(rig, image, nullptr, 1, p, p, 0, &targets));
    ZelmMeasureImage other = sound.image;
    other.width = 63;
    expectParam("left size", ZELM_CASE(zelmMeasureCircles)(rig, &other, image, 1, p, p, 0, &targets));
    expectParam("right size", ZELM_CASE(zelmMeasureCircles)(rig, image, &other, 1, p, p, 0, &targets));
    expectParam("count", ZELM_CASE(zelmMeasureCircles)(rig, image, image, -1, p, p, 0, &targets));
    expectParam("left seeds", ZELM_CASE(zelmMeasureCircles)(rig, image, image, 1, nullptr, p, 0, &targets));
    expectParam("right seeds", ZELM_CASE(zelmMeasureCircles)(rig, image, image, 1, p, nullptr, 0, &targets));
    expectParam("polarity", ZELM_CASE(zelmMeasureCircles)(rig, image, image, 1, p, p, 2, &targets));
    for (const double wrong : {-1.0, std::numeric_limits<double>::quiet_NaN()}) {
        auto limited = targets;
        limited.maxError = wrong;
        expectParam("maxError", ZELM_CASE(zelmMeasureCircles)(rig, image, image, 1, p, p, 0, &limited));
        limited.maxError = 0.0;
        limited.minShare = wrong;
        expectParam("minShare", ZELM_CASE(zelmMeasureCircles)(rig, image, image, 1, p, p, 0, &limited));
    }
    expectRecordRefused<ZelmMeasureTargets>(
        "targets", [&](auto* r) { return ZELM_CASE(zelmMeasureCircles)(rig, image, image, 1, p, p, 0, r); });
}

TEST_F(MeasureContract, Correspondences) {
    ZelmMeasureRig* const rig = sound.rig.get();
    const ZelmMeasureImage* const image = &sound.image;
    const double* const p = sound.pixels;
    auto matches = emptyRecord<ZelmMeasureMatches>();
    matches.statuses = out.integers;
    matches.depths = out.numbers;
    std::int32_t* const any = out.integers + 7;
    expectRecordRefused<ZelmMeasureMatchOptions>("defaults",
                                                 [&](auto* r) { return ZELM_CASE(zelmMeasureMatchDefaults)(rig, r); });
    expectParam("rig", ZELM_CASE(zelmMeasureMatch)(nullptr, image, image, &sound.options, 1, p, &matches));
    expectParam("rig", ZELM_CASE(zelmMeasureMatchDense)(nullptr, image, image, &sound.options, &matches));
    expectParam("rig", ZELM_CASE(zelmMeasureOverlap)(nullptr, &sound.options, 1, p, any));
    expectRecordRefused<ZelmMeasureMatchOptions>(
        "options", [&](auto* r) { return ZELM_CASE(zelmMeasureMatch)(rig, image, image, r, 1, p, &matches); });
    expectRecordRefused<ZelmMeasureMatchOptions>(
        "options", [&](auto* r) { return ZELM_CASE(zelmMeasureMatchDense)(rig, image, image, r, &matches); });
    expectRecordRefused<ZelmMeasureMatchOptions>(
        "options", [&](auto* r) { return ZELM_CASE(zelmMeasureOverlap)(rig, r, 1, p, any); });
    expectRecordRefused<ZelmMeasureMatches>(
        "matches", [&](auto* r) { return ZELM_CASE(zelmMeasureMatch)(rig, image, image, &sound.options, 1, p, r); });
    expectRecordRefused<ZelmMeasureMatches>(
        "matches", [&](auto* r) { return ZELM_CASE(zelmMeasureMatchDense)(rig, image, image, &sound.options, r); });
    expectParam("count", ZELM_CASE(zelmMeasureMatch)(rig, image, image, &sound.options, -1, p, &matches));
    expectParam("pixels", ZELM_CASE(zelmMeasureMatch)(rig, image, image, &sound.options, 1, nullptr, &matches));
    expectParam("count", ZELM_CASE(zelmMeasureOverlap)(rig, &sound.options, -1, p, any));
    expectParam("pixels", ZELM_CASE(zelmMeasureOverlap)(rig, &sound.options, 1, nullptr, any));
    expectParam("any", ZELM_CASE(zelmMeasureOverlap)(rig, &sound.options, 1, p, nullptr));
}

}  // namespace
}  // namespace zelmtest
