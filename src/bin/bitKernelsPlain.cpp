// The tier of every processor.
#include "bitKernels.h"
#include "bitUnions-inl.h"
#include "bitWords.h"

namespace zelm {
namespace {

void pack(const uint8_t* pixels, ptrdiff_t words, uint8_t level, uint64_t flip, uint64_t* to) {
    for (ptrdiff_t i = 0; i < words; ++i) {
        to[i] = packWord(pixels + i * kWordPixels, level) ^ flip;
    }
}

void unpack(const uint64_t* from, ptrdiff_t words, uint8_t* pixels) {
    for (ptrdiff_t i = 0; i < words; ++i) {
        unpackWord(from[i], pixels + i * kWordPixels);
    }
}

}  // namespace

const BitKernels kBitPlainTier = {pack, unpack, uniteBits, uniteWords};

}  // namespace zelm
