// Wrapping and comparing angles.
#include <cmath>
#include <numbers>

#include "zelm/math.h"

namespace {

constexpr double kPi = std::numbers::pi;

// Periods that are taken off one at a time. Beyond, whole periods come off first in one exact step, so that the loops
// end after few steps for every finite angle.
constexpr double kMaxPeriods = 65536.0;

enum class Ends { kOpenBelow, kBothClosed };  // (-h, h] or [-h, h]

// Adds periods of 2h while the angle is too low, then subtracts them while it is too high; NaN for infinite angles.
double wrap(double h, double angle, Ends ends) {
    const double period = 2.0 * h;
    if (!(std::fabs(angle) <= kMaxPeriods * period)) {
        angle = std::fmod(angle, period);
    }
    while (ends == Ends::kOpenBelow ? angle <= -h : angle < -h) {
        angle += period;
    }
    while (angle > h) {
        angle -= period;
    }
    return angle;
}

double halfWidth(int32_t iFull, int32_t iDegrees) {
    const double full = iDegrees != 0 ? 180.0 : kPi;
    return iFull != 0 ? full : full / 2.0;
}

}  // namespace

double zelmMathAddAngle(int32_t iFull, int32_t iDegrees, double dA, double dB) {
    const double h = halfWidth(iFull, iDegrees);
    // Only the first operand leaves -h itself: docs/decisions.md#add-angle-end.
    const double a = wrap(h, dA, Ends::kOpenBelow);
    const double b = wrap(h, dB, Ends::kBothClosed);
    return wrap(h, a + b, Ends::kBothClosed);
}

double zelmMathPrimeAngle(int32_t iFull, int32_t iDegrees, double dA) {
    return wrap(halfWidth(iFull, iDegrees), dA, Ends::kOpenBelow);
}

int32_t zelmMathCheckAngle(double dA, double dB, double dTolerance) {
    const double a = wrap(kPi, dA, Ends::kOpenBelow);
    const double b = wrap(kPi, dB, Ends::kOpenBelow);
    double difference = std::fabs(b - a);
    if (difference > kPi) {
        difference = 2.0 * kPi - difference;
    }
    return dTolerance >= difference ? 1 : 0;
}
