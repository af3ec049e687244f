/// @file
/// Many pixels and points of one camera in a call: projecting, taking the lens distortion out and putting it in, and
/// epipolar lines. Every number is that of the core's function for one point, bit for bit.
///
/// What cannot be told of one pixel or point is NaN, and the others are not disturbed: among them places beyond the
/// fold of the lens, the radius from which on its polynomial leads back, so that they would seem to lie in the image.
#ifndef ZELM_MEASURE_API_PIXELS_H
#define ZELM_MEASURE_API_PIXELS_H

#include "zelmMeasure/measureBase.h"

ZELM_BEGIN_DECLS

/// The raw pixels that show points of space, as of zelm2ViewChange3Dto2D(). They may lie outside the image.
/// @param rig [in] the rig
/// @param side [in] 'L' or 'R'
/// @param count [in] of points
/// @param points [in] 3 each: in the frame of the plate of view 0, plate units
/// @param pixels [out] 2 each: raw; NaN of points that are not in front of a perspective camera, or beyond the fold of
///     the lens
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
/// Cost O(count).
ZELM_API int32_t zelmMeasureProject(ZelmMeasureRig* rig, int32_t side, int64_t count, const double* points,
                                    double* pixels);

/// Raw pixels without the distortion of the lens, as of zelm2ViewUnDistortPoint().
/// @param rig [in] the rig
/// @param side [in] 'L' or 'R'
/// @param count [in] of pixels
/// @param raw [in] raw pixels, 2 each
/// @param undistorted [out] 2 each; may be `raw`. NaN of pixels too far outside for the distortion to be removed
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
/// Cost O(count).
ZELM_API int32_t zelmMeasureUndistort(ZelmMeasureRig* rig, int32_t side, int64_t count, const double* raw,
                                      double* undistorted);

/// Undistorted pixels with the distortion of the lens, as of zelm2ViewDistortPoint().
/// @param rig [in] the rig
/// @param side [in] 'L' or 'R'
/// @param count [in] of pixels
/// @param undistorted [in] 2 each
/// @param raw [out] 2 each; may be `undistorted`. NaN of pixels beyond the fold of the lens, which no raw pixel shows
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
/// Cost O(count).
ZELM_API int32_t zelmMeasureDistort(ZelmMeasureRig* rig, int32_t side, int64_t count, const double* undistorted,
                                    double* raw);

/// The lines of the other camera's undistorted image on which the counterparts of raw pixels lie, as of
/// zelm2ViewCalcEpiLine().
/// @param rig [in] the rig
/// @param side [in] 'L' or 'R': the camera of the pixels; the lines are the other one's
/// @param count [in] of pixels
/// @param raw [in] raw pixels, 2 each
/// @param lines [out] 3 each: a, b, c of a x + b y + c = 0 with a^2 + b^2 = 1; NaN of pixels too far outside for the
///     distortion to be removed, and of the epipole itself
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
/// Cost O(count).
ZELM_API int32_t zelmMeasureEpipolarLines(ZelmMeasureRig* rig, int32_t side, int64_t count, const double* raw,
                                          double* lines);

ZELM_END_DECLS

#endif
