// What tells a noisy profile from a clean one.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "edgeNoise.h"
#include "edgeScene.h"

namespace {

using zelm::isNoisyProfile;
using zelmtest::Random;

constexpr int32_t kSwing = 20;

TEST(EdgeNoiseSign, TurningBackAndForthWithinFourStepsIsNoise) {
    EXPECT_TRUE(isNoisyProfile(std::vector<int>{50, 51, 50, 51}, kSwing));
    EXPECT_TRUE(isNoisyProfile(std::vector<int>{50, 49, 50, 49}, kSwing));
    EXPECT_TRUE(isNoisyProfile(std::vector<int>{50, 60, 60, 45, 90}, kSwing));
    EXPECT_TRUE(isNoisyProfile(std::vector<int>{50, 60, 52, 45, 90}, kSwing));
    EXPECT_FALSE(isNoisyProfile(std::vector<int>{50, 60, 55, 52, 45, 90}, kSwing));
    EXPECT_FALSE(isNoisyProfile(std::vector<int>{50, 60, 60, 60, 45, 90}, kSwing));
}

TEST(EdgeNoiseSign, ASwingBeyondTheGivenOneIsNone) {
    EXPECT_TRUE(isNoisyProfile(std::vector<int>{50, 100, 80, 130}, kSwing));
    EXPECT_FALSE(isNoisyProfile(std::vector<int>{50, 100, 79, 130}, kSwing));
}

TEST(EdgeNoiseSign, ShortProfilesAndConstantOnesHaveNone) {
    EXPECT_FALSE(isNoisyProfile(std::vector<int>{}, kSwing));
    EXPECT_FALSE(isNoisyProfile(std::vector<int>{50}, kSwing));
    EXPECT_FALSE(isNoisyProfile(std::vector<int>{50, 51, 50}, kSwing));
    EXPECT_FALSE(isNoisyProfile(std::vector<int>(30, 50), kSwing));
}

TEST(EdgeNoiseSign, BlurredEdgesOnSlopesOfEitherSenseHaveNone) {
    // The edges are higher than the swing: a lower one against the slope turns back and forth like noise.
    Random random(41);
    for (int trial = 0; trial < 2000; ++trial) {
        const double slope = random.uniform(-1.5, 1.5);
        const double blur = random.uniform(0.5, 3.0);
        const double at = random.uniform(10.0, 20.0);
        const double rise = (random.uniform() < 0.5 ? -1.0 : 1.0) * random.uniform(40.0, 90.0);
        std::vector<int> q;
        for (int i = 0; i < 30; ++i) {
            const double level = 128.0 + slope * (i - at) + rise * zelmtest::blurredStep(i - at, blur);
            q.push_back(static_cast<int>(std::floor(level + 0.5)));
        }
        EXPECT_FALSE(isNoisyProfile(q, kSwing)) << trial;
    }
}

TEST(EdgeNoiseSign, GaussianNoiseOfOneGrayLevelShowsInTwentySamples) {
    Random random(42);
    int shown = 0;
    for (int trial = 0; trial < 2000; ++trial) {
        std::vector<int> q;
        for (int i = 0; i < 20; ++i) {
            q.push_back(static_cast<int>(std::floor(100.5 + random.normal())));
        }
        shown += isNoisyProfile(q, kSwing) ? 1 : 0;
    }
    EXPECT_GT(shown, 1980);
}

TEST(EdgeNoiseSign, ASampleThatStandsOutByTheToleranceIsJitter) {
    using zelm::hasJitter;
    EXPECT_TRUE(hasJitter(std::vector<int>{50, 51, 50}, 1));
    EXPECT_TRUE(hasJitter(std::vector<int>{50, 49, 50}, 1));
    EXPECT_TRUE(hasJitter(std::vector<int>{50, 58, 57}, 1));
    EXPECT_FALSE(hasJitter(std::vector<int>{50, 58, 56}, 1));
    EXPECT_TRUE(hasJitter(std::vector<int>{50, 58, 56}, 2));
    EXPECT_FALSE(hasJitter(std::vector<int>{50, 51, 51, 50}, 1));
    EXPECT_FALSE(hasJitter(std::vector<int>{50, 51, 52, 52, 60, 70}, 1));
    EXPECT_FALSE(hasJitter(std::vector<int>{50, 51}, 1));
    EXPECT_FALSE(hasJitter(std::vector<int>{}, 1));
}

}  // namespace
