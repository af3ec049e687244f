/// Dense matrices of doubles: storage, products, linear solvers and decompositions.
#ifndef ZELM_MAT_H
#define ZELM_MAT_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

ZELM_API double* zelmMatMallocVector(int32_t iN);
ZELM_API void zelmMatFreeVector(double* daV);
ZELM_API double** zelmMatMallocMatrix(int32_t iRows, int32_t iCols);
ZELM_API void zelmMatFreeMatrix(double** daM);

ZELM_API void zelmMatZero(int32_t iRows, int32_t iCols, double* daA);
ZELM_API void zelmMatDiagonal(double dValue, int32_t iN, double* daA);
ZELM_API void zelmMatCopy(int32_t iRows, int32_t iCols, const double* daSrc, double* daDst);
ZELM_API void zelmMatAdd(int32_t iRows, int32_t iCols, const double* daA, const double* daB, double* daC);
ZELM_API void zelmMatSub(int32_t iRows, int32_t iCols, const double* daA, const double* daB, double* daC);
ZELM_API void zelmMatMulScalar(double dS, int32_t iRows, int32_t iCols, const double* daA, double* daB);
ZELM_API void zelmMatTranspose(int32_t iRows, int32_t iCols, const double* daA, double* daB);
ZELM_API double zelmMatTrace(int32_t iN, const double* daA);

ZELM_API int32_t zelmMatMul(int32_t iM, int32_t iN, const double* daA, int32_t iNB, int32_t iP, const double* daB,
                            double* daC);
ZELM_API int32_t zelmMatGenMul(double dAlpha, int32_t iM, int32_t iN, const double* daA, int32_t iNB, int32_t iP,
                               const double* daB, double dBeta, const double* daC, double* daD);
ZELM_API void zelmMatMulTransposed(int32_t iFlag, int32_t iM, int32_t iN, const double* daA, double* daC);
ZELM_API int32_t zelmMatMulTransposed2(int32_t iFlag, int32_t iM, int32_t iN, const double* daA, int32_t iP, int32_t iQ,
                                       const double* daB, double* daC);

ZELM_API int32_t zelmMatInvert(int32_t iN, const double* daA, double* daAinv);
ZELM_API int32_t zelmMatSolveLU(int32_t iN, const double* daA, const double* daB, double* daX);
ZELM_API int32_t zelmMatCholeskyDecomp(int32_t iN, const double* daA, double* daU);

ZELM_API int32_t zelmMatSVD(int32_t iM, int32_t iN, const double* daA, double* daU, double* daW, double* daV);
ZELM_API int32_t zelmMatSolveSVD(int32_t iM, int32_t iN, const double* daA, const double* daB, double* daX);
ZELM_API int32_t zelmMatJacobiEigen(int32_t iN, const double* daA, double* daValues, double* daVectors);

ZELM_END_DECLS

#endif
