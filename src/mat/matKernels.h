// The loops over large matrices that the processor's vector instructions shorten, a set a tier. Independent entries are
// computed side by side; each one is summed in the documented order, so that all tiers give the same bits.
#ifndef ZELM_MAT_KERNELS_H
#define ZELM_MAT_KERNELS_H

#include <cstddef>

namespace zelm {

// Entry (k, i) is at entries[k * step + i * across].
struct SlantedMatrix {
    const double* entries;
    std::ptrdiff_t step;
    std::ptrdiff_t across;
};

struct MatKernels {
    // C (rows x cols) = sum over k < inner of A(k, i) * B(k, j), each from 0.0 in increasing k. C overlaps neither.
    void (*product)(std::ptrdiff_t rows, std::ptrdiff_t cols, std::ptrdiff_t inner, const SlantedMatrix& a,
                    const SlantedMatrix& b, double* c);
    // target -= factors[k] * row k, one after the other for k < count; the rows of cols entries follow one another and
    // do not overlap the target.
    void (*subtractRows)(std::ptrdiff_t cols, std::ptrdiff_t count, const double* factors, const double* rows,
                         double* target);
    // target -= factor * row; they do not overlap.
    void (*subtractRow)(std::ptrdiff_t cols, double factor, const double* row, double* target);
};

extern const MatKernels kMatPlainTier;
extern const MatKernels kMatAvx2Tier;

// Those of the best tier that the processor has.
const MatKernels& matTierOfProcessor();

}  // namespace zelm

#endif
