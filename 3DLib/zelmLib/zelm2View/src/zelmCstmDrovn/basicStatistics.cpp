// Mean and deviation of a template over the three sampling patterns.
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "maskedPlane.h"
#include "zelm/cstmSearch.h"

namespace zelm {
namespace {

// Sums in 32 bits, which wrap around beyond 66,051 pixels, as those of the scores do.
struct Sums {
    std::uint32_t count = 0;
    std::uint32_t values = 0;
    std::uint32_t squares = 0;

    void add(std::uint32_t value, bool takesPart) {
        count += takesPart ? 1U : 0U;
        values += takesPart ? value : 0U;
        squares += takesPart ? value * value : 0U;
    }
    Sums operator+(const Sums& other) const {
        return {count + other.count, values + other.values, squares + other.squares};
    }
};

// Rows and columns by parity: every pattern is a sum of these four classes.
struct ParityClasses {
    Sums sums[2][2];  // [row parity][column parity]
};

void addRow(const std::uint8_t* pixels, const std::uint8_t* mask, std::size_t width, Sums sums[2]) {
    for (std::size_t column = 0; column < width; ++column) {
        sums[column & 1].add(pixels[column], mask == nullptr || mask[column] != 0);
    }
}

ParityClasses sumClasses(const MaskedPlane& plane) {
    ParityClasses classes;
    const auto stride = static_cast<std::size_t>(plane.stride);
    const auto maskStride = static_cast<std::size_t>(plane.maskStride);
    for (std::size_t row = 0; row < static_cast<std::size_t>(plane.height); ++row) {
        addRow(plane.pixels + row * stride, plane.mask != nullptr ? plane.mask + row * maskStride : nullptr,
               static_cast<std::size_t>(plane.width), classes.sums[row & 1]);
    }
    return classes;
}

std::int32_t writeStatistics(const MaskedPlane& plane, ZelmCstmRefImg* ref) {
    if (std::int64_t{plane.width} * plane.height < 1 || plane.height < 1) {
        return ZELM_ERR_DEGENERATE;
    }
    const ParityClasses classes = sumClasses(plane);
    const Sums quarter = classes.sums[0][0];
    const Sums checker = quarter + classes.sums[1][1];
    const Sums full = checker + classes.sums[0][1] + classes.sums[1][0];
    const Sums patterns[3] = {quarter, checker, full};
    for (const Sums& pattern : patterns) {
        if (pattern.count == 0) {
            return ZELM_ERR_DEGENERATE;
        }
    }
    for (std::size_t p = 0; p < 3; ++p) {
        const double count = patterns[p].count;
        const double mean = patterns[p].values / count;
        const double variance = patterns[p].squares / count - mean * mean;
        ref->mean[p] = mean;
        ref->sigma[p] = std::sqrt(variance > 0.0 ? variance : 0.0);
    }
    return ZELM_OK;
}

}  // namespace
}  // namespace zelm

int32_t zelmCstmDrovnCalcBasicStatisticsOfRefImg(ZelmCstmRefImg* tRef) {
    if (tRef == nullptr || tRef->pixels == nullptr) {
        return ZELM_ERR_PARAM;
    }
    return zelm::writeStatistics(zelm::densePlane(tRef->width, tRef->height, tRef->pixels, tRef->mask), tRef);
}

int32_t zelmCstmDrovnCalcBasicStatisticsOfRefImg_vImagePlanar8(const vImage_Buffer* tImage, const vImage_Buffer* tMask,
                                                               ZelmCstmRefImg* tRef) {
    zelm::MaskedPlane plane{};
    if (tRef == nullptr || tImage == nullptr || !zelm::planeOfBuffers(*tImage, tMask, &plane)) {
        return ZELM_ERR_PARAM;
    }
    return zelm::writeStatistics(plane, tRef);
}
