// From a peak on pixels to a match between them: climbing, and the parabola through logarithms.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "faultAlloc.h"
#include "refinement.h"
#include "searchScene.h"
#include "zelm/misc.h"

namespace {

using namespace zelm;
using namespace zelmtest;

struct Fitted {
    std::int32_t status;
    bool found;
    double peak;
};

Fitted fit(const double (&s)[3], const double (&score)[3]) {
    Fitted result{0, true, 77.0};
    result.status = innerLogParabolaPeak(s, score, &result.peak, &result.found);
    return result;
}

// The extremum of the parabola through three points, by divided differences.
double vertexOf(const double (&s)[3], const double (&y)[3]) {
    const double d01 = (y[1] - y[0]) / (s[1] - s[0]);
    const double d12 = (y[2] - y[1]) / (s[2] - s[1]);
    const double a = (d12 - d01) / (s[2] - s[0]);
    return 0.5 * (s[0] + s[1]) - d01 / (2.0 * a);
}

TEST(SearchRefine, IsExactForAGaussianPeak) {
    Random random(1);
    for (int round = 0; round < 1000; ++round) {
        const double s[3] = {-random.uniform(0.7, 1.0), 0.0, random.uniform(0.7, 1.0)};
        const double centre = random.uniform(-0.6, 0.6);
        const double width = random.uniform(1.2, 4.0);
        double score[3];
        for (int i = 0; i < 3; ++i) {
            score[i] = 0.9 * std::exp(-0.5 * (s[i] - centre) * (s[i] - centre) / (width * width));
        }
        const Fitted result = fit(s, score);
        EXPECT_EQ(result.status, ZELM_OK);
        EXPECT_TRUE(result.found);
        // Rounding of three logarithms and a solve, over a curvature of at least 1/32.
        EXPECT_NEAR(result.peak, centre, 1e-13);
    }
}

// Scores below 0.1 are all raised: by 0.1, and by how far the least lies below 0.
TEST(SearchRefine, RaisesLowScoresBeforeTheLogarithm) {
    const double s[3] = {-1.0, 0.0, 0.8};
    const struct {
        double score[3];
        double raise;
    } cases[] = {{{0.05, 0.3, 0.2}, 0.1}, {{0.0, 0.3, 0.2}, 0.1},   {{-0.3, 0.2, 0.1}, 0.4},
                 {{0.1, 0.3, 0.2}, 0.0},  {{0.2, 0.3, 0.099}, 0.1}, {{-0.5, -0.1, -0.2}, 0.6}};
    for (const auto& c : cases) {
        double logs[3];
        for (int i = 0; i < 3; ++i) {
            logs[i] = std::log(c.score[i] + c.raise);
        }
        const Fitted result = fit(s, c.score);
        EXPECT_TRUE(result.found);
        EXPECT_NEAR(result.peak, vertexOf(s, logs), 1e-13);
    }
}

TEST(SearchRefine, AFlatParabolaPeaksInTheMiddleOfTheRange) {
    const double s[3] = {-0.7, 0.0, 1.0};
    const double equal[3] = {0.5, 0.5, 0.5};
    EXPECT_TRUE(fit(s, equal).found);
    EXPECT_EQ(fit(s, equal).peak, 0.5 * (-0.7 + 1.0));
    // Sloped but straight: a is rounding, far below 1e-9.
    const double sloped[3] = {0.5 * std::exp(-0.7 * 0.01), 0.5, 0.5 * std::exp(0.01)};
    EXPECT_TRUE(fit(s, sloped).found);
    EXPECT_EQ(fit(s, sloped).peak, 0.5 * (-0.7 + 1.0));
}

// |a| = 1e-9 parts flat from curved: y = a s^2 + 0.25 a s has its extremum at -0.125.
TEST(SearchRefine, ParabolasAreFlatUpToACurvatureOf1em9) {
    const double s[3] = {-1.0, 0.0, 0.5};
    for (const double a : {-0.9e-9, -1.1e-9, 0.9e-9, 1.1e-9}) {
        double score[3];
        for (int i = 0; i < 3; ++i) {
            score[i] = 0.5 * std::exp(a * s[i] * s[i] + 0.25 * a * s[i]);
        }
        const Fitted result = fit(s, score);
        EXPECT_EQ(result.found, a < 1e-9);
        if (result.found) {
            EXPECT_NEAR(result.peak, a < -1e-9 ? -0.125 : -0.25, 1e-5) << a;  // rounding 1e-16 over 1e-9, and some
        }
    }
}

TEST(SearchRefine, AMinimumIsNoMatch) {
    EXPECT_FALSE(fit({-1.0, 0.0, 1.0}, {0.5, 0.4, 0.5}).found);
}

TEST(SearchRefine, AnExtremumBeyondTheNeighboursIsNoMatch) {
    const double s[3] = {-1.0, 0.0, 1.0};
    for (const double centre : {-1.01, -0.99, 0.99, 1.01}) {
        double score[3];
        for (int i = 0; i < 3; ++i) {
            score[i] = std::exp(-0.125 * (s[i] - centre) * (s[i] - centre));
        }
        EXPECT_EQ(fit(s, score).found, std::fabs(centre) < 1.0);
    }
}

TEST(SearchRefine, CoincidingAbscissaeAreSkippedNotFailed) {
    const Fitted result = fit({0.0, 0.0, 1.0}, {0.4, 0.5, 0.4});
    EXPECT_EQ(result.status, ZELM_OK);
    EXPECT_FALSE(result.found);
}

TEST(SearchRefine, NeedsNoMemory) {
    armAllocFault(1);
    const Fitted result = fit({-1.0, 0.0, 1.0}, {0.4, 0.5, 0.4});
    const auto requests = zelmtest::allocCounters().requests;
    disarmAllocFault();
    EXPECT_EQ(result.status, ZELM_OK);
    EXPECT_TRUE(result.found);
    EXPECT_EQ(requests, 0);
}

// A horizontal walk through a texture with all that a scorer needs.
struct Walk {
    SearchScene scene;
    std::vector<Point2i> lattice;
    std::vector<CorrScore> scores;
    SearchTemplate tmpl{};
    MaskedPlane image{};

    explicit Walk(std::uint64_t seed, bool masked) : scene(60, 30, 7, 7) {
        Random random(seed);
        scene.pixels = randomTexture(random, 60, 30, static_cast<int>(seed % 4));
        scene.tmplPixels = randomTexture(random, 7, 7, static_cast<int>(seed % 4));
        if (masked) {
            scene.mask.assign(scene.pixels.size(), 1);
        }
        scene.prepare();
        tmpl = {densePlane(7, 7, scene.ref.pixels, nullptr), scene.ref.mean, scene.ref.sigma, 3.0, 3.0};
        image = densePlane(60, 30, scene.prm.pixels, scene.prm.mask);
        for (std::int32_t x = 0; x < 60; ++x) {
            lattice.push_back({x, 15});
        }
        scores.resize(lattice.size());
    }
    [[nodiscard]] LineScorer scorer() { return {tmpl, image, lattice.data(), scores.data()}; }
    [[nodiscard]] std::int32_t size() const { return static_cast<std::int32_t>(lattice.size()); }
    // Scores of all pixels, -2 where there is none.
    std::vector<double> fullScores() {
        scorer().rescore(0, size() - 1);
        std::vector<double> values;
        for (const CorrScore& entry : scores) {
            values.push_back(entry.score);
        }
        return values;
    }
};

struct Climb {
    int end;    // -1: dropped
    int steps;  // taken
};

// The rule as it reads.
Climb modelClimb(const std::vector<double>& full, int k) {
    const auto at = [&](int i) {
        return i < 0 || i >= static_cast<int>(full.size()) ? -2.0 : full[static_cast<std::size_t>(i)];
    };
    for (int step = 0; step <= 2; ++step) {
        if (at(k - 1) == -2.0 || at(k) == -2.0 || at(k + 1) == -2.0) {
            return {-1, step};
        }
        if (at(k) >= at(k - 1) && at(k) >= at(k + 1)) {
            return {k, step};
        }
        k += at(k + 1) > at(k - 1) ? 1 : -1;
    }
    return {-1, 3};
}

TEST(SearchRefine, ClimbsAtMostTwoStepsToALocalMaximum) {
    int outcomes[2][4] = {};  // [dropped][steps]
    for (std::uint64_t seed = 0; seed < 120; ++seed) {
        Walk walk(seed, seed % 3 == 0);
        const std::vector<double> full = walk.fullScores();
        for (std::int32_t k = 1; k <= walk.size() - 2; ++k) {
            for (CorrScore& entry : walk.scores) {
                entry.score = 0.9;  // of the coarse pass: to be forgotten
            }
            std::int32_t end = k;
            const bool climbed = innerClimbToPeak(walk.scorer(), walk.size(), &end);
            const Climb expected = modelClimb(full, k);
            ASSERT_EQ(climbed, expected.end >= 0) << "seed " << seed << ", from " << k;
            if (climbed) {
                EXPECT_EQ(end, expected.end);
                for (std::int32_t i = end - 1; i <= end + 1; ++i) {
                    EXPECT_EQ(walk.scores[static_cast<std::size_t>(i)].score, full[static_cast<std::size_t>(i)]);
                }
            } else {
                EXPECT_EQ(end, k);
            }
            outcomes[climbed ? 0 : 1][expected.steps] += 1;
        }
    }
    for (int steps = 0; steps <= 2; ++steps) {
        EXPECT_GT(outcomes[0][steps], 20) << "too few climbs of " << steps << " steps to prove anything";
        EXPECT_GT(outcomes[1][steps], 20) << "too few climbs that meet an unscored point after " << steps << " steps";
    }
    EXPECT_GT(outcomes[1][3], 20) << "too few climbs given up";
}

TEST(SearchRefine, AnIndexWithoutNeighboursFailsAnAssertion) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    Walk walk(1, false);
    walk.fullScores();
    const SearchLine line{{0.0, 1.0, -15.0}, {1.0, 0.0}};
    ZelmCstmMatch match{};
    bool found = false;
    for (const std::int32_t k : {0, walk.size() - 1}) {
        EXPECT_DEATH(innerRefinePeak(walk.scorer(), line, walk.size(), k, &match, &found),
                     "innerRefinePeak \\(.*3DLib/zelmLib/zelm2View/src/zelmCstmDrovn/refinement.cpp\\): "
                     "k>=1 && k<=\\(iLatNum-2\\)");
    }
    EXPECT_EQ(innerRefinePeak(walk.scorer(), line, walk.size(), 30, &match, &found), ZELM_OK);
}

// The abscissae are those of the feet on the line, and the match lies on it, whichever way the lattice runs.
TEST(SearchRefine, MeasuresAlongTheLine) {
    Walk walk(1, false);
    const double angle = 0.3;
    for (const double way : {1.0, -1.0}) {
        walk.lattice[10] = {10, 5};
        walk.lattice[11] = {11, 5};
        walk.lattice[12] = {12, 6};
        if (way < 0.0) {
            std::swap(walk.lattice[10], walk.lattice[12]);
        }
        walk.scores[10].score = 0.7;
        walk.scores[11].score = 0.9;
        walk.scores[12].score = 0.8;
        const double ux = std::cos(angle);
        const double uy = std::sin(angle);
        const SearchLine line{{-2.0 * uy, 2.0 * ux, 2.0 * (uy * 11.0 - ux * 5.3)}, {way * ux, way * uy}};
        ZelmCstmMatch match{};
        bool found = false;
        ASSERT_EQ(innerRefinePeak(walk.scorer(), line, walk.size(), 11, &match, &found), ZELM_OK);
        ASSERT_TRUE(found);
        EXPECT_EQ(match.score, 0.9);
        // Feet: the pixels differ by (1, 0) and (1, 1) along the walk.
        const double before = way > 0.0 ? ux : ux + uy;
        const double behind = way > 0.0 ? ux + uy : ux;
        const double s[3] = {-before, 0.0, behind};
        const double logs[3] = {std::log(0.7), std::log(0.9), std::log(0.8)};
        const double foot = -0.3 * uy;  // of (11, 5) from (11, 5.3), along (ux, uy)
        const double along = foot + way * vertexOf(s, logs);
        EXPECT_NEAR(match.x, 11.0 + along * ux, 1e-12);
        EXPECT_NEAR(match.y, 5.3 + along * uy, 1e-12);
    }
}

}  // namespace
