// The adjustment as users call it: what the core calibrated goes in, a rig whose block the core loads comes out.
#include <gtest/gtest.h>
#include <zelmMeasure.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "adjustedRigs.h"
#include "measureRigs.h"

namespace zelmtest {
namespace {

using zelm::measure::AdjustView;
using zelm::measure::kLeft;
using zelm::measure::kRight;

AdjustSceneOptions withModels(int left, int right) {
    AdjustSceneOptions options;
    options.models = {left, right};
    options.views = 10;
    return options;
}

class AdjustedModels : public testing::TestWithParam<std::array<int, 2>> {};

// Raw pixel of a point of the plate's frame in view 0, by the rig's own numbers and the equations of the cameras alone.
Point2d projected(const ZelmMeasureRig* rig, std::int32_t side, const Point3d& X) {
    auto camera = emptyRecord<ZelmMeasureCamera>();
    ZelmCameraExtrinsics pose{};
    zelmMeasureRigCamera(rig, side, &camera);
    zelmMeasureRigPose(rig, side, 0, &pose);
    double c[3];
    for (std::size_t i = 0; i < 3; ++i) {
        c[i] = pose.R[3 * i] * X.x + pose.R[3 * i + 1] * X.y + pose.R[3 * i + 2] * X.z + pose.t[i];
    }
    const double depth = camera.model == ZELM_CAMERA_PARALLEL ? 1.0 : c[2];
    const double x = c[0] / depth;
    const double y = c[1] / depth;
    const auto& in = camera.intrinsics;
    const double r2 = x * x + y * y;
    const double scale = 1.0 + (in.k1 + in.k2 * r2) * r2;
    return {in.A[0] * scale * x + in.A[1] * scale * y + in.A[2], in.A[4] * scale * y + in.A[5]};
}

TEST_P(AdjustedModels, TheCoreMeasuresWithTheAdjustedBlock) {
    const AdjustScene scene = makeAdjustScene(withModels(GetParam()[0], GetParam()[1]));
    Random random(3);
    Handle core;
    calibrateScene(scene, scene.noisy(0.02, random), core);
    OpenedAdjustment adjustment;
    ASSERT_EQ(adjustment.open(core.get(), scene.plate), ZELM_OK) << adjustment.error();
    ASSERT_EQ(zelmMeasureAdjustSolve(adjustment.handle), ZELM_OK) << adjustment.error();
    auto summary = emptyRecord<ZelmMeasureAdjustSummary>();
    ASSERT_EQ(zelmMeasureAdjustSummary(adjustment.handle, &summary), ZELM_OK);
    EXPECT_EQ(summary.viewsLeftOut, 0);
    EXPECT_NEAR(summary.leftNoise, 0.02, 0.002);
    EXPECT_NEAR(summary.rightNoise, 0.02, 0.002);
    EXPECT_LE(summary.leftRms, summary.leftBefore);
    ZelmMeasureRig* rig = nullptr;
    ASSERT_EQ(zelmMeasureAdjustRig(adjustment.handle, &rig), ZELM_OK) << adjustment.error();

    const Zelm2ViewCalib* const own = zelmMeasureRigCalib(rig);
    std::vector<unsigned char> block(static_cast<std::size_t>(zelm2ViewGetCalibDataSize(own)));
    ASSERT_EQ(zelm2ViewSaveCalibData(own, block.data()), ZELM_OK);
    Handle loaded;
    loadBlock(block, &loaded);
    const Zelm2ViewCalib* const calib = loaded.get();
    const auto width = static_cast<double>(kSceneWidth);
    for (int i = 0; i < 200; ++i) {
        const Point3d X{random.uniform(-50.0, 50.0), random.uniform(-40.0, 40.0), random.uniform(-30.0, 30.0)};
        const Point2d left = projected(rig, 'L', X);
        const Point2d right = projected(rig, 'R', X);
        for (const char side : {'L', 'R'}) {
            const Point2d p = side == 'L' ? left : right;
            Point2d q{};
            ASSERT_EQ(zelm2ViewChange3Dto2D(calib, side, &X, &q), ZELM_OK);
            EXPECT_NEAR(q.x, p.x, 1e-6);
            EXPECT_NEAR(q.y, p.y, 1e-6);
            // The line of the other pixel goes through this one, undistorted.
            Zelm2ViewEpiLine line{};
            ASSERT_EQ(zelm2ViewCalcEpiLine(calib, side, side == 'L' ? &right : &left, &line), ZELM_OK);
            Point2d ideal{};
            ASSERT_EQ(zelm2ViewUnDistortPoint(calib, side, &p, &ideal), ZELM_OK);
            EXPECT_NEAR(line.a * ideal.x + line.b * ideal.y + line.c, 0.0, 1e-6) << side;
            // There and back through the rectified image.
            const Zelm2ViewHomParam home{0.5 * width, 0.5 * kSceneHeight, 0.0};
            Point2d rectified{};
            ASSERT_EQ(zelm2ViewCalcHomImgPoint(calib, side, &p, &home, &rectified), ZELM_OK);
            ASSERT_EQ(zelm2ViewInvHomImgPoint(calib, side, &rectified, &home, &q), ZELM_OK);
            EXPECT_NEAR(q.x, p.x, 1e-6);
            EXPECT_NEAR(q.y, p.y, 1e-6);
        }
        Point3d Y{};
        ASSERT_EQ(zelm2ViewChange2Dto3D(calib, &left, &right, &Y), ZELM_OK);
        // 1e-9 of the distance of 340.
        EXPECT_NEAR(Y.x, X.x, 340e-9);
        EXPECT_NEAR(Y.y, X.y, 340e-9);
        EXPECT_NEAR(Y.z, X.z, 340e-9);
    }
    // True pixels of points about the plate of view 0: their error is what the calibration's covariance says.
    const zelm::measure::Rig truth = rigOfState(scene, scene.truth);
    double sum = 0.0;
    const int count = 100;
    for (int i = 0; i < count; ++i) {
        const Point3d X{random.uniform(-50.0, 50.0), random.uniform(-40.0, 40.0), random.uniform(-30.0, 30.0)};
        Point2d p[2];
        for (const char side : {'L', 'R'}) {
            ASSERT_EQ(zelm2ViewChange3Dto2D(truth.calib.get(), side, &X, side == 'L' ? &p[0] : &p[1]), ZELM_OK);
        }
        auto noise = emptyRecord<ZelmMeasurePixelNoise>();
        noise.sigma = 1e-9;
        auto points = emptyRecord<ZelmMeasurePointCovariances>();
        double position[3];
        double C[6];
        points.positions = position;
        points.calibration = C;
        ASSERT_EQ(zelmMeasurePointCovariance(rig, 1, &p[0].x, &p[1].x, &noise, &points), ZELM_OK);
        const double e[3] = {position[0] - X.x, position[1] - X.y, position[2] - X.z};
        sum += (e[0] * e[0] / C[0] + e[1] * e[1] / C[3] + e[2] * e[2] / C[5]) / (3.0 * count);
    }
    // All points share a calibration, of some 20 parameters: a mean square of 1 that spreads by a half.
    EXPECT_LE(sum, 3.0);
    zelmMeasureRigClose(&rig);
}

INSTANTIATE_TEST_SUITE_P(Models, AdjustedModels,
                         testing::Values(std::array{0, 0}, std::array{0, 1}, std::array{1, 0}, std::array{1, 1},
                                         std::array{2, 0}, std::array{2, 1}));

TEST(AdjustInterface, TwoParallelCamerasAreRefusedInPlainWords) {
    const OpenedRig rig(parallelBlock());
    const Zelm2ViewPatternDesc plate = plainPattern();
    OpenedAdjustment adjustment;
    EXPECT_EQ(zelmMeasureAdjustOpen(rig.get(), &plate, nullptr, &adjustment.handle), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(adjustment.error().find("both cameras are parallel"), std::string::npos) << adjustment.error();
    EXPECT_EQ(zelmMeasureAdjustSolve(adjustment.handle), ZELM_ERR_PARAM);
}

TEST(AdjustInterface, ARigOfAFileHasNoDots) {
    const OpenedRig rig(trueRig().block());
    const Zelm2ViewPatternDesc plate = plainPattern();
    OpenedAdjustment adjustment;
    EXPECT_EQ(zelmMeasureAdjustOpen(rig.get(), &plate, nullptr, &adjustment.handle), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(adjustment.error().find("no dots"), std::string::npos) << adjustment.error();
}

// Neither crashes nor gives NaN: an honest refusal, or finite numbers.
void expectFinite(const AdjustScene& scene, const std::vector<AdjustView>& views, const Zelm2ViewPatternDesc& plate,
                  const char* what) {
    Handle core;
    calibrateScene(scene, views, core);
    OpenedAdjustment adjustment;
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    std::int32_t status = adjustment.open(core.get(), plate);
    status = status < 0 ? status : zelmMeasureAdjustSolve(adjustment.handle);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << what;
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << what;
    if (status < 0) {
        EXPECT_EQ(status, ZELM_MEASURE_ERR_DATA) << what;
        EXPECT_NE(adjustment.error(), "") << what;
        return;
    }
    ZelmMeasureRig* rig = nullptr;
    ASSERT_EQ(zelmMeasureAdjustRig(adjustment.handle, &rig), ZELM_OK) << what << ": " << adjustment.error();
    auto covariance = emptyRecord<ZelmMeasureCovariance>();
    ASSERT_EQ(zelmMeasureRigCovariance(rig, &covariance), ZELM_OK);
    for (std::size_t i = 0; i < ZELM_MEASURE_PARAMETERS; ++i) {
        EXPECT_TRUE(std::isfinite(covariance.matrix[27 * i]) && covariance.matrix[27 * i] >= 0.0) << what;
    }
    zelmMeasureRigClose(&rig);
}

TEST(AdjustInterface, BadDataAreSilentAndFinite) {
    Random random(4);
    AdjustScene scene = makeAdjustScene(withModels(0, 0));
    const std::vector<AdjustView> sound = scene.noisy(0.03, random);
    // Exchanged cameras are a rig of their own.
    std::vector<AdjustView> views = sound;
    for (AdjustView& view : views) {
        std::swap(view.dots[kLeft], view.dots[kRight]);
    }
    expectFinite(scene, views, scene.plate, "exchanged cameras");
    Zelm2ViewPatternDesc plate = scene.plate;
    plate.d2 = 8.0;
    plate.d3 = 9.5;
    expectFinite(scene, sound, plate, "wrong diameters");
    plate = scene.plate;
    plate.d4 = 12.0;  // the dots of other columns
    expectFinite(scene, sound, plate, "wrong pitch");
    // One view of another rig.
    AdjustSceneOptions other = withModels(0, 0);
    other.seed = 9;
    views = sound;
    views[2].dots[kRight] = makeAdjustScene(other).views[2].dots[kRight];
    expectFinite(scene, views, scene.plate, "a foreign image");
}

TEST(AdjustInterface, ViewsWhoseImagesDoNotBelongTogetherAreNamed) {
    Random random(7);
    AdjustSceneOptions options = withModels(0, 0);
    options.views = 6;
    const AdjustScene scene = makeAdjustScene(options);
    const std::vector<AdjustView> sound = scene.noisy(0.03, random);
    {
        // The pose between the cameras starts from this view.
        std::vector<AdjustView> views = sound;
        std::swap(views[0].dots[kLeft], views[0].dots[kRight]);
        Handle core;
        calibrateScene(scene, views, core);
        OpenedAdjustment adjustment;
        ASSERT_EQ(adjustment.open(core.get(), scene.plate), ZELM_OK) << adjustment.error();
        ASSERT_EQ(zelmMeasureAdjustSolve(adjustment.handle), ZELM_OK) << adjustment.error();
        auto summary = emptyRecord<ZelmMeasureAdjustSummary>();
        ASSERT_EQ(zelmMeasureAdjustSummary(adjustment.handle, &summary), ZELM_OK);
        EXPECT_EQ(summary.viewsLeftOut, 1);
        EXPECT_NE(std::string(zelmMeasureAdjustView(adjustment.handle, 0)), "");
        EXPECT_NEAR(summary.rightNoise, 0.03, 0.003);
    }
    std::vector<AdjustView> views = sound;
    for (std::size_t view = 0; view < views.size(); ++view) {
        views[view].dots[kRight] = sound[(view + 1) % sound.size()].dots[kRight];
    }
    Handle core;
    calibrateScene(scene, views, core);
    OpenedAdjustment adjustment;
    ASSERT_EQ(adjustment.open(core.get(), scene.plate), ZELM_OK) << adjustment.error();
    EXPECT_EQ(zelmMeasureAdjustSolve(adjustment.handle), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(adjustment.error().find("two images belong together"), std::string::npos) << adjustment.error();
}

TEST(AdjustInterface, AnotherPlateIsRefused) {
    Random random(8);
    const AdjustScene scene = makeAdjustScene(withModels(0, 0));
    Handle core;
    calibrateScene(scene, scene.noisy(0.03, random), core);
    for (const double pitch : {11.0, 12.0}) {
        Zelm2ViewPatternDesc plate = scene.plate;
        plate.d4 = pitch;
        OpenedAdjustment adjustment;
        EXPECT_EQ(adjustment.open(core.get(), plate), ZELM_MEASURE_ERR_DATA);
        EXPECT_NE(adjustment.error().find("lie on the plate's grid"), std::string::npos) << adjustment.error();
    }
}

TEST(AdjustInterface, WrongDiametersAreFoundWhereTheyAreEstimated) {
    AdjustSceneOptions options = withModels(0, 0);
    options.factors = {1.08, 1.08};
    const AdjustScene scene = makeAdjustScene(options);
    Random random(5);
    Handle core;
    calibrateScene(scene, scene.noisy(0.02, random), core);
    auto how = emptyRecord<ZelmMeasureAdjustOptions>();
    how.estimateDiameters = 1;
    OpenedAdjustment adjustment;
    ASSERT_EQ(adjustment.open(core.get(), scene.plate, &how), ZELM_OK);
    ASSERT_EQ(zelmMeasureAdjustSolve(adjustment.handle), ZELM_OK) << adjustment.error();
    auto summary = emptyRecord<ZelmMeasureAdjustSummary>();
    ASSERT_EQ(zelmMeasureAdjustSummary(adjustment.handle, &summary), ZELM_OK);
    EXPECT_GT(summary.dotFactorSigma, 0.0);
    EXPECT_NEAR(summary.dotFactor, 1.08, 4.0 * summary.dotFactorSigma);
    EXPECT_NEAR(summary.markerFactor, 1.08, 4.0 * summary.markerFactorSigma);
}

TEST(AdjustInterface, ShortRecordsTakeTheirPart) {
    const AdjustScene scene = makeAdjustScene(withModels(0, 0));
    Random random(6);
    Handle core;
    calibrateScene(scene, scene.noisy(0.02, random), core);
    auto how = emptyRecord<ZelmMeasureAdjustOptions>();
    how.size = 8;  // holdSkew alone
    how.holdSkew = 1;
    how.noise = -1.0;  // behind the end
    OpenedAdjustment adjustment;
    ASSERT_EQ(adjustment.open(core.get(), scene.plate, &how), ZELM_OK) << adjustment.error();
    ASSERT_EQ(zelmMeasureAdjustSolve(adjustment.handle), ZELM_OK) << adjustment.error();
    auto summary = emptyRecord<ZelmMeasureAdjustSummary>();
    summary.size = 8;
    summary.viewsLeftOut = -5;
    ASSERT_EQ(zelmMeasureAdjustSummary(adjustment.handle, &summary), ZELM_OK);
    EXPECT_EQ(summary.views, 10);
    EXPECT_EQ(summary.viewsLeftOut, -5);

    std::int64_t count = 0;
    ASSERT_EQ(zelmMeasureAdjustDots(adjustment.handle, 'L', 0, nullptr, &count), ZELM_OK);
    ASSERT_GT(count, 20);
    auto dots = emptyRecord<ZelmMeasureAdjustedDots>();
    std::vector<double> pixels(20, -7.0);
    dots.capacity = 5;
    dots.pixels = pixels.data();
    std::int64_t again = 0;
    ASSERT_EQ(zelmMeasureAdjustDots(adjustment.handle, 'L', 0, &dots, &again), ZELM_OK);
    EXPECT_EQ(again, count);
    EXPECT_NE(pixels[9], -7.0);
    EXPECT_EQ(pixels[10], -7.0);
    auto camera = emptyRecord<ZelmMeasureCamera>();
    ZelmMeasureRig* rig = nullptr;
    ASSERT_EQ(zelmMeasureAdjustRig(adjustment.handle, &rig), ZELM_OK);
    ASSERT_EQ(zelmMeasureRigCamera(rig, 'R', &camera), ZELM_OK);
    EXPECT_EQ(camera.intrinsics.A[1], 0.0);
    zelmMeasureRigClose(&rig);
}

}  // namespace
}  // namespace zelmtest
