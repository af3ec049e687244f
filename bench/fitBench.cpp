// Fits of lines and ellipses beside OpenCV, on the same points, which change from call to call. Results are compared
// with the peer's before they are timed.
#include <cmath>
#include <cstdint>
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "pairedBench.h"
#include "random.h"
#include "zelmLib.h"

namespace {

using zelmbench::demand;
using zelmbench::PairedBench;
using zelmtest::Random;

constexpr std::size_t kSets = 64;

struct PointSets {
    std::vector<std::vector<Point2d>> ours;
    std::vector<std::vector<cv::Point2f>> peers;

    void add(const std::vector<Point2d>& points) {
        ours.push_back(points);
        std::vector<cv::Point2f> single;
        single.reserve(points.size());
        for (const Point2d& p : points) {
            single.emplace_back(static_cast<float>(p.x), static_cast<float>(p.y));
        }
        peers.push_back(single);
    }
};

PointSets linePoints(int count) {
    PointSets sets;
    Random random(31);
    for (std::size_t k = 0; k < kSets; ++k) {
        const double turn = random.uniform(0.0, 3.1);
        std::vector<Point2d> points;
        for (int i = 0; i < count; ++i) {
            const double along = random.uniform(-100.0, 100.0);
            const double off = 0.2 * random.normal();
            points.push_back({600.0 + along * std::cos(turn) - off * std::sin(turn),
                              400.0 + along * std::sin(turn) + off * std::cos(turn)});
        }
        sets.add(points);
    }
    return sets;
}

// Outlines of dots, the share of which lies wide of them.
PointSets ellipsePoints(int count, double outliers) {
    PointSets sets;
    Random random(32);
    for (std::size_t k = 0; k < kSets; ++k) {
        const double a = random.uniform(8.0, 20.0);
        const double b = a * random.uniform(0.6, 0.95);
        const double turn = random.uniform(0.0, 3.1);
        std::vector<Point2d> points;
        for (int i = 0; i < count; ++i) {
            const double t = 6.283185307179586 * (i + random.uniform()) / count;
            const double noise = random.uniform() < outliers ? random.uniform(0.5, 3.0) : 0.05 * random.normal();
            const double x = (a + noise) * std::cos(t);
            const double y = (b + noise) * std::sin(t);
            points.push_back(
                {700.0 + x * std::cos(turn) - y * std::sin(turn), 500.0 + x * std::sin(turn) + y * std::cos(turn)});
        }
        sets.add(points);
    }
    return sets;
}

void addLines(PairedBench& bench, int count) {
    const PointSets sets = linePoints(count);
    const auto ours = [sets, count](std::size_t round) {
        Line2d line{};
        zelmFitLine(count, sets.ours[round % kSets].data(), 0, 3.0, &line);
        benchmark::DoNotOptimize(line);
        return line;
    };
    const auto peer = [sets](std::size_t round) {
        cv::Vec4f line;
        cv::fitLine(sets.peers[round % kSets], line, cv::DIST_L2, 0.0, 0.01, 0.01);
        benchmark::DoNotOptimize(line);
        return line;
    };
    for (std::size_t k = 0; k < kSets; ++k) {
        const Line2d a = ours(k);
        const cv::Vec4f b = peer(k);
        demand(std::fabs(a.a * b[2] + a.b * b[3] + a.c) < 1e-2 && std::fabs(a.a * b[0] + a.b * b[1]) < 1e-4, "line");
    }
    bench.add("line, " + std::to_string(count) + " points", ours, peer);
}

void addEllipses(PairedBench& bench, int count, bool robust) {
    const PointSets sets = ellipsePoints(count, robust ? 0.1 : 0.0);
    const auto ours = [sets, count, robust](std::size_t round) {
        Ellipse2d ellipse{};
        zelmFitEllipse(count, sets.ours[round % kSets].data(), robust ? 1 : 0, 3.0, &ellipse);
        benchmark::DoNotOptimize(ellipse);
        return ellipse;
    };
    const auto peer = [sets](std::size_t round) {
        const cv::RotatedRect ellipse = cv::fitEllipseDirect(sets.peers[round % kSets]);
        benchmark::DoNotOptimize(ellipse);
        return ellipse;
    };
    for (std::size_t k = 0; k < kSets && !robust; ++k) {
        const Ellipse2d a = ours(k);
        const cv::RotatedRect b = peer(k);
        demand(std::hypot(a.x - b.center.x, a.y - b.center.y) < 0.02, "ellipse");
    }
    bench.add((robust ? "robust ellipse, " : "ellipse, ") + std::to_string(count) + " points", ours, peer);
}

}  // namespace

int main(int argc, char** argv) {
    cv::setNumThreads(1);
    PairedBench bench(argc, argv);
    for (const int count : {20, 100, 1000}) {
        addLines(bench, count);
    }
    for (const bool robust : {false, true}) {
        for (const int count : {20, 100}) {
            addEllipses(bench, count, robust);
        }
    }
    bench.run("OpenCV " + cv::getVersionString() + ", lines in single precision, each ellipse one plain fit");
    return 0;
}
