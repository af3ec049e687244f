// zelmCalibCameraParam: arguments, statuses and what is written when. Accuracy: cameraPerspectiveTest.cpp and
// cameraParallelTest.cpp.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "cameraScene.h"
#include "random.h"
#include "zelm/calib.h"

namespace {

using zelmtest::CameraScene;
using zelmtest::Random;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

ZelmCameraIntrinsics someCamera(int32_t model = 0) {
    return zelmtest::perspectiveCamera(1800.0, 1790.0, 0.0, 640.0, 500.0, -0.1, 0.02, model);
}

CameraScene someScene(std::size_t views = 5) {
    return zelmtest::perspectiveScene(someCamera(), 0, views, 11);
}

CameraScene someParallelScene() {
    CameraScene scene;
    scene.model = 2;
    scene.camera = zelmtest::parallelCamera(12.0, 12.0, 640.0, 500.0, 0.0, 0.0);
    scene.addView(zelmtest::plateDots(6.0, 6.0, false), zelmtest::tiltedPose(0.2, 0.0, 0.0, {1.0, 2.0, 1.0}, 36, 30));
    return scene;
}

ZelmCameraIntrinsics parallelPreset(double alpha = 12.0, double beta = 18.0) {
    ZelmCameraIntrinsics preset{};
    preset.alpha = alpha;
    preset.beta = beta;
    preset.cx = 640.0;
    preset.cy = 500.0;
    return preset;
}

// Runs the estimation on filled records and checks that a failure leaves them as they were.
struct Estimation {
    int32_t status = 0;
    ZelmCameraIntrinsics intrinsics{};
    std::vector<ZelmCameraExtrinsics> poses;
    double error = -7.0;

    explicit Estimation(CameraScene& scene, double threshold = -1.0, const ZelmCameraIntrinsics* preset = nullptr)
        : poses(scene.planes.size()) {
        std::memset(&intrinsics, 0x41, sizeof intrinsics);
        if (preset != nullptr) {
            intrinsics = *preset;
        }
        std::memset(poses.data(), 0x41, poses.size() * sizeof poses[0]);
        const ZelmCameraIntrinsics before = intrinsics;
        const std::vector<ZelmCameraExtrinsics> posesBefore = poses;
        const auto entries = scene.entries();
        status = zelmCalibCameraParam(static_cast<int32_t>(entries.size()), entries.data(), threshold, &intrinsics,
                                      poses.data(), &error, scene.model);
        if (status < 0) {
            EXPECT_EQ(std::memcmp(&before, &intrinsics, sizeof before), 0);
            EXPECT_EQ(std::memcmp(posesBefore.data(), poses.data(), poses.size() * sizeof poses[0]), 0);
            EXPECT_EQ(error, -7.0);
        }
    }
};

TEST(CameraParamContract, UnknownModelsAreRefused) {
    CameraScene scene = someScene();
    for (const int32_t model : {-1, 3, INT32_MIN, INT32_MAX}) {
        scene.model = model;
        EXPECT_EQ(Estimation(scene).status, ZELM_ERR_PARAM) << model;
    }
}

TEST(CameraParamContract, PerspectiveModelsNeedThreeViews) {
    CameraScene scene = someScene(2);
    for (const int32_t model : {0, 1}) {
        scene.model = model;
        EXPECT_EQ(Estimation(scene).status, ZELM_ERR_PARAM) << model;
        const auto entries = scene.entries();
        ZelmCameraIntrinsics out{};
        ZelmCameraExtrinsics poses[2];
        EXPECT_EQ(zelmCalibCameraParam(0, entries.data(), -1.0, &out, poses, nullptr, model), ZELM_ERR_PARAM);
        EXPECT_EQ(zelmCalibCameraParam(-5, entries.data(), -1.0, &out, poses, nullptr, model), ZELM_ERR_PARAM);
    }
    CameraScene three = someScene(3);
    EXPECT_EQ(Estimation(three).status, ZELM_OK);
}

TEST(CameraParamContract, TheParallelModelTakesExactlyOneView) {
    CameraScene scene = someScene(2);
    scene.model = 2;
    EXPECT_EQ(Estimation(scene).status, ZELM_ERR_PARAM);
    const auto entries = scene.entries();
    ZelmCameraIntrinsics out{};
    ZelmCameraExtrinsics poses[2];
    EXPECT_EQ(zelmCalibCameraParam(0, entries.data(), -1.0, &out, poses, nullptr, 2), ZELM_ERR_PARAM);
}

TEST(CameraParamContract, NullRecordsAreRefused) {
    CameraScene scene = someScene(3);
    const auto entries = scene.entries();
    ZelmCameraIntrinsics out{};
    ZelmCameraExtrinsics poses[3];
    EXPECT_EQ(zelmCalibCameraParam(3, nullptr, -1.0, &out, poses, nullptr, 0), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibCameraParam(3, entries.data(), -1.0, nullptr, poses, nullptr, 0), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibCameraParam(3, entries.data(), -1.0, &out, nullptr, nullptr, 0), ZELM_ERR_PARAM);
}

TEST(CameraParamContract, TheErrorFigureNeedNotBeAskedFor) {
    CameraScene scene = someScene();
    const Estimation with(scene);
    const auto entries = scene.entries();
    ZelmCameraIntrinsics out = with.intrinsics;
    std::vector<ZelmCameraExtrinsics> poses(entries.size());
    EXPECT_EQ(zelmCalibCameraParam(5, entries.data(), -1.0, &out, poses.data(), nullptr, 0), ZELM_OK);
    EXPECT_EQ(std::memcmp(&out, &with.intrinsics, sizeof out), 0);
    EXPECT_EQ(std::memcmp(poses.data(), with.poses.data(), sizeof(ZelmCameraExtrinsics) * poses.size()), 0);
}

TEST(CameraParamContract, ReservedDoublesAreCarriedThrough) {
    CameraScene scene = someScene();
    const Estimation run(scene);
    ASSERT_EQ(run.status, ZELM_OK);
    ZelmCameraIntrinsics filled;
    std::memset(&filled, 0x41, sizeof filled);
    EXPECT_EQ(std::memcmp(filled.reserved, run.intrinsics.reserved, sizeof filled.reserved), 0);
}

TEST(CameraParamContract, AViewOfCollinearDotsFailsAsItsHomography) {
    CameraScene scene = someScene();
    for (std::size_t i = 0; i < scene.planes[2].size(); ++i) {
        scene.planes[2][i].y = 0.5 * scene.planes[2][i].x;
    }
    EXPECT_EQ(Estimation(scene).status, ZELM_ERR_CALIB_HOMOGRAPHY);
}

TEST(CameraParamContract, AViewOfFewerThanFourDotsFailsAsItsHomography) {
    for (const std::size_t count : {0U, 1U, 3U}) {
        CameraScene scene = someScene();
        scene.planes[4].resize(count);
        scene.images[4].resize(count);
        EXPECT_EQ(Estimation(scene).status, ZELM_ERR_CALIB_HOMOGRAPHY) << count;
    }
    CameraScene parallel = someParallelScene();
    parallel.planes[0].clear();
    const ZelmCameraIntrinsics preset = parallelPreset();
    EXPECT_EQ(Estimation(parallel, -1.0, &preset).status, ZELM_ERR_CALIB_HOMOGRAPHY);
}

TEST(CameraParamContract, AViewWithoutArraysOrWithANegativeCountFailsAsItsHomography) {
    CameraScene scene = someScene(3);
    ZelmCameraIntrinsics out{};
    ZelmCameraExtrinsics poses[3];
    for (int broken = 0; broken < 3; ++broken) {
        auto entries = scene.entries();
        if (broken == 0) {
            entries[1].plane = nullptr;
        } else if (broken == 1) {
            entries[1].image = nullptr;
        } else {
            entries[1].count = -143;
        }
        EXPECT_EQ(zelmCalibCameraParam(3, entries.data(), -1.0, &out, poses, nullptr, 0), ZELM_ERR_CALIB_HOMOGRAPHY);
    }
}

TEST(CameraParamContract, ParallelViewsDetermineNoCamera) {
    // Views that differ by shifts and distance alone repeat one and the same pair of constraints.
    for (const double tilt : {0.0, 0.4}) {
        CameraScene scene;
        scene.camera = someCamera();
        scene.camera.k1 = scene.camera.k2 = 0.0;
        Random random(3);
        for (int v = 0; v < 6; ++v) {
            scene.addView(zelmtest::plateDots(10.0, 10.0, false),
                          zelmtest::tiltedPose(
                              0.3, tilt, 1.0,
                              {random.uniform(-20.0, 20.0), random.uniform(-20.0, 20.0), random.uniform(250.0, 350.0)},
                              60.0, 50.0));
        }
        EXPECT_EQ(Estimation(scene).status, ZELM_ERR_CALIB_ESTIMATE) << tilt;
    }
}

TEST(CameraParamContract, EachReferenceDotOfAParallelViewIsNeeded) {
    const ZelmCameraIntrinsics preset = parallelPreset();
    for (const Point2d missing : {Point2d{0.0, 0.0}, Point2d{12.0, 0.0}, Point2d{0.0, 18.0}}) {
        CameraScene scene = someParallelScene();
        for (Point2d& dot : scene.planes[0]) {
            if (dot.x == missing.x && dot.y == missing.y) {
                dot.x += 1.1e-5;  // just past the tolerance of 1e-5 plate units
            }
        }
        EXPECT_EQ(Estimation(scene, -1.0, &preset).status, ZELM_ERR_CALIB_ESTIMATE) << missing.x << ' ' << missing.y;
    }
    CameraScene near = someParallelScene();
    for (Point2d& dot : near.planes[0]) {
        dot.x += 0.9e-5;
    }
    EXPECT_EQ(Estimation(near, -1.0, &preset).status, ZELM_OK);
}

TEST(CameraParamContract, UselessPresetDistancesOfAParallelViewDetermineNoCamera) {
    for (const double distance : {0.0, kNan, kInf, -1e300}) {
        CameraScene scene = someParallelScene();
        const ZelmCameraIntrinsics preset = parallelPreset(distance);
        EXPECT_EQ(Estimation(scene, -1.0, &preset).status, ZELM_ERR_CALIB_ESTIMATE) << distance;
    }
    CameraScene scene = someParallelScene();
    ZelmCameraIntrinsics preset = parallelPreset();
    preset.cx = kNan;
    EXPECT_EQ(Estimation(scene, -1.0, &preset).status, ZELM_ERR_CALIB_ESTIMATE);
}

TEST(CameraParamContract, ACutOffThatRejectsEveryDotDoesNotConverge) {
    CameraScene scene = someScene();
    Random random(5);
    scene.addNoise(0.5, random);
    EXPECT_EQ(Estimation(scene, 1e-9).status, ZELM_ERR_CALIB_NOT_CONVERGED);
}

TEST(CameraParamContract, DataThatAreNotFiniteEndInAFailure) {
    for (const double bad : {kNan, kInf, -kInf, 1e308, -1e200}) {
        for (int where = 0; where < 4; ++where) {
            CameraScene scene = someScene();
            Point2d& point = where < 2 ? scene.planes[1][7] : scene.images[1][7];
            (where % 2 == 0 ? point.x : point.y) = bad;
            EXPECT_LT(Estimation(scene).status, 0) << bad << ' ' << where;
            EXPECT_LT(Estimation(scene, 3.5).status, 0) << bad << ' ' << where;
            CameraScene parallel = someParallelScene();
            Point2d& other = where < 2 ? parallel.planes[0][20] : parallel.images[0][20];
            (where % 2 == 0 ? other.x : other.y) = bad;
            const ZelmCameraIntrinsics preset = parallelPreset();
            EXPECT_LT(Estimation(parallel, 3.5, &preset).status, 0) << bad << ' ' << where;
        }
    }
}

TEST(CameraParamContract, ViewsThatAllCoincideEndInAFailure) {
    CameraScene scene = someScene();
    for (auto& image : scene.images) {
        for (Point2d& p : image) {
            p = {320.0, 240.0};
        }
    }
    EXPECT_LT(Estimation(scene).status, 0);
}

TEST(CameraParamContract, AThresholdThatIsNotANumberSwitchesWeightingOffAndAnInfiniteOneRejectsNothing) {
    CameraScene scene = someScene();
    Random random(6);
    scene.addNoise(0.05, random);
    const Estimation plain(scene, 0.0);
    const Estimation notANumber(scene, kNan);
    EXPECT_EQ(std::memcmp(&plain.intrinsics, &notANumber.intrinsics, sizeof plain.intrinsics), 0);
    const Estimation infinite(scene, kInf);
    ASSERT_EQ(infinite.status, ZELM_OK);
    EXPECT_NEAR(infinite.intrinsics.alpha, plain.intrinsics.alpha, 1e-9 * plain.intrinsics.alpha);  // rounding
}

}  // namespace
