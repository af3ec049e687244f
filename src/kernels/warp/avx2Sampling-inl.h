// What the files of the AVX2 tier share, and no other file: everything is local to the including translation unit, so
// that the linker can never pick a copy built with AVX2 flags for another one.
//
// A stretch of destination pixels is sampled in short passes that leave their results in the innermost cache: one long
// chain of operations per group of eight pixels would fill the processor's schedulers with operations that wait and
// leave its pipes idle.
//
// Positions are split as 16.16 binary fixed point; weights and mixes are carried as 65536 times their value, a power of
// two, which changes no rounding. From column 128 on, a float position has at most 16 binary places, so that
// p1 * fx + p0 * (1 - fx) fits the 24 bits of a float (8 of the pixel, 16 of the weight): nothing is ever rounded, and
// integer arithmetic gives the very bits of the floats' with half the operations.
#ifndef ZELM_AVX2_SAMPLING_INL_H
#define ZELM_AVX2_SAMPLING_INL_H

#include <immintrin.h>

#include <cstddef>
#include <cstring>

#include "warpKernels.h"

#if !defined(__AVX2__)
#error "only the AVX2 tier may include this: build the file with -mavx2 -mfma -mbmi -mbmi2 -mlzcnt -mmovbe"
#endif

namespace zelm {
namespace {

constexpr std::int32_t kLanes = 8;                      // pixels of a group
constexpr std::int32_t kBlock = 8;                      // groups come in whole blocks
constexpr std::int32_t kMaxGroups = 2 * kBlock;         // of a stretch
constexpr std::int32_t kStretch = kMaxGroups * kLanes;  // pixels of a stretch
constexpr std::int32_t kExactColumn = 128;              // from here on the mix along a row is exact
constexpr std::int32_t kMaxSide = 32768;                // of a source whose positions fit the fixed point
constexpr float kUnit = 65536.0F;                       // 1 in fixed point

inline __m256 mul(__m256 a, __m256 b) {
    return _mm256_mul_ps(a, b);
}
inline __m256 add(__m256 a, __m256 b) {
    return _mm256_add_ps(a, b);
}
inline __m256 sub(__m256 a, __m256 b) {
    return _mm256_sub_ps(a, b);
}

inline std::int32_t smaller(std::int32_t a, std::int32_t b) {
    return a < b ? a : b;
}

// The same 32 bits in every lane.
inline __m256i everyLane(std::uint32_t bits) {
    return _mm256_set1_epi32(static_cast<std::int32_t>(bits));
}

inline void store(void* to, __m256i v) {
    _mm256_storeu_si256(static_cast<__m256i*>(to), v);
}

inline const std::uint8_t* pixelAt(const WarpSource& source, std::int32_t x, std::int32_t y, int channels) {
    return source.pixels + static_cast<std::ptrdiff_t>(y) * source.stride + static_cast<std::ptrdiff_t>(x) * channels;
}

// All bits set in the lanes of valid positions.
inline __m256 validMask(__m256 u, __m256 v, const WarpSource& source) {
    const __m256 zero = _mm256_setzero_ps();
    const __m256 low = _mm256_and_ps(_mm256_cmp_ps(u, zero, _CMP_GE_OQ), _mm256_cmp_ps(v, zero, _CMP_GE_OQ));
    const __m256 high = _mm256_and_ps(_mm256_cmp_ps(u, _mm256_set1_ps(source.limitX), _CMP_LT_OQ),
                                      _mm256_cmp_ps(v, _mm256_set1_ps(source.limitY), _CMP_LT_OQ));
    return _mm256_and_ps(low, high);
}

// A bit for each valid position of a group.
inline int validLanes(const float* u, const float* v, const WarpSource& source) {
    return _mm256_movemask_ps(validMask(_mm256_loadu_ps(u), _mm256_loadu_ps(v), source));
}

constexpr int kAllLanes = 0xFF;

// One valid pixel, rounded to nearest with ties to even as the vector paths round.
template <int channels>
void sampleOne(const WarpSource& source, float u, float v, std::uint8_t* out) {
    const auto ix = static_cast<std::int32_t>(u);
    const auto iy = static_cast<std::int32_t>(v);
    const float fx = u - static_cast<float>(ix);
    const float fy = v - static_cast<float>(iy);
    const std::uint8_t* const above = pixelAt(source, ix, iy, channels);
    const std::uint8_t* const below = above + source.stride;
    for (int c = 0; c < channels; ++c) {
        const float top = static_cast<float>(above[channels + c]) * fx + static_cast<float>(above[c]) * (1.0F - fx);
        const float bottom = static_cast<float>(below[channels + c]) * fx + static_cast<float>(below[c]) * (1.0F - fx);
        out[c] = static_cast<std::uint8_t>(_mm_cvtss_si32(_mm_set_ss(bottom * fy + top * (1.0F - fy))));
    }
}

// A group pixel by pixel, wherever its positions lie.
template <int channels>
void sampleOneByOne(const WarpSource& source, const float* u, const float* v, std::uint8_t* out) {
    const int valid = validLanes(u, v, source);
    std::memset(out, 0, std::size_t{kLanes} * channels);
    for (std::int32_t i = 0; valid >> i != 0; ++i) {
        if ((valid >> i & 1) != 0) {
            sampleOne<channels>(source, u[i], v[i], out + i * channels);
        }
    }
}

// A group's coordinates in fixed point; what does not fit becomes the most negative integer.
inline __m256i fixedPoint(const float* p) {
    return _mm256_cvttps_epi32(mul(_mm256_loadu_ps(p), _mm256_set1_ps(kUnit)));
}

// Weights of the pixels at the integer positions and of the next ones, 65536 in sum.
struct Weights {
    __m256 here;
    __m256 next;
};

inline Weights weightsOf(const float* p, __m256i fixed) {
    const __m256 whole = _mm256_cvtepi32_ps(_mm256_and_si256(fixed, everyLane(0xFFFF0000U)));
    // The product with 65536 is exact: this is the plain difference.
    const __m256 next = _mm256_fmsub_ps(_mm256_loadu_ps(p), _mm256_set1_ps(kUnit), whole);
    return {sub(_mm256_set1_ps(kUnit), next), next};
}

// In each half, the weight of one of its lanes in all of them.
template <int lane>
__m256 spread(__m256 weights) {
    return _mm256_permute_ps(weights, lane * 0x55);
}

template <int lane>
Weights spread(const Weights& w) {
    return {spread<lane>(w.here), spread<lane>(w.next)};
}

// Mixes of two neighbours in a row, which come as the bytes p0, p1, p0, p1 in each lane.
template <bool exact>
struct RowMix;

// 65536 * (p1 * fx + p0 * (1 - fx)) = (p1 - p0) * (65536 * fx - 32768) + (-p0 - p1) * -32768, in factors of 16 bits.
template <>
struct RowMix<true> {
    __m256i weights;
    RowMix(const float*, __m256i fixed)
        : weights(_mm256_xor_si256(_mm256_and_si256(fixed, everyLane(0xFFFFU)), everyLane(0x80008000U))) {}
    [[nodiscard]] __m256 of(__m256i pairs) const {
        const __m256i differences = _mm256_maddubs_epi16(pairs, everyLane(0xFFFF01FFU));
        return _mm256_cvtepi32_ps(_mm256_madd_epi16(differences, weights));
    }
    template <int lane>
    void spreadLane() {
        weights = _mm256_shuffle_epi32(weights, lane * 0x55);
    }
};

template <>
struct RowMix<false> {
    Weights weights;
    RowMix(const float* u, __m256i fixed) : weights(weightsOf(u, fixed)) {}
    [[nodiscard]] __m256 of(__m256i pairs) const {
        const __m256 p0 = _mm256_cvtepi32_ps(_mm256_and_si256(pairs, everyLane(0xFFU)));
        const __m256 p1 = _mm256_cvtepi32_ps(_mm256_srli_epi32(pairs, 24));
        return add(mul(p1, weights.next), mul(p0, weights.here));
    }
    template <int lane>
    void spreadLane() {
        weights = spread<lane>(weights);
    }
};

// The gray values between the mixes of two rows, to nearest with ties to even: in the last sum, which is 2^32 times the
// value and a constant, the unit in the last place stands for 1.
inline __m256i mixRows(__m256 top, __m256 bottom, const Weights& y) {
    const __m256 value = add(mul(bottom, y.next), mul(top, y.here));
    const __m256i sum = _mm256_castps_si256(add(value, _mm256_set1_ps(0x1.8p55F)));
    return _mm256_and_si256(sum, everyLane(0xFFU));
}

// 32 values to bytes; each half holds four of the first, then four of each other one.
inline __m256i packBytes(const __m256i values[4]) {
    return _mm256_packus_epi16(_mm256_packus_epi32(values[0], values[1]), _mm256_packus_epi32(values[2], values[3]));
}

}  // namespace
}  // namespace zelm

#endif
