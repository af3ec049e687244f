#include "transferHomography.h"

#include <cstddef>

#include "assertion.h"
#include "calibObject.h"
#include "matrix3.h"
#include "rectifyingTransform.h"

namespace zelm {
namespace {

// T G with the shift that centres the reference point.
void centre(const double G[9], const Point2d& offset, double hom[9]) {
    const double T[9] = {1.0, 0.0, -offset.x, 0.0, 1.0, -offset.y, 0.0, 0.0, 1.0};
    multiply3(T, G, hom);
}

// The inverse of centre() of S other own^-1, from the matrices instead of from the product.
void invert(const DepthMatrix& own, const DepthMatrix& other, const Point2d& offset, double m, double hom[9]) {
    const double Sinv[9] = {1.0 / m, 0.0, 0.0, 0.0, 1.0 / m, 0.0, 0.0, 0.0, 1.0};
    const double T[9] = {1.0, 0.0, offset.x, 0.0, 1.0, offset.y, 0.0, 0.0, 1.0};
    double transfer[9];
    double shrunk[9];
    multiply3(own.A, other.Ainv, transfer);
    multiply3(transfer, Sinv, shrunk);
    multiply3(shrunk, T, hom);
}

}  // namespace

std::int32_t innerCalcExpHomography(const unsigned char* data, std::int32_t iCamera, const ZelmCstmExpPrm& tHomPrm,
                                    ExpDirection direction, double hom[9], double m) {
    DepthMatrix left;
    DepthMatrix right;
    Camera camera{};
    if (!makeDepthMatrix(data, Camera::left, tHomPrm.dVal, &left) ||
        !makeDepthMatrix(data, Camera::right, tHomPrm.dVal, &right) || !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_DEGENERATE;
    }
    const DepthMatrix& own = isLeft(camera) ? left : right;
    const DepthMatrix& other = isLeft(camera) ? right : left;
    const double S[9] = {m, 0.0, 0.0, 0.0, m, 0.0, 0.0, 0.0, 1.0};
    double magnified[9];
    double G[9];
    multiply3(S, other.A, magnified);
    multiply3(magnified, own.Ainv, G);
    const Point2d offset = centringOffset(G, {tHomPrm.dX, tHomPrm.dY}, {tHomPrm.iWidth, tHomPrm.iHeight});
    if (direction == ExpDirection::toExpanded) {
        centre(G, offset, hom);
    } else {
        invert(own, other, offset, m, hom);
    }
    normaliseTransform(hom);
    return ZELM_OK;
}

std::int32_t innerCalcHomTransParams(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const ZelmCstmExpPrm* tHomPrm,
                                     const ZelmCstmExpPrm* tExpPrm, double* daHom, KernelCamera* tPrmA,
                                     std::int32_t* iSrcWidth, std::int32_t* iSrcHeight, std::int32_t* iDstWidth,
                                     std::int32_t* iDstHeight) {
    if (tHandle == nullptr || tHomPrm == nullptr || tExpPrm == nullptr || !isExpansion(*tExpPrm)) {
        return ZELM_ERR_PARAM;
    }
    // clang-format off
    ZELM_ASSERT(daHom!=NULL);
    ZELM_ASSERT(tPrmA!=NULL);
    ZELM_ASSERT(iSrcWidth!=NULL);
    ZELM_ASSERT(iSrcHeight!=NULL);
    ZELM_ASSERT(iDstWidth!=NULL);
    ZELM_ASSERT(iDstHeight!=NULL);
    // clang-format on
    Camera camera{};
    if (!selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    const std::int32_t status =
        innerCalcExpHomography(tHandle->data, iCamera, *tHomPrm, ExpDirection::toSource, daHom, tExpPrm->dVal);
    if (status < 0) {
        return status;
    }
    const ImageSize source = imageSizeOf(tHandle->data, camera);
    *tPrmA = kernelCamera(tHandle->data, camera);
    *iSrcWidth = source.width;
    *iSrcHeight = source.height;
    *iDstWidth = tHomPrm->iWidth;
    *iDstHeight = tHomPrm->iHeight;
    return ZELM_OK;
}

}  // namespace zelm
