// Conics by their coefficients.
#include "fitConics.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "callersFrame.h"
#include "conicScatter.h"
#include "zelm/fit.h"

namespace zelm {
namespace {

int32_t fitConicSolve(int32_t n, const double* weights, const double* points, double* conic) {
    ConicScatter scatter;
    if (const auto s = monomialScatter<ConicTerms>(n, weights, points, &scatter); s < 0) {
        return s;
    }
    std::copy_n(scatter.vectors + (kConicTerms - 1) * kConicTerms, kConicTerms, conic);
    return ZELM_OK;
}

// Divided by the norm of p, not by that of the result: docs/decisions.md#conic-norm.
void conicInCallersFrame(const double* p, double s, const double* t, double* result) {
    double squares = 0.0;
    for (size_t i = 0; i < kConicTerms; ++i) {
        squares += p[i] * p[i];
    }
    const double norm = std::sqrt(squares);
    const double Q[9] = {p[0], p[1] / 2.0, p[3] / 2.0, p[1] / 2.0, p[2], p[4] / 2.0, p[3] / 2.0, p[4] / 2.0, p[5]};
    double R[9];
    formInCallersFrame<2>(Q, s, t, R);
    const double coefficients[kConicTerms] = {R[0], 2.0 * R[1], R[4], 2.0 * R[2], 2.0 * R[5], R[8]};
    std::transform(coefficients, coefficients + kConicTerms, result, [norm](double v) { return v / norm; });
}

}  // namespace

int32_t fitConicCoefficients(int32_t n, const Point2d* points, int32_t robust, double threshold, ZelmFitSolveFn solve,
                             double* result) {
    double p[kConicTerms];
    double t[2];
    double s;
    if (const auto status = innerFitRobust(2, kConicMinPoints, n, reinterpret_cast<const double*>(points), robust,
                                           result != nullptr ? p : nullptr, t, &s, solve, fitConicResidual, threshold);
        status < 0) {
        return status;
    }
    conicInCallersFrame(p, s, t, result);
    return ZELM_OK;
}

}  // namespace zelm

int32_t zelmFitConics(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold, double* daResult) {
    return zelm::fitConicCoefficients(iN, taPoints, iRobust, dThreshold, zelm::fitConicSolve, daResult);
}
