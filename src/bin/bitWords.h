// Sixty-four pixels and the word of their bits, the first pixel lowest; as any processor does it and, where there are
// instructions for it, with those.
#ifndef ZELM_BIT_WORDS_H
#define ZELM_BIT_WORDS_H

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "bitRows.h"
#include "byteVector.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace zelm {

constexpr ptrdiff_t kBytePixels = 8;

// The pixels of each byte of bits.
using BytePixels = std::array<uint8_t, kBytePixels>;

constexpr std::array<BytePixels, 256> pixelsOfBytes() {
    std::array<BytePixels, 256> table{};
    for (size_t bits = 0; bits < table.size(); ++bits) {
        for (size_t x = 0; x < kBytePixels; ++x) {
            table[bits][x] = (bits >> x & 1U) != 0 ? 255 : 0;
        }
    }
    return table;
}

inline constexpr std::array<BytePixels, 256> kPixelsOfBytes = pixelsOfBytes();

// The lowest bit of each of 8 bytes, the first byte's lowest: the factor moves bit 8 i to bit 56 + i, and no two of
// its products meet.
inline uint64_t lowestBits(uint64_t bytes) {
    if constexpr (std::endian::native == std::endian::big) {
        bytes = __builtin_bswap64(bytes);
    }
    return (bytes & 0x0101010101010101U) * 0x0102040810204080U >> 56;
}

// The bits that are set where a pixel is at or above the level.
inline uint64_t packWordPlain(const uint8_t* pixels, uint8_t level) {
    uint64_t word = 0;
    for (ptrdiff_t x = 0; x < kWordPixels; x += kVectorBytes) {
        const ByteVector mask = atOrAbove(loadBytes(pixels + x), everyByte(level));
        uint64_t halves[2];
        std::memcpy(halves, &mask, sizeof halves);
        word |= (lowestBits(halves[0]) | lowestBits(halves[1]) << kBytePixels) << x;
    }
    return word;
}

// 255 for each bit that is set, else 0.
inline void unpackWordPlain(uint64_t word, uint8_t* pixels) {
    for (ptrdiff_t x = 0; x < kWordPixels; x += kBytePixels) {
        std::memcpy(pixels + x, kPixelsOfBytes[word >> x & 0xFFU].data(), kBytePixels);
    }
}

#if defined(__SSE2__)

inline uint64_t packWord(const uint8_t* pixels, uint8_t level) {
    uint64_t word = 0;
    for (ptrdiff_t x = 0; x < kWordPixels; x += kVectorBytes) {
        const ByteVector mask = atOrAbove(loadBytes(pixels + x), everyByte(level));
        word |= static_cast<uint64_t>(_mm_movemask_epi8(reinterpret_cast<__m128i>(mask))) << x;
    }
    return word;
}

// Sixteen pixels from eight copies of each of their two bytes of bits.
inline void storePixels(__m128i copies, uint8_t* pixels) {
    constexpr ByteVector kBit = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
    storeBytes(pixels, reinterpret_cast<ByteVector>((reinterpret_cast<ByteVector>(copies) & kBit) == kBit));
}

inline void unpackWord(uint64_t word, uint8_t* pixels) {
    const __m128i bytes = {static_cast<int64_t>(word), 0};
    const __m128i twice = _mm_unpacklo_epi8(bytes, bytes);
    const __m128i low = _mm_unpacklo_epi16(twice, twice);
    const __m128i high = _mm_unpackhi_epi16(twice, twice);
    storePixels(_mm_unpacklo_epi32(low, low), pixels);
    storePixels(_mm_unpackhi_epi32(low, low), pixels + kVectorBytes);
    storePixels(_mm_unpacklo_epi32(high, high), pixels + 2 * kVectorBytes);
    storePixels(_mm_unpackhi_epi32(high, high), pixels + 3 * kVectorBytes);
}

#else

inline uint64_t packWord(const uint8_t* pixels, uint8_t level) {
    return packWordPlain(pixels, level);
}

inline void unpackWord(uint64_t word, uint8_t* pixels) {
    unpackWordPlain(word, pixels);
}

#endif

}  // namespace zelm

#endif
