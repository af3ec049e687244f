#include "significance.h"

#include <algorithm>
#include <cmath>
#include <limits>

// The incomplete gamma and beta functions by series and continued fractions (Abramowitz and Stegun 1964, 6.5.29, 6.5.31
// and 26.5.8), the fractions by the modified method of Lentz (Thompson and Barnett 1986).
namespace zelm::measure {
namespace {

constexpr int kMaxTerms = 10'000;
constexpr double kTiny = 1e-300;
constexpr double kPrecision = 1e-15;

// Of positive numbers; std::lgamma() keeps their sign in a variable of the process.
double logGamma(double x) {
    int sign = 0;
    return lgamma_r(x, &sign);
}

double awayFromZero(double x) {
    return std::fabs(x) < kTiny ? kTiny : x;
}

// A continued fraction 1 / (b0 + a1 / (b1 + a2 / ...)), given term by term.
class Fraction {
public:
    explicit Fraction(double denominator) : d(1.0 / awayFromZero(denominator)), value(d) {}
    // Takes the next term; whether it changed nothing.
    bool add(double numerator, double denominator) {
        d = 1.0 / awayFromZero(denominator + numerator * d);
        c = awayFromZero(denominator + numerator / c);
        value *= c * d;
        return std::fabs(c * d - 1.0) < kPrecision;
    }
    double result() const { return value; }

private:
    double c = 1.0 / kTiny;
    double d;
    double value;
};

// The regularised upper incomplete gamma function.
double upperGamma(double a, double x) {
    const double front = std::exp(a * std::log(x) - x - logGamma(a));
    if (x < a + 1.0) {
        double term = 1.0 / a;
        double sum = term;
        for (int n = 1; n < kMaxTerms && term > sum * kPrecision; ++n) {
            term *= x / (a + n);
            sum += term;
        }
        return 1.0 - front * sum;
    }
    Fraction fraction(x + 1.0 - a);
    for (int n = 1; n < kMaxTerms; ++n) {
        if (fraction.add(-n * (n - a), x + 2.0 * n + 1.0 - a)) {
            break;
        }
    }
    return front * fraction.result();
}

double betaFraction(double x, double a, double b) {
    Fraction fraction(1.0);
    fraction.add(-(a + b) * x / (a + 1.0), 1.0);
    for (int m = 1; m < kMaxTerms; ++m) {
        const double even = m * (b - m) * x / ((a + 2.0 * m - 1.0) * (a + 2.0 * m));
        const double odd = -(a + m) * (a + b + m) * x / ((a + 2.0 * m) * (a + 2.0 * m + 1.0));
        fraction.add(even, 1.0);
        if (fraction.add(odd, 1.0)) {
            break;
        }
    }
    return fraction.result();
}

// The regularised incomplete beta function; y = 1 - x, given so that small ones keep their digits.
double incompleteBeta(double x, double y, double a, double b) {
    if (x <= 0.0) {
        return 0.0;
    }
    if (y <= 0.0) {
        return 1.0;
    }
    const double front = std::exp(logGamma(a + b) - logGamma(a) - logGamma(b) + a * std::log(x) + b * std::log(y));
    if (x < (a + 1.0) / (a + b + 2.0)) {
        return front * betaFraction(x, a, b) / a;
    }
    return 1.0 - front * betaFraction(y, b, a) / b;
}

}  // namespace

double chiSquareTail(double x, double freedom) {
    if (!(x > 0.0)) {
        return 1.0;
    }
    return std::isinf(x) ? 0.0 : std::clamp(upperGamma(0.5 * freedom, 0.5 * x), 0.0, 1.0);
}

double fisherTail(double x, double above, double below) {
    if (!(x > 0.0)) {
        return 1.0;
    }
    const double sum = below + above * x;
    if (std::isinf(sum)) {
        return 0.0;
    }
    return std::clamp(incompleteBeta(below / sum, above * x / sum, 0.5 * below, 0.5 * above), 0.0, 1.0);
}

double squaresTail(double sumOverVariance, double count, double freedom) {
    return freedom > 0.0 ? fisherTail(sumOverVariance / count, count, freedom) : chiSquareTail(sumOverVariance, count);
}

double squareOfTail(double tail, double freedom) {
    double low = 0.0;
    double high = 1.0;
    while (squaresTail(high, 1.0, freedom) > tail && high < std::numeric_limits<double>::max() / 4.0) {
        high *= 2.0;
    }
    for (int i = 0; i < 200 && high - low > 1e-12 * high; ++i) {
        const double middle = 0.5 * (low + high);
        (squaresTail(middle, 1.0, freedom) > tail ? low : high) = middle;
    }
    return high;
}

}  // namespace zelm::measure
