#include "pairingCall.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "failure.h"

namespace zelm::tool {
namespace {

// The dots of all images of a side, one view after the other.
struct SideDots {
    std::vector<std::int64_t> counts;
    std::vector<double> plane;
    std::vector<double> pixels;
};

SideDots dotsOf(const PairReading& reading, char side) {
    SideDots dots;
    for (std::size_t view = 0; view < reading.used.size(); ++view) {
        const auto index = static_cast<std::int32_t>(view);
        std::int64_t count = 0;
        zelmMeasureReadDots(reading.calib.get(), side, index, nullptr, &count);
        const std::size_t at = dots.plane.size();
        dots.plane.resize(at + 2 * static_cast<std::size_t>(count));
        dots.pixels.resize(dots.plane.size());
        ZelmMeasureDots arrays{};
        arrays.size = sizeof(arrays);
        arrays.capacity = count;
        arrays.plane = dots.plane.data() + at;
        arrays.pixels = dots.pixels.data() + at;
        zelmMeasureReadDots(reading.calib.get(), side, index, &arrays, &count);
        dots.counts.push_back(count);
    }
    return dots;
}

}  // namespace

std::optional<ImageSetFindings> examineImages(const PairReading& reading, const Plate& plate) {
    if (reading.cameras.leftModel == ZELM_CAMERA_PARALLEL || reading.cameras.rightModel == ZELM_CAMERA_PARALLEL) {
        return std::nullopt;
    }
    const SideDots left = dotsOf(reading, 'L');
    const SideDots right = dotsOf(reading, 'R');
    const auto views = static_cast<std::int32_t>(reading.used.size());
    const ZelmMeasureImageSet set{sizeof(set),        views,
                                  &plate.pattern,     &reading.cameras,
                                  left.counts.data(), left.plane.data(),
                                  left.pixels.data(), right.counts.data(),
                                  right.plane.data(), right.pixels.data()};
    ImageSetFindings findings;
    findings.views.resize(reading.used.size());
    findings.views.front().size = sizeof(ZelmMeasurePairedView);
    findings.causes.resize(reading.used.size() + 4);  // each explains a view, or all of them
    findings.causes.front().size = sizeof(ZelmMeasureSetCause);
    findings.pairing.size = sizeof(findings.pairing);
    const std::int32_t status =
        zelmMeasurePairImages(&set, findings.views.data(), findings.causes.data(),
                              static_cast<std::int64_t>(findings.causes.size()), &findings.pairing);
    if (status < 0) {
        failData("the images cannot be compared (status {}): out of memory, or a plate file without field and markers",
                 status);
    }
    findings.causes.resize(std::min(findings.causes.size(), static_cast<std::size_t>(findings.pairing.causes)));
    return findings;
}

}  // namespace zelm::tool
