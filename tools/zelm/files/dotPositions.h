// CSV files of measured positions of a plate's dots.
#ifndef ZELM_TOOL_DOT_POSITIONS_H
#define ZELM_TOOL_DOT_POSITIONS_H

#include <zelmLib.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace zelm::tool {

constexpr double kMaxDotIndex = 1e6;  // columns or rows from the corner marker

struct DotPositions {
    std::vector<std::int32_t> grid;  // 2 a dot: column and row, counted from the corner marker
    std::vector<double> places;      // 3 a dot: x, y, z, plate units
};

// Reads rows of column,row,x,y, or column,row,x,y,z, as readCoordinateFile does. Throws Failure for a column or row
// that is no whole number.
DotPositions readDotPositions(const std::filesystem::path& path);

// Throws Failure, naming where they come from, for positions of no plate like this: two of one dot, a dot far from
// where the plate's lengths put it.
void checkDotPositions(const std::string& source, const Zelm2ViewPatternDesc& pattern, const DotPositions& positions);

}  // namespace zelm::tool

#endif
