// Platform buffers that hold an image of one of the pair's cameras.
#ifndef ZELM_IMAGE_BUFFER_H
#define ZELM_IMAGE_BUFFER_H

#include <cstddef>
#include <cstdint>
#include <limits>

#include "calibratedCamera.h"
#include "zelm/base.h"

namespace zelm {

// Whether the buffer has data, the given size, and rows whose length the kernels can express.
inline bool isBufferOf(const vImage_Buffer& buffer, const ImageSize& size) {
    constexpr auto kLongestRow = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
    return buffer.data != nullptr && buffer.width == static_cast<std::size_t>(size.width) &&
           buffer.height == static_cast<std::size_t>(size.height) && buffer.rowBytes <= kLongestRow;
}

}  // namespace zelm

#endif
