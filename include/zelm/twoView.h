/// The stereo pair: calibration object, pattern reading and stereo calibration.
///
/// Calling order: zelm2ViewCalibOpen, then zelm2ViewReadPtnImg (or a buffer variant) once per view, then
/// zelm2ViewCalibCameraParam, then the accessors; zelm2ViewGetCalibDataSize and zelm2ViewSaveCalibData to persist;
/// later zelm2ViewLoadCalibData; zelm2ViewCalibClose at the end in every case.
#ifndef ZELM_TWO_VIEW_H
#define ZELM_TWO_VIEW_H

#include "zelm/base.h"
#include "zelm/calib.h"

ZELM_BEGIN_DECLS

/// The stereo calibration object, opened or loaded and closed by the functions below.
typedef struct Zelm2ViewCalib Zelm2ViewCalib;

/// Models and image sizes of the two cameras.
typedef struct Zelm2ViewCameraDesc {
    int32_t leftModel;    ///< 0, 1 or 2
    int32_t leftWidth;    ///< pixels, > 0
    int32_t leftHeight;   ///< pixels, > 0
    int32_t rightModel;   ///< 0, 1 or 2
    int32_t rightWidth;   ///< pixels, > 0
    int32_t rightHeight;  ///< pixels, > 0
} Zelm2ViewCameraDesc;

/// The dot plate: 96 bytes, fixed layout. Lengths are in plane units (for example millimetres).
typedef struct Zelm2ViewPatternDesc {
    double d0;               ///< extent of the dot field along x
    double d1;               ///< extent of the dot field along y
    double d2;               ///< dot diameter
    double d3;               ///< marker-dot diameter
    double d4;               ///< dot pitch along x
    double d5;               ///< dot pitch along y
    double d6;               ///< distance from the corner marker to the marker on the x axis
    double d7;               ///< distance from the corner marker to the marker on the y axis
    int32_t markers;         ///< number of marker dots
    int32_t polarity;        ///< 1: dots brighter than the plate, 0: darker
    int32_t minDotArea;      ///< smallest dot area in pixels
    int32_t reserved76;      ///< carried along, not read
    double minEdgeStrength;  ///< smallest edge strength of the ray searches, gray levels a pixel
    int32_t minDots;         ///< smallest number of dots that an image must yield
    int32_t reserved92;      ///< carried along, not read
} Zelm2ViewPatternDesc;

/// What the stereo calibration reports of each camera.
typedef struct Zelm2ViewCalibResult {
    int32_t statusL;  ///< status of the left camera's estimation
    double errorL;    ///< its mean reprojection distance in pixels
    int32_t statusR;  ///< status of the right camera's estimation
    double errorR;    ///< its mean reprojection distance in pixels
} Zelm2ViewCalibResult;

ZELM_API int32_t zelm2ViewCalibOpen(int32_t iViews, const Zelm2ViewPatternDesc* tPattern,
                                    const Zelm2ViewCameraDesc* tCameras, Zelm2ViewCalib** tHandle);
ZELM_API int32_t zelm2ViewGetCalibDataSize(const Zelm2ViewCalib* tHandle);
ZELM_API int32_t zelm2ViewSaveCalibData(const Zelm2ViewCalib* tHandle, unsigned char* ucBuffer);
ZELM_API int32_t zelm2ViewLoadCalibData(int32_t iSize, const unsigned char* ucBuffer, Zelm2ViewCalib** tHandle);
ZELM_API void zelm2ViewCalibClose(Zelm2ViewCalib** tHandle);

ZELM_API int32_t zelm2ViewGetCamHomMat(const Zelm2ViewCalib* tHandle, int32_t iCamera, double* daOut);
ZELM_API int32_t zelm2ViewGetCamFndMat(const Zelm2ViewCalib* tHandle, double* daOut);
ZELM_API int32_t zelm2ViewGetCamIntParam(const Zelm2ViewCalib* tHandle, int32_t iCamera, ZelmCameraIntrinsics* tOut);
ZELM_API int32_t zelm2ViewGetCamExtParam(const Zelm2ViewCalib* tHandle, int32_t iCamera, int32_t iView,
                                         ZelmCameraExtrinsics* tOut);
ZELM_API int32_t zelm2ViewGetPtnNum(const Zelm2ViewCalib* tHandle, int32_t iCamera, int32_t iView, int32_t* iCount);
ZELM_API int32_t zelm2ViewGetPattern(const Zelm2ViewCalib* tHandle, int32_t iCamera, int32_t iView, Point2d* taOut);

ZELM_API int32_t zelm2ViewReadPtnImg(Zelm2ViewCalib* tHandle, int32_t iView, const unsigned char* const ucaImages[2],
                                     const ZelmRect* tRegionLeft, const ZelmRect* tRegionRight);
ZELM_API int32_t zelm2ViewReadPtnImg_vImagePlanar8(Zelm2ViewCalib* tHandle, int32_t iView, const vImage_Buffer* tLeft,
                                                   const vImage_Buffer* tRight, const ZelmRect* tRegionLeft,
                                                   const ZelmRect* tRegionRight);
ZELM_API int32_t zelm2ViewReadPtnImg_vImageARGB8888(Zelm2ViewCalib* tHandle, int32_t iView, const vImage_Buffer* tLeft,
                                                    const vImage_Buffer* tRight, const ZelmRect* tRegionLeft,
                                                    const ZelmRect* tRegionRight);

ZELM_API int32_t zelm2ViewCalibCameraParam(Zelm2ViewCalib* tHandle, Zelm2ViewCalibResult* tResult);

ZELM_END_DECLS

#endif
