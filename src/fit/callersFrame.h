// Quadratic forms of conics and quadrics, carried from the normalised frame to the caller's.
#ifndef ZELM_CALLERS_FRAME_H
#define ZELM_CALLERS_FRAME_H

#include <cstddef>
#include <cstdint>

#include "zelm/mat.h"

namespace zelm {

// Q is the symmetric form of homogeneous points (x', 1), x' = s (x - t) with dim coordinates; R = T^T Q T is that of
// (x, 1), with T = [s I, -s t; 0, 1].
template <std::size_t dim>
void formInCallersFrame(const double* Q, double s, const double* t, double* R) {
    constexpr std::size_t size = dim + 1;
    constexpr auto n = static_cast<std::int32_t>(size);
    double T[size * size] = {};
    for (std::size_t i = 0; i < dim; ++i) {
        T[i * size + i] = s;
        T[i * size + dim] = -s * t[i];
    }
    T[size * size - 1] = 1.0;
    double QT[size * size];
    (void)zelmMatMul(n, n, Q, n, n, T, QT);
    (void)zelmMatMulTransposed2(1, n, n, T, n, n, QT, R);
}

}  // namespace zelm

#endif
