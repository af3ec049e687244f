// Images expanded by pure magnification, against the general samplers pixel by pixel.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "bufferSampling.h"
#include "expandedFixtures.h"

namespace {

using namespace zelmtest;
using Bytes = std::vector<unsigned char>;

constexpr std::int32_t kWidth = 320;
constexpr std::int32_t kHeight = 240;
constexpr unsigned char kUntouched = 77;

Bytes randomBytes(Random& random, std::size_t count) {
    Bytes bytes(count);
    for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(random.integer(0, 255));
    }
    return bytes;
}

std::size_t pixelsOf(const ZelmCstmExpPrm& expansion) {
    return static_cast<std::size_t>(expansion.iWidth) * static_cast<std::size_t>(expansion.iHeight);
}

Point2d sourceOf(const ZelmCstmExpPrm& e, std::int32_t column, std::int32_t row) {
    const double step = 1.0 / e.dVal;
    return {(e.dX - static_cast<double>(e.iWidth / 2) / e.dVal) + column * step,
            (e.dY - static_cast<double>(e.iHeight / 2) / e.dVal) + row * step};
}

// Regions inside, across every border and outside the source, of widths around the stretches the engine works in.
std::vector<ZelmCstmExpPrm> expansions() {
    std::vector<ZelmCstmExpPrm> all = {
        {200, 150, 160.0, 120.0, 1.0},    {kWidth, kHeight, 160.0, 120.0, 1.0},
        {255, 9, 100.3, 50.7, 3.7},       {256, 9, 100.3, 50.7, 3.7},
        {257, 9, 100.3, 50.7, 3.7},       {515, 40, 2.0, 1.0, 8.0},
        {515, 40, 319.0, 239.0, 8.0},     {64, 64, 319.5, 239.5, 16.0},
        {64, 64, -0.25, -0.25, 16.0},     {40, 40, -500.0, 100.0, 2.0},
        {40, 40, 100.0, 900.0, 2.0},      {700, 600, 160.0, 120.0, 1.0},
        {5, 3, 10.0, 20.0, 1.0},          {1, 1, 12.34, 56.78, 5.0},
        {60, 50, 318.0, 100.0, 4.0},      {60, 50, 100.0, 238.0, 4.0},
        {60, 50, kNan, 100.0, 4.0},       {60, 50, 100.0, kInfinity, 4.0},
        {60, 50, -kInfinity, 100.0, 4.0}, {60, 50, 1e300, -1e300, 4.0},
        {60, 50, 100.5, 100.5, 1e300},    {60, 50, 100.5, 100.5, kInfinity},
    };
    Random random(251);
    for (int i = 0; i < 40; ++i) {
        all.push_back({random.integer(1, 400), random.integer(1, 100), random.uniform(-20.0, 340.0),
                       random.uniform(-20.0, 260.0), random.uniform(1.0, 12.0)});
    }
    return all;
}

TEST(CstmExpandImage, EveryPixelIsTheBilinearSampleRoundedHalfUp) {
    Random random(252);
    Bytes source = randomBytes(random, kWidth * kHeight);
    const vImage_Buffer image{source.data(), kHeight, kWidth, kWidth};
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    for (const ZelmCstmExpPrm& expansion : expansions()) {
        Bytes expanded(pixelsOf(expansion), kUntouched);
        ASSERT_EQ(zelmCstmDrovnExpandImage(handle.get(), 'R', source.data(), &expansion, expanded.data()), ZELM_OK);
        for (std::int32_t y = 0; y < expansion.iHeight; ++y) {
            for (std::int32_t x = 0; x < expansion.iWidth; ++x) {
                const Point2d p = sourceOf(expansion, x, y);
                const auto at = static_cast<std::size_t>(y) * static_cast<std::size_t>(expansion.iWidth) +
                                static_cast<std::size_t>(x);
                ASSERT_EQ(expanded[at], static_cast<int>(zelm::sampleBilinearPlanar8(image, p.x, p.y) + 0.5))
                    << x << " " << y << " of " << expansion.dX << " " << expansion.dY << " x" << expansion.dVal;
            }
        }
    }
}

TEST(CstmExpandImage, ItIsTheCounterpartOfThePointMapping) {
    Random random(253);
    Bytes source = randomBytes(random, kWidth * kHeight);
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    // Magnified 4 times, every fourth expanded pixel is a source pixel.
    const ZelmCstmExpPrm expansion{81, 61, 100.0, 90.0, 4.0};
    Bytes expanded(pixelsOf(expansion));
    ASSERT_EQ(zelmCstmDrovnExpandImage(handle.get(), 'L', source.data(), &expansion, expanded.data()), ZELM_OK);
    for (std::int32_t y = 85; y < 95; ++y) {
        for (std::int32_t x = 92; x < 108; ++x) {
            const Point2d p{static_cast<double>(x), static_cast<double>(y)};
            Point2d q{};
            ASSERT_EQ(zelmCstmDrovnChangeOrg2DtoExp2D(&expansion, &p, &q), ZELM_OK);
            const auto at = static_cast<std::size_t>(q.y) * 81 + static_cast<std::size_t>(q.x);
            ASSERT_EQ(expanded[at], source[static_cast<std::size_t>(y * kWidth + x)]);
        }
    }
}

TEST(CstmExpandImage, PlanarBuffersWithPaddedRowsGiveThePlainImage) {
    Random random(254);
    Bytes source = randomBytes(random, kWidth * kHeight);
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    constexpr std::size_t kSourceRow = kWidth + 13;
    Bytes padded(kSourceRow * kHeight, 9);
    for (std::size_t y = 0; y < kHeight; ++y) {
        std::copy_n(&source[y * kWidth], kWidth, &padded[y * kSourceRow]);
    }
    for (const ZelmCstmExpPrm& expansion : expansions()) {
        const auto width = static_cast<std::size_t>(expansion.iWidth);
        const auto height = static_cast<std::size_t>(expansion.iHeight);
        const std::size_t row = width + 7;
        Bytes plain(width * height);
        Bytes target(row * height, kUntouched);
        const vImage_Buffer from{padded.data(), kHeight, kWidth, kSourceRow};
        const vImage_Buffer to{target.data(), height, width, row};
        ASSERT_EQ(zelmCstmDrovnExpandImage(handle.get(), 'L', source.data(), &expansion, plain.data()), ZELM_OK);
        ASSERT_EQ(zelmCstmDrovnExpandImage_vImagePlanar8(handle.get(), 'L', &from, &expansion, &to), ZELM_OK);
        for (std::size_t y = 0; y < height; ++y) {
            for (std::size_t x = 0; x < row; ++x) {
                ASSERT_EQ(target[y * row + x], x < width ? plain[y * width + x] : kUntouched);
            }
        }
    }
}

TEST(CstmExpandImage, ArgbBuffersAreOpaqueAndSampledAChannelEach) {
    Random random(255);
    constexpr std::size_t kSourceRow = kWidth * 4 + 3;
    Bytes source = randomBytes(random, kSourceRow * kHeight);
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    const vImage_Buffer from{source.data(), kHeight, kWidth, kSourceRow};
    for (const ZelmCstmExpPrm& expansion : expansions()) {
        const auto width = static_cast<std::size_t>(expansion.iWidth);
        const auto height = static_cast<std::size_t>(expansion.iHeight);
        const std::size_t row = 4 * width + 5;
        Bytes target(row * height, kUntouched);
        const vImage_Buffer to{target.data(), height, width, row};
        ASSERT_EQ(zelmCstmDrovnExpandImage_vImageARGB8888(handle.get(), 'R', &from, &expansion, &to), ZELM_OK);
        for (std::size_t y = 0; y < height; ++y) {
            const unsigned char* const out = &target[y * row];
            for (std::size_t x = 0; x < width; ++x) {
                const Point2d p = sourceOf(expansion, static_cast<std::int32_t>(x), static_cast<std::int32_t>(y));
                std::uint8_t rgb[3];
                zelm::sampleBilinearARGB8888(from, p.x, p.y, rgb[0], rgb[1], rgb[2]);
                ASSERT_EQ(out[4 * x], 255);
                for (std::size_t c = 0; c < 3; ++c) {
                    ASSERT_EQ(out[4 * x + 1 + c], rgb[c]) << x << " " << y << " channel " << c;
                }
            }
            for (std::size_t x = 4 * width; x < row; ++x) {
                ASSERT_EQ(out[x], kUntouched);
            }
        }
    }
}

// Deliberate: between the last column (row) and the border gray is continued, colour is not.
TEST(CstmExpandImage, GrayReachesFurtherThanColour) {
    Bytes gray(kWidth * kHeight, 200);
    Bytes argb(4 * kWidth * kHeight, 200);
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    const ZelmCstmExpPrm expansion{1, 1, kWidth - 0.5, 100.0, 1.0};
    unsigned char out = kUntouched;
    Bytes outArgb(4, kUntouched);
    const vImage_Buffer from{argb.data(), kHeight, kWidth, 4 * kWidth};
    const vImage_Buffer to{outArgb.data(), 1, 1, 4};
    ASSERT_EQ(zelmCstmDrovnExpandImage(handle.get(), 'L', gray.data(), &expansion, &out), ZELM_OK);
    ASSERT_EQ(zelmCstmDrovnExpandImage_vImageARGB8888(handle.get(), 'L', &from, &expansion, &to), ZELM_OK);
    EXPECT_EQ(out, 200);
    EXPECT_EQ(outArgb, (Bytes{255, 0, 0, 0}));
}

TEST(CstmExpandImage, WithoutRowsOrColumnsNothingIsWritten) {
    const Bytes source(kWidth * kHeight, 200);
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    for (const ZelmCstmExpPrm& expansion : {ZelmCstmExpPrm{5, 0, 9.0, 9.0, 1.0}, ZelmCstmExpPrm{0, 5, 9.0, 9.0, 1.0}}) {
        Bytes out(4, kUntouched);
        EXPECT_EQ(zelmCstmDrovnExpandImage(handle.get(), 'L', source.data(), &expansion, out.data()), ZELM_OK);
        EXPECT_EQ(out, Bytes(4, kUntouched));
    }
}

constexpr ZelmCstmExpPrm kExpansion{8, 6, 100.0, 100.0, 2.0};

TEST(CstmExpandImage, BadArgumentsAreRefused) {
    const Bytes source(kWidth * kHeight, 200);
    Bytes out(48, kUntouched);
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    const auto call = zelmCstmDrovnExpandImage;
    EXPECT_EQ(call(nullptr, 'L', source.data(), &kExpansion, out.data()), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', nullptr, &kExpansion, out.data()), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', source.data(), nullptr, out.data()), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', source.data(), &kExpansion, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'l', source.data(), &kExpansion, out.data()), ZELM_ERR_PARAM);
    for (const ZelmCstmExpPrm& bad : badExpansions()) {
        EXPECT_EQ(call(handle.get(), 'L', source.data(), &bad, out.data()), ZELM_ERR_PARAM);
    }
    EXPECT_EQ(out, Bytes(48, kUntouched));
}

TEST(CstmExpandImage, BadBuffersAreRefused) {
    Bytes source(4 * kWidth * kHeight, 200);
    Bytes out(4 * 48, kUntouched);
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    const vImage_Buffer from{source.data(), kHeight, kWidth, 4 * kWidth};
    const vImage_Buffer to{out.data(), 6, 8, 32};
    for (auto* const call : {zelmCstmDrovnExpandImage_vImagePlanar8, zelmCstmDrovnExpandImage_vImageARGB8888}) {
        EXPECT_EQ(call(nullptr, 'L', &from, &kExpansion, &to), ZELM_ERR_PARAM);
        EXPECT_EQ(call(handle.get(), 'L', nullptr, &kExpansion, &to), ZELM_ERR_PARAM);
        EXPECT_EQ(call(handle.get(), 'L', &from, nullptr, &to), ZELM_ERR_PARAM);
        EXPECT_EQ(call(handle.get(), 'L', &from, &kExpansion, nullptr), ZELM_ERR_PARAM);
        EXPECT_EQ(call(handle.get(), 'x', &from, &kExpansion, &to), ZELM_ERR_PARAM);
        for (const ZelmCstmExpPrm& bad : badExpansions()) {
            EXPECT_EQ(call(handle.get(), 'L', &from, &bad, &to), ZELM_ERR_PARAM);
        }
        for (const vImage_Buffer& bad : {vImage_Buffer{source.data(), kHeight - 1, kWidth, 4 * kWidth},
                                         vImage_Buffer{source.data(), kHeight, kWidth - 1, 4 * kWidth},
                                         vImage_Buffer{nullptr, kHeight, kWidth, 4 * kWidth}}) {
            EXPECT_EQ(call(handle.get(), 'L', &bad, &kExpansion, &to), ZELM_ERR_PARAM);
        }
        for (const vImage_Buffer& bad : {vImage_Buffer{out.data(), 5, 8, 32}, vImage_Buffer{out.data(), 6, 7, 32},
                                         vImage_Buffer{nullptr, 6, 8, 32}}) {
            EXPECT_EQ(call(handle.get(), 'L', &from, &kExpansion, &bad), ZELM_ERR_PARAM);
        }
    }
    EXPECT_EQ(out, Bytes(4 * 48, kUntouched));
}

}  // namespace
