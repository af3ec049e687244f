// What rounding may leave between a pixel and the epipolar line of its true counterpart.
#ifndef ZELM_TEST_EPIPOLAR_ROUNDING_H
#define ZELM_TEST_EPIPOLAR_ROUNDING_H

#include <cmath>
#include <limits>

#include "zelm/base.h"

namespace zelmtest {

// Pixels. F is stored with its largest element about 1 and made of rank 2 through a decomposition, which rounds every
// element at epsilon whatever its own size. An element's rounding moves the line at the point by
// epsilon |x| |x'| / |(a, b)|; nine of them, one or two ulp each. `rows`: the 3 x 3 matrix that makes a line of the
// point out of its counterpart `other`.
inline double epipolarRounding(const double* rows, const Point2d& point, const Point2d& other) {
    const double a = rows[0] * other.x + rows[1] * other.y + rows[2];
    const double b = rows[3] * other.x + rows[4] * other.y + rows[5];
    const double sums =
        (std::fabs(point.x) + std::fabs(point.y) + 1.0) * (std::fabs(other.x) + std::fabs(other.y) + 1.0);
    return 16.0 * std::numeric_limits<double>::epsilon() * sums / std::hypot(a, b);
}

}  // namespace zelmtest

#endif
