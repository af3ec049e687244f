// Eigenvalues and eigenvectors of a symmetric matrix by cyclic Jacobi rotations.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "heapSort.h"
#include "workBuffer.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

using Index = std::ptrdiff_t;

constexpr int kMaxSweeps = 100;
constexpr double kStopShare = 1e-16;   // of half the squared norm: one last sweep has been made below it
constexpr double kStartShare = 1e-32;  // of half the squared norm: nothing is left to rotate
constexpr double kMinEntry = 1e-20;    // absolute: docs/decisions.md#jacobi-entry

// The upper triangle of the matrix that becomes diagonal, and the rows that become its eigenvectors (may be null).
struct Rotations {
    Index n;
    double* a;
    double* vectors;

    double& at(Index i, Index j) const { return a[i * n + j]; }

    [[nodiscard]] double offDiagonal() const {
        double sum = 0.0;
        for (Index i = 0; i < n; ++i) {
            for (Index j = i + 1; j < n; ++j) {
                sum += at(i, j) * at(i, j);
            }
        }
        return sum;
    }
    [[nodiscard]] double halfSquaredNorm() const {
        double diagonal = 0.0;
        for (Index i = 0; i < n; ++i) {
            diagonal += at(i, i) * at(i, i);
        }
        return diagonal / 2.0 + offDiagonal();
    }

    // Where squares overflow, a diagonal matrix is still decomposed as it stands.
    [[nodiscard]] bool isFiniteDiagonal() const {
        for (Index i = 0; i < n; ++i) {
            if (!std::isfinite(at(i, i))) {
                return false;
            }
        }
        return offDiagonal() == 0.0;
    }

    static void rotate(double c, double s, double& x, double& y) {
        const double rotated = c * x - s * y;
        y = s * x + c * y;
        x = rotated;
    }

    // Makes entry (p, q) zero.
    void annihilate(Index p, Index q) const {
        const double apq = at(p, q);
        const double theta = (at(q, q) - at(p, p)) / (2.0 * apq);
        const double root = std::sqrt(theta * theta + 1.0);
        const double t = theta >= 0.0 ? 1.0 / (theta + root) : 1.0 / (theta - root);
        const double c = 1.0 / std::sqrt(t * t + 1.0);
        const double s = t * c;
        at(p, p) = at(p, p) - t * apq;
        at(q, q) = at(q, q) + t * apq;
        at(p, q) = 0.0;
        for (Index r = 0; r < p; ++r) {
            rotate(c, s, at(r, p), at(r, q));
        }
        for (Index r = p + 1; r < q; ++r) {
            rotate(c, s, at(p, r), at(r, q));
        }
        for (Index r = q + 1; r < n; ++r) {
            rotate(c, s, at(p, r), at(q, r));
        }
        if (vectors != nullptr) {
            for (Index r = 0; r < n; ++r) {
                rotate(c, s, vectors[p * n + r], vectors[q * n + r]);
            }
        }
    }

    void sweep() const {
        for (Index p = 0; p < n - 1; ++p) {
            for (Index q = p + 1; q < n; ++q) {
                if (std::fabs(at(p, q)) >= kMinEntry) {
                    annihilate(p, q);
                }
            }
        }
    }

    [[nodiscard]] std::int32_t diagonalise() const {
        const double size = halfSquaredNorm();
        if (!std::isfinite(size)) {
            return isFiniteDiagonal() ? ZELM_OK : ZELM_ERR_EIGEN_NOT_CONVERGED;
        }
        for (int sweeps = 1; sweeps <= kMaxSweeps; ++sweeps) {
            const double off = offDiagonal();
            // Deliberately strict: the zero matrix, which has no axes, is refused in the end.
            if (off < kStartShare * size) {
                return ZELM_OK;
            }
            sweep();
            if (off < kStopShare * size) {
                return ZELM_OK;
            }
        }
        return ZELM_ERR_EIGEN_NOT_CONVERGED;
    }
};

// Row j becomes the old row index[j]; scratch holds n x n.
void permuteRows(Index n, const std::int32_t* index, double* rows, double* scratch) {
    std::copy_n(rows, n * n, scratch);
    for (Index j = 0; j < n; ++j) {
        std::copy_n(scratch + index[j] * n, n, rows + j * n);
    }
}

}  // namespace
}  // namespace zelm

int32_t zelmMatJacobiEigen(int32_t iN, const double* daA, double* daValues, double* daVectors) {
    using zelm::WorkBuffer;
    if (iN < 1 || (daValues == nullptr && daVectors == nullptr)) {
        return ZELM_OK;
    }
    const auto n = static_cast<std::size_t>(iN);
    WorkBuffer<double> work(n + (daValues == nullptr ? 1 : 0), n);
    WorkBuffer<std::int32_t> index;
    if (daVectors != nullptr) {
        index = WorkBuffer<std::int32_t>(n);
    }
    if (!work.ok() || (daVectors != nullptr && !index.ok())) {
        return ZELM_ERR_MEMORY;
    }
    std::copy_n(daA, n * n, work.data());
    if (daVectors != nullptr) {
        zelmMatDiagonal(1.0, iN, daVectors);
    }
    if (const int32_t status = zelm::Rotations{iN, work.data(), daVectors}.diagonalise(); status < 0) {
        return status;
    }
    double* const values = daValues != nullptr ? daValues : work.data() + n * n;
    for (std::size_t i = 0; i < n; ++i) {
        values[i] = work[i * n + i];
    }
    for (std::size_t i = 0; i < index.size(); ++i) {
        index[i] = static_cast<std::int32_t>(i);
    }
    zelm::innerHeapSortDescending(iN, values, index.data());
    if (daVectors != nullptr) {
        zelm::permuteRows(iN, index.data(), daVectors, work.data());
    }
    return ZELM_OK;
}
