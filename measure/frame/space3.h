// Vectors of three numbers, 3 x 3 matrices and homographies.
#ifndef ZELM_MEASURE_SPACE3_H
#define ZELM_MEASURE_SPACE3_H

#include <zelmLib.h>

#include <array>
#include <optional>

namespace zelm::measure {

using Vector3 = std::array<double, 3>;
using Matrix3 = std::array<double, 9>;  // row-major

double dot(const Vector3& a, const Vector3& b);
Vector3 cross(const Vector3& a, const Vector3& b);
Vector3 unit(const Vector3& v);
// Radians, 0 to pi.
double angleBetween(const Vector3& a, const Vector3& b);

Matrix3 product(const Matrix3& a, const Matrix3& b);
Vector3 times(const Matrix3& A, const Vector3& v);
Vector3 timesTransposed(const Matrix3& A, const Vector3& v);
// Nothing when the matrix is singular.
std::optional<Matrix3> inverse(const Matrix3& a);

// The image of a point under a homography.
Point2d apply(const Matrix3& H, Point2d p);

}  // namespace zelm::measure

#endif
