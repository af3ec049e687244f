// Small symmetric positive definite systems of a size known beforehand.
#ifndef ZELM_MEASURE_CHOLESKY_H
#define ZELM_MEASURE_CHOLESKY_H

#include <array>
#include <cmath>
#include <cstddef>

namespace zelm::measure {

template <std::size_t n>
using Vector = std::array<double, n>;
template <std::size_t n>
using Matrix = std::array<Vector<n>, n>;  // rows

// Factors N = U' U in place, given its upper triangle; whether it is positive definite, to 1e-9 of its diagonal.
template <std::size_t n>
bool factor(Matrix<n>& N) {
    constexpr double kMinPivot = 1e-9;  // of the diagonal element that it comes from
    for (std::size_t j = 0; j < n; ++j) {
        const double original = N[j][j];
        for (std::size_t k = 0; k < j; ++k) {
            N[j][j] -= N[k][j] * N[k][j];
        }
        if (!(N[j][j] > kMinPivot * original)) {
            return false;
        }
        N[j][j] = std::sqrt(N[j][j]);
        for (std::size_t i = j + 1; i < n; ++i) {
            for (std::size_t k = 0; k < j; ++k) {
                N[j][i] -= N[k][j] * N[k][i];
            }
            N[j][i] /= N[j][j];
        }
    }
    return true;
}

// Solves U' U x = right.
template <std::size_t n>
Vector<n> solve(const Matrix<n>& U, const Vector<n>& right) {
    Vector<n> x = right;
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t k = 0; k < i; ++k) {
            x[i] -= U[k][i] * x[k];
        }
        x[i] /= U[i][i];
    }
    for (std::size_t i = n; i-- > 0;) {
        for (std::size_t k = i + 1; k < n; ++k) {
            x[i] -= U[i][k] * x[k];
        }
        x[i] /= U[i][i];
    }
    return x;
}

}  // namespace zelm::measure

#endif
