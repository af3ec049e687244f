// Distance from a point to an ellipse: quirks, and the distance against Newton steps on a fine parametrisation.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "random.h"
#include "zelm/math.h"
#include "zelm/mathRoots.h"

namespace {

using zelmtest::Random;

constexpr double kPi = std::numbers::pi;
constexpr double kGuard = 7.25;

struct Ellipse {
    double cx;
    double cy;
    double a;
    double b;
    double theta;
};

struct Result {
    std::int32_t status;
    Point2d point;
    double distance;
};

Result distanceToEllipse(const Ellipse& e, const Point2d& p) {
    Result result{1, {kGuard, kGuard}, kGuard};
    result.status = zelmMathGetDistFromPointToEllipse(e.cx, e.cy, e.a, e.b, e.theta, p.x, p.y, &result.point.x,
                                                      &result.point.y, &result.distance);
    return result;
}

void expectRefused(const Ellipse& e, const Point2d& p) {
    const Result result = distanceToEllipse(e, p);
    EXPECT_EQ(result.status, ZELM_ERR_DEGENERATE) << p.x << ' ' << p.y;
    EXPECT_EQ(result.point.x, kGuard);
    EXPECT_EQ(result.point.y, kGuard);
    EXPECT_EQ(result.distance, kGuard);
}

// Where the ellipse stands at right angles to the line to a point, in the ellipse's own frame.
struct Truth {
    double distance = std::numeric_limits<double>::infinity();
    Point2d nearest{};
    std::vector<double> sines;  // of all such places
};

// Half the derivative of the squared distance by the parameter, and its own derivative.
struct Slope {
    double value;
    double derivative;
};

Slope slopeAt(const Ellipse& e, const Point2d& p, double t) {
    const double c = std::cos(t);
    const double s = std::sin(t);
    const double k = e.b * e.b - e.a * e.a;
    return {k * s * c + e.a * p.x * s - e.b * p.y * c, k * (c * c - s * s) + e.a * p.x * c + e.b * p.y * s};
}

// A root of the slope between two parameters of opposite slopes: Newton steps, halving where one leaves the interval.
double rootBetween(const Ellipse& e, const Point2d& p, double low, double high) {
    const bool lowNegative = slopeAt(e, p, low).value < 0.0;
    double t = 0.5 * (low + high);
    for (int step = 0; step < 100; ++step) {
        const Slope slope = slopeAt(e, p, t);
        ((slope.value < 0.0) == lowNegative ? low : high) = t;
        const double newton = t - slope.value / slope.derivative;
        const double next = newton > low && newton < high ? newton : 0.5 * (low + high);
        if (next == t) {
            break;
        }
        t = next;
    }
    return t;
}

Truth truthInOwnFrame(const Ellipse& e, const Point2d& p) {
    constexpr int kSteps = 360;
    const double offset = 1e-3;  // keeps the axes off the grid
    Truth truth;
    for (int i = 0; i < kSteps; ++i) {
        const double low = offset + 2.0 * kPi * i / kSteps;
        const double high = offset + 2.0 * kPi * (i + 1) / kSteps;
        if ((slopeAt(e, p, low).value < 0.0) == (slopeAt(e, p, high).value < 0.0)) {
            continue;
        }
        const double t = rootBetween(e, p, low, high);
        const Point2d candidate{e.a * std::cos(t), e.b * std::sin(t)};
        const double distance = std::hypot(candidate.x - p.x, candidate.y - p.y);
        truth.sines.push_back(std::sin(t));
        if (distance < truth.distance) {
            truth.distance = distance;
            truth.nearest = candidate;
        }
    }
    return truth;
}

// What the quartic is divided by, squared, where it has two real roots: the difference of the means of its two pairs of
// roots, of the four sines that sum up to 2 b Y / k.
double meanDistance(const Ellipse& e, const Point2d& p, const Truth& truth) {
    return truth.sines[0] + truth.sines[1] - e.b * p.y / (e.b * e.b - e.a * e.a);
}

TEST(PointToEllipse, OnTheAxesExtendedBeyondTheTips) {
    // The y axis has four roots -1, 1 and a double one; these come out exactly.
    const Result above = distanceToEllipse({0, 0, 2, 1, 0}, {0, 4});
    ASSERT_EQ(above.status, ZELM_OK);
    EXPECT_NEAR(above.distance, 3.0, 1e-15);
    EXPECT_NEAR(above.point.x, 0.0, 1e-7);  // sine within rounding of 1
    EXPECT_NEAR(above.point.y, 1.0, 1e-15);
}

TEST(PointToEllipse, TurnedAndMoved) {
    // The ellipse of axes 2 and 1 about (10, 20), its x axis upwards; the point is 3 to the left of its flat side.
    const Result result = distanceToEllipse({10, 20, 2, 1, kPi / 2.0}, {6, 20});
    ASSERT_EQ(result.status, ZELM_OK);
    EXPECT_NEAR(result.distance, 3.0, 1e-14);
    EXPECT_NEAR(result.point.x, 9.0, 1e-14);
    EXPECT_NEAR(result.point.y, 20.0, 1e-7);
}

TEST(PointToEllipse, CirclesAreRefused) {
    expectRefused({0, 0, 2, 2, 0}, {5, 1});
    expectRefused({3, 4, 100, 100, 0.5}, {3, 4});
}

// The leading coefficient is (b^2 - a^2)^2, refused up to 1e-9: 3.16e-5 in b^2 - a^2.
TEST(PointToEllipse, NearCirclesAndSmallEllipsesAreRefused) {
    expectRefused({0, 0, 1, 1 + 1.58e-5, 0}, {2, 1});
    EXPECT_EQ(distanceToEllipse({0, 0, 1, 1 + 1.59e-5, 0}, {2, 1}).status, ZELM_OK);
    expectRefused({0, 0, 5e-3, 3e-3, 0}, {1e-2, 1e-3});
    EXPECT_EQ(distanceToEllipse({0, 0, 5.0, 3.0, 0}, {10.0, 1.0}).status, ZELM_OK);
}

TEST(PointToEllipse, OnTheOwnXAxisBeyondTheFocusOfCurvatureNoPointIsFound) {
    expectRefused({0, 0, 2, 1, 0}, {3, 0});
    Random random(321);
    for (int i = 0; i < 2000; ++i) {
        const double a = random.uniform(1.0, 5.0);
        const double b = a * random.uniform(0.2, 0.9);
        const double limit = (a * a - b * b) / a;
        const double x = limit * random.uniform(1.001, 20.0);
        expectRefused({0, 0, a, b, 0}, {i % 2 == 0 ? x : -x, 0});
    }
}

TEST(PointToEllipse, OnTheOwnXAxisWithinThePointIsFound) {
    Random random(322);
    for (int i = 0; i < 2000; ++i) {
        const double a = random.uniform(1.0, 5.0);
        const double b = a * random.uniform(0.2, 0.9);
        const double x = (a * a - b * b) / a * random.uniform(-0.999, 0.999);
        const Result result = distanceToEllipse({0, 0, a, b, 0}, {x, 0});
        ASSERT_EQ(result.status, ZELM_OK);
        // The foot has the cosine a x / (a^2 - b^2) and lies at the distance b sqrt(1 - x^2 / (a^2 - b^2)).
        ASSERT_NEAR(result.distance, b * std::sqrt(1.0 - x * x / (a * a - b * b)), 1e-14);
        ASSERT_NEAR(result.point.x, a * a * x / (a * a - b * b), 1e-12);
    }
}

// Of two places as near the first root's counts: that with the positive sine.
TEST(PointToEllipse, TheCentreTakesTheUpperTipOfTheShortAxis) {
    const Result result = distanceToEllipse({0, 0, 2, 1, 0}, {0, 0});
    ASSERT_EQ(result.status, ZELM_OK);
    EXPECT_EQ(result.distance, 1.0);
    EXPECT_EQ(result.point.y, 1.0);
}

// A point at a distance from the ellipse's point of a parameter, along the normal there: outside, so that this is the
// nearest one.
Point2d outward(const Ellipse& own, double t, double distance) {
    const Point2d foot{own.a * std::cos(t), own.b * std::sin(t)};
    const double length = std::hypot(own.b * std::cos(t), own.a * std::sin(t));
    return {foot.x + distance * own.b * std::cos(t) / length, foot.y + distance * own.a * std::sin(t) / length};
}

// The running minimum starts at 1e7 and is replaced by what is strictly less; the ellipse is large enough for the
// quartic to be accurate there.
TEST(PointToEllipse, PointsTenMillionAwayAndFartherAreRefused) {
    const Ellipse e{0, 0, 2e5, 1e5, 0};
    const Result result = distanceToEllipse(e, outward(e, 0.7, 0.9999999e7));
    ASSERT_EQ(result.status, ZELM_OK);
    EXPECT_NEAR(result.distance, 0.9999999e7, 1e-6);
    expectRefused(e, outward(e, 0.7, 1.0000001e7));
    expectRefused(e, outward(e, 0.7, 1.01e7));
    expectRefused({0, 0, 2, 1, 0}, {1e9, 1e9});
    const Ellipse far{1e9, 1e9, 2, 1, 0};
    EXPECT_EQ(distanceToEllipse(far, {1e9 + 3, 1e9 + 4}).status, ZELM_OK) << "only the distance counts";
}

// The worst errors of the nearest point and of the distance, relative to a, over seeded points at the distance share *
// a away from the axes.
struct FarErrors {
    double point = 0.0;
    double distance = 0.0;
};

FarErrors worstErrorsFarAway(double share) {
    Random random(326);
    FarErrors worst;
    for (int i = 0; i < 2000; ++i) {
        const double a = random.uniform(1.0, 5.0);
        const Ellipse e{0, 0, a, a * random.uniform(0.2, 0.8), 0};
        const double t = random.uniform(0.15, 1.42);
        const Result result = distanceToEllipse(e, outward(e, t, share * a));
        EXPECT_EQ(result.status, ZELM_OK);
        const double miss = std::hypot(result.point.x - e.a * std::cos(t), result.point.y - e.b * std::sin(t));
        worst.point = std::max(worst.point, miss / a);
        worst.distance = std::max(worst.distance, std::fabs(result.distance - share * a) / a);
    }
    return worst;
}

// The real roots stay at 1 at most while the complex ones grow with the distance: theirs is the rounding that the real
// ones carry, some 1e-16 of the distance squared. The distance has the square of that, beside its own rounding.
TEST(PointToEllipse, FarAwayTheNearestPointLosesDigitsWithTheSquareOfTheDistance) {
    for (const double share : {1.0, 10.0, 100.0, 1e3, 1e4, 1e5}) {
        const FarErrors worst = worstErrorsFarAway(share);
        const double loss = 1e-13 * std::max(1.0, share * share);
        EXPECT_LE(worst.point, loss * 10.0) << share;
        EXPECT_LE(worst.distance, loss * loss * 10.0 + 1e-15 * share) << share;
    }
    EXPECT_GT(worstErrorsFarAway(1e5).point, 1e-6) << "found better than the header says";
}

TEST(PointToEllipse, InputThatIsNotFiniteIsRefused) {
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity(), 1e300}) {
        expectRefused({bad, 0, 2, 1, 0}, {3, 1});
        expectRefused({0, bad, 2, 1, 0}, {3, 1});
        expectRefused({0, 0, bad, 1, 0}, {3, 1});
        expectRefused({0, 0, 2, bad, 0}, {3, 1});
        expectRefused({0, 0, 2, 1, 0}, {bad, 1});
        expectRefused({0, 0, 2, 1, 0}, {3, bad});
        if (!std::isfinite(bad)) {
            expectRefused({0, 0, 2, 1, bad}, {3, 1});
        }
    }
}

// Every point but those of the documented failures: close to an axis of the ellipse, and those where the quartic is
// divided by less than 0.05^2. A quartic's roots then carry up to 1e-16 (s / 0.05)^2 over their slope, some 1e-8 of the
// ellipse's size; the distance, which is least there, the square of that: nothing beside the rounding of coordinates up
// to 75, 1.4e-14 each.
TEST(PointToEllipse, MatchesNewtonOnAFineParametrisation) {
    Random random(323);
    int tested = 0;
    for (int i = 0; i < 10000; ++i) {
        const double a = random.uniform(1.0, 5.0);
        const double b = a * std::pow(5.0, random.uniform(-1.0, 1.0));
        const Ellipse own{0, 0, a, b, 0};
        const Point2d local{random.uniform(-3.0, 3.0) * a, random.uniform(-3.0, 3.0) * b};
        const Truth truth = truthInOwnFrame(own, local);
        if (std::fabs(b * b - a * a) < 0.2 * a * b || std::fabs(local.x) < 1e-6 * a || std::fabs(local.y) < 1e-6 * b ||
            (truth.sines.size() == 2 && std::fabs(meanDistance(own, local, truth)) < 0.05)) {
            continue;
        }
        tested += 1;
        const Ellipse e{random.uniform(-50, 50), random.uniform(-50, 50), a, b, random.uniform(-kPi, kPi)};
        Point2d p{};
        Point2d nearest{};
        zelmMathTransCoordOfPoint(e.cx, e.cy, e.theta, local.x, local.y, &p.x, &p.y);
        zelmMathTransCoordOfPoint(e.cx, e.cy, e.theta, truth.nearest.x, truth.nearest.y, &nearest.x, &nearest.y);
        const Result result = distanceToEllipse(e, p);
        ASSERT_EQ(result.status, ZELM_OK) << i;
        ASSERT_NEAR(result.distance, truth.distance, 2e-13) << i;
        ASSERT_LE(std::hypot(result.point.x - nearest.x, result.point.y - nearest.y), 2e-7) << i;
        ASSERT_EQ(result.distance, zelmMathGetDistFromPointToPoint(result.point.x, result.point.y, p.x, p.y));
    }
    EXPECT_GT(tested, 7500);
}

// The worst error over seeded points at the height share * b beside the x axis beyond the focus of curvature, relative
// to b; infinite where one is refused.
double worstErrorBesideTheXAxis(double share) {
    Random random(324);
    double worst = 0.0;
    for (int i = 0; i < 2000; ++i) {
        const double a = random.uniform(1.0, 5.0);
        const double b = a * random.uniform(0.2, 0.8);
        const Ellipse e{0, 0, a, b, 0};
        const Point2d p{random.uniform(1.05 * (a * a - b * b) / a, 3.0 * a), share * b};
        const Result result = distanceToEllipse(e, p);
        if (result.status < 0) {
            return std::numeric_limits<double>::infinity();
        }
        worst = std::max(worst, std::fabs(result.distance - truthInOwnFrame(e, p).distance) / b);
    }
    return worst;
}

// The loss there, from cancellation in z - p of the quartic, as the header states it.
TEST(PointToEllipse, BesideTheXAxisDigitsAreLost) {
    EXPECT_LE(worstErrorBesideTheXAxis(0.1), 1e-12);
    EXPECT_LE(worstErrorBesideTheXAxis(0.01), 1e-7);
    EXPECT_GT(worstErrorBesideTheXAxis(0.01), 1e-13) << "found better than the header says";
    EXPECT_GT(worstErrorBesideTheXAxis(1e-5), 1e-4) << "found better than the header says";
    const Result worthless = distanceToEllipse({0, 0, 2, 1, 0}, {2.5, 1e-6});
    EXPECT_TRUE(worthless.status < 0 || std::fabs(worthless.distance - 0.5) > 1e-6) << "found better than it says";
}

// On the y axis sine 1 is a root, which may come out beyond it: a point on the far side or none is found then.
TEST(PointToEllipse, OnTheYAxisTheNearestTipMayBeMissed) {
    Random random(325);
    int missed = 0;
    for (int i = 0; i < 4000; ++i) {
        const double a = random.uniform(1.0, 5.0);
        const double b = a * random.uniform(0.2, 0.8);
        const double y = (a * a - b * b) / b * random.uniform(1.05, 3.0);
        const Result result = distanceToEllipse({0, 0, a, b, 0}, {0, y});
        const bool found = result.status == ZELM_OK && std::fabs(result.distance - std::fabs(y - b)) < 1e-12;
        missed += found ? 0 : 1;
    }
    EXPECT_GT(missed, 0) << "found more reliably than the header says";
    EXPECT_LT(missed, 1000);
}

}  // namespace
