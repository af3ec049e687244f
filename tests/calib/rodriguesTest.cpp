// Rotation vectors and matrices: known rotations, round trips over the whole range of angles, the closed form that
// takes over when the decomposition fails.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "isClose.h"
#include "random.h"
#include "rodrigues.h"
#include "zelm/calib.h"

namespace {

using std::numbers::pi;
using zelmtest::isClose;
using zelmtest::Random;

constexpr double kGuard = 7.25;
// What the header promises of the vector: entries of R carry 1.1e-16, R - I and its null direction a few times that,
// and angles up to pi multiply it. Also of the matrix it stands for.
constexpr double kPromise = 5e-15;

void randomAxis(Random& random, double* u) {
    double length = 0.0;
    while (length < 1e-3) {
        for (int i = 0; i < 3; ++i) {
            u[i] = random.normal();
        }
        length = std::sqrt(u[0] * u[0] + u[1] * u[1] + u[2] * u[2]);
    }
    for (int i = 0; i < 3; ++i) {
        u[i] /= length;
    }
}

double largestDifference(const double* a, const double* b, int n) {
    double largest = 0.0;
    for (int i = 0; i < n; ++i) {
        largest = std::fmax(largest, std::fabs(a[i] - b[i]));
    }
    return largest;
}

TEST(CalibRodrigues, BadArgumentsAreRefusedAndNothingIsWritten) {
    double r[3] = {kGuard, kGuard, kGuard};
    double R[9] = {kGuard};
    for (const int32_t direction : {-1, 2, 100, std::numeric_limits<int32_t>::min()}) {
        EXPECT_EQ(zelmCalibRodrigues(direction, r, R), ZELM_ERR_PARAM) << direction;
    }
    EXPECT_EQ(zelmCalibRodrigues(0, nullptr, R), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibRodrigues(0, r, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibRodrigues(1, nullptr, R), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibRodrigues(1, r, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(r[0], kGuard);
    EXPECT_EQ(R[0], kGuard);
}

TEST(CalibRodrigues, ZeroVectorIsTheIdentityAndBack) {
    double r[3] = {0, 0, 0};
    double R[9];
    ASSERT_EQ(zelmCalibRodrigues(0, r, R), ZELM_OK);
    const double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    EXPECT_EQ(largestDifference(R, identity, 9), 0.0);
    r[0] = r[1] = r[2] = kGuard;
    ASSERT_EQ(zelmCalibRodrigues(1, r, R), ZELM_OK);
    for (const double component : r) {
        EXPECT_EQ(component, 0.0);
    }
}

TEST(CalibRodrigues, VectorsBelowTheThresholdAreTheIdentityAndAboveAreNot) {
    double R[9];
    double below[3] = {0.999e-15, 0, 0};
    ASSERT_EQ(zelmCalibRodrigues(0, below, R), ZELM_OK);
    EXPECT_EQ(R[7], 0.0);
    double above[3] = {1.001e-15, 0, 0};
    ASSERT_EQ(zelmCalibRodrigues(0, above, R), ZELM_OK);
    EXPECT_TRUE(isClose(R[7] * 1e15, 1.001, 1e-12));
}

TEST(CalibRodrigues, QuarterTurnsTurnRightHanded) {
    const double c[3][9] = {{1, 0, 0, 0, 0, -1, 0, 1, 0}, {0, 0, 1, 0, 1, 0, -1, 0, 0}, {0, -1, 0, 1, 0, 0, 0, 0, 1}};
    for (int axis = 0; axis < 3; ++axis) {
        double r[3] = {0, 0, 0};
        r[axis] = pi / 2;
        double R[9];
        ASSERT_EQ(zelmCalibRodrigues(0, r, R), ZELM_OK);
        EXPECT_LE(largestDifference(R, c[axis], 9), 1e-16);
        double back[3];
        ASSERT_EQ(zelmCalibRodrigues(1, back, R), ZELM_OK);
        EXPECT_LE(largestDifference(back, r, 3), 1e-15);
    }
}

TEST(CalibRodrigues, HalfTurnsAboutTheAxesComeBackUpToSign) {
    for (int axis = 0; axis < 3; ++axis) {
        double R[9] = {-1, 0, 0, 0, -1, 0, 0, 0, -1};
        R[4 * axis] = 1;
        double r[3];
        ASSERT_EQ(zelmCalibRodrigues(1, r, R), ZELM_OK);
        for (int i = 0; i < 3; ++i) {
            EXPECT_TRUE(isClose(std::fabs(r[i]), i == axis ? pi : 0.0, 1e-15));
        }
    }
}

// About an axis with no x component the first row of R says nothing about the signs of y and z.
TEST(CalibRodrigues, HalfTurnsAboutAxesWithoutXKeepTheSignBetweenYAndZ) {
    for (const double z : {0.6, -0.6}) {
        const double u[3] = {0.0, 0.8, z};
        double R[9];
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                R[3 * i + j] = 2 * u[i] * u[j] - (i == j ? 1 : 0);
            }
        }
        double r[3];
        ASSERT_EQ(zelmCalibRodrigues(1, r, R), ZELM_OK);
        const double sign = r[1] < 0.0 ? -1.0 : 1.0;
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(sign * r[i], pi * u[i], kPromise);
        }
    }
}

TEST(CalibRodrigues, MatricesAreRotations) {
    Random random(21);
    for (int trial = 0; trial < 5000; ++trial) {
        double u[3];
        randomAxis(random, u);
        const double angle = random.uniform(-10, 10);
        double r[3] = {angle * u[0], angle * u[1], angle * u[2]};
        double R[9];
        ASSERT_EQ(zelmCalibRodrigues(0, r, R), ZELM_OK);
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                const double dot = R[3 * i] * R[3 * j] + R[3 * i + 1] * R[3 * j + 1] + R[3 * i + 2] * R[3 * j + 2];
                EXPECT_NEAR(dot, i == j ? 1.0 : 0.0, 2e-15);
            }
        }
        const double det = R[0] * (R[4] * R[8] - R[5] * R[7]) - R[1] * (R[3] * R[8] - R[5] * R[6]) +
                           R[2] * (R[3] * R[7] - R[4] * R[6]);
        EXPECT_NEAR(det, 1.0, 3e-15);
    }
}

// At every angle, however near 0 or pi: the vector comes back, beyond pi and at it as the same rotation's other name.
TEST(CalibRodrigues, RoundTripKeepsItsAccuracyAtEveryAngle) {
    Random random(22);
    const double offsets[] = {0, 1e-15, 1e-14, 1e-12, 1e-10, 1e-9, 1e-8, 1e-7, 1e-6, 1e-5, 1e-4, 1e-3, 1e-2, 0.1, 1};
    for (const double offset : offsets) {
        for (const double angle : {offset, pi - offset, pi + offset}) {
            for (int trial = 0; trial < 500; ++trial) {
                double u[3];
                randomAxis(random, u);
                double r[3] = {angle * u[0], angle * u[1], angle * u[2]};
                double other[3];
                for (int i = 0; i < 3; ++i) {
                    other[i] = (angle - 2 * pi) * u[i];
                }
                double R[9];
                double back[3];
                double Rback[9];
                ASSERT_EQ(zelmCalibRodrigues(0, r, R), ZELM_OK);
                ASSERT_EQ(zelmCalibRodrigues(1, back, R), ZELM_OK);
                ASSERT_EQ(zelmCalibRodrigues(0, back, Rback), ZELM_OK);
                EXPECT_LE(largestDifference(R, Rback, 9), kPromise) << angle;
                EXPECT_LE(std::min(largestDifference(back, r, 3), largestDifference(back, other, 3)), kPromise)
                    << angle;
                EXPECT_LE(std::sqrt(back[0] * back[0] + back[1] * back[1] + back[2] * back[2]), pi + kPromise);
            }
        }
    }
}

// Axes with zero components, where the decomposition meets zero columns, ties and repeated values.
TEST(CalibRodrigues, AxesOnCoordinatePlanesAndDiagonalsComeBack) {
    for (int code = 1; code < 27; ++code) {
        double u[3] = {code % 3 - 1.0, code / 3 % 3 - 1.0, code / 9 - 1.0};
        const double length = std::sqrt(u[0] * u[0] + u[1] * u[1] + u[2] * u[2]);
        if (length == 0.0) {
            continue;
        }
        for (const double angle : {1e-9, 1e-3, 0.5, 1.5, 3.0, pi - 1e-9}) {
            double r[3] = {angle * u[0] / length, angle * u[1] / length, angle * u[2] / length};
            double R[9];
            double back[3];
            ASSERT_EQ(zelmCalibRodrigues(0, r, R), ZELM_OK);
            ASSERT_EQ(zelmCalibRodrigues(1, back, R), ZELM_OK);
            EXPECT_LE(largestDifference(back, r, 3), kPromise) << code << ' ' << angle;
        }
    }
}

// The closed form, which takes over where the decomposition fails.

TEST(CalibRodrigues, ClosedFormIsRightBetweenZeroAndPi) {
    Random random(23);
    for (int trial = 0; trial < 2000; ++trial) {
        double u[3];
        randomAxis(random, u);
        const double angle = random.uniform(0.01, pi - 0.01);
        double r[3] = {angle * u[0], angle * u[1], angle * u[2]};
        double R[9];
        double back[3];
        ASSERT_EQ(zelmCalibRodrigues(0, r, R), ZELM_OK);
        zelm::rotationVectorInClosedForm(R, back);
        // acos loses 1e-16 / sin(angle); at 0.01 rad from the ends that is 1e-14, on an axis scaled by up to pi.
        EXPECT_LE(largestDifference(back, r, 3), 2e-13);
    }
}

TEST(CalibRodrigues, ClosedFormTakesSmallAnglesForNone) {
    double r[3] = {0.9e-5, 0, 0};
    double R[9];
    double back[3];
    ASSERT_EQ(zelmCalibRodrigues(0, r, R), ZELM_OK);
    zelm::rotationVectorInClosedForm(R, back);
    EXPECT_EQ(back[0], 0.0);
    EXPECT_EQ(back[1], 0.0);
    EXPECT_EQ(back[2], 0.0);
    r[0] = 1.1e-5;
    ASSERT_EQ(zelmCalibRodrigues(0, r, R), ZELM_OK);
    zelm::rotationVectorInClosedForm(R, back);
    EXPECT_NEAR(back[0], 1.1e-5, 1e-11);  // acos near 1 loses 1e-16 / 1.1e-5
}

TEST(CalibRodrigues, ClosedFormTakesTheSignsOfAHalfTurnFromTheFirstRow) {
    const double axes[][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0.6, 0.8, 0}, {0.6, -0.8, 0}, {0.48, 0.6, -0.64}};
    for (const auto& u : axes) {
        double R[9];
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                R[3 * i + j] = 2 * u[i] * u[j] - (i == j ? 1 : 0);
            }
        }
        double r[3];
        zelm::rotationVectorInClosedForm(R, r);
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(r[i], pi * u[i], 1e-7);  // square roots of rounding
        }
    }
}

TEST(CalibRodrigues, MatricesThatAreNotFiniteEndInSuccess) {
    double R[9] = {1, 0, 0, 0, 1, 0, 0, 0, std::numeric_limits<double>::quiet_NaN()};
    double r[3];
    EXPECT_EQ(zelmCalibRodrigues(1, r, R), ZELM_OK);
    double huge[3] = {std::numeric_limits<double>::infinity(), 0, 0};
    EXPECT_EQ(zelmCalibRodrigues(0, huge, R), ZELM_OK);
}

}  // namespace
