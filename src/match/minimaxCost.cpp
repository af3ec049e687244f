#include "minimaxCost.h"

#include <cmath>

namespace zelm {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegree = kPi / 180.0;
constexpr double kWholePercent = 100.0;

// One turn at most: searches do not go farther.
double wrapped(double degrees) {
    if (degrees > 180.0) {
        return degrees - 360.0;
    }
    return degrees < -180.0 ? degrees + 360.0 : degrees;
}

Motion motionAt(const MinimaxProbe& probe, const Point2d& shift) {
    return {wrapped(probe.degrees) * kDegree,
            probe.percent / kWholePercent,
            {shift.x - probe.circle.x, shift.y - probe.circle.y}};
}

}  // namespace

MinimaxProbe MinimaxCost::at(double degrees, double percent) {
    const MotionOfPoints move({degrees * kDegree, percent / kWholePercent, shift});
    for (std::size_t i = 0; i < pairs.n; ++i) {
        deviations[i] = deviation(pairs, move, i);
    }
    const Circle2d circle = enclose(pairs.n, deviations.data(), deviations.data());
    failure = failure || !std::isfinite(circle.x) || !std::isfinite(circle.y) || !std::isfinite(circle.r);
    return {degrees, percent, circle};
}

std::int32_t minimaxRigidMotion(const PointPairs& pairs, Motion* motion) {
    MinimaxCost cost(pairs, motion->shift);
    if (!cost.ok()) {
        return ZELM_ERR_MEMORY;
    }
    const MinimaxProbe best = minimaxAngle(cost, motion->angle / kDegree);
    if (cost.failed()) {
        return ZELM_ERR_DEGENERATE;
    }
    *motion = motionAt(best, motion->shift);
    motion->scale = 1.0;
    return ZELM_OK;
}

std::int32_t minimaxSimilarity(const PointPairs& pairs, Motion* motion) {
    MinimaxCost cost(pairs, motion->shift);
    if (!cost.ok()) {
        return ZELM_ERR_MEMORY;
    }
    const MinimaxProbe best = minimaxSimplex(cost, motion->angle / kDegree, motion->scale * kWholePercent);
    if (cost.failed()) {
        return ZELM_ERR_DEGENERATE;
    }
    *motion = motionAt(best, motion->shift);
    return ZELM_OK;
}

}  // namespace zelm
