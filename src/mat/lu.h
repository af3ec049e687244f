// LU factorisation with implicitly scaled partial pivoting.
#ifndef ZELM_LU_H
#define ZELM_LU_H

#include <cstdint>

namespace zelm {

// Factors work (n x n, row-major) in place. Rows are not moved: pivot row i ends in row perm[i]; L (unit diagonal, not
// stored) and U of pivot position i are the entries of that row left of, and from, column i.
// Returns ZELM_OK, ZELM_ERR_MEMORY, or ZELM_ERR_SINGULAR for a row of zeros, an entry that is not finite, a zero pivot
// or a product of pivots that is, or underflows to, zero.
std::int32_t innerLUDecomp(std::int32_t n, double* work, std::int32_t* perm);

}  // namespace zelm

#endif
