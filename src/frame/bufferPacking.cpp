#include "bufferPacking.h"

#include <algorithm>
#include <cstddef>

namespace zelm {

void packARGB8888ToGrayAverage(const vImage_Buffer& buffer, std::uint8_t* plane) {
    for (std::size_t y = 0; y < buffer.height; ++y) {
        const auto* const row = static_cast<const std::uint8_t*>(buffer.data) + y * buffer.rowBytes;
        for (std::size_t x = 0; x < buffer.width; ++x) {
            const std::uint8_t* const argb = row + 4 * x;
            plane[y * buffer.width + x] = static_cast<std::uint8_t>((argb[1] + argb[2] + argb[3]) / 3);
        }
    }
}

void packPlanar8(const vImage_Buffer& buffer, std::uint8_t* plane) {
    for (std::size_t y = 0; y < buffer.height; ++y) {
        const auto* const row = static_cast<const std::uint8_t*>(buffer.data) + y * buffer.rowBytes;
        std::copy_n(row, buffer.width, plane + y * buffer.width);
    }
}

}  // namespace zelm
