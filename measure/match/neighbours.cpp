#include "neighbours.h"

#include <algorithm>

namespace zelm::measure {
namespace {

constexpr double kMinCellSide = 4.0;  // pixels: so that a small reach makes no more cells than there are pixels

}  // namespace

Neighbours::Neighbours(const std::vector<Point2d>& allPoints, int width, int height, double farthest)
    : points(allPoints),
      reach(farthest),
      cellSide(std::max(farthest, kMinCellSide)),
      columns(static_cast<std::size_t>(width / cellSide) + 1),
      rows(static_cast<std::size_t>(height / cellSide) + 1) {
    // Sorted by cell, by counting.
    begins.assign(columns * rows + 1, 0);
    for (const Point2d& p : points) {
        begins[cellOf(p) + 1] += 1;
    }
    for (std::size_t cell = 1; cell < begins.size(); ++cell) {
        begins[cell] += begins[cell - 1];
    }
    std::vector<std::size_t> next(begins.begin(), begins.end() - 1);
    order.resize(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        order[next[cellOf(points[i])]++] = i;
    }
}

std::size_t Neighbours::cellOf(Point2d p) const {
    // What is not a number has no neighbours, wherever it is put.
    const auto place = [this](double x, std::size_t count) {
        return x > 0.0 ? static_cast<std::size_t>(std::min(x / cellSide, static_cast<double>(count - 1))) : 0;
    };
    return place(p.y, rows) * columns + place(p.x, columns);
}

void Neighbours::around(std::size_t self, std::size_t most, const std::vector<char>& usable,
                        std::vector<std::size_t>& found) const {
    collect(points[self], self, most, usable, found);
}

void Neighbours::around(Point2d place, std::size_t most, const std::vector<char>& usable,
                        std::vector<std::size_t>& found) const {
    collect(place, points.size(), most, usable, found);
}

void Neighbours::collect(Point2d p, std::size_t self, std::size_t most, const std::vector<char>& usable,
                         std::vector<std::size_t>& found) const {
    const auto distance = [&](std::size_t i) {
        const Point2d& q = points[i];
        return (q.x - p.x) * (q.x - p.x) + (q.y - p.y) * (q.y - p.y);
    };
    const std::size_t cell = cellOf(p);
    const std::size_t column = cell % columns;
    const std::size_t row = cell / columns;
    found.clear();
    for (std::size_t y = row > 0 ? row - 1 : 0; y <= std::min(row + 1, rows - 1); ++y) {
        const std::size_t first = y * columns + (column > 0 ? column - 1 : 0);
        const std::size_t last = y * columns + std::min(column + 1, columns - 1);
        for (std::size_t k = begins[first]; k < begins[last + 1]; ++k) {
            const std::size_t i = order[k];
            if (i != self && usable[i] != 0 && distance(i) <= reach * reach) {
                found.push_back(i);
            }
        }
    }
    const auto isNearer = [&](std::size_t a, std::size_t b) {
        const double da = distance(a);
        const double db = distance(b);
        return da < db || (da == db && a < b);
    };
    const std::size_t kept = std::min(most, found.size());
    std::partial_sort(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(kept), found.end(), isNearer);
    found.resize(kept);
}

}  // namespace zelm::measure
