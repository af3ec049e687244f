// Reading a plate of 13 x 11 dots beside OpenCV's search for a grid of circles, on rendered images, which change from
// call to call. Both must find every dot before they are timed.
#include <cstdint>
#include <memory>
#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/features2d.hpp>
#include <string>
#include <vector>

#include "pairedBench.h"
#include "readingViews.h"

namespace {

constexpr int kViews = 4;
constexpr int kColumns = 13;
constexpr int kRows = 11;

// Dark dots: every second view; the peer looks for those by default.
std::vector<zelm::accuracy::ReadingView> darkViews(double radius) {
    zelm::accuracy::ReadingCase setting;
    setting.radius = radius;
    setting.noise = 2.0;
    setting.maxTiltDegrees = 20.0;
    setting.views = 2 * kViews;
    std::vector<zelm::accuracy::ReadingView> views;
    for (int view = 0; view < 2 * kViews; view += 2) {
        zelm::render::RandomSource random(static_cast<std::uint64_t>(view) + 1);
        views.push_back(zelm::accuracy::readingView(setting, view, random));
    }
    return views;
}

void addReading(zelmbench::PairedBench& bench, double radius) {
    std::vector<zelm::render::GrayImage> images;
    std::vector<std::shared_ptr<zelm::accuracy::PlateReader>> readers;
    for (const auto& view : darkViews(radius)) {
        images.push_back(zelm::render::renderView(view.plate, view.camera, view.pose, view.optics).image);
        readers.push_back(std::make_shared<zelm::accuracy::PlateReader>(view));
    }
    const auto ours = [=](std::size_t round) {
        std::vector<Point2d> dots;
        readers[round % kViews]->read(images[round % kViews], dots);
        return dots.size();
    };
    cv::SimpleBlobDetector::Params params;
    params.maxArea = 1e5F;  // the markers too
    const auto detector = cv::SimpleBlobDetector::create(params);
    const auto peer = [=](std::size_t round) {
        const auto& image = images[round % kViews];
        const cv::Mat gray(image.height, image.width, CV_8U, const_cast<std::uint8_t*>(image.pixels.data()));
        std::vector<cv::Point2f> centres;
        return cv::findCirclesGrid(gray, cv::Size(kColumns, kRows), centres,
                                   cv::CALIB_CB_SYMMETRIC_GRID | cv::CALIB_CB_CLUSTERING, detector)
                   ? centres.size()
                   : 0;
    };
    for (std::size_t k = 0; k < kViews; ++k) {
        zelmbench::demand(ours(k) == kColumns * kRows && peer(k) == kColumns * kRows, "dots of a plate");
    }
    bench.add("plate, " + std::to_string(images[0].width) + " x " + std::to_string(images[0].height), ours, peer);
}

}  // namespace

int main(int argc, char** argv) {
    cv::setNumThreads(1);
    zelmbench::PairedBench bench(argc, argv);
    for (const double radius : {8.0, 16.0}) {
        addReading(bench, radius);
    }
    bench.run("OpenCV " + cv::getVersionString() + ", findCirclesGrid");
    return 0;
}
