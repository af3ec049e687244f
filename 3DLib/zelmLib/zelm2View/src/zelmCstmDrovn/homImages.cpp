// Expanded images, rendered directly or through maps.
#include <cstddef>
#include <cstdint>
#include <limits>

#include "calibObject.h"
#include "imageBuffer.h"
#include "imageKernels.h"
#include "transferHomography.h"
#include "zelm/cstmGeometry.h"
#include "zelm/kernels.h"

namespace zelm {
namespace {

// What one expanded image is made with.
struct Transfer {
    double hom[9];  // expanded pixel to undistorted source pixel
    KernelCamera camera;
    ImageSize source;
    ImageSize target;
};

std::int32_t prepare(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const ZelmCstmExpPrm* tHomPrm,
                     const ZelmCstmExpPrm* tExpPrm, Transfer* out) {
    return innerCalcHomTransParams(tHandle, iCamera, tHomPrm, tExpPrm, out->hom, &out->camera, &out->source.width,
                                   &out->source.height, &out->target.width, &out->target.height);
}

using WarpKernel = decltype(perspectiveTransAndDistortImage_8uC1);
using RemapKernel = decltype(remapImage_8uC1);

// Rows of pixels, bytes from one to the next, and their size.
struct Plane {
    std::uint8_t* pixels;
    std::int32_t stride;
    ImageSize size;
};

void warpWith(WarpKernel* kernel, const Transfer& transfer, const std::uint8_t* src, std::int32_t srcStride,
              const Plane& dst) {
    if (dst.size.width < 1 || dst.size.height < 1) {
        return;  // the target's size is not tested
    }
    kernel(transfer.hom, transfer.camera.elements, src, srcStride, transfer.source.width, transfer.source.height,
           dst.pixels, dst.stride, dst.size.width, dst.size.height);
}

std::int32_t makeHomImage(WarpKernel* kernel, const Zelm2ViewCalib* tHandle, std::int32_t iCamera,
                          const vImage_Buffer* tSrc, const ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm,
                          const vImage_Buffer* tDst) {
    Transfer transfer;
    const std::int32_t status = prepare(tHandle, iCamera, tHomPrm, tExpPrm, &transfer);
    if (status < 0) {
        return status;
    }
    if (tSrc == nullptr || tDst == nullptr || !isKernelBufferOf(*tSrc, transfer.source) ||
        !isKernelBufferOf(*tDst, transfer.target)) {
        return ZELM_ERR_PARAM;
    }
    warpWith(kernel, transfer, static_cast<const std::uint8_t*>(tSrc->data), static_cast<std::int32_t>(tSrc->rowBytes),
             {static_cast<std::uint8_t*>(tDst->data), static_cast<std::int32_t>(tDst->rowBytes), transfer.target});
    return ZELM_OK;
}

bool isEmpty(const ZelmCstmHomMap& map) {
    return map.iWidth < 1 || map.iHeight < 1 || map.minX > map.maxX || map.minY > map.maxY;
}

// The kernels trust their box: it has to lie inside the maps and the destination.
bool boxFits(const ZelmCstmHomMap& map, const ImageSize& dst) {
    return map.mapX != nullptr && map.mapY != nullptr && map.minX >= 0 && map.minY >= 0 && map.maxX < map.iWidth &&
           map.maxY < map.iHeight && map.maxX < dst.width && map.maxY < dst.height;
}

std::int32_t remap(RemapKernel* kernel, const ZelmCstmHomMap& map, const std::uint8_t* src, std::int32_t srcStride,
                   const ImageSize& srcSize, const Plane& dst) {
    if (srcSize.width <= 0 || srcSize.height < 1 || dst.size.width < 1 || dst.size.height < 1) {
        return ZELM_ERR_PARAM;
    }
    if (isEmpty(map)) {
        return ZELM_OK;
    }
    if (!boxFits(map, dst.size)) {
        return ZELM_ERR_PARAM;
    }
    kernel(src, srcStride, srcSize.width, srcSize.height, dst.pixels, dst.stride, dst.size.width, dst.size.height,
           map.mapX, map.mapXStride, map.mapY, map.mapYStride, map.minX, map.minY, map.maxX, map.maxY);
    return ZELM_OK;
}

// The size of a buffer; negative where the kernels cannot express it, and refused with the empty ones.
ImageSize sizeOf(const vImage_Buffer& buffer) {
    // Pixels, or bytes of a row.
    constexpr auto kMaxSize = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
    if (buffer.data == nullptr || buffer.width > kMaxSize || buffer.height > kMaxSize || buffer.rowBytes > kMaxSize) {
        return {-1, -1};
    }
    return {static_cast<std::int32_t>(buffer.width), static_cast<std::int32_t>(buffer.height)};
}

std::int32_t remapBuffers(RemapKernel* kernel, const ZelmCstmHomMap* tMap, const vImage_Buffer* tSrc,
                          const vImage_Buffer* tDst) {
    if (tMap == nullptr || tSrc == nullptr || tDst == nullptr) {
        return ZELM_ERR_PARAM;
    }
    return remap(kernel, *tMap, static_cast<const std::uint8_t*>(tSrc->data), static_cast<std::int32_t>(tSrc->rowBytes),
                 sizeOf(*tSrc),
                 {static_cast<std::uint8_t*>(tDst->data), static_cast<std::int32_t>(tDst->rowBytes), sizeOf(*tDst)});
}

}  // namespace
}  // namespace zelm

using namespace zelm;

std::int32_t zelmCstmDrovnMakeHomImageExp(const Zelm2ViewCalib* tHandle, std::int32_t iCamera,
                                          const unsigned char* ucSrc, const ZelmCstmExpPrm* tHomPrm,
                                          const ZelmCstmExpPrm* tExpPrm, unsigned char* ucDst) {
    Transfer transfer;
    const std::int32_t status = prepare(tHandle, iCamera, tHomPrm, tExpPrm, &transfer);
    if (status < 0) {
        return status;
    }
    warpWith(perspectiveTransAndDistortImage_8uC1, transfer, ucSrc, transfer.source.width,
             {ucDst, transfer.target.width, transfer.target});
    return ZELM_OK;
}

std::int32_t zelmCstmDrovnMakeHomImageExp_vImagePlanar8(const Zelm2ViewCalib* tHandle, std::int32_t iCamera,
                                                        const vImage_Buffer* tSrc, const ZelmCstmExpPrm* tHomPrm,
                                                        const ZelmCstmExpPrm* tExpPrm, const vImage_Buffer* tDst) {
    return makeHomImage(perspectiveTransAndDistortImage_8uC1, tHandle, iCamera, tSrc, tHomPrm, tExpPrm, tDst);
}

std::int32_t zelmCstmDrovnMakeHomImageExp_vImageARGB8888(const Zelm2ViewCalib* tHandle, std::int32_t iCamera,
                                                         const vImage_Buffer* tSrc, const ZelmCstmExpPrm* tHomPrm,
                                                         const ZelmCstmExpPrm* tExpPrm, const vImage_Buffer* tDst) {
    return makeHomImage(perspectiveTransAndDistortImage_8uC4, tHandle, iCamera, tSrc, tHomPrm, tExpPrm, tDst);
}

std::int32_t zelmCstmDrovnMakeHomImageMap(const Zelm2ViewCalib* tHandle, std::int32_t iCamera,
                                          const ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm,
                                          ZelmCstmHomMap* tMap) {
    Transfer transfer;
    const std::int32_t status = prepare(tHandle, iCamera, tHomPrm, tExpPrm, &transfer);
    if (status < 0) {
        return status;
    }
    if (tMap == nullptr || tMap->mapX == nullptr || tMap->mapY == nullptr || tMap->iWidth < 0 || tMap->iHeight < 0) {
        return ZELM_ERR_PARAM;
    }
    perspectiveTransAndDistortMap_32f(transfer.hom, transfer.camera.elements, transfer.source.width,
                                      transfer.source.height, tMap->iWidth, tMap->iHeight, tMap->mapX, tMap->mapXStride,
                                      tMap->mapY, tMap->mapYStride, &tMap->minX, &tMap->minY, &tMap->maxX, &tMap->maxY);
    return ZELM_OK;
}

std::int32_t zelmCstmDrovnRemapImage(const ZelmCstmHomMap* tMap, const unsigned char* ucSrc, std::int32_t iSrcWidth,
                                     std::int32_t iSrcHeight, unsigned char* ucDst, std::int32_t iDstWidth,
                                     std::int32_t iDstHeight) {
    if (tMap == nullptr || ucSrc == nullptr || ucDst == nullptr) {
        return ZELM_ERR_PARAM;
    }
    return remap(remapImage_8uC1, *tMap, ucSrc, iSrcWidth, {iSrcWidth, iSrcHeight},
                 {ucDst, iDstWidth, {iDstWidth, iDstHeight}});
}

std::int32_t zelmCstmDrovnRemapImage_vImagePlanar8(const ZelmCstmHomMap* tMap, const vImage_Buffer* tSrc,
                                                   const vImage_Buffer* tDst) {
    return remapBuffers(remapImage_8uC1, tMap, tSrc, tDst);
}

std::int32_t zelmCstmDrovnRemapImage_vImageARGB8888(const ZelmCstmHomMap* tMap, const vImage_Buffer* tSrc,
                                                    const vImage_Buffer* tDst) {
    return remapBuffers(remapImage_8uC4, tMap, tSrc, tDst);
}
