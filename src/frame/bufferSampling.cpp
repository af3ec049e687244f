#include "bufferSampling.h"

#include <algorithm>
#include <cstddef>

namespace zelm {
namespace {

// The four pixels around a position inside the buffer, as byte offsets, and its place between them.
struct Neighbours {
    const std::uint8_t* upper;
    const std::uint8_t* lower;
    std::size_t left;
    std::size_t right;
    double fx;
    double fy;

    Neighbours(const vImage_Buffer& buffer, std::size_t pixelBytes, double x, double y) {
        const auto ix = static_cast<std::size_t>(x);
        const auto iy = static_cast<std::size_t>(y);
        fx = x - static_cast<double>(ix);
        fy = y - static_cast<double>(iy);
        left = ix * pixelBytes;
        right = ix + 1 == buffer.width ? left : left + pixelBytes;
        upper = static_cast<const std::uint8_t*>(buffer.data) + iy * buffer.rowBytes;
        lower = iy + 1 == buffer.height ? upper : upper + buffer.rowBytes;
    }
    [[nodiscard]] double mix(std::size_t channel) const {
        return ((1.0 - fx) * upper[left + channel] + fx * upper[right + channel]) * (1.0 - fy) +
               ((1.0 - fx) * lower[left + channel] + fx * lower[right + channel]) * fy;
    }
};

std::uint8_t toByte(double value) {
    return static_cast<std::uint8_t>(std::clamp(static_cast<int>(value + 0.5), 0, 255));
}

}  // namespace

double sampleBilinearPlanar8(const vImage_Buffer& buffer, double x, double y) {
    if (!(x >= 0.0 && y >= 0.0 && x < static_cast<double>(buffer.width) && y < static_cast<double>(buffer.height))) {
        return 0.0;
    }
    return Neighbours(buffer, 1, x, y).mix(0);
}

void sampleBilinearARGB8888(const vImage_Buffer& buffer, double x, double y, std::uint8_t& outR, std::uint8_t& outG,
                            std::uint8_t& outB) {
    const double lastX = static_cast<double>(buffer.width) - 1.0;
    const double lastY = static_cast<double>(buffer.height) - 1.0;
    if (!(x >= 0.0 && y >= 0.0 && x <= lastX && y <= lastY)) {
        outR = 0;
        outG = 0;
        outB = 0;
        return;
    }
    const Neighbours pixel(buffer, 4, x, y);
    outR = toByte(pixel.mix(1));
    outG = toByte(pixel.mix(2));
    outB = toByte(pixel.mix(3));
}

}  // namespace zelm
