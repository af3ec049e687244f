// Poses of the plate that a person can hold it in, and what each would tell.
#ifndef ZELM_MEASURE_PLAN_CANDIDATES_H
#define ZELM_MEASURE_PLAN_CANDIDATES_H

#include <vector>

#include "planInformation.h"
#include "planLengths.h"

namespace zelm::measure {

// How the plate is held, in the frame of the pair.
struct PlateHold {
    Vector3 position{};    // of its middle
    double tilt = 0.0;     // against the pair's z axis, radians
    double azimuth = 0.0;  // to which its face is tilted, from x towards y, radians
    double roll = 0.0;     // of its x axis, from x towards y, radians
};

MotionParameters poseOf(const PlanPair& pair, const PlateHold& hold);
PlateHold holdOf(const PlanPair& pair, const MotionParameters& pose);

struct PlanCandidate {
    MotionParameters pose{};
    ViewInformation information;
};

// The poses at which both cameras can read the plate: places of the volume, tilts and turns. Throws Fault, which says
// why, where there is none.
std::vector<PlanCandidate> planCandidates(const PlanPair& pair, const PlanPlate& plate, const PlanVolume& volume,
                                          const PlanBasis& basis, double noise, double maxTilt);

}  // namespace zelm::measure

#endif
