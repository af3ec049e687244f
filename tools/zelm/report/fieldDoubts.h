// Whether the field of dots is as large as the plate file says.
#ifndef ZELM_TOOL_FIELD_DOUBTS_H
#define ZELM_TOOL_FIELD_DOUBTS_H

#include <string>
#include <vector>

#include "calibrationSummary.h"

namespace zelm::tool {

// What speaks against the described field, a line for each axis: outermost dots that no image shows; where there are
// none, dots beyond the field that the images show on both sides. `plateFile` is what the plate was read from.
std::vector<Doubt> fieldDoubts(const Calibration& calibration, const std::string& plateFile);

}  // namespace zelm::tool

#endif
