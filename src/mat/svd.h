// The singular value decomposition in memory of the caller's, which may be the stack.
#ifndef ZELM_SVD_H
#define ZELM_SVD_H

#include <cstddef>
#include <cstdint>

namespace zelm {

// Decomposes the m x n matrix in u, m >= n >= 1, as zelmMatSVD does, but leaves the values in the order found.
// u becomes the left singular vectors, or work memory unless they are wanted; w receives n values, v (n x n, or null)
// the right singular vectors as rows; work holds 2 n. False for entries or values that are not finite and where a value
// needs more than 29 QR steps; the outputs are partly written then.
bool innerSVD(std::ptrdiff_t m, std::ptrdiff_t n, double* u, bool wantLeft, double* w, double* v, double* work);

// Sorts the values descending, columns of u and rows of v (either may be null) with them. scratch and index hold n.
void innerSortSVD(std::ptrdiff_t m, std::ptrdiff_t n, double* u, double* w, double* v, double* scratch,
                  std::int32_t* index);

}  // namespace zelm

#endif
