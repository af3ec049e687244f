// Storage of vectors and matrices: row pointers, counts below 1, requests that cannot be met.
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <vector>

#include "faultAlloc.h"
#include "zelm/mat.h"

namespace {

TEST(MatStorage, VectorCanBeWrittenAndFreed) {
    double* const v = zelmMatMallocVector(3);
    ASSERT_NE(v, nullptr);
    v[0] = 1.0;
    v[2] = 3.0;
    zelmMatFreeVector(v);
}

TEST(MatStorage, FreeingNothingIsAllowed) {
    const long live = zelmtest::allocCounters().live;
    zelmMatFreeVector(nullptr);
    zelmMatFreeMatrix(nullptr);
    EXPECT_EQ(zelmtest::allocCounters().live, live);
}

TEST(MatStorage, CountsBelowOneGiveNull) {
    for (const int32_t count : {0, -1, std::numeric_limits<int32_t>::min()}) {
        EXPECT_EQ(zelmMatMallocVector(count), nullptr);
        EXPECT_EQ(zelmMatMallocMatrix(count, 2), nullptr);
        EXPECT_EQ(zelmMatMallocMatrix(2, count), nullptr);
    }
}

TEST(MatStorage, RowPointersStepThroughOneBlock) {
    double** const m = zelmMatMallocMatrix(4, 3);
    ASSERT_NE(m, nullptr);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(m[i], m[0] + 3 * i);
    }
    m[3][2] = 5.0;
    EXPECT_EQ(m[0][11], 5.0);
    zelmMatFreeMatrix(m);
}

TEST(MatStorage, OneRowHandleHoldsThePointerToItsBlockOnly) {
    const long live = zelmtest::allocCounters().live;
    double** const m = zelmMatMallocMatrix(1, 5);
    ASSERT_NE(m, nullptr);
    EXPECT_EQ(zelmtest::allocCounters().live, live + 2) << "a pointer array and a block";
    for (int j = 0; j < 5; ++j) {
        m[0][j] = j;
    }
    zelmMatFreeMatrix(m);
    EXPECT_EQ(zelmtest::allocCounters().live, live);
}

TEST(MatStorage, RequestBeyondTheAddressSpaceGivesNull) {
    if (sizeof(void*) > 4) {
        GTEST_SKIP() << "a 64-bit system may promise this much";
    }
    const long live = zelmtest::allocCounters().live;
    EXPECT_EQ(zelmMatMallocMatrix(16, std::numeric_limits<int32_t>::max()), nullptr);
    EXPECT_EQ(zelmtest::allocCounters().live, live) << "the row pointers are returned";
}

}  // namespace
