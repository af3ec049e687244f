#include "rigFile.h"

#include <algorithm>
#include <utility>

#include "failure.h"
#include "outputFiles.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

RigCamera cameraOf(const ZelmMeasureRig* rig, char side) {
    RigCamera camera;
    ZelmMeasureCamera record{};
    record.size = sizeof(record);
    zelmMeasureRigCamera(rig, side, &record);
    camera.model = record.model;
    camera.width = record.width;
    camera.height = record.height;
    camera.intrinsics = record.intrinsics;
    std::int32_t views = 0;
    zelmMeasureRigViews(rig, &views);
    camera.poses.resize(static_cast<std::size_t>(views));
    for (std::int32_t view = 0; view < views; ++view) {
        zelmMeasureRigPose(rig, side, view, &camera.poses[static_cast<std::size_t>(view)]);
    }
    return camera;
}

LoadedRig loaded(MeasurePtr handle) {
    LoadedRig rig;
    rig.rig.left = cameraOf(handle.get(), 'L');
    rig.rig.right = cameraOf(handle.get(), 'R');
    zelmMeasureRigFundamental(handle.get(), rig.rig.fundamental.data());
    PairGeometry pair{};
    pair.size = sizeof(pair);
    if (zelmMeasureRigRelativePose(handle.get(), &pair) >= 0) {
        rig.rig.pair = pair;
    }
    ZelmMeasureCovariance covariance{};
    covariance.size = sizeof(covariance);
    if (zelmMeasureRigCovariance(handle.get(), &covariance) >= 0) {
        rig.rig.covariance = covariance;
    }
    rig.handle = std::move(handle);
    return rig;
}

}  // namespace

LoadedRig rigOfHandle(MeasurePtr handle) {
    return loaded(std::move(handle));
}

void LoadedRig::require(std::int32_t status, const std::string& file) const {
    if (status < 0) {
        failData("{}: {}", file, zelmMeasureRigError(handle.get()));
    }
}

LoadedRig rigOf(const Zelm2ViewCalib* calib) {
    ZelmMeasureRig* handle = nullptr;
    const std::int32_t status = zelmMeasureRigOfCalib(calib, &handle);
    MeasurePtr owner(handle);
    if (status < 0) {
        failData("the calibration cannot be used: {}",
                 handle != nullptr ? zelmMeasureRigError(handle) : "out of memory");
    }
    return loaded(std::move(owner));
}

std::string blockOf(const Zelm2ViewCalib* calib) {
    const std::int32_t size = zelm2ViewGetCalibDataSize(calib);
    std::string bytes(static_cast<std::size_t>(std::max(size, 0)), '\0');
    if (zelm2ViewSaveCalibData(calib, reinterpret_cast<unsigned char*>(bytes.data())) < 0) {
        failData("the calibration cannot be saved");
    }
    return bytes;
}

LoadedRig loadRig(const fs::path& path) {
    const std::string bytes = readWholeFile(path, "a calibration");
    ZelmMeasureRig* handle = nullptr;
    const std::int32_t status = zelmMeasureRigOpen(bytes.data(), static_cast<std::int64_t>(bytes.size()), &handle);
    MeasurePtr owner(handle);
    if (status < 0) {
        failData("{}: {}", path.string(),
                 handle != nullptr ? zelmMeasureRigError(handle) : "cannot be loaded: out of memory");
    }
    return loaded(std::move(owner));
}

}  // namespace zelm::tool
