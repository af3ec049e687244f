// What is written of matched points: CSV and PLY.
#ifndef ZELM_TOOL_MATCH_FILES_H
#define ZELM_TOOL_MATCH_FILES_H

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "matchRun.h"

namespace zelm::tool {

// A point as it is written.
struct MatchedPoint {
    std::string id;
    PointMatch match;
    SpacePoint space;        // of a match that is ok
    double depth = 0.0;      // along the left camera's axis
    double deviation = 0.0;  // expected, of the depth
};

// The word that files have for it.
std::string_view statusWord(MatchStatus status);

std::array<std::size_t, kMatchStatuses> countStatuses(const std::vector<MatchedPoint>& points);

// All points, a line each, in their order.
std::string matchCsv(const std::vector<MatchedPoint>& points);

// The points that are ok with the gray value of the left picture, as a binary PLY.
std::string matchPly(const std::vector<MatchedPoint>& points, const Picture& left);

}  // namespace zelm::tool

#endif
