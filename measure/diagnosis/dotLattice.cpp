#include "dotLattice.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <map>
#include <numeric>
#include <set>
#include <utility>

#include "coreStatus.h"
#include "plateBlobs.h"

namespace zelm::measure {
namespace {

constexpr std::size_t kNeighbours = 12;     // of a spot that could be the next ones of its row and column
constexpr std::size_t kMaxSeeds = 40;       // spots that a lattice is grown from
constexpr double kOpposite = 0.30;          // of a step: between a neighbour and the mirror image of the opposite one
constexpr double kReach = 0.30;             // of a step: between a dot and where it is expected
constexpr double kMaxSizeRatio = 4.0;       // between the radii of dots on one lattice, markers among them
constexpr double kMinSine = 0.25;           // of the angle between rows and columns as they are seen
constexpr double kPlaceTolerance = 0.2;     // of a pitch, of spots that are added by the homography
constexpr double kEnough = 0.6;             // of the oval spots: no larger lattice is looked for
constexpr int kFillRounds = 4;              // of adding spots by the homography
constexpr double kMinDepth = 0.3;           // of the gray levels that the dots around stand alone at
constexpr double kMaxMarkerSize = 2.6;      // times a dot's: markers of twice that size and less leave room for dots
constexpr double kMinNextDepth = 0.2;       // of the gray levels that a dot's neighbour stands alone at
constexpr double kRobust = 3.0;             // Tukey's constant of the homography
constexpr std::size_t kSizeNeighbours = 8;  // dots that a dot's size is compared with

double lengthOf(Point2d v) {
    return std::hypot(v.x, v.y);
}

Point2d operator-(Point2d a, Point2d b) {
    return {a.x - b.x, a.y - b.y};
}

Point2d operator+(Point2d a, Point2d b) {
    return {a.x + b.x, a.y + b.y};
}

Point2d operator*(double s, Point2d v) {
    return {s * v.x, s * v.y};
}

// Spots by the squares of the image that they lie in.
class SpotMap {
public:
    SpotMap(const std::vector<Spot>& all, std::vector<std::size_t> which) : spots(all), used(std::move(which)) {
        for (const std::size_t i : used) {
            cells[cellOf(spots[i].ellipse.centre)].push_back(i);
        }
    }

    // The nearest spot within that distance.
    std::optional<std::size_t> nearest(Point2d place, double distance) const {
        std::optional<std::size_t> best;
        double least = distance;
        if (!std::isfinite(place.x) || !std::isfinite(place.y) || std::fabs(place.x) > 1e6 ||
            std::fabs(place.y) > 1e6) {
            return best;
        }
        const auto [x0, y0] = cellOf({place.x - distance, place.y - distance});
        const auto [x1, y1] = cellOf({place.x + distance, place.y + distance});
        for (int y = y0; y <= y1; ++y) {
            for (int x = x0; x <= x1; ++x) {
                const auto cell = cells.find({x, y});
                if (cell == cells.end()) {
                    continue;
                }
                for (const std::size_t i : cell->second) {
                    if (const double d = lengthOf(spots[i].ellipse.centre - place); d < least) {
                        least = d;
                        best = i;
                    }
                }
            }
        }
        return best;
    }

    const std::vector<std::size_t>& list() const { return used; }

private:
    static constexpr double kCell = 24.0;  // pixels
    static std::pair<int, int> cellOf(Point2d p) {
        return {static_cast<int>(std::floor(p.x / kCell)), static_cast<int>(std::floor(p.y / kCell))};
    }

    const std::vector<Spot>& spots;
    std::vector<std::size_t> used;
    std::map<std::pair<int, int>, std::vector<std::size_t>> cells;
};

bool areAlike(const Spot& a, const Spot& b) {
    const double ratio = a.radius() / b.radius();
    return ratio < kMaxSizeRatio && ratio > 1.0 / kMaxSizeRatio;
}

// Whether a spot may be the next dot after one on the lattice: what noise and shadows make is fainter.
bool mayFollow(const Spot& spot, const Spot& dot) {
    return areAlike(spot, dot) && spot.depth >= kMinNextDepth * dot.depth;
}

struct Basis {
    Point2d column{};
    Point2d row{};
};

// Which steps from a spot may be those of the lattice: with an opposite one both, or the first one alone, as where but
// two rows are seen.
enum class Opposites { both, first };

// The two shortest such steps that are no multiples of each other.
std::optional<Basis> basisAt(const std::vector<Spot>& spots, const SpotMap& map, std::size_t seed,
                             Opposites opposites) {
    std::vector<std::pair<double, std::size_t>> near;
    const Point2d from = spots[seed].ellipse.centre;
    for (const std::size_t i : map.list()) {
        if (i != seed && areAlike(spots[i], spots[seed])) {
            near.emplace_back(lengthOf(spots[i].ellipse.centre - from), i);
        }
    }
    const std::size_t count = std::min(kNeighbours, near.size());
    std::partial_sort(near.begin(), near.begin() + static_cast<std::ptrdiff_t>(count), near.end());
    std::vector<Point2d> steps;
    std::vector<Point2d> others;
    for (std::size_t k = 0; k < count; ++k) {
        const Point2d step = spots[near[k].second].ellipse.centre - from;
        const auto opposite = map.nearest(from - step, kOpposite * near[k].first);
        if (opposite && *opposite != seed) {
            // The mean of a step and its opposite one is free of perspective to first order.
            steps.push_back(0.5 * (step - (spots[*opposite].ellipse.centre - from)));
        } else if (opposites == Opposites::first) {
            others.push_back(step);
        }
    }
    if (steps.empty()) {
        return std::nullopt;
    }
    others.insert(others.begin(), steps.begin(), steps.end());
    for (const Point2d& other : others) {
        const Point2d& first = steps.front();
        const double cross = first.x * other.y - first.y * other.x;
        if (std::fabs(cross) > kMinSine * lengthOf(first) * lengthOf(other)) {
            return cross > 0.0 ? Basis{first, other} : Basis{first, -1.0 * other};
        }
    }
    return std::nullopt;
}

// Grows a lattice from one spot to its neighbours, the steps following what is found.
class Growth {
public:
    Growth(const std::vector<Spot>& all, const SpotMap& spotMap) : spots(all), map(spotMap), isTaken(all.size()) {}

    std::vector<LatticeDot> from(std::size_t seed, const Basis& basis) {
        take(seed, 0, 0, basis);
        while (!queue.empty()) {
            const Cell cell = queue.front();
            queue.pop_front();
            step(cell, 1, 0);
            step(cell, -1, 0);
            step(cell, 0, 1);
            step(cell, 0, -1);
        }
        return std::move(dots);
    }

private:
    struct Cell {
        std::size_t spot;
        int column;
        int row;
        Basis basis;
    };

    void take(std::size_t spot, int column, int row, const Basis& basis) {
        isTaken[spot] = true;
        places.insert({column, row});
        dots.push_back({spot, column, row, 0.0, 0.0});
        queue.push_back({spot, column, row, basis});
    }

    void step(const Cell& cell, int columns, int rows) {
        const std::pair<int, int> place{cell.column + columns, cell.row + rows};
        if (places.contains(place)) {
            return;
        }
        const Point2d expected = columns != 0 ? columns * cell.basis.column : rows * cell.basis.row;
        const Point2d from = spots[cell.spot].ellipse.centre;
        const double reach = kReach * std::min(lengthOf(cell.basis.column), lengthOf(cell.basis.row));
        const auto found = map.nearest(from + expected, reach);
        if (!found || isTaken[*found] || !mayFollow(spots[*found], spots[cell.spot])) {
            return;
        }
        Basis next = cell.basis;
        const Point2d seen = spots[*found].ellipse.centre - from;
        Point2d& along = columns != 0 ? next.column : next.row;
        along = 0.5 * (along + (columns + rows) * seen);
        take(*found, place.first, place.second, next);
    }

    const std::vector<Spot>& spots;
    const SpotMap& map;
    std::vector<bool> isTaken;
    std::set<std::pair<int, int>> places;
    std::deque<Cell> queue;
    std::vector<LatticeDot> dots;
};

// What a lattice counts: noise makes many small and faint spots, some of which stand in rows by chance.
double weightOf(const std::vector<Spot>& spots, const std::vector<LatticeDot>& dots) {
    return std::accumulate(dots.begin(), dots.end(), 0.0, [&](double sum, const LatticeDot& dot) {
        return sum + spots[dot.spot].depth * spots[dot.spot].radius();
    });
}

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

// The largest lattice that grows from any of some spots.
std::vector<LatticeDot> largestGrowth(const std::vector<Spot>& spots, const SpotMap& map, Opposites opposites) {
    std::vector<LatticeDot> best;
    double most = 0.0;
    const std::vector<std::size_t>& oval = map.list();
    const std::size_t seeds = std::min(kMaxSeeds, oval.size());
    for (std::size_t k = 0; k < seeds; ++k) {
        const std::size_t seed = oval[k * oval.size() / seeds];
        const auto basis = basisAt(spots, map, seed, opposites);
        if (!basis) {
            continue;
        }
        std::vector<LatticeDot> dots = Growth(spots, map).from(seed, *basis);
        if (const double weight = weightOf(spots, dots); weight > most) {
            most = weight;
            best = std::move(dots);
        }
        if (static_cast<double>(best.size()) > kEnough * static_cast<double>(oval.size())) {
            break;
        }
    }
    return best;
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
