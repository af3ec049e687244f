// How often drift is found where there is some, and where there is none: the tables of docs/accuracy.md.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "driftTrials.h"

namespace zelmtest {
namespace {

struct Tally {
    int trials = 0;
    int found = 0;
    int named = 0;  // the right part as the best one, and enough alone
    int alone = 0;  // and no other part does about as well
    int failed = 0;
    double sum = 0.0;      // of the part's value
    double squares = 0.0;  //
};

Tally tallyOf(const RigTruth& truth, const RightMove& move, int part, const DriftScene& scene, double knownNoise,
              int trials, std::uint64_t seed) {
    const OpenedRig rig(truth.block());
    const RigTruth now = moved(truth, move);
    auto options = emptyRecord<ZelmMeasureDriftOptions>();
    options.noise = knownNoise;
    Tally tally;
    for (int i = 0; i < trials; ++i) {
        ZelmMeasureDrift drift{};
        tally.trials += 1;
        if (driftOf(rig, driftPairs(now, scene, seed + static_cast<std::uint64_t>(i)), &options, &drift) < 0) {
            tally.failed += 1;
            continue;
        }
        const bool isNamed = drift.found == 1 && drift.best == part && drift.isSingle == 1;
        tally.found += drift.found;
        tally.named += isNamed ? 1 : 0;
        tally.alone += isNamed && drift.alternatives == 0 ? 1 : 0;
        if (part >= 0) {
            const double value = drift.singles[part].value;
            tally.sum += value;
            tally.squares += value * value;
        }
    }
    return tally;
}

double percent(int part, int all) {
    return 100.0 * part / all;
}

void printFalseAlarms(const RigTruth& rig, int trials) {
    std::printf("## False alarms in %d trials\n\n| pairs | wrong matches | noise estimated | noise given |\n", trials);
    std::printf("|---:|---:|---:|---:|\n");
    for (const std::size_t points : {20U, 50U, 200U, 1000U}) {
        for (const double wrong : {0.0, 0.1, 0.25}) {
            std::fflush(stdout);
            if (points == 20 && wrong > 0.0) {
                continue;  // too few are left
            }
            const DriftScene scene{.points = points, .wrong = wrong};
            const int count = points > 200 ? trials / 10 : trials;
            const Tally estimated = tallyOf(rig, {}, -1, scene, 0.0, count, 1'000'000);
            const Tally given = tallyOf(rig, {}, -1, scene, scene.noise, count, 50'000'000);
            std::printf("| %zu | %.0f %% | %d of %d | %d of %d |\n", points, 100.0 * wrong, estimated.found,
                        estimated.trials - estimated.failed, given.found, given.trials - given.failed);
        }
    }
}

void printPower(const RigTruth& rig, const char* title, const DriftScene& scene, int trials) {
    constexpr const char* kAxes[] = {"x", "y", "z"};
    std::printf("\n## Turn of the right camera, %s: found / named / estimate\n\n", title);
    std::printf("| turn | about x | about y | about z |\n|---:|---:|---:|---:|\n");
    for (const double degrees : {0.002, 0.005, 0.01, 0.02, 0.05}) {
        std::printf("| %.3f° ", degrees);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            RightMove move;
            move.turn[axis] = radiansOf(degrees);
            const Tally t = tallyOf(rig, move, static_cast<int>(axis), scene, 0.0, trials, 7'000'000);
            const double mean = t.sum / t.trials;
            const double deviation = std::sqrt(std::max(t.squares / t.trials - mean * mean, 0.0));
            const double toDegrees = 1.0 / radiansOf(1.0);
            std::printf("| %.1f %% / %.1f %% / %.4f ± %.4f ", percent(t.found, t.trials), percent(t.named, t.trials),
                        mean * toDegrees, deviation * toDegrees);
            static_cast<void>(kAxes);
        }
        std::printf("|\n");
        std::fflush(stdout);
    }
}

}  // namespace
}  // namespace zelmtest

int main(int argc, char** argv) {
    const int trials = argc > 1 ? std::atoi(argv[1]) : 2000;
    const zelmtest::RigTruth rig = zelmtest::sideBySideRig();
    zelmtest::printFalseAlarms(rig, 10 * trials);
    zelmtest::printPower(rig, "200 pairs", {}, trials);
    zelmtest::printPower(rig, "200 pairs, 10 % wrong", {.wrong = 0.1}, trials);
    zelmtest::printPower(rig, "1000 pairs", {.points = 1000}, trials / 4);
    return 0;
}
