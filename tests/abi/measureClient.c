/* A user's program in C99 that measures: it needs the one header and the shared library. */
#include <stdio.h>
#include <string.h>

#include "zelmMeasure.h"

enum { kSide = 64 };

/* A dark disc of radius 10 about (31, 33), with an edge two pixels wide. */
static void drawDot(uint8_t* pixels) {
    int x, y;
    for (y = 0; y < kSide; ++y) {
        for (x = 0; x < kSide; ++x) {
            const double beyond = ((x - 31.0) * (x - 31.0) + (y - 33.0) * (y - 33.0) - 100.0) / 20.0; /* pixels */
            const double part = beyond < -1.0 ? 0.0 : beyond > 1.0 ? 1.0 : 0.5 + 0.5 * beyond;
            pixels[kSide * y + x] = (uint8_t)(40.5 + 160.0 * part);
        }
    }
}

static int measuresADot(void) {
    static uint8_t pixels[kSide * kSide];
    const ZelmMeasureImage image = {pixels, kSide, kSide, kSide};
    const double seed[2] = {28.0, 30.0};
    double centre[2] = {0.0, 0.0};
    int32_t status = -1;
    drawDot(pixels);
    return zelmMeasureDotCentres(&image, 1, seed, 0, centre, &status) == ZELM_OK && status == ZELM_MEASURE_DOT_OK &&
           centre[0] > 30.95 && centre[0] < 31.05 && centre[1] > 32.95 && centre[1] < 33.05;
}

static int summarises(void) {
    const double distances[3] = {3.0, 1.0, 2.0};
    ZelmMeasureFigures figures;
    memset(&figures, 0, sizeof figures);
    figures.size = (int32_t)sizeof figures;
    return zelmMeasureFigures(3, distances, &figures) == ZELM_OK && figures.count == 3 && figures.mean == 2.0 &&
           figures.median == 2.0 && figures.max == 3.0;
}

static int refusesWithWords(void) {
    const char text[] = "this is no calibration, but it is long enough to look like one";
    ZelmMeasureRig* rig = NULL;
    int32_t views = -7;
    const int refused = zelmMeasureRigOpen(text, (int64_t)sizeof text, &rig) == ZELM_MEASURE_ERR_DATA && rig != NULL &&
                        strstr(zelmMeasureRigError(rig), "not a calibration") != NULL &&
                        zelmMeasureRigViews(rig, &views) == ZELM_ERR_PARAM && views == -7;
    zelmMeasureRigClose(&rig);
    return refused && rig == NULL;
}

int main(void) {
    if (!measuresADot()) {
        fprintf(stderr, "zelmMeasureDotCentres: wrong result\n");
        return 1;
    }
    if (!summarises()) {
        fprintf(stderr, "zelmMeasureFigures: wrong result\n");
        return 1;
    }
    if (!refusesWithWords()) {
        fprintf(stderr, "zelmMeasureRigOpen: wrong result\n");
        return 1;
    }
    return 0;
}
