#include "plateDepths.h"

#include <algorithm>
#include <limits>

namespace zelm::measure {
namespace {

constexpr double kNearerThanPlates = 0.5;  // of the nearest plate's distance
constexpr double kFartherThanPlates = 2.0;

}  // namespace

std::optional<DepthRange> plateDepths(const RigCamera& camera) {
    if (camera.poses.size() < 2) {
        return std::nullopt;
    }
    DepthRange range{std::numeric_limits<double>::infinity(), 0.0};
    for (const ZelmCameraExtrinsics& pose : camera.poses) {
        if (pose.t[2] > 0.0) {  // views that were not used have a pose of zeros
            range.nearest = std::min(range.nearest, kNearerThanPlates * pose.t[2]);
            range.farthest = std::max(range.farthest, kFartherThanPlates * pose.t[2]);
        }
    }
    return range.farthest > 0.0 ? std::optional(range) : std::nullopt;
}

}  // namespace zelm::measure
