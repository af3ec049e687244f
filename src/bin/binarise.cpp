// Two-level image of a region.

#include <cstddef>
#include <cstdint>

#include "regionCheck.h"
#include "zelm/bin.h"

namespace zelm {
namespace {

constexpr int kAboveAllLevels = 256;

// The threshold is brought to 0..256 first, where it still separates the same levels.
void binariseRegion(const ZelmImage& src, const ZelmRect& region, int32_t threshold, const ZelmImage& dst) {
    const int t = threshold < 0 ? 0 : (threshold > kAboveAllLevels ? kAboveAllLevels : threshold);
    for (ptrdiff_t r = 0; r < region.height; ++r) {
        const uint8_t* const from = src.pixels + (region.y + r) * static_cast<ptrdiff_t>(src.width) + region.x;
        uint8_t* const to = dst.pixels + (region.y + r) * static_cast<ptrdiff_t>(dst.width) + region.x;
        for (ptrdiff_t x = 0; x < region.width; ++x) {
            to[x] = from[x] < t ? 0 : 255;
        }
    }
}

}  // namespace
}  // namespace zelm

int32_t zelmBinBinaryImage(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold, ZelmImage* tDst) {
    if (tSrc == nullptr || tSrc->width < 1 || tSrc->height < 1 || tRegion == nullptr || tDst == nullptr ||
        tRegion->width < 0 || tRegion->height < 0 || !zelm::endsInside(*tRegion, *tDst)) {
        return ZELM_ERR_PARAM;
    }
    zelm::binariseRegion(*tSrc, *tRegion, iThreshold, *tDst);
    return ZELM_OK;
}
