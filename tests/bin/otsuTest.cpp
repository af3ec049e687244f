// Otsu thresholds of histograms, image regions and lists of gray levels: contract, known values, an exhaustive oracle
// and the rules for what is no gray level.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "grayHistogram.h"
#include "guardedBuffer.h"
#include "random.h"
#include "testImage.h"
#include "zelm/bin.h"

using zelmtest::Guard;
using zelmtest::GuardedBuffer;
using zelmtest::Random;
using zelmtest::TestImage;

namespace {

int32_t thresholdOf(const std::vector<uint32_t>& h) {
    return zelmBinOtsuThresholdHistogram(static_cast<int32_t>(h.size()), h.data());
}

int32_t thresholdOfGrays(const std::vector<double>& values) {
    return zelmBinOtsuThresholdGray(static_cast<int32_t>(values.size()), values.data());
}

// Between-class variance of the split after level k from the class means, times N^2.
double betweenClasses(const std::vector<uint32_t>& h, size_t k) {
    double count[2] = {};
    double moment[2] = {};
    for (size_t i = 0; i < h.size(); ++i) {
        count[i > k] += h[i];
        moment[i > k] += static_cast<double>(i) * h[i];
    }
    if (count[0] == 0.0 || count[1] == 0.0) {
        return -1.0;
    }
    const double difference = moment[0] / count[0] - moment[1] / count[1];
    return count[0] * count[1] * difference * difference;
}

TEST(OtsuThreshold, BadArgumentsAreRefused) {
    const uint32_t h[2] = {1, 1};
    const double v[1] = {0.0};
    TestImage image(4, 4);
    const ZelmImage record = image.record();
    const ZelmRect region = image.all();
    EXPECT_EQ(zelmBinOtsuThresholdHistogram(0, h), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmBinOtsuThresholdHistogram(-1, h), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmBinOtsuThresholdHistogram(2, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmBinOtsuThresholdGray(0, v), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmBinOtsuThresholdGray(1, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmBinOtsuThresholdImage(nullptr, &region), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmBinOtsuThresholdImage(&record, nullptr), ZELM_ERR_PARAM);
}

TEST(OtsuThreshold, OneGrayLevelGivesOne) {
    TestImage image(16, 9, 77);
    const ZelmImage record = image.record();
    const ZelmRect region = image.all();
    EXPECT_EQ(zelmBinOtsuThresholdImage(&record, &region), 1);
}

TEST(OtsuThreshold, TwoLevelsGiveOneAboveTheLower) {
    TestImage image(16, 8, 10);
    image.fillRect({0, 0, 8, 8}, 200);
    const ZelmImage record = image.record();
    const ZelmRect region = image.all();
    EXPECT_EQ(zelmBinOtsuThresholdImage(&record, &region), 11);
}

TEST(OtsuThreshold, AnEmptyHistogramGivesOne) {
    EXPECT_EQ(thresholdOf(std::vector<uint32_t>(256, 0)), 1);
}

TEST(OtsuThreshold, AHistogramOfOneBinGivesOne) {
    EXPECT_EQ(thresholdOf({12}), 1);
}

TEST(OtsuThreshold, TiesKeepTheLowestLevel) {
    // All empty bins between two peaks give the same variance.
    EXPECT_EQ(thresholdOf({0, 5, 0, 0, 0, 5, 0}), 2);
    // Symmetric histogram: splits after 0 and after 1 tie.
    EXPECT_EQ(thresholdOf({4, 1, 4}), 1);
}

TEST(OtsuThreshold, CountsAboveTwoToTheSixteenDoNotOverflow) {
    // (N - w) * w is 2^60 here.
    EXPECT_EQ(thresholdOf({1U << 30, 0, 1U << 30, 0}), 1);
    EXPECT_EQ(thresholdOf({0, 1U << 30, 1U << 30, 0, 1U << 30}), 3);
}

TEST(OtsuThreshold, ARegionWithoutPixelsGivesOne) {
    TestImage image(8, 8, 3);
    const ZelmImage record = image.record();
    for (const ZelmRect region : {ZelmRect{0, 0, 0, 8}, ZelmRect{0, 0, 8, 0}, ZelmRect{4, 4, -2, 3},
                                  ZelmRect{4, 4, 3, -2}, ZelmRect{0, 0, INT32_MIN, INT32_MIN}}) {
        EXPECT_EQ(zelmBinOtsuThresholdImage(&record, &region), 1);
    }
}

TEST(OtsuThreshold, OnlyTheRegionCounts) {
    TestImage image(20, 10, 250);
    image.fillRect({3, 2, 7, 5}, 40);
    image.fillRect({3, 2, 2, 5}, 20);
    const ZelmImage record = image.record();
    const ZelmRect region = {3, 2, 7, 5};
    EXPECT_EQ(zelmBinOtsuThresholdImage(&record, &region), 21);
}

TEST(OtsuThreshold, RegionHistogramMatchesAPlainCount) {
    Random random(601);
    for (int trial = 0; trial < 200; ++trial) {
        TestImage image = zelmtest::grayNoise(random, random.integer(1, 40), random.integer(1, 30));
        const ZelmRect region = randomRegion(random, image, 1);
        std::vector<uint32_t> h(256, 0);
        for (int32_t y = region.y; y < region.y + region.height; ++y) {
            for (int32_t x = region.x; x < region.x + region.width; ++x) {
                ++h[image.at(x, y)];
            }
        }
        const ZelmImage record = image.record();
        EXPECT_EQ(zelmBinOtsuThresholdImage(&record, &region), thresholdOf(h)) << trial;
    }
}

// Noise, even ground and both, at widths that leave single pixels.
TEST(GrayHistogram, CountsEveryPixelOfLargeRegions) {
    Random random(603);
    for (int trial = 0; trial < 12; ++trial) {
        TestImage image = zelmtest::grayNoise(random, 700 + trial, 500);
        image.fillRect({100, 50, trial % 3 * 250, 300}, static_cast<uint8_t>(random.integer(0, 255)));
        const ZelmRect region = {trial % 5, 3, image.width - 5 - trial % 2, 490};
        std::vector<uint32_t> expected(256, 0);
        for (int32_t y = region.y; y < region.y + region.height; ++y) {
            for (int32_t x = region.x; x < region.x + region.width; ++x) {
                ++expected[image.at(x, y)];
            }
        }
        uint32_t h[256];
        zelm::grayHistogram(image.record(), region, h);
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), h)) << trial;
        const ZelmImage record = image.record();
        EXPECT_EQ(zelmBinOtsuThresholdImage(&record, &region), thresholdOf(expected)) << trial;
    }
}

TEST(GrayHistogram, StaysWithinTheImage) {
    Random random(604);
    for (const int32_t width : {1, 3, 8, 520, 521, 527}) {
        for (const Guard guard : {Guard::atStart, Guard::atEnd}) {
            constexpr int32_t kHeight = 512;
            GuardedBuffer<uint8_t> pixels(static_cast<std::size_t>(width * kHeight), guard);
            std::vector<uint32_t> expected(256, 0);
            for (uint8_t& pixel : pixels) {
                pixel = static_cast<uint8_t>(random.integer(0, 255));
                ++expected[pixel];
            }
            uint32_t h[256];
            zelm::grayHistogram({pixels.data(), width, kHeight}, {0, 0, width, kHeight}, h);
            ASSERT_TRUE(std::equal(expected.begin(), expected.end(), h)) << width;
        }
    }
}

TEST(OtsuThreshold, TheSplitHasTheLargestVarianceBetweenClasses) {
    Random random(602);
    for (int trial = 0; trial < 1000; ++trial) {
        std::vector<uint32_t> h(static_cast<size_t>(random.integer(2, 60)));
        for (auto& count : h) {
            count = random.uniform() < 0.4 ? 0U : static_cast<uint32_t>(random.integer(0, 1000));
        }
        double best = -1.0;
        for (size_t k = 0; k < h.size(); ++k) {
            best = std::max(best, betweenClasses(h, k));
        }
        if (best < 0.0) {
            continue;
        }
        const auto k = static_cast<size_t>(thresholdOf(h) - 1);
        // Both formulas round in about 1e-15 of the variance.
        EXPECT_GE(betweenClasses(h, k), best * (1.0 - 1e-12)) << trial;
        // Strictly better splits below would have been taken first; among equals the lowest is taken.
        for (size_t lower = 0; lower < k; ++lower) {
            EXPECT_LT(betweenClasses(h, lower), best * (1.0 + 1e-12)) << trial;
        }
    }
}

TEST(OtsuThreshold, GrayValuesAreRoundedAndClamped) {
    // The threshold of two values is one above the lower one's bin.
    EXPECT_EQ(thresholdOfGrays({254.4, 254.6}), 255);   // bins 254 and 255
    EXPECT_EQ(thresholdOfGrays({254.6, 255.0}), 1);     // one bin
    EXPECT_EQ(thresholdOfGrays({300.0, 254.6}), 1);     // both in bin 255
    EXPECT_EQ(thresholdOfGrays({300.0, 254.0}), 255);   // bins 255 and 254
    EXPECT_EQ(thresholdOfGrays({-3.0, 0.0}), 1);        // both in bin 0
    EXPECT_EQ(thresholdOfGrays({-3.0, 1.0}), 1);        // bins 0 and 1
    EXPECT_EQ(thresholdOfGrays({0.49, 0.5, 90.0}), 2);  // bins 0, 1 and 90
}

// In bin 0 the negative value is a class of its own, below bin 1. Left out it would give 91, without its sign 4, and as
// an 8-bit number (253 or 254) 92.
TEST(OtsuThreshold, ANegativeGrayValueCountsAsZero) {
    EXPECT_EQ(thresholdOfGrays({-3.0, 90.0, 91.0}), 1);
}

TEST(OtsuThreshold, HugeGrayValuesClampWithoutOverflow) {
    const double inf = std::numeric_limits<double>::infinity();
    for (const double high : {1e18, 1e300, inf}) {
        EXPECT_EQ(thresholdOfGrays({high, 254.0}), 255);
        EXPECT_EQ(thresholdOfGrays({-high, 9.0}), 1);
        EXPECT_EQ(thresholdOfGrays({-high, 9.0, 9.0, 200.0}), 10);
    }
}

TEST(OtsuThreshold, GrayValuesThatAreNotNumbersAreLeftOut) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(thresholdOfGrays({nan, nan}), 1);
    EXPECT_EQ(thresholdOfGrays({20.0, 20.0, 90.0, 90.0}), 21);
    EXPECT_EQ(thresholdOfGrays({nan, 20.0, 20.0, nan, nan, nan, 90.0, 90.0, nan}), 21);
}

}  // namespace
