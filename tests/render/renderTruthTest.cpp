// The renderer's camera and truth records: derivatives, rotation vectors, aimed poses, closed forms of projected
// circles, refused input. Agreement with the library's camera model is in renderModelTest.cpp.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <stdexcept>
#include <string>

#include "random.h"
#include "renderView.h"

namespace {

using namespace zelm::render;

constexpr double kPi = std::numbers::pi;

Camera distortingCamera(double k1, double k2) {
    Camera camera;
    camera.fx = 1690.0;
    camera.fy = 1655.0;
    camera.skew = 2.5;
    camera.cx = 645.3;
    camera.cy = 474.9;
    camera.k1 = k1;
    camera.k2 = k2;
    return camera;
}

Aim randomAim(zelmtest::Random& random) {
    Aim aim;
    aim.pixel = {random.uniform(500.0, 780.0), random.uniform(400.0, 560.0)};
    aim.scale = random.uniform(3.0, 6.0);
    aim.rollDegrees = random.uniform(0.0, 360.0);
    aim.tiltDegrees = random.uniform(0.0, 50.0);
    aim.tiltAxisDegrees = random.uniform(0.0, 360.0);
    return aim;
}

// The image of a circle by the dual conic: C* is mapped by the homography H = A [r1 r2 t]; the centre of the mapped
// conic is the image of the line at infinity's pole.
struct ClosedForm {
    Pixel centre;
    double area;
};

ClosedForm projectedCircle(const Camera& camera, const Pose& pose, PlanePoint centre, double radius) {
    const std::array<double, 9> A = cameraMatrix(camera);
    double H[3][3];
    for (std::size_t i = 0; i < 3; ++i) {
        const std::array<double, 3> column = {0, 1, 3};
        for (std::size_t j = 0; j < 3; ++j) {
            H[i][j] = 0.0;
            for (std::size_t k = 0; k < 3; ++k) {
                const double m = column[j] < 3 ? pose.R[3 * k + static_cast<std::size_t>(column[j])] : pose.t[k];
                H[i][j] += A[3 * i + k] * m;
            }
        }
    }
    const double dual[3][3] = {{centre.x * centre.x - radius * radius, centre.x * centre.y, centre.x},
                               {centre.x * centre.y, centre.y * centre.y - radius * radius, centre.y},
                               {centre.x, centre.y, 1.0}};
    double D[3][3] = {};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            for (std::size_t k = 0; k < 3; ++k) {
                for (std::size_t l = 0; l < 3; ++l) {
                    D[i][j] += H[i][k] * dual[k][l] * H[j][l];
                }
            }
        }
    }
    // A dual ellipse of centre c and covariance-like shape Q is proportional to [c c' - Q, c; c', 1]; area = pi
    // sqrt|Q|.
    const double cx = D[0][2] / D[2][2], cy = D[1][2] / D[2][2];
    const double qxx = cx * cx - D[0][0] / D[2][2], qxy = cx * cy - D[0][1] / D[2][2],
                 qyy = cy * cy - D[1][1] / D[2][2];
    return {{cx, cy}, kPi * std::sqrt(qxx * qyy - qxy * qxy)};
}

TEST(RenderTruth, WithoutLensTheEllipseIsTheClosedFormConic) {
    zelmtest::Random random(21);
    const Camera camera = distortingCamera(0.0, 0.0);
    for (int i = 0; i < 200; ++i) {
        const Pose pose = aimedPose(camera, randomAim(random));
        PlateDot dot;
        dot.centre = {random.uniform(-40.0, 40.0), random.uniform(-40.0, 40.0)};
        dot.radius = random.uniform(1.0, 4.0);
        const DotTruth truth = dotTruth(dot, camera, pose);
        const ClosedForm expected = projectedCircle(camera, pose, dot.centre, dot.radius);
        // Cancellation in the dual conic: (1000 px)^2 / (radius 3 px) * epsilon.
        EXPECT_NEAR(truth.ellipse.centre.x, expected.centre.x, 1e-9);
        EXPECT_NEAR(truth.ellipse.centre.y, expected.centre.y, 1e-9);
        EXPECT_NEAR(truth.centroid.x, expected.centre.x, 1e-9);
        EXPECT_NEAR(truth.centroid.y, expected.centre.y, 1e-9);
        EXPECT_NEAR(kPi * truth.radius * truth.radius, expected.area, 1e-6);
        EXPECT_NEAR(kPi * truth.ellipse.a * truth.ellipse.b, expected.area, 1e-6);
    }
}

TEST(RenderTruth, ATiltedDotsCentreIsNotTheMiddleOfItsImage) {
    const Camera camera = distortingCamera(0.0, 0.0);
    Aim aim;
    aim.tiltDegrees = 45.0;
    aim.scale = 5.0;
    PlateDot dot;
    dot.radius = 4.0;
    const DotTruth truth = dotTruth(dot, camera, aimedPose(camera, aim));
    // To first order tan-like: r^2 sin(tilt) cos(tilt) / (depth / f) / depth, here 16 * 0.5 * 5 / 338 pixels.
    const double shift = std::hypot(truth.ellipse.centre.x - truth.centre.x, truth.ellipse.centre.y - truth.centre.y);
    EXPECT_NEAR(shift, 16.0 * 0.5 * 5.0 / 338.0, 0.005);
}

TEST(RenderTruth, HeadOnDotsAreCirclesOfTheAimedScale) {
    Camera camera;
    Aim aim;
    aim.pixel = {camera.cx, camera.cy};
    aim.scale = 4.0;
    PlateDot dot;
    dot.radius = 2.5;
    const DotTruth truth = dotTruth(dot, camera, aimedPose(camera, aim));
    EXPECT_NEAR(truth.ellipse.a, 10.0, 1e-9);
    EXPECT_NEAR(truth.ellipse.b, 10.0, 1e-9);
    EXPECT_NEAR(truth.radius, 10.0, 1e-9);
    EXPECT_NEAR(truth.centre.x, camera.cx, 1e-9);
    EXPECT_NEAR(truth.centre.y, camera.cy, 1e-9);
}

TEST(RenderTruth, TheEllipsesAngleIsThatOfItsLongAxis) {
    Camera camera;
    for (const double axis : {-80.0, -45.0, 0.0, 30.0, 60.0, 90.0}) {
        Aim aim;
        aim.pixel = {camera.cx, camera.cy};
        aim.tiltDegrees = 40.0;
        aim.tiltAxisDegrees = axis;  // a circle is shortened across the axis of tilt
        PlateDot dot;
        dot.radius = 2.0;
        const DotTruth truth = dotTruth(dot, camera, aimedPose(camera, aim));
        const double difference = truth.ellipse.angle - axis * kPi / 180.0;
        EXPECT_NEAR(std::sin(difference), 0.0, 1e-9) << axis;
        EXPECT_GT(truth.ellipse.angle, -0.5 * kPi - 1e-12);
        EXPECT_LE(truth.ellipse.angle, 0.5 * kPi);
        EXPECT_GT(truth.ellipse.a, truth.ellipse.b);
    }
}

// Squared distances of an outline from an ellipse, each found by a search along the ellipse.
double squaredDistances(const EllipseTruth& e, const PlateDot& dot, const Camera& camera, const Pose& pose) {
    constexpr int kPoints = 180;
    double sum = 0.0;
    for (int i = 0; i < kPoints; ++i) {
        const double angle = 2.0 * kPi * i / kPoints;
        const PlanePoint onDot = {dot.centre.x + dot.radius * std::cos(angle),
                                  dot.centre.y + dot.radius * std::sin(angle)};
        const Pixel p = project(camera, pose, onDot).pixel;
        const double u = p.x - e.centre.x, v = p.y - e.centre.y;
        const double x = u * std::cos(e.angle) + v * std::sin(e.angle);
        const double y = -u * std::sin(e.angle) + v * std::cos(e.angle);
        const auto squared = [&](double t) {
            const double dx = x - e.a * std::cos(t), dy = y - e.b * std::sin(t);
            return dx * dx + dy * dy;
        };
        double low = std::atan2(y / e.b, x / e.a) - 0.05, high = low + 0.1;
        for (int k = 0; k < 60; ++k) {  // golden section
            const double left = high - 0.6180339887498949 * (high - low);
            const double right = low + 0.6180339887498949 * (high - low);
            (squared(left) < squared(right) ? high : low) = squared(left) < squared(right) ? right : left;
        }
        sum += squared(0.5 * (low + high));
    }
    return sum;
}

TEST(RenderTruth, UnderALensTheEllipseIsTheNearestOne) {
    zelmtest::Random random(22);
    const Camera camera = distortingCamera(-0.25, 0.1);
    for (int i = 0; i < 20; ++i) {
        Aim aim = randomAim(random);
        aim.pixel = {random.uniform(50.0, 300.0), random.uniform(50.0, 300.0)};  // where the lens bends most
        aim.scale = 6.0;
        const Pose pose = aimedPose(camera, aim);
        PlateDot dot;
        dot.radius = 4.0;
        const EllipseTruth best = dotTruth(dot, camera, pose).ellipse;
        const double least = squaredDistances(best, dot, camera, pose);
        EXPECT_LT(std::sqrt(least / 180.0), 0.01);  // pixels; a lens leaves a small dot nearly an ellipse
        constexpr double kStep = 0.002;             // pixels, well above the error of the first-order distance
        for (int k = 0; k < 10; ++k) {
            EllipseTruth other = best;
            double* const value[5] = {&other.centre.x, &other.centre.y, &other.a, &other.b, &other.angle};
            *value[k / 2] += (k % 2 == 0 ? kStep : -kStep) / (k / 2 == 4 ? best.a - best.b + 1.0 : 1.0);
            EXPECT_GT(squaredDistances(other, dot, camera, pose), least) << k;
        }
    }
}

TEST(RenderTruth, DerivativesAreThoseOfTheProjection) {
    zelmtest::Random random(23);
    for (const Projection projection : {Projection::perspective, Projection::parallel}) {
        Camera camera = distortingCamera(-0.2, 0.08);
        camera.projection = projection;
        if (projection == Projection::parallel) {
            camera.fx = 6.0;
            camera.fy = 5.8;
            camera.k1 = -2e-6;  // of the squared distance in plate units
            camera.k2 = 1e-10;
        }
        for (int i = 0; i < 50; ++i) {
            const Pose pose = aimedPose(camera, randomAim(random));
            const PlanePoint p = {random.uniform(-40.0, 40.0), random.uniform(-40.0, 40.0)};
            constexpr double kH = 1e-3;  // plate units; error of central differences: h^2 and epsilon * 1000 / h
            const auto at = [&](double dX, double dY) { return project(camera, pose, {p.x + dX, p.y + dY}).pixel; };
            const ProjectedPoint d = project(camera, pose, p);
            EXPECT_NEAR(d.dxdX, (at(kH, 0).x - at(-kH, 0).x) / (2 * kH), 1e-8);
            EXPECT_NEAR(d.dxdY, (at(0, kH).x - at(0, -kH).x) / (2 * kH), 1e-8);
            EXPECT_NEAR(d.dydX, (at(kH, 0).y - at(-kH, 0).y) / (2 * kH), 1e-8);
            EXPECT_NEAR(d.dydY, (at(0, kH).y - at(0, -kH).y) / (2 * kH), 1e-8);
        }
    }
}

TEST(RenderTruth, RotationVectorsComeBackAtEveryAngle) {
    zelmtest::Random random(24);
    for (int i = 0; i < 300; ++i) {
        const double length = i < 10 ? kPi - 1e-9 * i : random.uniform(0.0, kPi);
        std::array<double, 3> r = {random.normal(), random.normal(), random.normal()};
        const double norm = std::hypot(r[0], r[1], r[2]);
        for (double& component : r) {
            component *= length / norm;
        }
        const auto R = rotationFromVector(r);
        const auto back = rotationFromVector(vectorFromRotation(R));  // at pi both signs are right
        for (std::size_t k = 0; k < 9; ++k) {
            EXPECT_NEAR(back[k], R[k], 1e-14);
        }
    }
    const auto zero = vectorFromRotation({1, 0, 0, 0, 1, 0, 0, 0, 1});
    EXPECT_EQ(zero, (std::array<double, 3>{0, 0, 0}));
}

TEST(RenderTruth, AimedPosesShowWhatWasAskedFor) {
    zelmtest::Random random(25);
    Camera camera = distortingCamera(0.0, 0.0);
    for (int i = 0; i < 100; ++i) {
        Aim aim = randomAim(random);
        aim.point = {random.uniform(-30.0, 30.0), random.uniform(-30.0, 30.0)};
        const Pose pose = aimedPose(camera, aim);
        const ProjectedPoint p = project(camera, pose, aim.point);
        EXPECT_NEAR(p.pixel.x, aim.pixel.x, 1e-10);
        EXPECT_NEAR(p.pixel.y, aim.pixel.y, 1e-10);
        EXPECT_NEAR(std::acos(pose.R[8]), aim.tiltDegrees * kPi / 180.0, 1e-7);
        const Pose same = compose(inverse(pose), pose);
        EXPECT_NEAR(std::hypot(same.t[0], same.t[1], same.t[2]), 0.0, 1e-10);
    }
}

TEST(RenderTruth, APlateListsItsDotsRowByRow) {
    Plate plate;
    plate.missing = {{2, -5}};
    plate.shrunkMarkers = {{3, 0}};
    plate.extraMarkers = {{-6, 5}};
    const std::vector<PlateDot> dots = plateDots(plate);
    ASSERT_EQ(dots.size(), 142U);
    EXPECT_EQ(dots.front().index, (GridIndex{-6, -5}));
    EXPECT_EQ(dots.back().index, (GridIndex{6, 5}));
    int markers = 0;
    for (const PlateDot& dot : dots) {
        EXPECT_NE(dot.index, (GridIndex{2, -5}));
        EXPECT_EQ(dot.radius, dot.marker ? 3.5 : 2.0);
        EXPECT_EQ(dot.centre.x, dot.index.x * 10.0);
        markers += dot.marker ? 1 : 0;
    }
    EXPECT_EQ(markers, 3);
    EXPECT_EQ(fieldExtentX(plate), 120.0);
    EXPECT_EQ(fieldExtentY(plate), 100.0);
}

// The message of the error that a call must raise.
template <typename Call>
std::string errorOf(Call call) {
    try {
        call();
    } catch (const std::exception& e) {
        return e.what();
    }
    return "no error";
}

TEST(RenderTruth, BadPlatesAreRefusedByName) {
    const auto error = [](auto change) {
        Plate plate;
        change(plate);
        return errorOf([&] { checkPlate(plate); });
    };
    EXPECT_EQ(error([](Plate&) {}), "no error");
    EXPECT_EQ(error([](Plate& p) { p.pitchX = 0.0; }), "the pitch along x must be a positive number");
    EXPECT_EQ(error([](Plate& p) { p.dotDiameter = NAN; }), "the dot diameter must be a positive number");
    EXPECT_EQ(error([](Plate& p) { p.markerX = 7; }), "the x marker is not on the grid");
    EXPECT_EQ(error([](Plate& p) { p.minY = 1; }), "the corner marker (0, 0) is not on the grid");
    EXPECT_EQ(error([](Plate& p) { p.markerDiameter = 17.0; }), "dots touch each other; make the pitch larger");
    EXPECT_EQ(error([](Plate& p) { p.marginY = 2.0; }), "the dots reach the edge; make the margin larger");
    EXPECT_EQ(error([](Plate& p) { p.maxX = 101; }), "more than 100 dots from the corner marker to the edge");
}

TEST(RenderTruth, BadCamerasAndOpticsAreRefusedByName) {
    const Plate plate;
    const auto error = [&](Camera camera, Optics optics) {
        Aim aim;
        return errorOf([&] { renderLevels(plate, camera, aimedPose(Camera{}, aim), optics); });
    };
    Camera camera;
    camera.width = 0;
    EXPECT_EQ(error(camera, {}), "width and height must be between 1 and 32768 pixels");
    camera = {};
    camera.fy = -1.0;
    EXPECT_EQ(error(camera, {}), "fx and fy must be positive");
    camera = {};
    camera.k1 = INFINITY;
    EXPECT_EQ(error(camera, {}), "every parameter must be a finite number");
    Optics optics;
    optics.blurSigma = 0.01;
    EXPECT_EQ(error({}, optics), "the blur must be 0 or between 0.02 and 50 pixels");
    optics = {};
    optics.noiseSigma = -1.0;
    EXPECT_EQ(error({}, optics), "the noise must be 0 or a positive number");
    optics = {};
    optics.light.falloff = NAN;
    EXPECT_EQ(error({}, optics), "the falloff must be a finite number");
}

TEST(RenderTruth, PointsThatTheCameraCannotSeeAreRefused) {
    Camera camera;
    Pose behind;
    behind.t = {0.0, 0.0, -10.0};
    EXPECT_THROW(project(camera, behind, {0.0, 0.0}), std::domain_error);
    EXPECT_FALSE(canProject(camera, behind, {0.0, 0.0}));

    // 1 + 3 k1 r^2 is 0 at r = 1: a ray at 45 degrees.
    camera.k1 = -1.0 / 3.0;
    Pose ahead;
    ahead.t = {0.0, 0.0, 10.0};
    EXPECT_TRUE(canProject(camera, ahead, {9.99, 0.0}));
    EXPECT_FALSE(canProject(camera, ahead, {10.01, 0.0}));
    EXPECT_THROW(project(camera, ahead, {10.01, 0.0}), std::domain_error);

    // The slope 1 - 3 r^2 + 1.75 r^4 is negative only for r^2 between 0.45 and 1.26: beyond, the image stays folded.
    camera.k1 = -1.0;
    camera.k2 = 0.35;
    EXPECT_TRUE(canProject(camera, ahead, {6.6, 0.0}));
    EXPECT_FALSE(canProject(camera, ahead, {9.0, 0.0}));
    EXPECT_FALSE(canProject(camera, ahead, {15.0, 0.0}));
}

// Distances of a parallel camera are lengths, so a lens meant for focal lengths throws points out of all proportion.
TEST(RenderTruth, ALensThatThrowsPointsTenTimesAsFarOutIsRefused) {
    Camera camera;
    camera.k1 = 0.09;
    camera.k2 = 0.0;
    Pose ahead;
    ahead.t = {0.0, 0.0, 1.0};
    EXPECT_TRUE(canProject(camera, ahead, {9.99, 0.0}));
    EXPECT_FALSE(canProject(camera, ahead, {10.01, 0.0}));
}

}  // namespace
