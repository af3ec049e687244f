// Drift told with a calibration that has its covariance: its own errors are none, and no more than these stay unseen.
#include <gtest/gtest.h>

#include <cmath>

#include "epipolarModel.h"
#include "freshCalibrations.h"

namespace zelmtest {
namespace {

using zelm::measure::EpipolarModel;
using zelm::measure::kEpipolarParameters;
using zelm::measure::rigOfBlock;

double distanceOf(const TruePair& pair, Point2d left, Point2d right) {
    const zelm::measure::Rig rig = rigOfBlock(blockOf(pair));
    const EpipolarModel model(rig);
    return model.at({}).distance(model.rays(left, right).value()).value;
}

TEST(DriftCovariance, DerivativesByTheCalibrationAreDifferences) {
    const TruePair truth = sideBySideRig().pair();
    const zelm::measure::Rig rig = rigOfBlock(blockOf(truth));
    const EpipolarModel model(rig);
    const DriftPairs pairs = driftPairs(sideBySideRig(), {.points = 20, .noise = 0.0}, 4);
    ParameterVector steps = smallSteps(truth);
    for (double& step : steps) {
        step *= 0.1;
    }
    for (std::size_t i = 0; i < pairs.isWrong.size(); ++i) {
        const Point2d left{pairs.left[2 * i], pairs.left[2 * i + 1]};
        const Point2d right{pairs.right[2 * i], pairs.right[2 * i + 1]};
        const auto derivatives = model.byCalibration(model.rays(left, right).value());
        for (std::size_t k = 0; k < kEpipolarParameters; ++k) {
            ParameterVector by{};
            by[k] = steps[k];
            const double up = distanceOf(moved(truth, by), left, right);
            by[k] = -steps[k];
            const double change = up - distanceOf(moved(truth, by), left, right);
            // A step moves pixels by hundredths; what is not linear of that is below a thousandth.
            EXPECT_NEAR(2.0 * steps[k] * derivatives[k], change, 1e-3 * std::fabs(change) + 1e-5) << k;
        }
    }
}

TEST(DriftCovariance, AFreshCalibrationsOwnErrorIsNoDrift) {
    constexpr int kTrials = 200;
    const FreshCalibrations trials(0.1, 4);
    int alarms = 0;
    int alarmsWithout = 0;
    double squares = 0.0;
    for (std::uint64_t seed = 1; seed <= kTrials; ++seed) {
        const DriftScene scene{.points = 200, .noise = 0.02};
        const ZelmMeasureDrift known = trials.drift(seed, {}, scene, true);
        EXPECT_EQ(known.covariance, 1);
        alarms += known.found;
        alarmsWithout += seed <= 20 ? trials.drift(seed, {}, scene, false).found : 0;
        for (const ZelmMeasureDriftSingle& s : known.singles) {
            squares += std::pow(s.value / s.deviation, 2.0) / (5.0 * kTrials);
        }
    }
    // The level is 0.0001: such a test alarms once in fifty, which the seeds decide once for all.
    EXPECT_EQ(alarms, 0);
    EXPECT_GE(alarmsWithout, 18);
    // The deviations are true. Were the five one and the same, their mean had a deviation of sqrt(2 / 200) = 0.1.
    EXPECT_NEAR(squares, 1.0, 0.4);
}

TEST(DriftCovariance, AHundredthOfADegreeIsFoundAllTheSame) {
    const FreshCalibrations trials(0.02, 10);
    for (const std::size_t axis : {0U, 2U}) {
        RightMove move;
        move.turn[axis] = radiansOf(0.01);
        for (std::uint64_t seed = 1; seed <= 20; ++seed) {
            const ZelmMeasureDrift drift = trials.drift(seed, move, {}, true);
            EXPECT_EQ(drift.found, 1);
            EXPECT_EQ(drift.best, static_cast<std::int32_t>(axis));
            EXPECT_NEAR(drift.singles[axis].value, radiansOf(0.01), 5.0 * drift.singles[axis].deviation);
        }
    }
}

TEST(DriftCovariance, ExactPairsAndHugeDriftsGiveNumbers) {
    const FreshCalibrations trials(0.02, 10);
    const ZelmMeasureDrift exact = trials.drift(1, {}, {.noise = 0.0}, true);
    EXPECT_EQ(exact.found, 0);
    RightMove move;
    move.turn = {radiansOf(0.5), radiansOf(-0.4), radiansOf(0.6)};
    const ZelmMeasureDrift huge = trials.drift(2, move, {}, true);
    EXPECT_EQ(huge.found, 1);
    for (const ZelmMeasureDrift& d : {exact, huge}) {
        for (std::size_t k = 0; k < 5; ++k) {
            EXPECT_TRUE(std::isfinite(d.all[k]) && d.allDeviations[k] > 0.0 && d.singles[k].deviation > 0.0) << k;
        }
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
        EXPECT_NEAR(huge.all[axis], move.turn[axis], 5.0 * huge.allDeviations[axis]);
    }
}

}  // namespace
}  // namespace zelmtest
