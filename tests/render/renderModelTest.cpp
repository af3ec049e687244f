// The renderer's camera against the library's: the two were written independently and must agree to rounding.
#include <gtest/gtest.h>
#include <zelm/calib.h>

#include <algorithm>
#include <cmath>

#include "random.h"
#include "renderView.h"

namespace {

using namespace zelm::render;

// The record that describes the same camera. theta stands for sheared axes: A[0][1] / A[1][1] = tan(theta), and beta is
// the length of the sheared vertical axis times cos(theta).
ZelmCameraIntrinsics recordOf(const Camera& camera) {
    ZelmCameraIntrinsics record{};
    const auto A = cameraMatrix(camera);
    std::copy(A.begin(), A.end(), record.A);
    record.alpha = camera.fx;
    record.beta = camera.fy * std::cos(camera.theta);
    record.gamma = record.beta * A[1] / A[4];
    record.cx = camera.cx;
    record.cy = camera.cy;
    record.theta = camera.theta;
    record.k1 = camera.k1;
    record.k2 = camera.k2;
    return record;
}

ZelmCameraExtrinsics recordOf(const Pose& pose) {
    ZelmCameraExtrinsics record{};
    std::copy(pose.R.begin(), pose.R.end(), record.R);
    std::copy(pose.t.begin(), pose.t.end(), record.t);
    const auto r = vectorFromRotation(pose.R);
    std::copy(r.begin(), r.end(), record.r);
    return record;
}

Camera randomCamera(zelmtest::Random& random, Projection projection) {
    const bool parallel = projection == Projection::parallel;
    Camera camera;
    camera.projection = projection;
    camera.fx = parallel ? random.uniform(3.0, 6.0) : random.uniform(800.0, 2500.0);
    camera.fy = camera.fx * random.uniform(0.95, 1.05);
    camera.skew = camera.fx * random.uniform(-0.02, 0.02);
    camera.cx = random.uniform(560.0, 720.0);
    camera.cy = random.uniform(420.0, 540.0);
    const double scale = parallel ? 1e-5 : 1.0;  // the lens model counts plate units under parallel projection
    camera.k1 = scale * random.uniform(-0.15, 0.15);
    camera.k2 = scale * scale * random.uniform(-0.05, 0.05);
    return camera;
}

void expectAgreement(const Camera& camera, const Pose& pose, int model) {
    const ZelmCameraIntrinsics intrinsics = recordOf(camera);
    const ZelmCameraExtrinsics extrinsics = recordOf(pose);
    for (const PlateDot& dot : plateDots(Plate{})) {
        const Point3d point = {dot.centre.x, dot.centre.y, 0.0};
        Point2d library{};
        ASSERT_GE(zelmCalibChange3Dto2D(&point, &intrinsics, &extrinsics, &library, model), 0);
        const Pixel own = project(camera, pose, dot.centre).pixel;
        EXPECT_NEAR(own.x, library.x, 1e-9);  // pixels: a few hundred roundings of 1000 px
        EXPECT_NEAR(own.y, library.y, 1e-9);
    }
}

Pose randomPose(zelmtest::Random& random, const Camera& camera) {
    Aim aim;
    aim.pixel = {random.uniform(520.0, 760.0), random.uniform(400.0, 560.0)};
    aim.scale = random.uniform(3.0, 5.0);
    aim.rollDegrees = random.uniform(0.0, 360.0);
    aim.tiltDegrees = random.uniform(0.0, 45.0);
    aim.tiltAxisDegrees = random.uniform(0.0, 360.0);
    return aimedPose(camera, aim);
}

void expectAgreementOfRandomCameras(std::uint64_t seed, Projection projection, int model) {
    zelmtest::Random random(seed);
    for (int i = 0; i < 100; ++i) {
        Camera camera = randomCamera(random, projection);
        if (model == 1) {
            camera.skew = 0.0;  // theta alone describes the shear
            camera.theta = random.uniform(-0.05, 0.05);
        }
        expectAgreement(camera, randomPose(random, camera), model);
    }
}

TEST(RenderModel, PerspectiveCamerasProjectAsTheLibraryDoes) {
    expectAgreementOfRandomCameras(31, Projection::perspective, 0);
}

TEST(RenderModel, ShearedPerspectiveCamerasProjectAsTheLibraryDoes) {
    expectAgreementOfRandomCameras(32, Projection::perspective, 1);
}

TEST(RenderModel, ParallelCamerasProjectAsTheLibraryDoes) {
    expectAgreementOfRandomCameras(33, Projection::parallel, 2);
}

TEST(RenderModel, RotationVectorsMeanWhatTheyDoInTheLibrary) {
    zelmtest::Random random(34);
    for (int i = 0; i < 100; ++i) {
        std::array<double, 3> r = {random.uniform(-1.7, 1.7), random.uniform(-1.7, 1.7), random.uniform(-1.7, 1.7)};
        std::array<double, 9> library{};
        ASSERT_EQ(zelmCalibRodrigues(0, r.data(), library.data()), ZELM_OK);
        const std::array<double, 9> own = rotationFromVector(r);
        for (std::size_t k = 0; k < 9; ++k) {
            EXPECT_NEAR(own[k], library[k], 1e-14);
        }
    }
}

}  // namespace
