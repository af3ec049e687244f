// Bilinear samples of platform buffers at real positions; integer positions are pixel centres.
#ifndef ZELM_BUFFER_SAMPLING_H
#define ZELM_BUFFER_SAMPLING_H

#include <cstdint>

#include "zelm/base.h"

namespace zelm {

// Gray value of a Planar8 buffer at 0 <= x < width and 0 <= y < height, not rounded; between the last column (row) and
// the border the last pixel counts twice. 0.0 anywhere else, also for coordinates that are not numbers.
double sampleBilinearPlanar8(const vImage_Buffer& buffer, double x, double y);

// R, G and B of an ARGB8888 buffer, rounded to bytes, at 0 <= x <= width - 1 and 0 <= y <= height - 1: a narrower range
// than the gray one (docs/decisions.md#colour-border). Zeros anywhere else, also for coordinates that are not numbers.
void sampleBilinearARGB8888(const vImage_Buffer& buffer, double x, double y, std::uint8_t& outR, std::uint8_t& outG,
                            std::uint8_t& outB);

}  // namespace zelm

#endif
