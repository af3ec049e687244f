// The dots that a rig was calibrated from: their places, how far they are from their projections, and from each other's
// epipolar lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "dottedPair.h"
#include "measureRigs.h"
#include "patternReading.h"

namespace zelmtest {
namespace {

constexpr std::int32_t kViews = 6;

struct Dots {
    std::vector<std::int32_t> grid;
    std::vector<double> plane;
    std::vector<double> pixels;
    std::vector<double> errors;
    std::int64_t placed = -7;
    std::int64_t found = -7;
};

Dots dotsOf(const OpenedRig& rig, const Zelm2ViewPatternDesc& pattern, char side, std::int32_t view) {
    constexpr std::size_t kRoom = 200;
    Dots d{std::vector<std::int32_t>(2 * kRoom), std::vector<double>(2 * kRoom), std::vector<double>(2 * kRoom),
           std::vector<double>(2 * kRoom)};
    auto dots = emptyRecord<ZelmMeasureDots>();
    dots.capacity = kRoom;
    dots.grid = d.grid.data();
    dots.plane = d.plane.data();
    dots.pixels = d.pixels.data();
    dots.errors = d.errors.data();
    EXPECT_EQ(zelmMeasureRigDots(rig.get(), &pattern, side, view, &dots, &d.placed, &d.found), ZELM_OK) << rig.error();
    return d;
}

TEST(MeasureRigDots, EveryDotHasItsPlaceAndItsErrorIsMeasuredLessProjected) {
    for (const double noise : {0.0, 0.3}) {
        SCOPED_TRACE(noise);
        const DottedPair pair(kViews, {}, noise);
        const OpenedRig rig(pair.handle.get());
        const Zelm2ViewPatternDesc pattern = describe(pair.plate);
        const auto truths = render::plateDots(pair.plate);
        for (const char side : {'L', 'R'}) {
            ZelmMeasureCamera camera = emptyRecord<ZelmMeasureCamera>();
            ASSERT_EQ(zelmMeasureRigCamera(rig.get(), side, &camera), ZELM_OK);
            for (std::int32_t view = 0; view < kViews; ++view) {
                ZelmCameraExtrinsics pose{};
                ASSERT_EQ(zelmMeasureRigPose(rig.get(), side, view, &pose), ZELM_OK);
                std::vector<Point2d> taken(truths.size());
                ASSERT_EQ(zelm2ViewGetPattern(pair.handle.get(), side, view, taken.data()), ZELM_OK);
                const Dots d = dotsOf(rig, pattern, side, view);
                ASSERT_EQ(d.placed, 143);
                EXPECT_EQ(d.found, 143);
                double squares = 0.0;
                for (std::size_t i = 0; i < truths.size(); ++i) {
                    EXPECT_EQ(d.grid[2 * i], truths[i].index.x);
                    EXPECT_EQ(d.grid[2 * i + 1], truths[i].index.y);
                    EXPECT_EQ(d.plane[2 * i], truths[i].centre.x);
                    EXPECT_EQ(d.plane[2 * i + 1], truths[i].centre.y);
                    EXPECT_EQ(d.pixels[2 * i], taken[i].x);
                    EXPECT_EQ(d.pixels[2 * i + 1], taken[i].y);
                    const Point3d X{truths[i].centre.x, truths[i].centre.y, 0.0};
                    Point2d projected{};
                    zelmCalibChange3Dto2D(&X, &camera.intrinsics, &pose, &projected, camera.model);
                    EXPECT_EQ(d.errors[2 * i], taken[i].x - projected.x);
                    EXPECT_EQ(d.errors[2 * i + 1], taken[i].y - projected.y);
                    squares += d.errors[2 * i] * d.errors[2 * i] + d.errors[2 * i + 1] * d.errors[2 * i + 1];
                }
                const double rms = std::sqrt(squares / (2.0 * static_cast<double>(truths.size())));
                // Of exact dots the calibration ends its steps that near; noise is seen as it was made, 286 numbers
                // tell it to a twentieth.
                EXPECT_LE(rms, 1.15 * noise + 1e-4);
                EXPECT_GE(rms, 0.85 * noise);
            }
        }
    }
}

TEST(MeasureRigDots, DotsWithoutAPlaceAreFoundButNotPlaced) {
    const DottedPair pair(kViews, {}, 0.0);
    // A fifth of a pitch beside its place after calibration: damaged data.
    Zelm2ViewPtnEntry& entry = zelm::entriesOf(zelm::openedWork(*pair.handle.get()), zelm::Camera::left)[2];
    const Point2d next = entry.image[1];
    entry.image[0].x += 0.2 * (next.x - entry.image[0].x);
    entry.image[0].y += 0.2 * (next.y - entry.image[0].y);
    entry.image[5] = {1e30, 1e30};
    entry.image[6] = {std::numeric_limits<double>::quiet_NaN(), 100.0};
    const OpenedRig rig(pair.handle.get());
    const Dots d = dotsOf(rig, describe(pair.plate), 'L', 2);
    EXPECT_EQ(d.found, 143);
    EXPECT_EQ(d.placed, 140);
    EXPECT_EQ(d.grid[0], -5);  // the second of the first row comes first
}

TEST(MeasureRigDots, CountsAloneAndCapacities) {
    const DottedPair pair(kViews, {}, 0.0);
    const OpenedRig rig(pair.handle.get());
    const Zelm2ViewPatternDesc pattern = describe(pair.plate);
    std::int64_t placed = -7;
    ASSERT_EQ(zelmMeasureRigDots(rig.get(), &pattern, 'R', 1, nullptr, &placed, nullptr), ZELM_OK);
    EXPECT_EQ(placed, 143);
    std::vector<double> errors(286, -7.0);
    auto dots = emptyRecord<ZelmMeasureDots>();
    dots.capacity = 10;
    dots.errors = errors.data();
    ASSERT_EQ(zelmMeasureRigDots(rig.get(), &pattern, 'R', 1, &dots, &placed, nullptr), ZELM_OK);
    EXPECT_EQ(placed, 143);
    EXPECT_NE(errors[19], -7.0);
    EXPECT_EQ(errors[20], -7.0);
}

TEST(MeasureRigDots, ARigOfABlockHasNoDots) {
    const OpenedRig rig(trueRig().block());
    const Zelm2ViewPatternDesc pattern = plainPattern();
    std::int64_t placed = -7;
    std::int64_t found = -7;
    std::int64_t count = -7;
    ASSERT_EQ(zelmMeasureRigDots(rig.get(), &pattern, 'L', 0, nullptr, &placed, &found), ZELM_OK);
    EXPECT_EQ(placed, 0);
    EXPECT_EQ(found, 0);
    ASSERT_EQ(zelmMeasureRigEpipolar(rig.get(), &pattern, 0, 0, nullptr, &count), ZELM_OK);
    EXPECT_EQ(count, 0);
}

std::vector<double> epipolarOf(const OpenedRig& rig, const Zelm2ViewPatternDesc& pattern, std::int32_t view) {
    std::vector<double> distances(400, -7.0);
    std::int64_t count = -7;
    EXPECT_EQ(zelmMeasureRigEpipolar(rig.get(), &pattern, view, 400, distances.data(), &count), ZELM_OK);
    EXPECT_EQ(distances[static_cast<std::size_t>(count)], -7.0);
    distances.resize(static_cast<std::size_t>(count));
    return distances;
}

TEST(MeasureRigEpipolar, ExactDotsLieOnEachOthersLines) {
    const DottedPair pair(kViews, {}, 0.0);
    const OpenedRig rig(pair.handle.get());
    for (std::int32_t view = 0; view < kViews; ++view) {
        const std::vector<double> distances = epipolarOf(rig, describe(pair.plate), view);
        ASSERT_EQ(distances.size(), 286U);
        // The calibration fits exact dots to 1e-4 pixels.
        EXPECT_LE(*std::max_element(distances.begin(), distances.end()), 1e-3);
    }
}

TEST(MeasureRigEpipolar, DistancesAreThoseOfTheFundamentalMatrix) {
    const DottedPair pair(kViews, {}, 0.3);
    const OpenedRig rig(pair.handle.get());
    const Zelm2ViewPatternDesc pattern = describe(pair.plate);
    double F[9];
    ASSERT_EQ(zelmMeasureRigFundamental(rig.get(), F), ZELM_OK);
    const double Ft[9] = {F[0], F[3], F[6], F[1], F[4], F[7], F[2], F[5], F[8]};
    const std::vector<double> distances = epipolarOf(rig, pattern, 4);
    std::vector<Point2d> left(143);
    std::vector<Point2d> right(143);
    ASSERT_EQ(zelm2ViewGetPattern(pair.handle.get(), 'L', 4, left.data()), ZELM_OK);
    ASSERT_EQ(zelm2ViewGetPattern(pair.handle.get(), 'R', 4, right.data()), ZELM_OK);
    ASSERT_EQ(distances.size(), 286U);
    for (std::size_t i = 0; i < left.size(); ++i) {
        Point2d l{};
        Point2d r{};
        ASSERT_EQ(zelm2ViewUnDistortPoint(pair.handle.get(), 'L', &left[i], &l), ZELM_OK);
        ASSERT_EQ(zelm2ViewUnDistortPoint(pair.handle.get(), 'R', &right[i], &r), ZELM_OK);
        EXPECT_NEAR(distances[2 * i], epipolarDistance(Ft, r, l), 1e-9);  // in the left image first
        EXPECT_NEAR(distances[2 * i + 1], epipolarDistance(F, l, r), 1e-9);
    }
    // A dot that one image does not show has no pair.
    Zelm2ViewPtnEntry& entry = zelm::entriesOf(zelm::openedWork(*pair.handle.get()), zelm::Camera::right)[4];
    entry.count -= 3;
    const OpenedRig fewer(pair.handle.get());
    EXPECT_EQ(epipolarOf(fewer, pattern, 4).size(), 280U);
    entry.count += 3;
    std::vector<double> some(286, -7.0);
    std::int64_t count = 0;
    ASSERT_EQ(zelmMeasureRigEpipolar(rig.get(), &pattern, 4, 5, some.data(), &count), ZELM_OK);
    EXPECT_EQ(count, 286);
    EXPECT_TRUE(std::equal(some.begin(), some.begin() + 5, distances.begin()));
    EXPECT_EQ(some[5], -7.0);
}

}  // namespace
}  // namespace zelmtest
