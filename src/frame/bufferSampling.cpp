#include "bufferSampling.h"

#include <algorithm>
#include <cstddef>

namespace zelm {
namespace {

// The four pixels around a sampled position, as byte offsets, and its place between them.
struct Neighbours {
    using Place = BilinearPlace<std::ptrdiff_t>;

    const std::uint8_t* upper;
    const std::uint8_t* lower;
    std::ptrdiff_t left;
    std::ptrdiff_t right;
    double fx;
    double fy;

    Neighbours(const vImage_Buffer& buffer, std::ptrdiff_t pixelBytes, double x, double y) {
        const Place column(x, static_cast<std::ptrdiff_t>(buffer.width));
        const Place row(y, static_cast<std::ptrdiff_t>(buffer.height));
        const auto* const pixels = static_cast<const std::uint8_t*>(buffer.data);
        const auto rowBytes = static_cast<std::ptrdiff_t>(buffer.rowBytes);
        upper = pixels + row.near * rowBytes;
        lower = pixels + row.far * rowBytes;
        left = column.near * pixelBytes;
        right = column.far * pixelBytes;
        fx = column.fraction;
        fy = row.fraction;
    }
    [[nodiscard]] double mix(std::ptrdiff_t channel) const {
        return mixRows(mixAlongRow(upper[left + channel], upper[right + channel], fx),
                       mixAlongRow(lower[left + channel], lower[right + channel], fx), fy);
    }
};

std::uint8_t toByte(double value) {
    return static_cast<std::uint8_t>(std::clamp(static_cast<int>(value + 0.5), 0, 255));
}

}  // namespace

double sampleBilinearPlanar8(const vImage_Buffer& buffer, double x, double y) {
    if (!isSampledPlanar8(x, static_cast<double>(buffer.width)) ||
        !isSampledPlanar8(y, static_cast<double>(buffer.height))) {
        return 0.0;
    }
    return Neighbours(buffer, 1, x, y).mix(0);
}

void sampleBilinearARGB8888(const vImage_Buffer& buffer, double x, double y, std::uint8_t& outR, std::uint8_t& outG,
                            std::uint8_t& outB) {
    if (!isSampledARGB8888(x, static_cast<double>(buffer.width)) ||
        !isSampledARGB8888(y, static_cast<double>(buffer.height))) {
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
