// Every allocation of a call failing in turn: plans.
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

// A plate of nine dots in a plane, hardly tilted: few poses, each of which costs little. They ask for memory at the
// same places as many poses do.
PlanSetup smallPlan() {
    PlanSetup setup;
    setup.plate.d0 = setup.plate.d1 = 20.0;
    setup.plate.d6 = setup.plate.d7 = 10.0;
    setup.plate.minDots = 9;
    setup.options.extent[2] = 0.0;
    setup.options.maxTilt = 0.28;
    return setup;
}

TEST(MeasureMemory, OpeningAPlan) {
    const PlanSetup sound = smallPlan();
    PlanSetup refused = smallPlan();
    refused.plate.minDots = 10;
    const DottedPair pair(3);
    const OpenedRig rig(pair.handle.get());
    const Zelm2ViewPatternDesc pattern = describe(pair.plate);
    const auto close = [](std::int32_t status, ZelmMeasurePlan*& plan) {
        EXPECT_EQ(plan == nullptr, status == ZELM_ERR_MEMORY);
        zelmMeasurePlanClose(&plan);
        return status;
    };
    const auto open = [&](const PlanSetup& s) {
        ZelmMeasurePlan* plan = nullptr;
        return close(ZELM_CASE(zelmMeasurePlanOpen)(&s.left, &s.right, &s.relative, &s.plate, &s.options, &plan), plan);
    };
    EXPECT_GE(expectEveryFailureIsTold([&](FaultOutputs&) { return open(sound); }).own, 5);
    EXPECT_GE(expectEveryFailureIsTold([&](FaultOutputs&) { return open(refused); }, ZELM_MEASURE_ERR_DATA).own, 3);
    const FaultCounts ofRig = expectEveryFailureIsTold([&](FaultOutputs&) {
        ZelmMeasurePlan* plan = nullptr;
        return close(ZELM_CASE(zelmMeasurePlanOfRig)(rig.get(), &pattern, &sound.options, &plan), plan);
    });
    EXPECT_GE(ofRig.own, 5);
}

TEST(MeasureMemory, ViewsOfAPlan) {
    const OpenedPlan plan(smallPlan());
    ASSERT_EQ(plan.status, ZELM_OK) << plan.error();
    const FaultCounts next = expectEveryFailureIsTold([&](FaultOutputs& out) {
        auto view = emptyRecord<ZelmMeasurePlanView>();
        const std::int32_t status = ZELM_CASE(zelmMeasurePlanNext)(plan.get(), &view);
        if (status == ZELM_OK) {
            out.numbers[0] = view.tilt;
        }
        return status;
    });
    EXPECT_GE(next.own, 2);
    const ZelmCameraExtrinsics pose = plan.next().pose;
    const FaultCounts fewest = expectEveryFailureIsTold([&](FaultOutputs&) {
        const OpenedPlan one(smallPlan());  // it keeps its views, and takes their memory along
        return one.status == ZELM_OK ? ZELM_CASE(zelmMeasurePlanFewest)(one.get(), 0.0, 4) : one.status;
    });
    EXPECT_GE(fewest.own, 10);
    EXPECT_GE(expectEveryFailureIsTold([&](FaultOutputs&) {
                  return ZELM_CASE(zelmMeasurePlanTake)(plan.get(), 0, &pose);
              }).own,
              0);
    EXPECT_EQ(plan.views(), 0);
    const OpenedPlan other(smallPlan());
    ASSERT_EQ(zelmMeasurePlanFewest(other.get(), 0.0, 4), ZELM_OK) << other.error();
    expectEveryFailureIsTold([&](FaultOutputs& out) {
        auto view = emptyRecord<ZelmMeasurePlanView>();
        const std::int32_t status = ZELM_CASE(zelmMeasurePlanView)(other.get(), 3, &view);
        if (status == ZELM_OK) {
            out.numbers[0] = view.worst;
        }
        return status;
    });
    const OpenedPlan empty(smallPlan());
    auto figures = emptyRecord<ZelmMeasurePlanFigures>();
    const FaultCounts words = expectEveryFailureIsTold(
        [&](FaultOutputs&) { return ZELM_CASE(zelmMeasurePlanFigures)(empty.get(), &figures); }, ZELM_MEASURE_ERR_DATA);
    EXPECT_GE(words.own, 1);
}

TEST(MeasureMemory, PlansAnswerWithoutMemory) {
    const PlanSetup setup = smallPlan();
    ZelmMeasurePlan* plan = nullptr;
    ASSERT_EQ(zelmMeasurePlanOpen(&setup.left, &setup.right, &setup.relative, &setup.plate, &setup.options, &plan),
              ZELM_OK);
    expectNoAllocation([&](FaultOutputs& out) { return ZELM_CASE(zelmMeasurePlanViews)(plan, out.integers); });
    expectNoAllocation([&](FaultOutputs&) {
        return *ZELM_CASE(zelmMeasurePlanError)(plan) == '\0' ? ZELM_OK : ZELM_MEASURE_ERR_DATA;
    });
    expectNoAllocation([&](FaultOutputs&) {
        ZELM_CASE(zelmMeasurePlanClose)(&plan);
        return ZELM_OK;
    });
}

}  // namespace
}  // namespace zelmtest
