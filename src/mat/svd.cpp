// Singular value decomposition after Golub and Reinsch: Householder reduction to bidiagonal form, then implicitly
// shifted QR steps on it.
#include "svd.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "heapSort.h"
#include "smallBuffer.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

using Index = std::ptrdiff_t;

constexpr std::size_t kMaxOrderInPlace = 10;
constexpr int kMaxPasses = 30;                                                // QR passes for one singular value
constexpr double kStallShare = 2.0 * std::numeric_limits<double>::epsilon();  // of the norm
// Binary exponent of the largest entry beyond which a matrix is scaled: squares stay far from either end, and what is
// lost of small entries is less than 2^-1000 of the largest.
constexpr int kMaxExponent = 400;
// A rest of a column or row below this, less than 2^-500 of the largest entry after that scaling, counts as zero: its
// reflection would be made of numbers near the end of the range, which have few digits left. One entry alone has all of
// them.
constexpr double kVanishing = 0x1p-960;

bool vanishes(double rest, double first) {
    return rest == 0.0 || (rest < kVanishing && rest != std::fabs(first));
}

// Of numbers that are hard to predict: no branch but for the zero.
double hypotenuse(double a, double b) {
    const double x = std::fabs(a);
    const double y = std::fabs(b);
    const double larger = x > y ? x : y;
    const double smaller = x > y ? y : x;
    const double share = smaller / larger;
    return larger == 0.0 ? 0.0 : larger * std::sqrt(1.0 + share * share);
}

// Zeros of either sign count as positive.
double withSignOf(double magnitude, double f) {
    return std::copysign(magnitude, f + 0.0);
}

// The rotation that turns (f, h) into (length, 0); keeps the present one when both are zero. Rotations of columns
// multiply by the reciprocal of the length where those of rows divide by it. That order is kept: whether the last
// superdiagonal entry counts as negligible after a step hangs on its last bits, and one step more or less may turn the
// signs of a pair of singular vectors.
struct Rotation {
    double c = 1.0;
    double s = 1.0;

    double turn(double f, double h) {
        const double length = hypotenuse(f, h);
        if (length != 0.0) {
            c = f / length;
            s = h / length;
        }
        return length;
    }
    double turnByReciprocal(double f, double h) {
        const double length = hypotenuse(f, h);
        const double reciprocal = 1.0 / length;
        if (!std::isfinite(reciprocal)) {
            return turn(f, h);
        }
        c = f * reciprocal;
        s = h * reciprocal;
        return length;
    }
    void apply(double& x, double& y) const {
        const double turned = x * c + y * s;
        y = y * c - x * s;
        x = turned;
    }
};

// The size of a matrix, where the compiler is to know it, and any other.
template <Index kRows, Index kCols>
struct FixedSize {
    static constexpr Index m = kRows;
    static constexpr Index n = kCols;
};
struct AnySize {
    Index m;
    Index n;
};

// A = U diag(w) V, in the making. e is the superdiagonal, e[0] = 0. V holds right singular vectors as rows.
template <class Size>
struct Svd : Size {
    using Size::m;
    using Size::n;
    double* u;
    double* w;
    double* v;      // n x n or null
    double* e;      // n
    double* dots;   // n, scratch
    bool wantLeft;  // whether u is to become the left singular vectors
    double anorm = 0.0;

    double& U(Index i, Index j) const { return u[i * n + j]; }
    double& V(Index i, Index j) const { return v[i * n + j]; }

    // dots[j] = sum over rows k in [from, m) of U(k, i) * U(k, j), for j > i.
    void columnDots(Index i, Index from) const {
        std::fill(dots + i + 1, dots + n, 0.0);
        for (Index k = from; k < m; ++k) {
            for (Index j = i + 1; j < n; ++j) {
                dots[j] += U(k, i) * U(k, j);
            }
        }
    }
    // U(k, j) += dots[j] * U(k, i) for rows k in [i, m) and columns j > i.
    void addColumn(Index i) const {
        for (Index k = i; k < m; ++k) {
            for (Index j = i + 1; j < n; ++j) {
                U(k, j) += dots[j] * U(k, i);
            }
        }
    }

    // Clears column i below the diagonal; returns the diagonal entry that takes its place.
    [[nodiscard]] double reflectColumn(Index i) const {
        double scale = 0.0;
        for (Index k = i; k < m; ++k) {
            scale += std::fabs(U(k, i));
        }
        if (vanishes(scale, U(i, i))) {
            for (Index k = i; k < m; ++k) {
                U(k, i) = 0.0;
            }
            return 0.0;
        }
        double s = 0.0;
        for (Index k = i; k < m; ++k) {
            U(k, i) /= scale;
            s += U(k, i) * U(k, i);
        }
        const double f = U(i, i);
        const double g = -withSignOf(std::sqrt(s), f);
        const double h = f * g - s;
        U(i, i) = f - g;
        columnDots(i, i);
        for (Index j = i + 1; j < n; ++j) {
            dots[j] /= h;
        }
        addColumn(i);
        for (Index k = i; k < m; ++k) {
            U(k, i) *= scale;
        }
        return scale * g;
    }

    // Clears row i right of the superdiagonal; returns the superdiagonal entry that takes its place.
    [[nodiscard]] double reflectRow(Index i) const {
        double scale = 0.0;
        for (Index k = i + 1; k < n; ++k) {
            scale += std::fabs(U(i, k));
        }
        if (vanishes(scale, i + 1 < n ? U(i, i + 1) : 0.0)) {
            std::fill(&U(i, 0) + i + 1, &U(i, 0) + n, 0.0);
            return 0.0;
        }
        double s = 0.0;
        for (Index k = i + 1; k < n; ++k) {
            U(i, k) /= scale;
            s += U(i, k) * U(i, k);
        }
        const double f = U(i, i + 1);
        const double g = -withSignOf(std::sqrt(s), f);
        const double h = f * g - s;
        U(i, i + 1) = f - g;
        for (Index k = i + 1; k < n; ++k) {
            dots[k] = U(i, k) / h;
        }
        for (Index j = i + 1; j < m; ++j) {
            double dot = 0.0;
            for (Index k = i + 1; k < n; ++k) {
                dot += U(j, k) * U(i, k);
            }
            for (Index k = i + 1; k < n; ++k) {
                U(j, k) += dot * dots[k];
            }
        }
        for (Index k = i + 1; k < n; ++k) {
            U(i, k) *= scale;
        }
        return scale * g;
    }

    void bidiagonalise() {
        e[0] = 0.0;
        for (Index i = 0; i < n; ++i) {
            w[i] = reflectColumn(i);
            anorm = std::max(anorm, std::fabs(w[i]) + std::fabs(e[i]));
            if (i + 1 < n) {
                e[i + 1] = reflectRow(i);
            }
        }
    }

    // The reflections are applied as I + p p^T / p_first with p = (reflected vector) / g, which stays in range however
    // small the matrix is.
    void accumulateRight() const {
        for (Index i = n - 1; i >= 0; --i) {
            std::fill_n(&V(i, 0), n, 0.0);
            for (Index k = i + 1; k < n; ++k) {
                V(k, i) = 0.0;
            }
            V(i, i) = 1.0;
            if (i + 1 == n || e[i + 1] == 0.0) {
                continue;
            }
            double* const p = dots;
            for (Index k = i + 1; k < n; ++k) {
                p[k] = U(i, k) / e[i + 1];
            }
            for (Index j = i + 1; j < n; ++j) {
                double dot = 0.0;
                for (Index k = i + 1; k < n; ++k) {
                    dot += p[k] * V(j, k);
                }
                for (Index k = i + 1; k < n; ++k) {
                    V(j, k) += dot / p[i + 1] * p[k];
                }
            }
        }
    }

    void accumulateLeft() const {
        for (Index i = n - 1; i >= 0; --i) {
            const double g = w[i];
            std::fill(&U(i, 0) + i + 1, &U(i, 0) + n, 0.0);
            for (Index k = i; k < m; ++k) {
                U(k, i) = g == 0.0 ? 0.0 : U(k, i) / g;
            }
            if (g != 0.0) {
                columnDots(i, i + 1);
                for (Index j = i + 1; j < n; ++j) {
                    dots[j] /= U(i, i);
                }
                addColumn(i);
            }
            U(i, i) += 1.0;
        }
    }

    [[nodiscard]] bool negligible(double x) const { return std::fabs(x) + anorm == anorm; }

    void rotateLeft(const Rotation& rotation, Index i, Index j) const {
        if (wantLeft) {
            for (Index k = 0; k < m; ++k) {
                rotation.apply(U(k, i), U(k, j));
            }
        }
    }
    void rotateRight(const Rotation& rotation, Index i, Index j) const {
        if (v != nullptr) {
            for (Index k = 0; k < n; ++k) {
                rotation.apply(V(i, k), V(j, k));
            }
        }
    }

    // A superdiagonal entry one or two roundings above negligible between tied values, which QR steps change no more:
    // those on (-1 50 10, 50 -1 10, 10 10 -49), 51 times an orthogonal matrix, go on without end.
    [[nodiscard]] bool stalled(Index k) const { return std::fabs(e[k]) <= kStallShare * anorm; }

    // First index of the unreduced block that ends at k.
    [[nodiscard]] Index blockStart(Index k) const {
        for (Index l = k; l > 0; --l) {
            if (negligible(e[l])) {
                return l;
            }
            if (negligible(w[l - 1])) {
                cancelSuperdiagonal(l, k);
                return l;
            }
        }
        return 0;
    }

    // Rotates e[l] away, whose diagonal neighbour w[l - 1] is negligible.
    void cancelSuperdiagonal(Index l, Index k) const {
        double c = 0.0;
        double s = 1.0;
        for (Index i = l; i <= k; ++i) {
            const double f = s * e[i];
            e[i] = c * e[i];
            if (negligible(f)) {
                break;
            }
            const double h = hypotenuse(f, w[i]);
            const double reciprocal = 1.0 / h;
            c = w[i] * reciprocal;
            s = -f * reciprocal;
            w[i] = h;
            rotateLeft({c, s}, l - 1, i);
        }
    }

    // One implicitly shifted QR step on the block [l, k], l < k.
    void qrStep(Index l, Index k) const {
        const double z = w[k];
        const double y = w[k - 1];
        const double g0 = e[k - 1];
        const double h0 = e[k];
        double x = w[l];
        // The eigenvalue of the bottom 2 x 2 minor that lies nearer to its last entry is the shift.
        double f = ((y - z) * (y + z) + (g0 - h0) * (g0 + h0)) / (2.0 * h0 * y);
        f = ((x - z) * (x + z) + h0 * (y / (f + withSignOf(hypotenuse(f, 1.0), f)) - h0)) / x;
        Rotation rotation;
        for (Index j = l; j < k; ++j) {
            double g = rotation.c * e[j + 1];
            double h = rotation.s * e[j + 1];
            double below = w[j + 1];
            e[j] = rotation.turn(f, h);
            f = x;
            rotation.apply(f, g);
            h = below * rotation.s;
            below *= rotation.c;
            rotateRight(rotation, j, j + 1);
            w[j] = rotation.turnByReciprocal(f, h);
            f = g;
            x = below;
            rotation.apply(f, x);
            rotateLeft(rotation, j, j + 1);
        }
        e[l] = 0.0;
        e[k] = f;
        w[k] = x;
    }

    // False when a singular value needs more than kMaxPasses passes.
    [[nodiscard]] bool diagonalise() const {
        for (Index k = n - 1; k >= 0; --k) {
            for (int pass = 1;; ++pass) {
                const Index l = blockStart(k);
                if (l == k) {
                    break;
                }
                if (pass == kMaxPasses) {
                    if (stalled(k)) {
                        break;
                    }
                    return false;
                }
                qrStep(l, k);
            }
            makeNonNegative(k);
        }
        return true;
    }

    void makeNonNegative(Index k) const {
        if (w[k] < 0.0) {
            w[k] = -w[k];
            if (v != nullptr) {
                for (Index j = 0; j < n; ++j) {
                    V(k, j) = -V(k, j);
                }
            }
        }
    }
};

// False when a singular value needs more than kMaxPasses passes.
template <class Size>
bool decompose(Svd<Size> svd) {
    svd.bidiagonalise();
    if (svd.v != nullptr) {
        svd.accumulateRight();
    }
    if (svd.wantLeft) {
        svd.accumulateLeft();
    }
    return svd.diagonalise();
}

// The power of two by which a matrix with this largest entry is multiplied before its decomposition.
int scalingExponent(double largest) {
    if (largest == 0.0) {
        return 0;
    }
    const int exponent = std::ilogb(largest);
    return std::clamp(exponent, -kMaxExponent, kMaxExponent) - exponent;
}

void multiplyByPowerOfTwo(int exponent, Index count, double* entries) {
    const double factor = std::ldexp(1.0, exponent);
    for (Index i = 0; exponent != 0 && i < count; ++i) {
        entries[i] *= factor;
    }
}

// Entry j of a strided vector becomes the old entry index[j]; scratch holds as many entries.
void permute(Index n, const std::int32_t* index, double* entries, Index stride, double* scratch) {
    for (Index j = 0; j < n; ++j) {
        scratch[j] = entries[index[j] * stride];
    }
    for (Index j = 0; j < n; ++j) {
        entries[j * stride] = scratch[j];
    }
}

}  // namespace

bool innerSVD(Index m, Index n, double* u, bool wantLeft, double* w, double* v, double* work) {
    double largest = 0.0;
    for (Index i = 0; i < m * n; ++i) {
        if (!std::isfinite(u[i])) {
            return false;
        }
        largest = std::max(largest, std::fabs(u[i]));
    }
    const int exponent = scalingExponent(largest);
    multiplyByPowerOfTwo(exponent, m * n, u);
    const bool found = m == 3 && n == 3 ? decompose(Svd<FixedSize<3, 3>>{{}, u, w, v, work, work + n, wantLeft})
                                        : decompose(Svd<AnySize>{{m, n}, u, w, v, work, work + n, wantLeft});
    if (!found) {
        return false;
    }
    multiplyByPowerOfTwo(-exponent, n, w);
    return std::all_of(w, w + n, [](double value) { return std::isfinite(value); });
}

void innerSortSVD(Index m, Index n, double* u, double* w, double* v, double* scratch, std::int32_t* index) {
    for (Index j = 0; j < n; ++j) {
        index[j] = static_cast<std::int32_t>(j);
    }
    innerHeapSortDescending(static_cast<std::int32_t>(n), w, index);
    for (Index i = 0; u != nullptr && i < m; ++i) {
        permute(n, index, u + i * n, 1, scratch);
    }
    for (Index i = 0; v != nullptr && i < n; ++i) {
        permute(n, index, v + i, n, scratch);
    }
}

}  // namespace zelm

int32_t zelmMatSVD(int32_t iM, int32_t iN, const double* daA, double* daU, double* daW, double* daV) {
    using zelm::SmallBuffer;
    if (daU == nullptr && daW == nullptr && daV == nullptr) {
        return ZELM_OK;
    }
    if (iM < iN) {
        return ZELM_ERR_SVD_FAILED;
    }
    if (iN < 1) {
        return ZELM_OK;
    }
    const auto m = static_cast<std::size_t>(iM);
    const auto n = static_cast<std::size_t>(iN);
    // superdiagonal, scratch and singular values
    SmallBuffer<double, 3 * zelm::kMaxOrderInPlace> work(daW == nullptr ? 3 : 2, n);
    SmallBuffer<double, zelm::kMaxOrderInPlace * zelm::kMaxOrderInPlace> ownU(daU == nullptr ? m : 0, n);
    double* const u = daU != nullptr ? daU : ownU.data();
    if (!work.ok() || !ownU.ok()) {
        return ZELM_ERR_MEMORY;
    }
    double* const w = daW != nullptr ? daW : work.data() + 2 * n;
    std::copy_n(daA, m * n, u);
    if (!zelm::innerSVD(iM, iN, u, daU != nullptr, w, daV, work.data())) {
        return ZELM_ERR_SVD_FAILED;
    }
    if (daU == nullptr && daV == nullptr) {
        zelm::innerHeapSortDescending(iN, w, nullptr);
        return ZELM_OK;
    }
    SmallBuffer<std::int32_t, zelm::kMaxOrderInPlace> index(n);
    if (!index.ok()) {
        return ZELM_ERR_MEMORY;
    }
    zelm::innerSortSVD(iM, iN, daU, w, daV, work.data(), index.data());
    return ZELM_OK;
}
