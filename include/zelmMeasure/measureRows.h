/// @file
/// Row-aligned image pairs: both cameras turned so that a point's images lie in the same row.
#ifndef ZELM_MEASURE_API_ROWS_H
#define ZELM_MEASURE_API_ROWS_H

#include "zelmMeasure/measureBase.h"

ZELM_BEGIN_DECLS

/// What a row-aligned pair is to be like.
typedef struct ZelmMeasureRowOptions {
    int32_t size;            ///< of this record, bytes
    int32_t width;           ///< of both images, pixels; 0: the larger of the cameras' widths
    int32_t height;          ///< of both images, pixels; 0: the larger of the cameras' heights
    int32_t zeroAtInfinity;  ///< not 0: one principal point for both, so that disparity 0 is at infinity; 0: each image
                             ///< is centred on what both cameras look at, where the disparity is then about 0
    double focal;            ///< pixels; 0: the mean of the cameras' four focal lengths, with one principal point so
                             ///< much less that what the images show stays in them
    double nearest;          ///< depth that disparities are told of, plate units; 0: half that of the nearest plate
    double farthest;         ///< likewise; 0: twice that of the farthest plate
} ZelmMeasureRowOptions;

/// A row-aligned pair. X_aligned = R1 X_left; the right camera's coordinates are R2 X_right, and those of the left one
/// less the baseline in x. A point's disparity is its column in the left image less that in the right one.
typedef struct ZelmMeasureRows {
    int32_t size;           ///< of this record, bytes
    int32_t width;          ///< of both images, pixels
    int32_t height;         ///< of both images, pixels
    int32_t reserved;       ///< 0
    double R1[9];           ///< 3 x 3, row-major: turns the left camera's frame into the aligned one
    double R2[9];           ///< 3 x 3, row-major: the same for the right camera
    double P1[12];          ///< 3 x 4, row-major: from the aligned left frame to the left image's pixels
    double P2[12];          ///< 3 x 4, row-major: from the aligned left frame to the right image's pixels
    double Q[16];           ///< 4 x 4, row-major: (column, row, disparity, 1) of the left image to (X, Y, Z, W) of the
                            ///< aligned left frame, the point being (X, Y, Z) / W, plate units
    int32_t leftSeen[4];    ///< x, y, width, height of the largest rectangle of pixels that the left camera all sees
    int32_t rightSeen[4];   ///< the same of the right one
    double disparities[2];  ///< pixels: the least and the greatest of the depths; both 0 where nothing tells depths
} ZelmMeasureRows;

/// Turns two perspective cameras about their centres until their x axes lie along the baseline and their z axes are the
/// mean of both optical axes, made square to it (Fusiello, Trucco and Verri 2000). Images stay as upright as that
/// allows; of a pair whose right camera is on the left the disparities are negative. R1, R2, P1, P2 and Q mean what
/// OpenCV's stereoRectify() means by them.
/// @param rig [in] the rig
/// @param options [in] NULL: all 0
/// @param rows [out] the pair
/// @return ZELM_OK; ZELM_ERR_PARAM: a size below 0 or above 32768, a focal length below 0; ZELM_MEASURE_ERR_DATA for a
///     parallel camera, or one that looks along the baseline; ZELM_ERR_MEMORY
/// Some 100 ns a pixel, for the rectangles.
ZELM_API int32_t zelmMeasureAlignRows(ZelmMeasureRig* rig, const ZelmMeasureRowOptions* options, ZelmMeasureRows* rows);

/// The map of an aligned image: for each of its pixels, row by row, x and y of the raw pixel that it shows, -1 and -1
/// where the camera does not see it. It serves OpenCV's remap() as it is, as an array of height x width x 2 floats.
/// @param rig [in] the rig
/// @param options [in] those of zelmMeasureAlignRows()
/// @param side [in] 'L' or 'R'
/// @param map [out] 2 width height floats
/// @return as zelmMeasureAlignRows()
ZELM_API int32_t zelmMeasureAlignRowsMap(ZelmMeasureRig* rig, const ZelmMeasureRowOptions* options, int32_t side,
                                         float* map);

/// Where raw pixels lie in an aligned image.
/// @param rig [in] the rig
/// @param options [in] those of zelmMeasureAlignRows()
/// @param side [in] 'L' or 'R'
/// @param count [in] of pixels
/// @param raw [in] raw pixels, 2 doubles each
/// @param aligned [out] 2 doubles each; may be raw. NaN for a pixel too far outside for the lens distortion to be
///     removed
/// @return as zelmMeasureAlignRows()
ZELM_API int32_t zelmMeasureAlignRowsPoints(ZelmMeasureRig* rig, const ZelmMeasureRowOptions* options, int32_t side,
                                            int64_t count, const double* raw, double* aligned);

ZELM_END_DECLS

#endif
