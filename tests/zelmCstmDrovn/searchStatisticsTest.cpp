// Mean and deviation of a template over its sampling patterns.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "searchScene.h"

namespace {

using namespace zelmtest;

// The pattern's pixels as they are defined: quarter, checker, full.
bool isVisited(int pattern, int c, int r) {
    switch (pattern) {
        case ZELM_CSTM_QUARTER:
            return r % 2 == 0 && c % 2 == 0;
        case ZELM_CSTM_CHECKER:
            return c % 2 == r % 2;
        default:
            return true;
    }
}

struct Statistics {
    double mean;
    double sigma;
};

Statistics expected(const Bytes& pixels, const Bytes& mask, int width, int height, int pattern) {
    double count = 0.0;
    double sum = 0.0;
    double squares = 0.0;
    for (int r = 0; r < height; ++r) {
        for (int c = 0; c < width; ++c) {
            const auto i = static_cast<std::size_t>(r * width + c);
            if (isVisited(pattern, c, r) && (mask.empty() || mask[i] != 0)) {
                count += 1.0;
                sum += pixels[i];
                squares += pixels[i] * pixels[i];
            }
        }
    }
    return {sum / count, std::sqrt(std::fmax(0.0, squares / count - sum / count * (sum / count)))};
}

TEST(SearchStatistics, AreThoseOfEachPatternsPixels) {
    Random random(11);
    for (int round = 0; round < 300; ++round) {
        const int width = random.integer(1, 20);
        const int height = random.integer(1, 20);
        SearchScene scene(40, 40, width, height);
        scene.tmplPixels = randomTexture(random, width, height);
        if (round % 2 == 1) {
            scene.tmplMask.assign(scene.tmplPixels.size(), 0);
            for (std::uint8_t& byte : scene.tmplMask) {
                byte = static_cast<std::uint8_t>(random.integer(0, 2) * 100);
            }
            scene.tmplMask[0] = 1;  // in every pattern
        }
        ASSERT_EQ(scene.prepare(), ZELM_OK);
        for (int p = 0; p < 3; ++p) {
            const Statistics truth = expected(scene.tmplPixels, scene.tmplMask, width, height, p);
            // The same integers divided by the same count.
            EXPECT_EQ(scene.ref.mean[p], truth.mean);
            EXPECT_EQ(scene.ref.sigma[p], truth.sigma);
        }
    }
}

TEST(SearchStatistics, StandInTheOrderQuarterCheckerFull) {
    SearchScene scene(10, 10, 2, 2);
    scene.tmplPixels = {10, 20, 40, 90};
    ASSERT_EQ(scene.prepare(), ZELM_OK);
    EXPECT_EQ(scene.ref.mean[0], 10.0);
    EXPECT_EQ(scene.ref.mean[1], 50.0);
    EXPECT_EQ(scene.ref.mean[2], 40.0);
    EXPECT_EQ(scene.ref.sigma[0], 0.0);
    EXPECT_EQ(scene.ref.sigma[1], 40.0);
    EXPECT_EQ(scene.ref.sigma[2], std::sqrt(10200.0 / 4.0 - 1600.0));
}

TEST(SearchStatistics, OfAFlatTemplateAreZeroDeviation) {
    SearchScene scene(10, 10, 7, 5);
    scene.tmplPixels.assign(35, 113);
    ASSERT_EQ(scene.prepare(), ZELM_OK);
    for (int p = 0; p < 3; ++p) {
        EXPECT_EQ(scene.ref.mean[p], 113.0);
        EXPECT_EQ(scene.ref.sigma[p], 0.0);
    }
}

// 257 x 257 white pixels: 66,049 squares of 255 still fit 32 bits without sign, 258 x 258 do not.
TEST(SearchStatistics, HoldUpTo66051Pixels) {
    SearchScene largest(10, 10, 257, 257);
    largest.tmplPixels.assign(257 * 257, 255);
    ASSERT_EQ(largest.prepare(), ZELM_OK);
    EXPECT_EQ(largest.ref.mean[2], 255.0);
    EXPECT_EQ(largest.ref.sigma[2], 0.0);
    SearchScene beyond(10, 10, 258, 258);
    beyond.tmplPixels.assign(258 * 258, 255);
    ASSERT_EQ(beyond.prepare(), ZELM_OK);
    EXPECT_EQ(beyond.ref.mean[2], 255.0);
    EXPECT_EQ(beyond.ref.sigma[2], 0.0);  // the wrapped sum is small: the variance is cut at 0
}

TEST(SearchStatistics, RefuseMissingPointersAsParameters) {
    EXPECT_EQ(zelmCstmDrovnCalcBasicStatisticsOfRefImg(nullptr), ZELM_ERR_PARAM);
    SearchScene scene(10, 10, 3, 3);
    scene.prepare();
    scene.ref.pixels = nullptr;
    scene.ref.width = 0;  // the pointer is looked at first
    EXPECT_EQ(zelmCstmDrovnCalcBasicStatisticsOfRefImg(&scene.ref), ZELM_ERR_PARAM);
}

void expectDegenerateAndUntouched(SearchScene& scene) {
    for (double& mean : scene.ref.mean) {
        mean = 77.0;
    }
    const ZelmCstmRefImg before = scene.ref;
    EXPECT_EQ(zelmCstmDrovnCalcBasicStatisticsOfRefImg(&scene.ref), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(std::memcmp(&before, &scene.ref, sizeof before), 0);
}

TEST(SearchStatistics, OfNoPixelsAreDegenerate) {
    SearchScene scene(10, 10, 3, 3);
    scene.prepare();
    const std::int32_t sizes[][2] = {{0, 3}, {3, 0}, {-3, 3}, {3, -3}, {-3, -3}, {0, 0}};
    for (const auto& size : sizes) {
        scene.ref.width = size[0];
        scene.ref.height = size[1];
        expectDegenerateAndUntouched(scene);
    }
}

TEST(SearchStatistics, OfAPatternWithoutPixelsAreDegenerate) {
    SearchScene scene(10, 10, 3, 3);
    scene.tmplMask = {0, 1, 0, 1, 1, 1, 0, 1, 0};  // checker has the middle, quarter nothing
    scene.prepare();
    expectDegenerateAndUntouched(scene);
    scene.tmplMask.assign(9, 0);
    expectDegenerateAndUntouched(scene);
    scene.tmplMask = {0, 0, 0, 0, 0, 0, 0, 0, 255};
    EXPECT_EQ(zelmCstmDrovnCalcBasicStatisticsOfRefImg(&scene.ref), ZELM_OK);
}

}  // namespace
