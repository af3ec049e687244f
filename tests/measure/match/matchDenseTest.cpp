// Matching of every pixel: against the true plane, and against the matching of a grid of pixels.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "matchedPoints.h"

namespace zelmtest {
namespace {

constexpr int kWidth = 160;
constexpr int kHeight = 120;

// The plane lies at 430 to 490 units.
void narrow(ZelmMeasureMatchOptions& options) {
    options.limits.leftMin = 400.0;
    options.limits.leftMax = 520.0;
}

MatchedPoints matchedDensely(const PlanePictures& pictures) {
    const OpenedRig rig(pictures.rig.block());
    ZelmMeasureMatchOptions options = defaultsOf(rig);
    narrow(options);
    const ZelmMeasureImage left = pictures.image('L');
    const ZelmMeasureImage right = pictures.image('R');
    MatchedPoints out(static_cast<std::size_t>(kWidth) * kHeight);
    const ZelmMeasureMatches matches = out.record();
    EXPECT_EQ(zelmMeasureMatchDense(rig.get(), &left, &right, &options, &matches), ZELM_OK) << rig.error();
    return out;
}

const PlanePictures& pictures() {
    static const PlanePictures taken(trueRig(kWidth, kHeight), slantedPlane(), 2.0);
    return taken;
}

const MatchedPoints& dense() {
    static const MatchedPoints result = matchedDensely(pictures());
    return result;
}

TEST(MeasureMatchDense, EveryPixelThatBothImagesHoldIsFilledAndInPlace) {
    std::size_t seen = 0;
    std::size_t found = 0;
    double worst = 0.0;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const Point2d pixel{static_cast<double>(x), static_cast<double>(y)};
            const auto i = static_cast<std::size_t>(y * kWidth + x);
            const bool isOk = dense().statuses[i] == ZELM_MEASURE_MATCH_OK;
            if (isSeen(pictures(), pixel)) {
                seen += 1;
                found += isOk ? 1U : 0U;
            }
            if (isOk) {
                worst = std::max(worst, std::fabs(dense().depths[i] - pictures().depthAt(pixel)));
            }
        }
    }
    EXPECT_GT(seen, 4000U);
    // A window that shows too little texture for the default precision is rare in this one.
    EXPECT_GE(static_cast<double>(found), 0.98 * static_cast<double>(seen));
    // Noise of 2 gray values: 0.05 units, of some thousand windows five times as much at most.
    EXPECT_LE(worst, 0.3);
}

TEST(MeasureMatchDense, GridPixelsAgreeWithTheirOwnMatches) {
    const std::vector<Point2d> pixels = gridOver(kWidth, kHeight, 4);
    const MatchedPoints grid = matched(pictures(), pixels, narrow);
    int both = 0;
    int apart = 0;
    int onOneAlone = 0;
    for (std::size_t k = 0; k < pixels.size(); ++k) {
        const auto i = static_cast<std::size_t>(pixels[k].y * kWidth + pixels[k].x);
        const bool inGrid = grid.statuses[k] == ZELM_MEASURE_MATCH_OK;
        const bool inDense = dense().statuses[i] == ZELM_MEASURE_MATCH_OK;
        if (inGrid && inDense) {
            both += 1;
            apart += std::fabs(grid.depths[k] - dense().depths[i]) > grid.deviations[k] ? 1 : 0;
            EXPECT_NEAR(dense().deviations[i], grid.deviations[k], 0.5 * grid.deviations[k]);
        }
        onOneAlone += inGrid != inDense ? 1 : 0;
    }
    EXPECT_GT(both, 250);
    EXPECT_EQ(apart, 0);
    EXPECT_LE(onOneAlone, both / 20);
}

TEST(MeasureMatchDense, FilledPixelsAreOfTheirOwnRowAndColumn) {
    // The image of a point found is that of its own pixel, not of a neighbour's.
    for (std::size_t i = 0; i < dense().statuses.size(); i += 7) {
        if (dense().statuses[i] == ZELM_MEASURE_MATCH_OK) {
            const Point3d X{dense().positions[3 * i], dense().positions[3 * i + 1], dense().positions[3 * i + 2]};
            const Point2d p = pictures().rig.raw('L', X);
            EXPECT_NEAR(p.x, static_cast<double>(i % kWidth), 1e-2);
            EXPECT_NEAR(p.y, static_cast<double>(i / kWidth), 1e-2);
        }
    }
}

TEST(MeasureMatchDense, FlatImagesHaveNoTextureAnywhere) {
    PlanePictures flat = pictures();
    std::fill(flat.left.begin(), flat.left.end(), std::uint8_t{90});
    std::fill(flat.right.begin(), flat.right.end(), std::uint8_t{90});
    const MatchedPoints m = matchedDensely(flat);
    EXPECT_EQ(count(m, ZELM_MEASURE_MATCH_OUTSIDE) + count(m, ZELM_MEASURE_MATCH_NO_TEXTURE), kWidth * kHeight);
    EXPECT_GT(count(m, ZELM_MEASURE_MATCH_NO_TEXTURE), 4000);
    EXPECT_EQ(std::count(m.depths.begin(), m.depths.end(), kNotWritten), kWidth * kHeight);
}

}  // namespace
}  // namespace zelmtest
