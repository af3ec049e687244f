#include <cstddef>
#include <cstring>
#include <utility>

#include "cgCommon.h"
#include "zelm/cg.h"

namespace zelm {

double compareByArgument(const Point2d& origin, const Point2d& a, const Point2d& b) {
    const Point2d u = difference(a, origin);
    const Point2d v = difference(b, origin);
    const double turn = cross(u, v);
    if (!(turn == 0.0)) {
        return turn;
    }
    const double along = dot(u, v);
    return along >= 0.0 ? dot(v, v) - dot(u, u) : -along;
}

namespace {

std::size_t lowestPoint(std::size_t n, const Point2d* points) {
    std::size_t lowest = 0;
    for (std::size_t i = 1; i < n; ++i) {
        const Point2d& p = points[i];
        const Point2d& best = points[lowest];
        if (p.y < best.y || (p.y == best.y && p.x < best.x)) {
            lowest = i;
        }
    }
    return lowest;
}

// Sifts value down from position k of the 1-based heap points[1..last] about the pivot points[0].
void siftDown(Point2d* points, std::size_t k, std::size_t last, const Point2d& value) {
    while (2 * k <= last) {
        std::size_t child = 2 * k;
        if (child < last && compareByArgument(points[0], points[child], points[child + 1]) > 0.0) {
            child += 1;
        }
        if (compareByArgument(points[0], points[child], value) >= 0.0) {
            break;
        }
        points[k] = points[child];
        k = child;
    }
    points[k] = value;
}

}  // namespace
}  // namespace zelm

int32_t zelmCgSortByArgument(int32_t iN, const Point2d* taPoints, Point2d* taSorted) {
    if (iN < 2 || taPoints == nullptr || taSorted == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const auto n = static_cast<std::size_t>(iN);
    std::memmove(taSorted, taPoints, n * sizeof(Point2d));
    std::swap(taSorted[0], taSorted[zelm::lowestPoint(n, taSorted)]);
    for (std::size_t k = (n - 1) / 2; k >= 1; --k) {
        const Point2d value = taSorted[k];
        zelm::siftDown(taSorted, k, n - 1, value);
    }
    for (std::size_t i = n - 1; i >= 2; --i) {
        const Point2d value = taSorted[i];
        taSorted[i] = taSorted[1];
        zelm::siftDown(taSorted, 1, i - 1, value);
    }
    return ZELM_OK;
}
