// Internal entry points of the image kernels beside the exported ones.
#ifndef ZELM_IMAGE_KERNELS_H
#define ZELM_IMAGE_KERNELS_H

#include <cstdint>

namespace zelm {

// Writes the source position of every destination pixel into two maps (strides in bytes), -1 where there is none, and
// the inclusive box of the valid ones: (dstWidth, dstHeight, 0, 0) when there are none.
void perspectiveTransAndDistortMap_32f(const double hom[9], const double camera[22], std::int32_t srcWidth,
                                       std::int32_t srcHeight, std::int32_t dstWidth, std::int32_t dstHeight,
                                       float* mapX, std::int32_t mapXStride, float* mapY, std::int32_t mapYStride,
                                       std::int32_t* minX, std::int32_t* minY, std::int32_t* maxX, std::int32_t* maxY);

}  // namespace zelm

#endif
