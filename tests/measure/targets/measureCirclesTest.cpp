// Targets measured by the interface: discs at known places of space, rendered as both cameras of a rig see them.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "measureRigs.h"
#include "space3.h"

namespace zelmtest {
namespace {

constexpr double kUntouched = -7.0;
constexpr int kWidth = 640;
constexpr int kHeight = 480;

// A plate of nine discs and how it lies in the world.
struct Discs {
    RigTruth rig = trueRig(kWidth, kHeight);
    render::Plate plate;
    render::Pose pose;
    render::RenderedView left;
    render::RenderedView right;

    Discs(double diameter, double tiltDegrees, double noise, std::uint64_t seed = 1,
          render::Projection projection = render::Projection::perspective,
          render::Polarity polarity = render::Polarity::darkDots)
        : rig(trueRig(kWidth, kHeight, projection)) {
        plate.minX = plate.minY = -1;
        plate.maxX = plate.maxY = 1;
        plate.pitchX = plate.pitchY = 2.4 * diameter;
        plate.dotDiameter = diameter;
        plate.markerDiameter = 1.4 * diameter;
        plate.markerX = plate.markerY = 1;
        plate.marginX = plate.marginY = 1.3 * diameter;
        plate.polarity = polarity;
        const double tilt = tiltDegrees * std::numbers::pi / 180.0;
        const double axis = 0.6 + 0.9 * static_cast<double>(seed);
        pose = {render::rotationFromVector({tilt * std::cos(axis), tilt * std::sin(axis), 0.0}), {1.0, -2.0, 6.0}};
        render::Optics optics;
        optics.levels = render::GrayLevels::matching(polarity);
        optics.noiseSigma = noise;
        left = render::renderView(plate, rig.left, render::compose(rig.leftPose, pose), optics, 2 * seed);
        right = render::renderView(plate, rig.right, render::compose(rig.rightPose, pose), optics, 2 * seed + 1);
    }

    [[nodiscard]] Point3d centre(std::size_t i) const {
        const render::PlanePoint c = left.dots[i].dot.centre;
        const auto& R = pose.R;
        return {R[0] * c.x + R[1] * c.y + pose.t[0], R[3] * c.x + R[4] * c.y + pose.t[1],
                R[6] * c.x + R[7] * c.y + pose.t[2]};
    }
    // Seeds beside the centres.
    [[nodiscard]] std::vector<double> seeds(const render::RenderedView& view) const {
        std::vector<double> pixels;
        for (const render::DotTruth& dot : view.dots) {
            pixels.insert(pixels.end(), {dot.centre.x + 0.3 * dot.radius, dot.centre.y - 0.2 * dot.radius});
        }
        return pixels;
    }
};

ZelmMeasureImage imageOf(const render::GrayImage& image) {
    return {image.pixels.data(), image.width, image.height, image.width};
}

struct Measured {
    std::vector<std::int32_t> statuses;
    std::vector<double> centres;
    std::vector<double> normals;
    std::vector<double> radii;
    std::vector<double> covariances;
    std::vector<double> errors;
    std::vector<double> angles;

    explicit Measured(std::size_t count)
        : statuses(count, -7),
          centres(3 * count, kUntouched),
          normals(3 * count, kUntouched),
          radii(count, kUntouched),
          covariances(9 * count, kUntouched),
          errors(2 * count, kUntouched),
          angles(count, kUntouched) {}
    ZelmMeasureTargets record() {
        auto targets = emptyRecord<ZelmMeasureTargets>();
        targets.statuses = statuses.data();
        targets.centres = centres.data();
        targets.normals = normals.data();
        targets.radii = radii.data();
        targets.covariances = covariances.data();
        targets.errors = errors.data();
        targets.angles = angles.data();
        return targets;
    }
    [[nodiscard]] Point3d errorAt(std::size_t i, const Point3d& truth) const {
        return {centres[3 * i] - truth.x, centres[3 * i + 1] - truth.y, centres[3 * i + 2] - truth.z};
    }
};

Measured measure(const OpenedRig& rig, const ZelmMeasureImage& left, const ZelmMeasureImage& right,
                 const std::vector<double>& leftSeeds, const std::vector<double>& rightSeeds,
                 std::int32_t polarity = 0) {
    Measured measured(leftSeeds.size() / 2);
    const ZelmMeasureTargets record = measured.record();
    EXPECT_EQ(zelmMeasureCircles(rig.get(), &left, &right, static_cast<std::int64_t>(leftSeeds.size() / 2),
                                 leftSeeds.data(), rightSeeds.data(), polarity, &record),
              ZELM_OK)
        << rig.error();
    return measured;
}

Measured measure(const Discs& discs, std::int32_t polarity = 0) {
    const OpenedRig rig(discs.rig.block());
    return measure(rig, imageOf(discs.left.image), imageOf(discs.right.image), discs.seeds(discs.left),
                   discs.seeds(discs.right), polarity);
}

double length(const Point3d& v) {
    return std::hypot(v.x, v.y, v.z);
}

// Points by the centres of the dots' outlines, free of noise: what is left is the bias of an ellipse's centre.
double ellipseBias(const Discs& discs) {
    const OpenedRig rig(discs.rig.block());
    double worst = 0.0;
    for (std::size_t i = 0; i < discs.left.dots.size(); ++i) {
        const render::Pixel& l = discs.left.dots[i].ellipse.centre;
        const render::Pixel& r = discs.right.dots[i].ellipse.centre;
        const double left[] = {l.x, l.y};
        const double right[] = {r.x, r.y};
        double X[3];
        auto points = emptyRecord<ZelmMeasurePoints>();
        points.positions = X;
        EXPECT_EQ(zelmMeasureTriangulate(rig.get(), 1, left, right, &points), ZELM_OK);
        const Point3d truth = discs.centre(i);
        worst = std::max(worst, length({X[0] - truth.x, X[1] - truth.y, X[2] - truth.z}));
    }
    return worst;
}

TEST(MeasureCircles, CentresAreThoseOfTheDiscsAtAnyTilt) {
    for (const double tilt : {0.0, 20.0, 40.0, 60.0}) {
        SCOPED_TRACE(tilt);
        const Discs discs(12.0, tilt, 0.0);
        const Measured measured = measure(discs);
        // 0.07 to 0.05 units at these sizes.
        const double bias = ellipseBias(discs);
        EXPECT_GE(bias, 0.03);
        const auto& R = discs.pose.R;
        Point3d sum{};
        for (std::size_t i = 0; i < discs.left.dots.size(); ++i) {
            ASSERT_EQ(measured.statuses[i], ZELM_MEASURE_CIRCLE_OK) << i;
            const Point3d error = measured.errorAt(i, discs.centre(i));
            sum = {sum.x + error.x, sum.y + error.y, sum.z + error.z};
            // Rounding to whole gray levels, a twelfth of a square level, moves an edge by 0.002 pixels at a contrast
            // of 170, and the centre by 0.001 units.
            EXPECT_LE(length(error), 0.005);
            EXPECT_NEAR(measured.radii[i], discs.left.dots[i].dot.radius, 0.003);
            const double cosine = -(R[2] * measured.normals[3 * i] + R[5] * measured.normals[3 * i + 1] +
                                    R[8] * measured.normals[3 * i + 2]);
            EXPECT_GE(cosine, std::cos(0.1 * std::numbers::pi / 180.0));  // and towards the cameras
            EXPECT_LE(measured.errors[2 * i], 0.01);
            EXPECT_LE(measured.errors[2 * i + 1], 0.01);
            EXPECT_NEAR(measured.angles[i], 0.34, 0.1);  // the convergence of the rig
        }
        EXPECT_LE(length(sum) / 9.0, 0.1 * bias);
    }
}

TEST(MeasureCircles, CovariancesTellTheErrorsThatNoiseMakes) {
    double squares = 0.0;
    int count = 0;
    for (std::uint64_t seed = 1; seed <= 6; ++seed) {
        const Discs discs(7.0, 12.0 * static_cast<double>(seed % 5), 3.0, seed);
        const Measured measured = measure(discs);
        for (std::size_t i = 0; i < discs.left.dots.size(); ++i) {
            if (measured.statuses[i] != ZELM_MEASURE_CIRCLE_OK) {
                continue;
            }
            zelm::measure::Matrix3 C{};
            std::copy_n(&measured.covariances[9 * i], 9, C.begin());
            const auto inverse = zelm::measure::inverse(C);
            ASSERT_TRUE(inverse.has_value());
            const Point3d e = measured.errorAt(i, discs.centre(i));
            const zelm::measure::Vector3 error{e.x, e.y, e.z};
            squares += zelm::measure::dot(error, zelm::measure::times(*inverse, error)) / 3.0;
            ++count;
        }
    }
    EXPECT_GE(count, 50);
    // F with 3 and some 40 degrees of freedom: mean 1.05, deviation 0.9 over the root of 54: 0.12. Four of them, and a
    // tenth for sectors that are not independent of each other.
    EXPECT_NEAR(squares / count, 1.05, 0.6);
}

TEST(MeasureCircles, SmallDiscsWithWeakNormalsAreNoWorseThanTheirEllipses) {
    // 3 pixels of radius: the normal is known to some degrees alone, and there is hardly a bias to be freed of.
    double circles = 0.0;
    double ellipses = 0.0;
    for (std::uint64_t seed = 1; seed <= 5; ++seed) {
        const Discs discs(1.6, 10.0, 2.0, seed);
        const OpenedRig rig(discs.rig.block());
        const Measured measured = measure(discs);
        for (std::size_t i = 0; i < discs.left.dots.size(); ++i) {
            ASSERT_EQ(measured.statuses[i], ZELM_MEASURE_CIRCLE_OK) << i;
            circles += std::pow(length(measured.errorAt(i, discs.centre(i))), 2.0);
        }
        const auto centresOf = [&](const render::RenderedView& view) {
            std::vector<double> pixels = discs.seeds(view);
            std::vector<std::int32_t> statuses(view.dots.size());
            const ZelmMeasureImage image = imageOf(view.image);
            EXPECT_EQ(zelmMeasureDotCentres(&image, static_cast<std::int64_t>(statuses.size()), pixels.data(), 0,
                                            pixels.data(), statuses.data()),
                      ZELM_OK);
            return pixels;
        };
        const std::vector<double> left = centresOf(discs.left);
        const std::vector<double> right = centresOf(discs.right);
        Measured points(discs.left.dots.size());
        auto record = emptyRecord<ZelmMeasurePoints>();
        record.positions = points.centres.data();
        ASSERT_EQ(zelmMeasureTriangulate(rig.get(), 9, left.data(), right.data(), &record), ZELM_OK);
        for (std::size_t i = 0; i < discs.left.dots.size(); ++i) {
            ellipses += std::pow(length(points.errorAt(i, discs.centre(i))), 2.0);
        }
    }
    EXPECT_LE(std::sqrt(circles), std::sqrt(ellipses));
}

TEST(MeasureCircles, AParallelCameraMeasuresWithThem) {
    const Discs discs(12.0, 35.0, 0.0, 1, render::Projection::parallel);
    const Measured measured = measure(discs);
    EXPECT_GE(ellipseBias(discs), 0.03);
    for (std::size_t i = 0; i < discs.left.dots.size(); ++i) {
        ASSERT_EQ(measured.statuses[i], ZELM_MEASURE_CIRCLE_OK) << i;
        EXPECT_LE(length(measured.errorAt(i, discs.centre(i))), 0.005);
    }
}

TEST(MeasureCircles, BrightDiscsAreMeasuredAsBrightAlone) {
    const Discs discs(12.0, 25.0, 0.0, 1, render::Projection::perspective, render::Polarity::lightDots);
    const Measured bright = measure(discs, 1);
    const Measured dark = measure(discs, 0);
    for (std::size_t i = 0; i < discs.left.dots.size(); ++i) {
        ASSERT_EQ(bright.statuses[i], ZELM_MEASURE_CIRCLE_OK) << i;
        EXPECT_LE(length(bright.errorAt(i, discs.centre(i))), 0.005);
        EXPECT_EQ(dark.statuses[i], ZELM_MEASURE_CIRCLE_MISSING) << i;
        EXPECT_EQ(dark.centres[3 * i], kUntouched);
        EXPECT_EQ(dark.errors[2 * i], kUntouched);
        EXPECT_EQ(dark.angles[i], kUntouched);
    }
}

TEST(MeasureCircles, WhatIsMissingIsTold) {
    const Discs discs(12.0, 20.0, 0.0);
    const OpenedRig rig(discs.rig.block());
    const std::vector<double> left = discs.seeds(discs.left);
    const std::vector<double> right = discs.seeds(discs.right);
    const double none = std::numeric_limits<double>::quiet_NaN();
    // Found, missing left, missing right, missing both, and a seed that is no number.
    const std::vector<double> leftSeeds{left[0], left[1], 3.0, 3.0, left[0], left[1], 3.0, 3.0, none, 1.0};
    const std::vector<double> rightSeeds{right[0], right[1], right[0], right[1], 3.0,
                                         3.0,      3.0,      3.0,      right[0], right[1]};
    const Measured measured =
        measure(rig, imageOf(discs.left.image), imageOf(discs.right.image), leftSeeds, rightSeeds);
    EXPECT_EQ(measured.statuses,
              (std::vector<std::int32_t>{ZELM_MEASURE_CIRCLE_OK, ZELM_MEASURE_CIRCLE_MISSING_LEFT,
                                         ZELM_MEASURE_CIRCLE_MISSING_RIGHT, ZELM_MEASURE_CIRCLE_MISSING,
                                         ZELM_MEASURE_CIRCLE_MISSING_LEFT}));
    for (std::size_t i = 3; i < measured.centres.size(); ++i) {
        EXPECT_EQ(measured.centres[i], kUntouched);
        EXPECT_EQ(measured.normals[i], kUntouched);
    }
}

// Gray over the columns right of one, with a texture.
void hide(render::GrayImage& image, double fromColumn) {
    for (int y = 0; y < image.height; ++y) {
        for (int x = static_cast<int>(std::ceil(fromColumn)); x < image.width; ++x) {
            image.pixels[static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x)] =
                static_cast<std::uint8_t>(80 + (37 * x + 61 * y) % 50);
        }
    }
}

TEST(MeasureCircles, PartlyHiddenDiscsAreMeasuredByWhatIsSeen) {
    Discs discs(12.0, 20.0, 0.0);
    const std::size_t middle = 4;
    const render::DotTruth& dot = discs.left.dots[middle];
    hide(discs.left.image, dot.centre.x + 0.6 * dot.radius);
    const OpenedRig rig(discs.rig.block());
    const render::DotTruth& other = discs.right.dots[middle];
    const Measured measured = measure(rig, imageOf(discs.left.image), imageOf(discs.right.image),
                                      {dot.centre.x - 2.0, dot.centre.y}, {other.centre.x, other.centre.y});
    ASSERT_EQ(measured.statuses[0], ZELM_MEASURE_CIRCLE_OK);
    EXPECT_LE(length(measured.errorAt(0, discs.centre(middle))), 0.01);
}

TEST(MeasureCircles, DotsOfDifferentTargetsGiveNoCircle) {
    const Discs discs(12.0, 20.0, 0.0);
    const OpenedRig rig(discs.rig.block());
    const auto pixelOf = [](const render::DotTruth& dot) { return std::vector<double>{dot.centre.x, dot.centre.y}; };
    // A marker and an ordinary dot: two sizes.
    const Measured measured = measure(rig, imageOf(discs.left.image), imageOf(discs.right.image),
                                      pixelOf(discs.left.dots[4]), pixelOf(discs.right.dots[3]));
    EXPECT_NE(measured.statuses[0], ZELM_MEASURE_CIRCLE_OK);
    EXPECT_EQ(measured.radii[0], kUntouched);
    EXPECT_EQ(measured.normals[0], kUntouched);
    EXPECT_EQ(measured.covariances[0], kUntouched);
}

TEST(MeasureCircles, ArraysMayBeLeftOut) {
    const Discs discs(12.0, 20.0, 0.0);
    const OpenedRig rig(discs.rig.block());
    const std::vector<double> left = discs.seeds(discs.left);
    const std::vector<double> right = discs.seeds(discs.right);
    const ZelmMeasureImage leftImage = imageOf(discs.left.image);
    const ZelmMeasureImage rightImage = imageOf(discs.right.image);
    const auto none = emptyRecord<ZelmMeasureTargets>();
    EXPECT_EQ(zelmMeasureCircles(rig.get(), &leftImage, &rightImage, 9, left.data(), right.data(), 0, &none), ZELM_OK);
    EXPECT_EQ(zelmMeasureCircles(rig.get(), &leftImage, &rightImage, 0, nullptr, nullptr, 0, &none), ZELM_OK);
}

TEST(MeasureCircles, TwoParallelCamerasAreRefused) {
    const OpenedRig rig(parallelBlock());
    const std::vector<std::uint8_t> gray(1280 * 960, 100);
    const ZelmMeasureImage image{gray.data(), 1280, 960, 1280};
    const auto none = emptyRecord<ZelmMeasureTargets>();
    EXPECT_EQ(zelmMeasureCircles(rig.get(), &image, &image, 0, nullptr, nullptr, 0, &none), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(rig.error().find("parallel"), std::string::npos);
}

}  // namespace
}  // namespace zelmtest
