// zelm_checks: how often the checks of an adjustment alarm on sound calibrations, and how often they find a flaw.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "checkPower.h"
#include "checkWords.h"
#include "flawedCalibration.h"

namespace {

using zelm::measure::Check;
using zelm::measure::CheckKind;
using zelm::measure::CheckVerdict;
using zelmtest::alarms;
using zelmtest::CalibrationFlaws;

struct Trial {
    const char* words;
    CalibrationFlaws flaws;
    CheckKind kind;
    int side = -1;
    int views = 12;
};

int draws = 100;
std::string only;  // of the flaws, those whose words hold it
bool isTalking = false;
bool isTheory = false;  // how large flaws must be to be found, instead

bool isMeant(const Check& check, const Trial& trial) {
    return check.kind == trial.kind && (trial.side < 0 || check.side == trial.side) &&
           (trial.flaws.movedView < 0 || check.view == trial.flaws.movedView);
}

void run(const Trial& trial, bool isSound) {
    if (std::string(trial.words).find(only) == std::string::npos) {
        return;
    }
    int found = 0;
    int wrong = 0;
    int others = 0;
    int halves = 0;
    double value = 0.0;
    double deviation = 0.0;
    double shift = 0.0;
    double limit = 0.0;
    double seconds = 0.0;
    for (int draw = 1; draw <= draws; ++draw) {
        auto calibration = zelmtest::simulate(trial.flaws, static_cast<std::uint64_t>(draw), trial.views);
        calibration.adjust();
        const auto start = std::chrono::steady_clock::now();
        const auto checks = calibration.checks();
        seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        bool other = false;
        for (const Check& check : checks) {
            const bool meant = !isSound && isMeant(check, trial);
            found += meant && alarms(check) ? 1 : 0;
            wrong += meant && check.verdict == CheckVerdict::wrong ? 1 : 0;
            const bool isAlike = trial.kind == CheckKind::dotDiameter && check.kind == CheckKind::markerDiameter;
            other = other || (!meant && !isAlike && alarms(check) && check.kind != CheckKind::halves);
            halves += check.kind == CheckKind::halves && alarms(check) ? 1 : 0;
            if (meant) {
                value += check.value / draws;
                deviation += check.deviation / draws;
                shift += check.shift / draws;
                limit += check.limit / draws;
            }
            if (isTalking && draw <= 2) {
                std::printf("  [%d] p %.2g value %.4g dev %.2g limit %.3g: %s\n", static_cast<int>(check.verdict),
                            check.p, check.value, check.deviation, check.limit, zelm::measure::wordsOf(check).c_str());
            }
        }
        others += other ? 1 : 0;
    }
    const double percent = 100.0 / draws;
    if (isSound) {
        std::printf("| %s | | | %.0f %% | %.0f %% | | | | %.0f ms |\n", trial.words, percent * others, percent * halves,
                    1e3 * seconds / draws);
    } else {
        std::printf("| %s | %.0f %% | %.0f %% | %.0f %% | %.0f %% | %.3g +- %.2g | %.2g | %.2g | %.0f ms |\n",
                    trial.words, percent * found, percent * wrong, percent * others, percent * halves, value, deviation,
                    shift, limit, 1e3 * seconds / draws);
    }
    std::fflush(stdout);
}

CalibrationFlaws moved(double distance, double degrees, std::size_t axis) {
    CalibrationFlaws flaws;
    flaws.movedView = 4;
    flaws.moved[axis] = distance;
    flaws.turnedDegrees[axis] = degrees;
    return flaws;
}

CalibrationFlaws with(double CalibrationFlaws::*flaw, double value) {
    CalibrationFlaws flaws;
    flaws.*flaw = value;
    return flaws;
}

void runAll() {
    std::printf(
        "| flaw | found | of these wrong | another check but the halves alarms | halves alarm | value found | moves "
        "points by | matters from | time |\n|---|---:|---:|---:|---:|---:|---:|---:|---:|\n");
    run({"none", {}, CheckKind::bow}, true);
    run({"none, 6 views", {}, CheckKind::bow, -1, 6}, true);
    run({"none, noise 0.05 px", with(&CalibrationFlaws::noise, 0.05), CheckKind::bow}, true);
    run({"k3 of 0.02, left", with(&CalibrationFlaws::k3, 0.02), CheckKind::lens, 0}, false);
    run({"k3 of 0.2, left", with(&CalibrationFlaws::k3, 0.2), CheckKind::lens, 0}, false);
    CalibrationFlaws corners = with(&CalibrationFlaws::k3, 0.02);
    corners.reachesCorners = true;
    run({"k3 of 0.02, left, plates reach the corners", corners, CheckKind::lens, 0}, false);
    corners.k3 = 0.05;
    run({"k3 of 0.05, left, plates reach the corners", corners, CheckKind::lens, 0}, false);
    CalibrationFlaws wide = with(&CalibrationFlaws::k3, 0.02);
    wide.isWide = true;
    run({"k3 of 0.02, left, lenses of twice the angle", wide, CheckKind::lens, 0}, false);
    run({"decentring p1 of 0.0005, right", with(&CalibrationFlaws::decentring, 5e-4), CheckKind::lens, 1}, false);
    run({"bow of 0.05", with(&CalibrationFlaws::bow, 0.05), CheckKind::bow}, false);
    run({"bow of 0.2", with(&CalibrationFlaws::bow, 0.2), CheckKind::bow}, false);
    run({"view 4 moved by 0.02 along x", moved(0.02, 0.0, 0), CheckKind::moved}, false);
    run({"view 4 moved by 0.02 along y", moved(0.02, 0.0, 1), CheckKind::moved}, false);
    run({"view 4 moved by 0.02 along z", moved(0.02, 0.0, 2), CheckKind::moved}, false);
    run({"view 4 turned by 0.02 deg about x", moved(0.0, 0.02, 0), CheckKind::moved}, false);
    run({"view 4 turned by 0.02 deg about y", moved(0.0, 0.02, 1), CheckKind::moved}, false);
    run({"view 4 turned by 0.02 deg about z", moved(0.0, 0.02, 2), CheckKind::moved}, false);
    run({"pitch ratio of 1.0001", with(&CalibrationFlaws::pitchRatio, 1.0001), CheckKind::pitch}, false);
    run({"pitch ratio of 1.001", with(&CalibrationFlaws::pitchRatio, 1.001), CheckKind::pitch}, false);
    CalibrationFlaws larger = with(&CalibrationFlaws::diameter, 1.1);
    run({"dots 10 % larger, not measured", larger, CheckKind::dotDiameter}, false);
    larger.hasScales = true;
    run({"dots 10 % larger, measured", larger, CheckKind::dotDiameter}, false);
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--draws" && i + 1 < argc && std::atoi(argv[i + 1]) > 0) {
            draws = std::atoi(argv[++i]);
        } else if (word == "--only" && i + 1 < argc) {
            only = argv[++i];
        } else if (word == "--sentences") {
            isTalking = true;
        } else if (word == "--power") {
            isTheory = true;
        } else {
            std::fprintf(stderr, "usage: zelm_checks [--draws N] [--only WORDS] [--sentences] | --power\n");
            return 2;
        }
    }
    try {
        isTheory ? printCheckPower(std::min(draws, 5)) : runAll();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "zelm_checks: %s\n", e.what());
        return 1;
    }
    return 0;
}
