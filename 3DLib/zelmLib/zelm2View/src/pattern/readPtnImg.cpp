// Reading a view: the exported functions, for gray images and for platform buffers.
#include <cstddef>

#include "bufferPacking.h"
#include "calibObject.h"
#include "cameraModel.h"
#include "imageBuffer.h"
#include "patternReader.h"
#include "workBuffer.h"

namespace zelm {
namespace {

constexpr Camera kCameras[] = {Camera::left, Camera::right};

// What one call reads: model and size of a camera, its image and region.
struct CameraView {
    std::int32_t model;
    std::int32_t width;
    std::int32_t height;
    bool isRead;  // a camera of parallel projection is read in view 0 alone
};

CameraView cameraView(const Zelm2ViewCalib& calib, Camera camera, std::int32_t view) {
    const Zelm2ViewCameraDesc desc = block::cameras(calib.data);
    CameraView result = isLeft(camera) ? CameraView{desc.leftModel, desc.leftWidth, desc.leftHeight, false}
                                       : CameraView{desc.rightModel, desc.rightWidth, desc.rightHeight, false};
    result.isRead = result.model != ZELM_CAMERA_PARALLEL || view == 0;
    return result;
}

bool isViewReadable(const Zelm2ViewCalib& calib, std::int32_t view) {
    const Zelm2ViewWork* const work = openedWork(calib);
    return work != nullptr && view >= 0 && view < work->views;
}

bool isInside(const ZelmRect& region, const CameraView& camera) {
    return region.x >= 0 && region.y >= 0 && region.width >= 1 && region.height >= 1 && region.x < camera.width &&
           region.y < camera.height && region.width <= camera.width - region.x &&
           region.height <= camera.height - region.y;
}

// The pixels of the view's two images, not NULL where they are read; regions may be NULL.
std::int32_t readView(Zelm2ViewCalib* calib, std::int32_t view, const unsigned char* const pixels[2],
                      const ZelmRect* const regions[2]) {
    for (const Camera camera : kCameras) {
        const CameraView seen = cameraView(*calib, camera, view);
        const auto i = static_cast<std::size_t>(camera);
        if (seen.isRead && (pixels[i] == nullptr || (regions[i] != nullptr && !isInside(*regions[i], seen)))) {
            return ZELM_ERR_PARAM;
        }
    }
    Zelm2ViewWork* const work = openedWork(*calib);
    for (const Camera camera : kCameras) {
        const CameraView seen = cameraView(*calib, camera, view);
        if (!seen.isRead) {
            continue;
        }
        const auto i = static_cast<std::size_t>(camera);
        const ZelmImage image = {const_cast<unsigned char*>(pixels[i]), seen.width, seen.height};
        Zelm2ViewPtnEntry* const entry = &entriesOf(work, camera)[view];
        if (const auto s = innerReadPattern(image, regions[i], work->pattern, entry); s < 0) {
            return s;
        }
    }
    return ZELM_OK;
}

// How a platform buffer becomes a dense gray plane.
struct BufferFormat {
    std::size_t bytesPerPixel;
    void (*pack)(const vImage_Buffer& buffer, std::uint8_t* plane);
};

bool isPackable(const vImage_Buffer& buffer, const CameraView& camera, const BufferFormat& format) {
    return isBufferOf(buffer, {camera.width, camera.height}) && buffer.rowBytes / format.bytesPerPixel >= buffer.width;
}

// The buffer's gray pixels: its own where they are dense already, else a packed copy in plane.
std::int32_t grayOf(const vImage_Buffer& buffer, const BufferFormat& format, WorkBuffer<std::uint8_t>* plane,
                    const unsigned char** pixels) {
    if (format.bytesPerPixel == 1 && buffer.rowBytes == buffer.width) {
        *pixels = static_cast<const unsigned char*>(buffer.data);
        return ZELM_OK;
    }
    *plane = WorkBuffer<std::uint8_t>(buffer.height, buffer.width);
    if (!plane->ok()) {
        return ZELM_ERR_MEMORY;
    }
    format.pack(buffer, plane->data());
    *pixels = plane->data();
    return ZELM_OK;
}

std::int32_t readBuffers(Zelm2ViewCalib* calib, std::int32_t view, const vImage_Buffer* const buffers[2],
                         const ZelmRect* const regions[2], const BufferFormat& format) {
    if (calib == nullptr || (buffers[0] == nullptr && buffers[1] == nullptr) || !isViewReadable(*calib, view)) {
        return ZELM_ERR_PARAM;
    }
    WorkBuffer<std::uint8_t> planes[2];
    const unsigned char* pixels[2] = {nullptr, nullptr};
    for (const Camera camera : kCameras) {
        const CameraView seen = cameraView(*calib, camera, view);
        const auto i = static_cast<std::size_t>(camera);
        if (!seen.isRead || buffers[i] == nullptr) {
            continue;
        }
        if (!isPackable(*buffers[i], seen, format)) {
            return ZELM_ERR_PARAM;
        }
        if (const auto s = grayOf(*buffers[i], format, &planes[i], &pixels[i]); s < 0) {
            return s;
        }
    }
    return readView(calib, view, pixels, regions);
}

}  // namespace
}  // namespace zelm

using namespace zelm;

std::int32_t zelm2ViewReadPtnImg(Zelm2ViewCalib* tHandle, std::int32_t iView, const unsigned char* const ucaImages[2],
                                 const ZelmRect* tRegionLeft, const ZelmRect* tRegionRight) {
    if (tHandle == nullptr || ucaImages == nullptr || !isViewReadable(*tHandle, iView)) {
        return ZELM_ERR_PARAM;
    }
    const ZelmRect* const regions[] = {tRegionLeft, tRegionRight};
    return readView(tHandle, iView, ucaImages, regions);
}

std::int32_t zelm2ViewReadPtnImg_vImagePlanar8(Zelm2ViewCalib* tHandle, std::int32_t iView, const vImage_Buffer* tLeft,
                                               const vImage_Buffer* tRight, const ZelmRect* tRegionLeft,
                                               const ZelmRect* tRegionRight) {
    const vImage_Buffer* const buffers[] = {tLeft, tRight};
    const ZelmRect* const regions[] = {tRegionLeft, tRegionRight};
    return readBuffers(tHandle, iView, buffers, regions, {1, packPlanar8});
}

std::int32_t zelm2ViewReadPtnImg_vImageARGB8888(Zelm2ViewCalib* tHandle, std::int32_t iView, const vImage_Buffer* tLeft,
                                                const vImage_Buffer* tRight, const ZelmRect* tRegionLeft,
                                                const ZelmRect* tRegionRight) {
    const vImage_Buffer* const buffers[] = {tLeft, tRight};
    const ZelmRect* const regions[] = {tRegionLeft, tRegionRight};
    return readBuffers(tHandle, iView, buffers, regions, {4, packARGB8888ToGrayAverage});
}
