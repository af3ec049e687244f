// What the search accepts, refuses and reports.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>

#include "searchScene.h"

namespace {

using namespace zelmtest;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int32_t kMaxInt = std::numeric_limits<std::int32_t>::max();

void expectNothingWritten(const SearchScene& scene) {
    EXPECT_EQ(scene.count, -77);
    EXPECT_EQ(scene.matches[0].score, 77.0);
    EXPECT_EQ(scene.matches[0].x, 77.0);
    EXPECT_EQ(scene.matches[0].y, 77.0);
}

TEST(SearchContract, FindsTheTemplateWhereItWasCut) {
    for (const int mode : {ZELM_CSTM_QUARTER, ZELM_CSTM_CHECKER, ZELM_CSTM_FULL}) {
        SearchScene scene = texturedScene(5, 31, 28);
        scene.prm.mode = mode;
        ASSERT_EQ(scene.run(), ZELM_OK);
        ASSERT_GE(scene.count, 1);
        EXPECT_NEAR(scene.matches[0].score, 1.0, 1e-6);  // single precision
        EXPECT_NEAR(scene.matches[0].x, 31.0, 0.1);      // the texture's own asymmetry
        EXPECT_EQ(scene.matches[0].y, 28.0);
    }
}

TEST(SearchContract, MissingPointersAreRefused) {
    SearchScene scene = texturedScene(5, 31, 28);
    scene.run();
    ZelmCstmMatch match{};
    EXPECT_EQ(zelmCstmDrovnSearchOnEpiLine(nullptr, &scene.prm, &scene.count, &match), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCstmDrovnSearchOnEpiLine(&scene.ref, nullptr, &scene.count, &match), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCstmDrovnSearchOnEpiLine(&scene.ref, &scene.prm, nullptr, &match), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCstmDrovnSearchOnEpiLine(&scene.ref, &scene.prm, &scene.count, nullptr), ZELM_ERR_PARAM);
}

// Each failure alone, in the order of the checks. All of them stand before the search, so the line may be bad as well.
TEST(SearchContract, EachBadArgumentIsRefusedAndNothingIsWritten) {
    const std::vector<std::function<void(SearchScene&)>> faults = {
        [](SearchScene& s) { s.ref.pixels = nullptr; },
        [](SearchScene& s) { s.ref.width = 0; },
        [](SearchScene& s) { s.ref.height = 0; },
        [](SearchScene& s) { s.ref.height = -1; },
        [](SearchScene& s) { s.ref.anchorX = -1e-9; },
        [](SearchScene& s) { s.ref.anchorX = s.ref.width; },
        [](SearchScene& s) { s.ref.anchorX = kNan; },
        [](SearchScene& s) { s.ref.anchorY = -1e-9; },
        [](SearchScene& s) { s.ref.anchorY = s.ref.height; },
        [](SearchScene& s) { s.ref.anchorY = kNan; },
        [](SearchScene& s) { s.prm.pixels = nullptr; },
        [](SearchScene& s) { s.prm.width = 0; },
        [](SearchScene& s) { s.prm.height = 0; },
        [](SearchScene& s) { s.prm.roiX = -1; },
        [](SearchScene& s) { s.prm.roiY = -1; },
        [](SearchScene& s) { s.prm.roiWidth = 0; },
        [](SearchScene& s) { s.prm.roiWidth = s.prm.width + 1; },
        [](SearchScene& s) { s.prm.roiHeight = 0; },
        [](SearchScene& s) { s.prm.roiHeight = s.prm.height + 1; },
        [](SearchScene& s) { s.prm.maxResults = 0; },
        [](SearchScene& s) { s.prm.maxResults = -1; },
        [](SearchScene& s) { s.prm.mode = 3; },
        [](SearchScene& s) { s.prm.mode = -1; },
        [](SearchScene& s) { s.ref.mean[0] = -1e-9; },
        [](SearchScene& s) { s.ref.mean[1] = -1e-9; },
        [](SearchScene& s) { s.ref.mean[2] = kNan; },
        [](SearchScene& s) { s.ref.sigma[0] = -1e-9; },
        [](SearchScene& s) { s.ref.sigma[1] = kNan; },
        [](SearchScene& s) { s.ref.sigma[2] = -1e-9; }};
    for (std::size_t i = 0; i < faults.size(); ++i) {
        SCOPED_TRACE(i);
        SearchScene scene = texturedScene(5, 31, 28);
        scene.prepare();
        faults[i](scene);
        EXPECT_EQ(scene.search(), ZELM_ERR_PARAM);
        expectNothingWritten(scene);
        scene.prm.epiLine = {0.0, 1.0, 1000.0};  // alone: degenerate
        EXPECT_EQ(scene.search(), ZELM_ERR_PARAM);
    }
}

TEST(SearchContract, TheLargestSizesAndAnchorsAreAccepted) {
    SearchScene scene = texturedScene(5, 31, 28);
    scene.prepare();
    scene.ref.anchorX = std::nextafter(scene.ref.width, 0.0);
    scene.ref.anchorY = 0.0;
    scene.prm.roiX = kMaxInt;  // a region beyond the image: its windows leave the image
    scene.prm.epiLine = {1.0, 0.0, -1000.0};
    EXPECT_EQ(scene.search(), ZELM_ERR_DEGENERATE);
    scene.prm.roiX = 1000;
    scene.prm.epiLine = {0.0, 1.0, -20.0};
    EXPECT_EQ(scene.search(), ZELM_OK);
    EXPECT_EQ(scene.count, 0);
}

TEST(SearchContract, StatisticsAreNotTestedWithASearchMask) {
    SearchScene scene = texturedScene(5, 31, 28);
    scene.mask.assign(scene.pixels.size(), 1);
    ASSERT_EQ(scene.run(), ZELM_OK);
    const std::vector<ZelmCstmMatch> matches = scene.matches;
    for (int p = 0; p < 3; ++p) {
        scene.ref.mean[p] = -5.0;
        scene.ref.sigma[p] = kNan;
    }
    ASSERT_EQ(scene.search(), ZELM_OK);
    ASSERT_GE(scene.count, 1);
    EXPECT_EQ(std::memcmp(matches.data(), scene.matches.data(), matches.size() * sizeof matches[0]), 0);
}

TEST(SearchContract, AMissingOrTouchingLineIsDegenerate) {
    SearchScene scene = texturedScene(5, 31, 28);
    scene.prm.roiX = 10;
    scene.prm.roiY = 10;
    scene.prm.roiWidth = 40;
    scene.prm.roiHeight = 30;
    scene.prepare();
    const Line2d lines[] = {{0.0, 1.0, -9.0},          // above the region
                            {1.0, 0.0, -49.5},         // right of its last pixel
                            {1.0, 1.0, -20.0},         // through its first corner alone
                            {1.0, -1.0, 39.0 - 10.0},  // through the lower left corner alone
                            {0.0, 1.0, -10.0},         // along its upper side
                            {1.0, 0.0, -49.0}};        // along its right side
    for (const Line2d& line : lines) {
        scene.prm.epiLine = line;
        EXPECT_EQ(scene.search(), ZELM_ERR_DEGENERATE) << line.a << " " << line.b << " " << line.c;
        expectNothingWritten(scene);
    }
}

TEST(SearchContract, ALineWithoutDirectionIsRefusedAsAParameter) {
    SearchScene scene = texturedScene(5, 31, 28);
    scene.prepare();
    scene.prm.epiLine = {0.0, 1e-14, -28.0};
    EXPECT_EQ(scene.search(), ZELM_ERR_PARAM);
    expectNothingWritten(scene);
}

TEST(SearchContract, ALineThatIsNotFiniteIsDegenerate) {
    SearchScene scene = texturedScene(5, 31, 28);
    scene.prepare();
    for (const double bad : {kNan, kInfinity, -kInfinity, 1e300}) {
        for (int field = 0; field < 3; ++field) {
            scene.prm.epiLine = {0.5, 1.0, -40.0};
            (field == 0 ? scene.prm.epiLine.a : field == 1 ? scene.prm.epiLine.b : scene.prm.epiLine.c) = bad;
            EXPECT_EQ(scene.search(), ZELM_ERR_DEGENERATE) << bad << " in field " << field;
            expectNothingWritten(scene);
        }
    }
}

TEST(SearchContract, TheLinesScaleDoesNotMatter) {
    SearchScene scene = texturedScene(5, 31, 28);
    scene.prm.epiLine = {0.1, 1.0, -31.1};
    ASSERT_EQ(scene.run(), ZELM_OK);
    const ZelmCstmMatch first = scene.matches[0];
    for (const double scale : {-1.0, 1e-9, 1e9}) {
        scene.prm.epiLine = {0.1 * scale, scale, -31.1 * scale};
        ASSERT_EQ(scene.search(), ZELM_OK);
        ASSERT_GE(scene.count, 1);
        EXPECT_EQ(scene.matches[0].score, first.score);
        EXPECT_NEAR(scene.matches[0].x, first.x, 1e-9);  // rounding of coordinates below 100, amplified by the fit
        EXPECT_NEAR(scene.matches[0].y, first.y, 1e-9);
    }
}

TEST(SearchContract, ATemplateThatNeverFitsGivesNoMatch) {
    SearchScene scene(40, 30, 9, 31);  // higher than the image
    Random random(3);
    scene.pixels = randomTexture(random, 40, 30);
    scene.tmplPixels = randomTexture(random, 9, 31);
    EXPECT_EQ(scene.run(), ZELM_OK);
    EXPECT_EQ(scene.count, 0);
    EXPECT_EQ(scene.matches[0].score, 77.0);
    SearchScene atBorder = texturedScene(5, 31, 28);  // every window crosses the upper border
    atBorder.prm.epiLine = {0.0, 1.0, -6.0};
    EXPECT_EQ(atBorder.run(), ZELM_OK);
    EXPECT_EQ(atBorder.count, 0);
    atBorder.prm.epiLine = {0.0, 1.0, -7.0};  // and here none does
    EXPECT_EQ(atBorder.search(), ZELM_OK);
    EXPECT_GT(atBorder.count, 0);
}

TEST(SearchContract, ARegionOfOneColumnOrRowHoldsNoPeak) {
    SearchScene scene = texturedScene(5, 31, 28);
    scene.prm.roiX = 31;
    scene.prm.roiWidth = 1;
    EXPECT_EQ(scene.run(), ZELM_OK);
    EXPECT_EQ(scene.count, 0);
    scene.prm.roiX = 30;
    scene.prm.roiWidth = 2;  // two pixels
    EXPECT_EQ(scene.search(), ZELM_OK);
    EXPECT_EQ(scene.count, 0);
    scene.prm.roiWidth = 3;  // the peak and both neighbours
    EXPECT_EQ(scene.search(), ZELM_OK);
    EXPECT_EQ(scene.count, 1);
}

TEST(SearchContract, TheRegionBoundsTheLineNotTheWindows) {
    SearchScene scene = texturedScene(5, 31, 28);
    scene.prm.roiX = 28;
    scene.prm.roiY = 28;
    scene.prm.roiWidth = 7;
    scene.prm.roiHeight = 2;
    scene.prm.epiLine = {0.0, 1.0, -28.4};
    ASSERT_EQ(scene.run(), ZELM_OK);
    ASSERT_GE(scene.count, 1);
    EXPECT_NEAR(scene.matches[0].x, 31.0, 0.1);
    EXPECT_EQ(scene.matches[0].y, 28.4);
    for (std::int32_t i = 0; i < scene.count; ++i) {
        EXPECT_GE(scene.matches[static_cast<std::size_t>(i)].x, 28.0);
        EXPECT_LE(scene.matches[static_cast<std::size_t>(i)].x, 34.0);
    }
}

// The anchor is rounded half up to a pixel, and the match is where that pixel lies.
TEST(SearchContract, TheAnchorIsRoundedToAPixel) {
    for (const double anchor : {6.5, 7.0, 7.49}) {
        SearchScene scene = texturedScene(5, 31, 28);
        scene.ref.anchorX = anchor;
        ASSERT_EQ(scene.run(), ZELM_OK);
        ASSERT_GE(scene.count, 1);
        EXPECT_NEAR(scene.matches[0].x, 31.0, 0.1);
    }
    SearchScene scene = texturedScene(5, 31, 28);
    scene.ref.anchorX = 7.5;
    ASSERT_EQ(scene.run(), ZELM_OK);
    EXPECT_NEAR(scene.matches[0].x, 32.0, 0.1);
}

// Without a search mask a coarse score of a perfect match is far below 1, because the statistics are scaled for all
// pixels: with mode 0 a minScore of 0.9 finds nothing where another peak competes, with mode 2 it finds the match.
TEST(SearchContract, ACoarseScoreIsScaledByTheFullWindowsCount) {
    SearchScene scene = texturedScene(5, 31, 28);
    scene.prm.minScore = 0.9;
    scene.prm.mode = ZELM_CSTM_QUARTER;
    ASSERT_EQ(scene.run(), ZELM_OK);
    EXPECT_EQ(scene.count, 0);
    scene.prm.mode = ZELM_CSTM_FULL;
    ASSERT_EQ(scene.search(), ZELM_OK);
    EXPECT_EQ(scene.count, 1);
    // A search mask has the sums taken over the pixels that take part, and a single peak is not held to the threshold.
    scene.prm.mode = ZELM_CSTM_QUARTER;
    scene.mask.assign(scene.pixels.size(), 1);
    ASSERT_EQ(scene.run(), ZELM_OK);
    EXPECT_EQ(scene.count, 1);
    scene.mask.clear();
    scene.prm.roiX = 30;
    scene.prm.roiWidth = 3;
    ASSERT_EQ(scene.run(), ZELM_OK);
    EXPECT_EQ(scene.count, 1);
}

TEST(SearchContract, TwoMatchesCloserThanMinDistanceAreReportedOnce) {
    for (const int mode : {ZELM_CSTM_QUARTER, ZELM_CSTM_FULL}) {
        SearchScene scene(80, 40, 7, 7);
        Random random(21);
        scene.tmplPixels = randomTexture(random, 7, 7, 2);  // pixels beside a match must score above 0
        scene.pixels.assign(scene.pixels.size(), 128);
        scene.prm.epiLine = {0.0, 1.0, -20.0};
        scene.prm.mode = mode;
        scene.prm.minScore = 0.8;
        scene.mask.assign(scene.pixels.size(), 1);
        scene.pasteTemplate(20, 20);
        scene.pasteTemplate(29, 20);
        scene.pasteTemplate(55, 20);
        scene.pixel(21, 21) = static_cast<std::uint8_t>(scene.pixel(21, 21) ^ 0x40);  // makes the first the worse
        scene.prm.minDistance = 8;
        ASSERT_EQ(scene.run(), ZELM_OK);
        EXPECT_EQ(scene.count, 3);
        scene.prm.minDistance = 10;
        ASSERT_EQ(scene.search(), ZELM_OK);
        ASSERT_EQ(scene.count, 2);
        for (std::size_t i = 0; i < 2; ++i) {
            EXPECT_NEAR(scene.matches[i].score, 1.0, 1e-6);
            EXPECT_TRUE(std::fabs(scene.matches[i].x - 29.0) < 0.5 || std::fabs(scene.matches[i].x - 55.0) < 0.5);
        }
    }
}

TEST(SearchContract, TheSearchEndsWhenTheResultsAreFull) {
    SearchScene scene = texturedScene(9, 31, 28, 1);
    scene.prm.maxResults = 50;
    ASSERT_EQ(scene.run(), ZELM_OK);
    const std::vector<ZelmCstmMatch> all = scene.matches;
    const std::int32_t found = scene.count;
    ASSERT_GE(found, 3);
    for (std::int32_t most = 1; most <= found; ++most) {
        scene.prm.maxResults = most;
        ASSERT_EQ(scene.search(), ZELM_OK);
        ASSERT_EQ(scene.count, most);
        // In mode 2 the scores of the walk are final: the best come first.
        for (std::size_t i = 0; i < static_cast<std::size_t>(most); ++i) {
            EXPECT_EQ(scene.matches[i].x, all[i].x);
        }
        EXPECT_EQ(scene.matches.back().x, 77.0) << "an entry beyond maxResults was written";
    }
}

// A flat image scores 0 everywhere: a plateau of peaks, each of which is a match in its pixel's middle.
TEST(SearchContract, AFlatImageMatchesEverywhereWithScoreZero) {
    for (const int mode : {ZELM_CSTM_QUARTER, ZELM_CSTM_CHECKER, ZELM_CSTM_FULL}) {
        SearchScene scene(40, 30, 5, 5);
        Random random(2);
        scene.tmplPixels = randomTexture(random, 5, 5);
        scene.pixels.assign(scene.pixels.size(), 90);
        scene.prm.mode = mode;
        scene.prm.maxResults = 100;
        ASSERT_EQ(scene.run(), ZELM_OK);
        ASSERT_EQ(scene.count, 34);  // windows fit at 2 to 37; the first and the last lack a neighbour
        for (std::int32_t i = 0; i < scene.count; ++i) {
            EXPECT_EQ(scene.matches[static_cast<std::size_t>(i)].score, 0.0);
            EXPECT_EQ(scene.matches[static_cast<std::size_t>(i)].x, 36.0 - i);  // the right side is crossed first
            EXPECT_EQ(scene.matches[static_cast<std::size_t>(i)].y, 15.0);
        }
        scene.prm.minScore = 1e-12;
        ASSERT_EQ(scene.search(), ZELM_OK);
        EXPECT_EQ(scene.count, 0);
    }
}

// A minScore that is not a number counts as 0, and so does a negative one: negative correlation is never a match.
TEST(SearchContract, ANegativeOrMissingMinScoreCountsAsZero) {
    SearchScene scene = texturedScene(9, 31, 28, 1);
    scene.prm.maxResults = 50;
    ASSERT_EQ(scene.run(), ZELM_OK);
    const std::int32_t found = scene.count;
    for (const double score : {-1.0, kNan, -kInfinity}) {
        scene.prm.minScore = score;
        ASSERT_EQ(scene.search(), ZELM_OK);
        EXPECT_EQ(scene.count, found);
        for (std::int32_t i = 0; i < found; ++i) {
            EXPECT_GE(scene.matches[static_cast<std::size_t>(i)].score, 0.0);
        }
    }
    scene.prm.minScore = kInfinity;
    ASSERT_EQ(scene.search(), ZELM_OK);
    EXPECT_EQ(scene.count, 0);
}

TEST(SearchContract, ExtremeDistancesDoNotOverflow) {
    SearchScene scene = texturedScene(9, 31, 28, 1);
    scene.prm.minDistance = kMaxInt;
    ASSERT_EQ(scene.run(), ZELM_OK);
    EXPECT_EQ(scene.count, 1);
    scene.prm.minDistance = std::numeric_limits<std::int32_t>::min();
    ASSERT_EQ(scene.search(), ZELM_OK);
    EXPECT_GT(scene.count, 1);
}

TEST(SearchContract, TheReservedFieldsAreNotRead) {
    SearchScene scene = texturedScene(5, 31, 28);
    ASSERT_EQ(scene.run(), ZELM_OK);
    const ZelmCstmMatch first = scene.matches[0];
    for (double& value : scene.prm.reserved) {
        value = kNan;
    }
    ASSERT_EQ(scene.search(), ZELM_OK);
    EXPECT_EQ(std::memcmp(&first, &scene.matches[0], sizeof first), 0);
}

// A search mask without a pixel scores nothing anywhere.
TEST(SearchContract, AnEmptySearchMaskGivesNoMatch) {
    SearchScene scene = texturedScene(5, 31, 28);
    scene.mask.assign(scene.pixels.size(), 0);
    ASSERT_EQ(scene.run(), ZELM_OK);
    EXPECT_EQ(scene.count, 0);
}

// What the mask leaves out of the template or of the image does not count.
TEST(SearchContract, MaskedPixelsDoNotCount) {
    for (const int mode : {ZELM_CSTM_QUARTER, ZELM_CSTM_CHECKER, ZELM_CSTM_FULL}) {
        SearchScene scene = texturedScene(5, 31, 28);
        scene.prm.mode = mode;
        scene.tmplMask.assign(scene.tmplPixels.size(), 1);
        scene.mask.assign(scene.pixels.size(), 1);
        for (int i = 0; i < 40; ++i) {
            scene.tmplMask[static_cast<std::size_t>(5 * i)] = 0;
            scene.tmplPixels[static_cast<std::size_t>(5 * i)] ^= 0xFF;
        }
        for (int x = 25; x < 32; ++x) {
            scene.mask[static_cast<std::size_t>(28 * 80 + x)] = 0;
            scene.pixel(x, 28) ^= 0xFF;
        }
        ASSERT_EQ(scene.run(), ZELM_OK);
        ASSERT_GE(scene.count, 1);
        EXPECT_NEAR(scene.matches[0].score, 1.0, 1e-6);
        EXPECT_NEAR(scene.matches[0].x, 31.0, 0.2);
    }
}

}  // namespace
