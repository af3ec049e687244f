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

// The inverse of U, upper triangular N x N with a positive diagonal: what zelmMatInvert computes of it, to the bit, as
// its elimination finds nothing to do. False, when an entry of U or of the inverse is not finite.
template <std::size_t N>
bool invertTriangle(const double* U, double* Uinv) {
    double magnitudes = 0.0;
    std::fill_n(Uinv, N * N, 0.0);
    for (std::size_t c = 0; c < N; ++c) {
        Uinv[c * N + c] = 1.0 / U[c * N + c];
        for (std::size_t i = c; i-- > 0;) {
            double rest = 0.0;
            for (std::size_t j = i + 1; j <= c; ++j) {
                rest -= U[i * N + j] * Uinv[j * N + c];
            }
            Uinv[i * N + c] = rest / U[i * N + i];
        }
        for (std::size_t i = 0; i <= c; ++i) {
            magnitudes += std::fabs(U[i * N + c]) + std::fabs(Uinv[i * N + c]);
        }
    }
    return std::isfinite(magnitudes);
}

// Whether S = U^T U is so far from singular that its smallest eigenvalue is above kNullEigenvalue however it is
// computed: it is at least 1 / |Uinv|^2, and rounding moves it by less than kSafeShare of the trace. The trace keeps
// away from where the eigen-solver's absolute threshold matters.
template <std::size_t N>
bool isFarFromSingular(const double* S, const double* Uinv) {
    constexpr double kSafeShare = 1e-10;
    constexpr double kMinTrace = 1e-6;
    double trace = 0.0;
    for (std::size_t i = 0; i < N; ++i) {
        trace += S[i * N + i];
    }
    double squares = 0.0;
    for (std::size_t i = 0; i < N * N; ++i) {
        squares += Uinv[i] * Uinv[i];
    }
    return trace > kMinTrace && 1.0 / squares > kSafeShare * trace + 2.0 * kNullEigenvalue;
}

// S = U^T U.
template <class Shape>
std::int32_t shapeFromFactor(const double* U, const double* Uinv, double* p) {
    constexpr std::size_t N = Shape::Terms::kTerms;
    double M[N * N];
    for (std::size_t r = 0; r < N; ++r) {
        for (std::size_t c = r; c < N; ++c) {
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

// By way of the eigenvalues of S, which may be singular.
template <class Shape>
std::int32_t fitConstrainedNearSingular(const double* S, double* p) {
    constexpr std::size_t N = Shape::Terms::kTerms;
    constexpr auto n = static_cast<std::int32_t>(N);
    double eigenvalues[N];
    double eigenvectors[N * N];
    if (const auto s = zelmMatJacobiEigen(n, S, eigenvalues, eigenvectors); s < 0) {
        return s;
    }
    const auto isNull = [](double value) { return std::fabs(value) < kNullEigenvalue; };
    if (std::any_of(eigenvalues, eigenvalues + N, isNull)) {
        return shapeAmong<Shape>(
            eigenvectors, [&](std::size_t i) { return isNull(eigenvalues[i]); }, p);
    }
    double U[N * N];
    if (zelmMatCholeskyDecomp(n, S, U) < 0) {
        return shapeAmong<Shape>(
            eigenvectors, [](std::size_t i) { return i == N - 1; }, p);
    }
    double Uinv[N * N];
    if (const auto s = zelmMatInvert(n, U, Uinv); s < 0) {
        return s;
    }
    return shapeFromFactor<Shape>(U, Uinv, p);
}

// A ZelmFitSolveFn. Returns ZELM_OK, Shape::kNotFound, ZELM_ERR_FIT_DATA when fewer than kMinPoints points take part,
// or what the eigen-solver or the inversion returned.
template <class Shape>
std::int32_t fitConstrained(std::int32_t n, const double* weights, const double* points, double* p) {
    constexpr std::size_t N = Shape::Terms::kTerms;
    double S[N * N];
    if (sumScatter<typename Shape::Terms>(n, weights, points, S) < Shape::Terms::kMinPoints) {
        return ZELM_ERR_FIT_DATA;
    }
    double U[N * N];
    double Uinv[N * N];
    if (zelmMatCholeskyDecomp(static_cast<std::int32_t>(N), S, U) >= 0 && invertTriangle<N>(U, Uinv) &&
        isFarFromSingular<N>(S, Uinv)) {
        return shapeFromFactor<Shape>(U, Uinv, p);
    }
    return fitConstrainedNearSingular<Shape>(S, p);
}

}  // namespace zelm

#endif
