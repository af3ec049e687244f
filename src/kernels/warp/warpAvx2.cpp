// The AVX2 tier of the warp and map kernels.
#include "avx2Stretch-inl.h"
#include "warpKernels.h"

namespace zelm {
namespace {

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

inline __m256 columns(std::int32_t x) {
    return _mm256_cvtepi32_ps(_mm256_add_epi32(_mm256_set1_epi32(x), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7)));
}

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
            if (ahead > 0) {
                prefetchSources<channels>(source, next.u, next.v, ahead);
            }
            sampleStretch<channels>(source, now.u, now.v, smaller(kStretch, target.width - x),
                                    out + static_cast<std::ptrdiff_t>(x) * channels);
            now = next;
        }
    }
}

inline float* mapRow(float* map, std::int32_t strideBytes, std::int32_t y) {
    return reinterpret_cast<float*>(reinterpret_cast<char*>(map) + static_cast<std::ptrdiff_t>(y) * strideBytes);
}

// All bits set in the first so many lanes.
inline __m256i tailMask(std::int32_t lanes) {
    return _mm256_cmpgt_epi32(_mm256_set1_epi32(lanes), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
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
            const __m256 inside = validMask(p.u, p.v, source);
            _mm256_maskstore_ps(mapX + x, lanes, _mm256_blendv_ps(none, p.u, inside));
            _mm256_maskstore_ps(mapY + x, lanes, _mm256_blendv_ps(none, p.v, inside));
            widen(valid, _mm256_movemask_ps(_mm256_and_ps(inside, _mm256_castsi256_ps(lanes))), x, y);
        }
    }
}

}  // namespace zelm
