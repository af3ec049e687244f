// Least-squares and minimum-norm solutions through the singular value decomposition.
#include <algorithm>
#include <cstddef>

#include "workBuffer.h"
#include "zelm/mat.h"

namespace {

// Unit roundoff spacing of doubles at 1; times the row count the relative size of a singular value that counts as 0.
constexpr double kEpsilon = 2.220446049250313e-16;

// t = diag(w)^+ U^T b: negligible singular values contribute nothing.
void scaledProjections(int32_t iRowCount, std::size_t rows, std::size_t n, const double* u, const double* w,
                       const double* b, double* t) {
    for (std::size_t j = 0; j < n; ++j) {
        // Written so that 0/0, the ratio of a zero matrix, counts as negligible too.
        if (!(w[j] / w[0] >= iRowCount * kEpsilon)) {
            t[j] = 0.0;
            continue;
        }
        double sum = 0.0;
        for (std::size_t i = 0; i < rows; ++i) {
            sum += u[i * n + j] * b[i];
        }
        t[j] = sum / w[j];
    }
}

}  // namespace

int32_t zelmMatSolveSVD(int32_t iM, int32_t iN, const double* daA, const double* daB, double* daX) {
    if (iN < 1) {
        return ZELM_OK;
    }
    const auto n = static_cast<std::size_t>(iN);
    const bool wide = iM < iN;
    const int32_t effective = wide ? iN : iM;
    const auto rows = static_cast<std::size_t>(effective);
    // One block: U, V, w and t; for a wide matrix also the copies of A and b that zeros extend to n rows.
    zelm::WorkBuffer<double> block(rows + n + 2 + (wide ? n + 1 : 0), n);
    if (!block.ok()) {
        return ZELM_ERR_MEMORY;
    }
    double* const u = block.data();
    double* const v = u + rows * n;
    double* const w = v + n * n;
    double* const t = w + n;
    const double* a = daA;
    const double* b = daB;
    if (wide) {
        const auto given = static_cast<std::size_t>(std::max(iM, 0));
        double* const paddedA = t + n;
        double* const paddedB = paddedA + n * n;
        std::fill(std::copy_n(daA, given * n, paddedA), paddedB, 0.0);
        std::fill(std::copy_n(daB, given, paddedB), paddedB + n, 0.0);
        a = paddedA;
        b = paddedB;
    }
    if (const int32_t status = zelmMatSVD(effective, iN, a, u, w, v); status < 0) {
        return status;
    }
    scaledProjections(iM, rows, n, u, w, b, t);
    return zelmMatMulTransposed2(1, iN, iN, v, iN, 1, t, daX);
}
