// Points of an image found by their place.
#ifndef ZELM_MEASURE_NEIGHBOURS_H
#define ZELM_MEASURE_NEIGHBOURS_H

#include <zelmLib.h>

#include <cstddef>
#include <vector>

namespace zelm::measure {

class Neighbours {
public:
    // The points outlive the object; most are in an image of width x height. Points farther apart than `reach` pixels
    // are no neighbours.
    Neighbours(const std::vector<Point2d>& points, int width, int height, double reach);

    // The indices of at most `most` usable points around one of them, nearest first, of equally near ones the earlier.
    void around(std::size_t self, std::size_t most, const std::vector<char>& usable,
                std::vector<std::size_t>& found) const;
    // The same around any place.
    void around(Point2d place, std::size_t most, const std::vector<char>& usable,
                std::vector<std::size_t>& found) const;

private:
    void collect(Point2d place, std::size_t self, std::size_t most, const std::vector<char>& usable,
                 std::vector<std::size_t>& found) const;
    std::size_t cellOf(Point2d p) const;

    const std::vector<Point2d>& points;
    double reach;
    double cellSide;  // pixels; the reach or more
    std::size_t columns;
    std::size_t rows;
    std::vector<std::size_t> begins;  // of the cells in `order`, and its end
    std::vector<std::size_t> order;   // the points, cell by cell
};

}  // namespace zelm::measure

#endif
