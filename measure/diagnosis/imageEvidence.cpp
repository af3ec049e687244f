// What an image shows.
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "imageDiagnosis.h"
#include "plateDots.h"

namespace zelm::measure {
namespace {

constexpr int kRays = 20;           // as the reader's
constexpr double kRayStart = -3.0;  // pixels
constexpr double kRayEnd = 2.0;     // radii
constexpr double kFilter = 1.5;     // pixels: the standard deviation of the reader's derivative filter
constexpr double kPixelVariance = 1.0 / 12.0;
constexpr std::size_t kMinLattice = 8;      // dots that are no chance
constexpr std::size_t kSureLattice = 30;    // dots that are none,
constexpr double kMaxUnevenness = 0.12;     // pitches, even if they stand so unevenly
constexpr double kMaxFewUnevenness = 0.06;  // and fewer
constexpr double kSureEvenness = 0.05;      // pitches: so even are dots alone,
constexpr double kMaxSizeSpread = 0.08;     // otherwise their sizes have to be alike: text has 0.1 and more, dots 0.03
constexpr std::array kMargins{0.75, 0.5};   // of a pitch about the outermost dots: the more the better

// The weakest edge on 20 rays from a spot's centre, gray levels a pixel; 0 when a ray meets none.
double weakestEdge(const DenseImage& image, const Spot& spot, int polarity) {
    const ZelmImage record = image.record();
    const double reach = kRayEnd * spot.radius();
    double weakest = HUGE_VAL;
    for (int k = 0; k < kRays; ++k) {
        const double angle = 2.0 * std::numbers::pi * k / kRays;
        const Point2d u{std::cos(angle), std::sin(angle)};
        const Point2d c = spot.ellipse.centre;
        const Point2d from{c.x + kRayStart * u.x, c.y + kRayStart * u.y};
        const Point2d to{c.x + reach * u.x, c.y + reach * u.y};
        Point2d edge{};
        double strength = 0.0;
        const std::int32_t status = zelmEdge1dGenDiffMax(&record, &from, &to, polarity == 1 ? -1 : 1, &edge, &strength);
        requireMemory(status);
        if (status != 1) {
            return 0.0;
        }
        weakest = std::min(weakest, strength);
    }
    return weakest;
}

double pitchAt(const DotLattice& lattice, const LatticeDot& dot) {
    const auto [u, v] = lattice.steps(dot.column, dot.row);
    return std::min(std::hypot(u.x, u.y), std::hypot(v.x, v.y));
}

// Ordinary dots of the lattice with the room around them.
std::vector<SharpnessSpot> sharpnessSpots(const ImageEvidence& e, const Pattern& plate) {
    std::vector<SharpnessSpot> list;
    list.reserve(e.lattice.dots.size());
    for (const LatticeDot& dot : e.lattice.dots) {
        if (dot.size > markerSize(plate)) {
            continue;
        }
        const SpotEllipse& ellipse = e.spots[dot.spot].ellipse;
        const double longest = std::sqrt(axesOf(ellipse.shape).largest);
        list.push_back({ellipse, 0.95 * pitchAt(e.lattice, dot) - 2.0 * longest});
    }
    return list;
}

ZelmRect regionOf(const DenseImage& image, const ImageEvidence& e, double share) {
    double left = HUGE_VAL;
    double top = HUGE_VAL;
    double right = 0.0;
    double bottom = 0.0;
    for (const LatticeDot& dot : e.lattice.dots) {
        const Point2d p = e.spots[dot.spot].ellipse.centre;
        const double margin = std::max(share * pitchAt(e.lattice, dot), 2.0);
        left = std::min(left, p.x - margin);
        right = std::max(right, p.x + margin);
        top = std::min(top, p.y - margin);
        bottom = std::max(bottom, p.y + margin);
    }
    const int x = std::clamp(static_cast<int>(left), 0, image.width() - 1);
    const int y = std::clamp(static_cast<int>(top), 0, image.height() - 1);
    return {x, y, std::clamp(static_cast<int>(std::ceil(right)), x, image.width() - 1) - x + 1,
            std::clamp(static_cast<int>(std::ceil(bottom)), y, image.height() - 1) - y + 1};
}

double axisDifference(const ImageEvidence& e) {
    const MarkerTraits& m = e.traits.markers;
    if (!m.isFrame) {
        return 0.0;
    }
    const Point2d corner = e.lattice.place(m.cornerColumn, m.cornerRow);
    const auto distance = [&](int columns, int rows) {
        const Point2d p = e.lattice.place(m.cornerColumn + columns, m.cornerRow + rows);
        return std::hypot(p.x - corner.x, p.y - corner.y);
    };
    const double x = m.isTurned ? distance(0, m.xSign * m.columns) : distance(m.xSign * m.columns, 0);
    const double y = m.isTurned ? distance(m.ySign * m.rows, 0) : distance(0, m.ySign * m.rows);
    return std::fabs(x - y);
}

void addLattice(const DenseImage& image, const Pattern& plate, const ZelmRect* region, ImageEvidence& e) {
    e.sharpness = sharpnessOf(image, sharpnessSpots(e, plate), plate.polarity);
    e.traits = traitsOf(image, e.spots, e.lattice, plate, {e.sharpness.inside, e.sharpness.outside});
    e.dotsRegion = regionOf(image, e, kMargins.front());
    e.axisDifference = axisDifference(e);
    for (const LatticeDot& dot : e.lattice.dots) {
        e.strong += e.strengths[dot.spot] >= plate.minEdgeStrength ? 1 : 0;
    }
    for (std::size_t i = 0; e.status < 0 && region == nullptr && !e.isReadInRegion && i < kMargins.size(); ++i) {
        const ZelmRect part = regionOf(image, e, kMargins[i]);
        const DotReading again = readDots(image, plate, &part);
        requireMemory(again.status);
        e.isReadInRegion = again.status >= 0;
        e.dotsRegion = e.isReadInRegion ? part : e.dotsRegion;
    }
}

// How much the sizes of neighbours differ, median.
double sizeSpread(const DotLattice& lattice) {
    std::vector<double> spreads(lattice.dots.size());
    std::transform(lattice.dots.begin(), lattice.dots.end(), spreads.begin(),
                   [](const LatticeDot& dot) { return std::fabs(std::log(dot.size)); });
    return median(std::move(spreads));
}

// The lattice of the spots, empty where it may be chance: some spots of any image stand in rows, those of noise and
// text unevenly, or of sizes that differ.
DotLattice evenLattice(const std::vector<Spot>& spots) {
    DotLattice lattice = findLattice(spots);
    const std::size_t dots = lattice.dots.size();
    if (dots < kMinLattice) {
        return {};
    }
    const double unevenness = lattice.unevenness(spots);
    const bool isEven = unevenness < (dots < kSureLattice ? kMaxFewUnevenness : kMaxUnevenness);
    const bool isAlike = unevenness < kSureEvenness || sizeSpread(lattice) < kMaxSizeSpread;
    return isEven && isAlike ? lattice : DotLattice{};
}

// What a lattice of the other polarity shows.
void addOpposite(const std::vector<Spot>& spots, ImageEvidence& e) {
    const DotLattice lattice = evenLattice(spots);
    if (lattice.dots.empty()) {
        return;
    }
    std::vector<double> fills(lattice.dots.size());
    std::transform(lattice.dots.begin(), lattice.dots.end(), fills.begin(),
                   [&](const LatticeDot& dot) { return spots[dot.spot].fill; });
    e.oppositeDots = static_cast<int>(lattice.dots.size());
    e.oppositeFill = median(std::move(fills));
}

}  // namespace

ImageEvidence evidenceOf(const DenseImage& image, const Pattern& plate, const ZelmRect* region) {
    const ZelmRect whole{0, 0, image.width(), image.height()};
    const ZelmRect& part = region != nullptr ? *region : whole;
    ImageEvidence e;
    const DotReading reading = readDots(image, plate, region);
    requireMemory(reading.status);
    e.status = reading.status;
    if (reading.status >= 0) {
        e.read = static_cast<int>(indexDots(image, plate, reading.points).size());
    }
    e.levels = levelsOf(image, part);
    e.spots = findSpots(image, part, plate.polarity);
    e.lattice = evenLattice(e.spots);
    e.strengths.resize(e.spots.size());
    std::transform(e.spots.begin(), e.spots.end(), e.strengths.begin(),
                   [&](const Spot& spot) { return weakestEdge(image, spot, plate.polarity); });
    if (!e.lattice.dots.empty()) {
        addLattice(image, plate, region, e);
    }
    if (e.status < 0) {
        measureEdges(image, part, e.levels);
        addOpposite(findSpots(image, part, 1 - plate.polarity), e);
    }
    return e;
}

double edgeStrength(const Sharpness& s) {
    const double variance = s.spread.largest * s.spread.largest + kPixelVariance + kFilter * kFilter;
    return std::fabs(s.outside - s.inside) / std::sqrt(2.0 * std::numbers::pi * variance);
}

int describedDots(const Pattern& plate) {
    constexpr double kRounding = 0.001;
    const auto count = [](double extent, double pitch) {
        return 2.0 * std::floor(std::clamp(extent / 2.0 / pitch + kRounding, 0.0, 10'000.0)) + 1.0;
    };
    return static_cast<int>(count(plate.d0, plate.d4) * count(plate.d1, plate.d5));
}

}  // namespace zelm::measure
