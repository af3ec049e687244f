// Feet of pixels on ellipses: pixels set off from known places along the normal come back to them.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "ellipseFoot.h"

namespace zelmtest {
namespace {

using zelm::measure::EllipseFoot;
using zelm::measure::EllipsePlace;
using zelm::measure::footOn;
using zelm::measure::placeOn;

TEST(EllipseFoot, PixelsSetOffAlongTheNormalComeBack) {
    for (const Ellipse2d& ellipse : {Ellipse2d{320.3, 240.8, 12.0, 12.0, 0.0}, Ellipse2d{50.0, 60.0, 14.0, 8.0, 0.7},
                                     Ellipse2d{-3.0, 9.0, 90.0, 40.0, -1.2}}) {
        for (int k = 0; k < 36; ++k) {
            const double angle = 2.0 * std::numbers::pi * (k + 0.25) / 36;
            const EllipsePlace place = placeOn(ellipse, angle);
            EXPECT_NEAR(std::hypot(place.normal.x, place.normal.y), 1.0, 1e-14);
            // Inwards as far as a quarter of the least radius of curvature.
            for (const double offset : {-0.25 * ellipse.b * ellipse.b / ellipse.a, -0.3, 0.0, 0.3, 3.5}) {
                const EllipseFoot foot =
                    footOn(ellipse, {place.pixel.x + offset * place.normal.x, place.pixel.y + offset * place.normal.y});
                EXPECT_NEAR(foot.distance, offset, 1e-9);
                EXPECT_NEAR(foot.angle, angle, 1e-7);
            }
        }
    }
}

TEST(EllipseFoot, CurvatureAndPerimeter) {
    const Ellipse2d circle{0.0, 0.0, 5.0, 5.0, 0.0};
    EXPECT_NEAR(placeOn(circle, 1.0).curvature, 0.2, 1e-14);
    EXPECT_NEAR(zelm::measure::perimeterOf(circle), 10.0 * std::numbers::pi, 1e-12);
    const Ellipse2d flat{0.0, 0.0, 10.0, 4.0, 0.3};
    EXPECT_NEAR(placeOn(flat, 0.0).curvature, 10.0 / 16.0, 1e-14);  // a / b^2 at the end of the major axis
    EXPECT_NEAR(placeOn(flat, std::numbers::pi / 2.0).curvature, 4.0 / 100.0, 1e-14);
    double length = 0.0;
    constexpr int kSteps = 10000;
    for (int k = 0; k < kSteps; ++k) {
        const Point2d a = placeOn(flat, 2.0 * std::numbers::pi * k / kSteps).pixel;
        const Point2d b = placeOn(flat, 2.0 * std::numbers::pi * (k + 1) / kSteps).pixel;
        length += std::hypot(b.x - a.x, b.y - a.y);
    }
    EXPECT_NEAR(zelm::measure::perimeterOf(flat), length, 1e-3 * length);
}

TEST(EllipseFoot, PixelsInTheMiddleEndSomewhere) {
    const Ellipse2d ellipse{10.0, 10.0, 6.0, 3.0, 0.4};
    for (const Point2d& pixel : {Point2d{10.0, 10.0}, Point2d{10.5, 9.9}, Point2d{1e6, -1e6}}) {
        const EllipseFoot foot = footOn(ellipse, pixel);
        EXPECT_TRUE(std::isfinite(foot.distance));
        EXPECT_GE(foot.angle, 0.0);
        EXPECT_LE(foot.angle, 2.0 * std::numbers::pi);
    }
}

}  // namespace
}  // namespace zelmtest
