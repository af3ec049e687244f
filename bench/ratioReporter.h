// A console reporter that keeps the times, for ratios between benchmarks of one run.
#ifndef ZELM_BENCH_RATIO_REPORTER_H
#define ZELM_BENCH_RATIO_REPORTER_H

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace zelmbench {

// A statistic for benchmarks of many short repetitions, whose single times are not shown.
constexpr const char* kShortest = "shortest";
inline double shortestOf(const std::vector<double>& times) {
    return *std::min_element(times.begin(), times.end());
}

// Keeps every repetition's time, to print the ratios at the end.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                times[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
            } else if (run.aggregate_name == kShortest) {
                shortest[run.run_name.function_name] = run.GetAdjustedCPUTime();
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }
    // The shortest processor time of a benchmark that computes the statistic kShortest, in its unit; 0 when it did not
    // run.
    double fastest(const std::string& name) { return shortest[name]; }
    void printRatio(const std::string& what, const std::string& ours, const std::string& peer) {
        if (times[ours].empty() || times[peer].empty()) {
            return;
        }
        std::printf("%-52s %5.2f x the speed of the peer  (ours %.4g, peer %.4g, spread %.0f %% and %.0f %%)\n",
                    what.c_str(), median(peer) / median(ours), median(ours), median(peer), spread(ours), spread(peer));
    }

private:
    double median(const std::string& name) {
        std::vector<double>& list = times[name];
        std::sort(list.begin(), list.end());
        return list[list.size() / 2];
    }
    double spread(const std::string& name) {
        const std::vector<double>& list = times[name];
        return 100.0 * (list.back() - list.front()) / median(name);
    }
    std::map<std::string, std::vector<double>> times;
    std::map<std::string, double> shortest;
};

}  // namespace zelmbench

#endif
