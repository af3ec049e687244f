// How well an adjustment's observations determine what was estimated.
#ifndef ZELM_MEASURE_ADJUST_COVARIANCE_H
#define ZELM_MEASURE_ADJUST_COVARIANCE_H

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "adjuster.h"
#include "calibrationCovariance.h"

namespace zelm::measure {

// Places of what all views share.
enum SharedParameter : std::size_t {
    kSharedBase = 0,
    kSharedOther = kSharedBase + kCameraParameters,
    kSharedRelative = kSharedOther + kCameraParameters,  // a small turn and the translation
    kSharedFactors = kSharedRelative + 6,
    kSharedBow = kSharedFactors + 2,
    kSharedParameters = kSharedBow + 3
};

template <std::size_t n>
using SquareMatrix = std::array<double, n * n>;  // row-major

struct AdjustCovariance {
    SquareMatrix<kSharedParameters> shared{};  // zeros for what is held
    std::vector<SquareMatrix<6>> poses;        // a view each: a small turn and the translation; zeros if left out
    CalibrationCovariance rig;
    std::string weakest;     // in words, the parameter that the observations tell least of
    double condition = 0.0;  // least over greatest eigenvalue of the normal equations, scaled to a unit diagonal
};

// The directions in which the shared parameters are free, kSharedParameters numbers each. A direction of the relative
// rotation vector is taken as the turn that it makes. `otherSeen`: the other camera has dots that take part.
std::vector<std::vector<double>> freeOfShared(const AdjustState& state, const AdjustOptions& options, bool otherSeen);

// At an adjusted state. Throws Fault, which names the parameter, where the observations do not determine one.
AdjustCovariance covarianceOf(const AdjustState& state, const std::vector<AdjustView>& views,
                              const AdjustOptions& options, const AdjustSummary& summary);

}  // namespace zelm::measure

#endif
