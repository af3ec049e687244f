// Binary images beside OpenCV, on the same images, which change from call to call. Every result is compared with the
// peer's before it is timed.
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

constexpr std::size_t kImages = 4;

using Images = std::vector<cv::Mat>;

// Dots on shaded ground with the noise of a camera.
Images dotImages(int width, int height) {
    Images images;
    for (std::size_t k = 0; k < kImages; ++k) {
        Random random(11 + k);
        cv::Mat image(height, width, CV_8U);
        const double pitch = 37.0 + 3.0 * static_cast<double>(k);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const double u = std::remainder(x, pitch);
                const double v = std::remainder(y, pitch);
                const double ground = 150.0 + 40.0 * std::sin(x / 310.0) * std::cos(y / 230.0);
                const double gray = std::hypot(u, v) < 0.28 * pitch ? 0.3 * ground : ground;
                image.at<std::uint8_t>(y, x) = cv::saturate_cast<std::uint8_t>(gray + 6.0 * random.normal());
            }
        }
        images.push_back(image);
    }
    return images;
}

Images noiseImages(int width, int height, bool smoothed) {
    Images images;
    for (std::size_t k = 0; k < kImages; ++k) {
        Random random(21 + k);
        cv::Mat image(height, width, CV_8U);
        for (auto pixel = image.begin<std::uint8_t>(); pixel != image.end<std::uint8_t>(); ++pixel) {
            *pixel = static_cast<std::uint8_t>(random.bits() & 0xFFU);
        }
        if (smoothed) {
            cv::GaussianBlur(image, image, cv::Size(0, 0), 2.0);
        }
        images.push_back(image);
    }
    return images;
}

ZelmImage recordOf(const cv::Mat& image) {
    return {image.data, image.cols, image.rows};
}

ZelmRect allOf(const cv::Mat& image) {
    return {0, 0, image.cols, image.rows};
}

bool same(const cv::Mat& a, const cv::Mat& b) {
    return cv::norm(a, b, cv::NORM_INF) == 0.0;
}

void addThresholds(PairedBench& bench, const Images& images, const std::string& at) {
    const cv::Mat a = images[0].clone();
    const cv::Mat b = images[0].clone();
    // The peer takes values above its threshold.
    const auto ours = [images, a](std::size_t round) {
        const cv::Mat& image = images[round % kImages];
        const ZelmImage src = recordOf(image);
        const ZelmRect region = allOf(image);
        ZelmImage dst = recordOf(a);
        zelmBinBinaryImage(&src, &region, static_cast<std::int32_t>(100 + round % 50), &dst);
    };
    const auto peer = [images, b](std::size_t round) {
        cv::threshold(images[round % kImages], b, static_cast<double>(99 + round % 50), 255.0, cv::THRESH_BINARY);
    };
    ours(3);
    peer(3);
    demand(same(a, b), "threshold");
    bench.add("binary image, " + at, ours, peer);

    const auto otsuOurs = [images](std::size_t round) {
        const cv::Mat& image = images[round % kImages];
        const ZelmImage src = recordOf(image);
        const ZelmRect region = allOf(image);
        return zelmBinOtsuThresholdImage(&src, &region);
    };
    const auto otsuPeer = [images, b](std::size_t round) {
        return cv::threshold(images[round % kImages], b, 0.0, 255.0, cv::THRESH_BINARY | cv::THRESH_OTSU);
    };
    demand(otsuOurs(1) == static_cast<int>(otsuPeer(1)) + 1, "Otsu's threshold");
    bench.add("Otsu's threshold, " + at, otsuOurs, otsuPeer);
}

void addMorphology(PairedBench& bench, const Images& gray, const std::string& at, int rounds) {
    Images images = gray;
    for (cv::Mat& image : images) {
        cv::threshold(image.clone(), image, 99.0, 255.0, cv::THRESH_BINARY);
    }
    const cv::Mat a = images[0].clone();
    const cv::Mat b = images[0].clone();
    using Operation = decltype(&zelmBinDilation);
    const auto compare = [&](const std::string& what, Operation operation, int peerOperation) {
        const auto ours = [=](std::size_t round) {
            const cv::Mat& image = images[round % kImages];
            const ZelmImage src = recordOf(image);
            const ZelmRect region = allOf(image);
            ZelmImage dst = recordOf(a);
            operation(&src, &region, 128, rounds, &dst);
        };
        const auto peer = [=](std::size_t round) {
            cv::morphologyEx(images[round % kImages], b, peerOperation, cv::Mat(), cv::Point(-1, -1), rounds);
        };
        ours(2);
        peer(2);
        demand(same(a, b), what.c_str());
        bench.add(what + ", " + std::to_string(rounds) + " rounds, " + at, ours, peer);
    };
    compare("dilation", zelmBinDilation, cv::MORPH_DILATE);
    compare("opening", zelmBinOpening, cv::MORPH_OPEN);
}

void addBlobs(PairedBench& bench, const Images& images, const std::string& what, int threshold) {
    const auto ours = [images, threshold](std::size_t round) {
        const cv::Mat& image = images[round % kImages];
        const ZelmImage src = recordOf(image);
        const ZelmRect region = allOf(image);
        ZelmBlob* blobs = nullptr;
        std::int32_t count = 0;
        zelmBinBlob(&src, &region, threshold, 0, 0, 1, &blobs, &count);
        zelmBinFree(&blobs);
    };
    // The peer takes a two-level image, which its user makes first.
    const auto peer = [images, threshold](std::size_t round) {
        cv::Mat levels;
        cv::threshold(images[round % kImages], levels, threshold - 1.0, 255.0, cv::THRESH_BINARY_INV);
        cv::Mat labels;
        cv::Mat stats;
        cv::Mat centroids;
        cv::connectedComponentsWithStats(levels, labels, stats, centroids, 8, CV_32S);
    };
    bench.add("blobs, " + what, ours, peer);
}

}  // namespace

int main(int argc, char** argv) {
    cv::setNumThreads(1);
    PairedBench bench(argc, argv);
    for (const cv::Size size : {cv::Size(1280, 960), cv::Size(2448, 2048)}) {
        const std::string at = std::to_string(size.width) + "x" + std::to_string(size.height);
        const Images dots = dotImages(size.width, size.height);
        addThresholds(bench, dots, at);
        for (const int rounds : {1, 5, 40}) {
            addMorphology(bench, dots, at, rounds);
        }
        if (size.width == 1280) {
            addBlobs(bench, dots, "dots, " + at, 100);
            addBlobs(bench, noiseImages(size.width, size.height, false), "noise, p = 0.5, " + at, 128);
            addBlobs(bench, noiseImages(size.width, size.height, true), "smoothed noise, " + at, 128);
        }
    }
    bench.run("OpenCV " + cv::getVersionString());
    return 0;
}
