// The parts of the quadric fits that stand on their own.
#ifndef ZELM_FIT_QUADRIC_H
#define ZELM_FIT_QUADRIC_H

#include <cstdint>

namespace zelm {

// A ZelmFitSolveFn: the quadric with the least algebraic distance that is an ellipsoid. Returns ZELM_OK,
// ZELM_ERR_FIT_NOT_ELLIPSOID, or what monomialScatter(), the eigen-solver or the inversion returned.
std::int32_t fitEllipsoidSolve(std::int32_t n, const double* weights, const double* points, double* quadric);

// A ZelmFitSolveFn: the quadric with the least algebraic distance among those with coefficients of unit norm. Returns
// ZELM_OK or what monomialScatter() returned.
std::int32_t fitQuadricSolve(std::int32_t n, const double* weights, const double* points, double* quadric);

// Whether the quadratic part has eigenvalues of both signs and a determinant of at least 1e-12.
bool isConeLike(const double* quadric);

// Directions of an ellipsoid from the unit vectors of its largest axis and of its smallest, which are perpendicular.
struct EllipsoidAngles {
    double azimuth;
    double elevation;
    double roll;
};

EllipsoidAngles ellipsoidAngles(const double* largest, const double* smallest);

}  // namespace zelm

#endif
