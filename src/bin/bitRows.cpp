#include "bitRows.h"

#include <algorithm>

namespace zelm {
namespace {

constexpr int32_t kLevels = 256;

}  // namespace

void packRow(const BitKernels& tier, const uint8_t* row, ptrdiff_t width, ForegroundTest isForeground,
             uint64_t* words) {
    // Flipped pixels are at or above the level where the pixels themselves are below what it leaves of 256.
    const bool flipped = isForeground.flip != 0;
    const int32_t level = flipped ? kLevels - isForeground.level : isForeground.level;
    const uint64_t flip = flipped ? ~uint64_t{0} : 0;
    if (level >= kLevels) {
        std::fill_n(words, wordsOf(width), flip);
    } else {
        const ptrdiff_t whole = width / kWordPixels;
        tier.pack(row, whole, static_cast<uint8_t>(level), flip, words);
        if (const ptrdiff_t rest = width - whole * kWordPixels; rest > 0) {
            uint8_t pixels[kWordPixels] = {};
            std::copy_n(row + whole * kWordPixels, rest, pixels);
            tier.pack(pixels, 1, static_cast<uint8_t>(level), flip, words + whole);
        }
    }
    words[wordsOf(width) - 1] &= lastWordMask(width);
}

void unpackRow(const BitKernels& tier, const uint64_t* words, ptrdiff_t width, uint8_t* row) {
    const ptrdiff_t whole = width / kWordPixels;
    tier.unpack(words, whole, row);
    if (const ptrdiff_t rest = width - whole * kWordPixels; rest > 0) {
        uint8_t pixels[kWordPixels];
        tier.unpack(words + whole, 1, pixels);
        std::copy_n(pixels, rest, row + whole * kWordPixels);
    }
}

}  // namespace zelm
