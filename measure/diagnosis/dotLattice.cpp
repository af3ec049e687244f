#include "dotLattice.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

#include "coreStatus.h"
#include "latticeGrowth.h"
#include "plateBlobs.h"

namespace zelm::measure {
namespace {

constexpr double kPlaceTolerance = 0.2;     // of a pitch, of spots that are added by the homography
constexpr int kFillRounds = 4;              // of adding spots by the homography
constexpr double kMinDepth = 0.3;           // of the gray levels that the dots around stand alone at
constexpr double kMaxMarkerSize = 2.6;      // times a dot's: markers of twice that size and less leave room for dots
constexpr double kRobust = 3.0;             // Tukey's constant of the homography
constexpr std::size_t kSizeNeighbours = 8;  // dots that a dot's size is compared with

bool fitToImage(const std::vector<Spot>& spots, DotLattice& lattice) {
    std::vector<Point2d> places;
    std::vector<Point2d> pixels;
    for (const LatticeDot& dot : lattice.dots) {
        places.push_back({static_cast<double>(dot.column), static_cast<double>(dot.row)});
        pixels.push_back(spots[dot.spot].ellipse.centre);
    }
    Matrix3 H{};
    const std::int32_t status = statusOfCore(ZELM_ERR_CALIB_NOT_CONVERGED, [&] {
        return zelmCalibCalcHomography(static_cast<std::int32_t>(places.size()), places.data(), pixels.data(), kRobust,
                                       H.data());
    });
    if (status < 0) {
        return false;
    }
    lattice.toImage = H;
    return true;
}

// The dot whose place is nearest.
const LatticeDot& nearestDot(const DotLattice& lattice, int column, int row) {
    return *std::min_element(lattice.dots.begin(), lattice.dots.end(), [=](const LatticeDot& a, const LatticeDot& b) {
        return std::hypot(a.column - column, a.row - row) < std::hypot(b.column - column, b.row - row);
    });
}

// Adds spots that stand on the lattice beyond gaps, and drops those that the homography does not put there.
void fill(const std::vector<Spot>& spots, const SpotMap& map, DotLattice& lattice) {
    for (int round = 0; round < kFillRounds; ++round) {
        const auto back = inverse(lattice.toImage);
        if (!back) {
            return;
        }
        std::map<std::pair<int, int>, LatticeDot> placed;
        const LatticeBounds bounds = lattice.bounds();
        for (const std::size_t i : map.list()) {
            const Point2d place = apply(*back, spots[i].ellipse.centre);
            if (!(std::fabs(place.x) < 1e4 && std::fabs(place.y) < 1e4)) {
                continue;
            }
            const int column = static_cast<int>(std::lround(place.x));
            const int row = static_cast<int>(std::lround(place.y));
            // Not far beyond what is known: there a homography says little.
            const bool isNear = column >= bounds.left - 2 && column <= bounds.right + 2 && row >= bounds.top - 2 &&
                                row <= bounds.bottom + 2;
            if (isNear && std::hypot(place.x - column, place.y - row) < kPlaceTolerance) {
                placed.try_emplace({column, row}, LatticeDot{i, column, row, 0.0, 0.0});
            }
        }
        const std::size_t before = lattice.dots.size();
        if (placed.size() < std::max(kMinLatticeDots, before * 3 / 4)) {
            return;  // a strong distortion: the growth knows better
        }
        // Dots of the growth stay, whatever a lens does to the outer ones.
        std::map<std::size_t, bool> grown;
        for (const LatticeDot& dot : lattice.dots) {
            grown[dot.spot] = true;
            placed.erase({dot.column, dot.row});
        }
        for (const auto& [place, dot] : placed) {
            const Spot& spot = spots[dot.spot];
            const Spot& nearest = spots[nearestDot(lattice, dot.column, dot.row).spot];
            const double size = spot.radius() / nearest.radius();
            if (!grown.contains(dot.spot) && mayFollow(spot, nearest) && size < kMaxMarkerSize &&
                size > 1.0 / kMaxMarkerSize) {
                lattice.dots.push_back(dot);
            }
        }
        if (lattice.dots.size() == before || !fitToImage(spots, lattice)) {
            return;
        }
    }
}

// A dot beside another one.
struct Neighbour {
    int distance;  // pitches, squared
    double radius;
    double depth;
};

// Spots that have the lattice's size, for their place: what is much smaller or larger than all dots is none.
void measureSizes(const std::vector<Spot>& spots, DotLattice& lattice) {
    for (LatticeDot& dot : lattice.dots) {
        std::vector<Neighbour> others;
        for (const LatticeDot& other : lattice.dots) {
            const int columns = other.column - dot.column;
            const int rows = other.row - dot.row;
            if (columns != 0 || rows != 0) {
                const Spot& spot = spots[other.spot];
                others.push_back({columns * columns + rows * rows, spot.radius(), spot.depth});
            }
        }
        const std::size_t count = std::min(kSizeNeighbours, others.size());
        std::partial_sort(others.begin(), others.begin() + static_cast<std::ptrdiff_t>(count), others.end(),
                          [](const Neighbour& a, const Neighbour& b) { return a.distance < b.distance; });
        std::vector<double> around(count);
        std::transform(others.begin(), others.begin() + static_cast<std::ptrdiff_t>(count), around.begin(),
                       [](const auto& other) { return other.radius; });
        dot.size = spots[dot.spot].radius() / median(around);
        std::transform(others.begin(), others.begin() + static_cast<std::ptrdiff_t>(count), around.begin(),
                       [](const auto& other) { return other.depth; });
        dot.depth = spots[dot.spot].depth / std::max(median(std::move(around)), 1.0);
    }
    // A stain, a sticker or a highlight in the place of a dot is none.
    std::erase_if(lattice.dots,
                  [](const LatticeDot& dot) { return dot.depth < kMinDepth || dot.size > kMaxMarkerSize; });
}

// The shortest steps (Lagrange's reduction): a spot at the end of a row may have grown the lattice along diagonals.
DotLattice reduced(DotLattice lattice) {
    for (int round = 0; round < 6; ++round) {
        const auto [u, v] = lattice.middleSteps();
        const double product = u.x * v.x + u.y * v.y;
        const bool isRowLonger = lengthOf(v) >= lengthOf(u);
        const double shorter = isRowLonger ? lengthOf(u) : lengthOf(v);
        const int times = static_cast<int>(std::lround(std::clamp(product / (shorter * shorter), -20.0, 20.0)));
        if (times == 0) {
            break;
        }
        lattice = isRowLonger ? sheared(lattice, times, 0) : sheared(lattice, 0, times);
    }
    return lattice;
}

}  // namespace

LatticeBounds DotLattice::bounds() const {
    LatticeBounds b{dots.front().column, dots.front().column, dots.front().row, dots.front().row};
    for (const LatticeDot& dot : dots) {
        b = {std::min(b.left, dot.column), std::max(b.right, dot.column), std::min(b.top, dot.row),
             std::max(b.bottom, dot.row)};
    }
    return b;
}

const LatticeDot* DotLattice::at(int column, int row) const {
    const auto dot =
        std::find_if(dots.begin(), dots.end(), [&](const LatticeDot& d) { return d.column == column && d.row == row; });
    return dot == dots.end() ? nullptr : &*dot;
}

double DotLattice::unevenness(const std::vector<Spot>& spots) const {
    std::map<std::pair<int, int>, Point2d> centres;
    for (const LatticeDot& dot : dots) {
        centres[{dot.column, dot.row}] = spots[dot.spot].ellipse.centre;
    }
    std::vector<double> errors;
    for (const auto& [place, centre] : centres) {
        for (const auto& [columns, rows] : {std::pair{1, 0}, {0, 1}}) {
            const auto before = centres.find({place.first - columns, place.second - rows});
            const auto after = centres.find({place.first + columns, place.second + rows});
            if (before != centres.end() && after != centres.end()) {
                const Point2d middle = 0.5 * (before->second + after->second);
                errors.push_back(lengthOf(centre - middle) / (0.5 * lengthOf(after->second - before->second)));
            }
        }
    }
    if (errors.empty()) {
        return 1.0;
    }
    // Of a plate seen from the side the pitches shrink from dot to dot: there the homography knows better. A lens
    // bends what the homography keeps straight.
    std::vector<double> residuals;
    residuals.reserve(dots.size());
    for (const LatticeDot& dot : dots) {
        const auto [u, v] = steps(dot.column, dot.row);
        const double pitch = std::max(std::min(lengthOf(u), lengthOf(v)), 1e-6);
        residuals.push_back(lengthOf(spots[dot.spot].ellipse.centre - place(dot.column, dot.row)) / pitch);
    }
    return std::min(median(std::move(errors)), median(std::move(residuals)));
}

std::array<Point2d, 2> DotLattice::middleSteps() const {
    double column = 0.0;
    double row = 0.0;
    for (const LatticeDot& dot : dots) {
        column += dot.column;
        row += dot.row;
    }
    const auto n = static_cast<double>(dots.size());
    return steps(column / n, row / n);
}

std::array<Point2d, 2> DotLattice::steps(double column, double row) const {
    const Point2d a = place(column - 0.5, row);
    const Point2d b = place(column + 0.5, row);
    const Point2d c = place(column, row - 0.5);
    const Point2d d = place(column, row + 0.5);
    return {b - a, d - c};
}

DotLattice sheared(const DotLattice& lattice, int columnsByRow, int rowsByColumn) {
    DotLattice result = lattice;
    for (LatticeDot& dot : result.dots) {
        dot.column += columnsByRow * dot.row;
        dot.row += rowsByColumn * dot.column;
    }
    // From the new counts back to the old ones, and on to the image.
    const double c = columnsByRow;
    const double r = rowsByColumn;
    result.toImage = product(lattice.toImage, {1.0 + c * r, -c, 0.0, -r, 1.0, 0.0, 0.0, 0.0, 1.0});
    return result;
}

DotLattice findLattice(const std::vector<Spot>& spots) {
    std::vector<std::size_t> oval;
    for (std::size_t i = 0; i < spots.size(); ++i) {
        if (spots[i].isOval && !spots[i].isCut) {
            oval.push_back(i);
        }
    }
    const SpotMap map(spots, oval);
    DotLattice best;
    best.dots = largestGrowth(spots, map, Opposites::both);
    if (best.dots.size() < kMinLatticeDots) {
        best.dots = largestGrowth(spots, map, Opposites::first);
    }
    if (best.dots.size() < kMinLatticeDots || !fitToImage(spots, best)) {
        return {};
    }
    best = reduced(std::move(best));
    fill(spots, map, best);
    measureSizes(spots, best);
    return best;
}

}  // namespace zelm::measure
