// Two linear equations.
#ifndef ZELM_SOLVE2X2_H
#define ZELM_SOLVE2X2_H

namespace zelm {

// Solves A x = b (A row-major) with the arithmetic and the refusals of zelmMatSolveLU, bit for bit, without its work
// memory. False for a row of zeros, an entry that is not
// finite, a zero pivot or a product of pivots of 0; x is then not written.
bool innerSolve2x2(const double A[4], const double b[2], double x[2]);

}  // namespace zelm

#endif
