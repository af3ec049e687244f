// Ellipsoids by direct least squares, constrained like ellipses: the sum of the principal minors of the quadratic part
// is held positive, the constraint of Li and Griffiths, "Least squares ellipsoid specific fitting", Geometric Modeling
// and Processing 2004, without its term in the trace.

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "constrainedFit.h"
#include "fitQuadric.h"
#include "quadricScatter.h"
#include "robustDriver.h"
#include "zelm/fit.h"
#include "zelm/mat.h"
#include "zelm/math.h"

namespace zelm {
namespace {

struct EllipsoidShape {
    using Terms = QuadricTerms;
    static constexpr int32_t kNotFound = ZELM_ERR_FIT_NOT_ELLIPSOID;

    static double constraint(const double* p) { return quadricInvariants(p).minors; }

    // All eigenvalues of the quadratic part have one sign.
    static bool contains(const double* p) {
        const QuadricInvariants q = quadricInvariants(p);
        return q.minors > 0.0 && q.determinant * q.trace > 0.0;
    }

    // C has 1/2 where two different squares meet and -1/4 on the diagonal of the mixed terms.
    static double constraintEntry(const double* V, size_t r, size_t c) {
        const auto at = [V](size_t k, size_t j) { return V[k * kQuadricTerms + j]; };
        const auto mixed = [&](size_t k, size_t l) { return at(k, r) * at(l, c) + at(l, r) * at(k, c); };
        return 0.5 * (mixed(0, 1) + mixed(0, 2) + mixed(1, 2)) -
               0.25 * (at(3, r) * at(3, c) + at(4, r) * at(4, c) + at(5, r) * at(5, c));
    }
};

}  // namespace

int32_t fitEllipsoidSolve(int32_t n, const double* weights, const double* points, double* quadric) {
    return fitConstrained<EllipsoidShape>(n, weights, points, quadric);
}

EllipsoidAngles ellipsoidAngles(const double* largest, const double* smallest) {
    const double sign = largest[1] < 0.0 ? -1.0 : 1.0;
    const double e2[3] = {sign * largest[0], sign * largest[1], sign * largest[2]};
    const double azimuth = std::atan2(e2[1], e2[0]);
    const double elevation = std::atan2(e2[2], std::sqrt(e2[0] * e2[0] + e2[1] * e2[1]));
    const double u[3] = {-std::sin(elevation) * std::cos(azimuth), -std::sin(elevation) * std::sin(azimuth),
                         std::cos(elevation)};
    double w[3];
    zelmMathCalcOuterProduct(u, smallest, w);
    const double s1 = zelmMathCalcInnerProduct(3, e2, w) >= 0.0 ? 1.0 : -1.0;
    const double s2 = zelmMathCalcInnerProduct(3, smallest, u) >= 0.0 ? 1.0 : -1.0;
    const double sine = zelmMathCalcNorm(3, w) / (zelmMathCalcNorm(3, smallest) * zelmMathCalcNorm(3, u));
    return {azimuth, elevation, std::asin(std::clamp(sine, -1.0, 1.0)) * s1 * s2};
}

namespace {

// Geometry of the quadric p, in the frame of p. s: scale and t: centre of that frame, which the result leaves.
int32_t ellipsoidGeometry(const double* p, double s, const double* t, Ellipsoid3d* ellipsoid) {
    double Q3[9];
    quadraticPart(p, Q3);
    const double rhs[3] = {-0.5 * p[6], -0.5 * p[7], -0.5 * p[8]};
    double c[3];
    if (const auto status = zelmMatSolveLU(3, Q3, rhs, c); status < 0) {
        return status;
    }
    const double k = -(0.5 * (p[6] * c[0] + p[7] * c[1] + p[8] * c[2]) + p[9]);
    for (double& q : Q3) {
        q /= k;
    }
    double values[3];
    double axes[9];
    if (const auto status = zelmMatJacobiEigen(3, Q3, values, axes); status < 0) {
        return status;
    }
    const auto semiAxis = [s](double value) { return 1.0 / (std::sqrt(std::fabs(value)) * s); };
    const EllipsoidAngles angles = ellipsoidAngles(axes + 6, axes);
    *ellipsoid = {c[0] / s + t[0],     c[1] / s + t[1], c[2] / s + t[2],  semiAxis(values[2]), semiAxis(values[1]),
                  semiAxis(values[0]), angles.azimuth,  angles.elevation, angles.roll};
    return ZELM_OK;
}

}  // namespace
}  // namespace zelm

int32_t zelmFitEllipsoid(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold,
                         Ellipsoid3d* tResult) {
    double p[zelm::kQuadricTerms];
    double t[3];
    double s;
    if (const auto status = zelm::innerFitRobust(
            3, zelm::kQuadricMinPoints, iN, reinterpret_cast<const double*>(taPoints), iRobust,
            tResult != nullptr ? p : nullptr, t, &s, zelm::fitEllipsoidSolve, zelm::fitQuadricResidual, dThreshold);
        status < 0) {
        return status;
    }
    return zelm::ellipsoidGeometry(p, s, t, tResult);
}
