// The plain tier: the only one that samples the checker pattern.
#include <cstddef>

#include "corrKernels.h"

#if defined(__AVX__)
#error "the plain tier must run on every processor: build this file without AVX flags"
#endif

namespace zelm {
namespace {

const std::uint8_t* rowOf(const CorrPlane& plane, std::int32_t row) {
    return plane.pixels + static_cast<std::ptrdiff_t>(row) * plane.stride;
}

template <CorrMode mode>
constexpr bool kOwnStatistics = mode == kCorrSharedMask || mode == kCorrTwoMasks;

// One row's participating pixels among the columns from first on, in steps.
template <CorrMode mode, int step>
void addRow(const CorrWindows& windows, std::int32_t row, std::int32_t first, CorrSums& sums) {
    const std::uint8_t* const tmpl = rowOf(windows.tmpl, row);
    const std::uint8_t* const img = rowOf(windows.img, row);
    const std::uint8_t* const mask = mode == kCorrNoMask ? nullptr : rowOf(windows.mask, row);
    const std::uint8_t* const imgMask = mode == kCorrTwoMasks ? rowOf(windows.imgMask, row) : nullptr;
    CorrSums s = sums;
    for (std::ptrdiff_t c = first; c < windows.w; c += step) {
        if (mode != kCorrNoMask && (mask[c] == 0 || (mode == kCorrTwoMasks && imgMask[c] == 0))) {
            continue;
        }
        const std::uint32_t t = tmpl[c];
        const std::uint32_t i = img[c];
        s.i += i;
        s.ii += i * i;
        s.it += i * t;
        if (kOwnStatistics<mode>) {
            s.count += 1;
            s.t += t;
            s.tt += t * t;
        }
    }
    sums = s;
}

template <CorrPattern pattern, CorrMode mode>
void sumsPlain(const CorrWindows& windows, CorrSums& sums) {
    constexpr int kRowStep = pattern == kCorrQuarter ? 2 : 1;
    constexpr int kColumnStep = pattern == kCorrFull ? 1 : 2;
    sums = {};
    for (std::int64_t row = 0; row < windows.h; row += kRowStep) {
        const auto r = static_cast<std::int32_t>(row);
        addRow<mode, kColumnStep>(windows, r, pattern == kCorrChecker ? r & 1 : 0, sums);
    }
}

}  // namespace

#define ZELM_CORR_PLAIN_MODES(pattern)                                                                          \
    {                                                                                                           \
        sumsPlain<pattern, kCorrNoMask>, sumsPlain<pattern, kCorrRefMask>, sumsPlain<pattern, kCorrSharedMask>, \
            sumsPlain<pattern, kCorrTwoMasks>                                                                   \
    }

const CorrTier kCorrPlainTier = {
    {ZELM_CORR_PLAIN_MODES(kCorrFull), ZELM_CORR_PLAIN_MODES(kCorrChecker), ZELM_CORR_PLAIN_MODES(kCorrQuarter)},
    nullptr};

}  // namespace zelm
