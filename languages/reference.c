/* Prints what the C library says of a calibration, for the tests of the other languages: a name and numbers a line. The
 * numbers are written so that every bit comes back.
 *
 *     reference rig.zcal
 */
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#ifdef ZELM_OTHER_HEADER
#include ZELM_OTHER_HEADER
#else
#include "zelmMeasure.h"
#endif

enum { kPairs = 6, kMaxBlock = 1 << 20 };

/* Raw pixels of the left and the right image: the point of docs/formats.md, true pairs about it, one that misses, one
 * far outside of the image, one just outside. */
static const double kLeft[2 * kPairs] = {695.624980240, 458.337870150, 640,  480,  100.5, 900.25,
                                         500,           500,           9000, 9000, -40,   300};
static const double kRight[2 * kPairs] = {256.080854675, 478.356225250, 200, 500, 50, 930, 600, 100, 640, 480, 10, 310};

static void put(const char* name, const double* numbers, int count) {
    printf("%s", name);
    for (int i = 0; i < count; ++i) {
        printf(" %.17g", numbers[i]);
    }
    printf("\n");
}

static void require(int32_t status, const char* what) {
    if (status < 0) {
        fprintf(stderr, "reference: %s: status %d\n", what, (int)status);
        exit(1);
    }
}

static ZelmMeasureRig* openRig(const char* name) {
    static unsigned char block[kMaxBlock];
    ZelmMeasureRig* rig = NULL;
    FILE* const file = fopen(name, "rb");
    if (file == NULL) {
        perror(name);
        exit(1);
    }
    const size_t size = fread(block, 1, sizeof(block), file);
    fclose(file);
    require(zelmMeasureRigOpen(block, (int64_t)size, &rig), name);
    return rig;
}

static void putSizes(void) {
    printf("size.ZelmCameraIntrinsics %d\n", (int)sizeof(ZelmCameraIntrinsics));
    printf("size.ZelmCameraExtrinsics %d\n", (int)sizeof(ZelmCameraExtrinsics));
    printf("size.ZelmMeasureCamera %d\n", (int)sizeof(ZelmMeasureCamera));
    printf("size.ZelmMeasureRelativePose %d\n", (int)sizeof(ZelmMeasureRelativePose));
    printf("size.ZelmMeasurePoints %d\n", (int)sizeof(ZelmMeasurePoints));
    printf("offset.ZelmMeasureCamera.intrinsics %d\n", (int)offsetof(ZelmMeasureCamera, intrinsics));
    printf("offset.ZelmMeasureRelativePose.t %d\n", (int)offsetof(ZelmMeasureRelativePose, t));
    printf("offset.ZelmMeasurePoints.maxError %d\n", (int)offsetof(ZelmMeasurePoints, maxError));
}

static void putCamera(ZelmMeasureRig* rig, char side) {
    ZelmMeasureCamera camera = {.size = sizeof(camera)};
    ZelmCameraExtrinsics pose;
    char name[32];
    require(zelmMeasureRigCamera(rig, side, &camera), "camera");
    require(zelmMeasureRigPose(rig, side, 0, &pose), "pose");
    printf("camera.%c %d %d %d\n", side, (int)camera.model, (int)camera.width, (int)camera.height);
    snprintf(name, sizeof(name), "intrinsics.%c", side);
    put(name, (const double*)&camera.intrinsics, 17);
    snprintf(name, sizeof(name), "pose.%c", side);
    put(name, (const double*)&pose, 15);
}

static void putUndistorted(ZelmMeasureRig* rig, char side, const double* raw) {
    double out[2 * kPairs];
    char name[32];
    require(zelmMeasureUndistort(rig, side, kPairs, raw, out), "undistort");
    snprintf(name, sizeof(name), "undistorted.%c", side);
    put(name, out, 2 * kPairs);
}

static void putPoints(ZelmMeasureRig* rig) {
    int32_t statuses[kPairs];
    double positions[3 * kPairs];
    double errors[2 * kPairs];
    double angles[kPairs];
    for (int i = 0; i < 3 * kPairs; ++i) { /* what is not written */
        positions[i] = errors[i % (2 * kPairs)] = angles[i % kPairs] = strtod("nan", NULL);
    }
    ZelmMeasurePoints points = {sizeof(points), 0, statuses, positions, errors, angles, 5.0, 1, 0};
    require(zelmMeasureTriangulate(rig, kPairs, kLeft, kRight, &points), "triangulate");
    printf("statuses");
    for (int i = 0; i < kPairs; ++i) {
        printf(" %d", (int)statuses[i]);
    }
    printf("\n");
    put("positions", positions, 3 * kPairs);
    put("errors", errors, 2 * kPairs);
    put("angles", angles, kPairs);
}

int main(int argc, char** argv) {
    if (argc != 2) {
        fprintf(stderr, "usage: reference rig.zcal\n");
        return 2;
    }
    ZelmMeasureRig* rig = openRig(argv[1]);
    ZelmMeasureRelativePose relative = {.size = sizeof(relative)};
    double F[9];
    putSizes();
    putCamera(rig, 'L');
    putCamera(rig, 'R');
    require(zelmMeasureRigRelativePose(rig, &relative), "relative pose");
    put("relative.R", relative.R, 9);
    put("relative.t", relative.t, 3);
    put("baseline", &relative.baseline, 1);
    put("convergence", &relative.convergence, 1);
    require(zelmMeasureRigFundamental(rig, F), "fundamental matrix");
    put("F", F, 9);
    put("left", kLeft, 2 * kPairs);
    put("right", kRight, 2 * kPairs);
    putUndistorted(rig, 'L', kLeft);
    putUndistorted(rig, 'R', kRight);
    putPoints(rig);
    zelmMeasureRigClose(&rig);
    return 0;
}
