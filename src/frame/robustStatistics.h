// The median and Tukey's biweight, for the families that weigh residuals.
#ifndef ZELM_ROBUST_STATISTICS_H
#define ZELM_ROBUST_STATISTICS_H

#include <cstdint>

namespace zelm {

// Makes a median absolute residual the standard deviation of normal residuals.
constexpr double kMedianToSigma = 1.4826;

// The middle one of n >= 1 values in ascending order, or the mean of the two middle ones for an even count. Reorders
// the values. Values that are not numbers count as larger than all others.
double innerMedian(std::int32_t n, double* values);

// (1 - (magnitude / cutOff)^2)^2 below the cut-off, else 0 (Beaton and Tukey 1974).
inline double tukeyWeight(double magnitude, double cutOff) {
    if (!(magnitude < cutOff)) {
        return 0.0;
    }
    const double u = magnitude / cutOff;
    const double w = 1.0 - u * u;
    return w * w;
}

}  // namespace zelm

#endif
