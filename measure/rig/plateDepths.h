// How far the plates of a calibration were.
#ifndef ZELM_MEASURE_PLATE_DEPTHS_H
#define ZELM_MEASURE_PLATE_DEPTHS_H

#include <optional>

#include "rig.h"

namespace zelm::measure {

struct DepthRange {
    double nearest = 0.0;
    double farthest = 0.0;
};

// The depths that a rig is good for where nobody names others: from half that of the nearest plate's corner marker to
// twice that of the farthest, along the camera's axis. Nothing for a pair that was imported, whose one pose is of no
// plate.
std::optional<DepthRange> plateDepths(const RigCamera& camera);

}  // namespace zelm::measure

#endif
