// What the conic fits share: the scatter matrix of the monomials and the algebraic distance.
//
// A conic is A x^2 + B x y + C y^2 + D x + E y + F = 0, its coefficients in that order; z = (x^2, x y, y^2, x, y, 1).
#ifndef ZELM_CONIC_SCATTER_H
#define ZELM_CONIC_SCATTER_H

#include <cstddef>
#include <cstdint>

namespace zelm {

constexpr size_t kConicTerms = 6;
constexpr std::int32_t kConicMinPoints = 5;

// S = sum w z z^T over the points whose weight is not exactly 0 (6 x 6). Returns ZELM_OK, or ZELM_ERR_FIT_DATA when
// fewer than 5 points remain.
std::int32_t conicScatter(std::int32_t n, const double* weights, const double* points, double* S);

// The signed algebraic distance of each point; a ZelmFitResidualFn.
void fitConicResidual(std::int32_t n, const double* points, const double* conic, double* residuals);

}  // namespace zelm

#endif
