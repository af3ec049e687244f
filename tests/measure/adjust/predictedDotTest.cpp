// Derivatives of the projection and of the predicted dots against central differences.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "adjustScene.h"
#include "predictedDot.h"
#include "random.h"
#include "rig.h"

namespace zelmtest {
namespace {

using namespace zelm::measure;

// Compares rows of derivatives with differences of the pixel when parameter i goes by h.
template <std::size_t n>
void expectDerivatives(const Rows2<n>& rows, const std::function<Point2d(std::size_t, double)>& moved,
                       const std::function<double(std::size_t)>& stepOf, const char* what) {
    for (std::size_t i = 0; i < n; ++i) {
        const double h = stepOf(i);
        const Point2d up = moved(i, h);
        const Point2d down = moved(i, -h);
        // Rounding of pixels around 1000 over the step, and the third derivative.
        const double tolerance = 1e-12 * 1000.0 / h + 1e-6 * (std::fabs(rows[0][i]) + std::fabs(rows[1][i])) + 1e-9;
        EXPECT_NEAR(rows[0][i], (up.x - down.x) / (2.0 * h), tolerance) << what << " " << i;
        EXPECT_NEAR(rows[1][i], (up.y - down.y) / (2.0 * h), tolerance) << what << " " << i;
    }
}

AdjustSceneOptions sceneOptions(int left, int right, std::uint64_t seed) {
    AdjustSceneOptions options;
    options.models = {left, right};
    options.views = 3;
    options.skewed = true;
    options.factors = {1.03, 0.97};
    options.bow = {0.3, -0.2, 0.4};
    options.seed = seed;
    return options;
}

double cameraStep(const ProjectionCamera& camera, std::size_t i) {
    const double f = camera.p[kFx];
    const std::array<double, kCameraParameters> steps{1e-4 * f, 1e-4 * f, 1e-4 * f, 1e-2, 1e-2, 1e-4, 1e-4};
    const double unit = camera.isParallel ? 1.0 / (160.0 * 160.0) : 1.0;
    return steps[i] * (i == kK1 ? unit : i == kK2 ? unit * unit : 1.0);
}

class PredictedDots : public testing::TestWithParam<std::array<int, 2>> {};

TEST_P(PredictedDots, DerivativesOfAllBlocks) {
    const AdjustScene scene = makeAdjustScene(sceneOptions(GetParam()[0], GetParam()[1], 3));
    for (const Side side : {kLeft, kRight}) {
        for (const std::size_t view : {0U, 1U, 2U}) {
            for (const DotObservation& dot : scene.views[view].dots[side]) {
                if ((dot.index.x + 3 * dot.index.y) % 7 != 0 && dot.kind == kPlainDot) {
                    continue;
                }
                const AdjustState& s = scene.truth;
                const auto centre = [&](const AdjustState& state) {
                    const ImageParameters image = imageParameters(state, side, view, dot.kind);
                    return dotOutline(image.camera, circleOf(image, dot.place, dot.radius)).centre;
                };
                for (const auto kind : {RotationDerivative::byVector, RotationDerivative::byTurn}) {
                    const ImageParameters image = imageParameters(s, side, view, dot.kind);
                    const PredictedDot model = predictDot(image, dot.place, dot.radius, kind);
                    EXPECT_EQ(model.centre.x, centre(s).x);
                    EXPECT_EQ(model.centre.y, centre(s).y);
                    expectDerivatives<kCameraParameters>(
                        model.byCamera,
                        [&](std::size_t i, double h) {
                            AdjustState state = s;
                            state.cameras[side].p[i] += h;
                            return centre(state);
                        },
                        [&](std::size_t i) { return cameraStep(s.cameras[side], i); }, "camera");
                    const auto motion = [&](const MotionParameters& m, std::size_t i, double h) {
                        MotionParameters changed = m;
                        if (kind == RotationDerivative::byVector || i >= 3) {
                            changed[i] += h;
                            return changed;
                        }
                        Vector3 d{};
                        d[i] = h;
                        const Matrix3 R = product(rotationOf(d), rotationOf({m[0], m[1], m[2]}));
                        return motionParameters(R, {m[3], m[4], m[5]});
                    };
                    const auto motionStep = [](std::size_t i) { return i < 3 ? 1e-5 : 1e-3; };
                    expectDerivatives<6>(
                        model.byPose,
                        [&](std::size_t i, double h) {
                            AdjustState state = s;
                            state.poses[view] = motion(s.poses[view], i, h);
                            return centre(state);
                        },
                        motionStep, "pose");
                    expectDerivatives<6>(
                        model.byRelative,
                        [&](std::size_t i, double h) {
                            AdjustState state = s;
                            state.relative = motion(s.relative, i, h);
                            return centre(state);
                        },
                        motionStep, "relative");
                    expectDerivatives<1>(
                        model.byFactor,
                        [&](std::size_t, double h) {
                            AdjustState state = s;
                            state.factors[dot.kind] += h;
                            return centre(state);
                        },
                        [](std::size_t) { return 1e-3; }, "factor");
                    expectDerivatives<3>(
                        model.byBow,
                        [&](std::size_t i, double h) {
                            AdjustState state = s;
                            state.bow.b[i] += h;
                            return centre(state);
                        },
                        [](std::size_t) { return 1e-3; }, "bow");
                }
                if (HasFailure()) {
                    return;
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Models, PredictedDots,
                         testing::Values(std::array{0, 0}, std::array{0, 1}, std::array{1, 1}, std::array{2, 0},
                                         std::array{2, 1}));

TEST(Projection, DerivativesByPointAndCamera) {
    Random random(9);
    for (int i = 0; i < 60; ++i) {
        const AdjustScene scene = makeAdjustScene(sceneOptions(i % 3, 0, static_cast<std::uint64_t>(i)));
        const ProjectionCamera& camera = scene.truth.cameras[kLeft];
        const Vector3 X{random.uniform(-60.0, 60.0), random.uniform(-50.0, 50.0), random.uniform(250.0, 400.0)};
        const Projection p = project(camera, X);
        const Point2d pixel = pixelOf(camera, X);
        EXPECT_NEAR(p.pixel.x, pixel.x, 1e-12 * 1000.0);
        EXPECT_NEAR(p.pixel.y, pixel.y, 1e-12 * 1000.0);
        expectDerivatives<3>(
            p.byPoint,
            [&](std::size_t k, double h) {
                Vector3 Y = X;
                Y[k] += h;
                return pixelOf(camera, Y);
            },
            [](std::size_t) { return 1e-2; }, "point");
        expectDerivatives<kCameraParameters>(
            p.byParameters,
            [&](std::size_t k, double h) {
                ProjectionCamera moved = camera;
                moved.p[k] += h;
                return pixelOf(moved, X);
            },
            [&](std::size_t k) { return cameraStep(camera, k); }, "camera");
    }
}

TEST(Projection, LeftJacobianIsThatOfTheRotation) {
    Random random(10);
    for (int i = 0; i < 200; ++i) {
        // From none to nearly a half turn, and about where series take over.
        const double angle = i < 100 ? 3.1 * i / 100.0 : std::pow(10.0, random.uniform(-8.0, -3.0));
        const Vector3 axis = unit({random.normal(), random.normal(), random.normal()});
        const Vector3 r{angle * axis[0], angle * axis[1], angle * axis[2]};
        const Matrix3 J = leftJacobian(r);
        const double h = 1e-6;
        for (std::size_t k = 0; k < 3; ++k) {
            Vector3 up = r;
            Vector3 down = r;
            up[k] += h;
            down[k] -= h;
            const Matrix3 turn = product(rotationOf(up), *inverse(rotationOf(down)));
            // The antisymmetric part of a small turn is its vector.
            EXPECT_NEAR(J[k], (turn[7] - turn[5]) / (4.0 * h), 2e-9) << angle;
            EXPECT_NEAR(J[3 + k], (turn[2] - turn[6]) / (4.0 * h), 2e-9) << angle;
            EXPECT_NEAR(J[6 + k], (turn[3] - turn[1]) / (4.0 * h), 2e-9) << angle;
        }
    }
}

}  // namespace
}  // namespace zelmtest
