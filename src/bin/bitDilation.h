// Dilation of two-level images, a bit a pixel, with a square.
#ifndef ZELM_BIT_DILATION_H
#define ZELM_BIT_DILATION_H

#include <cstddef>
#include <cstdint>

#include "bitKernels.h"
#include "workBuffer.h"

namespace zelm {

// A plane of bits, rows as in bitRows.h, that is dilated in place as if by `rounds` squares of 3 x 3, one after the
// other: by one square of 2 rounds + 1 pixels, since what a pixel sees of its neighbours within the plane after each
// round is the union of what they saw before. The square is taken along rows, then along columns, each in steps that
// see three times as far as the one before.
//
// Rows follow one another with at least `rounds` zeros between, so that the plane is one string of bits, in which no
// row reaches into the next.
class BitPlane {
public:
    BitPlane(const BitKernels& kernels, ptrdiff_t planeWidth, ptrdiff_t planeHeight, ptrdiff_t dilationRounds);

    [[nodiscard]] bool ok() const { return memory.ok(); }
    // The words of a row that its pixels take are the caller's; what is behind them is 0.
    uint64_t* row(ptrdiff_t r) { return current + r * stride; }
    // Leaves anything in the bits between the rows.
    void dilate();
    // Makes foreground background and background foreground, and the bits between the rows 0.
    void invert();

private:
    void dilateRows();
    void dilateColumns();

    const BitKernels& tier;
    ptrdiff_t width;
    ptrdiff_t height;
    ptrdiff_t rounds;
    ptrdiff_t stride;  // words from row to row
    WorkBuffer<uint64_t> memory;
    uint64_t* current = nullptr;
    uint64_t* other = nullptr;
};

}  // namespace zelm

#endif
