// Many pixels and points of one camera: the core's numbers bit for bit, and what cannot be told.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "measureRigs.h"
#include "random.h"

namespace zelmtest {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kCount = 500;

struct Models {
    int left;
    int right;
};

// A rig of each pair of camera models, with points about its plate and pixels all over its images and beyond.
class PixelsMany : public testing::TestWithParam<Models> {
protected:
    PixelsMany() : truth(makePair(GetParam().left, GetParam().right)), rig(blockOf(truth)) {
        for (std::size_t i = 0; i < kCount; ++i) {
            points.insert(points.end(),
                          {random.uniform(-80.0, 80.0), random.uniform(-60.0, 60.0), random.uniform(-60.0, 60.0)});
            pixels.insert(pixels.end(), {random.uniform(-100.0, 740.0), random.uniform(-100.0, 580.0)});
        }
    }
    [[nodiscard]] const Zelm2ViewCalib* calib() const { return zelmMeasureRigCalib(rig.get()); }

    Random random{20261122};
    TruePair truth;
    OpenedRig rig;
    std::vector<double> points;
    std::vector<double> pixels;
};

TEST_P(PixelsMany, AreThoseOfTheCoreBitForBit) {
    for (const char side : {'L', 'R'}) {
        const char other = side == 'L' ? 'R' : 'L';
        std::vector<double> projected(2 * kCount);
        std::vector<double> flat(2 * kCount);
        std::vector<double> raw(2 * kCount);
        std::vector<double> lines(3 * kCount);
        ASSERT_EQ(zelmMeasureProject(rig.get(), side, kCount, points.data(), projected.data()), ZELM_OK);
        ASSERT_EQ(zelmMeasureUndistort(rig.get(), side, kCount, pixels.data(), flat.data()), ZELM_OK);
        ASSERT_EQ(zelmMeasureDistort(rig.get(), side, kCount, pixels.data(), raw.data()), ZELM_OK);
        ASSERT_EQ(zelmMeasureEpipolarLines(rig.get(), side, kCount, pixels.data(), lines.data()), ZELM_OK);
        for (std::size_t i = 0; i < kCount; ++i) {
            const Point3d X{points[3 * i], points[3 * i + 1], points[3 * i + 2]};
            const Point2d p{pixels[2 * i], pixels[2 * i + 1]};
            Point2d one{};
            Zelm2ViewEpiLine line{};
            ASSERT_EQ(zelm2ViewChange3Dto2D(calib(), side, &X, &one), ZELM_OK);
            EXPECT_EQ(projected[2 * i], one.x);
            EXPECT_EQ(projected[2 * i + 1], one.y);
            ASSERT_EQ(zelm2ViewUnDistortPoint(calib(), side, &p, &one), ZELM_OK);
            EXPECT_EQ(flat[2 * i], one.x);
            EXPECT_EQ(flat[2 * i + 1], one.y);
            ASSERT_EQ(zelm2ViewDistortPoint(calib(), side, &p, &one), ZELM_OK);
            EXPECT_EQ(raw[2 * i], one.x);
            EXPECT_EQ(raw[2 * i + 1], one.y);
            ASSERT_EQ(zelm2ViewCalcEpiLine(calib(), other, &p, &line), ZELM_OK);
            EXPECT_EQ(lines[3 * i], line.a);
            EXPECT_EQ(lines[3 * i + 1], line.b);
            EXPECT_EQ(lines[3 * i + 2], line.c);
        }
    }
}

TEST_P(PixelsMany, MayBeWrittenOverTheirInput) {
    std::vector<double> apart(2 * kCount);
    ASSERT_EQ(zelmMeasureUndistort(rig.get(), 'R', kCount, pixels.data(), apart.data()), ZELM_OK);
    std::vector<double> inPlace = pixels;
    ASSERT_EQ(zelmMeasureUndistort(rig.get(), 'R', kCount, inPlace.data(), inPlace.data()), ZELM_OK);
    EXPECT_EQ(inPlace, apart);
    ASSERT_EQ(zelmMeasureDistort(rig.get(), 'R', kCount, inPlace.data(), inPlace.data()), ZELM_OK);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        EXPECT_NEAR(inPlace[i], pixels[i], 1e-8);  // undistortion ends within 1e-9 pixels
    }
}

TEST_P(PixelsMany, NumbersThatAreNoneDisturbNoOthers) {
    std::vector<double> some = pixels;
    some[0] = kNone;
    some[5] = std::numeric_limits<double>::infinity();
    std::vector<double> with(2 * kCount);
    std::vector<double> without(2 * kCount);
    ASSERT_EQ(zelmMeasureUndistort(rig.get(), 'L', kCount, pixels.data(), without.data()), ZELM_OK);
    ASSERT_EQ(zelmMeasureUndistort(rig.get(), 'L', kCount, some.data(), with.data()), ZELM_OK);
    for (std::size_t i = 0; i < kCount; ++i) {
        const bool isBad = i == 0 || i == 2;
        EXPECT_EQ(std::isfinite(with[2 * i]) && std::isfinite(with[2 * i + 1]), !isBad) << i;
        if (!isBad) {
            EXPECT_EQ(with[2 * i], without[2 * i]);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Models, PixelsMany, testing::Values(Models{0, 0}, Models{1, 0}, Models{2, 0}, Models{2, 2}),
                         [](const auto& models) {
                             return "models" + std::to_string(models.param.left) + std::to_string(models.param.right);
                         });

TEST(PixelsBeyond, PointsBehindACameraHaveNoPixel) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    const render::Pose& pose = truth.pose('L');
    // The camera's centre C = -R' t, and points on its axis before and behind it.
    double points[9];
    for (std::size_t k = 0; k < 3; ++k) {
        const double centre = -(pose.R[k] * pose.t[0] + pose.R[3 + k] * pose.t[1] + pose.R[6 + k] * pose.t[2]);
        points[k] = centre + 100.0 * pose.R[6 + k];
        points[3 + k] = centre - 100.0 * pose.R[6 + k];
        points[6 + k] = kNone;
    }
    double pixels[6];
    ASSERT_EQ(zelmMeasureProject(rig.get(), 'L', 3, points, pixels), ZELM_OK);
    EXPECT_NEAR(pixels[0], truth.left.cx, 1e-6);
    EXPECT_NEAR(pixels[1], truth.left.cy, 1e-6);
    for (std::size_t k = 2; k < 6; ++k) {
        EXPECT_TRUE(std::isnan(pixels[k])) << k;
    }
}

// With k1 < 0 alone the lens folds at r^2 = -1 / (3 k1): from there on pixels come back towards the middle.
TEST(PixelsBeyond, PlacesBeyondTheFoldOfTheLensHaveNoPixel) {
    RigTruth truth = trueRig();
    truth.left.k1 = -0.1;
    truth.left.k2 = 0.0;
    const OpenedRig rig(truth.block());
    const double fold = std::sqrt(1.0 / 0.3);
    const double factors[] = {0.5, 0.999, 1.001, 1.5, 3.0};
    for (const double factor : factors) {
        const double ideal[] = {truth.left.cx + factor * fold * truth.left.fx, truth.left.cy};
        double raw[2];
        ASSERT_EQ(zelmMeasureDistort(rig.get(), 'L', 1, ideal, raw), ZELM_OK);
        EXPECT_EQ(std::isnan(raw[0]) && std::isnan(raw[1]), factor > 1.0) << factor;
        const render::Pose& pose = truth.pose('L');
        const double camera[] = {factor * fold * 100.0 - pose.t[0], -pose.t[1], 100.0 - pose.t[2]};
        double point[3];
        for (std::size_t k = 0; k < 3; ++k) {
            point[k] = pose.R[k] * camera[0] + pose.R[3 + k] * camera[1] + pose.R[6 + k] * camera[2];
        }
        double pixel[2];
        ASSERT_EQ(zelmMeasureProject(rig.get(), 'L', 1, point, pixel), ZELM_OK);
        EXPECT_EQ(std::isnan(pixel[0]), factor > 1.0) << factor;
        if (factor < 1.0) {
            EXPECT_NEAR(pixel[0], raw[0], 1e-6);
        }
    }
}

// The farthest raw pixels show the fold itself, at two thirds of its radius.
TEST(PixelsBeyond, RawPixelsThatShowNothingHaveNoUndistortedOne) {
    RigTruth truth = trueRig();
    truth.left.k1 = -0.1;
    truth.left.k2 = 0.0;
    const OpenedRig rig(truth.block());
    const double farthest = std::sqrt(1.0 / 0.3) * 2.0 / 3.0;
    for (const double factor : {0.2, 0.99, 1.01, 1.3, 2.0, 5.0, 30.0}) {
        for (const double turn : {0.0, 0.7, 2.4, 4.0}) {
            const double radius = factor * farthest;
            const double raw[] = {truth.left.cx + radius * std::cos(turn) * truth.left.fx,
                                  truth.left.cy + radius * std::sin(turn) * truth.left.fy};
            double flat[2];
            double line[3];
            ASSERT_EQ(zelmMeasureUndistort(rig.get(), 'L', 1, raw, flat), ZELM_OK);
            ASSERT_EQ(zelmMeasureEpipolarLines(rig.get(), 'L', 1, raw, line), ZELM_OK);
            EXPECT_EQ(std::isnan(flat[0]) && std::isnan(flat[1]), factor > 1.0) << factor;
            EXPECT_EQ(std::isnan(line[0]), factor > 1.0) << factor;
            if (factor < 1.0) {
                double back[2];
                ASSERT_EQ(zelmMeasureDistort(rig.get(), 'L', 1, flat, back), ZELM_OK);
                EXPECT_NEAR(back[0], raw[0], 1e-6);
                EXPECT_NEAR(back[1], raw[1], 1e-6);
            }
        }
    }
}

}  // namespace
}  // namespace zelmtest
