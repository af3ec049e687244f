// Storage of vectors and matrices.
#include <cstddef>

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
