// Rigid transforms of the plane: closed forms, and inverse after forward.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "isClose.h"
#include "random.h"
#include "zelm/math.h"

namespace {

using zelmtest::Random;

constexpr double kPi = std::numbers::pi;
constexpr double kTolerance = 1e-12;  // a few roundings of coordinates up to 1000

struct Frame {
    double ox = 0.0;
    double oy = 0.0;
    double theta = 0.0;
};

Frame randomFrame(Random& random) {
    return {random.uniform(-500.0, 500.0), random.uniform(-500.0, 500.0), random.uniform(-10.0, 10.0)};
}

Point2d toGlobal(const Frame& f, const Point2d& p) {
    Point2d q = {};
    zelmMathTransCoordOfPoint(f.ox, f.oy, f.theta, p.x, p.y, &q.x, &q.y);
    return q;
}

Point2d toLocal(const Frame& f, const Point2d& p) {
    Point2d q = {};
    zelmMathInvTransCoordOfPoint(f.ox, f.oy, f.theta, p.x, p.y, &q.x, &q.y);
    return q;
}

void expectNear(const Point2d& actual, const Point2d& expected) {
    EXPECT_NEAR(actual.x, expected.x, kTolerance);
    EXPECT_NEAR(actual.y, expected.y, kTolerance);
}

TEST(MathFrames, QuarterTurnAboutAPoint) {
    Point2d q = {};
    zelmMathRotatePoint(1, 2, kPi / 2, 4, 2, &q.x, &q.y);
    expectNear(q, {1, 5});
}

TEST(MathFrames, RotationKeepsTheCentreAndTheDistance) {
    Random random(141);
    for (int trial = 0; trial < 200; ++trial) {
        const Frame f = randomFrame(random);
        Point2d q = {};
        zelmMathRotatePoint(f.ox, f.oy, f.theta, f.ox, f.oy, &q.x, &q.y);
        EXPECT_EQ(q.x, f.ox);
        EXPECT_EQ(q.y, f.oy);
        zelmMathRotatePoint(f.ox, f.oy, f.theta, 3, 4, &q.x, &q.y);
        EXPECT_NEAR(std::hypot(q.x - f.ox, q.y - f.oy), std::hypot(3 - f.ox, 4 - f.oy), kTolerance);
        zelmMathRotatePoint(f.ox, f.oy, -f.theta, q.x, q.y, &q.x, &q.y);
        expectNear(q, {3, 4});
    }
}

TEST(MathFrames, FrameFromTwoPointsByMode) {
    Frame f;
    zelmMathCreateTransParam(0, 0, 0, 2, 2, &f.ox, &f.oy, &f.theta);
    EXPECT_EQ(f.ox, 1.0);
    EXPECT_EQ(f.oy, 1.0);
    EXPECT_EQ(f.theta, kPi / 4);
    for (const int32_t mode : {1, -1, 7}) {
        zelmMathCreateTransParam(mode, 3, 4, 3, 1, &f.ox, &f.oy, &f.theta);
        EXPECT_EQ(f.ox, 3.0);
        EXPECT_EQ(f.oy, 4.0);
        EXPECT_EQ(f.theta, -kPi / 2);
    }
}

TEST(MathFrames, SecondPointLiesOnTheXAxisOfItsFrame) {
    Random random(142);
    for (int trial = 0; trial < 200; ++trial) {
        const Point2d p1 = {random.uniform(-9, 9), random.uniform(-9, 9)};
        const Point2d p2 = {random.uniform(-9, 9), random.uniform(-9, 9)};
        Frame f;
        zelmMathCreateTransParam(1, p1.x, p1.y, p2.x, p2.y, &f.ox, &f.oy, &f.theta);
        expectNear(toLocal(f, p2), {std::hypot(p2.x - p1.x, p2.y - p1.y), 0.0});
    }
}

TEST(MathFrames, LocalToGlobalKnownValue) {
    expectNear(toGlobal({10, 20, kPi / 2}, {1, 2}), {8, 21});
    expectNear(toLocal({10, 20, kPi / 2}, {8, 21}), {1, 2});
}

TEST(MathFrames, BothNamesOfTheForwardTransformAgreeToTheBit) {
    Random random(143);
    for (int trial = 0; trial < 200; ++trial) {
        const Frame f = randomFrame(random);
        const Point2d p = {random.normal(), random.normal()};
        Point2d q = {};
        zelmMathTransCoord(f.ox, f.oy, f.theta, p.x, p.y, &q.x, &q.y);
        EXPECT_TRUE(zelmtest::hasSameBits(q.x, toGlobal(f, p).x));
        EXPECT_TRUE(zelmtest::hasSameBits(q.y, toGlobal(f, p).y));
    }
}

TEST(MathFrames, GlobalAfterLocalAndLocalAfterGlobalAreTheSamePoint) {
    Random random(144);
    for (int trial = 0; trial < 300; ++trial) {
        const Frame f = randomFrame(random);
        const Point2d p = {random.uniform(-500, 500), random.uniform(-500, 500)};
        expectNear(toLocal(f, toGlobal(f, p)), p);
        expectNear(toGlobal(f, toLocal(f, p)), p);
    }
}

TEST(MathFrames, InverseFrameMapsBackAndItsAngleIsNotWrapped) {
    Random random(145);
    for (int trial = 0; trial < 300; ++trial) {
        const Frame f = randomFrame(random);
        const Point2d p = {random.uniform(-500, 500), random.uniform(-500, 500)};
        Frame inverse;
        zelmMathInvCoord(f.ox, f.oy, f.theta, &inverse.ox, &inverse.oy, &inverse.theta);
        EXPECT_EQ(inverse.theta, -f.theta);
        expectNear(toGlobal(inverse, p), toLocal(f, p));
    }
}

TEST(MathFrames, FrameComposedWithItsInverseIsTheIdentity) {
    Random random(146);
    for (int trial = 0; trial < 300; ++trial) {
        const Frame f = randomFrame(random);
        Frame inverse;
        Frame both;
        zelmMathInvCoord(f.ox, f.oy, f.theta, &inverse.ox, &inverse.oy, &inverse.theta);
        zelmMathComposeCoord(f.ox, f.oy, f.theta, inverse.ox, inverse.oy, inverse.theta, &both.ox, &both.oy,
                             &both.theta);
        EXPECT_NEAR(both.ox, 0.0, kTolerance);
        EXPECT_NEAR(both.oy, 0.0, kTolerance);
        EXPECT_NEAR(both.theta, 0.0, kTolerance);
    }
}

TEST(MathFrames, CompositionMapsLikeOneTransformAfterTheOther) {
    Random random(147);
    for (int trial = 0; trial < 300; ++trial) {
        const Frame outer = randomFrame(random);
        const Frame inner = randomFrame(random);
        const Point2d p = {random.uniform(-500, 500), random.uniform(-500, 500)};
        Frame both;
        zelmMathComposeCoord(outer.ox, outer.oy, outer.theta, inner.ox, inner.oy, inner.theta, &both.ox, &both.oy,
                             &both.theta);
        expectNear(toGlobal(both, p), toGlobal(outer, toGlobal(inner, p)));
        EXPECT_EQ(both.theta, zelmMathAddAngle(1, 0, outer.theta, inner.theta)) << "wrapped into [-pi, pi]";
    }
}

}  // namespace
