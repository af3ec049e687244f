// The projection matrix of a camera at a pose.
#include <algorithm>
#include <cmath>

#include "cameraModel.h"
#include "zelm/calib.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

constexpr double kMinDivisor = 1e-9;  // of P[2][3]

// S(model), 3 x 4: what of the camera coordinates (x, y, z, 1) the camera matrix sees.
constexpr double kSelection[3][12] = {
    {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0},
    {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0},
    {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1},
};

}  // namespace
}  // namespace zelm

int32_t zelmCalibCameraMatrix(const double* daA, const ZelmCameraExtrinsics* tExt, double* daP, int32_t iModel) {
    if (!zelm::isCameraModel(iModel) || daA == nullptr || tExt == nullptr || daP == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const double* const R = tExt->R;
    const double* const t = tExt->t;
    const double pose[16] = {R[0], R[1], R[2], t[0], R[3], R[4], R[5], t[1], R[6], R[7], R[8], t[2], 0, 0, 0, 1};
    double selected[12];
    double P[12];
    zelmMatMul(3, 3, daA, 3, 4, zelm::kSelection[iModel], selected);
    const int32_t status = zelmMatMul(3, 4, selected, 4, 4, pose, P);
    const double divisor = std::fabs(P[11]) > zelm::kMinDivisor ? P[11] : 1.0;
    std::transform(P, P + 12, daP, [divisor](double entry) { return entry / divisor; });
    return status;
}
