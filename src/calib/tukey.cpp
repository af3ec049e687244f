// The cut-off of Tukey's biweight.
#include "tukey.h"

#include <algorithm>
#include <cmath>

#include "robustStatistics.h"

namespace zelm {
namespace {

constexpr double kLeastSquaredCutOff = 1e-10;  // normalised units; keeps exact data from rejecting itself

}  // namespace

double innerSquaredCutOff(std::int32_t n, double* squares, double k) {
    const double scale = kMedianToSigma * k;
    return std::max(kLeastSquaredCutOff, scale * scale * innerMedian(n, squares));
}

}  // namespace zelm
