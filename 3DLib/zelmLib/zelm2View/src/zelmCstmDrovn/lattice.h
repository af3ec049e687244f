// The integer lattice of a line inside a rectangle.
#ifndef ZELM_LATTICE_H
#define ZELM_LATTICE_H

#include <cstdint>

#include "zelm/base.h"
#include "zelm/misc.h"

namespace zelm {

// Where a line crosses the border of a rectangle of pixel centres, and the nearest pixels.
struct LatticeSpan {
    Point2d from;
    Point2d to;
    Point2i first;
    Point2i last;
};

// Returns ZELM_OK; the failure of the clipping; ZELM_ERR_DEGENERATE for fewer than two crossings and for pixels beyond
// the rasteriser's reach of 2^30.
std::int32_t innerLatticeSpan(const ZelmRect& tRect, const Line2d& tLine, LatticeSpan* tSpan);

}  // namespace zelm

#endif
