#include "stereoGeometry.h"

#include <algorithm>
#include <cmath>

#include "matrix3.h"
#include "zelm/calib.h"
#include "zelm/mat.h"
#include "zelm/math.h"

namespace zelm {
namespace {

// [v]x, so that [v]x w = v x w.
void crossMatrix(const double* v, double* X) {
    const double rows[9] = {0.0, -v[2], v[1], v[2], 0.0, -v[0], -v[1], v[0], 0.0};
    std::copy(rows, rows + 9, X);
}

// Pose of the right camera seen from the left one: X_left = R X_right + t.
std::int32_t relativePose(const ZelmCameraExtrinsics& left, const ZelmCameraExtrinsics& right, double* R, double* t) {
    double inverse[9];
    double moved[3];
    if (const auto s = zelmMatInvert(3, right.R, inverse); s < 0) {
        return s;
    }
    multiply3(left.R, inverse, R);
    if (const auto s = zelmMatMul(3, 3, R, 3, 1, right.t, moved); s < 0) {
        return s;
    }
    zelmMatSub(3, 1, left.t, moved, t);
    return ZELM_OK;
}

// Two perspective cameras: F = KL^-T E KR^-1 with the essential matrix E = [t]x R (Longuet-Higgins 1981).
std::int32_t fundamentalOfPoses(const CalibratedCamera& left, const CalibratedCamera& right, double* F) {
    double R[9];
    double t[3];
    if (const auto s = relativePose(left.pose, right.pose, R, t); s < 0) {
        return s;
    }
    double leftInverse[9];
    double rightInverse[9];
    if (const auto s = zelmMatInvert(3, left.intrinsics.A, leftInverse); s < 0) {
        return s;
    }
    if (const auto s = zelmMatInvert(3, right.intrinsics.A, rightInverse); s < 0) {
        return s;
    }
    double X[9];
    double E[9];
    double ER[9];
    crossMatrix(t, X);
    multiply3(X, R, E);
    multiply3(E, rightInverse, ER);
    return zelmMatMulTransposed2(1, 3, 3, leftInverse, 3, 3, ER, F);
}

std::int32_t projectionMatrix(const CalibratedCamera& camera, double* P) {
    return zelmCalibCameraMatrix(camera.intrinsics.A, &camera.pose, P, camera.model);
}

// Q = P^T (P P^T)^-1, 4x3: takes an image point back to a point of its ray.
std::int32_t pseudoInverse(const double* P, double* Q) {
    double PP[9];
    double inverse[9];
    zelmMatMulTransposed(0, 3, 4, P, PP);
    if (const auto s = zelmMatInvert(3, PP, inverse); s < 0) {
        return s;
    }
    return zelmMatMulTransposed2(1, 3, 4, P, 3, 3, inverse, Q);
}

// A parallel left camera: its centre is the point at infinity along its direction of view n, which the right camera
// sees at the epipole e; F = (PR PL^+)^T [e]x (Hartley and Zisserman 2004, 9.2).
std::int32_t fundamentalOfProjections(const CalibratedCamera& left, const CalibratedCamera& right, double* F) {
    double PL[12];
    double PR[12];
    if (const auto s = projectionMatrix(left, PL); s < 0) {
        return s;
    }
    if (const auto s = projectionMatrix(right, PR); s < 0) {
        return s;
    }
    double n[3];
    zelmMathCalcOuterProduct(&PL[0], &PL[4], n);
    if (const auto s = zelmMathNormalization(3, n); s < 0) {
        return s;
    }
    double e[3];
    for (int row = 0; row < 3; ++row) {
        e[row] = zelmMathCalcInnerProduct(3, &PR[4 * row], n);
    }
    double Q[12];
    double transfer[9];
    double X[9];
    if (const auto s = pseudoInverse(PL, Q); s < 0) {
        return s;
    }
    if (const auto s = zelmMatMul(3, 4, PR, 4, 3, Q, transfer); s < 0) {
        return s;
    }
    crossMatrix(e, X);
    return zelmMatMulTransposed2(1, 3, 3, transfer, 3, 3, X, F);
}

// Divides by the largest element and drops the smallest singular value. An F of zeros, as of two cameras in one place,
// becomes NaN here: the decomposition then reports it. See docs/decisions.md#fundamental-rank.
std::int32_t normaliseFundamental(double* F) {
    double largest = 0.0;
    for (int i = 0; i < 9; ++i) {
        largest = std::max(largest, std::fabs(F[i]));
    }
    for (int i = 0; i < 9; ++i) {
        F[i] /= largest;
    }
    double U[9];
    double w[3];
    double V[9];
    if (const auto s = zelmMatSVD(3, 3, F, U, w, V); s < 0) {
        return s;
    }
    w[2] = 0.0;
    double scaled[9];
    for (int i = 0; i < 9; ++i) {
        scaled[i] = U[i] * w[i % 3];
    }
    multiply3(scaled, V, F);
    return ZELM_OK;
}

}  // namespace

std::int32_t innerFundamentalPair(const CalibratedCamera& left, const CalibratedCamera& right, FundamentalPair* pair) {
    const bool isLeftParallel = left.model == ZELM_CAMERA_PARALLEL;
    if (!isLeftParallel && right.model == ZELM_CAMERA_PARALLEL) {
        return ZELM_ERR_PARAM;
    }
    const auto formed =
        isLeftParallel ? fundamentalOfProjections(left, right, pair->F) : fundamentalOfPoses(left, right, pair->F);
    if (formed < 0) {
        return formed;
    }
    if (const auto s = normaliseFundamental(pair->F); s < 0) {
        return s;
    }
    zelmMatTranspose(3, 3, pair->F, pair->Ft);
    return ZELM_OK;
}

std::int32_t innerRectifyingPair(const CalibratedCamera& camera, bool isPairWithParallel, RectifyingPair* pair) {
    double P[12];
    if (const auto s = projectionMatrix(camera, P); s < 0) {
        return s;
    }
    const int lastColumn = isPairWithParallel ? 3 : 2;
    for (int row = 0; row < 3; ++row) {
        pair->M[3 * row] = P[4 * row];
        pair->M[3 * row + 1] = P[4 * row + 1];
        pair->M[3 * row + 2] = P[4 * row + lastColumn];
    }
    return zelmMatInvert(3, pair->M, pair->Minv);
}

}  // namespace zelm
