// A picture of depths in colours, with a scale.
#ifndef ZELM_TOOL_DEPTH_PICTURE_H
#define ZELM_TOOL_DEPTH_PICTURE_H

#include <string>
#include <vector>

#include "matchFiles.h"

namespace zelm::tool {

// The left picture, darkened, with a square of `spot` pixels a side in the colour of its depth for each point that is
// ok, and a scale of the colours with its numbers and unit on the right; as PNG. The colours span the bulk of the
// depths (colourRange()); an arrow marks an end that depths lie beyond.
std::string depthPicture(const std::vector<MatchedPoint>& points, const Picture& left, int spot,
                         const std::string& unit);

}  // namespace zelm::tool

#endif
