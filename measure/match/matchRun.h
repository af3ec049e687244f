// Many pixels of a pair of images matched, on several threads.
#ifndef ZELM_MEASURE_MATCH_RUN_H
#define ZELM_MEASURE_MATCH_RUN_H

#include <string>
#include <vector>

#include "console.h"
#include "pointMatcher.h"
#include "spacePoints.h"

namespace zelm::tool {

struct MatchInput {
    const LoadedRig& rig;
    const Picture& left;
    const Picture& right;
    MatchSettings settings;
    int jobs = 0;        // threads; 0: as many as the machine runs at a time
    double reach = 0.0;  // pixels from a point to those that may tell of its surface
};

// Matches the points: each on its own along its whole epipolar line; then those not found where the surfaces of found
// neighbours lead; then leaves out small groups that nothing around agrees
// with. Results come in the order of the points and are the
// same for any number of threads.
std::vector<PointMatch> matchPoints(const MatchInput& input, const std::vector<Point2d>& points,
                                    const Console& console);

// Matches every pixel of the left image: a grid as above, then the pixels between on the surfaces found around them.
// Results come row by row.
std::vector<PointMatch> matchPixels(const MatchInput& input, const Console& console);

// Pixels on a grid over the left image, row by row, half a step from its edges.
std::vector<Point2d> gridPoints(const Picture& picture, int step);

// The standard deviation of a picture's noise, from what its smoothest parts show.
double noiseOf(const Picture& picture);

}  // namespace zelm::tool

#endif
