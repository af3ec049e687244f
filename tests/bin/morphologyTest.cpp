// Binarisation, dilation, erosion, opening and closing: contract, known pictures, the deliberate one-sided region check
// and a pixel-by-pixel model on random images. Outside its region the target stays untouched in every test.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "guardedBuffer.h"
#include "processors.h"
#include "random.h"
#include "testImage.h"
#include "zelm/bin.h"

using zelmtest::ForcedProcessor;
using zelmtest::Guard;
using zelmtest::GuardedBuffer;
using zelmtest::Processor;
using zelmtest::Random;
using zelmtest::TestImage;

namespace {

using Operation = int32_t (*)(const ZelmImage*, const ZelmRect*, int32_t, int32_t, ZelmImage*);

constexpr uint8_t kUntouched = 99;

// One dilation (or erosion) of a region on its own: a pixel sees the neighbours inside the region.
TestImage modelPass(const TestImage& in, int32_t threshold, bool dilate) {
    const int32_t t = std::clamp(threshold, 0, 255);
    TestImage out(in.width, in.height);
    for (int32_t y = 0; y < in.height; ++y) {
        for (int32_t x = 0; x < in.width; ++x) {
            bool any = false;
            bool every = true;
            for (int32_t v = std::max(y - 1, 0); v <= std::min(y + 1, in.height - 1); ++v) {
                for (int32_t u = std::max(x - 1, 0); u <= std::min(x + 1, in.width - 1); ++u) {
                    any = any || in.at(u, v) >= t;
                    every = every && in.at(u, v) >= t;
                }
            }
            out.at(x, y) = (dilate ? any : every) ? 255 : 0;
        }
    }
    return out;
}

TestImage cut(const TestImage& image, const ZelmRect& region) {
    TestImage out(region.width, region.height);
    for (int32_t y = 0; y < region.height; ++y) {
        for (int32_t x = 0; x < region.width; ++x) {
            out.at(x, y) = image.at(region.x + x, region.y + y);
        }
    }
    return out;
}

TestImage model(TestImage image, int32_t threshold, int32_t iterations, bool dilate) {
    for (int32_t i = 0; i < iterations; ++i) {
        image = modelPass(image, threshold, dilate);
    }
    return image;
}

void expectRegion(const TestImage& whole, const ZelmRect& region, const TestImage& expected, const char* what) {
    for (int32_t y = 0; y < whole.height; ++y) {
        for (int32_t x = 0; x < whole.width; ++x) {
            const bool inside =
                x >= region.x && y >= region.y && x < region.x + region.width && y < region.y + region.height;
            ASSERT_EQ(whole.at(x, y), inside ? expected.at(x - region.x, y - region.y) : kUntouched)
                << what << " at " << x << ", " << y;
        }
    }
}

int32_t run(Operation operation, TestImage& src, const ZelmRect& region, int32_t threshold, int32_t iterations,
            TestImage& dst) {
    const ZelmImage from = src.record();
    ZelmImage to = dst.record();
    return operation(&from, &region, threshold, iterations, &to);
}

int32_t binarise(TestImage& src, const ZelmRect& region, int32_t threshold, TestImage& dst) {
    const ZelmImage from = src.record();
    ZelmImage to = dst.record();
    return zelmBinBinaryImage(&from, &region, threshold, &to);
}

bool allAre(const TestImage& image, uint8_t value) {
    return std::all_of(image.pixels.begin(), image.pixels.end(), [value](uint8_t p) { return p == value; });
}

// --- binarisation

TEST(BinaryImage, BadArgumentsAreRefusedAndNothingIsWritten) {
    TestImage image(8, 6, 200);
    TestImage out(8, 6, kUntouched);
    const ZelmImage src = image.record();
    ZelmImage dst = out.record();
    const ZelmRect region = image.all();
    const ZelmImage noWidth = {image.pixels.data(), 0, 6};
    const ZelmImage noHeight = {image.pixels.data(), 8, 0};
    EXPECT_EQ(zelmBinBinaryImage(nullptr, &region, 1, &dst), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmBinBinaryImage(&noWidth, &region, 1, &dst), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmBinBinaryImage(&noHeight, &region, 1, &dst), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmBinBinaryImage(&src, nullptr, 1, &dst), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmBinBinaryImage(&src, &region, 1, nullptr), ZELM_ERR_PARAM);
    for (const ZelmRect bad : {ZelmRect{0, 0, -1, 6}, ZelmRect{0, 0, 8, -1}, ZelmRect{1, 0, 8, 6}, ZelmRect{0, 1, 8, 6},
                               ZelmRect{0, 0, 9, 6}, ZelmRect{0, 0, 8, 7}, ZelmRect{INT32_MAX, 0, 1, 1},
                               ZelmRect{1, 0, INT32_MAX, 1}, ZelmRect{0, 1, 1, INT32_MAX}}) {
        EXPECT_EQ(zelmBinBinaryImage(&src, &bad, 1, &dst), ZELM_ERR_PARAM);
    }
    EXPECT_TRUE(allAre(out, kUntouched));
}

TEST(BinaryImage, ThresholdZeroMakesEveryPixelForegroundAnd256None) {
    Random random(611);
    TestImage image = zelmtest::grayNoise(random, 40, 30);
    for (const int32_t t : {INT32_MIN, -1, 0, 256, 257, INT32_MAX}) {
        TestImage out(40, 30, kUntouched);
        ASSERT_EQ(binarise(image, image.all(), t, out), ZELM_OK);
        EXPECT_TRUE(allAre(out, t <= 0 ? 255 : 0)) << t;
    }
}

TEST(BinaryImage, APixelAtTheThresholdIsForeground) {
    TestImage image(3, 1);
    image.pixels = {99, 100, 101};
    TestImage out(3, 1, kUntouched);
    ASSERT_EQ(binarise(image, image.all(), 100, out), ZELM_OK);
    EXPECT_EQ(out.pixels, (std::vector<uint8_t>{0, 255, 255}));
}

TEST(BinaryImage, ARegionOfHeightZeroWritesNothing) {
    TestImage image(8, 6, 200);
    TestImage out(8, 6, kUntouched);
    EXPECT_EQ(binarise(image, {2, 2, 3, 0}, 1, out), ZELM_OK);
    EXPECT_EQ(binarise(image, {2, 2, 0, 3}, 1, out), ZELM_OK);
    EXPECT_TRUE(allAre(out, kUntouched));
}

TEST(BinaryImage, TheRegionIsCheckedAgainstTheTargetOnly) {
    // The source record claims a width of 4, so its second row starts at pixel 4; a region of width 6 is still taken.
    TestImage image(12, 2, 10);
    image.pixels[4 + 5] = 200;
    const ZelmImage narrow = {image.pixels.data(), 4, 2};
    TestImage out(6, 2, kUntouched);
    ZelmImage dst = out.record();
    const ZelmRect region = {0, 0, 6, 2};
    ASSERT_EQ(zelmBinBinaryImage(&narrow, &region, 100, &dst), ZELM_OK);
    EXPECT_EQ(out.at(5, 1), 255);
    EXPECT_EQ(std::count(out.pixels.begin(), out.pixels.end(), 255), 1);
    // A source large enough does not help a target that is not.
    TestImage large(20, 20, 10);
    EXPECT_EQ(binarise(large, {0, 0, 7, 2}, 100, out), ZELM_ERR_PARAM);
}

TEST(BinaryImage, ANegativePositionIsNotChecked) {
    // Row 1, column -2 is row 0, column 6 of an image of width 8.
    TestImage image(8, 4, 10);
    image.at(6, 0) = 200;
    TestImage out(8, 4, kUntouched);
    ASSERT_EQ(binarise(image, {-2, 1, 2, 1}, 100, out), ZELM_OK);
    EXPECT_EQ(out.at(6, 0), 255);
    EXPECT_EQ(out.at(7, 0), 0);
    EXPECT_EQ(std::count(out.pixels.begin(), out.pixels.end(), kUntouched), 30);
}

TEST(BinaryImage, MatchesThePixelRuleOnRandomRegions) {
    Random random(612);
    for (int trial = 0; trial < 300; ++trial) {
        TestImage image = zelmtest::grayNoise(random, random.integer(1, 70), random.integer(1, 20));
        TestImage out(image.width, image.height, kUntouched);
        const ZelmRect region = randomRegion(random, image, 1);
        const int32_t t = random.integer(-5, 260);
        ASSERT_EQ(binarise(image, region, t, out), ZELM_OK);
        TestImage expected = cut(image, region);
        for (auto& p : expected.pixels) {
            p = p < t ? 0 : 255;
        }
        expectRegion(out, region, expected, "binary image");
    }
}

TEST(BinaryImage, MayRunInPlace) {
    Random random(613);
    TestImage image = zelmtest::grayNoise(random, 50, 40);
    TestImage out(50, 40);
    ASSERT_EQ(binarise(image, image.all(), 128, out), ZELM_OK);
    ASSERT_EQ(binarise(image, image.all(), 128, image), ZELM_OK);
    EXPECT_EQ(image.pixels, out.pixels);
}

// --- morphology

TEST(Morphology, BadArgumentsAreRefusedAndNothingIsWritten) {
    TestImage image(8, 6, 200);
    TestImage out(8, 6, kUntouched);
    const ZelmImage src = image.record();
    ZelmImage dst = out.record();
    const ZelmRect region = image.all();
    for (const Operation operation : {zelmBinDilation, zelmBinErosion, zelmBinOpening, zelmBinClosing}) {
        EXPECT_EQ(operation(nullptr, &region, 1, 1, &dst), ZELM_ERR_PARAM);
        EXPECT_EQ(operation(&src, nullptr, 1, 1, &dst), ZELM_ERR_PARAM);
        EXPECT_EQ(operation(&src, &region, 1, 1, nullptr), ZELM_ERR_PARAM);
        for (const int32_t iterations : {0, -1, INT32_MIN, 6, 7, INT32_MAX}) {
            EXPECT_EQ(operation(&src, &region, 1, iterations, &dst), ZELM_ERR_PARAM) << iterations;
        }
        for (const ZelmRect bad :
             {ZelmRect{0, 0, 1, 6}, ZelmRect{0, 0, 8, 1}, ZelmRect{1, 0, 8, 6}, ZelmRect{0, 1, 8, 6},
              ZelmRect{INT32_MAX, 0, 2, 2}, ZelmRect{0, 0, -3, -3}, ZelmRect{0, 0, 0, 0}}) {
            EXPECT_EQ(operation(&src, &bad, 1, 1, &dst), ZELM_ERR_PARAM);
        }
        const ZelmImage narrow = {image.pixels.data(), 1, 6};
        const ZelmImage low = {image.pixels.data(), 8, 1};
        EXPECT_EQ(operation(&narrow, &region, 1, 1, &dst), ZELM_ERR_PARAM);
        EXPECT_EQ(operation(&low, &region, 1, 1, &dst), ZELM_ERR_PARAM);
    }
    EXPECT_TRUE(allAre(out, kUntouched));
}

TEST(Morphology, ARegionAsWideOrHighAsTheIterationsIsRefused) {
    TestImage image(8, 8, 200);
    TestImage out(8, 8, kUntouched);
    for (const Operation operation : {zelmBinDilation, zelmBinErosion}) {
        EXPECT_EQ(run(operation, image, {0, 0, 3, 8}, 1, 3, out), ZELM_ERR_PARAM);
        EXPECT_EQ(run(operation, image, {0, 0, 8, 3}, 1, 3, out), ZELM_ERR_PARAM);
        EXPECT_EQ(run(operation, image, {0, 0, 4, 4}, 1, 3, out), ZELM_OK);
    }
}

TEST(Morphology, TheRegionIsCheckedAgainstTheTargetOnly) {
    TestImage large(20, 20, 200);
    TestImage small(6, 6, kUntouched);
    EXPECT_EQ(run(zelmBinDilation, large, {0, 0, 7, 6}, 1, 1, small), ZELM_ERR_PARAM);
    // The source record claims a width of 4, so its rows start 4 pixels apart; a region of width 6 is still taken.
    const ZelmImage narrow = {large.pixels.data(), 4, 10};
    large.pixels[4 * 3 + 5] = 10;
    ZelmImage dst = small.record();
    const ZelmRect region = {0, 0, 6, 6};
    ASSERT_EQ(zelmBinErosion(&narrow, &region, 100, 1, &dst), ZELM_OK);
    // Seen at (5, 3) and, a row later, at (1, 4).
    for (int32_t y = 0; y < 6; ++y) {
        for (int32_t x = 0; x < 6; ++x) {
            const bool hit = (x >= 4 && y >= 2 && y <= 4) || (x <= 2 && y >= 3);
            ASSERT_EQ(small.at(x, y), hit ? 0 : 255) << x << ", " << y;
        }
    }
}

TEST(Morphology, DilationGrowsAPixelToASquare) {
    TestImage image(11, 11);
    image.at(5, 5) = 255;
    for (const int32_t iterations : {1, 2, 3}) {
        TestImage out(11, 11, kUntouched);
        ASSERT_EQ(run(zelmBinDilation, image, image.all(), 128, iterations, out), ZELM_OK);
        TestImage expected(11, 11);
        const int32_t side = 2 * iterations + 1;
        expected.fillRect({5 - iterations, 5 - iterations, side, side}, 255);
        EXPECT_EQ(out.pixels, expected.pixels) << iterations;
    }
}

TEST(Morphology, ErosionLeavesAFullRegionFullToItsBorder) {
    TestImage image(9, 7, 200);
    for (const int32_t iterations : {1, 2, 5}) {
        TestImage out(9, 7, kUntouched);
        ASSERT_EQ(run(zelmBinErosion, image, image.all(), 200, iterations, out), ZELM_OK);
        EXPECT_TRUE(allAre(out, 255));
    }
}

TEST(Morphology, TheThresholdIsClampedTo255) {
    // Unclamped, a threshold of 256 would find no foreground.
    TestImage image(5, 5, 255);
    TestImage out(5, 5, kUntouched);
    ASSERT_EQ(run(zelmBinErosion, image, image.all(), 1000, 1, out), ZELM_OK);
    EXPECT_TRUE(allAre(out, 255));
    // And below 0 everything is foreground, like at 0.
    TestImage black(5, 5, 0);
    ASSERT_EQ(run(zelmBinErosion, black, black.all(), -7, 2, out), ZELM_OK);
    EXPECT_TRUE(allAre(out, 255));
}

TEST(Morphology, PixelsOutsideTheRegionAreNotSeen) {
    TestImage image(10, 10, 255);
    image.fillRect({3, 3, 4, 4}, 0);
    TestImage out(10, 10, kUntouched);
    ASSERT_EQ(run(zelmBinDilation, image, {3, 3, 4, 4}, 128, 1, out), ZELM_OK);
    expectRegion(out, {3, 3, 4, 4}, TestImage(4, 4, 0), "dilation");
}

TEST(Morphology, DilationAndErosionMatchAModelPixelByPixel) {
    Random random(614);
    for (int trial = 0; trial < 1500; ++trial) {
        TestImage image = trial % 2 == 0 ? zelmtest::grayNoise(random, random.integer(2, 50), random.integer(2, 24))
                                         : zelmtest::noiseImage(random, random.integer(2, 50), random.integer(2, 24),
                                                                random.uniform() < 0.5 ? 0.05 : 0.95);
        const ZelmRect region = randomRegion(random, image, 2);
        const int32_t most = std::min({4, region.width - 1, region.height - 1});
        const int32_t iterations = random.integer(1, most);
        const int32_t t = random.integer(-3, 259);
        for (const bool dilate : {false, true}) {
            TestImage out(image.width, image.height, kUntouched);
            ASSERT_EQ(run(dilate ? zelmBinDilation : zelmBinErosion, image, region, t, iterations, out), ZELM_OK);
            expectRegion(out, region, model(cut(image, region), t, iterations, dilate),
                         dilate ? "dilation" : "erosion");
        }
    }
}

// One pixel becomes the square about it, wherever it lies: at corners and borders too.
TEST(Morphology, OnePixelBecomesASquare) {
    for (const int32_t width : {9, 14, 63, 64, 65, 70}) {
        constexpr int32_t kHeight = 12;
        for (const int32_t rounds : {1, 2, 3, 4, 5, 8}) {
            for (int32_t at = 0; at < width * kHeight; ++at) {
                TestImage image(width, kHeight);
                image.pixels[static_cast<std::size_t>(at)] = 200;
                TestImage out(width, kHeight, kUntouched);
                ASSERT_EQ(run(zelmBinDilation, image, image.all(), 100, rounds, out), ZELM_OK);
                const int32_t left = std::max(at % width - rounds, 0);
                const int32_t top = std::max(at / width - rounds, 0);
                TestImage expected(width, kHeight);
                expected.fillRect({left, top, std::min(at % width + rounds + 1, width) - left,
                                   std::min(at / width + rounds + 1, kHeight) - top},
                                  255);
                ASSERT_TRUE(out.pixels == expected.pixels)
                    << "pixel " << at << " of rows of " << width << ", " << rounds << " rounds";
            }
        }
    }
}

// Wide regions and many rounds: windows beyond a word of 64 pixels, beyond the region and of every remainder.
TEST(Morphology, ManyRoundsMatchAModelPixelByPixel) {
    Random random(618);
    for (int trial = 0; trial < 120; ++trial) {
        const bool vectors = trial % 2 == 0 && zelmtest::machineHasAvx2Tier();
        const ForcedProcessor forced(vectors ? Processor{} : zelmtest::plainProcessor());
        const int32_t width = random.integer(2, 300);
        const int32_t height = random.integer(2, 150);
        TestImage image = zelmtest::noiseImage(random, width, height, random.uniform() < 0.5 ? 0.0003 : 0.9997);
        const ZelmRect region = randomRegion(random, image, 2);
        const int32_t iterations = random.integer(1, std::min(region.width, region.height) - 1);
        for (const bool dilate : {false, true}) {
            TestImage out(width, height, kUntouched);
            ASSERT_EQ(run(dilate ? zelmBinDilation : zelmBinErosion, image, region, 128, iterations, out), ZELM_OK);
            expectRegion(out, region, model(cut(image, region), 128, iterations, dilate),
                         dilate ? "dilation" : "erosion");
        }
    }
}

// No pixel beside the region is touched, on pages where that would end the program.
TEST(Morphology, StaysWithinItsImages) {
    Random random(619);
    for (const int32_t width : {2, 15, 16, 17, 63, 64, 65, 127, 128, 129, 200}) {
        for (const Guard guard : {Guard::atStart, Guard::atEnd}) {
            constexpr int32_t kHeight = 5;
            const auto count = static_cast<std::size_t>(width * kHeight);
            GuardedBuffer<uint8_t> from(count, guard);
            GuardedBuffer<uint8_t> to(count, guard);
            TestImage image = zelmtest::grayNoise(random, width, kHeight);
            std::copy(image.pixels.begin(), image.pixels.end(), from.begin());
            const ZelmImage src = {from.data(), width, kHeight};
            ZelmImage dst = {to.data(), width, kHeight};
            const ZelmRect region = image.all();
            TestImage out(width, kHeight);
            for (const Operation operation : {zelmBinDilation, zelmBinErosion, zelmBinOpening, zelmBinClosing}) {
                ASSERT_EQ(operation(&src, &region, 128, 1, &dst), ZELM_OK);
                ASSERT_EQ(run(operation, image, region, 128, 1, out), ZELM_OK);
                ASSERT_TRUE(std::equal(to.begin(), to.end(), out.pixels.begin())) << width;
            }
            ASSERT_EQ(zelmBinBinaryImage(&src, &region, 128, &dst), ZELM_OK);
            ASSERT_EQ(binarise(image, region, 128, out), ZELM_OK);
            ASSERT_TRUE(std::equal(to.begin(), to.end(), out.pixels.begin())) << width;
        }
    }
}

// Too large for the target is said before memory is asked for or a pixel is read.
TEST(Morphology, AHugeRegionIsRefused) {
    TestImage image(8, 8, 200);
    TestImage out(8, 8, kUntouched);
    for (const Operation operation : {zelmBinDilation, zelmBinErosion, zelmBinOpening, zelmBinClosing}) {
        EXPECT_EQ(run(operation, image, {0, 0, INT32_MAX, INT32_MAX}, 128, 1, out), ZELM_ERR_PARAM);
    }
}

TEST(Morphology, ErosionIsTheDualOfDilation) {
    Random random(615);
    TestImage image = zelmtest::noiseImage(random, 60, 50, 0.5);
    TestImage inverse = image;
    std::for_each(inverse.pixels.begin(), inverse.pixels.end(), [](uint8_t& p) { p = static_cast<uint8_t>(255 - p); });
    TestImage eroded(60, 50);
    TestImage dilated(60, 50);
    ASSERT_EQ(run(zelmBinErosion, image, image.all(), 128, 2, eroded), ZELM_OK);
    ASSERT_EQ(run(zelmBinDilation, inverse, image.all(), 128, 2, dilated), ZELM_OK);
    for (size_t i = 0; i < eroded.pixels.size(); ++i) {
        ASSERT_EQ(eroded.pixels[i], 255 - dilated.pixels[i]);
    }
}

TEST(Morphology, OpeningAndClosingMatchAModelPixelByPixel) {
    Random random(616);
    for (int trial = 0; trial < 500; ++trial) {
        TestImage image = zelmtest::noiseImage(random, random.integer(4, 40), random.integer(4, 24), random.uniform());
        const ZelmRect region = {0, 0, random.integer(4, image.width), random.integer(4, image.height)};
        const int32_t iterations = random.integer(1, 3);
        for (const bool opening : {false, true}) {
            TestImage out(image.width, image.height, kUntouched);
            ASSERT_EQ(run(opening ? zelmBinOpening : zelmBinClosing, image, region, 128, iterations, out), ZELM_OK);
            const TestImage first = model(cut(image, region), 128, iterations, !opening);
            expectRegion(out, region, model(first, 128, iterations, opening), opening ? "opening" : "closing");
        }
    }
}

TEST(Morphology, OpeningRemovesSpecksAndClosingFillsHoles) {
    TestImage image(20, 20);
    image.fillRect({6, 6, 8, 8}, 255);
    TestImage block = image;
    image.at(2, 2) = 255;
    TestImage out(20, 20, kUntouched);
    ASSERT_EQ(run(zelmBinOpening, image, image.all(), 128, 1, out), ZELM_OK);
    EXPECT_EQ(out.pixels, block.pixels);
    TestImage holed = block;
    holed.at(9, 9) = 0;
    ASSERT_EQ(run(zelmBinClosing, holed, holed.all(), 128, 1, out), ZELM_OK);
    EXPECT_EQ(out.pixels, block.pixels);
}

TEST(Morphology, OpeningAndClosingMayRunInPlace) {
    Random random(617);
    for (const Operation operation : {zelmBinOpening, zelmBinClosing}) {
        TestImage image = zelmtest::noiseImage(random, 40, 30, 0.7);
        TestImage out(40, 30, kUntouched);
        ASSERT_EQ(run(operation, image, image.all(), 128, 2, out), ZELM_OK);
        ASSERT_EQ(run(operation, image, image.all(), 128, 2, image), ZELM_OK);
        EXPECT_EQ(image.pixels, out.pixels);
    }
}

TEST(Morphology, OpeningAndClosingMustStartAtTheOrigin) {
    TestImage image(12, 12, 200);
    TestImage out(12, 12, kUntouched);
    for (const Operation operation : {zelmBinOpening, zelmBinClosing}) {
        EXPECT_EQ(run(operation, image, {1, 0, 6, 6}, 128, 1, out), ZELM_ERR_PARAM);
        EXPECT_EQ(run(operation, image, {0, 1, 6, 6}, 128, 1, out), ZELM_ERR_PARAM);
        // Before the origin it would write outside the intermediate image.
        EXPECT_EQ(run(operation, image, {-1, 0, 6, 6}, 128, 1, out), ZELM_ERR_PARAM);
        EXPECT_EQ(run(operation, image, {0, -1, 6, 6}, 128, 1, out), ZELM_ERR_PARAM);
        EXPECT_TRUE(allAre(out, kUntouched));
        EXPECT_EQ(run(operation, image, {0, 0, 6, 6}, 128, 1, out), ZELM_OK);
        out = TestImage(12, 12, kUntouched);
    }
}

}  // namespace
