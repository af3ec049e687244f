// What a rectified pair is centred on: the common point of the axes, the plate, or the image centres.
#include <gtest/gtest.h>

#include <cmath>

#include "isClose.h"
#include "measureRigs.h"

namespace zelmtest {
namespace {

struct Centre {
    double left[2] = {-7.0, -7.0};
    double right[2] = {-7.0, -7.0};
    std::int32_t origin = -7;
};

Centre centreOf(const RigTruth& truth) {
    const OpenedRig rig(truth.block());
    Centre c;
    EXPECT_EQ(zelmMeasureRigCentre(rig.get(), c.left, c.right, &c.origin), ZELM_OK);
    return c;
}

// Principal points in the image centres, and the right camera `apart` units to the right of the left one, turned by an
// angle towards it. The plate is 400 units in front of the left camera, beside its axis.
RigTruth rigTurnedBy(double angle, double apart, double plateX) {
    RigTruth rig = trueRig();
    for (render::Camera* camera : {&rig.left, &rig.right}) {
        camera->cx = camera->width / 2;
        camera->cy = camera->height / 2;
    }
    rig.leftPose = poseOfVectors({0.0, 0.0, 0.1}, {plateX, 15.0, 400.0});
    const auto R = render::rotationFromVector({0.0, angle, 0.0});
    rig.rightPose = render::compose({R, {-R[0] * apart, -R[3] * apart, -R[6] * apart}}, rig.leftPose);
    return rig;
}

TEST(MeasureRigCentre, ThePointThatBothLookAtComesFirst) {
    // The axes meet at 100 / tan(angle) in front of the left camera.
    const Centre c = centreOf(rigTurnedBy(0.25, 100.0, 30.0));
    EXPECT_EQ(c.origin, 0);
    // Principal points have no distortion; what is left is the rounding of a triangulation at 400 units.
    for (const double* pixel : {c.left, c.right}) {
        EXPECT_TRUE(isClose(pixel[0], 640.0, 1e-9));
        EXPECT_TRUE(isClose(pixel[1], 480.0, 1e-9));
    }
}

TEST(MeasureRigCentre, BothPixelsShowOnePointWhereTheAxesPassEachOther) {
    RigTruth truth = rigTurnedBy(0.25, 100.0, 30.0);
    truth.rightPose.t[1] += 4.0;  // the right axis passes the left one at 4 units
    const Centre c = centreOf(truth);
    EXPECT_EQ(c.origin, 0);
    double F[9];
    const OpenedRig rig(truth.block());
    ASSERT_EQ(zelmMeasureRigFundamental(rig.get(), F), ZELM_OK);
    EXPECT_LE(epipolarDistance(F, {c.left[0], c.left[1]}, {c.right[0], c.right[1]}), 1e-9);
    // Of the 4 units, 17 pixels at this distance, each image takes half.
    EXPECT_NEAR(std::fabs(c.left[1] - 480.0), 8.5, 1.0);
    EXPECT_NEAR(std::fabs(c.right[1] - 480.0), 8.5, 1.0);
}

TEST(MeasureRigCentre, CamerasThatLookPastEachOtherTakeThePlate) {
    for (const double angle : {-0.1, 0.0}) {  // away from each other, and alongside
        SCOPED_TRACE(angle);
        const RigTruth truth = rigTurnedBy(angle, 40.0, 30.0);
        const Centre c = centreOf(truth);
        EXPECT_EQ(c.origin, 1);
        const Point2d left = truth.ideal('L', {0.0, 0.0, 0.0});
        const Point2d right = truth.ideal('R', {0.0, 0.0, 0.0});
        EXPECT_TRUE(isClose(c.left[0], left.x, 1e-9));  // undistortion ends within 1e-9 pixels
        EXPECT_TRUE(isClose(c.left[1], left.y, 1e-9));
        EXPECT_TRUE(isClose(c.right[0], right.x, 1e-9));
        EXPECT_TRUE(isClose(c.right[1], right.y, 1e-9));
    }
}

TEST(MeasureRigCentre, WithoutAPlateInSightTheImageCentresAreLeft) {
    const Centre c = centreOf(rigTurnedBy(-0.1, 40.0, 400.0));
    EXPECT_EQ(c.origin, 2);
    for (const double* pixel : {c.left, c.right}) {
        EXPECT_EQ(pixel[0], 640.0);
        EXPECT_EQ(pixel[1], 480.0);
    }
}

TEST(MeasureRigCentre, TheOriginNeedNotBeAskedFor) {
    const OpenedRig rig(rigTurnedBy(0.25, 100.0, 30.0).block());
    double left[2];
    double right[2];
    ASSERT_EQ(zelmMeasureRigCentre(rig.get(), left, right, nullptr), ZELM_OK);
    EXPECT_TRUE(isClose(left[0], 640.0, 1e-9));
}

}  // namespace
}  // namespace zelmtest
