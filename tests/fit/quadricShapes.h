// Points on ellipsoids and cones, and quadrics rebuilt from their geometry, for the tests of the quadric fits.
#ifndef ZELM_TEST_QUADRIC_SHAPES_H
#define ZELM_TEST_QUADRIC_SHAPES_H

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "random.h"
#include "zelm/fit.h"

namespace zelmtest {

using Vector3 = std::array<double, 3>;
using Frame3 = std::array<Vector3, 3>;  // orthonormal vectors

inline double dot3(const Vector3& a, const Vector3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline Vector3 cross3(const Vector3& a, const Vector3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// Uniform on the unit sphere.
inline Vector3 randomDirection(Random& random) {
    const double z = random.uniform(-1.0, 1.0);
    const double angle = random.uniform(0.0, 6.283185307179586);
    const double r = std::sqrt(1.0 - z * z);
    return {r * std::cos(angle), r * std::sin(angle), z};
}

// A uniformly distributed right-handed frame.
inline Frame3 randomFrame(Random& random) {
    const Vector3 first = randomDirection(random);
    Vector3 second = randomDirection(random);
    const double along = dot3(first, second);
    double length = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        second[i] -= along * first[i];
        length += second[i] * second[i];
    }
    for (double& v : second) {
        v /= std::sqrt(length);
    }
    return {first, second, cross3(first, second)};
}

// The directions of the largest, the middle and the smallest axis that the nine numbers describe: the largest by its
// azimuth and elevation; the smallest leaves the perpendicular that points up the steepest by the roll.
inline Frame3 axesOf(const Ellipsoid3d& e) {
    const double ca = std::cos(e.azimuth);
    const double sa = std::sin(e.azimuth);
    const double ce = std::cos(e.elevation);
    const double se = std::sin(e.elevation);
    const Vector3 largest = {ce * ca, ce * sa, se};
    const Vector3 up = {-se * ca, -se * sa, ce};
    const Vector3 side = cross3(largest, up);
    Vector3 smallest;
    for (std::size_t i = 0; i < 3; ++i) {
        smallest[i] = std::cos(e.roll) * up[i] + std::sin(e.roll) * side[i];
    }
    return {largest, cross3(smallest, largest), smallest};
}

// An ellipsoid with its axes along the vectors of a frame; its three angles do not count.
struct OrientedEllipsoid {
    Ellipsoid3d shape;
    Frame3 axes;
};

inline Point3d onEllipsoid(const OrientedEllipsoid& e, const Vector3& unit) {
    const double u = e.shape.a * unit[0];
    const double v = e.shape.b * unit[1];
    const double w = e.shape.c * unit[2];
    const auto at = [&](double centre, std::size_t i) {
        return centre + u * e.axes[0][i] + v * e.axes[1][i] + w * e.axes[2][i];
    };
    return {at(e.shape.x, 0), at(e.shape.y, 1), at(e.shape.z, 2)};
}

inline Point3d withNoise(const Point3d& p, double sigma, Random& random) {
    const double dx = sigma * random.normal();
    const double dy = sigma * random.normal();
    const double dz = sigma * random.normal();
    return {p.x + dx, p.y + dy, p.z + dz};
}

// n directions spread evenly over the sphere (a Fibonacci lattice).
inline std::vector<Vector3> evenDirections(std::int32_t n) {
    std::vector<Vector3> directions;
    for (std::int32_t i = 0; i < n; ++i) {
        const double z = 1.0 - (2.0 * i + 1.0) / n;
        const double r = std::sqrt(1.0 - z * z);
        const double angle = 2.399963229728653 * i;
        directions.push_back({r * std::cos(angle), r * std::sin(angle), z});
    }
    return directions;
}

inline std::vector<Point3d> ellipsoidPoints(const OrientedEllipsoid& e, std::int32_t n, double sigma, Random& random) {
    std::vector<Point3d> points;
    for (const Vector3& direction : evenDirections(n)) {
        points.push_back(withNoise(onEllipsoid(e, direction), sigma, random));
    }
    return points;
}

// An ellipsoid with axes 1 : up to 1 : up to `ratio`, in any orientation.
inline OrientedEllipsoid randomEllipsoid(Random& random, double ratio) {
    const double c = random.uniform(1.0, 5.0);
    const double b = c * (1.0 + (ratio - 1.0) * random.uniform());
    const double a = b + (c * ratio - b) * random.uniform();
    return {
        {random.uniform(-50.0, 50.0), random.uniform(-50.0, 50.0), random.uniform(-50.0, 50.0), a, b, c, 0.0, 0.0, 0.0},
        randomFrame(random)};
}

// A cone of revolution by its apex, its axis (the first vector of the frame) and the full angle of its opening.
struct Cone {
    Vector3 apex;
    Frame3 frame;
    double aperture;
};

// `along` the axis from the apex (negative: the other nappe), and the angle about it.
inline Point3d onCone(const Cone& c, double along, double angle) {
    const double r = along * std::tan(c.aperture / 2.0);
    const auto at = [&](std::size_t i) {
        return c.apex[i] + along * c.frame[0][i] +
               r * (std::cos(angle) * c.frame[1][i] + std::sin(angle) * c.frame[2][i]);
    };
    return {at(0), at(1), at(2)};
}

// The value of the quadric at a point.
inline double quadricAt(const double* q, const Point3d& p) {
    return q[0] * p.x * p.x + q[1] * p.y * p.y + q[2] * p.z * p.z + q[3] * p.x * p.y + q[4] * p.x * p.z +
           q[5] * p.y * p.z + q[6] * p.x + q[7] * p.y + q[8] * p.z + q[9];
}

}  // namespace zelmtest

#endif
