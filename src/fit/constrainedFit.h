// Direct least squares with a quadratic constraint, behind the fits of ellipses and ellipsoids: Fitzgibbon, Pilu and
// Fisher, "Direct least square fitting of ellipses", IEEE Trans. PAMI 21, 1999. Minimises p^T S p with p^T C p held
// positive; whitening S by its Cholesky factor turns the generalised eigenproblem into a symmetric one.
//
// `Shape` describes the constraint: Terms (see monomialScatter.h), kNotFound (the status when nothing fits),
// constraint(p) = p^T C p, constraintEntry(V, r, c) = (V^T C V)(r, c), and contains(p), whether p is such a shape.
#ifndef ZELM_CONSTRAINED_FIT_H
#define ZELM_CONSTRAINED_FIT_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "monomialScatter.h"
#include "zelm/base.h"
#include "zelm/mat.h"

namespace zelm {

constexpr double kNullEigenvalue = 1e-12;  // of the scatter matrix, below which its vector fits all points exactly

// Takes the last of the candidate vectors (rows) that is a shape, scaled so that p^T C p = 1.
template <class Shape, class Filter>
std::int32_t shapeAmong(const double* vectors, Filter isCandidate, double* p) {
    constexpr std::size_t N = Shape::Terms::kTerms;
    for (std::size_t i = N; i-- > 0;) {
        const double* const e = vectors + i * N;
        if (isCandidate(i) && Shape::contains(e)) {
            const double length = std::sqrt(Shape::constraint(e));
            std::transform(e, e + N, p, [length](double v) { return v / length; });
            return ZELM_OK;
        }
    }
    return Shape::kNotFound;
}

// Solves U p = y, U upper triangular N x N.
template <std::size_t N>
void backSubstitute(const double* U, const double* y, double* p) {
    for (std::size_t i = N; i-- > 0;) {
        double rest = y[i];
        for (std::size_t j = i + 1; j < N; ++j) {
            rest -= U[i * N + j] * p[j];
        }
        p[i] = rest / U[i * N + i];
    }
}

// S = U^T U.
template <class Shape>
std::int32_t shapeFromFactor(const double* U, double* p) {
    constexpr std::size_t N = Shape::Terms::kTerms;
    double Uinv[N * N];
    if (const auto s = zelmMatInvert(static_cast<std::int32_t>(N), U, Uinv); s < 0) {
        return s;
    }
    double M[N * N];
    for (std::size_t r = 0; r < N; ++r) {
        for (std::size_t c = 0; c < N; ++c) {
            M[r * N + c] = Shape::constraintEntry(Uinv, r, c);
        }
    }
    double values[N];
    double vectors[N * N];
    if (const auto s = zelmMatJacobiEigen(static_cast<std::int32_t>(N), M, values, vectors); s < 0) {
        return s;
    }
    if (!(values[0] > 0.0)) {
        return Shape::kNotFound;
    }
    backSubstitute<N>(U, vectors, p);
    return Shape::contains(p) ? ZELM_OK : Shape::kNotFound;
}

// A ZelmFitSolveFn. Returns ZELM_OK, Shape::kNotFound, or what monomialScatter(), the eigen-solver or the inversion
// returned.
template <class Shape>
std::int32_t fitConstrained(std::int32_t n, const double* weights, const double* points, double* p) {
    constexpr std::size_t N = Shape::Terms::kTerms;
    MonomialScatter<N> scatter;
    if (const auto s = monomialScatter<typename Shape::Terms>(n, weights, points, &scatter); s < 0) {
        return s;
    }
    const auto isNull = [](double value) { return std::fabs(value) < kNullEigenvalue; };
    if (std::any_of(scatter.values, scatter.values + N, isNull)) {
        return shapeAmong<Shape>(
            scatter.vectors, [&](std::size_t i) { return isNull(scatter.values[i]); }, p);
    }
    double U[N * N];
    if (zelmMatCholeskyDecomp(static_cast<std::int32_t>(N), scatter.S, U) < 0) {
        return shapeAmong<Shape>(
            scatter.vectors, [](std::size_t i) { return i == N - 1; }, p);
    }
    return shapeFromFactor<Shape>(U, p);
}

}  // namespace zelm

#endif
