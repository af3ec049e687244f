// The approximate smallest enclosing circle without an allocation, for searches that need many.
#ifndef ZELM_ENCLOSING_CIRCLE_H
#define ZELM_ENCLOSING_CIRCLE_H

#include <cstddef>

#include "zelm/base.h"

namespace zelm {

// What zelmCgSmallestEnclosingCircle() finds for n >= 1 points. work: room for n points; may be the points themselves,
// which are then reordered.
Circle2d innerSmallestEnclosingCircle(std::size_t n, const Point2d* points, Point2d* work);

}  // namespace zelm

#endif
