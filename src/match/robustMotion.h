// Motions by re-weighted least squares.
#ifndef ZELM_ROBUST_MOTION_H
#define ZELM_ROBUST_MOTION_H

#include <cstdint>

#include "motion.h"

namespace zelm {

// Improves the closed-form motion in at most 20 passes with Tukey's biweight. Returns ZELM_MATCH_EXACT when the
// residuals vanish, ZELM_OK when the weights have settled or the passes are used up, ZELM_ERR_DEGENERATE when every
// point is rejected, ZELM_ERR_MEMORY; motion is the last estimate in each case.
std::int32_t robustMotion(const PointPairs& pairs, bool withScale, double threshold, Motion* motion);

}  // namespace zelm

#endif
