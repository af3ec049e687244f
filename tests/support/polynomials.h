// Polynomials made from their roots, and how well a number is a root of one. Coefficients run from the highest power
// down.
#ifndef ZELM_TEST_POLYNOMIALS_H
#define ZELM_TEST_POLYNOMIALS_H

#include <cmath>
#include <cstddef>
#include <vector>

namespace zelmtest {

// The pair re +- i im.
struct ComplexPair {
    double re;
    double im;
};

// a times the product of (x - root) over all roots, multiplied out in extended precision.
inline std::vector<double> polynomialOf(double a, const std::vector<double>& roots,
                                        const std::vector<ComplexPair>& pairs = {}) {
    std::vector<long double> c = {a};
    const auto times = [&c](const std::vector<long double>& factor) {
        std::vector<long double> product(c.size() + factor.size() - 1);
        for (std::size_t i = 0; i < c.size(); ++i) {
            for (std::size_t j = 0; j < factor.size(); ++j) {
                product[i + j] += c[i] * factor[j];
            }
        }
        c = product;
    };
    for (const double root : roots) {
        times({1.0L, -static_cast<long double>(root)});
    }
    for (const ComplexPair& pair : pairs) {
        const long double re = pair.re;
        const long double im = pair.im;
        times({1.0L, -2.0L * re, re * re + im * im});
    }
    return {c.begin(), c.end()};
}

// max |c_k / c_0|^(1/k): at least half the size of the largest root, real or complex, and at most the degree times it.
inline long double rootScale(const std::vector<double>& c) {
    long double scale = 0.0L;
    for (std::size_t k = 1; k < c.size(); ++k) {
        const long double ratio = std::fabs(static_cast<long double>(c[k]) / c[0]);
        scale = std::fmax(scale, std::pow(ratio, 1.0L / static_cast<long double>(k)));
    }
    return scale;
}

// |value at x| / (|c_0| * rootScale^degree): the backward error relative to the size that all terms have near the
// largest root. NaN if x is.
inline double scaledResidual(const std::vector<double>& c, double x) {
    const long double scale = rootScale(c);
    long double value = 0.0L;
    for (const double coefficient : c) {
        value = value * x + coefficient;
    }
    const long double size = std::pow(scale, static_cast<long double>(c.size() - 1));
    return static_cast<double>(std::fabs(value / c[0] / size));
}

}  // namespace zelmtest

#endif
