#include "rigFile.h"

#include <algorithm>
#include <utility>

#include "console.h"
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

// Gives the rig the covariance that stands beside its file.
void loadCovariance(ZelmMeasureRig* handle, const fs::path& rig) {
    const fs::path path = covarianceFile(rig);
    std::error_code error;
    if (!fs::exists(path, error) || path == rig) {
        return;
    }
    const std::string bytes = readWholeFile(path, "a covariance");
    if (zelmMeasureCovarianceLoad(handle, bytes.data(), static_cast<std::int64_t>(bytes.size())) < 0) {
        failData("{}: {}", path.string(), zelmMeasureRigError(handle));
    }
}

}  // namespace

LoadedRig rigOfHandle(MeasurePtr handle) {
    return loaded(std::move(handle));
}

void LoadedRig::require(std::int32_t status, const std::string& culprit) const {
    if (status < 0) {
        failData("{}: {}", culprit, zelmMeasureRigError(handle.get()));
    }
}

void LoadedRig::requireCovariance() const {
    if (!rig.covariance && rig.isImported()) {
        failData(
            "{}: an imported calibration has no covariance, without which no uncertainty is told: calibrate with zelm "
            "calibrate",
            file.string());
    }
    if (!rig.covariance) {
        failData("no covariance beside {}: calibrate with the adjustment, which writes {}", file.string(),
                 covarianceFile(file).filename().string());
    }
}

fs::path covarianceFile(const fs::path& rig) {
    return fs::path(rig).replace_extension(".zcov");
}

std::string covarianceBytes(const LoadedRig& rig) {
    if (!rig.rig.covariance) {
        return {};
    }
    std::int64_t size = 0;
    zelmMeasureCovarianceSize(rig.handle.get(), &size);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    if (zelmMeasureCovarianceSave(rig.handle.get(), size, bytes.data()) < 0) {
        failData("the covariance cannot be saved: {}", zelmMeasureRigError(rig.handle.get()));
    }
    return bytes;
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

LoadedRig loadRig(const fs::path& path, const Console& console) {
    const std::string bytes = readWholeFile(path, "a calibration");
    ZelmMeasureRig* handle = nullptr;
    const std::int32_t status = zelmMeasureRigOpen(bytes.data(), static_cast<std::int64_t>(bytes.size()), &handle);
    MeasurePtr owner(handle);
    if (status < 0) {
        failData("{}: {}", path.string(),
                 handle != nullptr ? zelmMeasureRigError(handle) : "cannot be loaded: out of memory");
    }
    loadCovariance(handle, path);
    LoadedRig rig = loaded(std::move(owner));
    rig.file = path;
    rig.summary = savedSummary(path, rig.rig);
    rig.units = rig.summary.units;
    if (rig.summary.isRefused()) {
        console.warn(savedVerdictText(path, rig.summary));
    }
    return rig;
}

}  // namespace zelm::tool
