// Pixel pairs on the centres of round targets.
#ifndef ZELM_TOOL_DOT_PAIRS_H
#define ZELM_TOOL_DOT_PAIRS_H

#include <string>
#include <vector>

#include "pairFile.h"
#include "rigFile.h"
#include "spacePoints.h"
#include "subcommands.h"

namespace zelm::tool {

// Options for places inside dots instead of pixels that were measured.
struct DotOptions {
    std::vector<std::string> images;  // left and right, or none
    std::string polarity = "dark";
};
void addDotOptions(Subcommand& sub, DotOptions& options);

// Measures the round targets in whose dots the pixels of the pairs lie, and moves the pixels onto the images of their
// centres. Throws Failure, naming `file`, for a rig that cannot triangulate.
std::vector<SpacePoint> moveToDots(std::vector<PixelPair>& pairs, const DotOptions& options, const LoadedRig& rig,
                                   const std::string& file);

}  // namespace zelm::tool

#endif
