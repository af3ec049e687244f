#include "dots.h"

#include <fmt/format.h>

#include <algorithm>

#include "failure.h"

namespace zelm::tool {
namespace {

constexpr std::int64_t kMaxUsualDots = 10'000;  // of a picture; of more, the first reading only tells how many

}  // namespace

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

std::size_t describedDots(const Plate& plate) {
    const Zelm2ViewPatternDesc& p = plate.pattern;
    constexpr double kRounding = 0.001;  // of a pitch
    const auto count = [](double extent, double pitch) {
        return 2 * static_cast<std::size_t>(std::min(extent / 2.0 / pitch + kRounding, 1e4)) + 1;
    };
    return count(p.d0, p.d4) * count(p.d1, p.d5);
}

ZelmMeasureImage imageOf(const Picture& picture) {
    return {picture.pixels.data(), picture.width, picture.height, picture.width};
}

GridIndex markerIndex(const Plate& plate) {
    return {static_cast<int>(plate.pattern.d6 / plate.pattern.d4 + 0.5),
            static_cast<int>(plate.pattern.d7 / plate.pattern.d5 + 0.5)};
}

}  // namespace zelm::tool
