// The dots of a plate in one image, and their places on its grid.
#ifndef ZELM_MEASURE_PLATE_DOTS_H
#define ZELM_MEASURE_PLATE_DOTS_H

#include <cstdint>
#include <optional>
#include <vector>

#include "image.h"
#include "plateBlobs.h"

namespace zelm::measure {

struct GridIndex {
    int x = 0;
    int y = 0;
    auto operator<=>(const GridIndex&) const = default;
};

struct Dot {
    GridIndex index;
    Point2d plane{};  // plate units
    Point2d pixel{};
};

// What reading one image gave: image points on success, a negative status of the core otherwise.
struct DotReading {
    std::int32_t status = ZELM_OK;
    std::vector<Point2d> points;
};

DotReading readDots(const DenseImage& image, const Pattern& plate, const ZelmRect* region);

// Puts the points on the grid by the markers, which are told by their size in the image. Empty when the markers cannot
// be told.
std::vector<Dot> indexDots(const DenseImage& image, const Pattern& plate, const std::vector<Point2d>& points);

// Puts the points on the grid by the plane-to-image homography H (3 x 3, row-major); points of no grid place are left
// out.
std::vector<Dot> indexDots(const Pattern& plate, const std::vector<Point2d>& points, const double* H);

}  // namespace zelm::measure

#endif
