// The measuring library asked for matches.
#ifndef ZELM_TOOL_MATCH_CALL_H
#define ZELM_TOOL_MATCH_CALL_H

#include <string>
#include <vector>

#include "console.h"
#include "imageFile.h"
#include "matchFiles.h"
#include "pointFile.h"
#include "rigFile.h"

namespace zelm::tool {

struct MatchCall {
    const LoadedRig& rig;
    std::string file;  // of the rig, for messages
    const Picture& left;
    const Picture& right;
    ZelmMeasureMatchOptions search;
    bool dense = false;  // the points are all pixels of the left picture, row by row
};

// The options that hold where the user names none; without limits of depth for no rig.
ZelmMeasureMatchOptions defaultSearch(const ZelmMeasureRig* rig);

// The standard deviation of a gray level by noise, over both pictures.
double noiseOf(const Picture& left, const Picture& right);

// The points as the library takes them.
std::vector<double> pixelsOf(const std::vector<ImagePoint>& points);

// Matches the points, with a bar of progress. Dense results leave out those without texture.
std::vector<MatchedPoint> matchedPoints(const MatchCall& call, const std::vector<ImagePoint>& points,
                                        const Console& console);

}  // namespace zelm::tool

#endif
