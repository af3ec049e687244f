// Cones: the quadric of least algebraic distance, accepted when its quadratic part is indefinite.

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "callersFrame.h"
#include "fitQuadric.h"
#include "quadricScatter.h"
#include "robustDriver.h"
#include "zelm/fit.h"

namespace zelm {

int32_t fitQuadricSolve(int32_t n, const double* weights, const double* points, double* quadric) {
    QuadricScatter scatter;
    if (const auto s = monomialScatter<QuadricTerms>(n, weights, points, &scatter); s < 0) {
        return s;
    }
    std::copy_n(scatter.vectors + (kQuadricTerms - 1) * kQuadricTerms, kQuadricTerms, quadric);
    return ZELM_OK;
}

// The characteristic polynomial turns at (trace -+ r) / 3. Its roots have one sign exactly when the turn nearer to 0
// has that sign too. Of equal eigenvalues rounding may make the radicand negative; then r is not a number, neither
// comparison holds and the quadric passes: docs/decisions.md#cone-radicand.
bool isConeLike(const double* quadric) {
    constexpr double kNoDeterminant = 1e-12;
    const QuadricInvariants q = quadricInvariants(quadric);
    if (std::fabs(q.determinant) < kNoDeterminant) {
        return false;
    }
    const double r = std::sqrt(q.trace * q.trace - 3.0 * q.minors);
    const bool allNegative = q.determinant < 0.0 && q.trace + r <= 0.0;
    const bool allPositive = q.determinant > 0.0 && q.trace - r >= 0.0;
    return !allNegative && !allPositive;
}

namespace {

// Of unit length, unlike the coefficients of conics.
void quadricInCallersFrame(const double* p, double s, const double* t, double* result) {
    const double Q[16] = {p[0],       p[3] / 2.0, p[4] / 2.0, p[6] / 2.0, p[3] / 2.0, p[1],
                          p[5] / 2.0, p[7] / 2.0, p[4] / 2.0, p[5] / 2.0, p[2],       p[8] / 2.0,
                          p[6] / 2.0, p[7] / 2.0, p[8] / 2.0, p[9]};
    double R[16];
    formInCallersFrame<3>(Q, s, t, R);
    const double coefficients[kQuadricTerms] = {R[0],       R[5],       R[10],      2.0 * R[1],  2.0 * R[2],
                                                2.0 * R[6], 2.0 * R[3], 2.0 * R[7], 2.0 * R[11], R[15]};
    double squares = 0.0;
    for (const double v : coefficients) {
        squares += v * v;
    }
    const double norm = std::sqrt(squares);
    std::transform(coefficients, coefficients + kQuadricTerms, result, [norm](double v) { return v / norm; });
}

}  // namespace
}  // namespace zelm

int32_t zelmFitCone(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold, double* daResult) {
    double p[zelm::kQuadricTerms];
    double t[3];
    double s;
    if (const auto status = zelm::innerFitRobust(
            3, zelm::kQuadricMinPoints, iN, reinterpret_cast<const double*>(taPoints), iRobust,
            daResult != nullptr ? p : nullptr, t, &s, zelm::fitQuadricSolve, zelm::fitQuadricResidual, dThreshold);
        status < 0) {
        return status;
    }
    if (!zelm::isConeLike(p)) {
        std::copy_n(p, zelm::kQuadricTerms, daResult);  // as documented: the quadric in the normalised frame
        return ZELM_ERR_FIT_NOT_CONE;
    }
    zelm::quadricInCallersFrame(p, s, t, daResult);
    return ZELM_OK;
}
