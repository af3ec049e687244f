// The words for what is wrong with an image of a plate.
#ifndef ZELM_TOOL_TROUBLE_TEXT_H
#define ZELM_TOOL_TROUBLE_TEXT_H

#include <zelmMeasure.h>

#include <string>

#include "plateFile.h"

namespace zelm::tool {

// What is seen, beside what is needed, and what to try.
std::string troubleText(const ZelmMeasureImageDiagnosis& figures, const Plate& plate);

}  // namespace zelm::tool

#endif
