// The kernels of each tier against the documented order of every sum, to the bit, between guard pages.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "guardedBuffer.h"
#include "isClose.h"
#include "matKernels.h"
#include "processors.h"
#include "random.h"
#include "zelm/mat.h"

namespace {

using zelm::MatKernels;
using zelmtest::ForcedProcessor;
using zelmtest::Guard;
using zelmtest::GuardedBuffer;
using zelmtest::hasSameBits;
using zelmtest::Processor;
using zelmtest::Random;
using Index = std::ptrdiff_t;

std::vector<const MatKernels*> tiersOfMachine() {
    std::vector<const MatKernels*> tiers = {&zelm::kMatPlainTier};
#if defined(__x86_64__)
    if (zelmtest::machineHasAvx2Tier()) {
        tiers.push_back(&zelm::kMatAvx2Tier);
    }
#endif
    return tiers;
}

// Entries of very different size, so that any other order of a sum shows, and some at the ends of the range.
void fillWildly(Random& random, GuardedBuffer<double>& entries) {
    std::generate(entries.begin(), entries.end(), [&] {
        const double kind = random.uniform();
        if (kind < 0.02) {
            return 0x1p-1060 * random.normal();
        }
        return kind < 0.04 ? 0.0 : random.normal() * std::pow(10.0, random.integer(-8, 8));
    });
}

std::size_t area(Index rows, Index cols) {
    return static_cast<std::size_t>(rows * cols);
}

TEST(MatKernels, ProductsAreSummedInIncreasingOrder) {
    Random random(51);
    for (int trial = 0; trial < 150; ++trial) {
        const Index m = random.integer(1, 19);
        const Index inner = trial % 10 == 0 ? random.integer(120, 300) : random.integer(0, 40);
        const Index p = random.integer(1, 37);
        const Guard guard = trial % 2 == 0 ? Guard::atStart : Guard::atEnd;
        GuardedBuffer<double> a(area(m, inner), guard);
        GuardedBuffer<double> b(area(inner, p), guard);
        fillWildly(random, a);
        fillWildly(random, b);
        // Each of the two as it is, or taken as its transpose.
        const bool turnedA = random.uniform() < 0.5;
        const bool turnedB = random.uniform() < 0.5;
        const zelm::SlantedMatrix A{a.data(), turnedA ? m : 1, turnedA ? 1 : inner};
        const zelm::SlantedMatrix B{b.data(), turnedB ? 1 : p, turnedB ? inner : 1};
        for (const MatKernels* const tier : tiersOfMachine()) {
            GuardedBuffer<double> c(area(m, p), guard);
            std::fill(c.begin(), c.end(), 7.25);
            tier->product(m, p, inner, A, B, c.data());
            for (Index i = 0; i < m; ++i) {
                for (Index j = 0; j < p; ++j) {
                    double sum = 0.0;
                    for (Index k = 0; k < inner; ++k) {
                        sum += A.entries[k * A.step + i * A.across] * B.entries[k * B.step + j * B.across];
                    }
                    ASSERT_TRUE(hasSameBits(c[area(i, p) + static_cast<std::size_t>(j)], sum)) << trial;
                }
            }
        }
    }
}

TEST(MatKernels, RowsAreSubtractedInIncreasingOrder) {
    Random random(52);
    for (int trial = 0; trial < 300; ++trial) {
        const Index cols = random.integer(1, 45);
        const Index count = random.integer(0, 30);
        const Guard guard = trial % 2 == 0 ? Guard::atStart : Guard::atEnd;
        GuardedBuffer<double> factors(static_cast<std::size_t>(count), guard);
        GuardedBuffer<double> rows(area(count, cols), guard);
        GuardedBuffer<double> given(static_cast<std::size_t>(cols), guard);
        fillWildly(random, factors);
        fillWildly(random, rows);
        fillWildly(random, given);
        for (const MatKernels* const tier : tiersOfMachine()) {
            GuardedBuffer<double> target(given.size(), guard);
            std::copy(given.begin(), given.end(), target.begin());
            tier->subtractRows(cols, count, factors.data(), rows.data(), target.data());
            GuardedBuffer<double> single(given.size(), guard);
            std::copy(given.begin(), given.end(), single.begin());
            for (Index k = 0; k < count; ++k) {
                tier->subtractRow(cols, factors[static_cast<std::size_t>(k)], rows.data() + k * cols, single.data());
            }
            for (std::size_t c = 0; c < given.size(); ++c) {
                double rest = given[c];
                for (std::size_t k = 0; k < factors.size(); ++k) {
                    rest -= factors[k] * rows[k * given.size() + c];
                }
                ASSERT_TRUE(hasSameBits(target[c], rest)) << trial;
                ASSERT_TRUE(hasSameBits(single[c], rest)) << trial;
            }
        }
    }
}

TEST(MatKernels, AreThoseOfTheProcessor) {
    {
        const ForcedProcessor forced(zelmtest::plainProcessor());
        EXPECT_EQ(&zelm::matTierOfProcessor(), &zelm::kMatPlainTier);
    }
#if defined(__x86_64__)
    const ForcedProcessor forced{Processor{}};
    EXPECT_EQ(&zelm::matTierOfProcessor(), &zelm::kMatAvx2Tier);
#endif
}

// The elimination written out over a matrix of its own, with the pivots of the documented rule.
std::vector<double> inverseInOrder(std::size_t n, std::vector<double> a) {
    std::vector<double> scale(n, 0.0);
    std::vector<std::size_t> perm(n);
    for (std::size_t i = 0; i < n; ++i) {
        perm[i] = i;
        for (std::size_t j = 0; j < n; ++j) {
            scale[i] = std::max(scale[i], std::fabs(a[i * n + j]));
        }
        scale[i] = 1.0 / scale[i];
    }
    for (std::size_t k = 0; k < n; ++k) {
        std::size_t best = k;
        for (std::size_t q = k + 1; q < n; ++q) {
            const auto weight = [&](std::size_t row) { return std::fabs(a[perm[row] * n + k]) * scale[perm[row]]; };
            best = weight(q) > weight(best) ? q : best;
        }
        std::swap(perm[best], perm[k]);
        for (std::size_t q = k + 1; q < n; ++q) {
            double* const row = &a[perm[q] * n];
            row[k] = row[k] / a[perm[k] * n + k];
            for (std::size_t j = k + 1; j < n; ++j) {
                row[j] -= a[perm[k] * n + j] * row[k];
            }
        }
    }
    std::vector<double> inverse(n * n, 0.0);
    for (std::size_t c = 0; c < n; ++c) {
        for (std::size_t i = 0; i < n; ++i) {
            double rest = perm[i] == c ? 1.0 : 0.0;
            for (std::size_t j = 0; j < i; ++j) {
                rest -= a[perm[i] * n + j] * inverse[j * n + c];
            }
            inverse[i * n + c] = rest;
        }
        for (std::size_t i = n; i-- > 0;) {
            for (std::size_t j = i + 1; j < n; ++j) {
                inverse[i * n + c] -= a[perm[i] * n + j] * inverse[j * n + c];
            }
            inverse[i * n + c] /= a[perm[i] * n + i];
        }
    }
    return inverse;
}

TEST(MatKernels, InversesOfEveryTierAreThoseInOrder) {
    Random random(53);
    for (int trial = 0; trial < 60; ++trial) {
        const auto n = static_cast<std::size_t>(random.integer(1, trial % 6 == 0 ? 90 : 20));
        std::vector<double> a(n * n);
        std::generate(a.begin(), a.end(), [&] { return random.normal() * std::pow(10.0, random.integer(-3, 3)); });
        const std::vector<double> expected = inverseInOrder(n, a);
        for (const bool vectors : {false, true}) {
            if (vectors && !zelmtest::machineHasAvx2Tier()) {
                continue;
            }
            const ForcedProcessor forced(vectors ? Processor{} : zelmtest::plainProcessor());
            std::vector<double> inverse(n * n);
            ASSERT_EQ(zelmMatInvert(static_cast<int32_t>(n), a.data(), inverse.data()), ZELM_OK);
            for (std::size_t i = 0; i < n * n; ++i) {
                ASSERT_TRUE(hasSameBits(inverse[i], expected[i])) << trial << ": " << i;
            }
        }
    }
}

}  // namespace
