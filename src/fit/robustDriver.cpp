#include "robustDriver.h"

#include <algorithm>
#include <cstddef>

#include "normalizeFitData.h"
#include "robustStatistics.h"
#include "robustWeights.h"
#include "smallBuffer.h"
#include "zelm/fit.h"

namespace zelm {
namespace {

constexpr std::int32_t kMaxDim = 3;
constexpr std::size_t kMaxPointsInPlace = 128;
constexpr std::int32_t kMaxReweightedSolves = 20;

struct Model {
    ZelmFitSolveFn solve;
    ZelmFitResidualFn residual;
    double* parameters;
};

// `weights` are all 1 on entry. Settled ones are not used for another solve: docs/decisions.md#settled-weights.
std::int32_t reweight(const Model& model, std::int32_t n, const double* points, double threshold, double* weights) {
    SmallBuffer<double, kMaxPointsInPlace> residuals(static_cast<size_t>(n));
    if (!residuals.ok()) {
        return ZELM_ERR_MEMORY;
    }
    for (std::int32_t i = 0; i < kMaxReweightedSolves; ++i) {
        model.residual(n, points, model.parameters, residuals.data());
        const std::int32_t settled =
            innerCalcRobustWeights(kBiweights, n, residuals.data(), weights, threshold * kMedianToSigma);
        if (settled < 0) {
            return settled;
        }
        if (settled == 1) {
            break;
        }
        if (const auto s = model.solve(n, weights, points, model.parameters); s < 0) {
            return s;
        }
    }
    return ZELM_OK;
}

}  // namespace

std::int32_t innerFitRobust(std::int32_t dim, std::int32_t minPoints, std::int32_t n, const double* points,
                            std::int32_t robust, double* result, double* centre, double* scale, ZelmFitSolveFn solve,
                            ZelmFitResidualFn residual, double threshold) {
    if (dim < 1 || dim > kMaxDim || minPoints < 0 || n < minPoints || points == nullptr || robust < 0 || robust > 1 ||
        (robust == 1 && !(threshold > 0.0)) || result == nullptr || centre == nullptr || scale == nullptr ||
        solve == nullptr || residual == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const auto count = static_cast<size_t>(n);
    SmallBuffer<double, kMaxDim * kMaxPointsInPlace> normalised(count, static_cast<size_t>(dim));
    SmallBuffer<double, kMaxPointsInPlace> weights(count);
    if (!normalised.ok() || !weights.ok()) {
        return ZELM_ERR_MEMORY;
    }
    innerNormalizeFitData(dim, n, points, normalised.data(), centre, scale);
    std::fill_n(weights.data(), count, 1.0);
    if (const auto s = solve(n, weights.data(), normalised.data(), result); s < 0) {
        return s;
    }
    if (robust == 0 || n == minPoints) {
        return ZELM_OK;
    }
    return reweight({solve, residual, result}, n, normalised.data(), threshold, weights.data());
}

}  // namespace zelm
