// The adjustment of 12 to 300 views of 143 dots in two cameras, covariance included, beside a plain adjustment of the
// same observations by a general solver with automatic derivatives, which takes dots as projected points, and by mrcal
// where that is installed (Debian: libmrcal-dev). The last lines say what the times are, their ratios, and how much
// longer 300 views take than 12.
#include <benchmark/benchmark.h>
#include <ceres/ceres.h>
#include <ceres/rotation.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "adjustScene.h"
#include "adjuster.h"
#include "leastTimes.h"
#ifdef ZELM_BENCH_MRCAL
#include "mrcalAdjustment.h"
#endif

namespace {

using namespace zelm::measure;
using zelmtest::AdjustScene;
using zelmtest::Random;

constexpr double kNoise = 0.03;  // pixels

// The start of a calibration, and noisy dots.
struct Case {
    AdjustState start;
    std::vector<AdjustView> views;
};

Case caseOf(int views) {
    zelmtest::AdjustSceneOptions options;
    options.views = views;
    const AdjustScene scene = zelmtest::makeAdjustScene(options);
    Random random(3);
    Case c;
    c.start = scene.start(random);
    c.views = scene.noisy(kNoise, random);
    return c;
}

void adjustment(benchmark::State& state) {
    const Case c = caseOf(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        AdjustState found = c.start;
        std::vector<AdjustView> views = c.views;
        const AdjustSummary summary = adjust(found, views, {});
        const AdjustCovariance covariance = covarianceOf(found, views, {}, summary);
        if (summary.rms[kLeft] > 1.1 * kNoise) {
            state.SkipWithError("the adjustment is wrong");
            return;
        }
        benchmark::DoNotOptimize(covariance.condition);
    }
}

// A dot as the projection of its centre.
struct PointResidual {
    double x, y, u, v;

    template <class T>
    static void project(const T* camera, const T* X, T* pixel) {
        const T xn = X[0] / X[2];
        const T yn = X[1] / X[2];
        const T r2 = xn * xn + yn * yn;
        const T scale = T(1.0) + (camera[kK1] + camera[kK2] * r2) * r2;
        pixel[0] = camera[kFx] * scale * xn + camera[kSkew] * scale * yn + camera[kCx];
        pixel[1] = camera[kFy] * scale * yn + camera[kCy];
    }
    template <class T>
    static void move(const T* motion, const T* from, T* to) {
        ceres::AngleAxisRotatePoint(motion, from, to);
        for (int i = 0; i < 3; ++i) {
            to[i] += motion[3 + i];
        }
    }
    template <class T>
    bool operator()(const T* camera, const T* pose, T* residual) const {
        const T P[3] = {T(x), T(y), T(0.0)};
        T X[3];
        move(pose, P, X);
        return finish(camera, X, residual);
    }
    template <class T>
    bool operator()(const T* camera, const T* pose, const T* relative, T* residual) const {
        const T P[3] = {T(x), T(y), T(0.0)};
        T X[3];
        T Y[3];
        move(pose, P, X);
        move(relative, X, Y);
        return finish(camera, Y, residual);
    }
    template <class T>
    bool finish(const T* camera, const T* X, T* residual) const {
        T pixel[2];
        project(camera, X, pixel);
        residual[0] = (pixel[0] - T(u)) / T(kNoise);
        residual[1] = (pixel[1] - T(v)) / T(kNoise);
        return true;
    }
};

void plainSolver(benchmark::State& state) {
    const Case c = caseOf(static_cast<int>(state.range(0)));
    constexpr int kCamera = static_cast<int>(kCameraParameters);
    for (auto _ : state) {
        AdjustState found = c.start;
        ceres::Problem problem;
        ceres::Solver::Options options;
        options.linear_solver_ordering = std::make_shared<ceres::ParameterBlockOrdering>();
        for (std::size_t view = 0; view < c.views.size(); ++view) {
            double* const pose = found.poses[view].data();
            for (const Side side : {kLeft, kRight}) {
                double* const camera = found.cameras[side].p.data();
                for (const DotObservation& dot : c.views[view].dots[side]) {
                    auto* const residual = new PointResidual{dot.place[0], dot.place[1], dot.pixel.x, dot.pixel.y};
                    if (side == found.base) {
                        problem.AddResidualBlock(
                            new ceres::AutoDiffCostFunction<PointResidual, 2, kCamera, 6>(residual), nullptr, camera,
                            pose);
                    } else {
                        problem.AddResidualBlock(
                            new ceres::AutoDiffCostFunction<PointResidual, 2, kCamera, 6, 6>(residual), nullptr, camera,
                            pose, found.relative.data());
                    }
                }
                options.linear_solver_ordering->AddElementToGroup(camera, 1);
            }
            options.linear_solver_ordering->AddElementToGroup(pose, 0);
        }
        options.linear_solver_ordering->AddElementToGroup(found.relative.data(), 1);
        options.linear_solver_type = ceres::DENSE_SCHUR;
        options.function_tolerance = 1e-12;
        options.parameter_tolerance = 1e-12;
        options.max_num_iterations = 100;
        options.num_threads = 1;
        options.logging_type = ceres::SILENT;
        ceres::Solver::Summary summary;
        ceres::Solve(options, &problem, &summary);
        if (!summary.IsSolutionUsable()) {
            state.SkipWithError("the plain solver failed");
            return;
        }
    }
}

#ifdef ZELM_BENCH_MRCAL
void mrcal(benchmark::State& state) {
    const Case c = caseOf(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const double rms = zelmbench::adjustByMrcal(c.start, c.views);
        if (!(rms >= 0.0 && rms <= 1.1 * kNoise)) {
            state.SkipWithError("mrcal's adjustment is wrong");
            return;
        }
    }
}
#endif

constexpr int kRepetitions = 5;

void sizes(benchmark::internal::Benchmark* b) {
    b->Arg(12)->Arg(100)->Arg(300)->Unit(benchmark::kMillisecond)->Repetitions(kRepetitions);
}
BENCHMARK(adjustment)->Apply(sizes);
BENCHMARK(plainSolver)->Apply(sizes);
#ifdef ZELM_BENCH_MRCAL
BENCHMARK(mrcal)->Apply(sizes);
#endif

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    zelmbench::LeastTimes reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nleast processor times\n");
    for (const char* const views : {"12", "100", "300"}) {
        const double own = reporter.of(std::string("adjustment/") + views);
        const double plain = reporter.of(std::string("plainSolver/") + views);
        if (own > 0.0 && plain > 0.0) {
            std::printf("%s views: %.1f ms with covariance, plain solver %.1f ms without, %.2f x its speed\n", views,
                        own, plain, plain / own);
        }
        const double mrcalTime = reporter.of(std::string("mrcal/") + views);
        if (own > 0.0 && mrcalTime > 0.0) {
            std::printf("%s views: mrcal %.1f ms without covariance, %.2f x its speed\n", views, mrcalTime,
                        mrcalTime / own);
        }
    }
#ifndef ZELM_BENCH_MRCAL
    std::printf("mrcal not found: no comparison of the adjustment with it\n");
#endif
    const double few = reporter.of("adjustment/12");
    const double many = reporter.of("adjustment/300");
    if (few > 0.0 && many > 0.0) {
        std::printf("300 views take %.1f times as long as 12, which are a 25th\n", many / few);
    }
    benchmark::Shutdown();
    return 0;
}
