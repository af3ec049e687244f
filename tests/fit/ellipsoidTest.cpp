// Ellipsoids: known ones in every orientation, the angles, the null-space path, degenerate weights, invariance, noise
// of every size and robust fits. Accuracy is in quadricAccuracyTest.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "fitQuadric.h"
#include "fitShapes.h"
#include "normalizeFitData.h"
#include "quadricScatter.h"
#include "quadricShapes.h"
#include "random.h"
#include "zelm/fit.h"

using zelmtest::axesOf;
using zelmtest::count;
using zelmtest::ellipsoidPoints;
using zelmtest::Frame3;
using zelmtest::kPi;
using zelmtest::OrientedEllipsoid;
using zelmtest::Random;
using zelmtest::Vector3;

namespace {

const Ellipsoid3d kUntouched = {-7, -7, -7, -7, -7, -7, -7, -7, -7};
const Frame3 kAxisAligned = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

const double* coordinates(const std::vector<Point3d>& points) {
    return &points[0].x;
}

// sum of axis axis^T / length^2: the quadratic part, which is what the three axes and the three angles describe.
std::array<double, 9> shapeMatrix(const Ellipsoid3d& e, const Frame3& axes) {
    std::array<double, 9> Q{};
    const double lengths[3] = {e.a, e.b, e.c};
    for (size_t k = 0; k < 3; ++k) {
        for (size_t i = 0; i < 9; ++i) {
            Q[i] += axes[k][i / 3] * axes[k][i % 3] / (lengths[k] * lengths[k]);
        }
    }
    return Q;
}

double relativeDifference(const std::array<double, 9>& a, const std::array<double, 9>& b) {
    double difference = 0.0;
    double size = 0.0;
    for (size_t i = 0; i < 9; ++i) {
        difference += (a[i] - b[i]) * (a[i] - b[i]);
        size += b[i] * b[i];
    }
    return std::sqrt(difference / size);
}

// Centre and axes relative to the smallest axis; and the quadratic part, rebuilt from the numbers that were returned.
void expectEllipsoid(const Ellipsoid3d& actual, const OrientedEllipsoid& expected, double tolerance) {
    const Ellipsoid3d& e = expected.shape;
    EXPECT_NEAR(actual.x, e.x, tolerance * e.a);
    EXPECT_NEAR(actual.y, e.y, tolerance * e.a);
    EXPECT_NEAR(actual.z, e.z, tolerance * e.a);
    EXPECT_NEAR(actual.a, e.a, tolerance * e.a);
    EXPECT_NEAR(actual.b, e.b, tolerance * e.a);
    EXPECT_NEAR(actual.c, e.c, tolerance * e.a);
    EXPECT_GE(actual.a, actual.b);
    EXPECT_GE(actual.b, actual.c);
    const double condition = e.a / e.c;
    EXPECT_LT(relativeDifference(shapeMatrix(actual, axesOf(actual)), shapeMatrix(e, expected.axes)),
              tolerance * condition * condition);
}

std::vector<Point3d> onSurface(const OrientedEllipsoid& e, int32_t n, Random& random) {
    return ellipsoidPoints(e, n, 0.0, random);
}

// x^2 + y^2 - k z^2 = 1.
std::vector<Point3d> hyperboloidPoints(double k, double sigma, Random& random) {
    std::vector<Point3d> points;
    for (int i = 0; i < 120; ++i) {
        const double z = 0.1 * (i % 12) - 0.55;
        const double r = std::sqrt(1.0 + k * z * z);
        points.push_back(zelmtest::withNoise({r * std::cos(0.7 * i), r * std::sin(0.7 * i), z}, sigma, random));
    }
    return points;
}

TEST(FitEllipsoid, BadArgumentsAreRefusedAndTouchNothing) {
    Random random(701);
    const auto points = onSurface(zelmtest::randomEllipsoid(random, 3.0), 20, random);
    Ellipsoid3d e = kUntouched;
    double q[10] = {-7};
    EXPECT_EQ(zelmFitEllipsoid(8, points.data(), 0, 0.0, &e), ZELM_ERR_PARAM);  // one below the minimum
    EXPECT_EQ(zelmFitCone(8, points.data(), 0, 0.0, q), ZELM_ERR_PARAM);
    for (const int32_t robust : {2, -1}) {
        EXPECT_EQ(zelmFitEllipsoid(20, points.data(), robust, 3.0, &e), ZELM_ERR_PARAM);
        EXPECT_EQ(zelmFitCone(20, points.data(), robust, 3.0, q), ZELM_ERR_PARAM);
    }
    for (const double threshold : {0.0, -1.0, std::nan("")}) {
        EXPECT_EQ(zelmFitEllipsoid(20, points.data(), 1, threshold, &e), ZELM_ERR_PARAM);
        EXPECT_EQ(zelmFitCone(20, points.data(), 1, threshold, q), ZELM_ERR_PARAM);
    }
    EXPECT_EQ(zelmFitEllipsoid(20, nullptr, 0, 0.0, &e), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmFitCone(20, nullptr, 0, 0.0, q), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmFitEllipsoid(20, points.data(), 0, 0.0, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmFitCone(20, points.data(), 0, 0.0, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(e.x, -7);
    EXPECT_EQ(q[0], -7);
    EXPECT_EQ(zelmFitEllipsoid(20, points.data(), 0, -1.0, &e), ZELM_OK) << "a plain fit ignores the threshold";
}

// x^T Q x - 1 about the centre.
double valueAt(const Ellipsoid3d& e, const Point3d& p) {
    const Frame3 axes = axesOf(e);
    const Vector3 d = {p.x - e.x, p.y - e.y, p.z - e.z};
    return std::pow(zelmtest::dot3(axes[0], d) / e.a, 2.0) + std::pow(zelmtest::dot3(axes[1], d) / e.b, 2.0) +
           std::pow(zelmtest::dot3(axes[2], d) / e.c, 2.0) - 1.0;
}

// The least number: one solve through the null space, never re-weighted. How well nine places fix the ellipsoid depends
// on where they lie, so that its axes are compared in the middle of many trials; it contains the points in each, to the
// root of the rounding that a roll near a quarter turn leaves.
TEST(FitEllipsoid, NinePointsGiveTheEllipsoidThroughThem) {
    Random random(702);
    std::vector<double> errors;
    for (int trial = 0; trial < 1000; ++trial) {
        const OrientedEllipsoid truth = zelmtest::randomEllipsoid(random, 2.0);
        std::vector<Point3d> points;
        for (int i = 0; i < 9; ++i) {
            points.push_back(zelmtest::onEllipsoid(truth, zelmtest::randomDirection(random)));
        }
        Ellipsoid3d plain;
        Ellipsoid3d robust;
        ASSERT_EQ(zelmFitEllipsoid(9, points.data(), 0, 0.0, &plain), ZELM_OK) << trial;
        ASSERT_EQ(zelmFitEllipsoid(9, points.data(), 1, 0.1, &robust), ZELM_OK) << trial;
        EXPECT_EQ(plain.a, robust.a);
        for (const Point3d& p : points) {
            EXPECT_NEAR(valueAt(plain, p), 0.0, 1e-7);
        }
        errors.push_back(std::fabs(plain.a - truth.shape.a) / truth.shape.a);
    }
    std::sort(errors.begin(), errors.end());
    EXPECT_LT(errors[500], 1e-12);
}

TEST(FitEllipsoid, ASphereHasThreeEqualAxesAndAnyAngles) {
    Random random(703);
    for (const int32_t n : {12, 20, 33, 100}) {
        const OrientedEllipsoid sphere = {{1, 2, 3, 3, 3, 3, 0, 0, 0}, kAxisAligned};
        const auto points = onSurface(sphere, n, random);
        for (const int32_t robust : {0, 1}) {
            Ellipsoid3d e;
            ASSERT_EQ(zelmFitEllipsoid(n, points.data(), robust, 3.0, &e), ZELM_OK);
            expectEllipsoid(e, sphere, 1e-11);
            EXPECT_LE(std::fabs(e.azimuth), kPi);
            EXPECT_LE(std::fabs(e.elevation), kPi / 2.0);
            EXPECT_LE(std::fabs(e.roll), kPi / 2.0);
        }
    }
}

// Rounding of coordinates of up to 50 semi-axes, through a scatter matrix whose smallest value that is not 0 shrinks
// with the fourth power of the axis ratio.
TEST(FitEllipsoid, ExactPointsGiveTheEllipsoidInEveryOrientation) {
    Random random(704);
    for (const double ratio : {1.5, 3.0, 10.0}) {
        for (int trial = 0; trial < 1000; ++trial) {
            const OrientedEllipsoid truth = zelmtest::randomEllipsoid(random, ratio);
            const auto points = onSurface(truth, random.integer(20, 80), random);
            Ellipsoid3d plain;
            Ellipsoid3d robust;
            ASSERT_EQ(zelmFitEllipsoid(count(points), points.data(), 0, 0.0, &plain), ZELM_OK);
            ASSERT_EQ(zelmFitEllipsoid(count(points), points.data(), 1, 3.5, &robust), ZELM_OK);
            expectEllipsoid(plain, truth, 1e-10);
            expectEllipsoid(robust, truth, 1e-10);
            if (ratio <
                5.0) {  // of flat ones the coefficients, scaled by their minors, are so large that residuals count
                EXPECT_EQ(plain.a, robust.a) << "vanishing residuals end the robust fit";
            }
        }
    }
}

TEST(FitEllipsoid, AxesAlongTheCoordinatesAreFound) {
    Random random(705);
    const int orders[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
    for (const auto& order : orders) {
        const auto axis = [](int i) { return kAxisAligned[static_cast<size_t>(i)]; };
        const OrientedEllipsoid truth = {{4, -5, 6, 9, 5, 3, 0, 0, 0},
                                         {axis(order[0]), axis(order[1]), axis(order[2])}};
        const auto points = onSurface(truth, 40, random);
        Ellipsoid3d e;
        ASSERT_EQ(zelmFitEllipsoid(40, points.data(), 0, 0.0, &e), ZELM_OK);
        expectEllipsoid(e, truth, 1e-7);  // a roll of a quarter turn is good to the root of the rounding only
        const double azimuths[3] = {0.0, kPi / 2.0, 0.0};
        if (order[0] < 2) {
            EXPECT_NEAR(std::fabs(std::remainder(e.azimuth - azimuths[order[0]], kPi)), 0.0, 1e-10);
            EXPECT_NEAR(e.elevation, 0.0, 1e-10);
            EXPECT_NEAR(std::fabs(e.roll), order[2] == 2 ? 0.0 : kPi / 2.0, 1e-7);
        } else {
            EXPECT_NEAR(std::fabs(e.elevation), kPi / 2.0, 1e-10);
        }
    }
}

// --- the angles

// The greater angle between an axis of the frame and its direction by the angles, either sign.
double errorOfAxes(const Frame3& frame) {
    const auto angles = zelm::ellipsoidAngles(frame[0].data(), frame[2].data());
    EXPECT_GE(angles.azimuth, 0.0);
    EXPECT_LE(angles.azimuth, kPi);
    EXPECT_LE(std::fabs(angles.elevation), kPi / 2.0);
    EXPECT_LE(std::fabs(angles.roll), kPi / 2.0);
    const Frame3 axes = axesOf({0, 0, 0, 1, 1, 1, angles.azimuth, angles.elevation, angles.roll});
    double error = 0.0;
    for (const size_t k : {size_t{0}, size_t{2}}) {
        const Vector3 across = zelmtest::cross3(axes[k], frame[k]);
        error = std::max(error, std::sqrt(zelmtest::dot3(across, across)));
    }
    return error;
}

// Every orientation comes back, up to the signs of the axes. The arc sine amplifies rounding by the inverse cosine.
TEST(EllipsoidAngles, ReproduceTheAxes) {
    Random random(706);
    double worst = 0.0;
    for (int trial = 0; trial < 100000; ++trial) {
        const Frame3 frame = zelmtest::randomFrame(random);
        const double roll = zelm::ellipsoidAngles(frame[0].data(), frame[2].data()).roll;
        const double error = errorOfAxes(frame);
        EXPECT_LT(error, 1e-14 / std::cos(roll));
        worst = std::max(worst, error);
    }
    std::printf("axes from the angles: off by at most %.1e rad\n", worst);
}

// Where the smallest axis is level, the sine is 1 to rounding and the arc sine gives half the digits: sqrt(2 * 2^-52) =
// 2.1e-8 and the same again for an ulp more.
TEST(EllipsoidAngles, ARollNearAQuarterTurnIsGoodToHalfTheDigits) {
    Random random(716);
    double worst = 0.0;
    for (int trial = 0; trial < 20000; ++trial) {
        const Vector3 largest = zelmtest::randomDirection(random);
        const double level = std::hypot(largest[0], largest[1]);
        const Vector3 side = {largest[1] / level, -largest[0] / level, 0.0};
        const Vector3 up = zelmtest::cross3(side, largest);
        const double off = std::pow(10.0, random.uniform(-17.0, -6.0));
        Vector3 smallest;
        for (size_t i = 0; i < 3; ++i) {
            smallest[i] = std::cos(off) * side[i] + std::sin(off) * up[i];
        }
        worst = std::max(worst, errorOfAxes({largest, zelmtest::cross3(smallest, largest), smallest}));
    }
    std::printf("axes from the angles, roll near a quarter turn: off by at most %.1e rad\n", worst);
    EXPECT_LT(worst, 5e-8);
    EXPECT_GT(worst, 1e-9) << "the limit that the header states";
}

TEST(EllipsoidAngles, AMajorDirectionBelowTheXZPlaneIsTurnedRound) {
    const double down[3] = {0.6, -0.8, 0.0};
    const double up[3] = {-0.6, 0.8, 0.0};
    const double z[3] = {0.0, 0.0, 1.0};
    const auto a = zelm::ellipsoidAngles(down, z);
    const auto b = zelm::ellipsoidAngles(up, z);
    EXPECT_EQ(a.azimuth, b.azimuth);
    EXPECT_EQ(a.azimuth, std::atan2(0.8, -0.6));
    EXPECT_EQ(a.roll, b.roll);
}

// y exactly 0 is not negative: the direction stays as it is, so that both azimuths occur.
TEST(EllipsoidAngles, AMajorDirectionInTheXZPlaneKeepsItsSign) {
    const double y[3] = {0.0, 1.0, 0.0};
    const double forth[3] = {1.0, 0.0, 0.0};
    const double back[3] = {-1.0, 0.0, 0.0};
    EXPECT_EQ(zelm::ellipsoidAngles(forth, y).azimuth, 0.0);
    EXPECT_EQ(zelm::ellipsoidAngles(back, y).azimuth, std::atan2(0.0, -1.0));
}

TEST(EllipsoidAngles, AVerticalMajorDirectionHasAzimuthZeroAndMeasuresTheRollFromMinusX) {
    const double z[3] = {0.0, 0.0, 1.0};
    for (const double roll : {-1.2, -0.3, 0.0, 0.3, 1.2}) {
        // Up from the largest axis is -x, and the side y x (-x) ... = z x (-x) = -y.
        const double smallest[3] = {-std::cos(roll), -std::sin(roll), 0.0};
        const auto angles = zelm::ellipsoidAngles(z, smallest);
        EXPECT_EQ(angles.azimuth, 0.0);
        EXPECT_EQ(angles.elevation, kPi / 2.0);
        EXPECT_NEAR(angles.roll, roll, 1e-14);
    }
}

TEST(EllipsoidAngles, TheRollDoesNotDependOnTheSignOfTheSmallestAxis) {
    const double x[3] = {1.0, 0.0, 0.0};
    for (int degree = -89; degree <= 89; ++degree) {
        const double roll = degree * kPi / 180.0;
        // Up is z, the side x cross z = -y.
        const double smallest[3] = {0.0, -std::sin(roll), std::cos(roll)};
        const double reversed[3] = {0.0, std::sin(roll), -std::cos(roll)};
        EXPECT_NEAR(zelm::ellipsoidAngles(x, smallest).roll, roll, 1e-13);
        EXPECT_NEAR(zelm::ellipsoidAngles(x, reversed).roll, roll, 1e-13);
    }
}

// --- what is no ellipsoid

TEST(FitEllipsoid, AHyperboloidIsNoEllipsoid) {
    Random random(707);
    const auto points = hyperboloidPoints(1.0, 0.0, random);
    Ellipsoid3d e = kUntouched;
    for (const int32_t robust : {0, 1}) {
        EXPECT_EQ(zelmFitEllipsoid(count(points), points.data(), robust, 3.0, &e), ZELM_ERR_FIT_NOT_ELLIPSOID);
    }
    EXPECT_EQ(e.x, -7);
}

// The sum of the minors of x^2 + y^2 - z^2 / 5 is positive too: unlike the constraint of ellipses, it does not exclude
// hyperboloids, so that the best quadric may be refused with noise as well.
TEST(FitEllipsoid, ANoisySlimHyperboloidIsRefused) {
    Random random(708);
    const auto points = hyperboloidPoints(0.2, 0.003, random);
    std::vector<Point3d> normalised(points.size());
    double t[3];
    double s;
    zelm::innerNormalizeFitData(3, count(points), coordinates(points), &normalised[0].x, t, &s);
    const std::vector<double> weights(points.size(), 1.0);
    zelm::QuadricScatter scatter;
    ASSERT_EQ(zelm::monomialScatter<zelm::QuadricTerms>(count(points), weights.data(), &normalised[0].x, &scatter),
              ZELM_OK);
    ASSERT_GT(scatter.values[9], 1e-6) << "not the null-space path";
    Ellipsoid3d e = kUntouched;
    EXPECT_EQ(zelmFitEllipsoid(count(points), points.data(), 0, 0.0, &e), ZELM_ERR_FIT_NOT_ELLIPSOID);
    EXPECT_EQ(e.x, -7);
}

TEST(FitEllipsoid, DegenerateAndNonFinitePointsEndInAStatus) {
    constexpr double kInf = std::numeric_limits<double>::infinity();
    std::vector<std::vector<Point3d>> sets(6);
    for (int i = 0; i < 24; ++i) {
        sets[0].push_back({2.0, 3.0, 4.0});
        sets[1].push_back({1.0 * i, 2.0 * i, 3.0 * i});
        sets[2].push_back({1.0 * (i % 5), 1.0 * (i / 5), 2.0});
        sets[3].push_back({std::sin(i), std::cos(i), i == 7 ? std::nan("") : std::sin(2.0 * i)});
        sets[4].push_back({std::sin(i), std::cos(i), i == 7 ? kInf : std::sin(2.0 * i)});
        sets[5].push_back({1e200 * std::sin(i), 1e200 * std::cos(i), 1e200 * std::sin(2.0 * i)});
    }
    for (const auto& points : sets) {
        for (const int32_t robust : {0, 1}) {
            Ellipsoid3d e;
            double q[10];
            EXPECT_LE(zelmFitEllipsoid(24, points.data(), robust, 3.0, &e), ZELM_OK);
            EXPECT_LE(zelmFitCone(24, points.data(), robust, 3.0, q), ZELM_OK);
        }
    }
    Ellipsoid3d e;
    EXPECT_EQ(zelmFitEllipsoid(24, sets[3].data(), 0, 0.0, &e), ZELM_ERR_EIGEN_NOT_CONVERGED);
}

// --- the solve

TEST(FitEllipsoidSolve, PointsWithoutWeightDoNotTakePart) {
    Random random(709);
    auto points = ellipsoidPoints({{0.1, -0.2, 0.1, 1.6, 1.2, 0.9, 0, 0, 0}, kAxisAligned}, 30, 0.01, random);
    std::vector<double> weights(30, 1.0);
    double expected[10];
    ASSERT_EQ(zelm::fitEllipsoidSolve(30, weights.data(), coordinates(points), expected), ZELM_OK);
    points.insert(points.begin() + 3, {1e6, std::nan(""), 0.0});
    weights.insert(weights.begin() + 3, 0.0);
    double p[10];
    ASSERT_EQ(zelm::fitEllipsoidSolve(31, weights.data(), coordinates(points), p), ZELM_OK);
    EXPECT_TRUE(std::equal(p, p + 10, expected));
}

TEST(FitEllipsoidSolve, FewerThanNinePointsWithWeightAreTooFew) {
    Random random(710);
    const auto points =
        onSurface({{0.1, -0.2, 0.1, 1.6, 1.2, 0.9, 0, 0, 0}, zelmtest::randomFrame(random)}, 24, random);
    for (int used = 0; used <= 10; ++used) {
        std::vector<double> weights(24, 0.0);
        for (int i = 0; i < used; ++i) {
            weights[static_cast<size_t>(2 * i)] = 0.5;
        }
        double p[10];
        for (const auto solve : {zelm::fitEllipsoidSolve, zelm::fitQuadricSolve}) {
            EXPECT_EQ(solve(24, weights.data(), coordinates(points), p), used < 9 ? ZELM_ERR_FIT_DATA : ZELM_OK);
        }
    }
    double p[10];
    EXPECT_EQ(zelm::fitEllipsoidSolve(0, nullptr, nullptr, p), ZELM_ERR_FIT_DATA);
    EXPECT_EQ(zelm::fitQuadricSolve(0, nullptr, nullptr, p), ZELM_ERR_FIT_DATA);
}

// A vector of the null space comes scaled so that the sum of the minors is 1.
TEST(FitEllipsoidSolve, TheNullVectorIsScaledToUnitMinors) {
    Random random(711);
    const auto points =
        onSurface({{0.1, -0.2, 0.1, 1.6, 1.2, 0.9, 0, 0, 0}, zelmtest::randomFrame(random)}, 24, random);
    const std::vector<double> weights(24, 1.0);
    double p[10];
    ASSERT_EQ(zelm::fitEllipsoidSolve(24, weights.data(), coordinates(points), p), ZELM_OK);
    EXPECT_NEAR(zelm::quadricInvariants(p).minors, 1.0, 1e-12);
}

// Seven places have a space of three quadrics through them. It is searched from its last vector on for the first that
// is an ellipsoid: here the candidates are checked one by one.
TEST(FitEllipsoidSolve, TheNullSpaceIsSearchedForAnEllipsoid) {
    int found = 0;
    int refused = 0;
    for (int k = 0; k < 20; ++k) {
        const double a = 0.5 + 0.1 * k;
        std::vector<Point3d> points;
        for (const double sign : {-1.0, 1.0, -1.0, 1.0}) {
            points.push_back({sign * a, 0, 0});
            points.push_back({0, sign * 1.1, 0});
            points.push_back({0, 0, sign * 0.9});
            points.push_back({a * 0.6, 1.1 * 0.8, 0});
        }
        const auto n = count(points);
        const std::vector<double> weights(points.size(), 1.0);
        zelm::QuadricScatter scatter;
        ASSERT_EQ(zelm::monomialScatter<zelm::QuadricTerms>(n, weights.data(), coordinates(points), &scatter), ZELM_OK);
        ASSERT_LT(std::fabs(scatter.values[7]), 1e-12);
        ASSERT_GT(scatter.values[6], 1e-12);
        const double* expected = nullptr;
        for (size_t i = 10; i-- > 0 && expected == nullptr;) {
            const double* const e = scatter.vectors + 10 * i;
            const auto q = zelm::quadricInvariants(e);
            if (std::fabs(scatter.values[i]) < 1e-12 && q.minors > 0.0 && q.determinant * q.trace > 0.0) {
                expected = e;
            }
        }
        double p[10];
        const int32_t status = zelm::fitEllipsoidSolve(n, weights.data(), coordinates(points), p);
        if (expected == nullptr) {
            EXPECT_EQ(status, ZELM_ERR_FIT_NOT_ELLIPSOID);
            ++refused;
        } else {
            ASSERT_EQ(status, ZELM_OK);
            for (size_t i = 0; i < 10; ++i) {
                EXPECT_EQ(p[i], expected[i] / std::sqrt(zelm::quadricInvariants(expected).minors));
            }
            ++found;
        }
    }
    EXPECT_GT(found, 0);
    EXPECT_EQ(found + refused, 20);
}

// The fit minimises the algebraic distance over the quadrics whose minors sum up to 1.
TEST(FitEllipsoidSolve, NoOtherQuadricWithUnitMinorsHasALesserAlgebraicDistance) {
    Random random(712);
    for (int trial = 0; trial < 100; ++trial) {
        const auto points = ellipsoidPoints({{0.1, -0.2, 0.1, 1.6, 1.2, 0.9, 0, 0, 0}, zelmtest::randomFrame(random)},
                                            40, 0.05, random);
        const std::vector<double> weights(40, 1.0);
        double best[10];
        ASSERT_EQ(zelm::fitEllipsoidSolve(40, weights.data(), coordinates(points), best), ZELM_OK);
        const auto cost = [&](const double* p) {
            double sum = 0.0;
            for (const Point3d& point : points) {
                sum += std::pow(zelmtest::quadricAt(p, point), 2.0);
            }
            const double minors = zelm::quadricInvariants(p).minors;
            return minors > 0.0 ? sum / minors : 1e300;
        };
        double size = 0.0;
        for (const double v : best) {
            size = std::max(size, std::fabs(v));
        }
        for (int k = 0; k < 50; ++k) {
            double other[10];
            std::transform(best, best + 10, other, [&](double v) { return v + 0.01 * size * random.normal(); });
            EXPECT_GT(cost(other), cost(best));
        }
    }
}

// --- the fit as a whole

// From exact points through the ranges in which the smallest eigenvalue crosses 1e-12 and a Cholesky term 1e-11 to
// plain noise: no gap, and an error that goes with the noise.
TEST(FitEllipsoid, NoiseOfEverySizeIsFittedWithoutAGap) {
    Random random(713);
    for (double exponent = -16.0; exponent <= -1.5; exponent += 0.05) {
        const double relative = std::pow(10.0, exponent);
        for (int trial = 0; trial < 10; ++trial) {
            const OrientedEllipsoid truth = {{20.0, 30.0, -10.0, 10.0, 8.0, 6.0, 0, 0, 0},
                                             zelmtest::randomFrame(random)};
            const auto points = ellipsoidPoints(truth, 60, relative * truth.shape.a, random);
            Ellipsoid3d e;
            ASSERT_EQ(zelmFitEllipsoid(60, points.data(), trial % 2, 3.5, &e), ZELM_OK) << exponent;
            // Axes have a bound of 0.4 sigma with so many points: six of them, and room for a robust fit and bias.
            expectEllipsoid(e, truth, 4.0 * relative + 1e-10);
        }
    }
}

TEST(FitEllipsoid, TheResultMovesTurnsAndScalesWithThePoints) {
    Random random(714);
    for (int trial = 0; trial < 500; ++trial) {
        const OrientedEllipsoid truth = {{3.0, -4.0, 5.0, 10.0, 7.5, 5.0, 0, 0, 0}, zelmtest::randomFrame(random)};
        const auto points = ellipsoidPoints(truth, 40, 0.1, random);
        const Frame3 R = zelmtest::randomFrame(random);
        const double s = std::pow(10.0, random.uniform(-3.0, 3.0));
        const Vector3 shift = {s * random.uniform(-100, 100), s * random.uniform(-100, 100),
                               s * random.uniform(-100, 100)};
        const auto turned = [&](const Vector3& v) {
            return Vector3{zelmtest::dot3(R[0], v), zelmtest::dot3(R[1], v), zelmtest::dot3(R[2], v)};
        };
        const auto move = [&](const Point3d& p) {
            const Vector3 v = turned({p.x, p.y, p.z});
            return Point3d{s * v[0] + shift[0], s * v[1] + shift[1], s * v[2] + shift[2]};
        };
        std::vector<Point3d> moved;
        std::transform(points.begin(), points.end(), std::back_inserter(moved), move);
        Ellipsoid3d a;
        Ellipsoid3d b;
        ASSERT_EQ(zelmFitEllipsoid(40, points.data(), trial % 2, 3.5, &a), ZELM_OK);
        ASSERT_EQ(zelmFitEllipsoid(40, moved.data(), trial % 2, 3.5, &b), ZELM_OK);
        const Point3d centre = move({a.x, a.y, a.z});
        const Frame3 axes = axesOf(a);
        const OrientedEllipsoid expected = {{centre.x, centre.y, centre.z, s * a.a, s * a.b, s * a.c, 0, 0, 0},
                                            {turned(axes[0]), turned(axes[1]), turned(axes[2])}};
        expectEllipsoid(b, expected, 1e-8);  // a roll near a quarter turn, see above
    }
}

// A tight threshold leaves fewer than nine points some weight.
TEST(FitEllipsoid, ARobustFitThatKeepsEightPointsFails) {
    Random random(715);
    int failed = 0;
    for (int trial = 0; trial < 200; ++trial) {
        const auto points = ellipsoidPoints({{0, 0, 0, 9, 7, 6, 0, 0, 0}, kAxisAligned}, 16, 0.3, random);
        Ellipsoid3d e = kUntouched;
        if (zelmFitEllipsoid(16, points.data(), 1, 0.4, &e) == ZELM_ERR_FIT_DATA) {
            ++failed;
            EXPECT_EQ(e.x, -7);
        }
    }
    EXPECT_GT(failed, 150);  // sixteen points, and a cut-off at 0.6 of the median
}

}  // namespace
