// Every function of the matrix family with each of its allocations failing.
#include <algorithm>
#include <array>
#include <cmath>

#include "faultCase.h"
#include "zelm/mat.h"

namespace {

constexpr double kGuard = 7.25;
constexpr std::array<double, 4> kA = {4, 1, 1, 3};
constexpr std::array<double, 2> kB = {1, 2};

template <std::size_t n>
bool untouched(const std::array<double, n>& values) {
    return std::all_of(values.begin(), values.end(), [](double v) { return v == kGuard; });
}

template <std::size_t n>
std::array<double, n> guarded() {
    std::array<double, n> values;
    values.fill(kGuard);
    return values;
}

constexpr std::size_t kOrder = 16;

// Symmetric, the diagonal larger than the rest of its row.
std::array<double, kOrder * kOrder> dominantMatrix() {
    std::array<double, kOrder * kOrder> a;
    a.fill(1.0);
    for (std::size_t i = 0; i < kOrder; ++i) {
        a[i * kOrder + i] = 20.0 + static_cast<double>(i);
    }
    return a;
}

}  // namespace

ZELM_FAULT_CASE(zelmMatMallocVector) {
    double* const v = probe.call([] { return zelmMatMallocVector(4); });
    EXPECT_EQ(v == nullptr, probe.failed());
    zelmMatFreeVector(v);
}

ZELM_FAULT_CASE(zelmMatMallocMatrix) {
    double** const m = probe.call([] { return zelmMatMallocMatrix(3, 2); });
    EXPECT_EQ(m == nullptr, probe.failed());
    zelmMatFreeMatrix(m);
}

// Matrices of more than ten rows: smaller ones take no memory.
ZELM_FAULT_CASE(zelmMatInvert) {
    const auto a = dominantMatrix();
    auto out = guarded<kOrder * kOrder>();
    const int32_t status = probe.call([&] { return zelmMatInvert(kOrder, a.data(), out.data()); });
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_MEMORY : ZELM_OK);
    EXPECT_EQ(untouched(out), probe.failed());
}

ZELM_FAULT_CASE(zelmMatSolveLU) {
    const auto a = dominantMatrix();
    auto out = guarded<kOrder>();
    const int32_t status = probe.call([&] { return zelmMatSolveLU(kOrder, a.data(), a.data(), out.data()); });
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_MEMORY : ZELM_OK);
    EXPECT_EQ(untouched(out), probe.failed());
}

ZELM_FAULT_CASE(zelmMatSVD) {
    std::array<double, kOrder * kOrder> a{};
    for (std::size_t i = 0; i < kOrder; ++i) {
        a[i * kOrder + i] = static_cast<double>(i + 1);
    }
    auto u = guarded<kOrder * kOrder>();
    auto w = guarded<kOrder>();
    auto v = guarded<kOrder * kOrder>();
    const int32_t status =
        probe.call([&] { return zelmMatSVD(kOrder, kOrder, a.data(), u.data(), w.data(), v.data()); });
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_MEMORY : ZELM_OK);
    if (probe.failed() && probe.allocations() == 1) {
        EXPECT_TRUE(untouched(u) && untouched(w) && untouched(v));
    } else {
        // Failing later leaves the decomposition as it was found: complete, but not sorted.
        EXPECT_EQ(w[0], probe.failed() ? 1.0 : 16.0);
        EXPECT_EQ(w[kOrder - 1], probe.failed() ? 16.0 : 1.0);
        for (std::size_t i = 0; i < kOrder; ++i) {
            for (std::size_t j = 0; j < kOrder; ++j) {
                double sum = 0.0;
                for (std::size_t k = 0; k < kOrder; ++k) {
                    sum += u[i * kOrder + k] * w[k] * v[k * kOrder + j];
                }
                EXPECT_EQ(sum, a[i * kOrder + j]);
            }
        }
    }
    // Outputs that are left out are replaced by temporaries, which can fail too.
    const int32_t valuesAlone =
        probe.call([&] { return zelmMatSVD(kOrder, kOrder, a.data(), nullptr, w.data(), nullptr); });
    EXPECT_EQ(valuesAlone, zelmtest::allocCounters().faultHit ? ZELM_ERR_MEMORY : ZELM_OK);
    const int32_t rightAlone =
        probe.call([&] { return zelmMatSVD(kOrder, kOrder, a.data(), nullptr, nullptr, v.data()); });
    EXPECT_EQ(rightAlone, zelmtest::allocCounters().faultHit ? ZELM_ERR_MEMORY : ZELM_OK);
}

ZELM_FAULT_CASE(zelmMatSolveSVD) {
    auto x = guarded<2>();
    const bool tall = probe.call([&] { return zelmMatSolveSVD(2, 2, kA.data(), kB.data(), x.data()); }) == ZELM_OK;
    EXPECT_EQ(tall, !probe.failed());
    EXPECT_EQ(untouched(x), probe.failed());
    x = guarded<2>();
    const int32_t wide = probe.call([&] { return zelmMatSolveSVD(1, 2, kA.data(), kB.data(), x.data()); });
    EXPECT_EQ(wide, probe.failed() ? ZELM_ERR_MEMORY : ZELM_OK);
    EXPECT_EQ(untouched(x), probe.failed());
}

ZELM_FAULT_CASE(zelmMatJacobiEigen) {
    const auto a = dominantMatrix();
    auto values = guarded<kOrder>();
    auto vectors = guarded<kOrder * kOrder>();
    const int32_t status =
        probe.call([&] { return zelmMatJacobiEigen(kOrder, a.data(), values.data(), vectors.data()); });
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_MEMORY : ZELM_OK);
    EXPECT_EQ(untouched(values), probe.failed());
    EXPECT_EQ(untouched(vectors), probe.failed());
    const int32_t alone = probe.call([&] { return zelmMatJacobiEigen(kOrder, a.data(), values.data(), nullptr); });
    EXPECT_EQ(alone, zelmtest::allocCounters().faultHit ? ZELM_ERR_MEMORY : ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmMatFreeVector) {
    double* const v = zelmMatMallocVector(4);
    probe.call([&] { return zelmMatFreeVector(v), 0; });
}

ZELM_NO_ALLOCATION_CASE(zelmMatFreeMatrix) {
    double** const m = zelmMatMallocMatrix(2, 2);
    probe.call([&] { return zelmMatFreeMatrix(m), 0; });
}

ZELM_NO_ALLOCATION_CASE(zelmMatZero) {
    auto a = guarded<4>();
    probe.call([&] { return zelmMatZero(2, 2, a.data()), 0; });
}

ZELM_NO_ALLOCATION_CASE(zelmMatDiagonal) {
    auto a = guarded<4>();
    probe.call([&] { return zelmMatDiagonal(2.0, 2, a.data()), 0; });
}

ZELM_NO_ALLOCATION_CASE(zelmMatCopy) {
    auto a = guarded<4>();
    probe.call([&] { return zelmMatCopy(2, 2, kA.data(), a.data()), 0; });
}

ZELM_NO_ALLOCATION_CASE(zelmMatAdd) {
    auto a = guarded<4>();
    probe.call([&] { return zelmMatAdd(2, 2, kA.data(), kA.data(), a.data()), 0; });
}

ZELM_NO_ALLOCATION_CASE(zelmMatSub) {
    auto a = guarded<4>();
    probe.call([&] { return zelmMatSub(2, 2, kA.data(), kA.data(), a.data()), 0; });
}

ZELM_NO_ALLOCATION_CASE(zelmMatMulScalar) {
    auto a = guarded<4>();
    probe.call([&] { return zelmMatMulScalar(2.0, 2, 2, kA.data(), a.data()), 0; });
}

ZELM_NO_ALLOCATION_CASE(zelmMatTranspose) {
    auto a = guarded<4>();
    probe.call([&] { return zelmMatTranspose(2, 2, kA.data(), a.data()), 0; });
}

ZELM_NO_ALLOCATION_CASE(zelmMatTrace) {
    EXPECT_EQ(probe.call([] { return zelmMatTrace(2, kA.data()); }), 7.0);
}

ZELM_NO_ALLOCATION_CASE(zelmMatMul) {
    auto c = guarded<4>();
    EXPECT_EQ(probe.call([&] { return zelmMatMul(2, 2, kA.data(), 2, 2, kA.data(), c.data()); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmMatGenMul) {
    auto c = guarded<4>();
    EXPECT_EQ(probe.call([&] { return zelmMatGenMul(1, 2, 2, kA.data(), 2, 2, kA.data(), 1, kA.data(), c.data()); }),
              ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmMatMulTransposed) {
    auto c = guarded<4>();
    probe.call([&] { return zelmMatMulTransposed(1, 2, 2, kA.data(), c.data()), 0; });
}

ZELM_NO_ALLOCATION_CASE(zelmMatMulTransposed2) {
    auto c = guarded<4>();
    EXPECT_EQ(probe.call([&] { return zelmMatMulTransposed2(1, 2, 2, kA.data(), 2, 2, kA.data(), c.data()); }),
              ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmMatCholeskyDecomp) {
    auto u = guarded<4>();
    EXPECT_EQ(probe.call([&] { return zelmMatCholeskyDecomp(2, kA.data(), u.data()); }), ZELM_OK);
}
