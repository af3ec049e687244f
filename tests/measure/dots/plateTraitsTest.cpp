// What is told of images whose plate cannot be read.
#include <gtest/gtest.h>

#include <vector>

#include "measureRigs.h"
#include "patternReading.h"

namespace zelmtest {
namespace {

ZelmMeasurePlateTraits traitsOf(const std::vector<std::uint8_t>& pixels, int width, int height,
                                const Zelm2ViewPatternDesc& pattern) {
    auto traits = emptyRecord<ZelmMeasurePlateTraits>();
    const ZelmMeasureImage image{pixels.data(), width, height, width};
    EXPECT_EQ(zelmMeasurePlateTraits(&image, &pattern, &traits), ZELM_OK);
    return traits;
}

TEST(MeasurePlateTraits, BrightLevelLeavesAThousandthOut) {
    const Zelm2ViewPatternDesc pattern = describe(smallPlate());
    std::vector<std::uint8_t> pixels(100 * 100, 100);
    EXPECT_EQ(traitsOf(pixels, 100, 100, pattern).brightLevel, 100);
    std::fill_n(pixels.begin(), 4, std::uint8_t{255});
    std::fill_n(pixels.begin() + 4, 6, std::uint8_t{250});
    EXPECT_EQ(traitsOf(pixels, 100, 100, pattern).brightLevel, 100);  // ten of ten thousand are left out
    pixels[10] = 240;
    EXPECT_EQ(traitsOf(pixels, 100, 100, pattern).brightLevel, 240);
    pixels[11] = 250;
    EXPECT_EQ(traitsOf(pixels, 100, 100, pattern).brightLevel, 250);  // eleven are that bright
    EXPECT_EQ(traitsOf(std::vector<std::uint8_t>(100 * 100, 0), 100, 100, pattern).brightLevel, 0);
    EXPECT_EQ(traitsOf(std::vector<std::uint8_t>(100 * 100, 255), 100, 100, pattern).brightLevel, 255);
}

TEST(MeasurePlateTraits, SpotsOfAMarkersSizeAreCounted) {
    const Zelm2ViewPatternDesc pattern = describe(smallPlate());
    render::Plate two = smallPlate();
    two.shrunkMarkers = {{2, 0}};
    render::Plate four = smallPlate();
    four.extraMarkers = {{-2, -1}};
    render::Plate none = smallPlate();
    none.shrunkMarkers = {{2, 0}, {0, 0}, {0, 2}};
    const struct {
        render::Plate plate;
        int count;
    } cases[] = {{smallPlate(), 3}, {two, 2}, {four, 4}, {none, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.count);
        EXPECT_EQ(traitsOf(smallView(10.0, 0.0, c.plate).image.pixels, 640, 480, pattern).markerSized, c.count);
    }
    EXPECT_EQ(traitsOf(std::vector<std::uint8_t>(640 * 480, 128), 640, 480, pattern).markerSized, 0);
}

TEST(MeasurePlateTraits, DotsOfTheOtherPolarityAreCounted) {
    render::Plate light = smallPlate();
    light.polarity = render::Polarity::lightDots;
    for (const render::Plate& plate : {smallPlate(), light}) {
        Zelm2ViewPatternDesc pattern = describe(plate);
        const Pixels pixels = smallView(10.0, 10.0, plate).image.pixels;
        EXPECT_EQ(traitsOf(pixels, 640, 480, pattern).oppositeDots, 0);
        pattern.polarity = 1 - pattern.polarity;
        EXPECT_EQ(traitsOf(pixels, 640, 480, pattern).oppositeDots, kSmallPlateDots);
    }
}

TEST(MeasurePlateTraits, PaddedRowsTellTheSame) {
    const Zelm2ViewPatternDesc pattern = describe(smallPlate());
    const Pixels pixels = smallView(10.0).image.pixels;
    const ZelmMeasurePlateTraits dense = traitsOf(pixels, 640, 480, pattern);
    Pixels padded(650 * 480, 255);
    for (std::size_t y = 0; y < 480; ++y) {
        std::copy_n(pixels.begin() + static_cast<std::ptrdiff_t>(y * 640), 640,
                    padded.begin() + static_cast<std::ptrdiff_t>(y * 650));
    }
    auto traits = emptyRecord<ZelmMeasurePlateTraits>();
    const ZelmMeasureImage image{padded.data(), 640, 480, 650};
    ASSERT_EQ(zelmMeasurePlateTraits(&image, &pattern, &traits), ZELM_OK);
    EXPECT_EQ(traits.brightLevel, dense.brightLevel);
    EXPECT_EQ(traits.markerSized, dense.markerSized);
    EXPECT_EQ(traits.oppositeDots, dense.oppositeDots);
}

}  // namespace
}  // namespace zelmtest
