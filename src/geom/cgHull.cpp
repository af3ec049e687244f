#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "cgCommon.h"
#include "enclosingCircle.h"
#include "workBuffer.h"
#include "zelm/cg.h"

namespace zelm {
namespace {

bool differ(const Point2d& p, const Point2d& q) {
    return p.x != q.x || p.y != q.y;
}

// Moves second points that are collinear with the pivot and the third behind the others, until the first three points
// make a triangle; returns how many remain.
std::size_t dropLeadingCollinear(std::size_t n, Point2d* sorted) {
    std::size_t second = 1;
    while (second + 1 < n &&
           cross(difference(sorted[second], sorted[0]), difference(sorted[second + 1], sorted[0])) == 0.0) {
        second += 1;
    }
    std::rotate(sorted + 1, sorted + second, sorted + n);
    return n + 1 - second;
}

// Graham's scan of the sorted points; exchanges keep the array a permutation of the input.
std::size_t scanHull(std::size_t n, Point2d* points) {
    std::size_t top = 1;
    for (std::size_t i = 2; i < n; ++i) {
        while (top > 0 && !(compareByArgument(points[top - 1], points[top], points[i]) > 0.0)) {
            top -= 1;
        }
        top += 1;
        std::swap(points[top], points[i]);
    }
    return top + 1;
}

// Replaces the points by their hull and returns the number of its vertices. taPoints and taHull may be the same.
std::size_t convexHull(std::size_t n, const Point2d* points, Point2d* hull) {
    if (n == 1) {
        hull[0] = points[0];
        return 1;
    }
    zelmCgSortByArgument(static_cast<int32_t>(n), points, hull);
    const std::size_t remaining = n == 2 ? 2 : dropLeadingCollinear(n, hull);
    if (remaining == 2) {
        return differ(hull[0], hull[1]) ? 2 : 1;
    }
    return scanHull(remaining, hull);
}

constexpr int kPassesPerStep = 5;
constexpr double kSmallestStep = 1e-13;  // share of the way to the farthest vertex
constexpr double kSettledMove = 1e-10;   // caller's units

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
    for (double step = 0.5; step > kSmallestStep; step *= 0.5) {
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
    // Deliberate: the radius belongs to the centre before its last move.
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
    const std::size_t count = convexHull(n, points, work);
    return walkToCentre(count, work);
}

}  // namespace zelm

int32_t zelmCgConvexHull(int32_t iN, const Point2d* taPoints, int32_t* iCount, Point2d* taHull) {
    if (iN < 1 || taPoints == nullptr || iCount == nullptr || taHull == nullptr) {
        return ZELM_ERR_PARAM;
    }
    *iCount = static_cast<int32_t>(zelm::convexHull(static_cast<std::size_t>(iN), taPoints, taHull));
    return ZELM_OK;
}

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
