// The plateau walk and the five selection rules on constructed profiles, and through whole searches.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "edgeScene.h"
#include "edgeSelect.h"

namespace {

using zelm::EdgeCandidate;
using zelm::EdgeRule;
using zelmtest::findEdge;
using zelmtest::findInProfile;
using zelmtest::Found;
using zelmtest::kUsual;
using zelmtest::Random;

// The usual rule, with the threshold that the profile itself gives.
EdgeRule usualRule(const std::vector<int>& q, int32_t selector, int32_t sign = 0) {
    const auto [low, high] = std::minmax_element(q.begin(), q.end());
    return {.selector = selector,
            .sign = sign,
            .threshold = std::max((*high - *low) * 30 / 100, 5),
            .flatTolerance = 1,
            .minFlatRun = 2,
            .doubledCentre = static_cast<double>(q.size()) - 1.0};
}

// Expects the edge [a, b] with its difference; a < 0 for none.
void expectEdge(const std::vector<int>& q, const EdgeRule& rule, int64_t a, int64_t b, int32_t difference) {
    EdgeCandidate edge = {-1, -1, 0, -1, -1};
    EXPECT_EQ(zelm::selectEdge(q, rule, edge), a >= 0);
    EXPECT_EQ(edge.a, a);
    EXPECT_EQ(edge.b, b);
    EXPECT_EQ(edge.difference, difference);
}

void expectNoEdge(const std::vector<int>& q, const EdgeRule& rule) {
    expectEdge(q, rule, -1, -1, 0);
}

std::vector<int> reversed(std::vector<int> q) {
    std::reverse(q.begin(), q.end());
    return q;
}

TEST(EdgePlateaus, TwoFlatStepsOnEitherSideMakeAnEdge) {
    const std::vector<int> q = {50, 50, 50, 150, 150, 150};
    expectEdge(q, usualRule(q, 1), 2, 3, 100);
    expectEdge(reversed(q), usualRule(q, 1), 2, 3, -100);
}

TEST(EdgePlateaus, OneFlatStepConfirmsNoPlateau) {
    const std::vector<int> first = {50, 50, 150, 150, 150, 150};
    const std::vector<int> second = {50, 50, 50, 50, 150, 150};
    expectNoEdge(first, usualRule(first, 1));
    expectNoEdge(second, usualRule(second, 1));
}

TEST(EdgePlateaus, AsManyFlatStepsAsAskedForAreNeeded) {
    for (int run = 1; run <= 12; ++run) {
        std::vector<int> q(20, 50);
        q.resize(20U + static_cast<unsigned>(run) + 1, 150);
        EdgeRule rule = usualRule(q, 1);
        rule.minFlatRun = run;
        expectEdge(q, rule, 19, 20, 100);
        rule.minFlatRun = run + 1;
        expectNoEdge(q, rule);
    }
}

TEST(EdgePlateaus, ASlopeOfFlatStepsIsAPlateau) {
    // 60 steps of one gray level on each side of a step of 70.
    std::vector<int> q;
    for (int i = 0; i <= 60; ++i) {
        q.push_back(20 + i);
    }
    for (int i = 0; i <= 60; ++i) {
        q.push_back(150 + i);
    }
    EdgeRule rule = usualRule(q, 1);
    // The level is that of the three samples at the transition, which begins one changing step before the plateau ends.
    expectEdge(q, rule, 59, 62, 151 - 79);
    rule.flatTolerance = 0;
    expectNoEdge(q, rule);
}

TEST(EdgePlateaus, ARampIsOneTransitionHoweverGentle) {
    // Steps of 2 to 40 gray levels, all above the tolerance, from 50 to 210.
    for (const int step : {2, 4, 5, 8, 10, 20, 40}) {
        std::vector<int> q(8, 50);
        while (q.back() < 210) {
            q.push_back(q.back() + step);
        }
        const auto top = static_cast<int64_t>(q.size()) - 1;
        q.insert(q.end(), 7, 210);
        expectEdge(q, usualRule(q, 1), 7, top, 160);
        expectEdge(reversed(q), usualRule(q, 1), 7, top, -160);
    }
}

TEST(EdgePlateaus, AStaircaseWhoseTreadsAreTooShortIsOneTransition) {
    std::vector<int> q(6, 50);
    for (int level = 60; level < 150; level += 10) {
        q.insert(q.end(), 2, level);
    }
    const auto top = static_cast<int64_t>(q.size());
    q.insert(q.end(), 6, 150);
    expectEdge(q, usualRule(q, 1), 5, top, 100);
}

TEST(EdgePlateaus, ALineOnAnEvenGroundIsNoEdge) {
    for (const int width : {1, 2}) {
        std::vector<int> q(8, 50);
        q.insert(q.end(), static_cast<std::size_t>(width), 200);
        q.insert(q.end(), 8, 50);
        expectNoEdge(q, usualRule(q, 1));
    }
    std::vector<int> bar(8, 50);
    bar.insert(bar.end(), 3, 200);
    bar.insert(bar.end(), 8, 50);
    expectEdge(bar, usualRule(bar, 1, 1), 7, 8, 150);
    expectEdge(bar, usualRule(bar, 1, -1), 10, 11, -150);
}

TEST(EdgePlateaus, AnOvershootBelongsToTheTransition) {
    const std::vector<int> q = {50, 50, 50, 50, 5, 195, 150, 150, 150, 150};
    expectEdge(q, usualRule(q, 1), 3, 6, 100);
}

TEST(EdgePlateaus, NoiseOfSeveralGrayLevelsBreaksNoPlateau) {
    // Steps of up to 14 on the plateaus: a strict reading has no two flat steps in a row anywhere.
    const std::vector<int> q = {50, 57, 46, 55, 48, 54, 149, 157, 145, 158, 150, 156};
    EdgeCandidate edge = {};
    ASSERT_TRUE(zelm::selectEdge(q, usualRule(q, 1), edge));
    EXPECT_GE(edge.a, 4);
    EXPECT_LE(edge.b, 7);
    EXPECT_NEAR(edge.difference, 100, 6);
}

TEST(EdgePlateaus, TheFootOfABlurredTransitionBelongsToIt) {
    // The band of 20 would take 52 and 60 into the first plateau, 140 and 148 into the second.
    const std::vector<int> q = {50, 50, 50, 50, 52, 60, 80, 120, 140, 148, 150, 150, 150, 150};
    expectEdge(q, usualRule(q, 1), 3, 10, 100);
}

TEST(EdgePlateaus, ARampOfUnequalStepsIsOneTransitionAlsoBesideNoise) {
    // All steps of a ramp exceed the tolerance in one sense; those of the noise change their sense.
    for (const int noise : {0, 3}) {
        std::vector<int> q;
        for (int i = 0; i < 10; ++i) {
            q.push_back(60 + (i % 2 == 0 ? noise : -noise));
        }
        const int steps[] = {6, 7, 6, 6, 7, 6, 7, 6, 6, 7, 6, 7, 6, 6, 7};
        int level = q.back();
        for (const int step : steps) {
            q.push_back(level += step);
        }
        for (int i = 0; i < 10; ++i) {
            q.push_back(level - noise + (i % 2 == 0 ? -noise : noise));
        }
        for (const int32_t selector : {0, 1, 2, 3, 4}) {
            EdgeCandidate edge = {};
            ASSERT_TRUE(zelm::selectEdge(q, usualRule(q, selector), edge));
            EXPECT_EQ(edge.a, 9);
            EXPECT_EQ(edge.b, 24);
            EXPECT_NEAR(edge.difference, 96, 2 * noise);
        }
    }
}

TEST(EdgePlateaus, TheFilterSeesThemInNoiseOnly) {
    // A slope of one gray level in two samples on either side of a step, once with a sample that stands out.
    std::vector<int> q;
    for (int i = 0; i < 20; ++i) {
        q.push_back(40 + i / 2 + (i < 10 ? 0 : 100));
    }
    EdgeCandidate edge = {};
    ASSERT_TRUE(zelm::selectEdge(q, usualRule(q, 1), edge));
    EXPECT_EQ(edge.a, 9);
    EXPECT_EQ(edge.b, 10);
    EXPECT_EQ(edge.from, 9);
    EXPECT_EQ(edge.to, 10);
    q[16] -= 1;
    q[15] += 1;
    ASSERT_TRUE(zelm::selectEdge(q, usualRule(q, 1), edge));
    EXPECT_EQ(edge.a, 9);
    EXPECT_EQ(edge.b, 10);
    EXPECT_EQ(edge.from, 0);
    EXPECT_EQ(edge.to, 19);
}

TEST(EdgePlateaus, OneFlatStepIsEnoughWhereItIsAskedForAlsoInNoise) {
    const std::vector<int> q = {50, 57, 46, 55, 48, 54, 149, 157, 145, 158, 150, 156};
    EdgeRule rule = usualRule(q, 1);
    rule.minFlatRun = 1;
    EdgeCandidate edge = {};
    ASSERT_TRUE(zelm::selectEdge(q, rule, edge));
    EXPECT_GE(edge.a, 4);
    EXPECT_LE(edge.b, 7);
    EXPECT_NEAR(edge.difference, 100, 8);
}

TEST(EdgePlateaus, AWalkIsTheSameInBothDirections) {
    Random random(22);
    for (int trial = 0; trial < 5000; ++trial) {
        std::vector<int> q;
        double level = 60.0;
        const double rise = random.uniform(3.0, 30.0);
        for (int i = 0; i < 30; ++i) {
            level += i > 10 && i < 18 ? rise : 0.0;
            q.push_back(static_cast<int>(std::clamp(level + 3.0 * random.normal(), 0.0, 255.0)));
        }
        EdgeRule rule = usualRule(q, 1, 1);
        EdgeCandidate forward = {};
        EdgeCandidate backward = {};
        const bool found = zelm::selectEdge(q, rule, forward);
        rule.sign = -1;
        std::vector<int> mirrored = reversed(q);
        ASSERT_EQ(zelm::selectEdge(mirrored, rule, backward), found);
        if (found) {
            EXPECT_EQ(forward.difference, -backward.difference) << trial;
        }
    }
}

// Rising by 55, by 90 over five steps, falling by 60 over three, and rising by 90 at once.
const std::vector<int> kLandscape = [] {
    std::vector<int> q(6, 5);
    q.insert(q.end(), 6, 60);               // a = 5, b = 6
    q.insert(q.end(), {78, 96, 114, 132});  // a = 11
    q.insert(q.end(), 6, 150);              // b = 16
    q.insert(q.end(), {130, 110});          // a = 21
    q.insert(q.end(), 6, 90);               // b = 24
    q.insert(q.end(), 6, 180);              // a = 29, b = 30
    return q;
}();

TEST(EdgeSelectors, ZeroAndOneTakeTheLargestDifferenceAndTheFirstOfEqualOnes) {
    for (const int32_t selector : {0, 1}) {
        expectEdge(kLandscape, usualRule(kLandscape, selector), 11, 16, 90);
        expectEdge(kLandscape, usualRule(kLandscape, selector, -1), 21, 24, -60);
    }
}

TEST(EdgeSelectors, ZeroTakesTheLevelsAtTheVeryEndsOfThePlateaus) {
    // Between end samples the edges are 101 and 100 high, between means of three samples 100 and 101.
    const std::vector<int> q = {20, 20, 20, 20, 121, 120, 119, 118, 117, 116, 116, 116, 216, 217, 218, 218, 218, 218};
    expectEdge(q, usualRule(q, 0, 1), 3, 4, 101);
    expectEdge(q, usualRule(q, 1, 1), 11, 13, 101);
}

TEST(EdgeSelectors, TwoTakesTheFirstFromTheStart) {
    expectEdge(kLandscape, usualRule(kLandscape, 2), 5, 6, 55);
    expectEdge(kLandscape, usualRule(kLandscape, 2, -1), 21, 24, -60);
    EdgeRule demanding = usualRule(kLandscape, 2);
    demanding.threshold = 70;
    expectEdge(kLandscape, demanding, 11, 16, 90);
}

TEST(EdgeSelectors, ThreeTakesTheSteepestAndTheFirstOfEqualOnes) {
    expectEdge(kLandscape, usualRule(kLandscape, 3), 29, 30, 90);
    const std::vector<int> equal = {10, 10, 10, 60, 60, 60, 60, 110, 160, 160, 160, 160, 210, 210, 210};
    EdgeRule rule = usualRule(equal, 3);
    rule.threshold = 40;
    expectEdge(equal, rule, 2, 3, 50);
}

TEST(EdgeSelectors, FourTakesTheOneClosestToTheMiddleOfTheSegment) {
    expectEdge(kLandscape, usualRule(kLandscape, 4), 11, 16, 90);  // middles 5.5, 13.5, 22.5, 29.5; centre 17.5
    expectEdge(kLandscape, usualRule(kLandscape, 4, -1), 21, 24, -60);
    const std::vector<int> tied = {10, 10, 10, 60, 60, 60, 60, 110, 110, 110};
    expectEdge(tied, usualRule(tied, 4), 2, 3, 50);
}

TEST(EdgeSelectors, TheCentreIsThatOfTheWholeSegmentAlsoOutsideTheImage) {
    // Edges at 9.5 and 29.5 of an image 40 wide; the middle of the segment decides.
    const zelmtest::GrayScene scene(40, 8, [](double x, double) { return x < 10.0 ? 20.0 : x < 30.0 ? 90.0 : 160.0; });
    ZelmEdge1dParam param = kUsual;
    param.selector = 4;
    EXPECT_NEAR(findEdge(scene.image, {-1000.0, 3.0}, {1010.0, 3.0}, 1, param).point.x, 9.5, 0.01);
    EXPECT_NEAR(findEdge(scene.image, {-1000.0, 3.0}, {1060.0, 3.0}, 1, param).point.x, 29.5, 0.01);
    EXPECT_NEAR(findEdge(scene.image, {-9000.0, 3.0}, {1060.0, 3.0}, 1, param).point.x, 9.5, 0.01);
}

TEST(EdgeSelectors, TheCentreIsThatOfASegmentOfAnyLength) {
    // Edges at 9.5 and 29.5. Up to a length of 39 the middle is at most 19.5, as far from both; beyond it the second
    // one is closer, although no further sample is taken.
    const zelmtest::GrayScene scene(60, 8, [](double x, double) { return x < 10.0 ? 20.0 : x < 30.0 ? 90.0 : 160.0; });
    ZelmEdge1dParam param = kUsual;
    param.selector = 4;
    EXPECT_NEAR(findEdge(scene.image, {0.0, 3.0}, {38.9, 3.0}, 1, param).point.x, 9.5, 0.01);
    EXPECT_NEAR(findEdge(scene.image, {0.0, 3.0}, {39.0, 3.0}, 1, param).point.x, 9.5, 0.01);
    EXPECT_NEAR(findEdge(scene.image, {0.0, 3.0}, {39.1, 3.0}, 1, param).point.x, 29.5, 0.01);
    EXPECT_NEAR(findEdge(scene.image, {0.0, 3.0}, {39.9, 3.0}, 1, param).point.x, 29.5, 0.01);
    // From the other side the samples stand at fractions of a pixel.
    EXPECT_NEAR(findEdge(scene.image, {39.9, 3.0}, {0.0, 3.0}, -1, param).point.x, 29.5, 0.05);
}

TEST(EdgeThreshold, DifferencesBelowItAreNoCandidates) {
    for (const int32_t selector : {0, 1, 2, 3, 4}) {
        const std::vector<int> q = {50, 50, 50, 79, 79, 79, 79, 50, 50, 50, 150, 150, 150, 79, 79, 79, 79};
        EdgeRule rule = usualRule(q, selector, 1);
        ASSERT_EQ(rule.threshold, 30);
        EdgeCandidate edge = {};
        ASSERT_TRUE(zelm::selectEdge(q, rule, edge));
        EXPECT_EQ(edge.difference, 100);
        rule.threshold = 29;
        rule.selector = 2;
        expectEdge(q, rule, 2, 3, 29);
    }
}

TEST(EdgeThreshold, IsAShareOfTheRangeInWholeGrayLevelsButNotLessThanTheMinimum) {
    // A range of 199 at 30 per cent gives 59: the rise of 59 is the first edge, a rise of 58 is not.
    const std::vector<int> enough = {20, 20, 20, 79, 79, 79, 79, 219, 219, 219, 219};
    const std::vector<int> short1 = {20, 20, 20, 78, 78, 78, 78, 219, 219, 219, 219};
    ZelmEdge1dParam param = kUsual;
    param.selector = 2;
    EXPECT_NEAR(findInProfile(enough, 1, param).point.x, 2.5, 0.1);
    EXPECT_NEAR(findInProfile(short1, 1, param).point.x, 6.5, 0.1);
    EXPECT_EQ(findInProfile({50, 50, 50, 50, 55, 55, 55, 55}, 1).result, 1);
    EXPECT_EQ(findInProfile({50, 50, 50, 50, 54, 54, 54, 54}, 1).result, 0);
    param.minContrast = 101;
    EXPECT_EQ(findInProfile({50, 50, 50, 50, 150, 150, 150, 150}, 1, param).result, 0);
    param.minContrast = 100;
    EXPECT_EQ(findInProfile({50, 50, 50, 50, 150, 150, 150, 150}, 1, param).result, 1);
}

TEST(EdgeThreshold, WithoutAnyTwoEqualLevelsStillHaveNoSense) {
    ZelmEdge1dParam param = kUsual;
    param.contrastPercent = 0;
    param.minContrast = 0;
    EXPECT_EQ(findInProfile({50, 50, 50, 50, 120, 50, 50, 50, 50}, 0, param).result, 0);
}

TEST(EdgeRecord, RunsAndTolerancesBelowTheirRangeActAsItsEnd) {
    const std::vector<int> q = {50, 50, 50, 50, 51, 150, 150, 150, 150, 150};
    ZelmEdge1dParam param = kUsual;
    param.minFlatRun = 1;
    param.flatTolerance = 0;
    const Found expected = findInProfile(q, 1, param);
    ASSERT_EQ(expected.result, 1);
    for (const int32_t low : {0, -1, INT32_MIN}) {
        param.minFlatRun = low;
        param.flatTolerance = std::min(low, 0);
        const Found found = findInProfile(q, 1, param);
        EXPECT_EQ(found.result, 1);
        EXPECT_EQ(found.point.x, expected.point.x);
    }
}

TEST(EdgeRecord, ARunBeyond4096ActsAs4096) {
    // Outside the image the profile repeats its ends, so that the plateaus are as long as the segment reaches.
    const zelmtest::GrayScene scene(30, 8, [](double x, double) { return x < 15.0 ? 20.0 : 90.0; });
    ZelmEdge1dParam param = kUsual;
    for (const int32_t run : {4096, 5000, INT32_MAX}) {
        param.minFlatRun = run;
        EXPECT_EQ(findEdge(scene.image, {-6000.0, 3.0}, {6000.0, 3.0}, 1, param).result, 1);
        EXPECT_EQ(findEdge(scene.image, {-4000.0, 3.0}, {6000.0, 3.0}, 1, param).result, 0);
    }
    param.minFlatRun = 3000;
    EXPECT_EQ(findEdge(scene.image, {-4000.0, 3.0}, {1e8, 3.0}, 1, param).result, 1);
}

}  // namespace
