#include "cameraSummary.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "rigReport.h"

namespace zelm::tool {
namespace {

using Json = nlohmann::ordered_json;

Json distancesJson(const DistanceFigures& d) {
    return {{"mean", d.mean}, {"rms", d.rms}, {"worst", d.max}};
}

std::string viewTable(const Calibration& c) {
    constexpr std::size_t kMinNameWidth = 5;
    std::size_t width = kMinNameWidth;
    for (const ViewFiles& view : c.views) {
        width = std::max(width, imageName(view.left).size());
    }
    const char* const what = c.pointFile.empty() ? "dots" : "points";
    std::string text = fmt::format("reprojection error in pixels\nview  {:<{}}  {:>6}    mean     rms   worst\n",
                                   c.pointFile.empty() ? "image" : "points", width, what);
    const auto cells = [](const DistanceFigures& d) {
        return fmt::format("{:>6}  {:>6.4f}  {:>6.4f}  {:>6.4f}", d.count, d.mean, d.rms, d.max);
    };
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        text += fmt::format("{:>4}  {:<{}}  {}\n", i, imageName(c.views[i].left), width,
                            cells(c.figures.left.views[i].distances));
    }
    return text + fmt::format("all   {:<{}}  {}\n", "", width, cells(c.figures.left.distances));
}

std::string parameterTable(const CameraResult& result) {
    const RigCamera& camera = result.calibration.rig.left;
    std::string text = fmt::format("{:<28}{:>16}{:>12}\n", "camera", "", "+-");
    text += fmt::format("{:<28}{:>16}\n", "model", modelName(camera.model));
    text += fmt::format("{:<28}{:>16}\n", "image size, px", fmt::format("{} x {}", camera.width, camera.height));
    for (const EstimatedParameter& p : result.parameters()) {
        const std::string unit = *p.unit == '\0' ? "" : fmt::format(", {}", p.unit);
        text += fmt::format("{:<28}{:>16}{:>12}\n", p.name + unit, fmt::format("{:.{}f}", p.value, p.digits),
                            p.deviation > 0.0 ? fmt::format("{:.{}f}", p.deviation, p.digits) : "held");
    }
    return text;
}

std::string outcomeLine(const CameraResult& result) {
    const AdjustReport& report = *result.calibration.adjustment;
    const ZelmMeasureAdjustSummary& s = report.summary;
    return fmt::format("adjusted: {} {} of {} views, {}; residual RMS of a coordinate {:.4f} -> {:.4f} px", s.dots,
                       report.ofPoints ? "points" : "dots", s.views - s.viewsLeftOut,
                       report.ofPoints      ? "as they are given"
                       : s.refinedDots == 1 ? "each measured on its pixels"
                                            : "as the reader found them",
                       s.leftBefore + s.rightBefore, s.leftRms + s.rightRms);
}

Json viewsJson(const Calibration& c) {
    Json views = Json::array();
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        const ImageFigures& image = c.figures.left.views[i];
        views.push_back({{"view", i},
                         {"image", c.views[i].left.string()},
                         {"dots", image.found},
                         {"reprojection", distancesJson(image.distances)}});
    }
    return views;
}

Json covarianceOf(const CameraResult& result) {
    std::vector<std::string> names;
    std::vector<std::string> units;
    for (const EstimatedParameter& p : result.parameters()) {
        names.emplace_back(p.key);
        units.emplace_back(*p.unit == '\0' ? "1" : "pixel");
    }
    std::vector<double> triangle;
    for (std::size_t row = 0; row < kCameraParameters; ++row) {
        const double* const first = &result.covariance[kCameraParameters * row];
        triangle.insert(triangle.end(), first, first + row + 1);
    }
    return {{"parameters", names},
            {"units", units},
            {"noise", result.noise},
            {"freedom", result.freedom},
            {"lowerTriangle", triangle}};
}

Json adjustmentJson(const CameraResult& result) {
    Json json = adjustJson(*result.calibration.adjustment);
    // One of the two cameras is not there; its sums are 0.
    const ZelmMeasureAdjustSummary& s = result.calibration.adjustment->summary;
    json["camera"] = json["left"];
    json["camera"]["residualRmsBefore"] = s.leftBefore + s.rightBefore;
    json["camera"]["residualRms"] = s.leftRms + s.rightRms;
    json["camera"]["noise"] = result.noise;
    json.erase("left");
    json.erase("right");
    return json;
}

}  // namespace

std::vector<EstimatedParameter> CameraResult::parameters() const {
    const ZelmCameraIntrinsics& k = calibration.rig.left.intrinsics;
    const auto deviation = [this](std::size_t i) { return std::sqrt(covariance[i * (kCameraParameters + 1)]); };
    return {{"fx", "focal length, x", "px", k.A[0], deviation(0), 4},
            {"skew", "skew", "px", k.A[1], deviation(1), 4},
            {"fy", "focal length, y", "px", k.A[4], deviation(2), 4},
            {"cx", "principal point cx", "px", k.A[2], deviation(3), 4},
            {"cy", "principal point cy", "px", k.A[5], deviation(4), 4},
            {"k1", "distortion k1", "", k.k1, deviation(5), 6},
            {"k2", "distortion k2", "", k.k2, deviation(6), 6}};
}

std::string cameraText(const CameraResult& result) {
    const Calibration& c = result.calibration;
    std::string text = viewTable(c);
    if (!c.skipped.empty()) {
        text += fmt::format("{} of {} views skipped\n", c.skipped.size(), c.skipped.size() + c.views.size());
    }
    text += fmt::format("\n{}\n{}\n", parameterTable(result), outcomeLine(result));
    for (const std::string& remark : adjustRemarks(*c.adjustment)) {
        text += remark + "\n";
    }
    std::string lines;
    for (const std::string& line : checkLines(*c.adjustment)) {
        lines += (lines.empty() ? "" : "\n") + line;
    }
    return text + lines;
}

Json cameraResultJson(const CameraResult& result) {
    const Calibration& c = result.calibration;
    Json skipped = Json::array();
    for (const SkippedView& view : c.skipped) {
        skipped.push_back({{"image", view.files.left.string()}, {"reason", view.reason}});
    }
    Json deviations;
    for (const EstimatedParameter& p : result.parameters()) {
        deviations[p.key] = p.deviation;
    }
    return {{"program", "zelm " ZELM_VERSION},
            {"units", {{"length", c.plate.units}, {"image", "pixel"}, {"angle", "radian unless named otherwise"}}},
            c.pointFile.empty() ? Json::object_t::value_type{"plate", plateJson(c.plate)}
                                : Json::object_t::value_type{"points", c.pointFile},
            {"views", viewsJson(c)},
            {"skipped", skipped},
            {"verdict", verdictJson(c.verdict)},
            {"warnings", warningsJson(c)},
            {"reprojection", distancesJson(c.figures.left.distances)},
            {"camera", cameraJson(c.rig.left)},
            {"deviations", deviations},
            {"adjustment", adjustmentJson(result)},
            {"covariance", covarianceOf(result)}};
}

}  // namespace zelm::tool
