#include <cmath>

#include "cgCommon.h"
#include "zelm/cg.h"

namespace zelm {
namespace {

constexpr int kCoincides = 0;
constexpr int kInside = -1;
constexpr int kBeyond = 1;

// Of collinear segments: where an endpoint lies relative to the other segment.
int endpointScore(const Point2d& endpoint, const Point2d& other1, const Point2d& other2) {
    const double d = dot(difference(other1, endpoint), difference(other2, endpoint));
    if (std::fabs(d) < kCgTolerance) {
        return kCoincides;
    }
    return d < 0.0 ? kInside : kBeyond;
}

int32_t classifyCollinear(const Point2d& a1, const Point2d& a2, const Point2d& b1, const Point2d& b2, Point2d* point) {
    const Point2d endpoints[4] = {a1, a2, b1, b2};
    const int scores[4] = {endpointScore(a1, b1, b2), endpointScore(a2, b2, b1), endpointScore(b1, a1, a2),
                           endpointScore(b2, a2, a1)};
    const int sum = scores[0] + scores[1] + scores[2] + scores[3];
    if (sum == 4) {
        return ZELM_SEGMENTS_APART;
    }
    if (sum != 1 && sum != 2) {
        return ZELM_SEGMENTS_OVERLAP;
    }
    Point2d total{0.0, 0.0};
    int coinciding = 0;
    for (int i = 0; i < 4; ++i) {
        if (scores[i] == kCoincides) {
            total = {total.x + endpoints[i].x, total.y + endpoints[i].y};
            coinciding += 1;
        }
    }
    *point = {total.x / coinciding, total.y / coinciding};
    return ZELM_SEGMENTS_ENDPOINTS;
}

int32_t kindOfMeeting(bool endpointOnA, bool endpointOnB) {
    if (endpointOnA && endpointOnB) {
        return ZELM_SEGMENTS_ENDPOINTS;
    }
    if (endpointOnB) {
        return ZELM_SEGMENTS_A_ON_B;
    }
    return endpointOnA ? ZELM_SEGMENTS_B_ON_A : ZELM_SEGMENTS_CROSS;
}

int32_t classifySegments(const Point2d& a1, const Point2d& a2, const Point2d& b1, const Point2d& b2, Point2d* point) {
    const Point2d d = difference(a2, a1);
    const Point2d f = difference(b2, b1);
    const double sideB1 = cross(d, difference(b1, a1));
    const double sideB2 = cross(d, difference(b2, a1));
    const double sideA1 = cross(f, difference(a1, b1));
    const double sideA2 = cross(f, difference(a2, b1));
    if (sideB1 * sideB2 >= kCgTolerance || sideA1 * sideA2 >= kCgTolerance) {
        return ZELM_SEGMENTS_APART;
    }
    const bool b1OnA = std::fabs(sideB1) < kCgTolerance;
    const bool b2OnA = std::fabs(sideB2) < kCgTolerance;
    const bool a1OnB = std::fabs(sideA1) < kCgTolerance;
    const bool a2OnB = std::fabs(sideA2) < kCgTolerance;
    if (b1OnA && b2OnA && a1OnB && a2OnB) {
        return classifyCollinear(a1, a2, b1, b2, point);
    }
    const double area = cross(d, f);
    *point = {a1.x + d.x * sideA1 / area, a1.y + d.y * sideA1 / area};
    return kindOfMeeting(b1OnA || b2OnA, a1OnB || a2OnB);
}

}  // namespace
}  // namespace zelm

int32_t zelmCgIntersectionOfTwoSegments(const Point2d* tA1, const Point2d* tA2, const Point2d* tB1, const Point2d* tB2,
                                        int32_t* iKind, Point2d* tPoint) {
    if (tA1 == nullptr || tA2 == nullptr || tB1 == nullptr || tB2 == nullptr || iKind == nullptr || tPoint == nullptr) {
        return ZELM_ERR_PARAM;
    }
    *iKind = zelm::classifySegments(*tA1, *tA2, *tB1, *tB2, tPoint);
    return ZELM_OK;
}
