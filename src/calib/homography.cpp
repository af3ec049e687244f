// The homography between two planes: a linear estimate on normalised data (Hartley 1997), then a damped refinement
// (Levenberg 1944, Marquardt 1963).
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "homographyNormalEq.h"
#include "matrix3.h"
#include "settled.h"
#include "workBuffer.h"
#include "zelm/calib.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

using Index = std::ptrdiff_t;

constexpr Index kSize = 9;
constexpr int kMaxSteps = 100;
constexpr double kStartDamping = 0.001;
constexpr double kRoundingCost = 1e-28;  // squared: 1e-14 of a normalised coordinate, some 45 units of rounding
constexpr double kUndetermined = 1e-14;  // second least eigenvalue over the greatest: rounding of the 9 x 9 sums
constexpr double kMinDivisor = 1e-9;     // of H22

// The two point sets, normalised, and the transforms T1 of the source and the inverse of T2 of the destination.
struct NormalisedPairs {
    WorkBuffer<Point2d> src;
    WorkBuffer<Point2d> dst;
    double T1[kSize];
    double T2inv[kSize];

    explicit NormalisedPairs(std::int32_t n) : src(static_cast<std::size_t>(n)), dst(static_cast<std::size_t>(n)) {}
    [[nodiscard]] bool ok() const { return src.ok() && dst.ok(); }
    [[nodiscard]] std::int32_t count() const { return static_cast<std::int32_t>(src.size()); }

    void fill(const Point2d* source, const Point2d* destination) {
        zelmCalibNormalizeData(2, count(), &source->x, &src.data()->x, T1, nullptr);
        zelmCalibNormalizeData(2, count(), &destination->x, &dst.data()->x, nullptr, T2inv);
    }
};

void fillDesignMatrix(const NormalisedPairs& pairs, double* row) {
    for (std::size_t i = 0; i < pairs.src.size(); ++i) {
        const auto [x, y] = pairs.src[i];
        const auto [u, v] = pairs.dst[i];
        const double rows[2 * kSize] = {x,   y,   1.0, 0.0, 0.0, 0.0, -u * x, -u * y, -u,  //
                                        0.0, 0.0, 0.0, x,   y,   1.0, -v * x, -v * y, -v};
        row = std::copy_n(rows, 2 * kSize, row);
    }
}

// The unit vector h that makes |A h| least. Data that leave more than one such direction (all source points on a line,
// say) are refused: every member of the family may map the given pairs exactly, and none is the answer.
std::int32_t linearEstimate(const NormalisedPairs& pairs, double* designMatrix, double* h) {
    fillDesignMatrix(pairs, designMatrix);
    double AtA[kSize * kSize];
    double values[kSize];
    double vectors[kSize * kSize];
    zelmMatMulTransposed(1, 2 * pairs.count(), kSize, designMatrix, AtA);
    if (const std::int32_t status = zelmMatJacobiEigen(kSize, AtA, values, vectors); status < 0) {
        return status;
    }
    if (!(values[kSize - 2] > kUndetermined * values[0])) {
        return ZELM_ERR_CALIB_NOT_CONVERGED;
    }
    std::copy_n(vectors + (kSize - 1) * kSize, kSize, h);
    return ZELM_OK;
}

struct NormalEquations {
    double N[kSize * kSize];
    double g[kSize];
    double cost;

    std::int32_t evaluate(const NormalisedPairs& pairs, const double* h, double robustK) {
        return innerCalcHomographyNormalEq(pairs.count(), pairs.src.data(), pairs.dst.data(), h, &cost, N, g, robustK);
    }
    std::int32_t dampedStep(double lambda, double* delta) const {
        double damped[kSize * kSize];
        std::copy_n(N, kSize * kSize, damped);
        for (Index i = 0; i < kSize; ++i) {
            damped[i * kSize + i] *= 1.0 + lambda;
        }
        return zelmMatSolveLU(kSize, damped, g, delta);
    }
};

// Refines h; returns the count of steps plus one, or ZELM_ERR_CALIB_NOT_CONVERGED.
std::int32_t refine(const NormalisedPairs& pairs, double robustK, double* h) {
    NormalEquations present;
    if (present.evaluate(pairs, h, robustK) < 0) {
        return ZELM_ERR_CALIB_NOT_CONVERGED;
    }
    double lambda = kStartDamping;
    std::int32_t counter = 1;
    while (counter <= kMaxSteps) {
        // N and g are of the order of the cost: at rounding level they hold noise or nothing, and no step can gain.
        if (present.cost <= kRoundingCost) {
            return std::max(counter, 2);
        }
        double delta[kSize];
        if (present.dampedStep(lambda, delta) < 0) {
            return ZELM_ERR_CALIB_NOT_CONVERGED;
        }
        double moved[kSize];
        std::transform(h, h + kSize, delta, moved, [](double value, double step) { return value + step; });
        NormalEquations next;
        if (next.evaluate(pairs, moved, robustK) < 0) {
            return ZELM_ERR_CALIB_NOT_CONVERGED;
        }
        const bool settled = costSettled(present.cost, next.cost) || parametersSettled(kSize, h, moved);
        if (next.cost < present.cost) {
            lambda *= 0.1;
            present = next;
            std::copy_n(moved, kSize, h);
        } else {
            lambda *= 10.0;
        }
        ++counter;
        if (settled) {
            return counter;
        }
    }
    return ZELM_ERR_CALIB_NOT_CONVERGED;
}

void writeDenormalised(const NormalisedPairs& pairs, const double* h, double* H) {
    double partial[kSize];
    double result[kSize];
    multiply3(pairs.T2inv, h, partial);
    multiply3(partial, pairs.T1, result);
    const double divisor = std::fabs(result[8]) > kMinDivisor ? result[8] : 1.0;
    std::transform(result, result + kSize, H, [divisor](double entry) { return entry / divisor; });
}

}  // namespace
}  // namespace zelm

int32_t zelmCalibCalcHomography(int32_t iN, const Point2d* taSrc, const Point2d* taDst, double dRobustK, double* daH) {
    if (iN < 4 || taSrc == nullptr || taDst == nullptr || daH == nullptr) {
        return ZELM_ERR_PARAM;
    }
    if (iN > INT32_MAX / 2) {
        return ZELM_ERR_MEMORY;  // the 2n rows of the design matrix cannot be counted
    }
    zelm::NormalisedPairs pairs(iN);
    zelm::WorkBuffer<double> designMatrix(2 * static_cast<std::size_t>(iN), zelm::kSize);
    if (!pairs.ok() || !designMatrix.ok()) {
        return ZELM_ERR_MEMORY;
    }
    pairs.fill(taSrc, taDst);
    double h[zelm::kSize];
    if (const int32_t status = zelm::linearEstimate(pairs, designMatrix.data(), h); status < 0) {
        return status;
    }
    const int32_t counter = zelm::refine(pairs, dRobustK, h);
    if (counter >= 0) {
        zelm::writeDenormalised(pairs, h, daH);
    }
    return counter;
}
