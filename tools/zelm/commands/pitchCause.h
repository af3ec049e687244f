// Whether images that cannot be calibrated show another ratio of the pitches than the plate's file states.
#ifndef ZELM_TOOL_PITCH_CAUSE_H
#define ZELM_TOOL_PITCH_CAUSE_H

#include <string>

#include "plateFile.h"

namespace zelm::tool {

// In words, what the pitches would have to be; empty unless the images tell that it is the ratio of the pitches.
// `calib` holds the dots that were read.
std::string pitchCause(const Zelm2ViewCalib* calib, const Plate& plate);

}  // namespace zelm::tool

#endif
