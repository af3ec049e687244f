// Cones: known ones of every aperture, what is refused and what passes, and the scaling of the coefficients. Accuracy
// is in quadricAccuracyTest.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "coneGeometry.h"
#include "fitQuadric.h"
#include "fitShapes.h"
#include "normalizeFitData.h"
#include "quadricScatter.h"
#include "quadricShapes.h"
#include "random.h"
#include "zelm/fit.h"

using zelmtest::Cone;
using zelmtest::count;
using zelmtest::kPi;
using zelmtest::Random;

namespace {

double norm(const double* q) {
    double squares = 0.0;
    for (int i = 0; i < 10; ++i) {
        squares += q[i] * q[i];
    }
    return std::sqrt(squares);
}

std::vector<Point3d> cylinderPoints() {
    std::vector<Point3d> points;
    for (int i = 0; i < 60; ++i) {
        points.push_back({2.0 + 3.0 * std::cos(0.7 * i), 1.0 + 3.0 * std::sin(0.7 * i), 0.25 * (i % 13)});
    }
    return points;
}

std::vector<Point3d> ellipsoidPoints(Random& random) {
    return zelmtest::ellipsoidPoints({{5, -4, 3, 4, 3, 2, 0, 0, 0}, zelmtest::randomFrame(random)}, 60, 0.0, random);
}

// The scatter in the normalised frame; its last vector is what the driver leaves.
zelm::QuadricScatter normalisedScatter(const std::vector<Point3d>& points) {
    std::vector<Point3d> normalised(points.size());
    double t[3];
    double s;
    zelm::innerNormalizeFitData(3, count(points), &points[0].x, &normalised[0].x, t, &s);
    const std::vector<double> weights(points.size(), 1.0);
    zelm::QuadricScatter scatter;
    EXPECT_EQ(zelm::monomialScatter<zelm::QuadricTerms>(count(points), weights.data(), &normalised[0].x, &scatter),
              ZELM_OK);
    return scatter;
}

TEST(FitCone, TheCircularConeAboutZ) {
    for (const int32_t n : {12, 30, 100}) {
        std::vector<Point3d> points;
        for (int32_t i = 0; i < n; ++i) {
            const double z = -2.0 + 4.0 * i / n;
            const double angle = 2.4 * i;
            points.push_back({z * std::cos(angle), z * std::sin(angle), z});
        }
        for (const int32_t robust : {0, 1}) {
            double q[10];
            ASSERT_EQ(zelmFitCone(n, points.data(), robust, 3.0, q), ZELM_OK);
            const double sign = q[0] < 0.0 ? -1.0 : 1.0;
            const double k = 1.0 / std::sqrt(3.0);
            const double expected[10] = {k, k, -k, 0, 0, 0, 0, 0, 0, 0};
            for (size_t i = 0; i < 10; ++i) {
                EXPECT_NEAR(sign * q[i], expected[i], 1e-12) << i;
            }
        }
    }
}

TEST(FitCone, NinePointsAreEnough) {
    Random random(722);
    const Cone truth = {{1, 2, 3}, zelmtest::randomFrame(random), 1.0};
    std::vector<Point3d> points;
    for (int i = 0; i < 9; ++i) {
        points.push_back(zelmtest::onCone(truth, 1.0 + 0.3 * ((5 * i) % 9), 2.4 * i));
    }
    double plain[10];
    double robust[10];
    ASSERT_EQ(zelmFitCone(9, points.data(), 0, 0.0, plain), ZELM_OK);
    ASSERT_EQ(zelmFitCone(9, points.data(), 1, 0.1, robust), ZELM_OK);
    EXPECT_TRUE(std::equal(plain, plain + 10, robust)) << "nothing is re-weighted";
    EXPECT_NEAR(zelmtest::coneOf(plain).aperture, truth.aperture, 1e-9);
}

// Tolerance: the eigenvector moves by the rounding of the scatter matrix over the distance to the next eigenvalue, and
// the geometry by that over the smallest coefficient that it hangs on, 1e-2 for slim and flat cones.
TEST(FitCone, EveryApertureIsFound) {
    Random random(723);
    double worst = 0.0;
    for (int degrees = 10; degrees <= 160; degrees += 5) {
        for (int trial = 0; trial < 30; ++trial) {
            const Cone truth = {{random.uniform(-5, 5), random.uniform(-5, 5), random.uniform(-5, 5)},
                                zelmtest::randomFrame(random),
                                degrees * kPi / 180.0};
            const auto points = zelmtest::conePoints(truth, 80, trial % 2 == 1, 0.0, random);
            const auto scatter = normalisedScatter(points);
            const double tolerance = 100.0 * 0x1.0p-52 * scatter.values[0] / scatter.values[8];
            double q[10];
            ASSERT_EQ(zelmFitCone(80, points.data(), trial % 2, 3.0, q), ZELM_OK);
            EXPECT_NEAR(norm(q), 1.0, 1e-14) << "unit length in the caller's frame";
            const auto found = zelmtest::coneOf(q);
            EXPECT_NEAR(found.aperture, truth.aperture, tolerance);
            EXPECT_NEAR(std::fabs(zelmtest::dot3(found.axis, truth.frame[0])), 1.0, tolerance);
            worst = std::max(worst, std::fabs(found.aperture - truth.aperture));
            for (size_t i = 0; i < 3; ++i) {
                EXPECT_NEAR(found.apex[i], truth.apex[i], tolerance);
            }
        }
    }
    std::printf("cones of 10 to 160 degrees: aperture off by at most %.1e rad\n", worst);
}

// The coefficients of the conic fits are divided by another norm, so that far from the origin theirs is not 1.
TEST(FitCone, CoefficientsHaveUnitLengthAlsoFarFromTheOrigin) {
    Random random(724);
    const Cone truth = {{300.0, -200.0, 100.0}, zelmtest::randomFrame(random), 1.2};
    const auto points = zelmtest::conePoints(truth, 60, false, 0.0, random);
    double q[10];
    ASSERT_EQ(zelmFitCone(60, points.data(), 0, 0.0, q), ZELM_OK);
    EXPECT_NEAR(norm(q), 1.0, 1e-14);
    EXPECT_GT(std::fabs(q[9]), 0.9) << "the constant term leads there";
}

TEST(FitCone, ACylinderIsNoCone) {
    double q[10];
    const auto points = cylinderPoints();
    EXPECT_EQ(zelmFitCone(count(points), points.data(), 0, 0.0, q), ZELM_ERR_FIT_NOT_CONE);
}

TEST(FitCone, AnEllipsoidIsNoCone) {
    Random random(725);
    double q[10];
    for (int trial = 0; trial < 50; ++trial) {
        const auto points = ellipsoidPoints(random);
        EXPECT_EQ(zelmFitCone(count(points), points.data(), trial % 2, 3.0, q), ZELM_ERR_FIT_NOT_CONE);
    }
}

TEST(FitCone, ARefusedQuadricIsLeftInTheNormalisedFrame) {
    Random random(726);
    for (const auto& points : {cylinderPoints(), ellipsoidPoints(random)}) {
        double q[10];
        ASSERT_EQ(zelmFitCone(count(points), points.data(), 0, 0.0, q), ZELM_ERR_FIT_NOT_CONE);
        EXPECT_TRUE(std::equal(q, q + 10, normalisedScatter(points).vectors + 90));
    }
}

TEST(FitCone, OtherFailuresLeaveTheResultAlone) {
    std::vector<Point3d> points(20, Point3d{1.0, 2.0, std::nan("")});
    double q[10];
    std::fill(q, q + 10, -7.0);
    ASSERT_LT(zelmFitCone(20, points.data(), 0, 0.0, q), ZELM_OK);
    EXPECT_TRUE(std::all_of(q, q + 10, [](double v) { return v == -7.0; }));
}

// A known width of the test: it sees the quadratic part alone, which hyperboloids share with cones.
TEST(FitCone, HyperboloidsPass) {
    std::vector<Point3d> points;
    for (int i = 0; i < 60; ++i) {
        const double z = 0.2 * (i % 11) - 1.0;
        const double r = std::sqrt(1.0 + z * z);
        points.push_back({r * std::cos(0.7 * i), r * std::sin(0.7 * i), z});
    }
    double q[10];
    EXPECT_EQ(zelmFitCone(count(points), points.data(), 0, 0.0, q), ZELM_OK);
}

// --- the sign pattern

TEST(ConeTest, SignPatterns) {
    const auto passes = [](double a, double b, double c) {
        const double q[10] = {a, b, c, 0, 0, 0, 0, 0, 0, 0};
        return zelm::isConeLike(q);
    };
    for (const double big : {0.3, 0.9}) {
        EXPECT_TRUE(passes(big, 0.5, -0.4));
        EXPECT_TRUE(passes(-0.4, big, 0.5));
        EXPECT_TRUE(passes(-big, -0.5, 0.4));
        EXPECT_TRUE(passes(0.01, -big, -0.01));
        EXPECT_FALSE(passes(big, 0.5, 0.4));
        EXPECT_FALSE(passes(-big, -0.5, -0.4));
    }
}

TEST(ConeTest, SignPatternsOfTurnedQuadratics) {
    Random random(727);
    for (int trial = 0; trial < 5000; ++trial) {
        const auto frame = zelmtest::randomFrame(random);
        double values[3];
        for (double& v : values) {
            v = random.uniform(0.05, 1.0) * (random.uniform() < 0.5 ? -1.0 : 1.0);
        }
        double Q[9] = {};
        for (size_t k = 0; k < 3; ++k) {
            for (size_t i = 0; i < 9; ++i) {
                Q[i] += values[k] * frame[k][i / 3] * frame[k][i % 3];
            }
        }
        const double q[10] = {Q[0], Q[4], Q[8], 2.0 * Q[1], 2.0 * Q[2], 2.0 * Q[5], 0, 0, 0, 0};
        const bool definite = (values[0] > 0.0) == (values[1] > 0.0) && (values[1] > 0.0) == (values[2] > 0.0);
        EXPECT_EQ(zelm::isConeLike(q), !definite) << values[0] << " " << values[1] << " " << values[2];
    }
}

TEST(ConeTest, ADeterminantBelowTheThresholdIsNoCone) {
    for (const double sign : {1.0, -1.0}) {
        const double below[10] = {1.0, -1.0, sign * 0.999e-12, 0, 0, 0, 0, 0, 0, 0};
        const double at[10] = {1.0, -1.0, sign * 1e-12, 0, 0, 0, 0, 0, 0, 0};
        EXPECT_FALSE(zelm::isConeLike(below));
        EXPECT_TRUE(zelm::isConeLike(at));
    }
}

// Three eigenvalues that are equal make the radicand trace^2 - 3 minors 0, or by rounding negative: its root is then
// not a number, no comparison holds, and the definite quadratic part passes. Deliberate.
TEST(ConeTest, ANegativeRadicandLetsASpherePass) {
    int negative = 0;
    for (int i = 1; i <= 1000; ++i) {
        const double a = i / 1000.0;
        for (const double sign : {1.0, -1.0}) {
            const double q[10] = {sign * a, sign * a, sign * a, 0, 0, 0, 0, 0, 0, 0};
            const auto invariants = zelm::quadricInvariants(q);
            const bool isNegative = invariants.trace * invariants.trace - 3.0 * invariants.minors < 0.0;
            negative += isNegative ? 1 : 0;
            EXPECT_EQ(zelm::isConeLike(q), isNegative) << a;
        }
    }
    EXPECT_GT(negative, 0);
}

TEST(FitCone, SomeSpheresPassByThatQuirk) {
    Random random(728);
    int passed = 0;
    for (int trial = 0; trial < 200; ++trial) {
        const double r = random.uniform(1.0, 9.0);
        const auto points =
            zelmtest::ellipsoidPoints({{1, 2, 3, r, r, r, 0, 0, 0}, zelmtest::randomFrame(random)}, 40, 0.0, random);
        const auto q = zelm::quadricInvariants(normalisedScatter(points).vectors + 90);
        const bool expected = q.trace * q.trace - 3.0 * q.minors < 0.0;
        double result[10];
        EXPECT_EQ(zelmFitCone(40, points.data(), 0, 0.0, result), expected ? ZELM_OK : ZELM_ERR_FIT_NOT_CONE);
        passed += expected ? 1 : 0;
    }
    EXPECT_GT(passed, 0);
    EXPECT_LT(passed, 200);
}

}  // namespace
