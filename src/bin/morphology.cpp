// Dilation and erosion with the 3 x 3 square, repeated, and the opening and closing made of them.
//
// After the first round an image has two levels, which every further round tells apart by the same threshold. So the
// image is made two-level first, a bit a pixel, and all rounds are one. Erosion is the dilation of the background:
// what lies outside the region counts as neither.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "bitDilation.h"
#include "bitKernels.h"
#include "bitRows.h"
#include "foregroundTest.h"
#include "regionCheck.h"
#include "zelm/bin.h"

namespace zelm {
namespace {

constexpr int32_t kTopLevel = 255;

enum class Step { dilate, erode };

bool argumentsHold(const ZelmImage* src, const ZelmRect* region, int32_t iterations, const ZelmImage* dst) {
    return src != nullptr && src->width > iterations && src->height > iterations && region != nullptr &&
           iterations >= 1 && dst != nullptr && region->width > iterations && region->height > iterations &&
           endsInside(*region, *dst);
}

uint8_t* rowOf(const ZelmImage& image, const ZelmRect& region, ptrdiff_t r) {
    return image.pixels + (region.y + r) * static_cast<ptrdiff_t>(image.width) + region.x;
}

// The plane holds the foreground for a dilation, the background for an erosion.
void pack(const BitKernels& tier, const ZelmImage& src, const ZelmRect& region, int32_t threshold, Step first,
          BitPlane& plane) {
    const int32_t t = std::clamp(threshold, 0, kTopLevel);
    const ForegroundTest test = ForegroundTest::of(t, first == Step::dilate ? 1 : 0);
    for (ptrdiff_t r = 0; r < region.height; ++r) {
        packRow(tier, rowOf(src, region, r), region.width, test, plane.row(r));
    }
}

void unpack(const BitKernels& tier, BitPlane& plane, const ZelmRect& region, Step last, const ZelmImage& dst) {
    if (last == Step::erode) {
        plane.invert();
    }
    for (ptrdiff_t r = 0; r < region.height; ++r) {
        unpackRow(tier, plane.row(r), region.width, rowOf(dst, region, r));
    }
}

int32_t repeat(const ZelmImage* src, const ZelmRect* region, int32_t threshold, int32_t iterations, Step step,
               ZelmImage* dst) {
    if (!argumentsHold(src, region, iterations, dst)) {
        return ZELM_ERR_PARAM;
    }
    const BitKernels& tier = bitTierOfProcessor();
    BitPlane plane(tier, region->width, region->height, iterations);
    if (!plane.ok()) {
        return ZELM_ERR_MEMORY;
    }
    pack(tier, *src, *region, threshold, step, plane);
    plane.dilate();
    unpack(tier, plane, *region, step, *dst);
    return ZELM_OK;
}

// docs/decisions.md#opening-origin
bool startsAtOrigin(const ZelmRect& region) {
    return region.x == 0 && region.y == 0;
}

// The second step tells the two levels of the first one apart by the same threshold. Threshold 0 makes all foreground
// before the first step, which both leave so.
int32_t repeatBoth(const ZelmImage* src, const ZelmRect* region, int32_t threshold, int32_t iterations, Step first,
                   ZelmImage* dst) {
    if (!argumentsHold(src, region, iterations, dst) || !startsAtOrigin(*region)) {
        return ZELM_ERR_PARAM;
    }
    const BitKernels& tier = bitTierOfProcessor();
    BitPlane plane(tier, region->width, region->height, iterations);
    if (!plane.ok()) {
        return ZELM_ERR_MEMORY;
    }
    pack(tier, *src, *region, threshold, first, plane);
    plane.dilate();
    plane.invert();
    plane.dilate();
    unpack(tier, plane, *region, first == Step::dilate ? Step::erode : Step::dilate, *dst);
    return ZELM_OK;
}

}  // namespace
}  // namespace zelm

int32_t zelmBinDilation(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold, int32_t iIterations,
                        ZelmImage* tDst) {
    return zelm::repeat(tSrc, tRegion, iThreshold, iIterations, zelm::Step::dilate, tDst);
}

int32_t zelmBinErosion(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold, int32_t iIterations,
                       ZelmImage* tDst) {
    return zelm::repeat(tSrc, tRegion, iThreshold, iIterations, zelm::Step::erode, tDst);
}

int32_t zelmBinOpening(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold, int32_t iIterations,
                       ZelmImage* tDst) {
    return zelm::repeatBoth(tSrc, tRegion, iThreshold, iIterations, zelm::Step::erode, tDst);
}

int32_t zelmBinClosing(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold, int32_t iIterations,
                       ZelmImage* tDst) {
    return zelm::repeatBoth(tSrc, tRegion, iThreshold, iIterations, zelm::Step::dilate, tDst);
}
