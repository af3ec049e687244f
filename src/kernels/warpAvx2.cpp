// The AVX2 tier. It shares no inline code with other files: everything here is local to this translation unit, so that
// the linker can never pick a copy built with AVX2 flags for another one.
//
// Four gathers a step would bound a bilinear kernel (about eight cycles each). Instead, eight neighbouring destination
// pixels whose sources lie within 16 columns and two rows are served by three 16-byte row windows, from which shuffles
// pick the neighbours. Groups that do not fit (strong minification, rotation, image borders) go one by one.
#include <immintrin.h>

#include <cstddef>

#include "warpKernels.h"

#if !defined(__AVX2__)
#error "this file is the AVX2 tier: build it with -mavx2 -mfma -mbmi -mbmi2 -mlzcnt -mmovbe"
#endif

namespace zelm {
namespace {

constexpr std::int32_t kLanes = 8;
constexpr std::int32_t kWindow = 16;  // bytes of a row window
constexpr float kNoSource = -1.0F;

struct Positions {
    __m256 u;
    __m256 v;
};

struct Model {
    __m256 h[9];
    __m256 cx, cy, shear, inverseAlpha, yScale, k1, k2;
};

Model broadcast(const WarpModel& m) {
    Model b;
    for (int i = 0; i < 9; ++i) {
        b.h[i] = _mm256_set1_ps(m.h[i]);
    }
    b.cx = _mm256_set1_ps(m.cx);
    b.cy = _mm256_set1_ps(m.cy);
    b.shear = _mm256_set1_ps(m.shear);
    b.inverseAlpha = _mm256_set1_ps(m.inverseAlpha);
    b.yScale = _mm256_set1_ps(m.yScale);
    b.k1 = _mm256_set1_ps(m.k1);
    b.k2 = _mm256_set1_ps(m.k2);
    return b;
}

inline __m256 mul(__m256 a, __m256 b) {
    return _mm256_mul_ps(a, b);
}
inline __m256 add(__m256 a, __m256 b) {
    return _mm256_add_ps(a, b);
}
inline __m256 sub(__m256 a, __m256 b) {
    return _mm256_sub_ps(a, b);
}

// The homography's products with y, constant along a row of destination pixels.
struct RowTerms {
    __m256 u;
    __m256 v;
    __m256 w;
};

inline RowTerms rowTerms(const WarpModel& m, std::int32_t row) {
    const auto y = static_cast<float>(row);
    return {_mm256_set1_ps(m.h[1] * y), _mm256_set1_ps(m.h[4] * y), _mm256_set1_ps(m.h[7] * y)};
}

// The same operations in the same order as the plain tier and none of them fused: positions agree bit for bit.
inline Positions sourcePositions(const Model& m, const RowTerms& row, __m256 x) {
    const __m256 w = add(add(mul(m.h[6], x), row.w), m.h[8]);
    const __m256 u = _mm256_div_ps(add(add(mul(m.h[0], x), row.u), m.h[2]), w);
    const __m256 v = _mm256_div_ps(add(add(mul(m.h[3], x), row.v), m.h[5]), w);
    const __m256 du = sub(u, m.cx);
    const __m256 dv = sub(v, m.cy);
    const __m256 xn = mul(sub(du, mul(m.shear, dv)), m.inverseAlpha);
    const __m256 yn = mul(m.yScale, dv);
    const __m256 r2 = add(mul(xn, xn), mul(yn, yn));
    const __m256 distortion = mul(add(mul(m.k2, r2), m.k1), r2);
    return {add(mul(du, distortion), u), add(v, mul(dv, distortion))};
}

inline __m256 validMask(const Positions& p, const WarpSource& source) {
    const __m256 zero = _mm256_setzero_ps();
    const __m256 low = _mm256_and_ps(_mm256_cmp_ps(p.u, zero, _CMP_GE_OQ), _mm256_cmp_ps(p.v, zero, _CMP_GE_OQ));
    const __m256 high = _mm256_and_ps(_mm256_cmp_ps(p.u, _mm256_set1_ps(source.limitX), _CMP_LT_OQ),
                                      _mm256_cmp_ps(p.v, _mm256_set1_ps(source.limitY), _CMP_LT_OQ));
    return _mm256_and_ps(low, high);
}

inline std::int32_t firstLane(__m256i v) {
    return _mm_cvtsi128_si32(_mm256_castsi256_si128(v));
}

// One lane of v in every lane.
template <int lane>
inline __m256i everyLane(__m256i v) {
    return _mm256_permutevar8x32_epi32(v, _mm256_set1_epi32(lane));
}

inline std::int32_t smaller(std::int32_t a, std::int32_t b) {
    return a < b ? a : b;
}

inline const std::uint8_t* pixelAt(const WarpSource& source, std::int32_t x, std::int32_t y, int channels) {
    return source.pixels + static_cast<std::ptrdiff_t>(y) * source.stride + static_cast<std::ptrdiff_t>(x) * channels;
}

// Destination pixels between a sample and the prefetch of its source: some hundred nanoseconds.
constexpr std::int32_t kPrefetchAhead = 128;

// Destination pixels from one prefetch to the next: half a cache line of gray pixels at scale 1.
constexpr std::int32_t kPrefetchStep = 32;

// Asks for the source rows around a position, wherever it lies; a rotated or scaled walk through the source is no
// pattern that the processor foresees.
inline void prefetchSource(const WarpSource& source, float u, float v, int channels) {
    const std::int64_t offset = static_cast<std::int64_t>(_mm_cvttss_si32(_mm_set_ss(v))) * source.stride +
                                static_cast<std::int64_t>(_mm_cvttss_si32(_mm_set_ss(u))) * channels;
    const auto address = reinterpret_cast<std::uintptr_t>(source.pixels) + static_cast<std::uintptr_t>(offset);
    const auto twoRows = static_cast<std::uintptr_t>(std::int64_t{2} * source.stride);
    _mm_prefetch(reinterpret_cast<const char*>(address), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char*>(address + twoRows), _MM_HINT_T0);
}

// One valid pixel, rounded to nearest with ties to even as the vector path rounds.
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

template <int channels>
void sampleLanes(const WarpSource& source, const Positions& p, int validLanes, std::int32_t lanes, std::uint8_t* out) {
    alignas(32) float u[kLanes];
    alignas(32) float v[kLanes];
    _mm256_store_ps(u, p.u);
    _mm256_store_ps(v, p.v);
    for (std::int32_t i = 0; i < lanes; ++i) {
        if ((validLanes >> i & 1) != 0) {
            sampleOne<channels>(source, u[i], v[i], out + i * channels);
        } else {
            for (int c = 0; c < channels; ++c) {
                out[i * channels + c] = 0;
            }
        }
    }
}

// Bilinear mix of eight pixels; pairs hold the left neighbour in the low byte and the right one above it.
inline __m256 mixPairs(__m256i pairs, __m256 fx, __m256 gx) {
    const __m256 left = _mm256_cvtepi32_ps(_mm256_and_si256(pairs, _mm256_set1_epi32(0xFF)));
    const __m256 right = _mm256_cvtepi32_ps(_mm256_srli_epi32(pairs, 8));
    return add(mul(right, fx), mul(left, gx));
}

// Eight gray pixels through three row windows; false when they do not fit or come near the source's border. Inside, the
// windows' corners say by themselves that every position is valid.
inline bool sampleWindow(const WarpSource& source, const Positions& p, std::uint8_t* out) {
    const __m256i ix = _mm256_cvttps_epi32(p.u);
    const __m256i iy = _mm256_cvttps_epi32(p.v);
    // Positions run one way along a group, so its smallest column and row are those of one of its ends.
    const __m256i columnBase = _mm256_min_epi32(_mm256_min_epi32(everyLane<0>(ix), everyLane<7>(ix)),
                                                _mm256_set1_epi32(source.width - kWindow));
    const __m256i rowBase = _mm256_min_epi32(everyLane<0>(iy), everyLane<7>(iy));
    const __m256i dx = _mm256_sub_epi32(ix, columnBase);
    const __m256i dy = _mm256_sub_epi32(iy, rowBase);
    const std::int32_t baseX = firstLane(columnBase);
    const std::int32_t baseY = firstLane(rowBase);
    // From column and row 1 on, so that truncation has hidden no negative position; three whole windows. A narrow
    // source and what is not a number give a base below 1.
    if (baseX < 1 || baseY < 1 || baseY > source.height - 3) {
        return false;
    }
    // dx of pixels 0..3 and dy of the same in the lower half, of pixels 4..7 in the upper one. They fit when, unsigned,
    // dx is in 0..14, so that its right neighbour is in the window, and dy is 0 or 1.
    const __m256i both = _mm256_packs_epi32(dx, dy);
    const __m256i most = _mm256_set1_epi64x(0x000E000E000E000E);
    const __m256i limits = _mm256_unpacklo_epi64(most, _mm256_set1_epi64x(0x0001000100010001));
    if (_mm256_movemask_epi8(_mm256_cmpeq_epi16(_mm256_min_epu16(both, limits), both)) != -1) {
        return false;
    }
    const std::uint8_t* const first = pixelAt(source, baseX, baseY, 1);
    const __m128i row0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first));
    const __m128i row1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first + source.stride));
    const __m128i row2 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first + std::ptrdiff_t{2} * source.stride));

    const __m128i lowHalf = _mm256_castsi256_si128(both);
    const __m128i highHalf = _mm256_extracti128_si256(both, 1);
    const __m128i dx16 = _mm_unpacklo_epi64(lowHalf, highHalf);
    const __m128i dy16 = _mm_unpackhi_epi64(lowHalf, highHalf);
    const __m128i pick = _mm_add_epi16(_mm_or_si128(dx16, _mm_slli_epi16(dx16, 8)), _mm_set1_epi16(0x0100));
    const __m128i lower = _mm_cmpgt_epi16(dy16, _mm_setzero_si128());
    const __m128i pairs0 = _mm_shuffle_epi8(row0, pick);
    const __m128i pairs1 = _mm_shuffle_epi8(row1, pick);
    const __m128i pairs2 = _mm_shuffle_epi8(row2, pick);
    const __m256i above = _mm256_cvtepu16_epi32(_mm_blendv_epi8(pairs0, pairs1, lower));
    const __m256i below = _mm256_cvtepu16_epi32(_mm_blendv_epi8(pairs1, pairs2, lower));

    const __m256 one = _mm256_set1_ps(1.0F);
    const __m256 fx = sub(p.u, _mm256_cvtepi32_ps(ix));
    const __m256 fy = sub(p.v, _mm256_cvtepi32_ps(iy));
    const __m256 gx = sub(one, fx);
    const __m256 top = mixPairs(above, fx, gx);
    const __m256 bottom = mixPairs(below, fx, gx);
    const __m256i gray = _mm256_cvtps_epi32(add(mul(bottom, fy), mul(top, sub(one, fy))));
    const __m128i words = _mm_packus_epi32(_mm256_castsi256_si128(gray), _mm256_extracti128_si256(gray, 1));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(words, words));
    return true;
}

inline std::int32_t fourBytes(const std::uint8_t* p) {
    std::int32_t word;
    __builtin_memcpy(&word, p, sizeof word);
    return word;
}

// The pixels of four channels at p and q as floats, one in each half. Broadcasts and shifts instead of widening
// shuffles, which would all wait for one port.
inline __m256 twoPixels(const std::uint8_t* p, const std::uint8_t* q) {
    const __m256i both = _mm256_blend_epi32(_mm256_set1_epi32(fourBytes(p)), _mm256_set1_epi32(fourBytes(q)), 0xF0);
    const __m256i channels = _mm256_srlv_epi32(both, _mm256_setr_epi32(0, 8, 16, 24, 0, 8, 16, 24));
    return _mm256_cvtepi32_ps(_mm256_and_si256(channels, _mm256_set1_epi32(0xFF)));
}

// a[0] in the lower half, a[1] in the upper one.
inline __m256 twoWeights(const float* a) {
    return _mm256_blend_ps(_mm256_broadcast_ss(a), _mm256_broadcast_ss(a + 1), 0xF0);
}

// Positions of eight pixels split into integers and weights.
struct alignas(32) SplitPositions {
    std::int32_t ix[kLanes];
    std::int32_t iy[kLanes];
    float fx[kLanes];
    float gx[kLanes];  // 1 - fx
    float fy[kLanes];
    float gy[kLanes];
};

// Two valid pixels of four channels as eight 32-bit integers.
inline __m256i sampleTwo(const WarpSource& source, const SplitPositions& s, int i) {
    const std::uint8_t* const p = pixelAt(source, s.ix[i], s.iy[i], 4);
    const std::uint8_t* const q = pixelAt(source, s.ix[i + 1], s.iy[i + 1], 4);
    const __m256 fx = twoWeights(s.fx + i);
    const __m256 gx = twoWeights(s.gx + i);
    const __m256 top = add(mul(twoPixels(p + 4, q + 4), fx), mul(twoPixels(p, q), gx));
    const std::uint8_t* const pBelow = p + source.stride;
    const std::uint8_t* const qBelow = q + source.stride;
    const __m256 bottom = add(mul(twoPixels(pBelow + 4, qBelow + 4), fx), mul(twoPixels(pBelow, qBelow), gx));
    return _mm256_cvtps_epi32(add(mul(bottom, twoWeights(s.fy + i)), mul(top, twoWeights(s.gy + i))));
}

// Eight valid pixels of four channels.
inline void sampleEight4(const WarpSource& source, const Positions& p, std::uint8_t* out) {
    const __m256i column = _mm256_cvttps_epi32(p.u);
    const __m256i row = _mm256_cvttps_epi32(p.v);
    const __m256 fx = sub(p.u, _mm256_cvtepi32_ps(column));
    const __m256 fy = sub(p.v, _mm256_cvtepi32_ps(row));
    const __m256 one = _mm256_set1_ps(1.0F);
    SplitPositions split;
    _mm256_store_si256(reinterpret_cast<__m256i*>(split.ix), column);
    _mm256_store_si256(reinterpret_cast<__m256i*>(split.iy), row);
    _mm256_store_ps(split.fx, fx);
    _mm256_store_ps(split.gx, sub(one, fx));
    _mm256_store_ps(split.fy, fy);
    _mm256_store_ps(split.gy, sub(one, fy));
    for (int i = 0; i < kLanes; i += 4) {
        // Lanes after packing: pixels 0, 2, 1, 3 of the four.
        const __m256i words = _mm256_packus_epi32(sampleTwo(source, split, i), sampleTwo(source, split, i + 2));
        const __m128i bytes = _mm_packus_epi16(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 4 * i), _mm_shuffle_epi32(bytes, _MM_SHUFFLE(3, 1, 2, 0)));
    }
}

template <int channels>
inline void sampleGroup(const WarpSource& source, const Positions& p, std::uint8_t* out) {
    if constexpr (channels == 1) {
        if (sampleWindow(source, p, out)) {
            return;
        }
    }
    const int valid = _mm256_movemask_ps(validMask(p, source));
    if constexpr (channels == 4) {
        if (valid == 0xFF) {
            sampleEight4(source, p, out);
            return;
        }
    }
    sampleLanes<channels>(source, p, valid, kLanes, out);
}

inline __m256 columns(std::int32_t x) {
    return _mm256_cvtepi32_ps(_mm256_add_epi32(_mm256_set1_epi32(x), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7)));
}

// Destination pixels whose positions are computed together. Apart from the sampling, the arithmetic of many groups
// overlaps; long enough for that, short enough for the innermost cache.
constexpr std::int32_t kStretch = 128;

struct alignas(32) Stretch {
    float u[kStretch];
    float v[kStretch];
};

// Positions of count pixels of a row from column first on, rounded up to whole groups.
inline void stretchPositions(const Model& model, const RowTerms& row, std::int32_t first, std::int32_t count, float* u,
                             float* v) {
    for (std::int32_t i = 0; i < count; i += kLanes) {
        const Positions p = sourcePositions(model, row, columns(first + i));
        _mm256_store_ps(u + i, p.u);
        _mm256_store_ps(v + i, p.v);
    }
}

// Samples count pixels at the given positions; whole groups may be read behind them.
template <int channels>
inline void sampleStretch(const WarpSource& source, const float* u, const float* v, std::int32_t count,
                          std::uint8_t* out) {
    std::int32_t i = 0;
    for (; i <= count - kLanes; i += kLanes) {
        sampleGroup<channels>(source, {_mm256_load_ps(u + i), _mm256_load_ps(v + i)}, out + i * channels);
    }
    if (i < count) {
        const Positions p{_mm256_load_ps(u + i), _mm256_load_ps(v + i)};
        sampleLanes<channels>(source, p, _mm256_movemask_ps(validMask(p, source)), count - i, out + i * channels);
    }
}

// The records are copied: stores of bytes to the destination could else change them, for all the compiler knows.
template <int channels>
void warp(const WarpModel& plainModel, const WarpSource source, const WarpTarget target) {
    const Model model = broadcast(plainModel);
    Stretch now;
    for (std::int32_t y = 0; y < target.height; ++y) {
        std::uint8_t* const out = target.pixels + static_cast<std::ptrdiff_t>(y) * target.stride;
        const RowTerms row = rowTerms(plainModel, y);
        stretchPositions(model, row, 0, smaller(kStretch, target.width), now.u, now.v);
        for (std::int32_t x = 0; x < target.width; x += kStretch) {
            // The next stretch's positions come first, so that its source is on its way while this one is sampled.
            const std::int32_t ahead = smaller(kStretch, target.width - x - kStretch);
            Stretch next;
            stretchPositions(model, row, x + kStretch, ahead, next.u, next.v);
            for (std::int32_t i = 0; i < ahead; i += kPrefetchStep) {
                prefetchSource(source, next.u[i], next.v[i], channels);
            }
            sampleStretch<channels>(source, now.u, now.v, smaller(kStretch, target.width - x),
                                    out + static_cast<std::ptrdiff_t>(x) * channels);
            now = next;
        }
    }
}

inline const float* mapRow(const float* map, std::int32_t strideBytes, std::int32_t y) {
    return reinterpret_cast<const float*>(reinterpret_cast<const char*>(map) +
                                          static_cast<std::ptrdiff_t>(y) * strideBytes);
}

inline float* mapRow(float* map, std::int32_t strideBytes, std::int32_t y) {
    return reinterpret_cast<float*>(reinterpret_cast<char*>(map) + static_cast<std::ptrdiff_t>(y) * strideBytes);
}

// All bits set in the first so many lanes.
inline __m256i tailMask(std::int32_t lanes) {
    return _mm256_cmpgt_epi32(_mm256_set1_epi32(lanes), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
}

template <int channels>
void remap(const WarpSource source, const WarpTarget target, const WarpMaps maps, const WarpBox box) {
    for (std::int32_t y = box.y0; y <= box.y1; ++y) {
        const float* const mapX = mapRow(maps.x, maps.strideX, y);
        const float* const mapY = mapRow(maps.y, maps.strideY, y);
        std::uint8_t* const row = target.pixels + static_cast<std::ptrdiff_t>(y) * target.stride;
        std::int32_t x = box.x0;
        for (; x <= box.x1 - (kLanes - 1); x += kLanes) {
            if ((x - box.x0) % kPrefetchStep == 0 && x + kPrefetchAhead <= box.x1) {
                prefetchSource(source, mapX[x + kPrefetchAhead], mapY[x + kPrefetchAhead], channels);
            }
            sampleGroup<channels>(source, {_mm256_loadu_ps(mapX + x), _mm256_loadu_ps(mapY + x)},
                                  row + static_cast<std::ptrdiff_t>(x) * channels);
        }
        if (x <= box.x1) {
            const std::int32_t lanes = box.x1 - x + 1;
            const __m256i mask = tailMask(lanes);
            const Positions p{_mm256_maskload_ps(mapX + x, mask), _mm256_maskload_ps(mapY + x, mask)};
            sampleLanes<channels>(source, p, _mm256_movemask_ps(validMask(p, source)), lanes,
                                  row + static_cast<std::ptrdiff_t>(x) * channels);
        }
    }
}

// Widens the box by the valid lanes of the group at (x, y).
inline void widen(WarpBox& box, int valid, std::int32_t x, std::int32_t y) {
    if (valid == 0) {
        return;
    }
    const auto bits = static_cast<unsigned>(valid);
    const std::int32_t first = x + static_cast<std::int32_t>(_tzcnt_u32(bits));
    const std::int32_t last = x + 31 - static_cast<std::int32_t>(_lzcnt_u32(bits));
    box.x0 = first < box.x0 ? first : box.x0;
    box.y0 = y < box.y0 ? y : box.y0;
    box.x1 = last > box.x1 ? last : box.x1;
    box.y1 = y > box.y1 ? y : box.y1;
}

}  // namespace

void warpAvx28uC1(const WarpModel& model, const WarpSource& source, const WarpTarget& target) {
    warp<1>(model, source, target);
}

void warpAvx28uC4(const WarpModel& model, const WarpSource& source, const WarpTarget& target) {
    warp<4>(model, source, target);
}

void mapAvx232f(const WarpModel& plainModel, const WarpSource& source, const WarpMapTarget& maps, WarpBox& valid) {
    const Model model = broadcast(plainModel);
    const __m256 none = _mm256_set1_ps(kNoSource);
    for (std::int32_t y = 0; y < maps.height; ++y) {
        float* const mapX = mapRow(maps.x, maps.strideX, y);
        float* const mapY = mapRow(maps.y, maps.strideY, y);
        const RowTerms row = rowTerms(plainModel, y);
        for (std::int32_t x = 0; x < maps.width; x += kLanes) {
            const __m256i lanes = tailMask(maps.width - x);
            const Positions p = sourcePositions(model, row, columns(x));
            const __m256 inside = validMask(p, source);
            _mm256_maskstore_ps(mapX + x, lanes, _mm256_blendv_ps(none, p.u, inside));
            _mm256_maskstore_ps(mapY + x, lanes, _mm256_blendv_ps(none, p.v, inside));
            widen(valid, _mm256_movemask_ps(_mm256_and_ps(inside, _mm256_castsi256_ps(lanes))), x, y);
        }
    }
}

void remapAvx28uC1(const WarpSource& source, const WarpTarget& target, const WarpMaps& maps, const WarpBox& box) {
    remap<1>(source, target, maps, box);
}

void remapAvx28uC4(const WarpSource& source, const WarpTarget& target, const WarpMaps& maps, const WarpBox& box) {
    remap<4>(source, target, maps, box);
}

}  // namespace zelm
