// Rows of two-level pixels, a bit a pixel: pixel x is bit x % 64 of word x / 64. Bits beyond a row's width are 0.
#ifndef ZELM_BIT_ROWS_H
#define ZELM_BIT_ROWS_H

#include <cstddef>
#include <cstdint>

#include "bitKernels.h"
#include "foregroundTest.h"

namespace zelm {

constexpr ptrdiff_t kWordPixels = 64;

inline ptrdiff_t wordsOf(ptrdiff_t width) {
    return (width + kWordPixels - 1) / kWordPixels;
}

// The bits that pixels take in the last word of a row of width >= 1.
inline uint64_t lastWordMask(ptrdiff_t width) {
    return ~uint64_t{0} >> (wordsOf(width) * kWordPixels - width);
}

// The foreground of a row, wordsOf(width) words.
void packRow(const BitKernels& tier, const uint8_t* row, ptrdiff_t width, ForegroundTest isForeground, uint64_t* words);

// Writes 255 for each pixel whose bit is set, else 0.
void unpackRow(const BitKernels& tier, const uint64_t* words, ptrdiff_t width, uint8_t* row);

}  // namespace zelm

#endif
