// Vectors and seeded frames in space, written out apart from the library's own.
#ifndef ZELM_TEST_VECTORS3D_H
#define ZELM_TEST_VECTORS3D_H

#include <cmath>

#include "random.h"
#include "zelm/clp3d.h"

namespace zelmtest {

inline double dot(const Point3d& u, const Point3d& v) {
    return u.x * v.x + u.y * v.y + u.z * v.z;
}

inline double norm(const Point3d& u) {
    return std::hypot(u.x, u.y, u.z);
}

inline Point3d scaled(const Point3d& u, double factor) {
    return {factor * u.x, factor * u.y, factor * u.z};
}

// p + t * u
inline Point3d along(const Point3d& p, double t, const Point3d& u) {
    return {p.x + t * u.x, p.y + t * u.y, p.z + t * u.z};
}

inline double distance(const Point3d& p, const Point3d& q) {
    return std::hypot(p.x - q.x, p.y - q.y, p.z - q.z);
}

inline Line3d lineAt(const Point3d& p, const Point3d& direction) {
    return {p.x, p.y, p.z, direction.x, direction.y, direction.z};
}

// The plane through p with a normal of any length.
inline Plane3d planeAt(const Point3d& p, const Point3d& normal) {
    return {normal.x, normal.y, normal.z, -dot(normal, p)};
}

// Within 100 of the origin in each coordinate.
inline Point3d randomPoint(Random& random) {
    const double x = random.uniform(-100.0, 100.0);
    const double y = random.uniform(-100.0, 100.0);
    const double z = random.uniform(-100.0, 100.0);
    return {x, y, z};
}

// Three orthonormal vectors, u x v = w.
struct Frame {
    Point3d u;
    Point3d v;
    Point3d w;
};

// The columns of the rotation of a random unit quaternion: uniform over all rotations (Shoemake 1992).
inline Frame randomFrame(Random& random) {
    double q[4];
    double square = 0.0;
    for (double& entry : q) {
        entry = random.normal();
        square += entry * entry;
    }
    const double s = 2.0 / square;
    const double a = q[0];
    const double b = q[1];
    const double c = q[2];
    const double d = q[3];
    return {{1.0 - s * (c * c + d * d), s * (b * c + a * d), s * (b * d - a * c)},
            {s * (b * c - a * d), 1.0 - s * (b * b + d * d), s * (c * d + a * b)},
            {s * (b * d + a * c), s * (c * d - a * b), 1.0 - s * (b * b + c * c)}};
}

}  // namespace zelmtest

#endif
