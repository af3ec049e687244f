// Round targets that both pictures of a rig show.
#ifndef ZELM_TOOL_TARGETS_H
#define ZELM_TOOL_TARGETS_H

#include <optional>
#include <string>
#include <vector>

#include "imageFile.h"
#include "pairFile.h"
#include "rigFile.h"
#include "spacePoints.h"

namespace zelm::tool {

// Measures the targets whose dots cover the pixels. Throws Failure, naming `file`, for a rig that cannot triangulate,
// or when memory runs out.
std::vector<SpacePoint> measureTargets(const LoadedRig& rig, const std::string& file, const Picture& left,
                                       const Picture& right, const std::vector<PixelPair>& pairs, bool areBright,
                                       const PointLimits& limits);

}  // namespace zelm::tool

#endif
