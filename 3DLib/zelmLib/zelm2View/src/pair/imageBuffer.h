// Platform buffers that hold an image of one of the pair's cameras.
#ifndef ZELM_IMAGE_BUFFER_H
#define ZELM_IMAGE_BUFFER_H

#include <cstddef>
#include <cstdint>
#include <limits>

#include "calibObject.h"
#include "calibratedCamera.h"
#include "zelm/base.h"

namespace zelm {

// Whether the buffer has data and the given size.
inline bool isBufferOf(const vImage_Buffer& buffer, const ImageSize& size) {
    return buffer.data != nullptr && buffer.width == static_cast<std::size_t>(size.width) &&
           buffer.height == static_cast<std::size_t>(size.height);
}

// Whether it has rows as well whose length the kernels can express.
inline bool isKernelBufferOf(const vImage_Buffer& buffer, const ImageSize& size) {
    constexpr auto kMaxRowBytes = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
    return isBufferOf(buffer, size) && buffer.rowBytes <= kMaxRowBytes;
}

// Whether both buffers hold images of the camera that the selector names; false for NULL pointers too.
inline bool areBuffersOf(const Zelm2ViewCalib* calib, std::int32_t selector, const vImage_Buffer* src,
                         const vImage_Buffer* dst, Camera* camera) {
    if (calib == nullptr || src == nullptr || dst == nullptr || !selectCamera(selector, camera)) {
        return false;
    }
    const ImageSize size = imageSizeOf(calib->data, *camera);
    return isKernelBufferOf(*src, size) && isKernelBufferOf(*dst, size);
}

}  // namespace zelm

#endif
