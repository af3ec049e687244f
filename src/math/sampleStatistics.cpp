// Mean and spread of a sample.
#include <cmath>

#include "zelm/math.h"

int32_t zelmMathStat(int32_t iN, const double* daData, double* dMean, double* dVariance, double* dDeviation) {
    if (iN < 2) {
        return ZELM_ERR_DEGENERATE;
    }
    double sum = 0.0;
    for (int32_t i = 0; i < iN; ++i) {
        sum += daData[i];
    }
    const double mean = sum / iN;
    double squares = 0.0;
    for (int32_t i = 0; i < iN; ++i) {
        squares += (daData[i] - mean) * (daData[i] - mean);
    }
    const double variance = squares / iN;  // docs/decisions.md#population-variance
    *dMean = mean;
    *dVariance = variance;
    *dDeviation = std::sqrt(variance);
    return ZELM_OK;
}
