#include <cstddef>
#include <cstring>

#include "warpKernels.h"

#if defined(__AVX__)
#error "the plain tier must run on every processor: build this file without AVX flags"
#endif

namespace zelm {
namespace {

struct Position {
    float u;
    float v;
};

// The homography's products with y, constant along a row of destination pixels.
struct RowTerms {
    float u;
    float v;
    float w;
};

RowTerms rowTerms(const WarpModel& m, std::int32_t row) {
    const auto y = static_cast<float>(row);
    return {m.h[1] * y, m.h[4] * y, m.h[7] * y};
}

Position sourcePosition(const WarpModel& m, const RowTerms& row, float x) {
    // Divided twice: docs/decisions.md#divide-twice.
    const float w = m.h[6] * x + row.w + m.h[8];
    const float u = (m.h[0] * x + row.u + m.h[2]) / w;
    const float v = (m.h[3] * x + row.v + m.h[5]) / w;
    const float du = u - m.cx;
    const float dv = v - m.cy;
    const float xn = (du - m.shear * dv) * m.inverseAlpha;
    const float yn = m.yScale * dv;
    const float r2 = xn * xn + yn * yn;
    const float distortion = (m.k2 * r2 + m.k1) * r2;
    return {du * distortion + u, v + dv * distortion};
}

// The strict upper limits keep both bilinear neighbours inside the image (docs/decisions.md#strict-validity).
bool isValid(const Position& p, const WarpSource& source) {
    return p.u >= 0.0F && p.v >= 0.0F && p.u < source.limitX && p.v < source.limitY;
}

template <int channels>
void sample(const WarpSource& source, const Position& p, std::uint8_t* out) {
    const auto ix = static_cast<std::int32_t>(p.u);
    const auto iy = static_cast<std::int32_t>(p.v);
    const float fx = p.u - static_cast<float>(ix);
    const float fy = p.v - static_cast<float>(iy);
    const std::uint8_t* const above =
        source.pixels + static_cast<std::ptrdiff_t>(iy) * source.stride + static_cast<std::ptrdiff_t>(ix) * channels;
    const std::uint8_t* const below = above + source.stride;
    for (int c = 0; c < channels; ++c) {
        const float top = static_cast<float>(above[channels + c]) * fx + static_cast<float>(above[c]) * (1.0F - fx);
        const float bottom = static_cast<float>(below[channels + c]) * fx + static_cast<float>(below[c]) * (1.0F - fx);
        out[c] = static_cast<std::uint8_t>(bottom * fy + top * (1.0F - fy) + 0.5F);
    }
}

template <int channels>
void sampleOrClear(const WarpSource& source, const Position& p, std::uint8_t* out) {
    if (isValid(p, source)) {
        sample<channels>(source, p, out);
    } else {
        std::memset(out, 0, channels);
    }
}

template <int channels>
void warp(const WarpModel& model, const WarpSource& source, const WarpTarget& target) {
    for (std::int32_t y = 0; y < target.height; ++y) {
        std::uint8_t* const row = target.pixels + static_cast<std::ptrdiff_t>(y) * target.stride;
        const RowTerms terms = rowTerms(model, y);
        for (std::int32_t x = 0; x < target.width; ++x) {
            const Position p = sourcePosition(model, terms, static_cast<float>(x));
            sampleOrClear<channels>(source, p, row + static_cast<std::ptrdiff_t>(x) * channels);
        }
    }
}

const float* mapRow(const float* map, std::int32_t strideBytes, std::int32_t y) {
    return reinterpret_cast<const float*>(reinterpret_cast<const char*>(map) +
                                          static_cast<std::ptrdiff_t>(y) * strideBytes);
}

float* mapRow(float* map, std::int32_t strideBytes, std::int32_t y) {
    return reinterpret_cast<float*>(reinterpret_cast<char*>(map) + static_cast<std::ptrdiff_t>(y) * strideBytes);
}

template <int channels>
void remap(const WarpSource& source, const WarpTarget& target, const WarpMaps& maps, const WarpBox& box) {
    for (std::int32_t y = box.y0; y <= box.y1; ++y) {
        const float* const mapX = mapRow(maps.x, maps.strideX, y);
        const float* const mapY = mapRow(maps.y, maps.strideY, y);
        std::uint8_t* const row = target.pixels + static_cast<std::ptrdiff_t>(y) * target.stride;
        for (std::int32_t x = box.x0; x <= box.x1; ++x) {
            sampleOrClear<channels>(source, {mapX[x], mapY[x]}, row + static_cast<std::ptrdiff_t>(x) * channels);
        }
    }
}

void widen(WarpBox& box, std::int32_t x, std::int32_t y) {
    box.x0 = x < box.x0 ? x : box.x0;
    box.y0 = y < box.y0 ? y : box.y0;
    box.x1 = x > box.x1 ? x : box.x1;
    box.y1 = y > box.y1 ? y : box.y1;
}

constexpr float kNoSource = -1.0F;

}  // namespace

void warpPlain8uC1(const WarpModel& model, const WarpSource& source, const WarpTarget& target) {
    warp<1>(model, source, target);
}

void warpPlain8uC4(const WarpModel& model, const WarpSource& source, const WarpTarget& target) {
    warp<4>(model, source, target);
}

void mapPlain32f(const WarpModel& model, const WarpSource& source, const WarpMapTarget& maps, WarpBox& valid) {
    for (std::int32_t y = 0; y < maps.height; ++y) {
        float* const mapX = mapRow(maps.x, maps.strideX, y);
        float* const mapY = mapRow(maps.y, maps.strideY, y);
        const RowTerms terms = rowTerms(model, y);
        for (std::int32_t x = 0; x < maps.width; ++x) {
            const Position p = sourcePosition(model, terms, static_cast<float>(x));
            const bool inside = isValid(p, source);
            mapX[x] = inside ? p.u : kNoSource;
            mapY[x] = inside ? p.v : kNoSource;
            if (inside) {
                widen(valid, x, y);
            }
        }
    }
}

void remapPlain8uC1(const WarpSource& source, const WarpTarget& target, const WarpMaps& maps, const WarpBox& box) {
    remap<1>(source, target, maps, box);
}

void remapPlain8uC4(const WarpSource& source, const WarpTarget& target, const WarpMaps& maps, const WarpBox& box) {
    remap<4>(source, target, maps, box);
}

}  // namespace zelm
