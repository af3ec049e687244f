#include "robustWeights.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

#include "workBuffer.h"
#include "zelm/fit.h"

namespace zelm {
namespace {

constexpr double kNoResidual = 1e-12;      // cut-off below which all residuals count as zero, normalised units
constexpr double kNoWeight = 1e-12;        // sum of weights below which every point counts as rejected
constexpr double kSettledFraction = 0.02;  // of the sum of weights, that may still change

// Same value as the middle of the sorted values, or the mean of the two middle ones. Reorders them.
double median(std::span<double> values) {
    const size_t half = values.size() / 2;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(half);
    std::nth_element(values.begin(), middle, values.end());
    if (values.size() % 2 == 1) {
        return *middle;
    }
    return (*std::max_element(values.begin(), middle) + *middle) / 2.0;
}

// Selecting needs an order, which a value that is not a number has not: then false.
bool copyMagnitudes(const double* residuals, std::span<double> magnitudes) {
    bool ordered = true;
    for (size_t i = 0; i < magnitudes.size(); ++i) {
        magnitudes[i] = std::fabs(residuals[i]);
        ordered = ordered && magnitudes[i] >= 0.0;
    }
    return ordered;
}

double newWeight(std::int32_t kind, double magnitude, double k) {
    if (!(magnitude < k)) {
        return 0.0;
    }
    const double u = magnitude / k;
    const double w = 1.0 - u * u;
    return kind == kBiweights ? w * w : std::fabs(w);
}

}  // namespace

std::int32_t innerCalcRobustWeights(std::int32_t kind, std::int32_t n, const double* residuals, double* weights,
                                    double cutoffFactor) {
    if (n < 1) {
        return ZELM_ERR_FIT_DATA;
    }
    const auto count = static_cast<size_t>(n);
    WorkBuffer<double> magnitudes(count);
    if (!magnitudes.ok()) {
        return ZELM_ERR_MEMORY;
    }
    if (!copyMagnitudes(residuals, magnitudes.span())) {
        return ZELM_ERR_FIT_DATA;
    }
    const double k = median(magnitudes.span()) * cutoffFactor;
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
