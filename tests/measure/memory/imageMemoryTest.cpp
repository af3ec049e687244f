// Every allocation of a call failing in turn: images: dots, targets, matches.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "dottedPair.h"
#include "driftTrials.h"
#include "matchedPoints.h"
#include "measureFaults.h"
#include "patternReading.h"
#include "planFixtures.h"

namespace zelmtest {
namespace {

ZelmMeasureImage imageOf(const render::GrayImage& image) {
    return {image.pixels.data(), image.width, image.height, image.width};
}

TEST(MeasureMemory, CentresOfDots) {
    const render::RenderedView view = smallView();
    render::RenderedView hidden = view;
    const render::DotTruth& dot = view.dots[17];
    for (int y = 0; y < 480; ++y) {  // the right part of the dot, from 0.7 of the radius on
        std::fill_n(hidden.image.pixels.begin() + 640 * y + static_cast<int>(dot.ellipse.centre.x + 0.7 * dot.radius),
                    640 - static_cast<int>(dot.ellipse.centre.x + 0.7 * dot.radius), std::uint8_t{190});
    }
    const double seed[] = {dot.ellipse.centre.x - 1.0, dot.ellipse.centre.y};
    for (const render::GrayImage& picture : {view.image, hidden.image}) {
        const ZelmMeasureImage image = imageOf(picture);
        const FaultCounts failures = expectEveryFailureIsTold(
            {.call =
                 [&](FaultOutputs& out) {
                     return ZELM_CASE(zelmMeasureDotCentres)(&image, 1, seed, 0, out.numbers, out.integers);
                 },
             .everyOf = 40,
             .growth = 0.2});
        EXPECT_GE(failures.own, 2);
        EXPECT_GE(failures.core, 2);
    }
}

TEST(MeasureMemory, DotsToRefine) {
    const render::RenderedView view = smallView();
    const render::DotTruth& dot = view.dots[17];
    const double shape[] = {dot.ellipse.centre.x + 0.5, dot.ellipse.centre.y, dot.radius, 0.0, 0.0, dot.radius};
    // Padded, so that a copy is made.
    const ZelmMeasureImage image{view.image.pixels.data(), 639, 480, 640};
    const FaultCounts failures = expectEveryFailureIsTold([&](FaultOutputs& out) {
        auto dots = emptyRecord<ZelmMeasureRefinedDots>();
        dots.statuses = out.integers;
        dots.flags = out.integers + 1;
        dots.centres = out.numbers;
        dots.covariances = out.numbers + 2;
        return ZELM_CASE(zelmMeasureRefineDots)(&image, 1, shape, nullptr, 0, &dots);
    });
    EXPECT_GE(failures.own, 3);  // the copy, the results, the samples
}

TEST(MeasureMemory, RoundTargets) {
    // A disc at the origin as both cameras of the rig see it.
    const RigTruth truth = trueRig(640, 480);
    const OpenedRig rig(truth.block());
    const render::Optics optics;
    const render::RenderedView left = render::renderView(smallPlate(), truth.left, truth.leftPose, optics);
    const render::RenderedView right = render::renderView(smallPlate(), truth.right, truth.rightPose, optics);
    const ZelmMeasureImage leftImage = imageOf(left.image);
    const ZelmMeasureImage rightImage = imageOf(right.image);
    const double leftSeed[] = {left.dots[18].centre.x, left.dots[18].centre.y};
    const double rightSeed[] = {right.dots[18].centre.x, right.dots[18].centre.y};
    const FaultCounts failures =
        expectEveryFailureIsTold({.call =
                                      [&](FaultOutputs& out) {
                                          auto targets = emptyRecord<ZelmMeasureTargets>();
                                          targets.statuses = out.integers;
                                          targets.centres = out.numbers;
                                          targets.normals = out.numbers + 3;
                                          targets.covariances = out.numbers + 6;
                                          return ZELM_CASE(zelmMeasureCircles)(rig.get(), &leftImage, &rightImage, 1,
                                                                               leftSeed, rightSeed, 0, &targets);
                                      },
                                  .everyOf = 60,
                                  .growth = 0.2});
    EXPECT_GE(failures.own, 50);  // bands, sectors and equations
    EXPECT_GE(failures.core, 4);
}

TEST(MeasureMemory, PlatesMeasuredAnew) {
    const RigTruth truth = trueRig(640, 480);
    const OpenedRig rig(truth.block());
    const render::Plate plate = smallPlate();
    const render::RenderedView left = render::renderView(plate, truth.left, truth.leftPose, {});
    const render::RenderedView right = render::renderView(plate, truth.right, truth.rightPose, {});
    const ZelmMeasureImage leftImage = imageOf(left.image);
    const ZelmMeasureImage rightImage = imageOf(right.image);
    Zelm2ViewPatternDesc pattern = describe(plate);
    pattern.d0 = 2.0 * pattern.d4;  // nine dots are enough
    pattern.d1 = 2.0 * pattern.d5;
    std::array<std::int32_t, 18> grid{};
    std::array<double, 18> leftPixels{};
    std::array<double, 18> rightPixels{};
    std::size_t at = 0;
    for (std::size_t i = 0; i < left.dots.size() && at < grid.size(); ++i) {
        const auto& index = left.dots[i].dot.index;
        if (std::abs(index.x) <= 1 && std::abs(index.y) <= 1) {
            const auto& l = left.dots[i].ellipse.centre;
            const auto& r = right.dots[i].ellipse.centre;
            grid[at] = index.x;
            grid[at + 1] = index.y;
            leftPixels[at] = l.x + 0.3;
            leftPixels[at + 1] = l.y;
            rightPixels[at] = r.x;
            rightPixels[at + 1] = r.y - 0.3;
            at += 2;
        }
    }
    ASSERT_EQ(at, grid.size());
    const FaultCounts failures = expectEveryFailureIsTold(
        {.call =
             [&](FaultOutputs& out) {
                 std::array<double, 18> l = leftPixels;
                 std::array<double, 18> r = rightPixels;
                 const std::int32_t status = ZELM_CASE(zelmMeasureRefinePlate)(
                     rig.get(), &pattern, &leftImage, &rightImage, 9, grid.data(), l.data(), r.data(), out.integers);
                 EXPECT_EQ(l == leftPixels && r == rightPixels, status != ZELM_OK);
                 return status;
             },
         .canDoWithout = true,
         .everyOf = 60,
         .growth = 0.2});
    EXPECT_GE(failures.own, 50);  // the dots of two images, each with its samples
    EXPECT_GE(failures.core, 2);
}

TEST(MeasureMemory, DotsAndTraitsOfPlates) {
    const render::RenderedView view = smallView();
    const Zelm2ViewPatternDesc pattern = describe(smallPlate());
    // Padded, so that a copy is made.
    const ZelmMeasureImage image{view.image.pixels.data(), 639, 480, 640};
    const FaultCounts dots = expectEveryFailureIsTold(
        {.call =
             [&](FaultOutputs& out) {
                 auto record = emptyRecord<ZelmMeasureDots>();
                 record.capacity = 35;
                 record.grid = out.integers;
                 record.pixels = out.numbers;
                 return ZELM_CASE(zelmMeasurePlateDots)(&image, &pattern, nullptr, &record, out.longs, out.longs + 1);
             },
         .everyOf = 40,
         .growth = 0.2});
    EXPECT_GE(dots.own, 35);
    EXPECT_GE(dots.core, 35);
    Zelm2ViewPatternDesc opposite = pattern;
    opposite.polarity = 1;
    const FaultCounts traits = expectEveryFailureIsTold(
        {.call = [&](FaultOutputs& out) { return ZELM_CASE(zelmMeasurePlateTraits)(&image, &opposite, &out.traits); },
         .everyOf = 40,
         .growth = 0.2});
    EXPECT_GE(traits.own, 3);
    EXPECT_GE(traits.core, 3);
}

TEST(MeasureMemory, Sharpness) {
    const render::RenderedView view = smallView();
    const ZelmMeasureImage image{view.image.pixels.data(), 639, 480, 640};
    std::vector<double> seeds;
    for (const render::DotTruth& dot : view.dots) {
        seeds.push_back(dot.ellipse.centre.x);
        seeds.push_back(dot.ellipse.centre.y);
    }
    const FaultCounts failures = expectEveryFailureIsTold([&](FaultOutputs& out) {
        auto sharpness = emptyRecord<ZelmMeasureSharpness>();
        const std::int32_t status = ZELM_CASE(zelmMeasureSharpness)(&image, 2, seeds.data(), 0, &sharpness);
        out.integers[0] = status >= 0 ? sharpness.dots : out.integers[0];
        return status;
    });
    EXPECT_GE(failures.own, 6);
}

TEST(MeasureMemory, NoiseAndOverlap) {
    const GrayPixels gray(640 * 480, 100);
    const ZelmMeasureImage image{gray.data(), 640, 480, 640};
    EXPECT_GE(expectEveryFailureIsTold([&](FaultOutputs& out) {
                  return ZELM_CASE(zelmMeasureNoise)(&image, out.numbers);
              }).own,
              1);
    const OpenedRig rig(trueRig(640, 480).block());
    const ZelmMeasureMatchOptions options = defaultsOf(rig);
    const double pixels[] = {320.0, 240.0};
    const FaultCounts failures = expectEveryFailureIsTold(
        [&](FaultOutputs& out) { return ZELM_CASE(zelmMeasureOverlap)(rig.get(), &options, 1, pixels, out.integers); });
    EXPECT_GE(failures.own, 2);
}

TEST(MeasureMemory, Matching) {
    const PlanePictures pictures(trueRig(240, 180), slantedPlane());
    const OpenedRig rig(pictures.rig.block());
    ZelmMeasureMatchOptions options = defaultsOf(rig);
    options.threads = 1;  // the calling one, whose allocations fail
    options.limits.leftMin = 420.0;
    options.limits.leftMax = 500.0;
    const ZelmMeasureImage left = pictures.image('L');
    const ZelmMeasureImage right = pictures.image('R');
    const double pixels[] = {120.0, 90.0, 2.0, 2.0};
    const FaultCall match = [&](FaultOutputs& out) {
        auto matches = emptyRecord<ZelmMeasureMatches>();
        matches.statuses = out.integers;
        matches.depths = out.numbers;
        return ZELM_CASE(zelmMeasureMatch)(rig.get(), &left, &right, &options, 2, pixels, &matches);
    };
    FaultOutputs first;
    ASSERT_EQ(match(first), ZELM_OK);
    ASSERT_EQ(first.integers[0], ZELM_MEASURE_MATCH_OK);
    const FaultCounts failures = expectEveryFailureIsTold(match, ZELM_OK, true);
    EXPECT_GE(failures.own, 10);
    EXPECT_GE(failures.core, 5);
}

TEST(MeasureMemory, MatchingWholeImages) {
    const PlanePictures pictures(trueRig(120, 90), slantedPlane());
    const OpenedRig rig(pictures.rig.block());
    ZelmMeasureMatchOptions options = defaultsOf(rig);
    expectEveryFailureIsTold([&](FaultOutputs&) {
        WatchedRecord<ZelmMeasureMatchOptions> defaults;
        const std::int32_t status = ZELM_CASE(zelmMeasureMatchDefaults)(rig.get(), &defaults.record);
        EXPECT_EQ(defaults.isUntouched(), status != ZELM_OK);
        return status;
    });
    options.threads = 1;  // the calling one, whose allocations fail
    options.limits.leftMin = 430.0;
    options.limits.leftMax = 480.0;
    const ZelmMeasureImage left = pictures.image('L');
    const ZelmMeasureImage right = pictures.image('R');
    std::vector<std::int32_t> statuses(120 * 90, -7);
    std::vector<double> depths(120 * 90, -7.0);
    const std::vector<std::int32_t> statusesBefore = statuses;
    const std::vector<double> depthsBefore = depths;
    const FaultCall match = [&](FaultOutputs& out) {
        auto matches = emptyRecord<ZelmMeasureMatches>();
        matches.statuses = statuses.data();
        matches.depths = depths.data();
        const std::int32_t status = ZELM_CASE(zelmMeasureMatchDense)(rig.get(), &left, &right, &options, &matches);
        if (status == ZELM_OK) {
            out.integers[0] = static_cast<std::int32_t>(std::count(statuses.begin(), statuses.end(), 0));
            EXPECT_GT(out.integers[0], 1000);
        } else {
            EXPECT_EQ(statuses, statusesBefore);
            EXPECT_EQ(depths, depthsBefore);
        }
        return status;
    };
    const FaultCounts failures = expectEveryFailureIsTold({.call = match,
                                                           .canDoWithout = true,
                                                           .after =
                                                               [&] {
                                                                   statuses = statusesBefore;
                                                                   depths = depthsBefore;
                                                               },
                                                           .everyOf = 12,
                                                           .growth = 1.0});
    EXPECT_GE(failures.own, 10);
    EXPECT_GE(failures.core, 5);
}

TEST(MeasureMemory, CausesOfUnreadImages) {
    const render::RenderedView view = smallView();
    const ZelmMeasureImage image{view.image.pixels.data(), 639, 480, 640};
    Zelm2ViewPatternDesc other = describe(smallPlate());
    other.polarity = 1;  // so that it is looked at both ways
    const FaultCounts failures =
        expectEveryFailureIsTold({.call =
                                      [&](FaultOutputs& out) {
                                          WatchedRecord<ZelmMeasureImageDiagnosis> diagnosis;
                                          auto spots = emptyRecord<ZelmMeasureSpots>();
                                          spots.capacity = 30;
                                          spots.centres = out.numbers;
                                          spots.verdicts = out.integers;
                                          const std::int32_t status = ZELM_CASE(zelmMeasureDiagnoseImage)(
                                              &image, &other, nullptr, &diagnosis.record, &spots);
                                          EXPECT_EQ(diagnosis.isUntouched(), status != ZELM_OK);
                                          return status;
                                      },
                                  .canDoWithout = true,
                                  .everyOf = 40,
                                  .growth = 0.5});
    EXPECT_GE(failures.own, 40);
    EXPECT_GE(failures.core, 5);
    expectNoAllocation([&](FaultOutputs&) {
        return std::string_view(ZELM_CASE(zelmMeasureImageCauseName)(ZELM_MEASURE_IMAGE_DARK)) == "too-dark"
                   ? ZELM_OK
                   : ZELM_MEASURE_ERR_DATA;
    });
}

TEST(MeasureMemory, SetsOfImages) {
    const DottedPair pair(3);
    const Zelm2ViewPatternDesc pattern = describe(pair.plate);
    const Zelm2ViewCameraDesc cameras = cameraPair(0, 0, pair.rig.left.width, pair.rig.left.height);
    std::vector<std::int64_t> counts[2];
    std::vector<double> plane[2];
    std::vector<double> pixels[2];
    for (const std::size_t side : {0U, 1U}) {
        for (std::int32_t view = 0; view < 3; ++view) {
            auto record = emptyRecord<ZelmMeasureDots>();
            std::vector<double> at(2 * 200);
            std::vector<double> seen(2 * 200);
            record.capacity = 200;
            record.plane = at.data();
            record.pixels = seen.data();
            std::int64_t count = 0;
            ASSERT_EQ(zelmMeasureReadDots(pair.handle.get(), side == 0 ? 'L' : 'R', view, &record, &count), ZELM_OK);
            counts[side].push_back(count);
            plane[side].insert(plane[side].end(), at.begin(), at.begin() + 2 * count);
            pixels[side].insert(pixels[side].end(), seen.begin(), seen.begin() + 2 * count);
        }
    }
    std::swap_ranges(plane[1].begin(), plane[1].begin() + 2 * counts[1][0], plane[1].begin() + 2 * counts[1][0]);
    std::swap_ranges(pixels[1].begin(), pixels[1].begin() + 2 * counts[1][0], pixels[1].begin() + 2 * counts[1][0]);
    const ZelmMeasureImageSet set{sizeof(set),      3,
                                  &pattern,         &cameras,
                                  counts[0].data(), plane[0].data(),
                                  pixels[0].data(), counts[1].data(),
                                  plane[1].data(),  pixels[1].data()};
    const FaultCounts failures =
        expectEveryFailureIsTold({.call =
                                      [&](FaultOutputs& out) {
                                          WatchedRecord<ZelmMeasurePairing> pairing;
                                          WatchedRecord<ZelmMeasureSetCause> cause;
                                          ZelmMeasurePairedView views[3]{};
                                          views[0].size = sizeof views[0];
                                          views[0].fate = -7;
                                          const std::int32_t status = ZELM_CASE(zelmMeasurePairImages)(
                                              &set, views, &cause.record, 1, &pairing.record);
                                          EXPECT_EQ(pairing.isUntouched(), status != ZELM_OK);
                                          EXPECT_TRUE(status == ZELM_OK || cause.isUntouched());
                                          EXPECT_EQ(views[0].fate == -7, status != ZELM_OK);
                                          out.integers[0] = status == ZELM_OK ? cause.record.kind : out.integers[0];
                                          return status;
                                      },
                                  .canDoWithout = true,
                                  .everyOf = 40,
                                  .growth = 2.0,
                                  .lost = kLostByCeres});
    EXPECT_GE(failures.own, 40);
    EXPECT_GE(failures.core, 5);
}

}  // namespace
}  // namespace zelmtest
