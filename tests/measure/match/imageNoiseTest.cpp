// The noise of images of known noise.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "texturedPlane.h"

namespace zelmtest {
namespace {

double noiseOf(const GrayPixels& pixels, int width, int height, int stride = 0) {
    const ZelmMeasureImage image{pixels.data(), width, height, stride == 0 ? width : stride};
    double noise = -7.0;
    EXPECT_EQ(zelmMeasureNoise(&image, &noise), ZELM_OK);
    return noise;
}

GrayPixels noisy(int width, int height, double deviation, const std::function<double(double, double)>& gray) {
    Random random(41);
    GrayPixels pixels;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double value = gray(x, y) + deviation * random.normal();
            pixels.push_back(static_cast<std::uint8_t>(std::clamp(value + 0.5, 0.0, 255.0)));
        }
    }
    return pixels;
}

TEST(MeasureNoise, KnownNoiseIsToldByTheSmoothestBlocks) {
    // A block of 256 pixels tells it to some 6 %, and the smoothest twentieth of them is asked: 10 % too little.
    const auto flat = [](double, double) { return 128.0; };
    const auto slope = [](double x, double y) { return 40.0 + 0.3 * x + 0.2 * y; };
    for (const double deviation : {1.0, 2.0, 5.0, 12.0}) {
        SCOPED_TRACE(deviation);
        for (const auto& gray :
             {std::function<double(double, double)>(flat), std::function<double(double, double)>(slope)}) {
            const double noise = noiseOf(noisy(320, 240, deviation, gray), 320, 240);
            const double rounded = std::hypot(deviation, 0.29);
            EXPECT_GE(noise, 0.8 * rounded);
            EXPECT_LE(noise, 1.0 * rounded);
        }
    }
}

TEST(MeasureNoise, TextureInMostOfTheImageIsLeftOut) {
    // Waves of 12 pixels and more everywhere but in a tenth of the image.
    const Waves waves(12.0);
    const auto gray = [&](double x, double y) { return x < 32.0 ? 128.0 : waves(x, y); };
    const double noise = noiseOf(noisy(320, 240, 3.0, gray), 320, 240);
    EXPECT_GE(noise, 0.8 * 3.0);
    EXPECT_LE(noise, 1.1 * 3.0);
}

TEST(MeasureNoise, RoundingIsTheLeast) {
    EXPECT_EQ(noiseOf(GrayPixels(100 * 100, 77), 100, 100), 0.3);
    const double noise = noiseOf(noisy(320, 240, 0.1, [](double, double) { return 100.0; }), 320, 240);
    EXPECT_EQ(noise, 0.3);
}

TEST(MeasureNoise, ImagesWithoutABlockHaveAGuess) {
    EXPECT_EQ(noiseOf(GrayPixels(17 * 100, 77), 17, 100), 1.0);
    EXPECT_EQ(noiseOf(GrayPixels(100 * 17, 77), 100, 17), 1.0);
    EXPECT_EQ(noiseOf(GrayPixels(1, 77), 1, 1), 1.0);
    EXPECT_EQ(noiseOf(GrayPixels(18 * 18, 77), 18, 18), 0.3);
}

TEST(MeasureNoise, PaddingIsNotLookedAt) {
    const GrayPixels dense = noisy(100, 80, 4.0, [](double x, double) { return 60.0 + x; });
    GrayPixels padded(133 * 80, 255);
    for (std::size_t y = 0; y < 80; ++y) {
        std::copy_n(dense.begin() + static_cast<std::ptrdiff_t>(100 * y), 100,
                    padded.begin() + static_cast<std::ptrdiff_t>(133 * y));
    }
    EXPECT_EQ(noiseOf(padded, 100, 80, 133), noiseOf(dense, 100, 80));
}

}  // namespace
}  // namespace zelmtest
