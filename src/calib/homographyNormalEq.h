// Normal equations of the homography refinement.
#ifndef ZELM_HOMOGRAPHY_NORMAL_EQ_H
#define ZELM_HOMOGRAPHY_NORMAL_EQ_H

#include <cstdint>

#include "zelm/base.h"

namespace zelm {

// Evaluates H (3 x 3, dst ~ H * src): the weighted mean squared reprojection error, the symmetric 9 x 9 matrix N and
// the 9-vector g. robustK > 0 weights by Tukey's biweight with the cut-off robustK * 1.4826 * (root of the median
// squared error). Returns ZELM_OK or ZELM_ERR_MEMORY (outputs not written). A point that maps to infinity, or weights
// that are all 0, give a cost that is not finite.
std::int32_t innerCalcHomographyNormalEq(std::int32_t n, const Point2d* src, const Point2d* dst, const double* H,
                                         double* cost, double* N, double* g, double robustK);

}  // namespace zelm

#endif
