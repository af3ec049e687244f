// What the files of the 2-D primitives share.
#ifndef ZELM_CLP2D_COMMON_H
#define ZELM_CLP2D_COMMON_H

#include <cmath>

#include "zelm/base.h"

namespace zelm {

// Lengths of normals and directions, distances of points and radii below this count as zero (caller's units).
constexpr double kClp2dDegenerate = 1e-14;

inline double normalLength(const Line2d& line) {
    return std::sqrt(line.a * line.a + line.b * line.b);
}

inline double distanceOf(const Point2d& p, const Point2d& q) {
    const double dx = q.x - p.x;
    const double dy = q.y - p.y;
    return std::sqrt(dx * dx + dy * dy);
}

}  // namespace zelm

#endif
