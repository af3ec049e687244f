// Two calibrations of the same cameras beside each other.
#ifndef ZELM_TOOL_RIG_COMPARISON_H
#define ZELM_TOOL_RIG_COMPARISON_H

#include <string>

#include "console.h"

namespace zelm::tool {

// Whether a file's bytes begin like a calibration, not like the text of a truth.
bool isCalibrationFile(const std::string& bytes);

// `depths`: "nearest,farthest" of the volume; empty: those of the first calibration's plates.
void compareRigs(const std::string& first, const std::string& second, const std::string& depths,
                 const Console& console);

}  // namespace zelm::tool

#endif
