// CSV files of measured positions of a plate's dots.
#ifndef ZELM_TOOL_DOT_POSITIONS_H
#define ZELM_TOOL_DOT_POSITIONS_H

#include <cstdint>
#include <filesystem>
#include <vector>

namespace zelm::tool {

struct DotPositions {
    std::vector<std::int32_t> grid;  // 2 a dot: column and row, counted from the corner marker
    std::vector<double> places;      // 3 a dot: x, y, 0, plate units
};

// Reads rows of column,row,x,y, as readCoordinateFile does. Throws Failure for a column or row that is no whole number.
DotPositions readDotPositions(const std::filesystem::path& path);

}  // namespace zelm::tool

#endif
