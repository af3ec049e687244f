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

// Tukey's biweight (Beaton and Tukey 1974) of u^2, the squared share of the cut-off: (1 - u^2)^2 below 1.
inline double tukeyWeightOfShare(double u2) {
    const double w = 1.0 - u2;
    return w * w;
}

// The biweight of a magnitude; 0 from the cut-off on.
inline double tukeyWeight(double magnitude, double cutOff) {
    if (!(magnitude < cutOff)) {
        return 0.0;
    }
    const double u = magnitude / cutOff;
    return tukeyWeightOfShare(u * u);
}

// The same of squares, where those are what there is.
inline double tukeyWeightOfSquare(double square, double squaredCutOff) {
    return square < squaredCutOff ? tukeyWeightOfShare(square / squaredCutOff) : 0.0;
}

// The squared cut-off for n squared distances in normalised units: (k * 1.4826)^2 times their median, at least 1e-10.
// Reorders them.
double innerSquaredCutOff(std::int32_t n, double* squares, double k);

}  // namespace zelm

#endif
