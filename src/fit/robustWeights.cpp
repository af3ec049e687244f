#include "robustWeights.h"

#include <cmath>
#include <cstddef>
#include <span>

#include "robustStatistics.h"
#include "smallBuffer.h"
#include "zelm/fit.h"

namespace zelm {
namespace {

constexpr std::size_t kMaxPointsInPlace = 128;
constexpr double kNoResidual = 1e-12;      // cut-off below which all residuals count as zero, normalised units
constexpr double kNoWeight = 1e-12;        // sum of weights below which every point counts as rejected
constexpr double kSettledFraction = 0.02;  // of the sum of weights, that may still change

// False when a residual is not a number.
bool copyMagnitudes(const double* residuals, std::span<double> magnitudes) {
    bool numbers = true;
    for (size_t i = 0; i < magnitudes.size(); ++i) {
        magnitudes[i] = std::fabs(residuals[i]);
        numbers = numbers && magnitudes[i] >= 0.0;
    }
    return numbers;
}

double newWeight(std::int32_t kind, double magnitude, double k) {
    if (kind == kBiweights) {
        return tukeyWeight(magnitude, k);
    }
    const double u = magnitude / k;
    return magnitude < k ? std::fabs(1.0 - u * u) : 0.0;
}

}  // namespace

std::int32_t innerCalcRobustWeights(std::int32_t kind, std::int32_t n, const double* residuals, double* weights,
                                    double cutoffFactor) {
    if (n < 1) {
        return ZELM_ERR_FIT_DATA;
    }
    const auto count = static_cast<size_t>(n);
    SmallBuffer<double, kMaxPointsInPlace> magnitudes(count);
    if (!magnitudes.ok()) {
        return ZELM_ERR_MEMORY;
    }
    if (!copyMagnitudes(residuals, magnitudes.span())) {
        return ZELM_ERR_FIT_DATA;
    }
    const double k = innerMedian(n, magnitudes.data()) * cutoffFactor;
    if (k < kNoResidual) {
        return 1;
    }
    if (kind != kParabolicWeights && kind != kBiweights) {
        return ZELM_ERR_FIT_DATA;
    }
    double sum = 0.0;
    double change = 0.0;
    for (size_t i = 0; i < count; ++i) {
        const double w = newWeight(kind, std::fabs(residuals[i]), k);
        sum += w;
        change += std::fabs(w - weights[i]);
        weights[i] = w;
    }
    if (sum < kNoWeight) {
        return ZELM_ERR_FIT_DATA;
    }
    return kSettledFraction * sum > change ? 1 : 0;
}

}  // namespace zelm
