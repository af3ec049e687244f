/// @file
/// Image kernels: perspective warp with lens distortion, and remapping through precomputed maps.
///
/// Single-precision arithmetic. On processors with AVX2, FMA, BMI, LZCNT and MOVBE a vector variant runs, chosen on
/// every call; it computes the same positions and validity bit for bit, and its pixels differ from the plain variant's
/// by at most one, at exact ties (the plain variant rounds them up, the vector variant to even). None of the kernels
/// checks its arguments, allocates or reads outside the source. Destination pixels without a valid source position
/// become 0; a position is valid when 0 <= u < srcWidth - 1 and 0 <= v < srcHeight - 1. Buffers must not overlap.
/// Reentrant.
#ifndef ZELM_KERNELS_H
#define ZELM_KERNELS_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// Warps an 8-bit image: every destination pixel is carried by the homography to its undistorted source position,
/// pushed through the camera's radial distortion and sampled there bilinearly.
/// @param daHom      [in]  3x3 homography, row-major: destination pixel (x, y, 1) to undistorted source position
/// @param daCamera   [in]  22 doubles of the camera's ZelmCameraIntrinsics (alpha, beta, gamma, cx, cy, theta, k1, k2
///                         are used)
/// @param ucSrc      [in]  source, iSrcHeight rows of iSrcWidth bytes
/// @param iSrcStride [in]  bytes from one source row to the next, >= iSrcWidth
/// @param iSrcWidth, iSrcHeight [in] size of the source in pixels
/// @param ucDst      [out] destination, iDstHeight rows of iDstWidth bytes
/// @param iDstStride [in]  bytes from one destination row to the next, >= iDstWidth
/// @param iDstWidth, iDstHeight [in] size of the destination in pixels
ZELM_API void perspectiveTransAndDistortImage_8uC1(const double* daHom, const double* daCamera, const uint8_t* ucSrc,
                                                   int32_t iSrcStride, int32_t iSrcWidth, int32_t iSrcHeight,
                                                   uint8_t* ucDst, int32_t iDstStride, int32_t iDstWidth,
                                                   int32_t iDstHeight);

/// As perspectiveTransAndDistortImage_8uC1 with four interleaved channels, all treated alike; strides >= 4 x width.
/// @param daHom [in] as there
/// @param daCamera [in] as there
/// @param ucSrc [in] source, four bytes a pixel
/// @param iSrcStride [in] bytes from one source row to the next
/// @param iSrcWidth, iSrcHeight [in] size of the source in pixels
/// @param ucDst [out] destination, four bytes a pixel
/// @param iDstStride [in] bytes from one destination row to the next
/// @param iDstWidth, iDstHeight [in] size of the destination in pixels
ZELM_API void perspectiveTransAndDistortImage_8uC4(const double* daHom, const double* daCamera, const uint8_t* ucSrc,
                                                   int32_t iSrcStride, int32_t iSrcWidth, int32_t iSrcHeight,
                                                   uint8_t* ucDst, int32_t iDstStride, int32_t iDstWidth,
                                                   int32_t iDstHeight);

/// Samples an 8-bit image bilinearly at the positions held in two maps, inside a rectangle of the destination.
/// @param ucSrc       [in]  source, iSrcHeight rows of iSrcWidth bytes
/// @param iSrcStride  [in]  bytes from one source row to the next, >= iSrcWidth
/// @param iSrcWidth, iSrcHeight [in] size of the source in pixels
/// @param ucDst       [out] destination; pixels outside the rectangle are not touched
/// @param iDstStride  [in]  bytes from one destination row to the next
/// @param iDstWidth, iDstHeight [in] ignored
/// @param faMapX      [in]  source column of each destination pixel; a pixel is valid by the rule above
/// @param iMapXStride [in]  bytes from one row of faMapX to the next
/// @param faMapY      [in]  source row of each destination pixel
/// @param iMapYStride [in]  bytes from one row of faMapY to the next
/// @param iX0, iY0, iX1, iY1 [in] rectangle, inclusive; empty when iX0 > iX1 or iY0 > iY1
ZELM_API void remapImage_8uC1(const uint8_t* ucSrc, int32_t iSrcStride, int32_t iSrcWidth, int32_t iSrcHeight,
                              uint8_t* ucDst, int32_t iDstStride, int32_t iDstWidth, int32_t iDstHeight,
                              const float* faMapX, int32_t iMapXStride, const float* faMapY, int32_t iMapYStride,
                              int32_t iX0, int32_t iY0, int32_t iX1, int32_t iY1);

/// As remapImage_8uC1 with four interleaved channels.
/// @param ucSrc [in] source, four bytes a pixel
/// @param iSrcStride [in] bytes from one source row to the next, >= 4 x iSrcWidth
/// @param iSrcWidth, iSrcHeight [in] size of the source in pixels
/// @param ucDst [out] destination, four bytes a pixel
/// @param iDstStride [in] bytes from one destination row to the next
/// @param iDstWidth, iDstHeight [in] ignored
/// @param faMapX [in] source column of each destination pixel
/// @param iMapXStride [in] bytes from one row of faMapX to the next
/// @param faMapY [in] source row of each destination pixel
/// @param iMapYStride [in] bytes from one row of faMapY to the next
/// @param iX0, iY0, iX1, iY1 [in] rectangle, inclusive
ZELM_API void remapImage_8uC4(const uint8_t* ucSrc, int32_t iSrcStride, int32_t iSrcWidth, int32_t iSrcHeight,
                              uint8_t* ucDst, int32_t iDstStride, int32_t iDstWidth, int32_t iDstHeight,
                              const float* faMapX, int32_t iMapXStride, const float* faMapY, int32_t iMapYStride,
                              int32_t iX0, int32_t iY0, int32_t iX1, int32_t iY1);

ZELM_END_DECLS

#endif
