#include "robustStatistics.h"

#include <algorithm>
#include <cmath>

namespace zelm {
namespace {

constexpr double kMinSquaredCutOff = 1e-10;  // normalised units; keeps exact data from rejecting itself

}  // namespace

double innerMedian(std::int32_t n, double* values) {
    // A strict weak order also where some values are not numbers.
    const auto before = [](double a, double b) { return a < b || (std::isnan(b) && !std::isnan(a)); };
    double* const middle = values + n / 2;
    std::nth_element(values, middle, values + n, before);
    return n % 2 == 1 ? *middle : (*std::max_element(values, middle, before) + *middle) / 2.0;
}

double innerSquaredCutOff(std::int32_t n, double* squares, double k) {
    const double scale = kMedianToSigma * k;
    return std::max(kMinSquaredCutOff, scale * scale * innerMedian(n, squares));
}

}  // namespace zelm
