// Calibration: one camera from 30 to 300 views, and what it is made of. The last line says how much longer 300 views
// take than 30; the refinement is to cost O(views), so the ratio stays near 10.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "cameraScene.h"
#include "leastTimes.h"
#include "random.h"
#include "zelm/calib.h"

namespace {

using zelmtest::CameraScene;
using zelmtest::Random;

constexpr double kNoise = 0.05;  // pixels
constexpr double kRobustThreshold = 3.5;

const ZelmCameraIntrinsics kCamera = zelmtest::perspectiveCamera(1600, 1608, 0.00125, 652, 470, -0.12, 0.08, 0);

void estimateCamera(benchmark::State& state, double robustThreshold) {
    const auto views = static_cast<std::size_t>(state.range(0));
    CameraScene scene = zelmtest::perspectiveScene(kCamera, 0, views, 1);
    Random random(2);
    scene.addNoise(kNoise, random);
    const std::vector<Zelm2ViewPtnEntry> entries = scene.entries();
    std::vector<ZelmCameraExtrinsics> poses(views);
    ZelmCameraIntrinsics camera{};
    double error = 0.0;
    for (auto _ : state) {
        const int32_t status = zelmCalibCameraParam(static_cast<int32_t>(views), entries.data(), robustThreshold,
                                                    &camera, poses.data(), &error, 0);
        if (status < 0 || std::fabs(camera.alpha - kCamera.alpha) > 2.0) {
            state.SkipWithError("the estimate is wrong");
            return;
        }
        scene.images[0][0].x += 1e-9;  // other data next time
        benchmark::DoNotOptimize(camera);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void cameraPlain(benchmark::State& state) {
    estimateCamera(state, -1.0);
}

void cameraRobust(benchmark::State& state) {
    estimateCamera(state, kRobustThreshold);
}

void homography(benchmark::State& state) {
    CameraScene scene = zelmtest::perspectiveScene(kCamera, 0, 1, 3);
    Random random(4);
    scene.addNoise(kNoise, random);
    double H[9];
    for (auto _ : state) {
        const int32_t count = zelmCalibCalcHomography(static_cast<int32_t>(scene.planes[0].size()),
                                                      scene.planes[0].data(), scene.images[0].data(), -1.0, H);
        if (count < 0) {
            state.SkipWithError("the homography failed");
            return;
        }
        scene.images[0][0].x += 1e-9;
        benchmark::DoNotOptimize(H);
    }
    state.SetItemsProcessed(state.iterations());
}

template <class Point>
void lens(benchmark::State& state, Point point) {
    double x = 0.0;
    double y = 0.0;
    double outX = 0.0;
    double outY = 0.0;
    for (auto _ : state) {
        x = x < 1279.0 ? x + 1.0 : 0.0;
        y = y < 959.0 ? y + 1.0 : 0.0;
        benchmark::DoNotOptimize(point(&kCamera, x, y, &outX, &outY));
        benchmark::DoNotOptimize(outX);
        benchmark::DoNotOptimize(outY);
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(cameraPlain)->Arg(30)->Arg(100)->Arg(300)->Unit(benchmark::kMillisecond);
BENCHMARK(cameraRobust)->Arg(30)->Arg(100)->Arg(300)->Unit(benchmark::kMillisecond);
BENCHMARK(homography)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(lens, distort, zelmCalibDistortPoint);
BENCHMARK_CAPTURE(lens, undistort, zelmCalibUnDistortPoint);

void printRatio(const zelmbench::LeastTimes& times, const std::string& name) {
    const double few = times.of(name + "/30");
    const double many = times.of(name + "/300");
    if (few > 0.0 && many > 0.0) {
        std::printf("%s: 300 views take %.2f times as long as 30\n", name.c_str(), many / few);
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    zelmbench::LeastTimes reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nleast processor times\n");
    printRatio(reporter, "cameraPlain");
    printRatio(reporter, "cameraRobust");
    benchmark::Shutdown();
    return 0;
}
