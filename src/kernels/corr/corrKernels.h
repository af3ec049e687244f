// The tiers of the correlation kernels: each sums over the pixels of two windows, the score is formed from the sums in
// one place for all of them. Plain data and declarations only, as the vector tiers are built with flags of their own.
#ifndef ZELM_CORR_KERNELS_H
#define ZELM_CORR_KERNELS_H

#include <cstdint>

namespace zelm {

enum CorrPattern { kCorrFull, kCorrChecker, kCorrQuarter, kCorrPatterns };
enum CorrMode { kCorrNoMask, kCorrRefMask, kCorrSharedMask, kCorrTwoMasks, kCorrModes };

// One row-major window, or the mask of one: its first pixel and the bytes from one row to the next.
struct CorrPlane {
    const std::uint8_t* pixels;
    std::int32_t stride;
};

// What a sum runs over. Masks that the mode does not use are not looked at; a shared mask is the first one.
struct CorrWindows {
    CorrPlane tmpl;
    CorrPlane img;
    CorrPlane mask;
    CorrPlane imgMask;
    std::int32_t w;
    std::int32_t h;
};

// Sums modulo 2^32 of the template T and the search window I over the participating pixels. The modes whose template
// statistics the caller gives leave count, t and tt alone or clear them. Vector tiers store four words at a time.
struct CorrSums {
    std::uint32_t i;
    std::uint32_t ii;
    std::uint32_t it;
    std::uint32_t count;
    std::uint32_t t;
    std::uint32_t tt;
    std::uint32_t unused[2];
};

using CorrSumsFunction = void (*)(const CorrWindows& windows, CorrSums& sums);

// i, ii and it of so many windows, over all of their pixels and without masks: of windows.img, of the window that
// begins one pixel to the right of it, and so on.
using CorrRunFunction = void (*)(const CorrWindows& windows, std::int32_t count, CorrSums* sums);

struct CorrTier {
    CorrSumsFunction sums[kCorrPatterns][kCorrModes];
    CorrRunFunction fullRun;  // null where it would take as long as the windows one by one
};

extern const CorrTier kCorrPlainTier;
extern const CorrTier kCorrSse41Tier;  // x86 only
extern const CorrTier kCorrAvx2Tier;   // 64-bit x86 only

// The tier that the processor calls for.
const CorrTier& corrTierOfProcessor();

}  // namespace zelm

#endif
