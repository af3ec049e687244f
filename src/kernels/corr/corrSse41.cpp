// The SSE4.1 tier. It shares no inline code with other files: everything here is local to this translation unit.
#include <smmintrin.h>

#include <cstddef>
#include <cstring>

#include "corrKernels.h"

#if !defined(__SSE4_1__) || defined(__AVX__)
#error "this file is the SSE4.1 tier: build it with -msse4.1 and nothing above"
#endif

namespace zelm {
namespace {

using Vector = __m128i;

const CorrTier& narrower = kCorrPlainTier;

inline Vector load(const std::uint8_t* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}
inline Vector loadHalf(const std::uint8_t* p) {
    return _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}
inline Vector loadQuarter(const std::uint8_t* p) {
    std::int32_t four;
    std::memcpy(&four, p, sizeof four);
    return _mm_cvtepu8_epi32(_mm_cvtsi32_si128(four));
}
inline void store(Vector v, std::uint32_t* p) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v);
}
inline Vector add(Vector a, Vector b) {
    return _mm_add_epi32(a, b);
}
inline Vector subtract(Vector a, Vector b) {
    return _mm_sub_epi32(a, b);
}
inline Vector multiplyAdd(Vector a, Vector b) {
    return _mm_madd_epi16(a, b);
}
inline Vector sumBytes(Vector v) {
    return _mm_sad_epu8(_mm_setzero_si128(), v);
}
inline Vector lowBytes(Vector v) {
    return _mm_unpacklo_epi8(v, _mm_setzero_si128());
}
inline Vector highBytes(Vector v) {
    return _mm_unpackhi_epi8(v, _mm_setzero_si128());
}
inline Vector evenBytes(Vector v) {
    return _mm_and_si128(v, _mm_set1_epi16(0xFF));
}
inline Vector isZeroByte(Vector v) {
    return _mm_cmpeq_epi8(v, _mm_setzero_si128());
}
inline Vector isZeroWord(Vector v) {
    return _mm_cmpeq_epi16(v, _mm_setzero_si128());
}
inline Vector keep(Vector mask, Vector v) {
    return _mm_and_si128(mask, v);
}
inline Vector keepWhereNot(Vector mask, Vector v) {
    return _mm_andnot_si128(mask, v);
}
inline Vector smaller(Vector a, Vector b) {
    return _mm_min_epu8(a, b);
}
inline Vector everyWord(short value) {
    return _mm_set1_epi16(value);
}
inline Vector everyLane(std::int32_t value) {
    return _mm_set1_epi32(value);
}
inline Vector everySecondWord(std::int32_t first) {
    return _mm_set1_epi32(first == 0 ? 0xFFFF : ~0xFFFF);
}
inline Vector lastWords(std::int32_t count) {
    const Vector place = _mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7);
    return _mm_cmpgt_epi16(place, _mm_set1_epi16(static_cast<short>(7 - count)));
}
inline Vector addWord(Vector v, std::uint32_t word) {
    return add(v, _mm_cvtsi32_si128(static_cast<int>(word)));
}
// The sums of the lanes of four vectors, in their order.
inline void storeLaneSums(Vector a, Vector b, Vector c, Vector d, std::uint32_t* out) {
    const Vector ab = add(_mm_unpacklo_epi32(a, b), _mm_unpackhi_epi32(a, b));
    const Vector cd = add(_mm_unpacklo_epi32(c, d), _mm_unpackhi_epi32(c, d));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), add(_mm_unpacklo_epi64(ab, cd), _mm_unpackhi_epi64(ab, cd)));
}

}  // namespace
}  // namespace zelm

#include "corrVectorSums-inl.h"
// After what it is written with.
#include "corrVectorRun-inl.h"

namespace zelm {

const CorrTier kCorrSse41Tier = kVectorTier;

}  // namespace zelm
