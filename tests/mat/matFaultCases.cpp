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

ZELM_FAULT_CASE(zelmMatInvert) {
    auto out = guarded<4>();
    const int32_t status = probe.call([&] { return zelmMatInvert(2, kA.data(), out.data()); });
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_MEMORY : ZELM_OK);
    EXPECT_EQ(untouched(out), probe.failed());
}

ZELM_FAULT_CASE(zelmMatSolveLU) {
    auto out = guarded<2>();
    const int32_t status = probe.call([&] { return zelmMatSolveLU(2, kA.data(), kB.data(), out.data()); });
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_MEMORY : ZELM_OK);
    EXPECT_EQ(untouched(out), probe.failed());
}

ZELM_FAULT_CASE(zelmMatSVD) {
    constexpr std::array<double, 4> a = {1, 0, 0, 3};
    auto u = guarded<4>();
    auto w = guarded<2>();
    auto v = guarded<4>();
    const int32_t status = probe.call([&] { return zelmMatSVD(2, 2, a.data(), u.data(), w.data(), v.data()); });
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_MEMORY : ZELM_OK);
    if (probe.failed() && probe.allocations() == 1) {
        EXPECT_TRUE(untouched(u) && untouched(w) && untouched(v));
    } else {
        // Failing later leaves the decomposition as it was found: complete, but not sorted.
        const std::array<double, 2> expected = {probe.failed() ? 1.0 : 3.0, probe.failed() ? 3.0 : 1.0};
        EXPECT_EQ(w, expected);
        for (std::size_t i = 0; i < 2; ++i) {
            for (std::size_t j = 0; j < 2; ++j) {
                EXPECT_EQ(u[i * 2] * w[0] * v[j] + u[i * 2 + 1] * w[1] * v[2 + j], a[i * 2 + j]);
            }
        }
    }
    // Outputs that are left out are replaced by temporaries, which can fail too.
    const int32_t valuesAlone = probe.call([&] { return zelmMatSVD(2, 2, a.data(), nullptr, w.data(), nullptr); });
    EXPECT_EQ(valuesAlone, zelmtest::allocCounters().faultHit ? ZELM_ERR_MEMORY : ZELM_OK);
    const int32_t rightAlone = probe.call([&] { return zelmMatSVD(2, 2, a.data(), nullptr, nullptr, v.data()); });
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
    auto values = guarded<2>();
    auto vectors = guarded<4>();
    const int32_t status = probe.call([&] { return zelmMatJacobiEigen(2, kA.data(), values.data(), vectors.data()); });
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_MEMORY : ZELM_OK);
    EXPECT_EQ(untouched(values), probe.failed());
    EXPECT_EQ(untouched(vectors), probe.failed());
    // Without vectors the working copy is the only allocation.
    probe.call([&] { return zelmMatJacobiEigen(2, kA.data(), values.data(), nullptr); });
    EXPECT_LE(zelmtest::allocCounters().requests, 1);
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
