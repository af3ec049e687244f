#include "cameraOutputs.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "calibrationDoubts.h"
#include "jsonText.h"
#include "pointAdjustment.h"

namespace zelm::tool {

CameraResult cameraResult(const AdjustmentPtr& adjustment, char side, AdjustReport report, const std::string& culprit) {
    ZelmMeasureAdjustedCamera camera{};
    camera.size = sizeof(camera);
    requireAdjusted(zelmMeasureAdjustCamera(adjustment.get(), side, &camera), adjustment, culprit);
    CameraResult result;
    std::copy(std::begin(camera.covariance), std::end(camera.covariance), result.covariance.begin());
    result.noise = camera.noise;
    result.freedom = camera.freedom;
    Calibration& c = result.calibration;
    c.rig.left.model = camera.model;
    c.rig.left.width = camera.width;
    c.rig.left.height = camera.height;
    c.rig.left.intrinsics = camera.intrinsics;
    const std::int32_t views = report.summary.views;
    for (std::int32_t view = 0; view < views; ++view) {
        requireAdjusted(zelmMeasureAdjustPose(adjustment.get(), side, view, &c.rig.left.poses.emplace_back()),
                        adjustment, culprit);
    }
    c.figures.left = cameraFiguresOf(adjustment, side, views);
    report.isPair = false;
    report.before.left.intrinsics = camera.start;
    if (side == 'R') {
        for (auto& images : report.images) {
            std::swap(images[0], images[1]);
        }
    }
    c.adjustment = std::move(report);
    return result;
}

void giveCameraResult(CameraResult& result, const std::string& source, const std::filesystem::path& folder,
                      bool isForced, const Console& console, OutputFiles& outputs) {
    Calibration& c = result.calibration;
    c.verdict.add(calibrationDoubts(c, source));
    requireTrust(c.verdict, isForced);
    const nlohmann::ordered_json summary = cameraResultJson(result);
    outputs.add(folder / "camera.json", jsonText(summary) + "\n");
    outputs.add(folder / "report.html", cameraPage(result));
    outputs.commit();
    for (const Doubt& doubt : c.verdict.doubts) {
        console.warn(doubt.text);
    }
    console.say(cameraText(result));
    console.say(fmt::format("wrote camera.json and report.html to {}", folder.string()));
    console.result(summary);
}

}  // namespace zelm::tool
