// Reading the pattern from rendered images: what is found, each failure and what it leaves in the object, regions,
// and cameras of parallel projection. Platform buffers are read in patternBuffersTest.cpp; accuracy of the dot centres
// is tested in readingAccuracyTest.cpp, the grid over all rolls and tilts from ideal dots in patternGridTest.cpp.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "faultAlloc.h"
#include "patternReading.h"

namespace zelmtest {
namespace {

// ---- arguments

TEST(ReadPattern, NullHandleOrImagesAreRefused) {
    const auto view = smallView();
    Reader reader(describe(smallPlate()));
    const unsigned char* const images[] = {view.image.pixels.data(), view.image.pixels.data()};
    EXPECT_EQ(zelm2ViewReadPtnImg(nullptr, 0, images, nullptr, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewReadPtnImg(reader.handle.calib, 0, nullptr, nullptr, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(reader.read(0, nullptr, images[1]), ZELM_ERR_PARAM);
    EXPECT_EQ(reader.read(0, images[0], nullptr), ZELM_ERR_PARAM);
    expectEmpty(reader.entry('L'));
    expectEmpty(reader.entry('R'));
}

TEST(ReadPattern, ViewsOutsideTheObjectAreRefused) {
    const auto view = smallView();
    Reader reader(describe(smallPlate()));
    for (const std::int32_t bad : {-1, 3, std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_EQ(reader.readBoth(view.image.pixels, bad), ZELM_ERR_PARAM);
    }
}

TEST(ReadPattern, LoadedObjectIsRefused) {
    const Pixels block(1532);
    Handle handle;
    ASSERT_EQ(zelm2ViewLoadCalibData(1532, block.data(), &handle.calib), ZELM_OK);
    const auto view = smallView();
    const unsigned char* const images[] = {view.image.pixels.data(), view.image.pixels.data()};
    EXPECT_EQ(zelm2ViewReadPtnImg(handle.calib, 0, images, nullptr, nullptr), ZELM_ERR_PARAM);
}

TEST(ReadPattern, RegionsThatLeaveTheImageAreRefusedBeforeAnythingIsRead) {
    const auto view = smallView();
    Reader reader(describe(smallPlate()));
    constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
    for (const ZelmRect bad :
         {ZelmRect{-1, 0, 640, 480}, ZelmRect{0, -1, 640, 480}, ZelmRect{0, 0, 641, 480}, ZelmRect{0, 0, 640, 481},
          ZelmRect{1, 0, 640, 480}, ZelmRect{0, 1, 640, 480}, ZelmRect{0, 0, 0, 480}, ZelmRect{0, 0, 640, 0},
          ZelmRect{kMax, 0, kMax, 1}, ZelmRect{639, 479, kMax, kMax}}) {
        EXPECT_EQ(reader.read(0, view.image.pixels.data(), view.image.pixels.data(), nullptr, &bad), ZELM_ERR_PARAM);
        EXPECT_EQ(reader.read(0, view.image.pixels.data(), view.image.pixels.data(), &bad, nullptr), ZELM_ERR_PARAM);
    }
    expectEmpty(reader.entry('L'));
}

// ---- what is found

TEST(ReadPattern, EveryDotIsFoundInItsPlace) {
    for (const auto polarity : {render::Polarity::darkDots, render::Polarity::lightDots}) {
        auto plate = smallPlate();
        plate.polarity = polarity;
        const auto view = smallView(33.0, 25.0, plate);
        Reader reader(describe(plate));
        ASSERT_EQ(reader.readBoth(view.image.pixels), ZELM_OK);
        for (const char camera : {'L', 'R'}) {
            EXPECT_EQ(reader.entry(camera).count, kSmallPlateDots);
            EXPECT_EQ(countWrongDots(view.dots, reader.entry(camera), 0.05), 0);
        }
        expectEmpty(reader.entry('L', 1));
    }
}

// The whole chain from the image at every roll; which marker is which shows most where tilt is strong.
TEST(ReadPattern, OrientationHoldsAtEveryRollAndBothPolarities) {
    const auto camera = testCamera();
    for (const auto polarity : {render::Polarity::darkDots, render::Polarity::lightDots}) {
        auto plate = smallPlate();
        plate.polarity = polarity;
        plate.pitchY = 10.0;
        plate.markerX = 3;
        Reader reader(describe(plate));
        for (int roll = 0; roll < 360; roll += 5) {
            const double tilt = roll % 2 == 0 ? 45.0 : 20.0;
            const auto view = renderAt(plate, camera, aimAt(camera, 3.4, roll, tilt, 3.0 * roll), 1.5);
            ASSERT_EQ(reader.read(0, view.image.pixels.data(), view.image.pixels.data()), ZELM_OK)
                << roll << ' ' << tilt;
            EXPECT_EQ(reader.entry('L').count, kSmallPlateDots) << roll;
            EXPECT_EQ(countWrongDots(view.dots, reader.entry('L')), 0) << roll;
        }
    }
}

TEST(ReadPattern, PlateAxesMakeTheZAxisPointAway) {
    const auto view = smallView(200.0, 40.0);
    Reader reader(describe(smallPlate()));
    ASSERT_EQ(reader.readBoth(view.image.pixels), ZELM_OK);
    const auto& entry = reader.entry('L');
    const auto find = [&entry](double x, double y) {
        for (std::int32_t i = 0; i < entry.count; ++i) {
            if (entry.plane[i].x == x && entry.plane[i].y == y) {
                return entry.image[i];
            }
        }
        ADD_FAILURE() << "no dot at " << x << ", " << y;
        return Point2d{};
    };
    const Point2d o = find(0, 0);
    const Point2d x = find(12, 0);
    const Point2d y = find(0, 12);
    EXPECT_GT((x.x - o.x) * (y.y - o.y) - (x.y - o.y) * (y.x - o.x), 0.0);
}

TEST(ReadPattern, DotsKeepTheOrderOfTheirBlobs) {
    const auto view = smallView(17.0, 30.0);
    Reader reader(describe(smallPlate()));
    const ZelmRect whole = {60, 40, 520, 400};
    ASSERT_EQ(reader.readBoth(view.image.pixels), ZELM_OK);
    const auto& entry = reader.entry('L');
    // The blobs of the whole plate, in their order: each dot is the next blob.
    const ZelmImage image = {const_cast<unsigned char*>(view.image.pixels.data()), 640, 480};
    ZelmBlob* blobs = nullptr;
    std::int32_t count = 0;
    ASSERT_EQ(zelmBinBlob(&image, &whole, zelmBinOtsuThresholdImage(&image, &whole), 0, 0, 20, &blobs, &count),
              ZELM_OK);
    std::int32_t dot = 0;
    for (std::int32_t i = 0; i < count && dot < entry.count; ++i) {
        dot += std::hypot(blobs[i].cx - entry.image[dot].x, blobs[i].cy - entry.image[dot].y) < 1.0 ? 1 : 0;
    }
    EXPECT_EQ(dot, kSmallPlateDots);
    zelmBinFree(&blobs);
}

TEST(ReadPattern, GetPatternHandsOutImagePointsNotPlanePoints) {
    const auto view = smallView(10.0, 10.0);
    Reader reader(describe(smallPlate()));
    ASSERT_EQ(reader.readBoth(view.image.pixels), ZELM_OK);
    std::int32_t count = 0;
    ASSERT_EQ(zelm2ViewGetPtnNum(reader.handle.calib, 'R', 0, &count), ZELM_OK);
    ASSERT_EQ(count, kSmallPlateDots);
    std::vector<Point2d> points(static_cast<std::size_t>(count));
    ASSERT_EQ(zelm2ViewGetPattern(reader.handle.calib, 'R', 0, points.data()), ZELM_OK);
    EXPECT_EQ(std::memcmp(points.data(), reader.entry('R').image, points.size() * sizeof(Point2d)), 0);
}

TEST(ReadPattern, ReadingAgainReplacesTheLists) {
    const long before = allocCounters().live;
    {
        const auto first = smallView(0.0);
        auto fewer = smallPlate();
        fewer.missing = {{-3, -2}, {3, 2}};
        const auto second = smallView(90.0, 0.0, fewer);
        Reader reader(describe(smallPlate()));
        ASSERT_EQ(reader.readBoth(first.image.pixels), ZELM_OK);
        ASSERT_EQ(reader.readBoth(second.image.pixels), ZELM_OK);
        EXPECT_EQ(reader.entry('L').count, kSmallPlateDots - 2);
        EXPECT_EQ(countWrongDots(second.dots, reader.entry('L')), 0);
    }
    EXPECT_EQ(allocCounters().live, before);
}

TEST(ReadPattern, DotsOutsideTheFieldAreDropped) {
    auto pattern = describe(smallPlate());
    pattern.d0 = 48.0;  // two columns to each side instead of three; enlarging by a third of the pitch adds none
    Reader reader(pattern);
    const auto view = smallView();
    ASSERT_EQ(reader.readBoth(view.image.pixels), ZELM_OK);
    EXPECT_EQ(reader.entry('L').count, 25);
    EXPECT_EQ(countWrongDots(view.dots, reader.entry('L')), 0);
}

// Two readings that differ in nothing but the dots kept: their arrays, sized for all blobs, shrink to just those dots.
TEST(ReadPattern, ArraysShrinkToTheDotsKept) {
    const auto view = smallView();
    const auto bytesFor = [&view](double extent, std::int32_t dots) {
        auto pattern = describe(smallPlate());
        pattern.d0 = extent;
        pattern.minDots = 1;
        Reader reader(pattern);
        armAllocFault(0);
        EXPECT_EQ(reader.read(0, view.image.pixels.data(), view.image.pixels.data()), ZELM_OK);
        disarmAllocFault();
        EXPECT_EQ(reader.entry('L').count, dots);
        return allocCounters().bytes;
    };
    // Ten dots fewer, two arrays, two images.
    EXPECT_EQ(bytesFor(48.0, 25) - bytesFor(24.0, 15), 10 * 2 * 2 * sizeof(Point2d));
}

// ---- regions

TEST(ReadPattern, RegionSkipsTheSearchForThePlate) {
    // A plate that covers less than a twentieth of the image is not found, but its dots are read when it is pointed at.
    const auto camera = testCamera();
    const auto view = renderAt(smallPlate(), camera, aimAt(camera, 1.3), 0.0);
    Reader reader(describe(smallPlate()));
    EXPECT_EQ(reader.readBoth(view.image.pixels), ZELM_ERR_PATTERN_PLATE);
    const ZelmRect region = {262, 197, 116, 86};
    ASSERT_EQ(reader.readBoth(view.image.pixels, 0, &region), ZELM_OK);
    EXPECT_EQ(reader.entry('L').count, kSmallPlateDots);
    EXPECT_EQ(countWrongDots(view.dots, reader.entry('L')), 0);
}

TEST(ReadPattern, DotCutByTheEdgeOfTheRegionIsNeverReported) {
    const auto view = smallView();
    Reader reader(describe(smallPlate()));
    // The leftmost column of dots stands at x = 319.5 - 180 = 139.5; the region begins in its middle.
    const ZelmRect region = {140, 90, 380, 300};
    ASSERT_EQ(reader.readBoth(view.image.pixels, 0, &region), ZELM_OK);
    EXPECT_EQ(reader.entry('L').count, kSmallPlateDots - 5);
    for (std::int32_t i = 0; i < reader.entry('L').count; ++i) {
        EXPECT_GT(reader.entry('L').plane[i].x, -30.0);
    }
}

TEST(ReadPattern, EachCameraHasItsOwnRegion) {
    const auto view = smallView();
    Reader reader(describe(smallPlate()));
    const ZelmRect left = {140, 90, 380, 300};
    ASSERT_EQ(reader.read(0, view.image.pixels.data(), view.image.pixels.data(), &left, nullptr), ZELM_OK);
    EXPECT_EQ(reader.entry('L').count, kSmallPlateDots - 5);
    EXPECT_EQ(reader.entry('R').count, kSmallPlateDots);
}

// ---- failures

TEST(ReadPattern, FlatImageHoldsNoPlateInAnyGrayAndPolarity) {
    for (const std::int32_t polarity : {0, 1}) {
        for (const int gray : {0, 1, 128, 255}) {
            auto pattern = describe(smallPlate());
            pattern.polarity = polarity;
            Reader reader(pattern);
            EXPECT_EQ(reader.readBoth(Pixels(640 * 480, static_cast<unsigned char>(gray))), ZELM_ERR_PATTERN_PLATE)
                << polarity << ' ' << gray;
            expectEmpty(reader.entry('L'));
        }
    }
}

TEST(ReadPattern, FlatRegionHasTooFewDots) {
    Reader reader(describe(smallPlate()));
    const ZelmRect region = {100, 100, 200, 200};
    EXPECT_EQ(reader.readBoth(Pixels(640 * 480, 128), 0, &region), ZELM_ERR_PATTERN);
    expectEmpty(reader.entry('L'));
}

TEST(ReadPattern, FailureBeforeTheDotsAreLabelledKeepsTheOldLists) {
    const auto view = smallView();
    Reader reader(describe(smallPlate()));
    ASSERT_EQ(reader.readBoth(view.image.pixels), ZELM_OK);
    const Lists before(reader.entry('L'));
    EXPECT_EQ(reader.readBoth(Pixels(640 * 480, 128)), ZELM_ERR_PATTERN_PLATE);
    EXPECT_TRUE(Lists(reader.entry('L')) == before);
}

struct FailingPlate {
    std::string name;
    render::Plate plate;
    Zelm2ViewPatternDesc pattern;
    std::int32_t status;
};

std::vector<FailingPlate> failingPlates() {
    const auto good = smallPlate();
    std::vector<FailingPlate> cases;
    const auto add = [&cases](const std::string& name, const render::Plate& plate, std::int32_t status) {
        cases.push_back({name, plate, describe(plate), status});
        return &cases.back();
    };
    auto plate = good;
    plate.missing = {{0, 2}};
    add("a hidden marker", plate, ZELM_ERR_PATTERN_MARKERS);
    plate = good;
    plate.shrunkMarkers = {{2, 0}};
    add("a marker printed as a dot", plate, ZELM_ERR_PATTERN_MARKERS);
    plate = good;
    plate.extraMarkers = {{-1, -1}};
    add("a fourth marker", plate, ZELM_ERR_PATTERN_MARKERS);
    plate = good;
    plate.shrunkMarkers = {{0, 2}};
    plate.extraMarkers = {{-2, 0}};
    add("three markers in a row: no right angle", plate, ZELM_ERR_PATTERN_MARKERS);
    plate = good;
    plate.shrunkMarkers = {{0, 2}};
    plate.extraMarkers = {{-1, 2}};
    // Angles of 116.6, 33.7 and 29.7 degrees; the nearest to a right one misses it by 26.6.
    add("markers at 117 degrees", plate, ZELM_ERR_PATTERN_MARKERS);
    plate = good;
    plate.markerX = 3;  // 180 pixels against 60
    plate.markerY = 1;
    add("axes that differ by 120 pixels", plate, ZELM_ERR_PATTERN_MARKERS);
    for (const std::int32_t markers : {1, 2, 4, std::numeric_limits<std::int32_t>::max()}) {
        add("a description with " + std::to_string(markers) + " markers", good, ZELM_ERR_PATTERN_MARKERS)
            ->pattern.markers = markers;
    }
    add("a description with markers as small as dots", good, ZELM_ERR_PATTERN_MARKERS)->pattern.d3 = 5.0;
    plate = good;
    for (int x = -2; x <= 2; ++x) {
        for (int y = -2; y <= 2; ++y) {
            const bool isMarker = (x == 0 && y == 0) || (x == 2 && y == 0) || (x == 0 && y == 2);
            if (!isMarker) {
                plate.missing.push_back({x, y});
            }
        }
    }
    add("no dots around the markers", plate, ZELM_ERR_PATTERN_GRID)->pattern.minDots = 5;
    add("more dots required than there are", good, ZELM_ERR_PATTERN)->pattern.minDots = 36;
    add("edges stronger than any", good, ZELM_ERR_PATTERN)->pattern.minEdgeStrength = 1000.0;
    add("dots larger than any", good, ZELM_ERR_PATTERN)->pattern.minDotArea = 5000;
    return cases;
}

TEST(ReadPattern, EachUnreadablePlateHasItsStatusAndLeavesAnEmptyEntry) {
    for (const auto& [name, plate, pattern, status] : failingPlates()) {
        SCOPED_TRACE(name);
        const auto view = smallView(0.0, 0.0, plate);
        Reader reader(pattern);
        EXPECT_EQ(reader.read(0, view.image.pixels.data(), view.image.pixels.data()), status);
        expectEmpty(reader.entry('L'));
        expectEmpty(reader.entry('R'));
    }
}

TEST(ReadPattern, AxesThatDifferByLittleLessThanAHundredPixelsAreRead) {
    auto plate = smallPlate();
    plate.markerX = 3;
    plate.markerY = 1;
    const auto camera = testCamera();
    const auto lengthsDifferBy = [&](double pixels) {
        const auto view = renderAt(plate, camera, aimAt(camera, pixels / 24.0));
        Reader reader(describe(plate));
        return reader.readBoth(view.image.pixels);
    };
    EXPECT_EQ(lengthsDifferBy(99.5), ZELM_OK);
    EXPECT_EQ(lengthsDifferBy(100.5), ZELM_ERR_PATTERN_MARKERS);
}

TEST(ReadPattern, OldListsAreNeverLeftByALaterFailure) {
    const auto good = smallView();
    auto plate = smallPlate();
    plate.missing = {{0, 2}};
    const auto bad = smallView(0.0, 0.0, plate);
    Reader reader(describe(smallPlate()));
    ASSERT_EQ(reader.readBoth(good.image.pixels), ZELM_OK);
    EXPECT_EQ(reader.readBoth(bad.image.pixels), ZELM_ERR_PATTERN_MARKERS);
    expectEmpty(reader.entry('L'));
    EXPECT_EQ(reader.entry('R').count, kSmallPlateDots);  // not reached
}

TEST(ReadPattern, TooFewDotsOnTheGridLeaveWhatWasFound) {
    auto pattern = describe(smallPlate());
    pattern.d0 = 48.0;  // a field of 25 dots
    pattern.minDots = 26;
    const auto view = smallView();
    Reader reader(pattern);
    EXPECT_EQ(reader.readBoth(view.image.pixels), ZELM_ERR_PATTERN);
    EXPECT_EQ(reader.entry('L').count, 25);
    EXPECT_EQ(countWrongDots(view.dots, reader.entry('L')), 0);
    expectEmpty(reader.entry('R'));
}

TEST(ReadPattern, TooFewDotsAfterTheOutliersAreRefused) {
    // A scratch that runs into a dot makes a blob that is no longer one.
    auto view = smallView();
    for (int y = 232; y < 248; ++y) {
        for (int x = 139 - 40; x < 139 + 8; ++x) {
            view.image.pixels[static_cast<std::size_t>(y * 640 + x)] = 20;
        }
    }
    auto pattern = describe(smallPlate());
    pattern.minDots = kSmallPlateDots;
    Reader reader(pattern);
    const ZelmRect region = {80, 90, 480, 300};
    EXPECT_EQ(reader.readBoth(view.image.pixels, 0, &region), ZELM_ERR_PATTERN);
    expectEmpty(reader.entry('L'));
    pattern.minDots = kSmallPlateDots - 1;
    Reader lenient(pattern);
    EXPECT_EQ(lenient.readBoth(view.image.pixels, 0, &region), ZELM_OK);
    EXPECT_EQ(lenient.entry('L').count, kSmallPlateDots - 1);
}

TEST(ReadPattern, LeftListsAreReplacedAlreadyWhenTheRightImageFails) {
    const auto first = smallView(0.0);
    const auto second = smallView(45.0);
    const Pixels flat(640 * 480, 128);
    Reader reader(describe(smallPlate()));
    ASSERT_EQ(reader.readBoth(first.image.pixels), ZELM_OK);
    const Lists rightBefore(reader.entry('R'));
    EXPECT_EQ(reader.read(0, second.image.pixels.data(), flat.data()), ZELM_ERR_PATTERN_PLATE);
    EXPECT_EQ(countWrongDots(second.dots, reader.entry('L')), 0);
    EXPECT_TRUE(Lists(reader.entry('R')) == rightBefore);
}

TEST(ReadPattern, AbsurdDescriptionsEndInAStatus) {
    const auto view = smallView();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto statusWith = [&view](double Zelm2ViewPatternDesc::*field, double value) {
        auto pattern = describe(smallPlate());
        pattern.*field = value;
        Reader reader(pattern);
        return reader.readBoth(view.image.pixels);
    };
    EXPECT_EQ(statusWith(&Zelm2ViewPatternDesc::d0, nan), ZELM_ERR_PATTERN);  // no dot lies in such a field
    EXPECT_EQ(statusWith(&Zelm2ViewPatternDesc::d1, nan), ZELM_ERR_PATTERN);
    EXPECT_EQ(statusWith(&Zelm2ViewPatternDesc::d2, nan), ZELM_ERR_PATTERN_MARKERS);
    EXPECT_EQ(statusWith(&Zelm2ViewPatternDesc::d3, nan), ZELM_ERR_PATTERN_MARKERS);
    for (const auto field :
         {&Zelm2ViewPatternDesc::d4, &Zelm2ViewPatternDesc::d5, &Zelm2ViewPatternDesc::d6, &Zelm2ViewPatternDesc::d7}) {
        EXPECT_EQ(statusWith(field, nan), ZELM_ERR_PATTERN_GRID);
    }
    for (const double tiny : {1e-300, 5e-324}) {
        EXPECT_EQ(statusWith(&Zelm2ViewPatternDesc::d2, tiny), ZELM_ERR_PATTERN_MARKERS);
        EXPECT_EQ(statusWith(&Zelm2ViewPatternDesc::d3, tiny), ZELM_ERR_PATTERN_MARKERS);
        EXPECT_EQ(statusWith(&Zelm2ViewPatternDesc::d4, tiny), ZELM_ERR_PATTERN_GRID);
        EXPECT_EQ(statusWith(&Zelm2ViewPatternDesc::d5, tiny), ZELM_ERR_PATTERN_GRID);
        EXPECT_LT(statusWith(&Zelm2ViewPatternDesc::d6, tiny), 0);
        EXPECT_LT(statusWith(&Zelm2ViewPatternDesc::d7, tiny), 0);
    }
    for (const double huge : {1e300, HUGE_VAL}) {
        EXPECT_EQ(statusWith(&Zelm2ViewPatternDesc::d2, huge), ZELM_ERR_PATTERN_MARKERS);
        EXPECT_EQ(statusWith(&Zelm2ViewPatternDesc::d3, huge), ZELM_ERR_PATTERN_MARKERS);
        EXPECT_LT(statusWith(&Zelm2ViewPatternDesc::d4, huge), 0);
        EXPECT_LT(statusWith(&Zelm2ViewPatternDesc::d5, huge), 0);
        EXPECT_EQ(statusWith(&Zelm2ViewPatternDesc::d6, huge), ZELM_ERR_PATTERN_GRID);
        EXPECT_EQ(statusWith(&Zelm2ViewPatternDesc::d7, huge), ZELM_ERR_PATTERN_GRID);
        EXPECT_EQ(statusWith(&Zelm2ViewPatternDesc::d0, huge), ZELM_OK);  // a field without end
    }
}

TEST(ReadPattern, RandomPixelsEndInAStatus) {
    Pixels noise(640 * 480);
    std::uint64_t state = 12345;
    for (auto& pixel : noise) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        pixel = static_cast<unsigned char>(state >> 56);
    }
    auto pattern = describe(smallPlate());
    pattern.minDotArea = 1;
    pattern.minDots = -1;
    pattern.minEdgeStrength = 0.0;
    Reader reader(pattern);
    const ZelmRect whole = {0, 0, 640, 480};
    EXPECT_LT(reader.readBoth(noise, 0, &whole), 0);
    expectEmpty(reader.entry('L'));
}

// ---- cameras of parallel projection

TEST(ReadPattern, ParallelCameraIsReadInViewZeroAlone) {
    const auto view = smallView();
    Reader reader(describe(smallPlate()), cameraPair(0, 2));
    EXPECT_EQ(reader.read(0, view.image.pixels.data(), nullptr), ZELM_ERR_PARAM);
    ASSERT_EQ(reader.readBoth(view.image.pixels), ZELM_OK);
    const Lists right(reader.entry('R'));
    EXPECT_EQ(reader.read(1, view.image.pixels.data(), nullptr), ZELM_OK);
    EXPECT_EQ(reader.entry('L', 1).count, kSmallPlateDots);
    expectEmpty(reader.entry('R', 1));
    EXPECT_EQ(reader.readBoth(view.image.pixels, 2), ZELM_OK);
    expectEmpty(reader.entry('R', 2));
    EXPECT_TRUE(Lists(reader.entry('R')) == right);
    EXPECT_EQ(reader.read(1, nullptr, view.image.pixels.data()), ZELM_ERR_PARAM);
}

TEST(ReadPattern, PairOfParallelCamerasReadsNothingInLaterViews) {
    Reader reader(describe(smallPlate()), cameraPair(2, 2));
    EXPECT_EQ(reader.read(1, nullptr, nullptr), ZELM_OK);
    EXPECT_EQ(reader.read(0, nullptr, nullptr), ZELM_ERR_PARAM);
    const ZelmRect ignored = {-5, -5, 0, 0};
    EXPECT_EQ(reader.read(2, nullptr, nullptr, &ignored, &ignored), ZELM_OK);
}

}  // namespace
}  // namespace zelmtest
