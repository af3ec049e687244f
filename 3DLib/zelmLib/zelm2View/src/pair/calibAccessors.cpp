// The accessors: copies of what the two blocks hold.
#include <cstddef>
#include <cstring>

#include "calibBlock.h"
#include "calibObject.h"

using namespace zelm;

std::int32_t zelm2ViewGetCamHomMat(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, double* daOut) {
    Camera camera{};
    if (tHandle == nullptr || daOut == nullptr || !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    std::memcpy(daOut, tHandle->data + block::rectifying(camera), sizeof(RectifyingPair));
    return ZELM_OK;
}

std::int32_t zelm2ViewGetCamFndMat(const Zelm2ViewCalib* tHandle, double* daOut) {
    if (tHandle == nullptr || daOut == nullptr) {
        return ZELM_ERR_PARAM;
    }
    std::memcpy(daOut, tHandle->data + block::kFundamental, sizeof(FundamentalPair));
    return ZELM_OK;
}

std::int32_t zelm2ViewGetCamIntParam(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, ZelmCameraIntrinsics* tOut) {
    Camera camera{};
    if (tHandle == nullptr || tOut == nullptr || !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    *tOut = block::read<ZelmCameraIntrinsics>(tHandle->data, block::intrinsics(camera));
    return ZELM_OK;
}

std::int32_t zelm2ViewGetCamExtParam(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, std::int32_t iView,
                                     ZelmCameraExtrinsics* tOut) {
    if (tHandle == nullptr || tOut == nullptr || iView < 0) {
        return ZELM_ERR_PARAM;
    }
    const std::int32_t views = block::views(tHandle->data);
    Camera camera{};
    if (iView >= views || !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    *tOut = block::read<ZelmCameraExtrinsics>(tHandle->data, block::pose(views, camera, iView));
    return ZELM_OK;
}

namespace {

// The point-list entry of a camera and view; NULL for a loaded object, a view or a camera that does not exist.
const Zelm2ViewPtnEntry* findEntry(const Zelm2ViewCalib& calib, std::int32_t selector, std::int32_t view) {
    Zelm2ViewWork* const work = openedWork(calib);
    Camera camera{};
    if (work == nullptr || view < 0 || view >= work->views || !selectCamera(selector, &camera)) {
        return nullptr;
    }
    return &entriesOf(work, camera)[view];
}

}  // namespace

std::int32_t zelm2ViewGetPtnNum(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, std::int32_t iView,
                                std::int32_t* iCount) {
    if (tHandle == nullptr || iCount == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const Zelm2ViewPtnEntry* const entry = findEntry(*tHandle, iCamera, iView);
    if (entry == nullptr) {
        return ZELM_ERR_PARAM;
    }
    *iCount = entry->count;
    return ZELM_OK;
}

std::int32_t zelm2ViewGetPattern(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, std::int32_t iView,
                                 Point2d* taOut) {
    if (tHandle == nullptr || taOut == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const Zelm2ViewPtnEntry* const entry = findEntry(*tHandle, iCamera, iView);
    if (entry == nullptr) {
        return ZELM_ERR_PARAM;
    }
    if (entry->count > 0) {
        std::memcpy(taOut, entry->image, static_cast<std::size_t>(entry->count) * sizeof(Point2d));
    }
    return ZELM_OK;
}
