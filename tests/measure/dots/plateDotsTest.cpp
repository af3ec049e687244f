// Dots of rendered plates and their places on the grid against the renderer's truth.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "measureRigs.h"
#include "patternReading.h"

namespace zelmtest {
namespace {

constexpr double kUntouched = -7.0;

struct Found {
    std::vector<std::int32_t> grid;
    std::vector<double> plane;
    std::vector<double> pixels;
    std::vector<double> errors;
    std::int64_t placed = -7;
    std::int64_t found = -7;
    bool operator==(const Found&) const = default;

    explicit Found(std::size_t room)
        : grid(2 * room, -7), plane(2 * room, kUntouched), pixels(2 * room, kUntouched), errors(2 * room, kUntouched) {}
    ZelmMeasureDots record() {
        auto dots = emptyRecord<ZelmMeasureDots>();
        dots.capacity = static_cast<std::int64_t>(grid.size() / 2);
        dots.grid = grid.data();
        dots.plane = plane.data();
        dots.pixels = pixels.data();
        dots.errors = errors.data();
        return dots;
    }
};

ZelmMeasureImage imageOf(const render::GrayImage& image) {
    return {image.pixels.data(), image.width, image.height, image.width};
}

std::int32_t read(const ZelmMeasureImage& image, const Zelm2ViewPatternDesc& pattern, Found& out,
                  const ZelmRect* region = nullptr) {
    const ZelmMeasureDots dots = out.record();
    return zelmMeasurePlateDots(&image, &pattern, region, &dots, &out.placed, &out.found);
}

// Dots with another grid index or place than the truth nearest to them, or 0.1 pixels and more from it.
int countWrong(const Found& out, const render::Plate& plate, const std::vector<render::DotTruth>& truths) {
    int wrong = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(out.placed); ++i) {
        const render::DotTruth& truth = nearestTruth(truths, {out.pixels[2 * i], out.pixels[2 * i + 1]});
        const bool isRight = out.grid[2 * i] == truth.dot.index.x && out.grid[2 * i + 1] == truth.dot.index.y &&
                             out.plane[2 * i] == truth.dot.index.x * plate.pitchX &&
                             out.plane[2 * i + 1] == truth.dot.index.y * plate.pitchY &&
                             std::hypot(out.pixels[2 * i] - truth.ellipse.centre.x,
                                        out.pixels[2 * i + 1] - truth.ellipse.centre.y) < 0.1;
        wrong += isRight ? 0 : 1;
    }
    return wrong;
}

TEST(MeasurePlateDots, EveryDotHasItsPlaceOnTheGrid) {
    render::Plate oblong = smallPlate();
    oblong.pitchY = 14.0;
    oblong.markerY = 1;
    render::Plate light = smallPlate();
    light.polarity = render::Polarity::lightDots;
    for (const render::Plate& plate : {smallPlate(), oblong, light}) {
        for (const double roll : {0.0, 37.0, 90.0, 200.0}) {
            for (const double tilt : {0.0, 35.0}) {
                SCOPED_TRACE(testing::Message() << "roll " << roll << ", tilt " << tilt);
                const render::RenderedView view = smallView(roll, tilt, plate);
                Found out(50);
                ASSERT_EQ(read(imageOf(view.image), describe(plate), out), ZELM_OK);
                EXPECT_EQ(out.placed, 35);
                EXPECT_EQ(out.found, 35);
                EXPECT_EQ(countWrong(out, plate, view.dots), 0);
                // Beyond the dots, and the errors, which only calibrated dots have.
                EXPECT_EQ(out.grid[70], -7);
                EXPECT_EQ(out.pixels[70], kUntouched);
                EXPECT_EQ(out.errors, std::vector<double>(100, kUntouched));
            }
        }
    }
}

TEST(MeasurePlateDots, DotsComeInTheOrderOfTheReader) {
    const render::RenderedView view = smallView(15.0, 20.0);
    Reader reader(describe(smallPlate()));
    ASSERT_EQ(reader.readBoth(view.image.pixels), ZELM_OK);
    const Zelm2ViewPtnEntry& entry = reader.entry('L');
    Found out(35);
    ASSERT_EQ(read(imageOf(view.image), describe(smallPlate()), out), ZELM_OK);
    ASSERT_EQ(out.placed, entry.count);
    for (std::size_t i = 0; i < 35; ++i) {
        EXPECT_EQ(out.pixels[2 * i], entry.image[i].x);
        EXPECT_EQ(out.pixels[2 * i + 1], entry.image[i].y);
    }
}

TEST(MeasurePlateDots, CapacityAndMissingArraysAreRespected) {
    const render::RenderedView view = smallView();
    const Zelm2ViewPatternDesc pattern = describe(smallPlate());
    const ZelmMeasureImage image = imageOf(view.image);
    Found all(35);
    ASSERT_EQ(read(image, pattern, all), ZELM_OK);
    Found some(35);
    ZelmMeasureDots dots = some.record();
    dots.capacity = 10;
    dots.plane = nullptr;
    ASSERT_EQ(zelmMeasurePlateDots(&image, &pattern, nullptr, &dots, &some.placed, nullptr), ZELM_OK);
    EXPECT_EQ(some.placed, 35);
    EXPECT_TRUE(std::equal(some.grid.begin(), some.grid.begin() + 20, all.grid.begin()));
    EXPECT_TRUE(std::equal(some.pixels.begin(), some.pixels.begin() + 20, all.pixels.begin()));
    EXPECT_EQ(some.grid[20], -7);
    EXPECT_EQ(some.pixels[20], kUntouched);
    EXPECT_EQ(some.plane, std::vector<double>(70, kUntouched));
    std::int64_t placed = -7;
    ASSERT_EQ(zelmMeasurePlateDots(&image, &pattern, nullptr, nullptr, &placed, nullptr), ZELM_OK);
    EXPECT_EQ(placed, 35);
}

TEST(MeasurePlateDots, PaddedRowsAndRegionsGiveTheSameDots) {
    const render::RenderedView view = smallView(15.0);
    const Zelm2ViewPatternDesc pattern = describe(smallPlate());
    Found dense(35);
    ASSERT_EQ(read(imageOf(view.image), pattern, dense), ZELM_OK);
    constexpr std::size_t kStride = 644;
    Pixels padded(kStride * 480, 77);
    for (std::size_t y = 0; y < 480; ++y) {
        std::copy_n(view.image.pixels.begin() + static_cast<std::ptrdiff_t>(y * 640), 640,
                    padded.begin() + static_cast<std::ptrdiff_t>(y * kStride));
    }
    Found strided(35);
    ASSERT_EQ(read({padded.data(), 640, 480, kStride}, pattern, strided), ZELM_OK);
    EXPECT_EQ(strided, dense);
    // A region that holds the dots alone, half a pitch of 60 pixels around them.
    double left = 640.0, right = 0.0, top = 480.0, bottom = 0.0;
    for (const render::DotTruth& dot : view.dots) {
        left = std::min(left, dot.ellipse.centre.x);
        right = std::max(right, dot.ellipse.centre.x);
        top = std::min(top, dot.ellipse.centre.y);
        bottom = std::max(bottom, dot.ellipse.centre.y);
    }
    const ZelmRect region{static_cast<int>(left) - 30, static_cast<int>(top) - 30, static_cast<int>(right - left) + 60,
                          static_cast<int>(bottom - top) + 60};
    Found within(35);
    ASSERT_EQ(read(imageOf(view.image), pattern, within, &region), ZELM_OK);
    EXPECT_EQ(within.placed, 35);
    EXPECT_EQ(countWrong(within, smallPlate(), view.dots), 0);
}

TEST(MeasurePlateDots, FailuresAreTheReadersOwn) {
    render::Plate fewMarkers = smallPlate();
    fewMarkers.shrunkMarkers = {{2, 0}};
    const Pixels blank(640 * 480, 128);
    const ZelmMeasureImage flat{blank.data(), 640, 480, 640};
    const render::RenderedView view = smallView();
    const render::RenderedView unmarked = smallView(0.0, 0.0, fewMarkers);
    Zelm2ViewPatternDesc many = describe(smallPlate());
    many.minDots = 36;
    const ZelmRect outside{600, 400, 100, 100};
    const ZelmRect empty{100, 100, 0, 100};
    const struct {
        ZelmMeasureImage image;
        Zelm2ViewPatternDesc pattern;
        const ZelmRect* region;
        std::int32_t status;
    } cases[] = {{flat, describe(smallPlate()), nullptr, ZELM_ERR_PATTERN_PLATE},
                 {imageOf(view.image), many, nullptr, ZELM_ERR_PATTERN},
                 {imageOf(unmarked.image), describe(smallPlate()), nullptr, ZELM_ERR_PATTERN_MARKERS},
                 {imageOf(view.image), describe(smallPlate()), &outside, ZELM_ERR_PARAM},
                 {imageOf(view.image), describe(smallPlate()), &empty, ZELM_ERR_PARAM}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.status);
        Found out(35);
        EXPECT_EQ(read(c.image, c.pattern, out, c.region), c.status);
        EXPECT_EQ(out, Found(35));
    }
}

}  // namespace
}  // namespace zelmtest
