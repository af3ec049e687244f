// Blobs of one labelling, freed with their owner.
#ifndef ZELM_PATTERN_BLOBS_H
#define ZELM_PATTERN_BLOBS_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "zelm/bin.h"

namespace zelm {

class PatternBlobs {
public:
    PatternBlobs() = default;
    PatternBlobs(const PatternBlobs&) = delete;
    PatternBlobs& operator=(const PatternBlobs&) = delete;
    ~PatternBlobs() { zelmBinFree(&blobs); }

    // Labels the region at its own Otsu threshold; to be called once.
    std::int32_t find(const ZelmImage& image, const ZelmRect& region, std::int32_t polarity, std::int32_t clearEdge,
                      std::int32_t minArea) {
        const std::int32_t threshold = zelmBinOtsuThresholdImage(&image, &region);
        if (threshold < 0) {
            return threshold;
        }
        return zelmBinBlob(&image, &region, threshold, polarity, clearEdge, minArea, &blobs, &count);
    }
    [[nodiscard]] std::span<const ZelmBlob> span() const { return {blobs, static_cast<std::size_t>(count)}; }

private:
    ZelmBlob* blobs = nullptr;
    std::int32_t count = 0;
};

}  // namespace zelm

#endif
