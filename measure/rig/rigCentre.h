// What a rectified pair is best centred on.
#ifndef ZELM_MEASURE_RIG_CENTRE_H
#define ZELM_MEASURE_RIG_CENTRE_H

#include "rig.h"

namespace zelm::measure {

// Undistorted pixels.
struct RigCentre {
    Point2d left{};
    Point2d right{};
    int origin = 0;  // 0: the point that both cameras look at; 1: the origin of the first plate; 2: the image centres
};

RigCentre rigCentre(const Rig& rig);

}  // namespace zelm::measure

#endif
