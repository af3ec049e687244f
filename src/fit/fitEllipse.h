// The ellipse-constrained conic fit, behind both the geometry and the coefficients that callers ask for.
#ifndef ZELM_FIT_ELLIPSE_H
#define ZELM_FIT_ELLIPSE_H

#include <cstdint>

namespace zelm {

// A ZelmFitSolveFn. Returns ZELM_OK, ZELM_ERR_FIT_NOT_ELLIPSE, or what monomialScatter(), the eigen-solver or the
// inversion returned.
std::int32_t fitEllipseSolve(std::int32_t n, const double* weights, const double* points, double* conic);

}  // namespace zelm

#endif
