// Drift told by the interface: what it finds, what it leaves alone, what it refuses. bench/drift has the power at
// length.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "driftTrials.h"

namespace zelmtest {
namespace {

struct Told {
    std::int32_t status = 0;
    ZelmMeasureDrift drift{};
};

Told told(const RigTruth& calibrated, const DriftPairs& pairs, double noise = 0.0, double calibrationError = 0.0) {
    const OpenedRig rig(calibrated.block());
    auto options = emptyRecord<ZelmMeasureDriftOptions>();
    options.noise = noise;
    options.calibrationError = calibrationError;
    Told t;
    t.status = driftOf(rig, pairs, &options, &t.drift);
    return t;
}

RightMove turnBy(std::size_t axis, double degrees) {
    RightMove move;
    move.turn[axis] = radiansOf(degrees);
    return move;
}

TEST(Drift, AHundredthOfADegreeIsFoundAndNamed) {
    const RigTruth rig = sideBySideRig();
    for (const std::size_t axis : {0U, 2U}) {
        for (const double wrong : {0.0, 0.1}) {
            for (std::uint64_t seed = 1; seed <= 20; ++seed) {
                SCOPED_TRACE(seed);
                const Told t = told(rig, driftPairs(moved(rig, turnBy(axis, 0.01)), {.wrong = wrong}, seed));
                ASSERT_EQ(t.status, ZELM_OK);
                EXPECT_EQ(t.drift.found, 1);
                EXPECT_LT(t.drift.probability, 1e-4);
                EXPECT_EQ(t.drift.best, static_cast<std::int32_t>(axis));
                EXPECT_EQ(t.drift.isSingle, 1);
                const ZelmMeasureDriftSingle& s = t.drift.singles[axis];
                EXPECT_LT(s.deviation, 0.1 * radiansOf(0.01) * (axis == 0 ? 0.3 : 1.2));
                EXPECT_NEAR(s.value, radiansOf(0.01), 5.0 * s.deviation);
                EXPECT_LT(s.detectable, radiansOf(0.01));
            }
        }
    }
}

TEST(Drift, NoFalseAlarmInAThousandTrials) {
    const RigTruth rig = sideBySideRig();
    const OpenedRig opened(rig.block());
    int alarms = 0;
    double squares = 0.0;
    for (std::uint64_t seed = 1; seed <= 1000; ++seed) {
        ZelmMeasureDrift drift{};
        ASSERT_EQ(driftOf(opened, driftPairs(rig, {.points = 100, .wrong = 0.1}, 9000 + seed), nullptr, &drift),
                  ZELM_OK);
        alarms += drift.found;
        squares += std::pow(drift.singles[0].value / drift.singles[0].deviation, 2.0);
    }
    // The level is 0.0001: one alarm happens in one run of ten such tests, which the seeds decide once for all.
    EXPECT_EQ(alarms, 0);
    // The deviations are true: the mean of 1000 squares has a standard deviation of 0.045; four of them, and 2 % for
    // what estimated noise adds.
    EXPECT_NEAR(squares / 1000.0, 1.0, 0.2);
}

TEST(Drift, ShiftsAreFoundWithTheirSize) {
    const RigTruth rig = sideBySideRig();
    ZelmMeasureDrift drift = told(rig, driftPairs(rig, {}, 1)).drift;
    for (const bool isAcross : {true, false}) {
        const double* const direction = isAcross ? drift.across : drift.along;
        const int part = isAcross ? ZELM_MEASURE_DRIFT_ACROSS : ZELM_MEASURE_DRIFT_ALONG;
        const double size = isAcross ? 0.3 : 1.5;
        RightMove move;
        for (std::size_t i = 0; i < 3; ++i) {
            move.shift[i] = size * direction[i];
        }
        const Told t = told(rig, driftPairs(moved(rig, move), {.points = 1000}, 2));
        EXPECT_EQ(t.drift.found, 1);
        EXPECT_EQ(t.drift.best, part);
        EXPECT_EQ(t.drift.isSingle, 1);
        EXPECT_NEAR(t.drift.singles[part].value, size, 5.0 * t.drift.singles[part].deviation);
    }
}

TEST(Drift, SeveralPartsAreToldTogether) {
    const RigTruth rig = sideBySideRig();
    RightMove move;
    move.turn = {radiansOf(0.3), radiansOf(-0.4), radiansOf(0.5)};
    const Told t = told(rig, driftPairs(moved(rig, move), {.points = 500, .wrong = 0.1}, 3));
    EXPECT_EQ(t.drift.found, 1);
    EXPECT_EQ(t.drift.isSingle, 0);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(t.drift.all[i], move.turn[i], 5.0 * t.drift.allDeviations[i]) << i;
    }
    // Nothing but noise remains; the root mean square of 450 differs by up to four times 3.3 %.
    EXPECT_NEAR(t.drift.rmsAll, 0.05, 0.007);
}

TEST(Drift, TheBaselinesLengthIsNeverSeen) {
    const RigTruth rig = sideBySideRig();
    RigTruth longer = rig;
    // The right camera moves out along the baseline by a tenth of it.
    const render::Pose relative = render::compose(rig.rightPose, render::inverse(rig.leftPose));
    render::Pose stretched = relative;
    for (double& t : stretched.t) {
        t *= 1.1;
    }
    longer.rightPose = render::compose(stretched, rig.leftPose);
    EXPECT_EQ(told(rig, driftPairs(longer, {.points = 1000}, 4)).drift.found, 0);
}

TEST(Drift, WrongMatchesAreLeftOut) {
    const RigTruth rig = sideBySideRig();
    const OpenedRig opened(rig.block());
    const DriftPairs pairs = driftPairs(moved(rig, turnBy(0, 0.05)), {.points = 300, .wrong = 0.3}, 5);
    std::vector<std::int32_t> statuses(300, -7);
    auto drift = emptyRecord<ZelmMeasureDrift>();
    ASSERT_EQ(
        zelmMeasureDrift(opened.get(), 300, pairs.left.data(), pairs.right.data(), nullptr, statuses.data(), &drift),
        ZELM_OK);
    int mistaken = 0;
    for (std::size_t i = 0; i < statuses.size(); ++i) {
        EXPECT_TRUE(statuses[i] == 0 || statuses[i] == 1);
        mistaken += (statuses[i] == 0) == pairs.isWrong[i] ? 0 : 1;
    }
    // A wrong pair happens to lie near its epipolar line, or a good one is alone with its depth.
    EXPECT_LE(mistaken, 6);
    EXPECT_EQ(drift.used + drift.wrong, 300);
    EXPECT_EQ(drift.best, ZELM_MEASURE_DRIFT_TURN_X);
}

TEST(Drift, TheCalibrationsOwnErrorIsNoDrift) {
    const RigTruth rig = sideBySideRig();
    // About 0.02 pixel of distance.
    const DriftPairs pairs = driftPairs(moved(rig, turnBy(0, 0.001)), {.points = 2000, .noise = 0.02}, 6);
    EXPECT_EQ(told(rig, pairs).drift.found, 1);
    EXPECT_EQ(told(rig, pairs, 0.0, 0.03).drift.found, 0);
    EXPECT_EQ(told(rig, pairs, 0.02, 0.03).drift.found, 0);
}

TEST(Drift, ExactPairsTellNone) {
    for (const RigTruth& rig : {trueRig(), sideBySideRig()}) {
        const Told t = told(rig, driftPairs(rig, {.noise = 0.0}, 7), 0.05);
        EXPECT_EQ(t.status, ZELM_OK);
        EXPECT_EQ(t.drift.found, 0);
        EXPECT_LT(t.drift.rms, 1e-5);
    }
}

TEST(Drift, WhatCannotTellIsRefusedInWords) {
    const RigTruth truth = sideBySideRig();
    const OpenedRig rig(truth.block());
    const auto expectRefused = [](const OpenedRig& opened, const DriftPairs& pairs, const std::string& words) {
        auto drift = emptyRecord<ZelmMeasureDrift>();
        std::vector<std::int32_t> statuses(pairs.isWrong.size() + 1, -7);
        EXPECT_EQ(zelmMeasureDrift(opened.get(), static_cast<std::int64_t>(pairs.isWrong.size()), pairs.left.data(),
                                   pairs.right.data(), nullptr, statuses.data(), &drift),
                  ZELM_MEASURE_ERR_DATA);
        EXPECT_NE(opened.error().find(words), std::string::npos) << opened.error();
        EXPECT_EQ(drift.used, 0);
        EXPECT_EQ(statuses[0], -7);
    };
    expectRefused(rig, driftPairs(truth, {.points = 19}, 1), "only 19 of 19 pixel pairs");
    expectRefused(rig, driftPairs(truth, {.points = 0}, 1), "only 0 of 0 pixel pairs");
    expectRefused(rig, driftPairs(truth, {.points = 200, .depthRange = 5.0, .halfWidth = 3.0, .halfHeight = 3.0}, 1),
                  "in one place");
    expectRefused(rig, driftPairs(truth, {.points = 200, .depthRange = 0.0, .halfWidth = 100.0, .halfHeight = 0.0}, 1),
                  "in one place");
    expectRefused(rig, driftPairs(truth, {.points = 200, .wrong = 1.0}, 1), "no turn or shift of a camera");
    DriftPairs nothing = driftPairs(truth, {.points = 100}, 1);
    std::fill(nothing.left.begin(), nothing.left.end(), std::numeric_limits<double>::quiet_NaN());
    expectRefused(rig, nothing, "only 0 of 100 pixel pairs");
    const OpenedRig parallel(trueRig(1280, 960, render::Projection::parallel).block());
    expectRefused(parallel, driftPairs(truth, {.points = 100}, 1), "two perspective cameras alone");
}

TEST(Drift, NumbersThatAreNoneNeverComeOut) {
    const RigTruth truth = sideBySideRig();
    const OpenedRig rig(truth.block());
    DriftPairs pairs = driftPairs(truth, {.points = 100}, 8);
    pairs.left[0] = std::numeric_limits<double>::infinity();
    pairs.right[3] = std::numeric_limits<double>::quiet_NaN();
    pairs.left[8] = 1e300;
    pairs.right[21] = -1e9;
    ZelmMeasureDrift drift{};
    ASSERT_EQ(driftOf(rig, pairs, nullptr, &drift), ZELM_OK);
    EXPECT_GE(drift.unusable, 3);
    EXPECT_EQ(drift.used + drift.wrong + drift.unusable, 100);
    EXPECT_TRUE(std::isfinite(drift.probability) && std::isfinite(drift.rms) && std::isfinite(drift.noise));
    for (const ZelmMeasureDriftSingle& s : drift.singles) {
        EXPECT_TRUE(std::isfinite(s.value) && std::isfinite(s.deviation) && std::isfinite(s.probability) &&
                    std::isfinite(s.rms) && std::isfinite(s.detectable));
    }
}

}  // namespace
}  // namespace zelmtest
