/* A user's program in C99: everything it needs comes from the one header and the shared library. */
#include <stdio.h>
#include <string.h>

#include "zelmLib.h"

int main(void) {
    const double a[4] = {0.0, 1.0, 1.0, 0.0};
    double inverse[4] = {0.0, 0.0, 0.0, 0.0};
    if (zelmMatInvert(2, a, inverse) != ZELM_OK || memcmp(a, inverse, sizeof a) != 0) {
        fprintf(stderr, "zelmMatInvert: wrong result\n");
        return 1;
    }
    Zelm2ViewCalib* pair = NULL;
    Zelm2ViewPatternDesc plate;
    Zelm2ViewCameraDesc cameras = {0, 640, 480, 0, 640, 480};
    memset(&plate, 0, sizeof plate);
    plate.d0 = 120.0;
    plate.d1 = 100.0;
    plate.d2 = 4.0;
    plate.d3 = 7.0;
    plate.d4 = plate.d5 = 10.0;
    plate.d6 = plate.d7 = 30.0;
    plate.markers = 3;
    if (zelm2ViewCalibOpen(3, &plate, &cameras, &pair) != ZELM_OK || zelm2ViewGetCalibDataSize(pair) != 1532) {
        fprintf(stderr, "zelm2ViewCalibOpen: wrong result\n");
        return 1;
    }
    zelm2ViewCalibClose(&pair);
    return pair == NULL ? 0 : 1;
}
