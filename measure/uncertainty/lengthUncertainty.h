// Distances of points, and how well they are known.
#ifndef ZELM_MEASURE_LENGTH_UNCERTAINTY_H
#define ZELM_MEASURE_LENGTH_UNCERTAINTY_H

#include <zelmMeasure.h>

#include <cstdint>

#include "pointSensitivity.h"

namespace zelm::measure {

enum class LengthStatus : std::int32_t {
    ok = ZELM_MEASURE_LENGTH_OK,
    noPoint = ZELM_MEASURE_LENGTH_NO_POINT,
    tooShort = ZELM_MEASURE_LENGTH_SHORT,
};

// Variances in plate units^2.
struct Length {
    LengthStatus status = LengthStatus::noPoint;
    double length = 0.0;
    double imageVariance = 0.0;
    double calibrationVariance = 0.0;
};

// One end.
struct LengthEnd {
    PointSensitivity sensitivity;
    Symmetric3 image{};  // by the noise of its pixels, left camera's frame
};

// Without a covariance the calibration's part stays 0.
Length lengthBetween(const LengthEnd& a, const LengthEnd& b, const CalibrationCovariance* covariance);

}  // namespace zelm::measure

#endif
