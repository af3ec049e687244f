// Where textures of known shift are matched. Without noise and on lines through pixel centres, as rectified images have
// them, the rest is 8-bit rounding and the shape of the correlation's peak; the figures of other lines are in
// docs/accuracy.md.
#include <gtest/gtest.h>

#include <cmath>

#include "matchingAccuracy.h"
#include "zelm/cstmSearch.h"

namespace {

using zelm::accuracy::LineThrough;
using zelm::accuracy::MatchingCase;
using zelm::accuracy::MatchingFigures;
using zelm::accuracy::matchTextures;

constexpr double kMaxBias = 0.01;
constexpr double kMaxError = 0.02;

MatchingCase onPixelRows(int trials) {
    MatchingCase setting;
    setting.through = LineThrough::pixelCentres;
    setting.highAngleDegrees = 0.0;
    setting.trials = trials;
    return setting;
}

TEST(MatchingAccuracy, OnPixelRowsIsWithinTwoHundredthsInEveryMode) {
    for (const double grain : {1.2, 2.5}) {
        for (const int mode : {ZELM_CSTM_QUARTER, ZELM_CSTM_CHECKER, ZELM_CSTM_FULL}) {
            MatchingCase setting = onPixelRows(60);
            setting.grain = grain;
            setting.mode = mode;
            const MatchingFigures figures = matchTextures(setting);
            EXPECT_EQ(figures.found, figures.trials);
            EXPECT_LE(std::fabs(figures.bias), kMaxBias) << "grain " << grain << ", mode " << mode;
            EXPECT_LE(figures.rms, kMaxError) << "grain " << grain << ", mode " << mode;
        }
    }
}

TEST(MatchingAccuracy, OnPixelRowsIsWithinTwoHundredthsWithMasks) {
    for (int masks = 1; masks < 4; ++masks) {
        for (const int mode : {ZELM_CSTM_QUARTER, ZELM_CSTM_FULL}) {
            MatchingCase setting = onPixelRows(60);
            setting.templateMask = (masks & 1) != 0;
            setting.searchMask = (masks & 2) != 0;
            setting.mode = mode;
            const MatchingFigures figures = matchTextures(setting);
            EXPECT_EQ(figures.found, figures.trials);
            EXPECT_LE(std::fabs(figures.bias), kMaxBias) << "masks " << masks << ", mode " << mode;
            EXPECT_LE(figures.rms, kMaxError) << "masks " << masks << ", mode " << mode;
        }
    }
}

// Other lines leave the pixels that are scored by up to a pixel; what is held there is the bias, and a rough error.
TEST(MatchingAccuracy, OfOtherLinesHasNoBias) {
    for (const double angle : {5.0, 45.0}) {
        MatchingCase setting;
        setting.highAngleDegrees = angle;
        setting.trials = 200;
        const MatchingFigures figures = matchTextures(setting);
        EXPECT_EQ(figures.found, figures.trials);
        EXPECT_LE(figures.rms, 0.1) << angle;
        // Three standard errors beside the limit.
        EXPECT_LE(std::fabs(figures.bias), kMaxBias + 3.0 * figures.rms / std::sqrt(200.0)) << angle;
    }
}

// The estimate loses little of what the images tell: the error stays within 1.25 of the bound beside the error without
// noise.
TEST(MatchingAccuracy, InNoiseComesCloseToTheBound) {
    for (const double noise : {2.0, 5.0, 10.0}) {
        MatchingCase setting = onPixelRows(150);
        setting.noise = noise;
        const MatchingFigures figures = matchTextures(setting);
        EXPECT_EQ(figures.found, figures.trials);
        EXPECT_LE(figures.rms, 1.25 * figures.bound + 0.006) << noise;
        EXPECT_GE(figures.rms, 0.8 * figures.bound) << "better than the bound: the measurement is wrong";
    }
}

}  // namespace
