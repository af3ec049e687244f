// Start values of a view's pose.
#include "viewPose.h"

#include <algorithm>
#include <cstddef>

#include "cameraProjection.h"
#include "zelm/calib.h"
#include "zelm/mat.h"
#include "zelm/math.h"

namespace zelm {

void writeCameraMatrix(const double* intrinsics, double* A) {
    const double entries[9] = {intrinsics[kAlpha],
                               intrinsics[kGamma],
                               intrinsics[kCx],
                               0.0,
                               intrinsics[kBeta],
                               intrinsics[kCy],
                               0.0,
                               0.0,
                               1.0};
    std::copy_n(entries, 9, A);
}

std::int32_t poseFromAxes(const double* r1, const double* r2, const double* t, double* pose) {
    double r3[3];
    zelmMathCalcOuterProduct(r1, r2, r3);
    const double frame[9] = {r1[0], r2[0], r3[0], r1[1], r2[1], r3[1], r1[2], r2[2], r3[2]};
    double U[9];
    double w[3];
    double V[9];
    if (const std::int32_t status = zelmMatSVD(3, 3, frame, U, w, V); status < 0) {
        return status;
    }
    double R[9];
    zelmMatMul(3, 3, U, 3, 3, V, R);
    zelmCalibRodrigues(1, pose + kRotation, R);
    std::copy_n(t, 3, pose + kTranslation);
    return ZELM_OK;
}

std::int32_t poseFromHomography(const double* Ainv, const double* H, double* pose) {
    double columns[9];  // r1, r2, t, each times an unknown factor
    zelmMatMul(3, 3, Ainv, 3, 3, H, columns);
    double axes[9];
    zelmMatTranspose(3, 3, columns, axes);
    double scale = 1.0 / ((zelmMathCalcNorm(3, axes) + zelmMathCalcNorm(3, axes + 3)) * 0.5);
    if (axes[8] < 0.0) {
        scale = -scale;  // a homography has no sign of its own; the plate lies before the camera
    }
    zelmMatMulScalar(scale, 3, 3, axes, axes);
    return poseFromAxes(axes, axes + 3, axes + 6, pose);
}

}  // namespace zelm
