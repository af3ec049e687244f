/* Calibrates a pair from plate views. loadGray() stands for your image reader: 8-bit gray, rows without padding. */
#include <stdio.h>
#include <stdlib.h>

#include "loadGray.h"
#include "zelmLib.h"

int main(void) {
    /* 13 x 11 dots of 4 mm at a pitch of 10 mm; markers of 7 mm at the origin and 30 mm along each axis. */
    const Zelm2ViewPatternDesc plate = {120, 100, 4, 7, 10, 10, 30, 30, 3, 0, 30, 0, 2.0, 100, 0};
    const Zelm2ViewCameraDesc cameras = {0, 1280, 960, 0, 1280, 960};
    Zelm2ViewCalib* pair = NULL;
    int32_t status = zelm2ViewCalibOpen(12, &plate, &cameras, &pair);
    for (int32_t view = 0; view < 12 && status >= 0; ++view) {
        const unsigned char* images[2] = {loadGray("left", view), loadGray("right", view)};
        status = zelm2ViewReadPtnImg(pair, view, images, NULL, NULL);
    }
    Zelm2ViewCalibResult result = {0, 0, 0, 0};
    if (status >= 0) {
        status = zelm2ViewCalibCameraParam(pair, &result);
    }
    ZelmCameraIntrinsics left;
    if (status < 0 || zelm2ViewGetCamIntParam(pair, 'L', &left) < 0) {
        printf("calibration failed with status %d\n", status);
        return 1;
    }
    printf("left camera: focal lengths %.1f %.1f px, mean reprojection error %.3f px\n", left.alpha, left.beta,
           result.errorL);

    /* The calibration to store; zelm2ViewLoadCalibData brings it back in another process. */
    const int32_t size = zelm2ViewGetCalibDataSize(pair);
    unsigned char* const block = malloc((size_t)size);
    status = zelm2ViewSaveCalibData(pair, block);
    printf("calibration block: %d bytes\n", size);
    free(block);
    zelm2ViewCalibClose(&pair);
    return status < 0;
}
