/// @file
/// Two calibrations of the same cameras beside each other, in pixels over the images and in lengths over the volume.
#ifndef ZELM_MEASURE_API_COMPARE_H
#define ZELM_MEASURE_API_COMPARE_H

#include "zelmMeasure/measureBase.h"

ZELM_BEGIN_DECLS

/// What is compared.
typedef struct ZelmMeasureCompareOptions {
    int32_t size;      ///< of this record, bytes
    int32_t reserved;  ///< 0
    double nearest;    ///< of the volume, along the left camera's axis, plate units; 0: half the depth of the nearest
                       ///< plate that the first rig was calibrated from
    double farthest;   ///< likewise; 0: twice the depth of the farthest plate
} ZelmMeasureCompareOptions;

/// How far the second calibration of a camera images the same directions from where the first one does.
typedef struct ZelmMeasureImageDifference {
    double rms;         ///< pixels, over the image, after the turn
    double worst;       ///< pixels
    double worstAt[2];  ///< the raw pixel of the first calibration where it is worst
    double unturned;    ///< pixels: RMS of the two cameras' own frames laid on each other, before the turn
    double turn[3];     ///< the rotation vector, radians, that brings the directions closest: the first one's frame to
                        ///< the second one's. A principal point that moves is mostly this
} ZelmMeasureImageDifference;

/// How far lengths and places differ that are measured with both calibrations from the same pixels.
typedef struct ZelmMeasureVolumeDifference {
    int64_t count;        ///< of points, all over the volume that both cameras see
    double nearest;       ///< depths of the volume, plate units
    double farthest;      ///< likewise
    double rms;           ///< of the points' distances in the left camera's frame, plate units
    double worst;         ///< likewise
    double alignedRms;    ///< after the rigid motion that brings the points closest, plate units
    double alignedWorst;  ///< likewise
    double worstAt[3];    ///< the point, in the left camera's frame of the first rig, where it is worst when aligned
    double scale;         ///< by how much the second rig's lengths are longer in the mean; 0: as long
    double lengthRms;     ///< of the differences of lengths by the length, of at least 30 % of the volume's diagonal
    double lengthWorst;   ///< the largest such difference, by its length
} ZelmMeasureVolumeDifference;

/// Two calibrations beside each other.
typedef struct ZelmMeasureComparison {
    int32_t size;                        ///< of this record, bytes
    int32_t covariances;                 ///< of how many of the two rigs the covariance is known
    ZelmMeasureImageDifference left;     ///< of the left camera
    ZelmMeasureImageDifference right;    ///< of the right camera
    double pairTurn[3];                  ///< how the right camera of the second rig is turned against that of the first
                                         ///< one as the left one sees it, once both cameras' own turns are taken out:
                                         ///< rotation vector, radians
    double pairShift[3];                 ///< likewise its shift, plate units, in the right camera's frame
    double baseline;                     ///< the second baseline less the first one, plate units
    ZelmMeasureVolumeDifference volume;  ///< of points and lengths
    double chiSquare;                    ///< of the parameters' differences by the covariances that are known; 0: none
    int32_t freedom;                     ///< its degrees of freedom: parameters that were estimated
    int32_t reserved;                    ///< 0
    double probability;                  ///< that chance alone gives as much, when the two were calibrated from
                                         ///< different images; 1 without covariances
} ZelmMeasureComparison;

/// Compares two calibrations of the same cameras.
/// @param first [in] a rig of two perspective cameras
/// @param second [in] another, with images of the same sizes
/// @param options [in] NULL: all 0
/// @param comparison [out] the differences, second minus first
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA, with words in the first rig: a parallel
///     camera, images of other sizes, cameras that see no volume together, or a volume without depths
ZELM_API int32_t zelmMeasureCompare(ZelmMeasureRig* first, ZelmMeasureRig* second,
                                    const ZelmMeasureCompareOptions* options, ZelmMeasureComparison* comparison);

/// The differences of one camera over its image, after the turn, for a picture.
/// @param first [in] as of zelmMeasureCompare()
/// @param second [in] likewise
/// @param side [in] 'L' or 'R'
/// @param count [in] of pixels
/// @param pixels [in] raw pixels of the first calibration, 2 doubles each
/// @param differences [out] 2 doubles each: where the second one images the same direction, less the pixel; NaN where
///     the first one's lens cannot be undone
/// @return as zelmMeasureCompare()
ZELM_API int32_t zelmMeasureCompareImage(ZelmMeasureRig* first, ZelmMeasureRig* second, int32_t side, int64_t count,
                                         const double* pixels, double* differences);

ZELM_END_DECLS

#endif
