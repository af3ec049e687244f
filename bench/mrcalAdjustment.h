// The adjustment of a pair's dots by mrcal.
#ifndef ZELM_BENCH_MRCAL_ADJUSTMENT_H
#define ZELM_BENCH_MRCAL_ADJUSTMENT_H

#include <vector>

#include "adjustScene.h"

namespace zelmbench {

// One least-squares solution from the start, of two perspective cameras with the left one as the base: focal lengths,
// centres, k1, k2, p1 and p2 of the model LENSMODEL_OPENCV4, the relative pose, and the plates of 13 x 11 dots. It has
// no skew, and takes dots as projected points. No outliers are looked for, nothing is regularised, and no covariance is
// made. The result is the RMS of a coordinate's residual, pixels; negative when it failed.
double adjustByMrcal(const zelm::measure::AdjustState& start, const std::vector<zelm::measure::AdjustView>& views);

}  // namespace zelmbench

#endif
