// Otsu's threshold of a list of values.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

#include "workBuffer.h"
#include "zelm/mathCorrelation.h"

namespace {

// Ascending. A strict weak order also where some values are not numbers; those come first, and make the threshold one
// of them.
bool isBefore(double a, double b) {
    return a < b || (std::isnan(a) && !std::isnan(b));
}

// The number of values in the lower class, less one: the first of the best splits of n >= 2 sorted values.
std::size_t bestSplit(const double* sorted, std::size_t n, double mean) {
    std::size_t best = 0;
    double bestScore = -1.0;
    double lowerSum = 0.0;
    for (std::size_t k = 0; k + 1 < n; ++k) {
        lowerSum += sorted[k];
        const double lowerCount = static_cast<double>(k + 1);
        const double deviation = mean * lowerCount - lowerSum;
        const double score = deviation * deviation / (static_cast<double>(n - 1 - k) * lowerCount);
        if (score > bestScore) {
            best = k;
            bestScore = score;
        }
    }
    return best;
}

}  // namespace

int32_t zelmMathOtsuThreshold1d(int32_t iN, const double* daData, double* dThreshold) {
    if (iN < 1 || daData == nullptr || dThreshold == nullptr) {
        return ZELM_ERR_DEGENERATE;
    }
    const auto n = static_cast<std::size_t>(iN);
    zelm::WorkBuffer<double> sorted(n);
    if (!sorted.ok()) {
        return ZELM_ERR_DEGENERATE;  // docs/decisions.md#no-memory-status-math
    }
    std::copy_n(daData, n, sorted.data());
    const double mean = std::accumulate(daData, daData + n, 0.0) / iN;
    std::sort(sorted.data(), sorted.data() + n, isBefore);
    if (n == 1) {
        *dThreshold = sorted[0];  // there is no split
        return ZELM_OK;
    }
    const std::size_t best = bestSplit(sorted.data(), n, mean);
    *dThreshold = (sorted[best] + sorted[best + 1]) * 0.5;
    return ZELM_OK;
}
