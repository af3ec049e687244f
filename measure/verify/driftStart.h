// A drift that most pairs of pixels agree with, found among many wrong ones.
#ifndef ZELM_MEASURE_DRIFT_START_H
#define ZELM_MEASURE_DRIFT_START_H

#include <vector>

#include "epipolarModel.h"

namespace zelm::measure {

// Least median of squares (Rousseeuw 1984) over drifts that five pairs each determine, the distances taken as linear.
Drift startDrift(const EpipolarModel& model, const std::vector<RayPair>& pairs);

}  // namespace zelm::measure

#endif
