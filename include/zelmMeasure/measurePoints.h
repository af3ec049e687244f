/// @file
/// Points of space from pairs of pixels, with figures that tell how good they are.
#ifndef ZELM_MEASURE_API_POINTS_H
#define ZELM_MEASURE_API_POINTS_H

#include "zelmMeasure/measureBase.h"

ZELM_BEGIN_DECLS

/// What became of a pair of pixels.
enum ZelmMeasurePointStatus {
    ZELM_MEASURE_POINT_OK = 0,
    ZELM_MEASURE_POINT_BEHIND = 1,      ///< the rays meet behind a camera: a wrong pair; has numbers
    ZELM_MEASURE_POINT_DISTORTION = 2,  ///< a pixel is too far outside for the lens distortion to be removed
    ZELM_MEASURE_POINT_PARALLEL = 3,    ///< the rays do not meet
    ZELM_MEASURE_POINT_MISMATCH = 4,    ///< the rays miss each other by more than `maxError`: a wrong pair; has numbers
    ZELM_MEASURE_POINT_OUTSIDE = 5,     ///< a pixel outside its image, where `outside` is 1
};

/// Points of space, in arrays of the caller's with room for all pairs.
typedef struct ZelmMeasurePoints {
    int32_t size;       ///< of this record, bytes
    int32_t reserved;   ///< 0
    int32_t* statuses;  ///< ZelmMeasurePointStatus, one a pair; or NULL
    double* positions;  ///< 3 a pair: in the frame of the plate of view 0, plate units; or NULL
    double* errors;     ///< 2 a pair: pixels from the left and the right pixel to the point's projection; or NULL
    double* angles;     ///< 1 a pair: between the two rays at the point, radians; or NULL
    double maxError;  ///< pixels: more than this in the root sum of squares of both errors is a mismatch; 0: nothing is
    int32_t outside;  ///< 1: pixels outside the images (-0.5 to W - 0.5, -0.5 to H - 0.5) are told; 0: taken as any
    int32_t reserved2;  ///< 0
} ZelmMeasurePoints;

/// Triangulates pairs of raw pixels, with the optimal correction of zelm2ViewChange2Dto3D(). What a pair without
/// numbers would have written is not. The optimal correction is the least that makes the two rays meet, so that the
/// root sum of squares of the errors of a true pair is one error of noise: a standard normal one times the standard
/// deviation of a pixel's coordinate. Six deviations are none in a million. A wrong pair whose pixels happen to lie on
/// each other's epipolar lines is not told.
/// @param rig [in] the rig
/// @param count [in] of pairs
/// @param left [in] raw pixels, 2 a pair
/// @param right [in] raw pixels, 2 a pair
/// @param points [in] the arrays that are written
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA for two parallel cameras, whose rays cannot
///     be brought together
ZELM_API int32_t zelmMeasureTriangulate(ZelmMeasureRig* rig, int64_t count, const double* left, const double* right,
                                        const ZelmMeasurePoints* points);

/// The true depths of the pixels of a rendered scene, and whether the right camera sees them too.
/// @param rig [in] of two perspective cameras
/// @param map [in] depths along the left camera's axis, a pixel each of its raw image, in `unit`s; 0: nothing there
/// @param unit [in] of the map, in plate units
/// @param count [in] of pixels
/// @param pixels [in] of the left image, 2 each
/// @param depths [out] plate units, mixed from the four pixels around; NaN where there is no surface, or an edge of one
/// @param seenByBoth [out] 1 or 0 each; or NULL
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA for a rig with a parallel camera
ZELM_API int32_t zelmMeasureTrueDepths(ZelmMeasureRig* rig, const uint16_t* map, double unit, int64_t count,
                                       const double* pixels, double* depths, int32_t* seenByBoth);

ZELM_END_DECLS

#endif
