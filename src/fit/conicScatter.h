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

// The scatter matrix S = sum w z z^T and its eigen decomposition, S = vectors^T diag(values) vectors.
struct ConicScatter {
    double S[kConicTerms * kConicTerms];
    double values[kConicTerms];                 // descending
    double vectors[kConicTerms * kConicTerms];  // unit vectors as rows
};

// Points whose weight is exactly 0 do not take part. Returns ZELM_OK, ZELM_ERR_FIT_DATA when fewer than 5 points
// remain, or what the eigen-solver returned.
std::int32_t conicScatter(std::int32_t n, const double* weights, const double* points, ConicScatter* result);

// The signed algebraic distance of each point; a ZelmFitResidualFn.
void fitConicResidual(std::int32_t n, const double* points, const double* conic, double* residuals);

}  // namespace zelm

#endif
