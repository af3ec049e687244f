#include "lattice.h"

#include <algorithm>

#include "zelm/cg.h"
#include "zelm/cstmGeometry.h"

namespace zelm {
namespace {

constexpr double kReach = 1 << 30;

// Coordinates of the corner pixels, inclusive.
struct Sides {
    double left;
    double top;
    double right;
    double bottom;
};

// The nearest integer, halves upwards; false beyond the reach. A crossing lies on the border: what sticks out is the
// rounding of a line almost along a side, and must not lead to pixels that the caller has no room for.
bool roundWithin(double v, double low, double high, std::int32_t* out) {
    const double kept = std::clamp(v, low, high);
    if (!(kept < kReach)) {
        return false;
    }
    *out = static_cast<std::int32_t>(kept + 0.5);
    return true;
}

bool roundToPixel(const Point2d& p, const Sides& sides, Point2i* pixel) {
    return roundWithin(p.x, sides.left, sides.right, &pixel->x) && roundWithin(p.y, sides.top, sides.bottom, &pixel->y);
}

}  // namespace

std::int32_t innerLatticeSpan(const ZelmRect& tRect, const Line2d& tLine, LatticeSpan* tSpan) {
    const Sides sides{static_cast<double>(tRect.x), static_cast<double>(tRect.y), tRect.x + (tRect.width - 1.0),
                      tRect.y + (tRect.height - 1.0)};
    const Point2d corners[4] = {
        {sides.left, sides.top}, {sides.right, sides.top}, {sides.right, sides.bottom}, {sides.left, sides.bottom}};
    Point2d crossings[2] = {{0.0, 0.0}, {0.0, 0.0}};
    const std::int32_t count = zelmCgIntersectionLineAndConvexPolygon(4, corners, &tLine, crossings);
    if (count < 0) {
        return count;
    }
    LatticeSpan span{crossings[0], crossings[1], {}, {}};
    if (count < 2 || !roundToPixel(span.from, sides, &span.first) || !roundToPixel(span.to, sides, &span.last)) {
        return ZELM_ERR_DEGENERATE;
    }
    *tSpan = span;
    return ZELM_OK;
}

}  // namespace zelm

using namespace zelm;

std::int32_t zelmCstmDrovnGetPixelOnEpiLine(const ZelmRect* tRect, const Line2d* tLine, std::int32_t* iCount,
                                            Point2i* taPoints) {
    if (tRect == nullptr || tLine == nullptr || iCount == nullptr || taPoints == nullptr || tRect->x < 0 ||
        tRect->y < 0 || tRect->width <= 0 || tRect->height <= 0) {
        return ZELM_ERR_PARAM;
    }
    LatticeSpan span;
    const std::int32_t status = innerLatticeSpan(*tRect, *tLine, &span);
    if (status < 0) {
        return status;
    }
    const std::int32_t count = zelmMiscPlotPointsOfLine(&span.first, &span.last, taPoints);
    if (count <= 0) {
        return count;
    }
    *iCount = count;
    return ZELM_OK;
}
