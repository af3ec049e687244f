// Dense gray planes from strided buffers.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "bufferPacking.h"

namespace {

constexpr uint8_t kGuard = 171;

TEST(PackPlanar8, RowsAreCopiedWithoutTheirPadding) {
    std::array<uint8_t, 8> rows = {1, 2, 3, 99, 4, 5, 6, 99};
    std::array<uint8_t, 7> plane;
    plane.fill(kGuard);
    zelm::packPlanar8({rows.data(), 2, 3, 4}, plane.data());
    EXPECT_EQ(plane, (std::array<uint8_t, 7>{1, 2, 3, 4, 5, 6, kGuard}));
}

TEST(PackArgb8888, GrayIsTheTruncatedMeanNotTheWeightedSum) {
    // Two rows of two pixels with one byte of padding; alpha is ignored.
    std::array<uint8_t, 18> rows = {255, 255, 255, 254, 0, 1, 1, 0, 99, 7, 255, 255, 255, 7, 255, 0, 0, 99};
    std::array<uint8_t, 5> plane;
    plane.fill(kGuard);
    zelm::packARGB8888ToGrayAverage({rows.data(), 2, 2, 9}, plane.data());
    EXPECT_EQ(plane, (std::array<uint8_t, 5>{254, 0, 255, 85, kGuard})) << "764 / 3, 2 / 3, 765 / 3, 255 / 3";
}

TEST(Packing, BufferWithoutRowsProducesNothing) {
    uint8_t guard = kGuard;
    zelm::packPlanar8({nullptr, 0, 3, 3}, &guard);
    zelm::packARGB8888ToGrayAverage({nullptr, 0, 3, 12}, &guard);
    EXPECT_EQ(guard, kGuard);
}

}  // namespace
