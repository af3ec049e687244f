// A plain row-major matrix with independent extended-precision checks, and the matrix classes that decompositions are
// proven on.
#ifndef ZELM_TEST_DENSE_MATRIX_H
#define ZELM_TEST_DENSE_MATRIX_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "random.h"

namespace zelmtest {

struct Matrix {
    std::size_t rows = 0;
    std::size_t cols = 0;
    std::vector<double> entries;

    Matrix() = default;
    Matrix(std::size_t r, std::size_t c, double value = 0.0) : rows(r), cols(c), entries(r * c, value) {}
    Matrix(std::size_t r, std::size_t c, std::vector<double> values) : rows(r), cols(c), entries(std::move(values)) {}

    double& operator()(std::size_t i, std::size_t j) { return entries[i * cols + j]; }
    double operator()(std::size_t i, std::size_t j) const { return entries[i * cols + j]; }
    double* data() { return entries.data(); }
    [[nodiscard]] const double* data() const { return entries.data(); }
    [[nodiscard]] std::int32_t m() const { return static_cast<std::int32_t>(rows); }
    [[nodiscard]] std::int32_t n() const { return static_cast<std::int32_t>(cols); }
};

inline Matrix identity(std::size_t n) {
    Matrix result(n, n);
    for (std::size_t i = 0; i < n; ++i) {
        result(i, i) = 1.0;
    }
    return result;
}

inline Matrix transposed(const Matrix& a) {
    Matrix result(a.cols, a.rows);
    for (std::size_t i = 0; i < a.rows; ++i) {
        for (std::size_t j = 0; j < a.cols; ++j) {
            result(j, i) = a(i, j);
        }
    }
    return result;
}

// A * B, summed in extended precision and rounded once.
inline Matrix product(const Matrix& a, const Matrix& b) {
    Matrix result(a.rows, b.cols);
    for (std::size_t i = 0; i < a.rows; ++i) {
        for (std::size_t j = 0; j < b.cols; ++j) {
            long double sum = 0.0L;
            for (std::size_t k = 0; k < a.cols; ++k) {
                sum += static_cast<long double>(a(i, k)) * b(k, j);
            }
            result(i, j) = static_cast<double>(sum);
        }
    }
    return result;
}

inline double frobeniusNorm(const Matrix& a) {
    double largest = 0.0;
    for (const double entry : a.entries) {
        largest = std::fmax(largest, std::fabs(entry));
    }
    if (largest == 0.0) {
        return 0.0;
    }
    long double sum = 0.0L;
    for (const double entry : a.entries) {
        const long double scaled = static_cast<long double>(entry) / largest;
        sum += scaled * scaled;
    }
    return largest * static_cast<double>(std::sqrt(sum));
}

// Frobenius norm of a - b over that of b.
inline double relativeDifference(const Matrix& a, const Matrix& b) {
    Matrix difference = a;
    for (std::size_t i = 0; i < difference.entries.size(); ++i) {
        difference.entries[i] -= b.entries[i];
    }
    const double size = frobeniusNorm(b);
    return frobeniusNorm(difference) / (size > 0.0 ? size : 1.0);
}

// Largest entry of |Q^T Q - I|.
inline double columnOrthogonalityError(const Matrix& q) {
    const Matrix gram = product(transposed(q), q);
    double worst = 0.0;
    for (std::size_t i = 0; i < gram.rows; ++i) {
        for (std::size_t j = 0; j < gram.cols; ++j) {
            const double error = std::fabs(gram(i, j) - (i == j ? 1.0 : 0.0));
            worst = error <= worst ? worst : error;  // a NaN stays the worst
        }
    }
    return worst;
}

inline Matrix randomMatrix(Random& random, std::size_t rows, std::size_t cols) {
    Matrix result(rows, cols);
    for (double& entry : result.entries) {
        entry = random.normal();
    }
    return result;
}

// rows x cols (rows >= cols) with orthonormal columns, by Gram-Schmidt done three times over.
inline Matrix randomOrthonormal(Random& random, std::size_t rows, std::size_t cols) {
    Matrix q = randomMatrix(random, rows, cols);
    const auto dot = [&](std::size_t i, std::size_t j) {
        long double sum = 0.0L;
        for (std::size_t k = 0; k < rows; ++k) {
            sum += static_cast<long double>(q(k, i)) * q(k, j);
        }
        return static_cast<double>(sum);
    };
    for (std::size_t j = 0; j < cols; ++j) {
        for (int pass = 0; pass < 3; ++pass) {
            for (std::size_t i = 0; i < j; ++i) {
                const double share = dot(i, j);
                for (std::size_t k = 0; k < rows; ++k) {
                    q(k, j) -= share * q(k, i);
                }
            }
            const double length = std::sqrt(dot(j, j));
            for (std::size_t k = 0; k < rows; ++k) {
                q(k, j) /= length;
            }
        }
    }
    return q;
}

inline Matrix hilbert(std::size_t rows, std::size_t cols) {
    Matrix result(rows, cols);
    for (std::size_t i = 0; i < rows; ++i) {
        for (std::size_t j = 0; j < cols; ++j) {
            result(i, j) = 1.0 / static_cast<double>(i + j + 1);
        }
    }
    return result;
}

// Left * diag(values) * Right^T with random orthonormal factors.
inline Matrix withSingularValues(Random& random, std::size_t rows, const std::vector<double>& values) {
    Matrix left = randomOrthonormal(random, rows, values.size());
    const Matrix right = randomOrthonormal(random, values.size(), values.size());
    for (std::size_t i = 0; i < rows; ++i) {
        for (std::size_t j = 0; j < values.size(); ++j) {
            left(i, j) *= values[j];
        }
    }
    return product(left, transposed(right));
}

// Q^T * diag(values) * Q with a random orthogonal Q; exactly symmetric.
inline Matrix withEigenvalues(Random& random, const std::vector<double>& values) {
    const std::size_t n = values.size();
    const Matrix q = randomOrthonormal(random, n, n);
    Matrix scaled = q;
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            scaled(i, j) *= values[i];
        }
    }
    Matrix result = product(transposed(q), scaled);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            result(i, j) = result(j, i);
        }
    }
    return result;
}

// Spectra that decompositions are proven on, n values each.
enum class Spectrum { kSpread, kGraded, kNearlySingular, kTied, kRepeated, kClustered };

inline std::vector<double> spectrumOf(Spectrum kind, std::size_t n, Random& random) {
    std::vector<double> values(n);
    for (std::size_t i = 0; i < n; ++i) {
        const auto k = static_cast<double>(i);
        switch (kind) {
            case Spectrum::kSpread:
                values[i] = k + 1.0 + random.uniform(0.0, 0.5);
                break;
            case Spectrum::kGraded:
                values[i] = std::pow(10.0, -12.0 * k / static_cast<double>(n));
                break;
            case Spectrum::kNearlySingular:
                values[i] = i == 0 ? 1e-14 : k + 1.0;
                break;
            case Spectrum::kTied:
                values[i] = 1.0;
                break;
            case Spectrum::kRepeated:
                values[i] = 1.0 + static_cast<double>(i / 2);
                break;
            case Spectrum::kClustered:
                values[i] = 1.0 + static_cast<double>(i % 2) + 1e-9 * random.normal();
                break;
        }
    }
    return values;
}

inline std::string nameOf(Spectrum kind) {
    const char* const names[] = {"spread", "graded", "nearly singular", "tied", "repeated", "clustered"};
    return names[static_cast<std::size_t>(kind)];
}

}  // namespace zelmtest

#endif
