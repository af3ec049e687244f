// Parts of a drift from the epipolar distances of pixel pairs.
#ifndef ZELM_MEASURE_DRIFT_FIT_H
#define ZELM_MEASURE_DRIFT_FIT_H

#include <array>
#include <cstddef>
#include <vector>

#include "epipolarModel.h"
#include "sharedErrors.h"

namespace zelm::measure {

// Which parts are estimated; the others are 0.
using DriftMask = std::array<bool, kDriftParts>;

struct DriftFit {
    Drift drift{};
    double squares = 0.0;       // of the distances that remain, weighed by what they share, pixels^2
    double plainSquares = 0.0;  // of the same, each for itself
    Drift cofactors{};          // variances of the parts for distances of variance 1
    bool isDetermined = false;  // not so: the pairs do not tell the parts apart
};

// Least squares over pairs that are all taken for good, and share those errors.
DriftFit fitDrift(const EpipolarModel& model, const std::vector<RayPair>& pairs, const DriftMask& mask,
                  const SharedErrors& shared);

// Tells which pairs agree with some drift.
std::vector<bool> agreeingPairs(const EpipolarModel& model, const std::vector<RayPair>& pairs);

}  // namespace zelm::measure

#endif
