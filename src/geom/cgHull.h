// The convex hull of a point set.
#ifndef ZELM_CG_HULL_H
#define ZELM_CG_HULL_H

#include <cstddef>

#include "zelm/base.h"

namespace zelm {

// Writes the hull of n >= 1 points and returns the number of its vertices. hull has room for n points and may be the
// points themselves; what follows the vertices is unspecified.
std::size_t innerConvexHull(std::size_t n, const Point2d* points, Point2d* hull);

}  // namespace zelm

#endif
