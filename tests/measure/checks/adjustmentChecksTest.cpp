// Checks of simulated calibrations: flaws are found, named and sized, and what cannot be checked says so. How often
// sound ones alarm is in soundChecksTest.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "checkWords.h"
#include "flawedCalibration.h"
#include "soundChecks.h"

namespace zelmtest {
namespace {

using namespace zelm::measure;

// The halves see every flaw, and are left to the tests that mean them.
std::set<CheckKind> alarming(const std::vector<Check>& checks) {
    std::set<CheckKind> kinds;
    for (const Check& check : checks) {
        if (alarms(check) && check.kind != CheckKind::halves) {
            kinds.insert(check.kind);
        }
    }
    return kinds;
}

// As wide as the usual plate, with fewer dots: what the tests look for is far beyond the noise of either.
zelm::render::Plate coarsePlate() {
    zelm::render::Plate plate;
    plate.minX = -4;
    plate.maxX = 4;
    plate.minY = -3;
    plate.maxY = 3;
    plate.pitchX = plate.pitchY = 15.0;
    return plate;
}

std::vector<Check> checksOfAdjusted(const CalibrationFlaws& flaws, std::uint64_t seed, int views = 9,
                                    const zelm::render::Plate& plate = coarsePlate()) {
    SimulatedCalibration calibration = simulate(flaws, seed, views, plate);
    calibration.adjust();
    const std::vector<Check> checks = calibration.checks();
    expectSound(checks);
    return checks;
}

// The flaw is found, and what is found is the truth: within four deviations and what the first step misses of it.
void expectFound(const Check& check, double truth) {
    EXPECT_TRUE(alarms(check)) << wordsOf(check);
    EXPECT_NEAR(check.value, truth, 4.0 * check.deviation + 0.02 * truth) << wordsOf(check);
}

TEST(AdjustmentChecks, AdjustedSoundCalibration) {
    const std::vector<Check> checks = checksOfAdjusted({}, 1);
    ASSERT_EQ(checks.size(), 8U);
    for (const Check& check : checks) {
        EXPECT_EQ(check.verdict, CheckVerdict::fine) << wordsOf(check);
    }
}

TEST(AdjustmentChecks, BentPlate) {
    CalibrationFlaws flaws;
    flaws.bow = 0.05;
    const std::vector<Check> checks = checksOfAdjusted(flaws, 2);
    expectFound(checkOf(checks, CheckKind::bow), 0.05);
    EXPECT_EQ(checkOf(checks, CheckKind::bow).verdict, CheckVerdict::wrong);
    EXPECT_EQ(alarming(checks), std::set{CheckKind::bow});
    EXPECT_TRUE(alarms(checkOf(checks, CheckKind::halves)));
}

TEST(AdjustmentChecks, BowThatIsEstimated) {
    CalibrationFlaws flaws;
    flaws.bow = 0.05;
    SimulatedCalibration calibration = simulate(flaws, 2, 9, coarsePlate());
    calibration.options.estimateBow = true;
    calibration.adjust();
    const std::vector<Check> checks = calibration.checks();
    expectSound(checks);
    expectFound(checkOf(checks, CheckKind::bow), 0.05);
    EXPECT_EQ(checkOf(checks, CheckKind::bow).verdict, CheckVerdict::notable);
    EXPECT_EQ(alarming(checks), std::set{CheckKind::bow});
    EXPECT_EQ(checkOf(checks, CheckKind::halves).verdict, CheckVerdict::fine);
}

TEST(AdjustmentChecks, PitchRatio) {
    CalibrationFlaws flaws;
    flaws.pitchRatio = 1.0001;
    const std::vector<Check> checks = checksOfAdjusted(flaws, 3);
    expectFound(checkOf(checks, CheckKind::pitch), 1e-4);
    EXPECT_EQ(alarming(checks), std::set{CheckKind::pitch});
}

// What is left of second order passes for no other flaw.
TEST(AdjustmentChecks, PitchRatioThatIsFarOff) {
    for (const double ratio : {1.002, 0.99, 1.02}) {
        CalibrationFlaws flaws;
        flaws.pitchRatio = ratio;
        const std::vector<Check> checks = checksOfAdjusted(flaws, 3);
        const Check& pitch = checkOf(checks, CheckKind::pitch);
        EXPECT_EQ(pitch.verdict, CheckVerdict::wrong);
        EXPECT_NEAR(pitch.value, ratio - 1.0, 4.0 * pitch.deviation);
        EXPECT_EQ(alarming(checks), std::set{CheckKind::pitch}) << ratio;
        EXPECT_TRUE(alarms(checkOf(checks, CheckKind::halves))) << ratio;
    }
}

TEST(AdjustmentChecks, MovedViews) {
    for (const std::size_t axis : {0U, 1U, 2U}) {
        for (const bool isTurn : {false, true}) {
            CalibrationFlaws flaws;
            flaws.movedView = static_cast<int>(3 + axis);
            (isTurn ? flaws.turnedDegrees : flaws.moved)[axis] = 0.02;
            const std::vector<Check> checks = checksOfAdjusted(flaws, 4 + axis, 7, zelm::render::Plate{});
            const Check& check = checkOf(checks, CheckKind::moved);
            EXPECT_EQ(alarming(checks), std::set{CheckKind::moved});
            EXPECT_EQ(check.view, flaws.movedView);
            if (isTurn) {
                EXPECT_NEAR(check.turnDegrees, 0.02, 4.0 * check.turnDeviation);
                // About the plate's middle, which stays.
                EXPECT_LT(check.value, 4.0 * check.deviation);
            } else {
                expectFound(check, 0.02);
            }
        }
    }
}

TEST(AdjustmentChecks, ViewThatTheAdjustmentLeftOut) {
    CalibrationFlaws flaws;
    flaws.movedView = 5;
    flaws.moved = {0.3, 0.0, 0.4};
    const std::vector<Check> checks = checksOfAdjusted(flaws, 7);
    const Check& check = checkOf(checks, CheckKind::moved);
    EXPECT_EQ(check.view, 5);
    EXPECT_EQ(check.verdict, CheckVerdict::notable);
    // Poses of single images: some 0.01 units in depth, ten times as much of unfavourable ones.
    EXPECT_NEAR(check.value, 0.5, 0.05);
    EXPECT_LT(check.turnDegrees, 0.1);
    EXPECT_NE(wordsOf(check).find("view 5 takes no part"), std::string::npos) << wordsOf(check);
    EXPECT_EQ(alarming(checks), std::set{CheckKind::moved});
}

TEST(AdjustmentChecks, LensTermsThatTheModelLacks) {
    CalibrationFlaws radial;
    radial.k3 = 0.02;
    radial.isWide = true;
    const std::vector<Check> ofLeft = checksOfAdjusted(radial, 8);
    const Check& left = checkOf(ofLeft, CheckKind::lens, kLeft);
    EXPECT_TRUE(alarms(left));
    EXPECT_EQ(left.group, kRadial);
    EXPECT_NEAR(left.coefficient, 0.02, 4.0 * left.coefficientSigma + 0.001);
    EXPECT_FALSE(alarms(checkOf(ofLeft, CheckKind::lens, kRight)));
    EXPECT_EQ(alarming(ofLeft), std::set{CheckKind::lens});

    CalibrationFlaws decentred;
    decentred.decentring = 5e-4;
    const std::vector<Check> ofRight = checksOfAdjusted(decentred, 9);
    EXPECT_TRUE(alarms(checkOf(ofRight, CheckKind::lens, kRight)));
    EXPECT_FALSE(alarms(checkOf(ofRight, CheckKind::lens, kLeft)));
    EXPECT_EQ(alarming(ofRight), std::set{CheckKind::lens});
}

TEST(AdjustmentChecks, DiametersOfMeasuredDots) {
    CalibrationFlaws flaws;
    flaws.diameter = 1.1;
    flaws.hasScales = true;
    const std::vector<Check> checks = checksOfAdjusted(flaws, 10);
    for (const CheckKind kind : {CheckKind::dotDiameter, CheckKind::markerDiameter}) {
        expectFound(checkOf(checks, kind), 0.1);
        EXPECT_EQ(checkOf(checks, kind).verdict, CheckVerdict::wrong);
    }
    EXPECT_EQ(alarming(checks), (std::set{CheckKind::dotDiameter, CheckKind::markerDiameter}));
    flaws.diameter = 1.02;  // beyond chance, but harmless
    EXPECT_EQ(checkOf(checksOfAdjusted(flaws, 10), CheckKind::dotDiameter).verdict, CheckVerdict::notable);
}

TEST(AdjustmentChecks, TwoFlawsAtOnce) {
    CalibrationFlaws flaws;
    flaws.bow = 0.05;
    flaws.movedView = 2;
    flaws.moved = {0.02, 0.0, 0.0};
    const std::vector<Check> checks = checksOfAdjusted(flaws, 11);
    expectFound(checkOf(checks, CheckKind::bow), 0.05);
    expectFound(checkOf(checks, CheckKind::moved), 0.02);
    EXPECT_EQ(checkOf(checks, CheckKind::moved).view, 2);
    EXPECT_EQ(alarming(checks), (std::set{CheckKind::bow, CheckKind::moved}));
}

TEST(AdjustmentChecks, TooFewViewsForHalves) {
    const std::vector<Check> checks = checksOfAdjusted({}, 12, 5);
    EXPECT_EQ(checkOf(checks, CheckKind::halves).verdict, CheckVerdict::undone);
    EXPECT_EQ(checkOf(checks, CheckKind::halves).p, 1.0);
    EXPECT_NE(wordsOf(checkOf(checks, CheckKind::halves)).find("6 views"), std::string::npos);
    EXPECT_TRUE(alarming(checks).empty());
}

TEST(AdjustmentChecks, OneCameraAlone) {
    SimulatedCalibration calibration = simulate({}, 13, 9, coarsePlate());
    for (AdjustView& view : calibration.views) {
        view.dots[kRight].clear();
    }
    calibration.adjust();
    const std::vector<Check> checks = calibration.checks();
    expectSound(checks);
    EXPECT_EQ(checkOf(checks, CheckKind::moved).verdict, CheckVerdict::undone);
    EXPECT_EQ(checkOf(checks, CheckKind::lens, kRight).verdict, CheckVerdict::undone);
    EXPECT_TRUE(alarming(checks).empty());
}

TEST(AdjustmentChecks, NothingOrGarbage) {
    SimulatedCalibration none = simulate({}, 14, 3);
    for (AdjustView& view : none.views) {
        view.dots[kLeft].clear();
        view.dots[kRight].clear();
    }
    none.takeTruth(0.01);
    for (const Check& check : none.checks()) {
        EXPECT_EQ(check.verdict, CheckVerdict::undone) << wordsOf(check);
    }
    expectSound(none.checks());

    SimulatedCalibration garbage = simulate({}, 15, 6);
    garbage.takeTruth(0.01);
    garbage.views[1].dots[kLeft][7].pixel.x = std::numeric_limits<double>::quiet_NaN();
    garbage.views[2].dots[kRight][3].place[2] = std::numeric_limits<double>::infinity();
    garbage.state.poses[3][4] = std::numeric_limits<double>::quiet_NaN();
    garbage.scales[kPlainDot].assign(20, std::numeric_limits<double>::quiet_NaN());
    expectSound(garbage.checks());

    SimulatedCalibration exact = simulate(CalibrationFlaws{.noise = 0.0}, 16, 6);
    exact.takeTruth(1e-6);
    expectSound(exact.checks());
}

}  // namespace
}  // namespace zelmtest
