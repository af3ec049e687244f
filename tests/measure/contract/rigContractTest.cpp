// Arguments that cannot be meant: rigs, their dots and covariances.
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "measureContract.h"

namespace zelmtest {
namespace {

TEST_F(MeasureContract, RigsAreOpenedIntoEmptyHandlesAlone) {
    const auto size = static_cast<std::int64_t>(sound.block.size());
    ZelmMeasureRig* rig = nullptr;
    expectParam("block", ZELM_CASE(zelmMeasureRigOpen)(nullptr, size, &rig));
    expectParam("size", ZELM_CASE(zelmMeasureRigOpen)(sound.block.data(), -1, &rig));
    expectParam("calib", ZELM_CASE(zelmMeasureRigOfCalib)(nullptr, &rig));
    EXPECT_EQ(rig, nullptr);
    expectParam("handle", ZELM_CASE(zelmMeasureRigOpen)(sound.block.data(), size, nullptr));
    expectParam("handle", ZELM_CASE(zelmMeasureRigOfCalib)(ZELM_CASE(zelmMeasureRigCalib)(sound.rig.get()), nullptr));
    ZelmMeasureRig* live = sound.rig.get();
    expectParam("live", ZELM_CASE(zelmMeasureRigOpen)(sound.block.data(), size, &live));
    expectParam("live", ZELM_CASE(zelmMeasureRigOfCalib)(ZELM_CASE(zelmMeasureRigCalib)(sound.rig.get()), &live));
    EXPECT_EQ(live, sound.rig.get());
}

TEST_F(MeasureContract, RigsAnswerSoundQuestionsAlone) {
    ZelmMeasureRig* const rig = sound.rig.get();
    std::int32_t* const i = out.integers;
    double* const d = out.numbers;
    ZelmCameraExtrinsics pose{};
    const ZelmCameraExtrinsics before = pose;
    expectParam("views", ZELM_CASE(zelmMeasureRigViews)(nullptr, i));
    expectParam("views", ZELM_CASE(zelmMeasureRigViews)(rig, nullptr));
    for (const std::int32_t side : {0, static_cast<int>('l'), static_cast<int>('r'), 256 + 'L', -1}) {
        auto camera = emptyRecord<ZelmMeasureCamera>();
        expectParam("camera", ZELM_CASE(zelmMeasureRigCamera)(rig, side, &camera));
        EXPECT_EQ(camera.width, 0);
        expectParam("pose", ZELM_CASE(zelmMeasureRigPose)(rig, side, 0, &pose));
        expectParam("tilt", ZELM_CASE(zelmMeasureRigTilt)(rig, side, d));
        expectParam("dots", ZELM_CASE(zelmMeasureRigDots)(rig, &sound.pattern, side, 0, nullptr, out.longs, nullptr));
    }
    for (const std::int32_t view : {-1, 3, std::numeric_limits<std::int32_t>::max()}) {
        expectParam("pose", ZELM_CASE(zelmMeasureRigPose)(rig, 'L', view, &pose));
        expectParam("dots", ZELM_CASE(zelmMeasureRigDots)(rig, &sound.pattern, 'L', view, nullptr, out.longs, nullptr));
        expectParam("epipolar", ZELM_CASE(zelmMeasureRigEpipolar)(rig, &sound.pattern, view, 1, d, out.longs));
    }
    EXPECT_EQ(std::memcmp(&pose, &before, sizeof pose), 0);
    expectParam("pose", ZELM_CASE(zelmMeasureRigPose)(nullptr, 'L', 0, &pose));
    expectParam("pose", ZELM_CASE(zelmMeasureRigPose)(rig, 'L', 0, nullptr));
    expectParam("fundamental", ZELM_CASE(zelmMeasureRigFundamental)(nullptr, d));
    expectParam("fundamental", ZELM_CASE(zelmMeasureRigFundamental)(rig, nullptr));
    expectParam("tilt", ZELM_CASE(zelmMeasureRigTilt)(nullptr, 'L', d));
    expectParam("tilt", ZELM_CASE(zelmMeasureRigTilt)(rig, 'L', nullptr));
    expectParam("centre", ZELM_CASE(zelmMeasureRigCentre)(nullptr, d, d, i));
    expectParam("centre", ZELM_CASE(zelmMeasureRigCentre)(rig, nullptr, d, i));
    expectParam("centre", ZELM_CASE(zelmMeasureRigCentre)(rig, d, nullptr, i));
    expectRecordRefused<ZelmMeasureCamera>("camera",
                                           [&](auto* r) { return ZELM_CASE(zelmMeasureRigCamera)(rig, 'L', r); });
    expectRecordRefused<ZelmMeasureRelativePose>(
        "relative", [&](auto* r) { return ZELM_CASE(zelmMeasureRigRelativePose)(rig, r); });
    EXPECT_STREQ(ZELM_CASE(zelmMeasureRigError)(nullptr), "");
    EXPECT_EQ(ZELM_CASE(zelmMeasureRigCalib)(nullptr), nullptr);
    ZELM_CASE(zelmMeasureRigClose)(nullptr);
    auto camera = emptyRecord<ZelmMeasureCamera>();
    auto relative = emptyRecord<ZelmMeasureRelativePose>();
    expectParam("camera", ZELM_CASE(zelmMeasureRigCamera)(nullptr, 'L', &camera));
    expectParam("relative", ZELM_CASE(zelmMeasureRigRelativePose)(nullptr, &relative));
}

TEST_F(MeasureContract, FiguresAndDotsOfRigs) {
    ZelmMeasureRig* const rig = sound.rig.get();
    const double distances[] = {1.0};
    auto figures = emptyRecord<ZelmMeasureFigures>();
    expectParam("figures", ZELM_CASE(zelmMeasureFigures)(-1, distances, &figures));
    expectParam("figures", ZELM_CASE(zelmMeasureFigures)(1, nullptr, &figures));
    EXPECT_EQ(figures.count, 0);
    expectRecordRefused<ZelmMeasureFigures>("figures",
                                            [&](auto* r) { return ZELM_CASE(zelmMeasureFigures)(1, distances, r); });
    auto dots = emptyRecord<ZelmMeasureDots>();
    expectParam("dots",
                ZELM_CASE(zelmMeasureRigDots)(nullptr, &sound.pattern, 'L', 0, &dots, out.longs, out.longs + 1));
    expectParam("dots", ZELM_CASE(zelmMeasureRigDots)(rig, nullptr, 'L', 0, &dots, out.longs, out.longs + 1));
    expectParam("dots", ZELM_CASE(zelmMeasureRigDots)(rig, &sound.pattern, 'L', 0, &dots, nullptr, out.longs + 1));
    dots.capacity = -1;
    expectParam("dots", ZELM_CASE(zelmMeasureRigDots)(rig, &sound.pattern, 'L', 0, &dots, out.longs, out.longs + 1));
    dots.size = 0;
    expectParam("dots", ZELM_CASE(zelmMeasureRigDots)(rig, &sound.pattern, 'L', 0, &dots, out.longs, out.longs + 1));
    expectParam("epipolar", ZELM_CASE(zelmMeasureRigEpipolar)(nullptr, &sound.pattern, 0, 1, out.numbers, out.longs));
    expectParam("epipolar", ZELM_CASE(zelmMeasureRigEpipolar)(rig, nullptr, 0, 1, out.numbers, out.longs));
    expectParam("epipolar", ZELM_CASE(zelmMeasureRigEpipolar)(rig, &sound.pattern, 0, -1, out.numbers, out.longs));
    expectParam("epipolar", ZELM_CASE(zelmMeasureRigEpipolar)(rig, &sound.pattern, 0, 1, out.numbers, nullptr));
}

TEST_F(MeasureContract, CovariancesOfRigs) {
    ZelmMeasureRig* const rig = sound.rig.get();
    ZelmMeasureCovariance given = unitCovariance();
    expectParam("rig", ZELM_CASE(zelmMeasureRigSetCovariance)(nullptr, &given));
    for (const std::int32_t size : {0, 3, -8, static_cast<std::int32_t>(sizeof given) - 8}) {
        given.size = size;
        expectParam("size", ZELM_CASE(zelmMeasureRigSetCovariance)(rig, &given));
    }
    given = unitCovariance();
    ASSERT_EQ(zelmMeasureRigSetCovariance(rig, &given), ZELM_OK);
    auto taken = emptyRecord<ZelmMeasureCovariance>();
    expectParam("rig", ZELM_CASE(zelmMeasureRigCovariance)(nullptr, &taken));
    expectRecordRefused<ZelmMeasureCovariance>("covariance",
                                               [&](auto* r) { return ZELM_CASE(zelmMeasureRigCovariance)(rig, r); });
    expectParam("rig", ZELM_CASE(zelmMeasureCovarianceSize)(nullptr, out.longs));
    expectParam("size", ZELM_CASE(zelmMeasureCovarianceSize)(rig, nullptr));
    std::vector<unsigned char> bytes(2856, 7);
    expectParam("rig", ZELM_CASE(zelmMeasureCovarianceSave)(nullptr, 2856, bytes.data()));
    expectParam("bytes", ZELM_CASE(zelmMeasureCovarianceSave)(rig, 2856, nullptr));
    for (const std::int64_t capacity : {std::int64_t{2855}, std::int64_t{0}, std::int64_t{-1}}) {
        expectParam("capacity", ZELM_CASE(zelmMeasureCovarianceSave)(rig, capacity, bytes.data()));
    }
    EXPECT_EQ(bytes, std::vector<unsigned char>(2856, 7));
    expectParam("rig", ZELM_CASE(zelmMeasureCovarianceLoad)(nullptr, bytes.data(), 2856));
    expectParam("bytes", ZELM_CASE(zelmMeasureCovarianceLoad)(rig, nullptr, 2856));
    expectParam("size", ZELM_CASE(zelmMeasureCovarianceLoad)(rig, bytes.data(), -1));
}

}  // namespace
}  // namespace zelmtest
