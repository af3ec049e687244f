// Pixel pairs on the centres of round targets.
#ifndef ZELM_TOOL_DOT_PAIRS_H
#define ZELM_TOOL_DOT_PAIRS_H

#include <optional>
#include <string>
#include <vector>

#include "console.h"
#include "pairFile.h"
#include "rigFile.h"
#include "spacePoints.h"
#include "subcommands.h"

namespace zelm::tool {

// Options for places inside dots instead of pixels that were measured.
struct DotOptions {
    std::vector<std::string> images;  // left and right, or none
    std::string polarity = "dark";
    std::optional<double> maxError;  // pixels that rays may miss each other by

    bool areGiven() const { return !images.empty(); }
};
void addDotOptions(Subcommand& sub, DotOptions& options);

// By how many pixels the rays of a pair may miss each other: what the user says, else six standard deviations of what
// noise and rounding to whole pixels leave, or half a pixel for targets.
double maxErrorOf(const DotOptions& options, const std::optional<double>& noise);

// The points of pairs. With images it measures the round targets in whose dots the pixels lie, and moves the pixels
// onto the images of their centres. `noise` is the standard deviation of a pixel's coordinate, where it is known.
// Throws Failure, naming `file`, for a rig that cannot triangulate.
std::vector<SpacePoint> pointsOf(std::vector<PixelPair>& pairs, const DotOptions& options,
                                 const std::optional<double>& noise, const LoadedRig& rig, const std::string& file);

// Where the noise of points comes from, in words, for a rig with a covariance; `noise` is what the user states.
std::string noiseText(const DotOptions& options, const std::optional<double>& noise, const LoadedRig& rig);

// How exact pixels are.
struct PixelQuality {
    std::optional<double> noise;  // standard deviation of a coordinate, pixels; none: not known
    bool areTargets = false;      // measured on their outlines
};

// In words, when most rays miss each other by more than `maxError`; else empty.
std::string mismatchText(const std::vector<SpacePoint>& points, double maxError, const std::string& rigFile);

// Warns, in one line, when rays pass each other farther than the noise of their pixels explains: then what is stated of
// the points' uncertainty is too little. `file` holds the pairs.
void warnOfMisses(const std::string& file, const std::vector<PixelPair>& pairs, const std::vector<SpacePoint>& points,
                  const PixelQuality& quality, const Console& console);

}  // namespace zelm::tool

#endif
