// The marker dots and the frame that they span.
#ifndef ZELM_PATTERN_MARKERS_H
#define ZELM_PATTERN_MARKERS_H

#include <cstdint>
#include <span>

#include "patternDots.h"

namespace zelm {

// The corner marker, and the vectors from it to the marker on the plate's x axis and to the one on its y axis; pixels.
struct MarkerFrame {
    Point2d corner;
    Point2d toX;
    Point2d toY;
};

// Picks the dots of marker size. ZELM_ERR_PATTERN_MARKERS unless there are just as many as the pattern has.
std::int32_t pickMarkers(std::span<const PatternDot> dots, const Zelm2ViewPatternDesc& pattern, DotList* markers);

// Finds the corner among the markers and tells the axes apart: x axis cross y axis is positive in pixels with y
// downwards, so that the plate's z axis points away from the camera. ZELM_ERR_PATTERN_MARKERS if there is no corner or
// the axes differ in length by more than 100 pixels.
//
// Whether an angle is near a right one is judged on the plate, not in the image: the mean foreshortening of all dots'
// outlines is undone first. In the image alone a plate with unequal marker distances, seen at 45 degrees, can show its
// right angle as 72 degrees and another of its angles as 82.
std::int32_t findMarkerFrame(std::span<const PatternDot> markers, std::span<const PatternDot> dots, MarkerFrame* frame);

}  // namespace zelm

#endif
