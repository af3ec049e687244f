// 3-D points of pixel pairs, and the files that hold them.
#ifndef ZELM_TOOL_SPACE_POINTS_H
#define ZELM_TOOL_SPACE_POINTS_H

#include <zelmMeasure.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "pairFile.h"
#include "rigFile.h"
#include "spaceUncertainty.h"

namespace zelm::tool {

// What became of a pair: the measuring library's words, and those of pairs that never came to it.
enum class PointStatus : std::int32_t {
    ok = ZELM_MEASURE_POINT_OK,
    behind = ZELM_MEASURE_POINT_BEHIND,  // has numbers too
    distortion = ZELM_MEASURE_POINT_DISTORTION,
    parallel = ZELM_MEASURE_POINT_PARALLEL,
    mismatch = ZELM_MEASURE_POINT_MISMATCH,  // has numbers too
    outside = ZELM_MEASURE_POINT_OUTSIDE,
    noDot,   // no dot was found at the pixel
    hidden,  // too little of a dot's outline is seen; has numbers too
};
constexpr std::size_t kPointStatuses = 8;

// The word that files have for it.
std::string_view statusWord(PointStatus status);

// The round target whose centre a point is.
struct Disc {
    Point3d normal{};                    // unit length, towards the left camera
    double radius = 0.0;                 // plate units
    std::array<double, 6> covariance{};  // of its centre by the noise of both images: xx, xy, xz, yy, yz, zz
};

// A target as one image shows it.
struct SeenDot {
    Point2d centre{};    // of its outline's ellipse, pixels
    double share = 0.0;  // of the outline that is seen
};

// Which pairs are refused although they have numbers; 0: none.
struct PointLimits {
    double maxError = 0.0;  // pixels: more than this in the root sum of squares of both errors is a mismatch
    double minShare = 0.0;  // of a target's outline: less is hidden
    bool isInside = false;  // pixels have to be of the images
};

struct SpacePoint {
    PointStatus status = PointStatus::ok;
    Point3d position{};       // world frame
    double errorLeft = 0.0;   // pixels between what is seen and the projection of what is measured
    double errorRight = 0.0;  // pixels
    double degrees = 0.0;     // between the two rays at the point, 0 to 180
    std::optional<Disc> disc{};
    std::array<std::optional<SeenDot>, 2> dots{};  // of a target, left and right, where they were found

    bool hasNumbers() const {
        return status == PointStatus::ok || status == PointStatus::behind || status == PointStatus::mismatch ||
               status == PointStatus::hidden;
    }
};

// Makes points of pairs. Throws Failure, naming `file`, for a rig that cannot triangulate, or when memory runs out.
std::vector<SpacePoint> triangulate(const LoadedRig& rig, const std::string& file, const std::vector<PixelPair>& pairs,
                                    const PointLimits& limits = {});

// What makes points uncertain beside the calibration: the noise that is stated of a pixel's coordinate; else that of a
// target's outlines, and the calibration's for other points.
ImageNoise imageNoiseOf(const std::vector<SpacePoint>& points, const std::optional<double>& sigma);

// The points as CSV, a line for each pair in the same order, and as an ASCII PLY of the points that are ok: both with
// how well they are known, unless that is empty. The CSV shows the dots of targets.
std::string csvOf(const std::vector<PixelPair>& pairs, const std::vector<SpacePoint>& points,
                  const std::vector<PointUncertainty>& known, bool withCovariances);
std::string plyOf(const std::vector<SpacePoint>& points, const std::vector<PointUncertainty>& known,
                  const std::string& units);
// The same cloud in binary form, all numbers but `row` as floats.
std::string binaryPlyOf(const std::vector<SpacePoint>& points, const std::vector<PointUncertainty>& known,
                        const std::string& units);

// An id as a field of a CSV file.
std::string csvField(const std::string& text);

// How many points have each status.
std::array<std::size_t, kPointStatuses> countStatuses(const std::vector<SpacePoint>& points);

}  // namespace zelm::tool

#endif
