// Two linear equations by elimination with scaled partial pivoting.
#include "solve2x2.h"

#include <algorithm>
#include <cmath>

namespace zelm {
namespace {

// The larger magnitude of a row; 0 when an entry is not finite.
double largestMagnitude(const double row[2]) {
    return std::isfinite(row[0]) && std::isfinite(row[1]) ? std::max(std::fabs(row[0]), std::fabs(row[1])) : 0.0;
}

}  // namespace

bool innerSolve2x2(const double A[4], const double b[2], double x[2]) {
    const double largest0 = largestMagnitude(A);
    const double largest1 = largestMagnitude(A + 2);
    if (largest0 == 0.0 || largest1 == 0.0) {
        return false;
    }
    const double value0 = std::fabs(A[0]) * (1.0 / largest0);
    const double value1 = std::fabs(A[2]) * (1.0 / largest1);
    // The first of equals; 0 times an infinite scale, in a row of subnormal numbers, is no candidate.
    const bool exchange = std::isnan(value0) ? value1 >= 0.0 : value1 > value0;
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
