// Closed form and re-weighted least squares: against the procedure written down once more, against neighbouring
// motions, and against truth with noise and outliers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <vector>

#include "matchScenes.h"
#include "random.h"
#include "zelm/match.h"

using zelmtest::angleBetween;
using zelmtest::distancesOf;
using zelmtest::kPi;
using zelmtest::makeScene;
using zelmtest::MatchScene;
using zelmtest::Random;

namespace {

double sumOfSquares(const MatchScene& scene, const ZelmMatchPose& pose) {
    double sum = 0.0;
    for (const double d : distancesOf(scene, pose)) {
        sum += d * d;
    }
    return sum;
}

TEST(MatchLeastSquares, NoNeighbourHasALesserSumOfSquares) {
    Random random(751);
    for (int trial = 0; trial < 300; ++trial) {
        const MatchScene s = makeScene(random, random.integer(2, 30), random.uniform(-3.1, 3.1),
                                       random.uniform(0.5, 2.0), {30.0, -40.0}, 0.5);
        for (const int32_t mode : {0, 1}) {
            ZelmMatchPose r;
            ASSERT_EQ(s.match(mode, 0.0, &r), ZELM_OK);
            const double least = sumOfSquares(s, r);
            for (int k = 0; k < 20; ++k) {
                ZelmMatchPose other = {r.x + 0.01 * random.normal(), r.y + 0.01 * random.normal(),
                                       r.angle + 0.001 * random.normal(), r.scale};
                if (mode == 1) {
                    other.scale += 0.001 * random.normal();
                }
                EXPECT_GT(sumOfSquares(s, other), least);
            }
        }
    }
}

// The robust procedure in complex numbers. `settledPass`: also solve with the weights that have settled, which the
// library does not.
struct Reference {
    int32_t status;
    std::complex<double> motion;  // scale and angle
    std::complex<double> shift;
};

Reference robustReference(const MatchScene& s, bool withScale, double threshold, bool useSettledWeights) {
    using Complex = std::complex<double>;
    const size_t n = s.ref.size();
    std::vector<Complex> m;
    std::vector<Complex> q;
    for (size_t i = 0; i < n; ++i) {
        m.emplace_back(s.model[i].x - s.modelPose.x, s.model[i].y - s.modelPose.y);
        q.emplace_back(s.ref[i].x, s.ref[i].y);
    }
    std::vector<double> w(n, 1.0);
    Reference r{ZELM_OK, 1.0, 0.0};
    const auto solve = [&] {
        double W = 0.0;
        Complex M = 0.0;
        Complex Q = 0.0;
        for (size_t i = 0; i < n; ++i) {
            W += w[i];
            M += w[i] * m[i];
            Q += w[i] * q[i];
        }
        Complex moment = 0.0;
        double extent = 0.0;
        for (size_t i = 0; i < n; ++i) {
            moment += w[i] * std::conj(m[i] - M / W) * (q[i] - Q / W);
            extent += w[i] * std::norm(m[i] - M / W);
        }
        r.motion = withScale ? moment / extent : moment / std::abs(moment);
        r.shift = (Q - r.motion * M) / W;
    };
    solve();
    for (int pass = 0; pass < 20; ++pass) {
        std::vector<double> e;
        for (size_t i = 0; i < n; ++i) {
            e.push_back(std::abs(r.motion * m[i] + r.shift - q[i]));
        }
        std::vector<double> sorted = e;
        std::sort(sorted.begin(), sorted.end());
        const double k = 0.5 * (sorted[(n - 1) / 2] + sorted[n / 2]) * threshold * 1.4826;
        if (k < 1e-13) {
            r.status = 1;
            return r;
        }
        double sum = 0.0;
        double change = 0.0;
        for (size_t i = 0; i < n; ++i) {
            const double weight = e[i] < k ? std::pow(1.0 - e[i] * e[i] / (k * k), 2.0) : 0.0;
            sum += weight;
            change += std::fabs(weight - w[i]);
            w[i] = weight;
        }
        if (sum < 1e-13) {
            r.status = ZELM_ERR_DEGENERATE;
            return r;
        }
        if (change < 0.02 * sum) {
            if (useSettledWeights) {
                solve();
            }
            return r;
        }
        solve();
    }
    return r;
}

// Rounding of products of coordinates of up to 100, amplified by the passes.
TEST(MatchRobust, FollowsTheProcedure) {
    Random random(752);
    int settledElsewhere = 0;
    for (int trial = 0; trial < 2000; ++trial) {
        MatchScene s = makeScene(random, random.integer(3, 40), random.uniform(-3.1, 3.1), random.uniform(0.8, 1.2),
                                 {30.0, -40.0}, 0.5);
        s.modelPose = {2.0, 3.0, 0.3, 1.0};
        for (size_t i = 0; i < s.ref.size() / 5; ++i) {
            s.ref[i].x += random.uniform(5.0, 30.0);
        }
        const bool withScale = trial % 2 == 1;
        const double threshold = random.uniform(1.5, 6.0);
        const Reference expected = robustReference(s, withScale, threshold, false);
        ZelmMatchPose r;
        ASSERT_EQ(s.match(withScale ? 3 : 2, threshold, &r), expected.status);
        EXPECT_NEAR(r.x, expected.shift.real(), 1e-8);
        EXPECT_NEAR(r.y, expected.shift.imag(), 1e-8);
        EXPECT_LT(angleBetween(r.angle, std::arg(expected.motion) + 0.3), 1e-10);
        EXPECT_NEAR(r.scale, std::abs(expected.motion), 1e-10);
        const Reference other = robustReference(s, withScale, threshold, true);
        settledElsewhere += std::abs(other.shift - expected.shift) > 1e-7 ? 1 : 0;
    }
    EXPECT_GT(settledElsewhere, 1000) << "using the settled weights would be seen";
}

// With 40 points and a threshold of 4 the biweight costs under 10 % of the standard deviation, which is sigma / sqrt(n)
// a coordinate of the shift about the centroid; a fifth of the points is missing. Six of those.
TEST(MatchRobust, OutliersDoNotPull) {
    Random random(753);
    const double sigma = 0.05;
    double worst = 0.0;
    double worstPlain = 0.0;
    for (int trial = 0; trial < 500; ++trial) {
        const double angle = random.uniform(-3.1, 3.1);
        MatchScene s = makeScene(random, 40, angle, 1.0, {30.0, -40.0}, sigma);
        for (size_t i = 0; i < 8; ++i) {
            s.ref[5 * i].x += random.uniform(2.0, 10.0);
            s.ref[5 * i].y += random.uniform(-10.0, 10.0);
        }
        for (const int32_t mode : {2, 3}) {
            ZelmMatchPose r;
            ASSERT_EQ(s.match(mode, 4.0, &r), ZELM_OK);
            worst = std::max(worst, std::hypot(r.x - 30.0, r.y + 40.0));
            EXPECT_LT(angleBetween(r.angle, angle), 6.0 * 1.1 * sigma / (40.0 * std::sqrt(32.0)));
            EXPECT_NEAR(r.scale, 1.0, 6.0 * 1.1 * sigma / (40.0 * std::sqrt(32.0)));
        }
        ZelmMatchPose plain;
        ASSERT_EQ(s.match(0, 0.0, &plain), ZELM_OK);
        worstPlain = std::max(worstPlain, std::hypot(plain.x - 30.0, plain.y + 40.0));
    }
    std::printf("a fifth of the points off: shift off by at most %.3f, plain %.3f\n", worst, worstPlain);
    // The shift moves the model's origin, which lies within 15 of the centroid.
    EXPECT_LT(worst, 6.0 * 1.1 * sigma * std::sqrt(2.0 / 32.0));
    EXPECT_GT(worstPlain, 1.0);
}

// A threshold so small that the cut-off lies below every distance: all distances are equal here.
TEST(MatchRobust, ATinyThresholdRejectsEveryPointAndKeepsTheClosedForm) {
    const MatchScene s = {{{2, 0}, {0, 2}, {-2, 0}, {0, -2}}, {{1, 0}, {0, 1}, {-1, 0}, {0, -1}}, {0, 0, 0, 1}};
    ZelmMatchPose r = {-7, -7, -7, -7};
    EXPECT_EQ(s.match(2, 0.5, &r), ZELM_ERR_DEGENERATE);
    EXPECT_NEAR(r.x, 0.0, 1e-15);
    EXPECT_NEAR(r.angle, 0.0, 1e-15);
    EXPECT_EQ(r.scale, 1.0);
}

// Where more than half of the points fit exactly, re-weighting ends in them.
TEST(MatchRobust, AnExactMajorityEndsWithStatusOne) {
    Random random(754);
    MatchScene s = makeScene(random, 21, 0.5, 1.0, {3.0, 4.0}, 0.0);
    s.ref[4].x += 3.0;
    s.ref[9].y -= 2.0;
    ZelmMatchPose r;
    EXPECT_EQ(s.match(2, 3.0, &r), ZELM_MATCH_EXACT);
    EXPECT_NEAR(r.angle, 0.5, 1e-13);
    EXPECT_NEAR(r.x, 3.0, 1e-12);
}

}  // namespace
