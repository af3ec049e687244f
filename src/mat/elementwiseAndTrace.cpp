// The element-wise operations, the transpose and the trace.
#include <algorithm>
#include <cstddef>

#include "zelm/mat.h"

namespace {

// Number of entries, 0 when either count is below 1.
std::ptrdiff_t entryCount(int32_t rows, int32_t cols) {
    return rows < 1 || cols < 1 ? 0 : static_cast<std::ptrdiff_t>(rows) * cols;
}

}  // namespace

void zelmMatZero(int32_t iRows, int32_t iCols, double* daA) {
    std::fill_n(daA, entryCount(iRows, iCols), 0.0);
}

void zelmMatDiagonal(double dValue, int32_t iN, double* daA) {
    zelmMatZero(iN, iN, daA);
    for (std::ptrdiff_t i = 0; i < iN; ++i) {
        daA[i * iN + i] = dValue;
    }
}

void zelmMatCopy(int32_t iRows, int32_t iCols, const double* daSrc, double* daDst) {
    const std::ptrdiff_t count = entryCount(iRows, iCols);
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        daDst[i] = daSrc[i];
    }
}

void zelmMatAdd(int32_t iRows, int32_t iCols, const double* daA, const double* daB, double* daC) {
    const std::ptrdiff_t count = entryCount(iRows, iCols);
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        daC[i] = daA[i] + daB[i];
    }
}

void zelmMatSub(int32_t iRows, int32_t iCols, const double* daA, const double* daB, double* daC) {
    const std::ptrdiff_t count = entryCount(iRows, iCols);
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        daC[i] = daA[i] - daB[i];
    }
}

void zelmMatMulScalar(double dS, int32_t iRows, int32_t iCols, const double* daA, double* daB) {
    const std::ptrdiff_t count = entryCount(iRows, iCols);
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        daB[i] = dS * daA[i];
    }
}

void zelmMatTranspose(int32_t iRows, int32_t iCols, const double* daA, double* daB) {
    const std::ptrdiff_t rows = iRows;
    const std::ptrdiff_t cols = iCols;
    for (std::ptrdiff_t i = 0; i < rows; ++i) {
        for (std::ptrdiff_t j = 0; j < cols; ++j) {
            daB[j * rows + i] = daA[i * cols + j];
        }
    }
}

double zelmMatTrace(int32_t iN, const double* daA) {
    double sum = 0.0;
    for (std::ptrdiff_t i = 0; i < iN; ++i) {
        sum += daA[i * iN + i];
    }
    return sum;
}
