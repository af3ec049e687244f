// Epipolar distances of cameras that have moved, and their derivatives.
#include <gtest/gtest.h>

#include <cmath>

#include "driftTrials.h"
#include "epipolarModel.h"
#include "fault.h"

namespace zelmtest {
namespace {

using zelm::measure::dot;
using zelm::measure::Drift;
using zelm::measure::EpipolarModel;
using zelm::measure::kDriftParts;
using zelm::measure::RayPair;

zelm::measure::Rig insideOf(const RigTruth& rig) {
    return zelm::measure::rigOfBlock(rig.block());
}

std::vector<RayPair> raysOf(const EpipolarModel& model, const DriftPairs& pairs) {
    std::vector<RayPair> rays;
    for (std::size_t i = 0; i < pairs.isWrong.size(); ++i) {
        const auto ray =
            model.rays({pairs.left[2 * i], pairs.left[2 * i + 1]}, {pairs.right[2 * i], pairs.right[2 * i + 1]});
        EXPECT_TRUE(ray.has_value());
        rays.push_back(*ray);
    }
    return rays;
}

// Turns by degrees, and shifts of units.
const Drift kMove{0.01, -0.02, 0.03, 0.5, -0.8};

TEST(EpipolarModel, ExactPairsOfTheMovedRigHaveNoDistance) {
    const RigTruth truth = trueRig();
    const zelm::measure::Rig rig = insideOf(truth);
    const EpipolarModel model(rig);
    RightMove move;
    for (std::size_t i = 0; i < 3; ++i) {
        move.turn[i] = kMove[i];
        move.shift[i] = kMove[3] * model.across()[i] + kMove[4] * model.along()[i];
    }
    const auto rays = raysOf(model, driftPairs(moved(truth, move), {.points = 50, .noise = 0.0}, 3));
    for (const RayPair& pair : rays) {
        // Removing the lens distortion iterates to 1e-8 or so of a pixel.
        EXPECT_NEAR(model.at(kMove).distance(pair).value, 0.0, 1e-6);
        EXPECT_GT(std::fabs(model.at({}).distance(pair).value), 1e-3);
    }
}

TEST(EpipolarModel, DerivativesAreDifferencesWhereTheDistanceIsSmall) {
    const RigTruth truth = trueRig();
    const zelm::measure::Rig rig = insideOf(truth);
    const EpipolarModel model(rig);
    const auto rays = raysOf(model, driftPairs(truth, {.points = 20, .noise = 0.0}, 4));
    for (const RayPair& pair : rays) {
        const Drift derivatives = model.at({}).distance(pair).byDrift;
        for (std::size_t k = 0; k < kDriftParts; ++k) {
            const double step = k < 3 ? 1e-5 : 1e-3;
            Drift up{};
            Drift down{};
            up[k] = step;
            down[k] = -step;
            const double difference =
                (model.at(up).distance(pair).value - model.at(down).distance(pair).value) / (2.0 * step);
            // The second order of a step is a 1e-5 of it; distances are rounded to some 1e-10 of a pixel.
            EXPECT_NEAR(derivatives[k], difference, 1e-4 * std::fabs(difference) + 1e-4) << k;
        }
    }
}

TEST(EpipolarModel, NoiseOfACoordinateIsTheDistances) {
    const RigTruth truth = trueRig();
    const zelm::measure::Rig rig = insideOf(truth);
    const EpipolarModel model(rig);
    constexpr double kNoise = 0.1;
    const auto rays = raysOf(model, driftPairs(truth, {.points = 4000, .noise = kNoise}, 5));
    double squares = 0.0;
    for (const RayPair& pair : rays) {
        squares += std::pow(model.at({}).distance(pair).value, 2.0);
    }
    // The standard deviation of a root mean square of 4000 is 1.1 % of it; four of them.
    EXPECT_NEAR(std::sqrt(squares / 4000.0), kNoise, 0.045 * kNoise);
}

TEST(EpipolarModel, ShiftsAreAtRightAnglesToTheBaseline) {
    for (const RigTruth& truth : {trueRig(), sideBySideRig()}) {
        const zelm::measure::Rig rig = insideOf(truth);
        const EpipolarModel model(rig);
        const auto t = zelm::measure::motionBetween(rig.left, rig.right).t;
        EXPECT_NEAR(dot(model.across(), t), 0.0, 1e-12 * 150.0);
        EXPECT_NEAR(dot(model.along(), t), 0.0, 1e-12 * 150.0);
        EXPECT_NEAR(dot(model.across(), model.along()), 0.0, 1e-12);
        EXPECT_NEAR(model.across()[2], 0.0, 1e-12);
        EXPECT_GT(model.across()[1], 0.8);
        EXPECT_GT(model.along()[2], 0.8);
    }
    // A camera that looks along the baseline still has two shifts.
    RigTruth ahead = trueRig();
    ahead.rightPose = render::compose(poseOfVectors({0.0, 0.0, 0.0}, {0.0, 0.0, -100.0}), ahead.leftPose);
    const zelm::measure::Rig rig = insideOf(ahead);
    const EpipolarModel model(rig);
    EXPECT_NEAR(dot(model.across(), model.across()), 1.0, 1e-12);
    EXPECT_NEAR(dot(model.along(), model.along()), 1.0, 1e-12);
}

TEST(EpipolarModel, ParallelCamerasAreRefused) {
    const zelm::measure::Rig rig = insideOf(trueRig(1280, 960, render::Projection::parallel));
    EXPECT_THROW(EpipolarModel{rig}, zelm::measure::Fault);
}

}  // namespace
}  // namespace zelmtest
