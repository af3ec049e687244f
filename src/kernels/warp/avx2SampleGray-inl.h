// Bilinear sampling of gray pixels, for the files of the AVX2 tier alone.
//
// Four gathers a group would bound it (about eight cycles each). Instead, a group whose sources lie within 15 columns
// and two rows is served by windows of 16 bytes in three rows, from which shuffles pick the neighbours. Windows never
// leave the source, wherever the positions lie; groups that turn out not to fit (strong minification, rotation, parts
// outside the source) are done again pixel by pixel.
#ifndef ZELM_AVX2_SAMPLE_GRAY_INL_H
#define ZELM_AVX2_SAMPLE_GRAY_INL_H

#include "avx2Sampling-inl.h"

namespace zelm {
namespace {

constexpr std::int32_t kWindowColumns = 16;
constexpr std::int32_t kWindowRows = 3;

// What the passes over a stretch hand on, per group.
struct GrayStretch {
    __m256i columns[kMaxGroups];            // fixed point
    __m256i rows[kMaxGroups];               // fixed point
    __m256i places[kMaxGroups];             // whole row in the upper word of a lane, whole column in the lower one
    __m256i above[kMaxGroups];              // neighbours in the upper row: p0, p1, p0, p1
    __m256i below[kMaxGroups];              // the same in the lower row
    alignas(32) float corners[kMaxGroups];  // bits of the windows' first place
};

inline void splitPositions(GrayStretch& s, const float* u, const float* v, int groups) {
    for (int g = 0; g < groups; ++g) {
        s.columns[g] = fixedPoint(u + g * kLanes);
        s.rows[g] = fixedPoint(v + g * kLanes);
        s.places[g] = _mm256_blend_epi16(_mm256_srli_epi32(s.columns[g], 16), s.rows[g], 0xAA);
    }
}

// Steps of the tree that finds smallest words: what remains of a in the first part of its former room, of b in the
// next.
inline __m256i smallestOfHalves(__m256i a, __m256i b) {
    return _mm256_min_epu16(_mm256_blend_epi32(a, b, 0xF0), _mm256_permute2x128_si256(a, b, 0x21));
}
inline __m256i smallestOfQuarters(__m256i a, __m256i b) {
    return _mm256_min_epu16(_mm256_blend_epi32(a, b, 0xCC), _mm256_alignr_epi8(b, a, 8));
}
inline __m256i smallestOfLanes(__m256i a, __m256i b) {
    return _mm256_min_epu16(_mm256_blend_epi32(a, b, 0xAA), _mm256_shuffle_epi32(_mm256_blend_epi32(a, b, 0x55), 0xB1));
}

// The smallest column and row of each group of a block, in the group's lane.
inline __m256i smallestPlaces(const __m256i p[kBlock]) {
    const __m256i even = smallestOfQuarters(smallestOfHalves(p[0], p[4]), smallestOfHalves(p[2], p[6]));
    const __m256i odd = smallestOfQuarters(smallestOfHalves(p[1], p[5]), smallestOfHalves(p[3], p[7]));
    return smallestOfLanes(even, odd);
}

// What is known of a stretch as a whole.
struct GrayKind {
    __m256i beforeExact;  // anything set: some window begins before the first exact column
    __m256i atZero;       // anything set: some window begins at column or row 0
};

inline GrayKind placeWindows(const WarpSource& source, GrayStretch& s, int groups) {
    const __m256i last = everyLane(static_cast<std::uint32_t>(source.height - kWindowRows) << 16 |
                                   static_cast<std::uint32_t>(source.width - kWindowColumns));
    GrayKind kind{_mm256_setzero_si256(), _mm256_setzero_si256()};
    for (int g = 0; g < groups; g += kBlock) {
        const __m256i corners = _mm256_min_epu16(smallestPlaces(s.places + g), last);
        _mm256_store_ps(s.corners + g, _mm256_castsi256_ps(corners));
        kind.beforeExact = _mm256_or_si256(kind.beforeExact, _mm256_subs_epu16(everyLane(kExactColumn), corners));
        kind.atZero = _mm256_or_si256(kind.atZero, _mm256_cmpeq_epi16(corners, _mm256_setzero_si256()));
    }
    return kind;
}

inline __m256i placesInWindow(const GrayStretch& s, int g) {
    return _mm256_sub_epi16(s.places[g], _mm256_castps_si256(_mm256_broadcast_ss(s.corners + g)));
}

// How far places lie behind the last ones whose right and lower neighbours are in the window.
inline __m256i excess(__m256i places) {
    return _mm256_subs_epu16(places, everyLane(1U << 16 | (kWindowColumns - 2)));
}

inline __m256i rowWindow(const std::uint8_t* p) {
    return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}

inline __m256i choose(__m256i a, __m256i b, __m256i takeB) {
    return _mm256_castps_si256(
        _mm256_blendv_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _mm256_castsi256_ps(takeB)));
}

inline const std::uint8_t* windowOf(const WarpSource& source, const GrayStretch& s, int g) {
    std::uint32_t corner = 0;
    std::memcpy(&corner, s.corners + g, sizeof corner);
    return pixelAt(source, static_cast<std::int32_t>(corner & 0xFFFFU), static_cast<std::int32_t>(corner >> 16), 1);
}

// Anything set in the result: some group does not fit its window.
inline __m256i pickNeighbours(const WarpSource& source, GrayStretch& s, int groups) {
    const std::ptrdiff_t stride = source.stride;
    __m256i tooFar = _mm256_setzero_si256();
    for (int g = 0; g < groups; ++g) {
        const __m256i places = placesInWindow(s, g);
        tooFar = _mm256_or_si256(tooFar, excess(places));
        const __m256i columns =
            _mm256_shuffle_epi8(places, _mm256_setr_epi8(0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12,  //
                                                         0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12));
        const __m256i pick = _mm256_add_epi8(columns, everyLane(0x01000100U));
        const __m256i inSecondRow = _mm256_cmpgt_epi32(places, everyLane(0xFFFFU));
        const std::uint8_t* const window = windowOf(source, s, g);
        const __m256i row0 = _mm256_shuffle_epi8(rowWindow(window), pick);
        const __m256i row1 = _mm256_shuffle_epi8(rowWindow(window + stride), pick);
        const __m256i row2 = _mm256_shuffle_epi8(rowWindow(window + 2 * stride), pick);
        s.above[g] = choose(row0, row1, inSecondRow);
        s.below[g] = choose(row1, row2, inSecondRow);
    }
    return tooFar;
}

template <bool exact>
void mixNeighbours(const GrayStretch& s, const float* u, const float* v, int groups, std::uint8_t* out) {
    for (int first = 0; first < groups; first += 4) {
        __m256i gray[4];
        for (int i = 0; i < 4; ++i) {
            const int g = first + i;
            const RowMix<exact> mix(u + g * kLanes, s.columns[g]);
            gray[i] = mixRows(mix.of(s.above[g]), mix.of(s.below[g]), weightsOf(v + g * kLanes, s.rows[g]));
        }
        const __m256i inOrder = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
        store(out + first * kLanes, _mm256_permutevar8x32_epi32(packBytes(gray), inOrder));
    }
}

inline bool anySet(__m256i v) {
    return _mm256_testz_si256(v, v) == 0;
}

inline void repairGroups(const WarpSource& source, const GrayStretch& s, const float* u, const float* v, int groups,
                         std::uint8_t* out) {
    for (int g = 0; g < groups; ++g) {
        const std::int32_t i = g * kLanes;
        if (anySet(excess(placesInWindow(s, g))) || validLanes(u + i, v + i, source) != kAllLanes) {
            sampleOneByOne<1>(source, u + i, v + i, out + i);
        }
    }
}

inline bool hasRoomForWindows(const WarpSource& source) {
    return source.width >= kWindowColumns && source.height >= kWindowRows && source.width <= kMaxSide &&
           source.height <= kMaxSide;
}

// A glance at three groups: where none of them fits, hardly any will.
inline bool looksHopeless(const GrayStretch& s, int groups) {
    return anySet(excess(placesInWindow(s, 0))) && anySet(excess(placesInWindow(s, groups / 2))) &&
           anySet(excess(placesInWindow(s, groups - 1)));
}

// Samples whole blocks of groups; false, without a pixel written, when windows hardly help.
inline bool sampleThroughWindows(const WarpSource& source, const float* u, const float* v, int groups,
                                 std::uint8_t* out) {
    GrayStretch s;
    splitPositions(s, u, v, groups);
    const GrayKind kind = placeWindows(source, s, groups);
    if (looksHopeless(s, groups)) {
        return false;
    }
    const __m256i tooFar = pickNeighbours(source, s, groups);
    if (anySet(kind.beforeExact)) {
        mixNeighbours<false>(s, u, v, groups, out);
    } else {
        mixNeighbours<true>(s, u, v, groups, out);
    }
    // A group that fits is valid, but that fixed point takes a coordinate of less than one unit below 0 for 0.
    if (anySet(_mm256_or_si256(tooFar, kind.atZero))) {
        repairGroups(source, s, u, v, groups, out);
    }
    return true;
}

// Samples whole blocks of groups.
inline void sampleGray(const WarpSource& source, const float* u, const float* v, int groups, std::uint8_t* out) {
    if (hasRoomForWindows(source) && sampleThroughWindows(source, u, v, groups, out)) {
        return;
    }
    for (std::int32_t i = 0; i < groups * kLanes; i += kLanes) {
        sampleOneByOne<1>(source, u + i, v + i, out + i);
    }
}

}  // namespace
}  // namespace zelm

#endif
