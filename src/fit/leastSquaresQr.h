// Least squares with three unknowns by pivoted QR.
#ifndef ZELM_LEAST_SQUARES_QR_H
#define ZELM_LEAST_SQUARES_QR_H

#include <cstdint>

namespace zelm {

// Solves basis^T x = b in the least-squares sense: 3 unknowns, n equations, basis 3 x n (one row per unknown). b and
// basis are left as they are. Modified Gram-Schmidt with column pivoting (Björck 1967) and iterative refinement.
// Returns the rank; unknowns beyond it are 0. With n < 3 returns n and solves nothing. ZELM_ERR_MEMORY.
std::int32_t innerSolveLeastSquaresQR(std::int32_t n, const double* basis, const double* b, double* x);

}  // namespace zelm

#endif
