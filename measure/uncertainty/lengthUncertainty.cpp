#include "lengthUncertainty.h"

#include <algorithm>
#include <cmath>

namespace zelm::measure {
namespace {

constexpr double kMinDeviations = 3.0;  // of the ends' noise, below which a length has no direction

double trace(const Symmetric3& c) {
    return c[0] + c[3] + c[5];
}

// u' C u.
double along(const Vector3& u, const Symmetric3& c) {
    return u[0] * (c[0] * u[0] + 2.0 * (c[1] * u[1] + c[2] * u[2])) + u[1] * (c[3] * u[1] + 2.0 * c[4] * u[2]) +
           c[5] * u[2] * u[2];
}

}  // namespace

Length lengthBetween(const LengthEnd& a, const LengthEnd& b, const CalibrationCovariance* covariance) {
    const Vector3& from = a.sensitivity.point;
    const Vector3& to = b.sensitivity.point;
    const Vector3 difference{to[0] - from[0], to[1] - from[1], to[2] - from[2]};
    Length result;
    result.length = std::sqrt(dot(difference, difference));
    const double noise = trace(a.image) + trace(b.image);
    if (!(result.length > kMinDeviations * std::sqrt(noise))) {
        result.status = LengthStatus::tooShort;
        return result;
    }
    result.status = LengthStatus::ok;
    const Vector3 u = unit(difference);
    result.imageVariance = std::max(along(u, a.image) + along(u, b.image), 0.0);
    if (covariance != nullptr) {
        // Both ends move with the same parameters: the gradient is that of their difference.
        std::array<double, kPairParameters> gradient{};
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t k = 0; k < kPairParameters; ++k) {
                gradient[k] += u[i] * (b.sensitivity.byParameters[i][k] - a.sensitivity.byParameters[i][k]);
            }
        }
        result.calibrationVariance = varianceOf(gradient, *covariance);
    }
    return result;
}

}  // namespace zelm::measure
