// Every allocation of a call failing in turn: points in space, lengths, drift.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "dottedPair.h"
#include "driftTrials.h"
#include "matchedPoints.h"
#include "measureFaults.h"
#include "patternReading.h"
#include "planFixtures.h"

namespace zelmtest {
namespace {

TEST(MeasureMemory, FiguresOfDistances) {
    const double distances[] = {3.0, 1.0, 2.0};
    const FaultCounts failures = expectEveryFailureIsTold(
        [&](FaultOutputs& out) { return ZELM_CASE(zelmMeasureFigures)(3, distances, &out.figures); });
    EXPECT_GE(failures.own, 1);
}

TEST(MeasureMemory, Triangulation) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    const Point3d X{10.0, 5.0, 2.0};
    const Point2d l = truth.raw('L', X);
    const Point2d r = truth.raw('R', X);
    const double left[] = {l.x, l.y, l.x + 1.0, l.y};
    const double right[] = {r.x, r.y, r.x + 1.0, r.y};
    const FaultCounts failures = expectEveryFailureIsTold([&](FaultOutputs& out) {
        auto points = emptyRecord<ZelmMeasurePoints>();
        points.statuses = out.integers;
        points.positions = out.numbers;
        points.errors = out.numbers + 10;
        points.angles = out.numbers + 20;
        return ZELM_CASE(zelmMeasureTriangulate)(rig.get(), 2, left, right, &points);
    });
    EXPECT_GE(failures.own, 1);
    EXPECT_GE(failures.core, 2);
}

TEST(MeasureMemory, PixelsOfOneCamera) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    const double numbers[] = {100.0, 200.0, 50.0};
    using Function = std::int32_t (*)(ZelmMeasureRig*, std::int32_t, std::int64_t, const double*, double*);
    const std::pair<const char*, Function> functions[] = {{"project", ZELM_CASE(zelmMeasureProject)},
                                                          {"undistort", ZELM_CASE(zelmMeasureUndistort)},
                                                          {"distort", ZELM_CASE(zelmMeasureDistort)},
                                                          {"epipolar lines", ZELM_CASE(zelmMeasureEpipolarLines)}};
    for (const auto& named : functions) {
        SCOPED_TRACE(named.first);
        const Function function = named.second;
        const FaultCounts failures = expectEveryFailureIsTold(
            [&](FaultOutputs& out) { return function(rig.get(), 'R', 1, numbers, out.numbers); }, ZELM_OK, true);
        EXPECT_GE(failures.own, 1);
    }
}

TEST(MeasureMemory, PlatesInSpaceAndLengths) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    const Zelm2ViewPatternDesc pattern = plainPattern();
    const std::int32_t grid[] = {0, 0, 1, 0, 2, 0, 0, 1, 1, 1, 2, 1};
    std::vector<double> left;
    std::vector<double> right;
    for (std::size_t i = 0; i < 6; ++i) {
        const Point3d X{10.0 * grid[2 * i], 10.0 * grid[2 * i + 1], 0.0};
        const Point2d l = truth.raw('L', X);
        const Point2d r = truth.raw('R', X);
        left.insert(left.end(), {l.x, l.y});
        right.insert(right.end(), {r.x, r.y});
    }
    const FaultCounts placing = expectEveryFailureIsTold([&](FaultOutputs& out) {
        auto points = emptyRecord<ZelmMeasurePlatePoints>();
        points.statuses = out.integers;
        points.positions = out.numbers;
        points.left = out.numbers + 20;
        points.right = out.numbers + 40;
        auto fit = emptyRecord<ZelmMeasurePlateFit>();
        const std::int32_t status =
            ZELM_CASE(zelmMeasurePlatePoints)(rig.get(), &pattern, 6, grid, left.data(), right.data(), &points, &fit);
        EXPECT_EQ(fit.count, status == ZELM_OK ? 6 : 0);
        return status;
    });
    EXPECT_GE(placing.own, 5);
    EXPECT_GE(placing.core, 18);
    const FaultCounts choosing = expectEveryFailureIsTold([&](FaultOutputs& out) {
        return ZELM_CASE(zelmMeasurePlateLengths)(&pattern, 6, grid, 1, out.longs, out.numbers, out.longs + 3);
    });
    EXPECT_GE(choosing.own, 10);
    const std::int64_t ends[] = {0, 1};
    const double positions[] = {0.0, 0.0, 0.0, 10.0, 0.0, 0.0};
    const double nominal[] = {10.0};
    const FaultCounts checking = expectEveryFailureIsTold([&](FaultOutputs& out) {
        auto lengths = emptyRecord<ZelmMeasureLengthErrors>();
        lengths.measured = out.numbers;
        lengths.regions = out.integers;
        auto summary = emptyRecord<ZelmMeasureLengthSummary>();
        const std::int32_t status =
            ZELM_CASE(zelmMeasureLengthErrors)(rig.get(), 2, positions, 1, ends, nominal, &lengths, &summary);
        EXPECT_EQ(summary.all.count, status == ZELM_OK ? 1 : 0);
        return status;
    });
    EXPECT_GE(checking.own, 2);
}

TEST(MeasureMemory, Drift) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    const DriftPairs pairs = driftPairs(truth, {.points = 30}, 1);
    const FaultCounts failures = expectEveryFailureIsTold([&](FaultOutputs& out) {
        auto drift = emptyRecord<ZelmMeasureDrift>();
        const std::int32_t status = ZELM_CASE(zelmMeasureDrift)(rig.get(), 30, pairs.left.data(), pairs.right.data(),
                                                                nullptr, out.integers, &drift);
        EXPECT_EQ(drift.used > 0, status == ZELM_OK);
        return status;
    });
    EXPECT_GE(failures.own, 100);
}

TEST(MeasureMemory, TrueDepths) {
    const OpenedRig rig(trueRig(64, 48).block());
    const std::vector<std::uint16_t> map(64 * 48, 4500);
    const double pixels[] = {30.0, 20.0};
    const FaultCounts failures = expectEveryFailureIsTold([&](FaultOutputs& out) {
        return ZELM_CASE(zelmMeasureTrueDepths)(rig.get(), map.data(), 0.1, 1, pixels, out.numbers, out.integers);
    });
    EXPECT_GE(failures.own, 1);
}

}  // namespace
}  // namespace zelmtest
