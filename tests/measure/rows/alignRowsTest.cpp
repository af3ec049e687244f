// Row-aligned pairs, by projection of points with the cameras' own equations.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "measureRigs.h"

namespace zelmtest {
namespace {

ZelmMeasureRows rowsOf(ZelmMeasureRig* rig, const ZelmMeasureRowOptions* options = nullptr) {
    auto rows = emptyRecord<ZelmMeasureRows>();
    EXPECT_EQ(zelmMeasureAlignRows(rig, options, &rows), ZELM_OK) << zelmMeasureRigError(rig);
    return rows;
}

Point2d alignedOf(ZelmMeasureRig* rig, const ZelmMeasureRowOptions* options, char side, const Point2d& raw) {
    Point2d aligned{};
    EXPECT_EQ(zelmMeasureAlignRowsPoints(rig, options, side, 1, &raw.x, &aligned.x), ZELM_OK);
    return aligned;
}

// In the frame of the left camera.
std::array<double, 3> inLeft(const TruePair& pair, const Point3d& X) {
    const ZelmCameraExtrinsics& p = pair.left.pose;
    return {p.R[0] * X.x + p.R[1] * X.y + p.R[2] * X.z + p.t[0], p.R[3] * X.x + p.R[4] * X.y + p.R[5] * X.z + p.t[1],
            p.R[6] * X.x + p.R[7] * X.y + p.R[8] * X.z + p.t[2]};
}

void expectAligned(const TruePair& pair, const ZelmMeasureRowOptions* options) {
    const OpenedRig rig(blockOf(pair));
    const ZelmMeasureRows rows = rowsOf(rig.get(), options);
    Random random(4);
    for (int i = 0; i < 200; ++i) {
        const Point3d X = randomWorldPoint(random);
        const Point2d left = alignedOf(rig.get(), options, 'L', pair.project('L', X));
        const Point2d right = alignedOf(rig.get(), options, 'R', pair.project('R', X));
        EXPECT_NEAR(left.y, right.y, 1e-8);
        // Q takes pixel and disparity back to the point.
        const double v[4] = {left.x, left.y, left.x - right.x, 1.0};
        double h[4]{};
        for (int row = 0; row < 4; ++row) {
            for (int k = 0; k < 4; ++k) {
                h[row] += rows.Q[4 * row + k] * v[k];
            }
        }
        const auto c = inLeft(pair, X);
        for (int row = 0; row < 3; ++row) {
            const double aligned = rows.R1[3 * row] * c[0] + rows.R1[3 * row + 1] * c[1] + rows.R1[3 * row + 2] * c[2];
            EXPECT_NEAR(h[row] / h[3], aligned, 1e-6);
        }
    }
}

TEST(AlignRows, EveryPointLiesInOneRow) {
    Random random(1);
    auto small = emptyRecord<ZelmMeasureRowOptions>();  // the search for rectangles takes the longer the more pixels
    small.width = 320;
    small.height = 240;
    for (int i = 0; i < 20; ++i) {
        expectAligned(makePair(i % 2, 0, &random), &small);
    }
    expectAligned(makePair(0, 0, &random), nullptr);
}

TEST(AlignRows, OptionsChangeSizeFocalLengthAndZero) {
    auto options = emptyRecord<ZelmMeasureRowOptions>();
    options.width = 900;
    options.height = 700;
    options.focal = 1200.0;
    options.zeroAtInfinity = 1;
    const TruePair pair = makePair(0, 0);
    expectAligned(pair, &options);
    const OpenedRig rig(blockOf(pair));
    const ZelmMeasureRows rows = rowsOf(rig.get(), &options);
    EXPECT_EQ(rows.width, 900);
    EXPECT_EQ(rows.height, 700);
    EXPECT_EQ(rows.P1[0], 1200.0);
    EXPECT_EQ(rows.P1[2], rows.P2[2]);
    EXPECT_EQ(rows.Q[15], 0.0);
}

// Left and right exchanged: images stay upright, disparities change their sign. One above the other: on their side.
TEST(AlignRows, ImagesStayAsUprightAsRowsAllow) {
    TruePair pair = makePair(0, 0);
    const OpenedRig rig(blockOf(pair));
    const ZelmMeasureRows rows = rowsOf(rig.get());
    EXPECT_GT(rows.R1[0], 0.9);
    EXPECT_GT(rows.P2[3], 0.0);  // this pair's right camera is on the left
    std::swap(pair.left, pair.right);
    const OpenedRig exchanged(blockOf(pair));
    const ZelmMeasureRows back = rowsOf(exchanged.get());
    EXPECT_GT(back.R1[0], 0.9);
    EXPECT_LT(back.P2[3], 0.0);
    pair.left.pose = truePose(0.0, 0.0, 0.0, 0.0, 0.0, 450.0);
    pair.right.pose = truePose(0.0, 0.0, 0.0, 0.0, -100.0, 450.0);
    const OpenedRig above(blockOf(pair));
    EXPECT_GT(std::abs(rowsOf(above.get()).R1[1]), 0.9);
    EXPECT_LT(rowsOf(above.get()).P2[3], 0.0);
    expectAligned(pair, nullptr);
}

// The map's positions are where the aligned pixel comes from, and the rectangle is the largest that is all seen.
TEST(AlignRows, MapsAndRectanglesAgree) {
    const OpenedRig rig(blockOf(makePair(0, 0)));
    auto options = emptyRecord<ZelmMeasureRowOptions>();
    options.width = 160;
    options.height = 120;
    options.focal = 210.0;
    const ZelmMeasureRows rows = rowsOf(rig.get(), &options);
    for (const char side : {'L', 'R'}) {
        std::vector<float> map(2 * 160 * 120);
        ASSERT_EQ(zelmMeasureAlignRowsMap(rig.get(), &options, side, map.data()), ZELM_OK);
        const auto isSeen = [&](int x, int y) { return map[2 * static_cast<std::size_t>(y * 160 + x)] >= 0.0F; };
        for (int y = 0; y < 120; y += 7) {
            for (int x = 0; x < 160; x += 7) {
                if (isSeen(x, y)) {
                    const std::size_t i = 2 * static_cast<std::size_t>(y * 160 + x);
                    const Point2d p = alignedOf(rig.get(), &options, side, {map[i], map[i + 1]});
                    EXPECT_NEAR(p.x, x, 2e-5);  // the map is of single precision, at 210 / 1690 of the scale
                    EXPECT_NEAR(p.y, y, 2e-5);
                }
            }
        }
        // Every rectangle of seen pixels, from its upper left corner on, is no larger.
        const std::int32_t* const found = side == 'L' ? rows.leftSeen : rows.rightSeen;
        int largest = 0;
        for (int y = 0; y < 120; ++y) {
            for (int x = 0; x < 160; ++x) {
                int width = 160 - x;
                for (int height = 1; y + height <= 120; ++height) {
                    int run = 0;
                    while (run < width && isSeen(x + run, y + height - 1)) {
                        ++run;
                    }
                    width = run;
                    if (width == 0) {
                        break;
                    }
                    largest = std::max(largest, width * height);
                }
            }
        }
        EXPECT_EQ(found[2] * found[3], largest);
        EXPECT_GT(largest, 5000);
        for (int y = found[1]; y < found[1] + found[3]; ++y) {
            for (int x = found[0]; x < found[0] + found[2]; ++x) {
                ASSERT_TRUE(isSeen(x, y));
            }
        }
    }
}

TEST(AlignRows, RefusalsSayWhy) {
    const OpenedRig parallel(blockOf(makePair(2, 0)));
    auto rows = emptyRecord<ZelmMeasureRows>();
    const ZelmMeasureRows before = rows;
    EXPECT_EQ(zelmMeasureAlignRows(parallel.get(), nullptr, &rows), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(parallel.error().find("parallel"), std::string::npos);
    TruePair pair = makePair(0, 0);
    pair.left.pose = truePose(0.0, 0.0, 0.0, 0.0, 0.0, 450.0);
    pair.right.pose = truePose(0.0, 0.0, 0.0, 0.0, 1.0, 400.0);
    const OpenedRig behind(blockOf(pair));
    EXPECT_EQ(zelmMeasureAlignRows(behind.get(), nullptr, &rows), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(behind.error().find("along the baseline"), std::string::npos) << behind.error();
    const OpenedRig sound(blockOf(makePair(0, 0)));
    auto options = emptyRecord<ZelmMeasureRowOptions>();
    options.width = -1;
    EXPECT_EQ(zelmMeasureAlignRows(sound.get(), &options, &rows), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasureAlignRowsMap(sound.get(), nullptr, 'L', nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasureAlignRowsPoints(sound.get(), nullptr, 'X', 0, nullptr, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(std::memcmp(&rows, &before, sizeof rows), 0);
}

}  // namespace
}  // namespace zelmtest
