// A plate's sheet as files: to print, to draw further, to expose.
#ifndef ZELM_TOOL_PLATE_DRAWINGS_H
#define ZELM_TOOL_PLATE_DRAWINGS_H

#include <string>

#include "plateSheet.h"

namespace zelm::tool {

// One page of the sheet's size.
std::string platePdf(const PlateSheet& sheet);

// In millimetres, every dot a circle.
std::string plateSvg(const PlateSheet& sheet);

// Gray, smooth at the edges, with its resolution in it. Throws Failure for a sheet of too many pixels.
std::string platePng(const PlateSheet& sheet, int dotsPerInch);

// AutoCAD's release 12, ASCII, in millimetres, y upwards: the corner marker's centre is (0, 0). Dots are circles on the
// layers DOTS and MARKERS; the outline of a printed ground is on GROUND, all else on RULER, TEXT and CUT.
std::string plateDxf(const PlateSheet& sheet);

}  // namespace zelm::tool

#endif
