// A pair, a volume and a plate to plan for: two cameras of 640 x 480 pixels, 120 mm apart, 350 mm from the middle.
#ifndef ZELM_TEST_PLAN_FIXTURES_H
#define ZELM_TEST_PLAN_FIXTURES_H

#include <gtest/gtest.h>
#include <zelmMeasure.h>

#include <algorithm>
#include <string>

#include "measureRigs.h"

namespace zelmtest {

struct PlanSetup {
    ZelmMeasureCamera left = emptyRecord<ZelmMeasureCamera>();
    ZelmMeasureCamera right = emptyRecord<ZelmMeasureCamera>();
    ZelmMeasureRelativePose relative = emptyRecord<ZelmMeasureRelativePose>();
    Zelm2ViewPatternDesc plate{};
    ZelmMeasurePlanOptions options = emptyRecord<ZelmMeasurePlanOptions>();

    PlanSetup() {
        const render::StereoRig rig = render::exampleRig();
        left = cameraOf(rig.left);
        right = cameraOf(rig.right);
        std::copy(rig.rightFromLeft.R.begin(), rig.rightFromLeft.R.end(), relative.R);
        std::copy(rig.rightFromLeft.t.begin(), rig.rightFromLeft.t.end(), relative.t);
        plate = {80.0, 60.0, 4.0, 7.0, 10.0, 10.0, 20.0, 20.0, 3, 0, 20, 0, 3.0, 0, 0};
        options.centre[2] = 345.0;
        options.extent[0] = 110.0;
        options.extent[1] = 80.0;
        options.extent[2] = 80.0;
    }

    // Half as wide and high as the renderer's example.
    static ZelmMeasureCamera cameraOf(const render::Camera& camera) {
        auto record = emptyRecord<ZelmMeasureCamera>();
        record.width = camera.width / 2;
        record.height = camera.height / 2;
        record.intrinsics.A[0] = record.intrinsics.alpha = 0.5 * camera.fx;
        record.intrinsics.A[4] = record.intrinsics.beta = 0.5 * camera.fy;
        record.intrinsics.A[2] = record.intrinsics.cx = 0.5 * camera.cx;
        record.intrinsics.A[5] = record.intrinsics.cy = 0.5 * camera.cy;
        record.intrinsics.A[8] = 1.0;
        record.intrinsics.k1 = camera.k1;
        record.intrinsics.k2 = camera.k2;
        return record;
    }
};

// Closes its plan at the end of a test.
class OpenedPlan {
public:
    explicit OpenedPlan(const PlanSetup& s)
        : status(zelmMeasurePlanOpen(&s.left, &s.right, &s.relative, &s.plate, &s.options, &handle)) {}
    OpenedPlan(const OpenedPlan&) = delete;
    OpenedPlan& operator=(const OpenedPlan&) = delete;
    ~OpenedPlan() { zelmMeasurePlanClose(&handle); }

    [[nodiscard]] ZelmMeasurePlan* get() const { return handle; }
    [[nodiscard]] std::string error() const { return zelmMeasurePlanError(handle); }
    [[nodiscard]] std::int32_t views() const {
        std::int32_t count = -1;
        EXPECT_EQ(zelmMeasurePlanViews(handle, &count), ZELM_OK);
        return count;
    }
    [[nodiscard]] ZelmMeasurePlanView view(std::int32_t index) const {
        auto record = emptyRecord<ZelmMeasurePlanView>();
        EXPECT_EQ(zelmMeasurePlanView(handle, index, &record), ZELM_OK) << error();
        return record;
    }
    [[nodiscard]] ZelmMeasurePlanView next() const {
        auto record = emptyRecord<ZelmMeasurePlanView>();
        EXPECT_EQ(zelmMeasurePlanNext(handle, &record), ZELM_OK) << error();
        return record;
    }
    [[nodiscard]] ZelmMeasurePlanFigures figures() const {
        auto record = emptyRecord<ZelmMeasurePlanFigures>();
        EXPECT_EQ(zelmMeasurePlanFigures(handle, &record), ZELM_OK) << error();
        return record;
    }

private:
    ZelmMeasurePlan* handle = nullptr;

public:
    std::int32_t status;
};

}  // namespace zelmtest

#endif
