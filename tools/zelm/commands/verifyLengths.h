// The measuring library's calls that check known lengths.
#ifndef ZELM_TOOL_VERIFY_LENGTHS_H
#define ZELM_TOOL_VERIFY_LENGTHS_H

#include <string>
#include <vector>

#include "console.h"
#include "lengthFile.h"
#include "lengthReport.h"
#include "pairFile.h"
#include "rigFile.h"
#include "viewDots.h"

namespace zelm::tool {

// Pixels of the same points in both images, 2 a point.
struct PointPixels {
    std::vector<double> left;
    std::vector<double> right;
};

// Lengths between the dots of the views. The images of the dots' centres are appended to `pixels`. Throws Failure when
// no view gives lengths; one that gives none is told as a warning.
LengthCheck checkPlateLengths(const LoadedRig& rig, const Plate& plate, const std::vector<ViewDots>& views,
                              const Console& console, PointPixels& pixels);

// Lengths between points of pixel pairs that the lengths name. Throws Failure, naming the file and line, for ids that
// are not there or whose pair gives no point.
LengthCheck checkNamedLengths(const LoadedRig& rig, const std::string& pairFile, const std::vector<PixelPair>& pairs,
                              const std::string& lengthFile, const std::vector<NamedLength>& lengths);

}  // namespace zelm::tool

#endif
