// 3-D points from pairs of pixels: exact pairs, noisy pairs against the Cramér-Rao bound, the optimal correction
// against the global optimum, and what is refused.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>

#include "optimalCorrection.h"
#include "pairFixture.h"
#include "zelm/twoViewGeometry.h"

namespace {

using namespace zelmtest;

struct Models {
    std::int32_t left;
    std::int32_t right;
};
constexpr Models kTriangulable[] = {{0, 0}, {1, 0}, {0, 1}, {1, 1}, {2, 0}, {2, 1}};

double distance(const Point3d& a, const Point3d& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

TEST(TwoViewChange2Dto3D, BadArgumentsAreRefusedAndLeaveTheOutput) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Point2d p{640.0, 480.0};
    Point3d out{7.0, 8.0, 9.0};
    EXPECT_EQ(zelm2ViewChange2Dto3D(nullptr, &p, &p, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewChange2Dto3D(handle.get(), nullptr, &p, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewChange2Dto3D(handle.get(), &p, nullptr, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewChange2Dto3D(handle.get(), &p, &p, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(out.x, 7.0);
}

TEST(TwoViewChange2Dto3D, TwoParallelCamerasAreRefused) {
    Handle handle;
    loadPair(makePair(2, 2), &handle);
    const Point2d p{640.0, 480.0};
    Point3d out{7.0, 8.0, 9.0};
    EXPECT_EQ(zelm2ViewChange2Dto3D(handle.get(), &p, &p, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(out.x, 7.0);
}

TEST(TwoViewChange2Dto3D, APixelWhoseDistortionCannotBeRemovedIsReported) {
    for (const char name : {'L', 'R'}) {
        TruePair pair = makePair(0, 0);
        (name == 'L' ? pair.left : pair.right).intrinsics.k1 = 1e13;  // Newton shrinks the pixel by a third a step
        Handle handle;
        loadPair(pair, &handle);
        const Point2d corner{1270.0, 950.0};
        Point3d out{7.0, 8.0, 9.0};
        EXPECT_EQ(zelm2ViewChange2Dto3D(handle.get(), &corner, &corner, &out), ZELM_ERR_UNDISTORT) << name;
        EXPECT_EQ(out.x, 7.0);
    }
}

TEST(TwoViewChange2Dto3D, ProjectedPointsComeBack) {
    Random random(81);
    double worst = 0.0;
    for (const Models& models : kTriangulable) {
        for (int rig = 0; rig < 20; ++rig) {
            const TruePair pair = makePair(models.left, models.right, &random);
            Handle handle;
            loadPair(pair, &handle);
            for (int i = 0; i < 100; ++i) {
                const Point3d truth = randomWorldPoint(random);
                Point2d left{};
                Point2d right{};
                ASSERT_EQ(zelm2ViewChange3Dto2D(handle.get(), 'L', &truth, &left), ZELM_OK);
                ASSERT_EQ(zelm2ViewChange3Dto2D(handle.get(), 'R', &truth, &right), ZELM_OK);
                Point3d out{};
                ASSERT_EQ(zelm2ViewChange2Dto3D(handle.get(), &left, &right, &out), ZELM_OK);
                worst = std::max(worst, distance(out, truth));
            }
        }
    }
    std::printf("worstError: %.2g\n", worst);
    // 1e-9 of the working distance of 450.
    EXPECT_LT(worst, 450e-9);
}

// Rows: undistorted left x, left y, right x, right y; columns: X, Y, Z. Central differences.
void jacobianOf(const TruePair& pair, const Point3d& X, double J[4][3]) {
    constexpr double kStep = 1e-3;  // units; the third derivative is some 1e-6 px
    for (int k = 0; k < 3; ++k) {
        Point3d forward = X;
        Point3d backward = X;
        (k == 0 ? forward.x : k == 1 ? forward.y : forward.z) += kStep;
        (k == 0 ? backward.x : k == 1 ? backward.y : backward.z) -= kStep;
        const char names[2] = {'L', 'R'};
        for (int c = 0; c < 2; ++c) {
            const Point2d f = pair.projectIdeal(names[c], forward);
            const Point2d b = pair.projectIdeal(names[c], backward);
            J[2 * c][k] = (f.x - b.x) / (2.0 * kStep);
            J[2 * c + 1][k] = (f.y - b.y) / (2.0 * kStep);
        }
    }
}

// Inverse of J'J: the bound's covariance for unit noise.
void boundOf(const TruePair& pair, const Point3d& X, double covariance[9]) {
    double J[4][3];
    jacobianOf(pair, X, J);
    double normal[9];
    zelmMatMulTransposed(1, 4, 3, &J[0][0], normal);
    ASSERT_EQ(zelmMatInvert(3, normal, covariance), ZELM_OK);
}

TEST(TwoViewChange2Dto3D, NoisyPairsReachTheCramerRaoBound) {
    constexpr double kNoise = 0.1;  // pixels
    constexpr int kTrials = 4000;   // the spread itself is then known to 1.1 % (one sigma)
    Random random(82);
    TruePair pair = makePair(0, 0);
    // Noise is added to ideal pixels, where the bound is computed: no distortion.
    pair.left.intrinsics.k1 = pair.left.intrinsics.k2 = pair.right.intrinsics.k1 = pair.right.intrinsics.k2 = 0.0;
    Handle handle;
    loadPair(pair, &handle);
    for (int place = 0; place < 4; ++place) {
        const Point3d truth = randomWorldPoint(random);
        double covariance[9];
        boundOf(pair, truth, covariance);
        const Point2d left = pair.project('L', truth);
        const Point2d right = pair.project('R', truth);
        double sum[3] = {};
        double squares[3] = {};
        for (int i = 0; i < kTrials; ++i) {
            const Point2d l{left.x + kNoise * random.normal(), left.y + kNoise * random.normal()};
            const Point2d r{right.x + kNoise * random.normal(), right.y + kNoise * random.normal()};
            Point3d out{};
            ASSERT_EQ(zelm2ViewChange2Dto3D(handle.get(), &l, &r, &out), ZELM_OK);
            const double error[3] = {out.x - truth.x, out.y - truth.y, out.z - truth.z};
            for (int k = 0; k < 3; ++k) {
                sum[k] += error[k];
                squares[k] += error[k] * error[k];
            }
        }
        for (int k = 0; k < 3; ++k) {
            const double mean = sum[k] / kTrials;
            const double spread = std::sqrt(squares[k] / kTrials - mean * mean);
            const double bound = kNoise * std::sqrt(covariance[4 * k]);
            EXPECT_NEAR(spread / bound, 1.0, 0.1) << "coordinate " << k;
            EXPECT_LT(std::fabs(mean), 4.0 * bound / std::sqrt(double{kTrials})) << "bias, coordinate " << k;
        }
    }
}

// The least-squares point by Gauss-Newton on the reprojection error: the global optimum of the same cost.
zelm::PointPair bestPair(const TruePair& pair, const zelm::PointPair& observed, Point3d X) {
    for (int i = 0; i < 50; ++i) {
        double J[4][3];
        jacobianOf(pair, X, J);
        const Point2d l = pair.projectIdeal('L', X);
        const Point2d r = pair.projectIdeal('R', X);
        const double residual[4] = {observed.left.x - l.x, observed.left.y - l.y, observed.right.x - r.x,
                                    observed.right.y - r.y};
        double step[3];
        EXPECT_EQ(zelmMatSolveSVD(4, 3, &J[0][0], residual, step), ZELM_OK);
        X = {X.x + step[0], X.y + step[1], X.z + step[2]};
    }
    return {pair.projectIdeal('L', X), pair.projectIdeal('R', X)};
}

TEST(OptimalCorrection, EqualsTheGlobalOptimum) {
    Random random(83);
    double worst = 0.0;
    for (int round = 0; round < 400; ++round) {
        const TruePair pair = makePair(0, 0, &random);
        zelm::FundamentalPair fundamental{};
        ASSERT_EQ(zelm::innerFundamentalPair(pair.left, pair.right, &fundamental), ZELM_OK);
        const Point3d X = randomWorldPoint(random);
        const double noise = round % 2 == 0 ? 0.1 : 1.0;
        zelm::PointPair observed{pair.projectIdeal('L', X), pair.projectIdeal('R', X)};
        for (double* value : {&observed.left.x, &observed.left.y, &observed.right.x, &observed.right.y}) {
            *value += noise * random.normal();
        }
        const zelm::PointPair corrected = zelm::correctOptimally(fundamental.F, observed);
        const zelm::PointPair best = bestPair(pair, observed, X);
        worst = std::max({worst, std::fabs(corrected.left.x - best.left.x), std::fabs(corrected.left.y - best.left.y),
                          std::fabs(corrected.right.x - best.right.x), std::fabs(corrected.right.y - best.right.y)});
    }
    std::printf("worstDifference: %.2g\n", worst);
    EXPECT_LT(worst, 1e-6);
}

// The sum of squared distances of a pair from the two epipolar lines that belong to a direction of the left image: the
// line through the left epipole e and the point at infinity d, and the right line F'd.
double costOfLines(const double F[9], const double e[3], const zelm::PointPair& p, double angle) {
    const double d[2] = {std::cos(angle), std::sin(angle)};
    const double l[3] = {-e[2] * d[1], e[2] * d[0], e[0] * d[1] - e[1] * d[0]};
    const double r[3] = {F[0] * d[0] + F[3] * d[1], F[1] * d[0] + F[4] * d[1], F[2] * d[0] + F[5] * d[1]};
    const double left = (l[0] * p.left.x + l[1] * p.left.y + l[2]) / std::sqrt(l[0] * l[0] + l[1] * l[1]);
    const double right = (r[0] * p.right.x + r[1] * p.right.y + r[2]) / std::sqrt(r[0] * r[0] + r[1] * r[1]);
    return left * left + right * right;
}

// The least cost of all pairs of lines, tried one by one.
double leastCost(const double F[9], const zelm::PointPair& p) {
    const double e[3] = {F[3] * F[7] - F[6] * F[4], F[6] * F[1] - F[0] * F[7], F[0] * F[4] - F[3] * F[1]};
    constexpr int kAngles = 100000;  // some tenths of a pixel apart at the images
    constexpr double kStep = 3.14159265358979323846 / kAngles;
    int best = 0;
    double least = std::numeric_limits<double>::infinity();
    for (int i = 0; i < kAngles; ++i) {
        if (const double cost = costOfLines(F, e, p, i * kStep); cost < least) {
            least = cost;
            best = i;
        }
    }
    double low = (best - 1) * kStep;
    double high = (best + 1) * kStep;
    for (int i = 0; i < 100; ++i) {  // between the neighbours the cost has one minimum
        const double third = (high - low) / 3.0;
        if (costOfLines(F, e, p, low + third) < costOfLines(F, e, p, high - third)) {
            high -= third;
        } else {
            low += third;
        }
    }
    return costOfLines(F, e, p, 0.5 * (low + high));
}

TEST(OptimalCorrection, NoPairOfLinesIsCloser) {
    Random random(87);
    for (int round = 0; round < 25; ++round) {
        const TruePair pair = makePair(0, 0, &random);
        zelm::FundamentalPair fundamental{};
        ASSERT_EQ(zelm::innerFundamentalPair(pair.left, pair.right, &fundamental), ZELM_OK);
        const Point3d X = randomWorldPoint(random);
        zelm::PointPair observed{pair.projectIdeal('L', X), pair.projectIdeal('R', X)};
        for (double* value : {&observed.left.x, &observed.left.y, &observed.right.x, &observed.right.y}) {
            *value += 2.0 * random.normal();
        }
        const zelm::PointPair corrected = zelm::correctOptimally(fundamental.F, observed);
        const double moved =
            std::hypot(std::hypot(corrected.left.x - observed.left.x, corrected.left.y - observed.left.y),
                       std::hypot(corrected.right.x - observed.right.x, corrected.right.y - observed.right.y));
        // Both are square roots of sums to which the angle's rounding, 1e-16 rad seen from some 1e4 px, adds little.
        ASSERT_NEAR(moved, std::sqrt(leastCost(fundamental.F, observed)), 1e-6) << "round " << round;
    }
}

// The correction written down once more, with the 9 x 9 matrix in full. Returns the pair used and the round in which it
// settled, 0 for a pair used as it is.
struct LiteralCorrection {
    zelm::PointPair pair;
    int round;
};

LiteralCorrection literalCorrection(const double F[9], const zelm::PointPair& observed) {
    constexpr double f0 = 600.0;
    const double D[3] = {f0, f0, 1.0};
    double u[9];
    for (int i = 0; i < 9; ++i) {
        u[i] = D[i / 3] * F[i] * D[i % 3];
    }
    const double x[3] = {observed.left.x / f0, observed.left.y / f0, 1.0};
    const double y[3] = {observed.right.x / f0, observed.right.y / f0, 1.0};
    double h[3] = {x[0], x[1], 1.0};
    double k[3] = {y[0], y[1], 1.0};
    double dh[3] = {};
    double dk[3] = {};
    double E0 = 1e20;
    for (int round = 1; round <= 20; ++round) {
        double xi[9];
        for (int i = 0; i < 9; ++i) {
            xi[i] = h[i / 3] * k[i % 3] + k[i % 3] * dh[i / 3] + h[i / 3] * dk[i % 3];
        }
        // The covariance of the products h_i k_j for unit noise of h and k without their third elements.
        double variance = 0.0;
        for (int i = 0; i < 9; ++i) {
            for (int j = 0; j < 9; ++j) {
                const double ofK = i % 3 != 2 && i % 3 == j % 3 ? h[i / 3] * h[j / 3] : 0.0;
                const double ofH = i / 3 != 2 && i / 3 == j / 3 ? k[i % 3] * k[j % 3] : 0.0;
                variance += u[i] * (ofK + ofH) * u[j];
            }
        }
        double Fk[3] = {};
        double Fh[3] = {};
        double residual = 0.0;
        for (int i = 0; i < 9; ++i) {
            Fk[i / 3] += u[i] * k[i % 3];
            Fh[i % 3] += u[i] * h[i / 3];
            residual += u[i] * xi[i];
        }
        if (Fk[0] * Fk[0] + Fk[1] * Fk[1] + Fk[2] * Fk[2] < 1e-13 &&
            Fh[0] * Fh[0] + Fh[1] * Fh[1] + Fh[2] * Fh[2] < 1e-13) {
            return {observed, 0};
        }
        const double s = residual / variance;
        for (int i = 0; i < 2; ++i) {
            dh[i] = s * Fk[i];
            dk[i] = s * Fh[i];
            h[i] = x[i] - dh[i];
            k[i] = y[i] - dk[i];
        }
        const double E = dh[0] * dh[0] + dh[1] * dh[1] + dk[0] * dk[0] + dk[1] * dk[1];
        if (std::fabs(E - E0) / E < 1e-9) {
            return {{{h[0] * f0, h[1] * f0}, {k[0] * f0, k[1] * f0}}, round};
        }
        E0 = E;
    }
    return {observed, 0};
}

double largestDifference(const zelm::PointPair& a, const zelm::PointPair& b) {
    return std::max({std::fabs(a.left.x - b.left.x), std::fabs(a.left.y - b.left.y), std::fabs(a.right.x - b.right.x),
                     std::fabs(a.right.y - b.right.y)});
}

// Pairs from nearly exact to hopeless, so that every round is the last one for some of them.
TEST(OptimalCorrection, FollowsTheIteration) {
    Random random(85);
    int settledIn[21] = {};
    for (int round = 0; round < 20000; ++round) {
        const TruePair pair = makePair(0, 0, &random);
        zelm::FundamentalPair fundamental{};
        ASSERT_EQ(zelm::innerFundamentalPair(pair.left, pair.right, &fundamental), ZELM_OK);
        const double noise = std::pow(10.0, random.uniform(-2.0, 3.6));
        const Point3d X = randomWorldPoint(random);
        zelm::PointPair observed{pair.projectIdeal('L', X), pair.projectIdeal('R', X)};
        for (double* value : {&observed.left.x, &observed.left.y, &observed.right.x, &observed.right.y}) {
            *value += noise * random.normal();
        }
        const LiteralCorrection expected = literalCorrection(fundamental.F, observed);
        const zelm::PointPair corrected = zelm::correctOptimally(fundamental.F, observed);
        settledIn[expected.round] += 1;
        // Rounding of sums of products of order 1, times f0; a round more or less moves a pair by the root of 1e-9.
        ASSERT_LT(largestDifference(corrected, expected.pair), 1e-9) << "round " << round << ", noise " << noise;
    }
    for (const int settled : {0, 2, 3, 5, 10, 20}) {
        EXPECT_GT(settledIn[settled], 0) << "no pair settled in round " << settled;
    }
}

// F of two cameras side by side: matching pixels share their row.
constexpr double kRowF[9] = {0.0, 0.0, 0.0, 0.0, 0.0, -1.0, 0.0, 1.0, 0.0};

TEST(OptimalCorrection, AnExactPairComesBackAsItIs) {
    const zelm::PointPair exact{{75.0, 150.0}, {300.0, 150.0}};  // multiples of f0 / 8: scaling there and back is exact
    const zelm::PointPair out = zelm::correctOptimally(kRowF, exact);
    EXPECT_EQ(out.left.x, exact.left.x);
    EXPECT_EQ(out.left.y, exact.left.y);
    EXPECT_EQ(out.right.x, exact.right.x);
    EXPECT_EQ(out.right.y, exact.right.y);
}

TEST(OptimalCorrection, RowsOfASideBySidePairMeetHalfWay) {
    const zelm::PointPair out = zelm::correctOptimally(kRowF, {{100.0, 51.0}, {130.0, 49.0}});
    EXPECT_NEAR(out.left.y, 50.0, 1e-9);
    EXPECT_NEAR(out.right.y, 50.0, 1e-9);
    EXPECT_NEAR(out.left.x, 100.0, 1e-9);
    EXPECT_NEAR(out.right.x, 130.0, 1e-9);
}

TEST(OptimalCorrection, APairAtBothEpipolesIsUsedUncorrected) {
    // Both epipoles at the origin of the pixels: F maps (0, 0, 1) to nothing on either side.
    const double F[9] = {0.0, 1.0, 0.0, -1.0, 0.0, 0.0, 0.0, 0.0, 0.0};
    const zelm::PointPair out = zelm::correctOptimally(F, {{0.0, 0.0}, {0.0, 0.0}});
    EXPECT_EQ(out.left.x, 0.0);
    EXPECT_EQ(out.right.y, 0.0);
}

// Lines of squared length below 1e-13, f0 being 600, are none. Both must be; F scaled takes both there at once.
TEST(OptimalCorrection, TheLengthOfALineThatCountsAsNone) {
    const zelm::PointPair observed{{75.0, 150.0}, {300.0, 225.0}};
    // The longer line is (0, -600, 225) times the scale.
    const double threshold = std::sqrt(1e-13) / std::hypot(600.0, 225.0);
    for (const double share : {0.98, 1.02}) {
        double F[9];
        for (int i = 0; i < 9; ++i) {
            F[i] = kRowF[i] * threshold * share;
        }
        const zelm::PointPair out = zelm::correctOptimally(F, observed);
        EXPECT_NEAR(out.left.y, share < 1.0 ? 150.0 : 187.5, 1e-6) << share;
    }
}

// A right point that is next to its epipole while the left one is far from its own is corrected.
TEST(OptimalCorrection, APairAtOneEpipoleIsCorrected) {
    const double F[9] = {0.0, 1.0 / 360000.0, 0.0, -1.0 / 360000.0, 0.0, 0.0, 0.0, 0.0, 0.0};
    const zelm::PointPair out = zelm::correctOptimally(F, {{300.0, 0.0}, {0.0, 6e-5}});
    EXPECT_NEAR(out.right.y, 0.0, 1e-9);
}

TEST(OptimalCorrection, WhatIsNotANumberComesBackWithoutHanging) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const zelm::PointPair out = zelm::correctOptimally(kRowF, {{kNan, 1.0}, {2.0, 3.0}});
    EXPECT_EQ(out.right.x, 2.0);
}

// The point found projects onto the corrected pair, which differs from the given one.
TEST(TwoViewChange2Dto3D, CorrectsThePairFirst) {
    Random random(86);
    double moved = 0.0;
    for (int i = 0; i < 200; ++i) {
        TruePair pair = makePair(0, 0, &random);
        for (zelm::CalibratedCamera* camera : {&pair.left, &pair.right}) {
            camera->intrinsics.k1 = camera->intrinsics.k2 = 0.0;
        }
        Handle handle;
        loadPair(pair, &handle);
        zelm::FundamentalPair fundamental{};
        ASSERT_EQ(zelm::innerFundamentalPair(pair.left, pair.right, &fundamental), ZELM_OK);
        const Point3d X = randomWorldPoint(random);
        zelm::PointPair observed{pair.project('L', X), pair.project('R', X)};
        observed.left.y += random.uniform(1.0, 3.0);
        const zelm::PointPair corrected = zelm::correctOptimally(fundamental.F, observed);
        Point3d out{};
        ASSERT_EQ(zelm2ViewChange2Dto3D(handle.get(), &observed.left, &observed.right, &out), ZELM_OK);
        ASSERT_LT(largestDifference({pair.project('L', out), pair.project('R', out)}, corrected), 1e-7);
        moved = std::max(moved, largestDifference(observed, corrected));
    }
    EXPECT_GT(moved, 0.5);
}

TEST(TwoViewChange2Dto3D, ASystemThatIsNotFiniteIsDegenerate) {
    for (const zelm::Camera which : {zelm::Camera::left, zelm::Camera::right}) {
        TruePair pair = makePair(0, 0);
        std::vector<unsigned char> data = blockOf(pair);
        ZelmCameraExtrinsics pose = zelm::isLeft(which) ? pair.left.pose : pair.right.pose;
        pose.R[0] = std::numeric_limits<double>::quiet_NaN();
        zelm::block::write(data.data(), zelm::block::pose(3, which, 0), pose);
        Handle handle;
        loadBlock(data, &handle);
        const Point2d p{640.0, 480.0};
        Point3d out{7.0, 8.0, 9.0};
        EXPECT_EQ(zelm2ViewChange2Dto3D(handle.get(), &p, &p, &out), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(out.x, 7.0);
    }
}

// A camera model that does not exist cannot be projected with; the status of the projection matrix passes through.
TEST(TwoViewChange2Dto3D, AnUnknownModelIsRefusedByTheProjection) {
    for (const bool onTheLeft : {true, false}) {
        TruePair pair = makePair(0, 0);
        std::vector<unsigned char> data = blockOf(pair);
        const Zelm2ViewCameraDesc cameras{onTheLeft ? 7 : 0, pair.width, pair.height,
                                          onTheLeft ? 0 : 7, pair.width, pair.height};
        zelm::block::write(data.data(), zelm::block::kCameras, cameras);
        Handle handle;
        loadBlock(data, &handle);
        const Point2d p{640.0, 480.0};
        Point3d X{7.0, 8.0, 9.0};
        EXPECT_EQ(zelm2ViewChange2Dto3D(handle.get(), &p, &p, &X), ZELM_ERR_PARAM);
        EXPECT_EQ(X.x, 7.0);
        Point2d q{7.0, 8.0};
        EXPECT_EQ(zelm2ViewChange3Dto2D(handle.get(), onTheLeft ? 'L' : 'R', &X, &q), ZELM_ERR_PARAM);
        EXPECT_EQ(q.x, 7.0);
        const Zelm2ViewHomParam params{640.0, 480.0, 0.0};
        EXPECT_EQ(zelm2ViewCalcHomImgPoint(handle.get(), onTheLeft ? 'R' : 'L', &p, &params, &q), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(q.x, 7.0);
    }
}

TEST(TwoViewChange2Dto3D, ABlockThatIsNotFiniteEndsInAStatus) {
    TruePair pair = makePair(0, 0);
    std::vector<unsigned char> data = blockOf(pair);
    pair.left.pose.t[0] = std::numeric_limits<double>::quiet_NaN();
    zelm::block::write(data.data(), zelm::block::pose(3, zelm::Camera::left, 0), pair.left.pose);
    Handle handle;
    loadBlock(data, &handle);
    const Point2d p{640.0, 480.0};
    Point3d out{7.0, 8.0, 9.0};
    const std::int32_t status = zelm2ViewChange2Dto3D(handle.get(), &p, &p, &out);
    EXPECT_TRUE(status == ZELM_ERR_DEGENERATE || (status == ZELM_OK && std::isnan(out.x))) << status;
}

// Two cameras at one place see along one ray: no depth. The least-norm answer of the solver still lies on that ray.
TEST(TwoViewChange2Dto3D, ACameraSeenTwiceYieldsAFinitePoint) {
    TruePair pair = makePair(0, 0);
    TruePair apart = pair;
    apart.right.pose = apart.left.pose;
    apart.right.intrinsics = apart.left.intrinsics;
    std::vector<unsigned char> data = blockOf(pair);  // F of a proper pair
    zelm::block::write(data.data(), zelm::block::pose(3, zelm::Camera::right, 0), apart.right.pose);
    zelm::block::write(data.data(), zelm::block::intrinsics(zelm::Camera::right), apart.right.intrinsics);
    Handle handle;
    loadBlock(data, &handle);
    const Point2d p{640.0, 480.0};
    Point3d out{};
    EXPECT_EQ(zelm2ViewChange2Dto3D(handle.get(), &p, &p, &out), ZELM_OK);
    EXPECT_TRUE(std::isfinite(out.x) && std::isfinite(out.y) && std::isfinite(out.z));
}

TEST(TwoViewChange3Dto2D, ProjectsWithEachCamerasOwnModel) {
    Random random(84);
    for (const Models& models : kTriangulable) {
        const TruePair pair = makePair(models.left, models.right, &random);
        Handle handle;
        loadPair(pair, &handle);
        for (const char name : {'L', 'R'}) {
            const Point3d X = randomWorldPoint(random);
            const Point2d expected = pair.project(name, X);
            Point2d p{};
            ASSERT_EQ(zelm2ViewChange3Dto2D(handle.get(), name, &X, &p), ZELM_OK);
            EXPECT_EQ(p.x, expected.x);
            EXPECT_EQ(p.y, expected.y);
        }
    }
}

TEST(TwoViewChange3Dto2D, BadArgumentsAreRefused) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Point3d X{};
    Point2d p{7.0, 8.0};
    EXPECT_EQ(zelm2ViewChange3Dto2D(nullptr, 'L', &X, &p), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewChange3Dto2D(handle.get(), 'L', nullptr, &p), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewChange3Dto2D(handle.get(), 'L', &X, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewChange3Dto2D(handle.get(), 'l', &X, &p), ZELM_ERR_PARAM);
    EXPECT_EQ(p.x, 7.0);
    EXPECT_EQ(zelm2ViewChange3Dto2D(handle.get(), 'L' + 0x5500, &X, &p), ZELM_OK) << "only the low byte counts";
}

}  // namespace
