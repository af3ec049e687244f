// Whether two calibrations differ by more than their covariances tell.
#ifndef ZELM_MEASURE_PARAMETER_DIFFERENCE_H
#define ZELM_MEASURE_PARAMETER_DIFFERENCE_H

#include "rig.h"

namespace zelm::measure {

struct ParameterDifference {
    double chiSquare = 0.0;
    int freedom = 0;           // parameters that were estimated; 0: no covariance is known
    double probability = 1.0;  // that chance alone gives as much
};

// Of cameras and relative pose; the frame of the plate is no part of it. Their errors are taken as independent.
ParameterDifference parameterDifference(const Rig& first, const Rig& second);

}  // namespace zelm::measure

#endif
