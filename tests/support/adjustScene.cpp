#include "adjustScene.h"

#include <Eigen/Core>
#include <Eigen/Eigenvalues>
#include <algorithm>
#include <cmath>

#include "predictedDot.h"
#include "rigBlock.h"

namespace zelmtest {

using namespace zelm::measure;

namespace {

Matrix3 rotationZ(double angle) {
    return rotationOf({0.0, 0.0, angle});
}

ProjectionCamera cameraOf(const AdjustSceneOptions& o, std::size_t side, Random& random) {
    ProjectionCamera camera;
    camera.isParallel = o.models[side] == ZELM_CAMERA_PARALLEL;
    auto& p = camera.p;
    if (camera.isParallel) {
        p[kFx] = 5.0 + random.uniform(-0.1, 0.1);
        p[kFy] = o.squarePixels ? p[kFx] : p[kFx] * 1.001;
        // As the core presets it; what is not estimated must be true at the start.
        p[kCx] = 0.5 * (kSceneWidth - 1);
        p[kCy] = 0.5 * (kSceneHeight - 1);
        p[kK1] = -4e-7;
        p[kK2] = 1e-12;
    } else {
        p[kFx] = o.focal[side] * random.uniform(0.99, 1.01);
        p[kFy] = o.squarePixels ? p[kFx] : p[kFx] * random.uniform(0.998, 1.002);
        p[kCx] = 0.5 * kSceneWidth + random.uniform(-12.0, 12.0);
        p[kCy] = 0.5 * kSceneHeight + random.uniform(-12.0, 12.0);
        p[kK1] = o.k1 * random.uniform(0.9, 1.1);
        p[kK2] = o.k2 * random.uniform(0.9, 1.1);
    }
    p[kSkew] = o.skewed ? 0.002 * p[kFy] : 0.0;
    return camera;
}

}  // namespace

AdjustScene makeAdjustScene(const AdjustSceneOptions& o) {
    Random random(o.seed * 7919 + 17);
    AdjustScene scene;
    scene.models = o.models;
    AdjustState& s = scene.truth;
    s.cameras = {cameraOf(o, kLeft, random), cameraOf(o, kRight, random)};
    s.base = s.cameras[kLeft].isParallel ? kRight : kLeft;
    s.bow.extent = 0.5 * std::hypot(scene.plate.d0, scene.plate.d1);
    s.bow.b = o.bow;
    s.factors = o.factors;
    // Both cameras look at the same place, at the plates' distance.
    const double turn = (s.base == kLeft ? -1.0 : 1.0) * o.convergence;
    const Matrix3 R = rotationOf({0.02, turn, 0.015});
    const Vector3 middle{0.0, 0.0, o.distance};
    const Vector3 moved = times(R, middle);
    s.relative = motionParameters(R, {1.0 - moved[0], -2.0 - moved[1], o.distance * 1.02 - moved[2]});
    const double field = o.distance / o.focal[s.base];  // plate units a pixel
    for (int view = 0; view < o.views; ++view) {
        // The first view stands before a parallel camera as its calibration by the core wants it.
        const bool isFirst = view == 0;
        const double tilt = isFirst ? 0.0 : o.maxTilt * std::sqrt(random.uniform(0.1, 1.0));
        const double axis = random.uniform(0.0, 6.283);
        const Matrix3 tilted = rotationOf({tilt * std::cos(axis), tilt * std::sin(axis), 0.0});
        Matrix3 pose = product(tilted, rotationZ(random.uniform(-3.0, 3.0)));
        if (s.cameras[s.other()].isParallel) {
            pose = product(*inverse(R), pose);  // tilts against the parallel camera
        }
        // The corner marker stands in the middle of the plate.
        Vector3 t{field * random.uniform(-140.0, 140.0), field * random.uniform(-100.0, 100.0),
                  o.distance * random.uniform(0.88, 1.12)};
        s.poses.push_back(motionParameters(pose, t));
    }
    predictDots(scene);
    return scene;
}

void predictDots(AdjustScene& scene, const DotPlaces& places) {
    scene.views.assign(scene.truth.poses.size(), {});
    for (const Side side : {kLeft, kRight}) {
        for (std::size_t view = 0; view < scene.views.size(); ++view) {
            for (int y = -5; y <= 5; ++y) {
                for (int x = -6; x <= 6; ++x) {
                    DotObservation dot = plateDot(scene.plate, {x, y}, places);
                    const ImageParameters image = imageParameters(scene.truth, side, view, dot.kind);
                    dot.pixel = dotOutline(image.camera, circleOf(image, dot.place, dot.radius)).centre;
                    const double margin = 12.0;
                    if (dot.pixel.x > margin && dot.pixel.y > margin && dot.pixel.x < kSceneWidth - margin &&
                        dot.pixel.y < kSceneHeight - margin) {
                        scene.views[view].dots[side].push_back(dot);
                    }
                }
            }
        }
    }
}

std::vector<AdjustView> AdjustScene::noisy(double sigma, Random& random) const {
    std::vector<AdjustView> result = views;
    for (AdjustView& view : result) {
        for (auto& list : view.dots) {
            for (DotObservation& dot : list) {
                dot.pixel.x += sigma * random.normal();
                dot.pixel.y += sigma * random.normal();
            }
        }
    }
    return result;
}

AdjustState AdjustScene::start(Random& random) const {
    AdjustState state = truth;
    for (ProjectionCamera& camera : state.cameras) {
        const double f = 1.0 + 3e-3 * random.normal();
        camera.p[kFx] *= f;
        camera.p[kFy] *= f;
        camera.p[kSkew] = 0.0;
        if (!camera.isParallel) {
            camera.p[kCx] += 2.0 * random.normal();
            camera.p[kCy] += 2.0 * random.normal();
        }
        camera.p[kK1] = 0.9 * camera.p[kK1];
        camera.p[kK2] = 0.0;
    }
    const auto shake = [&random](MotionParameters& m, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            m[i] += (i < 3 ? 1e-3 : 0.5) * random.normal();
        }
    };
    shake(state.relative, truth.cameras[truth.other()].isParallel ? 5 : 6);
    for (MotionParameters& pose : state.poses) {
        shake(pose, 6);
    }
    state.factors = {1.0, 1.0};
    state.bow.b = {};
    return state;
}

Rig rigOfState(const AdjustScene& scene, const AdjustState& state) {
    std::array<RigCamera, kSides> cameras;
    for (const Side side : {kLeft, kRight}) {
        RigCamera& camera = cameras[side];
        camera.model = scene.models[side];
        camera.width = kSceneWidth;
        camera.height = kSceneHeight;
        camera.intrinsics = intrinsicsRecord(camera.model, state.cameras[side].p);
        for (std::size_t view = 0; view < state.poses.size(); ++view) {
            const MotionParameters pose = zelm::measure::poseOf(state, side, view);
            camera.poses.push_back(poseRecordOfVector({pose[0], pose[1], pose[2]}, {pose[3], pose[4], pose[5]}));
        }
    }
    return rigOfCameras(cameras[kLeft], cameras[kRight]);
}

std::array<double, kRigParameters> rigErrors(const Rig& truth, const Rig& estimate) {
    std::array<double, kRigParameters> errors{};
    const auto camera = [&errors](std::size_t at, const RigCamera& a, const RigCamera& b) {
        const CameraParameters p = parametersOf(a.intrinsics);
        const CameraParameters q = parametersOf(b.intrinsics);
        for (std::size_t i = 0; i < kCameraParameters; ++i) {
            errors[at + i] = p[i] - q[i];
        }
    };
    const auto motion = [&errors](std::size_t at, const Matrix3& R, const double* t, const Matrix3& S,
                                  const double* u) {
        const MotionParameters d = motionParameters(product(R, *inverse(S)), {});
        for (std::size_t i = 0; i < 3; ++i) {
            errors[at + i] = d[i];
            errors[at + 3 + i] = t[i] - u[i];
        }
    };
    camera(kLeftCamera, truth.left, estimate.left);
    camera(kRightCamera, truth.right, estimate.right);
    const Motion a = motionBetween(truth.left, truth.right);
    const Motion b = motionBetween(estimate.left, estimate.right);
    motion(kRelativeRotation, a.R, a.t.data(), b.R, b.t.data());
    const auto frame = [](const Rig& rig) {
        Matrix3 R{};
        std::copy_n(rig.left.pose().R, 9, R.begin());
        return R;
    };
    motion(kFrameRotation, frame(truth), truth.left.pose().t, frame(estimate), estimate.left.pose().t);
    return errors;
}

Consistency consistencyOf(const std::array<double, kRigParameters>& errors, const CalibrationCovariance& covariance) {
    constexpr auto n = static_cast<Eigen::Index>(kRigParameters);
    using Matrix = Eigen::Matrix<double, n, n, Eigen::RowMajor>;
    const Eigen::Map<const Matrix> C(covariance.matrix.data());
    const Eigen::Map<const Eigen::Matrix<double, n, 1>> e(errors.data());
    Eigen::Matrix<double, n, 1> scale;
    for (Eigen::Index i = 0; i < n; ++i) {
        scale[i] = C(i, i) > 0.0 ? 1.0 / std::sqrt(C(i, i)) : 0.0;
    }
    const Matrix scaled = scale.asDiagonal() * C * scale.asDiagonal();
    const Eigen::SelfAdjointEigenSolver<Matrix> eigen(scaled);
    const Eigen::Matrix<double, n, 1> rotated = eigen.eigenvectors().transpose() * (scale.asDiagonal() * e);
    Consistency result;
    for (Eigen::Index i = 0; i < n; ++i) {
        // Directions that are held have eigenvalues of rounding alone.
        if (eigen.eigenvalues()[i] > 1e-10) {
            result.square += rotated[i] * rotated[i] / eigen.eigenvalues()[i];
            ++result.freedom;
        }
    }
    return result;
}

}  // namespace zelmtest
