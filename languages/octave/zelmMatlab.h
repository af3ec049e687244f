/* What loadlibrary() of MATLAB needs of zelmLib: records and functions for reading a calibration, triangulating and
 * undistorting, in plain C without macros or other headers.
 *
 *     loadlibrary('libzelmMeasure.so.1', 'zelmMatlab.h')
 *
 * The headers in include/ say what each record and function means. A test compiles a program with this header and
 * compares what it prints with the same program made with those: see test.sh. Octave has no loadlibrary(); zelmOctave.c
 * serves both. */
#ifndef ZELM_MATLAB_H
#define ZELM_MATLAB_H

typedef struct ZelmCameraIntrinsics {
    double A[9];
    double alpha;
    double beta;
    double gamma;
    double cx;
    double cy;
    double theta;
    double k1;
    double k2;
    double reserved[5];
} ZelmCameraIntrinsics;

typedef struct ZelmCameraExtrinsics {
    double R[9];
    double t[3];
    double r[3];
} ZelmCameraExtrinsics;

typedef struct ZelmMeasureCamera {
    int size;
    int model;
    int width;
    int height;
    ZelmCameraIntrinsics intrinsics;
} ZelmMeasureCamera;

typedef struct ZelmMeasureRelativePose {
    int size;
    int reserved;
    double R[9];
    double t[3];
    double baseline;
    double convergence;
} ZelmMeasureRelativePose;

typedef struct ZelmMeasurePoints {
    int size;
    int reserved;
    int* statuses;
    double* positions;
    double* errors;
    double* angles;
    double maxError;
    int outside;
    int reserved2;
} ZelmMeasurePoints;

typedef struct ZelmMeasureRig ZelmMeasureRig;

int zelmMeasureRigOpen(const void* block, long long size, ZelmMeasureRig** rig);
void zelmMeasureRigClose(ZelmMeasureRig** rig);
const char* zelmMeasureRigError(const ZelmMeasureRig* rig);
int zelmMeasureRigViews(const ZelmMeasureRig* rig, int* views);
int zelmMeasureRigCamera(const ZelmMeasureRig* rig, int side, ZelmMeasureCamera* camera);
int zelmMeasureRigPose(const ZelmMeasureRig* rig, int side, int view, ZelmCameraExtrinsics* pose);
int zelmMeasureRigFundamental(const ZelmMeasureRig* rig, double* F);
int zelmMeasureRigRelativePose(ZelmMeasureRig* rig, ZelmMeasureRelativePose* pose);
int zelmMeasureTriangulate(ZelmMeasureRig* rig, long long count, const double* left, const double* right,
                           const ZelmMeasurePoints* points);
int zelmMeasureUndistort(ZelmMeasureRig* rig, int side, long long count, const double* raw, double* undistorted);

#endif
