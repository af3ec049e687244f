// A conic's coefficients in the caller's frame, for the unconstrained fit and the one constrained to ellipses.
#ifndef ZELM_FIT_CONICS_H
#define ZELM_FIT_CONICS_H

#include <cstdint>

#include "robustDriver.h"
#include "zelm/fit.h"

namespace zelm {

// Fits by solve, a ZelmFitSolveFn of a conic, and writes its 6 coefficients. Returns what innerFitRobust() does.
std::int32_t fitConicCoefficients(std::int32_t n, const Point2d* points, std::int32_t robust, double threshold,
                                  ZelmFitSolveFn solve, double* result);

}  // namespace zelm

#endif
