// The AVX2 tier: half a word's pixels at a time.
#include <immintrin.h>

#include "bitKernels.h"
#include "bitUnions-inl.h"

namespace zelm {
namespace {

constexpr ptrdiff_t kHalfPixels = 32;

uint64_t packHalf(const uint8_t* pixels, __m256i level) {
    const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
    const __m256i mask = _mm256_cmpeq_epi8(_mm256_max_epu8(v, level), v);
    return static_cast<uint32_t>(_mm256_movemask_epi8(mask));
}

void pack(const uint8_t* pixels, ptrdiff_t words, uint8_t level, uint64_t flip, uint64_t* to) {
    const __m256i levels = _mm256_set1_epi8(static_cast<char>(level));
    for (ptrdiff_t i = 0; i < words; ++i) {
        const uint8_t* const at = pixels + 2 * i * kHalfPixels;
        to[i] = (packHalf(at, levels) | packHalf(at + kHalfPixels, levels) << kHalfPixels) ^ flip;
    }
}

// Eight copies of each of the four bytes, each asked for another bit.
void unpackHalf(uint32_t bits, uint8_t* pixels) {
    const __m256i spread =
        _mm256_setr_epi64x(0x0000000000000000, 0x0101010101010101, 0x0202020202020202, 0x0303030303030303);
    const __m256i bit = _mm256_set1_epi64x(static_cast<int64_t>(0x8040201008040201U));
    const __m256i copies = _mm256_shuffle_epi8(_mm256_set1_epi32(static_cast<int32_t>(bits)), spread);
    const __m256i mask = _mm256_cmpeq_epi8(_mm256_and_si256(copies, bit), bit);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(pixels), mask);
}

void unpack(const uint64_t* from, ptrdiff_t words, uint8_t* pixels) {
    for (ptrdiff_t i = 0; i < words; ++i) {
        uint8_t* const at = pixels + 2 * i * kHalfPixels;
        unpackHalf(static_cast<uint32_t>(from[i]), at);
        unpackHalf(static_cast<uint32_t>(from[i] >> kHalfPixels), at + kHalfPixels);
    }
}

}  // namespace

const BitKernels kBitAvx2Tier = {pack, unpack, uniteBits, uniteWords};

}  // namespace zelm
