// Which matrices can be the covariance of a calibration.
#ifndef ZELM_MEASURE_COVARIANCE_CHECK_H
#define ZELM_MEASURE_COVARIANCE_CHECK_H

#include "calibrationCovariance.h"

namespace zelm::measure {

// The covariance made symmetric to the last bit. Throws unless it is finite, symmetric and positive semi-definite, to
// rounding, and noise and freedom can be meant.
CalibrationCovariance soundCovariance(const CalibrationCovariance& covariance);

}  // namespace zelm::measure

#endif
