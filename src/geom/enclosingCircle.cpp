#include "enclosingCircle.h"

#include <cmath>

#include "cgCommon.h"
#include "cgHull.h"
#include "workBuffer.h"
#include "zelm/cg.h"

namespace zelm {
namespace {

constexpr int kPassesPerStep = 5;
constexpr double kMinStep = 1e-13;      // share of the way to the farthest vertex
constexpr double kSettledMove = 1e-10;  // caller's units

struct Farthest {
    std::size_t index = 0;
    double squaredDistance = -1.0;
};

Farthest farthestFrom(const Point2d& c, std::size_t count, const Point2d* hull) {
    Farthest farthest;
    for (std::size_t i = 0; i < count; ++i) {
        const Point2d d = difference(hull[i], c);
        const double squared = dot(d, d);
        if (squared > farthest.squaredDistance) {
            farthest = {i, squared};
        }
    }
    return farthest;
}

Circle2d walkToCentre(std::size_t count, const Point2d* hull) {
    Point2d c = count < 2 ? hull[0] : Point2d{(hull[0].x + hull[1].x) * 0.5, (hull[0].y + hull[1].y) * 0.5};
    double squaredRadius = 0.0;
    for (double step = 0.5; step > kMinStep; step *= 0.5) {
        for (int pass = 0; pass < kPassesPerStep; ++pass) {
            const Farthest farthest = farthestFrom(c, count, hull);
            const Point2d towards = difference(hull[farthest.index], c);
            const Point2d moved{c.x + towards.x * step, c.y + towards.y * step};
            squaredRadius = farthest.squaredDistance;
            const bool settled = std::fabs(moved.x - c.x) < kSettledMove && std::fabs(moved.y - c.y) < kSettledMove;
            c = moved;
            if (settled) {
                return {c.x, c.y, std::sqrt(squaredRadius)};
            }
        }
    }
    // The radius belongs to the centre before its last move: docs/decisions.md#enclosing-radius.
    return {c.x, c.y, std::sqrt(squaredRadius)};
}

// About one or two points.
Circle2d circleOfFew(std::size_t n, const Point2d* points) {
    const Point2d first = points[0];
    const Point2d last = points[n - 1];
    if (n == 1) {
        return {first.x, first.y, 0.0};
    }
    const Point2d centre{(first.x + last.x) * 0.5, (first.y + last.y) * 0.5};
    const Point2d arm = difference(first, centre);
    return {centre.x, centre.y, std::sqrt(dot(arm, arm))};
}

}  // namespace

Circle2d innerSmallestEnclosingCircle(std::size_t n, const Point2d* points, Point2d* work) {
    if (n <= 2) {
        return circleOfFew(n, points);
    }
    const std::size_t count = innerConvexHull(n, points, work);
    return walkToCentre(count, work);
}

}  // namespace zelm

int32_t zelmCgSmallestEnclosingCircle(int32_t iN, const Point2d* taPoints, Point2d* tCentre, double* dRadius) {
    if (iN < 1 || taPoints == nullptr || tCentre == nullptr || dRadius == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const auto n = static_cast<std::size_t>(iN);
    zelm::WorkBuffer<Point2d> work;
    if (n > 2) {
        work = zelm::WorkBuffer<Point2d>(n);
        if (!work.ok()) {
            return ZELM_ERR_MEMORY;
        }
    }
    const Circle2d circle = zelm::innerSmallestEnclosingCircle(n, taPoints, work.data());
    *tCentre = {circle.x, circle.y};
    *dRadius = circle.r;
    return ZELM_OK;
}
