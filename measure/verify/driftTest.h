// Whether and how the right camera has moved since the calibration.
#ifndef ZELM_MEASURE_DRIFT_TEST_H
#define ZELM_MEASURE_DRIFT_TEST_H

#include <cstdint>
#include <vector>

#include "driftFit.h"

namespace zelm::measure {

struct PixelPair {
    Point2d left{};
    Point2d right{};
};

struct DriftOptions {
    double noise = 0.0;             // standard deviation of a coordinate, pixels; 0: from what the five parts leave
    double calibrationError = 0.0;  // RMS epipolar distance of the calibration beyond its covariance, pixels
    double level = 1e-4;            // accepted probability of a false alarm
};

struct DriftVerdict {
    ZelmMeasureDrift drift{};
    std::vector<std::int32_t> statuses;  // a pair each, as the interface says
};

// Throws Fault for rigs with a parallel camera and for pairs that cannot tell.
DriftVerdict testDrift(const Rig& rig, const std::vector<PixelPair>& pairs, const DriftOptions& options);

}  // namespace zelm::measure

#endif
