// Pixels about an ellipse, also about one that has next to nothing to do with the image.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "sectorBand.h"

namespace zelmtest {
namespace {

using zelm::measure::DenseImage;
using zelm::measure::sectorBands;

std::size_t pixelsAbout(const Ellipse2d& ellipse) {
    const std::vector<std::uint8_t> pixels(64 * 48, 100);
    const DenseImage image(ZelmMeasureImage{pixels.data(), 64, 48, 64});
    std::size_t count = 0;
    for (const auto& band : sectorBands(image, ellipse)) {
        count += band.size();
    }
    return count;
}

Ellipse2d circleAt(double x, double y, double radius) {
    Ellipse2d circle{};
    circle.x = x;
    circle.y = y;
    circle.a = circle.b = radius;
    return circle;
}

TEST(SectorBand, PixelsWithinReachOfTheOutline) {
    // A ring of 7 pixels about a radius of 12: 2 pi 12 times 7, but for what falls between pixels.
    EXPECT_NEAR(static_cast<double>(pixelsAbout(circleAt(31.3, 23.8, 12.0))), 528.0, 20.0);
    // Half of it.
    EXPECT_NEAR(static_cast<double>(pixelsAbout(circleAt(-0.5, 23.8, 12.0))), 264.0, 20.0);
}

TEST(SectorBand, EllipsesFarAwayOrHugeHaveNoPixels) {
    for (const double far : {200.0, 1e12, 1e300}) {
        EXPECT_EQ(pixelsAbout(circleAt(far, 20.0, 12.0)), 0U);
        EXPECT_EQ(pixelsAbout(circleAt(20.0, -far, 12.0)), 0U);
        EXPECT_EQ(pixelsAbout(circleAt(20.0, 20.0, far)), 0U);
    }
}

}  // namespace
}  // namespace zelmtest
