/// Binary images: Otsu thresholds, binarisation, morphology and blobs.
#ifndef ZELM_BIN_H
#define ZELM_BIN_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// One connected region of foreground pixels.
typedef struct ZelmBlob {
    int32_t area;    ///< number of pixels
    double cx;       ///< centroid, image column
    double cy;       ///< centroid, image row
    int32_t left;    ///< smallest column
    int32_t top;     ///< smallest row
    int32_t right;   ///< largest column, inclusive
    int32_t bottom;  ///< largest row, inclusive
    int32_t width;   ///< right - left + 1
    int32_t height;  ///< bottom - top + 1
    double angle;    ///< principal axis in radians, -pi/2..pi/2, y downwards
} ZelmBlob;

ZELM_API int32_t zelmBinOtsuThresholdHistogram(int32_t iBins, const uint32_t* uaHistogram);
ZELM_API int32_t zelmBinOtsuThresholdImage(const ZelmImage* tImage, const ZelmRect* tRegion);
ZELM_API int32_t zelmBinOtsuThresholdGray(int32_t iCount, const double* daValues);
ZELM_API int32_t zelmBinBinaryImage(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold,
                                    ZelmImage* tDst);
ZELM_API int32_t zelmBinDilation(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold,
                                 int32_t iIterations, ZelmImage* tDst);
ZELM_API int32_t zelmBinErosion(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold, int32_t iIterations,
                                ZelmImage* tDst);
ZELM_API int32_t zelmBinOpening(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold, int32_t iIterations,
                                ZelmImage* tDst);
ZELM_API int32_t zelmBinClosing(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold, int32_t iIterations,
                                ZelmImage* tDst);

ZELM_API int32_t zelmBinBlob(const ZelmImage* tImage, const ZelmRect* tRegion, int32_t iThreshold, int32_t iPolarity,
                             int32_t iClearEdge, int32_t iMinArea, ZelmBlob** taBlobs, int32_t* iCount);
ZELM_API void zelmBinFree(ZelmBlob** taBlobs);

ZELM_END_DECLS

#endif
