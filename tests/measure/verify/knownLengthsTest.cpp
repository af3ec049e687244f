// Lengths of a plate by the interface, against plates of known places in rigs of exact parameters.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <string>
#include <utility>

#include "isClose.h"
#include "measureRigs.h"
#include "patternFixtures.h"

namespace zelmtest {
namespace {

// The dots of one view as readers give them: centres of ellipses.
struct SeenPlate {
    std::vector<std::int32_t> grid;
    std::vector<double> left;
    std::vector<double> right;

    [[nodiscard]] std::int64_t count() const { return static_cast<std::int64_t>(grid.size() / 2); }
};

// A plate that stands in the frame of view 0 by `pose`.
SeenPlate seen(const RigTruth& rig, const render::Plate& plate, const render::Pose& pose) {
    SeenPlate s;
    const auto leftDots = render::dotTruths(plate, rig.left, render::compose(rig.leftPose, pose));
    const auto rightDots = render::dotTruths(plate, rig.right, render::compose(rig.rightPose, pose));
    for (std::size_t i = 0; i < leftDots.size(); ++i) {
        const auto& l = leftDots[i].ellipse.centre;
        const auto& r = rightDots[i].ellipse.centre;
        s.grid.insert(s.grid.end(), {leftDots[i].dot.index.x, leftDots[i].dot.index.y});
        s.left.insert(s.left.end(), {l.x, l.y});
        s.right.insert(s.right.end(), {r.x, r.y});
    }
    return s;
}

struct PlateResult {
    std::int32_t status = 0;
    std::vector<std::int32_t> statuses;
    std::vector<double> positions;
    ZelmMeasurePlateFit fit = emptyRecord<ZelmMeasurePlateFit>();
};

PlateResult placed(const OpenedRig& rig, const Zelm2ViewPatternDesc& pattern, const SeenPlate& plate) {
    PlateResult result;
    const auto n = static_cast<std::size_t>(plate.count());
    result.statuses.assign(n, -7);
    result.positions.assign(3 * n, -7.0);
    auto points = emptyRecord<ZelmMeasurePlatePoints>();
    points.statuses = result.statuses.data();
    points.positions = result.positions.data();
    result.status = zelmMeasurePlatePoints(rig.get(), &pattern, plate.count(), plate.grid.data(), plate.left.data(),
                                           plate.right.data(), &points, &result.fit);
    return result;
}

struct Chosen {
    std::vector<std::int64_t> ends;
    std::vector<double> nominal;
};

Chosen chosenLengths(const Zelm2ViewPatternDesc& pattern, const SeenPlate& plate) {
    std::int64_t count = 0;
    EXPECT_EQ(zelmMeasurePlateLengths(&pattern, plate.count(), plate.grid.data(), 0, nullptr, nullptr, &count),
              ZELM_OK);
    Chosen c;
    c.ends.resize(2 * static_cast<std::size_t>(count));
    c.nominal.resize(static_cast<std::size_t>(count));
    EXPECT_EQ(zelmMeasurePlateLengths(&pattern, plate.count(), plate.grid.data(), count, c.ends.data(),
                                      c.nominal.data(), &count),
              ZELM_OK);
    return c;
}

ZelmMeasureLengthSummary summaryOf(const OpenedRig& rig, const PlateResult& plate, const Chosen& lengths) {
    auto summary = emptyRecord<ZelmMeasureLengthSummary>();
    EXPECT_EQ(zelmMeasureLengthErrors(rig.get(), static_cast<std::int64_t>(plate.positions.size() / 3),
                                      plate.positions.data(), static_cast<std::int64_t>(lengths.nominal.size()),
                                      lengths.ends.data(), lengths.nominal.data(), nullptr, &summary),
              ZELM_OK)
        << rig.error();
    return summary;
}

// Tilted, so that the dots' ellipses are off by some hundredths of a pixel.
render::Pose tiltedPlate() {
    return poseOfVectors({0.4, -0.3, 0.2}, {5.0, -3.0, 4.0});
}

TEST(PlateLengths, EllipsesAreCorrected) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    const render::Plate plate;
    const Zelm2ViewPatternDesc pattern = describe(plate);
    const SeenPlate seenPlate = seen(truth, plate, tiltedPlate());
    const PlateResult result = placed(rig, pattern, seenPlate);
    ASSERT_EQ(result.status, ZELM_OK) << rig.error();
    const Chosen lengths = chosenLengths(pattern, seenPlate);
    const ZelmMeasureLengthSummary summary = summaryOf(rig, result, lengths);
    EXPECT_GT(result.fit.maxOffset, 0.03);
    // The outline's centre is predicted to some 1e-5 of a pixel, which is 0.3 mm; depth is three times less sure.
    EXPECT_LT(std::fabs(summary.all.worst), 3e-5);
    EXPECT_LT(result.fit.flatnessMax, 3e-5);
    EXPECT_LT(result.fit.rms, 2e-5);
    EXPECT_LT(std::fabs(result.fit.scale), 1e-6);
    const render::Pose pose = tiltedPlate();
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_NEAR(result.fit.R[i], pose.R[i], 1e-6);
    }
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(result.fit.t[i], pose.t[i], 1e-4);
    }

    // Without a diameter nothing is corrected.
    Zelm2ViewPatternDesc points = pattern;
    points.d2 = points.d3 = 0.0;
    const PlateResult uncorrected = placed(rig, points, seenPlate);
    EXPECT_GT(std::fabs(summaryOf(rig, uncorrected, lengths).all.worst), 1e-3);
    EXPECT_EQ(uncorrected.fit.maxOffset, 0.0);
}

TEST(PlateLengths, AParallelCameraOnTheLeftMeasuresToo) {
    const RigTruth truth = trueRig(1280, 960, render::Projection::parallel);
    const OpenedRig rig(truth.block());
    const render::Plate plate;
    const SeenPlate seenPlate = seen(truth, plate, tiltedPlate());
    const PlateResult result = placed(rig, describe(plate), seenPlate);
    ASSERT_EQ(result.status, ZELM_OK) << rig.error();
    EXPECT_LT(std::fabs(summaryOf(rig, result, chosenLengths(describe(plate), seenPlate)).all.worst), 3e-5);
}

TEST(PlateLengths, AWrongPitchIsAPureScale) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    const render::Plate plate;
    const SeenPlate seenPlate = seen(truth, plate, tiltedPlate());
    Zelm2ViewPatternDesc pattern = describe(plate);
    pattern.d4 *= 1.0 / 1.0005;
    pattern.d5 *= 1.0 / 1.0005;
    pattern.d6 *= 1.0 / 1.0005;
    pattern.d7 *= 1.0 / 1.0005;
    const PlateResult result = placed(rig, pattern, seenPlate);
    const ZelmMeasureLengthSummary s = summaryOf(rig, result, chosenLengths(pattern, seenPlate));
    EXPECT_NEAR(s.scale, 5e-4, 1e-6);
    EXPECT_NEAR(result.fit.scale, 5e-4, 1e-6);
    EXPECT_LT(s.rmsWithoutScale, 3e-5);
    EXPECT_GT(s.all.rms, 0.02);
    EXPECT_LT(result.fit.flatnessMax, 3e-5);
}

TEST(PlateLengths, ABentPlateIsNotFlat) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    const Zelm2ViewPatternDesc pattern = plainPattern();
    SeenPlate bent;
    constexpr double kBow = 0.1;  // at the corners, plate units
    for (int y = -5; y <= 5; ++y) {
        for (int x = -6; x <= 6; ++x) {
            const Point3d X{10.0 * x, 10.0 * y, kBow * (x * x / 36.0 + y * y / 25.0) / 2.0};
            const Point2d l = truth.raw('L', X);
            const Point2d r = truth.raw('R', X);
            bent.grid.insert(bent.grid.end(), {x, y});
            bent.left.insert(bent.left.end(), {l.x, l.y});
            bent.right.insert(bent.right.end(), {r.x, r.y});
        }
    }
    Zelm2ViewPatternDesc points = pattern;
    points.d2 = points.d3 = 0.0;
    const PlateResult result = placed(rig, points, bent);
    // z ranges from 0 in the middle to 0.1 in the corners; its mean is 0.04, so that the corners are 0.06 above it.
    EXPECT_NEAR(result.fit.flatnessMax, 0.0611, 0.001);
}

TEST(PlateLengths, DirectionsAndSizesAreSpread) {
    const Zelm2ViewPatternDesc pattern = plainPattern();
    const SeenPlate plate = seen(trueRig(), render::Plate{}, tiltedPlate());
    const Chosen c = chosenLengths(pattern, plate);
    std::set<std::pair<std::int64_t, std::int64_t>> different;
    int rows = 0;
    int columns = 0;
    int diagonals = 0;
    for (std::size_t i = 0; i < c.nominal.size(); ++i) {
        const auto from = static_cast<std::size_t>(c.ends[2 * i]);
        const auto to = static_cast<std::size_t>(c.ends[2 * i + 1]);
        const int dx = plate.grid[2 * to] - plate.grid[2 * from];
        const int dy = plate.grid[2 * to + 1] - plate.grid[2 * from + 1];
        EXPECT_NEAR(c.nominal[i], 10.0 * std::hypot(dx, dy), 1e-12);
        different.insert(std::minmax(c.ends[2 * i], c.ends[2 * i + 1]));
        (dy == 0 ? rows : dx == 0 ? columns : diagonals) += 1;
    }
    EXPECT_EQ(different.size(), c.nominal.size());
    EXPECT_EQ(rows, 15);
    EXPECT_EQ(columns, 15);
    EXPECT_GE(diagonals, 30);
    EXPECT_NEAR(*std::max_element(c.nominal.begin(), c.nominal.end()), 10.0 * std::hypot(12.0, 10.0), 1e-12);
    EXPECT_LE(*std::min_element(c.nominal.begin(), c.nominal.end()), 20.0);
}

TEST(PlateLengths, FewDotsGiveFewLengths) {
    const Zelm2ViewPatternDesc pattern = plainPattern();
    std::int64_t count = -7;
    EXPECT_EQ(zelmMeasurePlateLengths(&pattern, 0, nullptr, 0, nullptr, nullptr, &count), ZELM_OK);
    EXPECT_EQ(count, 0);
    const std::int32_t one[] = {0, 0};
    EXPECT_EQ(zelmMeasurePlateLengths(&pattern, 1, one, 0, nullptr, nullptr, &count), ZELM_OK);
    EXPECT_EQ(count, 0);
    const std::int32_t two[] = {0, 0, std::numeric_limits<std::int32_t>::max(),
                                std::numeric_limits<std::int32_t>::min()};
    double nominal = 0.0;
    EXPECT_EQ(zelmMeasurePlateLengths(&pattern, 2, two, 1, nullptr, &nominal, &count), ZELM_OK);
    EXPECT_EQ(count, 1);
    EXPECT_NEAR(nominal, 10.0 * std::hypot(2147483647.0, 2147483648.0), 1.0);
}

TEST(PlateLengths, DotsWithoutPlaceInSpaceAreRefused) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    const render::Plate plate;
    SeenPlate row = seen(truth, plate, tiltedPlate());
    const auto n = row.grid.size();
    row.grid.resize(2 * 13);  // the first row alone
    EXPECT_EQ(placed(rig, describe(plate), row).status, ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(rig.error().find("in a row"), std::string::npos) << rig.error();
    row.grid.resize(2 * 3);
    EXPECT_EQ(placed(rig, describe(plate), row).status, ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(rig.error().find("only 3 of 3 dots"), std::string::npos) << rig.error();
    row.grid.resize(n);
    SeenPlate none = seen(truth, plate, tiltedPlate());
    std::fill(none.left.begin(), none.left.end(), std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(placed(rig, describe(plate), none).status, ZELM_MEASURE_ERR_DATA);
    // One dot that is none is left out.
    SeenPlate some = seen(truth, plate, tiltedPlate());
    some.right[7] = std::numeric_limits<double>::quiet_NaN();
    const PlateResult result = placed(rig, describe(plate), some);
    EXPECT_EQ(result.status, ZELM_OK);
    EXPECT_NE(result.statuses[3], ZELM_MEASURE_POINT_OK);
    EXPECT_EQ(result.positions[9], -7.0);
    EXPECT_EQ(result.fit.count, some.count() - 1);
    EXPECT_LT(result.fit.rms, 2e-5);
}

TEST(KnownLengths, ErrorsByRegionAndDepth) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    // Four lengths: in the left, the right, nearer and farther; world z points away from the cameras.
    const double positions[] = {-60.0, 0.0, 0.0, -50.0, 0.0, 0.0, 50.0, 0.0, 0.0,  60.0, 0.0,   0.0,
                                0.0,   0.0, -60, 0.0,   10., -60, 0.0,  0.0, 90.0, 0.0,  -10.0, 90.0};
    const std::int64_t ends[] = {0, 1, 2, 3, 4, 5, 6, 7};
    const double nominal[] = {9.9, 10.0, 10.0, 10.2};
    double measured[4];
    double middles[12];
    double depths[4];
    std::int32_t regions[4];
    std::int32_t slabs[4];
    auto lengths = emptyRecord<ZelmMeasureLengthErrors>();
    lengths.measured = measured;
    lengths.middles = middles;
    lengths.depths = depths;
    lengths.regions = regions;
    lengths.slabs = slabs;
    auto s = emptyRecord<ZelmMeasureLengthSummary>();
    ASSERT_EQ(zelmMeasureLengthErrors(rig.get(), 8, positions, 4, ends, nominal, &lengths, &s), ZELM_OK);
    constexpr double kRounding = 1e-12;
    for (const double m : measured) {
        EXPECT_NEAR(m, 10.0, kRounding);
    }
    EXPECT_EQ(regions[0] % 3, 0);
    EXPECT_EQ(regions[1] % 3, 1);
    EXPECT_EQ(slabs[2], 0);
    EXPECT_EQ(slabs[3], 2);
    for (std::size_t i = 0; i < 4; ++i) {
        const Point3d middle{middles[3 * i], middles[3 * i + 1], middles[3 * i + 2]};
        EXPECT_NEAR(depths[i], truth.depth('L', middle), 1e-9);
        const Point2d pixel = truth.raw('L', middle);
        EXPECT_EQ(regions[i], 3 * static_cast<int>(3.0 * pixel.y / 960.0) + static_cast<int>(3.0 * pixel.x / 1280.0));
    }
    EXPECT_EQ(s.all.count, 4);
    EXPECT_NEAR(s.all.mean, -0.025, kRounding);
    EXPECT_NEAR(s.all.rms, std::sqrt((0.01 + 0.04) / 4.0), kRounding);
    EXPECT_NEAR(s.all.worst, -0.2, kRounding);
    EXPECT_EQ(s.worst, 3);
    EXPECT_NEAR(s.slabs[2].worst, -0.2, kRounding);
    EXPECT_EQ(s.minNominal, 9.9);
    EXPECT_EQ(s.maxNominal, 10.2);
    std::int64_t inRegions = 0;
    for (const ZelmMeasureLengthFigures& f : s.regions) {
        inRegions += f.count;
    }
    EXPECT_EQ(inRegions, 4);
    // Least squares: sum nominal x error over sum nominal^2.
    EXPECT_NEAR(s.scale, (9.9 * 0.1 - 10.2 * 0.2) / (9.9 * 9.9 + 200.0 + 10.2 * 10.2), kRounding);
}

TEST(KnownLengths, LengthsMeasuredAsNothingStillGiveNumbers) {
    const OpenedRig rig(trueRig().block());
    const double positions[] = {1.0, 2.0, 3.0};
    const std::int64_t ends[] = {0, 0, 0, 0};
    const double nominal[] = {10.0, 20.0};
    auto s = emptyRecord<ZelmMeasureLengthSummary>();
    ASSERT_EQ(zelmMeasureLengthErrors(rig.get(), 1, positions, 2, ends, nominal, nullptr, &s), ZELM_OK);
    EXPECT_EQ(s.scale, -1.0);
    EXPECT_EQ(s.rmsWithoutScale, s.all.rms);
    // One length tells no deviation of the scale.
    ASSERT_EQ(zelmMeasureLengthErrors(rig.get(), 1, positions, 1, ends, nominal, nullptr, &s), ZELM_OK);
    EXPECT_EQ(s.scaleDeviation, 0.0);
}

}  // namespace
}  // namespace zelmtest
