// How the right camera stands to the left one, against the rig that was made so.
#include <gtest/gtest.h>

#include <cmath>

#include "isClose.h"
#include "measureRigs.h"

namespace zelmtest {
namespace {

// Products of three rotations, and of lengths of some hundred units.
constexpr double kRounding = 1e-12;

RigTruth rigOf(const render::Pose& rightFromLeft) {
    RigTruth rig = trueRig();
    rig.rightPose = render::compose(rightFromLeft, rig.leftPose);
    return rig;
}

TEST(MeasureRelativePose, RotationBaselineAndConvergenceAreTheRigs) {
    // Turned by an angle about y, then rolled about the right camera's axis, which leaves the angle between the axes.
    for (const double convergence : {0.02, 0.35, -0.5}) {
        SCOPED_TRACE(convergence);
        const render::Pose turn = poseOfVectors({0.0, convergence, 0.0}, {-148.0, 3.0, 20.0});
        const render::Pose roll = poseOfVectors({0.0, 0.0, 0.1}, {0.0, 0.0, 0.0});
        const render::Pose truth = render::compose(roll, turn);
        const OpenedRig rig(rigOf(truth).block());
        auto pose = emptyRecord<ZelmMeasureRelativePose>();
        pose.reserved = 5;
        ASSERT_EQ(zelmMeasureRigRelativePose(rig.get(), &pose), ZELM_OK);
        for (std::size_t i = 0; i < 9; ++i) {
            EXPECT_TRUE(isClose(pose.R[i], truth.R[i], kRounding));
        }
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_TRUE(isClose(pose.t[i], truth.t[i], kRounding));
        }
        EXPECT_TRUE(isClose(pose.baseline, std::sqrt(148.0 * 148.0 + 3.0 * 3.0 + 20.0 * 20.0), kRounding));
        // The arc cosine of an angle of 0.02 loses a factor of 1 / 0.02.
        EXPECT_TRUE(isClose(pose.convergence, std::fabs(convergence), 50.0 * kRounding));
        EXPECT_EQ(pose.reserved, 0);
        EXPECT_EQ(pose.size, static_cast<std::int32_t>(sizeof pose));
    }
}

TEST(MeasureRelativePose, AlignedAxesDoNotConverge) {
    const OpenedRig rig(rigOf(poseOfVectors({0.0, 0.0, 0.0}, {-100.0, 0.0, 0.0})).block());
    auto pose = emptyRecord<ZelmMeasureRelativePose>();
    ASSERT_EQ(zelmMeasureRigRelativePose(rig.get(), &pose), ZELM_OK);
    // Rounding of the cosine's last bit is an angle of 1.5e-8.
    EXPECT_GE(pose.convergence, 0.0);
    EXPECT_LE(pose.convergence, 1e-7);
    EXPECT_TRUE(isClose(pose.baseline, 100.0, kRounding));
}

TEST(MeasureRelativePose, ParallelCamerasHaveNone) {
    for (const auto& block : {trueRig(1280, 960, render::Projection::parallel).block(), parallelBlock()}) {
        const OpenedRig rig(block);
        auto pose = emptyRecord<ZelmMeasureRelativePose>();
        pose.baseline = -7.0;
        EXPECT_EQ(zelmMeasureRigRelativePose(rig.get(), &pose), ZELM_MEASURE_ERR_DATA);
        EXPECT_EQ(rig.error(), "no baseline: a parallel camera has no centre");
        EXPECT_EQ(pose.baseline, -7.0);
    }
}

}  // namespace
}  // namespace zelmtest
