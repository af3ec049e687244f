/// @file
/// Whether a plate's pitches are those of its description, told from its images alone.
#ifndef ZELM_MEASURE_API_PITCH_H
#define ZELM_MEASURE_API_PITCH_H

#include "zelmMeasure/measureBase.h"

ZELM_BEGIN_DECLS

/// The ratio of a plate's pitches as the images of one camera show it.
typedef struct ZelmMeasurePitchRatio {
    int32_t size;          ///< of this record, bytes
    int32_t isDetermined;  ///< 1: the images tell the ratio; 0: they fit others about as well, or none
    double ratio;          ///< the pitch along x over that along y, as a multiple of the stated ratio; 0: none fits
    double error;          ///< mean reprojection error with this ratio, pixels
    double stated;         ///< mean reprojection error with the stated ratio, pixels; negative: nothing fits it
} ZelmMeasurePitchRatio;

/// The ratio of the pitches with which the images of a plate fit one camera best. It serves where a calibration fails:
/// with another ratio than the plate's no camera sees all views as they are, and the estimation may not converge. A
/// factor that both pitches have in common cannot be seen.
/// @param calib [in] an object with the dots of at least 3 views, whether it could be calibrated or not
/// @param side [in] 'L' or 'R': the camera, not a parallel one
/// @param ratio [out] the ratio
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: fewer than 3 views, a parallel camera
/// Cost: some 40 times that of zelmCalibCameraParam(). Method: in closed form from the homographies of the views, for
/// square pixels and a principal point in the middle (after Zhang, 2000); then by the golden section (Kiefer, 1953)
/// over the estimation with all its unknowns.
ZELM_API int32_t zelmMeasurePitchRatio(const Zelm2ViewCalib* calib, int32_t side, ZelmMeasurePitchRatio* ratio);

ZELM_END_DECLS

#endif
