#include "rigFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>
#include <numbers>
#include <span>

#include "cameraParameters.h"
#include "failure.h"
#include "outputFiles.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr std::size_t kHeaderBytes = 28;  // view count and camera description
constexpr std::size_t kBytesWithoutViews = 812;
constexpr std::size_t kBytesPerView = 240;
constexpr int kFewestViews = 3;
constexpr int kLargestSide = 1 << 20;    // pixels; a larger image is no image size but foreign bytes
constexpr std::size_t kLabelWidth = 28;  // at the least, of a row of the table for people
constexpr double kDegreesPerRadian = 180.0 / std::numbers::pi;

struct BlockHeader {
    std::int32_t views;
    Zelm2ViewCameraDesc cameras;
};
static_assert(sizeof(BlockHeader) == kHeaderBytes);

bool isSane(const BlockHeader& header) {
    const auto isSide = [](int side) { return side > 0 && side <= kLargestSide; };
    const auto isModel = [](int model) { return model >= 0 && model <= 2; };
    const Zelm2ViewCameraDesc& c = header.cameras;
    return header.views >= kFewestViews && isModel(c.leftModel) && isModel(c.rightModel) && isSide(c.leftWidth) &&
           isSide(c.leftHeight) && isSide(c.rightWidth) && isSide(c.rightHeight);
}

BlockHeader checkedHeader(const fs::path& path, const std::string& bytes) {
    BlockHeader header{};
    if (bytes.size() < kHeaderBytes) {
        failData("{}: not a calibration: only {} bytes; was it copied whole?", path.string(), bytes.size());
    }
    std::memcpy(&header, bytes.data(), kHeaderBytes);
    if (!isSane(header)) {
        failData("{}: not a calibration: it does not begin with a view count, camera models and image sizes",
                 path.string());
    }
    const std::size_t expected = static_cast<std::size_t>(header.views) * kBytesPerView + kBytesWithoutViews;
    if (bytes.size() != expected) {
        failData("{}: damaged calibration: {} bytes, but {} views take {}; was it copied whole?", path.string(),
                 bytes.size(), header.views, expected);
    }
    return header;
}

void checkNumbers(const fs::path& path, const std::string& bytes) {
    for (std::size_t offset = kHeaderBytes; offset < bytes.size(); offset += sizeof(double)) {
        double value = 0.0;
        std::memcpy(&value, bytes.data() + offset, sizeof(value));
        if (!std::isfinite(value)) {
            failData("{}: damaged calibration: the number at byte {} is not finite: copy it again, or calibrate again",
                     path.string(), offset);
        }
    }
}

void checkCamera(const fs::path& path, const char* side, const RigCamera& camera) {
    if (!(camera.intrinsics.alpha > 0.0) || !(camera.intrinsics.beta > 0.0)) {
        failData("{}: damaged calibration: the {} camera's {}s are not positive", path.string(), side,
                 scaleWords(camera.model, "").name);
    }
}

RigCamera cameraOf(const Zelm2ViewCalib* handle, char side, std::int32_t views) {
    RigCamera camera;
    zelm2ViewGetCamIntParam(handle, side, &camera.intrinsics);
    camera.poses.resize(static_cast<std::size_t>(views));
    for (std::int32_t view = 0; view < views; ++view) {
        zelm2ViewGetCamExtParam(handle, side, view, &camera.poses[static_cast<std::size_t>(view)]);
    }
    return camera;
}

Json rowsOf(std::span<const double> m, std::size_t columns) {
    Json rows = Json::array();
    for (std::size_t i = 0; i < m.size(); i += columns) {
        rows.push_back(std::vector<double>(m.begin() + static_cast<std::ptrdiff_t>(i),
                                           m.begin() + static_cast<std::ptrdiff_t>(i + columns)));
    }
    return rows;
}

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

std::string cameraTable(const Rig& rig, const std::string& units) {
    const std::vector<CameraParameter> rows = cameraParameters(rig, units);
    const auto label = [](const CameraParameter& row) { return row.name + (row.unit.empty() ? "" : ", " + row.unit); };
    std::size_t width = kLabelWidth;
    for (const CameraParameter& row : rows) {
        width = std::max(width, label(row).size() + 2);
    }
    std::string text = fmt::format("{:<{}}{:>16}{:>16}\n", "camera", width, "left", "right");
    for (const CameraParameter& row : rows) {
        text += fmt::format("{:<{}}{:>16}{:>16}\n", label(row), width, row.left, row.right);
    }
    return text;
}

}  // namespace

const char* modelName(int model) {
    constexpr const char* kNames[] = {"perspective", "perspective+tilt", "parallel"};
    return model >= 0 && model <= 2 ? kNames[model] : "unknown";
}

Rig rigOf(const Zelm2ViewCalib* handle, const Zelm2ViewCameraDesc& cameras) {
    const auto views = static_cast<std::int32_t>(
        (static_cast<std::size_t>(zelm2ViewGetCalibDataSize(handle)) - kBytesWithoutViews) / kBytesPerView);
    Rig rig{cameraOf(handle, 'L', views), cameraOf(handle, 'R', views), {}};
    rig.left.model = cameras.leftModel;
    rig.left.width = cameras.leftWidth;
    rig.left.height = cameras.leftHeight;
    rig.right.model = cameras.rightModel;
    rig.right.width = cameras.rightWidth;
    rig.right.height = cameras.rightHeight;
    std::array<double, 18> both{};
    zelm2ViewGetCamFndMat(handle, both.data());
    std::copy_n(both.begin(), rig.fundamental.size(), rig.fundamental.begin());
    return rig;
}

std::string blockOf(const Zelm2ViewCalib* handle) {
    const std::int32_t size = zelm2ViewGetCalibDataSize(handle);
    std::string bytes(static_cast<std::size_t>(std::max(size, 0)), '\0');
    if (zelm2ViewSaveCalibData(handle, reinterpret_cast<unsigned char*>(bytes.data())) < 0) {
        failData("the calibration cannot be saved");
    }
    return bytes;
}

LoadedRig loadRig(const fs::path& path) {
    const std::string bytes = readWholeFile(path, "a calibration");
    const BlockHeader header = checkedHeader(path, bytes);
    checkNumbers(path, bytes);
    Zelm2ViewCalib* handle = nullptr;
    if (zelm2ViewLoadCalibData(static_cast<std::int32_t>(bytes.size()),
                               reinterpret_cast<const unsigned char*>(bytes.data()), &handle) < 0) {
        failData("{}: cannot be loaded: out of memory", path.string());
    }
    LoadedRig loaded{{}, CalibPtr(handle)};
    loaded.rig = rigOf(handle, header.cameras);
    checkCamera(path, "left", loaded.rig.left);
    checkCamera(path, "right", loaded.rig.right);
    return loaded;
}

Rig readRig(const fs::path& path) {
    return loadRig(path).rig;
}

bool hasPairGeometry(const Rig& rig) {
    return rig.left.model != 2 && rig.right.model != 2;
}

PairGeometry pairGeometry(const Rig& rig) {
    const ZelmCameraExtrinsics& l = rig.left.poses.front();
    const ZelmCameraExtrinsics& r = rig.right.poses.front();
    PairGeometry pair;
    double leftTransposed[9];
    zelmMatTranspose(3, 3, l.R, leftTransposed);
    zelmMatMul(3, 3, r.R, 3, 3, leftTransposed, pair.rotation.data());
    for (std::size_t i = 0; i < 3; ++i) {
        const double* const row = pair.rotation.data() + 3 * i;
        pair.translation[i] = r.t[i] - (row[0] * l.t[0] + row[1] * l.t[1] + row[2] * l.t[2]);
    }
    pair.baseline = std::hypot(pair.translation[0], pair.translation[1], pair.translation[2]);
    // The optical axes are the third rows of both rotations; their cosine is the last element of the product.
    pair.convergenceDegrees = std::acos(std::clamp(pair.rotation[8], -1.0, 1.0)) * kDegreesPerRadian;
    return pair;
}

Json rigJson(const Rig& rig) {
    Json json{{"views", rig.views()}, {"left", cameraJson(rig.left)}, {"right", cameraJson(rig.right)}};
    json["fundamental"] = rowsOf(rig.fundamental, 3);
    if (hasPairGeometry(rig)) {
        const PairGeometry pair = pairGeometry(rig);
        json["pair"] = {{"baseline", pair.baseline},
                        {"convergenceDegrees", pair.convergenceDegrees},
                        {"R", rowsOf(pair.rotation, 3)},
                        {"t", pair.translation}};
    }
    return json;
}

std::string rigText(const Rig& rig, const std::string& units) {
    std::string text = cameraTable(rig, units);
    if (hasPairGeometry(rig)) {
        const PairGeometry pair = pairGeometry(rig);
        text += fmt::format("baseline {:.4f} {}, convergence angle {:.4f} deg", pair.baseline, units,
                            pair.convergenceDegrees);
    } else {
        text += "no baseline: a parallel projection has no centre";
    }
    return text;
}

}  // namespace zelm::tool
