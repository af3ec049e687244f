/// @file
/// Numeric helpers: correlation of one-dimensional signals, and the threshold that parts a list of values in two.
///
/// Signals are arrays of doubles, counts come first, outputs last. All sums run from 0.0 in increasing index. Pointers
/// are not checked except by zelmMathOtsuThreshold1d; outputs are written only on success. All functions are reentrant.
/// Input that is not finite gives results that are not finite or not numbers, never a hang.
#ifndef ZELM_MATH_CORRELATION_H
#define ZELM_MATH_CORRELATION_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// The sum of u[i] * v[i]; 0.0 for iN below 1.
/// @param iN  [in] entries
/// @param daU [in] iN
/// @param daV [in] iN
/// @return the sum
ZELM_API double zelmMathCrossCorrelation(int32_t iN, const double* daU, const double* daV);

/// The cosine (u . v) / (|u| |v|) of two signals. Their means are not taken off.
/// @param iN  [in] entries
/// @param daU [in] iN
/// @param daV [in] iN
/// @return in [-1, 1] up to rounding; 0.0 where |u| |v| is below 1e-9, or iN below 1
ZELM_API double zelmMathNormCorrelation(int32_t iN, const double* daU, const double* daV);

/// The circular auto-correlation: out[k] = sum over i of data[i] * data[(i + k) mod iN]. Takes iN * iM products.
/// @param iN     [in]  entries of the signal, at least 1
/// @param daData [in]  iN
/// @param iM     [in]  lags, from 1 to iN
/// @param daOut  [out] iM; may be daData
/// @return ZELM_OK; ZELM_ERR_DEGENERATE if iN or iM is below 1 or iM above iN. Where the work memory of iN + iM doubles
///         cannot be obtained: ZELM_OK with nothing written (`docs/decisions.md#no-memory-status-math`)
ZELM_API int32_t zelmMathAutoCorrelation(int32_t iN, const double* daData, int32_t iM, double* daOut);

/// The circular auto-correlation as cosines: out[k] is zelmMathNormCorrelation of the signal and itself shifted by k.
/// Takes twice iN * iM products.
/// @param iN     [in]  entries of the signal, at least 1
/// @param daData [in]  iN
/// @param iM     [in]  lags, from 1 to iN
/// @param daOut  [out] iM; may be daData
/// @return as zelmMathAutoCorrelation, ZELM_OK with nothing written where there is no memory
ZELM_API int32_t zelmMathNormAutoCorrelation(int32_t iN, const double* daData, int32_t iM, double* daOut);

/// Where in a signal a template correlates best, by zelmMathNormCorrelation at every offset from 0 to iN - iM. Takes
/// about 2 iM (iN - iM + 1) products; allocates nothing.
/// @param iN         [in]  entries of the signal
/// @param daSignal   [in]  iN
/// @param iM         [in]  entries of the template, at most iN. A template without entries (below 1) correlates nowhere
/// @param daTemplate [in]  iM
/// @param iIndex     [out] the first offset with the highest score; 0 if no score is above 0
/// @param dScore     [out] that score; 0.0 likewise. Scores that are not numbers are passed over
/// @return ZELM_OK; ZELM_ERR_DEGENERATE if iN is below iM
ZELM_API int32_t zelmMathSearchOf1DWithNormCorrelation(int32_t iN, const double* daSignal, int32_t iM,
                                                       const double* daTemplate, int32_t* iIndex, double* dScore);

/// The threshold that parts a list of values in two classes of the greatest variance between them (Otsu 1979), taken
/// over the values themselves rather than a histogram. Sorts a copy: O(n log n).
/// @param iN         [in]  values, at least 1
/// @param daData     [in]  iN, in any order
/// @param dThreshold [out] halfway between the largest value of the lower class and the smallest of the upper one; of
///                         splits of equal variance the lowest. A single value is its own threshold; values of which
///                         one is not a number give a threshold that is not a number
/// @return ZELM_OK; ZELM_ERR_DEGENERATE if iN is below 1, a pointer is NULL, or the work memory cannot be obtained
///         (`docs/decisions.md#no-memory-status-math`)
ZELM_API int32_t zelmMathOtsuThreshold1d(int32_t iN, const double* daData, double* dThreshold);

ZELM_END_DECLS

#endif
