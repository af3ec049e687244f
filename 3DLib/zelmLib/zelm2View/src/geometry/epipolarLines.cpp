#include <cmath>
#include <cstdint>

#include "calibObject.h"
#include "calibratedCamera.h"
#include "epipolarSegment.h"
#include "rectifyingTransform.h"
#include "zelm/cg.h"
#include "zelm/mat.h"
#include "zelm/twoViewGeometry.h"

namespace zelm {

void clearEndPoints(Zelm2ViewEpiLine* line) {
    line->x0 = line->y0 = line->x1 = line->y1 = 0.0;
}

void setNormalised(const double l[3], Zelm2ViewEpiLine* line) {
    const double norm = std::sqrt(l[0] * l[0] + l[1] * l[1]);
    line->a = l[0] / norm;
    line->b = l[1] / norm;
    line->c = l[2] / norm;
}

std::int32_t setEndPoints(const ImageSize& size, Zelm2ViewEpiLine* line) {
    // Not integers, which the sizes of a foreign block would overflow.
    const double right = size.width - 2.0;
    const double bottom = size.height - 2.0;
    const Point2d inset[4] = {{1.0, 1.0}, {right, 1.0}, {right, bottom}, {1.0, bottom}};
    const Line2d clipped{line->a, line->b, line->c};
    Point2d ends[2] = {{0.0, 0.0}, {0.0, 0.0}};
    const std::int32_t count = zelmCgIntersectionLineAndConvexPolygon(4, inset, &clipped, ends);
    if (count < 0) {
        return count;
    }
    if (count >= 1) {
        const Point2d& last = count == 1 ? ends[0] : ends[1];
        line->x0 = ends[0].x;
        line->y0 = ends[0].y;
        line->x1 = last.x;
        line->y1 = last.y;
    }
    return ZELM_OK;
}

}  // namespace zelm

using namespace zelm;

std::int32_t zelm2ViewCalcEpiLine(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const Point2d* tPoint,
                                  Zelm2ViewEpiLine* tOut) {
    if (tHandle == nullptr || tPoint == nullptr || tOut == nullptr) {
        return ZELM_ERR_PARAM;
    }
    clearEndPoints(tOut);  // also when the camera is refused: docs/decisions.md#epiline-clears
    Camera camera{};
    if (!selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    const auto from = block::read<ZelmCameraIntrinsics>(tHandle->data, block::intrinsics(otherOf(camera)));
    double point[3] = {0.0, 0.0, 1.0};
    if (zelmCalibUnDistortPoint(&from, tPoint->x, tPoint->y, &point[0], &point[1]) < 0) {
        return ZELM_ERR_UNDISTORT;
    }
    const auto fundamental = block::read<FundamentalPair>(tHandle->data, block::kFundamental);
    double line[3];
    zelmMatMul(3, 3, isLeft(camera) ? fundamental.F : fundamental.Ft, 3, 1, point, line);
    setNormalised(line, tOut);
    return setEndPoints(imageSizeOf(tHandle->data, camera), tOut);
}

std::int32_t zelm2ViewChangeHomEpiLine(const Zelm2ViewCalib* tHandle, std::int32_t iCamera,
                                       const Zelm2ViewHomParam* tParams, const double* daLine, Zelm2ViewEpiLine* tOut) {
    Rectification r;
    const std::int32_t status =
        beginRectification(tHandle, iCamera, tParams, {daLine, tOut}, RectifyingDirection::toUnrectified, &r);
    if (status < 0) {
        return status;
    }
    double line[3];
    zelmMatMul(1, 3, daLine, 3, 3, r.T, line);
    setNormalised(line, tOut);
    clearEndPoints(tOut);
    return setEndPoints(imageSizeOf(tHandle->data, r.camera), tOut);
}
