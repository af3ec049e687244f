#include "lensReach.h"

#include <cmath>
#include <limits>

namespace zelm::measure {

// The least positive root s = r^2 of the slope 1 + 3 k1 s + 5 k2 s^2, in the form that does not cancel.
double foldOf(const CameraParameters& p) {
    constexpr double kNever = std::numeric_limits<double>::infinity();
    const double a = 5.0 * p[kK2];
    const double b = 3.0 * p[kK1];
    const double discriminant = b * b - 4.0 * a;
    if (discriminant < 0.0) {
        return kNever;
    }
    const double root = std::sqrt(discriminant);
    const double near = b <= 0.0 ? 2.0 / (-b + root) : -2.0 / (b + root);  // the root of least magnitude
    const double far = a == 0.0 ? kNever : 1.0 / (a * near);               // their product is 1 / a
    if (near > 0.0) {
        return far > 0.0 ? std::fmin(near, far) : near;
    }
    return far > 0.0 ? far : kNever;
}

}  // namespace zelm::measure
