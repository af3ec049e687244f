// Surfaces fitted to rendered planes of known depth and slopes: bias, the deviation that is promised, and when nothing
// is given.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <optional>
#include <vector>

#include "surfaceFit.h"
#include "texturedPlane.h"

namespace zelmtest {
namespace {

using zelm::measure::CameraView;
using zelm::measure::DenseImage;
using zelm::measure::DepthLimits;
using zelm::measure::FittedSurface;
using zelm::measure::Surface;
using zelm::measure::SurfaceFitter;
using zelm::measure::Transfer;

constexpr int kHalf = 10;  // pixels

// What a fitter needs, over two pictures.
struct Bench {
    PlanePictures pictures;
    OpenedRig rig;
    DenseImage left;
    DenseImage right;
    CameraView leftView;
    CameraView rightView;
    Transfer transfer;

    explicit Bench(const PlanePictures& taken)
        : pictures(taken),
          rig(pictures.rig.block()),
          left(pictures.image('L')),
          right(pictures.image('R')),
          leftView(rig.get()->rig, 'L', left),
          rightView(rig.get()->rig, 'R', right),
          transfer(rig.get()->rig, 'L', DepthLimits{}) {}

    // The true plane about an undistorted pixel: rho is affine over the pixels, so three of them tell it.
    [[nodiscard]] Surface truthAt(Point2d p) const {
        const auto rhoAt = [&](Point2d ideal) {
            RigTruth plain = pictures.rig;
            plain.left.k1 = plain.left.k2 = 0.0;
            const double depth = plain.depth('L', worldPointAt(plain, pictures.plane, ideal));
            return transfer.isParallel() ? depth : 1.0 / depth;
        };
        const double rho = rhoAt(p);
        constexpr double kStep = 16.0;
        return {p, rho, (rhoAt({p.x + kStep, p.y}) - rho) / kStep, (rhoAt({p.x, p.y + kStep}) - rho) / kStep};
    }
};

// Starts a fit half a pixel off along the line, with slopes a tenth off.
Surface disturbed(const Bench& bench, const Surface& truth, double pixels) {
    const Point2d motion = bench.transfer.motionOf(truth.at, truth.rho);
    const double perPixel = 1.0 / std::hypot(motion.x, motion.y);
    Surface start = truth;
    start.rho += pixels * perPixel;
    start.slopeX += 0.1 * perPixel;
    start.slopeY -= 0.1 * perPixel;
    return start;
}

std::vector<Point2d> gridPixels(int step) {
    std::vector<Point2d> pixels;
    for (int y = 30; y <= 150; y += step) {
        for (int x = 30; x <= 210; x += step) {
            pixels.push_back({x + 0.3, y - 0.4});
        }
    }
    return pixels;
}

TEST(MeasureSurfaceFit, PlanesAreFoundFromStartsBesideThem) {
    for (const auto projection : {render::Projection::perspective, render::Projection::parallel}) {
        SCOPED_TRACE(static_cast<int>(projection));
        const Bench bench(PlanePictures(trueRig(240, 180, projection), slantedPlane()));
        SurfaceFitter fit(bench.leftView, bench.rightView, bench.transfer, kHalf, 0.3);
        double sum = 0.0;
        int count = 0;
        for (const Point2d& p : gridPixels(15)) {
            const Surface truth = bench.truthAt(p);
            const auto fitted = fit(disturbed(bench, truth, 0.7));
            if (!fitted) {
                continue;  // the right window leaves its picture
            }
            const double error = (fitted->surface.rho - truth.rho) * fitted->pixelsPerRho;
            // Rounded gray values and interpolation of waves of 7 pixels and more.
            EXPECT_LE(std::fabs(error), 0.05) << p.x << ' ' << p.y;
            // As much at the ends of a window of 21 pixels.
            EXPECT_LE(std::fabs(fitted->surface.slopeX - truth.slopeX) * fitted->pixelsPerRho, 0.005);
            EXPECT_LE(std::fabs(fitted->surface.slopeY - truth.slopeY) * fitted->pixelsPerRho, 0.005);
            EXPECT_GE(fitted->score, 0.98);
            EXPECT_GE(fitted->share, 0.9);
            EXPECT_GE(fitted->centreShare, 0.85);
            sum += error;
            count += 1;
        }
        ASSERT_GE(count, 60);
        EXPECT_LE(std::fabs(sum / count), 0.01);  // errors of single points do not add up
    }
}

TEST(MeasureSurfaceFit, ErrorsAreAsLargeAsPromised) {
    for (const double noise : {2.0, 5.0}) {
        SCOPED_TRACE(noise);
        const Bench bench(PlanePictures(trueRig(240, 180), slantedPlane(), noise));
        SurfaceFitter fit(bench.leftView, bench.rightView, bench.transfer, kHalf, noise);
        double squares = 0.0;
        int count = 0;
        for (const Point2d& p : gridPixels(6)) {
            const Surface truth = bench.truthAt(p);
            if (const auto fitted = fit(disturbed(bench, truth, 0.3))) {
                const double error = (fitted->surface.rho - truth.rho) * fitted->pixelsPerRho / fitted->deviation;
                squares += error * error;
                count += 1;
            }
        }
        ASSERT_GE(count, 400);
        const double rms = std::sqrt(squares / count);
        std::printf("noise %.0f: errors are %.2f of the promised deviation\n", noise, rms);
        // The weights of a window reach over 12 pixels, so that its neighbours share its pixels: some 40 windows are
        // independent and tell the RMS to 11 %. Interpolation smooths the noise of the right window by a quarter, and
        // what is weighted less is not all that noisy: both make errors smaller than promised.
        EXPECT_GE(rms, 0.55);
        EXPECT_LE(rms, 1.25);
    }
}

TEST(MeasureSurfaceFit, GainAndOffsetOfTheGrayValuesDoNotMatter) {
    PlanePictures pictures(trueRig(240, 180), slantedPlane());
    for (std::uint8_t& value : pictures.right) {
        value = static_cast<std::uint8_t>(40.0 + 0.6 * value + 0.5);
    }
    const Bench bench(pictures);
    SurfaceFitter fit(bench.leftView, bench.rightView, bench.transfer, kHalf, 0.3);
    const Surface truth = bench.truthAt({120.0, 90.0});
    const auto fitted = fit(disturbed(bench, truth, 0.5));
    ASSERT_TRUE(fitted.has_value());
    EXPECT_LE(std::fabs(fitted->surface.rho - truth.rho) * fitted->pixelsPerRho, 0.03);
    EXPECT_GE(fitted->score, 0.98);
}

TEST(MeasureSurfaceFit, WithoutAWholeWindowOrTextureThereIsNone) {
    const Bench bench(PlanePictures(trueRig(240, 180), slantedPlane()));
    SurfaceFitter fit(bench.leftView, bench.rightView, bench.transfer, kHalf, 0.3);
    // A window of 10 pixels, with a border of one, must be seen.
    EXPECT_FALSE(fit(bench.truthAt({9.0, 90.0})).has_value());
    EXPECT_FALSE(fit(bench.truthAt({120.0, 172.0})).has_value());
    // In the right picture as well.
    Surface far = bench.truthAt({120.0, 90.0});
    far.rho *= 1.3;
    EXPECT_FALSE(fit(far).has_value());
    PlanePictures flat = bench.pictures;
    std::fill(flat.right.begin(), flat.right.end(), std::uint8_t{128});
    std::fill(flat.left.begin(), flat.left.end(), std::uint8_t{128});
    const Bench blank(flat);
    SurfaceFitter blankFit(blank.leftView, blank.rightView, blank.transfer, kHalf, 0.3);
    EXPECT_FALSE(blankFit(blank.truthAt({120.0, 90.0})).has_value());
}

TEST(MeasureSurfaceFit, FitsThatGoAstrayAreGivenUp) {
    // 12 pixels off: another part of the waves, at which the fit finds nothing, or a place far from the truth.
    const Bench bench(PlanePictures(trueRig(240, 180), slantedPlane()));
    SurfaceFitter fit(bench.leftView, bench.rightView, bench.transfer, kHalf, 0.3);
    int none = 0;
    int poor = 0;
    for (const Point2d& p : gridPixels(30)) {
        const auto fitted = fit(disturbed(bench, bench.truthAt(p), 12.0));
        none += fitted ? 0 : 1;
        poor += fitted && (fitted->score < 0.8 || fitted->share < 0.6) ? 1 : 0;
    }
    EXPECT_EQ(none + poor, static_cast<int>(gridPixels(30).size()));
    EXPECT_GT(none, 20);
}

}  // namespace
}  // namespace zelmtest
