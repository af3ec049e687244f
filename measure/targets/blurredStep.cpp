#include "blurredStep.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zelm::measure {
namespace {

constexpr double kLeastSide = 1e-3;  // of the pixel's extent along the normal; less changes nothing

// The normal distribution of deviation s, integrated twice, and the two integrals below it: the second derivative by x.
struct Integrals {
    double twice;
    double once;
    double distribution;
};

Integrals integralsAt(double x, double s) {
    const double z = x / s;
    const double distribution = 0.5 * std::erfc(-z / std::numbers::sqrt2);
    const double density = s * std::exp(-0.5 * z * z) / std::sqrt(2.0 * std::numbers::pi);
    return {0.5 * ((x * x + s * s) * distribution + x * density), x * distribution + density, distribution};
}

}  // namespace

BlurredStep blurredStep(double distance, double blur, double cosine, double sine) {
    // Seen along the edge, a square pixel is a trapezium, the convolution of two boxes: each box is a difference of
    // integrals.
    const double a = std::max(cosine, kLeastSide);
    const double b = std::max(sine, kLeastSide);
    const double outer = 0.5 * (a + b);
    const double inner = 0.5 * (a - b);
    const Integrals i1 = integralsAt(distance + outer, blur);
    const Integrals i2 = integralsAt(distance + inner, blur);
    const Integrals i3 = integralsAt(distance - inner, blur);
    const Integrals i4 = integralsAt(distance - outer, blur);
    const double scale = 1.0 / (a * b);
    return {scale * (i1.twice - i2.twice - i3.twice + i4.twice), scale * (i1.once - i2.once - i3.once + i4.once),
            scale * blur * (i1.distribution - i2.distribution - i3.distribution + i4.distribution)};
}

}  // namespace zelm::measure
