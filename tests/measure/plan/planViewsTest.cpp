// Plans through the interface: what goes in comes out, and what is refused.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <string>

#include "dottedPair.h"
#include "patternReading.h"
#include "planFixtures.h"

namespace zelmtest {
namespace {

// A refused plan holds words alone.
void expectRefused(const PlanSetup& setup, const std::vector<std::string>& words) {
    const OpenedPlan plan(setup);
    EXPECT_EQ(plan.status, ZELM_MEASURE_ERR_DATA);
    ASSERT_NE(plan.get(), nullptr);
    for (const std::string& word : words) {
        EXPECT_NE(plan.error().find(word), std::string::npos) << word << " in: " << plan.error();
    }
    std::int32_t views = -7;
    EXPECT_EQ(zelmMeasurePlanViews(plan.get(), &views), ZELM_ERR_PARAM);
    EXPECT_EQ(views, -7);
}

PlanSetup changed(const std::function<void(PlanSetup&)>& change) {
    PlanSetup setup;
    change(setup);
    return setup;
}

TEST(PlanViews, RefusesWhatCannotBePlannedFor) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    expectRefused(changed([](PlanSetup& s) { s.left.model = ZELM_CAMERA_PARALLEL; }), {"left", "parallel"});
    expectRefused(changed([=](PlanSetup& s) { s.right.intrinsics.k1 = nan; }), {"right", "not finite"});
    expectRefused(changed([](PlanSetup& s) { s.right.width = 0; }), {"right", "image size"});
    expectRefused(changed([](PlanSetup& s) { s.left.intrinsics.A[0] = -1.0; }), {"left", "focal"});
    expectRefused(changed([](PlanSetup& s) { s.relative.R[0] = 2.0; }), {"rotation"});
    expectRefused(changed([](PlanSetup& s) { s.relative.t[0] = s.relative.t[1] = s.relative.t[2] = 0.0; }),
                  {"baseline"});
    expectRefused(changed([=](PlanSetup& s) { s.plate.d4 = nan; }), {"plate", "greater than 0"});
    expectRefused(changed([](PlanSetup& s) { s.plate.d2 = 11.0; }), {"wider than their pitch"});
    expectRefused(changed([](PlanSetup& s) { s.plate.d0 = 1e7; }), {"million dots"});
    expectRefused(changed([](PlanSetup& s) { s.plate.minDots = 64; }), {"fewer dots"});
    expectRefused(changed([](PlanSetup& s) { s.options.extent[0] = 0.0; }), {"volume", "size"});
    expectRefused(changed([=](PlanSetup& s) { s.options.centre[1] = nan; }), {"volume"});
    expectRefused(changed([](PlanSetup& s) { s.options.centre[2] = 30.0; }), {"behind the cameras"});
    expectRefused(changed([](PlanSetup& s) { s.options.noise = -1.0; }), {"noise"});
    expectRefused(changed([](PlanSetup& s) { s.options.focusFar = 1.0, s.options.focusNear = 2.0; }), {"focus"});
    expectRefused(changed([](PlanSetup& s) { s.options.length = 1000.0; }), {"diagonal"});
}

TEST(PlanViews, RefusesVolumesAndPlatesThatAreNotSeen) {
    expectRefused(changed([](PlanSetup& s) { s.options.centre[0] = 200.0; }), {"both cameras see only 0 %"});
    expectRefused(changed([](PlanSetup& s) { s.options.focusFar = 300.0; }), {"of the volume, sharp"});
    expectRefused(changed([](PlanSetup& s) { s.plate.d0 = 900.0, s.plate.d1 = 700.0; }),
                  {"sees sharply", "smaller plate"});
    expectRefused(changed([](PlanSetup& s) { s.plate.d6 = 400.0; }), {"not every marker", "smaller plate"});
    expectRefused(changed([](PlanSetup& s) { s.plate.d2 = 1.0, s.plate.d3 = 1.7; }), {"larger dots"});
    expectRefused(changed([](PlanSetup& s) { s.options.maxTilt = 0.05; }), {"tilted too much"});
}

TEST(PlanViews, SaysWhichToleranceCannotBeMetAndWhatWouldHelp) {
    const OpenedPlan plan{PlanSetup{}};
    ASSERT_EQ(plan.status, ZELM_OK) << plan.error();
    ASSERT_EQ(zelmMeasurePlanFewest(plan.get(), 0.0, 4), ZELM_OK) << plan.error();
    const ZelmMeasurePlanFigures figures = plan.figures();
    EXPECT_EQ(zelmMeasurePlanFewest(plan.get(), 0.9 * figures.worstImage, 100), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(plan.error().find("however many views"), std::string::npos) << plan.error();
    EXPECT_NE(plan.error().find("baseline"), std::string::npos) << plan.error();
    EXPECT_EQ(zelmMeasurePlanFewest(plan.get(), 1.0001 * figures.worstImage, 5), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(plan.error().find("5 views give"), std::string::npos) << plan.error();
    EXPECT_EQ(plan.views(), 4);  // as it was
}

TEST(PlanViews, NamesWhatFewViewsDoNotDetermine) {
    // Without a lens that tells where the image's middle is.
    const OpenedPlan plan(changed([](PlanSetup& s) {
        for (ZelmMeasureCamera* camera : {&s.left, &s.right}) {
            camera->intrinsics.k1 = camera->intrinsics.k2 = 0.0;
        }
    }));
    auto figures = emptyRecord<ZelmMeasurePlanFigures>();
    EXPECT_EQ(zelmMeasurePlanFigures(plan.get(), &figures), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(plan.error().find("only 0 views"), std::string::npos) << plan.error();
    EXPECT_EQ(figures.views, 0);
    // One pose thrice: a homography has two conditions on a camera's five parameters.
    const ZelmMeasurePlanView next = plan.next();
    EXPECT_EQ(next.worst, 0.0);
    EXPECT_EQ(next.rms, 0.0);
    std::vector<ZelmCameraExtrinsics> same(3, next.pose);
    ASSERT_EQ(zelmMeasurePlanTake(plan.get(), 3, same.data()), ZELM_OK) << plan.error();
    EXPECT_EQ(zelmMeasurePlanFigures(plan.get(), &figures), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(plan.error().find("is not determined by these views"), std::string::npos) << plan.error();
    EXPECT_NE(plan.error().find("the "), std::string::npos);
}

TEST(PlanViews, TakenViewsMustBePosesOfThePlate) {
    const OpenedPlan plan{PlanSetup{}};
    ZelmCameraExtrinsics pose = plan.next().pose;
    ZelmCameraExtrinsics away = pose;
    away.t[0] = 1e5;
    EXPECT_EQ(zelmMeasurePlanTake(plan.get(), 1, &away), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(plan.error().find("neither camera sees a dot"), std::string::npos) << plan.error();
    ZelmCameraExtrinsics bent = pose;
    bent.R[4] += 0.1;
    EXPECT_EQ(zelmMeasurePlanTake(plan.get(), 1, &bent), ZELM_MEASURE_ERR_DATA);
    pose.t[2] = std::numeric_limits<double>::infinity();
    EXPECT_EQ(zelmMeasurePlanTake(plan.get(), 1, &pose), ZELM_MEASURE_ERR_DATA);
    EXPECT_EQ(plan.views(), 0);
}

TEST(PlanViews, TakenViewsStayAndPlannedOnesFollow) {
    const OpenedPlan plan{PlanSetup{}};
    ASSERT_EQ(zelmMeasurePlanFewest(plan.get(), 0.0, 3), ZELM_OK) << plan.error();
    std::vector<ZelmCameraExtrinsics> poses;
    for (std::int32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(plan.view(i).taken, 0);
        poses.push_back(plan.view(i).pose);
    }
    const double three = plan.figures().worst;
    ASSERT_EQ(zelmMeasurePlanTake(plan.get(), 3, poses.data()), ZELM_OK) << plan.error();
    EXPECT_EQ(plan.views(), 3);
    EXPECT_NEAR(plan.figures().worst, three, 1e-9 * three);
    ASSERT_EQ(zelmMeasurePlanFewest(plan.get(), 0.0, 5), ZELM_OK) << plan.error();
    const ZelmMeasurePlanFigures five = plan.figures();
    EXPECT_EQ(five.views, 5);
    EXPECT_EQ(five.taken, 3);
    EXPECT_LT(five.worst, three);
    EXPECT_GT(five.worst, five.worstImage);
    EXPECT_GE(five.worst, five.rms);
    EXPECT_EQ(plan.view(2).taken, 1);
    EXPECT_EQ(plan.view(3).taken, 0);
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_NEAR(plan.view(1).pose.R[i], poses[1].R[i], 1e-12);
    }
}

// A calibrated rig: its views are taken.
TEST(PlanViews, GoesOnFromARig) {
    const DottedPair pair(5, {}, 0.02);
    const OpenedRig rig(pair.handle.get());
    PlanSetup setup;
    setup.plate = describe(pair.plate);
    ZelmMeasurePlan* plan = nullptr;
    ASSERT_EQ(zelmMeasurePlanOfRig(rig.get(), &setup.plate, &setup.options, &plan), ZELM_OK)
        << zelmMeasurePlanError(plan);
    std::int32_t views = 0;
    std::int32_t ofRig = 0;
    ASSERT_EQ(zelmMeasurePlanViews(plan, &views), ZELM_OK);
    ASSERT_EQ(zelmMeasureRigViews(rig.get(), &ofRig), ZELM_OK);
    EXPECT_EQ(views, ofRig);
    ZelmCameraExtrinsics pose{};
    ASSERT_EQ(zelmMeasureRigPose(rig.get(), 'L', 0, &pose), ZELM_OK);
    auto view = emptyRecord<ZelmMeasurePlanView>();
    ASSERT_EQ(zelmMeasurePlanView(plan, 0, &view), ZELM_OK);
    EXPECT_EQ(view.taken, 1);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(view.pose.t[i], pose.t[i], 1e-9);
    }
    ASSERT_EQ(zelmMeasurePlanFewest(plan, 0.0, views + 3), ZELM_OK) << zelmMeasurePlanError(plan);
    auto figures = emptyRecord<ZelmMeasurePlanFigures>();
    EXPECT_EQ(zelmMeasurePlanFigures(plan, &figures), ZELM_OK) << zelmMeasurePlanError(plan);
    EXPECT_GT(figures.worst, 0.0);
    zelmMeasurePlanClose(&plan);
    EXPECT_EQ(plan, nullptr);

    const OpenedRig parallel(parallelBlock());
    EXPECT_EQ(zelmMeasurePlanOfRig(parallel.get(), &setup.plate, &setup.options, &plan), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(std::string(zelmMeasurePlanError(plan)).find("parallel"), std::string::npos);
    zelmMeasurePlanClose(&plan);
}

TEST(PlanViews, ShorterRecordsGetWhatTheyHave) {
    const OpenedPlan plan{PlanSetup{}};
    auto view = emptyRecord<ZelmMeasurePlanView>();
    view.size = offsetof(ZelmMeasurePlanView, tilt);
    view.tilt = -7.0;
    ASSERT_EQ(zelmMeasurePlanNext(plan.get(), &view), ZELM_OK);
    EXPECT_GT(view.position[2], 0.0);
    EXPECT_EQ(view.tilt, -7.0);
}

}  // namespace
}  // namespace zelmtest
