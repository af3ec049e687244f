// Arguments that cannot be meant: points in space, lengths, drift.
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "measureContract.h"

namespace zelmtest {
namespace {

TEST_F(MeasureContract, PointsOfSpace) {
    ZelmMeasureRig* const rig = sound.rig.get();
    auto points = emptyRecord<ZelmMeasurePoints>();
    points.statuses = out.integers;
    points.positions = out.numbers;
    const double* const p = sound.pixels;
    expectParam("rig", ZELM_CASE(zelmMeasureTriangulate)(nullptr, 1, p, p, &points));
    expectParam("count", ZELM_CASE(zelmMeasureTriangulate)(rig, -1, p, p, &points));
    expectParam("left", ZELM_CASE(zelmMeasureTriangulate)(rig, 1, nullptr, p, &points));
    expectParam("right", ZELM_CASE(zelmMeasureTriangulate)(rig, 1, p, nullptr, &points));
    expectRecordRefused<ZelmMeasurePoints>("points",
                                           [&](auto* r) { return ZELM_CASE(zelmMeasureTriangulate)(rig, 1, p, p, r); });
    for (const double wrong : {-1.0, std::numeric_limits<double>::quiet_NaN()}) {
        points.maxError = wrong;
        expectParam("maxError", ZELM_CASE(zelmMeasureTriangulate)(rig, 1, p, p, &points));
    }
    points.maxError = 0.0;
    points.outside = 2;
    expectParam("outside", ZELM_CASE(zelmMeasureTriangulate)(rig, 1, p, p, &points));
    const std::uint16_t* const map = sound.map.data();
    double* const d = out.numbers;
    std::int32_t* const i = out.integers;
    expectParam("rig", ZELM_CASE(zelmMeasureTrueDepths)(nullptr, map, 1.0, 1, p, d, i));
    expectParam("map", ZELM_CASE(zelmMeasureTrueDepths)(rig, nullptr, 1.0, 1, p, d, i));
    expectParam("unit", ZELM_CASE(zelmMeasureTrueDepths)(rig, map, 0.0, 1, p, d, i));
    expectParam("unit", ZELM_CASE(zelmMeasureTrueDepths)(rig, map, -1.0, 1, p, d, i));
    expectParam("unit",
                ZELM_CASE(zelmMeasureTrueDepths)(rig, map, std::numeric_limits<double>::quiet_NaN(), 1, p, d, i));
    expectParam("unit",
                ZELM_CASE(zelmMeasureTrueDepths)(rig, map, std::numeric_limits<double>::infinity(), 1, p, d, i));
    expectParam("count", ZELM_CASE(zelmMeasureTrueDepths)(rig, map, 1.0, -1, p, d, i));
    expectParam("pixels", ZELM_CASE(zelmMeasureTrueDepths)(rig, map, 1.0, 1, nullptr, d, i));
    expectParam("depths", ZELM_CASE(zelmMeasureTrueDepths)(rig, map, 1.0, 1, p, nullptr, i));
}

TEST_F(MeasureContract, PixelsOfOneCamera) {
    ZelmMeasureRig* const rig = sound.rig.get();
    using Function = std::int32_t (*)(ZelmMeasureRig*, std::int32_t, std::int64_t, const double*, double*);
    const Function functions[] = {ZELM_CASE(zelmMeasureProject), ZELM_CASE(zelmMeasureUndistort),
                                  ZELM_CASE(zelmMeasureDistort), ZELM_CASE(zelmMeasureEpipolarLines)};
    const double* const p = sound.pixels;
    double* const d = out.numbers;
    for (const Function function : functions) {
        expectParam("rig", function(nullptr, 'L', 1, p, d));
        for (const std::int32_t side : {0, static_cast<int>('l'), 256 + 'L'}) {
            expectParam("side", function(rig, side, 1, p, d));
        }
        expectParam("count", function(rig, 'L', -1, p, d));
        expectParam("in", function(rig, 'R', 1, nullptr, d));
        expectParam("out", function(rig, 'R', 1, p, nullptr));
        EXPECT_EQ(function(rig, 'L', 0, nullptr, nullptr), ZELM_OK);
    }
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
        expectParam("points", ZELM_CASE(zelmMeasurePointCovariance)(rig, 1, p, p, &noise, &points));
        expectParam("lengths", ZELM_CASE(zelmMeasureLengths)(rig, 1, p, p, &noise, 1, ends, &lengths));
    }
    ZelmMeasurePixelNoise unset{};
    expectParam("points", ZELM_CASE(zelmMeasurePointCovariance)(rig, 1, p, p, &unset, &points));
    expectParam("lengths", ZELM_CASE(zelmMeasureLengths)(rig, 1, p, p, &unset, 1, ends, &lengths));
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
    expectParam("rig", ZELM_CASE(zelmMeasurePointCovariance)(nullptr, 1, p, p, nullptr, &points));
    expectParam("count", ZELM_CASE(zelmMeasurePointCovariance)(rig, -1, p, p, nullptr, &points));
    expectParam("left", ZELM_CASE(zelmMeasurePointCovariance)(rig, 1, nullptr, p, nullptr, &points));
    expectParam("right", ZELM_CASE(zelmMeasurePointCovariance)(rig, 1, p, nullptr, nullptr, &points));
    expectRecordRefused<ZelmMeasurePointCovariances>(
        "points", [&](auto* r) { return ZELM_CASE(zelmMeasurePointCovariance)(rig, 1, p, p, nullptr, r); });
    expectParam("rig", ZELM_CASE(zelmMeasureLengths)(nullptr, 2, p, p, nullptr, 1, ends, &lengths));
    expectParam("count", ZELM_CASE(zelmMeasureLengths)(rig, -1, p, p, nullptr, 1, ends, &lengths));
    expectParam("left", ZELM_CASE(zelmMeasureLengths)(rig, 2, nullptr, p, nullptr, 1, ends, &lengths));
    expectParam("right", ZELM_CASE(zelmMeasureLengths)(rig, 2, p, nullptr, nullptr, 1, ends, &lengths));
    expectParam("lengths", ZELM_CASE(zelmMeasureLengths)(rig, 2, p, p, nullptr, -1, ends, &lengths));
    expectParam("ends", ZELM_CASE(zelmMeasureLengths)(rig, 2, p, p, nullptr, 1, nullptr, &lengths));
    expectParam("ends", ZELM_CASE(zelmMeasureLengths)(rig, 2, p, p, nullptr, 1, beyond, &lengths));
    expectRecordRefused<ZelmMeasureLengths>(
        "lengths", [&](auto* r) { return ZELM_CASE(zelmMeasureLengths)(rig, 2, p, p, nullptr, 1, ends, r); });
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
        return ZELM_CASE(zelmMeasurePlatePoints)(r, plate, n, g, left, right, &points, &fit);
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
    expectRecordRefused<ZelmMeasurePlateFit>("fit", [&](auto* r) {
        return ZELM_CASE(zelmMeasurePlatePoints)(rig, &sound.pattern, 2, grid, p, p, &points, r);
    });
    points.size = 3;
    expectParam("points", call(rig, &sound.pattern, 2, grid, p, p));
    double* const d = out.numbers;
    const ZelmMeasureImage* const image = &sound.image;
    const auto refine = ZELM_CASE(zelmMeasureRefinePlate);
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
    expectParam("plate", ZELM_CASE(zelmMeasurePlateLengths)(nullptr, 2, grid, 1, l, d, l + 1));
    expectParam("count", ZELM_CASE(zelmMeasurePlateLengths)(&sound.pattern, -1, grid, 1, l, d, l + 1));
    expectParam("grid", ZELM_CASE(zelmMeasurePlateLengths)(&sound.pattern, 2, nullptr, 1, l, d, l + 1));
    expectParam("capacity", ZELM_CASE(zelmMeasurePlateLengths)(&sound.pattern, 2, grid, -1, l, d, l + 1));
    expectParam("chosen", ZELM_CASE(zelmMeasurePlateLengths)(&sound.pattern, 2, grid, 1, l, d, nullptr));
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
        return ZELM_CASE(zelmMeasureLengthErrors)(r, points, X, n, e, size, &lengths, &summary);
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
    expectRecordRefused<ZelmMeasureLengthSummary>("summary", [&](auto* r) {
        return ZELM_CASE(zelmMeasureLengthErrors)(rig, 3, positions, 1, ends, nominal, &lengths, r);
    });
    lengths.size = 0;
    expectParam("lengths", call(rig, 3, positions, 1, ends, nominal));

    const double* const p = sound.pixels;
    auto drift = emptyRecord<ZelmMeasureDrift>();
    expectParam("rig", ZELM_CASE(zelmMeasureDrift)(nullptr, 2, p, p, nullptr, out.integers, &drift));
    expectParam("count", ZELM_CASE(zelmMeasureDrift)(rig, -1, p, p, nullptr, out.integers, &drift));
    expectParam("left", ZELM_CASE(zelmMeasureDrift)(rig, 2, nullptr, p, nullptr, out.integers, &drift));
    expectParam("right", ZELM_CASE(zelmMeasureDrift)(rig, 2, p, nullptr, nullptr, out.integers, &drift));
    expectRecordRefused<ZelmMeasureDrift>(
        "drift", [&](auto* r) { return ZELM_CASE(zelmMeasureDrift)(rig, 2, p, p, nullptr, out.integers, r); });
    for (const auto field : {&ZelmMeasureDriftOptions::noise, &ZelmMeasureDriftOptions::calibrationError,
                             &ZelmMeasureDriftOptions::level}) {
        for (const double wrong : {-1.0, none, std::numeric_limits<double>::infinity()}) {
            auto options = emptyRecord<ZelmMeasureDriftOptions>();
            options.*field = wrong;
            expectParam("options", ZELM_CASE(zelmMeasureDrift)(rig, 2, p, p, &options, out.integers, &drift));
        }
    }
    auto options = emptyRecord<ZelmMeasureDriftOptions>();
    options.size = -8;
    expectParam("options", ZELM_CASE(zelmMeasureDrift)(rig, 2, p, p, &options, out.integers, &drift));
    EXPECT_EQ(drift.used, 0);
}

}  // namespace
}  // namespace zelmtest
