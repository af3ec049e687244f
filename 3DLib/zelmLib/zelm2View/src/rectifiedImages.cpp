#include <cstdint>

#include "calibObject.h"
#include "calibratedCamera.h"
#include "imageBuffer.h"
#include "rectifyingTransform.h"
#include "zelm/kernels.h"
#include "zelm/twoViewGeometry.h"

using namespace zelm;

std::int32_t zelm2ViewMakeHomImage(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const unsigned char* ucSrc,
                                   const Zelm2ViewHomParam* tParams, unsigned char* ucDst) {
    Camera camera{};
    if (tHandle == nullptr || ucSrc == nullptr || tParams == nullptr || ucDst == nullptr ||
        !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    double T[9];
    const std::int32_t status =
        innerCalcHomMatrix(tHandle->data, camera, *tParams, RectifyingDirection::toUnrectified, T);
    if (status < 0) {
        return status;
    }
    const ImageSize size = imageSizeOf(tHandle->data, camera);
    perspectiveTransAndDistortImage_8uC1(T, kernelCamera(tHandle->data, camera).elements, ucSrc, size.width, size.width,
                                         size.height, ucDst, size.width, size.width, size.height);
    return ZELM_OK;
}

std::int32_t zelm2ViewMakeHomImage_vImageARGB8888(const Zelm2ViewCalib* tHandle, std::int32_t iCamera,
                                                  const vImage_Buffer* tSrc, const Zelm2ViewHomParam* tParams,
                                                  const vImage_Buffer* tDst) {
    Camera camera{};
    if (tHandle == nullptr || tSrc == nullptr || tParams == nullptr || tDst == nullptr ||
        !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    const ImageSize size = imageSizeOf(tHandle->data, camera);
    if (!isBufferOf(*tSrc, size) || !isBufferOf(*tDst, size)) {
        return ZELM_ERR_PARAM;
    }
    double T[9];
    const std::int32_t status =
        innerCalcHomMatrix(tHandle->data, camera, *tParams, RectifyingDirection::toUnrectified, T);
    if (status < 0) {
        return status;
    }
    perspectiveTransAndDistortImage_8uC4(
        T, kernelCamera(tHandle->data, camera).elements, static_cast<const std::uint8_t*>(tSrc->data),
        static_cast<std::int32_t>(tSrc->rowBytes), size.width, size.height, static_cast<std::uint8_t*>(tDst->data),
        static_cast<std::int32_t>(tDst->rowBytes), size.width, size.height);
    return ZELM_OK;
}
