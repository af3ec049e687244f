#include "edgeProfile.h"

#include <algorithm>
#include <cmath>

namespace zelm {
namespace {

constexpr double kMaxLength = 2147483648.0;  // pixels; beyond it a sample's position is no longer good to 1e-6 pixel
constexpr double kClipMargin = 1.0;          // pixels; far above the rounding of a sample's position
constexpr double kOutside = -1.0;            // gray value of a sample outside the image

// Narrows [low, high] to the parameters i with 0 - margin <= start + i * unit <= size + margin along one axis.
void clipAxis(double start, double unit, double size, double& low, double& high) {
    const double near = -kClipMargin - start;
    const double far = size + kClipMargin - start;
    if (unit == 0.0) {
        if (near > 0.0 || far < 0.0) {
            high = low - 1.0;
        }
        return;
    }
    low = std::max(low, std::min(near / unit, far / unit));
    high = std::min(high, std::max(near / unit, far / unit));
}

// The samples worth taking: those near the image and iKeep more on each side. False when the segment misses the image.
bool chooseWindow(const ZelmImage& tImage, const EdgeSegment& segment, int32_t iKeep, EdgeProfile& profile) {
    double low = 0.0;
    double high = static_cast<double>(segment.last);
    clipAxis(segment.start.x, segment.unit.x, tImage.width, low, high);
    clipAxis(segment.start.y, segment.unit.y, tImage.height, low, high);
    if (low > high) {
        return false;
    }
    profile.first = std::max<int64_t>(static_cast<int64_t>(low) - iKeep, 0);
    const int64_t last = std::min<int64_t>(static_cast<int64_t>(high) + 1 + iKeep, segment.last);
    profile.count = last - profile.first + 1;
    return true;
}

bool acquireBuffers(EdgeProfile& profile) {
    const auto cells = static_cast<std::size_t>(profile.count) + 2 * static_cast<std::size_t>(kEdgeGuard);
    profile.quantised = WorkBuffer<int32_t>(cells);
    profile.gray = WorkBuffer<double>(cells);
    profile.derivative = WorkBuffer<double>(cells);
    return profile.quantised.ok() && profile.gray.ok() && profile.derivative.ok();
}

// Mean over the samples across the segment. The widening stops at the first pair of which one lies outside.
double sampleAcross(const ZelmImage& tImage, Point2d s, Point2d u, int32_t iHalfWidth) {
    double sum = innerEdge1dSampleGray(tImage, s.x, s.y);
    if (sum < 0.0) {
        return kOutside;
    }
    int32_t count = 1;
    for (int32_t j = 1; j <= iHalfWidth; ++j) {
        const double dx = -u.y * j;
        const double dy = u.x * j;
        const double left = innerEdge1dSampleGray(tImage, s.x + dx, s.y + dy);
        const double right = innerEdge1dSampleGray(tImage, s.x - dx, s.y - dy);
        if (left < 0.0 || right < 0.0) {
            break;
        }
        sum += left + right;
        count += 2;
    }
    return sum / count;
}

// Replaces what lies outside the image, guard cells included, by the nearest value inside. False when nothing is
// inside. The samples inside are contiguous, because the image is convex.
bool fillOutside(EdgeProfile& profile) {
    double* const g = profile.gray.data();
    const int64_t begin = kEdgeGuard;
    const int64_t end = begin + profile.count;
    int64_t lead = begin;
    while (lead < end && g[lead] < 0.0) {
        ++lead;
    }
    if (lead == end) {
        return false;
    }
    int64_t trail = end - 1;
    while (g[trail] < 0.0) {
        --trail;
    }
    std::fill(g, g + lead, g[lead]);
    std::fill(g + trail + 1, g + end + kEdgeGuard, g[trail]);
    return true;
}

void quantise(EdgeProfile& profile) {
    const double* const g = profile.gray.data();
    int32_t* const q = profile.quantised.data();
    const int64_t cells = profile.count + 2 * kEdgeGuard;
    profile.minimum = INT32_MAX;
    profile.maximum = INT32_MIN;
    for (int64_t i = 0; i < cells; ++i) {
        q[i] = static_cast<int32_t>(g[i] + 0.5);
        profile.minimum = std::min(profile.minimum, q[i]);
        profile.maximum = std::max(profile.maximum, q[i]);
    }
}

}  // namespace

double innerEdge1dSampleGray(const ZelmImage& tImage, double x, double y) {
    if (x < 0.0 || y < 0.0 || x >= tImage.width - 1.0 || y >= tImage.height - 1.0) {
        return kOutside;
    }
    const auto ix = static_cast<int32_t>(x);
    const auto iy = static_cast<int32_t>(y);
    const double fx = x - ix;
    const double fy = y - iy;
    const auto stride = static_cast<std::size_t>(tImage.width);
    const uint8_t* const p = tImage.pixels + static_cast<std::size_t>(iy) * stride + static_cast<std::size_t>(ix);
    return ((1.0 - fx) * p[0] + fx * p[1]) * (1.0 - fy) + ((1.0 - fx) * p[stride] + fx * p[stride + 1]) * fy;
}

int32_t makeEdgeSegment(const Point2d& tP1, const Point2d& tP2, EdgeSegment& segment) {
    const double dx = tP2.x - tP1.x;
    const double dy = tP2.y - tP1.y;
    const double length = std::sqrt(dx * dx + dy * dy);
    // A point that is not finite makes the length infinite or not a number.
    if (!(length < kMaxLength)) {
        return ZELM_ERR_PARAM;
    }
    if (dx == 0.0 && dy == 0.0) {
        return ZELM_ERR_DEGENERATE;
    }
    segment.start = tP1;
    // Squares below the range of doubles leave no direction; such a segment has a single sample, hence no edge.
    segment.unit = length > 0.0 ? Point2d{dx / length, dy / length} : Point2d{1.0, 0.0};
    segment.last = static_cast<int64_t>(length);
    segment.length = length;
    return ZELM_OK;
}

int32_t readEdgeProfile(const ZelmImage& tImage, const EdgeSegment& segment, int32_t iHalfWidth, int32_t iKeep,
                        EdgeProfile& profile) {
    profile.segment = segment;
    if (!chooseWindow(tImage, segment, iKeep, profile)) {
        return ZELM_ERR_DEGENERATE;
    }
    if (!acquireBuffers(profile)) {
        return ZELM_ERR_MEMORY;
    }
    const Point2d u = segment.unit;
    double* const g = profile.gray.data() + kEdgeGuard;
    for (int64_t j = 0; j < profile.count; ++j) {
        const auto i = static_cast<double>(profile.first + j);
        const Point2d s = {segment.start.x + i * u.x, segment.start.y + i * u.y};
        g[j] = sampleAcross(tImage, s, u, iHalfWidth);
    }
    if (!fillOutside(profile)) {
        return ZELM_ERR_DEGENERATE;
    }
    quantise(profile);
    return ZELM_OK;
}

}  // namespace zelm
