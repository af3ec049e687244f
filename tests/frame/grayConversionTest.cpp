// The exported conversion of colour buffers to weighted gray: refusals in their order, weights, row distances.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "random.h"
#include "zelm/image.h"

namespace {

constexpr uint8_t kGuard = 171;

struct Buffers {
    std::vector<uint8_t> colour;
    std::vector<uint8_t> gray;
    vImage_Buffer src;
    vImage_Buffer dst;

    Buffers(std::size_t width, std::size_t height, std::size_t srcPad = 0, std::size_t dstPad = 0)
        : colour(height * (4 * width + srcPad)), gray(height * (width + dstPad), kGuard) {
        src = {colour.data(), height, width, 4 * width + srcPad};
        dst = {gray.data(), height, width, width + dstPad};
    }
};

uint8_t grayOf(uint8_t a, uint8_t r, uint8_t g, uint8_t b) {
    Buffers buffers(1, 1);
    buffers.colour = {a, r, g, b};
    EXPECT_EQ(zelmConvertColorToGray_vImageARGB8888toPlanar8(&buffers.src, &buffers.dst), ZELM_OK);
    return buffers.gray[0];
}

void expectRefused(const vImage_Buffer* src, const vImage_Buffer* dst, const Buffers& buffers, const char* why) {
    EXPECT_EQ(zelmConvertColorToGray_vImageARGB8888toPlanar8(src, dst), ZELM_ERR_PARAM) << why;
    for (const uint8_t value : buffers.gray) {
        EXPECT_EQ(value, kGuard) << why;
    }
}

TEST(GrayConversion, BadArgumentsAreRefusedAndNothingIsWritten) {
    const Buffers good(4, 3);
    expectRefused(nullptr, &good.dst, good, "no source");
    expectRefused(&good.src, nullptr, good, "no destination");
    expectRefused(nullptr, nullptr, good, "neither");
    const auto changed = [&](const char* why, auto change) {
        vImage_Buffer src = good.src;
        vImage_Buffer dst = good.dst;
        change(src, dst);
        expectRefused(&src, &dst, good, why);
    };
    changed("source without columns", [](auto& src, auto&) { src.width = 0; });
    changed("source without rows", [](auto& src, auto&) { src.height = 0; });
    changed("both without columns", [](auto& src, auto& dst) { src.width = dst.width = 0; });
    changed("both without rows", [](auto& src, auto& dst) { src.height = dst.height = 0; });
    changed("source without data", [](auto& src, auto&) { src.data = nullptr; });
    changed("destination without data", [](auto&, auto& dst) { dst.data = nullptr; });
    changed("destination one column short", [](auto&, auto& dst) { dst.width -= 1; });
    changed("destination one column too wide", [](auto&, auto& dst) { dst.width += 1; });
    changed("destination one row short", [](auto&, auto& dst) { dst.height -= 1; });
}

TEST(GrayConversion, KnownPixels) {
    EXPECT_EQ(grayOf(255, 255, 255, 255), 255);
    EXPECT_EQ(grayOf(255, 1, 1, 1), 1);
    EXPECT_EQ(grayOf(255, 1, 0, 0), 0);
    EXPECT_EQ(grayOf(255, 0, 0, 0), 0);
    EXPECT_EQ(grayOf(255, 255, 0, 0), 76) << "77 * 255 >> 8";
    EXPECT_EQ(grayOf(255, 0, 255, 0), 149) << "150 * 255 >> 8";
    EXPECT_EQ(grayOf(255, 0, 0, 255), 28) << "29 * 255 >> 8";
}

TEST(GrayConversion, AlphaIsIgnored) {
    EXPECT_EQ(grayOf(0, 10, 20, 30), grayOf(255, 10, 20, 30));
}

TEST(GrayConversion, RowDistancesMayDifferAndPaddingIsLeftAlone) {
    zelmtest::Random random(81);
    Buffers buffers(5, 4, 7, 3);
    for (uint8_t& byte : buffers.colour) {
        byte = static_cast<uint8_t>(random.integer(0, 255));
    }
    ASSERT_EQ(zelmConvertColorToGray_vImageARGB8888toPlanar8(&buffers.src, &buffers.dst), ZELM_OK);
    for (std::size_t y = 0; y < 4; ++y) {
        for (std::size_t x = 0; x < 8; ++x) {
            const uint8_t* const p = buffers.colour.data() + y * 27 + 4 * x;
            const uint8_t actual = buffers.gray[y * 8 + x];
            EXPECT_EQ(actual, x < 5 ? (77 * p[1] + 150 * p[2] + 29 * p[3]) >> 8 : kGuard) << x << ", " << y;
        }
    }
}

}  // namespace
