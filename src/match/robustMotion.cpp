#include "robustMotion.h"

#include <algorithm>
#include <cmath>

#include "closedFormMotion.h"
#include "robustStatistics.h"
#include "workBuffer.h"

namespace zelm {
namespace {

constexpr int kMaxPasses = 20;
constexpr double kNoResidual = 1e-13;      // cut-off below which all residuals count as zero, caller's units
constexpr double kNoWeight = 1e-13;        // sum of weights below which every point counts as rejected
constexpr double kSettledFraction = 0.02;  // of the sum of weights, that may still change

void measureResiduals(const PointPairs& pairs, const Motion& motion, double* residuals) {
    const MotionOfPoints move(motion);
    for (std::size_t i = 0; i < pairs.n; ++i) {
        const Point2d d = deviation(pairs, move, i);
        residuals[i] = std::sqrt(d.x * d.x + d.y * d.y);
    }
}

struct WeightSums {
    double sum;
    double change;  // from the weights before
};

WeightSums reweigh(std::size_t n, const double* residuals, double cutOff, double* weights) {
    WeightSums sums{0.0, 0.0};
    for (std::size_t i = 0; i < n; ++i) {
        const double w = tukeyWeight(residuals[i], cutOff);
        sums.sum += w;
        sums.change += std::fabs(w - weights[i]);
        weights[i] = w;
    }
    return sums;
}

}  // namespace

std::int32_t robustMotion(const PointPairs& pairs, bool withScale, double threshold, Motion* motion) {
    const std::size_t n = pairs.n;
    WorkBuffer<double> weights(n);
    WorkBuffer<double> residuals(n);
    WorkBuffer<double> sorted(n);
    if (!weights.ok() || !residuals.ok() || !sorted.ok()) {
        return ZELM_ERR_MEMORY;
    }
    std::fill_n(weights.data(), n, 1.0);
    for (int pass = 0; pass < kMaxPasses; ++pass) {
        measureResiduals(pairs, *motion, residuals.data());
        std::copy_n(residuals.data(), n, sorted.data());
        const double cutOff = innerMedian(static_cast<std::int32_t>(n), sorted.data()) * (threshold * kMedianToSigma);
        if (cutOff < kNoResidual) {
            return ZELM_MATCH_EXACT;
        }
        const WeightSums weight = reweigh(n, residuals.data(), cutOff, weights.data());
        if (weight.sum < kNoWeight) {
            return ZELM_ERR_DEGENERATE;
        }
        if (weight.change < kSettledFraction * weight.sum) {
            return ZELM_OK;  // docs/decisions.md#settled-weights
        }
        *motion = weightedMotion(pairs, weights.data(), withScale);
    }
    return ZELM_OK;
}

}  // namespace zelm
