// What an adjustment knows of a rig is a covariance that can be kept and measured with, whatever the models.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "measureRigs.h"
#include "patternReading.h"

namespace zelmtest {
namespace {

constexpr double kNoise = 0.05;  // pixels
constexpr int kViews = 8;

// Two cameras and the plate before them.
struct Station {
    render::Plate plate;
    render::StereoRig cameras = render::exampleRig();
    std::vector<render::Pose> left;  // of the plate, a view each

    explicit Station(render::Projection leftProjection) {
        plate.dotDiameter = 0.2;  // so small that the centre of its image is the image of its centre
        plate.markerDiameter = 0.4;
        left = render::makeViewPoses(render::Plate(), cameras, kViews, 3);
        left[0].R = render::rotationFromVector({0.0, 0.0, 0.0});  // a parallel camera looks straight at it
        if (leftProjection == render::Projection::parallel) {
            cameras.left.projection = leftProjection;
            cameras.left.fx = cameras.left.fy = 3.0;
            cameras.left.k1 = -1e-8;
            cameras.left.k2 = 0.0;
        }
    }
    [[nodiscard]] render::Pose right(std::size_t view) const {
        return render::compose(cameras.rightFromLeft, left[view]);
    }
    [[nodiscard]] std::int32_t leftModel() const {
        return cameras.left.projection == render::Projection::parallel ? ZELM_CAMERA_PARALLEL : ZELM_CAMERA_PERSPECTIVE;
    }
    // Of a point in the frame of the plate of view 0.
    [[nodiscard]] Point2d seen(char side, const Point3d& X) const {
        render::Pose pose = side == 'L' ? left[0] : right(0);
        for (std::size_t i = 0; i < 3; ++i) {
            pose.t[i] += pose.R[3 * i + 2] * X.z;
        }
        const auto p = render::project(side == 'L' ? cameras.left : cameras.right, pose, {X.x, X.y}).pixel;
        return {p.x, p.y};
    }
};

// Calibrated from noisy dots of the plate, then adjusted.
struct AdjustedRig {
    ZelmMeasureRig* rig = nullptr;
    ZelmMeasureAdjustment* adjustment = nullptr;

    AdjustedRig(const Station& station, std::uint64_t seed) {
        Handle handle;
        const Zelm2ViewPatternDesc pattern = describe(station.plate);
        const render::StereoRig& cameras = station.cameras;
        const Zelm2ViewCameraDesc models = cameraPair(station.leftModel(), 0, cameras.left.width, cameras.left.height);
        EXPECT_EQ(zelm2ViewCalibOpen(kViews, &pattern, &models, &handle.calib), ZELM_OK);
        for (std::int32_t view = 0; view < kViews; ++view) {
            const auto place = static_cast<std::size_t>(view);
            fillView(handle.calib, zelm::Camera::left, view, station.plate, cameras.left, station.left[place], kNoise,
                     seed++);
            fillView(handle.calib, zelm::Camera::right, view, station.plate, cameras.right, station.right(place),
                     kNoise, seed++);
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
    const AdjustedRig adjusted(Station(GetParam()), 1);
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

TEST_P(AdjustedRigs, LengthsLieWithinTheirIntervals) {
    // From dots and pixels with noise alone, truth unknown to all: rigs, covariances and noise are the adjustment's.
    const Station station(GetParam());
    const std::vector<Point3d> points{
        {-50.0, -40.0, 0.0}, {50.0, -40.0, 0.0}, {-50.0, 40.0, -20.0}, {50.0, 40.0, 20.0}};
    const std::vector<std::int64_t> ends{0, 1, 0, 2, 1, 2, 2, 3};
    constexpr std::size_t kLengths = 4;
    constexpr int kRigs = 24;
    double byCalibration = 0.0;  // squares of errors in standard deviations
    double byBoth = 0.0;
    int held = 0;
    for (int n = 0; n < kRigs; ++n) {
        const AdjustedRig adjusted(station, static_cast<std::uint64_t>(1000 * n + 7));
        Random random(static_cast<std::uint64_t>(n + 1));
        for (const double noise : {0.0, kNoise}) {
            std::vector<double> left;
            std::vector<double> right;
            for (const Point3d& X : points) {
                const Point2d l = station.seen('L', X);
                const Point2d r = station.seen('R', X);
                left.insert(left.end(), {l.x + noise * random.normal(), l.y + noise * random.normal()});
                right.insert(right.end(), {r.x + noise * random.normal(), r.y + noise * random.normal()});
            }
            double lengths[kLengths], calibration[kLengths], deviations[kLengths], expanded[kLengths];
            auto out = emptyRecord<ZelmMeasureLengths>();
            out.lengths = lengths;
            out.calibration = calibration;
            out.deviations = deviations;
            out.expanded = expanded;
            ASSERT_EQ(
                zelmMeasureLengths(adjusted.rig, 4, left.data(), right.data(), nullptr, kLengths, ends.data(), &out),
                ZELM_OK)
                << zelmMeasureRigError(adjusted.rig);
            for (std::size_t i = 0; i < kLengths; ++i) {
                const Point3d& a = points[static_cast<std::size_t>(ends[2 * i])];
                const Point3d& b = points[static_cast<std::size_t>(ends[2 * i + 1])];
                const double error = lengths[i] - std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
                if (noise == 0.0) {
                    byCalibration += error * error / (calibration[i] * calibration[i]);
                } else {
                    byBoth += error * error / (deviations[i] * deviations[i]);
                    held += std::fabs(error) <= expanded[i] ? 1 : 0;
                }
            }
        }
    }
    // The lengths of a rig err together: of some 48 independent ones the mean square has a standard deviation of 0.2,
    // and the share within the intervals one of 3 %.
    constexpr double kCount = kRigs * kLengths;
    std::printf("mean square by calibration %.2f, by both %.2f; %.1f %% within U95\n", byCalibration / kCount,
                byBoth / kCount, 100.0 * held / kCount);
    EXPECT_NEAR(byCalibration / kCount, 1.0, 0.6);
    EXPECT_NEAR(byBoth / kCount, 1.0, 0.5);
    EXPECT_GE(held, 0.87 * kCount);
}

INSTANTIATE_TEST_SUITE_P(Projections, AdjustedRigs,
                         testing::Values(render::Projection::perspective, render::Projection::parallel));

}  // namespace
}  // namespace zelmtest
