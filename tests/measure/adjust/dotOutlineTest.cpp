// What a camera sees of a printed circle: against sampled outlines, and against what the reader measures.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "dotOutline.h"
#include "outlineAccuracy.h"
#include "random.h"

namespace zelmtest {
namespace {

using namespace zelm::measure;

// 0.003 px is a tenth of what a good reader misses; the tables of docs/accuracy.md have the errors by radius and tilt.
constexpr double kMaxRms = 0.003;  // pixels

class DotOutlineModels : public testing::TestWithParam<int> {};

TEST_P(DotOutlineModels, CentreIsThatOfTheEllipseThroughTheOutline) {
    Random random(5);
    OutlineErrors errors;
    for (int i = 0; i < 400; ++i) {
        errors.add(
            outlineError(randomOutline(GetParam(), random.uniform(5.0, 20.0), random.uniform(0.0, 60.0), random)));
    }
    EXPECT_LE(errors.rms(), kMaxRms);
    EXPECT_LE(errors.worst, 0.02);
}

TEST_P(DotOutlineModels, AxesAreThoseOfTheOutline) {
    Random random(6);
    for (int i = 0; i < 100; ++i) {
        const OutlineCase one = randomOutline(GetParam(), random.uniform(5.0, 20.0), random.uniform(0.0, 60.0), random);
        const OutlineEllipse ellipse = dotOutline(one.camera, one.circle);
        const std::vector<Point2d> points = sampledOutline(one, 360);
        // Every point lies on the ellipse but for what is not elliptic in it.
        const auto& U = ellipse.axes;
        const double det = U[0] * U[3] - U[1] * U[2];
        for (const Point2d& p : points) {
            const double dx = p.x - ellipse.centre.x;
            const double dy = p.y - ellipse.centre.y;
            const double radius = std::hypot((U[3] * dx - U[1] * dy) / det, (U[0] * dy - U[2] * dx) / det);
            EXPECT_NEAR(radius, 1.0, 0.006) << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Models, DotOutlineModels, testing::Values(0, 1, 2));

TEST(DotOutline, WithoutALensTheCentreIsExact) {
    Random random(7);
    for (int i = 0; i < 100; ++i) {
        OutlineCase one = randomOutline(i % 3, 15.0, random.uniform(0.0, 60.0), random);
        one.camera.p[kK1] = one.camera.p[kK2] = 0.0;
        EXPECT_LE(outlineError(one), 1e-6) << i;  // of the fit to 2000 sampled points
    }
}

TEST(DotOutline, APointHasTheCentreOfItsProjection) {
    Random random(8);
    for (int i = 0; i < 30; ++i) {
        OutlineCase one = randomOutline(i % 3, 10.0, random.uniform(0.0, 60.0), random);
        for (std::size_t k = 0; k < 3; ++k) {
            one.circle.first[k] *= 1e-5;
            one.circle.second[k] *= 1e-5;
        }
        const Point2d centre = dotOutline(one.camera, one.circle).centre;
        const Point2d point = pixelOf(one.camera, one.circle.centre);
        EXPECT_NEAR(centre.x, point.x, 1e-9);  // the bias is as the square of the radius
        EXPECT_NEAR(centre.y, point.y, 1e-9);
    }
}

TEST(DotOutline, CentreIsWhatTheReaderMeasures) {
    OutlineErrors errors;
    for (const int model : {0, 1, 2}) {
        for (const double tilt : {0.0, 20.0, 40.0}) {
            for (const double radius : {6.0, 12.0}) {
                errors.add(readerErrors(model, radius, tilt, -0.2));
            }
        }
    }
    EXPECT_GT(errors.count, 400U);
    // The reader's own error without noise is 0.0032 px at this blur (docs/accuracy.md).
    EXPECT_LE(errors.rms(), std::hypot(kMaxRms, 0.0032));
}

}  // namespace
}  // namespace zelmtest
