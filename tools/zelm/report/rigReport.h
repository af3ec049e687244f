// A calibration in words and as JSON.
#ifndef ZELM_TOOL_RIG_REPORT_H
#define ZELM_TOOL_RIG_REPORT_H

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "rigFile.h"

namespace zelm::tool {

// The intrinsics, the poses and the pair as JSON.
nlohmann::ordered_json rigJson(const Rig& rig);

// The same for people; `units` are those of the plate.
std::string rigText(const Rig& rig, const std::string& units);

// One camera: its parameters and poses.
nlohmann::ordered_json cameraJson(const RigCamera& camera);

const char* modelName(int model);

}  // namespace zelm::tool

#endif
