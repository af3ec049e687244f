// Areas of triangles and their sign.
#include <gtest/gtest.h>

#include <cmath>

#include "random.h"
#include "zelm/math.h"

namespace {

TEST(MathTriangles, AreaOfARightTriangle) {
    EXPECT_EQ(zelmMathSignAreaTriangle(0, 0, 4, 0, 0, 3), 6.0);
    EXPECT_EQ(zelmMathSignAreaTriangle(0, 0, 0, 3, 4, 0), -6.0) << "the other way round";
    EXPECT_EQ(zelmMathAreaTriangle(0, 0, 4, 0, 0, 3), 6.0);
    EXPECT_EQ(zelmMathAreaTriangle(0, 0, 0, 3, 4, 0), 6.0);
}

TEST(MathTriangles, CollinearPointsHaveNoArea) {
    EXPECT_EQ(zelmMathAreaTriangle(1, 1, 2, 2, 5, 5), 0.0);
    EXPECT_EQ(zelmMathAreaTriangle(1, 1, 1, 1, 5, 7), 0.0);
}

TEST(MathTriangles, CyclicOrderKeepsTheSignAndSwapsChangeIt) {
    zelmtest::Random random(121);
    for (int trial = 0; trial < 300; ++trial) {
        double p[6];
        for (double& value : p) {
            value = random.uniform(-10.0, 10.0);
        }
        const double area = zelmMathSignAreaTriangle(p[0], p[1], p[2], p[3], p[4], p[5]);
        const double tolerance = 1e-12;  // roundings of products up to 400
        EXPECT_NEAR(zelmMathSignAreaTriangle(p[2], p[3], p[4], p[5], p[0], p[1]), area, tolerance);
        EXPECT_NEAR(zelmMathSignAreaTriangle(p[2], p[3], p[0], p[1], p[4], p[5]), -area, tolerance);
        EXPECT_EQ(zelmMathAreaTriangle(p[0], p[1], p[2], p[3], p[4], p[5]), std::fabs(area));
    }
}

}  // namespace
