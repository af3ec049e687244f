// Arguments that cannot be meant: plans, and counts that no memory holds.
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "measureContract.h"
#include "planFixtures.h"

namespace zelmtest {
namespace {

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
    EXPECT_EQ(ZELM_CASE(zelmMeasureTriangulate)(rig, kMany, p, p, &points), ZELM_ERR_MEMORY);
    EXPECT_EQ(sound.rig.error(), "out of memory");
    auto targets = emptyRecord<ZelmMeasureTargets>();
    targets.centres = out.numbers;
    EXPECT_EQ(ZELM_CASE(zelmMeasureCircles)(rig, image, image, kMany, p, p, 0, &targets), ZELM_ERR_MEMORY);
    EXPECT_EQ(ZELM_CASE(zelmMeasureDotCentres)(image, kMany, p, 0, out.numbers, out.integers), ZELM_ERR_MEMORY);
    auto refined = emptyRecord<ZelmMeasureRefinedDots>();
    refined.statuses = out.integers;
    EXPECT_EQ(ZELM_CASE(zelmMeasureRefineDots)(image, kMany, sound.shape, nullptr, 0, &refined), ZELM_ERR_MEMORY);
    EXPECT_EQ(ZELM_CASE(zelmMeasureMatch)(rig, image, image, &sound.options, kMany, p, &matches), ZELM_ERR_MEMORY);
    EXPECT_EQ(ZELM_CASE(zelmMeasureOverlap)(rig, &sound.options, kMany, p, out.integers), ZELM_ERR_MEMORY);
    EXPECT_EQ(ZELM_CASE(zelmMeasureFigures)(kMany, p, &figures), ZELM_ERR_MEMORY);
    auto noise = emptyRecord<ZelmMeasurePixelNoise>();
    noise.sigma = 0.1;
    const std::int64_t ends[] = {0, 1};
    auto covariances = emptyRecord<ZelmMeasurePointCovariances>();
    covariances.image = out.numbers;
    auto lengths = emptyRecord<ZelmMeasureLengths>();
    lengths.lengths = out.numbers;
    EXPECT_EQ(ZELM_CASE(zelmMeasurePointCovariance)(rig, kMany, p, p, &noise, &covariances), ZELM_ERR_MEMORY);
    EXPECT_EQ(ZELM_CASE(zelmMeasureLengths)(rig, kMany, p, p, &noise, 1, ends, &lengths), ZELM_ERR_MEMORY);
    EXPECT_EQ(ZELM_CASE(zelmMeasureLengths)(rig, 2, p, p, &noise, kMany, ends, &lengths), ZELM_ERR_MEMORY);
    PlanSetup setup;
    setup.options.extent[2] = 0.0;  // fewer poses
    const OpenedPlan plan(setup);
    const ZelmCameraExtrinsics pose{};
    EXPECT_EQ(ZELM_CASE(zelmMeasurePlanTake)(plan.get(), kMany, &pose), ZELM_ERR_MEMORY);
    auto drift = emptyRecord<ZelmMeasureDrift>();
    EXPECT_EQ(ZELM_CASE(zelmMeasureDrift)(rig, kMany, p, p, nullptr, out.integers, &drift), ZELM_ERR_MEMORY);
    const std::int32_t grid[] = {0, 0};
    EXPECT_EQ(ZELM_CASE(zelmMeasurePlateLengths)(&sound.pattern, kMany, grid, 0, nullptr, nullptr, out.longs),
              ZELM_ERR_MEMORY);
    auto fit = emptyRecord<ZelmMeasurePlateFit>();
    EXPECT_EQ(ZELM_CASE(zelmMeasurePlatePoints)(rig, &sound.pattern, kMany, grid, p, p, nullptr, &fit),
              ZELM_ERR_MEMORY);
    auto summary = emptyRecord<ZelmMeasureLengthSummary>();
    EXPECT_EQ(ZELM_CASE(zelmMeasureLengthErrors)(rig, 1, p, kMany, ends, p, nullptr, &summary), ZELM_ERR_MEMORY);
    EXPECT_EQ(figures.count, 0);
    EXPECT_TRUE(out.areUntouched());
}

TEST_F(MeasureContract, PlansAreOpenedIntoEmptyHandlesAlone) {
    const PlanSetup p;
    ZelmMeasurePlan* plan = nullptr;
    expectParam("handle",
                ZELM_CASE(zelmMeasurePlanOpen)(&p.left, &p.right, &p.relative, &p.plate, &p.options, nullptr));
    expectParam("handle", ZELM_CASE(zelmMeasurePlanOfRig)(sound.rig.get(), &p.plate, &p.options, nullptr));
    expectParam("plate", ZELM_CASE(zelmMeasurePlanOpen)(&p.left, &p.right, &p.relative, nullptr, &p.options, &plan));
    expectParam("plate", ZELM_CASE(zelmMeasurePlanOfRig)(sound.rig.get(), nullptr, &p.options, &plan));
    expectParam("rig", ZELM_CASE(zelmMeasurePlanOfRig)(nullptr, &p.plate, &p.options, &plan));
    expectRecordRefused<ZelmMeasureCamera>("left", [&](auto* r) {
        return ZELM_CASE(zelmMeasurePlanOpen)(r, &p.right, &p.relative, &p.plate, &p.options, &plan);
    });
    expectRecordRefused<ZelmMeasureCamera>("right", [&](auto* r) {
        return ZELM_CASE(zelmMeasurePlanOpen)(&p.left, r, &p.relative, &p.plate, &p.options, &plan);
    });
    expectRecordRefused<ZelmMeasureRelativePose>("relative", [&](auto* r) {
        return ZELM_CASE(zelmMeasurePlanOpen)(&p.left, &p.right, r, &p.plate, &p.options, &plan);
    });
    expectRecordRefused<ZelmMeasurePlanOptions>("options", [&](auto* r) {
        return ZELM_CASE(zelmMeasurePlanOpen)(&p.left, &p.right, &p.relative, &p.plate, r, &plan);
    });
    expectRecordRefused<ZelmMeasurePlanOptions>(
        "options", [&](auto* r) { return ZELM_CASE(zelmMeasurePlanOfRig)(sound.rig.get(), &p.plate, r, &plan); });
    for (std::int32_t ZelmMeasurePlanOptions::*field :
         {&ZelmMeasurePlanOptions::criterion, &ZelmMeasurePlanOptions::holdSkew,
          &ZelmMeasurePlanOptions::squarePixels}) {
        PlanSetup wrong;
        wrong.options.*field = 2;
        expectParam("options",
                    ZELM_CASE(zelmMeasurePlanOpen)(&p.left, &p.right, &p.relative, &p.plate, &wrong.options, &plan));
    }
    EXPECT_EQ(plan, nullptr);
}

TEST_F(MeasureContract, PlansAnswerSoundQuestionsAlone) {
    PlanSetup setup;
    setup.options.extent[2] = 0.0;  // fewer poses
    const OpenedPlan plan(setup);
    ZelmMeasurePlan* live = plan.get();
    expectParam("live", ZELM_CASE(zelmMeasurePlanOpen)(&setup.left, &setup.right, &setup.relative, &setup.plate,
                                                       &setup.options, &live));
    EXPECT_EQ(live, plan.get());
    const ZelmCameraExtrinsics pose = plan.next().pose;
    auto view = emptyRecord<ZelmMeasurePlanView>();
    auto figures = emptyRecord<ZelmMeasurePlanFigures>();
    expectParam("take", ZELM_CASE(zelmMeasurePlanTake)(nullptr, 1, &pose));
    expectParam("take", ZELM_CASE(zelmMeasurePlanTake)(plan.get(), -1, &pose));
    expectParam("take", ZELM_CASE(zelmMeasurePlanTake)(plan.get(), 1, nullptr));
    expectParam("next", ZELM_CASE(zelmMeasurePlanNext)(nullptr, &view));
    expectParam("fewest", ZELM_CASE(zelmMeasurePlanFewest)(nullptr, 0.0, 3));
    for (const double tolerance : {-1.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
        expectParam("fewest", ZELM_CASE(zelmMeasurePlanFewest)(plan.get(), tolerance, 3));
    }
    for (const std::int32_t most : {-1, 0, 2, 1001}) {
        expectParam("fewest", ZELM_CASE(zelmMeasurePlanFewest)(plan.get(), 0.0, most));
    }
    expectParam("views", ZELM_CASE(zelmMeasurePlanViews)(nullptr, out.integers));
    expectParam("views", ZELM_CASE(zelmMeasurePlanViews)(plan.get(), nullptr));
    for (const std::int32_t index : {-1, 0, 1}) {
        expectParam("view", ZELM_CASE(zelmMeasurePlanView)(plan.get(), index, &view));
    }
    expectParam("figures", ZELM_CASE(zelmMeasurePlanFigures)(nullptr, &figures));
    EXPECT_EQ(view.dots[0], 0);
    EXPECT_STREQ(ZELM_CASE(zelmMeasurePlanError)(nullptr), "");
    ZELM_CASE(zelmMeasurePlanClose)(nullptr);
    ASSERT_EQ(zelmMeasurePlanFewest(plan.get(), 0.0, 5), ZELM_OK) << plan.error();
    expectRecordRefused<ZelmMeasurePlanView>("next",
                                             [&](auto* r) { return ZELM_CASE(zelmMeasurePlanNext)(plan.get(), r); });
    expectRecordRefused<ZelmMeasurePlanView>("view",
                                             [&](auto* r) { return ZELM_CASE(zelmMeasurePlanView)(plan.get(), 0, r); });
    expectRecordRefused<ZelmMeasurePlanFigures>(
        "figures", [&](auto* r) { return ZELM_CASE(zelmMeasurePlanFigures)(plan.get(), r); });
}

}  // namespace
}  // namespace zelmtest
