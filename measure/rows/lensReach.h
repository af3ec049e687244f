// How far from the axis a lens is one-to-one.
#ifndef ZELM_MEASURE_LENS_REACH_H
#define ZELM_MEASURE_LENS_REACH_H

#include "projection.h"

namespace zelm::measure {

// The square of the normalised radius at which the lens folds the image, where (1 + k1 r^2 + k2 r^4) r grows no more;
// infinity for a lens that never does.
double foldOf(const CameraParameters& parameters);

}  // namespace zelm::measure

#endif
