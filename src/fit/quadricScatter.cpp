#include "quadricScatter.h"

#include <algorithm>

namespace zelm {

void QuadricTerms::monomials(const double* point, double* z) {
    const double x = point[0];
    const double y = point[1];
    const double w = point[2];
    z[0] = x * x;
    z[1] = y * y;
    z[2] = w * w;
    z[3] = x * y;
    z[4] = x * w;
    z[5] = y * w;
    z[6] = x;
    z[7] = y;
    z[8] = w;
    z[9] = 1.0;
}

void fitQuadricResidual(std::int32_t n, const double* points, const double* quadric, double* residuals) {
    for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
        double z[kQuadricTerms];
        QuadricTerms::monomials(points + 3 * i, z);
        double sum = 0.0;
        for (size_t k = 0; k < kQuadricTerms; ++k) {
            sum += quadric[k] * z[k];
        }
        residuals[i] = sum;
    }
}

QuadricInvariants quadricInvariants(const double* p) {
    return {
        p[0] + p[1] + p[2], p[0] * p[1] + p[0] * p[2] + p[1] * p[2] - (p[3] * p[3] + p[4] * p[4] + p[5] * p[5]) / 4.0,
        p[0] * p[1] * p[2] + (p[3] * p[4] * p[5] - p[0] * p[5] * p[5] - p[1] * p[4] * p[4] - p[2] * p[3] * p[3]) / 4.0};
}

void quadraticPart(const double* p, double* Q3) {
    const double rows[9] = {p[0], p[3] / 2.0, p[4] / 2.0, p[3] / 2.0, p[1], p[5] / 2.0, p[4] / 2.0, p[5] / 2.0, p[2]};
    std::copy_n(rows, 9, Q3);
}

}  // namespace zelm
