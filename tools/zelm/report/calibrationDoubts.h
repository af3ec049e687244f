// What a calibration tells against itself, in lines for the user that name what to try.
#ifndef ZELM_TOOL_CALIBRATION_DOUBTS_H
#define ZELM_TOOL_CALIBRATION_DOUBTS_H

#include <string>
#include <vector>

#include "calibrationSummary.h"

namespace zelm::tool {

// What speaks against a calibration, a line each: too few views that agree (fatal), why nothing was adjusted, views
// that take no part, what the self-checks found wrong, dots far from their projections, another field of dots than
// described, left and right exchanged. `plateFile` is what the plate was read from.
std::vector<Doubt> calibrationDoubts(const Calibration& calibration, const std::string& plateFile);

}  // namespace zelm::tool

#endif
