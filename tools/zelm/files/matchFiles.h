// What is written of matched points: CSV and PLY.
#ifndef ZELM_TOOL_MATCH_FILES_H
#define ZELM_TOOL_MATCH_FILES_H

#include <zelmMeasure.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "imageFile.h"

namespace zelm::tool {

// What became of a point, in the measuring library's words.
enum class MatchStatus : std::int32_t {
    ok = ZELM_MEASURE_MATCH_OK,
    outside = ZELM_MEASURE_MATCH_OUTSIDE,
    noTexture = ZELM_MEASURE_MATCH_NO_TEXTURE,
    noMatch = ZELM_MEASURE_MATCH_NO_MATCH,
    ambiguous = ZELM_MEASURE_MATCH_AMBIGUOUS,
    inconsistent = ZELM_MEASURE_MATCH_INCONSISTENT,
};
constexpr std::size_t kMatchStatuses = 6;

// A point as it is written; one that is not ok has its left pixel alone.
struct MatchedPoint {
    std::string id;
    MatchStatus status = MatchStatus::outside;
    Point2d left{};          // raw pixel, as given
    Point2d right{};         // raw pixel found
    double score = 0.0;      // of the correlation
    Point3d position{};      // world frame
    double depth = 0.0;      // along the left camera's axis
    double deviation = 0.0;  // expected, of the depth
    double errorLeft = 0.0;  // pixels between the pixel and the raw projection of the point
    double errorRight = 0.0;
    std::optional<double> calibrationDeviation;  // of the depth; none where the rig's covariance is not known
};

// The word that files have for it.
std::string_view statusWord(MatchStatus status);

std::array<std::size_t, kMatchStatuses> countStatuses(const std::vector<MatchedPoint>& points);

// The gray level of the pixel next to a place in a picture.
int grayAt(const Picture& picture, Point2d place);

// All points, a line each, in their order; with what the calibration adds to their depths when it is known.
std::string matchCsv(const std::vector<MatchedPoint>& points, bool withCalibration);

// The points that are ok with the gray level of the left picture, as a binary PLY; with what the calibration adds to
// their depths, when it is known: -1 where it is not.
std::string matchPly(const std::vector<MatchedPoint>& points, const Picture& left, bool withCalibration, bool isText,
                     const std::string& units);

}  // namespace zelm::tool

#endif
