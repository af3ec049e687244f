// What a plate's design lacks, in words.
#ifndef ZELM_TOOL_PLATE_FINDINGS_H
#define ZELM_TOOL_PLATE_FINDINGS_H

#include <zelmMeasure.h>

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "plateFile.h"

namespace zelm::tool {

// Cameras that a plate is made for, and how far from them it will be held.
struct PlateCameras {
    std::vector<ZelmMeasureCamera> cameras;
    std::vector<std::string> names;  // "the left camera", ...
    double nearest = 0.0;            // plate units
    double farthest = 0.0;           //
};

std::vector<ZelmMeasurePlateFinding> plateFindings(const Plate& plate, const PlateCameras& cameras);

// What is wrong and what to try.
std::string findingText(const ZelmMeasurePlateFinding& finding, const Plate& plate, const PlateCameras& cameras);

nlohmann::ordered_json findingsJson(const std::vector<ZelmMeasurePlateFinding>& findings, const Plate& plate,
                                    const PlateCameras& cameras);

}  // namespace zelm::tool

#endif
