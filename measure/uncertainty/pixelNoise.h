// How well the pixels of a call are known.
#ifndef ZELM_MEASURE_PIXEL_NOISE_H
#define ZELM_MEASURE_PIXEL_NOISE_H

#include <zelmMeasure.h>

#include <cstdint>

#include "pointSensitivity.h"

namespace zelm::measure {

class PixelNoise {
public:
    // Throws unless the record can be meant, and for a rig that would have to tell the noise and has no covariance.
    PixelNoise(const Rig& rig, const ZelmMeasurePixelNoise* given, std::size_t count);

    // The covariance that it makes of a pair's point, left camera's frame.
    Symmetric3 ofPoint(const SensitivityModel& model, const PointSensitivity& s, std::size_t i) const;
    // Degrees of freedom that it was estimated from; 0: it is known.
    double freedom() const { return record.freedom; }
    // Whether it is the noise that the calibration's covariance was made with: one estimate, not two.
    bool isOfCalibration() const { return ofCalibration; }

private:
    Symmetric2 of(const double* covariances, std::size_t i) const {
        return covariances == nullptr ? Symmetric2{variance, 0.0, variance}
                                      : Symmetric2{covariances[3 * i], covariances[3 * i + 1], covariances[3 * i + 2]};
    }

    ZelmMeasurePixelNoise record{};
    double variance = 0.0;
    bool ofCalibration = false;
};

}  // namespace zelm::measure

#endif
