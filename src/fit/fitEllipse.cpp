// Ellipses by direct least squares: Fitzgibbon, Pilu and Fisher, "Direct least square fitting of ellipses", IEEE Trans.
// PAMI 21, 1999. Minimises p^T S p with 4AC - B^2 held positive; whitening S by its Cholesky factor turns the
// generalised eigenproblem into a symmetric one.

#include "fitEllipse.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "conicScatter.h"
#include "robustDriver.h"
#include "zelm/fit.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

constexpr size_t N = kConicTerms;
constexpr double kNullEigenvalue = 1e-12;  // of the scatter matrix, below which its vector fits all points exactly

double ellipseDiscriminant(const double* p) {
    return 4.0 * p[0] * p[2] - p[1] * p[1];
}

// A parabola, 4AC - B^2 = 0, passes: deliberate.
bool isEllipse(const double* p) {
    const double sign = p[0] < 0.0 ? -1.0 : 1.0;
    return ellipseDiscriminant(p) >= 0.0 && (p[0] + p[2]) * sign >= 0.0;
}

// Takes the last of the candidate vectors (rows) that is an ellipse, scaled so that 4AC - B^2 = 1.
template <class Filter>
int32_t ellipseAmong(const double* vectors, Filter isCandidate, double* conic) {
    for (size_t i = N; i-- > 0;) {
        const double* const e = vectors + i * N;
        if (isCandidate(i) && isEllipse(e)) {
            const double length = std::sqrt(ellipseDiscriminant(e));
            std::transform(e, e + N, conic, [length](double v) { return v / length; });
            return ZELM_OK;
        }
    }
    return ZELM_ERR_FIT_NOT_ELLIPSE;
}

// M = V^T C V for the constraint matrix C of p^T C p = 4AC - B^2, which has three entries that are not 0.
void constraintInBasis(const double* V, double* M) {
    const double* const v0 = V;
    const double* const v1 = V + N;
    const double* const v2 = V + 2 * N;
    for (size_t r = 0; r < N; ++r) {
        for (size_t c = 0; c < N; ++c) {
            M[r * N + c] = 2.0 * (v0[r] * v2[c] + v2[r] * v0[c]) - v1[r] * v1[c];
        }
    }
}

// Solves U p = y, U upper triangular.
void backSubstitute(const double* U, const double* y, double* p) {
    for (size_t i = N; i-- > 0;) {
        double rest = y[i];
        for (size_t j = i + 1; j < N; ++j) {
            rest -= U[i * N + j] * p[j];
        }
        p[i] = rest / U[i * N + i];
    }
}

// S = U^T U.
int32_t ellipseFromFactor(const double* U, double* conic) {
    double Uinv[N * N];
    if (const auto s = zelmMatInvert(static_cast<int32_t>(N), U, Uinv); s < 0) {
        return s;
    }
    double M[N * N];
    constraintInBasis(Uinv, M);
    double values[N];
    double vectors[N * N];
    if (const auto s = zelmMatJacobiEigen(static_cast<int32_t>(N), M, values, vectors); s < 0) {
        return s;
    }
    if (!(values[0] > 0.0)) {
        return ZELM_ERR_FIT_NOT_ELLIPSE;
    }
    backSubstitute(U, vectors, conic);
    return isEllipse(conic) ? ZELM_OK : ZELM_ERR_FIT_NOT_ELLIPSE;
}

}  // namespace

int32_t fitEllipseSolve(int32_t n, const double* weights, const double* points, double* conic) {
    ConicScatter scatter;
    if (const auto s = conicScatter(n, weights, points, &scatter); s < 0) {
        return s;
    }
    const auto isNull = [](double value) { return std::fabs(value) < kNullEigenvalue; };
    if (std::any_of(scatter.values, scatter.values + N, isNull)) {
        return ellipseAmong(
            scatter.vectors, [&](size_t i) { return isNull(scatter.values[i]); }, conic);
    }
    double U[N * N];
    if (zelmMatCholeskyDecomp(static_cast<int32_t>(N), scatter.S, U) < 0) {
        return ellipseAmong(
            scatter.vectors, [](size_t i) { return i == N - 1; }, conic);
    }
    return ellipseFromFactor(U, conic);
}

namespace {

// Geometry of the conic p, in the frame of p. s: scale and t: centre of that frame, which the result leaves.
int32_t ellipseGeometry(const double* p, double s, const double* t, Ellipse2d* ellipse) {
    double Q[4] = {p[0], p[1] / 2.0, p[1] / 2.0, p[2]};
    const double rhs[2] = {-0.5 * p[3], -0.5 * p[4]};
    double c[2];
    if (const auto status = zelmMatSolveLU(2, Q, rhs, c); status < 0) {
        return status;
    }
    const double k = -(0.5 * (p[3] * c[0] + p[4] * c[1]) + p[5]);
    for (double& q : Q) {
        q /= k;
    }
    double values[2];
    double axes[4];
    if (const auto status = zelmMatJacobiEigen(2, Q, values, axes); status < 0) {
        return status;
    }
    const double sign = axes[2] < 0.0 ? -1.0 : 1.0;
    *ellipse = {c[0] / s + t[0], c[1] / s + t[1], 1.0 / (std::sqrt(std::fabs(values[1])) * s),
                1.0 / (std::sqrt(std::fabs(values[0])) * s), std::atan2(sign * axes[3], sign * axes[2])};
    return ZELM_OK;
}

}  // namespace
}  // namespace zelm

int32_t zelmFitEllipse(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold, Ellipse2d* tResult) {
    double p[zelm::kConicTerms];
    double t[2];
    double s;
    if (const auto status = zelm::innerFitRobust(
            2, zelm::kConicMinPoints, iN, reinterpret_cast<const double*>(taPoints), iRobust,
            tResult != nullptr ? p : nullptr, t, &s, zelm::fitEllipseSolve, zelm::fitConicResidual, dThreshold);
        status < 0) {
        return status;
    }
    return zelm::ellipseGeometry(p, s, t, tResult);
}
