// Matrix products. Every entry is accumulated from 0.0 in increasing order of the summation index; entries are
// computed side by side, which leaves that order as it is.
#include <algorithm>
#include <cstddef>

#include "matKernels.h"
#include "zelm/mat.h"

namespace {

using Index = std::ptrdiff_t;

// Multiplications from which on a product is worth the choice of a tier and the copy of its panels, and columns of C
// that are worth a vector.
constexpr Index kMinMultiplications = 512;
constexpr Index kMinCols = 4;

bool isLarge(Index rows, Index cols, Index inner) {
    return rows > 1 && cols >= kMinCols && inner > 0 && rows * cols >= kMinMultiplications / inner;
}

// C (rows x cols) = sum over k < inner of A(k, i) * B(k, j), where A(k, i) is a[k * aStep + i * aRow] and row k of B is
// at b + k * bStep.
void sumOfOuterProducts(Index rows, Index cols, Index inner, const double* a, Index aStep, Index aRow, const double* b,
                        Index bStep, double* c) {
    if (rows < 1 || cols < 1) {
        return;
    }
    if (isLarge(rows, cols, inner)) {
        zelm::matTierOfProcessor().product(rows, cols, inner, {a, aStep, aRow}, {b, bStep, 1}, c);
        return;
    }
    std::fill_n(c, rows * cols, 0.0);
    for (Index k = 0; k < inner; ++k) {
        for (Index i = 0; i < rows; ++i) {
            const double factor = a[k * aStep + i * aRow];
            for (Index j = 0; j < cols; ++j) {
                c[i * cols + j] += factor * b[k * bStep + j];
            }
        }
    }
}

// C (rows x cols) = A * B^T, both with rows of inner entries.
void productOfRows(Index rows, Index cols, Index inner, const double* a, const double* b, double* c) {
    if (isLarge(rows, cols, inner)) {
        zelm::matTierOfProcessor().product(rows, cols, inner, {a, 1, inner}, {b, 1, inner}, c);
        return;
    }
    for (Index i = 0; i < rows; ++i) {
        for (Index j = 0; j < cols; ++j) {
            double sum = 0.0;
            for (Index k = 0; k < inner; ++k) {
                sum += a[i * inner + k] * b[j * inner + k];
            }
            c[i * cols + j] = sum;
        }
    }
}

}  // namespace

int32_t zelmMatMul(int32_t iM, int32_t iN, const double* daA, int32_t iNB, int32_t iP, const double* daB, double* daC) {
    if (iN != iNB) {
        return ZELM_ERR_DEGENERATE;
    }
    if (isLarge(iM, iP, iN)) {
        zelm::matTierOfProcessor().product(iM, iP, iN, {daA, 1, iN}, {daB, iP, 1}, daC);
        return ZELM_OK;
    }
    for (Index i = 0; i < iM; ++i) {
        // One row of C at a time: with a long inner dimension the row of C stays in the nearest cache.
        sumOfOuterProducts(1, iP, iN, daA + i * std::max(iN, 0), 1, 0, daB, iP, daC + i * iP);
    }
    return ZELM_OK;
}

int32_t zelmMatGenMul(double dAlpha, int32_t iM, int32_t iN, const double* daA, int32_t iNB, int32_t iP,
                      const double* daB, double dBeta, const double* daC, double* daD) {
    if (iN != iNB) {
        return ZELM_ERR_DEGENERATE;
    }
    const Index p = iP;
    for (Index i = 0; i < iM; ++i) {
        for (Index j = 0; j < p; ++j) {
            double sum = 0.0;
            for (Index k = 0; k < iN; ++k) {
                sum += daA[i * iN + k] * daB[k * p + j];
            }
            daD[i * p + j] = daC[i * p + j] * dBeta + sum * dAlpha;
        }
    }
    return ZELM_OK;
}

void zelmMatMulTransposed(int32_t iFlag, int32_t iM, int32_t iN, const double* daA, double* daC) {
    if (iFlag == 0) {
        productOfRows(iM, iM, iN, daA, daA, daC);
    } else {
        sumOfOuterProducts(iN, iN, iM, daA, iN, 1, daA, iN, daC);
    }
}

int32_t zelmMatMulTransposed2(int32_t iFlag, int32_t iM, int32_t iN, const double* daA, int32_t iP, int32_t iQ,
                              const double* daB, double* daC) {
    if (iFlag == 0 ? iN != iQ : iM != iP) {
        return ZELM_ERR_DEGENERATE;
    }
    if (iFlag == 0) {
        productOfRows(iM, iP, iN, daA, daB, daC);
    } else {
        sumOfOuterProducts(iN, iQ, iM, daA, iN, 1, daB, iQ, daC);
    }
    return ZELM_OK;
}
