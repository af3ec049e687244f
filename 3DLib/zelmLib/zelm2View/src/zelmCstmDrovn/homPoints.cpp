// Points and lines between source images and expanded images.
#include <cstdint>

#include "calibObject.h"
#include "epipolarSegment.h"
#include "rectifyingTransform.h"
#include "transferHomography.h"
#include "zelm/calib.h"
#include "zelm/cstmGeometry.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

// A raw pixel to the expanded image of magnification m.
std::int32_t toExpanded(const unsigned char* data, Camera camera, std::int32_t iCamera, const ZelmCstmExpPrm& tHomPrm,
                        double m, const Point2d& raw, Point2d* out) {
    double hom[9];
    std::int32_t status = innerCalcExpHomography(data, iCamera, tHomPrm, ExpDirection::toExpanded, hom, m);
    if (status < 0) {
        return status;
    }
    const auto intrinsics = block::read<ZelmCameraIntrinsics>(data, block::intrinsics(camera));
    Point2d ideal{};
    status = zelmCalibUnDistortPoint(&intrinsics, raw.x, raw.y, &ideal.x, &ideal.y);
    if (status < 0) {
        return status;
    }
    *out = transformPoint(hom, ideal.x, ideal.y);
    return ZELM_OK;
}

}  // namespace
}  // namespace zelm

using namespace zelm;

std::int32_t zelmCstmDrovnChangeOrg2DtoExp2D(const ZelmCstmExpPrm* tExpPrm, const Point2d* tIn, Point2d* tOut) {
    if (tExpPrm == nullptr || !isExpansion(*tExpPrm) || tIn == nullptr || tOut == nullptr) {
        return ZELM_ERR_PARAM;
    }
    *tOut = {tExpPrm->iWidth / 2 + (tIn->x - tExpPrm->dX) * tExpPrm->dVal,
             tExpPrm->iHeight / 2 + (tIn->y - tExpPrm->dY) * tExpPrm->dVal};
    return ZELM_OK;
}

std::int32_t zelmCstmDrovnChangeOrg2DtoHom2D(const Zelm2ViewCalib* tHandle, std::int32_t iCamera,
                                             const ZelmCstmExpPrm* tHomPrm, const Point2d* tIn, Point2d* tOut) {
    Camera camera{};
    if (tHandle == nullptr || tHomPrm == nullptr || tIn == nullptr || tOut == nullptr ||
        !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    return toExpanded(tHandle->data, camera, iCamera, *tHomPrm, 1.0, *tIn, tOut);
}

// The expansion's fields are not tested here: docs/decisions.md#expansion-not-tested.
std::int32_t zelmCstmDrovnChangeOrg2DtoHom2DExp(const Zelm2ViewCalib* tHandle, std::int32_t iCamera,
                                                const ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm,
                                                const Point2d* tIn, Point2d* tOut) {
    Camera camera{};
    if (tHandle == nullptr || tHomPrm == nullptr || tExpPrm == nullptr || tIn == nullptr || tOut == nullptr ||
        !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    return toExpanded(tHandle->data, camera, iCamera, *tHomPrm, tExpPrm->dVal, *tIn, tOut);
}

std::int32_t zelmCstmDrovnInvHomImgPointExp(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const Point2d* tIn,
                                            const ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm,
                                            Point2d* tOut) {
    Camera camera{};
    if (tExpPrm == nullptr || tHandle == nullptr || tIn == nullptr || tHomPrm == nullptr || tOut == nullptr ||
        !isExpansion(*tExpPrm) || !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    double hom[9];
    const std::int32_t status =
        innerCalcExpHomography(tHandle->data, iCamera, *tHomPrm, ExpDirection::toSource, hom, tExpPrm->dVal);
    if (status < 0) {
        return status;
    }
    const auto intrinsics = block::read<ZelmCameraIntrinsics>(tHandle->data, block::intrinsics(camera));
    const Point2d ideal = transformPoint(hom, tIn->x, tIn->y);
    return zelmCalibDistortPoint(&intrinsics, ideal.x, ideal.y, &tOut->x, &tOut->y);
}

std::int32_t zelmCstmDrovnChangeHomEpiLineExp(const Zelm2ViewCalib* tHandle, std::int32_t iCamera,
                                              const ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm,
                                              const Line2d* tLine, Zelm2ViewEpiLine* tOut) {
    Camera camera{};
    if (tExpPrm == nullptr || tHandle == nullptr || tLine == nullptr || tHomPrm == nullptr || tOut == nullptr ||
        !isExpansion(*tExpPrm) || !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    double hom[9];
    const std::int32_t status =
        innerCalcExpHomography(tHandle->data, iCamera, *tHomPrm, ExpDirection::toSource, hom, tExpPrm->dVal);
    if (status < 0) {
        return status;
    }
    const double line[3] = {tLine->a, tLine->b, tLine->c};
    double carried[3];
    zelmMatMul(1, 3, line, 3, 3, hom, carried);
    setNormalised(carried, tOut);
    clearEndPoints(tOut);
    return setEndPoints({tHomPrm->iWidth, tHomPrm->iHeight}, tOut);
}
