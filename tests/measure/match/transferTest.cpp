// Pixels of one camera in the other one's image against projections of known points and planes, for perspective and
// parallel cameras in both directions.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "isClose.h"
#include "measureRigs.h"
#include "transfer.h"

namespace zelmtest {
namespace {

using zelm::measure::calibratedLimits;
using zelm::measure::DepthLimits;
using zelm::measure::Interval;
using zelm::measure::Surface;
using zelm::measure::Transfer;

// Coordinates of some thousand pixels after some ten operations of double precision.
constexpr double kPixels = 1e-9;

struct Direction {
    RigTruth truth;
    char from;
    char to;
    std::string name;
};

// Every mix of cameras, from left to right and back.
std::vector<Direction> directions() {
    using render::Projection;
    std::vector<Direction> all;
    for (const auto& models : {std::pair{Projection::perspective, Projection::perspective},
                               std::pair{Projection::parallel, Projection::perspective},
                               std::pair{Projection::parallel, Projection::parallel}}) {
        RigTruth truth = trueRig(1280, 960, models.first);
        if (models.second == Projection::parallel) {
            truth.right.projection = models.second;
            truth.right.fx = 3.1;
            truth.right.fy = 3.05;
        }
        truth.left.k1 = truth.left.k2 = truth.right.k1 = truth.right.k2 = 0.0;
        truth.left.skew = truth.left.fx * 0.001;
        const auto letter = [](Projection p) { return p == Projection::parallel ? "parallel" : "perspective"; };
        const std::string name = std::string(letter(models.first)) + " and " + letter(models.second);
        all.push_back({truth, 'L', 'R', name + ", left to right"});
        all.push_back({truth, 'R', 'L', name + ", right to left"});
    }
    return all;
}

DepthLimits endless() {
    const double infinite = std::numeric_limits<double>::infinity();
    return {-infinite, infinite, -infinite, infinite};
}

bool isParallel(const RigTruth& truth, char side) {
    return truth.camera(side).projection == render::Projection::parallel;
}

double rhoOf(const Direction& d, const Point3d& X) {
    const double depth = d.truth.depth(d.from, X);
    return isParallel(d.truth, d.from) ? depth : 1.0 / depth;
}

const zelm::measure::Rig& insideOf(const OpenedRig& rig) {
    return rig.get()->rig;
}

TEST(MeasureTransfer, PointsOfARayAreWhereTheOtherCameraSeesThem) {
    for (const Direction& d : directions()) {
        SCOPED_TRACE(d.name);
        const OpenedRig rig(d.truth.block());
        const Transfer transfer(insideOf(rig), d.from, endless());
        EXPECT_EQ(transfer.isParallel(), isParallel(d.truth, d.from));
        Random random(21);
        for (int i = 0; i < 50; ++i) {
            const Point3d X = randomWorldPoint(random);
            const double rho = rhoOf(d, X);
            const Point2d seen = transfer.targetOf(d.truth.ideal(d.from, X), rho);
            const Point2d truth = d.truth.ideal(d.to, X);
            EXPECT_NEAR(seen.x, truth.x, kPixels);
            EXPECT_NEAR(seen.y, truth.y, kPixels);
            EXPECT_TRUE(isClose(transfer.depthOf(rho), d.truth.depth(d.from, X), 1e-14));
            // The slope of the depth: 1, or 1 / rho squared.
            const double step = 1e-5 * std::fabs(rho);
            const double slope = (transfer.depthOf(rho + step) - transfer.depthOf(rho - step)) / (2.0 * step);
            EXPECT_TRUE(isClose(transfer.depthSlope(rho), std::fabs(slope), 1e-8));
        }
    }
}

TEST(MeasureTransfer, MotionIsTheDerivativeByRho) {
    for (const Direction& d : directions()) {
        SCOPED_TRACE(d.name);
        const OpenedRig rig(d.truth.block());
        const Transfer transfer(insideOf(rig), d.from, endless());
        Random random(22);
        for (int i = 0; i < 50; ++i) {
            const Point3d X = randomWorldPoint(random);
            const Point2d p = d.truth.ideal(d.from, X);
            const double rho = rhoOf(d, X);
            const Point2d motion = transfer.motionOf(p, rho);
            // A step of a ten-thousandth of the depth: the cubic term is 1e-8 of the derivative.
            const double step = 1e-4 * std::fabs(rho);
            const Point2d before = transfer.targetOf(p, rho - step);
            const Point2d after = transfer.targetOf(p, rho + step);
            const double scale = std::hypot(motion.x, motion.y);
            EXPECT_GT(scale, 0.0);
            EXPECT_NEAR(motion.x, (after.x - before.x) / (2.0 * step), 1e-6 * scale);
            EXPECT_NEAR(motion.y, (after.y - before.y) / (2.0 * step), 1e-6 * scale);
        }
    }
}

TEST(MeasureTransfer, RhoOfAPlaceIsThatOfTheNearestOnTheLine) {
    for (const Direction& d : directions()) {
        SCOPED_TRACE(d.name);
        const OpenedRig rig(d.truth.block());
        const Transfer transfer(insideOf(rig), d.from, endless());
        Random random(23);
        for (int i = 0; i < 50; ++i) {
            const Point3d X = randomWorldPoint(random);
            const Point2d p = d.truth.ideal(d.from, X);
            const double rho = rhoOf(d, X);
            const Point2d q = transfer.targetOf(p, rho);
            const Point2d motion = transfer.motionOf(p, rho);
            const double length = std::hypot(motion.x, motion.y);
            const Point2d along{motion.x / length, motion.y / length};
            for (const double beside : {0.0, 3.0, -0.5}) {
                const Point2d place{q.x - beside * along.y, q.y + beside * along.x};
                EXPECT_NEAR(transfer.rhoFor(p, place, along), rho, kPixels / length);
            }
        }
    }
}

TEST(MeasureTransfer, PlanesAreAffineInRhoAndMoveByAHomography) {
    for (const Direction& d : directions()) {
        SCOPED_TRACE(d.name);
        const OpenedRig rig(d.truth.block());
        const Transfer transfer(insideOf(rig), d.from, endless());
        const render::Pose plane = poseOfVectors({0.3, -0.25, 0.1}, {2.0, -3.0, 5.0});
        const auto pointAt = [&](double x, double y) {
            const auto X = inCamera(plane, {x, y, 0.0});
            return Point3d{X[0], X[1], X[2]};
        };
        // Slopes through three points.
        const Point3d corners[] = {pointAt(0.0, 0.0), pointAt(40.0, 5.0), pointAt(-10.0, 35.0)};
        const Point2d a = d.truth.ideal(d.from, corners[0]);
        const Point2d b = d.truth.ideal(d.from, corners[1]);
        const Point2d c = d.truth.ideal(d.from, corners[2]);
        const double rho = rhoOf(d, corners[0]);
        const double determinant = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
        const double rb = rhoOf(d, corners[1]) - rho;
        const double rc = rhoOf(d, corners[2]) - rho;
        const Surface surface{a, rho, (rb * (c.y - a.y) - rc * (b.y - a.y)) / determinant,
                              (rc * (b.x - a.x) - rb * (c.x - a.x)) / determinant};
        const zelm::measure::Matrix3 H = transfer.homographyOf(surface);
        Random random(24);
        for (int i = 0; i < 30; ++i) {
            const Point3d X = pointAt(random.uniform(-60.0, 60.0), random.uniform(-45.0, 45.0));
            const Point2d p = d.truth.ideal(d.from, X);
            const Point2d q = d.truth.ideal(d.to, X);
            EXPECT_TRUE(isClose(surface.rhoAt(p) / rhoOf(d, X), 1.0, 1e-11));
            EXPECT_TRUE(isClose(surface.movedTo(p).rho / rhoOf(d, X), 1.0, 1e-11));
            const Point2d seen = zelm::measure::apply(H, p);
            EXPECT_NEAR(seen.x, q.x, 10.0 * kPixels);  // slopes of differences of rho
            EXPECT_NEAR(seen.y, q.y, 10.0 * kPixels);
            // The same plane about another pixel has the same homography.
            const Point2d again = zelm::measure::apply(transfer.homographyOf(surface.movedTo(p)), a);
            const Point2d truth = d.truth.ideal(d.to, corners[0]);
            EXPECT_NEAR(again.x, truth.x, 10.0 * kPixels);
            EXPECT_NEAR(again.y, truth.y, 10.0 * kPixels);
        }
    }
}

// The point of the world at rho on the ray of an undistorted pixel.
Point3d worldAt(const Direction& d, Point2d p, double rho) {
    const render::Camera& c = d.truth.camera(d.from);
    const double y = (p.y - c.cy) / c.fy;
    const double x = (p.x - c.cx - c.skew * y) / c.fx;
    const std::array<double, 3> inOwn =
        isParallel(d.truth, d.from) ? std::array{x, y, rho} : std::array{x / rho, y / rho, 1.0 / rho};
    return inWorld(d.truth.pose(d.from), inOwn);
}

// The unit direction in which a camera looks at a point, in the world.
std::array<double, 3> viewOf(const RigTruth& truth, char side, const Point3d& X) {
    const render::Pose& pose = truth.pose(side);
    if (isParallel(truth, side)) {
        return {pose.R[6], pose.R[7], pose.R[8]};
    }
    const Point3d centre = inWorld(pose, {0.0, 0.0, 0.0});
    const std::array<double, 3> v{X.x - centre.x, X.y - centre.y, X.z - centre.z};
    const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    return {v[0] / length, v[1] / length, v[2] / length};
}

TEST(MeasureTransfer, FacingSurfacesLieHalfwayBetweenBothViews) {
    for (const Direction& d : directions()) {
        SCOPED_TRACE(d.name);
        const OpenedRig rig(d.truth.block());
        const Transfer transfer(insideOf(rig), d.from, endless());
        Random random(25);
        for (int i = 0; i < 20; ++i) {
            const Point3d X = randomWorldPoint(random);
            const Point2d p = d.truth.ideal(d.from, X);
            const double rho = rhoOf(d, X);
            const Surface s = transfer.facingSurface(p, rho);
            EXPECT_EQ(s.rho, rho);
            const auto own = viewOf(d.truth, d.from, X);
            const auto other = viewOf(d.truth, d.to, X);
            // Points of the surface lie at right angles to the sum of both directions of view.
            for (const Point2d& step : {Point2d{40.0, 0.0}, Point2d{0.0, 40.0}, Point2d{-30.0, 20.0}}) {
                const Point2d at{p.x + step.x, p.y + step.y};
                const Point3d Y = worldAt(d, at, s.rhoAt(at));
                const std::array<double, 3> e{Y.x - X.x, Y.y - X.y, Y.z - X.z};
                const double length = std::sqrt(e[0] * e[0] + e[1] * e[1] + e[2] * e[2]);
                double cosine = 0.0;
                for (std::size_t k = 0; k < 3; ++k) {
                    cosine += e[k] * (own[k] + other[k]);
                }
                EXPECT_NEAR(cosine / length, 0.0, 1e-10);
            }
        }
    }
}

// Whether the point at rho on a pixel's ray is within the limits, in front of both cameras and in the other image.
bool isAllowed(const Direction& d, const DepthLimits& limits, Point2d p, double rho) {
    if (!isParallel(d.truth, d.from) && rho <= 0.0) {
        return false;
    }
    const Point3d X = worldAt(d, p, rho);
    const double left = d.truth.depth('L', X);
    const double right = d.truth.depth('R', X);
    if (left < limits.leftNearest || left > limits.leftFarthest || right < limits.rightNearest ||
        right > limits.rightFarthest) {
        return false;
    }
    if (!isParallel(d.truth, d.to) && d.truth.depth(d.to, X) <= 0.0) {
        return false;
    }
    const Point2d q = d.truth.ideal(d.to, X);
    return q.x >= 0.0 && q.y >= 0.0 && q.x <= d.truth.left.width - 1 && q.y <= d.truth.left.height - 1;
}

TEST(MeasureTransfer, SearchIntervalsAreThoseOfBruteForce) {
    for (const Direction& d : directions()) {
        SCOPED_TRACE(d.name);
        const OpenedRig rig(d.truth.block());
        int empty = 0;
        // Narrow ones, which limit the search, and wide ones, where the image does.
        for (const double half : {30.0, 300.0}) {
            const DepthLimits limits{455.0 - half, 455.0 + half, 448.0 - 1.1 * half, 448.0 + 0.9 * half};
            const Transfer transfer(insideOf(rig), d.from, limits);
            const bool parallel = isParallel(d.truth, d.from);
            const double low = parallel ? -1000.0 : 1e-4;
            const double high = parallel ? 1000.0 : 0.01;
            Random random(26);
            for (int i = 0; i < 60; ++i) {
                const Point2d p{random.uniform(-300.0, 1600.0), random.uniform(-200.0, 1200.0)};
                const Interval interval = transfer.searchInterval(p);
                empty += interval.isEmpty() ? 1 : 0;
                int wrong = 0;
                constexpr int kSteps = 2000;
                for (int k = 0; k <= kSteps; ++k) {
                    const double rho = low + (high - low) * k / kSteps;
                    const double toEnd = std::min(std::fabs(rho - interval.low), std::fabs(rho - interval.high));
                    const bool isInside = !interval.isEmpty() && rho > interval.low && rho < interval.high;
                    const bool isAtEnd = !interval.isEmpty() && toEnd < 1e-9 * (high - low);
                    wrong += !isAtEnd && isInside != isAllowed(d, limits, p, rho) ? 1 : 0;
                }
                EXPECT_EQ(wrong, 0) << p.x << ' ' << p.y << ": " << interval.low << " to " << interval.high;
            }
        }
        EXPECT_GT(empty, 0);
        EXPECT_LT(empty, 80);
    }
}

TEST(MeasureTransfer, SearchesWithoutAnEndAreNone) {
    // Without limits the other image ends the search. It does not where a ray of a parallel camera goes on for ever in
    // sight of a perspective one, converging by 20 degrees, nor where a parallel camera sees that one's centre.
    for (const Direction& d : directions()) {
        SCOPED_TRACE(d.name);
        const OpenedRig rig(d.truth.block());
        const Transfer transfer(insideOf(rig), d.from, endless());
        const Point3d X{5.0, -3.0, 2.0};
        const Interval interval = transfer.searchInterval(d.truth.ideal(d.from, X));
        ASSERT_EQ(interval.isEmpty(), isParallel(d.truth, 'L') != isParallel(d.truth, 'R'));
        if (interval.isEmpty()) {
            continue;
        }
        EXPECT_LT(interval.low, rhoOf(d, X));
        EXPECT_GT(interval.high, rhoOf(d, X));
        EXPECT_NEAR(interval.middle(), 0.5 * (interval.low + interval.high), 1e-15);
    }
}

TEST(MeasureTransfer, LensesDoNotCutTheSearchShort) {
    // What both images show is always searched, however the lenses bend their borders.
    RigTruth truth = trueRig();
    for (const double k1 : {-0.3, 0.3}) {
        SCOPED_TRACE(k1);
        truth.left.k1 = truth.right.k1 = k1;
        const Direction d{truth, 'L', 'R', ""};
        const OpenedRig rig(truth.block());
        const Transfer transfer(insideOf(rig), 'L', {200.0, 900.0, 200.0, 900.0});
        Random random(27);
        int seen = 0;
        for (int i = 0; i < 2000; ++i) {
            const Point3d X{random.uniform(-200.0, 200.0), random.uniform(-150.0, 150.0), random.uniform(-50.0, 50.0)};
            const Point2d l = truth.raw('L', X);
            const Point2d r = truth.raw('R', X);
            if (std::min({l.x, l.y, r.x, r.y, 1279.0 - l.x, 1279.0 - r.x, 959.0 - l.y, 959.0 - r.y}) > 0.0) {
                const Interval interval = transfer.searchInterval(truth.ideal('L', X));
                EXPECT_LT(interval.low, rhoOf(d, X));
                EXPECT_GT(interval.high, rhoOf(d, X));
                seen += 1;
            }
        }
        EXPECT_GT(seen, 300);
    }
}

TEST(MeasureTransfer, DefaultLimitsAreHalfTheNearestAndTwiceTheFarthestPlate) {
    std::vector<unsigned char> block = trueRig().block();
    const auto setDepth = [&](zelm::Camera side, std::int32_t view, double depth) {
        zelm::block::write(block.data(), zelm::block::pose(3, side, view), truePose(0.0, 0.0, 0.0, 0.0, 0.0, depth));
    };
    setDepth(zelm::Camera::left, 1, 300.0);
    setDepth(zelm::Camera::left, 2, 600.0);
    setDepth(zelm::Camera::right, 1, 500.0);
    const OpenedRig rig(block);
    const DepthLimits limits = calibratedLimits(insideOf(rig));
    EXPECT_EQ(limits.leftNearest, 150.0);
    EXPECT_EQ(limits.leftFarthest, 1200.0);
    EXPECT_EQ(limits.rightNearest, 224.0);  // of the 448 of view 0
    EXPECT_EQ(limits.rightFarthest, 1000.0);
    const OpenedRig mixed(trueRig(1280, 960, render::Projection::parallel).block());
    const DepthLimits open = calibratedLimits(insideOf(mixed));
    EXPECT_EQ(open.leftNearest, -std::numeric_limits<double>::infinity());
    EXPECT_EQ(open.leftFarthest, std::numeric_limits<double>::infinity());
    EXPECT_EQ(open.rightNearest, 224.0);
    EXPECT_EQ(open.rightFarthest, 896.0);
}

}  // namespace
}  // namespace zelmtest
