// Real roots of polynomials of degree 2, 3 and 4 in closed form.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "mathDegenerate.h"
#include "zelm/mathRoots.h"

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kThird = 0.3333333333333333;

// A cubic x^3 + p x^2 + ... whose three roots are real (Viete 1615).
void threeRealRoots(double p, double q, double r, double qCubed, double* roots) {
    if (!(qCubed > 0.0)) {
        // All three coincide, or differ by less than the smallest number: no angle tells them apart.
        std::fill_n(roots, 3, -p / 3.0);
        return;
    }
    const double phi = std::acos(std::clamp(r / std::sqrt(qCubed), -1.0, 1.0));
    for (int k = 0; k < 3; ++k) {
        roots[k] = -2.0 * std::sqrt(q) * std::cos((phi + 2.0 * kPi * k) / 3.0) - p / 3.0;
    }
}

// The only real root of such a cubic (Cardano 1545).
double onlyRealRoot(double p, double q, double r, double qCubed) {
    const double a = std::pow(std::fabs(r) + std::sqrt(r * r - qCubed), kThird);
    const double sign = r >= 0.0 ? -1.0 : 1.0;
    return sign * (a + q / a) - p / 3.0;
}

// The largest root of the cubic resolvent of y^4 + p y^2 + q y + r.
double largestRootOfResolvent(double p, double q, double r) {
    if (q == 0.0) {
        // The resolvent is (z - p) (z^2 - 4 r). The cubic's formulas would find p only up to rounding, and rounding
        // would then decide whether the quartic has roots, and which.
        return r < 0.0 ? p : std::max(p, 2.0 * std::sqrt(r));
    }
    const double resolvent[4] = {1.0, -p, -4.0 * r, 4.0 * p * r - q * q};
    double roots[3];
    return zelmMathCubicRoots(resolvent, roots) == 1 ? roots[0] : std::max({roots[0], roots[1], roots[2]});
}

}  // namespace

int32_t zelmMathQuadraticRoots(const double* daCoef, double* daRoots) {
    const double a = daCoef[0];
    const double b = daCoef[1];
    const double c = daCoef[2];
    if (!(a < 0.0 || a > 0.0)) {
        if (b == 0.0) {
            return 0;
        }
        daRoots[0] = -c / b;
        return 1;
    }
    if (c == 0.0) {
        daRoots[0] = 0.0;
        if (b == 0.0) {
            return 1;
        }
        daRoots[1] = -b / a;
        return 2;
    }
    const double discriminant = b * b - 4.0 * a * c;
    if (discriminant > 0.0) {
        const double q = -0.5 * (b + (b < 0.0 ? -1.0 : 1.0) * std::sqrt(discriminant));
        daRoots[0] = q / a;
        daRoots[1] = c / q;
        return 2;
    }
    if (discriminant == 0.0) {
        daRoots[0] = -0.5 * b / a;
        return 1;
    }
    return 0;
}

int32_t zelmMathCubicRoots(const double* daCoef, double* daRoots) {
    if (!zelm::isDivisor(std::fabs(daCoef[0]))) {
        return 0;
    }
    const double p = daCoef[1] / daCoef[0];
    const double q = daCoef[2] / daCoef[0];
    const double r = daCoef[3] / daCoef[0];
    const double bigQ = (p * p - 3.0 * q) / 9.0;
    const double bigR = (2.0 * p * p * p - 9.0 * p * q + 27.0 * r) / 54.0;
    const double bigQCubed = std::pow(bigQ, 3.0);
    if (bigR * bigR - bigQCubed <= 0.0) {
        threeRealRoots(p, bigQ, bigR, bigQCubed, daRoots);
        return 3;
    }
    daRoots[0] = onlyRealRoot(p, bigQ, bigR, bigQCubed);
    daRoots[1] = 0.0;
    daRoots[2] = 0.0;
    return 1;
}

int32_t zelmMathQuarticRoots(const double* daCoef, double* daRoots) {
    if (!zelm::isDivisor(std::fabs(daCoef[0]))) {
        return 0;
    }
    const double b = daCoef[1] / daCoef[0];
    const double c = daCoef[2] / daCoef[0];
    const double d = daCoef[3] / daCoef[0];
    const double e = daCoef[4] / daCoef[0];
    // With y = x + b/4: y^4 + p y^2 + q y + r.
    const double p = c - 3.0 * b * b / 8.0;
    const double q = d - b * c / 2.0 + b * b * b / 8.0;
    const double r = e - b * d / 4.0 + b * b * c / 16.0 - 3.0 * b * b * b * b / 256.0;
    const double z = largestRootOfResolvent(p, q, r);
    if (!(z > p)) {
        return 0;
    }
    // The factors y^2 - s y + (z/2 + t) and y^2 + s y + (z/2 - t).
    const double s = std::sqrt(z - p);
    const double t = q * s / (2.0 * (z - p));
    const double first[3] = {1.0, -s, z / 2.0 + t};
    const double second[3] = {1.0, s, z / 2.0 - t};
    double roots[4];
    int32_t count = zelmMathQuadraticRoots(first, roots);
    count += zelmMathQuadraticRoots(second, roots + count);
    for (int32_t i = 0; i < count; ++i) {
        daRoots[i] = roots[i] - b / 4.0;
    }
    return count;
}
