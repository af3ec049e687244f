// How close ellipsoids and cones come to the Cramér-Rao bound, plain and robust, with clean noise and with a fifth of
// the points off. The bound of distances d(theta) of points with isotropic noise sigma is sigma^2 (sum J^T J)^-1, J the
// derivative of each distance; it is computed here, from the truth. Figures are printed.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "coneGeometry.h"
#include "fitShapes.h"
#include "quadricScatter.h"
#include "quadricShapes.h"
#include "random.h"
#include "zelm/fit.h"
#include "zelm/mat.h"

using zelmtest::axesOf;
using zelmtest::Cone;
using zelmtest::count;
using zelmtest::Frame3;
using zelmtest::kPi;
using zelmtest::OrientedEllipsoid;
using zelmtest::Random;
using zelmtest::Vector3;

namespace {

constexpr int kTrials = 1000;
// Four standard errors of a standard deviation from that many trials.
constexpr double kSpreadError = 4.0 * 0.0224;

struct Spread {
    double sum = 0.0;
    double squares = 0.0;
    int n = 0;

    void add(double error) {
        sum += error;
        squares += error * error;
        ++n;
    }
    double rms() const { return std::sqrt(squares / n); }
    double mean() const { return sum / n; }
};

struct Mode {
    const char* name;
    int32_t robust;
    bool outliers;
    double allowed;  // ratio to the bound of all points
};

// Robust with a threshold of 3.5: the biweight has an efficiency of 85 % there, which is 8 % of standard deviation. A
// fifth of the points off takes 12 % more.
constexpr Mode kModes[] = {{"plain", 0, false, 1.0}, {"robust", 1, false, 1.2}, {"robust, outliers", 1, true, 1.35}};

// A fifth of the points, pushed off by 10 to 30 sigma either way.
double push(Random& random, bool outliers, size_t i, double sigma) {
    return outliers && i % 5 == 4 ? sigma * random.uniform(10.0, 30.0) * (random.uniform() < 0.5 ? -1.0 : 1.0) : 0.0;
}

Point3d moved(const Point3d& p, const Vector3& unit, double by) {
    return {p.x + by * unit[0], p.y + by * unit[1], p.z + by * unit[2]};
}

// Value and gradient of the ellipsoid's equation at p.
struct Local {
    double value;
    Vector3 normal;  // unit
    double slope;
};

Local localAt(const OrientedEllipsoid& e, const Point3d& p) {
    const Vector3 d = {p.x - e.shape.x, p.y - e.shape.y, p.z - e.shape.z};
    const double lengths[3] = {e.shape.a, e.shape.b, e.shape.c};
    Local local = {-1.0, {0, 0, 0}, 0.0};
    for (size_t k = 0; k < 3; ++k) {
        const double along = zelmtest::dot3(e.axes[k], d);
        local.value += along * along / (lengths[k] * lengths[k]);
        for (size_t i = 0; i < 3; ++i) {
            local.normal[i] += 2.0 * along / (lengths[k] * lengths[k]) * e.axes[k][i];
        }
    }
    local.slope = std::sqrt(zelmtest::dot3(local.normal, local.normal));
    for (double& v : local.normal) {
        v /= local.slope;
    }
    return local;
}

// The ellipsoid with one of its nine parameters moved by h: centre along its axes, semi-axes, rotations about its axes.
OrientedEllipsoid perturbed(OrientedEllipsoid e, size_t parameter, double h) {
    if (parameter < 3) {
        const Point3d centre = moved({e.shape.x, e.shape.y, e.shape.z}, e.axes[parameter], h);
        e.shape.x = centre.x;
        e.shape.y = centre.y;
        e.shape.z = centre.z;
        return e;
    }
    if (parameter < 6) {
        (&e.shape.x)[parameter] += h;
        return e;
    }
    Vector3& u = e.axes[(parameter + 1) % 3];
    Vector3& v = e.axes[(parameter + 2) % 3];
    for (size_t i = 0; i < 3; ++i) {
        const double ui = u[i];
        u[i] = std::cos(h) * ui + std::sin(h) * v[i];
        v[i] = std::cos(h) * v[i] - std::sin(h) * ui;
    }
    return e;
}

// Standard deviations of the nine parameters at the bound, for sigma = 1.
std::array<double, 9> ellipsoidBound(const OrientedEllipsoid& e, const std::vector<Point3d>& surface) {
    double information[81] = {};
    for (const Point3d& p : surface) {
        double J[9];
        for (size_t k = 0; k < 9; ++k) {
            const double h = 1e-5;
            const Local plus = localAt(perturbed(e, k, h), p);
            const Local minus = localAt(perturbed(e, k, -h), p);
            J[k] = (plus.value / plus.slope - minus.value / minus.slope) / (2.0 * h);
        }
        for (size_t i = 0; i < 81; ++i) {
            information[i] += J[i / 9] * J[i % 9];
        }
    }
    double covariance[81];
    EXPECT_EQ(zelmMatInvert(9, information, covariance), ZELM_OK);
    std::array<double, 9> bound;
    for (size_t k = 0; k < 9; ++k) {
        bound[k] = std::sqrt(covariance[10 * k]);
    }
    return bound;
}

// Angle between the fitted largest axis and the true one, in the plane of the true axes `k` and 0; small.
double tilt(const OrientedEllipsoid& truth, const Ellipsoid3d& e, size_t k) {
    const Vector3 axis = axesOf(e)[0];
    return zelmtest::dot3(axis, truth.axes[k]) / zelmtest::dot3(axis, truth.axes[0]);
}

struct EllipsoidCase {
    const char* name;
    double a;
    double b;
    double c;
    double sigma;
    double allowed;  // ratio to the bound, plain
    double bias;     // mean error of an axis that is allowed, as a share of its bound
};

// The algebraic distance weighs the flat sides more than the ends, which costs more the more the axes differ. The bias
// that algebraic distances have goes with the square of the noise and is a small share of the spread here.
constexpr EllipsoidCase kEllipsoids[] = {
    {"10 : 8 : 6", 10.0, 8.0, 6.0, 0.05, 1.1, 0.2},
    {"20 : 8 : 4", 20.0, 8.0, 4.0, 0.05, 1.3, 0.4},
    {"20 : 5 : 2", 20.0, 5.0, 2.0, 0.02, 1.7, 0.4},
};

TEST(QuadricAccuracy, Ellipsoids) {
    constexpr int32_t n = 200;
    for (const EllipsoidCase& shape : kEllipsoids) {
        Random none(0);
        OrientedEllipsoid truth = {{100.0, -50.0, 30.0, shape.a, shape.b, shape.c, 0, 0, 0},
                                   zelmtest::randomFrame(none)};
        const auto bound = ellipsoidBound(truth, zelmtest::ellipsoidPoints(truth, n, 0.0, none));
        for (const Mode& mode : kModes) {
            Random random(731);
            Spread spread[8];
            for (int trial = 0; trial < kTrials; ++trial) {
                truth.axes = zelmtest::randomFrame(random);
                auto points = zelmtest::ellipsoidPoints(truth, n, 0.0, none);
                for (size_t i = 0; i < points.size(); ++i) {
                    const double off = push(random, mode.outliers, i, shape.sigma);
                    points[i] = zelmtest::withNoise(moved(points[i], localAt(truth, points[i]).normal, off),
                                                    shape.sigma, random);
                }
                Ellipsoid3d e;
                ASSERT_EQ(zelmFitEllipsoid(n, points.data(), mode.robust, 3.5, &e), ZELM_OK);
                const Vector3 off = {e.x - truth.shape.x, e.y - truth.shape.y, e.z - truth.shape.z};
                for (size_t k = 0; k < 3; ++k) {
                    spread[k].add(zelmtest::dot3(off, truth.axes[k]) / (shape.sigma * bound[k]));
                    spread[3 + k].add(((&e.a)[k] - (&truth.shape.a)[k]) / (shape.sigma * bound[3 + k]));
                }
                spread[6].add(tilt(truth, e, 1) / (shape.sigma * bound[8]));
                spread[7].add(tilt(truth, e, 2) / (shape.sigma * bound[7]));
            }
            std::printf("ellipsoid %s, %s: centre %.3f %.3f %.3f axes %.3f %.3f %.3f tilt %.3f %.3f of the bound\n",
                        shape.name, mode.name, spread[0].rms(), spread[1].rms(), spread[2].rms(), spread[3].rms(),
                        spread[4].rms(), spread[5].rms(), spread[6].rms(), spread[7].rms());
            std::printf("  mean error of the axes: %.3f %.3f %.3f of their bound\n", spread[3].mean(), spread[4].mean(),
                        spread[5].mean());
            for (size_t k = 0; k < 8; ++k) {
                EXPECT_LT(spread[k].rms(), shape.allowed * (mode.allowed + kSpreadError)) << k;
                EXPECT_GT(spread[k].rms(), 1.0 - kSpreadError) << k;
            }
            for (size_t k = 0; k < 3; ++k) {
                EXPECT_LT(std::fabs(spread[k].mean()), 4.5 * spread[k].rms() / std::sqrt(kTrials)) << "no bias";
                EXPECT_LT(std::fabs(spread[3 + k].mean()), shape.bias) << k;
            }
        }
    }
}

// A known weakness of algebraic distances, which the header tells users about.
TEST(QuadricAccuracy, CapsOfEllipsoidsComeOutTooSmall) {
    Random random(733);
    const auto meanLargestAxis = [&random](double lowest, double sigma) {
        Spread a;
        for (int trial = 0; trial < kTrials; ++trial) {
            std::vector<Point3d> cap;
            for (int i = 0; i < 200; ++i) {
                const double z = random.uniform(lowest, 1.0);
                const double angle = random.uniform(0.0, 2.0 * kPi);
                const double r = std::sqrt(1.0 - z * z);
                cap.push_back(zelmtest::withNoise({10.0 * r * std::cos(angle), 8.0 * r * std::sin(angle), 6.0 * z},
                                                  sigma, random));
            }
            Ellipsoid3d e;
            EXPECT_EQ(zelmFitEllipsoid(200, cap.data(), 0, 0.0, &e), ZELM_OK);
            a.add(e.a);
        }
        return a.mean();
    };
    // As the header states them, to half of their last digit and four standard errors.
    EXPECT_NEAR(meanLargestAxis(0.0, 0.2), 9.9, 0.06);
    EXPECT_NEAR(meanLargestAxis(0.5, 0.05), 9.5, 0.06);
}

// Standard deviation at the bound of a cone's aperture among all quadrics, for sigma = 1: a quadric q near the true one
// has the distance q.z / slope from a point.
double apertureBound(const double* q, const std::vector<Point3d>& surface) {
    double information[100] = {};
    for (const Point3d& p : surface) {
        double z[10];
        zelm::QuadricTerms::monomials(&p.x, z);
        const Vector3 slope = {2.0 * q[0] * p.x + q[3] * p.y + q[4] * p.z + q[6],
                               2.0 * q[1] * p.y + q[3] * p.x + q[5] * p.z + q[7],
                               2.0 * q[2] * p.z + q[4] * p.x + q[5] * p.y + q[8]};
        for (size_t i = 0; i < 100; ++i) {
            information[i] += z[i / 10] * z[i % 10] / zelmtest::dot3(slope, slope);
        }
    }
    double values[10];
    double vectors[100];
    EXPECT_EQ(zelmMatJacobiEigen(10, information, values, vectors), ZELM_OK);
    double variance = 0.0;
    for (size_t k = 0; k < 9; ++k) {  // the last is q itself, whose length means nothing
        const double h = 1e-7;
        double plus[10];
        double minus[10];
        for (size_t i = 0; i < 10; ++i) {
            plus[i] = q[i] + h * vectors[10 * k + i];
            minus[i] = q[i] - h * vectors[10 * k + i];
        }
        const double J = (zelmtest::coneOf(plus).aperture - zelmtest::coneOf(minus).aperture) / (2.0 * h);
        variance += J * J / values[k];
    }
    return std::sqrt(variance);
}

struct ConeCase {
    int degrees;
    bool bothNappes;
    double sigma;
    double allowed;  // ratio to the bound, plain
    double bias;     // mean error that is allowed, as a share of the bound
};

// One nappe of a flat cone is biased: the mean error goes with the square of the noise, its share of the bound with the
// noise. Outliers that the weights do not tell from noise add to it.
constexpr ConeCase kCones[] = {
    {10, false, 0.002, 1.3, 0.15}, {10, true, 0.01, 1.3, 0.15},    {30, false, 0.005, 1.3, 0.15},
    {30, true, 0.01, 1.3, 0.15},   {90, false, 0.01, 1.3, 0.5},    {90, true, 0.01, 1.3, 0.15},
    {130, false, 0.003, 1.4, 0.9}, {160, false, 0.0005, 1.4, 0.6}, {160, true, 0.002, 1.3, 0.15}};

TEST(QuadricAccuracy, Cones) {
    constexpr int n = 200;
    for (const ConeCase& shape : kCones) {
        Random none(0);
        Cone truth = {{1.0, -2.0, 3.0}, zelmtest::randomFrame(none), shape.degrees * kPi / 180.0};
        auto points = zelmtest::conePoints(truth, n, shape.bothNappes, 0.0, none);
        double q[10];
        ASSERT_EQ(zelmFitCone(n, points.data(), 0, 0.0, q), ZELM_OK);
        const double bound = shape.sigma * apertureBound(q, points);
        for (const Mode& mode : kModes) {
            Random random(732);
            Spread aperture;
            for (int trial = 0; trial < kTrials; ++trial) {
                truth.frame = zelmtest::randomFrame(random);
                points = zelmtest::conePoints(truth, n, shape.bothNappes, 0.0, none);
                for (size_t i = 0; i < points.size(); ++i) {
                    const double off = push(random, mode.outliers, i, shape.sigma);
                    points[i] = zelmtest::withNoise(moved(points[i], zelmtest::randomDirection(random), off),
                                                    shape.sigma, random);
                }
                ASSERT_EQ(zelmFitCone(n, points.data(), mode.robust, 3.5, q), ZELM_OK);
                aperture.add((zelmtest::coneOf(q).aperture - truth.aperture) / bound);
            }
            std::printf("cone of %d degrees%s, %s: aperture %.3f of the bound of %.4f degrees, mean error %.3f of it\n",
                        shape.degrees, shape.bothNappes ? ", both nappes" : "", mode.name, aperture.rms(),
                        bound * 180.0 / kPi, aperture.mean());
            EXPECT_LT(aperture.rms(), shape.allowed * (mode.allowed + kSpreadError));
            EXPECT_GT(aperture.rms(), 1.0 - kSpreadError);
            EXPECT_LT(std::fabs(aperture.mean()), shape.bias);
        }
    }
}

}  // namespace
