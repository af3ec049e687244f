#include <cstdint>

#include "calibObject.h"
#include "calibratedCamera.h"
#include "optimalCorrection.h"
#include "zelm/mat.h"
#include "zelm/twoViewGeometry.h"

namespace zelm {
namespace {

bool undistort(const CalibratedCamera& camera, const Point2d& raw, Point2d* ideal) {
    return zelmCalibUnDistortPoint(&camera.intrinsics, raw.x, raw.y, &ideal->x, &ideal->y) >= 0;
}

// Two rows of A X = b: the point's projection by P (3x4) is p.
void addEquations(const double P[12], const Point2d& p, double* A, double* b) {
    for (int j = 0; j < 3; ++j) {
        A[j] = p.x * P[8 + j] - P[j];
        A[3 + j] = p.y * P[8 + j] - P[4 + j];
    }
    b[0] = P[3] - p.x * P[11];
    b[1] = P[7] - p.y * P[11];
}

std::int32_t triangulate(const CalibratedCamera& left, const CalibratedCamera& right, const PointPair& points,
                         Point3d* out) {
    double PL[12];
    double PR[12];
    if (const auto status = zelmCalibCameraMatrix(left.intrinsics.A, &left.pose, PL, left.model); status < 0) {
        return status;
    }
    if (const auto status = zelmCalibCameraMatrix(right.intrinsics.A, &right.pose, PR, right.model); status < 0) {
        return status;
    }
    double A[12];
    double b[4];
    addEquations(PL, points.left, A, b);
    addEquations(PR, points.right, A + 6, b + 2);
    double X[3];
    const std::int32_t status = zelmMatSolveSVD(4, 3, A, b, X);
    if (status < 0) {
        return status == ZELM_ERR_SVD_FAILED ? ZELM_ERR_DEGENERATE : status;
    }
    *out = {X[0], X[1], X[2]};
    return ZELM_OK;
}

}  // namespace
}  // namespace zelm

using namespace zelm;

std::int32_t zelm2ViewChange2Dto3D(const Zelm2ViewCalib* tHandle, const Point2d* tLeft, const Point2d* tRight,
                                   Point3d* tOut) {
    if (tHandle == nullptr || tLeft == nullptr || tRight == nullptr || tOut == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const CalibratedCamera left = calibratedCamera(tHandle->data, Camera::left);
    const CalibratedCamera right = calibratedCamera(tHandle->data, Camera::right);
    if (left.model == ZELM_CAMERA_PARALLEL && right.model == ZELM_CAMERA_PARALLEL) {
        return ZELM_ERR_PARAM;
    }
    PointPair ideal{};
    if (!undistort(left, *tLeft, &ideal.left) || !undistort(right, *tRight, &ideal.right)) {
        return ZELM_ERR_UNDISTORT;
    }
    const auto fundamental = block::read<FundamentalPair>(tHandle->data, block::kFundamental);
    return triangulate(left, right, correctOptimally(fundamental.F, ideal), tOut);
}

std::int32_t zelm2ViewChange3Dto2D(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const Point3d* tIn,
                                   Point2d* tOut) {
    Camera camera{};
    if (tHandle == nullptr || tIn == nullptr || tOut == nullptr || !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    const CalibratedCamera pair = calibratedCamera(tHandle->data, camera);
    const std::int32_t status = zelmCalibChange3Dto2D(tIn, &pair.intrinsics, &pair.pose, tOut, pair.model);
    return status < 0 ? status : ZELM_OK;
}
