// Ellipses and conics: known conics, the null-space path, coefficient scaling, degenerate weights, invariance, noise of
// every size and robust fits. The shared contract is in meansLinesPlanesTest.cpp, accuracy in fitAccuracyTest.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "conicScatter.h"
#include "fitEllipse.h"
#include "fitShapes.h"
#include "isClose.h"
#include "normalizeFitData.h"
#include "random.h"
#include "zelm/fit.h"

using zelmtest::axisDifference;
using zelmtest::circlePoints;
using zelmtest::count;
using zelmtest::ellipsePoints;
using zelmtest::kPi;
using zelmtest::Random;

namespace {

// Relative to the semi-major axis: rounding of coordinates 100 times larger, squared, through an eigenproblem whose
// smallest values lie at 1e-16 of the largest.
constexpr double kExact = 1e-9;

void expectEllipse(const Ellipse2d& actual, const Ellipse2d& expected, double tolerance) {
    EXPECT_NEAR(actual.x, expected.x, tolerance * expected.a);
    EXPECT_NEAR(actual.y, expected.y, tolerance * expected.a);
    EXPECT_NEAR(actual.a, expected.a, tolerance * expected.a);
    EXPECT_NEAR(actual.b, expected.b, tolerance * expected.a);
    const double eccentricity = 1.0 - expected.b / expected.a;
    EXPECT_NEAR(axisDifference(actual.angle, expected.angle), 0.0, tolerance / std::max(eccentricity, tolerance));
    EXPECT_GE(actual.a, actual.b);
    EXPECT_GE(actual.angle, -kPi / 2.0);
    EXPECT_LE(actual.angle, kPi / 2.0);
}

double valueAt(const double* c, const Point2d& p) {
    return c[0] * p.x * p.x + c[1] * p.x * p.y + c[2] * p.y * p.y + c[3] * p.x + c[4] * p.y + c[5];
}

std::vector<Point2d> hyperbolaPoints() {
    std::vector<Point2d> points;
    for (int i = -5; i <= 5; ++i) {
        const double t = 0.3 * i;
        points.push_back({2.0 * std::cosh(t) + 3.0, std::sinh(t) - 1.0});
        points.push_back({-2.0 * std::cosh(t) + 3.0, std::sinh(t) - 1.0});
    }
    return points;
}

// The conic in the normalised frame of the points.
std::vector<double> normalised(const double* c, const std::vector<Point2d>& points) {
    std::vector<double> dst(2 * points.size());
    double t[2];
    double s;
    zelm::innerNormalizeFitData(2, count(points), reinterpret_cast<const double*>(points.data()), dst.data(), t, &s);
    return {c[0] / (s * s),
            c[1] / (s * s),
            c[2] / (s * s),
            (2.0 * c[0] * t[0] + c[1] * t[1] + c[3]) / s,
            (c[1] * t[0] + 2.0 * c[2] * t[1] + c[4]) / s,
            valueAt(c, {t[0], t[1]})};
}

std::vector<Point2d> normalisedPoints(const std::vector<Point2d>& points) {
    std::vector<Point2d> dst(points.size());
    double t[2];
    double s;
    zelm::innerNormalizeFitData(2, count(points), &points[0].x, &dst[0].x, t, &s);
    return dst;
}

double norm(const std::vector<double>& v) {
    double squares = 0.0;
    for (const double x : v) {
        squares += x * x;
    }
    return std::sqrt(squares);
}

TEST(FitEllipse, FourPointsAreRefused) {
    Random random(551);
    const auto points = ellipsePoints({3, 4, 9, 5, 0.3}, 4, 0.0, random);
    Ellipse2d e;
    double c[6];
    EXPECT_EQ(zelmFitEllipse(4, points.data(), 0, 0.0, &e), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmFitEllipseC(4, points.data(), 0, 0.0, c), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmFitConics(4, points.data(), 0, 0.0, c), ZELM_ERR_PARAM);
}

TEST(FitEllipse, FivePointsGiveTheEllipseThroughThem) {
    Random random(552);
    for (int trial = 0; trial < 1000; ++trial) {
        const Ellipse2d truth = zelmtest::randomEllipse(random);
        const auto points = ellipsePoints(truth, 5, 0.0, random, random.uniform(0.0, 2.0 * kPi));
        for (const int32_t robust : {0, 1}) {
            Ellipse2d e;
            ASSERT_EQ(zelmFitEllipse(5, points.data(), robust, 3.0, &e), ZELM_OK) << trial;
            expectEllipse(e, truth, kExact);
        }
    }
}

TEST(FitEllipse, ExactPointsGiveTheEllipseAndVanishingResidualsEndTheRobustFit) {
    Random random(553);
    for (int trial = 0; trial < 1000; ++trial) {
        const Ellipse2d truth = zelmtest::randomEllipse(random);
        const auto points = ellipsePoints(truth, random.integer(6, 60), 0.0, random);
        Ellipse2d plain;
        Ellipse2d robust;
        ASSERT_EQ(zelmFitEllipse(count(points), points.data(), 0, 0.0, &plain), ZELM_OK);
        ASSERT_EQ(zelmFitEllipse(count(points), points.data(), 1, 3.5, &robust), ZELM_OK);
        expectEllipse(plain, truth, kExact);
        EXPECT_EQ(plain.x, robust.x);
        EXPECT_EQ(plain.a, robust.a);
    }
}

TEST(FitEllipse, ACircleHasEqualAxesAndAnyAngle) {
    Random random(554);
    for (const int32_t n : {5, 6, 8, 20, 33}) {
        const auto points = circlePoints({1.0, 1.0, 2.0}, n, 0.0, random);
        Ellipse2d e;
        ASSERT_EQ(zelmFitEllipse(n, points.data(), 0, 0.0, &e), ZELM_OK);
        EXPECT_NEAR(e.x, 1.0, 1e-12);
        EXPECT_NEAR(e.y, 1.0, 1e-12);
        EXPECT_NEAR(e.a, 2.0, 1e-12);
        EXPECT_NEAR(e.b, 2.0, 1e-12);
        EXPECT_LE(std::fabs(e.angle), kPi / 2.0);
    }
}

TEST(FitEllipse, AMajorAxisAlongYGivesAQuarterTurnOfEitherSign) {
    Random random(555);
    const auto points = ellipsePoints({10.0, -4.0, 9.0, 5.0, kPi / 2.0}, 16, 0.0, random);
    Ellipse2d e;
    ASSERT_EQ(zelmFitEllipse(16, points.data(), 0, 0.0, &e), ZELM_OK);
    EXPECT_NEAR(std::fabs(e.angle), kPi / 2.0, 1e-12);
    expectEllipse(e, {10.0, -4.0, 9.0, 5.0, kPi / 2.0}, kExact);
}

// Points in mirrored pairs make every sum that couples x and y exactly 0, so that the axes are rows of the identity.
// The major axis (0, 1) is not negated: plus a quarter turn, to the bit. With a residual and without, that is, by the
// inverse of the scatter matrix's factor and by its null space.
TEST(FitEllipse, AMajorAxisOfNoXComponentKeepsItsSign) {
    for (const double off : {0.0, 0.5}) {
        std::vector<Point2d> points;
        for (const auto& [x, y] : {Point2d{3.0, 4.0}, Point2d{4.0, 3.0}, Point2d{5.0 + off, 0.0}, Point2d{0.0, 5.0}}) {
            for (const double sx : {1.0, -1.0}) {
                for (const double sy : {1.0, -1.0}) {
                    points.push_back({sx * x, sy * 2.0 * y});
                }
            }
        }
        Ellipse2d e;
        ASSERT_EQ(zelmFitEllipse(count(points), points.data(), 0, 0.0, &e), ZELM_OK);
        EXPECT_GT(e.a, 1.5 * e.b);
        EXPECT_TRUE(zelmtest::hasSameBits(e.angle, std::atan2(1.0, 0.0))) << e.angle;
        for (Point2d& p : points) {
            std::swap(p.x, p.y);
        }
        ASSERT_EQ(zelmFitEllipse(count(points), points.data(), 0, 0.0, &e), ZELM_OK);
        EXPECT_EQ(e.angle, 0.0) << "lying, its major axis is (1, 0)";
    }
}

TEST(FitEllipse, EveryDirectionOfTheMajorAxisIsFound) {
    Random random(556);
    for (int degree = -90; degree <= 90; ++degree) {
        const Ellipse2d truth = {100.0, 50.0, 12.0, 7.0, degree * kPi / 180.0};
        const auto points = ellipsePoints(truth, 24, 0.0, random);
        Ellipse2d e;
        ASSERT_EQ(zelmFitEllipse(24, points.data(), 1, 3.0, &e), ZELM_OK);
        expectEllipse(e, truth, kExact);
    }
}

TEST(FitEllipse, AHyperbolaIsNoEllipse) {
    const auto points = hyperbolaPoints();
    Ellipse2d e = {-7, -7, -7, -7, -7};
    double c[6] = {-7, -7, -7, -7, -7, -7};
    for (const int32_t robust : {0, 1}) {
        EXPECT_EQ(zelmFitEllipse(count(points), points.data(), robust, 3.0, &e), ZELM_ERR_FIT_NOT_ELLIPSE);
        EXPECT_EQ(zelmFitEllipseC(count(points), points.data(), robust, 3.0, c), ZELM_ERR_FIT_NOT_ELLIPSE);
        EXPECT_EQ(zelmFitEllipse(5, points.data(), robust, 3.0, &e), ZELM_ERR_FIT_NOT_ELLIPSE);
    }
    EXPECT_EQ(e.x, -7);
    EXPECT_EQ(c[0], -7);
    ASSERT_EQ(zelmFitConics(count(points), points.data(), 0, 0.0, c), ZELM_OK);
    EXPECT_LT(4.0 * c[0] * c[2] - c[1] * c[1], 0.0);
    for (const Point2d& p : points) {
        EXPECT_NEAR(valueAt(c, p), 0.0, 1e-12);
    }
}

// With noise no conic fits exactly, and the best one that is an ellipse is returned, whatever the points look like.
TEST(FitEllipse, ANoisyHyperbolaGivesTheBestEllipse) {
    Random random(557);
    auto points = hyperbolaPoints();
    for (auto& p : points) {
        p.x += 0.01 * random.normal();
        p.y += 0.01 * random.normal();
    }
    double c[6];
    ASSERT_EQ(zelmFitEllipseC(count(points), points.data(), 0, 0.0, c), ZELM_OK);
    EXPECT_GE(4.0 * c[0] * c[2] - c[1] * c[1], 0.0);
}

TEST(FitEllipse, PointsOnALineEndInAStatus) {
    for (const int n : {5, 6, 12}) {
        std::vector<Point2d> points;
        for (int i = 0; i < n; ++i) {
            points.push_back({1.0 + 2.0 * i, 3.0 - i});
        }
        for (const int32_t robust : {0, 1}) {
            Ellipse2d e;
            EXPECT_LE(zelmFitEllipse(n, points.data(), robust, 3.0, &e), ZELM_OK);
        }
    }
}

// From exact points through the range in which the smallest eigenvalue crosses 1e-12 (vector of the null space) and a
// Cholesky term crosses 1e-11 (last eigenvector) to plain noise: no gap, and an error that goes with the noise.
TEST(FitEllipse, NoiseOfEverySizeIsFittedWithoutAGap) {
    Random random(558);
    for (double exponent = -16.0; exponent <= -1.5; exponent += 0.05) {
        const double relative = std::pow(10.0, exponent);
        const Ellipse2d truth = {20.0, 30.0, 10.0, 7.0, 0.6};
        for (int trial = 0; trial < 20; ++trial) {
            const auto points = ellipsePoints(truth, 30, relative * truth.a, random);
            Ellipse2d e;
            ASSERT_EQ(zelmFitEllipse(30, points.data(), trial % 2, 3.5, &e), ZELM_OK) << exponent;
            // Bound of the centre 0.26 sigma and of the axes less; six of them, with room for a robust fit and bias.
            expectEllipse(e, truth, 4.0 * relative + kExact);
        }
    }
}

// The coefficients are divided by the norm they have in the normalised frame. So there they have norm 1, and in the
// caller's frame in general not.
TEST(FitConics, CoefficientsHaveNormOneInTheNormalisedFrame) {
    Random random(559);
    for (int trial = 0; trial < 500; ++trial) {
        const Ellipse2d truth = zelmtest::randomEllipse(random);
        const auto points = ellipsePoints(truth, 20, 0.01 * truth.a * (trial % 2), random);
        for (const auto fit : {zelmFitEllipseC, zelmFitConics}) {
            double c[6];
            ASSERT_EQ(fit(20, points.data(), 0, 0.0, c), ZELM_OK);
            // Undoing the shift cancels about (500 / 4)^2 of the constant term.
            EXPECT_NEAR(norm(normalised(c, points)), 1.0, 1e-9);
            EXPECT_GT(std::fabs(norm({c, c + 6}) - 1.0), 1e-6);
        }
    }
}

TEST(FitConics, BothEllipseFitsDescribeTheSameConic) {
    Random random(560);
    for (int trial = 0; trial < 500; ++trial) {
        const Ellipse2d truth = zelmtest::randomEllipse(random);
        const auto points = ellipsePoints(truth, 25, 0.01 * truth.a, random);
        const int32_t robust = trial % 2;
        Ellipse2d e;
        double c[6];
        ASSERT_EQ(zelmFitEllipse(25, points.data(), robust, 3.5, &e), ZELM_OK);
        ASSERT_EQ(zelmFitEllipseC(25, points.data(), robust, 3.5, c), ZELM_OK);
        const double scale = std::fabs(valueAt(c, {e.x, e.y}));
        for (int i = 0; i < 12; ++i) {
            EXPECT_NEAR(valueAt(c, zelmtest::onEllipse(e, 0.5 * i)), 0.0, 1e-8 * scale);
        }
    }
}

// The unconstrained fit minimises the algebraic distance over unit vectors in the normalised frame.
TEST(FitConics, NoOtherUnitVectorHasALesserAlgebraicDistance) {
    Random random(561);
    for (int trial = 0; trial < 100; ++trial) {
        const Ellipse2d truth = zelmtest::randomEllipse(random);
        const auto points = ellipsePoints(truth, 20, 0.05 * truth.a, random);
        const auto dst = normalisedPoints(points);
        const auto cost = [&](std::vector<double> v) {
            const double length = norm(v);
            double sum = 0.0;
            for (size_t i = 0; i < 20; ++i) {
                const double f = valueAt(v.data(), dst[i]) / length;
                sum += f * f;
            }
            return sum;
        };
        double c[6];
        ASSERT_EQ(zelmFitConics(20, points.data(), 0, 0.0, c), ZELM_OK);
        const auto best = normalised(c, points);
        for (int k = 0; k < 50; ++k) {
            auto other = best;
            for (auto& v : other) {
                v += 0.01 * random.normal();
            }
            EXPECT_GT(cost(other), cost(best));
        }
    }
}

// The constrained fit minimises it over conics with 4AC - B^2 = 1.
TEST(FitConics, NoOtherEllipseHasALesserAlgebraicDistance) {
    Random random(562);
    for (int trial = 0; trial < 100; ++trial) {
        const auto points = ellipsePoints(zelmtest::randomEllipse(random), 20, 2.0, random);
        const auto dst = normalisedPoints(points);
        const auto cost = [&](const std::vector<double>& v) {
            const double q = 4.0 * v[0] * v[2] - v[1] * v[1];
            double sum = 0.0;
            for (size_t i = 0; i < 20; ++i) {
                const double f = valueAt(v.data(), dst[i]);
                sum += f * f / q;
            }
            return q > 0.0 ? sum : 1e300;
        };
        double c[6];
        ASSERT_EQ(zelmFitEllipseC(20, points.data(), 0, 0.0, c), ZELM_OK);
        const auto best = normalised(c, points);
        for (int k = 0; k < 50; ++k) {
            auto other = best;
            for (auto& v : other) {
                v += 0.01 * random.normal();
            }
            EXPECT_GT(cost(other), cost(best));
        }
    }
}

TEST(FitEllipse, TheResultMovesTurnsAndScalesWithThePoints) {
    Random random(563);
    for (int trial = 0; trial < 1000; ++trial) {
        const Ellipse2d truth = {random.uniform(-20, 20), random.uniform(-20, 20), 10.0, random.uniform(4.0, 8.5), 0.4};
        const auto points = ellipsePoints(truth, 24, 0.1, random);
        const double t = random.uniform(-kPi, kPi);
        const double s = std::pow(10.0, random.uniform(-3.0, 3.0));
        const double tx = random.uniform(-100.0, 100.0) * s;
        const double ty = random.uniform(-100.0, 100.0) * s;
        std::vector<Point2d> moved;
        for (const Point2d& p : points) {
            moved.push_back(
                {s * (p.x * std::cos(t) - p.y * std::sin(t)) + tx, s * (p.x * std::sin(t) + p.y * std::cos(t)) + ty});
        }
        const int32_t robust = trial % 2;
        Ellipse2d a;
        Ellipse2d b;
        ASSERT_EQ(zelmFitEllipse(24, points.data(), robust, 3.5, &a), ZELM_OK);
        ASSERT_EQ(zelmFitEllipse(24, moved.data(), robust, 3.5, &b), ZELM_OK);
        const Ellipse2d expected = {s * (a.x * std::cos(t) - a.y * std::sin(t)) + tx,
                                    s * (a.x * std::sin(t) + a.y * std::cos(t)) + ty, s * a.a, s * a.b, a.angle + t};
        expectEllipse(b, expected, kExact);
    }
}

TEST(FitEllipse, OutliersDoNotPullTheRobustFit) {
    Random random(564);
    double worst = 0.0;
    for (int trial = 0; trial < 500; ++trial) {
        const Ellipse2d truth = {100.0, 80.0, 12.0, 10.0, 0.5};
        auto points = ellipsePoints(truth, 40, 0.05, random);
        for (size_t i = 0; i < 4; ++i) {
            auto& p = points[(10 * i + static_cast<size_t>(random.integer(0, 9)))];
            const double push = 1.0 + random.uniform(0.1, 0.4);  // 1 to 5 pixels outwards
            p = {truth.x + push * (p.x - truth.x), truth.y + push * (p.y - truth.y)};
        }
        Ellipse2d e;
        ASSERT_EQ(zelmFitEllipse(40, points.data(), 1, 3.5, &e), ZELM_OK);
        worst = std::max(worst, std::hypot(e.x - truth.x, e.y - truth.y));
    }
    // Six times the bound of 36 points, 0.05 * sqrt(2 / 36) a coordinate.
    EXPECT_LT(worst, 6.0 * 0.05 * std::sqrt(2.0 / 36.0) * std::sqrt(2.0));
}

// --- weights

TEST(FitEllipseSolve, PointsWithoutWeightDoNotTakePart) {
    Random random(565);
    const Ellipse2d truth = {0.1, -0.2, 1.4, 0.9, 0.7};
    auto points = ellipsePoints(truth, 12, 0.01, random);
    std::vector<double> weights(12, 1.0);
    double expected[6];
    ASSERT_EQ(zelm::fitEllipseSolve(12, weights.data(), &points[0].x, expected), ZELM_OK);
    points.insert(points.begin() + 3, {1e6, std::nan("")});
    weights.insert(weights.begin() + 3, 0.0);
    double c[6];
    ASSERT_EQ(zelm::fitEllipseSolve(13, weights.data(), &points[0].x, c), ZELM_OK);
    EXPECT_TRUE(std::equal(c, c + 6, expected));
}

TEST(FitEllipseSolve, FewerThanFivePointsWithWeightAreTooFew) {
    Random random(566);
    const auto points = ellipsePoints({0.1, -0.2, 1.4, 0.9, 0.7}, 12, 0.0, random);
    for (int used = 0; used <= 6; ++used) {
        std::vector<double> weights(12, 0.0);
        for (int i = 0; i < used; ++i) {
            weights[static_cast<size_t>(2 * i)] = 0.5;
        }
        double c[6];
        EXPECT_EQ(zelm::fitEllipseSolve(12, weights.data(), &points[0].x, c), used < 5 ? ZELM_ERR_FIT_DATA : ZELM_OK);
    }
    double c[6];
    EXPECT_EQ(zelm::fitEllipseSolve(0, nullptr, nullptr, c), ZELM_ERR_FIT_DATA);
}

// A vector of the null space comes scaled so that 4AC - B^2 = 1.
TEST(FitEllipseSolve, TheNullVectorIsScaledToUnitDiscriminant) {
    Random random(567);
    const auto points = ellipsePoints({0.1, -0.2, 1.4, 0.9, 0.7}, 5, 0.0, random);
    const std::vector<double> weights(5, 1.0);
    double c[6];
    ASSERT_EQ(zelm::fitEllipseSolve(5, weights.data(), &points[0].x, c), ZELM_OK);
    EXPECT_NEAR(4.0 * c[0] * c[2] - c[1] * c[1], 1.0, 1e-12);
}

// Four places have a two-dimensional family of conics through them, here spanned by x y = 0 and the circle. The null
// space is searched from its last vector on for the first that is an ellipse.
TEST(FitEllipseSolve, TheNullSpaceIsSearchedForAnEllipse) {
    for (const double r : {0.5, 0.9, 1.0, 1.1, 1.4, 2.0}) {
        const std::vector<Point2d> points = {{r, 0}, {0, r}, {-r, 0}, {0, -r}, {r, 0}, {0, r}, {-r, 0}, {0, -r}};
        const std::vector<double> weights(8, 1.0);
        zelm::ConicScatter scatter;
        ASSERT_EQ(zelm::monomialScatter<zelm::ConicTerms>(8, weights.data(), &points[0].x, &scatter), ZELM_OK);
        EXPECT_LT(std::fabs(scatter.values[4]), 1e-12);
        EXPECT_LT(std::fabs(scatter.values[5]), 1e-12);
        double c[6];
        ASSERT_EQ(zelm::fitEllipseSolve(8, weights.data(), &points[0].x, c), ZELM_OK) << r;
        EXPECT_NEAR(4.0 * c[0] * c[2] - c[1] * c[1], 1.0, 1e-12);
        for (const Point2d& p : points) {
            EXPECT_NEAR(valueAt(c, p), 0.0, 1e-12);
        }
    }
}

// A tight threshold leaves fewer than five points some weight.
TEST(FitEllipse, ARobustFitThatKeepsFourPointsFails) {
    Random random(568);
    int failed = 0;
    for (int trial = 0; trial < 200; ++trial) {
        const auto points = ellipsePoints({0.0, 0.0, 9.0, 6.0, 0.2}, 9, 0.3, random);
        Ellipse2d e = {-7, -7, -7, -7, -7};
        const int32_t status = zelmFitEllipse(9, points.data(), 1, 0.4, &e);
        if (status == ZELM_ERR_FIT_DATA) {
            ++failed;
            EXPECT_EQ(e.x, -7);
        }
    }
    EXPECT_GT(failed, 150);  // nine points, and a cut-off at 0.6 of the median
}

}  // namespace
