#include "cgHull.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "cgCommon.h"
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

}  // namespace

std::size_t innerConvexHull(std::size_t n, const Point2d* points, Point2d* hull) {
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

}  // namespace zelm

int32_t zelmCgConvexHull(int32_t iN, const Point2d* taPoints, int32_t* iCount, Point2d* taHull) {
    if (iN < 1 || taPoints == nullptr || iCount == nullptr || taHull == nullptr) {
        return ZELM_ERR_PARAM;
    }
    *iCount = static_cast<int32_t>(zelm::innerConvexHull(static_cast<std::size_t>(iN), taPoints, taHull));
    return ZELM_OK;
}
