// Image kernels and triangulation beside OpenCV, on the same data, one thread, in one process, in many short
// repetitions; bench/report lets them alternate, so that what else the machine does meets all alike. Every result is
// compared with the peer's before it is timed. The last lines give the ratios of the processor times.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "random.h"
#include "ratioReporter.h"
#include "zelmLib.h"

namespace {

using zelmbench::RatioReporter;
using zelmtest::Random;

// A camera of the sample's kind, scaled to the image width, with radial distortion alone so that both libraries can
// express it: the peer's model has k1 and k2 on the same normalised radius.
struct BenchCamera {
    double record[22] = {};
    cv::Matx33d K;
    cv::Vec<double, 4> distortion;

    explicit BenchCamera(int width, int height) {
        const double f = 1.3 * width;
        const double cx = (width - 1) * 0.5;
        const double cy = (height - 1) * 0.5;
        record[9] = record[10] = f;
        record[12] = cx;
        record[13] = cy;
        record[15] = -0.12;
        record[16] = 0.05;
        K = cv::Matx33d(f, 0.0, cx, 0.0, f, cy, 0.0, 0.0, 1.0);
        distortion = {record[15], record[16], 0.0, 0.0};
    }
};

constexpr double kIdentity[9] = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};

// Smooth shading with some noise, as a camera's image.
cv::Mat renderImage(int width, int height, int channels) {
    Random random(1);
    cv::Mat image(height, width, CV_8UC(channels));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width * channels; ++x) {
            const double gray = 120.0 + 60.0 * std::sin(x / (31.0 * channels)) + 40.0 * std::cos(y / 23.0);
            image.ptr<std::uint8_t>(y)[x] = cv::saturate_cast<std::uint8_t>(gray + 3.0 * random.normal());
        }
    }
    return image;
}

// Rendered once: a benchmark starts anew with every repetition.
const cv::Mat& makeImage(int width, int height, int channels) {
    static std::map<std::tuple<int, int, int>, cv::Mat> images;
    cv::Mat& image = images[{width, height, channels}];
    if (image.empty()) {
        image = renderImage(width, height, channels);
    }
    return image;
}

// Maps of a mild rectification: a rotation of one degree, some perspective and the lens.
struct FloatMaps {
    cv::Mat x;
    cv::Mat y;
};

FloatMaps computeMaps(int width, int height) {
    FloatMaps maps{cv::Mat(height, width, CV_32F), cv::Mat(height, width, CV_32F)};
    const BenchCamera camera(width, height);
    for (int v = 0; v < height; ++v) {
        for (int u = 0; u < width; ++u) {
            const double dx = (u - width * 0.5) / camera.record[9];
            const double dy = (v - height * 0.5) / camera.record[9];
            const double w = 1.0 + 0.03 * dx - 0.02 * dy;
            const double x = (0.99985 * dx - 0.01745 * dy) / w;
            const double y = (0.01745 * dx + 0.99985 * dy) / w;
            const double D = (0.05 * (x * x + y * y) - 0.12) * (x * x + y * y);
            maps.x.at<float>(v, u) = static_cast<float>(x * (1.0 + D) * camera.record[9] + camera.record[12]);
            maps.y.at<float>(v, u) = static_cast<float>(y * (1.0 + D) * camera.record[9] + camera.record[13]);
        }
    }
    return maps;
}

const FloatMaps& makeMaps(int width, int height) {
    static std::map<std::pair<int, int>, FloatMaps> all;
    FloatMaps& maps = all[{width, height}];
    if (maps.x.empty()) {
        maps = computeMaps(width, height);
    }
    return maps;
}

int strideOf(const cv::Mat& image) {
    return static_cast<int>(image.step[0]);
}

void ourRemap(const cv::Mat& src, const FloatMaps& maps, cv::Mat& dst) {
    (src.channels() == 1 ? remapImage_8uC1 : remapImage_8uC4)(
        src.data, strideOf(src), src.cols, src.rows, dst.data, strideOf(dst), dst.cols, dst.rows, maps.x.ptr<float>(),
        strideOf(maps.x), maps.y.ptr<float>(), strideOf(maps.y), 0, 0, dst.cols - 1, dst.rows - 1);
}

// The peer rounds positions to 1/32 pixel and weights to 15 bits, so pixels may differ by some gray levels; a wrong
// kernel differs by far more.
void demandAlike(const cv::Mat& ours, const cv::Mat& theirs, const char* what) {
    constexpr int kMargin = 8;
    const cv::Rect inner(kMargin, kMargin, ours.cols - 2 * kMargin, ours.rows - 2 * kMargin);
    const cv::Mat seen = ours(inner) > 0;
    cv::Mat difference;
    cv::absdiff(ours(inner), theirs(inner), difference);
    cv::Mat both;
    cv::bitwise_and(difference, seen, both);
    const double mean = cv::norm(both, cv::NORM_L1) / static_cast<double>(both.total()) / ours.channels();
    if (mean > 0.6) {
        std::fprintf(stderr, "%s: mean difference from the peer is %.2f gray levels\n", what, mean);
        std::exit(1);
    }
}

void setPixels(benchmark::State& state, const cv::Mat& image) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(image.total()));
}

void remapOurs(benchmark::State& state, int width, int height, int channels) {
    const cv::Mat& src = makeImage(width, height, channels);
    const FloatMaps& maps = makeMaps(width, height);
    cv::Mat dst(height, width, src.type());
    cv::Mat reference;
    cv::remap(src, reference, maps.x, maps.y, cv::INTER_LINEAR);
    ourRemap(src, maps, dst);
    demandAlike(dst, reference, "remap");
    for (auto _ : state) {
        ourRemap(src, maps, dst);
        benchmark::DoNotOptimize(dst.data);
        benchmark::ClobberMemory();
    }
    setPixels(state, dst);
}

void remapPeer(benchmark::State& state, int width, int height, int channels) {
    const cv::Mat& src = makeImage(width, height, channels);
    const FloatMaps& maps = makeMaps(width, height);
    cv::Mat dst(height, width, src.type());
    for (auto _ : state) {
        cv::remap(src, dst, maps.x, maps.y, cv::INTER_LINEAR);
        benchmark::DoNotOptimize(dst.data);
        benchmark::ClobberMemory();
    }
    setPixels(state, dst);
}

void undistortKernelOurs(benchmark::State& state, int width, int height) {
    const cv::Mat& src = makeImage(width, height, 1);
    const BenchCamera camera(width, height);
    cv::Mat dst(height, width, CV_8U);
    cv::Mat reference;
    cv::undistort(src, reference, camera.K, camera.distortion);
    const auto run = [&] {
        perspectiveTransAndDistortImage_8uC1(kIdentity, camera.record, src.data, strideOf(src), width, height, dst.data,
                                             strideOf(dst), width, height);
    };
    run();
    demandAlike(dst, reference, "perspectiveTransAndDistortImage_8uC1");
    for (auto _ : state) {
        run();
        benchmark::DoNotOptimize(dst.data);
        benchmark::ClobberMemory();
    }
    setPixels(state, dst);
}

void undistortPeer(benchmark::State& state, int width, int height) {
    const cv::Mat& src = makeImage(width, height, 1);
    const BenchCamera camera(width, height);
    cv::Mat dst(height, width, CV_8U);
    for (auto _ : state) {
        cv::undistort(src, dst, camera.K, camera.distortion);
        benchmark::DoNotOptimize(dst.data);
        benchmark::ClobberMemory();
    }
    setPixels(state, dst);
}

template <class T>
void put(std::vector<unsigned char>& block, std::size_t offset, const T& value) {
    std::memcpy(block.data() + offset, &value, sizeof value);
}

// A pair as a calibration leaves it, written by the documented layout of the block: two cameras 150 units apart that
// converge on a point 450 units away.
class BenchPair {
public:
    BenchPair(int width, int height) {
        const BenchCamera camera(width, height);
        std::vector<unsigned char> block(3 * 240 + 812);
        put(block, 0, std::int32_t{3});
        put(block, 4, Zelm2ViewCameraDesc{0, width, height, 0, width, height});
        for (int side = 0; side < 2; ++side) {
            ZelmCameraIntrinsics intrinsics{};
            std::memcpy(&intrinsics, camera.record, sizeof intrinsics);
            std::copy(camera.K.val, camera.K.val + 9, intrinsics.A);
            const double turn = side == 0 ? 0.165 : -0.165;
            ZelmCameraExtrinsics pose{{}, {0.0, 0.0, 450.0}, {0.0, turn, 0.0}};
            zelmCalibRodrigues(0, pose.r, pose.R);
            put(block, side == 0 ? 460U : 636U, intrinsics);
            put(block, 812U + (side == 0 ? 0U : 3U * 120U), pose);
            R[side] = cv::Matx33d(pose.R);
            t[side] = cv::Vec3d(pose.t);
        }
        const cv::Matx33d relative = R[0] * R[1].t();
        const cv::Vec3d shift = t[0] - relative * t[1];
        const cv::Matx33d cross(0.0, -shift[2], shift[1], shift[2], 0.0, -shift[0], -shift[1], shift[0], 0.0);
        F = camera.K.inv().t() * cross * relative * camera.K.inv();
        double largest = 0.0;
        for (const double value : F.val) {
            largest = std::max(largest, std::fabs(value));
        }
        F = F * (1.0 / largest);
        put(block, 316, F);
        put(block, 388, cv::Matx33d(F.t()));
        zelm2ViewLoadCalibData(static_cast<std::int32_t>(block.size()), block.data(), &calib);
        for (int side = 0; side < 2; ++side) {
            cv::Matx34d Rt;
            for (int i = 0; i < 3; ++i) {
                for (int j = 0; j < 3; ++j) {
                    Rt(i, j) = R[side](i, j);
                }
                Rt(i, 3) = t[side](i);
            }
            P[side] = camera.K * Rt;
        }
    }
    BenchPair(const BenchPair&) = delete;
    BenchPair& operator=(const BenchPair&) = delete;
    ~BenchPair() { zelm2ViewCalibClose(&calib); }

    Zelm2ViewCalib* calib = nullptr;
    cv::Matx33d R[2];
    cv::Vec3d t[2];
    cv::Matx33d F;  // left' F right = 0
    cv::Matx34d P[2];
};

void undistortDoubleOurs(benchmark::State& state, int width, int height) {
    const cv::Mat& src = makeImage(width, height, 1);
    const BenchPair pair(width, height);
    const BenchCamera camera(width, height);
    cv::Mat dst(height, width, CV_8U);
    cv::Mat reference;
    cv::undistort(src, reference, camera.K, camera.distortion);
    zelm2ViewUnDistortImage(pair.calib, 'L', src.data, dst.data);
    demandAlike(dst, reference, "zelm2ViewUnDistortImage");
    for (auto _ : state) {
        zelm2ViewUnDistortImage(pair.calib, 'L', src.data, dst.data);
        benchmark::DoNotOptimize(dst.data);
        benchmark::ClobberMemory();
    }
    setPixels(state, dst);
}

struct NoisyPairs {
    std::vector<Point2d> left;
    std::vector<Point2d> right;
};

constexpr int kPairs = 200000;

NoisyPairs makePairs(const BenchPair& pair, int count) {
    Random random(2);
    NoisyPairs points;
    for (int i = 0; i < count; ++i) {
        const Point3d X{random.uniform(-60.0, 60.0), random.uniform(-45.0, 45.0), random.uniform(-30.0, 30.0)};
        Point2d l{};
        Point2d r{};
        zelm2ViewChange3Dto2D(pair.calib, 'L', &X, &l);
        zelm2ViewChange3Dto2D(pair.calib, 'R', &X, &r);
        points.left.push_back({l.x + 0.1 * random.normal(), l.y + 0.1 * random.normal()});
        points.right.push_back({r.x + 0.1 * random.normal(), r.y + 0.1 * random.normal()});
    }
    return points;
}

// What the peer's user writes: remove the distortion, correct the matches, triangulate.
cv::Mat peerTriangulation(const BenchPair& pair, const BenchCamera& camera, const NoisyPairs& points) {
    const auto toMat = [](const std::vector<Point2d>& list) {
        cv::Mat mat(1, static_cast<int>(list.size()), CV_64FC2);
        std::memcpy(mat.data, list.data(), list.size() * sizeof(Point2d));
        return mat;
    };
    cv::Mat left;
    cv::Mat right;
    cv::undistortPoints(toMat(points.left), left, camera.K, camera.distortion, cv::noArray(), camera.K);
    cv::undistortPoints(toMat(points.right), right, camera.K, camera.distortion, cv::noArray(), camera.K);
    cv::Mat correctedLeft;
    cv::Mat correctedRight;
    cv::correctMatches(cv::Mat(pair.F.t()), left.reshape(2, 1), right.reshape(2, 1), correctedLeft, correctedRight);
    cv::Mat homogeneous;
    cv::triangulatePoints(pair.P[0], pair.P[1], correctedLeft, correctedRight, homogeneous);
    return homogeneous;
}

void triangulateOurs(benchmark::State& state) {
    const BenchPair pair(1280, 960);
    const BenchCamera camera(1280, 960);
    const NoisyPairs sample = makePairs(pair, 200);
    const cv::Mat reference = peerTriangulation(pair, camera, sample);
    for (int i = 0; i < 200; ++i) {
        const auto k = static_cast<std::size_t>(i);
        Point3d X{};
        zelm2ViewChange2Dto3D(pair.calib, &sample.left[k], &sample.right[k], &X);
        const double w = reference.at<double>(3, i);
        const double gap = std::hypot(X.x - reference.at<double>(0, i) / w, X.y - reference.at<double>(1, i) / w,
                                      X.z - reference.at<double>(2, i) / w);
        if (!(gap < 1e-3)) {
            std::fprintf(stderr, "triangulation: %g units away from the peer\n", gap);
            std::exit(1);
        }
    }
    const NoisyPairs points = makePairs(pair, kPairs);
    for (auto _ : state) {
        for (std::size_t i = 0; i < points.left.size(); ++i) {
            Point3d X{};
            zelm2ViewChange2Dto3D(pair.calib, &points.left[i], &points.right[i], &X);
            benchmark::DoNotOptimize(X);
        }
    }
    state.SetItemsProcessed(state.iterations() * kPairs);
}

void triangulatePeer(benchmark::State& state) {
    const BenchPair pair(1280, 960);
    const BenchCamera camera(1280, 960);
    const NoisyPairs points = makePairs(pair, kPairs);
    for (auto _ : state) {
        const cv::Mat X = peerTriangulation(pair, camera, points);
        benchmark::DoNotOptimize(X.data);
    }
    state.SetItemsProcessed(state.iterations() * kPairs);
}

struct Size {
    int width;
    int height;
};

}  // namespace

int main(int argc, char** argv) {
    cv::setNumThreads(1);
    benchmark::Initialize(&argc, argv);
    const auto add = [](const std::string& name, auto function, benchmark::TimeUnit unit) {
        benchmark::RegisterBenchmark(name.c_str(), function)->Repetitions(25)->MinTime(0.02)->Unit(unit);
    };
    struct Comparison {
        std::string what;
        std::string ours;
        std::string peer;
    };
    std::vector<Comparison> comparisons;
    for (const Size& size : {Size{1280, 960}, Size{2448, 2048}}) {
        const std::string at = std::to_string(size.width) + "x" + std::to_string(size.height);
        for (const int channels : {1, 4}) {
            const std::string kind = "remap_8uC" + std::to_string(channels) + "_" + at;
            add(
                kind + "_zelm", [=](benchmark::State& s) { remapOurs(s, size.width, size.height, channels); },
                benchmark::kMillisecond);
            add(
                kind + "_peer", [=](benchmark::State& s) { remapPeer(s, size.width, size.height, channels); },
                benchmark::kMillisecond);
            comparisons.push_back({kind, kind + "_zelm", kind + "_peer"});
        }
        const std::string kind = "undistort_" + at;
        add(
            kind + "_peer", [=](benchmark::State& s) { undistortPeer(s, size.width, size.height); },
            benchmark::kMillisecond);
        add(
            kind + "_kernel", [=](benchmark::State& s) { undistortKernelOurs(s, size.width, size.height); },
            benchmark::kMillisecond);
        add(
            kind + "_double", [=](benchmark::State& s) { undistortDoubleOurs(s, size.width, size.height); },
            benchmark::kMillisecond);
        comparisons.push_back({"perspectiveTransAndDistortImage_8uC1_" + at, kind + "_kernel", kind + "_peer"});
        comparisons.push_back({"zelm2ViewUnDistortImage_" + at, kind + "_double", kind + "_peer"});
    }
    benchmark::RegisterBenchmark("triangulate_zelm", triangulateOurs)
        ->Repetitions(5)
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("triangulate_peer", triangulatePeer)
        ->Repetitions(5)
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
    comparisons.push_back(
        {"triangulation of " + std::to_string(kPairs) + " point pairs", "triangulate_zelm", "triangulate_peer"});

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\npeer: OpenCV %s, one thread; processor times, ratios of medians and of the shortest\n",
                cv::getVersionString().c_str());
    for (const Comparison& c : comparisons) {
        reporter.printRatio(c.what, c.ours, c.peer);
    }
    return 0;
}
