// Two linear equations on the stack: the same bits and refusals as the general solver.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "isClose.h"
#include "random.h"
#include "solve2x2.h"
#include "zelm/mat.h"

namespace {

void expectSameAsLu(const double (&A)[4], const double (&b)[2]) {
    double expected[2] = {7.25, 7.25};
    double x[2] = {7.25, 7.25};
    const int32_t status = zelmMatSolveLU(2, A, b, expected);
    ASSERT_EQ(zelm::innerSolve2x2(A, b, x), status == ZELM_OK) << A[0] << ' ' << A[1] << ' ' << A[2] << ' ' << A[3];
    EXPECT_TRUE(zelmtest::hasSameBits(x[0], expected[0]));
    EXPECT_TRUE(zelmtest::hasSameBits(x[1], expected[1]));
}

TEST(Solve2x2, RandomSystemsGiveTheBitsOfTheGeneralSolver) {
    zelmtest::Random random(81);
    for (int trial = 0; trial < 20000; ++trial) {
        double A[4];
        for (double& entry : A) {
            entry = random.normal() * std::exp(random.uniform(-3, 3));
        }
        expectSameAsLu(A, {random.normal(), random.normal()});
    }
}

TEST(Solve2x2, EveryMixOfSpecialEntriesIsSolvedOrRefusedAlike) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double special[] = {
        0.0, -0.0, 1.0, -1.0, 2.0, 0.5, 1e-200, 1e200, 5e-324, infinity, std::numeric_limits<double>::quiet_NaN()};
    for (const double a : special) {
        for (const double b : special) {
            for (const double c : special) {
                for (const double d : special) {
                    expectSameAsLu({a, b, c, d}, {3.0, -2.0});
                }
            }
        }
    }
}

}  // namespace
