#include "patternDots.h"

#include <cmath>
#include <numbers>

#include "zelm/edge1d.h"
#include "zelm/fit.h"

namespace zelm {
namespace {

constexpr int kRays = 20;                           // a dot: docs/decisions.md#twenty-rays
constexpr double kRayStep = std::numbers::pi / 10;  // radians
constexpr double kRayStart = -3.0;                  // pixels from the centroid, against the ray's direction
constexpr double kRayEnd = 2.0;                     // from the centroid, in radii of the blob
constexpr double kEllipseTukey = 3.0;               // robust constant of the ellipse fit

struct Ray {
    double x;
    double y;
};

void fillRays(Ray* rays) {
    for (int k = 0; k < kRays; ++k) {
        rays[k] = {std::cos(k * kRayStep), std::sin(k * kRayStep)};
    }
}

Point2d onRay(const ZelmBlob& blob, const Ray& ray, double distance) {
    return {blob.cx + distance * ray.x, blob.cy + distance * ray.y};
}

// The outline of a blob on every ray: 1, 0 if a ray has no edge strong enough, or ZELM_ERR_MEMORY.
std::int32_t findOutline(const ZelmImage& image, const Zelm2ViewPatternDesc& pattern, const ZelmBlob& blob,
                         const Ray* rays, Point2d* outline) {
    const double r = std::sqrt(blob.area / std::numbers::pi);
    const std::int32_t sign = pattern.polarity == 1 ? -1 : 1;  // bright dots fall off outwards, dark ones rise
    for (int k = 0; k < kRays; ++k) {
        const Point2d from = onRay(blob, rays[k], kRayStart);
        const Point2d to = onRay(blob, rays[k], kRayEnd * r);
        double strength = 0.0;
        const auto s = zelmEdge1dGenDiffMax(&image, &from, &to, sign, &outline[k], &strength);
        if (s == ZELM_ERR_MEMORY) {
            return s;
        }
        if (s != 1 || strength < pattern.minEdgeStrength) {
            return 0;
        }
    }
    return 1;
}

PatternDot dotOf(const Ellipse2d& ellipse, const ZelmBlob& blob) {
    const double stretch = ellipse.a / ellipse.b - 1.0;
    const double phi = ellipse.angle + std::numbers::pi / 2;
    PatternDot dot;
    dot.centre = {ellipse.x, ellipse.y};
    dot.eccentricity = std::sqrt(ellipse.a * ellipse.a - ellipse.b * ellipse.b) / ellipse.a;
    dot.ellipseArea = std::numbers::pi * ellipse.a * ellipse.b;
    dot.blobArea = blob.area;
    dot.tilt = {stretch * std::cos(phi), stretch * std::sin(phi), phi};
    return dot;
}

// A fit that has run off to infinity would poison the statistics of all dots.
bool isFinite(const PatternDot& dot) {
    return std::isfinite(dot.centre.x) && std::isfinite(dot.centre.y) && std::isfinite(dot.eccentricity) &&
           std::isfinite(dot.ellipseArea) && std::isfinite(dot.tilt.x) && std::isfinite(dot.tilt.y);
}

}  // namespace

std::int32_t measurePatternDots(const ZelmImage& image, const Zelm2ViewPatternDesc& pattern,
                                std::span<const ZelmBlob> blobs, DotList* dots) {
    if (!dots->acquire(blobs.size())) {
        return ZELM_ERR_MEMORY;
    }
    Ray rays[kRays];
    fillRays(rays);
    for (const ZelmBlob& blob : blobs) {
        Point2d outline[kRays];
        const auto found = findOutline(image, pattern, blob, rays, outline);
        if (found < 0) {
            return found;
        }
        if (found == 0) {
            continue;
        }
        Ellipse2d ellipse;
        const auto fitted = zelmFitEllipse(kRays, outline, 1, kEllipseTukey, &ellipse);
        if (fitted == ZELM_ERR_MEMORY) {
            return fitted;
        }
        if (fitted < 0) {
            continue;
        }
        if (const PatternDot dot = dotOf(ellipse, blob); isFinite(dot)) {
            dots->add(dot);
        }
    }
    return ZELM_OK;
}

}  // namespace zelm
