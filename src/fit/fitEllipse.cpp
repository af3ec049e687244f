// Ellipses by direct least squares (constrainedFit.h), and their geometry.

#include "fitEllipse.h"

#include <cmath>
#include <cstddef>

#include "conicScatter.h"
#include "constrainedFit.h"
#include "fitConics.h"
#include "robustDriver.h"
#include "zelm/fit.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

struct EllipseShape {
    using Terms = ConicTerms;
    static constexpr int32_t kNotFound = ZELM_ERR_FIT_NOT_ELLIPSE;

    static double constraint(const double* p) { return 4.0 * p[0] * p[2] - p[1] * p[1]; }

    // A parabola, 4AC - B^2 = 0, passes: docs/decisions.md#parabola-passes.
    static bool contains(const double* p) {
        const double sign = p[0] < 0.0 ? -1.0 : 1.0;
        return constraint(p) >= 0.0 && (p[0] + p[2]) * sign >= 0.0;
    }

    // C has three entries that are not 0.
    static double constraintEntry(const double* V, size_t r, size_t c) {
        const double* const v0 = V;
        const double* const v1 = V + kConicTerms;
        const double* const v2 = V + 2 * kConicTerms;
        return 2.0 * (v0[r] * v2[c] + v2[r] * v0[c]) - v1[r] * v1[c];
    }
};

}  // namespace

int32_t fitEllipseSolve(int32_t n, const double* weights, const double* points, double* conic) {
    return fitConstrained<EllipseShape>(n, weights, points, conic);
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

int32_t zelmFitEllipseC(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold, double* daResult) {
    return zelm::fitConicCoefficients(iN, taPoints, iRobust, dThreshold, zelm::fitEllipseSolve, daResult);
}
