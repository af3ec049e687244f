// Products of 3 x 3 matrices, which have no dimensions to mismatch.
#ifndef ZELM_MATRIX3_H
#define ZELM_MATRIX3_H

#include "zelm/mat.h"

namespace zelm {

// C = A B; C overlaps neither.
inline void multiply3(const double* A, const double* B, double* C) {
    (void)zelmMatMul(3, 3, A, 3, 3, B, C);
}

}  // namespace zelm

#endif
