// Warp, map and remap kernels, in each tier: against a double-precision model, against each other, at borders, behind
// guard pages and with positions that are not numbers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>

#include "guardedBuffer.h"
#include "imageKernels.h"
#include "processors.h"
#include "warpModel.h"
#include "zelm/kernels.h"

namespace {

using namespace zelmtest;
using Bytes = std::vector<std::uint8_t>;

struct Tier {
    const char* name;
    Processor processor;
};

std::vector<Tier> tiers() {
    std::vector<Tier> all = {{"plain", plainProcessor()}};
    if (machineHasAvx2Tier()) {
        all.push_back({"AVX2", Processor{}});
    }
    return all;
}

std::size_t bytesOf(std::int32_t stride, std::int32_t height) {
    return static_cast<std::size_t>(stride) * static_cast<std::size_t>(height);
}

void warp(const WarpCase& c, const TestImage& src, std::uint8_t* dst, std::int32_t dstStride, std::int32_t dstWidth,
          std::int32_t dstHeight) {
    (src.channels == 1 ? perspectiveTransAndDistortImage_8uC1 : perspectiveTransAndDistortImage_8uC4)(
        c.hom, c.camera, src.pixels.data(), src.stride, src.width, src.height, dst, dstStride, dstWidth, dstHeight);
}

struct Maps {
    std::int32_t width;
    std::int32_t height;
    std::vector<float> x;
    std::vector<float> y;
    std::int32_t box[4];

    [[nodiscard]] std::int32_t stride() const { return width * 4; }
};

Maps buildMaps(const WarpCase& c, std::int32_t srcWidth, std::int32_t srcHeight, std::int32_t width,
               std::int32_t height) {
    Maps maps{width, height, {}, {}, {}};
    maps.x.assign(bytesOf(width, height), 7.0F);
    maps.y.assign(bytesOf(width, height), 7.0F);
    zelm::perspectiveTransAndDistortMap_32f(c.hom, c.camera, srcWidth, srcHeight, width, height, maps.x.data(),
                                            maps.stride(), maps.y.data(), maps.stride(), &maps.box[0], &maps.box[1],
                                            &maps.box[2], &maps.box[3]);
    return maps;
}

void remap(const TestImage& src, const Maps& maps, std::uint8_t* dst, std::int32_t dstStride, std::int32_t x0,
           std::int32_t y0, std::int32_t x1, std::int32_t y1) {
    (src.channels == 1 ? remapImage_8uC1 : remapImage_8uC4)(src.pixels.data(), src.stride, src.width, src.height, dst,
                                                            dstStride, 0, 0, maps.x.data(), maps.stride(),
                                                            maps.y.data(), maps.stride(), x0, y0, x1, y1);
}

// Single precision places a source pixel to this share of a pixel in images of the sizes used here; the gray level may
// move by as much times the largest gray step.
constexpr double kPositionError = 2e-4;
constexpr double kGrayError = 2.0 * kPositionError * 255.0;

// A destination pixel whose validity both precisions agree on for sure.
bool clearlyInside(const TestImage& src, const SourcePosition& p) {
    const double m = kPositionError;
    return p.u >= m && p.v >= m && p.u < src.width - 1 - m && p.v < src.height - 1 - m;
}

bool clearlyOutside(const TestImage& src, const SourcePosition& p) {
    const double m = kPositionError;
    return !(p.u >= -m && p.v >= -m && p.u < src.width - 1 + m && p.v < src.height - 1 + m);
}

void expectModel(const WarpCase& c, const TestImage& src, const Bytes& dst, std::int32_t stride, std::int32_t width,
                 std::int32_t height) {
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            const SourcePosition p = modelPosition(c, x, y);
            for (int channel = 0; channel < src.channels; ++channel) {
                const double got = dst[static_cast<std::size_t>(y * stride + x * src.channels + channel)];
                if (clearlyOutside(src, p)) {
                    ASSERT_EQ(got, 0.0) << x << ", " << y;
                } else if (clearlyInside(src, p)) {
                    ASSERT_NEAR(got, modelGray(src, p, channel), 0.5 + kGrayError) << x << ", " << y;
                }
            }
        }
    }
}

TEST(WarpKernels, EveryTierFollowsTheDoublePrecisionModel) {
    for (const Tier& tier : tiers()) {
        const ForcedProcessor forced{tier.processor};
        SCOPED_TRACE(tier.name);
        Random random(11);
        for (int round = 0; round < 300; ++round) {
            const std::int32_t channels = round % 2 == 0 ? 1 : 4;
            const TestImage src =
                randomImage(random, random.integer(2, 160), random.integer(2, 90), channels, round % 5);
            const double scale = std::exp(random.uniform(-1.2, 1.2));
            const WarpCase c = randomWarp(random, src.width, src.height, scale, random.uniform(-3.1, 3.1));
            const std::int32_t width = random.integer(1, 120);
            const std::int32_t height = random.integer(1, 60);
            const std::int32_t stride = width * channels + random.integer(0, 7);
            Bytes dst(bytesOf(stride, height), 77);
            warp(c, src, dst.data(), stride, width, height);
            expectModel(c, src, dst, stride, width, height);
            if (::testing::Test::HasFatalFailure()) {
                FAIL() << "round " << round;
            }
        }
    }
}

TEST(WarpKernels, TiersAgreeOnPositionsBitForBitAndOnPixelsWithinOne) {
    if (tiers().size() < 2) {
        GTEST_SKIP() << "this machine runs the plain tier alone";
    }
    Random random(12);
    for (int round = 0; round < 400; ++round) {
        const std::int32_t channels = round % 2 == 0 ? 1 : 4;
        const TestImage src = randomImage(random, random.integer(1, 120), random.integer(1, 60), channels, round % 3);
        const WarpCase c =
            randomWarp(random, src.width, src.height, std::exp(random.uniform(-2.0, 2.0)), random.uniform(-3.1, 3.1));
        const std::int32_t width = random.integer(1, 70);
        const std::int32_t height = random.integer(1, 20);
        const std::int32_t stride = width * channels + round % 4;
        Bytes pixels[2];
        Bytes remapped[2];
        Maps maps[2];
        for (int i = 0; i < 2; ++i) {
            const ForcedProcessor forced{tiers()[static_cast<std::size_t>(i)].processor};
            pixels[i].assign(bytesOf(stride, height), 7);
            remapped[i] = pixels[i];
            warp(c, src, pixels[i].data(), stride, width, height);
            maps[i] = buildMaps(c, src.width, src.height, width, height);
            remap(src, maps[i], remapped[i].data(), stride, 0, 0, width - 1, height - 1);
        }
        ASSERT_EQ(std::memcmp(maps[0].x.data(), maps[1].x.data(), maps[0].x.size() * 4), 0) << "round " << round;
        ASSERT_EQ(std::memcmp(maps[0].y.data(), maps[1].y.data(), maps[0].y.size() * 4), 0) << "round " << round;
        ASSERT_EQ(std::memcmp(maps[0].box, maps[1].box, sizeof maps[0].box), 0) << "round " << round;
        for (std::size_t k = 0; k < pixels[0].size(); ++k) {
            ASSERT_LE(std::abs(pixels[0][k] - pixels[1][k]), 1) << "round " << round;
            ASSERT_LE(std::abs(remapped[0][k] - remapped[1][k]), 1) << "round " << round;
        }
        // Warping and remapping through the maps of the same tier are the same thing.
        ASSERT_EQ(pixels[0], remapped[0]);
        ASSERT_EQ(pixels[1], remapped[1]);
    }
}

TEST(WarpKernels, PositionsAreGoodToAThousandthOfAPixelInWideImages) {
    Random random(13);
    double worst = 0.0;
    for (int round = 0; round < 40; ++round) {
        constexpr std::int32_t kWidth = 4096;
        constexpr std::int32_t kHeight = 64;
        const WarpCase c = randomWarp(random, kWidth, 3000, random.uniform(0.9, 1.1), random.uniform(-0.05, 0.05));
        const Maps maps = buildMaps(c, kWidth, 3000, kWidth, kHeight);
        for (std::int32_t y = 0; y < kHeight; y += 21) {
            for (std::int32_t x = 0; x < kWidth; ++x) {
                const auto k = static_cast<std::size_t>(y * kWidth + x);
                if (maps.x[k] >= 0.0F) {
                    const SourcePosition p = modelPosition(c, x, y);
                    worst = std::max({worst, std::fabs(p.u - static_cast<double>(maps.x[k])),
                                      std::fabs(p.v - static_cast<double>(maps.y[k]))});
                }
            }
        }
    }
    std::printf("worstPositionError: %.2g\n", worst);
    EXPECT_GT(worst, 0.0);
    EXPECT_LT(worst, 1e-3);
}

TEST(WarpKernels, TheTierThatTheProcessorCallsForRuns) {
    // Half-way between 0 and 1: the plain tier rounds up, the vector tier to even.
    const TestImage src{32, 2, 32, 1, [] {
                            Bytes pixels(64);
                            for (std::size_t i = 0; i < pixels.size(); ++i) {
                                pixels[i] = static_cast<std::uint8_t>(i % 2);
                            }
                            return pixels;
                        }()};
    WarpCase c = identityWarp();
    c.hom[2] = 0.5;
    const auto grayAt = [&](const Processor& processor, std::int32_t width) {
        const ForcedProcessor forced{processor};
        Bytes dst(bytesOf(width, 1));
        warp(c, src, dst.data(), width, width, 1);
        return static_cast<int>(dst[static_cast<std::size_t>(width - 1)]);
    };
    const int vectorGray = machineHasAvx2Tier() ? 0 : 1;
    EXPECT_EQ(grayAt(plainProcessor(), 16), 1);
    Processor whole;
    Processor twentyLeaves;
    twentyLeaves.basicMaximum = 20;
    for (const std::int32_t width : {16, 13}) {  // a full group and a tail
        EXPECT_EQ(grayAt(whole, width), vectorGray);
        EXPECT_EQ(grayAt(twentyLeaves, width), vectorGray);
        Processor withoutMovbe;
        withoutMovbe.leaf1Ecx &= ~(1U << 22);
        Processor withoutBmi2;
        withoutBmi2.leaf7Ebx &= ~(1U << 8);
        Processor sixLeaves;
        sixLeaves.basicMaximum = 6;
        for (const Processor& processor : {withoutMovbe, withoutBmi2, sixLeaves}) {
            EXPECT_EQ(grayAt(processor, width), 1);
        }
    }
}

TEST(WarpKernels, AnIdentityCopiesAllButTheLastColumnAndRow) {
    for (const Tier& tier : tiers()) {
        const ForcedProcessor forced{tier.processor};
        for (const std::int32_t channels : {1, 4}) {
            Random random(14);
            const TestImage src = randomImage(random, 37, 11, channels, 0);
            Bytes dst(src.pixels.size(), 1);
            warp(identityWarp(), src, dst.data(), src.stride, src.width, src.height);
            for (std::int32_t y = 0; y < src.height; ++y) {
                for (std::int32_t x = 0; x < src.width; ++x) {
                    const bool copied = x < src.width - 1 && y < src.height - 1;
                    for (int ch = 0; ch < channels; ++ch) {
                        const double expected = copied ? src.at(x, y, ch) : 0.0;
                        ASSERT_EQ(dst[static_cast<std::size_t>(y * src.stride + x * channels + ch)], expected)
                            << tier.name << " " << x << ", " << y;
                    }
                }
            }
        }
    }
}

TEST(WarpKernels, APositionOfExactlyTheLastColumnIsInvalid) {
    for (const Tier& tier : tiers()) {
        const ForcedProcessor forced{tier.processor};
        const TestImage src{5, 3, 5, 1, Bytes(15, 200)};
        Maps maps{2, 1, {4.0F, std::nextafter(4.0F, 0.0F)}, {1.0F, 1.0F}, {}};
        Bytes dst(2, 9);
        remap(src, maps, dst.data(), 2, 0, 0, 1, 0);
        EXPECT_EQ(dst[0], 0) << tier.name;
        EXPECT_EQ(dst[1], 200) << tier.name;
    }
}

// Beyond 2^24 not every column is a float: the last one, 2^24 + 3, rounds up to 2^24 + 4.
TEST(WarpKernels, VeryWideSourcesAreValidUpToTheLastFloatInside) {
    constexpr std::int32_t kWidth = (1 << 24) + 4;
    constexpr auto kInside = static_cast<float>((1 << 24) + 2);
    constexpr auto kBeyond = static_cast<float>((1 << 24) + 4);
    TestImage src{kWidth, 2, kWidth, 1, Bytes(bytesOf(kWidth, 2), 0)};
    for (std::size_t row = 0; row < 2; ++row) {
        src.pixels[(row + 1) * kWidth - 2] = 200;
    }
    for (const Tier& tier : tiers()) {
        const ForcedProcessor forced{tier.processor};
        const Maps maps{2, 1, {kInside, kBeyond}, {0.5F, 0.5F}, {}};
        Bytes dst(2, 9);
        remap(src, maps, dst.data(), 2, 0, 0, 1, 0);
        EXPECT_EQ(dst[0], 200) << tier.name;
        EXPECT_EQ(dst[1], 0) << tier.name;
    }
}

TEST(WarpKernels, AOnePixelSourceYieldsAnAllZeroDestination) {
    for (const Tier& tier : tiers()) {
        const ForcedProcessor forced{tier.processor};
        for (const std::int32_t channels : {1, 4}) {
            const TestImage src{1, 1, channels, channels, Bytes(static_cast<std::size_t>(channels), 255)};
            Bytes dst(static_cast<std::size_t>(20 * 3 * channels), 9);
            warp(identityWarp(), src, dst.data(), 20 * channels, 20, 3);
            EXPECT_TRUE(std::all_of(dst.begin(), dst.end(), [](std::uint8_t v) { return v == 0; })) << tier.name;
        }
    }
}

TEST(WarpKernels, MapsOfADestinationThatSeesNoSourceAreAllMinusOne) {
    for (const Tier& tier : tiers()) {
        const ForcedProcessor forced{tier.processor};
        WarpCase c = identityWarp();
        c.hom[2] = 1000.0;
        const Maps maps = buildMaps(c, 50, 40, 23, 9);
        EXPECT_EQ(maps.box[0], 23);
        EXPECT_EQ(maps.box[1], 9);
        EXPECT_EQ(maps.box[2], 0);
        EXPECT_EQ(maps.box[3], 0);
        EXPECT_TRUE(std::all_of(maps.x.begin(), maps.x.end(), [](float v) { return v == -1.0F; }));
        EXPECT_TRUE(std::all_of(maps.y.begin(), maps.y.end(), [](float v) { return v == -1.0F; }));
    }
}

TEST(WarpKernels, AMapWithoutRowsHasAnEmptyBox) {
    const Maps maps = buildMaps(identityWarp(), 50, 40, 23, 0);
    EXPECT_EQ(maps.box[0], 23);
    EXPECT_EQ(maps.box[1], 0);
    EXPECT_EQ(maps.box[2], 0);
    EXPECT_EQ(maps.box[3], 0);
}

TEST(WarpKernels, TheBoxOfAMapHoldsItsValidPixelsTightly) {
    for (const Tier& tier : tiers()) {
        const ForcedProcessor forced{tier.processor};
        Random random(15);
        for (int round = 0; round < 200; ++round) {
            const WarpCase c =
                randomWarp(random, 60, 40, std::exp(random.uniform(-1.5, 1.5)), random.uniform(-3.0, 3.0));
            const Maps maps = buildMaps(c, 60, 40, random.integer(1, 70), random.integer(1, 30));
            std::int32_t box[4] = {maps.width, maps.height, 0, 0};
            for (std::int32_t y = 0; y < maps.height; ++y) {
                for (std::int32_t x = 0; x < maps.width; ++x) {
                    if (maps.x[static_cast<std::size_t>(y * maps.width + x)] >= 0.0F) {
                        box[0] = std::min(box[0], x);
                        box[1] = std::min(box[1], y);
                        box[2] = std::max(box[2], x);
                        box[3] = std::max(box[3], y);
                    }
                }
            }
            ASSERT_EQ(std::memcmp(box, maps.box, sizeof box), 0) << tier.name << " round " << round;
        }
    }
}

TEST(RemapKernels, PixelsOutsideTheRectangleAreNotTouched) {
    for (const Tier& tier : tiers()) {
        const ForcedProcessor forced{tier.processor};
        Random random(16);
        for (int round = 0; round < 200; ++round) {
            const std::int32_t channels = round % 2 == 0 ? 1 : 4;
            const TestImage src = randomImage(random, 64, 32, channels, 0);
            const Maps maps = buildMaps(identityWarp(), 64, 32, 50, 20);
            const std::int32_t x0 = random.integer(0, 49);
            const std::int32_t y0 = random.integer(0, 19);
            const std::int32_t x1 = random.integer(0, 49);
            const std::int32_t y1 = random.integer(0, 19);
            const std::int32_t stride = 50 * channels + 3;
            Bytes dst(bytesOf(stride, 20), 255);
            remap(src, maps, dst.data(), stride, x0, y0, x1, y1);
            for (std::int32_t y = 0; y < 20; ++y) {
                for (std::int32_t k = 0; k < stride; ++k) {
                    const std::int32_t x = k / channels;
                    const bool inside = x >= x0 && x <= x1 && y >= y0 && y <= y1;
                    const auto got = dst[static_cast<std::size_t>(y * stride + k)];
                    const double expected = inside && k < 50 * channels ? src.at(x, y, k % channels) : 255.0;
                    ASSERT_EQ(got, expected) << tier.name << " " << x << ", " << y;
                }
            }
        }
    }
}

TEST(RemapKernels, PositionsThatAreNotNumbersOrHugeGiveZero) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const float hostile[] = {kNan, -kNan, kInfinity, -kInfinity, 1e30F, -1e30F, 2147483648.0F, -0.5F};
    for (const Tier& tier : tiers()) {
        const ForcedProcessor forced{tier.processor};
        for (const std::int32_t channels : {1, 4}) {
            const TestImage src{40, 20, 40 * channels, channels, Bytes(static_cast<std::size_t>(800 * channels), 90)};
            for (const float bad : hostile) {
                for (int lane = 0; lane < 19; ++lane) {
                    Maps maps{19, 2, std::vector<float>(38, 3.25F), std::vector<float>(38, 4.75F), {}};
                    maps.x[static_cast<std::size_t>(lane)] = bad;
                    maps.y[static_cast<std::size_t>(19 + lane)] = bad;
                    Bytes dst(static_cast<std::size_t>(38 * channels), 1);
                    remap(src, maps, dst.data(), 19 * channels, 0, 0, 18, 1);
                    for (int k = 0; k < 38 * channels; ++k) {
                        const int expected = k / channels % 19 == lane ? 0 : 90;
                        ASSERT_EQ(dst[static_cast<std::size_t>(k)], expected) << tier.name << " " << bad;
                    }
                }
            }
        }
    }
}

// The documented single-precision arithmetic with the rounding of the vector tier: to nearest, ties to even.
std::uint8_t vectorTierGray(const TestImage& src, float u, float v, int channel) {
    const bool valid =
        u >= 0.0F && v >= 0.0F && u < static_cast<float>(src.width - 1) && v < static_cast<float>(src.height - 1);
    if (!valid) {
        return 0;
    }
    const auto ix = static_cast<std::int32_t>(u);
    const auto iy = static_cast<std::int32_t>(v);
    const float fx = u - static_cast<float>(ix);
    const float fy = v - static_cast<float>(iy);
    const auto p = [&](std::int32_t x, std::int32_t y) { return static_cast<float>(src.at(x, y, channel)); };
    const float top = p(ix + 1, iy) * fx + p(ix, iy) * (1.0F - fx);
    const float bottom = p(ix + 1, iy + 1) * fx + p(ix, iy + 1) * (1.0F - fx);
    return static_cast<std::uint8_t>(std::lrintf(bottom * fy + top * (1.0F - fy)));
}

void expectVectorTierBits(const TestImage& src, const Maps& maps, const char* what) {
    const std::int32_t stride = maps.width * src.channels;
    Bytes dst(bytesOf(stride, maps.height), 5);
    remap(src, maps, dst.data(), stride, 0, 0, maps.width - 1, maps.height - 1);
    for (std::int32_t k = 0; k < maps.width * maps.height; ++k) {
        const auto i = static_cast<std::size_t>(k);
        for (int c = 0; c < src.channels; ++c) {
            ASSERT_EQ(dst[i * static_cast<std::size_t>(src.channels) + static_cast<std::size_t>(c)],
                      vectorTierGray(src, maps.x[i], maps.y[i], c))
                << what << ": pixel " << k << " of a row of " << maps.width << ", from " << maps.x[i] << ", "
                << maps.y[i] << " in " << src.width << " x " << src.height;
        }
    }
}

Maps mapsOf(std::int32_t width, std::int32_t height) {
    return {width, height, std::vector<float>(bytesOf(width, height)), std::vector<float>(bytesOf(width, height)), {}};
}

TEST(RemapKernels, TheVectorTierHasTheBitsOfTheDocumentedArithmetic) {
    if (!machineHasAvx2Tier()) {
        GTEST_SKIP() << "this machine runs the plain tier alone";
    }
    Random random(18);
    for (int round = 0; round < 400; ++round) {
        const TestImage src =
            randomImage(random, random.integer(1, 500), random.integer(1, 60), round % 2 == 0 ? 1 : 4, round % 3);
        Maps maps = mapsOf(random.integer(1, 300), 5);
        const double step = random.uniform(-2.5, 2.5);
        const double slope = random.uniform(-0.3, 0.3);
        // Some groups whose positions jump about, some that jitter around a row, most of them smooth.
        const double jitter = round % 4 == 0 ? 1e-4 : round % 4 == 1 ? 3.0 : 0.0;
        const double x0 = random.uniform(-0.2, 1.0) * src.width;
        const double y0 = std::floor(random.uniform(-0.2, 1.0) * src.height);
        for (std::size_t k = 0; k < maps.x.size(); ++k) {
            const auto x = static_cast<double>(k % static_cast<std::size_t>(maps.width));
            const auto y = static_cast<double>(k / static_cast<std::size_t>(maps.width));
            maps.x[k] = static_cast<float>(x0 + step * x + slope * y + jitter * random.normal());
            maps.y[k] = static_cast<float>(y0 + slope * x + y + jitter * random.normal());
        }
        expectVectorTierBits(src, maps, "random");
        if (::testing::Test::HasFatalFailure()) {
            FAIL() << "round " << round;
        }
    }
}

// Coordinates on both sides of every border that the vector tier treats apart.
TEST(RemapKernels, CoordinatesAtTheBordersOfFixedPointAndOfTheSourceAreExact) {
    if (!machineHasAvx2Tier()) {
        GTEST_SKIP() << "this machine runs the plain tier alone";
    }
    const auto below = [](float v) { return std::nextafter(v, -1e9F); };
    const float coordinates[] = {-1e-30F, -1e-6F, -0.0F, 0.0F, 1e-30F, 1e-6F, 0.5F, 1.0F, below(1.0F), 15.0F,
                                 below(127.0F), 127.0F, below(128.0F), 128.0F, below(129.0F), 128.5F, below(198.0F),
                                 198.0F, below(199.0F), 199.0F, 200.0F,
                                 // The same whole part in 16 bits as a valid one.
                                 32768.0F, 65536.0F + 140.0F, 131072.0F + 140.0F, -65536.0F + 140.0F, -65400.0F};
    Random random(19);
    for (const std::int32_t channels : {1, 4}) {
        const TestImage src = randomImage(random, 200, 200, channels, 0);
        for (const float special : coordinates) {
            for (const float base : {0.25F, 60.25F, 140.25F}) {
                for (std::int32_t lane = 0; lane < 128; lane += 13) {
                    // Once as the column of one pixel, once as the row of another, once as the row of all.
                    Maps maps = mapsOf(128, 3);
                    for (std::size_t k = 0; k < maps.x.size(); ++k) {
                        maps.x[k] = base + 0.4F * static_cast<float>(k % 128);
                        maps.y[k] = base;
                    }
                    maps.x[static_cast<std::size_t>(lane)] = special;
                    maps.y[static_cast<std::size_t>(128 + lane)] = special;
                    std::fill(maps.y.begin() + 256, maps.y.end(), special);
                    expectVectorTierBits(src, maps, "border");
                    ASSERT_FALSE(::testing::Test::HasFatalFailure());
                }
            }
        }
    }
}

TEST(RemapKernels, SourcesBeyondTheFixedPointAreSampledToo) {
    Random random(20);
    for (const Tier& tier : tiers()) {
        const ForcedProcessor forced{tier.processor};
        for (const std::int32_t channels : {1, 4}) {
            for (const bool wide : {true, false}) {
                const std::int32_t longSide = 70000;
                const TestImage src = randomImage(random, wide ? longSide : 20, wide ? 4 : longSide, channels, 0);
                Maps maps = mapsOf(80, 1);
                for (std::size_t k = 0; k < 80; ++k) {
                    const float far = (k % 2 == 0 ? 69900.25F : 32760.5F) + 0.5F * static_cast<float>(k);
                    maps.x[k] = wide ? far : 7.5F;
                    maps.y[k] = wide ? 1.5F : far;
                }
                Bytes dst(static_cast<std::size_t>(80 * channels), 5);
                remap(src, maps, dst.data(), 80 * channels, 0, 0, 79, 0);
                for (std::size_t k = 0; k < 80; ++k) {
                    const SourcePosition p{static_cast<double>(maps.x[k]), static_cast<double>(maps.y[k])};
                    // Positions are given, so that half a gray level is left but for the floats' own rounding.
                    ASSERT_NEAR(dst[k * static_cast<std::size_t>(channels)], modelGray(src, p, 0), 0.5 + 1e-3)
                        << tier.name << " " << k;
                }
            }
        }
    }
}

TEST(WarpKernels, HomographiesThatAreNotFiniteOrHugeNeverLeaveTheSource) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const double hostile[] = {kNan, std::numeric_limits<double>::infinity(), 1e300, -1e300, 1e38, 0.0};
    for (const Tier& tier : tiers()) {
        const ForcedProcessor forced{tier.processor};
        GuardedBuffer<std::uint8_t> src(17 * 3 * 4, Guard::atEnd);
        GuardedBuffer<std::uint8_t> dst(19 * 3 * 4, Guard::atEnd);
        std::fill(src.begin(), src.end(), std::uint8_t{50});
        for (const double bad : hostile) {
            for (int element = 0; element < 9 + 8; ++element) {
                WarpCase c = identityWarp();
                (element < 9 ? c.hom[element] : c.camera[element]) = bad;
                perspectiveTransAndDistortImage_8uC1(c.hom, c.camera, src.data(), 17, 17, 3, dst.data(), 19, 19, 3);
                perspectiveTransAndDistortImage_8uC4(c.hom, c.camera, src.data(), 68, 17, 3, dst.data(), 76, 19, 3);
                for (const std::uint8_t gray : dst) {
                    ASSERT_TRUE(gray == 0 || gray == 50);
                }
            }
        }
    }
}

// Every width with its tail, odd strides, tiny sources, each buffer ending (or starting) at a page that may not be
// touched.
void warpBehindGuards(std::int32_t channels, Guard guard, std::int32_t srcWidth, std::int32_t srcHeight,
                      std::int32_t dstWidth, std::int32_t padding, Random& random) {
    const std::int32_t srcStride = srcWidth * channels + padding;
    const std::int32_t dstStride = dstWidth * channels + padding;
    constexpr std::int32_t kDstHeight = 3;
    // The last row ends with its last pixel, not with the stride's padding.
    const std::size_t srcBytes = bytesOf(srcStride, srcHeight) - static_cast<std::size_t>(padding);
    const std::size_t dstBytes = bytesOf(dstStride, kDstHeight) - static_cast<std::size_t>(padding);
    GuardedBuffer<std::uint8_t> src(srcBytes, guard);
    GuardedBuffer<std::uint8_t> dst(dstBytes, guard);
    GuardedBuffer<float> mapX(bytesOf(dstWidth, kDstHeight), guard);
    GuardedBuffer<float> mapY(bytesOf(dstWidth, kDstHeight), guard);
    std::fill(src.begin(), src.end(), std::uint8_t{123});
    for (int corner = 0; corner < 2; ++corner) {
        WarpCase c = identityWarp();
        if (corner == 1) {  // the last pixels of the source serve the last ones of the destination
            c.hom[2] = srcWidth - dstWidth - 0.25;
            c.hom[5] = srcHeight - kDstHeight - 0.25;
        }
        c.hom[1] = random.uniform(-0.3, 0.3);
        c.hom[3] = random.uniform(-0.3, 0.3);
        (channels == 1 ? perspectiveTransAndDistortImage_8uC1 : perspectiveTransAndDistortImage_8uC4)(
            c.hom, c.camera, src.data(), srcStride, srcWidth, srcHeight, dst.data(), dstStride, dstWidth, kDstHeight);
        std::int32_t box[4];
        zelm::perspectiveTransAndDistortMap_32f(c.hom, c.camera, srcWidth, srcHeight, dstWidth, kDstHeight, mapX.data(),
                                                dstWidth * 4, mapY.data(), dstWidth * 4, &box[0], &box[1], &box[2],
                                                &box[3]);
        (channels == 1 ? remapImage_8uC1 : remapImage_8uC4)(
            src.data(), srcStride, srcWidth, srcHeight, dst.data(), dstStride, dstWidth, kDstHeight, mapX.data(),
            dstWidth * 4, mapY.data(), dstWidth * 4, 0, 0, dstWidth - 1, kDstHeight - 1);
    }
}

TEST(WarpKernels, NoTierTouchesMemoryOutsideItsBuffers) {
    for (const Tier& tier : tiers()) {
        const ForcedProcessor forced{tier.processor};
        Random random(17);
        for (const std::int32_t channels : {1, 4}) {
            for (const Guard guard : {Guard::atStart, Guard::atEnd}) {
                for (std::int32_t width = 1; width <= 70; ++width) {
                    warpBehindGuards(channels, guard, width, 1 + width % 4, width, width % 3, random);
                }
                for (const std::int32_t width : {127, 128, 129, 191, 193, 260}) {
                    warpBehindGuards(channels, guard, width, 3 + width % 4, width, width % 3, random);
                }
                for (std::int32_t srcWidth = 1; srcWidth <= 3; ++srcWidth) {
                    for (std::int32_t srcHeight = 1; srcHeight <= 3; ++srcHeight) {
                        warpBehindGuards(channels, guard, srcWidth, srcHeight, 17, 1, random);
                    }
                }
            }
        }
    }
    SUCCEED();
}

}  // namespace
