// The AVX2 tier. It shares no inline code with other files: everything here is local to this translation unit.
#include <immintrin.h>

#include <cstddef>

#include "corrKernels.h"

#if !defined(__AVX2__)
#error "this file is the AVX2 tier: build it with -mavx2 -mfma -mbmi -mbmi2 -mlzcnt -mmovbe"
#endif

namespace zelm {
namespace {

using Vector = __m256i;

const CorrTier& narrower = kCorrSse41Tier;

inline Vector load(const std::uint8_t* p) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
inline Vector loadHalf(const std::uint8_t* p) {
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}
inline Vector loadQuarter(const std::uint8_t* p) {
    return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}
inline void store(Vector v, std::uint32_t* p) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
}
inline Vector add(Vector a, Vector b) {
    return _mm256_add_epi32(a, b);
}
inline Vector subtract(Vector a, Vector b) {
    return _mm256_sub_epi32(a, b);
}
inline Vector multiplyAdd(Vector a, Vector b) {
    return _mm256_madd_epi16(a, b);
}
inline Vector sumBytes(Vector v) {
    return _mm256_sad_epu8(_mm256_setzero_si256(), v);
}
inline Vector lowBytes(Vector v) {
    return _mm256_unpacklo_epi8(v, _mm256_setzero_si256());
}
inline Vector highBytes(Vector v) {
    return _mm256_unpackhi_epi8(v, _mm256_setzero_si256());
}
inline Vector evenBytes(Vector v) {
    return _mm256_and_si256(v, _mm256_set1_epi16(0xFF));
}
inline Vector isZeroByte(Vector v) {
    return _mm256_cmpeq_epi8(v, _mm256_setzero_si256());
}
inline Vector isZeroWord(Vector v) {
    return _mm256_cmpeq_epi16(v, _mm256_setzero_si256());
}
inline Vector keep(Vector mask, Vector v) {
    return _mm256_and_si256(mask, v);
}
inline Vector keepWhereNot(Vector mask, Vector v) {
    return _mm256_andnot_si256(mask, v);
}
inline Vector smaller(Vector a, Vector b) {
    return _mm256_min_epu8(a, b);
}
inline Vector everyWord(short value) {
    return _mm256_set1_epi16(value);
}
inline Vector everyLane(std::int32_t value) {
    return _mm256_set1_epi32(value);
}
inline Vector everySecondWord(std::int32_t first) {
    return _mm256_set1_epi32(first == 0 ? 0xFFFF : ~0xFFFF);
}
inline Vector lastWords(std::int32_t count) {
    const Vector place = _mm256_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    return _mm256_cmpgt_epi16(place, _mm256_set1_epi16(static_cast<short>(15 - count)));
}
inline Vector addWord(Vector v, std::uint32_t word) {
    return add(v, _mm256_zextsi128_si256(_mm_cvtsi32_si128(static_cast<int>(word))));
}
// The sums of the lanes of four vectors, in their order.
inline void storeLaneSums(Vector a, Vector b, Vector c, Vector d, std::uint32_t* out) {
    const Vector ab = add(_mm256_unpacklo_epi32(a, b), _mm256_unpackhi_epi32(a, b));
    const Vector cd = add(_mm256_unpacklo_epi32(c, d), _mm256_unpackhi_epi32(c, d));
    const Vector abcd = add(_mm256_unpacklo_epi64(ab, cd), _mm256_unpackhi_epi64(ab, cd));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out),
                     _mm_add_epi32(_mm256_castsi256_si128(abcd), _mm256_extracti128_si256(abcd, 1)));
}

}  // namespace
}  // namespace zelm

#include "corrVectorSums-inl.h"
// After what it is written with.
#include "corrVectorRun-inl.h"

namespace zelm {

const CorrTier kCorrAvx2Tier = kVectorTier;

}  // namespace zelm
