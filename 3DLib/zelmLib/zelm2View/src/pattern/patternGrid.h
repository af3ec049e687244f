// The place of each dot in the pattern's grid.
#ifndef ZELM_PATTERN_GRID_H
#define ZELM_PATTERN_GRID_H

#include <cstdint>
#include <span>

#include "patternDots.h"
#include "patternMarkers.h"

namespace zelm {

// Estimates the homography G from the image to grid indices, index = G * (image - corner): the corner marker has index
// (0, 0), the x marker lies towards (1, 0) and the y marker towards (0, 1). It is fitted to the dots that are no
// farther from the corner than the markers and whose index the frame of the markers tells.
//
// That frame is affine. Under strong perspective it can take a far dot for its neighbour and spoil the homography,
// which then leaves dots without a place. In that case the homography is fitted anew, to the markers and the corner's
// next neighbours first, which are safe, and with it to all dots around; it is taken if it places more dots.
//
// ZELM_ERR_PATTERN_GRID if the frame or the homography is singular or has too few dots.
std::int32_t estimateGridMap(std::span<const PatternDot> dots, const MarkerFrame& frame,
                             const Zelm2ViewPatternDesc& pattern, double* G);

// Writes plane and image points of the dots that lie on the grid into the entry, whose arrays have room for all of
// them, and their count.
void assignGrid(std::span<const PatternDot> dots, const Point2d& corner, const Zelm2ViewPatternDesc& pattern,
                const double* G, Zelm2ViewPtnEntry* entry);

}  // namespace zelm

#endif
