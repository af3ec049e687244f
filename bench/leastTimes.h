// A console reporter that keeps the least processor time of each benchmark, for ratios between sizes of one work.
#ifndef ZELM_BENCH_LEAST_TIMES_H
#define ZELM_BENCH_LEAST_TIMES_H

#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace zelmbench {

class LeastTimes : public benchmark::ConsoleReporter {
public:
    LeastTimes() : ConsoleReporter(OO_Tabular) {}
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                const std::string name = run.run_name.function_name + "/" + run.run_name.args;
                const auto [entry, isNew] = least.emplace(name, run.GetAdjustedCPUTime());
                entry->second = isNew ? entry->second : std::min(entry->second, run.GetAdjustedCPUTime());
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }
    // Of "function/argument", in its unit; 0 when it did not run.
    double of(const std::string& name) const {
        const auto entry = least.find(name);
        return entry == least.end() ? 0.0 : entry->second;
    }

private:
    std::map<std::string, double> least;
};

}  // namespace zelmbench

#endif
