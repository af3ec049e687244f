// Benchmarks in pairs, ours beside a peer's on the same inputs, in many short repetitions that bench/report lets
// alternate, and the ratios of their times at the end. Each side takes the number of the round, so that inputs change
// from call to call: a fixed one would let the processor learn every branch by heart.
#ifndef ZELM_BENCH_PAIRED_BENCH_H
#define ZELM_BENCH_PAIRED_BENCH_H

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "ratioReporter.h"

namespace zelmbench {

class PairedBench {
public:
    PairedBench(int argc, char** argv) { benchmark::Initialize(&argc, argv); }

    template <class Ours, class Peer>
    void add(const std::string& what, Ours ours, Peer peer) {
        addOne(what + "_zelm", ours);
        addOne(what + "_peer", peer);
        names.push_back(what);
    }
    void run(const std::string& peer) {
        RatioReporter reporter;
        benchmark::RunSpecifiedBenchmarks(&reporter);
        std::printf("\npeer: %s, one thread; processor times, ratios of medians and of the shortest\n", peer.c_str());
        for (const std::string& name : names) {
            reporter.printRatio(name, name + "_zelm", name + "_peer");
        }
    }

private:
    template <class Call>
    static void addOne(const std::string& name, Call call) {
        const auto loop = [call](benchmark::State& state) mutable {
            std::size_t round = 0;
            for (auto _ : state) {
                call(round++);
                benchmark::ClobberMemory();
            }
        };
        benchmark::RegisterBenchmark(name.c_str(), loop)->Repetitions(25)->MinTime(0.01)->Unit(benchmark::kMicrosecond);
    }
    std::vector<std::string> names;
};

// Ends the program where a result is not what the peer finds: a wrong one is not worth a time.
inline void demand(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "%s: not what the peer finds\n", what);
        std::exit(1);
    }
}

}  // namespace zelmbench

#endif
