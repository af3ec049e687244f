// Fundamental matrix and rectifying pairs from cameras whose truth is known. The calibration that leads there is tested
// in stereoCalibTest.cpp.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "epipolarRounding.h"
#include "rigFixtures.h"
#include "stereoGeometry.h"

namespace zelmtest {
namespace {

// Rounding alone: pixel coordinates (1e3) through two matrices and their inverses.
constexpr double kPixelRounding = 1e-8;

struct Rig {
    render::Camera left, right;
    render::Pose leftPose, rightPose;

    [[nodiscard]] zelm::CalibratedCamera L() const { return calibrated(left, leftPose); }
    [[nodiscard]] zelm::CalibratedCamera R() const { return calibrated(right, rightPose); }
};

render::Camera parallelCamera(double scale) {
    auto camera = testCamera();
    camera.projection = render::Projection::parallel;
    camera.fx = camera.fy = scale;
    return camera;
}

Rig randomRig(Random* random, bool isLeftParallel, bool isRightParallel) {
    Rig rig{testCamera(), testCamera(), {}, {}};
    rig.left.fx = random->uniform(600, 2000);
    rig.right.fy = random->uniform(600, 2000);
    rig.right.skew = random->uniform(-3, 3);
    rig.left.theta = random->uniform(-0.01, 0.01);
    if (isLeftParallel) {
        rig.left = parallelCamera(random->uniform(2, 8));
    }
    if (isRightParallel) {
        rig.right = parallelCamera(random->uniform(2, 8));
    }
    const auto pose = [random](const render::Camera& camera) {
        const double tilt = random->uniform(5, 40);
        return render::aimedPose(
            camera, aimAt(camera, random->uniform(2, 5), random->uniform(0, 360), tilt, random->uniform(0, 360)));
    };
    rig.leftPose = pose(rig.left);
    rig.rightPose = pose(rig.right);
    return rig;
}

void expectFundamental(const Rig& rig, Random* random) {
    zelm::FundamentalPair pair{};
    ASSERT_EQ(zelm::innerFundamentalPair(rig.L(), rig.R(), &pair), ZELM_OK);
    for (int i = 0; i < 50; ++i) {
        const Point3d X = {random->uniform(-60, 60), random->uniform(-50, 50), random->uniform(-30, 30)};
        const auto left = idealPixel(rig.left, rig.leftPose, X);
        const auto right = idealPixel(rig.right, rig.rightPose, X);
        EXPECT_LT(epipolarDistance(pair.F, left, right), epipolarRounding(pair.Ft, right, left));
    }
    // Rank 2: a determinant at the rounding of products of elements up to 1.
    EXPECT_LT(std::fabs(determinant(pair.F)), 1e-15);
    // The scale is set before the rank, so that the largest element is close to 1, not exactly 1.
    EXPECT_NEAR(largestElement(pair.F), 1.0, 1e-9);
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(pair.Ft[i], pair.F[3 * (i % 3) + i / 3]);
    }
}

TEST(FundamentalPair, PerspectivePairSatisfiesTheEpipolarConstraint) {
    Random random(11);
    for (int trial = 0; trial < 50; ++trial) {
        expectFundamental(randomRig(&random, false, false), &random);
    }
}

TEST(FundamentalPair, ParallelLeftCameraWorksWithEitherRightOne) {
    Random random(12);
    for (int trial = 0; trial < 50; ++trial) {
        expectFundamental(randomRig(&random, true, false), &random);
        expectFundamental(randomRig(&random, true, true), &random);
    }
}

TEST(FundamentalPair, ParallelPairIsAffine) {
    Random random(13);
    zelm::FundamentalPair pair{};
    const auto rig = randomRig(&random, true, true);
    ASSERT_EQ(zelm::innerFundamentalPair(rig.L(), rig.R(), &pair), ZELM_OK);
    for (const int i : {0, 1, 3, 4}) {
        EXPECT_NEAR(pair.F[i], 0.0, 1e-14);  // rounding: both epipoles are at infinity
    }
}

TEST(FundamentalPair, OfASidewaysPairIsKnown) {
    // Equal cameras side by side: a point keeps its row, so F is (0, 0, 0; 0, 0, -1; 0, 1, 0) up to sign.
    Rig rig{testCamera(), testCamera(), {}, {}};
    rig.left.fx = rig.left.fy = rig.right.fx = rig.right.fy = 1.0;
    rig.left.cx = rig.left.cy = rig.right.cx = rig.right.cy = 0.0;
    rig.leftPose.t = {0, 0, 300};
    rig.rightPose.t = {-100, 0, 300};
    zelm::FundamentalPair pair{};
    ASSERT_EQ(zelm::innerFundamentalPair(rig.L(), rig.R(), &pair), ZELM_OK);
    const double sign = pair.F[7];
    const double expected[9] = {0, 0, 0, 0, 0, -1, 0, 1, 0};
    for (int i = 0; i < 9; ++i) {
        EXPECT_NEAR(sign * pair.F[i], expected[i], 1e-15);
    }
}

TEST(FundamentalPair, PerspectiveLeftWithParallelRightIsRefusedDeliberately) {
    Random random(14);
    auto rig = randomRig(&random, false, true);
    zelm::FundamentalPair pair{};
    EXPECT_EQ(zelm::innerFundamentalPair(rig.L(), rig.R(), &pair), ZELM_ERR_PARAM);
    auto left = rig.L();
    left.model = 1;
    EXPECT_EQ(zelm::innerFundamentalPair(left, rig.R(), &pair), ZELM_ERR_PARAM);
}

TEST(FundamentalPair, CamerasInOnePlaceHaveNone) {
    Random random(15);
    auto rig = randomRig(&random, false, false);
    rig.leftPose = {{1, 0, 0, 0, 1, 0, 0, 0, 1}, {3, 4, 300}};
    rig.rightPose = rig.leftPose;
    zelm::FundamentalPair pair{};
    EXPECT_EQ(zelm::innerFundamentalPair(rig.L(), rig.R(), &pair), ZELM_ERR_SVD_FAILED);
}

TEST(FundamentalPair, SingularMatricesAreReported) {
    Random random(16);
    const auto rig = randomRig(&random, false, false);
    zelm::FundamentalPair pair{};
    auto broken = rig.L();
    std::fill_n(broken.intrinsics.A, 9, 0.0);
    EXPECT_EQ(zelm::innerFundamentalPair(broken, rig.R(), &pair), ZELM_ERR_SINGULAR);
    broken = rig.R();
    std::fill_n(broken.pose.R, 9, 0.0);
    EXPECT_EQ(zelm::innerFundamentalPair(rig.L(), broken, &pair), ZELM_ERR_SINGULAR);
    broken = rig.R();
    broken.intrinsics.A[0] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_LT(zelm::innerFundamentalPair(rig.L(), broken, &pair), 0);
}

TEST(FundamentalPair, ParallelCameraThatSeesTheWorldAsALineIsDegenerate) {
    Random random(17);
    const auto rig = randomRig(&random, true, false);
    auto flat = rig.L();
    std::copy(flat.pose.R, flat.pose.R + 3, flat.pose.R + 3);
    flat.intrinsics.A[1] = 0.0;
    zelm::FundamentalPair pair{};
    EXPECT_EQ(zelm::innerFundamentalPair(flat, rig.R(), &pair), ZELM_ERR_DEGENERATE);
}

void expectInverse(const zelm::RectifyingPair& pair) {
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            double sum = 0.0;
            double magnitude = 0.0;
            for (int k = 0; k < 3; ++k) {
                sum += pair.M[3 * i + k] * pair.Minv[3 * k + j];
                magnitude += std::fabs(pair.M[3 * i + k] * pair.Minv[3 * k + j]);
            }
            // Rounding of an inverse by LU of a matrix whose condition is below 1e6.
            EXPECT_NEAR(sum, i == j ? 1.0 : 0.0, 1e-9 * std::max(1.0, magnitude));
        }
    }
}

TEST(RectifyingPair, OfAPerspectivePairIsTheLeftBlockOfTheProjection) {
    Random random(21);
    for (int trial = 0; trial < 20; ++trial) {
        const auto rig = randomRig(&random, false, false);
        const auto camera = rig.L();
        zelm::RectifyingPair pair{};
        ASSERT_EQ(zelm::innerRectifyingPair(camera, false, &pair), ZELM_OK);
        const auto K = render::cameraMatrix(rig.left);
        // P is scaled so that its last element, the depth of the world's origin, is 1.
        const double depth = rig.leftPose.t[2];
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 3; ++j) {
                double product = 0.0;
                for (std::size_t k = 0; k < 3; ++k) {
                    product += K[3 * i + k] * rig.leftPose.R[3 * k + j];
                }
                EXPECT_NEAR(pair.M[3 * i + j], product / depth, 1e-12 * 2000 / depth);  // rounding at K's size
            }
        }
        expectInverse(pair);
    }
}

TEST(RectifyingPair, OfAPairWithAParallelCameraIsThePlaneHomography) {
    Random random(22);
    for (int trial = 0; trial < 20; ++trial) {
        const auto rig = randomRig(&random, true, trial % 2 == 0);
        for (const bool isLeft : {true, false}) {
            const auto& camera = isLeft ? rig.left : rig.right;
            const auto& pose = isLeft ? rig.leftPose : rig.rightPose;
            const auto record = isLeft ? rig.L() : rig.R();
            zelm::RectifyingPair pair{};
            ASSERT_EQ(zelm::innerRectifyingPair(record, true, &pair), ZELM_OK);
            expectInverse(pair);
            double P[12];
            ASSERT_EQ(zelmCalibCameraMatrix(record.intrinsics.A, &record.pose, P, record.model), ZELM_OK);
            for (const double height : {0.0, 12.0}) {
                const double x = random.uniform(-50, 50);
                const double y = random.uniform(-50, 50);
                double q[3];
                for (int i = 0; i < 3; ++i) {
                    // Adding the height times the projection's third column moves the plane there.
                    q[i] = pair.M[3 * i] * x + pair.M[3 * i + 1] * y + pair.M[3 * i + 2] + height * P[4 * i + 2];
                }
                const auto expected = idealPixel(camera, pose, {x, y, height});
                EXPECT_NEAR(q[0] / q[2], expected.x, kPixelRounding);
                EXPECT_NEAR(q[1] / q[2], expected.y, kPixelRounding);
            }
        }
    }
}

TEST(RectifyingPair, OfASingularCameraMatrixIsReported) {
    auto camera = calibrated(testCamera(), {{1, 0, 0, 0, 0, -1, 0, 1, 0}, {0, 0, 300}});
    std::fill_n(camera.intrinsics.A, 9, 0.0);
    zelm::RectifyingPair pair{};
    EXPECT_EQ(zelm::innerRectifyingPair(camera, false, &pair), ZELM_ERR_SINGULAR);
}

}  // namespace
}  // namespace zelmtest
