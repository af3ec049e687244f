// The rotations written out entry by entry over the upper triangle: the library turns whole rows and must give the same
// bits for every order, with and without eigenvectors.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "heapSort.h"
#include "isClose.h"
#include "random.h"
#include "zelm/mat.h"

namespace {

using zelmtest::hasSameBits;
using zelmtest::Random;

struct Model {
    std::size_t n;
    std::vector<double> a;
    std::vector<double> v;

    double& at(std::size_t i, std::size_t j) { return a[i * n + j]; }

    static void rotate(double c, double s, double& x, double& y) {
        const double rotated = c * x - s * y;
        y = s * x + c * y;
        x = rotated;
    }
    double offDiagonal() {
        double sum = 0.0;
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = i + 1; j < n; ++j) {
                sum += at(i, j) * at(i, j);
            }
        }
        return sum;
    }
    void annihilate(std::size_t p, std::size_t q) {
        const double apq = at(p, q);
        const double theta = (at(q, q) - at(p, p)) / (2.0 * apq);
        const double root = std::sqrt(theta * theta + 1.0);
        const double t = theta >= 0.0 ? 1.0 / (theta + root) : 1.0 / (theta - root);
        const double c = 1.0 / std::sqrt(t * t + 1.0);
        const double s = t * c;
        at(p, p) = at(p, p) - t * apq;
        at(q, q) = at(q, q) + t * apq;
        at(p, q) = 0.0;
        for (std::size_t r = 0; r < n; ++r) {
            if (r < p) {
                rotate(c, s, at(r, p), at(r, q));
            } else if (r > p && r < q) {
                rotate(c, s, at(p, r), at(r, q));
            } else if (r > q) {
                rotate(c, s, at(p, r), at(q, r));
            }
            rotate(c, s, v[p * n + r], v[q * n + r]);
        }
    }
    int32_t diagonalise() {
        double size = 0.0;
        for (std::size_t i = 0; i < n; ++i) {
            size += at(i, i) * at(i, i);
        }
        size = size / 2.0 + offDiagonal();
        if (!std::isfinite(size)) {
            bool finite = offDiagonal() == 0.0;
            for (std::size_t i = 0; i < n; ++i) {
                finite = finite && std::isfinite(at(i, i));
            }
            return finite ? ZELM_OK : ZELM_ERR_EIGEN_NOT_CONVERGED;
        }
        for (int sweeps = 1; sweeps <= 100; ++sweeps) {
            const double off = offDiagonal();
            if (off < 1e-32 * size) {
                return ZELM_OK;
            }
            for (std::size_t p = 0; p + 1 < n; ++p) {
                for (std::size_t q = p + 1; q < n; ++q) {
                    if (std::fabs(at(p, q)) >= 1e-20) {
                        annihilate(p, q);
                    }
                }
            }
            if (off < 1e-16 * size) {
                return ZELM_OK;
            }
        }
        return ZELM_ERR_EIGEN_NOT_CONVERGED;
    }
};

void expectModel(std::size_t n, const std::vector<double>& a) {
    Model model{n, a, std::vector<double>(n * n, 0.0)};
    for (std::size_t i = 0; i < n; ++i) {
        model.v[i * n + i] = 1.0;
    }
    const int32_t status = model.diagonalise();
    std::vector<double> expected(n);
    std::vector<int32_t> index(n);
    for (std::size_t i = 0; i < n; ++i) {
        expected[i] = model.at(i, i);
        index[i] = static_cast<int32_t>(i);
    }
    if (status >= 0) {
        zelm::innerHeapSortDescending(static_cast<int32_t>(n), expected.data(), index.data());
    } else {
        expected.assign(n, 7.25);
    }

    std::vector<double> values(n, 7.25);
    std::vector<double> vectors(n * n, 7.25);
    ASSERT_EQ(zelmMatJacobiEigen(static_cast<int32_t>(n), a.data(), values.data(), vectors.data()), status);
    std::vector<double> alone(n, 7.25);
    ASSERT_EQ(zelmMatJacobiEigen(static_cast<int32_t>(n), a.data(), alone.data(), nullptr), status);
    for (std::size_t j = 0; j < n; ++j) {
        ASSERT_TRUE(hasSameBits(values[j], expected[j])) << n << ": " << j;
        ASSERT_TRUE(hasSameBits(alone[j], expected[j])) << n << ": " << j;
        for (std::size_t r = 0; r < n; ++r) {
            ASSERT_TRUE(hasSameBits(vectors[j * n + r], model.v[static_cast<std::size_t>(index[j]) * n + r])) << n;
        }
    }
}

TEST(JacobiModel, EveryOrderGivesTheSameBits) {
    Random random(61);
    for (std::size_t n = 1; n <= 14; ++n) {
        for (int trial = 0; trial < 40; ++trial) {
            std::vector<double> a(n * n);
            for (double& entry : a) {
                entry = random.normal() * std::pow(10.0, random.integer(-4, 4));
            }
            expectModel(n, a);
        }
    }
}

TEST(JacobiModel, ZerosTiesAndTheEndsOfTheRangeGiveTheSameBits) {
    Random random(62);
    const double inf = std::numeric_limits<double>::infinity();
    for (const std::size_t n : {2U, 3U, 5U, 6U, 9U, 11U}) {
        for (int trial = 0; trial < 60; ++trial) {
            std::vector<double> a(n * n, trial % 3 == 0 ? 1.0 : 0.0);
            for (double& entry : a) {
                if (random.uniform() < 0.4) {
                    entry = random.integer(-2, 2);
                }
            }
            const double scales[] = {1.0, 1e-11, 1e-22, 1e-200, 1e150, 1e160};
            for (double& entry : a) {
                entry *= scales[trial % 6];
            }
            if (trial == 59) {
                a[n - 1] = inf;
            }
            expectModel(n, a);
        }
    }
}

}  // namespace
