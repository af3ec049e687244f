// Rotation vectors and rotation matrices (Rodrigues 1840).
#include "rodrigues.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "svd.h"
#include "zelm/calib.h"
#include "zelm/mat.h"
#include "zelm/math.h"

namespace zelm {
namespace {

constexpr double kNoRotation = 1e-15;  // radians; a shorter vector is the identity
constexpr double kMinSine = 1e-5;      // below it the closed form takes no axis from the antisymmetric part

void writeMatrix(const double* r, double* R) {
    const double theta = zelmMathCalcNorm(3, r);
    if (theta < kNoRotation) {
        zelmMatDiagonal(1.0, 3, R);
        return;
    }
    const double u[3] = {r[0] / theta, r[1] / theta, r[2] / theta};
    const double cosine = std::cos(theta);
    const double sine = std::sin(theta);
    const double cross[9] = {0.0, -u[2], u[1], u[2], 0.0, -u[0], -u[1], u[0], 0.0};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            const double diagonal = i == j ? cosine : 0.0;
            R[3 * i + j] = diagonal + (1.0 - cosine) * u[i] * u[j] + sine * cross[3 * i + j];
        }
    }
}

// The null direction of R - I; false when its decomposition fails. All on the stack.
bool axisOf(const double* R, double* u) {
    double identity[9];
    double difference[9];
    double values[3];
    double rightVectors[9];
    double work[6];
    std::int32_t index[3];
    zelmMatDiagonal(1.0, 3, identity);
    zelmMatSub(3, 3, R, identity, difference);
    if (!innerSVD(3, 3, difference, false, values, rightVectors, work)) {
        return false;
    }
    innerSortSVD(3, 3, nullptr, values, rightVectors, work, index);
    std::copy_n(rightVectors + 6, 3, u);
    return true;
}

// 2 sin(theta) * axis.
void writeAntisymmetricPart(const double* R, double* w) {
    w[0] = R[7] - R[5];
    w[1] = R[2] - R[6];
    w[2] = R[3] - R[1];
}

void writeVector(const double* R, double* r) {
    double u[3];
    if (!axisOf(R, u)) {
        rotationVectorInClosedForm(R, r);
        return;
    }
    double w[3];
    writeAntisymmetricPart(R, w);
    // Its sign follows the sign that the decomposition gave the axis, so that the product comes out right.
    const double theta = std::atan2(zelmMathCalcInnerProduct(3, u, w), zelmMatTrace(3, R) - 1.0);
    zelmMatMulScalar(theta, 1, 3, u, r);
}

}  // namespace

void rotationVectorInClosedForm(const double* R, double* r) {
    double w[3];
    writeAntisymmetricPart(R, w);
    const double s = zelmMathCalcNorm(3, w) / 2.0;
    const double c = std::clamp((zelmMatTrace(3, R) - 1.0) / 2.0, -1.0, 1.0);
    const double theta = std::acos(c);
    if (s >= kMinSine) {
        zelmMatMulScalar(theta / (2.0 * s), 1, 3, w, r);
    } else if (c > 0.0) {
        zelmMatZero(1, 3, r);
    } else {
        const auto component = [R](std::size_t i) { return std::sqrt(std::max(0.0, (R[4 * i] + 1.0) / 2.0)); };
        r[0] = theta * component(0);
        r[1] = theta * (R[1] < 0.0 ? -component(1) : component(1));
        r[2] = theta * (R[2] < 0.0 ? -component(2) : component(2));
    }
}

}  // namespace zelm

int32_t zelmCalibRodrigues(int32_t iDirection, double* daRvec, double* daRmat) {
    if (static_cast<uint32_t>(iDirection) > 1 || daRvec == nullptr || daRmat == nullptr) {
        return ZELM_ERR_PARAM;
    }
    if (iDirection == 0) {
        zelm::writeMatrix(daRvec, daRmat);
    } else {
        zelm::writeVector(daRmat, daRvec);
    }
    return ZELM_OK;
}
