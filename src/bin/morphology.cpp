// Dilation and erosion with the 3 x 3 square, repeated, and the opening and closing made of them.

#include <cstddef>
#include <cstdint>

#include "regionCheck.h"
#include "workBuffer.h"
#include "zelm/bin.h"

namespace zelm {
namespace {

constexpr uint8_t kForeground = 255;

struct Dilate {
    static uint8_t pick(uint8_t a, uint8_t b) { return a > b ? a : b; }
};
struct Erode {
    static uint8_t pick(uint8_t a, uint8_t b) { return a < b ? a : b; }
};

// The top-left pixel of a region and the distance to its next row.
struct ConstPlane {
    const uint8_t* pixels;
    ptrdiff_t stride;
};
struct Plane {
    uint8_t* pixels;
    ptrdiff_t stride;

    operator ConstPlane() const { return {pixels, stride}; }
};

Plane regionOf(const ZelmImage& image, const ZelmRect& region) {
    const ptrdiff_t stride = image.width;
    return {image.pixels + region.y * stride + region.x, stride};
}

// One output row from the input rows above, at and below it; width >= 2.
template <class Op>
void passRow(const uint8_t* above, const uint8_t* at, const uint8_t* below, ptrdiff_t width, uint8_t t, uint8_t* out) {
    const auto column = [=](ptrdiff_t x) { return Op::pick(Op::pick(above[x], at[x]), below[x]); };
    const auto level = [t](uint8_t extreme) { return extreme >= t ? kForeground : uint8_t{0}; };
    out[0] = level(Op::pick(column(0), column(1)));
    for (ptrdiff_t x = 1; x < width - 1; ++x) {
        out[x] = level(Op::pick(Op::pick(column(x - 1), column(x)), column(x + 1)));
    }
    out[width - 1] = level(Op::pick(column(width - 2), column(width - 1)));
}

// Border pixels see only neighbours inside the region: the missing row repeats the border row, which adds nothing to a
// largest or smallest value.
template <class Op>
void pass(ConstPlane in, const ZelmRect& region, uint8_t t, Plane out) {
    for (ptrdiff_t r = 0; r < region.height; ++r) {
        const uint8_t* const at = in.pixels + r * in.stride;
        passRow<Op>(r > 0 ? at - in.stride : at, at, r + 1 < region.height ? at + in.stride : at, region.width, t,
                    out.pixels + r * out.stride);
    }
}

bool argumentsHold(const ZelmImage* src, const ZelmRect* region, int32_t iterations, const ZelmImage* dst) {
    return src != nullptr && src->width > iterations && src->height > iterations && region != nullptr &&
           iterations >= 1 && dst != nullptr && region->width > iterations && region->height > iterations &&
           endsInside(*region, *dst);
}

template <class Op>
int32_t repeat(const ZelmImage* src, const ZelmRect* region, int32_t threshold, int32_t iterations, ZelmImage* dst) {
    if (!argumentsHold(src, region, iterations, dst)) {
        return ZELM_ERR_PARAM;
    }
    WorkBuffer<uint8_t> scratchPlane(static_cast<size_t>(region->height), static_cast<size_t>(region->width));
    if (!scratchPlane.ok()) {
        return ZELM_ERR_MEMORY;
    }
    const auto t = static_cast<uint8_t>(threshold < 0 ? 0 : (threshold > kForeground ? kForeground : threshold));
    const Plane target = regionOf(*dst, *region);
    const Plane scratch = {scratchPlane.data(), region->width};
    ConstPlane in = regionOf(*src, *region);
    for (int32_t p = 0; p < iterations; ++p) {
        const Plane out = (iterations - p) % 2 == 1 ? target : scratch;  // the last pass writes the target
        pass<Op>(in, *region, t, out);
        in = out;
    }
    return ZELM_OK;
}

// docs/decisions.md#opening-origin: a position other than the origin cannot be in the intermediate image. Beyond the
// far edge the first step finds out; before the near edge, which it does not check, it would write outside the image.
bool startsBeforeOrigin(const ZelmRect& region) {
    return region.x < 0 || region.y < 0;
}

template <class First, class Second>
int32_t repeatBoth(const ZelmImage* src, const ZelmRect* region, int32_t threshold, int32_t iterations,
                   ZelmImage* dst) {
    if (region == nullptr || region->width < 1 || region->height < 1 || startsBeforeOrigin(*region)) {
        return ZELM_ERR_PARAM;
    }
    WorkBuffer<uint8_t> pixels(static_cast<size_t>(region->height), static_cast<size_t>(region->width));
    if (!pixels.ok()) {
        return ZELM_ERR_MEMORY;
    }
    ZelmImage between = {pixels.data(), region->width, region->height};
    if (const auto s = repeat<First>(src, region, threshold, iterations, &between); s < 0) {
        return s;
    }
    return repeat<Second>(&between, region, threshold, iterations, dst);
}

}  // namespace
}  // namespace zelm

int32_t zelmBinDilation(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold, int32_t iIterations,
                        ZelmImage* tDst) {
    return zelm::repeat<zelm::Dilate>(tSrc, tRegion, iThreshold, iIterations, tDst);
}

int32_t zelmBinErosion(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold, int32_t iIterations,
                       ZelmImage* tDst) {
    return zelm::repeat<zelm::Erode>(tSrc, tRegion, iThreshold, iIterations, tDst);
}

int32_t zelmBinOpening(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold, int32_t iIterations,
                       ZelmImage* tDst) {
    return zelm::repeatBoth<zelm::Erode, zelm::Dilate>(tSrc, tRegion, iThreshold, iIterations, tDst);
}

int32_t zelmBinClosing(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold, int32_t iIterations,
                       ZelmImage* tDst) {
    return zelm::repeatBoth<zelm::Dilate, zelm::Erode>(tSrc, tRegion, iThreshold, iIterations, tDst);
}
