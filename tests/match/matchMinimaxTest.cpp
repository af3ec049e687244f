// The minimax searches: with an exact circle against known optima, as they are against exact brute force, and their
// bounds on any cost. Figures are printed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "closedFormMotion.h"
#include "matchScenes.h"
#include "minimaxCost.h"
#include "random.h"
#include "zelm/match.h"

using zelmtest::angleBetween;
using zelmtest::distancesOf;
using zelmtest::exactEnclosingCircle;
using zelmtest::kDegree;
using zelmtest::kPi;
using zelmtest::makeScene;
using zelmtest::MatchScene;
using zelmtest::Points;
using zelmtest::Random;

namespace {

using Complex = std::complex<double>;

zelm::PointPairs pairsOf(const MatchScene& s) {
    return {s.ref.size(), s.ref.data(), s.model.data(), {s.modelPose.x, s.modelPose.y}};
}

double worstDistance(const MatchScene& s, const ZelmMatchPose& result) {
    const auto distances = distancesOf(s, result);
    return *std::max_element(distances.begin(), distances.end());
}

// --- scenes whose optimum is known and sharp

// Three unit vectors that do not lie in a half-plane, and the positive factors with which they add up to 0.
void addTriple(Random& random, std::vector<Complex>& u, std::vector<double>& factors) {
    double angles[3];
    double sines[3];  // of the angle between the other two
    do {
        for (double& angle : angles) {
            angle = random.uniform(0.0, 2.0 * kPi);
        }
        std::sort(angles, angles + 3);
        for (int i = 0; i < 3; ++i) {
            sines[i] = std::sin(angles[(i + 2) % 3] - angles[(i + 1) % 3]);
        }
    } while (*std::min_element(sines, sines + 3) < 0.2);
    for (int i = 0; i < 3; ++i) {
        u.push_back(std::polar(1.0, angles[i]));
        factors.push_back(sines[i]);
    }
}

// Six points deviate by 1 from the motion, in directions u with sum f conj(u) = 0 and sum f conj(u) p = 0, f > 0 and p
// the moved points: no motion nearby brings all six closer, and the cost rises in every direction in proportion to the
// way. Others deviate less. The largest deviation is convex in the motion, so that this is its minimum.
MatchScene sharpScene(Random& random, double angle, double scale) {
    const Complex motion = std::polar(scale, angle);
    const Complex shift = {5.0, -2.0};
    MatchScene s;
    const auto add = [&](const Complex& p, const Complex& deviation) {
        const Complex m = (p - shift) / motion;
        const Complex ref = p - deviation;
        s.model.push_back({m.real(), m.imag()});
        s.ref.push_back({ref.real(), ref.imag()});
    };
    const auto place = [&] { return Complex(random.uniform(-50.0, 50.0), random.uniform(-50.0, 50.0)); };
    for (;;) {
        std::vector<Complex> u;
        std::vector<double> f;
        addTriple(random, u, f);
        addTriple(random, u, f);
        std::vector<Complex> p;
        Complex rest = 0.0;
        for (size_t i = 0; i < 5; ++i) {
            p.push_back(place());
            rest -= f[i] * std::conj(u[i]) * p[i];
        }
        p.push_back(rest / (f[5] * std::conj(u[5])));
        if (std::abs(p[5]) > 70.0) {
            continue;
        }
        for (size_t i = 0; i < 6; ++i) {
            add(p[i], u[i]);
        }
        for (int i = 0; i < 4; ++i) {
            add(place(), std::polar(random.uniform(0.0, 0.7), random.uniform(0.0, 6.28)));
        }
        return s;
    }
}

TEST(MatchMinimax, WithAnExactCircleSharpOptimaAreFoundToAMillionth) {
    Random random(761);
    double worst = 0.0;
    for (int trial = 0; trial < 500; ++trial) {
        const double degrees = random.uniform(-170.0, 170.0);
        const double percent = random.uniform(80.0, 120.0);
        const MatchScene similar = sharpScene(random, degrees * kDegree, percent / 100.0);
        const MatchScene rigid = sharpScene(random, degrees * kDegree, 1.0);
        zelm::MinimaxCost cost(pairsOf(similar), {5.0, -2.0}, exactEnclosingCircle);
        zelm::MinimaxCost rigidCost(pairsOf(rigid), {5.0, -2.0}, exactEnclosingCircle);
        ASSERT_NEAR(cost.at(degrees, percent).circle.r, 1.0, 1e-12);
        const double offset = random.uniform(-0.7, 0.7);
        const auto both = zelm::minimaxSimplex(cost, degrees + offset, percent + random.uniform(-0.7, 0.7));
        const auto angle = zelm::minimaxAngle(rigidCost, degrees + 5.0 * offset);
        EXPECT_NEAR(both.degrees, degrees, 1e-6);
        EXPECT_NEAR(both.percent, percent, 1e-6);
        EXPECT_NEAR(both.circle.r, 1.0, 1e-8);
        EXPECT_NEAR(angle.degrees, degrees, 1e-6);
        // The last bracket is 2e-9 of the angle wide; points as far as 70 from the origin.
        EXPECT_NEAR(angle.circle.r, 1.0, 70.0 * 2e-9 * std::fabs(degrees) * kDegree + 1e-12);
        worst = std::max({worst, std::fabs(both.degrees - degrees), std::fabs(both.percent - percent)});
    }
    std::printf("exact circle, sharp optima: off by at most %.1e degrees or percent\n", worst);
}

struct Quantiles {
    std::vector<double> values;

    void print(const char* name) {
        std::sort(values.begin(), values.end());
        std::printf("%s: median %.1e, nine of ten %.1e, worst %.1e\n", name, at(0.5), at(0.9), values.back());
    }
    double at(double share) {
        std::sort(values.begin(), values.end());
        return values[static_cast<size_t>(share * static_cast<double>(values.size() - 1))];
    }
};

// The circle that the cost is made of, against the exact one.
double roughness(const MatchScene& s, double degrees, double percent) {
    zelm::MinimaxCost cost(pairsOf(s), {5.0, -2.0});
    zelm::MinimaxCost exact(pairsOf(s), {5.0, -2.0}, exactEnclosingCircle);
    return cost.at(degrees, percent).circle.r / exact.at(degrees, percent).circle.r - 1.0;
}

// The radius at the known optimum is what the library's approximate circle allows there.
TEST(MatchMinimax, SharpOptimaAreReachedAsFarAsTheCircleAllows) {
    Random random(762);
    Quantiles excess[2];
    constexpr int kScenes = 300;
    for (int trial = 0; trial < kScenes; ++trial) {
        const double degrees = random.uniform(-170.0, 170.0);
        const double percent = random.uniform(80.0, 120.0);
        for (const int mode : {4, 5}) {
            const double scale = mode == 4 ? 1.0 : percent / 100.0;
            const MatchScene s = sharpScene(random, degrees * kDegree, scale);
            ZelmMatchPose r;
            ASSERT_EQ(s.match(mode, 0.0, &r), ZELM_OK);
            const double over = worstDistance(s, r) - 1.0;
            EXPECT_GT(over, -1e-12);
            EXPECT_LT(over, roughness(s, degrees, 100.0 * scale) + 1e-6);
            EXPECT_LT(over, 1e-6);
            excess[mode - 4].values.push_back(over);
        }
    }
    excess[0].print("mode 4, sharp optima: worst point above the true minimum");
    excess[1].print("mode 5, sharp optima: worst point above the true minimum");
}

// Three points that hardly resemble the others: the search over the scale passes 0, where the cost has no edge.
TEST(MatchMinimax, ASimilarityMayEndAtANegativeScaleWhichIsAHalfTurn) {
    MatchScene s;
    s.ref = {{5.0, -9.0}, {7.0, -8.0}, {8.0, 7.0}};
    s.model = {{-2.0, -2.0}, {3.0, 9.0}, {0.0, 2.0}};
    ZelmMatchPose closed;
    ZelmMatchPose r;
    ASSERT_EQ(s.match(ZELM_MATCH_SIMILARITY, 0.0, &closed), ZELM_OK);
    ASSERT_EQ(s.match(ZELM_MATCH_SIMILARITY_MINIMAX, 0.0, &r), ZELM_OK);
    EXPECT_GT(closed.scale, 0.0);
    EXPECT_LT(r.scale, -0.1);
    EXPECT_LT(worstDistance(s, r), 0.99 * worstDistance(s, closed));

    const ZelmMatchPose turned{r.x, r.y, r.angle + kPi, -r.scale};
    const auto distances = distancesOf(s, r);
    const auto same = distancesOf(s, turned);
    for (size_t i = 0; i < distances.size(); ++i) {
        EXPECT_NEAR(same[i], distances[i], 1e-13) << "coordinates around 10 carry some 1e-15";
    }
}

// --- scenes with noise and outliers, against brute force

template <class Cost>
double goldenMinimum(double low, double high, double tolerance, const Cost& cost) {
    const double share = 0.3819660112501051;
    double a = low + share * (high - low);
    double b = high - share * (high - low);
    double ca = cost(a);
    double cb = cost(b);
    while (high - low > tolerance) {
        if (ca < cb) {
            high = b;
            b = a;
            cb = ca;
            a = low + share * (high - low);
            ca = cost(a);
        } else {
            low = a;
            a = b;
            ca = cb;
            b = high - share * (high - low);
            cb = cost(b);
        }
    }
    return std::min(ca, cb);
}

// The largest deviation is convex in (scale cos, scale sin): its minimum over one of them is convex in the other.
double leastRadius(const MatchScene& s, const zelm::Motion& start, bool withScale) {
    const auto radiusAt = [&](double re, double im) {
        zelm::MinimaxCost cost(pairsOf(s), {0.0, 0.0}, exactEnclosingCircle);
        return cost.at(std::atan2(im, re) / kDegree, 100.0 * std::hypot(re, im)).circle.r;
    };
    if (!withScale) {
        return goldenMinimum(start.angle - 0.3, start.angle + 0.3, 1e-10,
                             [&](double angle) { return radiusAt(std::cos(angle), std::sin(angle)); });
    }
    const double re = start.scale * std::cos(start.angle);
    const double im = start.scale * std::sin(start.angle);
    return goldenMinimum(re - 0.3, re + 0.3, 1e-9, [&](double x) {
        return goldenMinimum(im - 0.3, im + 0.3, 1e-9, [&](double y) { return radiusAt(x, y); });
    });
}

TEST(MatchMinimax, TheWorstPointComesNearTheTrueMinimum) {
    Random random(763);
    Quantiles excess[2];
    for (int trial = 0; trial < 240; ++trial) {
        MatchScene s = makeScene(random, random.integer(3, 30), random.uniform(-3.1, 3.1), 1.0, {5.0, -2.0},
                                 trial % 2 == 0 ? 0.1 : 1.0);
        if (trial % 3 == 0) {
            s.ref[0].x += 6.0;  // counts in full
        }
        for (const int mode : {4, 5}) {
            const auto start = zelm::closedFormMotion(pairsOf(s), mode == 5);
            const double least = leastRadius(s, start, mode == 5);
            ZelmMatchPose r;
            ASSERT_EQ(s.match(mode, 0.0, &r), ZELM_OK);
            const double over = worstDistance(s, r) / least - 1.0;
            // Brute force ends 1e-9 from the optimum, which moves points 70 from the origin; radii are 0.1 and more.
            EXPECT_GT(over, -1e-6) << "not below the minimum";
            EXPECT_LT(over, 1.3e-3) << "the circle's own worst error";
            excess[mode - 4].values.push_back(over);
        }
    }
    excess[0].print("mode 4, noise and outliers: worst point above the true minimum");
    excess[1].print("mode 5, noise and outliers: worst point above the true minimum");
    EXPECT_LT(excess[0].at(0.5), 1e-6);
    EXPECT_LT(excess[1].at(0.5), 1e-8);
    EXPECT_LT(excess[1].at(0.9), 1e-5);
}

TEST(MatchMinimax, TheResultIsNeverWorseThanLeastSquares) {
    Random random(764);
    for (int trial = 0; trial < 300; ++trial) {
        const MatchScene s = makeScene(random, random.integer(2, 20), random.uniform(-3.1, 3.1), 1.1, {5.0, -2.0}, 2.0);
        for (const int mode : {4, 5}) {
            ZelmMatchPose squares;
            ZelmMatchPose r;
            ASSERT_EQ(s.match(mode - 4, 0.0, &squares), ZELM_OK);
            ASSERT_EQ(s.match(mode, 0.0, &r), ZELM_OK);
            EXPECT_LE(worstDistance(s, r), worstDistance(s, squares) * (1.0 + 1.3e-3) + 1e-12);
        }
    }
}

// --- bounds

int circles = 0;

// Ever smaller, so that the walk never rises.
Circle2d shrinkingCircle(std::size_t, const Point2d*, Point2d*) {
    ++circles;
    return {0.0, 0.0, 1.0 / circles};
}

// Without any order.
Circle2d randomCircle(std::size_t, const Point2d*, Point2d*) {
    static Random random(765);
    ++circles;
    return {0.0, 0.0, random.uniform(1.0, 2.0)};
}

Circle2d flatCircle(std::size_t, const Point2d*, Point2d*) {
    ++circles;
    return {0.0, 0.0, 1.0};
}

Circle2d countedExactCircle(std::size_t n, const Point2d* points, Point2d* work) {
    ++circles;
    return exactEnclosingCircle(n, points, work);
}

// A bracket of at most 1024 degrees down to 1e-13 takes ln(1e16) / ln(1.618) = 77 sections.
TEST(MatchMinimax, EverySearchIsBoundedOnAnyCost) {
    const MatchScene s = {{{1, 2}, {3, 5}}, {{0, 0}, {1, 0}}, {0, 0, 0, 1}};
    for (const auto circle : {shrinkingCircle, randomCircle, flatCircle}) {
        zelm::MinimaxCost cost(pairsOf(s), {0.0, 0.0}, circle);
        circles = 0;
        (void)zelm::minimaxAngle(cost, 0.0);
        EXPECT_LE(circles, 100);
        circles = 0;
        (void)zelm::minimaxSimplex(cost, 0.0, 100.0);
        EXPECT_LE(circles, 2010);
    }
}

TEST(MatchMinimax, AWalkThatNeverRisesEndsAfterATurn) {
    const MatchScene s = {{{1, 2}, {3, 5}}, {{0, 0}, {1, 0}}, {0, 0, 0, 1}};
    zelm::MinimaxCost cost(pairsOf(s), {0.0, 0.0}, shrinkingCircle);
    circles = 0;
    // 1, then steps of 2, 4, ... 256: 511 degrees up from the start. The sections stay within 255 to 511.
    const auto best = zelm::minimaxAngle(cost, 10.0);
    EXPECT_LE(best.degrees, 10.0 + 511.0);
}

TEST(MatchMinimax, AFlatCostKeepsTheStart) {
    const MatchScene s = {{{1, 2}, {3, 5}}, {{0, 0}, {1, 0}}, {0, 0, 0, 1}};
    zelm::MinimaxCost cost(pairsOf(s), {0.0, 0.0}, flatCircle);
    EXPECT_EQ(zelm::minimaxAngle(cost, 12.5).degrees, 12.5);
    const auto both = zelm::minimaxSimplex(cost, 12.5, 97.0);
    EXPECT_EQ(both.degrees, 12.5);
    EXPECT_EQ(both.percent, 97.0);
}

// With the minimum at 0 between the bracket's ends, these never get closer than 1e-9 of their magnitudes.
TEST(MatchMinimax, GoldenSectionsEndAtAnAngleOfZero) {
    Random random(766);
    MatchScene s = makeScene(random, 10, 0.0, 1.0, {0.0, 0.0}, 0.0);
    zelm::MinimaxCost cost(pairsOf(s), {0.0, 0.0}, countedExactCircle);
    for (const double start : {-0.7, -1e-3, 0.0, 1e-5, 0.3}) {
        circles = 0;
        const auto best = zelm::minimaxAngle(cost, start);
        EXPECT_NEAR(best.degrees, 0.0, 1e-13);
        EXPECT_LE(circles, 100);
    }
}

// The absolute stop changes nothing where the relative one is met first: brackets around 1e-4 degrees and more.
TEST(MatchMinimax, TheAbsoluteStopComesAfterTheRelativeOne) {
    Random random(767);
    for (const double degrees : {1e-3, 1.0, 30.0, -179.0}) {
        MatchScene s = makeScene(random, 10, degrees * kDegree, 1.0, {0.0, 0.0}, 0.0);
        zelm::MinimaxCost cost(pairsOf(s), {0.0, 0.0}, countedExactCircle);
        circles = 0;
        (void)zelm::minimaxAngle(cost, degrees + 0.3);
        // From a bracket of 3 degrees to 2e-9 of the angle, and not beyond.
        const double sections = std::log(3.0 / (2e-9 * std::fabs(degrees))) / std::log(1.618033988749895);
        EXPECT_NEAR(circles, sections, 8.0) << degrees;
    }
}

TEST(MatchMinimax, AFailingCircleIsDegenerateAndKeepsTheClosedForm) {
    Random random(768);
    MatchScene s = makeScene(random, 6, 0.4, 1.0, {1.0, 2.0}, 0.1);
    s.model[2].x = 1e200;  // its square overflows, and the turned model less the reference is not finite
    for (const int mode : {4, 5}) {
        ZelmMatchPose r = {-7, -7, -7, -7};
        ZelmMatchPose squares;
        const int32_t status = s.match(mode, 0.0, &r);
        ASSERT_EQ(s.match(mode - 4, 0.0, &squares), ZELM_OK);
        EXPECT_EQ(status, ZELM_ERR_DEGENERATE);
        EXPECT_EQ(r.angle, squares.angle);
        EXPECT_EQ(r.x, squares.x);
    }
}

}  // namespace
