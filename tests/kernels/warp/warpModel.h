// The kernels' arithmetic in double precision: a slow reference that says what every pixel should be.
#ifndef ZELM_TEST_WARP_MODEL_H
#define ZELM_TEST_WARP_MODEL_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "random.h"

namespace zelmtest {

struct WarpCase {
    double hom[9];
    double camera[22];
};

struct SourcePosition {
    double u;
    double v;
};

inline SourcePosition modelPosition(const WarpCase& c, double x, double y) {
    const double* const h = c.hom;
    const double w = h[6] * x + h[7] * y + h[8];
    const double u = (h[0] * x + h[1] * y + h[2]) / w;
    const double v = (h[3] * x + h[4] * y + h[5]) / w;
    const double alpha = c.camera[9];
    const double beta = c.camera[10];
    const double du = u - c.camera[12];
    const double dv = v - c.camera[13];
    const double xn = (du - c.camera[11] / beta * dv) / alpha;
    const double yn = dv / beta * std::cos(c.camera[14]);
    const double r2 = xn * xn + yn * yn;
    const double D = (c.camera[16] * r2 + c.camera[15]) * r2;
    return {u + D * du, v + D * dv};
}

struct TestImage {
    std::int32_t width;
    std::int32_t height;
    std::int32_t stride;
    std::int32_t channels;
    std::vector<std::uint8_t> pixels;

    [[nodiscard]] double at(std::int32_t x, std::int32_t y, int c) const {
        return pixels[static_cast<std::size_t>(y * stride + x * channels + c)];
    }
};

inline TestImage randomImage(Random& random, std::int32_t width, std::int32_t height, std::int32_t channels,
                             std::int32_t padding) {
    TestImage image{width, height, width * channels + padding, channels, {}};
    image.pixels.resize(static_cast<std::size_t>(image.stride) * static_cast<std::size_t>(height));
    for (std::uint8_t& pixel : image.pixels) {
        pixel = static_cast<std::uint8_t>(random.bits());
    }
    return image;
}

inline bool modelValid(const TestImage& image, const SourcePosition& p) {
    return p.u >= 0.0 && p.v >= 0.0 && p.u < image.width - 1 && p.v < image.height - 1;
}

inline double modelGray(const TestImage& image, const SourcePosition& p, int channel) {
    const auto ix = static_cast<std::int32_t>(p.u);
    const auto iy = static_cast<std::int32_t>(p.v);
    const double fx = p.u - ix;
    const double fy = p.v - iy;
    const double top = image.at(ix + 1, iy, channel) * fx + image.at(ix, iy, channel) * (1.0 - fx);
    const double bottom = image.at(ix + 1, iy + 1, channel) * fx + image.at(ix, iy + 1, channel) * (1.0 - fx);
    return bottom * fy + top * (1.0 - fy);
}

// A warp of about the given magnification, with some rotation, perspective and distortion, that looks at the source.
inline WarpCase randomWarp(Random& random, std::int32_t srcWidth, std::int32_t srcHeight, double scale, double angle) {
    WarpCase c{};
    const double cosine = scale * std::cos(angle);
    const double sine = scale * std::sin(angle);
    const double tilt = 0.2 / (srcWidth + srcHeight);
    const double h[9] = {cosine,
                         -sine,
                         random.uniform(-0.2, 0.3) * srcWidth,
                         sine,
                         cosine,
                         random.uniform(-0.2, 0.3) * srcHeight,
                         random.uniform(-tilt, tilt),
                         random.uniform(-tilt, tilt),
                         1.0};
    for (int i = 0; i < 9; ++i) {
        c.hom[i] = h[i];
    }
    c.camera[9] = srcWidth * random.uniform(1.0, 2.0);
    c.camera[10] = c.camera[9] * random.uniform(0.95, 1.05);
    c.camera[11] = random.uniform(-0.5, 0.5);
    c.camera[12] = srcWidth * random.uniform(0.4, 0.6);
    c.camera[13] = srcHeight * random.uniform(0.4, 0.6);
    c.camera[14] = random.uniform(-0.02, 0.02);
    c.camera[15] = random.uniform(-0.2, 0.2);
    c.camera[16] = random.uniform(-0.1, 0.1);
    return c;
}

inline WarpCase identityWarp() {
    WarpCase c{{1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0}, {}};
    c.camera[9] = c.camera[10] = 100.0;
    return c;
}

}  // namespace zelmtest

#endif
