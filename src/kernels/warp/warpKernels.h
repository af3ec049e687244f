// The tiers of the warp, map and remap kernels. Plain data and declarations only: an inline function here would be
// compiled with AVX2 flags too, and the linker might pick that copy for every processor.
#ifndef ZELM_WARP_KERNELS_H
#define ZELM_WARP_KERNELS_H

#include <cstdint>

namespace zelm {

// Where destination pixels come from, in single precision:
//   (u, v) = H * (x, y, 1) dehomogenised; dv = v - cy; xn = ((u - cx) - shear * dv) * inverseAlpha; yn = yScale * dv;
//   r2 = xn^2 + yn^2; D = (k2 * r2 + k1) * r2; source position (u - cx) * D + u, v + dv * D.
struct WarpModel {
    float h[9];
    float cx;
    float cy;
    float shear;         // gamma / beta
    float inverseAlpha;  // 1 / alpha
    float yScale;        // cos(theta) / beta
    float k1;
    float k2;
};

// Pixels of channels interleaved bytes; positions are valid below the two limits.
struct WarpSource {
    const std::uint8_t* pixels;
    std::int32_t stride;
    std::int32_t width;
    std::int32_t height;
    float limitX;  // width - 1
    float limitY;
};

struct WarpTarget {
    std::uint8_t* pixels;
    std::int32_t stride;
    std::int32_t width;
    std::int32_t height;
};

struct WarpMaps {
    const float* x;
    std::int32_t strideX;  // bytes
    const float* y;
    std::int32_t strideY;
};

struct WarpMapTarget {
    float* x;
    std::int32_t strideX;  // bytes
    float* y;
    std::int32_t strideY;
    std::int32_t width;
    std::int32_t height;
};

// Inclusive pixel box.
struct WarpBox {
    std::int32_t x0;
    std::int32_t y0;
    std::int32_t x1;
    std::int32_t y1;
};

void warpPlain8uC1(const WarpModel& model, const WarpSource& source, const WarpTarget& target);
void warpPlain8uC4(const WarpModel& model, const WarpSource& source, const WarpTarget& target);
void mapPlain32f(const WarpModel& model, const WarpSource& source, const WarpMapTarget& maps, WarpBox& valid);
void remapPlain8uC1(const WarpSource& source, const WarpTarget& target, const WarpMaps& maps, const WarpBox& box);
void remapPlain8uC4(const WarpSource& source, const WarpTarget& target, const WarpMaps& maps, const WarpBox& box);

void warpAvx28uC1(const WarpModel& model, const WarpSource& source, const WarpTarget& target);
void warpAvx28uC4(const WarpModel& model, const WarpSource& source, const WarpTarget& target);
void mapAvx232f(const WarpModel& model, const WarpSource& source, const WarpMapTarget& maps, WarpBox& valid);
void remapAvx28uC1(const WarpSource& source, const WarpTarget& target, const WarpMaps& maps, const WarpBox& box);
void remapAvx28uC4(const WarpSource& source, const WarpTarget& target, const WarpMaps& maps, const WarpBox& box);

}  // namespace zelm

#endif
