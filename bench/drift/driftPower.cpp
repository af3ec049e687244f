// How often drift is found where there is some, and where there is none: the tables of docs/accuracy.md.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "driftTrials.h"
#include "freshCalibrations.h"

namespace zelmtest {
namespace {

constexpr int kNoPart = -1;

struct Tally {
    int trials = 0;
    int failed = 0;
    int found = 0;
    int named = 0;         // the right part as the best one, and enough alone
    double sum = 0.0;      // of the part's value
    double squares = 0.0;  //

    double mean() const { return sum / trials; }
    double deviation() const { return std::sqrt(std::max(squares / trials - mean() * mean(), 0.0)); }
};

void add(const ZelmMeasureDrift& drift, int part, Tally& tally) {
    tally.found += drift.found;
    if (part != kNoPart) {
        tally.named += drift.found == 1 && drift.best == part && drift.isSingle == 1 ? 1 : 0;
        const double value = drift.singles[part].value;
        tally.sum += value;
        tally.squares += value * value;
    }
}

// `noise` is what the library is told; 0: it estimates.
Tally tallyOf(const RigTruth& truth, const RightMove& move, int part, const DriftScene& scene, double noise,
              int trials) {
    const OpenedRig rig(truth.block());
    const RigTruth now = moved(truth, move);
    auto options = emptyRecord<ZelmMeasureDriftOptions>();
    options.noise = noise;
    Tally tally;
    for (; tally.trials < trials; ++tally.trials) {
        const auto seed = static_cast<std::uint64_t>(1'000'000 + tally.trials);
        ZelmMeasureDrift drift{};
        if (driftOf(rig, driftPairs(now, scene, seed), &options, &drift) < 0) {
            tally.failed += 1;
        } else {
            add(drift, part, tally);
        }
    }
    return tally;
}

void printFalseAlarms(const RigTruth& rig, int trials) {
    std::printf(
        "## False alarms\n\n| pairs | wrong matches | noise estimated | noise given |\n|---:|---:|---:|---:|\n");
    for (const std::size_t points : {30U, 50U, 200U, 1000U}) {
        for (const double wrong : {0.0, 0.1, 0.25}) {
            if (points == 30 && wrong > 0.1) {
                continue;  // too few are left
            }
            const DriftScene scene{.points = points, .wrong = wrong};
            const int count = points > 200 ? trials / 10 : trials;
            const Tally estimated = tallyOf(rig, {}, kNoPart, scene, 0.0, count);
            const Tally given = tallyOf(rig, {}, kNoPart, scene, scene.noise, count);
            std::printf("| %zu | %.0f %% | %d of %d | %d of %d |\n", points, 100.0 * wrong, estimated.found,
                        count - estimated.failed, given.found, count - given.failed);
            std::fflush(stdout);
        }
    }
}

void printCell(const Tally& t, double unit) {
    std::printf("| %.1f %% / %.1f %% / %.4f ± %.4f ", 100.0 * t.found / t.trials, 100.0 * t.named / t.trials,
                t.mean() / unit, t.deviation() / unit);
}

void printTurns(const RigTruth& rig, const char* title, const DriftScene& scene, int trials) {
    std::printf("\n## Turn of the right camera, %s: found / named / estimate in degrees\n\n", title);
    std::printf("| turn | about x | about y | about z |\n|---:|---:|---:|---:|\n");
    for (const double degrees : {0.002, 0.005, 0.01, 0.02, 0.05}) {
        std::printf("| %.3f° ", degrees);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            RightMove move;
            move.turn[axis] = radiansOf(degrees);
            printCell(tallyOf(rig, move, static_cast<int>(axis), scene, 0.0, trials), radiansOf(1.0));
        }
        std::printf("|\n");
        std::fflush(stdout);
    }
}

void printShifts(const RigTruth& rig, const DriftScene& scene, int trials) {
    std::printf("\n## Shift of the right camera, 200 pairs: found / named / estimate\n\n");
    std::printf("| shift | across | along |\n|---:|---:|---:|\n");
    const OpenedRig opened(rig.block());
    ZelmMeasureDrift directions{};
    driftOf(opened, driftPairs(rig, scene, 1), nullptr, &directions);
    for (const double size : {0.02, 0.05, 0.1, 0.2, 0.5}) {
        std::printf("| %.2f ", size);
        for (const int part : {ZELM_MEASURE_DRIFT_ACROSS, ZELM_MEASURE_DRIFT_ALONG}) {
            const double* const d = part == ZELM_MEASURE_DRIFT_ACROSS ? directions.across : directions.along;
            RightMove move;
            std::transform(d, d + 3, move.shift.begin(), [&](double x) { return size * x; });
            printCell(tallyOf(rig, move, part, scene, 0.0, trials), 1.0);
        }
        std::printf("|\n");
        std::fflush(stdout);
    }
}

double percentFound(const FreshCalibrations& calibrations, const RightMove& move, const DriftScene& scene, bool isKnown,
                    int trials) {
    int found = 0;
    for (int trial = 0; trial < trials; ++trial) {
        found += calibrations.drift(static_cast<std::uint64_t>(2'000'000 + trial), move, scene, isKnown).found;
    }
    return 100.0 * found / trials;
}

// Of rigs that have not moved, beside calibrations that have errors, and of rigs whose right camera has turned.
void printFreshCalibrations(int trials) {
    std::printf(
        "\n## Fresh calibrations: drift told without and with their covariance\n\n"
        "| calibration | pairs | noise | none, without | none, with (of %d) | 0.01° about x, with | about z, with |\n"
        "|---|---:|---:|---:|---:|---:|---:|\n",
        10 * trials);
    for (const auto& [dotNoise, views] : {std::pair(0.02, 10), {0.1, 4}}) {
        const FreshCalibrations calibrations(dotNoise, views);
        for (const DriftScene& scene :
             {DriftScene{}, DriftScene{.wrong = 0.1}, DriftScene{.points = 1000, .noise = 0.02}}) {
            RightMove turns[2];
            turns[0].turn[0] = turns[1].turn[2] = radiansOf(0.01);
            std::printf("| %d views of dots of %.2f px | %zu%s | %.2f px | %.0f %% | %.2f %% | %.0f %% | %.0f %% |\n",
                        views, dotNoise, scene.points, scene.wrong > 0.0 ? ", 10 % wrong" : "", scene.noise,
                        percentFound(calibrations, {}, scene, false, trials),
                        percentFound(calibrations, {}, scene, true, 10 * trials),
                        percentFound(calibrations, turns[0], scene, true, trials),
                        percentFound(calibrations, turns[1], scene, true, trials));
            std::fflush(stdout);
        }
    }
}

}  // namespace
}  // namespace zelmtest

int main(int argc, char** argv) {
    const int trials = argc > 1 ? std::max(std::atoi(argv[1]), 10) : 500;
    if (argc > 2 && std::strcmp(argv[2], "fresh") == 0) {
        zelmtest::printFreshCalibrations(trials);
        return 0;
    }
    const zelmtest::RigTruth rig = zelmtest::sideBySideRig();
    zelmtest::printFalseAlarms(rig, 10 * trials);
    zelmtest::printTurns(rig, "200 pairs", {}, trials);
    zelmtest::printTurns(rig, "200 pairs, 10 % wrong", {.wrong = 0.1}, trials);
    zelmtest::printTurns(rig, "1000 pairs", {.points = 1000}, trials / 5);
    zelmtest::printShifts(rig, {}, trials);
    zelmtest::printFreshCalibrations(trials);
    return 0;
}
