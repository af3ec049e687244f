// Lines with the segment of them that an image shows.
#ifndef ZELM_EPIPOLAR_SEGMENT_H
#define ZELM_EPIPOLAR_SEGMENT_H

#include <cstdint>

#include "calibratedCamera.h"
#include "zelm/twoViewGeometry.h"

namespace zelm {

void clearEndPoints(Zelm2ViewEpiLine* line);

// No guard: the epipole has no line, its coefficients come out not finite.
void setNormalised(const double l[3], Zelm2ViewEpiLine* line);

// Clips the line to an image of the given size inset by one pixel on every side; a line that misses keeps its end
// points. Returns ZELM_OK or the clipping's failure.
std::int32_t setEndPoints(const ImageSize& size, Zelm2ViewEpiLine* line);

}  // namespace zelm

#endif
