// Which lengths of a plate are measured.
#ifndef ZELM_MEASURE_PLATE_LENGTHS_H
#define ZELM_MEASURE_PLATE_LENGTHS_H

#include <cstddef>
#include <vector>

#include "plateDots.h"

namespace zelm::measure {

struct PlateLength {
    std::size_t from = 0;  // indices of dots
    std::size_t to = 0;
    double nominal = 0.0;  // plate units
};

// Along rows, columns and diagonals, from short to the longest.
std::vector<PlateLength> plateLengths(const Pattern& plate, const std::vector<GridIndex>& dots);

}  // namespace zelm::measure

#endif
