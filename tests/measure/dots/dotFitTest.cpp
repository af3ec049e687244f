// Dots placed by all their pixels, against the truth of rendered plates and the Cramer-Rao bound.
#include <gtest/gtest.h>

#include <cmath>

#include "dotAccuracy.h"

namespace zelmtest {
namespace {

using zelm::accuracy::DotFigures;
using zelm::accuracy::ReadingCase;
using zelm::accuracy::refinePlates;

ReadingCase settingOf(double radius, double blur, double noise, double falloff = 0.0) {
    ReadingCase setting;
    setting.radius = radius;
    setting.blur = blur;
    setting.noise = noise;
    setting.falloff = falloff;
    setting.contrast = falloff > 0.5 ? 220.0 : 120.0;
    setting.views = 2;
    return setting;
}

// 286 dots have 572 coordinates, whose root mean square has a standard deviation of 3 %; 1.2 is what is promised, and
// 0.001 pixel what the model and the rounding of levels without noise may add.
void expectAtBound(const ReadingCase& setting) {
    SCOPED_TRACE(testing::Message() << "radius " << setting.radius << ", blur " << setting.blur << ", noise "
                                    << setting.noise << ", light lost " << setting.falloff);
    const DotFigures f = refinePlates(setting, 1.4, false);
    EXPECT_EQ(f.placed, f.dots);
    EXPECT_LE(f.rms, 1.2 * f.bound + 0.001);
    // Mean errors: four standard deviations of them, and 0.0005.
    const double tolerance = 4.0 * f.bound / std::sqrt(f.placed) + 0.0005;
    EXPECT_LE(std::fabs(f.biasX), tolerance);
    EXPECT_LE(std::fabs(f.biasY), tolerance);
}

TEST(MeasureDotFit, ErrorsAreAtTheCramerRaoBound) {
    expectAtBound(settingOf(4.0, 0.4, 0.0));
    expectAtBound(settingOf(4.0, 1.0, 1.5));
    expectAtBound(settingOf(6.0, 2.0, 3.0));
    expectAtBound(settingOf(10.0, 1.0, 0.0));
    expectAtBound(settingOf(10.0, 0.7, 8.0));
    expectAtBound(settingOf(20.0, 0.4, 1.5));
}

TEST(MeasureDotFit, LightThatFallsOffMovesNothing) {
    expectAtBound(settingOf(5.0, 0.6, 1.0, 0.6));
    expectAtBound(settingOf(10.0, 1.5, 1.0, 0.6));
}

TEST(MeasureDotFit, CovariancesAreThoseOfTheErrors) {
    for (const double radius : {6.0, 10.0}) {
        ReadingCase setting = settingOf(radius, 0.8, 2.0);
        setting.noiseDraws = 3;
        const DotFigures f = refinePlates(setting, 0.5, false);
        // 858 dots: the root mean square has a standard deviation of 1.7 %; 10 % is what is promised.
        EXPECT_NEAR(f.expected / f.rms, 1.0, 0.1 + 3.0 * 0.017) << radius;
    }
}

TEST(MeasureDotFit, LargeDots) {
    ReadingCase setting = settingOf(40.0, 1.0, 2.0);
    setting.views = 1;
    expectAtBound(setting);
}

}  // namespace
}  // namespace zelmtest
