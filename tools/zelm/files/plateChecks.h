// Whether the lengths of a plate's description can be those of one plate.
#ifndef ZELM_TOOL_PLATE_CHECKS_H
#define ZELM_TOOL_PLATE_CHECKS_H

#include <zelmLib.h>

#include <string>

namespace zelm::tool {

// Throws Failure, naming file and field, for lengths that contradict each other: dots that overlap, markers off the
// grid or outside the field, a field that is no whole number of pitches. `isTruth`: the fields have the names of
// rendered views' truth, d0 to d7. All lengths are greater than 0.
void checkPlateSizes(const std::string& file, const Zelm2ViewPatternDesc& pattern, bool isTruth = false);

}  // namespace zelm::tool

#endif
