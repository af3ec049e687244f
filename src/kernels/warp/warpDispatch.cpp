#include <cmath>

#include "cpuFeatures.h"
#include "imageKernels.h"
#include "warpKernels.h"
#include "zelm/kernels.h"

#if defined(__AVX__)
#error "the dispatch must run on every processor: build this file without AVX flags"
#endif

// The choice is made on every call. 32-bit and foreign processors have the plain tier only.
#ifdef ZELM_AVX2_TIER
#define ZELM_PICK_TIER(plain, avx2) (zelm::cpuHasAvx2Set() != 0 ? (avx2) : (plain))
#else
#define ZELM_PICK_TIER(plain, avx2) (plain)
#endif

namespace zelm {
namespace {

// Places of the camera record's elements that the kernels read.
enum CameraElement { kAlpha = 9, kBeta, kGamma, kCx, kCy, kTheta, kK1, kK2 };

WarpModel makeModel(const double* hom, const double* camera) {
    WarpModel model;
    for (int i = 0; i < 9; ++i) {
        model.h[i] = static_cast<float>(hom[i]);
    }
    const auto beta = static_cast<float>(camera[kBeta]);
    model.cx = static_cast<float>(camera[kCx]);
    model.cy = static_cast<float>(camera[kCy]);
    model.shear = static_cast<float>(camera[kGamma]) / beta;
    model.inverseAlpha = 1.0F / static_cast<float>(camera[kAlpha]);
    model.yScale = std::cos(static_cast<float>(camera[kTheta])) / beta;
    model.k1 = static_cast<float>(camera[kK1]);
    model.k2 = static_cast<float>(camera[kK2]);
    return model;
}

// Beyond 2^24 the last column may round up to a float outside the image; every float below that one is inside still.
float limitOf(std::int32_t size) {
    return static_cast<float>(size > 0 ? size - 1 : 0);
}

WarpSource makeSource(const std::uint8_t* pixels, std::int32_t stride, std::int32_t width, std::int32_t height) {
    return {pixels, stride, width, height, limitOf(width), limitOf(height)};
}

}  // namespace

void perspectiveTransAndDistortMap_32f(const double hom[9], const double camera[22], std::int32_t srcWidth,
                                       std::int32_t srcHeight, std::int32_t dstWidth, std::int32_t dstHeight,
                                       float* mapX, std::int32_t mapXStride, float* mapY, std::int32_t mapYStride,
                                       std::int32_t* minX, std::int32_t* minY, std::int32_t* maxX, std::int32_t* maxY) {
    const WarpMapTarget maps{mapX, mapXStride, mapY, mapYStride, dstWidth, dstHeight};
    WarpBox valid{dstWidth, dstHeight, 0, 0};
    ZELM_PICK_TIER(mapPlain32f, mapAvx232f)
    (makeModel(hom, camera), makeSource(nullptr, 0, srcWidth, srcHeight), maps, valid);
    *minX = valid.x0;
    *minY = valid.y0;
    *maxX = valid.x1;
    *maxY = valid.y1;
}

}  // namespace zelm

using zelm::makeModel;
using zelm::makeSource;

void perspectiveTransAndDistortImage_8uC1(const double* daHom, const double* daCamera, const uint8_t* ucSrc,
                                          int32_t iSrcStride, int32_t iSrcWidth, int32_t iSrcHeight, uint8_t* ucDst,
                                          int32_t iDstStride, int32_t iDstWidth, int32_t iDstHeight) {
    ZELM_PICK_TIER(zelm::warpPlain8uC1, zelm::warpAvx28uC1)
    (makeModel(daHom, daCamera), makeSource(ucSrc, iSrcStride, iSrcWidth, iSrcHeight),
     {ucDst, iDstStride, iDstWidth, iDstHeight});
}

void perspectiveTransAndDistortImage_8uC4(const double* daHom, const double* daCamera, const uint8_t* ucSrc,
                                          int32_t iSrcStride, int32_t iSrcWidth, int32_t iSrcHeight, uint8_t* ucDst,
                                          int32_t iDstStride, int32_t iDstWidth, int32_t iDstHeight) {
    ZELM_PICK_TIER(zelm::warpPlain8uC4, zelm::warpAvx28uC4)
    (makeModel(daHom, daCamera), makeSource(ucSrc, iSrcStride, iSrcWidth, iSrcHeight),
     {ucDst, iDstStride, iDstWidth, iDstHeight});
}

void remapImage_8uC1(const uint8_t* ucSrc, int32_t iSrcStride, int32_t iSrcWidth, int32_t iSrcHeight, uint8_t* ucDst,
                     int32_t iDstStride, int32_t iDstWidth, int32_t iDstHeight, const float* faMapX,
                     int32_t iMapXStride, const float* faMapY, int32_t iMapYStride, int32_t iX0, int32_t iY0,
                     int32_t iX1, int32_t iY1) {
    ZELM_PICK_TIER(zelm::remapPlain8uC1, zelm::remapAvx28uC1)
    (makeSource(ucSrc, iSrcStride, iSrcWidth, iSrcHeight), {ucDst, iDstStride, iDstWidth, iDstHeight},
     {faMapX, iMapXStride, faMapY, iMapYStride}, {iX0, iY0, iX1, iY1});
}

void remapImage_8uC4(const uint8_t* ucSrc, int32_t iSrcStride, int32_t iSrcWidth, int32_t iSrcHeight, uint8_t* ucDst,
                     int32_t iDstStride, int32_t iDstWidth, int32_t iDstHeight, const float* faMapX,
                     int32_t iMapXStride, const float* faMapY, int32_t iMapYStride, int32_t iX0, int32_t iY0,
                     int32_t iX1, int32_t iY1) {
    ZELM_PICK_TIER(zelm::remapPlain8uC4, zelm::remapAvx28uC4)
    (makeSource(ucSrc, iSrcStride, iSrcWidth, iSrcHeight), {ucDst, iDstStride, iDstWidth, iDstHeight},
     {faMapX, iMapXStride, faMapY, iMapYStride}, {iX0, iY0, iX1, iY1});
}
