// Bilinear samples of platform buffers at real positions; integer positions are pixel centres. The rule stands here in
// its parts as well, so that loops over whole images take them in another order of work but give the same bits.
#ifndef ZELM_BUFFER_SAMPLING_H
#define ZELM_BUFFER_SAMPLING_H

#include <cstdint>

#include "zelm/base.h"

namespace zelm {

// Whether a position on an axis of so many pixels is sampled. Gray reaches beyond the centre of the last pixel, colour
// deliberately does not. False for positions that are not numbers.
inline bool isSampledPlanar8(double position, double size) {
    return position >= 0.0 && position < size;
}
inline bool isSampledARGB8888(double position, double size) {
    return position >= 0.0 && position <= size - 1.0;
}

// A sampled position between two neighbouring pixels of an axis; the last pixel is its own neighbour.
template <class Index>
struct BilinearPlace {
    Index near;
    Index far;
    double fraction;

    BilinearPlace() = default;
    BilinearPlace(double position, Index size)
        : near(static_cast<Index>(position)),
          far(near + 1 == size ? near : near + 1),
          fraction(position - static_cast<double>(near)) {}
};

// First the two rows are mixed along x, then the results along y.
inline double mixAlongRow(double left, double right, double fraction) {
    return (1.0 - fraction) * left + fraction * right;
}
inline double mixRows(double upper, double lower, double fraction) {
    return upper * (1.0 - fraction) + lower * fraction;
}

// Gray value of a Planar8 buffer at 0 <= x < width and 0 <= y < height, not rounded; between the last column (row) and
// the border the last pixel counts twice. 0.0 anywhere else, also for coordinates that are not numbers.
double sampleBilinearPlanar8(const vImage_Buffer& buffer, double x, double y);

// R, G and B of an ARGB8888 buffer, rounded to bytes, at 0 <= x <= width - 1 and 0 <= y <= height - 1: a narrower range
// than the gray one (docs/decisions.md#colour-border). Zeros anywhere else, also for coordinates that are not numbers.
void sampleBilinearARGB8888(const vImage_Buffer& buffer, double x, double y, std::uint8_t& outR, std::uint8_t& outG,
                            std::uint8_t& outB);

}  // namespace zelm

#endif
