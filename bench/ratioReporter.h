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

// Keeps every repetition's processor time, to print the ratios at the end.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    RatioReporter() : ConsoleReporter(OO_Tabular) {}
    // Of repetitions, shows the statistics alone.
    void ReportRuns(const std::vector<Run>& runs) override {
        std::vector<Run> shown;
        for (const Run& run : runs) {
            const bool isTime = run.run_type == Run::RT_Iteration;
            if (isTime && !run.error_occurred) {
                times[run.run_name.function_name].push_back(run.GetAdjustedCPUTime());
            } else if (run.aggregate_name == kShortest) {
                shortest[run.run_name.function_name] = run.GetAdjustedRealTime();
            }
            if (!isTime || run.error_occurred || run.repetitions <= 1) {
                shown.push_back(run);
            }
        }
        if (!shown.empty()) {
            ConsoleReporter::ReportRuns(shown);
        }
    }
    // The shortest time of a benchmark that computes the statistic kShortest, in its unit; 0 when it did not run. Of
    // real time, as what the system accounts to a process may fall short of it.
    double fastest(const std::string& name) { return shortest[name]; }
    // Ratios of the medians and of the shortest times, with the spread between the quartiles in percent of the median.
    void printRatio(const std::string& what, const std::string& ours, const std::string& peer) {
        if (times[ours].empty() || times[peer].empty()) {
            return;
        }
        std::printf(
            "%-46s %5.2f x the speed of the peer, %5.2f x at best  (%.4g and %.4g, spread %.0f %% and %.0f %%)\n",
            what.c_str(), quantile(peer, 0.5) / quantile(ours, 0.5), quantile(peer, 0.0) / quantile(ours, 0.0),
            quantile(ours, 0.5), quantile(peer, 0.5), spread(ours), spread(peer));
    }

private:
    double quantile(const std::string& name, double share) {
        std::vector<double> list = times[name];
        std::sort(list.begin(), list.end());
        return list[static_cast<std::size_t>(share * static_cast<double>(list.size() - 1) + 0.5)];
    }
    double spread(const std::string& name) {
        return 100.0 * (quantile(name, 0.75) - quantile(name, 0.25)) / quantile(name, 0.5);
    }
    std::map<std::string, std::vector<double>> times;
    std::map<std::string, double> shortest;
};

}  // namespace zelmbench

#endif
