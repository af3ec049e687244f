// Two linear equations by elimination with scaled partial pivoting.
#include "solve2x2.h"

#include <cmath>

namespace zelm {
namespace {

// The larger of two magnitudes; 0 when neither is a number.
double largestMagnitude(double a, double b) {
    const double first = std::fabs(a) > 0.0 ? std::fabs(a) : 0.0;
    return std::fabs(b) > first ? std::fabs(b) : first;
}

}  // namespace

bool innerSolve2x2(const double A[4], const double b[2], double x[2]) {
    const double largest0 = largestMagnitude(A[0], A[1]);
    const double largest1 = largestMagnitude(A[2], A[3]);
    if (largest0 == 0.0 || largest1 == 0.0) {
        return false;
    }
    const double value0 = std::fabs(A[0]) * (1.0 / largest0);
    const double value1 = std::fabs(A[2]) * (1.0 / largest1);
    const bool exchange = std::isnan(value0) ? value1 >= 0.0 : value1 > value0;  // the first of equals
    const double* const p = exchange ? A + 2 : A;
    const double* const q = exchange ? A : A + 2;
    if (p[0] == 0.0) {
        return false;
    }
    const double f = q[0] / p[0];
    const double pivot = q[1] - p[1] * f;
    if (pivot == 0.0 || p[0] * pivot == 0.0) {
        return false;
    }
    const double bp = exchange ? b[1] : b[0];
    const double bq = exchange ? b[0] : b[1];
    x[1] = (bq - f * bp) / pivot;
    x[0] = (bp - p[1] * x[1]) / p[0];
    return true;
}

}  // namespace zelm
