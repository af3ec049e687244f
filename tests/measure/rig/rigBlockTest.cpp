// A block made of two cameras is the block that the core's calibration of them leaves, and its functions measure by it.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "measureRigs.h"
#include "rigBlock.h"

namespace zelmtest {
namespace {

using zelm::measure::CameraParameters;
using zelm::measure::Fault;
using zelm::measure::Rig;
using zelm::measure::RigCamera;

constexpr std::int32_t kViews = 5;

std::vector<unsigned char> blockOfObject(const Zelm2ViewCalib* calib) {
    std::vector<unsigned char> bytes(static_cast<std::size_t>(zelm2ViewGetCalibDataSize(calib)));
    EXPECT_EQ(zelm2ViewSaveCalibData(calib, bytes.data()), ZELM_OK);
    return bytes;
}

// What the core makes of ideal dots, with noise so that no parameter is round. Parallel cameras see the plate of view 0
// head-on.
std::vector<unsigned char> calibratedBlock(int leftModel, int rightModel) {
    render::StereoRig cameras = render::exampleRig();
    const render::Plate plate;
    std::vector<render::Pose> left = render::makeViewPoses(plate, cameras, kViews, 11);
    std::array<render::Pose, 2> first{left[0], render::compose(cameras.rightFromLeft, left[0])};
    const std::array models{leftModel, rightModel};
    for (std::size_t side = 0; side < 2; ++side) {
        render::Camera& camera = side == 0 ? cameras.left : cameras.right;
        if (models[side] == ZELM_CAMERA_PARALLEL) {
            camera.projection = render::Projection::parallel;
            camera.fx = camera.fy = 6.0;
            camera.k1 = camera.k2 = 0.0;
            first[side] = render::aimedPose(camera, aimAt(camera, 6.0, 10.0));
        } else if (models[side] == ZELM_CAMERA_TILTED) {
            camera.theta = 0.003;
        }
    }
    const auto pattern = describe(plate);
    const auto sizes = cameraPair(leftModel, rightModel, cameras.left.width, cameras.left.height);
    Handle handle;
    EXPECT_EQ(zelm2ViewCalibOpen(kViews, &pattern, &sizes, &handle.calib), ZELM_OK);
    for (std::int32_t view = 0; view < kViews; ++view) {
        const auto i = static_cast<std::size_t>(view);
        fillView(handle.calib, zelm::Camera::left, view, plate, cameras.left, view == 0 ? first[0] : left[i], 0.02,
                 20 + i);
        fillView(handle.calib, zelm::Camera::right, view, plate, cameras.right,
                 view == 0 ? first[1] : render::compose(cameras.rightFromLeft, left[i]), 0.02, 40 + i);
    }
    Zelm2ViewCalibResult result{};
    EXPECT_EQ(zelm2ViewCalibCameraParam(handle.calib, &result), ZELM_OK);
    return blockOfObject(handle.calib);
}

struct Models {
    int left;
    int right;
};

class MeasureRigBlock : public testing::TestWithParam<Models> {};

INSTANTIATE_TEST_SUITE_P(Pairs, MeasureRigBlock,
                         testing::Values(Models{0, 0}, Models{1, 1}, Models{0, 1}, Models{2, 0}, Models{2, 1},
                                         Models{2, 2}),
                         [](const auto& param) {
                             return std::to_string(param.param.left) + "And" + std::to_string(param.param.right);
                         });

TEST_P(MeasureRigBlock, IsTheCoresOwnByteForByte) {
    const std::vector<unsigned char> block = calibratedBlock(GetParam().left, GetParam().right);
    const Rig rig = zelm::measure::rigOfBlock(block);
    EXPECT_EQ(zelm::measure::blockOf(rig.left, rig.right), block);
    const Rig again = zelm::measure::rigOfCameras(rig.left, rig.right);
    EXPECT_EQ(blockOfObject(again.calib.get()), block);
    EXPECT_EQ(again.fundamental, rig.fundamental);
}

TEST_P(MeasureRigBlock, ParallelCamerasMayHaveTheirFirstPoseAlone) {
    const std::vector<unsigned char> block = calibratedBlock(GetParam().left, GetParam().right);
    Rig rig = zelm::measure::rigOfBlock(block);
    // Of two parallel cameras one must tell how many views there are.
    if (rig.left.isParallel()) {
        rig.left.poses.resize(1);
        EXPECT_EQ(zelm::measure::blockOf(rig.left, rig.right), block);
    } else {
        rig.left.poses.resize(1);
        EXPECT_THROW(zelm::measure::blockOf(rig.left, rig.right), Fault);
    }
}

TEST_P(MeasureRigBlock, RecordsAreThoseOfTheCoreAgain) {
    const Rig rig = zelm::measure::rigOfBlock(calibratedBlock(GetParam().left, GetParam().right));
    for (const RigCamera* camera : {&rig.left, &rig.right}) {
        const ZelmCameraIntrinsics& expected = camera->intrinsics;
        const ZelmCameraIntrinsics made =
            zelm::measure::intrinsicsRecord(camera->model, zelm::measure::parametersOf(expected));
        EXPECT_EQ(std::memcmp(&made, &expected, sizeof made), 0);
        const ZelmCameraExtrinsics& pose = camera->pose();
        const auto of =
            zelm::measure::poseRecordOfVector({pose.r[0], pose.r[1], pose.r[2]}, {pose.t[0], pose.t[1], pose.t[2]});
        EXPECT_EQ(std::memcmp(&of, &pose, sizeof of), 0);
        zelm::measure::Matrix3 R{};
        std::copy_n(pose.R, 9, R.begin());
        const auto back = zelm::measure::poseRecord(R, {pose.t[0], pose.t[1], pose.t[2]});
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(back.r[i], pose.r[i], 1e-14);  // what zelmCalibRodrigues() states, with room for another matrix
        }
    }
}

RigCamera cameraOfNumbers(int model, double turn) {
    RigCamera camera;
    camera.model = model;
    camera.width = 1280;
    camera.height = 960;
    CameraParameters numbers{1688.6, 0.0, 1686.9, 642.3, 476.2, -0.12, 0.05};
    if (model == ZELM_CAMERA_TILTED) {
        numbers[zelm::measure::kSkew] = 5.1;
    } else if (model == ZELM_CAMERA_PARALLEL) {
        numbers = {3.0, 0.0, 3.01, 642.3, 476.2, -1e-8, 0.0};
    }
    camera.intrinsics = zelm::measure::intrinsicsRecord(model, numbers);
    camera.poses.assign(3, zelm::measure::poseRecordOfVector({0.04, turn, 0.02}, {-8.0, 4.0, 455.0}));
    return camera;
}

// A rig of numbers alone, which the core never calibrated.
Rig rigOfNumbers(Models models) {
    return zelm::measure::rigOfCameras(cameraOfNumbers(models.left, 0.18), cameraOfNumbers(models.right, -0.17));
}

Point2d rawPixel(const RigCamera& camera, const Point3d& X) {
    Point2d p{};
    EXPECT_EQ(zelmCalibChange3Dto2D(&X, &camera.intrinsics, &camera.pose(), &p, camera.model), ZELM_OK);
    return p;
}

Point2d idealPixelOf(const RigCamera& camera, const Point3d& X) {
    RigCamera ideal = camera;
    ideal.intrinsics.k1 = ideal.intrinsics.k2 = 0.0;
    return rawPixel(ideal, X);
}

TEST_P(MeasureRigBlock, EpipolarLinesPassThroughTheOtherImage) {
    const Rig rig = rigOfNumbers(GetParam());
    Random random(7);
    for (int i = 0; i < 50; ++i) {
        const Point3d X = randomWorldPoint(random);
        const Point2d left = rawPixel(rig.left, X);
        const Point2d right = idealPixelOf(rig.right, X);
        Zelm2ViewEpiLine line{};
        ASSERT_EQ(zelm2ViewCalcEpiLine(rig.calib.get(), 'R', &left, &line), ZELM_OK);
        // Undistortion ends within 1e-9 pixel; rounding of F, 1e-16 of products of 1e6 pixels squared over slopes of
        // 1e-3, is below that again.
        EXPECT_NEAR(line.a * right.x + line.b * right.y + line.c, 0.0, 1e-6);
    }
}

TEST_P(MeasureRigBlock, TriangulatesWhatTheCamerasSee) {
    const Rig rig = rigOfNumbers(GetParam());
    if (rig.left.isParallel() && rig.right.isParallel()) {
        EXPECT_THROW(rig.requireTriangulation(), Fault);
        return;
    }
    Random random(8);
    for (int i = 0; i < 50; ++i) {
        const Point3d X = randomWorldPoint(random);
        const Point2d left = rawPixel(rig.left, X);
        const Point2d right = rawPixel(rig.right, X);
        Point3d made{};
        ASSERT_EQ(zelm2ViewChange2Dto3D(rig.calib.get(), &left, &right, &made), ZELM_OK);
        // A hundred times the rounding of the linear system's squares, in units at 450 units' distance.
        EXPECT_NEAR(made.x, X.x, 1e-7);
        EXPECT_NEAR(made.y, X.y, 1e-7);
        EXPECT_NEAR(made.z, X.z, 1e-7);
    }
}

// A rectified image is what the other camera would see of a far scene, or, in a pair with a parallel camera, of the
// plane of view 0.
TEST_P(MeasureRigBlock, RectifiesIntoTheOtherCamera) {
    const Rig rig = rigOfNumbers(GetParam());
    const bool withParallel = rig.left.isParallel() || rig.right.isParallel();
    const Zelm2ViewHomParam centred{640.0, 480.0, 0.0};
    Random random(9);
    const auto draw = [&] {
        Point3d X = randomWorldPoint(random);
        if (withParallel) {
            X.z = 0.0;
        } else {
            constexpr double kFar = 1e12;  // the baseline is seen there as 1e-7 pixel
            X = {kFar * 1e-3 * X.x, kFar * 1e-3 * X.y, kFar};
        }
        return X;
    };
    const auto mapped = [&](char side, const Point3d& X) {
        const Point2d raw = rawPixel(rig.camera(side), X);
        Point2d out{};
        EXPECT_EQ(zelm2ViewCalcHomImgPoint(rig.calib.get(), side, &raw, &centred, &out), ZELM_OK);
        return out;
    };
    for (const char side : {'L', 'R'}) {
        const RigCamera& other = rig.camera(side == 'L' ? 'R' : 'L');
        const Point3d origin = draw();
        const Point2d from = mapped(side, origin);
        const Point2d seenFrom = idealPixelOf(other, origin);
        for (int i = 0; i < 20; ++i) {
            const Point3d X = draw();
            const Point2d to = mapped(side, X);
            const Point2d seen = idealPixelOf(other, X);
            EXPECT_NEAR(to.x - from.x, seen.x - seenFrom.x, 1e-6);
            EXPECT_NEAR(to.y - from.y, seen.y - seenFrom.y, 1e-6);
        }
    }
}

TEST(MeasureRigBlockRefusals, CamerasThatMakeNoPair) {
    const Rig pair = zelm::measure::rigOfBlock(blockOf(makePair(0, 0)));
    const Rig mixed = zelm::measure::rigOfBlock(blockOf(makePair(2, 0)));
    const auto statusOf = [](const RigCamera& left, const RigCamera& right) {
        try {
            zelm::measure::blockOf(left, right);
        } catch (const Fault& fault) {
            return fault.status;
        }
        return static_cast<std::int32_t>(ZELM_OK);
    };
    EXPECT_EQ(statusOf(pair.left, pair.right), ZELM_OK);
    RigCamera upright = pair.left;  // without a rotation, whose rounding would be a baseline
    upright.poses.assign(3, zelm::measure::poseRecordOfVector({}, {0.0, 0.0, 450.0}));
    EXPECT_EQ(statusOf(upright, upright), ZELM_MEASURE_ERR_DATA);         // in one place
    EXPECT_EQ(statusOf(mixed.right, mixed.left), ZELM_MEASURE_ERR_DATA);  // parallel on the right
    RigCamera flat = pair.left;
    flat.intrinsics.A[0] = 0.0;
    EXPECT_EQ(statusOf(flat, pair.right), ZELM_MEASURE_ERR_DATA);
    RigCamera broken = pair.left;
    broken.intrinsics.A[0] = std::nan("");
    EXPECT_THROW(zelm::measure::rigOfCameras(broken, pair.right), Fault);
    RigCamera without = pair.left;
    without.poses.clear();
    EXPECT_EQ(statusOf(without, pair.right), ZELM_ERR_PARAM);
    EXPECT_EQ(statusOf(without, without), ZELM_ERR_PARAM);
}

}  // namespace
}  // namespace zelmtest
