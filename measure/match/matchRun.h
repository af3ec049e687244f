// Many pixels of a pair of images matched, on several threads.
#ifndef ZELM_MEASURE_MATCH_RUN_H
#define ZELM_MEASURE_MATCH_RUN_H

#include <cstddef>
#include <functional>
#include <vector>

#include "pointMatcher.h"

namespace zelm::measure {

// Told of a stage and how many of its steps are done, first of none; throws to end the work.
using ProgressReport = std::function<void(const char* stage, std::size_t done, std::size_t total)>;

struct MatchInput {
    const Rig& rig;
    const DenseImage& left;
    const DenseImage& right;
    MatchSettings settings;
    int threads = 0;     // 0: as many as the machine runs at a time
    double reach = 0.0;  // pixels from a point to those that may tell of its surface
    ProgressReport report;
};

// Matches the points: each on its own along its whole epipolar line; then those not found where the surfaces of found
// neighbours lead; then leaves out small groups that nothing around agrees with. Results come in the order of the
// points and are the same for any number of threads.
std::vector<PointMatch> matchPoints(const MatchInput& input, const std::vector<Point2d>& points);

// Matches every pixel of the left image: a grid as above, then the pixels between on the surfaces found around them.
// Results come row by row.
std::vector<PointMatch> matchPixels(const MatchInput& input);

}  // namespace zelm::measure

#endif
