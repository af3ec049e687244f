// How far triangulated points of a rendered scene are from their truth.
#ifndef ZELM_TOOL_SCENE_COMPARISON_H
#define ZELM_TOOL_SCENE_COMPARISON_H

#include <filesystem>
#include <nlohmann/json.hpp>

#include "console.h"
#include "rigFile.h"

namespace zelm::tool {

// Whether the truth is that of a scene (marked points) rather than of views of a plate.
bool isSceneTruth(const nlohmann::json& truth);

// Triangulates the points of a scene from their true pixels, and its dot targets also from the centres that are
// measured in the scene's images beside the truth file, and shows the distances from the true positions and what the
// calibration, the bias of dot centres and the image noise contribute. Throws Failure for a truth that lacks something.
void compareScene(const LoadedRig& rig, const std::filesystem::path& rigPath, const nlohmann::json& truth,
                  const std::filesystem::path& truthPath, const Console& console);

}  // namespace zelm::tool

#endif
