// 3-D points of pixel pairs, with figures that tell how good they are.
#ifndef ZELM_MEASURE_SPACE_POINTS_H
#define ZELM_MEASURE_SPACE_POINTS_H

#include <zelmLib.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "pairFile.h"
#include "rigFile.h"

namespace zelm::tool {

// What became of a pair. All but `ok` are failures; `behind` alone has numbers.
enum class PointStatus {
    ok,
    behind,      // the rays meet behind a camera: a wrong pair
    distortion,  // a pixel is too far outside for the lens distortion to be removed
    parallel,    // the rays do not meet
    noDot,       // no dot was found at the pixel
};
constexpr std::size_t kPointStatuses = 5;

// The word that files have for it.
std::string_view statusWord(PointStatus status);

struct SpacePoint {
    PointStatus status = PointStatus::ok;
    Point3d position{};              // world frame
    double errorLeft = 0.0;          // pixels between the pixel given and the raw projection of the point
    double errorRight = 0.0;         // pixels
    double intersectionDegrees = 0;  // between the two rays at the point, 0 to 180
};

// Makes points of pairs with one calibration.
class Triangulator {
public:
    // Throws Failure, naming `file`, for a pair of two parallel cameras, which cannot triangulate.
    Triangulator(const LoadedRig& rig, const std::string& file);

    // Throws Failure when memory is exhausted; all else ends in the point's status.
    SpacePoint operator()(const PixelPair& pair) const;

private:
    // How a camera looks at a point.
    struct View {
        bool parallel = false;
        Point3d centre{};  // of projection
        Point3d axis{};    // the direction of view
    };
    static View viewOf(const RigCamera& camera);
    Point3d rayTo(const View& view, const Point3d& X) const;
    double reprojectionError(char side, const Point3d& X, const Point2d& pixel) const;

    const Zelm2ViewCalib* handle;
    View left;
    View right;
};

// The points as CSV, a line for each pair in the same order; and as an ASCII PLY of the points that are ok.
std::string csvOf(const std::vector<PixelPair>& pairs, const std::vector<SpacePoint>& points);
std::string plyOf(const std::vector<SpacePoint>& points);

// An id as a field of a CSV file.
std::string csvField(const std::string& text);

// How many points have each status.
std::array<std::size_t, kPointStatuses> countStatuses(const std::vector<SpacePoint>& points);

}  // namespace zelm::tool

#endif
