// Correlation of single windows and of a template along a strip: each tier beside the limit that the processor's
// multiply-adds set, and the strip beside OpenCV's normalised template matching, on the same data, one thread, in one
// process. Scores are compared before anything is timed. Many short repetitions; the last lines give fractions and
// ratios of the shortest times, as the others tell more about the machine's load.
//
// The limit is that of a window by itself. It counts what cannot be avoided there: a multiply-add for each 16 pixels
// and each of sum(IT) and sum(II), and a sum of bytes for each 32 pixels, at the throughput measured in the same run.
// Loads, widening, additions, the ends of rows, the choice of the tier and the square root come on top. Windows that
// follow one another share sum(II) and sum(I), so that a list may exceed it.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "corrAlongPoints.h"
#include "correlation.h"
#include "processors.h"
#include "random.h"
#include "ratioReporter.h"
#ifdef ZELM_BENCH_PEER
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using zelmtest::ForcedProcessor;
using zelmtest::Processor;
using zelmtest::Random;

constexpr std::int32_t kStripWidth = 833;
constexpr std::int32_t kMaxRows = 64;

// A textured strip, and a square template cut from it.
struct Scene {
    explicit Scene(std::int32_t templateSize) : size(templateSize) {
        Random random(1);
        for (std::int32_t y = 0; y < kMaxRows; ++y) {
            for (std::int32_t x = 0; x < kStripWidth; ++x) {
                const double gray = 120.0 + 50.0 * std::sin(x / 5.1 + 0.3 * y) + 40.0 * std::cos(x / 17.0 - y / 4.0);
                strip.push_back(static_cast<std::uint8_t>(gray + 8.0 * random.uniform()));
            }
        }
        double sum = 0.0;
        double squares = 0.0;
        for (std::int32_t y = 0; y < size; ++y) {
            for (std::int32_t x = 0; x < size; ++x) {
                const std::uint8_t t = strip[static_cast<std::size_t>(y * kStripWidth + 300 + x)];
                tmpl.push_back(t);
                sum += t;
                squares += static_cast<double>(t) * t;
            }
        }
        n = size * size;
        sumT = static_cast<std::int32_t>(sum);
        variance = static_cast<std::int64_t>(n * squares - sum * sum);
        mean = sum / n;
        sigma = std::sqrt(squares / n - mean * mean);
        for (std::int32_t x = 0; x + size <= kStripWidth; ++x) {
            positions.push_back({x, 0});
        }
        scores.resize(positions.size());
    }

    float scoreAt(std::int32_t x) const {
        return zelm::nccFull(tmpl.data(), size, size, size, n, variance, sumT, strip.data() + x, kStripWidth);
    }
    void scoreAll() {
        zelm::innerCorrAlongPointsFull(
            size, size, tmpl.data(), size, nullptr, 0, kStripWidth, size, strip.data(), kStripWidth, nullptr, 0,
            positions.data(), 0, static_cast<std::int32_t>(positions.size()) - 1, scores.data(), mean, sigma, 0.0, 0.0);
    }

    std::int32_t size;
    std::int32_t n = 0;
    std::int32_t sumT = 0;
    std::int64_t variance = 0;
    double mean = 0.0;
    double sigma = 0.0;
    std::vector<std::uint8_t> strip;
    std::vector<std::uint8_t> tmpl;
    std::vector<Point2i> positions;
    std::vector<zelm::CorrScore> scores;
};

std::string squareOf(std::int32_t size) {
    return std::to_string(size) + "x" + std::to_string(size);
}

void windows(benchmark::State& state, const Processor& processor, std::int32_t size) {
    const ForcedProcessor forced{processor};
    const Scene scene(size);
    const auto last = static_cast<std::int32_t>(scene.positions.size()) - 1;
    std::int32_t x = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(scene.scoreAt(x));
        x = x < last ? x + 1 : 0;
    }
}

void list(benchmark::State& state, const Processor& processor, std::int32_t size) {
    const ForcedProcessor forced{processor};
    Scene scene(size);
    for (auto _ : state) {
        scene.scoreAll();
        benchmark::DoNotOptimize(scene.scores.data());
        benchmark::ClobberMemory();
    }
}

#ifdef ZELM_BENCH_PEER
void listPeer(benchmark::State& state, std::int32_t size) {
    Scene scene(size);
    scene.scoreAll();
    const cv::Mat strip(size, kStripWidth, CV_8UC1, scene.strip.data());
    const cv::Mat tmpl(size, size, CV_8UC1, scene.tmpl.data());
    cv::Mat result;
    cv::matchTemplate(strip, tmpl, result, cv::TM_CCOEFF_NORMED);
    for (std::size_t k = 0; k < scene.scores.size(); ++k) {
        if (std::fabs(scene.scores[k].score - static_cast<double>(result.at<float>(static_cast<int>(k)))) > 1e-3) {
            std::fprintf(stderr, "position %zu: the peer's score differs by more than 0.001\n", k);
            std::exit(1);
        }
    }
    for (auto _ : state) {
        cv::matchTemplate(strip, tmpl, result, cv::TM_CCOEFF_NORMED);
        benchmark::DoNotOptimize(result.data);
        benchmark::ClobberMemory();
    }
}
#endif

#if defined(__x86_64__)
// Twelve independent instructions; their results are not used.
#define ZELM_TWELVE(op)                                                                       \
    op " %%ymm0,%%ymm0,%%ymm1\n" op " %%ymm0,%%ymm0,%%ymm2\n" op " %%ymm0,%%ymm0,%%ymm3\n" op \
       " %%ymm0,%%ymm0,%%ymm4\n" op " %%ymm0,%%ymm0,%%ymm5\n" op " %%ymm0,%%ymm0,%%ymm6\n" op \
       " %%ymm0,%%ymm0,%%ymm7\n" op " %%ymm0,%%ymm0,%%ymm8\n" op " %%ymm0,%%ymm0,%%ymm9\n" op \
       " %%ymm0,%%ymm0,%%ymm10\n" op " %%ymm0,%%ymm0,%%ymm11\n" op " %%ymm0,%%ymm0,%%ymm12\n"
#define ZELM_CLOBBERS \
    "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7", "xmm8", "xmm9", "xmm10", "xmm11", "xmm12"
constexpr double kAtOnce = 12.0;

void multiplyAdds(benchmark::State& state) {
    for (auto _ : state) {
        __asm__ volatile(ZELM_TWELVE("vpmaddwd")::: ZELM_CLOBBERS);
    }
}

void byteSums(benchmark::State& state) {
    for (auto _ : state) {
        __asm__ volatile(ZELM_TWELVE("vpsadbw")::: ZELM_CLOBBERS);
    }
}

// The time of a window by itself, at the limit.
double limitOf(zelmbench::RatioReporter& reporter, std::int32_t size) {
    const double pixels = static_cast<double>(size) * size;
    return pixels / 16.0 * 2.0 * reporter.fastest("limit_multiplyAdd") / kAtOnce +
           pixels / 32.0 * reporter.fastest("limit_byteSum") / kAtOnce;
}

void printFraction(zelmbench::RatioReporter& reporter, const std::string& what, std::int32_t size, double windows) {
    const std::string at = squareOf(size);
    const double avx2 = reporter.fastest(what + "_AVX2_" + at) / windows;
    const double limit = limitOf(reporter, size);
    if (avx2 > 0.0 && limit > 0.0) {
        std::printf(
            "%s %s, AVX2: %.1f ns a window, %.0f %% of the multiply-add limit of %.1f ns; %.1f x the SSE4.1 tier, "
            "%.1f x the plain tier\n",
            what.c_str(), at.c_str(), avx2, 100.0 * limit / avx2, limit,
            reporter.fastest(what + "_SSE4.1_" + at) / windows / avx2,
            reporter.fastest(what + "_plain_" + at) / windows / avx2);
    }
}
#endif

// So many calls a repetition: the time that a repetition should take is no measure of them on a busy machine.
template <class Function>
void add(const std::string& name, std::int64_t calls, Function function) {
    benchmark::RegisterBenchmark(name.c_str(), function)
        ->Repetitions(200)
        ->Iterations(calls)
        ->ComputeStatistics(zelmbench::kShortest, zelmbench::shortestOf)
        ->DisplayAggregatesOnly(true);
}

void addTiers(const std::string& what, std::int64_t calls, std::int32_t size,
              void (*run)(benchmark::State&, const Processor&, std::int32_t)) {
    const auto addTier = [&](const std::string& tier, const Processor& processor) {
        add(what + "_" + tier + "_" + squareOf(size), calls,
            [=](benchmark::State& state) { run(state, processor, size); });
    };
    addTier("plain", zelmtest::plainProcessor());
    if (zelmtest::machineHasSse41Tier()) {
        addTier("SSE4.1", zelmtest::sse41Processor());
    }
    if (zelmtest::machineHasAvx2Tier()) {
        addTier("AVX2", Processor{});
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    constexpr std::int32_t kSizes[] = {33, 64};
#ifdef ZELM_BENCH_PEER
    cv::setNumThreads(1);
#endif
    for (const std::int32_t size : kSizes) {
        addTiers("nccFull", 2000, size, windows);
        addTiers("list", 3, size, list);
#ifdef ZELM_BENCH_PEER
        add("list_peer_" + squareOf(size), 1, [=](benchmark::State& state) { listPeer(state, size); });
#endif
    }
#if defined(__x86_64__)
    if (zelmtest::machineHasAvx2Tier()) {
        add("limit_multiplyAdd", 20000, multiplyAdds);
        add("limit_byteSum", 20000, byteSums);
    }
#endif

    zelmbench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nshortest times; list: positions that follow one another\n");
#if defined(__x86_64__)
    for (const std::int32_t size : kSizes) {
        printFraction(reporter, "nccFull", size, 1.0);
        printFraction(reporter, "list", size, kStripWidth - size + 1);
    }
#endif
    for (const std::int32_t size : kSizes) {
        const std::string at = squareOf(size);
        const double ours = reporter.fastest("list_AVX2_" + at);
        const double peer = reporter.fastest("list_peer_" + at);
        if (ours > 0.0 && peer > 0.0) {
            std::printf("%s template at %d positions: %.2f us, %.1f x the speed of the peer (matchTemplate, %.2f us)\n",
                        at.c_str(), kStripWidth - size + 1, ours * 1e-3, peer / ours, peer * 1e-3);
        }
    }
    return 0;
}
