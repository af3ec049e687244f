// How often the checks of sound calibrations alarm.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "flawedCalibration.h"
#include "soundChecks.h"

namespace zelmtest {
namespace {

using namespace zelm::measure;

TEST(SoundChecks, SoundCalibrationsSeldomAlarm) {
    int alarmed = 0;
    int likely = 0;
    for (std::uint64_t seed = 1; seed <= 100; ++seed) {
        SimulatedCalibration calibration = simulate({}, seed, 7);
        calibration.takeTruth(0.01);
        const std::vector<Check> checks = calibration.checks();
        expectSound(checks);
        alarmed += std::any_of(checks.begin(), checks.end(), alarms) ? 1 : 0;
        // 8 times the probability of one test: below 0.8 in one of ten.
        likely += checkOf(checks, CheckKind::pitch).p < 0.8 ? 1 : 0;
    }
    // One in a hundred is meant; of 100 more than 5 come once in two thousand suites.
    EXPECT_LE(alarmed, 5);
    // Ten are meant, with a deviation of three.
    EXPECT_GE(likely, 1);
    EXPECT_LE(likely, 22);
}

}  // namespace
}  // namespace zelmtest
