// What an adjustment knows of a rig is a covariance that can be kept and measured with, whatever the models.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "measureRigs.h"
#include "patternReading.h"

namespace zelmtest {
namespace {

constexpr double kNoise = 0.05;  // pixels
constexpr int kViews = 8;

// Calibrated from noisy dots of a plate, then adjusted.
struct AdjustedRig {
    ZelmMeasureRig* rig = nullptr;
    ZelmMeasureAdjustment* adjustment = nullptr;

    explicit AdjustedRig(render::Projection leftProjection) {
        const render::Plate plate;
        render::StereoRig stereo = render::exampleRig();
        std::vector<render::Pose> poses = render::makeViewPoses(plate, stereo, kViews, 3);
        const bool isParallel = leftProjection == render::Projection::parallel;
        if (isParallel) {
            stereo.left.projection = leftProjection;
            stereo.left.fx = stereo.left.fy = 3.0;
            stereo.left.k1 = -1e-8;
            stereo.left.k2 = 0.0;
        }
        Handle handle;
        const Zelm2ViewPatternDesc pattern = describe(plate);
        const Zelm2ViewCameraDesc cameras = cameraPair(isParallel ? 2 : 0, 0, stereo.left.width, stereo.left.height);
        EXPECT_EQ(zelm2ViewCalibOpen(kViews, &pattern, &cameras, &handle.calib), ZELM_OK);
        poses[0] = {render::rotationFromVector({0.0, 0.0, 0.0}), poses[0].t};  // a parallel camera looks straight at it
        for (std::int32_t view = 0; view < kViews; ++view) {
            const render::Pose& left = poses[static_cast<std::size_t>(view)];
            const auto seed = static_cast<std::uint64_t>(2 * view + 1);
            fillView(handle.calib, zelm::Camera::left, view, plate, stereo.left, left, kNoise, seed);
            fillView(handle.calib, zelm::Camera::right, view, plate, stereo.right,
                     render::compose(stereo.rightFromLeft, left), kNoise, seed + 1);
        }
        Zelm2ViewCalibResult result{};
        EXPECT_EQ(zelm2ViewCalibCameraParam(handle.calib, &result), ZELM_OK);
        const OpenedRig start(handle.calib);
        EXPECT_EQ(zelmMeasureAdjustOpen(start.get(), &pattern, nullptr, &adjustment), ZELM_OK) << error();
        EXPECT_EQ(zelmMeasureAdjustSolve(adjustment), ZELM_OK) << error();
        EXPECT_EQ(zelmMeasureAdjustRig(adjustment, &rig), ZELM_OK) << error();
    }
    AdjustedRig(const AdjustedRig&) = delete;
    AdjustedRig& operator=(const AdjustedRig&) = delete;
    ~AdjustedRig() {
        zelmMeasureRigClose(&rig);
        zelmMeasureAdjustClose(&adjustment);
    }
    [[nodiscard]] std::string error() const { return zelmMeasureAdjustError(adjustment); }
};

class AdjustedRigs : public testing::TestWithParam<render::Projection> {};

TEST_P(AdjustedRigs, CovariancesAreKeptAndReadBack) {
    const AdjustedRig adjusted(GetParam());
    auto covariance = emptyRecord<ZelmMeasureCovariance>();
    ASSERT_EQ(zelmMeasureRigCovariance(adjusted.rig, &covariance), ZELM_OK) << zelmMeasureRigError(adjusted.rig);
    EXPECT_NEAR(covariance.noise, kNoise, 0.1 * kNoise);
    EXPECT_GT(covariance.freedom, 1000.0);
    std::vector<unsigned char> bytes(2856);
    ASSERT_EQ(zelmMeasureCovarianceSave(adjusted.rig, 2856, bytes.data()), ZELM_OK);
    EXPECT_EQ(zelmMeasureCovarianceLoad(adjusted.rig, bytes.data(), 2856), ZELM_OK)
        << zelmMeasureRigError(adjusted.rig);
    // As another program finds it: the calibration block and the covariance beside it.
    const Zelm2ViewCalib* const calib = zelmMeasureRigCalib(adjusted.rig);
    std::vector<unsigned char> block(static_cast<std::size_t>(zelm2ViewGetCalibDataSize(calib)));
    ASSERT_GE(zelm2ViewSaveCalibData(calib, block.data()), 0);
    const OpenedRig opened(block);
    EXPECT_EQ(zelmMeasureCovarianceLoad(opened.get(), bytes.data(), 2856), ZELM_OK) << opened.error();
    EXPECT_EQ(zelmMeasureRigSetCovariance(opened.get(), &covariance), ZELM_OK) << opened.error();
}

INSTANTIATE_TEST_SUITE_P(Projections, AdjustedRigs,
                         testing::Values(render::Projection::perspective, render::Projection::parallel));

}  // namespace
}  // namespace zelmtest
