// Products, norms and angles of vectors.
#include <algorithm>
#include <cmath>

#include "mathDegenerate.h"
#include "zelm/math.h"

double zelmMathCalcInnerProduct(int32_t iN, const double* daU, const double* daV) {
    double sum = 0.0;
    for (int32_t i = 0; i < iN; ++i) {
        sum += daU[i] * daV[i];
    }
    return sum;
}

void zelmMathCalcOuterProduct(const double* daU, const double* daV, double* daOut) {
    const double x = daU[1] * daV[2] - daU[2] * daV[1];
    const double y = daU[2] * daV[0] - daU[0] * daV[2];
    const double z = daU[0] * daV[1] - daU[1] * daV[0];
    daOut[0] = x;
    daOut[1] = y;
    daOut[2] = z;
}

double zelmMathCalcNorm(int32_t iN, const double* daV) {
    return std::sqrt(zelmMathCalcInnerProduct(iN, daV, daV));
}

double zelmMathCalcArgument(const Point2d* tP) {
    return std::atan2(tP->y, tP->x);
}

int32_t zelmMathNormalization(int32_t iN, double* daV) {
    const double norm = zelmMathCalcNorm(iN, daV);
    if (!zelm::isDivisor(norm)) {
        return ZELM_ERR_DEGENERATE;
    }
    for (int32_t i = 0; i < iN; ++i) {
        daV[i] = daV[i] / norm;
    }
    return ZELM_OK;
}

int32_t zelmMathCalcAngle(int32_t iN, const double* daU, const double* daV, double* dAngle) {
    const double normU = zelmMathCalcNorm(iN, daU);
    const double normV = zelmMathCalcNorm(iN, daV);
    if (!zelm::isDivisor(normU) || !zelm::isDivisor(normV)) {
        return ZELM_ERR_DEGENERATE;
    }
    const double cosine = zelmMathCalcInnerProduct(iN, daU, daV) / (normU * normV);
    *dAngle = std::acos(std::clamp(cosine, -1.0, 1.0));
    return ZELM_OK;
}
