// Wrapping, adding and comparing angles: periods, units, which end belongs to the range, huge and non-finite angles.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "isClose.h"
#include "random.h"
#include "zelm/math.h"

namespace {

using zelmtest::hasSameBits;
using zelmtest::isClose;
using zelmtest::Random;

constexpr double kPi = std::numbers::pi;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

double halfWidth(int full, int degrees) {
    return (degrees != 0 ? 180.0 : kPi) / (full != 0 ? 1.0 : 2.0);
}

// The wrapping rule, literally.
double literalWrap(double h, double a, bool leaveLowEnd) {
    while (leaveLowEnd ? a <= -h : a < -h) {
        a += 2.0 * h;
    }
    while (a > h) {
        a -= 2.0 * h;
    }
    return a;
}

TEST(MathAngles, FirstOperandLeavesTheLowEndAndTheSecondStays) {
    EXPECT_EQ(zelmMathAddAngle(1, 1, -180, 0), 180.0);
    EXPECT_EQ(zelmMathAddAngle(1, 1, 0, -180), -180.0);
    EXPECT_EQ(zelmMathAddAngle(0, 1, -90, 0), 90.0);
    EXPECT_EQ(zelmMathAddAngle(0, 1, 0, -90), -90.0);
    EXPECT_EQ(zelmMathAddAngle(1, 0, -kPi, 0), kPi);
    EXPECT_EQ(zelmMathAddAngle(1, 0, 0, -kPi), -kPi);
}

TEST(MathAngles, SumsAreWrappedByTheChosenPeriod) {
    EXPECT_EQ(zelmMathAddAngle(0, 1, 60, 60), -60.0);
    EXPECT_EQ(zelmMathAddAngle(1, 1, 60, 60), 120.0);
    EXPECT_EQ(zelmMathAddAngle(1, 1, 170, 20), -170.0);
    EXPECT_EQ(zelmMathAddAngle(1, 1, -170, -20), 170.0);
    EXPECT_EQ(zelmMathAddAngle(1, 1, 180, 180), 0.0);
    EXPECT_EQ(zelmMathAddAngle(7, -2, 725, -10), -5.0) << "any non-zero flag";
}

TEST(MathAngles, PrimeAngleKeepsTheHighEndOnly) {
    EXPECT_TRUE(isClose(zelmMathPrimeAngle(1, 0, 3.0 * kPi / 2.0), -kPi / 2.0, 1e-15));
    EXPECT_EQ(zelmMathPrimeAngle(1, 1, -180), 180.0);
    EXPECT_EQ(zelmMathPrimeAngle(1, 1, 180), 180.0);
    EXPECT_EQ(zelmMathPrimeAngle(0, 1, -90), 90.0);
    EXPECT_EQ(zelmMathPrimeAngle(0, 1, 100), -80.0);
    EXPECT_EQ(zelmMathPrimeAngle(1, 1, 540), 180.0);
    EXPECT_EQ(zelmMathPrimeAngle(1, 1, -540), 180.0);
}

TEST(MathAngles, OrdinaryAnglesAgreeToTheBitWithSteppingPeriodByPeriod) {
    Random random(151);
    for (int trial = 0; trial < 4000; ++trial) {
        const int full = random.integer(0, 1);
        const int degrees = random.integer(0, 1);
        const double h = halfWidth(full, degrees);
        const double periods = std::pow(10.0, random.uniform(-3.0, 3.0));
        const double a = random.normal() * periods * h;
        const double b = random.normal() * periods * h;
        EXPECT_TRUE(hasSameBits(zelmMathPrimeAngle(full, degrees, a), literalWrap(h, a, true)));
        const double sum = literalWrap(h, literalWrap(h, a, true) + literalWrap(h, b, false), false);
        EXPECT_TRUE(hasSameBits(zelmMathAddAngle(full, degrees, a, b), sum));
    }
    for (const double most : {65536.0, -65536.0}) {  // the last angle that is stepped
        EXPECT_TRUE(hasSameBits(zelmMathPrimeAngle(1, 0, most * 2.0 * kPi), literalWrap(kPi, most * 2.0 * kPi, true)));
    }
}

TEST(MathAngles, WholeDegreesAreExactHoweverManyTurns) {
    Random random(152);
    for (int trial = 0; trial < 2000; ++trial) {
        const int degrees = random.integer(-180, 180);
        const double turns = std::floor(random.uniform(-1.0, 1.0) * 1e12);
        const double angle = degrees + 360.0 * turns;
        EXPECT_EQ(zelmMathPrimeAngle(1, 1, angle), degrees == -180 ? 180.0 : degrees);
        // The second operand stops at the end that it reaches first.
        const bool end = degrees == 180 || degrees == -180;
        EXPECT_EQ(zelmMathAddAngle(1, 1, 0.0, angle), end ? std::copysign(180.0, angle) : degrees);
    }
}

TEST(MathAngles, HugeAnglesEndAtOnceInTheRange) {
    for (const double huge : {1e7, -1e7, 1e17, -1e17, 1e300, -1e300, std::numeric_limits<double>::max()}) {
        for (int flags = 0; flags < 4; ++flags) {
            const double h = halfWidth(flags & 1, flags & 2);
            const double prime = zelmMathPrimeAngle(flags & 1, flags & 2, huge);
            EXPECT_TRUE(prime > -h && prime <= h) << huge;
            const double sum = zelmMathAddAngle(flags & 1, flags & 2, huge, -huge);
            EXPECT_TRUE(sum >= -h && sum <= h) << huge;
        }
        EXPECT_EQ(zelmMathCheckAngle(huge, huge, 0.0), 1);
    }
}

TEST(MathAngles, AnglesThatAreNotFiniteGiveNoNumber) {
    for (const double bad : {kNan, kInfinity, -kInfinity}) {
        EXPECT_TRUE(std::isnan(zelmMathPrimeAngle(1, 0, bad)));
        EXPECT_TRUE(std::isnan(zelmMathAddAngle(1, 1, bad, 0.0)));
        EXPECT_TRUE(std::isnan(zelmMathAddAngle(0, 0, 0.0, bad)));
        EXPECT_EQ(zelmMathCheckAngle(bad, 0.0, 10.0), 0);
        EXPECT_EQ(zelmMathCheckAngle(0.0, bad, kInfinity), 0);
        double ox = 0.0;
        double oy = 0.0;
        double theta = 0.0;
        zelmMathComposeCoord(0, 0, bad, 0, 0, 0, &ox, &oy, &theta);
        EXPECT_TRUE(std::isnan(theta));
    }
}

TEST(MathAngles, CircularDifferenceIsComparedWithTheTolerance) {
    EXPECT_EQ(zelmMathCheckAngle(3.1, -3.1, 0.1), 1) << "2 pi - 6.2 = 0.083";
    EXPECT_EQ(zelmMathCheckAngle(3.1, -3.1, 0.08), 0);
    EXPECT_EQ(zelmMathCheckAngle(0.5, 0.25, 0.25), 1) << "the tolerance itself counts";
    EXPECT_EQ(zelmMathCheckAngle(0.5, 0.25, std::nextafter(0.25, 0.0)), 0);
    EXPECT_EQ(zelmMathCheckAngle(kPi, -kPi, 0.0), 1) << "one direction";
    EXPECT_EQ(zelmMathCheckAngle(0.0, kPi, 3.0), 0);
    EXPECT_EQ(zelmMathCheckAngle(0.0, 0.0, -1.0), 0);
    EXPECT_EQ(zelmMathCheckAngle(1.0, 1.0, kNan), 0);
}

TEST(MathAngles, DifferenceDoesNotDependOnOrderOrWholeTurns) {
    Random random(153);
    for (int trial = 0; trial < 1000; ++trial) {
        const double a = random.uniform(-kPi, kPi);
        const double difference = random.uniform(-kPi, kPi);
        const double b = a + difference + 2.0 * kPi * random.integer(-3, 3);
        const double slack = 1e-13;  // roundings of a few turns
        EXPECT_EQ(zelmMathCheckAngle(a, b, std::fabs(difference) + slack), 1);
        EXPECT_EQ(zelmMathCheckAngle(b, a, std::fabs(difference) + slack), 1);
        EXPECT_EQ(zelmMathCheckAngle(a, b, std::fabs(difference) - slack), 0);
        EXPECT_EQ(zelmMathCheckAngle(b, a, std::fabs(difference) - slack), 0);
    }
}

}  // namespace
