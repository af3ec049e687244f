// The decomposition against its model: the library knows the size of small matrices and branches less, and must give
// the same bits.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "random.h"
#include "svd.h"
#include "svdModel.h"

namespace {

using zelmtest::Random;

// Singular values, vectors and work memory, all of them.
using Block = std::vector<double>;

void expectModel(std::ptrdiff_t m, std::ptrdiff_t n, const Block& a, bool wantLeft, bool wantRight) {
    const auto cols = static_cast<std::size_t>(n);
    Block u[2] = {a, a};
    Block w[2] = {Block(cols, 0.0), Block(cols, 0.0)};
    Block v[2] = {Block(cols * cols, 0.0), Block(cols * cols, 0.0)};
    Block work(2 * cols);
    const bool expected = zelmtest::svdmodel::decompose(m, n, u[0].data(), wantLeft, w[0].data(),
                                                        wantRight ? v[0].data() : nullptr, work.data());
    const bool actual =
        zelm::innerSVD(m, n, u[1].data(), wantLeft, w[1].data(), wantRight ? v[1].data() : nullptr, work.data());
    ASSERT_EQ(actual, expected);
    if (expected) {
        const auto same = [](const Block& x, const Block& y) {
            return std::memcmp(x.data(), y.data(), x.size() * sizeof(double)) == 0;
        };
        ASSERT_TRUE(same(u[0], u[1]));
        ASSERT_TRUE(same(w[0], w[1]));
        ASSERT_TRUE(same(v[0], v[1]));
    }
}

TEST(SvdModel, EverySizeGivesTheSameBits) {
    Random random(81);
    for (int trial = 0; trial < 6000; ++trial) {
        const std::ptrdiff_t n = trial % 2 == 0 ? 3 : random.integer(1, 7);
        const std::ptrdiff_t m = trial % 4 == 0 ? n : n + random.integer(0, 3);
        Block a(static_cast<std::size_t>(m * n));
        const double scale = trial % 5 == 0 ? std::pow(10.0, random.integer(-300, 300)) : 1.0;
        for (double& entry : a) {
            entry = trial % 7 == 0 ? random.integer(-2, 2) : random.normal() * std::pow(10.0, random.integer(-5, 5));
            entry *= scale;
        }
        if (trial % 500 == 3) {
            a[0] = trial % 1000 == 3 ? std::numeric_limits<double>::quiet_NaN() : HUGE_VAL;
        }
        expectModel(m, n, a, trial % 3 != 0, trial % 3 != 1);
    }
}

}  // namespace
