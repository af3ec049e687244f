#include "plateDesign.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <utility>

namespace zelm::measure {
namespace {

using Findings = std::vector<ZelmMeasurePlateFinding>;

constexpr int kMarkers = 3;
constexpr double kOnGrid = 1e-6;  // of a pitch; what rounding of stated lengths makes

// The reader takes a dot for a marker whose area lies within 1.1 mean dot areas below a marker's: at the square root of
// 2.1 times the diameter all dots are. From 1.6 times on they are told apart reliably.
constexpr double kFatalMarkerRatio = 1.45;
constexpr double kLeastMarkerRatio = 1.6;

constexpr double kGoodDots = 25.0;  // five columns and rows: fewer leave a homography little to average over

// Pixels. From a radius of 4.5 on every dot is found; at 4.2 half of the images lack some, at 3.5 half of them are not
// read, and below that of minDotArea dots are not looked for. Outlines are those of blobs of up to some 120 pixels.
constexpr double kLeastRadius = 4.5;
constexpr double kMostRadius = 60.0;
// Pixels between outlines: below, blobs run into each other, first some dots, then all markers.
constexpr double kFatalGap = 2.0;
constexpr double kLeastGap = 4.0;
constexpr double kMostAxisDifference = 100.0;  // pixels: the reader's limit

// Shares of an image. The reader looks for a plate that covers a twentieth of it, also when tilted by 45 degrees.
constexpr double kFatalFieldShare = 0.05;
constexpr double kLeastFieldShare = 0.07;

ZelmMeasurePlateFinding finding(int flaw, bool isFatal, double value, double limit, int camera = -1) {
    return {static_cast<std::int32_t>(sizeof(ZelmMeasurePlateFinding)), flaw, camera, isFatal ? 1 : 0, value, limit};
}

// Columns or rows on either side of the corner marker.
double reachAlong(double extent, double pitch) {
    return std::floor(0.5 * extent / pitch + 1e-9);
}

struct Place {
    double x = 0.0;
    double y = 0.0;
};

// A plate in pitches.
struct Design {
    explicit Design(const Pattern& p)
        : reach{reachAlong(p.d0, p.d4), reachAlong(p.d1, p.d5)},
          marker{p.d6 / p.d4, p.d7 / p.d5},
          pitch(std::min(p.d4, p.d5)) {}

    Place reach;   // of the field on either side
    Place marker;  // the x marker's column, the y marker's row
    double pitch;  // the smaller one, plate units

    double dots() const { return (2.0 * reach.x + 1.0) * (2.0 * reach.y + 1.0); }
    bool isInField(double index, double most) const { return index <= most + kOnGrid; }
};

double offGrid(double index) {
    return std::fabs(index - std::round(index));
}

void judgeMarkers(const Pattern& p, const Design& design, Findings& findings) {
    if (p.markers != kMarkers) {
        findings.push_back(finding(ZELM_MEASURE_PLATE_MARKER_COUNT, true, p.markers, kMarkers));
    }
    const double off = std::max(offGrid(design.marker.x), offGrid(design.marker.y));
    if (off > kOnGrid) {
        findings.push_back(finding(ZELM_MEASURE_PLATE_MARKER_OFF_GRID, true, off, 0.0));
    }
    for (const auto& [index, most] : {std::pair(design.marker.x, design.reach.x), {design.marker.y, design.reach.y}}) {
        if (!design.isInField(index, most)) {
            findings.push_back(finding(ZELM_MEASURE_PLATE_MARKER_OUTSIDE, true, index, most));
        }
    }
    if (const double ratio = p.d3 / p.d2; ratio < kLeastMarkerRatio) {
        findings.push_back(
            finding(ZELM_MEASURE_PLATE_MARKER_RATIO, ratio < kFatalMarkerRatio, ratio, kLeastMarkerRatio));
    }
}

// The smallest gap between a marker and what stands beside it, which may be another marker.
double markerGap(const Pattern& p, const Design& design) {
    const double toDot = design.pitch - 0.5 * (p.d2 + p.d3);
    const bool besideX = design.marker.x < 1.5;
    const bool besideY = design.marker.y < 1.5;
    return std::min({toDot, besideX ? p.d4 - p.d3 : toDot, besideY ? p.d5 - p.d3 : toDot});
}

void judgeGaps(const Pattern& p, const Design& design, Findings& findings) {
    const double gap = std::min(design.pitch - p.d2, markerGap(p, design));
    if (!(gap > 0.0)) {
        findings.push_back(finding(ZELM_MEASURE_PLATE_TOUCH, true, gap, 0.0));
        return;
    }
    // Edges are looked for up to two radii from a blob's middle; the far edge of a neighbour lies at the pitch and half
    // the neighbour's diameter. Within reach it may pass for the marker's own.
    const double farEdge = design.pitch + 0.5 * p.d2;
    if (p.d3 >= farEdge) {
        findings.push_back(
            finding(ZELM_MEASURE_PLATE_NEIGHBOUR_IN_REACH, false, p.d3 / design.pitch, farEdge / design.pitch));
    }
}

// Whether the markers that the field holds lie on themselves after a motion that leaves the field as it is.
template <class Motion>
bool isKept(const Design& design, Motion motion) {
    std::vector<Place> markers{{0.0, 0.0}};
    if (design.isInField(design.marker.x, design.reach.x)) {
        markers.push_back({design.marker.x, 0.0});
    }
    if (design.isInField(design.marker.y, design.reach.y)) {
        markers.push_back({0.0, design.marker.y});
    }
    return std::all_of(markers.begin(), markers.end(), [&](const Place& marker) {
        const Place moved = motion(marker);
        return std::any_of(markers.begin(), markers.end(), [&moved](const Place& other) {
            return std::hypot(moved.x - other.x, moved.y - other.y) < kOnGrid;
        });
    });
}

void judgeSymmetry(const Pattern& p, const Design& design, Findings& findings) {
    if (isKept(design, [](const Place& m) { return Place{-m.x, -m.y}; })) {
        findings.push_back(finding(ZELM_MEASURE_PLATE_HALF_TURN, true, 0.0, 0.0));
    }
    const bool isSquare = design.reach.x == design.reach.y && std::fabs(p.d4 - p.d5) < kOnGrid * design.pitch;
    if (isSquare && isKept(design, [](const Place& m) { return Place{m.y, m.x}; })) {
        findings.push_back(finding(ZELM_MEASURE_PLATE_MIRROR, false, 0.0, 0.0));
    }
}

void judgeDotCount(const Pattern& p, const Design& design, Findings& findings) {
    const bool isFatal = design.dots() < p.minDots;
    if (isFatal || design.dots() < kGoodDots) {
        findings.push_back(finding(ZELM_MEASURE_PLATE_FEW_DOTS, isFatal, design.dots(),
                                   isFatal ? static_cast<double>(p.minDots) : kGoodDots));
    }
}

void judgeDotSize(const Pattern& p, const PlateSightScale& sight, int camera, Findings& findings) {
    const double scale = std::min(sight.farX, sight.farY);
    const double radius = 0.5 * p.d2 * scale;
    const double area = std::numbers::pi * 0.25 * p.d2 * p.d2 * sight.farX * sight.farY;
    if (radius < kLeastRadius) {
        findings.push_back(finding(ZELM_MEASURE_PLATE_DOTS_SMALL, area < p.minDotArea, radius, kLeastRadius, camera));
    }
    const double largest = 0.5 * p.d2 * std::max(sight.nearX, sight.nearY);
    if (largest > kMostRadius) {
        findings.push_back(finding(ZELM_MEASURE_PLATE_DOTS_LARGE, false, largest, kMostRadius, camera));
    }
}

void judgeSpacing(const Pattern& p, const Design& design, const PlateSightScale& sight, int camera,
                  Findings& findings) {
    const double gap = std::min(design.pitch - p.d2, markerGap(p, design)) * std::min(sight.farX, sight.farY);
    if (gap > 0.0 && gap < kLeastGap) {
        findings.push_back(finding(ZELM_MEASURE_PLATE_GAP_SMALL, gap < kFatalGap, gap, kLeastGap, camera));
    }
    const double difference = std::fabs(p.d6 * sight.nearX - p.d7 * sight.nearY);
    if (difference > kMostAxisDifference) {
        findings.push_back(finding(ZELM_MEASURE_PLATE_AXES_DIFFER, true, difference, kMostAxisDifference, camera));
    }
}

// The share of the field that an image shows, held upright or turned by a quarter, whichever is more.
double shareSeen(double fieldWidth, double fieldHeight, double width, double height) {
    const auto seen = [&](double w, double h) { return std::min(1.0, width / w) * std::min(1.0, height / h); };
    return std::max(seen(fieldWidth, fieldHeight), seen(fieldHeight, fieldWidth));
}

void judgeField(const Pattern& p, const Design& design, const PlateSightScale& sight, int camera, Findings& findings) {
    if (!(sight.width > 0.0 && sight.height > 0.0)) {
        return;
    }
    const double width = 2.0 * design.reach.x * p.d4 + p.d2;
    const double height = 2.0 * design.reach.y * p.d5 + p.d2;
    const double seen = shareSeen(width * sight.nearX, height * sight.nearY, sight.width, sight.height);
    if (seen < 1.0) {
        const bool isFatal = seen * design.dots() < p.minDots;
        findings.push_back(finding(ZELM_MEASURE_PLATE_FIELD_LARGE, isFatal, seen, 1.0, camera));
    }
    const double share = width * height * sight.farX * sight.farY / (sight.width * sight.height);
    if (share < kLeastFieldShare) {
        findings.push_back(
            finding(ZELM_MEASURE_PLATE_FIELD_SMALL, share < kFatalFieldShare, share, kLeastFieldShare, camera));
    }
}

}  // namespace

std::vector<ZelmMeasurePlateFinding> plateFindings(const Pattern& plate) {
    const Design design(plate);
    Findings findings;
    judgeMarkers(plate, design, findings);
    judgeGaps(plate, design, findings);
    judgeSymmetry(plate, design, findings);
    judgeDotCount(plate, design, findings);
    return findings;
}

std::vector<ZelmMeasurePlateFinding> cameraFindings(const Pattern& plate, const PlateSightScale& sight, int camera) {
    const Design design(plate);
    Findings findings;
    judgeDotSize(plate, sight, camera, findings);
    judgeSpacing(plate, design, sight, camera, findings);
    judgeField(plate, design, sight, camera, findings);
    return findings;
}

}  // namespace zelm::measure
