#include "patternMarkers.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "zelm/fit.h"
#include "zelm/math.h"

namespace zelm {
namespace {

constexpr double kAreaTukey = 3.0;                           // robust constant of the mean dot area
constexpr double kRimTolerance = 1.5;                        // a marker's area may exceed the expected one by so many
                                                             // pixels along its outline, or by so many mean dot areas
constexpr double kSmallerTolerance = 1.1;                    // ... and fall short by so many mean dot areas
constexpr double kRightAngleTolerance = 0.3490658503988659;  // radians, 20 degrees
constexpr double kMaxAxisDifference = 100.0;                 // pixels

std::int32_t meanDotArea(std::span<const PatternDot> dots, double* mean) {
    WorkBuffer<double> areas(dots.size());
    if (!areas.ok()) {
        return ZELM_ERR_MEMORY;
    }
    std::transform(dots.begin(), dots.end(), areas.data(), [](const auto& dot) { return dot.ellipseArea; });
    const auto s = zelmFitMean1dim(static_cast<std::int32_t>(dots.size()), areas.data(), 1, kAreaTukey, mean);
    if (s < 0) {
        return s == ZELM_ERR_MEMORY ? s : ZELM_ERR_PATTERN_MARKERS;
    }
    return ZELM_OK;
}

// Undoes a foreshortening: stretches by 1 + stretch along the unit direction.
struct Untilt {
    double stretch;
    double x;
    double y;

    [[nodiscard]] Point2d operator()(const Point2d& v) const {
        const double along = stretch * (x * v.x + y * v.y);
        return {v.x + along * x, v.y + along * y};
    }
};

// The mean tilt of the dots (docs/decisions.md#right-angle-on-plate). A direction and its opposite are the same
// foreshortening, so the mean is taken over twice the angle.
Untilt meanTilt(std::span<const PatternDot> dots) {
    double c = 0.0;
    double s = 0.0;
    for (const PatternDot& dot : dots) {
        const double stretch = std::hypot(dot.tilt.x, dot.tilt.y);
        c += stretch * std::cos(2.0 * dot.tilt.phi);
        s += stretch * std::sin(2.0 * dot.tilt.phi);
    }
    const double phi = 0.5 * std::atan2(s, c);
    return {std::hypot(c, s) / static_cast<double>(dots.size()), std::cos(phi), std::sin(phi)};
}

Point2d between(const PatternDot& from, const PatternDot& to) {
    return {to.centre.x - from.centre.x, to.centre.y - from.centre.y};
}

double lengthOf(const Point2d& v) {
    return std::hypot(v.x, v.y);
}

// How far the angle between two image vectors is from a right one on the plate; infinite if there is no angle.
double rightAngleError(const Point2d& u, const Point2d& v, const Untilt& untilt) {
    const Point2d onPlate[2] = {untilt(u), untilt(v)};
    double angle = 0.0;
    if (zelmMathCalcAngle(2, &onPlate[0].x, &onPlate[1].x, &angle) < 0) {
        return HUGE_VAL;
    }
    return std::fabs(angle - std::numbers::pi / 2);
}

}  // namespace

std::int32_t pickMarkers(std::span<const PatternDot> dots, const Zelm2ViewPatternDesc& pattern, DotList* markers) {
    double m = 0.0;
    if (const auto s = meanDotArea(dots, &m); s < 0) {
        return s;
    }
    const double ratio = pattern.d3 / pattern.d2;
    const double T = m * (ratio * ratio);
    const double outline = 2.0 * std::numbers::pi * std::sqrt(T / std::numbers::pi);
    const double mostAbove = kRimTolerance * std::max(outline, m);
    const double mostBelow = kSmallerTolerance * m;
    if (!markers->acquire(dots.size())) {
        return ZELM_ERR_MEMORY;
    }
    for (const PatternDot& dot : dots) {
        if (dot.ellipseArea - T <= mostAbove && T - dot.ellipseArea <= mostBelow) {
            markers->add(dot);
        }
    }
    const auto required = static_cast<std::size_t>(std::max(pattern.markers, 0));
    return required >= 1 && markers->size() == required ? ZELM_OK : ZELM_ERR_PATTERN_MARKERS;
}

std::int32_t findMarkerFrame(std::span<const PatternDot> markers, std::span<const PatternDot> dots,
                             MarkerFrame* frame) {
    const Untilt untilt = meanTilt(dots);
    const std::size_t n = markers.size();
    double best = HUGE_VAL;
    for (std::size_t i = 0; i < n; ++i) {
        const Point2d u = between(markers[i], markers[(i + 1) % n]);
        const Point2d v = between(markers[i], markers[(i + 2) % n]);
        const double error = rightAngleError(u, v, untilt);
        if (error <= kRightAngleTolerance && error < best) {
            best = error;
            const bool isUFirst = u.x * v.y - u.y * v.x > 0.0;
            *frame = {markers[i].centre, isUFirst ? u : v, isUFirst ? v : u};
        }
    }
    if (best == HUGE_VAL || std::fabs(lengthOf(frame->toX) - lengthOf(frame->toY)) > kMaxAxisDifference) {
        return ZELM_ERR_PATTERN_MARKERS;
    }
    return ZELM_OK;
}

}  // namespace zelm
