#include "latticeGrowth.h"

#include <algorithm>
#include <deque>
#include <numeric>
#include <set>

namespace zelm::measure {
namespace {

constexpr std::size_t kNeighbours = 12;  // of a spot that could be the next ones of its row and column
constexpr std::size_t kMaxSeeds = 40;    // spots that a lattice is grown from
constexpr double kOpposite = 0.30;       // of a step: between a neighbour and the mirror image of the opposite one
constexpr double kReach = 0.30;          // of a step: between a dot and where it is expected
constexpr double kMaxSizeRatio = 4.0;    // between the radii of dots on one lattice, markers among them
constexpr double kMinSine = 0.25;        // of the angle between rows and columns as they are seen
constexpr double kEnough = 0.6;          // of the oval spots: no larger lattice is looked for
constexpr double kMinNextDepth = 0.2;    // of the gray levels that a dot's neighbour stands alone at

bool areAlike(const Spot& a, const Spot& b) {
    const double ratio = a.radius() / b.radius();
    return ratio < kMaxSizeRatio && ratio > 1.0 / kMaxSizeRatio;
}

struct Basis {
    Point2d column{};
    Point2d row{};
};

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

}  // namespace

bool mayFollow(const Spot& spot, const Spot& dot) {
    return areAlike(spot, dot) && spot.depth >= kMinNextDepth * dot.depth;
}

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

}  // namespace zelm::measure
