#include "conicScatter.h"

#include <algorithm>

#include "zelm/fit.h"
#include "zelm/mat.h"

namespace zelm {

namespace {

// Returns the number of points that took part.
std::int32_t sumScatter(std::int32_t n, const double* weights, const double* points, double* S) {
    std::fill_n(S, kConicTerms * kConicTerms, 0.0);
    std::int32_t used = 0;
    for (size_t i = 0; i < static_cast<size_t>(std::max(n, 0)); ++i) {
        const double w = weights[i];
        if (w == 0.0) {
            continue;
        }
        ++used;
        const double x = points[2 * i];
        const double y = points[2 * i + 1];
        const double z[kConicTerms] = {x * x, x * y, y * y, x, y, 1.0};
        for (size_t r = 0; r < kConicTerms; ++r) {
            const double wz = w * z[r];
            for (size_t c = r; c < kConicTerms; ++c) {
                S[r * kConicTerms + c] += wz * z[c];
            }
        }
    }
    for (size_t r = 1; r < kConicTerms; ++r) {
        for (size_t c = 0; c < r; ++c) {
            S[r * kConicTerms + c] = S[c * kConicTerms + r];
        }
    }
    return used;
}

}  // namespace

std::int32_t conicScatter(std::int32_t n, const double* weights, const double* points, ConicScatter* result) {
    if (sumScatter(n, weights, points, result->S) < kConicMinPoints) {
        return ZELM_ERR_FIT_DATA;
    }
    return zelmMatJacobiEigen(static_cast<std::int32_t>(kConicTerms), result->S, result->values, result->vectors);
}

void fitConicResidual(std::int32_t n, const double* points, const double* conic, double* residuals) {
    for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
        const double x = points[2 * i];
        const double y = points[2 * i + 1];
        residuals[i] = conic[0] * x * x + conic[1] * x * y + conic[2] * y * y + conic[3] * x + conic[4] * y + conic[5];
    }
}

}  // namespace zelm
