// Pixel pairs on the centres of dots.
#ifndef ZELM_TOOL_DOT_PAIRS_H
#define ZELM_TOOL_DOT_PAIRS_H

#include <string>
#include <vector>

#include "pairFile.h"
#include "rigFile.h"
#include "subcommands.h"

namespace zelm::tool {

// Options for places inside dots instead of pixels that were measured.
struct DotOptions {
    std::vector<std::string> images;  // left and right, or none
    std::string polarity = "dark";
};
void addDotOptions(Subcommand& sub, DotOptions& options);

// Moves the pixels of the pairs onto the centres of the dots that they lie in; tells where there is none in both
// images. Without images the pixels stay.
std::vector<bool> moveToDots(std::vector<PixelPair>& pairs, const DotOptions& options, const LoadedRig& rig);

}  // namespace zelm::tool

#endif
