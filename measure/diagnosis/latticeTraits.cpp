#include "latticeTraits.h"

#include <algorithm>
#include <cmath>

namespace zelm::measure {
namespace {

constexpr double kMinMarkerSize = 1.22;    // over the dots around: sizes of dots of one kind spread by some per cent
constexpr double kMarkerShare = 0.35;      // of the way from a dot's size to a marker's
constexpr double kHighlightShare = 0.2;    // of the contrast by which a highlight is brighter than dot and ground,
constexpr double kHighlightLevel = 248.0;  // or so bright,
constexpr double kMinHighlight = 8.0;      // and by so many gray levels
constexpr int kMaxExpected = 20'000;       // places that are looked at

// Marker-sized dots; a plate of which no dot is larger has none.
std::vector<LatticeDot> markersOf(const DotLattice& lattice, const Pattern& plate) {
    std::vector<LatticeDot> markers;
    std::copy_if(lattice.dots.begin(), lattice.dots.end(), std::back_inserter(markers),
                 [&](const LatticeDot& dot) { return dot.size > markerSize(plate); });
    return markers;
}

// Three markers of which two stand in the row and the column of the third.
void findFrame(const std::vector<LatticeDot>& m, MarkerTraits& traits) {
    for (std::size_t i = 0; i < m.size(); ++i) {
        const LatticeDot& corner = m[i];
        const LatticeDot& a = m[(i + 1) % 3];
        const LatticeDot& b = m[(i + 2) % 3];
        const bool aInRow = a.row == corner.row && b.column == corner.column;
        const bool bInRow = b.row == corner.row && a.column == corner.column;
        if (!aInRow && !bInRow) {
            continue;
        }
        const int alongColumns = (aInRow ? a : b).column - corner.column;
        const int alongRows = (aInRow ? b : a).row - corner.row;
        traits.isFrame = true;
        traits.cornerColumn = corner.column;
        traits.cornerRow = corner.row;
        // The lattice's axes turn clockwise as the plate's do: x is the one that turns into the other.
        traits.isTurned = (alongColumns > 0) != (alongRows > 0);
        if (traits.isTurned) {
            traits.columns = std::abs(alongRows);
            traits.rows = std::abs(alongColumns);
            traits.xSign = alongRows > 0 ? 1 : -1;
            traits.ySign = alongColumns > 0 ? 1 : -1;
        } else {
            traits.columns = std::abs(alongColumns);
            traits.rows = std::abs(alongRows);
            traits.xSign = alongColumns > 0 ? 1 : -1;
            traits.ySign = alongRows > 0 ? 1 : -1;
        }
        return;
    }
}

MarkerTraits markerTraits(const DotLattice& lattice, const Pattern& plate) {
    const std::vector<LatticeDot> markers = markersOf(lattice, plate);
    MarkerTraits traits;
    traits.seen = static_cast<int>(markers.size());
    if (!markers.empty()) {
        std::vector<double> sizes(markers.size());
        std::transform(markers.begin(), markers.end(), sizes.begin(), [](const LatticeDot& dot) { return dot.size; });
        traits.ratio = median(std::move(sizes));
    }
    if (markers.size() == 3) {
        findFrame(markers, traits);
    }
    return traits;
}

struct Field {
    int left = 0, right = 0, top = 0, bottom = 0;  // lattice places
};

// The places where the description expects dots; where the markers do not tell, those within the bounds of what is
// seen, and around them where there are fewer columns or rows than described.
Field fieldOf(const DotLattice& lattice, const Pattern& plate, const MarkerTraits& markers) {
    const auto half = [](double extent, double pitch) {
        constexpr double kRounding = 0.001;
        return static_cast<int>(std::clamp(std::floor(extent / 2.0 / pitch + kRounding), 0.0, 1000.0));
    };
    const int x = half(plate.d0, plate.d4);
    const int y = half(plate.d1, plate.d5);
    const LatticeBounds b = lattice.bounds();
    if (markers.isFrame) {
        const int columns = markers.isTurned ? y : x;
        const int rows = markers.isTurned ? x : y;
        return {markers.cornerColumn - columns, markers.cornerColumn + columns, markers.cornerRow - rows,
                markers.cornerRow + rows};
    }
    const int mostColumns = 2 * std::max(x, y) + 1;
    const int leastColumns = 2 * std::min(x, y) + 1;
    // Which axis is which is not known: only a lattice that is too small either way has lost something.
    const bool isTurned = b.rows() > b.columns();
    const int columnGap = (isTurned ? leastColumns : mostColumns) > b.columns() ? 1 : 0;
    const int rowGap = (isTurned ? mostColumns : leastColumns) > b.rows() ? 1 : 0;
    return {b.left - columnGap, b.right + columnGap, b.top - rowGap, b.bottom + rowGap};
}

unsigned sidesBeyond(const DenseImage& image, Point2d p, double radius) {
    unsigned sides = 0;
    sides |= p.x < radius ? kLeftSide : 0U;
    sides |= p.x > image.width() - 1 - radius ? kRightSide : 0U;
    sides |= p.y < radius ? kTopSide : 0U;
    sides |= p.y > image.height() - 1 - radius ? kBottomSide : 0U;
    return sides;
}

double meanLevel(const DenseImage& image, Point2d at, double radius) {
    const int reach = std::max(1, static_cast<int>(radius));
    double sum = 0.0;
    double count = 0.0;
    for (int y = static_cast<int>(at.y) - reach; y <= static_cast<int>(at.y) + reach; ++y) {
        for (int x = static_cast<int>(at.x) - reach; x <= static_cast<int>(at.x) + reach; ++x) {
            if (x >= 0 && y >= 0 && x < image.width() && y < image.height()) {
                sum += image.row(y)[x];
                count += 1.0;
            }
        }
    }
    return count > 0.0 ? sum / count : 0.0;
}

// Brighter than both dot and ground: a reflection, not something that covers them.
bool isHighlight(double level, const DotLevels& levels) {
    const double brighter = std::max(levels.inside, levels.outside);
    const double contrast = std::fabs(levels.outside - levels.inside);
    return level > brighter + kMinHighlight &&
           (level > brighter + kHighlightShare * contrast || level >= kHighlightLevel);
}

PlaceTraits placeTraits(const DenseImage& image, const DotLattice& lattice, const Pattern& plate,
                        const MarkerTraits& markers, double radius, const DotLevels& levels) {
    const Field field = fieldOf(lattice, plate, markers);
    const LatticeBounds bounds = lattice.bounds();
    PlaceTraits traits;
    if (static_cast<double>(field.right - field.left + 1) * (field.bottom - field.top + 1) > kMaxExpected) {
        return traits;
    }
    for (int row = field.top; row <= field.bottom; ++row) {
        for (int column = field.left; column <= field.right; ++column) {
            const bool isInner =
                column >= bounds.left && column <= bounds.right && row >= bounds.top && row <= bounds.bottom;
            traits.expected += markers.isFrame || isInner ? 1 : 0;
            if (lattice.at(column, row) != nullptr) {
                continue;
            }
            const Point2d p = lattice.place(column, row);
            if (const unsigned sides = sidesBeyond(image, p, radius); sides != 0) {
                traits.outside += 1;
                traits.sides |= sides;
                continue;
            }
            if (!markers.isFrame && !isInner) {
                continue;  // what lies beyond the bounds may be the end of the plate
            }
            traits.hidden += 1;
            traits.inner += isInner ? 1 : 0;
            traits.highlights += isHighlight(meanLevel(image, p, radius), levels) ? 1 : 0;
        }
    }
    return traits;
}

}  // namespace

double markerSize(const Pattern& plate) {
    return std::max(kMinMarkerSize, 1.0 + kMarkerShare * (plate.d3 / plate.d2 - 1.0));
}

LatticeTraits traitsOf(const DenseImage& image, const std::vector<Spot>& spots, const DotLattice& lattice,
                       const Pattern& plate, const DotLevels& levels) {
    std::vector<double> radii;
    std::vector<double> axisRatios;
    std::vector<double> ratiosX;
    std::vector<double> ratiosY;
    for (const LatticeDot& dot : lattice.dots) {
        if (dot.size > markerSize(plate)) {
            continue;
        }
        const Spot& spot = spots[dot.spot];
        const TensorAxes axes = axesOf(spot.ellipse.shape);
        radii.push_back(spot.radius());
        axisRatios.push_back(std::sqrt(std::max(axes.smallest, 0.0) / axes.largest));
        // The ellipse in lattice coordinates: J^-1 E J^-T, whose diagonal holds the squares of the half extents.
        const auto [u, v] = lattice.steps(dot.column, dot.row);
        const double det = u.x * v.y - u.y * v.x;
        const Tensor2& e = spot.ellipse.shape;
        ratiosX.push_back(2.0 * std::sqrt(std::max(e.along(v.y, -v.x), 0.0)) / std::fabs(det));
        ratiosY.push_back(2.0 * std::sqrt(std::max(e.along(-u.y, u.x), 0.0)) / std::fabs(det));
    }
    LatticeTraits traits;
    if (radii.empty()) {
        return traits;
    }
    traits.radius = median(std::move(radii));
    traits.axisRatio = median(std::move(axisRatios));
    traits.dotRatioX = median(std::move(ratiosX));
    traits.dotRatioY = median(std::move(ratiosY));
    traits.markers = markerTraits(lattice, plate);
    traits.places = placeTraits(image, lattice, plate, traits.markers, traits.radius, levels);
    return traits;
}

}  // namespace zelm::measure
