#include "patternGrid.h"

#include <algorithm>
#include <cmath>

#include "zelm/calib.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

constexpr double kGridTolerance = 0.15;    // of a pitch
constexpr double kFieldTolerance = 0.001;  // of a pitch, for the rounding of the field's extent
constexpr double kMaxIndex = 1e6;          // a larger one is beyond what the tolerance can tell apart in an image
constexpr double kNotRobust = -1.0;        // docs/decisions.md#grid-not-robust

// The grid index that a value lies near to. Indices stay doubles, so that no value is too large for them.
double nearestIndex(double value) {
    return std::floor(value + 0.5);
}

bool isNearIndex(double value) {
    return std::fabs(value - nearestIndex(value)) <= kGridTolerance;
}

bool isOnGrid(const Point2d& index) {
    return isNearIndex(index.x) && isNearIndex(index.y);
}

Point2d fromCorner(const PatternDot& dot, const Point2d& corner) {
    return {dot.centre.x - corner.x, dot.centre.y - corner.y};
}

// From image vectors to grid indices, as the markers alone tell: an affine map.
struct MarkerMap {
    double axes[4];  // inverse of the matrix whose columns are the unit axis vectors
    double u;        // indices a pixel along the x axis
    double v;        // indices a pixel along the y axis

    [[nodiscard]] Point2d operator()(const Point2d& p) const {
        return {(axes[0] * p.x + axes[1] * p.y) * u, (axes[2] * p.x + axes[3] * p.y) * v};
    }
};

std::int32_t makeMarkerMap(const MarkerFrame& frame, const Zelm2ViewPatternDesc& pattern, MarkerMap* map) {
    const double lengthX = std::hypot(frame.toX.x, frame.toX.y);
    const double lengthY = std::hypot(frame.toY.x, frame.toY.y);
    const double axes[4] = {frame.toX.x / lengthX, frame.toY.x / lengthY,  //
                            frame.toX.y / lengthX, frame.toY.y / lengthY};
    if (const auto s = zelmMatInvert(2, axes, map->axes); s < 0) {
        return s;
    }
    map->u = pattern.d6 / lengthX / pattern.d4;
    map->v = pattern.d7 / lengthY / pattern.d5;
    return ZELM_OK;
}

// The same by a homography.
struct HomographyMap {
    const double* G;

    [[nodiscard]] Point2d operator()(const Point2d& p) const {
        const double w = G[6] * p.x + G[7] * p.y + G[8];
        return {(G[0] * p.x + G[1] * p.y + G[2]) / w, (G[3] * p.x + G[4] * p.y + G[5]) / w};
    }
};

// Dots whose index is taken to be known: index and image point relative to the corner.
struct Candidates {
    WorkBuffer<Point2d> indices;
    WorkBuffer<Point2d> points;
    std::size_t count = 0;

    void add(const Point2d& index, const Point2d& point) {
        indices[count] = index;
        points[count++] = point;
    }
};

// The rectangle of grid indices that reaches equally far to both sides of the corner marker.
struct IndexWindow {
    double mostU;
    double mostV;

    [[nodiscard]] bool contains(const Point2d& index) const {
        return std::fabs(index.x) < mostU + kGridTolerance && std::fabs(index.y) < mostV + kGridTolerance;
    }
    [[nodiscard]] double size() const { return (2.0 * mostU + 1.0) * (2.0 * mostV + 1.0); }
};

template <class Map>
void collect(std::span<const PatternDot> dots, const Point2d& corner, const Map& map, const IndexWindow& window,
             Candidates* candidates) {
    candidates->count = 0;
    for (const PatternDot& dot : dots) {
        const Point2d point = fromCorner(dot, corner);
        const Point2d index = map(point);
        const bool isRoomLeft = static_cast<double>(candidates->count) < window.size();
        if (isRoomLeft && window.contains(index) && isOnGrid(index)) {
            candidates->add({nearestIndex(index.x), nearestIndex(index.y)}, point);
        }
    }
}

// Homography from the candidates' indices to their points, and its inverse G.
std::int32_t fitGridMap(const Candidates& candidates, double* G) {
    double H[9];
    const auto n = static_cast<std::int32_t>(candidates.count);
    if (const auto s = zelmCalibCalcHomography(n, candidates.indices.data(), candidates.points.data(), kNotRobust, H);
        s < 0) {
        return s;
    }
    return zelmMatInvert(3, H, G);
}

// Any failure of the steps below means that there is no grid, except for want of memory.
std::int32_t gridStatus(std::int32_t status) {
    return status >= 0 ? ZELM_OK : status == ZELM_ERR_MEMORY ? status : ZELM_ERR_PATTERN_GRID;
}

// The part of the plate on which a dot may lie.
IndexWindow fieldOf(const Zelm2ViewPatternDesc& pattern) {
    return {pattern.d0 / 2.0 / pattern.d4 + kFieldTolerance, pattern.d1 / 2.0 / pattern.d5 + kFieldTolerance};
}

// Calls the action for each dot that G places on the grid, within the field, with its index; returns how many.
template <class Action>
std::size_t placeDots(std::span<const PatternDot> dots, const Point2d& corner, const Zelm2ViewPatternDesc& pattern,
                      const double* G, Action action) {
    const IndexWindow field = fieldOf(pattern);
    const HomographyMap map{G};
    std::size_t count = 0;
    for (const PatternDot& dot : dots) {
        const Point2d index = map(fromCorner(dot, corner));
        if (field.contains(index) && isOnGrid(index)) {
            action(dot, index);
            count += 1;
        }
    }
    return count;
}

std::size_t countPlaced(std::span<const PatternDot> dots, const Point2d& corner, const Zelm2ViewPatternDesc& pattern,
                        const double* G) {
    return placeDots(dots, corner, pattern, G, [](const PatternDot&, const Point2d&) {});
}

// The safe way to the homography: markers and next neighbours first.
std::int32_t fitFromNeighbours(std::span<const PatternDot> dots, const MarkerFrame& frame, const MarkerMap& markerMap,
                               const IndexWindow& around, Candidates* candidates, double* G) {
    collect(dots, frame.corner, markerMap, IndexWindow{1.0, 1.0}, candidates);
    candidates->add({around.mostU, 0.0}, frame.toX);
    candidates->add({0.0, around.mostV}, frame.toY);
    if (const auto s = fitGridMap(*candidates, G); s < 0) {
        return s;
    }
    collect(dots, frame.corner, HomographyMap{G}, around, candidates);
    return fitGridMap(*candidates, G);
}

}  // namespace

std::int32_t estimateGridMap(std::span<const PatternDot> dots, const MarkerFrame& frame,
                             const Zelm2ViewPatternDesc& pattern, double* G) {
    const IndexWindow around = {std::trunc(pattern.d6 / pattern.d4 + 0.5), std::trunc(pattern.d7 / pattern.d5 + 0.5)};
    if (!(around.mostU <= kMaxIndex && around.mostV <= kMaxIndex)) {
        return ZELM_ERR_PATTERN_GRID;
    }
    MarkerMap markerMap{};
    if (const auto s = makeMarkerMap(frame, pattern, &markerMap); s < 0) {
        return gridStatus(s);
    }
    const std::size_t most = dots.size() + 2;  // the two markers at the ends of the axes count twice
    Candidates candidates{WorkBuffer<Point2d>(most), WorkBuffer<Point2d>(most)};
    if (!candidates.indices.ok() || !candidates.points.ok()) {
        return ZELM_ERR_MEMORY;
    }
    collect(dots, frame.corner, markerMap, around, &candidates);
    const auto direct = fitGridMap(candidates, G);
    const std::size_t placed = direct >= 0 ? countPlaced(dots, frame.corner, pattern, G) : 0;
    if (direct == ZELM_ERR_MEMORY || placed == dots.size()) {
        return gridStatus(direct);
    }
    double other[9];  // docs/decisions.md#second-grid-fit
    const auto indirect = fitFromNeighbours(dots, frame, markerMap, around, &candidates, other);
    if (indirect == ZELM_ERR_MEMORY) {
        return indirect;
    }
    if (indirect >= 0 && countPlaced(dots, frame.corner, pattern, other) > placed) {
        std::copy(other, other + 9, G);
        return ZELM_OK;
    }
    return gridStatus(direct);
}

void assignGrid(std::span<const PatternDot> dots, const Point2d& corner, const Zelm2ViewPatternDesc& pattern,
                const double* G, Zelm2ViewPtnEntry* entry) {
    entry->count = 0;
    placeDots(dots, corner, pattern, G, [&pattern, entry](const PatternDot& dot, const Point2d& index) {
        entry->plane[entry->count] = {nearestIndex(index.x) * pattern.d4, nearestIndex(index.y) * pattern.d5};
        entry->image[entry->count++] = dot.centre;
    });
}

}  // namespace zelm
