// Principal axes of weighted points: what total least squares fits of lines and planes rest on.
#ifndef ZELM_PRINCIPAL_AXES_H
#define ZELM_PRINCIPAL_AXES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "zelm/mat.h"

namespace zelm {

// m = sum w p / sum w.
template <size_t dim>
void weightedCentroid(std::int32_t n, const double* weights, const double* points, double* m) {
    double W = 0.0;
    double sum[dim] = {};
    for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
        W += weights[i];
        for (size_t c = 0; c < dim; ++c) {
            sum[c] += weights[i] * points[i * dim + c];
        }
    }
    for (size_t c = 0; c < dim; ++c) {
        m[c] = sum[c] / W;
    }
}

template <size_t dim>
struct PrincipalAxes {
    double centroid[dim];
    double axes[dim][dim];  // unit vectors as rows, by descending spread; signs as the eigen-solver leaves them
};

// From the scatter matrix S = sum w (p - m)(p - m)^T about the weighted centroid m. Returns what the eigen-solver does.
template <size_t dim>
std::int32_t principalAxes(std::int32_t n, const double* weights, const double* points, PrincipalAxes<dim>* result) {
    weightedCentroid<dim>(n, weights, points, result->centroid);
    double centroid[dim];
    std::copy_n(result->centroid, dim, centroid);
    double S[dim * dim] = {};
    for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
        double d[dim];
        for (size_t c = 0; c < dim; ++c) {
            d[c] = points[i * dim + c] - centroid[c];
        }
        // The eigen-solver reads no more than the upper triangle.
        for (size_t r = 0; r < dim; ++r) {
            for (size_t c = r; c < dim; ++c) {
                S[r * dim + c] += weights[i] * d[r] * d[c];
            }
        }
    }
    double spreads[dim];
    return zelmMatJacobiEigen(static_cast<std::int32_t>(dim), S, spreads, result->axes[0]);
}

}  // namespace zelm

#endif
