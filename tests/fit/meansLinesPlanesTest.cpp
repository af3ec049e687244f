// Means, lines and planes: contract, closed forms, invariance under rigid motion and scale, and robust fits with
// outliers. How close to the noise bound they come is in fitAccuracyTest.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include "fitMeans.h"
#include "fitShapes.h"
#include "random.h"
#include "zelm/fit.h"

using zelmtest::count;
using zelmtest::kPi;
using zelmtest::Random;

namespace {

const double kNan = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

// Rounding in coordinates of up to about 1000 after a few dozen operations.
constexpr double kRounding = 1e-11;

// Every fit as a function of doubles, so that the contract can be tested once.
struct AnyFit {
    const char* name;
    int32_t dim;
    int32_t minPoints;
    int32_t results;
    std::function<int32_t(int32_t, const double*, int32_t, double, double*)> run;
};

template <class Point>
const Point* as(const double* p) {
    return reinterpret_cast<const Point*>(p);
}

std::vector<AnyFit> fits() {
    using D = const double*;
    return {
        {"mean1dim", 1, 2, 1,
         [](int32_t n, D p, int32_t r, double t, double* o) { return zelmFitMean1dim(n, p, r, t, o); }},
        {"mean2dim", 2, 2, 2,
         [](int32_t n, D p, int32_t r, double t, double* o) {
             return zelmFitMean2dim(n, as<Point2d>(p), r, t, reinterpret_cast<Point2d*>(o));
         }},
        {"mean3dim", 3, 2, 3,
         [](int32_t n, D p, int32_t r, double t, double* o) {
             return zelmFitMean3dim(n, as<Point3d>(p), r, t, reinterpret_cast<Point3d*>(o));
         }},
        {"line", 2, 2, 3,
         [](int32_t n, D p, int32_t r, double t, double* o) {
             return zelmFitLine(n, as<Point2d>(p), r, t, reinterpret_cast<Line2d*>(o));
         }},
        {"lineIn3d", 3, 2, 6,
         [](int32_t n, D p, int32_t r, double t, double* o) { return zelmFitLineIn3d(n, as<Point3d>(p), r, t, o); }},
        {"plane", 3, 3, 4,
         [](int32_t n, D p, int32_t r, double t, double* o) { return zelmFitPlane(n, as<Point3d>(p), r, t, o); }},
        {"ellipse", 2, 5, 5,
         [](int32_t n, D p, int32_t r, double t, double* o) {
             return zelmFitEllipse(n, as<Point2d>(p), r, t, reinterpret_cast<Ellipse2d*>(o));
         }},
        {"ellipseC", 2, 5, 6,
         [](int32_t n, D p, int32_t r, double t, double* o) { return zelmFitEllipseC(n, as<Point2d>(p), r, t, o); }},
        {"conics", 2, 5, 6,
         [](int32_t n, D p, int32_t r, double t, double* o) { return zelmFitConics(n, as<Point2d>(p), r, t, o); }},
        {"circle", 2, 3, 3,
         [](int32_t n, D p, int32_t r, double t, double* o) {
             return zelmFitCircle(n, as<Point2d>(p), r, t, reinterpret_cast<Circle2d*>(o));
         }},
    };
}

constexpr double kUntouched = -7.0;

bool untouched(const double (&result)[6]) {
    return std::all_of(result, result + 6, [](double v) { return v == kUntouched; });
}

// Points near a circle (or a helix), which every fit can take.
std::vector<double> samplePoints(int32_t dim, int32_t n, Random& random) {
    std::vector<double> p;
    for (int32_t i = 0; i < n; ++i) {
        const double t = 2.0 * kPi * i / n;
        const double v[3] = {5.0 * std::cos(t) + 0.1 * random.normal(), 3.0 * std::sin(t) + 0.1 * random.normal(),
                             t + 0.1 * random.normal()};
        p.insert(p.end(), v, v + dim);
    }
    return p;
}

TEST(FitContract, BadArgumentsAreRefusedAndTheResultIsLeft) {
    Random random(511);
    for (const AnyFit& fit : fits()) {
        SCOPED_TRACE(fit.name);
        const auto p = samplePoints(fit.dim, 12, random);
        double result[6];
        std::fill(result, result + 6, kUntouched);
        for (const int32_t n : {fit.minPoints - 1, 0, -1, INT32_MIN}) {
            EXPECT_EQ(fit.run(n, p.data(), 0, 1.0, result), ZELM_ERR_PARAM) << n;
        }
        EXPECT_EQ(fit.run(12, nullptr, 0, 1.0, result), ZELM_ERR_PARAM);
        EXPECT_EQ(fit.run(12, p.data(), 0, 1.0, nullptr), ZELM_ERR_PARAM);
        EXPECT_EQ(fit.run(12, p.data(), 2, 1.0, result), ZELM_ERR_PARAM);
        EXPECT_EQ(fit.run(12, p.data(), -1, 1.0, result), ZELM_ERR_PARAM);
        for (const double threshold : {0.0, -1.0, -kInf, kNan}) {
            EXPECT_EQ(fit.run(12, p.data(), 1, threshold, result), ZELM_ERR_PARAM) << threshold;
        }
        EXPECT_TRUE(untouched(result));
    }
}

TEST(FitContract, ThePlainFitIgnoresTheThreshold) {
    Random random(512);
    for (const AnyFit& fit : fits()) {
        SCOPED_TRACE(fit.name);
        const auto p = samplePoints(fit.dim, 12, random);
        double expected[6];
        ASSERT_EQ(fit.run(12, p.data(), 0, 3.0, expected), ZELM_OK);
        for (const double threshold : {0.0, -1.0, kNan, kInf}) {
            double result[6];
            EXPECT_EQ(fit.run(12, p.data(), 0, threshold, result), ZELM_OK);
            EXPECT_TRUE(std::equal(result, result + fit.results, expected));
        }
    }
}

TEST(FitContract, TheLeastPointsAreTakenAndNotReweighted) {
    Random random(513);
    for (const AnyFit& fit : fits()) {
        SCOPED_TRACE(fit.name);
        const auto p = samplePoints(fit.dim, fit.minPoints, random);
        double plain[6];
        double robust[6];
        ASSERT_EQ(fit.run(fit.minPoints, p.data(), 0, 0.0, plain), ZELM_OK);
        ASSERT_EQ(fit.run(fit.minPoints, p.data(), 1, 1e-6, robust), ZELM_OK);
        EXPECT_TRUE(std::equal(plain, plain + fit.results, robust));
    }
}

TEST(FitContract, RejectingEveryPointIsAFailureThatLeavesTheResult) {
    Random random(514);
    for (const AnyFit& fit : fits()) {
        SCOPED_TRACE(fit.name);
        const auto p = samplePoints(fit.dim, 12, random);
        double result[6];
        std::fill(result, result + 6, kUntouched);
        EXPECT_EQ(fit.run(12, p.data(), 1, 1e-5, result), ZELM_ERR_FIT_DATA);
        EXPECT_TRUE(untouched(result));
    }
}

// A stated status, or success with numbers that mean nothing; what counts is that the call returns, cleanly.
TEST(FitContract, PointsThatAreNotFiniteEndInAStatus) {
    Random random(515);
    for (const AnyFit& fit : fits()) {
        SCOPED_TRACE(fit.name);
        for (const double bad : {kNan, kInf, -kInf, 1e308, 1e160, 1e-310}) {
            for (const int32_t robust : {0, 1}) {
                for (const size_t every : {size_t{1}, size_t{7}, size_t{1000}}) {
                    auto p = samplePoints(fit.dim, 12, random);
                    for (size_t i = 0; i < p.size(); i += every) {
                        p[i] = bad;
                    }
                    double result[6];
                    const int32_t status = fit.run(12, p.data(), robust, 3.0, result);
                    EXPECT_TRUE(status == ZELM_OK || status == ZELM_ERR_PARAM || status == ZELM_ERR_FIT_DATA ||
                                status == ZELM_ERR_FIT_NOT_ELLIPSE || status == ZELM_ERR_EIGEN_NOT_CONVERGED ||
                                status == ZELM_ERR_SINGULAR)
                        << status;
                }
            }
        }
    }
}

TEST(FitContract, CoincidingPointsEndInAStatus) {
    for (const AnyFit& fit : fits()) {
        SCOPED_TRACE(fit.name);
        const std::vector<double> p(36, 4.0);
        for (const int32_t robust : {0, 1}) {
            double result[6];
            std::fill(result, result + 6, kUntouched);
            const int32_t status = fit.run(12, p.data(), robust, 3.0, result);
            const std::string name = fit.name;
            if (name.starts_with("mean")) {
                EXPECT_EQ(status, ZELM_OK);
            } else if (name.starts_with("line") || name == "plane") {
                // They fit unscaled points, whose scatter is 0 and has no axes.
                EXPECT_EQ(status, ZELM_ERR_EIGEN_NOT_CONVERGED);
                EXPECT_TRUE(untouched(result));
            } else if (name == "circle") {
                EXPECT_EQ(status, ZELM_ERR_PARAM);
            } else {
                EXPECT_LE(status, ZELM_OK);
            }
        }
    }
}

// --- means

TEST(FitMean, PlainMeansAreTheAverages) {
    const double values[4] = {1.0, 2.0, 3.0, 100.0};
    double mean1;
    ASSERT_EQ(zelmFitMean1dim(4, values, 0, 0.0, &mean1), ZELM_OK);
    EXPECT_NEAR(mean1, 26.5, kRounding);
    const Point2d points2[3] = {{1, 2}, {3, 5}, {5, -1}};
    Point2d mean2;
    ASSERT_EQ(zelmFitMean2dim(3, points2, 0, 0.0, &mean2), ZELM_OK);
    EXPECT_NEAR(mean2.x, 3.0, kRounding);
    EXPECT_NEAR(mean2.y, 2.0, kRounding);
    const Point3d points3[2] = {{1, 2, 3}, {3, 5, -7}};
    Point3d mean3;
    ASSERT_EQ(zelmFitMean3dim(2, points3, 0, 0.0, &mean3), ZELM_OK);
    EXPECT_NEAR(mean3.x, 2.0, kRounding);
    EXPECT_NEAR(mean3.y, 3.5, kRounding);
    EXPECT_NEAR(mean3.z, -2.0, kRounding);
}

// Weights 1, 0 and 3: what has no weight does not count, and a point of weight 3 counts as three.
TEST(FitMean, SolvesWeighThePointsAndResidualsAreDistancesFromTheMean) {
    const double weights[3] = {1.0, 0.0, 3.0};
    const double values[3] = {-2.0, 50.0, 2.0};
    const double plane[6] = {-2.0, 4.0, 50.0, 60.0, 2.0, 0.0};
    const double space[9] = {-2.0, 4.0, 8.0, 50.0, 60.0, 70.0, 2.0, 0.0, -8.0};
    double m[3];
    double r[3];
    EXPECT_EQ(zelm::fitMean1dimSolve(3, weights, values, m), ZELM_OK);
    EXPECT_EQ(m[0], 1.0);
    zelm::fitMean1dimResidual(3, values, m, r);
    EXPECT_EQ(std::vector<double>(r, r + 3), (std::vector<double>{3.0, 49.0, 1.0}));
    EXPECT_EQ(zelm::fitMean2dimSolve(3, weights, plane, m), ZELM_OK);
    EXPECT_EQ(std::vector<double>(m, m + 2), (std::vector<double>{1.0, 1.0}));
    zelm::fitMean2dimResidual(3, plane, m, r);
    EXPECT_EQ(std::vector<double>(r, r + 3), (std::vector<double>{std::sqrt(18.0), std::sqrt(5882.0), std::sqrt(2.0)}));
    EXPECT_EQ(zelm::fitMean3dimSolve(3, weights, space, m), ZELM_OK);
    EXPECT_EQ(std::vector<double>(m, m + 3), (std::vector<double>{1.0, 1.0, -4.0}));
    zelm::fitMean3dimResidual(3, space, m, r);
    EXPECT_EQ(std::vector<double>(r, r + 3),
              (std::vector<double>{std::sqrt(162.0), std::sqrt(11358.0), std::sqrt(18.0)}));
}

// The first cut-off is 1.4826 * 25 = 37.1 against a residual of 73.5, so that 100 drops out.
TEST(FitMean, AFarValueDropsOutOfTheRobustMean) {
    const double values[4] = {1.0, 2.0, 3.0, 100.0};
    double mean;
    ASSERT_EQ(zelmFitMean1dim(4, values, 1, 1.0, &mean), ZELM_OK);
    EXPECT_LT(std::fabs(mean - 2.0), 0.5);
    // The iteration written out in another language: 2.084 after the first re-weighting, then a drift until 1 is
    // rejected as well.
    EXPECT_NEAR(mean, 2.4865594300253835, 1e-12);
}

TEST(FitMean, CoincidingPointsAreTheirOwnMean) {
    const double values[3] = {4.0, 4.0, 4.0};
    double mean;
    ASSERT_EQ(zelmFitMean1dim(3, values, 1, 3.0, &mean), ZELM_OK);
    EXPECT_EQ(mean, 4.0);
    const Point3d points[3] = {{1, 2, 3}, {1, 2, 3}, {1, 2, 3}};
    Point3d mean3;
    ASSERT_EQ(zelmFitMean3dim(3, points, 1, 3.0, &mean3), ZELM_OK);
    EXPECT_EQ(mean3.x, 1.0);
    EXPECT_EQ(mean3.y, 2.0);
    EXPECT_EQ(mean3.z, 3.0);
}

// The whole robust iteration written out for the mean, in long double and in the caller's frame.
struct MeanModel {
    double mean = 0.0;
    int solves = 1;
};

MeanModel robustMeanModel(const std::vector<double>& x, double threshold) {
    const size_t n = x.size();
    std::vector<long double> w(n, 1.0L);
    const auto solve = [&] {
        long double W = 0.0L;
        long double s = 0.0L;
        for (size_t i = 0; i < n; ++i) {
            W += w[i];
            s += w[i] * x[i];
        }
        return s / W;
    };
    long double m = solve();
    MeanModel result;
    for (; result.solves <= 20; ++result.solves) {
        std::vector<long double> r(n);
        std::transform(x.begin(), x.end(), r.begin(), [m](double v) { return std::fabs(v - m); });
        std::vector<long double> sorted = r;
        std::sort(sorted.begin(), sorted.end());
        const long double median = n % 2 == 1 ? sorted[n / 2] : (sorted[n / 2 - 1] + sorted[n / 2]) / 2.0L;
        const long double k = median * 1.4826L * threshold;
        long double sum = 0.0L;
        long double change = 0.0L;
        for (size_t i = 0; i < n; ++i) {
            const long double u = r[i] / k;
            const long double fresh = u < 1.0L ? (1.0L - u * u) * (1.0L - u * u) : 0.0L;
            change += std::fabs(fresh - w[i]);
            sum += fresh;
            w[i] = fresh;
        }
        if (0.02L * sum > change) {
            break;
        }
        m = solve();
    }
    result.mean = static_cast<double>(m);
    return result;
}

TEST(FitMean, TheRobustMeanFollowsTheIterationWrittenOut) {
    Random random(516);
    int most = 0;
    int least = 100;
    for (int trial = 0; trial < 3000; ++trial) {
        std::vector<double> x(static_cast<size_t>(random.integer(3, 40)));
        for (auto& v : x) {
            v = 50.0 + random.normal() * (random.uniform() < 0.2 ? 20.0 : 1.0);
        }
        const double threshold = random.uniform(1.0, 6.0);
        const MeanModel expected = robustMeanModel(x, threshold);
        double mean;
        ASSERT_EQ(zelmFitMean1dim(count(x), x.data(), 1, threshold, &mean), ZELM_OK);
        EXPECT_NEAR(mean, expected.mean, 1e-10) << trial;  // rounding, through up to 20 solves
        most = std::max(most, expected.solves);
        least = std::min(least, expected.solves);
    }
    EXPECT_EQ(most, 21);  // both ends were seen: out of solves, and settled early
    EXPECT_LE(least, 3);
}

// --- line in the plane

double distanceTo(const Line2d& line, const Point2d& p) {
    return std::fabs(line.a * p.x + line.b * p.y + line.c);
}

TEST(FitLine, TwoPointsGiveTheLineThroughThem) {
    Random random(517);
    for (int trial = 0; trial < 500; ++trial) {
        const Point2d p[2] = {{random.uniform(-500, 500), random.uniform(-500, 500)},
                              {random.uniform(-500, 500), random.uniform(-500, 500)}};
        for (const int32_t robust : {0, 1}) {
            Line2d line;
            ASSERT_EQ(zelmFitLine(2, p, robust, 3.0, &line), ZELM_OK);
            EXPECT_NEAR(std::hypot(line.a, line.b), 1.0, 1e-14);
            EXPECT_NEAR(distanceTo(line, p[0]), 0.0, kRounding);
            EXPECT_NEAR(distanceTo(line, p[1]), 0.0, kRounding);
        }
    }
}

TEST(FitLine, AllSlopesAreAlikeAlsoUprightAndLevel) {
    for (int degree = 0; degree < 180; ++degree) {
        const double t = degree * kPi / 180.0;
        std::vector<Point2d> points;
        for (int i = -5; i <= 5; ++i) {
            points.push_back({30.0 + i * std::cos(t), -20.0 + i * std::sin(t)});
        }
        for (const int32_t robust : {0, 1}) {  // residuals near zero: the first fit stands
            Line2d line;
            ASSERT_EQ(zelmFitLine(11, points.data(), robust, 3.0, &line), ZELM_OK);
            EXPECT_NEAR(std::fabs(line.a * std::sin(t) - line.b * std::cos(t)), 1.0, 1e-14) << degree;
            for (const Point2d& p : points) {
                EXPECT_NEAR(distanceTo(line, p), 0.0, kRounding);
            }
        }
    }
}

// Orthogonal regression in closed form: tan(2 t) = 2 Sxy / (Sxx - Syy).
TEST(FitLine, ThePlainFitIsTheOrthogonalRegression) {
    Random random(518);
    for (int trial = 0; trial < 1000; ++trial) {
        const double t = random.uniform(-kPi / 2.0, kPi / 2.0);
        std::vector<Point2d> points;
        double mx = 0.0;
        double my = 0.0;
        const int n = random.integer(3, 30);
        for (int i = 0; i < n; ++i) {
            const double u = random.uniform(-10.0, 10.0);
            points.push_back({u * std::cos(t) + 0.5 * random.normal(), u * std::sin(t) + 0.5 * random.normal()});
            mx += points.back().x / n;
            my += points.back().y / n;
        }
        double sxx = 0.0;
        double sxy = 0.0;
        double syy = 0.0;
        for (const Point2d& p : points) {
            sxx += (p.x - mx) * (p.x - mx);
            sxy += (p.x - mx) * (p.y - my);
            syy += (p.y - my) * (p.y - my);
        }
        const double direction = 0.5 * std::atan2(2.0 * sxy, sxx - syy);
        Line2d line;
        ASSERT_EQ(zelmFitLine(n, points.data(), 0, 0.0, &line), ZELM_OK);
        EXPECT_NEAR(zelmtest::axisDifference(std::atan2(-line.a, line.b), direction), 0.0, 1e-10) << trial;
        EXPECT_NEAR(line.a * mx + line.b * my + line.c, 0.0, kRounding);
    }
}

TEST(FitLine, OutliersDoNotPullTheRobustFit) {
    Random random(519);
    for (int trial = 0; trial < 300; ++trial) {
        const double t = random.uniform(-kPi / 2.0, kPi / 2.0);
        std::vector<Point2d> points;
        for (int i = 0; i < 40; ++i) {
            const double u = i - 19.5;
            const double off = i % 8 == 3 ? random.uniform(3.0, 10.0) : 0.02 * random.normal();
            points.push_back({u * std::cos(t) - off * std::sin(t), u * std::sin(t) + off * std::cos(t)});
        }
        Line2d line;
        ASSERT_EQ(zelmFitLine(40, points.data(), 1, 3.5, &line), ZELM_OK);
        // Offset bound 0.02 / sqrt(35) = 0.0034 and slope bound 0.02 / (sqrt(35) * 11.5) = 0.0003, six sigma each.
        EXPECT_LT(std::fabs(line.c), 0.021);
        EXPECT_LT(std::fabs(line.a * std::cos(t) + line.b * std::sin(t)), 0.0018);
    }
}

// --- line in space and plane

double distanceToLine(const double* line, const Point3d& p) {
    const double d[3] = {p.x - line[0], p.y - line[1], p.z - line[2]};
    const double* u = line + 3;
    return std::hypot(d[1] * u[2] - d[2] * u[1], d[2] * u[0] - d[0] * u[2], d[0] * u[1] - d[1] * u[0]);
}

Point3d randomUnit(Random& random) {
    const Point3d v = {random.normal(), random.normal(), random.normal()};
    const double length = std::hypot(v.x, v.y, v.z);
    return {v.x / length, v.y / length, v.z / length};
}

TEST(FitLineIn3d, PointsOnALineGiveItAndTheirCentroid) {
    Random random(520);
    for (int trial = 0; trial < 500; ++trial) {
        const Point3d u = randomUnit(random);
        const Point3d o = {random.uniform(-100, 100), random.uniform(-100, 100), random.uniform(-100, 100)};
        std::vector<Point3d> points;
        Point3d mean = {0, 0, 0};
        const int n = random.integer(2, 20);
        for (int i = 0; i < n; ++i) {
            const double s = random.uniform(-30, 30);
            points.push_back({o.x + s * u.x, o.y + s * u.y, o.z + s * u.z});
            mean.x += points.back().x / n;
            mean.y += points.back().y / n;
            mean.z += points.back().z / n;
        }
        double line[6];
        ASSERT_EQ(zelmFitLineIn3d(n, points.data(), 1, 3.0, line), ZELM_OK);
        EXPECT_NEAR(std::hypot(line[3], line[4], line[5]), 1.0, 1e-14);
        EXPECT_NEAR(line[0], mean.x, kRounding);
        EXPECT_NEAR(line[1], mean.y, kRounding);
        EXPECT_NEAR(line[2], mean.z, kRounding);
        for (const Point3d& p : points) {
            EXPECT_NEAR(distanceToLine(line, p), 0.0, 1e-9);  // two points may lie close together
        }
    }
}

TEST(FitLineIn3d, OutliersDoNotPullTheRobustFit) {
    Random random(521);
    for (int trial = 0; trial < 300; ++trial) {
        const Point3d u = randomUnit(random);
        std::vector<Point3d> points;
        for (int i = 0; i < 40; ++i) {
            const double s = i - 19.5;
            const double off = i % 8 == 3 ? random.uniform(3.0, 10.0) : 0.02;
            const Point3d e = randomUnit(random);
            points.push_back({s * u.x + off * e.x, s * u.y + off * e.y, s * u.z + off * e.z});
        }
        double line[6];
        ASSERT_EQ(zelmFitLineIn3d(40, points.data(), 1, 3.5, line), ZELM_OK);
        EXPECT_LT(distanceToLine(line, {0, 0, 0}), 0.021);
        EXPECT_GT(std::fabs(line[3] * u.x + line[4] * u.y + line[5] * u.z), 1.0 - 1e-5);
    }
}

TEST(FitPlane, ThreePointsGiveThePlaneThroughThem) {
    Random random(522);
    for (int trial = 0; trial < 500; ++trial) {
        Point3d p[3];
        for (auto& q : p) {
            q = {random.uniform(-100, 100), random.uniform(-100, 100), random.uniform(-100, 100)};
        }
        double plane[4];
        ASSERT_EQ(zelmFitPlane(3, p, 1, 3.0, plane), ZELM_OK);
        EXPECT_NEAR(std::hypot(plane[0], plane[1], plane[2]), 1.0, 1e-14);
        for (const auto& q : p) {
            EXPECT_NEAR(plane[0] * q.x + plane[1] * q.y + plane[2] * q.z + plane[3], 0.0, kRounding);
        }
    }
}

TEST(FitPlane, OutliersDoNotPullTheRobustFit) {
    Random random(523);
    for (int trial = 0; trial < 300; ++trial) {
        const Point3d normal = randomUnit(random);
        std::vector<Point3d> points;
        for (int i = 0; i < 60; ++i) {
            const Point3d p = randomUnit(random);
            const double along = p.x * normal.x + p.y * normal.y + p.z * normal.z;
            const double off = (i % 8 == 3 ? random.uniform(0.2, 0.6) : 0.005 * random.normal()) - along;
            points.push_back({p.x + off * normal.x + 50.0, p.y + off * normal.y, p.z + off * normal.z});
        }
        double plane[4];
        ASSERT_EQ(zelmFitPlane(60, points.data(), 1, 3.5, plane), ZELM_OK);
        // Six times the offset bound 0.005 / sqrt(52), and the same of a tilt with an rms arm of 0.58.
        EXPECT_LT(std::fabs(50.0 * plane[0] + plane[3]), 0.0045);
        EXPECT_GT(std::fabs(plane[0] * normal.x + plane[1] * normal.y + plane[2] * normal.z), 1.0 - 1e-4);
    }
}

// The fits commute with turning, moving and scaling the points.
TEST(FitInvariance, LinesMoveWithTheirPoints) {
    Random random(524);
    for (int trial = 0; trial < 1000; ++trial) {
        std::vector<Point2d> points;
        std::vector<Point2d> moved;
        const double t = random.uniform(-kPi, kPi);
        const double s = std::pow(10.0, random.uniform(-2.0, 2.0));
        const double tx = random.uniform(-100.0, 100.0) * s;
        const double ty = random.uniform(-100.0, 100.0) * s;
        for (int i = 0; i < 25; ++i) {
            const Point2d p = {i + 0.3 * random.normal(), 0.2 * random.normal() * (i % 6 == 0 ? 20.0 : 1.0)};
            points.push_back(p);
            moved.push_back(
                {s * (p.x * std::cos(t) - p.y * std::sin(t)) + tx, s * (p.x * std::sin(t) + p.y * std::cos(t)) + ty});
        }
        for (const int32_t robust : {0, 1}) {
            Line2d a;
            Line2d b;
            ASSERT_EQ(zelmFitLine(25, points.data(), robust, 3.0, &a), ZELM_OK);
            ASSERT_EQ(zelmFitLine(25, moved.data(), robust, 3.0, &b), ZELM_OK);
            const double na = a.a * std::cos(t) - a.b * std::sin(t);
            const double nb = a.a * std::sin(t) + a.b * std::cos(t);
            const double sign = na * b.a + nb * b.b > 0.0 ? 1.0 : -1.0;
            EXPECT_NEAR(sign * b.a, na, 1e-11);
            EXPECT_NEAR(sign * b.b, nb, 1e-11);
            EXPECT_NEAR(sign * b.c, s * a.c - na * tx - nb * ty, 1e-9 * s);
        }
    }
}

}  // namespace
