// LU factorisation, linear systems and inverses.
#include "lu.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "matKernels.h"
#include "smallBuffer.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

using Index = std::ptrdiff_t;

constexpr std::size_t kMaxOrderInPlace = 10;

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

void eliminateBelow(const MatKernels& tier, Index n, Index k, double* work, const std::int32_t* perm) {
    const double* const pivotRow = work + perm[k] * n;
    for (Index p = k + 1; p < n; ++p) {
        double* const row = work + perm[p] * n;
        const double f = row[k] / pivotRow[k];
        row[k] = f;
        tier.subtractRow(n - k - 1, f, pivotRow + k + 1, row + k + 1);
    }
}

std::int32_t eliminate(Index n, double* work, std::int32_t* perm, const double* scale) {
    const MatKernels& tier = matTierOfProcessor();
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
        eliminateBelow(tier, n, k, work, perm);
    }
    // A product of pivots that underflows counts as singular: docs/decisions.md#pivot-underflow.
    return det == 0.0 ? ZELM_ERR_SINGULAR : ZELM_OK;
}

// A private copy of a matrix, factored.
struct Factored {
    SmallBuffer<double, kMaxOrderInPlace * kMaxOrderInPlace> work;
    SmallBuffer<std::int32_t, kMaxOrderInPlace> perm;

    explicit Factored(std::int32_t n)
        : work(static_cast<std::size_t>(n), static_cast<std::size_t>(n)), perm(static_cast<std::size_t>(n)) {}

    std::int32_t factor(std::int32_t n, const double* a) {
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

}  // namespace

std::int32_t innerLUDecomp(std::int32_t n, double* work, std::int32_t* perm) {
    if (n < 1) {
        return ZELM_OK;
    }
    SmallBuffer<double, kMaxOrderInPlace> scale(static_cast<std::size_t>(n));
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
    zelm::Factored lu(iN);
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
    zelm::Factored lu(iN);
    if (const int32_t status = lu.factor(iN, daA); status < 0) {
        return status;
    }
    // Every column of the inverse is subtracted from in increasing order, as if it were solved alone.
    const zelm::MatKernels& tier = zelm::matTierOfProcessor();
    const std::ptrdiff_t n = iN;
    for (std::ptrdiff_t i = 0; i < n; ++i) {
        std::fill_n(daAinv + i * n, n, 0.0);
        daAinv[i * n + lu.perm[static_cast<std::size_t>(i)]] = 1.0;
        tier.subtractRows(n, i, lu.pivotRow(i, n), daAinv, daAinv + i * n);
    }
    for (std::ptrdiff_t i = n - 1; i >= 0; --i) {
        const double* const row = lu.pivotRow(i, n);
        tier.subtractRows(n, n - i - 1, row + i + 1, daAinv + (i + 1) * n, daAinv + i * n);
        for (std::ptrdiff_t c = 0; c < n; ++c) {
            daAinv[i * n + c] = daAinv[i * n + c] / row[i];
        }
    }
    return ZELM_OK;
}
