#include "zelm/misc.h"

#include <cstddef>
#include <cstdint>

#include "bufferSampling.h"

namespace zelm {
namespace {

// 32-bit sums wrap around instead of being undefined.
int32_t wrappingSum(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

int32_t wrappingDifference(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

}  // namespace
}  // namespace zelm

int32_t zelmMiscChangeRectToRect2(const ZelmRect* tRect, ZelmRect2* tRect2) {
    if (tRect == nullptr || tRect2 == nullptr) {
        return ZELM_ERR_PARAM;
    }
    *tRect2 = {tRect->x, tRect->y, zelm::wrappingDifference(zelm::wrappingSum(tRect->x, tRect->width), 1),
               zelm::wrappingDifference(zelm::wrappingSum(tRect->y, tRect->height), 1)};
    return ZELM_OK;
}

int32_t zelmMiscChangeRect2ToRect(const ZelmRect2* tRect2, ZelmRect* tRect) {
    if (tRect2 == nullptr || tRect == nullptr) {
        return ZELM_ERR_PARAM;
    }
    *tRect = {tRect2->x1, tRect2->y1, zelm::wrappingDifference(zelm::wrappingSum(tRect2->x2, 1), tRect2->x1),
              zelm::wrappingDifference(zelm::wrappingSum(tRect2->y2, 1), tRect2->y1)};
    return ZELM_OK;
}

double zelmMiscBilinearGrayLevel(const ZelmImage* tImage, double dX, double dY) {
    if (!zelm::isSampledPlanar8(dX, tImage->width) || !zelm::isSampledPlanar8(dY, tImage->height)) {
        return 0.0;
    }
    const auto width = static_cast<std::size_t>(tImage->width);
    return zelm::sampleBilinearPlanar8({tImage->pixels, static_cast<std::size_t>(tImage->height), width, width}, dX,
                                       dY);
}

int32_t zelmMiscPlotPointsOfLine(const Point2i* tP0, const Point2i* tP1, Point2i* taPoints) {
    if (tP0 == nullptr || tP1 == nullptr || taPoints == nullptr) {
        return ZELM_ERR_PARAM;
    }
    // 64-bit steps: the error term reaches twice the difference of two coordinates.
    const std::int64_t dx = tP1->x > tP0->x ? std::int64_t{tP1->x} - tP0->x : std::int64_t{tP0->x} - tP1->x;
    const std::int64_t dy = tP1->y > tP0->y ? std::int64_t{tP1->y} - tP0->y : std::int64_t{tP0->y} - tP1->y;
    const int32_t stepX = tP1->x > tP0->x ? 1 : -1;
    const int32_t stepY = tP1->y > tP0->y ? 1 : -1;
    const std::int64_t longest = dx > dy ? dx : dy;
    Point2i at = *tP0;
    const Point2i end = *tP1;
    taPoints[0] = at;
    std::int64_t error = dx - dy;
    int32_t count = 1;
    while (count <= longest && (at.x != end.x || at.y != end.y)) {
        const std::int64_t doubled = 2 * error;
        const bool moveX = doubled > -dy;
        const bool moveY = doubled < dx;
        at.x += moveX ? stepX : 0;
        at.y += moveY ? stepY : 0;
        error += (moveY ? dx : 0) - (moveX ? dy : 0);
        taPoints[count] = at;
        count += 1;
    }
    return count;
}
