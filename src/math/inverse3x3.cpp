// The inverse of a 3 x 3 matrix by its adjugate.
#include <cmath>
#include <cstddef>

#include "mathDegenerate.h"
#include "zelm/math.h"

namespace {

// Cofactor of entry (i, j). Taking rows and columns in cyclic order gives it its sign.
double cofactor(const double* m, std::size_t i, std::size_t j) {
    const std::size_t r1 = (i + 1) % 3;
    const std::size_t r2 = (i + 2) % 3;
    const std::size_t c1 = (j + 1) % 3;
    const std::size_t c2 = (j + 2) % 3;
    return m[r1 * 3 + c1] * m[r2 * 3 + c2] - m[r1 * 3 + c2] * m[r2 * 3 + c1];
}

// The rule of Sarrus (1833).
double determinant(const double* m) {
    return m[0] * m[4] * m[8] + m[1] * m[5] * m[6] + m[2] * m[3] * m[7] - m[2] * m[4] * m[6] - m[1] * m[3] * m[8] -
           m[0] * m[5] * m[7];
}

}  // namespace

void zelmMathInvMatrixOfSyn3X3(const double* daM, double* daOut) {
    const double det = determinant(daM);
    if (!zelm::isDivisor(std::fabs(det))) {
        return;
    }
    double inverse[9];
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            inverse[i * 3 + j] = cofactor(daM, j, i) / det;
        }
    }
    for (std::size_t i = 0; i < 9; ++i) {
        daOut[i] = inverse[i];
    }
}
