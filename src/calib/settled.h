// When a damped refinement (Levenberg 1944, Marquardt 1963) is done.
#ifndef ZELM_SETTLED_H
#define ZELM_SETTLED_H

#include <cmath>
#include <cstddef>

namespace zelm {

constexpr double kCostChange = 1e-8;      // relative
constexpr double kRelativeChange = 1e-4;  // of a parameter
constexpr double kAbsoluteChange = 1e-6;  // of a parameter, normalised units

inline bool costSettled(double before, double after) {
    return std::fabs(before - after) <= kCostChange * before;
}

// The relative test takes the signed old value: docs/decisions.md#signed-relative.
inline bool parametersSettled(std::size_t n, const double* before, const double* after) {
    for (std::size_t i = 0; i < n; ++i) {
        const double change = std::fabs(before[i] - after[i]);
        if (!(change <= before[i] * kRelativeChange || change <= kAbsoluteChange)) {
            return false;
        }
    }
    return true;
}

}  // namespace zelm

#endif
