// Lattices grown from one spot to its next neighbours.
#ifndef ZELM_MEASURE_LATTICE_GROWTH_H
#define ZELM_MEASURE_LATTICE_GROWTH_H

#include <cmath>
#include <cstddef>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "dotLattice.h"

namespace zelm::measure {

inline double lengthOf(Point2d v) {
    return std::hypot(v.x, v.y);
}

inline Point2d operator-(Point2d a, Point2d b) {
    return {a.x - b.x, a.y - b.y};
}

inline Point2d operator+(Point2d a, Point2d b) {
    return {a.x + b.x, a.y + b.y};
}

inline Point2d operator*(double s, Point2d v) {
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

// Whether a spot may be the next dot after one on the lattice: what noise and shadows make is fainter.
bool mayFollow(const Spot& spot, const Spot& dot);

// Which steps from a spot may be those of the lattice: with an opposite one both, or the first one alone, as where but
// two rows are seen.
enum class Opposites { both, first };

// The largest lattice that grows from any of some spots.
std::vector<LatticeDot> largestGrowth(const std::vector<Spot>& spots, const SpotMap& map, Opposites opposites);

}  // namespace zelm::measure

#endif
