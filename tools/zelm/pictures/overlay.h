// Pictures with the dots, the grid axes and the markers drawn into them.
#ifndef ZELM_TOOL_OVERLAY_H
#define ZELM_TOOL_OVERLAY_H

#include <string>
#include <vector>

#include "dots.h"

namespace zelm::tool {

// A PNG of the picture, scaled so that it is at most `largestSide` pixels wide and high (0: as large as it is), with a
// cross in a ring on each dot, rings around the markers and the axes of the grid.
std::string drawOverlay(const Picture& picture, const Plate& plate, const std::vector<Dot>& dots, int largestSide = 0);

}  // namespace zelm::tool

#endif
