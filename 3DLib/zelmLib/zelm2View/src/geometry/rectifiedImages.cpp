#include <cstdint>

#include "calibObject.h"
#include "imageBuffer.h"
#include "rectifyingTransform.h"
#include "zelm/kernels.h"
#include "zelm/twoViewGeometry.h"

using namespace zelm;

std::int32_t zelm2ViewMakeHomImage(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const unsigned char* ucSrc,
                                   const Zelm2ViewHomParam* tParams, unsigned char* ucDst) {
    Rectification r;
    const std::int32_t status =
        beginRectification(tHandle, iCamera, tParams, {ucSrc, ucDst}, RectifyingDirection::toUnrectified, &r);
    if (status < 0) {
        return status;
    }
    const ImageSize size = imageSizeOf(tHandle->data, r.camera);
    perspectiveTransAndDistortImage_8uC1(r.T, kernelCamera(tHandle->data, r.camera).elements, ucSrc, size.width,
                                         size.width, size.height, ucDst, size.width, size.width, size.height);
    return ZELM_OK;
}

std::int32_t zelm2ViewMakeHomImage_vImageARGB8888(const Zelm2ViewCalib* tHandle, std::int32_t iCamera,
                                                  const vImage_Buffer* tSrc, const Zelm2ViewHomParam* tParams,
                                                  const vImage_Buffer* tDst) {
    Camera camera{};
    if (!areBuffersOf(tHandle, iCamera, tSrc, tDst, &camera)) {
        return ZELM_ERR_PARAM;
    }
    Rectification r;
    const std::int32_t status =
        beginRectification(tHandle, iCamera, tParams, {}, RectifyingDirection::toUnrectified, &r);
    if (status < 0) {
        return status;
    }
    const ImageSize size = imageSizeOf(tHandle->data, camera);
    perspectiveTransAndDistortImage_8uC4(
        r.T, kernelCamera(tHandle->data, camera).elements, static_cast<const std::uint8_t*>(tSrc->data),
        static_cast<std::int32_t>(tSrc->rowBytes), size.width, size.height, static_cast<std::uint8_t*>(tDst->data),
        static_cast<std::int32_t>(tDst->rowBytes), size.width, size.height);
    return ZELM_OK;
}
