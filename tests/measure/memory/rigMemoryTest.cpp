// Every allocation of a call failing in turn: rigs, their dots and covariances.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "dottedPair.h"
#include "driftTrials.h"
#include "matchedPoints.h"
#include "measureFaults.h"
#include "patternReading.h"
#include "planFixtures.h"

namespace zelmtest {
namespace {

TEST(MeasureMemory, OpeningARig) {
    const std::vector<unsigned char> block = trueRig().block();
    const auto open = [&](const void* data, std::size_t size) {
        ZelmMeasureRig* rig = nullptr;
        const std::int32_t status = ZELM_CASE(zelmMeasureRigOpen)(data, static_cast<std::int64_t>(size), &rig);
        EXPECT_EQ(rig == nullptr, status == ZELM_ERR_MEMORY);
        zelmMeasureRigClose(&rig);
        return status;
    };
    const FaultCounts sound = expectEveryFailureIsTold([&](FaultOutputs&) { return open(block.data(), block.size()); });
    EXPECT_GE(sound.own, 3);  // the handle, and the poses of both cameras
    EXPECT_GE(sound.core, 1);
    // Refused blocks need memory for their words.
    const FaultCounts refused = expectEveryFailureIsTold(
        [&](FaultOutputs&) { return open(block.data(), block.size() - 1); }, ZELM_MEASURE_ERR_DATA);
    EXPECT_GE(refused.own, 2);
}

TEST(MeasureMemory, RigsOfObjectsAndTheirDots) {
    const DottedPair pair(3);
    const FaultCounts opening = expectEveryFailureIsTold([&](FaultOutputs&) {
        ZelmMeasureRig* rig = nullptr;
        const std::int32_t status = ZELM_CASE(zelmMeasureRigOfCalib)(pair.handle.get(), &rig);
        EXPECT_EQ(rig == nullptr, status != ZELM_OK);
        zelmMeasureRigClose(&rig);
        return status;
    });
    EXPECT_GE(opening.own, 10);  // with the dots of six views
    const OpenedRig rig(pair.handle.get());
    const Zelm2ViewPatternDesc pattern = describe(pair.plate);
    const FaultCounts dots = expectEveryFailureIsTold([&](FaultOutputs& out) {
        auto record = emptyRecord<ZelmMeasureDots>();
        record.capacity = 30;
        record.grid = out.integers;
        record.errors = out.numbers;
        return ZELM_CASE(zelmMeasureRigDots)(rig.get(), &pattern, 'L', 1, &record, out.longs, out.longs + 1);
    });
    EXPECT_GE(dots.own, 143);
    const FaultCounts epipolar = expectEveryFailureIsTold([&](FaultOutputs& out) {
        return ZELM_CASE(zelmMeasureRigEpipolar)(rig.get(), &pattern, 1, 100, out.numbers, out.longs);
    });
    EXPECT_GE(epipolar.own, 143);
}

TEST(MeasureMemory, CentreOfARig) {
    const OpenedRig rig(trueRig().block());
    const FaultCounts failures = expectEveryFailureIsTold([&](FaultOutputs& out) {
        return ZELM_CASE(zelmMeasureRigCentre)(rig.get(), out.numbers, out.numbers + 2, out.integers);
    });
    EXPECT_GE(failures.core, 1);
}

TEST(MeasureMemory, UncertaintyOfPointsAndLengths) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    auto covariance = emptyRecord<ZelmMeasureCovariance>();
    covariance.noise = 0.05;
    EXPECT_EQ(expectEveryFailureIsTold([&](FaultOutputs&) {
                  return ZELM_CASE(zelmMeasureRigSetCovariance)(rig.get(), &covariance);
              }).own,
              0);
    const Point2d l[] = {truth.raw('L', {10.0, 5.0, 2.0}), truth.raw('L', {-10.0, 5.0, 2.0})};
    const Point2d r[] = {truth.raw('R', {10.0, 5.0, 2.0}), truth.raw('R', {-10.0, 5.0, 2.0})};
    const double left[] = {l[0].x, l[0].y, l[1].x, l[1].y};
    const double right[] = {r[0].x, r[0].y, r[1].x, r[1].y};
    const FaultCounts points = expectEveryFailureIsTold([&](FaultOutputs& out) {
        auto record = emptyRecord<ZelmMeasurePointCovariances>();
        record.statuses = out.integers;
        record.positions = out.numbers;
        record.image = out.numbers + 10;
        record.calibration = out.numbers + 30;
        record.depths = out.numbers + 50;
        return ZELM_CASE(zelmMeasurePointCovariance)(rig.get(), 2, left, right, nullptr, &record);
    });
    EXPECT_GE(points.own, 1);
    EXPECT_GE(points.core, 2);
    const std::int64_t ends[] = {0, 1};
    const FaultCounts lengths = expectEveryFailureIsTold([&](FaultOutputs& out) {
        auto record = emptyRecord<ZelmMeasureLengths>();
        record.statuses = out.integers;
        record.lengths = out.numbers;
        record.expanded = out.numbers + 10;
        return ZELM_CASE(zelmMeasureLengths)(rig.get(), 2, left, right, nullptr, 1, ends, &record);
    });
    EXPECT_GE(lengths.own, 3);
    EXPECT_GE(lengths.core, 2);
}

TEST(MeasureMemory, BytesOfACovariance) {
    const OpenedRig rig(trueRig().block());
    auto covariance = emptyRecord<ZelmMeasureCovariance>();
    ASSERT_EQ(zelmMeasureRigSetCovariance(rig.get(), &covariance), ZELM_OK);
    std::vector<unsigned char> bytes(2856);
    const FaultCounts saving = expectEveryFailureIsTold(
        [&](FaultOutputs&) { return ZELM_CASE(zelmMeasureCovarianceSave)(rig.get(), 2856, bytes.data()); });
    EXPECT_GE(saving.own, 1);
    const FaultCounts loading = expectEveryFailureIsTold(
        [&](FaultOutputs&) { return ZELM_CASE(zelmMeasureCovarianceLoad)(rig.get(), bytes.data(), 2856); });
    EXPECT_GE(loading.own, 1);
    EXPECT_EQ(expectEveryFailureIsTold([&](FaultOutputs& out) {
                  return ZELM_CASE(zelmMeasureCovarianceSize)(rig.get(), out.longs);
              }).own,
              0);
}

TEST(MeasureMemory, RigsAnswerWithoutMemory) {
    const OpenedRig rig(trueRig().block());
    ZelmCameraExtrinsics pose{};
    expectNoAllocation([&](FaultOutputs& out) { return ZELM_CASE(zelmMeasureRigViews)(rig.get(), out.integers); });
    expectNoAllocation([&](FaultOutputs&) { return ZELM_CASE(zelmMeasureRigPose)(rig.get(), 'L', 0, &pose); });
    expectNoAllocation([&](FaultOutputs& out) { return ZELM_CASE(zelmMeasureRigFundamental)(rig.get(), out.numbers); });
    expectNoAllocation([&](FaultOutputs&) {
        auto camera = emptyRecord<ZelmMeasureCamera>();
        return ZELM_CASE(zelmMeasureRigCamera)(rig.get(), 'R', &camera);
    });
    expectNoAllocation([&](FaultOutputs&) {
        auto relative = emptyRecord<ZelmMeasureRelativePose>();
        return ZELM_CASE(zelmMeasureRigRelativePose)(rig.get(), &relative);
    });
    expectNoAllocation([&](FaultOutputs&) {
        const bool isTold =
            ZELM_CASE(zelmMeasureRigCalib)(rig.get()) != nullptr && *ZELM_CASE(zelmMeasureRigError)(rig.get()) == '\0';
        return isTold ? ZELM_OK : ZELM_MEASURE_ERR_DATA;
    });
    ZelmMeasureRig* other = nullptr;
    const std::vector<unsigned char> block = trueRig().block();
    ASSERT_EQ(zelmMeasureRigOpen(block.data(), static_cast<std::int64_t>(block.size()), &other), ZELM_OK);
    expectNoAllocation([&](FaultOutputs&) {
        ZELM_CASE(zelmMeasureRigClose)(&other);
        return ZELM_OK;
    });
    EXPECT_EQ(other, nullptr);
}

TEST(MeasureMemory, RefusalsOfRigs) {
    const OpenedRig parallel(parallelBlock());
    const FaultCounts relative = expectEveryFailureIsTold(
        [&](FaultOutputs&) {
            auto pose = emptyRecord<ZelmMeasureRelativePose>();
            return ZELM_CASE(zelmMeasureRigRelativePose)(parallel.get(), &pose);
        },
        ZELM_MEASURE_ERR_DATA);
    EXPECT_GE(relative.own, 1);
    expectEveryFailureIsTold(
        [&](FaultOutputs& out) { return ZELM_CASE(zelmMeasureRigTilt)(parallel.get(), 'L', out.numbers); });
    const OpenedRig rig(trueRig().block());
    const FaultCounts tilt = expectEveryFailureIsTold(
        [&](FaultOutputs& out) { return ZELM_CASE(zelmMeasureRigTilt)(rig.get(), 'L', out.numbers); },
        ZELM_MEASURE_ERR_DATA);
    EXPECT_GE(tilt.own, 1);
    const FaultCounts covariance = expectEveryFailureIsTold(
        [&](FaultOutputs&) {
            auto none = emptyRecord<ZelmMeasureCovariance>();
            return ZELM_CASE(zelmMeasureRigCovariance)(rig.get(), &none);
        },
        ZELM_MEASURE_ERR_DATA);
    EXPECT_GE(covariance.own, 1);
}

TEST(MeasureMemory, DotsAndPitchesOfObjects) {
    const DottedPair pair(3);
    const FaultCounts dots = expectEveryFailureIsTold([&](FaultOutputs& out) {
        auto record = emptyRecord<ZelmMeasureDots>();
        record.capacity = 30;
        record.grid = out.integers;
        record.pixels = out.numbers;
        return ZELM_CASE(zelmMeasureReadDots)(pair.handle.get(), 'R', 1, &record, out.longs);
    });
    EXPECT_GE(dots.own, 1);
    const FaultCounts pitches = expectEveryFailureIsTold(
        {.call =
             [&](FaultOutputs& out) {
                 WatchedRecord<ZelmMeasurePitchRatio> ratio;
                 const std::int32_t status = ZELM_CASE(zelmMeasurePitchRatio)(pair.handle.get(), 'L', &ratio.record);
                 EXPECT_EQ(ratio.isUntouched(), status != ZELM_OK);
                 if (status == ZELM_OK) {
                     out.integers[0] = static_cast<std::int32_t>(std::lround(1e6 * ratio.record.ratio));
                 }
                 return status;
             },
         .canDoWithout = true,
         .everyOf = 12,
         .growth = 1.0});
    EXPECT_GE(pitches.own, 5);
    EXPECT_GE(pitches.core, 10);
}

}  // namespace
}  // namespace zelmtest
