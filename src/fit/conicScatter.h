// What the conic fits share: the monomials, their scatter matrix and the algebraic distance.
//
// A conic is A x^2 + B x y + C y^2 + D x + E y + F = 0, its coefficients in that order.
#ifndef ZELM_CONIC_SCATTER_H
#define ZELM_CONIC_SCATTER_H

#include <cstddef>
#include <cstdint>

#include "monomialScatter.h"

namespace zelm {

constexpr size_t kConicTerms = 6;
constexpr std::int32_t kConicMinPoints = 5;

struct ConicTerms {
    static constexpr size_t kDim = 2;
    static constexpr size_t kTerms = kConicTerms;
    static constexpr std::int32_t kMinPoints = kConicMinPoints;
    static void monomials(const double* point, double* z) {
        const double x = point[0];
        const double y = point[1];
        z[0] = x * x;
        z[1] = x * y;
        z[2] = y * y;
        z[3] = x;
        z[4] = y;
        z[5] = 1.0;
    }
};

using ConicScatter = MonomialScatter<kConicTerms>;

// The signed algebraic distance of each point; a ZelmFitResidualFn.
void fitConicResidual(std::int32_t n, const double* points, const double* conic, double* residuals);

}  // namespace zelm

#endif
