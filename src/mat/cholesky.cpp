// Cholesky factorisation of symmetric positive definite matrices.
#include <cmath>
#include <cstddef>

#include "zelm/mat.h"

namespace {

using Index = std::ptrdiff_t;

// Smallest diagonal term that counts as positive, in the matrix's own units: docs/decisions.md#cholesky-absolute.
constexpr double kMinTerm = 1e-11;

// A(k, j) minus the products of the finished rows of U above row k.
double remainder(Index n, Index k, Index j, const double* a, const double* u) {
    double rest = a[k * n + j];
    for (Index i = 0; i < k; ++i) {
        rest -= u[i * n + k] * u[i * n + j];
    }
    return rest;
}

}  // namespace

int32_t zelmMatCholeskyDecomp(int32_t iN, const double* daA, double* daU) {
    const Index n = iN;
    for (Index k = 0; k < n; ++k) {
        for (Index j = 0; j < k; ++j) {
            daU[k * n + j] = 0.0;
        }
    }
    for (Index k = 0; k < n; ++k) {
        const double d = remainder(n, k, k, daA, daU);
        if (!(d >= kMinTerm)) {  // also refuses a term that is not a number
            return ZELM_ERR_NOT_POSITIVE_DEFINITE;
        }
        const double diagonal = std::sqrt(d);
        daU[k * n + k] = diagonal;
        for (Index j = k + 1; j < n; ++j) {
            daU[k * n + j] = remainder(n, k, j, daA, daU) / diagonal;
        }
    }
    return ZELM_OK;
}
