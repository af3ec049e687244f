// The lattice that spots stand on, found from the spots alone: no pitch, marker or count of a description is used.
#ifndef ZELM_MEASURE_DOT_LATTICE_H
#define ZELM_MEASURE_DOT_LATTICE_H

#include <zelmLib.h>

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "space3.h"
#include "spots.h"

namespace zelm::measure {

// A spot's place on the lattice; columns and rows are counted from a place of no meaning.
struct LatticeDot {
    std::size_t spot = 0;  // index in the list of spots
    int column = 0;
    int row = 0;
    double depth = 0.0;  // its contrast over the usual one of the dots around it
    double size = 0.0;   // its radius over the usual one of the dots around it
};

struct LatticeBounds {
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;

    int columns() const { return right - left + 1; }
    int rows() const { return bottom - top + 1; }
};

struct DotLattice {
    std::vector<LatticeDot> dots;
    Matrix3 toImage{1, 0, 0, 0, 1, 0, 0, 0, 1};  // homography from column and row

    LatticeBounds bounds() const;
    Point2d place(double column, double row) const { return apply(toImage, {column, row}); }
    // The dot at a place; NULL where there is none.
    const LatticeDot* at(int column, int row) const;
    // How far dots are from the middle of their two neighbours in a row or column, or from where the homography puts
    // them, median, in pitches: below 0.05 of a plate; 0.15 and more of spots that stand anywhere. 1 where no three
    // stand side by side.
    double unevenness(const std::vector<Spot>& spots) const;
    // The steps in the middle of the dots.
    std::array<Point2d, 2> middleSteps() const;
    // The vectors from a place to the next column and to the next row, pixels.
    std::array<Point2d, 2> steps(double column, double row) const;
};

// The lattice counted along other steps: first columns grow with the rows, then rows with the columns.
DotLattice sheared(const DotLattice& lattice, int columnsByRow, int rowsByColumn);

// The largest lattice, its columns turning clockwise into its rows as the image is seen. Empty (no dots) where fewer
// than kMinLatticeDots spots stand on one.
constexpr std::size_t kMinLatticeDots = 6;
DotLattice findLattice(const std::vector<Spot>& spots);

}  // namespace zelm::measure

#endif
