// From a point in space to a pixel.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "distortion.h"
#include "zelm/calib.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

constexpr uint32_t kLastModel = 2;      // parallel projection
constexpr int32_t kTiltedModel = 1;     // perspective with theta
constexpr double kLeastDivisor = 1e-9;  // of P[2][3]

// S(model), 3 x 4: what of the camera coordinates (x, y, z, 1) the camera matrix sees.
constexpr double kSelection[3][12] = {
    {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0},
    {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0},
    {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1},
};

bool isModel(int32_t model) {
    return static_cast<uint32_t>(model) <= kLastModel;
}

}  // namespace
}  // namespace zelm

int32_t zelmCalibCameraMatrix(const double* daA, const ZelmCameraExtrinsics* tExt, double* daP, int32_t iModel) {
    if (!zelm::isModel(iModel) || daA == nullptr || tExt == nullptr || daP == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const double* const R = tExt->R;
    const double* const t = tExt->t;
    const double pose[16] = {R[0], R[1], R[2], t[0], R[3], R[4], R[5], t[1], R[6], R[7], R[8], t[2], 0, 0, 0, 1};
    double selected[12];
    double P[12];
    zelmMatMul(3, 3, daA, 3, 4, zelm::kSelection[iModel], selected);
    const int32_t status = zelmMatMul(3, 4, selected, 4, 4, pose, P);
    const double divisor = std::fabs(P[11]) > zelm::kLeastDivisor ? P[11] : 1.0;
    std::transform(P, P + 12, daP, [divisor](double entry) { return entry / divisor; });
    return status;
}

int32_t zelmCalibChange3Dto2D(const Point3d* tX, const ZelmCameraIntrinsics* tCam, const ZelmCameraExtrinsics* tExt,
                              Point2d* tP, int32_t iModel) {
    if (!zelm::isModel(iModel) || tX == nullptr || tCam == nullptr || tExt == nullptr || tP == nullptr) {
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
    const double theta = iModel == zelm::kTiltedModel ? tCam->theta : 0.0;
    *tP = zelm::LensDistortion(*tCam, theta).distort({q[0] / q[2], q[1] / q[2]});
    return status;
}
