#include "leastSquaresQr.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "workBuffer.h"
#include "zelm/fit.h"

namespace zelm {
namespace {

constexpr size_t kUnknowns = 3;
constexpr double kDependent = 1e-12;  // norm, or norm over first norm, of a column that adds nothing
constexpr std::int32_t kMaxRefinements = 10;
constexpr double kRefined = 1e-12;  // last correction relative to the solution

double dot(size_t n, const double* a, const double* b) {
    double sum = 0.0;
    for (size_t i = 0; i < n; ++i) {
        sum += a[i] * b[i];
    }
    return sum;
}

// Takes `factor` times column from target.
void subtract(size_t n, double factor, const double* column, double* target) {
    for (size_t i = 0; i < n; ++i) {
        target[i] -= factor * column[i];
    }
}

// The factors of the basis: orthonormal columns q (its rows, pivoted), upper triangular R and the pivot order.
struct PivotedQr {
    size_t n;
    double* q[kUnknowns];
    double R[kUnknowns][kUnknowns] = {};
    size_t order[kUnknowns] = {0, 1, 2};
    size_t rank = 0;
};

// Places column `chosen` at step k.
void pivot(PivotedQr& qr, size_t k, size_t chosen, double* reference) {
    std::swap(qr.q[k], qr.q[chosen]);
    std::swap(qr.order[k], qr.order[chosen]);
    std::swap(reference[k], reference[chosen]);
    for (size_t row = 0; row < k; ++row) {
        std::swap(qr.R[row][k], qr.R[row][chosen]);
    }
}

// The first pivot goes by norm, the later ones by what is left of each column's first norm (-1 stands for none).
void factor(PivotedQr& qr) {
    double reference[kUnknowns];
    for (size_t k = 0; k < kUnknowns; ++k) {
        double norms[kUnknowns];
        double best = -1.0;
        size_t chosen = k;
        for (size_t j = k; j < kUnknowns; ++j) {
            norms[j] = std::sqrt(dot(qr.n, qr.q[j], qr.q[j]));
            if (k == 0) {
                reference[j] = norms[j] == 0.0 ? -1.0 : norms[j];
            }
            const double value = k == 0 ? norms[j] : norms[j] / reference[j];
            if (value > best) {
                best = value;
                chosen = j;
            }
        }
        if (!(best >= kDependent)) {
            return;
        }
        pivot(qr, k, chosen, reference);
        const double norm = norms[chosen];
        qr.R[k][k] = norm;
        for (size_t i = 0; i < qr.n; ++i) {
            qr.q[k][i] /= norm;
        }
        for (size_t j = k + 1; j < kUnknowns; ++j) {
            qr.R[k][j] = dot(qr.n, qr.q[k], qr.q[j]);
            subtract(qr.n, qr.R[k][j], qr.q[k], qr.q[j]);
        }
        qr.rank = k + 1;
    }
}

// Uses b up.
void innerSolveQR(const PivotedQr& qr, double* b, double* x) {
    double y[kUnknowns];
    for (size_t k = 0; k < qr.rank; ++k) {
        y[k] = dot(qr.n, qr.q[k], b);
        subtract(qr.n, y[k], qr.q[k], b);
    }
    std::fill_n(x, kUnknowns, 0.0);
    for (size_t k = qr.rank; k-- > 0;) {
        double rest = y[k];
        for (size_t j = k + 1; j < qr.rank; ++j) {
            rest -= qr.R[k][j] * x[qr.order[j]];
        }
        x[qr.order[k]] = rest / qr.R[k][k];
    }
}

void refine(const PivotedQr& qr, const double* basis, const double* b, double* work, double* x) {
    for (std::int32_t pass = 0; pass < kMaxRefinements; ++pass) {
        std::copy_n(b, qr.n, work);
        for (size_t j = 0; j < kUnknowns; ++j) {
            subtract(qr.n, x[j], basis + j * qr.n, work);
        }
        double delta[kUnknowns];
        innerSolveQR(qr, work, delta);
        const double kept = std::sqrt(dot(kUnknowns, x, x));
        const double correction = std::sqrt(dot(kUnknowns, delta, delta));
        for (size_t j = 0; j < kUnknowns; ++j) {
            x[j] += delta[j];
        }
        if (correction / kept <= kRefined) {
            return;
        }
    }
}

}  // namespace

std::int32_t innerSolveLeastSquaresQR(std::int32_t n, const double* basis, const double* b, double* x) {
    if (n < static_cast<std::int32_t>(kUnknowns)) {
        return n;
    }
    const auto count = static_cast<size_t>(n);
    WorkBuffer<double> columns(kUnknowns, count);
    WorkBuffer<double> work(count);
    if (!columns.ok() || !work.ok()) {
        return ZELM_ERR_MEMORY;
    }
    std::copy_n(basis, kUnknowns * count, columns.data());
    PivotedQr qr{count, {columns.data(), columns.data() + count, columns.data() + 2 * count}};
    factor(qr);
    std::copy_n(b, count, work.data());
    innerSolveQR(qr, work.data(), x);
    refine(qr, basis, b, work.data(), x);
    return static_cast<std::int32_t>(qr.rank);
}

}  // namespace zelm
