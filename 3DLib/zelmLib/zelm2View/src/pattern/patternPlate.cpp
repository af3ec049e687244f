#include "patternPlate.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "patternBlobs.h"

namespace zelm {
namespace {

constexpr std::int64_t kPlateShare = 20;  // the plate covers at least this part of the image's pixels

// Otsu's threshold separates nothing in such an image: docs/decisions.md#flat-image.
bool isOneGrayLevel(const ZelmImage& image) {
    const std::size_t pixels = static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
    const std::uint8_t first = image.pixels[0];
    return std::all_of(image.pixels, image.pixels + pixels, [first](std::uint8_t gray) { return gray == first; });
}

std::int32_t smallestPlateArea(const ZelmImage& image) {
    const std::int64_t area = std::int64_t{image.width} * image.height / kPlateShare;
    return static_cast<std::int32_t>(std::min<std::int64_t>(area, std::numeric_limits<std::int32_t>::max()));
}

}  // namespace

std::int32_t findPatternPlate(const ZelmImage& image, std::int32_t dotPolarity, ZelmRect* plate) {
    if (isOneGrayLevel(image)) {
        return ZELM_ERR_PATTERN_PLATE;
    }
    const ZelmRect whole = {0, 0, image.width, image.height};
    PatternBlobs blobs;
    if (const auto s = blobs.find(image, whole, 1 - dotPolarity, 1, smallestPlateArea(image)); s < 0) {
        return s;
    }
    const auto found = blobs.span();
    if (found.empty()) {
        return ZELM_ERR_PATTERN_PLATE;
    }
    // The first of the largest ones.
    const auto largest =
        std::max_element(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.area < b.area; });
    *plate = {largest->left, largest->top, largest->width, largest->height};
    return ZELM_OK;
}

}  // namespace zelm
