/// @file
/// Rigs: opening them, their cameras, poses and relative pose.
#ifndef ZELM_MEASURE_API_RIG_H
#define ZELM_MEASURE_API_RIG_H

#include "zelmMeasure/measureBase.h"

ZELM_BEGIN_DECLS

/// One camera of a rig.
typedef struct ZelmMeasureCamera {
    int32_t size;                     ///< of this record, bytes
    int32_t model;                    ///< 0 perspective, 1 perspective with a tilted sensor, 2 parallel
    int32_t width;                    ///< of its images, pixels
    int32_t height;                   ///< of its images, pixels
    ZelmCameraIntrinsics intrinsics;  ///< camera matrix and lens distortion
} ZelmMeasureCamera;

/// How the right camera stands to the left one in view 0: X_right = R X_left + t.
typedef struct ZelmMeasureRelativePose {
    int32_t size;        ///< of this record, bytes
    int32_t reserved;    ///< 0
    double R[9];         ///< row-major
    double t[3];         ///< plate units
    double baseline;     ///< length of t, plate units
    double convergence;  ///< angle between the optical axes, radians
} ZelmMeasureRelativePose;

/// Opens a rig from a calibration block, the bytes that zelm2ViewSaveCalibData() gives, once they prove sound: the size
/// fits the number of views, models and image sizes can be meant, all numbers are finite, focal lengths are positive.
/// @param block [in] the bytes; copied
/// @param size [in] of the block, bytes
/// @param rig [out] the handle, to be closed by zelmMeasureRigClose(); must be NULL before. Also when the block is
///     refused: such a handle holds the error text alone, and every other function refuses it
/// @return ZELM_OK; ZELM_ERR_PARAM: NULL or a handle that is not NULL; ZELM_MEASURE_ERR_DATA: the block is refused;
///     ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasureRigOpen(const void* block, int64_t size, ZelmMeasureRig** rig);

/// Opens a rig from a calibrated object of zelmLib.h, with the dots that it was calibrated from.
/// @param calib [in] calibrated by zelm2ViewCalibCameraParam(), or loaded; copied
/// @param rig [out] as of zelmMeasureRigOpen()
/// @return as zelmMeasureRigOpen()
ZELM_API int32_t zelmMeasureRigOfCalib(const Zelm2ViewCalib* calib, ZelmMeasureRig** rig);

/// Ends a rig and sets the caller's handle to NULL; nothing for NULL.
/// @param rig [in,out] the caller's handle
ZELM_API void zelmMeasureRigClose(ZelmMeasureRig** rig);

/// What was wrong with the last call on the rig that failed, in English, without a line break; empty when none did.
/// @param rig [in] a rig, also a refused one
/// @return the text; it belongs to the rig and holds until the next call
ZELM_API const char* zelmMeasureRigError(const ZelmMeasureRig* rig);

/// The rig as an object of zelmLib.h, for the functions that only read its block.
/// @param rig [in] the rig
/// @return the object, which belongs to the rig and holds no dots; NULL for a refused rig
ZELM_API const Zelm2ViewCalib* zelmMeasureRigCalib(const ZelmMeasureRig* rig);

/// The number of views that the rig was calibrated from.
/// @param rig [in] the rig
/// @param views [out] their number
/// @return ZELM_OK, ZELM_ERR_PARAM
ZELM_API int32_t zelmMeasureRigViews(const ZelmMeasureRig* rig, int32_t* views);

/// A camera of the rig.
/// @param rig [in] the rig
/// @param side [in] 'L' or 'R'
/// @param camera [out] model, image size and intrinsic parameters
/// @return ZELM_OK, ZELM_ERR_PARAM
ZELM_API int32_t zelmMeasureRigCamera(const ZelmMeasureRig* rig, int32_t side, ZelmMeasureCamera* camera);

/// The pose of a view: X_camera = R X_plate + t. A view that a parallel camera was not calibrated from has zeros.
/// @param rig [in] the rig
/// @param side [in] 'L' or 'R'
/// @param view [in] from 0
/// @param pose [out] the pose
/// @return ZELM_OK, ZELM_ERR_PARAM
ZELM_API int32_t zelmMeasureRigPose(const ZelmMeasureRig* rig, int32_t side, int32_t view, ZelmCameraExtrinsics* pose);

/// The fundamental matrix: x_left' F x_right = 0 for undistorted pixels.
/// @param rig [in] the rig
/// @param F [out] 3 x 3, row-major
/// @return ZELM_OK, ZELM_ERR_PARAM
ZELM_API int32_t zelmMeasureRigFundamental(const ZelmMeasureRig* rig, double* F);

/// How the right camera stands to the left one.
/// @param rig [in] the rig
/// @param pose [out] rotation, translation, baseline and convergence angle
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_MEASURE_ERR_DATA for a rig with a parallel camera, which has no centre
ZELM_API int32_t zelmMeasureRigRelativePose(ZelmMeasureRig* rig, ZelmMeasureRelativePose* pose);

/// How far the plate of view 0 is turned against a parallel camera of square pixels. Such a camera shortens what is
/// tilted, so that a circle's axes are as one to the cosine; a calibration from a tilted plate has wrong scales.
/// @param rig [in] the rig
/// @param side [in] 'L' or 'R'
/// @param tilt [out] radians, 0 to pi / 2
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_MEASURE_ERR_DATA for a camera that is not parallel
ZELM_API int32_t zelmMeasureRigTilt(ZelmMeasureRig* rig, int32_t side, double* tilt);

/// The undistorted pixels of both cameras that a rectified pair is best centred on, so that the field of view that the
/// two share stays in sight: of the point that both cameras look at; where that is not seen by both, of the origin of
/// the plate of view 0; else the image centres.
/// @param rig [in] the rig
/// @param left [out] x, y
/// @param right [out] x, y
/// @param origin [out] which of the three it is: 0, 1 or 2; or NULL
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasureRigCentre(const ZelmMeasureRig* rig, double* left, double* right, int32_t* origin);

ZELM_END_DECLS

#endif
