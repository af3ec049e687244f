// Weights of a robust fit from its residuals.
#ifndef ZELM_ROBUST_WEIGHTS_H
#define ZELM_ROBUST_WEIGHTS_H

#include <cstdint>

namespace zelm {

enum RobustWeightKind : std::int32_t {
    kParabolicWeights = 0,  // |1 - u^2|
    kBiweights = 1          // (1 - u^2)^2, Beaton and Tukey 1974
};

// New weights from the residuals r, with u = |r| / k and the cut-off k = median |r| * cutoffFactor; a residual of k or
// more gets weight 0. On entry `weights` holds the previous weights.
// Returns 1 when the weights have settled: 0.02 times their new sum exceeds the sum of their changes, or k is below
// 1e-12 (weights then untouched). Returns 0 when not, ZELM_ERR_MEMORY, or ZELM_ERR_FIT_DATA for n < 1, an unknown kind,
// a residual that is not a number, or new weights that sum up to less than 1e-12.
std::int32_t innerCalcRobustWeights(std::int32_t kind, std::int32_t n, const double* residuals, double* weights,
                                    double cutoffFactor);

}  // namespace zelm

#endif
