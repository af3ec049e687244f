/* zelmLib from Octave and MATLAB, by the interface for C that both have:
 *
 *     rig = zelmOctave('rig', block)                                     a struct of what the calibration holds
 *     [points, statuses, errors, angles] = zelmOctave('triangulate', block, left, right, maxError)
 *     undistorted = zelmOctave('undistort', block, 'L', pixels)
 *
 * A block is the content of rig.zcal as uint8; pixels are rows of x, y, the first pixel's centre being (0, 0). The
 * functions zelmLoad, zelmTriangulate and zelmUndistort beside this file are what users call. */
#include <math.h>
#include <mex.h>
#include <stdio.h>
#include <string.h>

#include "zelmMeasure.h"

/* The records of the headers that this file is compiled with are those of the library: their sizes are frozen, or they
 * tell the library their size. */
_Static_assert(sizeof(ZelmCameraIntrinsics) == 176, "ZelmCameraIntrinsics is laid out otherwise than in the library");
_Static_assert(sizeof(ZelmCameraExtrinsics) == 120, "ZelmCameraExtrinsics is laid out otherwise than in the library");

enum { kMaxWords = 400 };

/* Gives up; the rig is closed before, as the call does not return. */
static void fail(ZelmMeasureRig* rig, const char* what, const char* fallback) {
    static char words[kMaxWords];
    const char* told = rig != NULL ? zelmMeasureRigError(rig) : "";
    snprintf(words, sizeof(words), "%s: %s", what, told[0] != '\0' ? told : fallback);
    zelmMeasureRigClose(&rig);
    mexErrMsgIdAndTxt("zelm:failed", "%s", words);
}

static ZelmMeasureRig* openRig(const mxArray* block) {
    ZelmMeasureRig* rig = NULL;
    if (!mxIsUint8(block)) {
        mexErrMsgIdAndTxt("zelm:usage", "zelmOctave: a calibration block of uint8 is wanted: zelmLoad gives it");
    }
    if (zelmMeasureRigOpen(mxGetData(block), (int64_t)mxGetNumberOfElements(block), &rig) < 0) {
        fail(rig, "zelmOctave", "out of memory");
    }
    return rig;
}

/* A matrix of rows from numbers row by row. */
static mxArray* matrixOf(const double* rows, mwSize height, mwSize width) {
    mxArray* const matrix = mxCreateDoubleMatrix(height, width, mxREAL);
    double* const to = mxGetPr(matrix);
    for (mwSize i = 0; i < height; ++i) {
        for (mwSize j = 0; j < width; ++j) {
            to[j * height + i] = rows[i * width + j];
        }
    }
    return matrix;
}

/* Pixels one after the other, from a matrix of rows of x, y. */
static double* pixelsOf(const mxArray* matrix) {
    if (!mxIsDouble(matrix) || mxIsComplex(matrix) || mxIsSparse(matrix) || mxGetNumberOfDimensions(matrix) != 2 ||
        mxGetN(matrix) != 2) {
        mexErrMsgIdAndTxt("zelm:usage", "zelmOctave: pixels are a full real matrix of doubles, rows of x, y");
    }
    const mwSize count = mxGetM(matrix);
    const double* const from = mxGetPr(matrix);
    double* const pixels = mxMalloc((2 * count + 1) * sizeof(double));
    for (mwSize i = 0; i < count; ++i) {
        pixels[2 * i] = from[i];
        pixels[2 * i + 1] = from[count + i];
    }
    return pixels;
}

static double* unknown(mwSize count) {
    double* const numbers = mxMalloc((count + 1) * sizeof(double));
    for (mwSize i = 0; i < count; ++i) {
        numbers[i] = NAN;
    }
    return numbers;
}

static mxArray* cameraStruct(ZelmMeasureRig* rig, char side) {
    const char* names[] = {"model", "width", "height", "A", "k1", "k2", "theta", "R", "t"};
    ZelmMeasureCamera camera = {.size = sizeof(camera)};
    ZelmCameraExtrinsics pose;
    if (zelmMeasureRigCamera(rig, side, &camera) < 0 || zelmMeasureRigPose(rig, side, 0, &pose) < 0) {
        fail(rig, "zelmOctave", "the camera cannot be read");
    }
    mxArray* const made = mxCreateStructMatrix(1, 1, sizeof(names) / sizeof(names[0]), names);
    mxSetField(made, 0, "model", mxCreateDoubleScalar(camera.model));
    mxSetField(made, 0, "width", mxCreateDoubleScalar(camera.width));
    mxSetField(made, 0, "height", mxCreateDoubleScalar(camera.height));
    mxSetField(made, 0, "A", matrixOf(camera.intrinsics.A, 3, 3));
    mxSetField(made, 0, "k1", mxCreateDoubleScalar(camera.intrinsics.k1));
    mxSetField(made, 0, "k2", mxCreateDoubleScalar(camera.intrinsics.k2));
    mxSetField(made, 0, "theta", mxCreateDoubleScalar(camera.intrinsics.theta));
    mxSetField(made, 0, "R", matrixOf(pose.R, 3, 3));
    mxSetField(made, 0, "t", matrixOf(pose.t, 3, 1));
    return made;
}

static mxArray* rigStruct(const mxArray* block) {
    const char* names[] = {"block", "views", "left", "right", "R", "t", "baseline", "convergence", "F"};
    ZelmMeasureRig* rig = openRig(block);
    ZelmMeasureRelativePose relative = {.size = sizeof(relative)};
    double F[9];
    int32_t views = 0;
    if (zelmMeasureRigViews(rig, &views) < 0 || zelmMeasureRigFundamental(rig, F) < 0) {
        fail(rig, "zelmOctave", "the calibration cannot be read");
    }
    mxArray* const made = mxCreateStructMatrix(1, 1, sizeof(names) / sizeof(names[0]), names);
    mxSetField(made, 0, "block", mxDuplicateArray(block));
    mxSetField(made, 0, "views", mxCreateDoubleScalar(views));
    mxSetField(made, 0, "left", cameraStruct(rig, 'L'));
    mxSetField(made, 0, "right", cameraStruct(rig, 'R'));
    mxSetField(made, 0, "F", matrixOf(F, 3, 3));
    if (zelmMeasureRigRelativePose(rig, &relative) >= 0) { /* a parallel camera has no centre: [] then */
        mxSetField(made, 0, "R", matrixOf(relative.R, 3, 3));
        mxSetField(made, 0, "t", matrixOf(relative.t, 3, 1));
        mxSetField(made, 0, "baseline", mxCreateDoubleScalar(relative.baseline));
        mxSetField(made, 0, "convergence", mxCreateDoubleScalar(relative.convergence));
    }
    zelmMeasureRigClose(&rig);
    return made;
}

static void triangulate(int resultCount, mxArray* results[], const mxArray* arguments[]) {
    const mwSize count = mxGetM(arguments[2]);
    double* const left = pixelsOf(arguments[2]);
    double* const right = pixelsOf(arguments[3]);
    if ((mwSize)mxGetM(arguments[3]) != count) {
        mexErrMsgIdAndTxt("zelm:usage", "zelmOctave: %d left pixels, %d right ones", (int)count,
                          (int)mxGetM(arguments[3]));
    }
    if (!mxIsDouble(arguments[4]) || mxGetNumberOfElements(arguments[4]) != 1) {
        mexErrMsgIdAndTxt("zelm:usage", "zelmOctave: maxError is one number, 0 for no limit");
    }
    mxArray* const statuses = mxCreateNumericMatrix(count, 1, mxINT32_CLASS, mxREAL);
    double* const positions = unknown(3 * count);
    double* const errors = unknown(2 * count);
    double* const angles = unknown(count);
    const ZelmMeasurePoints points = {
        .size = sizeof(points),
        .statuses = mxGetData(statuses),
        .positions = positions,
        .errors = errors,
        .angles = angles,
        .maxError = mxGetScalar(arguments[4]),
        .outside = 1,
    };
    ZelmMeasureRig* rig = openRig(arguments[1]);
    if (count > 0 && zelmMeasureTriangulate(rig, (int64_t)count, left, right, &points) < 0) {
        fail(rig, "zelmTriangulate", "an argument cannot be meant");
    }
    zelmMeasureRigClose(&rig);
    mxArray* const all[] = {matrixOf(positions, count, 3), statuses, matrixOf(errors, count, 2),
                            matrixOf(angles, count, 1)};
    for (int i = 0; i < resultCount || i == 0; ++i) {
        results[i] = all[i];
    }
}

static mxArray* undistort(const mxArray* arguments[]) {
    const mwSize count = mxGetM(arguments[3]);
    double* const pixels = pixelsOf(arguments[3]);
    char side[2] = "";
    if (!mxIsChar(arguments[2]) || mxGetNumberOfElements(arguments[2]) != 1 ||
        mxGetString(arguments[2], side, sizeof(side)) != 0 || (side[0] != 'L' && side[0] != 'R')) {
        mexErrMsgIdAndTxt("zelm:usage", "zelmOctave: a camera is 'L' or 'R'");
    }
    ZelmMeasureRig* rig = openRig(arguments[1]);
    if (count > 0 && zelmMeasureUndistort(rig, side[0], (int64_t)count, pixels, pixels) < 0) {
        fail(rig, "zelmUndistort", "an argument cannot be meant");
    }
    zelmMeasureRigClose(&rig);
    return matrixOf(pixels, count, 2);
}

void mexFunction(int resultCount, mxArray* results[], int argumentCount, const mxArray* arguments[]) {
    char command[16] = "";
    if (argumentCount > 0 && mxIsChar(arguments[0])) {
        mxGetString(arguments[0], command, sizeof(command));
    }
    if (strcmp(command, "rig") == 0 && argumentCount == 2 && resultCount <= 1) {
        results[0] = rigStruct(arguments[1]);
    } else if (strcmp(command, "triangulate") == 0 && argumentCount == 5 && resultCount <= 4) {
        triangulate(resultCount, results, arguments);
    } else if (strcmp(command, "undistort") == 0 && argumentCount == 4 && resultCount <= 1) {
        results[0] = undistort(arguments);
    } else {
        mexErrMsgIdAndTxt("zelm:usage", "zelmOctave: 'rig', 'triangulate' or 'undistort' with its arguments is wanted");
    }
}
