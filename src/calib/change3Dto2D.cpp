// From a point in space to a pixel.
#include <cstddef>

#include "cameraModel.h"
#include "distortion.h"
#include "zelm/calib.h"

int32_t zelmCalibChange3Dto2D(const Point3d* tX, const ZelmCameraIntrinsics* tCam, const ZelmCameraExtrinsics* tExt,
                              Point2d* tP, int32_t iModel) {
    if (!zelm::isCameraModel(iModel) || tX == nullptr || tCam == nullptr || tExt == nullptr || tP == nullptr) {
        return ZELM_ERR_PARAM;
    }
    double P[12];
    const int32_t status = zelmCalibCameraMatrix(tCam->A, tExt, P, iModel);
    if (status < 0) {
        return status;
    }
    double q[3];
    for (std::size_t i = 0; i < 3; ++i) {
        const double* const row = P + 4 * i;
        q[i] = row[0] * tX->x + row[1] * tX->y + row[2] * tX->z + row[3];
    }
    const double theta = iModel == ZELM_CAMERA_TILTED ? tCam->theta : 0.0;
    *tP = zelm::LensDistortion(*tCam, theta).distort({q[0] / q[2], q[1] / q[2]});
    return status;
}
