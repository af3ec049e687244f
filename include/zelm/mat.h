/// @file
/// Dense matrices of doubles: storage, products, linear solvers and decompositions.
///
/// A matrix is one flat row-major block: entry (i, j) of an r x c matrix is at index i * c + j. Row and column counts
/// are passed beside it, rows first; a vector is a flat block of n doubles. No function keeps a reference to a block.
///
/// Pointers are not checked: NULL where it is not named as allowed is undefined behaviour. Blocks that are said not to
/// overlap must not. Counts below 1 make every function do nothing and, where it returns a status, succeed, unless
/// stated otherwise.
///
/// The order of every sum is fixed, so that the same input gives the same bits in every build. All functions are
/// reentrant; the solvers and decompositions allocate their work memory per call and free it on every path.
#ifndef ZELM_MAT_H
#define ZELM_MAT_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

// Storage

/// Allocates a vector of iN doubles, uninitialised.
/// @param iN [in] entries
/// @return the vector, to be freed with zelmMatFreeVector; NULL if memory is short or iN is below 1
ZELM_API double* zelmMatMallocVector(int32_t iN);

/// Frees a vector of zelmMatMallocVector; NULL is allowed.
/// @param daV [in] the vector, or NULL
ZELM_API void zelmMatFreeVector(double* daV);

/// Allocates an iRows x iCols matrix, uninitialised, with an array of pointers to its rows.
///
/// The result M can be indexed as M[i][j], and M[0] is the flat block that every other function takes.
/// @param iRows [in] rows
/// @param iCols [in] columns
/// @return the row pointers, to be freed with zelmMatFreeMatrix; NULL if memory is short or a count is below 1
ZELM_API double** zelmMatMallocMatrix(int32_t iRows, int32_t iCols);

/// Frees a matrix of zelmMatMallocMatrix, the block that its first row pointer names and the pointers; NULL is allowed.
/// @param daM [in] the row pointers, or NULL
ZELM_API void zelmMatFreeMatrix(double** daM);

// Element-wise operations: they may run in place (an output equal to an input), except zelmMatTranspose.

/// A = 0, iRows x iCols.
/// @param iRows [in]  rows
/// @param iCols [in]  columns
/// @param daA   [out] iRows x iCols
ZELM_API void zelmMatZero(int32_t iRows, int32_t iCols, double* daA);

/// A = dValue * identity, iN x iN. Note that the scalar comes first.
/// @param dValue [in]  value of the diagonal
/// @param iN     [in]  rows and columns
/// @param daA    [out] iN x iN
ZELM_API void zelmMatDiagonal(double dValue, int32_t iN, double* daA);

/// Dst = Src, iRows x iCols.
/// @param iRows [in]  rows
/// @param iCols [in]  columns
/// @param daSrc [in]  iRows x iCols
/// @param daDst [out] iRows x iCols
ZELM_API void zelmMatCopy(int32_t iRows, int32_t iCols, const double* daSrc, double* daDst);

/// C = A + B, iRows x iCols.
/// @param iRows [in]  rows
/// @param iCols [in]  columns
/// @param daA   [in]  iRows x iCols
/// @param daB   [in]  iRows x iCols
/// @param daC   [out] iRows x iCols; may be A or B
ZELM_API void zelmMatAdd(int32_t iRows, int32_t iCols, const double* daA, const double* daB, double* daC);

/// C = A - B, iRows x iCols.
/// @param iRows [in]  rows
/// @param iCols [in]  columns
/// @param daA   [in]  iRows x iCols
/// @param daB   [in]  iRows x iCols
/// @param daC   [out] iRows x iCols; may be A or B
ZELM_API void zelmMatSub(int32_t iRows, int32_t iCols, const double* daA, const double* daB, double* daC);

/// B = dS * A, iRows x iCols. Note that the scalar comes first.
/// @param dS    [in]  factor
/// @param iRows [in]  rows
/// @param iCols [in]  columns
/// @param daA   [in]  iRows x iCols
/// @param daB   [out] iRows x iCols; may be A
ZELM_API void zelmMatMulScalar(double dS, int32_t iRows, int32_t iCols, const double* daA, double* daB);

/// B (iCols x iRows) = transpose of A (iRows x iCols); they must not overlap.
/// @param iRows [in]  rows of A
/// @param iCols [in]  columns of A
/// @param daA   [in]  iRows x iCols
/// @param daB   [out] iCols x iRows
ZELM_API void zelmMatTranspose(int32_t iRows, int32_t iCols, const double* daA, double* daB);

/// The sum of the diagonal of A (iN x iN), from 0.0 in increasing order; 0.0 for iN below 1.
/// @param iN  [in] rows and columns
/// @param daA [in] iN x iN
/// @return the trace
ZELM_API double zelmMatTrace(int32_t iN, const double* daA);

// Products. Every entry is summed from 0.0 in increasing order of the inner index, one product at a time; no use is
// made of symmetry. Outputs must not overlap inputs except where stated. A mismatch of the inner dimensions is
// ZELM_ERR_DEGENERATE (not ZELM_ERR_PARAM), is found before anything else, and leaves the output untouched. With an
// inner dimension below 1 and outer ones above 0 the sums are 0.0 and are written.

/// C = A * B.
/// @param iM   [in]  rows of A and C
/// @param iN   [in]  columns of A
/// @param daA  [in]  iM x iN
/// @param iNB  [in]  rows of B, equal to iN
/// @param iP   [in]  columns of B and C
/// @param daB  [in]  iN x iP
/// @param daC  [out] iM x iP
/// @return ZELM_OK, or ZELM_ERR_DEGENERATE if iN != iNB
ZELM_API int32_t zelmMatMul(int32_t iM, int32_t iN, const double* daA, int32_t iNB, int32_t iP, const double* daB,
                            double* daC);

/// D = alpha * (A * B) + beta * C, each entry as C * beta + (finished sum) * alpha.
/// @param dAlpha [in]  factor of the product
/// @param iM     [in]  rows of A, C and D
/// @param iN     [in]  columns of A
/// @param daA    [in]  iM x iN
/// @param iNB    [in]  rows of B, equal to iN
/// @param iP     [in]  columns of B, C and D
/// @param daB    [in]  iN x iP
/// @param dBeta  [in]  factor of C
/// @param daC    [in]  iM x iP
/// @param daD    [out] iM x iP; may be the same block as C
/// @return ZELM_OK, or ZELM_ERR_DEGENERATE if iN != iNB
ZELM_API int32_t zelmMatGenMul(double dAlpha, int32_t iM, int32_t iN, const double* daA, int32_t iNB, int32_t iP,
                               const double* daB, double dBeta, const double* daC, double* daD);

/// The product of A with its own transpose; with a flag, the normal matrix of a design matrix.
/// @param iFlag [in]  0: C = A * A^T; otherwise C = A^T * A
/// @param iM    [in]  rows of A
/// @param iN    [in]  columns of A
/// @param daA   [in]  iM x iN
/// @param daC   [out] iM x iM for flag 0, iN x iN otherwise; both triangles, equal to the bit
ZELM_API void zelmMatMulTransposed(int32_t iFlag, int32_t iM, int32_t iN, const double* daA, double* daC);

/// The product of one matrix with the transpose of another.
/// @param iFlag [in]  0: C = A * B^T; otherwise C = A^T * B
/// @param iM    [in]  rows of A
/// @param iN    [in]  columns of A
/// @param daA   [in]  iM x iN
/// @param iP    [in]  rows of B
/// @param iQ    [in]  columns of B; 1 for a column vector
/// @param daB   [in]  iP x iQ
/// @param daC   [out] iM x iP for flag 0, iN x iQ otherwise
/// @return ZELM_OK, or ZELM_ERR_DEGENERATE if iN != iQ (flag 0) or iM != iP (otherwise)
ZELM_API int32_t zelmMatMulTransposed2(int32_t iFlag, int32_t iM, int32_t iN, const double* daA, int32_t iP, int32_t iQ,
                                       const double* daB, double* daC);

// Square systems

/// The inverse of a square matrix.
///
/// LU factorisation with implicitly scaled partial pivoting (Forsythe and Moler, 1967): a pivot candidate is weighed by
/// the largest magnitude of its row as given; the first of equals wins. Substitution subtracts its products one by one
/// in increasing order of the column. Backward error: a few epsilon times the norm of A.
/// @param iN     [in]  rows and columns
/// @param daA    [in]  iN x iN
/// @param daAinv [out] iN x iN, written only on success; may be the same block as A
/// @return ZELM_OK; ZELM_ERR_MEMORY; ZELM_ERR_SINGULAR if a row holds only zeros, a pivot is exactly zero, the product
///         of all pivots is exactly zero (deliberately also when it merely underflows, as for diag(1e-200, 1e-200)), or
///         an entry of A is not finite
ZELM_API int32_t zelmMatInvert(int32_t iN, const double* daA, double* daAinv);

/// Solves A * x = b for a square A, by the factorisation of zelmMatInvert and with the same refusals.
/// @param iN  [in]  rows and columns
/// @param daA [in]  iN x iN
/// @param daB [in]  iN; entries that are not finite reach the solution
/// @param daX [out] iN, written only on success; must not overlap b
/// @return ZELM_OK, ZELM_ERR_MEMORY or ZELM_ERR_SINGULAR
ZELM_API int32_t zelmMatSolveLU(int32_t iN, const double* daA, const double* daB, double* daX);

/// Factors a symmetric positive definite A into U^T * U with an upper triangular U (Cholesky, Crout's order: row by
/// row).
/// @param iN  [in]  rows and columns
/// @param daA [in]  iN x iN; only the upper triangle with the diagonal is read
/// @param daU [out] iN x iN, zeros below the diagonal; may be the same block as A. On failure the lower part is zeroed,
///                  the rows above the failing one are final and the rest is as it was
/// @return ZELM_OK; ZELM_ERR_NOT_POSITIVE_DEFINITE if a diagonal term A(k, k) - sum U(i, k)^2 is below 1e-11 or not a
///         number. The threshold is absolute: scale a matrix of small entries up first
/// Memory: none.
ZELM_API int32_t zelmMatCholeskyDecomp(int32_t iN, const double* daA, double* daU);

// Decompositions. Values come out in descending order; equal values in the order that a fixed heap sort leaves them in.

/// The singular value decomposition A = U * diag(w) * V of a tall or square matrix.
///
/// Householder bidiagonalisation and implicitly shifted QR steps (Golub and Reinsch, 1970), whose formulas also set the
/// signs of the vectors. Relative residual and orthogonality stay below 1e-13, at any scale from 2^-960 to 2^1000;
/// `docs/limits.md`, Decompositions, says of which matrices. Time O(m n^2).
/// @param iM  [in]  rows, at least iN
/// @param iN  [in]  columns
/// @param daA [in]  iM x iN, unchanged
/// @param daU [out] iM x iN, column j is the left singular vector of value j; or NULL. Must not overlap A
/// @param daW [out] iN singular values, none negative, descending; or NULL
/// @param daV [out] iN x iN, row j is the right singular vector of value j (textbooks call this V^T); or NULL
/// @return ZELM_OK, at once if all outputs are NULL; ZELM_ERR_SVD_FAILED with nothing written if iM < iN;
///         ZELM_ERR_SVD_FAILED with partly written outputs if a value needs more than 29 QR steps
///         (`docs/decisions.md#svd-pass-30`), or if an entry of A or a value is not finite; ZELM_ERR_MEMORY, the
///         outputs then either untouched or, if only the sort lacked memory, holding the unsorted decomposition
ZELM_API int32_t zelmMatSVD(int32_t iM, int32_t iN, const double* daA, double* daU, double* daW, double* daV);

/// Solves A * x = b in the least-squares sense through zelmMatSVD; of all solutions the one of least norm.
///
/// A singular value w[j] with iM * 2.220446049250313e-16 > w[j] / w[0] counts as zero. A matrix with fewer rows than
/// columns is extended by rows of zeros; iM in the threshold stays as given. A matrix of zeros has the solution 0.
/// @param iM  [in]  rows: equations
/// @param iN  [in]  columns: unknowns
/// @param daA [in]  iM x iN, unchanged
/// @param daB [in]  iM, unchanged
/// @param daX [out] iN, written only on success; may overlap b
/// @return ZELM_OK, ZELM_ERR_MEMORY, or ZELM_ERR_SVD_FAILED as zelmMatSVD
ZELM_API int32_t zelmMatSolveSVD(int32_t iM, int32_t iN, const double* daA, const double* daB, double* daX);

/// Eigenvalues and eigenvectors of a symmetric matrix, A = V^T * diag(values) * V.
///
/// Cyclic Jacobi rotations (Jacobi, 1846; rotation formulas of Rutishauser, 1966). With S the sum of squares of the
/// upper triangle, the diagonal's halved, sweeps end before a sweep when the off-diagonal squares sum to less than
/// 1e-32 * S, and after a sweep that started below 1e-16 * S. The zero matrix meets neither and ends in
/// ZELM_ERR_EIGEN_NOT_CONVERGED (`docs/decisions.md#zero-matrix`). Every other diagonal matrix of a norm above 1e-145
/// is sorted as it is. Rows of V are orthonormal to 1e-13, the relative residual is at most 1e-8 and as a rule below
/// 1e-13; scale matrices of a norm below 1e-11 up first. `docs/limits.md`, Decompositions, has the figures.
/// @param iN        [in]  rows and columns
/// @param daA       [in]  iN x iN; only the upper triangle with the diagonal is read; unchanged
/// @param daValues  [out] iN eigenvalues, descending; or NULL
/// @param daVectors [out] iN x iN, row k is the unit eigenvector of value k; or NULL. Must not overlap A
/// @return ZELM_OK, at once if both outputs are NULL; ZELM_ERR_MEMORY, nothing written; ZELM_ERR_EIGEN_NOT_CONVERGED
///         after 100 sweeps (also of the zero matrix), or at once if S is not finite (entries that are not finite, or
///         above about 1e154 unless the matrix is diagonal): values are not written, vectors hold the rotations made so
///         far
ZELM_API int32_t zelmMatJacobiEigen(int32_t iN, const double* daA, double* daValues, double* daVectors);

ZELM_END_DECLS

#endif
