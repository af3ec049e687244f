#include "latticeTraits.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace zelm::measure {
namespace {

constexpr double kMinMarkerSize = 1.22;    // over the dots around: sizes of dots of one kind spread by some per cent
constexpr double kMarkerShare = 0.35;      // of the way from a dot's size to a marker's
constexpr double kHighlightShare = 0.2;    // of the contrast by which a highlight is brighter than dot and ground,
constexpr double kHighlightLevel = 245.0;  // or so bright,
constexpr double kMinHighlight = 8.0;      // and by so many gray levels
constexpr double kMaxShearedRatio = 0.62;  // of circles: seen from 52 degrees and more
constexpr double kMarkerBand = 1.15;       // dot areas by which a marker may fall short: the reader takes 1.1
constexpr double kRounder = 1.15;          // times as round as along the shortest steps
constexpr int kMaxExpected = 20'000;       // places that are looked at

constexpr double kMaxLightRatio = 1.6;  // of the light over the plate, 5 to 95 % of it: what is evenly lit has 1.4
constexpr double kWhiteLevel = 250.0;   // of places that are clipped but for some pixels

double circleRatio(const DotLattice& lattice, const Pattern& plate);
double meanLevel(const DenseImage& image, Point2d at, double radius);

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
    // Which axis is which is not known: either may have lost something, unless both counts are described ones.
    const auto described = std::minmax({2 * x + 1, 2 * y + 1});
    const auto seen = std::minmax({b.columns(), b.rows()});
    const bool isWhole = seen.first >= described.first && seen.second >= described.second;
    const int columnGap = !isWhole && b.columns() < described.second ? 1 : 0;
    const int rowGap = !isWhole && b.rows() < described.second ? 1 : 0;
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

// The most places that hang together, neighbours across corners among them.
int mostTogether(std::set<std::pair<int, int>> places) {
    int most = 0;
    while (!places.empty()) {
        std::vector<std::pair<int, int>> open{*places.begin()};
        places.erase(places.begin());
        int count = 0;
        while (!open.empty()) {
            const auto [column, row] = open.back();
            open.pop_back();
            ++count;
            for (int k = 0; k < 9; ++k) {
                const auto next = places.find({column + k % 3 - 1, row + k / 3 - 1});
                if (next != places.end()) {
                    open.push_back(*next);
                    places.erase(next);
                }
            }
        }
        most = std::max(most, count);
    }
    return most;
}

PlaceTraits placeTraits(const DenseImage& image, const DotLattice& lattice, const Pattern& plate,
                        const MarkerTraits& markers, double radius, const DotLevels& levels) {
    const Field field = fieldOf(lattice, plate, markers);
    const LatticeBounds bounds = lattice.bounds();
    const double reach = plate.d3 / plate.d2 * radius;  // a marker that the edge cuts is no spot either
    PlaceTraits traits;
    std::set<std::pair<int, int>> hidden;
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
            if (const unsigned sides = sidesBeyond(image, p, reach); sides != 0) {
                traits.outside += 1;
                traits.sides |= sides;
                continue;
            }
            if (!markers.isFrame && !isInner) {
                continue;  // what lies beyond the bounds may be the end of the plate
            }
            traits.hidden += 1;
            hidden.insert({column, row});
            traits.inner += isInner ? 1 : 0;
            const double level = meanLevel(image, p, radius);
            traits.highlights += isHighlight(level, levels) ? 1 : 0;
            traits.white += level >= kWhiteLevel ? 1 : 0;
        }
    }
    traits.together = mostTogether(std::move(hidden));
    return traits;
}

// How round the dots are on the plate if the lattice's steps are its rows and columns: the median of their short axis
// over their long one.
double roundness(const std::vector<Spot>& spots, const DotLattice& lattice, const Pattern& plate) {
    const double q = plate.d5 / plate.d4;
    std::vector<double> first;
    std::vector<double> second;
    for (const LatticeDot& dot : lattice.dots) {
        const auto [u, v] = lattice.steps(dot.column, dot.row);
        const Tensor2& e = spots[dot.spot].ellipse.shape;
        // The ellipse in lattice coordinates but for a factor, and with either step as the plate's columns.
        const Tensor2 seen{e.along(v.y, -v.x), e.xx * -v.y * u.y + e.xy * (v.x * u.y + v.y * u.x) - e.yy * v.x * u.x,
                           e.along(-u.y, u.x)};
        for (const bool isTurned : {false, true}) {
            const double x = isTurned ? q : 1.0;
            const double y = isTurned ? 1.0 : q;
            const TensorAxes axes = axesOf({x * x * seen.xx, x * y * seen.xy, y * y * seen.yy});
            (isTurned ? second : first).push_back(std::sqrt(std::max(axes.smallest, 0.0) / axes.largest));
        }
    }
    return std::max(median(std::move(first)), median(std::move(second)));
}

// A plate seen from the side: the steps along which its dots are round are its own.
DotLattice straightened(const std::vector<Spot>& spots, const DotLattice& lattice, const Pattern& plate) {
    DotLattice best = lattice;
    double most = kRounder * roundness(spots, lattice, plate);
    for (const auto& [columnsByRow, rowsByColumn] :
         {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, -1}, {-1, 1}, {2, 0}, {-2, 0}, {0, 2}, {0, -2}}) {
        DotLattice other = sheared(lattice, columnsByRow, rowsByColumn);
        const double round = roundness(spots, other, plate);
        if (round > most && circleRatio(other, plate) < kMaxShearedRatio) {
            most = round;
            best = std::move(other);
        }
    }
    return best;
}

// The short axis over the long one of the ellipse that a circle on the plate becomes.
double circleRatio(const DotLattice& lattice, const Pattern& plate) {
    const auto [u, v] = lattice.middleSteps();
    const auto ratio = [](Point2d a, Point2d c) {
        const TensorAxes axes = axesOf({a.x * a.x + c.x * c.x, a.x * a.y + c.x * c.y, a.y * a.y + c.y * c.y});
        return std::sqrt(std::max(axes.smallest, 0.0) / std::max(axes.largest, 1e-12));
    };
    // Which steps are the plate's columns need not be known.
    const double q = plate.d5 / plate.d4;
    return std::max(ratio({q * u.x, q * u.y}, v), ratio(u, {q * v.x, q * v.y}));
}

// Whether no one level parts dots from ground, or the light differs so much that none parts the plate from what is
// around it: the dots' middles against the ground in the middle of four of them, where nothing that covers the plate
// and no edge lies.
bool sharesLevels(const DenseImage& image, const std::vector<Spot>& spots, const DotLattice& lattice, int polarity) {
    std::set<std::pair<int, int>> taken;
    for (const LatticeDot& dot : lattice.dots) {
        taken.insert({dot.column, dot.row});
    }
    std::vector<double> dots;
    std::vector<double> grounds;
    for (const LatticeDot& dot : lattice.dots) {
        dots.push_back(meanLevel(image, spots[dot.spot].ellipse.centre, 1.0));
        if (taken.contains({dot.column + 1, dot.row}) && taken.contains({dot.column, dot.row + 1}) &&
            taken.contains({dot.column + 1, dot.row + 1})) {
            grounds.push_back(meanLevel(image, lattice.place(dot.column + 0.5, dot.row + 0.5), 1.0));
        }
    }
    if (grounds.empty()) {
        return false;
    }
    const auto at = [](std::vector<double>& values, double share) {
        const auto rank = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
        std::nth_element(values.begin(), values.begin() + rank, values.end());
        return values[static_cast<std::size_t>(rank)];
    };
    std::vector<double>& brighter = polarity == 0 ? grounds : dots;
    if (at(brighter, 0.95) > kMaxLightRatio * at(brighter, 0.05)) {
        return true;
    }
    return polarity == 0 ? at(dots, 0.95) > at(grounds, 0.05) : at(dots, 0.05) < at(grounds, 0.95);
}

}  // namespace

double markerSize(const Pattern& plate) {
    return std::max(kMinMarkerSize, 1.0 + kMarkerShare * (plate.d3 / plate.d2 - 1.0));
}

LatticeTraits traitsOf(const DenseImage& image, const std::vector<Spot>& spots, DotLattice& lattice,
                       const Pattern& plate, const DotLevels& levels) {
    std::vector<double> radii;
    LatticeTraits traits;
    if (lattice.dots.empty()) {
        return traits;
    }
    lattice = straightened(spots, lattice, plate);
    traits.markers = markerTraits(lattice, plate);
    traits.axisRatio = circleRatio(lattice, plate);
    traits.isLevelShared = sharesLevels(image, spots, lattice, plate.polarity);
    std::vector<double> ratiosX;
    std::vector<double> ratiosY;
    for (const LatticeDot& dot : lattice.dots) {
        if (dot.size > markerSize(plate)) {
            continue;
        }
        const Spot& spot = spots[dot.spot];
        radii.push_back(spot.radius());
        // The ellipse in lattice coordinates: J^-1 E J^-T, whose diagonal holds the squares of the half extents.
        const auto [u, v] = lattice.steps(dot.column, dot.row);
        const double det = u.x * v.y - u.y * v.x;
        const Tensor2& e = spot.ellipse.shape;
        ratiosX.push_back(2.0 * std::sqrt(std::max(e.along(v.y, -v.x), 0.0)) / std::fabs(det));
        ratiosY.push_back(2.0 * std::sqrt(std::max(e.along(-u.y, u.x), 0.0)) / std::fabs(det));
    }
    if (radii.empty()) {
        return traits;
    }
    traits.radius = median(radii);
    // A dot near the camera may look as large as a marker: areas over the usual one, as the reader tells them.
    const double q = plate.d3 / plate.d2;
    const double least = std::sqrt(std::max(q * q - kMarkerBand, 1.0)) * traits.radius;
    traits.markerLike =
        static_cast<int>(std::count_if(radii.begin(), radii.end(), [=](double r) { return r > least; }));
    traits.dotRatioX = median(std::move(ratiosX));
    traits.dotRatioY = median(std::move(ratiosY));
    const LatticeBounds b = lattice.bounds();
    const MarkerTraits& m = traits.markers;
    traits.isCentred = m.isFrame && m.cornerColumn - b.left == b.right - m.cornerColumn &&
                       m.cornerRow - b.top == b.bottom - m.cornerRow;
    traits.places = placeTraits(image, lattice, plate, traits.markers, traits.radius, levels);
    return traits;
}

}  // namespace zelm::measure
