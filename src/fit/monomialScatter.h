// The scatter matrix of the monomials of a conic or a quadric, from which its coefficients are fitted.
//
// `Terms` describes the surface: kDim coordinates a point, kTerms monomials, kMinPoints the least number of points that
// determine it, and monomials(point, z).
#ifndef ZELM_MONOMIAL_SCATTER_H
#define ZELM_MONOMIAL_SCATTER_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "zelm/base.h"
#include "zelm/mat.h"

namespace zelm {

// S = sum w z z^T and its eigen decomposition, S = vectors^T diag(values) vectors.
template <std::size_t N>
struct MonomialScatter {
    double S[N * N];
    double values[N];       // descending
    double vectors[N * N];  // unit vectors as rows
};

// Returns the number of points that took part: those whose weight is not exactly 0.
template <class Terms>
std::int32_t sumScatter(std::int32_t n, const double* weights, const double* points, double* S) {
    constexpr std::size_t N = Terms::kTerms;
    double sums[N][N] = {};  // in registers where there are enough
    std::int32_t used = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(std::max(n, 0)); ++i) {
        const double w = weights[i];
        if (w == 0.0) {
            continue;
        }
        ++used;
        double z[N];
        Terms::monomials(points + i * Terms::kDim, z);
        for (std::size_t r = 0; r < N; ++r) {
            const double wz = w * z[r];
            for (std::size_t c = r; c < N; ++c) {
                sums[r][c] += wz * z[c];
            }
        }
    }
    for (std::size_t r = 0; r < N; ++r) {
        for (std::size_t c = r; c < N; ++c) {
            S[r * N + c] = S[c * N + r] = sums[r][c];
        }
    }
    return used;
}

// Returns ZELM_OK, ZELM_ERR_FIT_DATA when fewer than kMinPoints points take part, or what the eigen-solver returned.
template <class Terms>
std::int32_t monomialScatter(std::int32_t n, const double* weights, const double* points,
                             MonomialScatter<Terms::kTerms>* result) {
    if (sumScatter<Terms>(n, weights, points, result->S) < Terms::kMinPoints) {
        return ZELM_ERR_FIT_DATA;
    }
    return zelmMatJacobiEigen(static_cast<std::int32_t>(Terms::kTerms), result->S, result->values, result->vectors);
}

}  // namespace zelm

#endif
