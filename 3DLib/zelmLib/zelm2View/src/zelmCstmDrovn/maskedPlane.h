// A gray image with its mask, as the custom search passes them on: whatever the caller holds them in.
#ifndef ZELM_MASKED_PLANE_H
#define ZELM_MASKED_PLANE_H

#include <cstddef>
#include <cstdint>
#include <limits>

#include "zelm/base.h"

namespace zelm {

struct MaskedPlane {
    std::int32_t width;
    std::int32_t height;
    const std::uint8_t* pixels;
    std::int32_t stride;       // bytes from one row to the next
    const std::uint8_t* mask;  // null: every pixel takes part
    std::int32_t maskStride;
};

// An image and its mask whose rows follow each other without padding.
inline MaskedPlane densePlane(std::int32_t width, std::int32_t height, const std::uint8_t* pixels,
                              const std::uint8_t* mask) {
    return {width, height, pixels, width, mask, width};
}

// Whether the buffer has data and a size and row length that 32 bits can express.
inline bool isUsableBuffer(const vImage_Buffer& buffer) {
    // Pixels, or bytes of a row.
    constexpr auto kMaxSize = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
    return buffer.data != nullptr && buffer.width <= kMaxSize && buffer.height <= kMaxSize &&
           buffer.rowBytes <= kMaxSize;
}

// The plane of an image buffer and, unless null, its mask; false when one of them is not usable or the sizes differ.
inline bool planeOfBuffers(const vImage_Buffer& image, const vImage_Buffer* mask, MaskedPlane* plane) {
    const bool maskFits =
        mask == nullptr || (isUsableBuffer(*mask) && mask->width == image.width && mask->height == image.height);
    if (!isUsableBuffer(image) || !maskFits) {
        return false;
    }
    *plane = {static_cast<std::int32_t>(image.width),
              static_cast<std::int32_t>(image.height),
              static_cast<const std::uint8_t*>(image.data),
              static_cast<std::int32_t>(image.rowBytes),
              mask != nullptr ? static_cast<const std::uint8_t*>(mask->data) : nullptr,
              mask != nullptr ? static_cast<std::int32_t>(mask->rowBytes) : 0};
    return true;
}

}  // namespace zelm

#endif
