// The dots of a plate in one image.
#ifndef ZELM_MEASURE_DOTS_H
#define ZELM_MEASURE_DOTS_H

#include <zelmLib.h>

#include <optional>
#include <string>
#include <vector>

#include "imageFile.h"
#include "plateFile.h"

namespace zelm::tool {

struct GridIndex {
    int x = 0;
    int y = 0;
    auto operator<=>(const GridIndex&) const = default;
};

struct Dot {
    GridIndex index;
    Point2d plane{};  // plane units
    Point2d pixel{};
};

// What reading one image gave: image points on success, a negative status of the library otherwise.
struct DotReading {
    std::int32_t status = ZELM_OK;
    std::vector<Point2d> points;
};

// Image points of the dots of camera 'L' or 'R' in one view of a handle.
std::vector<Point2d> pointsOf(const Zelm2ViewCalib* handle, char side, std::int32_t view);

// Reads the dots of one image. Throws Failure when the region is not inside the picture.
DotReading readDots(const Picture& picture, const Plate& plate, const std::optional<ZelmRect>& region);

// Grid index of a marker along each axis.
GridIndex markerIndex(const Plate& plate);

// The dot at a grid index.
Dot dotAt(const Plate& plate, GridIndex index, Point2d pixel);

// Puts the points on the grid by the markers, which are told by their size in the picture. Empty when the markers
// cannot be told.
std::vector<Dot> indexDots(const Picture& picture, const Plate& plate, const std::vector<Point2d>& points);

// Puts the points on the grid by the plane-to-image homography H (3 x 3, row-major); points of no grid place are
// left out.
std::vector<Dot> indexDots(const Plate& plate, const std::vector<Point2d>& points, const double* H);

// A status of pattern reading in words: what happened and what to try. `picture` may be NULL.
std::string readingText(std::int32_t status, const Plate& plate, const Picture* picture);

// Throws Failure, naming the file, unless the region lies inside the picture.
void checkRegion(const ZelmRect& region, const Picture& picture, const std::string& file);

}  // namespace zelm::tool

#endif
