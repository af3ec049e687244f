// Element-wise operations, transpose and trace: results, in-place use, counts below 1.
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <vector>

#include "zelm/mat.h"

namespace {

constexpr double kGuard = 7.25;

TEST(MatElementwise, ZeroClearsExactlyItsEntries) {
    std::array<double, 7> a;
    a.fill(kGuard);
    zelmMatZero(2, 3, a.data());
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(a[i], 0.0);
    }
    EXPECT_EQ(a[6], kGuard);
}

TEST(MatElementwise, DiagonalIsValueTimesIdentityWithExactZeros) {
    std::array<double, 10> a;
    a.fill(kGuard);
    zelmMatDiagonal(2.5, 3, a.data());
    const std::array<double, 10> expected = {2.5, 0, 0, 0, 2.5, 0, 0, 0, 2.5, kGuard};
    EXPECT_EQ(a, expected);
}

TEST(MatElementwise, CopyAddSubAndScale) {
    const std::array<double, 6> a = {1, 2, 3, 4, 5, 6};
    const std::array<double, 6> b = {0.5, -2, 8, 0, 1, -1};
    std::array<double, 6> c{};
    zelmMatCopy(2, 3, a.data(), c.data());
    EXPECT_EQ(c, a);
    zelmMatAdd(2, 3, a.data(), b.data(), c.data());
    EXPECT_EQ(c, (std::array<double, 6>{1.5, 0, 11, 4, 6, 5}));
    zelmMatSub(2, 3, a.data(), b.data(), c.data());
    EXPECT_EQ(c, (std::array<double, 6>{0.5, 4, -5, 4, 4, 7}));
    zelmMatMulScalar(-2.0, 2, 3, a.data(), c.data());
    EXPECT_EQ(c, (std::array<double, 6>{-2, -4, -6, -8, -10, -12}));
}

TEST(MatElementwise, MayRunInPlace) {
    std::array<double, 4> a = {1, 2, 3, 4};
    const std::array<double, 4> original = a;
    zelmMatCopy(2, 2, a.data(), a.data());
    EXPECT_EQ(a, original);
    zelmMatAdd(2, 2, a.data(), a.data(), a.data());
    EXPECT_EQ(a, (std::array<double, 4>{2, 4, 6, 8}));
    zelmMatMulScalar(0.5, 2, 2, a.data(), a.data());
    EXPECT_EQ(a, original);
    zelmMatSub(2, 2, a.data(), a.data(), a.data());
    EXPECT_EQ(a, (std::array<double, 4>{0, 0, 0, 0}));
}

TEST(MatElementwise, TransposeOfAWideMatrix) {
    const std::array<double, 6> a = {1, 2, 3, 4, 5, 6};
    std::array<double, 6> b{};
    zelmMatTranspose(2, 3, a.data(), b.data());
    EXPECT_EQ(b, (std::array<double, 6>{1, 4, 2, 5, 3, 6}));
}

TEST(MatElementwise, TraceSumsTheDiagonalInOrder) {
    const std::array<double, 9> a = {1e16, 9, 9, 9, 1, 9, 9, 9, -1e16};
    EXPECT_EQ(zelmMatTrace(3, a.data()), 0.0) << "1e16 + 1 rounds to 1e16 before the last entry is added";
    EXPECT_EQ(zelmMatTrace(1, a.data()), 1e16);
}

TEST(MatElementwise, TraceOfAnEmptyMatrixIsZero) {
    EXPECT_EQ(zelmMatTrace(0, nullptr), 0.0);
    EXPECT_EQ(zelmMatTrace(-3, nullptr), 0.0);
}

TEST(MatElementwise, CountsBelowOneDoNothing) {
    const std::array<double, 4> a = {1, 2, 3, 4};
    for (const auto& [rows, cols] : {std::pair{0, 2}, std::pair{-1, 2}, std::pair{2, 0}, std::pair{2, -1}}) {
        std::array<double, 4> c;
        c.fill(kGuard);
        const std::array<double, 4> untouched = c;
        zelmMatZero(rows, cols, c.data());
        zelmMatCopy(rows, cols, a.data(), c.data());
        zelmMatAdd(rows, cols, a.data(), a.data(), c.data());
        zelmMatSub(rows, cols, a.data(), a.data(), c.data());
        zelmMatMulScalar(3.0, rows, cols, a.data(), c.data());
        zelmMatTranspose(rows, cols, a.data(), c.data());
        zelmMatDiagonal(3.0, rows < 1 ? rows : cols, c.data());
        EXPECT_EQ(c, untouched) << rows << " x " << cols;
    }
}

}  // namespace
