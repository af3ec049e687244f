// Bilinear sampling of pixels of four channels, for the files of the AVX2 tier alone. One load brings a pixel and its
// right neighbour; two pixels are mixed at a time, one in each half of a vector, a channel in each lane.
#ifndef ZELM_AVX2_SAMPLE_FOUR_INL_H
#define ZELM_AVX2_SAMPLE_FOUR_INL_H

#include "avx2Sampling-inl.h"

namespace zelm {
namespace {

// Byte offsets of a group's pixels: those of even lanes, then those of odd ones.
struct FourOffsets {
    std::int64_t ofParity[2][kLanes / 2];
};

// What the first pass over a stretch hands on, per group.
struct FourStretch {
    __m256i columns[kMaxGroups];  // fixed point
    __m256i rows[kMaxGroups];     // fixed point
    FourOffsets offsets[kMaxGroups];
    bool valid[kMaxGroups];
};

inline FourOffsets offsetsOf(__m256i columns, __m256i rows, std::int32_t strideBytes) {
    const __m256i stride = _mm256_set1_epi32(strideBytes);
    const __m256i x = _mm256_slli_epi32(_mm256_srli_epi32(columns, 16), 2);
    const __m256i y = _mm256_srli_epi32(rows, 16);
    const __m256i evenX = _mm256_blend_epi32(x, _mm256_setzero_si256(), 0xAA);
    const __m256i oddY = _mm256_srli_epi64(y, 32);
    FourOffsets o;
    store(o.ofParity[0], _mm256_add_epi64(_mm256_mul_epi32(y, stride), evenX));
    store(o.ofParity[1], _mm256_add_epi64(_mm256_mul_epi32(oddY, stride), _mm256_srli_epi64(x, 32)));
    return o;
}

// True when every position lies in the columns whose mixes are exact.
inline bool splitPositions(const WarpSource& source, FourStretch& s, const float* u, const float* v, int groups) {
    const bool fits = source.width <= kMaxSide && source.height <= kMaxSide;
    __m256i leftmost = everyLane(0x7FFFFFFFU);
    for (int g = 0; g < groups; ++g) {
        const std::int32_t i = g * kLanes;
        s.valid[g] = fits && validLanes(u + i, v + i, source) == kAllLanes;
        s.columns[g] = fixedPoint(u + i);
        s.rows[g] = fixedPoint(v + i);
        s.offsets[g] = offsetsOf(s.columns[g], s.rows[g], source.stride);
        leftmost = _mm256_min_epi32(leftmost, s.columns[g]);
    }
    const __m256i beforeExact = _mm256_cmpgt_epi32(everyLane(std::uint32_t{kExactColumn} << 16), leftmost);
    return _mm256_testz_si256(beforeExact, beforeExact) != 0;
}

inline __m256i eightBytes(const std::uint8_t* p) {
    long long bytes = 0;
    std::memcpy(&bytes, p, sizeof bytes);
    return _mm256_set1_epi64x(bytes);
}

// The pixels at p and q with their right neighbours: p0, p1, p0, p1 of a channel in each lane.
inline __m256i neighbours(const std::uint8_t* p, const std::uint8_t* q) {
    const __m256i both = _mm256_blend_epi32(eightBytes(p), eightBytes(q), 0xF0);
    return _mm256_shuffle_epi8(both, _mm256_setr_epi8(0, 4, 0, 4, 1, 5, 1, 5, 2, 6, 2, 6, 3, 7, 3, 7,  //
                                                      0, 4, 0, 4, 1, 5, 1, 5, 2, 6, 2, 6, 3, 7, 3, 7));
}

// The pixels of a lane of the lower half and of its fellow in the upper half.
template <int lane, bool exact>
__m256i sampleTwo(const WarpSource& source, const FourOffsets& offsets, RowMix<exact> mix, const Weights& y) {
    const std::uint8_t* const p = source.pixels + offsets.ofParity[lane % 2][lane / 2];
    const std::uint8_t* const q = source.pixels + offsets.ofParity[lane % 2][lane / 2 + 2];
    mix.template spreadLane<lane>();
    const __m256 top = mix.of(neighbours(p, q));
    const __m256 bottom = mix.of(neighbours(p + source.stride, q + source.stride));
    return mixRows(top, bottom, spread<lane>(y));
}

template <bool exact>
void mixGroups(const WarpSource& source, const FourStretch& s, const float* u, const float* v, int groups,
               std::uint8_t* out) {
    for (int g = 0; g < groups; ++g) {
        const std::int32_t i = g * kLanes;
        if (!s.valid[g]) {
            sampleOneByOne<4>(source, u + i, v + i, out + std::ptrdiff_t{4} * i);
            continue;
        }
        const FourOffsets& offsets = s.offsets[g];
        const RowMix<exact> mix(u + i, s.columns[g]);
        const Weights y = weightsOf(v + i, s.rows[g]);
        const __m256i values[4] = {sampleTwo<0>(source, offsets, mix, y), sampleTwo<1>(source, offsets, mix, y),
                                   sampleTwo<2>(source, offsets, mix, y), sampleTwo<3>(source, offsets, mix, y)};
        store(out + std::ptrdiff_t{4} * i, packBytes(values));
    }
}

// Samples whole groups.
inline void sampleFour(const WarpSource& source, const float* u, const float* v, int groups, std::uint8_t* out) {
    FourStretch s;
    if (splitPositions(source, s, u, v, groups)) {
        mixGroups<true>(source, s, u, v, groups, out);
    } else {
        mixGroups<false>(source, s, u, v, groups, out);
    }
}

}  // namespace
}  // namespace zelm

#endif
