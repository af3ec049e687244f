/// @file
/// Binary images: Otsu thresholds, binarisation, morphology and blobs.
///
/// A pixel is foreground when its value is at or above the threshold. Regions are rectangles of whole pixels. They are
/// not checked against the image that is read: the caller keeps them inside. No shared state: calls on different
/// outputs may run at the same time.
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

/// Threshold that splits a histogram into the two classes with the largest variance between them (Otsu, IEEE Trans. SMC
/// 9, 1979): the lowest level of the upper class, so that values at or above it are foreground. Of equally good splits
/// the lowest is taken. A histogram of one level, or of none, gives 1. Counts are summed in unsigned 32-bit arithmetic.
///
/// @param iBins       [in] number of levels, >= 1
/// @param uaHistogram [in] iBins counts
/// @return the threshold, >= 1, or ZELM_ERR_PARAM: iBins < 1 or a NULL histogram
ZELM_API int32_t zelmBinOtsuThresholdHistogram(int32_t iBins, const uint32_t* uaHistogram);

/// Otsu threshold over the gray levels of a region.
///
/// @param tImage  [in] gray image
/// @param tRegion [in] region, kept inside the image by the caller; without pixels (a size below 1) the result is 1
/// @return the threshold, 1 to 255, or ZELM_ERR_PARAM: a NULL pointer
ZELM_API int32_t zelmBinOtsuThresholdImage(const ZelmImage* tImage, const ZelmRect* tRegion);

/// Otsu threshold over a list of gray levels, each rounded half up to a level and clamped to 0..255. Infinite and huge
/// values are clamped like all others; values that are not numbers are left out.
///
/// @param iCount   [in] number of values, >= 1
/// @param daValues [in] the values
/// @return the threshold, 1 to 255, or ZELM_ERR_PARAM: iCount < 1 or NULL values
ZELM_API int32_t zelmBinOtsuThresholdGray(int32_t iCount, const double* daValues);

/// Makes each pixel of a region 255 if it is at or above the threshold, else 0. Pixels outside the region are left.
///
/// The region's far edges are checked against the destination alone, its near edges not at all
/// (`docs/decisions.md#region-one-sided`): the caller keeps it inside. May run in place.
///
/// @param tSrc       [in]  gray image
/// @param tRegion    [in]  region of both images; width and height may be 0
/// @param iThreshold [in]  any value; 0 and below: all foreground, 256 and above: none
/// @param tDst       [out] its pixels are written; its record is only read
/// @return ZELM_OK, or ZELM_ERR_PARAM with nothing written: a NULL pointer, a source width or height below 1, a
///     negative region size, or a region that ends beyond the destination
ZELM_API int32_t zelmBinBinaryImage(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold,
                                    ZelmImage* tDst);

/// Dilates the foreground of a region with a 3 x 3 square, repeatedly: a pixel becomes 255 when any pixel of its
/// neighbourhood inside the region is foreground, else 0.
///
/// The region is checked as in zelmBinBinaryImage(). Source and destination regions must not overlap.
///
/// @param tSrc        [in]  gray image
/// @param tRegion     [in]  region of both images, wider and higher than iIterations
/// @param iThreshold  [in]  clamped to 0..255
/// @param iIterations [in]  number of dilations, >= 1
/// @param tDst        [out] its pixels inside the region are written; its record is only read
/// @return ZELM_OK, or with nothing written: ZELM_ERR_PARAM: a NULL pointer, iIterations < 1, a source or a region that
///     is not wider and higher than iIterations, or a region that ends beyond the destination; ZELM_ERR_MEMORY (one
///     plane of the region's size)
ZELM_API int32_t zelmBinDilation(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold,
                                 int32_t iIterations, ZelmImage* tDst);

/// Erodes the foreground of a region with a 3 x 3 square, repeatedly: a pixel stays 255 when all pixels of its
/// neighbourhood inside the region are foreground, so a region that is all foreground stays so up to its border.
/// Arguments and statuses as of zelmBinDilation().
///
/// @param tSrc        [in]  gray image
/// @param tRegion     [in]  region of both images, wider and higher than iIterations
/// @param iThreshold  [in]  clamped to 0..255
/// @param iIterations [in]  number of erosions, >= 1
/// @param tDst        [out] its pixels inside the region are written; its record is only read
/// @return as zelmBinDilation()
ZELM_API int32_t zelmBinErosion(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold, int32_t iIterations,
                                ZelmImage* tDst);

/// Erosions followed by as many dilations: removes what is narrower than 2 * iIterations + 1 pixels.
///
/// The region must start at x = 0, y = 0 (`docs/decisions.md#opening-origin`).
///
/// @param tSrc        [in]  gray image
/// @param tRegion     [in]  region of both images at the origin, wider and higher than iIterations
/// @param iThreshold  [in]  clamped to 0..255
/// @param iIterations [in]  number of erosions and of dilations, >= 1
/// @param tDst        [out] its pixels inside the region are written; its record is only read; may be the source
/// @return ZELM_OK, or with nothing written: ZELM_ERR_PARAM as of zelmBinDilation() or a region not at the origin;
///     ZELM_ERR_MEMORY (two planes of the region's size)
ZELM_API int32_t zelmBinOpening(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold, int32_t iIterations,
                                ZelmImage* tDst);

/// Dilations followed by as many erosions: fills what is narrower than 2 * iIterations + 1 pixels. The region as in
/// zelmBinOpening().
///
/// @param tSrc        [in]  gray image
/// @param tRegion     [in]  region of both images at the origin, wider and higher than iIterations
/// @param iThreshold  [in]  clamped to 0..255
/// @param iIterations [in]  number of dilations and of erosions, >= 1
/// @param tDst        [out] its pixels inside the region are written; its record is only read; may be the source
/// @return as zelmBinOpening()
ZELM_API int32_t zelmBinClosing(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold, int32_t iIterations,
                                ZelmImage* tDst);

/// Finds the connected regions (eight neighbours) of foreground pixels that do not touch the region's edge, in one pass
/// over the horizontal runs of each row.
///
/// A run takes the smallest label that the runs it touches in the row above stand for, which is looked up one level
/// deep (`docs/decisions.md#label-one-level`). Bodies without branches, such as dots with ragged outlines, are
/// always found whole; where three or more branches of a body join in a certain order it may be reported in parts or
/// short of pixels. In pure noise this befalls at most 5 components in 1000.
///
/// The terms of a run of n pixels from column x in row y are signed 32-bit and wrap around
/// (`docs/decisions.md#moments-wrap`): area and box are always right, the centroid while x * n + n^2 / 2 and y * n stay
/// below 2^31, the angle while also x^2 * n + x * n^2, y^2 * n, y * (x * n + n^2 / 2) and 2 * n^3 do (runs of up to
/// 1000 pixels near the origin).
///
/// @param tImage     [in]  gray image
/// @param tRegion    [in]  region, kept inside the image by the caller
/// @param iThreshold [in]  0 to 255
/// @param iPolarity  [in]  1: foreground is at or above the threshold; 0: below it
/// @param iClearEdge [in]  1: the outer ring of the region counts as background, so that blobs on the edge are reported
///     without their pixels there; 0: they are left out. With threshold 0 and polarity 1 the ring stays foreground
/// @param iMinArea   [in]  blobs with fewer pixels are left out
/// @param taBlobs    [in,out] NULL on entry; receives an array of *iCount records (room for at least one) in the order
///     of their labels, about that of their first rows; released with zelmBinFree()
/// @param iCount     [out] number of blobs, on success
/// @return ZELM_OK; ZELM_ERR_PARAM with nothing written: a NULL pointer, a size of image or region below 1, an option
///     out of range, or *taBlobs not NULL; ZELM_ERR_MEMORY: *taBlobs is then NULL or an array that the caller still
///     releases with zelmBinFree()
/// Memory: 64 bytes a label, in steps of 1000, and 12 bytes a pixel of the region's width; the image is not copied.
ZELM_API int32_t zelmBinBlob(const ZelmImage* tImage, const ZelmRect* tRegion, int32_t iThreshold, int32_t iPolarity,
                             int32_t iClearEdge, int32_t iMinArea, ZelmBlob** taBlobs, int32_t* iCount);

/// Releases an array of zelmBinBlob() and sets the pointer to NULL.
///
/// @param taBlobs [in,out] not NULL; may point to NULL
ZELM_API void zelmBinFree(ZelmBlob** taBlobs);

ZELM_END_DECLS

#endif
