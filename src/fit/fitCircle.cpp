// Circles by an algebraic fit: x^2 + y^2 = p0 x + p1 y + p2 (Kasa 1976), solved without normal equations.

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "leastSquaresQr.h"
#include "normalizeFitData.h"
#include "robustStatistics.h"
#include "robustWeights.h"
#include "workBuffer.h"
#include "zelm/fit.h"

namespace zelm {
namespace {

constexpr int32_t kMinPoints = 3;
constexpr int32_t kFullRank = 3;
constexpr int32_t kMaxCorrections = 10;

// The rows of a 3 x n basis (x, y, 1) and the right-hand side z of basis^T p = z.
struct CircleSystem {
    explicit CircleSystem(size_t n) : basis(3, n), z(n) {}
    [[nodiscard]] bool ok() const { return basis.ok() && z.ok(); }

    WorkBuffer<double> basis;
    WorkBuffer<double> z;
};

void fill(CircleSystem& system, std::span<const double> points) {
    const size_t n = points.size() / 2;
    for (size_t i = 0; i < n; ++i) {
        const double x = points[2 * i];
        const double y = points[2 * i + 1];
        system.basis[i] = x;
        system.basis[n + i] = y;
        system.basis[2 * n + i] = 1.0;
        system.z[i] = x * x + y * y;
    }
}

// The equations of the points with w > 0, in their order and packed, each multiplied by w; returns their number. So
// the weight enters the cost squared.
size_t weigh(const CircleSystem& system, std::span<const double> weights, std::span<const double> residuals,
             CircleSystem& weighted) {
    const size_t n = weights.size();
    const auto m = static_cast<size_t>(std::count_if(weights.begin(), weights.end(), [](double w) { return w > 0.0; }));
    size_t k = 0;
    for (size_t i = 0; i < n; ++i) {
        const double w = weights[i];
        if (!(w > 0.0)) {
            continue;
        }
        for (size_t row = 0; row < 3; ++row) {
            weighted.basis[row * m + k] = w * system.basis[row * n + i];
        }
        weighted.z[k] = w * residuals[i];
        ++k;
    }
    return m;
}

int32_t reweightCircle(const CircleSystem& system, size_t n, double threshold, double* p) {
    CircleSystem weighted(n);
    WorkBuffer<double> weights(n);
    WorkBuffer<double> residuals(n);
    if (!weighted.ok() || !weights.ok() || !residuals.ok()) {
        return ZELM_ERR_MEMORY;
    }
    std::fill_n(weights.data(), n, 1.0);
    for (int32_t pass = 0; pass < kMaxCorrections; ++pass) {
        for (size_t i = 0; i < n; ++i) {
            residuals[i] = system.z[i] - (p[0] * system.basis[i] + p[1] * system.basis[n + i] + p[2]);
        }
        const int32_t settled = innerCalcRobustWeights(kParabolicWeights, static_cast<int32_t>(n), residuals.data(),
                                                       weights.data(), threshold * kMedianToSigma);
        if (settled < 0) {
            return ZELM_ERR_FIT_DATA;
        }
        if (settled == 1) {
            return ZELM_OK;
        }
        const size_t m = weigh(system, weights.span(), residuals.span(), weighted);
        double delta[3];
        if (innerSolveLeastSquaresQR(static_cast<int32_t>(m), weighted.basis.data(), weighted.z.data(), delta) <
            kFullRank) {
            return ZELM_ERR_FIT_DATA;
        }
        for (size_t j = 0; j < 3; ++j) {
            p[j] += delta[j];
        }
    }
    return ZELM_OK;
}

// Circle in the normalised frame as p.
int32_t circleParameters(std::span<const double> points, bool robust, double threshold, double* p) {
    const size_t n = points.size() / 2;
    CircleSystem system(n);
    if (!system.ok()) {
        return ZELM_ERR_MEMORY;
    }
    fill(system, points);
    const int32_t rank = innerSolveLeastSquaresQR(static_cast<int32_t>(n), system.basis.data(), system.z.data(), p);
    if (rank < 0) {
        return ZELM_ERR_MEMORY;
    }
    if (rank < kFullRank) {
        return ZELM_ERR_PARAM;
    }
    return robust && n > static_cast<size_t>(kMinPoints) ? reweightCircle(system, n, threshold, p) : ZELM_OK;
}

}  // namespace
}  // namespace zelm

int32_t zelmFitCircle(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold, Circle2d* tResult) {
    if (iRobust < 0 || iRobust > 1 || iN < zelm::kMinPoints || taPoints == nullptr || tResult == nullptr ||
        (iRobust == 1 && !(dThreshold > 0.0))) {
        return ZELM_ERR_PARAM;
    }
    zelm::WorkBuffer<double> normalised(static_cast<size_t>(iN), 2);
    if (!normalised.ok()) {
        return ZELM_ERR_MEMORY;
    }
    double t[2];
    double s;
    zelm::innerNormalizeFitData(2, iN, reinterpret_cast<const double*>(taPoints), normalised.data(), t, &s);
    double p[3];
    if (const auto status = zelm::circleParameters(normalised.span(), iRobust == 1, dThreshold, p); status < 0) {
        return status;
    }
    *tResult = {p[0] / 2.0 / s + t[0], p[1] / 2.0 / s + t[1],
                std::sqrt(p[0] * p[0] / 4.0 + p[1] * p[1] / 4.0 + p[2]) / s};
    return ZELM_OK;
}
