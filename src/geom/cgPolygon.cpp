#include <cmath>
#include <cstddef>

#include "cgCommon.h"
#include "zelm/cg.h"
#include "zelm/clp2d.h"

namespace zelm {
namespace {

std::size_t edgeCount(int32_t vertices) {
    return vertices == 2 ? 1 : static_cast<std::size_t>(vertices);
}

bool edgeIsShort(const Point2d& from, const Point2d& to) {
    const Point2d edge = difference(to, from);
    return std::sqrt(dot(edge, edge)) < kCgTolerance;
}

Point2d meanOf(std::size_t n, const Point2d* points) {
    Point2d sum{0.0, 0.0};
    for (std::size_t i = 0; i < n; ++i) {
        sum = {sum.x + points[i].x, sum.y + points[i].y};
    }
    const auto count = static_cast<double>(n);
    return {sum.x / count, sum.y / count};
}

}  // namespace
}  // namespace zelm

using zelm::difference;
using zelm::edgeCount;
using zelm::kCgTolerance;

int32_t zelmCgPointInConvexPolygon(int32_t iN, const Point2d* taPolygon, const Point2d* tP, int32_t* iResult) {
    if (iN < 3 || taPolygon == nullptr || tP == nullptr || iResult == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const auto n = static_cast<std::size_t>(iN);
    const Point2d inner = zelm::meanOf(n, taPolygon);
    int32_t result = 1;
    for (std::size_t i = 0; i < n; ++i) {
        int32_t kind = ZELM_SEGMENTS_APART;
        Point2d unused;
        zelmCgIntersectionOfTwoSegments(&inner, tP, &taPolygon[i], &taPolygon[(i + 1) % n], &kind, &unused);
        if (kind != ZELM_SEGMENTS_APART) {
            result = kind == ZELM_SEGMENTS_CROSS || kind == ZELM_SEGMENTS_B_ON_A ? 0 : 2;
            break;
        }
    }
    *iResult = result;
    return ZELM_OK;
}

int32_t zelmCgIntersectionLineAndConvexPolygon(int32_t iN, const Point2d* taPolygon, const Line2d* tLine,
                                               Point2d* taPoints) {
    if (iN < 2 || taPolygon == nullptr || taPoints == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const double length = std::sqrt(tLine->a * tLine->a + tLine->b * tLine->b);
    if (length < kCgTolerance) {
        return ZELM_ERR_PARAM;
    }
    const auto n = static_cast<std::size_t>(iN);
    int32_t found = 0;
    for (std::size_t j = 0; j < edgeCount(iN); ++j) {
        const Point2d& from = taPolygon[j];
        const Point2d& to = taPolygon[(j + 1) % n];
        if (zelm::edgeIsShort(from, to)) {
            continue;
        }
        const double sideFrom = (tLine->a * from.x + tLine->b * from.y + tLine->c) / length;
        const double sideTo = (tLine->a * to.x + tLine->b * to.y + tLine->c) / length;
        if (std::fabs(sideFrom) < kCgTolerance && std::fabs(sideTo) < kCgTolerance) {
            return 0;
        }
        // A vertex on the line belongs to the edge that starts there, so that it counts once.
        if ((n > 2 && sideTo == 0.0) || sideFrom * sideTo > 0.0) {
            continue;
        }
        Line2d edge;
        if (zelmClp2dLineTwoPoints(&from, &to, &edge) < 0 ||
            zelmClp2dIntersectionTwoLines(tLine, &edge, &taPoints[found]) < 0) {
            return 0;
        }
        found += 1;
        if (found == 2) {
            return 2;
        }
    }
    return found;
}

int32_t zelmCgIntersectionSegmentAndConvexPolygon(int32_t iN, const Point2d* taPolygon, const Point2d* tS1,
                                                  const Point2d* tS2, Point2d* taPoints) {
    if (iN < 2 || taPolygon == nullptr || tS1 == nullptr || tS2 == nullptr || taPoints == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const auto n = static_cast<std::size_t>(iN);
    int32_t found = 0;
    for (std::size_t j = 0; j < edgeCount(iN); ++j) {
        const Point2d& from = taPolygon[j];
        const Point2d& to = taPolygon[(j + 1) % n];
        if (zelm::edgeIsShort(from, to)) {
            continue;
        }
        int32_t kind = ZELM_SEGMENTS_APART;
        Point2d point;
        zelmCgIntersectionOfTwoSegments(&from, &to, tS1, tS2, &kind, &point);
        if (kind == ZELM_SEGMENTS_OVERLAP) {
            return 0;
        }
        if (kind == ZELM_SEGMENTS_APART) {
            continue;
        }
        if (found == 0) {
            taPoints[0] = point;
            found = 1;
            continue;
        }
        const Point2d apart = difference(point, taPoints[0]);
        if (!(std::sqrt(zelm::dot(apart, apart)) < kCgTolerance)) {
            taPoints[1] = point;
            return 2;
        }
    }
    return found;
}
