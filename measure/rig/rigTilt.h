// How a plate that calibrated a parallel camera was turned.
#ifndef ZELM_MEASURE_RIG_TILT_H
#define ZELM_MEASURE_RIG_TILT_H

#include "rig.h"

namespace zelm::measure {

// How far the plate of view 0 is turned against a parallel camera of square pixels, radians. Throws for other cameras.
double tiltOfFirstView(const RigCamera& camera);

}  // namespace zelm::measure

#endif
