// zelm_image_sets: how often the faults of simulated sets of images are named rightly, and how often sound sets are
// accused.
//   zelm_image_sets [sets of each fault] [sound sets] [--misses] [--only <words of a fault>] [--seed <first>]
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <string>

#include "imageSetTrials.h"

namespace {

using zelmtest::SetFault;

bool areMissesTold = false;
std::uint64_t firstSeed = 1;

struct Tally {
    int tried = 0;
    int right = 0;
};

void run(SetFault fault, int sets) {
    Tally all;
    std::map<std::string, Tally> bySize;
    double seconds = 0.0;
    double worst = 0.0;
    for (int i = 0; i < sets; ++i) {
        const std::uint64_t seed = (firstSeed + static_cast<std::uint64_t>(i)) * 64 + static_cast<std::uint64_t>(fault);
        const zelmtest::SetTrial trial = zelmtest::makeSetTrial(fault, seed);
        const std::clock_t start = std::clock();
        const zelmtest::SetVerdict verdict = zelmtest::judgeTrial(trial);
        const double taken = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        seconds += taken;
        worst = std::max(worst, taken);
        const std::size_t views = trial.set.views();
        Tally& size = bySize[views <= 3 ? "3" : views <= 6 ? "4-6" : "7-30"];
        for (Tally* tally : {&all, &size}) {
            tally->tried += 1;
            tally->right += verdict.isRight ? 1 : 0;
        }
        if (areMissesTold && !verdict.isRight) {
            std::string meant;
            for (const std::size_t view : trial.views) {
                meant += " " + std::to_string(view);
            }
            std::printf(
                "  seed %llu: %s; meant kind %d side %d views%s; said%s (agreeing %zu, noise %.3f limit %.3f)\n",
                static_cast<unsigned long long>(seed), trial.words.c_str(), static_cast<int>(trial.kind),
                static_cast<int>(trial.side), meant.c_str(), verdict.words.c_str(), verdict.judgement.agreeing,
                verdict.judgement.noise, verdict.judgement.limit);
        }
    }
    const auto share = [](const Tally& t) { return t.tried > 0 ? 100.0 * t.right / t.tried : 100.0; };
    std::printf("| %s | %d | %d | %.1f %% | %.0f %% | %.0f %% | %.0f %% | %.0f ms | %.0f ms |\n",
                zelmtest::nameOf(fault), all.tried, all.right, share(all), share(bySize["3"]), share(bySize["4-6"]),
                share(bySize["7-30"]), 1e3 * seconds / std::max(1, sets), 1e3 * worst);
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    int counts[2] = {100, 2000};
    int given = 0;
    std::string only;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--misses") == 0) {
            areMissesTold = true;
        } else if (std::strcmp(argv[i], "--only") == 0 && i + 1 < argc) {
            only = argv[++i];
        } else if (std::strcmp(argv[i], "--seed") == 0 && i + 1 < argc) {
            firstSeed = std::strtoull(argv[++i], nullptr, 10);
        } else if (given < 2) {
            counts[given++] = std::atoi(argv[i]);
        }
    }
    std::printf(
        "| fault | sets | named rightly | share | of 3 views | of 4 to 6 | of 7 to 30 | time | at most |\n"
        "|---|---:|---:|---:|---:|---:|---:|---:|---:|\n");
    for (int fault = 0; fault < static_cast<int>(SetFault::count); ++fault) {
        const auto which = static_cast<SetFault>(fault);
        if (std::string(zelmtest::nameOf(which)).find(only) != std::string::npos) {
            run(which, which == SetFault::none ? counts[1] : counts[0]);
        }
    }
    return 0;
}
