// How well a rig's parameters are known.
#ifndef ZELM_MEASURE_CALIBRATION_COVARIANCE_H
#define ZELM_MEASURE_CALIBRATION_COVARIANCE_H

#include <array>
#include <cstddef>

#include "projection.h"

namespace zelm::measure {

// Places of what points of space and lengths depend on. A rotation's three are a small rotation vector d in the
// camera's frame: the true rotation is exp(d) R.
enum RigParameter : std::size_t {
    kLeftCamera = 0,                                       // the left camera's, in the order of CameraParameter
    kRightCamera = kLeftCamera + kCameraParameters,        // the right camera's
    kRelativeRotation = kRightCamera + kCameraParameters,  // X_right = R X_left + t: d, radians
    kRelativeTranslation = kRelativeRotation + 3,          // t, plate units
    kFrameRotation = kRelativeTranslation + 3,             // X_left = R X_plate + t in view 0: d, radians
    kFrameTranslation = kFrameRotation + 3,                // t, plate units
    kRigParameters = kFrameTranslation + 3
};

// Parameters that are held, as the skew of square pixels, have rows and columns of zeros.
struct CalibrationCovariance {
    std::array<double, kRigParameters * kRigParameters> matrix{};  // row-major
    double noise = 0.0;                                            // standard deviation of a dot's coordinate, pixels
    double freedom = 0.0;  // degrees of freedom that the noise was estimated from; 0: it was known
};

}  // namespace zelm::measure

#endif
