// What the minimax searches minimise, and the two searches.
#ifndef ZELM_MINIMAX_COST_H
#define ZELM_MINIMAX_COST_H

#include <cstdint>

#include "enclosingCircle.h"
#include "motion.h"
#include "workBuffer.h"

namespace zelm {

// A place of the search with the circle around the deviations there, whose radius is the cost.
struct MinimaxProbe {
    double degrees;
    double percent;
    Circle2d circle;
};

// The circle around n points; work has room for them and may be the points themselves.
using EnclosingCircleFn = Circle2d (*)(std::size_t n, const Point2d* points, Point2d* work);

// The radius of the smallest enclosing circle of the deviations, over the angle and the scale of a motion. The shift
// stays as it is; the circle's centre says by how much it is off.
class MinimaxCost {
public:
    MinimaxCost(const PointPairs& pointPairs, const Point2d& fixedShift,
                EnclosingCircleFn circleFn = innerSmallestEnclosingCircle)
        : pairs(pointPairs), shift(fixedShift), enclose(circleFn), deviations(pointPairs.n) {}

    [[nodiscard]] bool ok() const { return deviations.ok(); }
    // True once a circle was not finite. Searches stop there.
    [[nodiscard]] bool failed() const { return failure; }
    MinimaxProbe at(double degrees, double percent);

private:
    PointPairs pairs;
    Point2d shift;
    EnclosingCircleFn enclose;
    WorkBuffer<Point2d> deviations;
    bool failure = false;
};

// Improves the closed-form motion. Return ZELM_OK; ZELM_ERR_MEMORY; ZELM_ERR_DEGENERATE, with the motion unchanged, if
// a circle was not finite.
std::int32_t minimaxRigidMotion(const PointPairs& pairs, Motion* motion);
std::int32_t minimaxSimilarity(const PointPairs& pairs, Motion* motion);

// The place of least cost on a line over the angle, and over both; the start's own cost is never exceeded.
MinimaxProbe minimaxAngle(MinimaxCost& cost, double startDegrees);
MinimaxProbe minimaxSimplex(MinimaxCost& cost, double startDegrees, double startPercent);

}  // namespace zelm

#endif
