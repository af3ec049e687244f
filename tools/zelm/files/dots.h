// The dots of a plate in one picture.
#ifndef ZELM_TOOL_DOTS_H
#define ZELM_TOOL_DOTS_H

#include <zelmMeasure.h>

#include <compare>
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
    Point2d plane{};  // plate units
    Point2d pixel{};
    Point2d error{};  // of a calibration: measured minus projected
};

// Arrays in which the measuring library leaves dots.
class DotArrays {
public:
    // Room for `capacity` dots.
    explicit DotArrays(std::int64_t capacity);

    const ZelmMeasureDots* record() const { return &arrays; }
    std::vector<Dot> dots() const;

private:
    std::vector<std::int32_t> grid;
    std::vector<double> plane;
    std::vector<double> pixels;
    std::vector<double> errors;
    ZelmMeasureDots arrays{};
};

// What reading one picture gave: on success the dots that have a place on the grid, else a negative status.
struct DotReading {
    std::int32_t status = ZELM_OK;
    std::int64_t found = 0;  // dots with and without a place
    std::vector<Dot> dots;
};

DotReading readDots(const Picture& picture, const Plate& plate, const std::optional<ZelmRect>& region);

// The measuring library's record of a picture, which must outlive it.
ZelmMeasureImage imageOf(const Picture& picture);

// Grid index of a marker along each axis.
GridIndex markerIndex(const Plate& plate);

// The dots of the described field.
std::size_t describedDots(const Plate& plate);

// Throws Failure, naming the file, unless the region lies inside the picture.
void checkRegion(const ZelmRect& region, const Picture& picture, const std::string& file);

}  // namespace zelm::tool

#endif
