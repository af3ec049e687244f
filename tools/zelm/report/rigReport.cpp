#include "rigReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <span>
#include <vector>

#include "cameraParameters.h"
#include "covarianceJson.h"
#include "numberText.h"

namespace zelm::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMinLabelWidth = 28;   // characters, of a row of the table for people
constexpr std::size_t kMinColumnWidth = 16;  // of a camera's column

Json rowsOf(std::span<const double> m, std::size_t columns) {
    Json rows = Json::array();
    for (std::size_t i = 0; i < m.size(); i += columns) {
        rows.push_back(std::vector<double>(m.begin() + static_cast<std::ptrdiff_t>(i),
                                           m.begin() + static_cast<std::ptrdiff_t>(i + columns)));
    }
    return rows;
}

std::string cameraTable(const Rig& rig, const std::string& units) {
    const std::vector<CameraParameter> rows = cameraParameters(rig, units);
    const auto label = [](const CameraParameter& row) { return row.name + (row.unit.empty() ? "" : ", " + row.unit); };
    std::size_t width = kMinLabelWidth;
    for (const CameraParameter& row : rows) {
        width = std::max(width, label(row).size() + 2);
    }
    std::size_t column = kMinColumnWidth;
    for (const CameraParameter& row : rows) {
        column = std::max({column, row.left.size() + 2, row.right.size() + 2});
    }
    std::string text = fmt::format("{:<{}}{:>{}}{:>{}}\n", "camera", width, "left", column, "right", column);
    for (const CameraParameter& row : rows) {
        text += fmt::format("{:<{}}{:>{}}{:>{}}\n", label(row), width, row.left, column, row.right, column);
    }
    return text;
}

}  // namespace

Json cameraJson(const RigCamera& camera) {
    const ZelmCameraIntrinsics& k = camera.intrinsics;
    Json poses = Json::array();
    for (const ZelmCameraExtrinsics& pose : camera.poses) {
        poses.push_back({{"R", rowsOf(pose.R, 3)},
                         {"t", std::vector<double>(pose.t, pose.t + 3)},
                         {"r", std::vector<double>(pose.r, pose.r + 3)}});
    }
    return {{"model", camera.model},
            {"modelName", modelName(camera.model)},
            {"width", camera.width},
            {"height", camera.height},
            {"alpha", k.alpha},
            {"beta", k.beta},
            {"gamma", k.gamma},
            {"cx", k.cx},
            {"cy", k.cy},
            {"theta", k.theta},
            {"k1", k.k1},
            {"k2", k.k2},
            {"A", rowsOf(k.A, 3)},
            {"poses", poses}};
}

const char* modelName(int model) {
    constexpr const char* kNames[] = {"perspective", "tilted", "parallel"};
    return model >= ZELM_CAMERA_PERSPECTIVE && model <= ZELM_CAMERA_PARALLEL ? kNames[model] : "unknown";
}

Json rigJson(const Rig& rig) {
    Json json{{"views", rig.views()}, {"left", cameraJson(rig.left)}, {"right", cameraJson(rig.right)}};
    json["fundamental"] = rowsOf(rig.fundamental, 3);
    if (rig.pair) {
        json["pair"] = {{"baseline", rig.pair->baseline},
                        {"convergenceDegrees", rig.pair->convergence * kDegreesPerRadian},
                        {"R", rowsOf(rig.pair->R, 3)},
                        {"t", rig.pair->t}};
    }
    if (rig.covariance) {
        json["covariance"] = covarianceJson(rig);
    }
    return json;
}

std::string rigText(const Rig& rig, const std::string& units) {
    std::string text = cameraTable(rig, units);
    if (rig.pair) {
        text += fmt::format("baseline {:.4f} {}, convergence angle {:.4f} deg", rig.pair->baseline, units,
                            rig.pair->convergence * kDegreesPerRadian);
    } else {
        text += "no baseline: a parallel camera has no centre";
    }
    return text;
}

}  // namespace zelm::tool
