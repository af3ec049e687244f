#include "dots.h"

#include <fmt/format.h>

#include <algorithm>

#include "failure.h"

namespace zelm::tool {
namespace {

constexpr std::int64_t kMaxUsualDots = 10'000;  // of a picture; of more, the first reading only tells how many

const char* polarityWord(std::int32_t polarity) {
    return polarity == 0 ? "dark" : "bright";
}

// Why no dots are found in a picture whose levels are to blame; empty when they are not.
std::string contrastText(const ZelmMeasurePlateTraits& traits, const Plate& plate) {
    constexpr int kDarkLevel = 32;  // a plate so dark has hardly the contrast that dots need
    if (const int level = traits.brightLevel; level < kDarkLevel) {
        return fmt::format(
            "the image is nearly black, with levels up to {} of 255: are these 10 or 12 bits in 16? Scale its levels "
            "up, or expose it longer",
            level);
    }
    if (traits.oppositeDots > 0) {
        const char* const opposite = polarityWord(1 - plate.pattern.polarity);
        return fmt::format("{} {} dots found, but no {} ones: set \"polarity\" of the plate to \"{}\"",
                           traits.oppositeDots, opposite, polarityWord(plate.pattern.polarity), opposite);
    }
    return {};
}

}  // namespace

std::string readingText(std::int32_t status, const Plate& plate, const Picture* picture) {
    const Zelm2ViewPatternDesc& p = plate.pattern;
    const char* const dots = polarityWord(p.polarity);
    ZelmMeasurePlateTraits traits{};
    traits.size = sizeof(traits);
    if (picture != nullptr) {
        const ZelmMeasureImage image = imageOf(*picture);
        zelmMeasurePlateTraits(&image, &plate.pattern, &traits);
    }
    if (picture != nullptr && (status == ZELM_ERR_PATTERN_PLATE || status == ZELM_ERR_PATTERN)) {
        if (const std::string text = contrastText(traits, plate); !text.empty()) {
            return text;
        }
    }
    switch (status) {
        case ZELM_ERR_PATTERN_PLATE:
            return fmt::format("no plate found: does it fill a twentieth of the image, with {} dots on a {} ground?",
                               dots, p.polarity == 0 ? "bright" : "dark");
        case ZELM_ERR_PATTERN:
            return fmt::format(
                "fewer than {} {} dots found: is the plate wholly in view, sharp, evenly lit and not "
                "tilted far, with dots at least 10 pixels wide, and the plate file this plate's? (--min-dots asks for "
                "fewer)",
                p.minDots, dots);
        case ZELM_ERR_PATTERN_MARKERS: {
            const int seen = picture != nullptr ? traits.markerSized : p.markers;
            if (seen < p.markers) {
                return fmt::format(
                    "only {} of {} markers found: is one hidden or outside the image, or the plate file another "
                    "plate's?",
                    seen, p.markers);
            }
            return fmt::format(
                "the {} markers cannot be told apart from other dots: is something of their size in "
                "the image, or is the plate tilted too far?",
                p.markers);
        }
        case ZELM_ERR_PATTERN_GRID:
            return "the dots form no grid with the markers: do pitch and marker distances in the plate file fit the "
                   "plate?";
        case ZELM_ERR_MEMORY:
            return "out of memory: use smaller images";
        default:
            return fmt::format("the plate cannot be read (status {})", status);
    }
}

void checkRegion(const ZelmRect& region, const Picture& picture, const std::string& file) {
    const bool inside = region.x >= 0 && region.y >= 0 && region.width > 0 && region.height > 0 &&
                        region.width <= picture.width - region.x && region.height <= picture.height - region.y;
    if (!inside) {
        failUsage("{}: the region {},{},{},{} is not inside this {} x {} image", file, region.x, region.y, region.width,
                  region.height, picture.width, picture.height);
    }
}

DotArrays::DotArrays(std::int64_t capacity)
    : grid(2 * static_cast<std::size_t>(capacity)), plane(grid.size()), pixels(grid.size()), errors(grid.size()) {
    arrays = {sizeof(arrays), 0, capacity, grid.data(), plane.data(), pixels.data(), errors.data()};
}

std::vector<Dot> DotArrays::dots() const {
    std::vector<Dot> list(grid.size() / 2);
    for (std::size_t i = 0; i < list.size(); ++i) {
        const std::size_t x = 2 * i;
        const std::size_t y = x + 1;
        list[i] = {{grid[x], grid[y]}, {plane[x], plane[y]}, {pixels[x], pixels[y]}, {errors[x], errors[y]}};
    }
    return list;
}

DotReading readDots(const Picture& picture, const Plate& plate, const std::optional<ZelmRect>& region) {
    const ZelmMeasureImage image = imageOf(picture);
    const ZelmRect* const part = region ? &*region : nullptr;
    DotReading reading;
    std::int64_t placed = 0;
    for (std::int64_t capacity = kMaxUsualDots;; capacity = placed) {
        DotArrays arrays(capacity);
        reading.status = zelmMeasurePlateDots(&image, &plate.pattern, part, arrays.record(), &placed, &reading.found);
        if (reading.status < 0 || placed <= capacity) {
            reading.dots = arrays.dots();
            reading.dots.resize(reading.status < 0 ? 0 : static_cast<std::size_t>(placed));
            return reading;
        }
    }
}

ZelmMeasureImage imageOf(const Picture& picture) {
    return {picture.pixels.data(), picture.width, picture.height, picture.width};
}

GridIndex markerIndex(const Plate& plate) {
    return {static_cast<int>(plate.pattern.d6 / plate.pattern.d4 + 0.5),
            static_cast<int>(plate.pattern.d7 / plate.pattern.d5 + 0.5)};
}

}  // namespace zelm::tool
