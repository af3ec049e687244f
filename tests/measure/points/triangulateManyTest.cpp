// Points of many pixel pairs against the points that were projected, and what becomes of pairs without a point.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "isClose.h"
#include "measureRigs.h"

namespace zelmtest {
namespace {

// Undistortion ends within 1e-9 pixels; a pixel is some 0.8 units of depth.
constexpr double kExact = 1e-8;
constexpr double kUntouched = -7.0;

// Arrays of a call, filled with numbers that no result has.
struct Outputs {
    std::vector<std::int32_t> statuses;
    std::vector<double> positions;
    std::vector<double> errors;
    std::vector<double> angles;

    explicit Outputs(std::size_t count)
        : statuses(count, -7),
          positions(3 * count, kUntouched),
          errors(2 * count, kUntouched),
          angles(count, kUntouched) {}
    ZelmMeasurePoints record() {
        auto points = emptyRecord<ZelmMeasurePoints>();
        points.statuses = statuses.data();
        points.positions = positions.data();
        points.errors = errors.data();
        points.angles = angles.data();
        return points;
    }
    bool operator==(const Outputs&) const = default;
};

struct PixelPairs {
    std::vector<double> left;
    std::vector<double> right;

    void add(Point2d l, Point2d r) {
        left.insert(left.end(), {l.x, l.y});
        right.insert(right.end(), {r.x, r.y});
    }
    [[nodiscard]] std::int64_t count() const { return static_cast<std::int64_t>(left.size() / 2); }
};

std::int32_t triangulate(const OpenedRig& rig, const PixelPairs& pairs, Outputs& out) {
    const ZelmMeasurePoints points = out.record();
    return zelmMeasureTriangulate(rig.get(), pairs.count(), pairs.left.data(), pairs.right.data(), &points);
}

Outputs triangulated(const OpenedRig& rig, const PixelPairs& pairs) {
    Outputs out(static_cast<std::size_t>(pairs.count()));
    EXPECT_EQ(triangulate(rig, pairs, out), ZELM_OK) << rig.error();
    return out;
}

// The direction from a camera to a point, in the world.
std::array<double, 3> rayTo(const RigTruth& truth, char side, const Point3d& X) {
    const render::Pose& pose = truth.pose(side);
    if (truth.camera(side).projection == render::Projection::parallel) {
        return {pose.R[6], pose.R[7], pose.R[8]};
    }
    const Point3d centre = inWorld(pose, {0.0, 0.0, 0.0});
    return {X.x - centre.x, X.y - centre.y, X.z - centre.z};
}

double angleOf(const std::array<double, 3>& a, const std::array<double, 3>& b) {
    double ab = 0.0, aa = 0.0, bb = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        ab += a[i] * b[i];
        aa += a[i] * a[i];
        bb += b[i] * b[i];
    }
    return std::acos(ab / std::sqrt(aa * bb));
}

TEST(MeasureTriangulate, ProjectedPointsComeBack) {
    for (const auto projection : {render::Projection::perspective, render::Projection::parallel}) {
        const RigTruth truth = trueRig(1280, 960, projection);
        const OpenedRig rig(truth.block());
        Random random(3);
        std::vector<Point3d> world;
        PixelPairs pairs;
        for (int i = 0; i < 300; ++i) {
            world.push_back(randomWorldPoint(random));
            pairs.add(truth.raw('L', world.back()), truth.raw('R', world.back()));
        }
        const Outputs out = triangulated(rig, pairs);
        for (std::size_t i = 0; i < world.size(); ++i) {
            EXPECT_EQ(out.statuses[i], ZELM_MEASURE_POINT_OK);
            EXPECT_NEAR(out.positions[3 * i], world[i].x, kExact);
            EXPECT_NEAR(out.positions[3 * i + 1], world[i].y, kExact);
            EXPECT_NEAR(out.positions[3 * i + 2], world[i].z, kExact);
            EXPECT_LE(out.errors[2 * i], kExact);
            EXPECT_LE(out.errors[2 * i + 1], kExact);
            EXPECT_NEAR(out.angles[i], angleOf(rayTo(truth, 'L', world[i]), rayTo(truth, 'R', world[i])), 1e-9);
        }
    }
}

TEST(MeasureTriangulate, ErrorsTellHowFarThePixelsAreOff) {
    // Across the epipolar lines both pixels move to meet, half of the distance each as far as the two scales are one;
    // here they differ by some 3 %.
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    const Point3d X{10.0, -5.0, 3.0};
    const Point2d l = truth.raw('L', X);
    const Point2d r = truth.raw('R', X);
    PixelPairs pairs;
    pairs.add({l.x, l.y + 2.0}, r);
    const Outputs out = triangulated(rig, pairs);
    EXPECT_EQ(out.statuses[0], ZELM_MEASURE_POINT_OK);
    EXPECT_NEAR(out.errors[0], 1.0, 0.05);
    EXPECT_NEAR(out.errors[1], 1.0, 0.05);
    const Point3d found{out.positions[0], out.positions[1], out.positions[2]};
    const Point2d onLeft = truth.raw('L', found);
    const Point2d onRight = truth.raw('R', found);
    EXPECT_NEAR(out.errors[0], std::hypot(l.x - onLeft.x, l.y + 2.0 - onLeft.y), kExact);
    EXPECT_NEAR(out.errors[1], std::hypot(r.x - onRight.x, r.y - onRight.y), kExact);
    EXPECT_GT(std::fabs(out.errors[0] - out.errors[1]), 0.005);  // told apart
}

TEST(MeasureTriangulate, RaysThatMissEachOtherAreToldWithNumbers) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    const Point3d X{10.0, -5.0, 3.0};
    const Point2d l = truth.raw('L', X);
    const Point2d r = truth.raw('R', X);
    PixelPairs pairs;
    pairs.add({l.x, l.y + 2.0}, r);  // both pixels are off by 1: together by the root of 2
    pairs.add({l.x, l.y + 37.0}, r);
    pairs.add(l, r);
    const Outputs unlimited = triangulated(rig, pairs);
    EXPECT_EQ(unlimited.statuses, std::vector<std::int32_t>(3, ZELM_MEASURE_POINT_OK));
    const auto statusesFor = [&](double maxError) {
        Outputs out(3);
        ZelmMeasurePoints points = out.record();
        points.maxError = maxError;
        EXPECT_EQ(zelmMeasureTriangulate(rig.get(), 3, pairs.left.data(), pairs.right.data(), &points), ZELM_OK);
        EXPECT_EQ(out.positions, unlimited.positions);
        EXPECT_EQ(out.errors, unlimited.errors);
        return out.statuses;
    };
    constexpr std::int32_t kOk = ZELM_MEASURE_POINT_OK;
    constexpr std::int32_t kMiss = ZELM_MEASURE_POINT_MISMATCH;
    EXPECT_EQ(statusesFor(1.3), (std::vector<std::int32_t>{kMiss, kMiss, kOk}));
    EXPECT_EQ(statusesFor(1.5), (std::vector<std::int32_t>{kOk, kMiss, kOk}));
    EXPECT_EQ(statusesFor(40.0), (std::vector<std::int32_t>{kOk, kOk, kOk}));
}

TEST(MeasureTriangulate, ErrorsOfNoiseAreOneErrorOfNoise) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    constexpr double kNoise = 0.2;
    Random random(5);
    PixelPairs pairs;
    for (int i = 0; i < 4000; ++i) {
        const Point3d X = randomWorldPoint(random);
        const Point2d l = truth.raw('L', X);
        const Point2d r = truth.raw('R', X);
        pairs.add({l.x + kNoise * random.normal(), l.y + kNoise * random.normal()},
                  {r.x + kNoise * random.normal(), r.y + kNoise * random.normal()});
    }
    Outputs out(4000);
    ZelmMeasurePoints points = out.record();
    points.maxError = 6.0 * kNoise;
    ASSERT_EQ(zelmMeasureTriangulate(rig.get(), 4000, pairs.left.data(), pairs.right.data(), &points), ZELM_OK);
    double squares = 0.0;
    for (std::size_t i = 0; i < 4000; ++i) {
        squares += out.errors[2 * i] * out.errors[2 * i] + out.errors[2 * i + 1] * out.errors[2 * i + 1];
    }
    // 4000 draws tell a deviation to 1.1 %; the lenses stretch pixels by up to 5 % more.
    EXPECT_NEAR(std::sqrt(squares / 4000.0), kNoise, 0.08 * kNoise);
    EXPECT_EQ(out.statuses, std::vector<std::int32_t>(4000, ZELM_MEASURE_POINT_OK));
}

TEST(MeasureTriangulate, PixelsOutsideTheImagesAreToldWhereThatIsAsked) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    PixelPairs pairs;
    for (const Point2d& p : {Point2d{-0.5, 959.5}, Point2d{1279.5, -0.5}, Point2d{-0.51, 480.0}, Point2d{640.0, -0.51},
                             Point2d{1279.51, 480.0}, Point2d{640.0, 959.51}, Point2d{NAN, 480.0}}) {
        pairs.add(p, {640.0, 480.0});
        pairs.add({640.0, 480.0}, p);
    }
    Outputs out(14);
    ZelmMeasurePoints points = out.record();
    points.outside = 1;
    ASSERT_EQ(zelmMeasureTriangulate(rig.get(), 14, pairs.left.data(), pairs.right.data(), &points), ZELM_OK);
    for (std::size_t i = 0; i < 14; ++i) {
        EXPECT_EQ(out.statuses[i] == ZELM_MEASURE_POINT_OUTSIDE, i >= 4) << i;
        EXPECT_EQ(out.positions[3 * i] == kUntouched, i >= 4) << i;
        EXPECT_EQ(out.errors[2 * i] == kUntouched, i >= 4) << i;
    }
    points.outside = 0;
    ASSERT_EQ(zelmMeasureTriangulate(rig.get(), 14, pairs.left.data(), pairs.right.data(), &points), ZELM_OK);
    EXPECT_EQ(std::count(out.statuses.begin(), out.statuses.end(), ZELM_MEASURE_POINT_OUTSIDE), 0);
}

TEST(MeasureTriangulate, RaysThatMeetBehindACameraAreToldWithNumbers) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    // The projections of a point 500 units behind the left camera, and of one between both planes.
    PixelPairs pairs;
    std::vector<Point3d> world;
    for (const std::array<double, 3>& c : {std::array{-60.0, 10.0, -500.0}, std::array{20.0, 10.0, -800.0}}) {
        world.push_back(inWorld(truth.leftPose, c));
        ASSERT_LT(truth.depth('L', world.back()), 0.0);
        ASSERT_LT(truth.depth('R', world.back()), 0.0);
        pairs.add(truth.raw('L', world.back()), truth.raw('R', world.back()));
    }
    const Outputs out = triangulated(rig, pairs);
    for (std::size_t i = 0; i < world.size(); ++i) {
        EXPECT_EQ(out.statuses[i], ZELM_MEASURE_POINT_BEHIND);
        EXPECT_NEAR(out.positions[3 * i], world[i].x, 1e-6);  // farther away: a pixel is some 10 units of depth
        EXPECT_NEAR(out.positions[3 * i + 1], world[i].y, 1e-6);
        EXPECT_NEAR(out.positions[3 * i + 2], world[i].z, 1e-6);
        EXPECT_NE(out.errors[2 * i], kUntouched);
        EXPECT_NE(out.angles[i], kUntouched);
    }
}

TEST(MeasureTriangulate, PairsWithoutAPointHaveAStatusAlone) {
    // A lens that Newton's method cannot undo in 20 rounds far out: it brings the pixel in by a third a round.
    RigTruth steep = trueRig();
    steep.left.k1 = 1e13;
    // Alike and side by side, no lens: pixels of one column see parallel rays, of one row or not.
    RigTruth alongside = trueRig();
    alongside.left.k1 = alongside.left.k2 = 0.0;
    alongside.right = alongside.left;
    alongside.leftPose = poseOfVectors({0.0, 0.0, 0.0}, {0.0, 0.0, 512.0});
    alongside.rightPose = poseOfVectors({0.0, 0.0, 0.0}, {-128.0, 0.0, 512.0});
    const Point2d centre{steep.left.cx, steep.left.cy};
    const struct {
        RigTruth truth;
        Point2d left;
        Point2d right;
        std::int32_t status;
    } cases[] = {{steep, {1270.0, 950.0}, centre, ZELM_MEASURE_POINT_DISTORTION},
                 {alongside, {300.0, 200.0}, {300.0, 200.0}, ZELM_MEASURE_POINT_PARALLEL},
                 {alongside, {300.0, 201.0}, {300.0, 200.0}, ZELM_MEASURE_POINT_PARALLEL},
                 {alongside, {301.25, 700.0}, {301.25, 702.5}, ZELM_MEASURE_POINT_PARALLEL}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.status);
        const OpenedRig rig(c.truth.block());
        PixelPairs pairs;
        pairs.add(c.left, c.right);
        const Outputs out = triangulated(rig, pairs);
        EXPECT_EQ(out.statuses[0], c.status);
        Outputs expected(1);
        expected.statuses[0] = c.status;
        EXPECT_EQ(out, expected) << out.positions[0] << ' ' << out.positions[1] << ' ' << out.positions[2];
    }
}

TEST(MeasureTriangulate, UnrelatedPixelsOfConvergingCamerasMeetSomewhere) {
    // However far they are from each other's epipolar lines: their rays are not parallel.
    const OpenedRig rig(trueRig().block());
    Random random(7);
    PixelPairs pairs;
    for (int i = 0; i < 5000; ++i) {
        pairs.add({random.uniform(0.0, 1279.0), random.uniform(0.0, 959.0)},
                  {random.uniform(0.0, 1279.0), random.uniform(0.0, 959.0)});
    }
    const Outputs out = triangulated(rig, pairs);
    EXPECT_EQ(std::count(out.statuses.begin(), out.statuses.end(), ZELM_MEASURE_POINT_PARALLEL), 0);
    EXPECT_EQ(std::count(out.statuses.begin(), out.statuses.end(), ZELM_MEASURE_POINT_DISTORTION), 0);
}

TEST(MeasureTriangulate, ArraysThatAreNotWantedMayBeMissing) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    PixelPairs pairs;
    Random random(4);
    for (int i = 0; i < 5; ++i) {
        const Point3d X = randomWorldPoint(random);
        pairs.add(truth.raw('L', X), truth.raw('R', X));
    }
    const Outputs all = triangulated(rig, pairs);
    for (int wanted = 0; wanted < 16; ++wanted) {
        SCOPED_TRACE(wanted);
        Outputs out(5);
        ZelmMeasurePoints points = out.record();
        Outputs expected(5);
        points.statuses = (wanted & 1) != 0 ? points.statuses : nullptr;
        points.positions = (wanted & 2) != 0 ? points.positions : nullptr;
        points.errors = (wanted & 4) != 0 ? points.errors : nullptr;
        points.angles = (wanted & 8) != 0 ? points.angles : nullptr;
        expected.statuses = (wanted & 1) != 0 ? all.statuses : expected.statuses;
        expected.positions = (wanted & 2) != 0 ? all.positions : expected.positions;
        expected.errors = (wanted & 4) != 0 ? all.errors : expected.errors;
        expected.angles = (wanted & 8) != 0 ? all.angles : expected.angles;
        ASSERT_EQ(zelmMeasureTriangulate(rig.get(), 5, pairs.left.data(), pairs.right.data(), &points), ZELM_OK);
        EXPECT_EQ(out, expected);
    }
}

TEST(MeasureTriangulate, OlderRecordsWriteWhatTheyKnow) {
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    PixelPairs pairs;
    pairs.add(truth.raw('L', {}), truth.raw('R', {}));
    Outputs out(1);
    ZelmMeasurePoints points = out.record();
    points.size = offsetof(ZelmMeasurePoints, errors);
    ASSERT_EQ(zelmMeasureTriangulate(rig.get(), 1, pairs.left.data(), pairs.right.data(), &points), ZELM_OK);
    EXPECT_NEAR(out.positions[2], 0.0, kExact);
    EXPECT_EQ(out.errors[0], kUntouched);
    EXPECT_EQ(out.angles[0], kUntouched);
}

TEST(MeasureTriangulate, NoPairsAreSuccess) {
    const OpenedRig rig(trueRig().block());
    Outputs out(1);
    const ZelmMeasurePoints points = out.record();
    EXPECT_EQ(zelmMeasureTriangulate(rig.get(), 0, nullptr, nullptr, &points), ZELM_OK);
    EXPECT_EQ(out, Outputs(1));
}

TEST(MeasureTriangulate, TwoParallelCamerasAreRefused) {
    const OpenedRig rig(parallelBlock());
    PixelPairs pairs;
    pairs.add({100.0, 100.0}, {100.0, 100.0});
    Outputs out(1);
    EXPECT_EQ(triangulate(rig, pairs, out), ZELM_MEASURE_ERR_DATA);
    EXPECT_EQ(rig.error(), "both cameras are parallel and calibrated from view 0 alone: points cannot be triangulated");
    EXPECT_EQ(out, Outputs(1));
}

TEST(MeasureTriangulate, AMillionPairsInOneCallAreTheSameAsOneByOne) {
    constexpr std::size_t kCount = 1000000;
    constexpr std::size_t kStep = 100;  // of those compared one by one
    const RigTruth truth = trueRig();
    const OpenedRig rig(truth.block());
    Random random(5);
    PixelPairs pairs;
    for (std::size_t i = 0; i < kCount; ++i) {
        const Point3d X = randomWorldPoint(random);
        const Point2d l = truth.raw('L', X);
        pairs.add({l.x + random.uniform(-1.0, 1.0), l.y + random.uniform(-1.0, 1.0)}, truth.raw('R', X));
    }
    const auto start = std::chrono::steady_clock::now();
    const Outputs all = triangulated(rig, pairs);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::printf("%.0f pairs a second\n", kCount / seconds.count());
    std::size_t different = 0;
    for (std::size_t i = 0; i < kCount; i += kStep) {
        PixelPairs one;
        one.add({pairs.left[2 * i], pairs.left[2 * i + 1]}, {pairs.right[2 * i], pairs.right[2 * i + 1]});
        const Outputs out = triangulated(rig, one);
        const auto same = [i](const auto& single, const auto& many) {
            return std::equal(single.begin(), single.end(),
                              many.begin() + static_cast<std::ptrdiff_t>(i * single.size()));
        };
        different += same(out.statuses, all.statuses) && same(out.positions, all.positions) &&
                             same(out.errors, all.errors) && same(out.angles, all.angles)
                         ? 0U
                         : 1U;
    }
    EXPECT_EQ(different, 0U);
}

}  // namespace
}  // namespace zelmtest
