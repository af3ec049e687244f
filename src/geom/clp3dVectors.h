// Vectors in space, and what the files of the 3-D primitives share.
#ifndef ZELM_CLP3D_VECTORS_H
#define ZELM_CLP3D_VECTORS_H

#include <cmath>

#include "zelm/clp3d.h"

namespace zelm {

// Lengths, directions, normals and their products below this count as zero (caller's units).
constexpr double kClp3dDegenerate = 1e-14;

// Points and vectors are one record; sums run over x, y, z.
using Vector3 = Point3d;

inline Vector3 difference(const Vector3& u, const Vector3& v) {
    return {u.x - v.x, u.y - v.y, u.z - v.z};
}

inline Vector3 quotient(const Vector3& u, double divisor) {
    return {u.x / divisor, u.y / divisor, u.z / divisor};
}

// p + t * u
inline Point3d pointAlong(const Point3d& p, double t, const Vector3& u) {
    return {p.x + t * u.x, p.y + t * u.y, p.z + t * u.z};
}

inline double dotProduct(const Vector3& u, const Vector3& v) {
    return u.x * v.x + u.y * v.y + u.z * v.z;
}

inline Vector3 crossProduct(const Vector3& u, const Vector3& v) {
    return {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
}

inline double lengthOf(const Vector3& u) {
    return std::sqrt(dotProduct(u, u));
}

inline Point3d pointOf(const Line3d& line) {
    return {line.x, line.y, line.z};
}

inline Vector3 directionOf(const Line3d& line) {
    return {line.dx, line.dy, line.dz};
}

inline Line3d lineOf(const Point3d& p, const Vector3& direction) {
    return {p.x, p.y, p.z, direction.x, direction.y, direction.z};
}

inline Vector3 normalOf(const Plane3d& plane) {
    return {plane.a, plane.b, plane.c};
}

// a*x + b*y + c*z + d
inline double valueAt(const Plane3d& plane, const Point3d& p) {
    return dotProduct(normalOf(plane), p) + plane.d;
}

// In [0, pi/2], whatever the signs and lengths; NaN if a vector has no length.
inline double acuteAngle(const Vector3& u, const Vector3& v) {
    const double sine = lengthOf(crossProduct(u, v)) / (lengthOf(u) * lengthOf(v));
    return std::asin(sine > 1.0 ? 1.0 : sine);
}

}  // namespace zelm

#endif
