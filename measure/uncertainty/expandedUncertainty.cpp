#include "expandedUncertainty.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zelm::measure {
namespace {

constexpr double kTails = 0.05;                // probability outside the interval, both sides
constexpr double kNormal = 1.959963984540054;  // of the normal distribution
constexpr double kMaxFreedom = 1e7;            // from where on the normal factor is the same to 1e-7

// Hill (1970), algorithm 396: Student's t quantiles of three and more degrees of freedom, to six digits.
double studentQuantile(double n) {
    const double a = 1.0 / (n - 0.5);
    const double b = 48.0 / (a * a);
    double c = ((20700.0 * a / b - 98.0) * a - 16.0) * a + 96.36;
    const double d = ((94.5 / (b + c) - 3.0) / b + 1.0) * std::sqrt(a * std::numbers::pi / 2.0) * n;
    double y = std::pow(d * kTails, 2.0 / n);
    if (y > 0.05 + a) {  // expansion about the normal quantile
        const double x = -kNormal;
        y = x * x;
        if (n < 5.0) {
            c += 0.3 * (n - 4.5) * (x + 0.6);
        }
        c = (((0.05 * d * x - 5.0) * x - 7.0) * x - 2.0) * x + b + c;
        y = (((((0.4 * y + 6.3) * y + 36.0) * y + 94.5) / c - y - 3.0) / b + 1.0) * x;
        y = std::expm1(a * y * y);
    } else {
        y = ((1.0 / (((n + 6.0) / (n * y) - 0.089 * d - 0.822) * (n + 2.0) * 3.0) + 0.5 / (n + 4.0)) * y - 1.0) *
                (n + 1.0) / (n + 2.0) +
            1.0 / y;
    }
    return std::sqrt(n * y);
}

}  // namespace

double coverageFactor(double freedom) {
    if (!(freedom > 0.0) || freedom > kMaxFreedom) {
        return kNormal;
    }
    // Whole degrees of freedom: JCGM 100:2008, G.4.1, note 1.
    const double n = std::max(std::floor(freedom), 1.0);
    if (n < 1.5) {
        return std::tan(0.5 * std::numbers::pi * (1.0 - kTails));
    }
    if (n < 2.5) {
        return std::sqrt(2.0 / (kTails * (2.0 - kTails)) - 2.0);
    }
    return studentQuantile(n);
}

double effectiveFreedom(const EstimatedVariance& a, const EstimatedVariance& b) {
    double sum = 0.0;
    for (const EstimatedVariance* part : {&a, &b}) {
        sum += part->freedom > 0.0 ? part->variance * part->variance / part->freedom : 0.0;
    }
    const double total = a.variance + b.variance;
    return sum > 0.0 ? total * total / sum : 0.0;
}

}  // namespace zelm::measure
