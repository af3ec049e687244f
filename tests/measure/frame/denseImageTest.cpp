// Images of callers with and without padding between their rows.
#include <gtest/gtest.h>

#include <vector>

#include "guardedBuffer.h"
#include "image.h"

namespace zelm::measure {
namespace {

std::int32_t statusOf(const ZelmMeasureImage* image) {
    return guarded(nullptr, [&] { checkImage(image); });
}

std::uint8_t grayAt(int x, int y) {
    return static_cast<std::uint8_t>(16 * y + x);
}

TEST(MeasureImage, PaddedRowsBecomeDense) {
    constexpr int kWidth = 7;
    constexpr int kHeight = 5;
    for (const std::int64_t stride : {7, 8, 31}) {
        SCOPED_TRACE(stride);
        // The last row ends with its last pixel: nothing beyond may be read.
        zelmtest::GuardedBuffer<std::uint8_t> memory(static_cast<std::size_t>(stride * (kHeight - 1) + kWidth),
                                                     zelmtest::Guard::atEnd);
        for (std::size_t i = 0; i < memory.size(); ++i) {
            memory[i] = 255;
        }
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                memory[static_cast<std::size_t>(y * stride + x)] = grayAt(x, y);
            }
        }
        const DenseImage dense({memory.data(), kWidth, kHeight, stride});
        ASSERT_EQ(dense.width(), kWidth);
        ASSERT_EQ(dense.height(), kHeight);
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                EXPECT_EQ(dense.row(y)[x], grayAt(x, y));
                EXPECT_EQ(dense.pixels()[y * kWidth + x], grayAt(x, y));
            }
        }
        EXPECT_EQ(dense.record().pixels, dense.pixels());
        EXPECT_EQ(dense.record().width, kWidth);
        EXPECT_EQ(dense.record().height, kHeight);
        EXPECT_EQ(dense.pixels() == memory.data(), stride == kWidth);  // copied only where it must be
    }
}

TEST(MeasureImage, ImagesThatCannotBeMeantAreRefused) {
    const std::vector<std::uint8_t> pixels(12);
    EXPECT_EQ(statusOf(nullptr), ZELM_ERR_PARAM);
    const ZelmMeasureImage sound{pixels.data(), 4, 3, 4};
    EXPECT_EQ(statusOf(&sound), ZELM_OK);
    for (const ZelmMeasureImage& image :
         {ZelmMeasureImage{nullptr, 4, 3, 4}, ZelmMeasureImage{pixels.data(), 0, 3, 4},
          ZelmMeasureImage{pixels.data(), 4, 0, 4}, ZelmMeasureImage{pixels.data(), -4, 3, 4},
          ZelmMeasureImage{pixels.data(), 4, 3, 3}, ZelmMeasureImage{pixels.data(), 4, 3, -4}}) {
        EXPECT_EQ(statusOf(&image), ZELM_ERR_PARAM);
    }
}

}  // namespace
}  // namespace zelm::measure
