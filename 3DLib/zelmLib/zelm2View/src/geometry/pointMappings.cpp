#include <algorithm>
#include <cstdint>

#include "calibObject.h"
#include "rectifyingTransform.h"
#include "zelm/calib.h"
#include "zelm/twoViewGeometry.h"

using namespace zelm;

namespace {

ZelmCameraIntrinsics intrinsicsOf(const Zelm2ViewCalib& calib, Camera camera) {
    return block::read<ZelmCameraIntrinsics>(calib.data, block::intrinsics(camera));
}

}  // namespace

std::int32_t zelm2ViewCalcHomImgPoint(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const Point2d* tIn,
                                      const Zelm2ViewHomParam* tParams, Point2d* tOut) {
    Rectification r;
    std::int32_t status =
        beginRectification(tHandle, iCamera, tParams, {tIn, tOut}, RectifyingDirection::toRectified, &r);
    if (status < 0) {
        return status;
    }
    const ZelmCameraIntrinsics intrinsics = intrinsicsOf(*tHandle, r.camera);
    Point2d ideal{};
    status = zelmCalibUnDistortPoint(&intrinsics, tIn->x, tIn->y, &ideal.x, &ideal.y);
    if (status < 0) {
        return status;
    }
    *tOut = transformPoint(r.T, ideal.x, ideal.y);
    return ZELM_OK;
}

std::int32_t zelm2ViewInvHomImgPoint(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const Point2d* tIn,
                                     const Zelm2ViewHomParam* tParams, Point2d* tOut) {
    Rectification r;
    const std::int32_t status =
        beginRectification(tHandle, iCamera, tParams, {tIn, tOut}, RectifyingDirection::toUnrectified, &r);
    if (status < 0) {
        return status;
    }
    const ZelmCameraIntrinsics intrinsics = intrinsicsOf(*tHandle, r.camera);
    const Point2d ideal = transformPoint(r.T, tIn->x, tIn->y);
    return zelmCalibDistortPoint(&intrinsics, ideal.x, ideal.y, &tOut->x, &tOut->y);
}

std::int32_t zelm2ViewDistortPoint(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const Point2d* tIn,
                                   Point2d* tOut) {
    Camera camera{};
    if (tHandle == nullptr || tIn == nullptr || tOut == nullptr || !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    const ZelmCameraIntrinsics intrinsics = intrinsicsOf(*tHandle, camera);
    return zelmCalibDistortPoint(&intrinsics, tIn->x, tIn->y, &tOut->x, &tOut->y);
}

std::int32_t zelm2ViewUnDistortPoint(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const Point2d* tIn,
                                     Point2d* tOut) {
    Camera camera{};
    if (tHandle == nullptr || tIn == nullptr || tOut == nullptr || !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    const ZelmCameraIntrinsics intrinsics = intrinsicsOf(*tHandle, camera);
    const std::int32_t status = zelmCalibUnDistortPoint(&intrinsics, tIn->x, tIn->y, &tOut->x, &tOut->y);
    return std::min<std::int32_t>(status, ZELM_OK);
}
