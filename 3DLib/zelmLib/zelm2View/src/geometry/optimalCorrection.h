// Moves a pair of corresponding points onto the epipolar constraint.
#ifndef ZELM_OPTIMAL_CORRECTION_H
#define ZELM_OPTIMAL_CORRECTION_H

#include "zelm/base.h"

namespace zelm {

struct PointPair {
    Point2d left;
    Point2d right;
};

// The pair that satisfies x_L' F x_R = 0 at the least sum of squared moves, by first-order iterative correction
// (Kanatani, Sugaya and Niitsuma, 2008). The given pair comes back when it does not settle within 20 rounds. F: 3x3
// row-major, undistorted pixels.
PointPair correctOptimally(const double F[9], const PointPair& observed);

}  // namespace zelm

#endif
