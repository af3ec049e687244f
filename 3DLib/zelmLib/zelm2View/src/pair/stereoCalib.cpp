// Calibration of the pair: each camera on its own, then what the two have in common.
#include <algorithm>
#include <cstddef>

#include "calibBlock.h"
#include "calibObject.h"
#include "calibratedCamera.h"
#include "pairCompletion.h"
#include "workBuffer.h"
#include "zelm/calib.h"

namespace zelm {
namespace {

constexpr double kRobustThreshold = 3.5;  // Tukey cut-off of the estimation, robust deviations

// What a single view of a parallel camera cannot tell, set beforehand: docs/decisions.md#parallel-presets.
void presetParallel(const unsigned char* data, const Zelm2ViewPatternDesc& pattern, Camera camera,
                    ZelmCameraIntrinsics* intrinsics) {
    const ImageSize size = imageSizeOf(data, camera);
    intrinsics->alpha = pattern.d6;
    intrinsics->beta = pattern.d7;
    intrinsics->cx = (size.width - 1) * 0.5;
    intrinsics->cy = (size.height - 1) * 0.5;
}

// Estimates one camera and writes its intrinsics and poses into the data block; on failure the block stays as it was.
std::int32_t estimateCamera(const Zelm2ViewCalib& calib, Camera camera, double* error) {
    Zelm2ViewWork* const work = openedWork(calib);
    const std::int32_t n = work->views;
    const std::int32_t model = modelOf(calib.data, camera);
    WorkBuffer<ZelmCameraExtrinsics> poses(static_cast<std::size_t>(n));
    if (!poses.ok()) {
        return ZELM_ERR_MEMORY;
    }
    std::fill_n(poses.data(), poses.size(), ZelmCameraExtrinsics{});
    auto intrinsics = block::read<ZelmCameraIntrinsics>(calib.data, block::intrinsics(camera));
    std::int32_t views = n;
    if (model == ZELM_CAMERA_PARALLEL) {
        presetParallel(calib.data, work->pattern, camera, &intrinsics);
        views = 1;  // view 0; the poses of the others stay zero
    }
    const auto status =
        zelmCalibCameraParam(views, entriesOf(work, camera), kRobustThreshold, &intrinsics, poses.data(), error, model);
    if (status < 0) {
        return status;
    }
    block::write(calib.data, block::intrinsics(camera), intrinsics);
    for (std::int32_t i = 0; i < n; ++i) {
        block::write(calib.data, block::pose(n, camera, i), poses[static_cast<std::size_t>(i)]);
    }
    return status;
}

}  // namespace
}  // namespace zelm

using namespace zelm;

std::int32_t zelm2ViewCalibCameraParam(Zelm2ViewCalib* tHandle, Zelm2ViewCalibResult* tResult) {
    if (tHandle == nullptr || tResult == nullptr) {
        return ZELM_ERR_PARAM;
    }
    tResult->statusL = 0;
    tResult->statusR = 0;
    if (openedWork(*tHandle) == nullptr) {
        return ZELM_ERR_PARAM;
    }
    double error = 0.0;
    const auto left = estimateCamera(*tHandle, Camera::left, &error);
    if (left < 0) {
        return left;
    }
    tResult->statusL = left;
    tResult->errorL = error;
    const auto right = estimateCamera(*tHandle, Camera::right, &error);
    if (right < 0) {
        return right;
    }
    tResult->statusR = right;
    tResult->errorR = error;
    return completePair(tHandle->data);
}
