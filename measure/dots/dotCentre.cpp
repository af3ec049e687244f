#include "dotCentre.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <span>
#include <vector>

#include "fault.h"

namespace zelm::measure {
namespace {

constexpr int kRays = 20;
constexpr std::size_t kMinEdges = 15;  // points of a whole outline that agree with an ellipse
constexpr int kArcRays = 60;           // of a dot that is partly hidden
constexpr std::size_t kMinArc = 33;    // points of its outline that agree: more than half of it
constexpr double kDisturbed = 2.0;     // pixels around an occlusion: the width of a profile and the blur
constexpr double kAgreement = 0.2;     // pixels from the ellipse; an edge is found to 0.1 pixels or better
constexpr double kHiddenReach = 60.0;  // pixels of the rays where no whole spot is seen
constexpr double kRayStart = -3.0;     // pixels from the centroid, against the ray's direction
constexpr double kRayEnd = 1.7;        // from the centroid, in radii: before whatever surrounds the dot's pad
constexpr double kEllipseTukey = 3.0;  // robust constant of the ellipse fit
constexpr int kMinArea = 12;           // pixels
constexpr double kMinFill = 0.6;       // of the box, of which an upright ellipse fills pi/4 and a slanted one less
constexpr double kMaxFill = 0.9;       //
constexpr double kMaxBoxRatio = 4.0;   // its longer side over its shorter one
constexpr std::array kReaches{12, 24, 48, 96};  // pixels from the given one to the edges of the windows tried

// Owns what the library found.
struct Blobs {
    ZelmBlob* data = nullptr;
    std::int32_t count = 0;

    Blobs() = default;
    ~Blobs() { zelmBinFree(&data); }
    Blobs(const Blobs&) = delete;
    Blobs& operator=(const Blobs&) = delete;
};

ZelmRect windowAround(const DenseImage& image, Point2d near, int reach) {
    const int x = static_cast<int>(std::lround(near.x));
    const int y = static_cast<int>(std::lround(near.y));
    const int left = std::max(x - reach, 0);
    const int top = std::max(y - reach, 0);
    return {left, top, std::min(x + reach, image.width() - 1) - left + 1,
            std::min(y + reach, image.height() - 1) - top + 1};
}

bool isRound(const ZelmBlob& blob) {
    const double fill = blob.area / (static_cast<double>(blob.width) * blob.height);
    const double longer = std::max(blob.width, blob.height);
    const double shorter = std::min(blob.width, blob.height);
    return blob.area >= kMinArea && fill >= kMinFill && fill <= kMaxFill && longer <= kMaxBoxRatio * shorter;
}

bool covers(const ZelmBlob& blob, Point2d p) {
    return p.x >= blob.left && p.x <= blob.right && p.y >= blob.top && p.y <= blob.bottom;
}

// The round spot that covers the pixel and lies wholly in the smallest window that holds one.
std::optional<ZelmBlob> spotAt(const DenseImage& image, Point2d near, DotPolarity polarity) {
    const ZelmImage record = image.record();
    for (const int reach : kReaches) {
        const ZelmRect window = windowAround(image, near, reach);
        const std::int32_t threshold = zelmBinOtsuThresholdImage(&record, &window);
        Blobs blobs;
        requireMemory(zelmBinBlob(&record, &window, threshold, polarity == DotPolarity::bright ? 1 : 0, 0, kMinArea,
                                  &blobs.data, &blobs.count));
        const std::span<const ZelmBlob> found(blobs.data, static_cast<std::size_t>(blobs.count));
        const auto spot = std::find_if(found.begin(), found.end(),
                                       [&](const ZelmBlob& blob) { return isRound(blob) && covers(blob, near); });
        if (spot != found.end()) {
            return *spot;
        }
    }
    return std::nullopt;
}

using EdgeFinder = decltype(&zelmEdge1dGenDiffMax);

// The points at which rays from a place inside the dot meet its outline, in the order of their directions.
std::vector<Point2d> findOutline(const DenseImage& image, Point2d inside, int rays, double reach, DotPolarity polarity,
                                 EdgeFinder findEdge) {
    const ZelmImage record = image.record();
    const std::int32_t sign = polarity == DotPolarity::bright ? -1 : 1;
    std::vector<Point2d> outline;
    for (int k = 0; k < rays; ++k) {
        const double angle = 2.0 * std::numbers::pi * k / rays;
        const Point2d u{std::cos(angle), std::sin(angle)};
        const Point2d from{inside.x + kRayStart * u.x, inside.y + kRayStart * u.y};
        const Point2d to{inside.x + reach * u.x, inside.y + reach * u.y};
        Point2d edge{};
        double strength = 0.0;
        const std::int32_t status = findEdge(&record, &from, &to, sign, &edge, &strength);
        requireMemory(status);
        if (status == 1) {
            outline.push_back(edge);
        }
    }
    return outline;
}

// How far a point is from an ellipse's centre, in units of its outline there: 1 on it.
double relativeRadius(const Ellipse2d& e, Point2d p) {
    const double c = std::cos(e.angle);
    const double s = std::sin(e.angle);
    return std::hypot(((p.x - e.x) * c + (p.y - e.y) * s) / e.a, ((p.y - e.y) * c - (p.x - e.x) * s) / e.b);
}

std::size_t countAgreeing(const Ellipse2d& e, std::span<const Point2d> outline) {
    return static_cast<std::size_t>(std::count_if(outline.begin(), outline.end(), [&](const Point2d& p) {
        return std::fabs(relativeRadius(e, p) - 1.0) * std::sqrt(e.a * e.b) <= kAgreement;
    }));
}

bool fitEllipse(std::span<const Point2d> points, std::int32_t robust, double constant, Ellipse2d& ellipse) {
    const std::int32_t status =
        zelmFitEllipse(static_cast<std::int32_t>(points.size()), points.data(), robust, constant, &ellipse);
    requireMemory(status);
    return status >= 0;
}

// The ellipse of a whole outline, of which some points may be astray.
std::optional<Ellipse2d> wholeEllipse(std::span<const Point2d> outline) {
    Ellipse2d ellipse{};
    if (outline.size() < kMinEdges || !fitEllipse(outline, 1, kEllipseTukey, ellipse) ||
        countAgreeing(ellipse, outline) < kMinEdges) {
        return std::nullopt;
    }
    return ellipse;
}

std::optional<Ellipse2d> ellipseThrough(std::span<const Point2d> arc) {
    Ellipse2d ellipse{};
    if (!fitEllipse(arc, 0, 0.0, ellipse) || countAgreeing(ellipse, arc) < arc.size()) {
        return std::nullopt;
    }
    return ellipse;
}

// An arc without the points near its ends, which what hides the dot disturbs.
std::span<const Point2d> withoutEnds(std::span<const Point2d> arc) {
    const auto isNear = [](const Point2d& a, const Point2d& b) {
        return std::hypot(a.x - b.x, a.y - b.y) < kDisturbed;
    };
    const Point2d first = arc.front();
    const Point2d last = arc.back();
    while (!arc.empty() && isNear(arc.front(), first)) {
        arc = arc.subspan(1);
    }
    while (!arc.empty() && isNear(arc.back(), last)) {
        arc = arc.first(arc.size() - 1);
    }
    return arc;
}

// The ellipse of the longest arc of an outline whose points agree, for a dot that is partly hidden.
std::optional<Ellipse2d> arcEllipse(std::span<const Point2d> outline) {
    std::vector<Point2d> twice(outline.begin(), outline.end());
    twice.insert(twice.end(), outline.begin(), outline.end());
    for (std::size_t length = outline.size(); length >= kMinArc; --length) {
        for (std::size_t start = 0; start < outline.size(); ++start) {
            const auto arc = std::span<const Point2d>(twice).subspan(start, length);
            if (ellipseThrough(arc)) {
                const auto inner = withoutEnds(arc);
                return inner.size() >= kMinEdges ? ellipseThrough(inner) : std::nullopt;
            }
        }
    }
    return std::nullopt;
}

std::optional<Ellipse2d> ellipseAt(const DenseImage& image, Point2d near, DotPolarity polarity) {
    if (const auto spot = spotAt(image, near, polarity)) {
        const double reach = kRayEnd * std::sqrt(spot->area / std::numbers::pi);
        if (const auto ellipse =
                wholeEllipse(findOutline(image, {spot->cx, spot->cy}, kRays, reach, polarity, zelmEdge1dGenDiffMax))) {
            return ellipse;
        }
    }
    // Rays from the centre meet the outline squarely, where an edge is found best.
    const auto arcFrom = [&](Point2d inside) {
        return arcEllipse(findOutline(image, inside, kArcRays, kHiddenReach, polarity, zelmEdge1dGenNearest));
    };
    const auto rough = arcFrom(near);
    return rough ? arcFrom({rough->x, rough->y}) : std::nullopt;
}

}  // namespace

std::optional<Ellipse2d> dotEllipse(const DenseImage& image, Point2d near, DotPolarity polarity) {
    if (!(near.x >= 0.0 && near.y >= 0.0 && near.x <= image.width() - 1 && near.y <= image.height() - 1)) {
        return std::nullopt;
    }
    const auto ellipse = ellipseAt(image, near, polarity);
    if (!ellipse || !(relativeRadius(*ellipse, near) < 1.0)) {
        return std::nullopt;
    }
    return ellipse;
}

std::optional<Point2d> dotCentre(const DenseImage& image, Point2d near, DotPolarity polarity) {
    const auto ellipse = dotEllipse(image, near, polarity);
    return ellipse ? std::optional<Point2d>({ellipse->x, ellipse->y}) : std::nullopt;
}

}  // namespace zelm::measure
