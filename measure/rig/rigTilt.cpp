#include "rigTilt.h"

#include <cmath>

namespace zelm::measure {

double tiltOfFirstView(const RigCamera& camera) {
    if (!camera.isParallel()) {
        refuse("a perspective camera's calibration allows for tilted plates: there is nothing to tell");
    }
    const ZelmCameraIntrinsics& k = camera.intrinsics;
    const double* const R = camera.pose().R;
    const double a = k.alpha * R[0] + k.gamma * R[3];
    const double b = k.alpha * R[1] + k.gamma * R[4];
    const double c = k.beta * R[3];
    const double d = k.beta * R[4];
    // The axes of a circle's image are singular values: their sum and their difference are lengths.
    const double sum = std::hypot(a + d, c - b);
    const double difference = std::hypot(a - d, b + c);
    return std::acos(std::abs(sum - difference) / (sum + difference));
}

}  // namespace zelm::measure
