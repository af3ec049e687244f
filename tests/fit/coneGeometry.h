// The apex, axis and aperture of a cone of revolution from its coefficients, and points on a patch of one.
#ifndef ZELM_TEST_CONE_GEOMETRY_H
#define ZELM_TEST_CONE_GEOMETRY_H

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "quadricShapes.h"
#include "zelm/mat.h"

namespace zelmtest {

struct FoundCone {
    Vector3 apex;
    Vector3 axis;
    double aperture;
};

// The apex is the centre of the quadric. Along the axis the quadratic part has the sign that occurs once; across it the
// mean of the other two eigenvalues stands for both.
inline FoundCone coneOf(const double* q) {
    const double Q[9] = {q[0], q[3] / 2.0, q[4] / 2.0, q[3] / 2.0, q[1], q[5] / 2.0, q[4] / 2.0, q[5] / 2.0, q[2]};
    const double rhs[3] = {-q[6] / 2.0, -q[7] / 2.0, -q[8] / 2.0};
    FoundCone cone;
    EXPECT_EQ(zelmMatSolveLU(3, Q, rhs, cone.apex.data()), ZELM_OK);
    double values[3];
    double vectors[9];
    EXPECT_EQ(zelmMatJacobiEigen(3, Q, values, vectors), ZELM_OK);
    const std::size_t single = values[1] > 0.0 ? 2 : 0;
    const double across = 0.5 * (values[1] + values[2 - single]);
    for (std::size_t i = 0; i < 3; ++i) {
        cone.axis[i] = vectors[3 * single + i];
    }
    cone.aperture = 2.0 * std::atan(std::sqrt(-values[single] / across));
    return cone;
}

// n points spread over the cone from 0.3 to 1 of a slant length of 4; over both nappes or one.
inline std::vector<Point3d> conePoints(const Cone& c, int n, bool bothNappes, double sigma, Random& random) {
    const double longest = 4.0 * std::cos(c.aperture / 2.0);
    std::vector<Point3d> points;
    for (int i = 0; i < n; ++i) {
        const double share = 0.3 + 0.7 * std::fmod(0.414213562373095 * i, 1.0);
        const double nappe = bothNappes && i % 2 == 1 ? -1.0 : 1.0;
        points.push_back(withNoise(onCone(c, nappe * share * longest, 2.399963229728653 * i), sigma, random));
    }
    return points;
}

}  // namespace zelmtest

#endif
