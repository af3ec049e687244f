// LU factorisation, linear systems and inverses.
#include "lu.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "workBuffer.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

using Index = std::ptrdiff_t;

// Writes 1 / (largest magnitude) of each row; false when a row holds nothing but zeros, or an entry is not finite.
bool rowScales(Index n, const double* work, double* scale) {
    for (Index i = 0; i < n; ++i) {
        double largest = 0.0;
        for (Index j = 0; j < n; ++j) {
            const double magnitude = std::fabs(work[i * n + j]);
            if (!std::isfinite(magnitude)) {
                return false;
            }
            largest = magnitude > largest ? magnitude : largest;
        }
        if (largest == 0.0) {
            return false;
        }
        scale[i] = 1.0 / largest;
    }
    return true;
}

// The position from k on whose scaled pivot is largest; the first of equals.
Index pivotPosition(Index n, Index k, const double* work, const std::int32_t* perm, const double* scale) {
    Index best = k;
    double bestValue = -1.0;
    for (Index p = k; p < n; ++p) {
        const double value = std::fabs(work[perm[p] * n + k]) * scale[perm[p]];
        if (value > bestValue) {
            bestValue = value;
            best = p;
        }
    }
    return best;
}

void eliminateBelow(Index n, Index k, double* work, const std::int32_t* perm) {
    const double* const pivotRow = work + perm[k] * n;
    for (Index p = k + 1; p < n; ++p) {
        double* const row = work + perm[p] * n;
        const double f = row[k] / pivotRow[k];
        row[k] = f;
        for (Index j = k + 1; j < n; ++j) {
            row[j] = row[j] - pivotRow[j] * f;
        }
    }
}

std::int32_t eliminate(Index n, double* work, std::int32_t* perm, const double* scale) {
    double det = 1.0;
    for (Index k = 0; k < n; ++k) {
        const Index q = pivotPosition(n, k, work, perm, scale);
        if (q != k) {
            std::swap(perm[q], perm[k]);
            det = -det;
        }
        const double pivot = work[perm[k] * n + k];
        if (pivot == 0.0) {
            return ZELM_ERR_SINGULAR;
        }
        det = det * pivot;
        eliminateBelow(n, k, work, perm);
    }
    // A product of pivots that underflows counts as singular: docs/decisions.md#pivot-underflow.
    return det == 0.0 ? ZELM_ERR_SINGULAR : ZELM_OK;
}

// A private copy of a matrix, factored.
struct Factored {
    WorkBuffer<double> work;
    WorkBuffer<std::int32_t> perm;

    std::int32_t factor(std::int32_t n, const double* a) {
        const auto count = static_cast<std::size_t>(n);
        work = WorkBuffer<double>(count, count);
        perm = WorkBuffer<std::int32_t>(count);
        if (!work.ok() || !perm.ok()) {
            return ZELM_ERR_MEMORY;
        }
        std::copy_n(a, work.size(), work.data());
        return innerLUDecomp(n, work.data(), perm.data());
    }
    [[nodiscard]] const double* pivotRow(Index i, Index n) const {
        return work.data() + perm[static_cast<std::size_t>(i)] * n;
    }
};

// Row i of the unknowns of all right-hand sides: X(i, .) -= sum over j in [from, to) of factors[j] * X(j, .).
// Each column is summed in increasing j, as if it were solved alone.
void subtractRows(Index n, Index i, Index from, Index to, const double* factors, double* x) {
    for (Index j = from; j < to; ++j) {
        for (Index c = 0; c < n; ++c) {
            x[i * n + c] -= factors[j] * x[j * n + c];
        }
    }
}

}  // namespace

std::int32_t innerLUDecomp(std::int32_t n, double* work, std::int32_t* perm) {
    if (n < 1) {
        return ZELM_OK;
    }
    WorkBuffer<double> scale(static_cast<std::size_t>(n));
    if (!scale.ok()) {
        return ZELM_ERR_MEMORY;
    }
    for (std::int32_t i = 0; i < n; ++i) {
        perm[i] = i;
    }
    if (!rowScales(n, work, scale.data())) {
        return ZELM_ERR_SINGULAR;
    }
    return eliminate(n, work, perm, scale.data());
}

}  // namespace zelm

int32_t zelmMatSolveLU(int32_t iN, const double* daA, const double* daB, double* daX) {
    if (iN < 1) {
        return ZELM_OK;
    }
    zelm::Factored lu;
    if (const int32_t status = lu.factor(iN, daA); status < 0) {
        return status;
    }
    const std::ptrdiff_t n = iN;
    for (std::ptrdiff_t i = 0; i < n; ++i) {
        const double* const row = lu.pivotRow(i, n);
        double rest = daB[lu.perm[static_cast<std::size_t>(i)]];
        for (std::ptrdiff_t j = 0; j < i; ++j) {
            rest -= row[j] * daX[j];
        }
        daX[i] = rest;
    }
    for (std::ptrdiff_t i = n - 1; i >= 0; --i) {
        const double* const row = lu.pivotRow(i, n);
        double rest = daX[i];
        for (std::ptrdiff_t j = i + 1; j < n; ++j) {
            rest -= row[j] * daX[j];
        }
        daX[i] = rest / row[i];
    }
    return ZELM_OK;
}

int32_t zelmMatInvert(int32_t iN, const double* daA, double* daAinv) {
    if (iN < 1) {
        return ZELM_OK;
    }
    zelm::Factored lu;
    if (const int32_t status = lu.factor(iN, daA); status < 0) {
        return status;
    }
    const std::ptrdiff_t n = iN;
    for (std::ptrdiff_t i = 0; i < n; ++i) {
        std::fill_n(daAinv + i * n, n, 0.0);
        daAinv[i * n + lu.perm[static_cast<std::size_t>(i)]] = 1.0;
        zelm::subtractRows(n, i, 0, i, lu.pivotRow(i, n), daAinv);
    }
    for (std::ptrdiff_t i = n - 1; i >= 0; --i) {
        const double* const row = lu.pivotRow(i, n);
        zelm::subtractRows(n, i, i + 1, n, row, daAinv);
        for (std::ptrdiff_t c = 0; c < n; ++c) {
            daAinv[i * n + c] = daAinv[i * n + c] / row[i];
        }
    }
    return ZELM_OK;
}
