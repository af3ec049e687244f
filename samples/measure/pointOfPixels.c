/* Makes a 3-D point of a pixel of the left image and its counterpart in the right one:
 *
 *     cc pointOfPixels.c $(pkg-config --cflags --libs zelmMeasure) -o pointOfPixels
 *     ./pointOfPixels rig.zcal 640 480 652.5 481.25
 */
#include <stdio.h>
#include <stdlib.h>

#include "zelmMeasure.h"

/* Reads a calibration that `zelm calibrate`, or zelm2ViewSaveCalibData(), has written. */
static ZelmMeasureRig* openRig(const char* name) {
    ZelmMeasureRig* rig = NULL;
    FILE* const file = fopen(name, "rb");
    if (file == NULL) {
        perror(name);
        return NULL;
    }
    unsigned char block[1 << 20];
    const size_t size = fread(block, 1, sizeof(block), file);
    fclose(file);
    if (zelmMeasureRigOpen(block, (int64_t)size, &rig) < 0) {
        fprintf(stderr, "%s: %s\n", name, rig != NULL ? zelmMeasureRigError(rig) : "out of memory");
        zelmMeasureRigClose(&rig);
    }
    return rig;
}

int main(int argc, char** argv) {
    if (argc != 6) {
        fprintf(stderr, "usage: pointOfPixels rig.zcal xL yL xR yR\n");
        return 2;
    }
    ZelmMeasureRig* rig = openRig(argv[1]);
    if (rig == NULL) {
        return 1;
    }

    /* One pair here; a million are one call, too. */
    const double left[2] = {atof(argv[2]), atof(argv[3])};
    const double right[2] = {atof(argv[4]), atof(argv[5])};
    int32_t status = ZELM_MEASURE_POINT_PARALLEL; /* until the library says otherwise */
    double position[3] = {0};
    double errors[2] = {0};
    ZelmMeasurePoints points = {sizeof(points), 0, &status, position, errors, NULL, 0.0, 0, 0};
    if (zelmMeasureTriangulate(rig, 1, left, right, &points) < 0) {
        fprintf(stderr, "%s\n", zelmMeasureRigError(rig));
    } else if (status != ZELM_MEASURE_POINT_OK) {
        fprintf(stderr, "these pixels show no common point in front of the cameras\n");
    } else {
        printf("%.4f %.4f %.4f, %.3f and %.3f px from its projections\n", position[0], position[1], position[2],
               errors[0], errors[1]);
    }
    zelmMeasureRigClose(&rig);
    return status != ZELM_MEASURE_POINT_OK;
}
