// Eigenvalues and eigenvectors of a symmetric matrix by cyclic Jacobi rotations.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "heapSort.h"
#include "smallBuffer.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

using Index = std::ptrdiff_t;

constexpr int kMaxSweeps = 100;
constexpr double kStopShare = 1e-16;   // of half the squared norm: one last sweep has been made below it
constexpr double kStartShare = 1e-32;  // of half the squared norm: nothing is left to rotate
constexpr Index kMaxOrderInPlace = 10;
constexpr std::size_t kInPlace = (2 * kMaxOrderInPlace + 1) * kMaxOrderInPlace;
constexpr double kMinEntry = 1e-20;  // absolute: docs/decisions.md#jacobi-entry

// Two entries side by side, by the vector types of gcc and clang.
using Lanes = double __attribute__((vector_size(2 * sizeof(double))));
constexpr Index kLanes = 2;

Index strideOf(Index n) {
    return (n + kLanes - 1) / kLanes * kLanes;
}

// Turns row x and row y of `stride` entries, which is a multiple of kLanes.
inline void rotateRows(Index stride, double c, double s, double* x, double* y) {
    const Lanes cosine = {c, c};
    const Lanes sine = {s, s};
    for (Index r = 0; r < stride; r += kLanes) {
        Lanes u;
        Lanes v;
        std::memcpy(&u, x + r, sizeof u);
        std::memcpy(&v, y + r, sizeof v);
        const Lanes turnedU = cosine * u - sine * v;
        const Lanes turnedV = sine * u + cosine * v;
        std::memcpy(x + r, &turnedU, sizeof u);
        std::memcpy(y + r, &turnedV, sizeof v);
    }
}

// The matrix that becomes diagonal, both triangles, and the rows that become its eigenvectors (may be null). Rows begin
// `stride` entries apart; what is behind their n entries is anything finite. kSize: n where the compiler is to know it,
// or 0.
template <Index kSize>
struct Rotations {
    Index size;
    double* a;
    double* vectors;

    [[nodiscard]] Index order() const { return kSize > 0 ? kSize : size; }
    [[nodiscard]] Index stride() const { return strideOf(order()); }
    double& at(Index i, Index j) const { return a[i * stride() + j]; }

    [[nodiscard]] double offDiagonal() const {
        double sum = 0.0;
        for (Index i = 0; i < order(); ++i) {
            for (Index j = i + 1; j < order(); ++j) {
                sum += at(i, j) * at(i, j);
            }
        }
        return sum;
    }
    [[nodiscard]] double halfSquaredNorm() const {
        double diagonal = 0.0;
        for (Index i = 0; i < order(); ++i) {
            diagonal += at(i, i) * at(i, i);
        }
        return diagonal / 2.0 + offDiagonal();
    }

    // Where squares overflow, a diagonal matrix is still decomposed as it stands.
    [[nodiscard]] bool isFiniteDiagonal() const {
        for (Index i = 0; i < order(); ++i) {
            if (!std::isfinite(at(i, i))) {
                return false;
            }
        }
        return offDiagonal() == 0.0;
    }

    // Makes entry (p, q) zero.
    void annihilate(Index p, Index q) const {
        const double apq = at(p, q);
        const double theta = (at(q, q) - at(p, p)) / (2.0 * apq);
        const double root = std::sqrt(theta * theta + 1.0);
        // Of the sign of theta, zeros of either sign counting as positive; no branch, which would be hard to predict.
        const double t = std::copysign(1.0, theta + 0.0) / (std::fabs(theta) + root);
        const double c = 1.0 / std::sqrt(t * t + 1.0);
        const double s = t * c;
        const double app = at(p, p) - t * apq;
        const double aqq = at(q, q) + t * apq;
        rotateRows(stride(), c, s, &at(p, 0), &at(q, 0));
        at(p, p) = app;
        at(q, q) = aqq;
        at(p, q) = at(q, p) = 0.0;
        for (Index r = 0; r < order(); ++r) {
            at(r, p) = at(p, r);
            at(r, q) = at(q, r);
        }
        if (vectors != nullptr) {
            rotateRows(stride(), c, s, vectors + p * stride(), vectors + q * stride());
        }
    }

    void sweep() const {
        for (Index p = 0; p < order() - 1; ++p) {
            for (Index q = p + 1; q < order(); ++q) {
                if (std::fabs(at(p, q)) >= kMinEntry) {
                    annihilate(p, q);
                }
            }
        }
    }

    [[nodiscard]] std::int32_t diagonalise() const {
        const double whole = halfSquaredNorm();
        if (!std::isfinite(whole)) {
            return isFiniteDiagonal() ? ZELM_OK : ZELM_ERR_EIGEN_NOT_CONVERGED;
        }
        for (int sweeps = 1; sweeps <= kMaxSweeps; ++sweeps) {
            const double off = offDiagonal();
            // Deliberately strict: the zero matrix, which has no axes, is refused in the end.
            if (off < kStartShare * whole) {
                return ZELM_OK;
            }
            sweep();
            if (off < kStopShare * whole) {
                return ZELM_OK;
            }
        }
        return ZELM_ERR_EIGEN_NOT_CONVERGED;
    }
};

std::int32_t diagonalise(Index n, double* a, double* vectors) {
    switch (n) {  // the orders of the fits of lines and planes, conics, and homographies
        case 2:
            return Rotations<2>{n, a, vectors}.diagonalise();
        case 3:
            return Rotations<3>{n, a, vectors}.diagonalise();
        case 6:
            return Rotations<6>{n, a, vectors}.diagonalise();
        case 9:
            return Rotations<9>{n, a, vectors}.diagonalise();
        default:
            return Rotations<0>{n, a, vectors}.diagonalise();
    }
}

// Both triangles from the upper one.
void spread(Index n, const double* upper, double* a) {
    const Index stride = strideOf(n);
    for (Index i = 0; i < n; ++i) {
        for (Index j = i; j < n; ++j) {
            a[i * stride + j] = a[j * stride + i] = upper[i * n + j];
        }
        std::fill(a + i * stride + n, a + (i + 1) * stride, 0.0);
    }
}

void identity(Index n, double* vectors) {
    const Index stride = strideOf(n);
    std::fill_n(vectors, n * stride, 0.0);
    for (Index i = 0; i < n; ++i) {
        vectors[i * stride + i] = 1.0;
    }
}

}  // namespace
}  // namespace zelm

int32_t zelmMatJacobiEigen(int32_t iN, const double* daA, double* daValues, double* daVectors) {
    using zelm::SmallBuffer;
    if (iN < 1 || (daValues == nullptr && daVectors == nullptr)) {
        return ZELM_OK;
    }
    const std::ptrdiff_t n = iN;
    const std::ptrdiff_t stride = zelm::strideOf(n);
    const auto count = static_cast<std::size_t>(n);
    // The matrix, the vectors if wanted, and the values.
    SmallBuffer<double, zelm::kInPlace> work(count * (daVectors != nullptr ? 2 : 1) + 1,
                                             static_cast<std::size_t>(stride));
    SmallBuffer<std::int32_t, zelm::kMaxOrderInPlace> index(count);
    if (!work.ok() || !index.ok()) {
        return ZELM_ERR_MEMORY;
    }
    double* const a = work.data();
    double* const sorted = a + n * stride;
    double* const vectors = daVectors != nullptr ? sorted + stride : nullptr;
    zelm::spread(n, daA, a);
    if (daVectors != nullptr) {
        zelm::identity(n, vectors);
    }
    const int32_t status = zelm::diagonalise(n, a, vectors);
    for (std::int32_t i = 0; i < iN; ++i) {
        index[static_cast<std::size_t>(i)] = i;
        sorted[i] = a[i * stride + i];
    }
    if (status >= 0) {
        zelm::innerHeapSortDescending(iN, sorted, index.data());
        if (daValues != nullptr) {
            std::copy_n(sorted, n, daValues);
        }
    }
    for (std::size_t j = 0; daVectors != nullptr && j < count; ++j) {
        std::copy_n(vectors + index[j] * stride, n, daVectors + j * count);
    }
    return status;
}
