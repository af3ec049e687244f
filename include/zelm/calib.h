/// Homographies, the camera model and the estimation of one camera's parameters.
#ifndef ZELM_CALIB_H
#define ZELM_CALIB_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// Intrinsic parameters of a camera: 22 doubles.
typedef struct ZelmCameraIntrinsics {
    double A[9];         ///< 3x3 camera matrix, row-major; used for projection
    double alpha;        ///< horizontal focal length in pixels
    double beta;         ///< vertical focal length in pixels
    double gamma;        ///< skew between the image axes in pixels
    double cx;           ///< principal point, x, in pixels
    double cy;           ///< principal point, y, in pixels
    double theta;        ///< tilt of the image axes in radians; 0 for models 0 and 2
    double k1;           ///< radial distortion coefficient of r^2
    double k2;           ///< radial distortion coefficient of r^4
    double reserved[5];  ///< carried along, never read or written
} ZelmCameraIntrinsics;

/// Pose of a camera relative to a calibration view: X_camera = R * X_world + t. 15 doubles.
typedef struct ZelmCameraExtrinsics {
    double R[9];  ///< 3x3 rotation matrix, row-major
    double t[3];  ///< translation, plane units
    double r[3];  ///< rotation vector, axis * angle in radians
} ZelmCameraExtrinsics;

/// The dots of one calibration view as one camera sees them.
typedef struct Zelm2ViewPtnEntry {
    int32_t count;   ///< number of dots
    Point2d* plane;  ///< count plane coordinates (z = 0), plane units
    Point2d* image;  ///< count image coordinates in pixels, in the same order
} Zelm2ViewPtnEntry;

ZELM_API int32_t zelmCalibNormalizeData(int32_t iDim, int32_t iN, const double* daSrc, double* daDst, double* daT,
                                        double* daTinv);
ZELM_API int32_t zelmCalibCalcHomography(int32_t iN, const Point2d* taSrc, const Point2d* taDst, double dRobustK,
                                         double* daH);

ZELM_API int32_t zelmCalibCameraMatrix(const double* daA, const ZelmCameraExtrinsics* tExt, double* daP,
                                       int32_t iModel);
ZELM_API int32_t zelmCalibChange3Dto2D(const Point3d* tX, const ZelmCameraIntrinsics* tCam,
                                       const ZelmCameraExtrinsics* tExt, Point2d* tP, int32_t iModel);
ZELM_API int32_t zelmCalibDistortPoint(const ZelmCameraIntrinsics* tCam, double dX, double dY, double* dXd,
                                       double* dYd);
ZELM_API int32_t zelmCalibUnDistortPoint(const ZelmCameraIntrinsics* tCam, double dXd, double dYd, double* dX,
                                         double* dY);
ZELM_API int32_t zelmCalibRodrigues(int32_t iDirection, double* daRvec, double* daRmat);

ZELM_API int32_t zelmCalibCameraParam(int32_t iViews, const Zelm2ViewPtnEntry* taViews, double dRobustThreshold,
                                      ZelmCameraIntrinsics* tIntrinsics, ZelmCameraExtrinsics* taExtrinsics,
                                      double* dError, int32_t iModel);

ZELM_END_DECLS

#endif
