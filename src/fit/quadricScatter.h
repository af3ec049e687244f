// What the quadric fits share: the monomials, their scatter matrix, the algebraic distance and the invariants of the
// quadratic part.
//
// A quadric is p0 x^2 + p1 y^2 + p2 z^2 + p3 x y + p4 x z + p5 y z + p6 x + p7 y + p8 z + p9 = 0.
#ifndef ZELM_QUADRIC_SCATTER_H
#define ZELM_QUADRIC_SCATTER_H

#include <cstddef>
#include <cstdint>

#include "monomialScatter.h"

namespace zelm {

constexpr size_t kQuadricTerms = 10;
constexpr std::int32_t kQuadricMinPoints = 9;

struct QuadricTerms {
    static constexpr size_t kDim = 3;
    static constexpr size_t kTerms = kQuadricTerms;
    static constexpr std::int32_t kMinPoints = kQuadricMinPoints;
    static void monomials(const double* point, double* z);
};

using QuadricScatter = MonomialScatter<kQuadricTerms>;

// The signed algebraic distance of each point; a ZelmFitResidualFn.
void fitQuadricResidual(std::int32_t n, const double* points, const double* quadric, double* residuals);

// Of the quadratic part Q3 = [p0, p3/2, p4/2; p3/2, p1, p5/2; p4/2, p5/2, p2]: its eigenvalues are the roots of
// L^3 - trace L^2 + minors L - determinant.
struct QuadricInvariants {
    double trace;
    double minors;  // sum of the principal minors of order two
    double determinant;
};

QuadricInvariants quadricInvariants(const double* quadric);

// Q3, row by row.
void quadraticPart(const double* quadric, double* Q3);

}  // namespace zelm

#endif
