// The sub-pixel error on noise-free straight edges of 8-bit images, in closed form: over positions, directions,
// contrasts, blurs and angles of incidence. Bounds are the measured worst cases, rounded up; what makes them is the
// rounding to gray levels (falling with the contrast), bilinear sampling (growing with the angle of incidence and as
// the blur falls) and, for wide blurs, the truncated filter.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "edgeScene.h"

namespace {

using zelmtest::blurredStep;
using zelmtest::findEdge;
using zelmtest::Found;
using zelmtest::GrayScene;

constexpr double kPi = 3.14159265358979323846;

struct EdgeError {
    double worst = 0.0;
    double squares = 0.0;
    double sum = 0.0;
    int count = 0;
    int lost = 0;

    [[nodiscard]] double rms() const { return std::sqrt(squares / count); }
};

// Error across the edge over 24 directions (and those 7.4 degrees off the axes) and 20 positions. incidence: angle
// between the segment and the edge's normal.
EdgeError sweep(double contrast, double blur, double incidence) {
    EdgeError error;
    for (int direction = 0; direction < 24; ++direction) {
        const double angle = direction * kPi / 12.0 + (direction % 2 == 0 ? 0.0 : 0.13);
        const double nx = std::cos(angle);
        const double ny = std::sin(angle);
        const double ux = std::cos(angle + incidence);
        const double uy = std::sin(angle + incidence);
        for (int step = 0; step < 20; ++step) {
            const double at = step / 20.0;
            const GrayScene scene(48, 48, [&](double x, double y) {
                return 8.0 + contrast * blurredStep((x - 23.5) * nx + (y - 23.5) * ny - at, blur);
            });
            const Found found =
                findEdge(scene.image, {23.5 - 12.0 * ux, 23.5 - 12.0 * uy}, {23.5 + 13.0 * ux, 23.5 + 13.0 * uy}, 1);
            if (found.result != 1) {
                ++error.lost;
                continue;
            }
            const double e = (found.point.x - 23.5) * nx + (found.point.y - 23.5) * ny - at;
            error.worst = std::max(error.worst, std::fabs(e));
            error.squares += e * e;
            error.sum += e;
            ++error.count;
        }
    }
    return error;
}

struct AccuracyCase {
    double contrast;
    double incidenceDegrees;
    double worst;  // pixels
    double rms;    // pixels
};

class EdgeAccuracy : public testing::TestWithParam<AccuracyCase> {};

TEST_P(EdgeAccuracy, StaysWithinItsBoundsForBlursOfHalfToOneAndAHalfPixels) {
    const AccuracyCase& c = GetParam();
    for (const double blur : {0.5, 0.7, 1.0, 1.5}) {
        const EdgeError error = sweep(c.contrast, blur, c.incidenceDegrees * kPi / 180.0);
        std::printf("contrast %3.0f, incidence %2.0f deg, blur %.1f: worst %.4f, rms %.4f, mean %+.4f px\n", c.contrast,
                    c.incidenceDegrees, blur, error.worst, error.rms(), error.sum / error.count);
        EXPECT_EQ(error.lost, 0);
        EXPECT_LT(error.worst, c.worst) << "blur " << blur;
        EXPECT_LT(error.rms(), c.rms) << "blur " << blur;
        // No preferred side beyond the effect of sampling.
        EXPECT_LT(std::fabs(error.sum / error.count), 0.01) << "blur " << blur;
    }
}

INSTANTIATE_TEST_SUITE_P(Contrasts, EdgeAccuracy,
                         testing::Values(AccuracyCase{240, 0, 0.015, 0.006}, AccuracyCase{120, 0, 0.022, 0.007},
                                         AccuracyCase{60, 0, 0.05, 0.015}, AccuracyCase{30, 0, 0.10, 0.03},
                                         AccuracyCase{240, 30, 0.024, 0.009}, AccuracyCase{120, 30, 0.03, 0.009},
                                         AccuracyCase{240, 60, 0.05, 0.018}, AccuracyCase{120, 60, 0.05, 0.02}));

TEST(EdgeAccuracy, WiderBlursAreFoundToATenthOfAPixel) {
    const EdgeError two = sweep(120.0, 2.0, 0.0);
    EXPECT_EQ(two.lost, 0);
    EXPECT_LT(two.worst, 0.04);
    const EdgeError three = sweep(120.0, 3.0, 0.0);
    EXPECT_EQ(three.lost, 0);
    EXPECT_LT(three.worst, 0.1);
}

TEST(EdgeAccuracy, AnUnblurredEdgeIsFoundToATenthOfAPixel) {
    // Point sampled and unblurred: nothing tells where between two pixels the edge is, half a pixel either way.
    const EdgeError error = sweep(120.0, 0.3, 0.0);
    EXPECT_EQ(error.lost, 0);
    EXPECT_LT(error.worst, 0.1);
}

TEST(EdgeAccuracy, BothSensesAndBothDirectionsGiveTheSamePoint) {
    zelmtest::Random random(31);
    for (int trial = 0; trial < 300; ++trial) {
        const double angle = random.uniform(0.0, 2.0 * kPi);
        const double at = random.uniform(-2.0, 2.0);
        const double blur = random.uniform(0.5, 1.5);
        const auto coverage = [&](double x, double y) {
            return blurredStep((x - 23.5) * std::cos(angle) + (y - 23.5) * std::sin(angle) - at, blur);
        };
        const GrayScene rising(48, 48, [&](double x, double y) { return std::floor(200.0 * coverage(x, y) + 0.5); });
        const GrayScene falling(48, 48,
                                [&](double x, double y) { return 220.0 - std::floor(200.0 * coverage(x, y) + 0.5); });
        // A whole number of samples, so that the reverse segment has the same ones.
        const Point2d p1 = {23.5 - 12.0 * std::cos(angle), 23.5 - 12.0 * std::sin(angle)};
        const Point2d p2 = {23.5 + 12.0000001 * std::cos(angle), 23.5 + 12.0000001 * std::sin(angle)};
        const Point2d q1 = {23.5 + 12.0 * std::cos(angle), 23.5 + 12.0 * std::sin(angle)};
        const Point2d q2 = {23.5 - 12.0000001 * std::cos(angle), 23.5 - 12.0000001 * std::sin(angle)};
        const Found up = findEdge(rising.image, p1, p2, 1);
        const Found down = findEdge(falling.image, p1, p2, -1);
        const Found back = findEdge(rising.image, q1, q2, -1);
        ASSERT_EQ(up.result, 1);
        ASSERT_EQ(down.result, 1);
        ASSERT_EQ(back.result, 1);
        // A profile value halfway between two gray levels is rounded up in both images: at worst one sample more or
        // fewer in the interval, a gray level from the plateau.
        EXPECT_NEAR(down.point.x, up.point.x, 0.005) << trial;
        EXPECT_NEAR(down.point.y, up.point.y, 0.005) << trial;
        // The derivative is summed in the opposite order; the samples stand 1e-7 pixel apart.
        EXPECT_NEAR(back.point.x, up.point.x, 1e-5) << trial;
        EXPECT_NEAR(back.point.y, up.point.y, 1e-5) << trial;
        EXPECT_NEAR(back.strength, up.strength, 1e-4) << trial;
    }
}

}  // namespace
