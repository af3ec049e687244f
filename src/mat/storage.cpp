// Matrix storage and the element-wise operations.
#include <algorithm>
#include <cstddef>
#include <utility>

#include "workBuffer.h"
#include "zelm/mat.h"

using zelm::freeBytes;
using zelm::WorkBuffer;

double* zelmMatMallocVector(int32_t iN) {
    return iN < 1 ? nullptr : WorkBuffer<double>(static_cast<std::size_t>(iN)).release();
}

void zelmMatFreeVector(double* daV) {
    freeBytes(daV);
}

double** zelmMatMallocMatrix(int32_t iRows, int32_t iCols) {
    if (iRows < 1 || iCols < 1) {
        return nullptr;
    }
    const auto rows = static_cast<std::size_t>(iRows);
    const auto cols = static_cast<std::size_t>(iCols);
    WorkBuffer<double*> handle(rows);
    if (!handle.ok()) {
        return nullptr;
    }
    WorkBuffer<double> block(rows, cols);
    if (!block.ok()) {
        return nullptr;
    }
    for (std::size_t i = 0; i < rows; ++i) {
        handle[i] = block.data() + i * cols;
    }
    block.release();
    return handle.release();
}

void zelmMatFreeMatrix(double** daM) {
    if (daM == nullptr) {
        return;
    }
    freeBytes(daM[0]);
    freeBytes(daM);
}

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
