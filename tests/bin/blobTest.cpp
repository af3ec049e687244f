// Blob labelling: contract, known blobs, edges, polarity, growth, the 32-bit terms and the one-level look-up.
// Comparisons with whole models are in blobModelTest.cpp.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "blobRun.h"
#include "faultAlloc.h"
#include "random.h"
#include "testImage.h"
#include "zelm/bin.h"

using zelmtest::BlobRequest;
using zelmtest::blobsOf;
using zelmtest::Random;
using zelmtest::TestImage;

namespace {

constexpr double kPi = 3.14159265358979323846;

// '#' is foreground.
TestImage picture(const std::vector<std::string>& rows) {
    TestImage image(static_cast<int32_t>(rows[0].size()), static_cast<int32_t>(rows.size()));
    for (int32_t y = 0; y < image.height; ++y) {
        for (int32_t x = 0; x < image.width; ++x) {
            image.at(x, y) = rows[static_cast<size_t>(y)][static_cast<size_t>(x)] == '#' ? 255 : 0;
        }
    }
    return image;
}

std::vector<ZelmBlob> blobsIn(TestImage image) {
    return blobsOf(image, {.region = image.all()});
}

TEST(Blob, BadArgumentsAreRefusedAndNothingIsWritten) {
    TestImage image(8, 6);
    image.at(3, 3) = 255;
    const ZelmImage ok = image.record();
    const ZelmRect all = image.all();
    ZelmBlob* blobs = nullptr;
    int32_t count = 7;
    const auto call = [&](const ZelmImage* i, const ZelmRect* r, int32_t threshold, int32_t polarity, int32_t clear,
                          ZelmBlob** b, int32_t* c) { return zelmBinBlob(i, r, threshold, polarity, clear, 1, b, c); };
    const ZelmImage noWidth = {image.pixels.data(), 0, 6};
    const ZelmImage noHeight = {image.pixels.data(), 8, 0};
    const ZelmRect noColumns = {0, 0, 0, 6};
    const ZelmRect noRows = {0, 0, 8, 0};
    const ZelmRect negative = {0, 0, -8, -6};
    EXPECT_EQ(call(nullptr, &all, 128, 1, 0, &blobs, &count), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&noWidth, &all, 128, 1, 0, &blobs, &count), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&ok, nullptr, 128, 1, 0, &blobs, &count), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&noHeight, &all, 128, 1, 0, &blobs, &count), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&ok, &noColumns, 128, 1, 0, &blobs, &count), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&ok, &all, 128, 1, 0, nullptr, &count), ZELM_ERR_PARAM);
    for (const int32_t flag : {-1, 2, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(call(&ok, &all, 128, flag, 0, &blobs, &count), ZELM_ERR_PARAM);
        EXPECT_EQ(call(&ok, &all, 128, 1, flag, &blobs, &count), ZELM_ERR_PARAM);
    }
    for (const int32_t threshold : {-1, 256, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(call(&ok, &all, threshold, 1, 0, &blobs, &count), ZELM_ERR_PARAM);
    }
    EXPECT_EQ(call(&ok, &noRows, 128, 1, 0, &blobs, &count), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&ok, &negative, 128, 1, 0, &blobs, &count), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&ok, &all, 128, 1, 0, &blobs, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(blobs, nullptr);
    EXPECT_EQ(count, 7);
}

TEST(Blob, AnArrayPointerThatIsNotNullIsRefused) {
    TestImage image(8, 6);
    const ZelmImage record = image.record();
    const ZelmRect all = image.all();
    ZelmBlob mine = {};
    ZelmBlob* blobs = &mine;
    int32_t count = 7;
    EXPECT_EQ(zelmBinBlob(&record, &all, 128, 1, 0, 1, &blobs, &count), ZELM_ERR_PARAM);
    EXPECT_EQ(blobs, &mine);
    EXPECT_EQ(count, 7);
}

TEST(Blob, NoForegroundGivesAnEmptyArrayOfOneRecord) {
    TestImage image(30, 20);
    const ZelmImage record = image.record();
    const ZelmRect all = image.all();
    ZelmBlob* blobs = nullptr;
    int32_t count = 7;
    ASSERT_EQ(zelmBinBlob(&record, &all, 128, 1, 0, 1, &blobs, &count), ZELM_OK);
    EXPECT_EQ(count, 0);
    ASSERT_NE(blobs, nullptr);
    EXPECT_EQ(blobs[0].area, 0);  // a zeroed record; with the address sanitizer also proof of its size
    zelmBinFree(&blobs);
    EXPECT_EQ(blobs, nullptr);
    zelmBinFree(&blobs);
    EXPECT_EQ(blobs, nullptr);
}

TEST(Blob, ASquareHasItsAreaCentreAndBox) {
    TestImage image(40, 50);
    image.fillRect({10, 20, 5, 5}, 255);
    const auto blobs = blobsIn(image);
    ASSERT_EQ(blobs.size(), 1U);
    const ZelmBlob& b = blobs[0];
    EXPECT_EQ(b.area, 25);
    EXPECT_EQ(b.cx, 12.0);
    EXPECT_EQ(b.cy, 22.0);
    EXPECT_EQ(b.left, 10);
    EXPECT_EQ(b.top, 20);
    EXPECT_EQ(b.right, 14);
    EXPECT_EQ(b.bottom, 24);
    EXPECT_EQ(b.width, 5);
    EXPECT_EQ(b.height, 5);
    EXPECT_EQ(b.angle, 0.0);
}

TEST(Blob, ABarPointsAlongItsLength) {
    TestImage wide(40, 40);
    wide.fillRect({10, 20, 9, 3}, 255);
    EXPECT_EQ(blobsIn(wide).at(0).angle, 0.0);
    TestImage high(40, 40);
    high.fillRect({20, 10, 3, 9}, 255);
    EXPECT_EQ(blobsIn(high).at(0).angle, kPi / 2.0);
}

TEST(Blob, TheAngleIsMeasuredWithYDownwards) {
    TestImage falling(40, 40);
    TestImage rising(40, 40);
    for (int32_t i = 0; i < 20; ++i) {
        falling.at(10 + i, 10 + i) = 255;
        rising.at(10 + i, 30 - i) = 255;
    }
    EXPECT_DOUBLE_EQ(blobsIn(falling).at(0).angle, kPi / 4.0);
    EXPECT_DOUBLE_EQ(blobsIn(rising).at(0).angle, -kPi / 4.0);
}

TEST(Blob, CoordinatesAreThoseOfTheImageNotOfTheRegion) {
    TestImage image(60, 60);
    image.fillRect({30, 40, 4, 2}, 255);
    const auto blobs = blobsOf(image, {.region = {25, 35, 20, 20}});
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].cx, 31.5);
    EXPECT_EQ(blobs[0].cy, 40.5);
    EXPECT_EQ(blobs[0].left, 30);
    EXPECT_EQ(blobs[0].bottom, 41);
}

TEST(Blob, DiagonalNeighboursAreOneBlob) {
    for (const auto& rows : {std::vector<std::string>{"....", ".#..", "..#.", "...."},
                             std::vector<std::string>{"....", "..#.", ".#..", "...."}}) {
        const auto blobs = blobsIn(picture(rows));
        ASSERT_EQ(blobs.size(), 1U);
        EXPECT_EQ(blobs[0].area, 2);
    }
}

TEST(Blob, AUShapeIsOneBlobWithBothArms) {
    const auto blobs = blobsIn(picture({".........", ".#....##.", ".#....##.", ".#....##.", ".#######.", "........."}));
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].area, 3 + 6 + 7);
    EXPECT_EQ(blobs[0].left, 1);
    EXPECT_EQ(blobs[0].right, 7);
    EXPECT_EQ(blobs[0].top, 1);
    EXPECT_EQ(blobs[0].bottom, 4);
}

TEST(Blob, ABlobOnAnyEdgeOfTheRegionIsDropped) {
    TestImage image(30, 30);
    for (const ZelmRect& r : {ZelmRect{5, 10, 3, 3}, ZelmRect{22, 10, 3, 3}, ZelmRect{12, 5, 3, 3},
                              ZelmRect{12, 22, 3, 3}, ZelmRect{12, 12, 3, 3}}) {
        image.fillRect(r, 255);
    }
    const BlobRequest region = {.region = {5, 5, 20, 20}};
    const auto blobs = blobsOf(image, region);
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].cx, 13.0);
    EXPECT_EQ(blobs[0].cy, 13.0);
    EXPECT_EQ(blobsOf(image, {.region = image.all()}).size(), 5U);
}

TEST(Blob, ClearedEdgesCutOffTheRing) {
    TestImage image(30, 30);
    image.fillRect({0, 10, 4, 3}, 255);
    EXPECT_EQ(blobsOf(image, {.region = image.all()}).size(), 0U);
    const auto blobs = blobsOf(image, {.region = image.all(), .clearEdge = 1});
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].area, 9);
    EXPECT_EQ(blobs[0].left, 1);
    EXPECT_EQ(image.at(0, 10), 255);  // the caller's image is left alone
}

TEST(Blob, ClearedEdgesLeaveNothingOfRegionsUpToTwoWide) {
    TestImage image(10, 10, 255);
    for (const ZelmRect& r : {ZelmRect{3, 3, 1, 1}, ZelmRect{3, 3, 2, 5}, ZelmRect{3, 3, 5, 2}, ZelmRect{3, 3, 1, 5}}) {
        EXPECT_EQ(blobsOf(image, {.region = r, .clearEdge = 1}).size(), 0U);
    }
    EXPECT_EQ(blobsOf(image, {.region = {3, 3, 3, 3}, .clearEdge = 1}).size(), 1U);
}

TEST(Blob, ThresholdZeroLeavesTheClearedRingForeground) {
    TestImage image(10, 10, 50);
    EXPECT_EQ(blobsOf(image, {.region = image.all(), .threshold = 0, .clearEdge = 1}).size(), 0U);
    // Polarity 0 with threshold 0 has no foreground at all.
    EXPECT_EQ(blobsOf(image, {.region = image.all(), .threshold = 0, .polarity = 0, .clearEdge = 1}).size(), 0U);
}

TEST(Blob, PolarityChoosesTheSideOfTheThreshold) {
    TestImage image(20, 20, 100);
    image.fillRect({5, 5, 3, 3}, 99);
    image.fillRect({12, 12, 2, 2}, 101);
    const auto dark = blobsOf(image, {.region = image.all(), .threshold = 100, .polarity = 0});
    ASSERT_EQ(dark.size(), 1U);
    EXPECT_EQ(dark[0].area, 9);
    const auto light = blobsOf(image, {.region = image.all(), .threshold = 101});
    ASSERT_EQ(light.size(), 1U);
    EXPECT_EQ(light[0].area, 4);
}

TEST(Blob, SmallBlobsAreLeftOut) {
    TestImage image(20, 20);
    image.fillRect({2, 2, 3, 3}, 255);
    image.fillRect({10, 10, 2, 2}, 255);
    EXPECT_EQ(blobsOf(image, {.region = image.all(), .minArea = 4}).size(), 2U);
    EXPECT_EQ(blobsOf(image, {.region = image.all(), .minArea = 5}).size(), 1U);
    EXPECT_EQ(blobsOf(image, {.region = image.all(), .minArea = 10}).size(), 0U);
    EXPECT_EQ(blobsOf(image, {.region = image.all(), .minArea = INT32_MIN}).size(), 2U);
}

TEST(Blob, RecordsComeInTheOrderOfTheirLabels) {
    // The right blob starts a row earlier and so has the smaller label.
    const auto blobs = blobsIn(picture({".......", ".....#.", ".#...#.", "......."}));
    ASSERT_EQ(blobs.size(), 2U);
    EXPECT_EQ(blobs[0].cx, 5.0);
    EXPECT_EQ(blobs[1].cx, 1.0);
}

TEST(Blob, LabelsAndRecordsGrowByThousands) {
    for (const int32_t side : {31, 32, 33, 45, 64}) {  // squares around 1000, 2000 and 4000 blobs
        TestImage image(2 * side + 1, 2 * side + 1);
        for (int32_t y = 0; y < side; ++y) {
            for (int32_t x = 0; x < side; ++x) {
                image.at(2 * x + 1, 2 * y + 1) = 255;
            }
        }
        const auto blobs = blobsOf(image, {.region = image.all()});
        ASSERT_EQ(blobs.size(), static_cast<size_t>(side * side));
        for (int32_t k = 0; k < side * side; ++k) {
            const ZelmBlob& b = blobs[static_cast<size_t>(k)];
            ASSERT_EQ(b.area, 1);
            ASSERT_EQ(b.left, 2 * (k % side) + 1);
            ASSERT_EQ(b.top, 2 * (k / side) + 1);
        }
    }
}

TEST(Blob, OutOfMemoryAfterTheArrayKeepsItForTheCaller) {
    TestImage image(12, 12);
    const ZelmImage record = image.record();
    const ZelmRect all = image.all();
    const long live = zelmtest::allocCounters().live;
    for (long k = 1; k <= 4; ++k) {
        ZelmBlob* blobs = nullptr;
        int32_t count = 7;
        zelmtest::armAllocFault(k);
        EXPECT_EQ(zelmBinBlob(&record, &all, 128, 1, 0, 1, &blobs, &count), ZELM_ERR_MEMORY) << k;
        zelmtest::disarmAllocFault();
        EXPECT_EQ(blobs != nullptr, k > 1) << k;
        EXPECT_EQ(count, 7);
        zelmBinFree(&blobs);
        EXPECT_EQ(zelmtest::allocCounters().live, live);
    }
}

TEST(Blob, AFailedShrinkFreesTheArray) {
    TestImage image(12, 12);
    const ZelmImage record = image.record();
    const ZelmRect all = image.all();
    ZelmBlob* blobs = nullptr;
    int32_t count = 7;
    zelmtest::armAllocFault(5);  // the array, two rows, the labels, then the shrink
    EXPECT_EQ(zelmBinBlob(&record, &all, 128, 1, 0, 1, &blobs, &count), ZELM_ERR_MEMORY);
    zelmtest::disarmAllocFault();
    EXPECT_EQ(blobs, nullptr);
    EXPECT_EQ(count, 7);
}

// --- deliberate limits

// Terms of a run are 32-bit: 1500 pixels exceed them in the sum of squares, which then turns the angle; area, centroid
// and box stay right.
TEST(Blob, SecondMomentsOfLongRunsWrapAround) {
    const int32_t n = 1500;
    TestImage image(n + 20, 5);
    image.fillRect({10, 2, n, 1}, 255);
    const auto blobs = blobsOf(image, {.region = image.all()});
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].area, n);
    EXPECT_EQ(blobs[0].cx, 10.0 + (n - 1) / 2.0);
    EXPECT_EQ(blobs[0].cy, 2.0);
    EXPECT_EQ(blobs[0].width, n);

    const int64_t X = 10;
    const auto low32 = [](int64_t v) { return static_cast<int32_t>(static_cast<uint32_t>(v)); };
    const int32_t squares = low32((2LL * n - 1) * (n - 1) * n) / 6;
    const int32_t sumXX = low32(X * (X * n + static_cast<int64_t>(n) * (n - 1)) + squares);
    const double sumX = X * n + n * (n - 1) / 2.0;
    const double cx = sumX / n;
    const double mu20 = sumXX - 2.0 * cx * sumX + cx * cx * n;
    EXPECT_LT(mu20, 0.0);  // an honest one is about n^3 / 12
    EXPECT_EQ(blobs[0].angle, kPi / 2.0);
}

TEST(Blob, RunsWithinTheBoundHaveExactMoments) {
    const int32_t n = 1000;  // (2n - 1)(n - 1)n = 1.997e9 is below 2^31
    TestImage image(n + 20, 5);
    image.fillRect({10, 2, n, 1}, 255);
    const auto blobs = blobsOf(image, {.region = image.all()});
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].angle, 0.0);
}

// The middle pixel (label 3) meets the left arm (2) first and the right arm (1) second: the look-up of one level moves
// the middle's label, not the left arm's, to label 1. A flood fill finds one blob of 12 pixels.
TEST(Blob, TheOneLevelLookUpCanSplitABlob) {
    const std::vector<std::string> arch = {".........", ".......#.", ".#.....#.",
                                           ".#..#..#.", ".###.###.", "........."};
    TestImage image = picture(arch);
    const BlobRequest q = {.region = image.all()};
    ASSERT_EQ(zelmtest::blobsByFloodFill(image, q).size(), 1U);
    const auto blobs = blobsOf(image, q);
    ASSERT_EQ(blobs.size(), 2U);
    EXPECT_EQ(blobs[0].area, 6);
    EXPECT_EQ(blobs[0].left, 5);
    EXPECT_EQ(blobs[1].area, 6);
    EXPECT_EQ(blobs[1].left, 1);
    EXPECT_EQ(blobs[1].right, 4);
}

// Row 4 joins label 3 to 2 and then 2 to 1. The foot below label 3 still finds 2, whose pixels have moved on to 1: its
// pixel is left out of the blob, unless a further row below it moves it on. A flood fill finds all.
TEST(Blob, TheOneLevelLookUpCanLoseAPixel) {
    for (const int32_t foot : {1, 2, 3}) {
        std::vector<std::string> rows = {"............", "..........#.", "......#...#.", "..#...#...#.",
                                         ".#.###.###.."};
        rows.insert(rows.end(), static_cast<size_t>(foot), ".#..........");
        rows.emplace_back("............");
        TestImage image = picture(rows);
        const BlobRequest q = {.region = image.all()};
        const auto whole = zelmtest::blobsByFloodFill(image, q);
        ASSERT_EQ(whole.size(), 1U);
        ASSERT_EQ(whole[0].area, 13 + foot);
        const auto blobs = blobsOf(image, q);
        ASSERT_EQ(blobs.size(), 1U);
        EXPECT_EQ(blobs[0].area, foot == 1 ? 13 : 13 + foot);
    }
}

TEST(Blob, SplitArmsThatMeetAgainBelowAreOneBlob) {
    const auto blobs =
        blobsIn(picture({".........", ".......#.", ".#.....#.", ".#..#..#.", ".###.###.", "....#....", "........."}));
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].area, 13);
}

}  // namespace
