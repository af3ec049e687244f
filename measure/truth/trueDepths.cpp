#include "trueDepths.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelm::measure {
namespace {

constexpr double kSameSurface = 0.004;  // of the depth: what lies so little behind the nearest point is seen as well

}  // namespace

TrueDepths::TrueDepths(const Rig& calibrated, const std::uint16_t* depths, double mapUnit)
    : rig(calibrated), map(depths), unit(mapUnit) {
    if (rig.left.isParallel() || rig.right.isParallel()) {
        refuse("true depths are compared for perspective cameras alone");
    }
    nearest.assign(static_cast<std::size_t>(rig.right.width) * static_cast<std::size_t>(rig.right.height),
                   std::numeric_limits<float>::infinity());
    for (int y = 0; y < rig.left.height; ++y) {
        for (int x = 0; x < rig.left.width; ++x) {
            if (const auto seen = inRightImage({static_cast<double>(x), static_cast<double>(y)})) {
                splat(*seen);
            }
        }
    }
}

std::optional<double> TrueDepths::at(Point2d p) const {
    if (!rig.left.holds(p)) {
        return std::nullopt;
    }
    const double x0 = std::floor(p.x);
    const double y0 = std::floor(p.y);
    const double fx = p.x - x0;
    const double fy = p.y - y0;
    double sum = 0.0;
    double least = std::numeric_limits<double>::infinity();
    double largest = 0.0;
    for (int i = 0; i < 4; ++i) {
        const double weight = (i % 2 == 0 ? 1.0 - fx : fx) * (i / 2 == 0 ? 1.0 - fy : fy);
        if (weight > 0.0) {
            const double depth = pixelDepth(static_cast<int>(x0) + i % 2, static_cast<int>(y0) + i / 2);
            sum += weight * depth;
            least = std::min(least, depth);
            largest = std::max(largest, depth);
        }
    }
    const bool isSurface = least > 0.0 && largest - least <= kSameSurface * largest;
    return isSurface ? std::optional(sum) : std::nullopt;
}

bool TrueDepths::isSeenByBoth(Point2d p) const {
    const auto seen = inRightImage(p);
    return seen && seen->depth <= (1.0 + kSameSurface) * static_cast<double>(nearest[indexOf(seen->x, seen->y)]);
}

double TrueDepths::pixelDepth(int x, int y) const {
    if (x < 0 || y < 0 || x >= rig.left.width || y >= rig.left.height) {
        return 0.0;
    }
    return unit *
           map[static_cast<std::size_t>(y) * static_cast<std::size_t>(rig.left.width) + static_cast<std::size_t>(x)];
}

std::size_t TrueDepths::indexOf(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(rig.right.width) + static_cast<std::size_t>(x);
}

// Where and how far away the right camera has the point of a left pixel; nothing when it is not in its image.
std::optional<TrueDepths::Seen> TrueDepths::inRightImage(Point2d p) const {
    const auto depth = at(p);
    Point2d ideal{};
    if (!depth || zelm2ViewUnDistortPoint(rig.calib.get(), 'L', &p, &ideal) < 0) {
        return std::nullopt;
    }
    const ZelmCameraIntrinsics& k = rig.left.intrinsics;
    const double y = (ideal.y - k.A[5]) / k.A[4];
    const double x = (ideal.x - k.A[2] - k.A[1] * y) / k.A[0];
    const ZelmCameraExtrinsics& pose = rig.left.pose();
    Matrix3 R{};
    std::copy_n(pose.R, 9, R.begin());
    const Vector3 world = timesTransposed(R, {x * *depth - pose.t[0], y * *depth - pose.t[1], *depth - pose.t[2]});
    const Point3d X{world[0], world[1], world[2]};
    Point2d pixel{};
    zelm2ViewChange3Dto2D(rig.calib.get(), 'R', &X, &pixel);
    const double rightDepth = rig.right.depthOf(X);
    if (!(rightDepth > 0.0) || !rig.right.holds(pixel)) {
        return std::nullopt;
    }
    return Seen{static_cast<int>(pixel.x + 0.5), static_cast<int>(pixel.y + 0.5), rightDepth};
}

// Covers the neighbours too, so that the pixels of a near surface leave no gaps.
void TrueDepths::splat(const Seen& seen) {
    for (int y = std::max(seen.y - 1, 0); y <= std::min(seen.y + 1, rig.right.height - 1); ++y) {
        for (int x = std::max(seen.x - 1, 0); x <= std::min(seen.x + 1, rig.right.width - 1); ++x) {
            float& depth = nearest[indexOf(x, y)];
            depth = std::min(depth, static_cast<float>(seen.depth));
        }
    }
}

}  // namespace zelm::measure
