// Opening, saving, loading and closing the stereo calibration object.
#include "calibObject.h"

#include <cstddef>
#include <cstring>
#include <limits>

#include "alloc.h"
#include "cameraModel.h"

namespace zelm {

void emptyEntry(Zelm2ViewPtnEntry* entry) {
    freeBytes(entry->plane);
    freeBytes(entry->image);
    *entry = {};
}

namespace {

// The dot field's extents grow by this part of the pitch: docs/decisions.md#field-margin.
constexpr double kExtentMarginDivisor = 3.0;

// A NaN passes: docs/decisions.md#nan-length-passes.
bool isRefusedLength(double value) {
    return 0 >= value;
}

bool isPatternValid(const Zelm2ViewPatternDesc& pattern) {
    const double lengths[] = {pattern.d0, pattern.d1, pattern.d2, pattern.d3,
                              pattern.d4, pattern.d5, pattern.d6, pattern.d7};
    for (const double length : lengths) {
        if (isRefusedLength(length)) {
            return false;
        }
    }
    return pattern.markers > 0 && (pattern.polarity == 0 || pattern.polarity == 1);
}

bool areCamerasValid(const Zelm2ViewCameraDesc& cameras) {
    return cameras.leftWidth > 0 && cameras.leftHeight > 0 && cameras.rightWidth > 0 && cameras.rightHeight > 0 &&
           isCameraModel(cameras.leftModel) && isCameraModel(cameras.rightModel);
}

// Bytes of the work block of n views; 0 if they cannot be counted.
std::size_t workBytes(std::int32_t views) {
    constexpr std::size_t kPerView = 2 * sizeof(Zelm2ViewPtnEntry);
    const auto n = static_cast<std::size_t>(views);
    return n <= (SIZE_MAX - sizeof(Zelm2ViewWork)) / kPerView ? sizeof(Zelm2ViewWork) + n * kPerView : 0;
}

// The object with both blocks, all zero, stored into the caller's handle; nothing is left of it on failure.
std::int32_t acquireObject(std::size_t dataBytes, std::size_t workBlockBytes, Zelm2ViewCalib** handle) {
    *handle = static_cast<Zelm2ViewCalib*>(allocBytes(sizeof(Zelm2ViewCalib)));
    if (*handle == nullptr) {
        return ZELM_ERR_MEMORY;
    }
    Zelm2ViewCalib* const calib = *handle;
    calib->data = static_cast<unsigned char*>(allocBytes(dataBytes));
    calib->work = static_cast<unsigned char*>(allocBytes(workBlockBytes));
    if (calib->data == nullptr || calib->work == nullptr) {
        freeBytes(calib->data);
        freeBytes(calib->work);
        freeBytes(calib);
        *handle = nullptr;
        return ZELM_ERR_MEMORY;
    }
    std::memset(calib->data, 0, dataBytes);
    std::memset(calib->work, 0, workBlockBytes);
    return ZELM_OK;
}

// A size that its int32 result cannot hold belongs to a block that was never ours.
bool isSizeRepresentable(std::int64_t bytes) {
    return bytes >= 0 && bytes <= std::numeric_limits<std::int32_t>::max();
}

}  // namespace
}  // namespace zelm

using namespace zelm;

std::int32_t zelm2ViewCalibOpen(std::int32_t iViews, const Zelm2ViewPatternDesc* tPattern,
                                const Zelm2ViewCameraDesc* tCameras, Zelm2ViewCalib** tHandle) {
    if (iViews < 3 || tPattern == nullptr || tCameras == nullptr || tHandle == nullptr || *tHandle != nullptr ||
        !isPatternValid(*tPattern) || !areCamerasValid(*tCameras)) {
        return ZELM_ERR_PARAM;
    }
    const std::int64_t dataBytes = block::size(iViews);
    const std::size_t workBlockBytes = workBytes(iViews);
    if (!isSizeRepresentable(dataBytes) || workBlockBytes == 0) {
        return ZELM_ERR_MEMORY;
    }
    if (const auto s = acquireObject(static_cast<std::size_t>(dataBytes), workBlockBytes, tHandle); s < 0) {
        return s;
    }
    block::write((*tHandle)->data, block::kViews, iViews);
    block::write((*tHandle)->data, block::kCameras, *tCameras);
    Zelm2ViewWork* const work = openedWork(**tHandle);
    work->views = iViews;
    work->pattern = *tPattern;
    work->pattern.d0 += tPattern->d4 / kExtentMarginDivisor;
    work->pattern.d1 += tPattern->d5 / kExtentMarginDivisor;
    return ZELM_OK;
}

std::int32_t zelm2ViewGetCalibDataSize(const Zelm2ViewCalib* tHandle) {
    if (tHandle == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const std::int64_t bytes = block::size(block::views(tHandle->data));
    return isSizeRepresentable(bytes) ? static_cast<std::int32_t>(bytes) : ZELM_ERR_PARAM;
}

std::int32_t zelm2ViewSaveCalibData(const Zelm2ViewCalib* tHandle, unsigned char* ucBuffer) {
    if (tHandle == nullptr || ucBuffer == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const std::int32_t bytes = zelm2ViewGetCalibDataSize(tHandle);
    if (bytes < 0) {
        return bytes;
    }
    std::memcpy(ucBuffer, tHandle->data, static_cast<std::size_t>(bytes));
    return ZELM_OK;
}

std::int32_t zelm2ViewLoadCalibData(std::int32_t iSize, const unsigned char* ucBuffer, Zelm2ViewCalib** tHandle) {
    if (iSize < 1 || ucBuffer == nullptr || tHandle == nullptr || *tHandle != nullptr) {
        return ZELM_ERR_PARAM;
    }
    const std::int32_t loaded = 1;
    const auto bytes = static_cast<std::size_t>(iSize);
    if (const auto s = acquireObject(bytes, sizeof(loaded), tHandle); s < 0) {
        return s;
    }
    std::memcpy((*tHandle)->data, ucBuffer, bytes);
    std::memcpy((*tHandle)->work, &loaded, sizeof(loaded));
    return ZELM_OK;
}

void zelm2ViewCalibClose(Zelm2ViewCalib** tHandle) {
    if (tHandle == nullptr || *tHandle == nullptr) {
        return;
    }
    Zelm2ViewCalib* const calib = *tHandle;
    if (Zelm2ViewWork* const work = openedWork(*calib); work != nullptr) {
        Zelm2ViewPtnEntry* const left = entriesOf(work, Camera::left);
        Zelm2ViewPtnEntry* const right = entriesOf(work, Camera::right);
        for (std::int32_t i = 0; i < work->views; ++i) {
            emptyEntry(&left[i]);
            emptyEntry(&right[i]);
        }
    }
    freeBytes(calib->data);
    freeBytes(calib->work);
    freeBytes(calib);
    *tHandle = nullptr;
}
