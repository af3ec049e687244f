// The loops over rows of bits that the processor's vector instructions shorten, a set a tier.
#ifndef ZELM_BIT_KERNELS_H
#define ZELM_BIT_KERNELS_H

#include <cstddef>
#include <cstdint>

namespace zelm {

struct BitKernels {
    // Each word from 64 pixels: a bit is set where a pixel is at or above the level, then flipped where `flip` is set.
    void (*pack)(const uint8_t* pixels, ptrdiff_t words, uint8_t level, uint64_t flip, uint64_t* to);
    // 64 pixels from each word: 255 for each bit that is set, else 0.
    void (*unpack)(const uint64_t* from, ptrdiff_t words, uint8_t* pixels);
    // Each bit of `to` is one of `from` or of those `step` bits before and after it; step is no multiple of 64. Up to
    // step / 64 + 1 words before and behind `from` are read.
    void (*uniteBits)(const uint64_t* from, ptrdiff_t words, ptrdiff_t step, uint64_t* to);
    // Each bit of `to` is one of the three.
    void (*uniteWords)(const uint64_t* above, const uint64_t* at, const uint64_t* below, ptrdiff_t words, uint64_t* to);
};

extern const BitKernels kBitPlainTier;
extern const BitKernels kBitAvx2Tier;

// Those of the best tier that the processor has.
const BitKernels& bitTierOfProcessor();

}  // namespace zelm

#endif
