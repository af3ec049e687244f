#include "bitRows.h"

#include <algorithm>

namespace zelm {
namespace {

constexpr int32_t kLevels = 256;

void packAtOrAbove(const uint8_t* row, ptrdiff_t width, uint8_t level, uint64_t flip, uint64_t* words) {
    const ptrdiff_t whole = width / kWordPixels;
    for (ptrdiff_t i = 0; i < whole; ++i) {
        words[i] = packWord(row + i * kWordPixels, level) ^ flip;
    }
    if (const ptrdiff_t rest = width - whole * kWordPixels; rest > 0) {
        uint8_t pixels[kWordPixels] = {};
        std::copy_n(row + whole * kWordPixels, rest, pixels);
        words[whole] = packWord(pixels, level) ^ flip;
    }
}

}  // namespace

void packRow(const uint8_t* row, ptrdiff_t width, ForegroundTest isForeground, uint64_t* words) {
    // Flipped pixels are at or above the level where the pixels themselves are below what it leaves of 256.
    const bool flipped = isForeground.flip != 0;
    const int32_t level = flipped ? kLevels - isForeground.level : isForeground.level;
    const uint64_t flip = flipped ? ~uint64_t{0} : 0;
    if (level >= kLevels) {
        std::fill_n(words, wordsOf(width), flip);
    } else {
        packAtOrAbove(row, width, static_cast<uint8_t>(level), flip, words);
    }
    words[wordsOf(width) - 1] &= lastWordMask(width);
}

void unpackRow(const uint64_t* words, ptrdiff_t width, uint8_t* row) {
    const ptrdiff_t whole = width / kWordPixels;
    for (ptrdiff_t i = 0; i < whole; ++i) {
        unpackWord(words[i], row + i * kWordPixels);
    }
    if (const ptrdiff_t rest = width - whole * kWordPixels; rest > 0) {
        uint8_t pixels[kWordPixels];
        unpackWord(words[whole], pixels);
        std::copy_n(pixels, rest, row + whole * kWordPixels);
    }
}

}  // namespace zelm
