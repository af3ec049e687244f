// Allocation faults of the matching. Where memory fails the result is the closed form.
#include "faultCase.h"
#include "matchScenes.h"
#include "zelm/match.h"

ZELM_FAULT_CASE(zelmMatchBasic) {
    zelmtest::Random random(771);
    const auto scene = zelmtest::makeScene(random, 12, 0.5, 1.1, {3.0, 4.0}, 0.2);
    for (int32_t mode = 0; mode <= 5; ++mode) {
        ZelmMatchPose closedForm;
        ASSERT_EQ(scene.match(mode % 2, 0.0, &closedForm), ZELM_OK);
        ZelmMatchPose result = {-7.0, -7.0, -7.0, -7.0};
        const int32_t status = probe.call([&] { return scene.match(mode, 3.0, &result); });
        if (zelmtest::allocCounters().faultHit) {
            EXPECT_EQ(status, ZELM_ERR_MEMORY);
            EXPECT_EQ(result.angle, closedForm.angle);
            EXPECT_EQ(result.x, closedForm.x);
        } else {
            EXPECT_EQ(status, ZELM_OK);
            EXPECT_EQ(result.angle == closedForm.angle, mode < 2);
        }
    }
}

ZELM_NO_ALLOCATION_CASE(zelmMatchPoints) {
    const Point2d points[2] = {{1.0, 2.0}, {3.0, 4.0}};
    const ZelmMatchPose pose = {0.0, 0.0, 0.0, 1.0};
    Point2d moved[2];
    double distance[2];
    EXPECT_EQ(probe.call([&] { return zelmMatchPoints(2, points, points, &pose, &pose, moved, distance); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmMatchDelta) {
    const ZelmMatchPose pose = {0.0, 0.0, 0.0, 1.0};
    double v[4];
    EXPECT_EQ(probe.call([&] { return zelmMatchDelta(&pose, &pose, v, v + 1, v + 2, v + 3); }), ZELM_OK);
}
