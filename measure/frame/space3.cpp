#include "space3.h"

#include <algorithm>
#include <cmath>

namespace zelm::measure {

double dot(const Vector3& a, const Vector3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vector3 cross(const Vector3& a, const Vector3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vector3 unit(const Vector3& v) {
    const double length = std::sqrt(dot(v, v));
    return {v[0] / length, v[1] / length, v[2] / length};
}

double angleBetween(const Vector3& a, const Vector3& b) {
    const Vector3 c = cross(a, b);
    return std::atan2(std::sqrt(dot(c, c)), dot(a, b));
}

Matrix3 product(const Matrix3& a, const Matrix3& b) {
    Matrix3 c{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            c[3 * i + j] = a[3 * i] * b[j] + a[3 * i + 1] * b[3 + j] + a[3 * i + 2] * b[6 + j];
        }
    }
    return c;
}

Vector3 times(const Matrix3& A, const Vector3& v) {
    return {A[0] * v[0] + A[1] * v[1] + A[2] * v[2], A[3] * v[0] + A[4] * v[1] + A[5] * v[2],
            A[6] * v[0] + A[7] * v[1] + A[8] * v[2]};
}

Vector3 timesTransposed(const Matrix3& A, const Vector3& v) {
    return {A[0] * v[0] + A[3] * v[1] + A[6] * v[2], A[1] * v[0] + A[4] * v[1] + A[7] * v[2],
            A[2] * v[0] + A[5] * v[1] + A[8] * v[2]};
}

std::optional<Matrix3> inverse(const Matrix3& a) {
    const Matrix3 cofactors{a[4] * a[8] - a[5] * a[7], a[2] * a[7] - a[1] * a[8], a[1] * a[5] - a[2] * a[4],
                            a[5] * a[6] - a[3] * a[8], a[0] * a[8] - a[2] * a[6], a[2] * a[3] - a[0] * a[5],
                            a[3] * a[7] - a[4] * a[6], a[1] * a[6] - a[0] * a[7], a[0] * a[4] - a[1] * a[3]};
    const double determinant = a[0] * cofactors[0] + a[1] * cofactors[3] + a[2] * cofactors[6];
    if (!std::isfinite(determinant) || determinant == 0.0) {
        return std::nullopt;
    }
    Matrix3 result{};
    std::transform(cofactors.begin(), cofactors.end(), result.begin(), [&](double c) { return c / determinant; });
    return result;
}

Point2d apply(const Matrix3& H, Point2d p) {
    const double w = H[6] * p.x + H[7] * p.y + H[8];
    return {(H[0] * p.x + H[1] * p.y + H[2]) / w, (H[3] * p.x + H[4] * p.y + H[5]) / w};
}

}  // namespace zelm::measure
