#include "plateTraits.h"

#include <algorithm>
#include <array>

namespace zelm::measure {

int brightLevel(const DenseImage& image) {
    std::array<std::size_t, 256> counts{};
    const std::size_t pixels = static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height());
    for (std::size_t i = 0; i < pixels; ++i) {
        counts[image.pixels()[i]] += 1;
    }
    std::size_t above = pixels / 1000;
    int level = 255;
    for (; level > 0 && counts[static_cast<std::size_t>(level)] <= above; --level) {
        above -= counts[static_cast<std::size_t>(level)];
    }
    return level;
}

int countMarkerSized(const DenseImage& image, const Pattern& plate) {
    const std::vector<ZelmBlob> blobs = blobsOf(image, plate, {0, 0, image.width(), image.height()});
    if (blobs.empty()) {
        return 0;
    }
    std::vector<double> areas(blobs.size());
    std::transform(blobs.begin(), blobs.end(), areas.begin(), [](const ZelmBlob& blob) { return blob.area; });
    const double usual = median(areas);
    const double ratio = plate.d3 * plate.d3 / (plate.d2 * plate.d2);
    return static_cast<int>(std::count_if(areas.begin(), areas.end(), [&](double area) {
        return area > usual * 0.5 * (1.0 + ratio) && area < usual * 2.0 * ratio;
    }));
}

int countOppositeDots(const DenseImage& image, const Pattern& plate) {
    Pattern opposite = plate;
    opposite.polarity = 1 - plate.polarity;
    const DotReading reading = readDots(image, opposite, nullptr);
    requireMemory(reading.status);
    return static_cast<int>(reading.points.size());
}

}  // namespace zelm::measure
