// What a calibration's own uncertainty makes of epipolar distances: errors that all pairs share.
#ifndef ZELM_MEASURE_SHARED_ERRORS_H
#define ZELM_MEASURE_SHARED_ERRORS_H

#include <vector>

#include "calibrationCovariance.h"
#include "epipolarModel.h"

namespace zelm::measure {

// Q, a row for each pair: distances whose covariance is s^2 I + G C G', C the calibration's, are weighed by the inverse
// of it times s^2, which is I - Q Q'. Empty: I.
using SharedErrors = std::vector<ByCalibration>;

// `noise`: s, the standard deviation of a distance by its pixels, greater than 0.
SharedErrors sharedErrors(const EpipolarModel& model, const std::vector<RayPair>& pairs,
                          const CalibrationCovariance& covariance, double noise);

}  // namespace zelm::measure

#endif
