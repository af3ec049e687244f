// How long plans take: the next pose, and plans of few and of many views.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "planFixtures.h"

namespace zelmtest {
namespace {

constexpr int kRepetitions = 11;

// Two cameras of 1280 x 960 pixels and a plate of 13 x 11 dots.
PlanSetup usualSetup(std::int32_t criterion) {
    PlanSetup setup;
    for (ZelmMeasureCamera* const camera : {&setup.left, &setup.right}) {
        camera->width *= 2;
        camera->height *= 2;
        for (const std::size_t i : {0U, 1U, 2U, 4U, 5U}) {
            camera->intrinsics.A[i] *= 2.0;
        }
    }
    setup.plate = {120.0, 100.0, 4.0, 7.0, 10.0, 10.0, 30.0, 30.0, 3, 0, 30, 0, 3.0, 0, 0};
    setup.options.criterion = criterion;
    return setup;
}

// Milliseconds of the processor.
template <class Work>
double millisecondsOf(Work work) {
    const std::clock_t start = std::clock();
    work();
    return 1e3 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

void mustBeOk(std::int32_t status, const OpenedPlan& plan) {
    if (status < 0) {
        std::fprintf(stderr, "zelm_plan_times: %s\n", plan.error().c_str());
        std::exit(1);
    }
}

struct Times {
    double median = 0.0;
    double most = 0.0;
};

Times timesOfNext(const OpenedPlan& plan) {
    std::vector<double> times;
    for (int i = 0; i < kRepetitions; ++i) {
        auto view = emptyRecord<ZelmMeasurePlanView>();
        times.push_back(millisecondsOf([&] { mustBeOk(zelmMeasurePlanNext(plan.get(), &view), plan); }));
    }
    std::sort(times.begin(), times.end());
    return {times[kRepetitions / 2], times.back()};
}

void printCriterion(std::int32_t criterion, const char* name) {
    const PlanSetup setup = usualSetup(criterion);
    const double opening = millisecondsOf([&] { const OpenedPlan opened(setup); });
    const OpenedPlan plan(setup);
    double tolerance = 0.0;
    for (const std::int32_t views : {3, 12, 100}) {
        const double all = millisecondsOf([&] { mustBeOk(zelmMeasurePlanFewest(plan.get(), 0.0, views), plan); });
        const ZelmMeasurePlanFigures figures = plan.figures();
        const double value = criterion == ZELM_MEASURE_PLAN_WORST ? figures.worst : figures.rms;
        tolerance = views == 12 ? value : tolerance;
        const Times next = timesOfNext(plan);
        std::printf("| %s | %d | %.4f | %.0f ms | %.0f ms | %.0f ms |\n", name, views, value, all, next.median,
                    next.most);
        std::fflush(stdout);
    }
    const double fewest = millisecondsOf([&] { mustBeOk(zelmMeasurePlanFewest(plan.get(), tolerance, 100), plan); });
    std::printf("| %s | fewest that meet %.4f: %d | | %.0f ms | | |\n", name, tolerance, plan.views(), fewest);
    std::printf("| %s | opened | | %.0f ms | | |\n", name, opening);
}

}  // namespace
}  // namespace zelmtest

int main() {
    std::printf(
        "| criterion | views | U95 | planned in | next view: median | at most |\n|---|---:|---:|---:|---:|---:|\n");
    zelmtest::printCriterion(ZELM_MEASURE_PLAN_WORST, "worst");
    zelmtest::printCriterion(ZELM_MEASURE_PLAN_RMS, "rms");
    return 0;
}
