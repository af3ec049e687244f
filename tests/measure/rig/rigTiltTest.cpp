// The tilt of the plate that a parallel camera was calibrated from.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "measureRigs.h"

namespace zelmtest {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;

// A rig whose left camera is parallel and sees the plate as aimed.
RigTruth tiltedRig(double tiltDegrees, double axisDegrees, double rollDegrees) {
    RigTruth rig = trueRig(1280, 960, render::Projection::parallel);
    render::Aim aim;
    aim.pixel = {rig.left.cx, rig.left.cy};
    aim.tiltDegrees = tiltDegrees;
    aim.tiltAxisDegrees = axisDegrees;
    aim.rollDegrees = rollDegrees;
    rig.leftPose = render::aimedPose(rig.left, aim);
    return rig;
}

double tiltOf(const RigTruth& truth) {
    const OpenedRig rig(truth.block());
    double tilt = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(zelmMeasureRigTilt(rig.get(), 'L', &tilt), ZELM_OK) << rig.error();
    return tilt;
}

TEST(MeasureRigTilt, KnownTiltsAreTold) {
    for (const double tilt : {1.0, 10.0, 25.0, 60.0}) {
        for (const double axis : {0.0, 33.0, 90.0, 140.0}) {
            for (const double roll : {0.0, 70.0, -160.0}) {
                SCOPED_TRACE(testing::Message() << tilt << " about " << axis << ", rolled by " << roll);
                // The arc cosine at 1 degree loses a factor of 60 to rounding.
                EXPECT_NEAR(tiltOf(tiltedRig(tilt, axis, roll)), tilt * kDegree, 1e-12);
            }
        }
    }
}

TEST(MeasureRigTilt, HeadOnPlatesAreNotTilted) {
    // Rounding of the cosine's last bit is an angle of 1.5e-8.
    EXPECT_LE(std::fabs(tiltOf(tiltedRig(0.0, 0.0, 0.0))), 1e-7);
    EXPECT_LE(std::fabs(tiltOf(tiltedRig(0.0, 0.0, 35.0))), 1e-7);
}

TEST(MeasureRigTilt, ScalesThatDifferAreATiltTakenForThem) {
    // A plate tilted by 20 degrees and calibrated as if head-on: one scale is shortened to the cosine.
    RigTruth rig = tiltedRig(0.0, 0.0, 0.0);
    rig.left.fy = rig.left.fx * std::cos(20.0 * kDegree);
    EXPECT_NEAR(tiltOf(rig), 20.0 * kDegree, 1e-12);
}

TEST(MeasureRigTilt, SkewedPixelsAreATiltTakenForThem) {
    // The same of a plate that is tilted about a slanted axis: what the camera sees of its plane is split into a
    // triangular matrix of scales and skew, and a turn in the plane.
    const RigTruth tilted = tiltedRig(25.0, 33.0, 70.0);
    const auto& R = tilted.leftPose.R;
    const double a = tilted.left.fx * R[0];
    const double b = tilted.left.fx * R[1];
    const double c = tilted.left.fx * R[3];
    const double d = tilted.left.fx * R[4];
    const double length = std::hypot(c, d);
    RigTruth skewed = tiltedRig(0.0, 0.0, 0.0);
    skewed.leftPose.R = {d / length, -c / length, 0.0, c / length, d / length, 0.0, 0.0, 0.0, 1.0};
    skewed.left.fx = (a * d - b * c) / length;
    skewed.left.fy = length;
    skewed.left.skew = (a * c + b * d) / length;
    ASSERT_GT(std::fabs(skewed.left.skew), 0.1);
    EXPECT_NEAR(tiltOf(skewed), 25.0 * kDegree, 1e-12);
}

TEST(MeasureRigTilt, PerspectiveCamerasHaveNone) {
    const OpenedRig rig(tiltedRig(10.0, 0.0, 0.0).block());
    double tilt = -7.0;
    EXPECT_EQ(zelmMeasureRigTilt(rig.get(), 'R', &tilt), ZELM_MEASURE_ERR_DATA);
    EXPECT_EQ(rig.error(), "a perspective camera's calibration allows for tilted plates: there is nothing to tell");
    EXPECT_EQ(tilt, -7.0);
}

}  // namespace
}  // namespace zelmtest
