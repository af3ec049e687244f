// Closed-form intrinsics of a perspective camera.
#include "zhangClosedForm.h"

#include <algorithm>
#include <cmath>

#include "cameraProjection.h"
#include "workBuffer.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

constexpr std::size_t kTerms = 6;
// Second least eigenvalue of V^T V over the greatest, by rounding of the sums. Views that are all parallel, say, leave
// a whole family of solutions, of which the least eigenvector is a chance member.
constexpr double kUndetermined = 1e-15;

// v(i, j) of the image of the absolute conic's constraints, from columns i and j of H.
void writeTerms(const double* H, std::size_t i, std::size_t j, double* v) {
    const auto h = [H](std::size_t column, std::size_t row) { return H[3 * row + column]; };
    v[0] = h(i, 0) * h(j, 0);
    v[1] = h(i, 0) * h(j, 1) + h(i, 1) * h(j, 0);
    v[2] = h(i, 1) * h(j, 1);
    v[3] = h(i, 2) * h(j, 0) + h(i, 0) * h(j, 2);
    v[4] = h(i, 2) * h(j, 1) + h(i, 1) * h(j, 2);
    v[5] = h(i, 2) * h(j, 2);
}

// Column 1 and 2 of A^-1 H are perpendicular and of one length.
void writeConstraints(const double* H, double* rows) {
    double second[kTerms];
    writeTerms(H, 0, 1, rows);
    writeTerms(H, 0, 0, rows + kTerms);
    writeTerms(H, 1, 1, second);
    zelmMatSub(1, kTerms, rows + kTerms, second, rows + kTerms);
}

// b = (B11, B12, B22, B13, B23, B33) of B ~ A^-T A^-1.
std::int32_t intrinsicsFromConic(const double* b, double* intrinsics) {
    const double B11 = b[0];
    const double B12 = b[1];
    const double B22 = b[2];
    const double B13 = b[3];
    const double B23 = b[4];
    const double B33 = b[5];
    const double minor = B11 * B22 - B12 * B12;
    if (B11 == 0.0 || minor == 0.0) {
        return ZELM_ERR_CALIB_ESTIMATE;
    }
    const double cy = (B12 * B13 - B11 * B23) / minor;
    const double lambda = B33 - (B13 * B13 + cy * (B12 * B13 - B11 * B23)) / B11;
    const double alpha2 = lambda / B11;
    const double beta2 = lambda * B11 / minor;
    if (!(alpha2 > 0.0 && beta2 > 0.0 && std::isfinite(alpha2) && std::isfinite(beta2))) {
        return ZELM_ERR_CALIB_ESTIMATE;
    }
    const double beta = std::sqrt(beta2);
    const double gamma = -B12 * alpha2 * beta / lambda;
    intrinsics[kAlpha] = std::sqrt(alpha2);
    intrinsics[kBeta] = beta;
    intrinsics[kGamma] = gamma;
    intrinsics[kCx] = gamma * cy / beta - B13 * alpha2 / lambda;
    intrinsics[kCy] = cy;
    return ZELM_OK;
}

}  // namespace

std::int32_t zhangIntrinsics(std::size_t views, const double* homographies, double* intrinsics) {
    WorkBuffer<double> V(2 * views, kTerms);
    if (!V.ok()) {
        return ZELM_ERR_MEMORY;
    }
    for (std::size_t i = 0; i < views; ++i) {
        writeConstraints(homographies + 9 * i, V.data() + 2 * kTerms * i);
    }
    double VtV[kTerms * kTerms];
    double values[kTerms];
    double vectors[kTerms * kTerms];
    zelmMatMulTransposed(1, static_cast<std::int32_t>(2 * views), kTerms, V.data(), VtV);
    const std::int32_t status = zelmMatJacobiEigen(kTerms, VtV, values, vectors);
    if (status == ZELM_ERR_MEMORY) {
        return status;
    }
    if (status < 0 || !(values[kTerms - 2] > kUndetermined * values[0])) {
        return ZELM_ERR_CALIB_ESTIMATE;
    }
    return intrinsicsFromConic(vectors + (kTerms - 1) * kTerms, intrinsics);
}

}  // namespace zelm
