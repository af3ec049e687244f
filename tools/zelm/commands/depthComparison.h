// How far the depths of matched points are from the true depths of a rendered scene.
#ifndef ZELM_TOOL_DEPTH_COMPARISON_H
#define ZELM_TOOL_DEPTH_COMPARISON_H

#include <filesystem>
#include <nlohmann/json_fwd.hpp>

#include "console.h"
#include "rigFile.h"

namespace zelm::tool {

// Compares the CSV of `zelm match` with the depth map that the truth of a scene names, and tells how many of the
// points that both cameras see were found and how many are within `within` plate units of the truth. Throws Failure for
// a truth without a depth map, a depth map of another size, or a CSV without points.
void compareDepths(const LoadedRig& rig, const nlohmann::json& truth, const std::filesystem::path& truthPath,
                   const std::filesystem::path& pointsPath, double within, const Console& console);

}  // namespace zelm::tool

#endif
