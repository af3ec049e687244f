// The contract that all modes share, and the two functions beside the estimate.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "matchScenes.h"
#include "random.h"
#include "zelm/match.h"

using zelmtest::angleBetween;
using zelmtest::distancesOf;
using zelmtest::kPi;
using zelmtest::makeScene;
using zelmtest::MatchScene;
using zelmtest::movedBy;
using zelmtest::Points;
using zelmtest::Random;

namespace {

const ZelmMatchPose kUntouched = {-7.0, -7.0, -7.0, -7.0};

MatchScene someScene() {
    Random random(741);
    return makeScene(random, 8, 0.4, 1.0, {3.0, 4.0}, 0.1);
}

TEST(MatchBasic, BadArgumentsAreRefusedAndTouchNothing) {
    const MatchScene s = someScene();
    ZelmMatchPose r = kUntouched;
    const auto call = [&](int32_t n, const Point2d* ref, const Point2d* model, const ZelmMatchPose* pose, int32_t mode,
                          double threshold, ZelmMatchPose* result) {
        return zelmMatchBasic(n, ref, model, pose, mode, threshold, result);
    };
    const Point2d* const ref = s.ref.data();
    const Point2d* const model = s.model.data();
    EXPECT_EQ(call(8, ref, model, &s.modelPose, 6, 3.0, &r), ZELM_ERR_PARAM);
    EXPECT_EQ(call(8, ref, model, &s.modelPose, -1, 3.0, &r), ZELM_ERR_PARAM);
    EXPECT_EQ(call(1, ref, model, &s.modelPose, 0, 3.0, &r), ZELM_ERR_PARAM);
    EXPECT_EQ(call(8, nullptr, model, &s.modelPose, 0, 3.0, &r), ZELM_ERR_PARAM);
    EXPECT_EQ(call(8, ref, nullptr, &s.modelPose, 0, 3.0, &r), ZELM_ERR_PARAM);
    EXPECT_EQ(call(8, ref, model, nullptr, 0, 3.0, &r), ZELM_ERR_PARAM);
    EXPECT_EQ(call(8, ref, model, &s.modelPose, 0, 3.0, nullptr), ZELM_ERR_PARAM);
    for (const int32_t mode : {2, 3}) {
        for (const double threshold : {0.0, -1.0, std::nan("")}) {
            EXPECT_EQ(call(8, ref, model, &s.modelPose, mode, threshold, &r), ZELM_ERR_PARAM);
        }
    }
    EXPECT_EQ(r.x, -7.0);
    EXPECT_EQ(r.scale, -7.0);
}

TEST(MatchBasic, TheThresholdIsReadByTheRobustModesOnly) {
    const MatchScene s = someScene();
    for (const int32_t mode : {0, 1, 4, 5}) {
        ZelmMatchPose a;
        ZelmMatchPose b;
        EXPECT_EQ(s.match(mode, -1.0, &a), ZELM_OK);
        EXPECT_EQ(s.match(mode, 3.0, &b), ZELM_OK);
        EXPECT_EQ(a.angle, b.angle);
    }
}

TEST(MatchBasic, IdenticalSetsGiveTheIdentity) {
    Random random(742);
    for (int trial = 0; trial < 200; ++trial) {
        MatchScene s = makeScene(random, random.integer(2, 30), 0.0, 1.0, {0.0, 0.0}, 0.0);
        s.ref = s.model;
        for (int32_t mode = 0; mode <= 5; ++mode) {
            ZelmMatchPose r;
            // The cut-off of the robust modes is 0 to rounding.
            const int32_t expected = mode == 2 || mode == 3 ? 1 : 0;
            EXPECT_EQ(s.match(mode, 3.0, &r), expected);
            EXPECT_NEAR(r.x, 0.0, 1e-13);
            EXPECT_NEAR(r.y, 0.0, 1e-13);
            // Two points of a minimax mode may be as near as 0.1 to each other.
            EXPECT_NEAR(r.angle, 0.0, 1e-13);
            EXPECT_NEAR(r.scale, 1.0, 1e-13);
        }
    }
}

TEST(MatchBasic, AnExactRobustMatchStopsAtOnceWithStatusOne) {
    const MatchScene s = {{{0, 0}, {4, 0}, {4, 3}}, {{0, 0}, {4, 0}, {4, 3}}, {0, 0, 0, 1}};
    ZelmMatchPose r;
    EXPECT_EQ(s.match(2, 3.0, &r), 1);
    EXPECT_EQ(r.angle, 0.0);
    EXPECT_EQ(r.scale, 1.0);
}

TEST(MatchBasic, AThirtyDegreeTurnAndAShiftAreFound) {
    Random random(743);
    const MatchScene s = makeScene(random, 12, kPi / 6.0, 1.0, {5.0, -2.0}, 0.0);
    for (int32_t mode = 0; mode <= 5; ++mode) {
        ZelmMatchPose r;
        EXPECT_GE(s.match(mode, 3.0, &r), ZELM_OK);
        EXPECT_NEAR(r.angle, kPi / 6.0, 1e-13) << mode;
        EXPECT_NEAR(r.x, 5.0, 1e-12) << mode;
        EXPECT_NEAR(r.y, -2.0, 1e-12) << mode;
        EXPECT_NEAR(r.scale, 1.0, 1e-13) << mode;
    }
}

TEST(MatchBasic, ModesWithScaleFindItAndRigidModesKeepOne) {
    Random random(744);
    const MatchScene s = makeScene(random, 12, -1.0, 1.25, {5.0, -2.0}, 0.0);
    for (int32_t mode = 0; mode <= 5; ++mode) {
        ZelmMatchPose r;
        EXPECT_GE(s.match(mode, 5.0, &r), ZELM_OK);
        if (mode % 2 == 0) {
            EXPECT_EQ(r.scale, 1.0);
        } else {
            EXPECT_NEAR(r.scale, 1.25, 1e-13);
        }
    }
}

// The model pose moves the origin of the model and turns the result; its scale does not count.
TEST(MatchBasic, TheModelPoseIsAnOriginAndAnAngle) {
    Random random(745);
    for (int trial = 0; trial < 50; ++trial) {
        MatchScene plain = makeScene(random, 9, random.uniform(-3.0, 3.0), 1.0, {3.0, 4.0}, 0.1);
        MatchScene posed = plain;
        posed.modelPose = {random.uniform(-20.0, 20.0), random.uniform(-20.0, 20.0), random.uniform(-9.0, 9.0), 77.0};
        for (Point2d& p : posed.model) {
            p = {p.x + posed.modelPose.x, p.y + posed.modelPose.y};
        }
        for (const int32_t mode : {0, 1, 2, 3}) {
            ZelmMatchPose a;
            ZelmMatchPose b;
            ASSERT_EQ(plain.match(mode, 3.0, &a), posed.match(mode, 3.0, &b));
            EXPECT_NEAR(a.x, b.x, 1e-11);
            EXPECT_NEAR(a.y, b.y, 1e-11);
            EXPECT_NEAR(a.scale, b.scale, 1e-12);
            EXPECT_LT(angleBetween(a.angle + posed.modelPose.angle, b.angle), 1e-12);
            EXPECT_LE(std::fabs(b.angle), kPi);
        }
    }
}

TEST(MatchBasic, TheResultMayReplaceTheModelPose) {
    MatchScene s = someScene();
    s.modelPose = {1.0, 2.0, 0.5, 1.0};
    for (int32_t mode = 0; mode <= 5; ++mode) {
        ZelmMatchPose r;
        ASSERT_EQ(s.match(mode, 3.0, &r), ZELM_OK);
        MatchScene t = s;
        ASSERT_EQ(t.match(mode, 3.0, &t.modelPose), ZELM_OK);
        EXPECT_EQ(t.modelPose.x, r.x);
        EXPECT_EQ(t.modelPose.angle, r.angle);
    }
}

// Twice around the seam of the angle.
TEST(MatchBasic, AnglesNearAHalfTurnAreWrapped) {
    Random random(746);
    for (int i = -20; i <= 20; ++i) {
        const double angle = kPi + 0.002 * i;
        const MatchScene s = makeScene(random, 10, angle, 1.0, {5.0, -2.0}, 0.2);
        for (int32_t mode = 0; mode <= 5; ++mode) {
            ZelmMatchPose r;
            ASSERT_EQ(s.match(mode, 4.0, &r), ZELM_OK);
            EXPECT_LE(std::fabs(r.angle), kPi);
            EXPECT_LT(angleBetween(r.angle, angle), 0.02);  // noise of 0.2 at 30 from the middle, of ten points
        }
    }
}

TEST(MatchBasic, TwoPointsFixTheMotion) {
    Random random(747);
    for (int trial = 0; trial < 200; ++trial) {
        MatchScene s = makeScene(random, 2, random.uniform(-3.1, 3.1), 1.0, {7.0, 8.0}, 0.0);
        const double angle = std::atan2(s.ref[1].y - s.ref[0].y, s.ref[1].x - s.ref[0].x) -
                             std::atan2(s.model[1].y - s.model[0].y, s.model[1].x - s.model[0].x);
        s.ref[1] = {s.ref[0].x + 1.5 * (s.ref[1].x - s.ref[0].x), s.ref[0].y + 1.5 * (s.ref[1].y - s.ref[0].y)};
        const double length = std::hypot(s.model[1].x - s.model[0].x, s.model[1].y - s.model[0].y);
        for (int32_t mode = 0; mode <= 5; ++mode) {
            ZelmMatchPose r;
            ASSERT_GE(s.match(mode, 3.0, &r), ZELM_OK);
            EXPECT_LT(angleBetween(r.angle, angle), 1e-7) << mode;  // a minimum that is flat to the root of rounding
            EXPECT_NEAR(r.scale, mode % 2 == 0 ? 1.0 : 1.5, 1e-9) << mode;
            for (const double d : distancesOf(s, r)) {
                EXPECT_NEAR(d, mode % 2 == 0 ? 0.25 * length : 0.0, 1e-9 + 1e-9 * length) << mode;
            }
        }
    }
}

TEST(MatchBasic, AModelThatCoincidesKeepsScaleOneAndAngleZero) {
    const MatchScene s = {{{1, 2}, {3, 5}, {4, 4}}, {{7, 7}, {7, 7}, {7, 7}}, {7, 7, 0, 1}};
    for (int32_t mode = 0; mode <= 5; ++mode) {
        ZelmMatchPose r;
        ASSERT_EQ(s.match(mode, 9.0, &r), ZELM_OK) << mode;
        if (mode != 5) {
            EXPECT_EQ(r.scale, 1.0) << mode;
        }
        EXPECT_TRUE(std::isfinite(r.scale));
        EXPECT_TRUE(std::isfinite(r.x));
        EXPECT_TRUE(std::isfinite(r.angle));
    }
    ZelmMatchPose r;
    ASSERT_EQ(s.match(1, 0.0, &r), ZELM_OK);
    EXPECT_EQ(r.angle, 0.0);
    EXPECT_NEAR(r.x, 8.0 / 3.0, 1e-14);
    EXPECT_NEAR(r.y, 11.0 / 3.0, 1e-14);
}

TEST(MatchBasic, CollinearPointsFixTheMotionToo) {
    Random random(748);
    MatchScene s;
    for (int i = 0; i < 9; ++i) {
        s.model.push_back({3.0 * i, -2.0 * i});
        s.ref.push_back(movedBy(1.1, 1.0, {5.0, 6.0}, s.model.back()));
    }
    for (int32_t mode = 0; mode <= 5; ++mode) {
        ZelmMatchPose r;
        ASSERT_GE(s.match(mode, 3.0, &r), ZELM_OK);
        EXPECT_NEAR(r.angle, 1.1, 1e-12) << mode;
        EXPECT_NEAR(r.scale, 1.0, 1e-12) << mode;
        EXPECT_NEAR(r.x, 5.0, 1e-11) << mode;
    }
}

// Rounding of the coordinates over the extent, 1e8 * 2^-53 / 50, and of the products of the robust modes, which are not
// centred: (1e8 / 50)^2 * 2^-53.
TEST(MatchBasic, CoordinatesFarFromTheOriginCostDigitsOnly) {
    Random random(749);
    MatchScene s = makeScene(random, 20, 0.7, 1.0, {1e8, -1e8}, 0.1);
    for (int32_t mode = 0; mode <= 5; ++mode) {
        ZelmMatchPose r;
        ASSERT_EQ(s.match(mode, 4.0, &r), ZELM_OK) << mode;
        EXPECT_LT(angleBetween(r.angle, 0.7), 0.01) << mode;
        EXPECT_NEAR(r.x, 1e8, 0.5) << mode;
    }
}

TEST(MatchBasic, NonFiniteAndOverflowingPointsEndInAStatus) {
    constexpr double kInf = std::numeric_limits<double>::infinity();
    for (const double bad : {std::nan(""), kInf, -kInf, 1e200, 1e308}) {
        for (const bool inRef : {true, false}) {
            MatchScene s = someScene();
            (inRef ? s.ref : s.model)[3].x = bad;
            for (int32_t mode = 0; mode <= 5; ++mode) {
                ZelmMatchPose r = kUntouched;
                const int32_t status = s.match(mode, 3.0, &r);
                if (!std::isfinite(bad)) {
                    EXPECT_EQ(status, mode < 2 ? ZELM_OK : ZELM_ERR_DEGENERATE) << mode;
                } else {
                    EXPECT_TRUE(status == ZELM_OK || status == ZELM_MATCH_EXACT || status == ZELM_ERR_DEGENERATE);
                }
                EXPECT_NE(r.x, -7.0) << "written on every path";
            }
        }
    }
    MatchScene s = someScene();
    s.modelPose.angle = std::nan("");
    ZelmMatchPose r;
    EXPECT_EQ(s.match(0, 0.0, &r), ZELM_OK);
    EXPECT_TRUE(std::isnan(r.angle));
}

// --- zelmMatchPoints, zelmMatchDelta

TEST(MatchPoints, AppliesTheDifferenceOfThePoses) {
    const Points model = {{3.0, 2.0}, {1.0, 5.0}};
    const Points ref = {{10.0, 10.0}, {0.0, 0.0}};
    const ZelmMatchPose pose = {1.0, 2.0, 0.25, 99.0};
    const ZelmMatchPose result = {10.0, 20.0, 0.25 + kPi / 2.0, 2.0};
    Points moved(2);
    double distance[2];
    ASSERT_EQ(zelmMatchPoints(2, ref.data(), model.data(), &pose, &result, moved.data(), distance), ZELM_OK);
    EXPECT_NEAR(moved[0].x, 10.0, 1e-14);
    EXPECT_NEAR(moved[0].y, 24.0, 1e-14);
    EXPECT_NEAR(distance[0], 14.0, 1e-14);
    EXPECT_NEAR(moved[1].x, 4.0, 1e-14);
    EXPECT_NEAR(moved[1].y, 20.0, 1e-14);
    EXPECT_NEAR(distance[1], std::hypot(4.0, 20.0), 1e-14);
}

TEST(MatchPoints, TheMovedPointsMayReplaceTheModelOrTheReference) {
    const MatchScene s = someScene();
    const ZelmMatchPose result = {10.0, 20.0, 1.0, 2.0};
    Points moved(8);
    std::vector<double> distance(8);
    ASSERT_EQ(zelmMatchPoints(8, s.ref.data(), s.model.data(), &s.modelPose, &result, moved.data(), distance.data()),
              0);
    for (const bool inRef : {true, false}) {
        MatchScene t = s;
        std::vector<double> again(8);
        Points& out = inRef ? t.ref : t.model;
        ASSERT_EQ(zelmMatchPoints(8, t.ref.data(), t.model.data(), &s.modelPose, &result, out.data(), again.data()), 0);
        EXPECT_EQ(again, distance);
        EXPECT_EQ(out[5].y, moved[5].y);
    }
}

TEST(MatchPoints, BadArgumentsAreRefused) {
    const MatchScene s = someScene();
    const Point2d* const p = s.ref.data();
    const ZelmMatchPose pose = s.modelPose;
    Point2d moved[8];
    double distance[8] = {-7.0};
    EXPECT_EQ(zelmMatchPoints(1, p, p, &pose, &pose, moved, distance), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMatchPoints(8, nullptr, p, &pose, &pose, moved, distance), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMatchPoints(8, p, nullptr, &pose, &pose, moved, distance), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMatchPoints(8, p, p, nullptr, &pose, moved, distance), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMatchPoints(8, p, p, &pose, nullptr, moved, distance), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMatchPoints(8, p, p, &pose, &pose, nullptr, distance), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMatchPoints(8, p, p, &pose, &pose, moved, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(distance[0], -7.0);
}

TEST(MatchDelta, SubtractsWithoutWrappingAndKeepsTheSecondScale) {
    const ZelmMatchPose a = {1.0, 2.0, -3.0, 5.0};
    const ZelmMatchPose b = {4.0, 8.0, 3.0, 0.5};
    double dx;
    double dy;
    double angle;
    double scale;
    ASSERT_EQ(zelmMatchDelta(&a, &b, &dx, &dy, &angle, &scale), ZELM_OK);
    EXPECT_EQ(dx, 3.0);
    EXPECT_EQ(dy, 6.0);
    EXPECT_EQ(angle, 6.0) << "more than half a turn";
    EXPECT_EQ(scale, 0.5);
}

TEST(MatchDelta, BadArgumentsAreRefused) {
    const ZelmMatchPose a = {1.0, 2.0, -3.0, 5.0};
    double v = -7.0;
    EXPECT_EQ(zelmMatchDelta(nullptr, &a, &v, &v, &v, &v), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMatchDelta(&a, nullptr, &v, &v, &v, &v), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMatchDelta(&a, &a, nullptr, &v, &v, &v), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMatchDelta(&a, &a, &v, nullptr, &v, &v), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMatchDelta(&a, &a, &v, &v, nullptr, &v), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMatchDelta(&a, &a, &v, &v, &v, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(v, -7.0);
}

}  // namespace
