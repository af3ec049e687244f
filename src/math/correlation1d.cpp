// Correlation of one-dimensional signals.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "workBuffer.h"
#include "zelm/math.h"
#include "zelm/mathCorrelation.h"

using zelm::WorkBuffer;

namespace {

constexpr double kMinNormProduct = 1e-9;   // signals whose norms have a lower product correlate with nothing
constexpr std::ptrdiff_t kSideBySide = 4;  // windows summed in one pass: each sum keeps its order, none waits

enum class First { kStays, kMoves };

// out[k] = the inner product of n entries of u, from entry k on if it moves, and of v from entry k on.
template <First kFirst>
void innerProductsOfWindows(int32_t n, const double* u, const double* v, std::ptrdiff_t count, double* out) {
    constexpr std::ptrdiff_t kStep = kFirst == First::kMoves ? 1 : 0;
    std::ptrdiff_t k = 0;
    for (; count - k >= kSideBySide; k += kSideBySide) {
        double sums[kSideBySide] = {};
        for (std::ptrdiff_t i = 0; i < n; ++i) {
            for (std::ptrdiff_t j = 0; j < kSideBySide; ++j) {
                sums[j] += u[i + (k + j) * kStep] * v[i + k + j];
            }
        }
        std::copy_n(sums, kSideBySide, out + k);
    }
    for (; k < count; ++k) {
        out[k] = zelmMathCalcInnerProduct(n, u + k * kStep, v + k);
    }
}

double normCorrelation(double product, double normU, double normV) {
    const double norms = normU * normV;
    return norms < kMinNormProduct ? 0.0 : product / norms;
}

// scores[k] = zelmMathNormCorrelation(n, u, v + k) for the first count (at most kSideBySide) windows of v.
void normCorrelationsOfWindows(int32_t n, const double* u, double normU, const double* v, std::ptrdiff_t count,
                               double* scores) {
    double squares[kSideBySide];
    innerProductsOfWindows<First::kStays>(n, u, v, count, scores);
    innerProductsOfWindows<First::kMoves>(n, v, v, count, squares);
    for (std::ptrdiff_t k = 0; k < count; ++k) {
        scores[k] = normCorrelation(scores[k], normU, std::sqrt(squares[k]));
    }
}

bool isCircularLagCount(int32_t n, int32_t m) {
    return m <= n && n >= 1 && m >= 1;
}

// The signal, with its first m values once more behind it. Not ok() without memory.
WorkBuffer<double> unrolled(int32_t n, const double* data, int32_t m) {
    WorkBuffer<double> buffer(static_cast<std::size_t>(n) + static_cast<std::size_t>(m));
    if (buffer.ok()) {
        std::copy_n(data, n, buffer.data());
        std::copy_n(data, m, buffer.data() + n);
    }
    return buffer;
}

}  // namespace

double zelmMathCrossCorrelation(int32_t iN, const double* daU, const double* daV) {
    return zelmMathCalcInnerProduct(iN, daU, daV);
}

double zelmMathNormCorrelation(int32_t iN, const double* daU, const double* daV) {
    return normCorrelation(zelmMathCalcInnerProduct(iN, daU, daV), zelmMathCalcNorm(iN, daU),
                           zelmMathCalcNorm(iN, daV));
}

int32_t zelmMathAutoCorrelation(int32_t iN, const double* daData, int32_t iM, double* daOut) {
    if (!isCircularLagCount(iN, iM)) {
        return ZELM_ERR_DEGENERATE;
    }
    const WorkBuffer<double> buffer = unrolled(iN, daData, iM);
    if (!buffer.ok()) {
        return ZELM_OK;  // docs/decisions.md#no-memory-status-math
    }
    innerProductsOfWindows<First::kStays>(iN, buffer.data(), buffer.data(), iM, daOut);
    return ZELM_OK;
}

int32_t zelmMathNormAutoCorrelation(int32_t iN, const double* daData, int32_t iM, double* daOut) {
    if (!isCircularLagCount(iN, iM)) {
        return ZELM_ERR_DEGENERATE;
    }
    const WorkBuffer<double> buffer = unrolled(iN, daData, iM);
    if (!buffer.ok()) {
        return ZELM_OK;  // as above
    }
    const double norm = zelmMathCalcNorm(iN, buffer.data());
    for (std::ptrdiff_t k = 0; k < iM; k += kSideBySide) {
        normCorrelationsOfWindows(iN, buffer.data(), norm, buffer.data() + k, std::min(kSideBySide, iM - k), daOut + k);
    }
    return ZELM_OK;
}

int32_t zelmMathSearchOf1DWithNormCorrelation(int32_t iN, const double* daSignal, int32_t iM, const double* daTemplate,
                                              int32_t* iIndex, double* dScore) {
    if (iN < iM) {
        return ZELM_ERR_DEGENERATE;
    }
    std::ptrdiff_t best = 0;
    double bestScore = 0.0;
    const std::ptrdiff_t offsets = iM < 1 ? 0 : std::ptrdiff_t{iN} - iM + 1;
    const double norm = zelmMathCalcNorm(iM, daTemplate);
    for (std::ptrdiff_t block = 0; block < offsets; block += kSideBySide) {
        double scores[kSideBySide];
        const std::ptrdiff_t count = std::min(kSideBySide, offsets - block);
        normCorrelationsOfWindows(iM, daTemplate, norm, daSignal + block, count, scores);
        for (std::ptrdiff_t k = 0; k < count; ++k) {
            if (scores[k] > bestScore) {
                best = block + k;
                bestScore = scores[k];
            }
        }
    }
    *iIndex = static_cast<int32_t>(best);
    *dScore = bestScore;
    return ZELM_OK;
}
