// The measuring library asked whether the images of a set belong together.
#ifndef ZELM_TOOL_PAIRING_CALL_H
#define ZELM_TOOL_PAIRING_CALL_H

#include <optional>

#include "imageSetFaults.h"
#include "pairReading.h"

namespace zelm::tool {

// Nothing for a pair with a parallel camera: its one view tells nothing of the others.
std::optional<ImageSetFindings> examineImages(const PairReading& reading, const Plate& plate);

}  // namespace zelm::tool

#endif
