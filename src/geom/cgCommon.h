// What the files of the computational geometry share.
#ifndef ZELM_CG_COMMON_H
#define ZELM_CG_COMMON_H

#include "zelm/base.h"

namespace zelm {

// Lengths, distances and cross products below this count as zero (caller's units, units squared).
constexpr double kCgTolerance = 1e-13;

inline Point2d difference(const Point2d& to, const Point2d& from) {
    return {to.x - from.x, to.y - from.y};
}
inline double cross(const Point2d& u, const Point2d& v) {
    return u.x * v.y - u.y * v.x;
}
inline double dot(const Point2d& u, const Point2d& v) {
    return u.x * v.x + u.y * v.y;
}

// Positive when a precedes b in the order by polar angle about origin (y-up, nearer first on a ray).
double compareByArgument(const Point2d& origin, const Point2d& a, const Point2d& b);

}  // namespace zelm

#endif
