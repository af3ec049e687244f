#include "edge1dSearch.h"

#include <algorithm>
#include <span>

#include "edgeProfile.h"
#include "edgeSelect.h"
#include "edgeSubpixel.h"

namespace zelm {
namespace {

constexpr int32_t kMaxFlatRun = 4096;  // steps; a longer required run acts as this, which bounds memory and time

// The edge threshold in gray levels.
int32_t edgeThreshold(const EdgeProfile& profile, const ZelmEdge1dParam& tParam) {
    const int64_t range = profile.maximum - profile.minimum;
    const int64_t part = std::min<int64_t>(range * tParam.contrastPercent / 100, INT32_MAX);
    return static_cast<int32_t>(std::max<int64_t>(part, tParam.minContrast));
}

}  // namespace

int32_t innerEdge1dSearch(const ZelmImage& tImage, const Point2d& tP1, const Point2d& tP2, int32_t iSign,
                          const ZelmEdge1dParam& tParam, Point2d& tEdgePoint, double& dStrength) {
    const int32_t minFlatRun = std::clamp(tParam.minFlatRun, 1, kMaxFlatRun);
    EdgeSegment segment = {};
    if (const int32_t status = makeEdgeSegment(tP1, tP2, segment); status < 0) {
        return status;
    }
    EdgeProfile profile;
    if (const int32_t status = readEdgeProfile(tImage, segment, tParam.halfWidth, minFlatRun + kEdgeGuard, profile);
        status < 0) {
        return status;
    }
    const EdgeRule rule = {.selector = tParam.selector,
                           .sign = iSign,
                           .threshold = edgeThreshold(profile, tParam),
                           .flatTolerance = std::max(tParam.flatTolerance, 0),
                           .minFlatRun = minFlatRun,
                           .doubledCentre = segment.length - 2.0 * static_cast<double>(profile.first)};
    const std::span<const int32_t> q =
        profile.quantised.span().subspan(kEdgeGuard, static_cast<std::size_t>(profile.count));
    EdgeCandidate edge = {};
    if (!selectEdge(q, rule, edge)) {
        return 0;
    }
    EdgePosition position = {};
    if (const int32_t result = locateEdge(profile, edge, tParam.filterSize, position); result != 1) {
        return result;
    }
    tEdgePoint = {segment.start.x + position.sample * segment.unit.x,
                  segment.start.y + position.sample * segment.unit.y};
    dStrength = position.strength;
    return 1;
}

}  // namespace zelm
