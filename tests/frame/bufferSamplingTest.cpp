// Bilinear samples of gray and colour buffers: interpolation, the two ranges, edges, coordinates that are not numbers.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "bufferSampling.h"
#include "random.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
// Positions that no buffer has.
constexpr double kNowhere[] = {kNan, kInfinity, -kInfinity, 1e300, -1e300, -1e-9, 1e10};

// 3 x 2 pixels in rows of 5 bytes; the padding would show.
struct Gray {
    std::array<uint8_t, 10> bytes = {10, 20, 40, 255, 255, 110, 140, 200, 255, 255};
    vImage_Buffer buffer = {bytes.data(), 2, 3, 5};

    [[nodiscard]] double at(double x, double y) const { return zelm::sampleBilinearPlanar8(buffer, x, y); }
};

TEST(SamplePlanar8, PixelCentresGiveThePixels) {
    const Gray gray;
    EXPECT_EQ(gray.at(0, 0), 10.0);
    EXPECT_EQ(gray.at(2, 0), 40.0);
    EXPECT_EQ(gray.at(1, 1), 140.0);
    EXPECT_EQ(gray.at(-0.0, -0.0), 10.0);
}

TEST(SamplePlanar8, ValuesBetweenAreNotRounded) {
    const Gray gray;
    EXPECT_EQ(gray.at(0.25, 0), 12.5);
    EXPECT_EQ(gray.at(0, 0.25), 35.0);
    EXPECT_EQ(gray.at(0.5, 0.5), (10 + 20 + 110 + 140) / 4.0);
}

TEST(SamplePlanar8, LastColumnAndRowExtendToTheBorder) {
    const Gray gray;
    EXPECT_EQ(gray.at(2.5, 0), 40.0) << "width - 0.5 uses the last column twice";
    EXPECT_EQ(gray.at(0, 1.75), 110.0);
    EXPECT_EQ(gray.at(std::nextafter(3.0, 0.0), std::nextafter(2.0, 0.0)), 200.0);
}

TEST(SamplePlanar8, OutsideIsZero) {
    const Gray gray;
    EXPECT_EQ(gray.at(3.0, 0), 0.0) << "the width itself is outside";
    EXPECT_EQ(gray.at(0, 2.0), 0.0);
    for (const double nowhere : kNowhere) {
        EXPECT_EQ(gray.at(nowhere, 0), 0.0) << nowhere;
        EXPECT_EQ(gray.at(0, nowhere), 0.0) << nowhere;
    }
    const vImage_Buffer empty = {nullptr, 0, 0, 0};
    EXPECT_EQ(zelm::sampleBilinearPlanar8(empty, 0.0, 0.0), 0.0);
}

// 2 x 2 pixels A, R, G, B in rows of 11 bytes.
struct Colour {
    std::array<uint8_t, 22> bytes = {255, 0,   10, 255, 0, 100, 20, 255, 9, 9, 9,
                                     0,   200, 30, 254, 0, 255, 40, 255, 9, 9, 9};
    vImage_Buffer buffer = {bytes.data(), 2, 2, 11};

    [[nodiscard]] std::array<int, 3> at(double x, double y) const {
        uint8_t r = 77;
        uint8_t g = 77;
        uint8_t b = 77;
        zelm::sampleBilinearARGB8888(buffer, x, y, r, g, b);
        return {r, g, b};
    }
};

TEST(SampleArgb8888, PixelCentresGiveThePixels) {
    const Colour colour;
    EXPECT_EQ(colour.at(0, 0), (std::array<int, 3>{0, 10, 255}));
    EXPECT_EQ(colour.at(1, 1), (std::array<int, 3>{255, 40, 255})) << "the last column and row are inside";
    EXPECT_EQ(colour.at(0, 1), (std::array<int, 3>{200, 30, 254}));
}

TEST(SampleArgb8888, ChannelsAreInterpolatedAndRoundedHalfUp) {
    const Colour colour;
    EXPECT_EQ(colour.at(0.5, 0), (std::array<int, 3>{50, 15, 255}));
    EXPECT_EQ(colour.at(0.125, 0), (std::array<int, 3>{13, 11, 255})) << "12.5 and 11.25";
    EXPECT_EQ(colour.at(0, 0.5), (std::array<int, 3>{100, 20, 255})) << "254.5 rounds up";
}

TEST(SampleArgb8888, RangeEndsAtTheLastPixelCentreUnlikeTheGrayOne) {
    const Colour colour;
    const std::array<int, 3> zeros = {0, 0, 0};
    EXPECT_EQ(colour.at(1.5, 0), zeros) << "width - 0.5";
    EXPECT_EQ(colour.at(std::nextafter(1.0, 2.0), 0), zeros);
    EXPECT_EQ(colour.at(0, std::nextafter(1.0, 2.0)), zeros);
    for (const double nowhere : kNowhere) {
        EXPECT_EQ(colour.at(nowhere, 0), zeros) << nowhere;
        EXPECT_EQ(colour.at(0, nowhere), zeros) << nowhere;
    }
    uint8_t r = 1;
    uint8_t g = 1;
    uint8_t b = 1;
    zelm::sampleBilinearARGB8888({nullptr, 0, 0, 0}, 0.0, 0.0, r, g, b);
    EXPECT_EQ(r + g + b, 0) << "an empty buffer has no inside";
}

TEST(SampleBilinear, InterpolationIsExactOnPlanes) {
    // Gray values linear in x and y: any position inside the pixel centres gives the plane's value.
    std::vector<uint8_t> pixels(16 * 16);
    for (std::size_t y = 0; y < 16; ++y) {
        for (std::size_t x = 0; x < 16; ++x) {
            pixels[y * 16 + x] = static_cast<uint8_t>(7 * x + 9 * y);
        }
    }
    const vImage_Buffer buffer = {pixels.data(), 16, 16, 16};
    zelmtest::Random random(82);
    for (int trial = 0; trial < 1000; ++trial) {
        const double x = random.uniform(0.0, 15.0);
        const double y = random.uniform(0.0, 15.0);
        EXPECT_NEAR(zelm::sampleBilinearPlanar8(buffer, x, y), 7.0 * x + 9.0 * y, 1e-12);  // a few roundings of 255
    }
}

}  // namespace
