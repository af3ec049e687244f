// What a calibration tells against itself, in lines for the user that name what to try.
#ifndef ZELM_TOOL_CALIBRATION_DOUBTS_H
#define ZELM_TOOL_CALIBRATION_DOUBTS_H

#include <string>
#include <vector>

#include "calibrationSummary.h"

namespace zelm::tool {

// Throws Failure when an adjustment could use both images of fewer than half of the views, or none and the dots are far
// from their epipolar lines: the two sets of images are not of the same plate in the same places. `plateFile` is what
// the plate was read from.
void requireAgreement(const Calibration& calibration, const std::string& plateFile);

// One line each: why nothing was adjusted, views that take no part, what the self-checks found wrong, dots far from
// their projections, outer dots that no image shows, a right camera to the left of the left one.
std::vector<std::string> calibrationDoubts(const Calibration& calibration, const std::string& plateFile);

}  // namespace zelm::tool

#endif
