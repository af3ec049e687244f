// Two-level image of a region.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "byteVector.h"
#include "regionCheck.h"
#include "zelm/bin.h"

namespace zelm {
namespace {

constexpr int kAboveAllLevels = 256;
constexpr uint8_t kForeground = 255;

void binariseRow(const uint8_t* from, ptrdiff_t width, uint8_t t, uint8_t* to) {
    const ByteVector level = everyByte(t);
    ptrdiff_t x = 0;
    for (; x + kVectorBytes <= width; x += kVectorBytes) {
        storeBytes(to + x, atOrAbove(loadBytes(from + x), level));
    }
    for (; x < width; ++x) {
        to[x] = from[x] >= t ? kForeground : 0;
    }
}

// The threshold is brought to 0..256 first, where it still separates the same levels.
void binariseRegion(const ZelmImage& src, const ZelmRect& region, int32_t threshold, const ZelmImage& dst) {
    const int t = std::clamp(threshold, 0, kAboveAllLevels);
    for (ptrdiff_t r = 0; r < region.height; ++r) {
        const uint8_t* const from = src.pixels + (region.y + r) * static_cast<ptrdiff_t>(src.width) + region.x;
        uint8_t* const to = dst.pixels + (region.y + r) * static_cast<ptrdiff_t>(dst.width) + region.x;
        if (t == kAboveAllLevels) {
            std::fill_n(to, region.width, uint8_t{0});
        } else {
            binariseRow(from, region.width, static_cast<uint8_t>(t), to);
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
