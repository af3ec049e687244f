// How far the plate is tilted in the views of a set.
#ifndef ZELM_TOOL_PLATE_TILTS_H
#define ZELM_TOOL_PLATE_TILTS_H

#include <string>

#include "imageSetFaults.h"

namespace zelm::tool {

// The tilts of the plate in both images of every view, for a message: "left 3, 5, 4, right 2, 6, 4 degrees".
std::string tiltList(const ImageSetFindings& findings);
// The largest of them, degrees; 0 where none is known.
double maxTilt(const ImageSetFindings& findings);

}  // namespace zelm::tool

#endif
