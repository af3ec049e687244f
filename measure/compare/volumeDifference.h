// Two calibrations of one pair, as far as points and lengths show.
#ifndef ZELM_MEASURE_VOLUME_DIFFERENCE_H
#define ZELM_MEASURE_VOLUME_DIFFERENCE_H

#include "plateDepths.h"
#include "rig.h"

namespace zelm::measure {

struct VolumeDifference {
    std::int64_t count = 0;  // of points
    double rms = 0.0;        // plate units, in the left camera's frame
    double worst = 0.0;
    double alignedRms = 0.0;  // after the rigid motion that brings the points closest
    double alignedWorst = 0.0;
    Vector3 worstAt{};
    double scale = 0.0;      // of the second rig's lengths, less 1
    double lengthRms = 0.0;  // by the lengths
    double lengthWorst = 0.0;
};

// Points all over the volume that both cameras of the first rig see between the depths; its pixels are triangulated
// with the second one. Throws Fault when they see nothing together.
VolumeDifference volumeDifference(const Rig& first, const Rig& second, const DepthRange& depths);

}  // namespace zelm::measure

#endif
