#include "dotOutline.h"

#include <ceres/jet.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zelm::measure {
namespace {

constexpr int kDirections = 8;  // at which the lens is asked; its terms of the radius beyond the seventh are nothing

// An ellipse in normalised coordinates: centre + (a 0; b c) (cos, sin).
template <class T>
struct NormalisedEllipse {
    T x, y, a, b, c;
};

// The dual conic of the circle's projection is C C' - A A' - B B' (Hartley and Zisserman 2004, 2.2.3 and 8.4): its last
// column is the centre of the ellipse, and what its upper left part lacks of the centre's square is the shape.
template <class T>
NormalisedEllipse<T> ellipseOf(bool isParallel, const T* C, const T* A, const T* B) {
    using std::sqrt;
    const auto dual = [&](int i, int j) { return C[i] * C[j] - A[i] * A[j] - B[i] * B[j]; };
    T x = C[0];
    T y = C[1];
    T xx = A[0] * A[0] + B[0] * B[0];
    T xy = A[0] * A[1] + B[0] * B[1];
    T yy = A[1] * A[1] + B[1] * B[1];
    if (!isParallel) {
        const T w = T(1.0) / dual(2, 2);
        x = dual(0, 2) * w;
        y = dual(1, 2) * w;
        xx = x * x - dual(0, 0) * w;
        xy = x * y - dual(0, 1) * w;
        yy = y * y - dual(1, 1) * w;
    }
    const T a = sqrt(xx);
    const T b = xy / a;
    return {x, y, a, b, sqrt(yy - b * b)};
}

// The ellipse through the outline that the lens makes of an ellipse, to first order in what the lens changes of its
// shape. With u the directions of the outline's points d, D = 2/N sum d u' is its affine part. What the points move
// along their normals in that frame has a first harmonic, which is the shift of the centre.
template <class T>
void distortedEllipse(const NormalisedEllipse<T>& e, const T& k1, const T& k2, T* centre, T* axes) {
    std::array<T, 2 * kDirections> d;
    std::array<double, 2 * kDirections> u{};
    T D[4] = {T(0.0), T(0.0), T(0.0), T(0.0)};
    for (std::size_t k = 0; k < kDirections; ++k) {
        const double angle = 2.0 * std::numbers::pi * static_cast<double>(k) / kDirections;
        u[2 * k] = std::cos(angle);
        u[2 * k + 1] = std::sin(angle);
        const T x = e.x + e.a * u[2 * k];
        const T y = e.y + e.b * u[2 * k] + e.c * u[2 * k + 1];
        const T r2 = x * x + y * y;
        const T scale = T(1.0) + (k1 + k2 * r2) * r2;
        d[2 * k] = scale * x - e.x;
        d[2 * k + 1] = scale * y - e.y;
        for (std::size_t i = 0; i < 4; ++i) {
            D[i] += d[2 * k + i / 2] * (2.0 * u[2 * k + i % 2] / kDirections);
        }
    }
    const T w = T(1.0) / (D[0] * D[3] - D[1] * D[2]);
    T shift[2] = {T(0.0), T(0.0)};
    for (std::size_t k = 0; k < kDirections; ++k) {
        const T p = (D[3] * d[2 * k] - D[1] * d[2 * k + 1]) * w;
        const T q = (D[0] * d[2 * k + 1] - D[2] * d[2 * k]) * w;
        const T along = p * u[2 * k] + q * u[2 * k + 1];
        shift[0] += along * (2.0 * u[2 * k] / kDirections);
        shift[1] += along * (2.0 * u[2 * k + 1] / kDirections);
    }
    centre[0] = e.x + D[0] * shift[0] + D[1] * shift[1];
    centre[1] = e.y + D[2] * shift[0] + D[3] * shift[1];
    if (axes != nullptr) {
        for (std::size_t i = 0; i < 4; ++i) {
            axes[i] = D[i];
        }
    }
}

Point2d toPixel(const CameraParameters& p, double x, double y) {
    return {p[kFx] * x + p[kSkew] * y + p[kCx], p[kFy] * y + p[kCy]};
}

bool isPoint(const CircleInCamera& circle) {
    return dot(circle.first, circle.first) == 0.0 && dot(circle.second, circle.second) == 0.0;
}

OutlineCentre pointCentre(const ProjectionCamera& camera, const Vector3& point) {
    const Projection seen = project(camera, point);
    OutlineCentre result;
    result.centre = seen.pixel;
    result.byParameters = seen.byParameters;
    for (std::size_t row = 0; row < 2; ++row) {
        std::copy(seen.byPoint[row].begin(), seen.byPoint[row].end(), result.byCircle[row].begin());
    }
    return result;
}

}  // namespace

OutlineEllipse dotOutline(const ProjectionCamera& camera, const CircleInCamera& circle) {
    if (isPoint(circle)) {
        return {pixelOf(camera, circle.centre), {}};
    }
    const auto& p = camera.p;
    const auto ellipse = ellipseOf(camera.isParallel, circle.centre.data(), circle.first.data(), circle.second.data());
    double centre[2];
    double D[4];
    distortedEllipse(ellipse, p[kK1], p[kK2], centre, D);
    return {toPixel(p, centre[0], centre[1]),
            {p[kFx] * D[0] + p[kSkew] * D[2], p[kFx] * D[1] + p[kSkew] * D[3], p[kFy] * D[2], p[kFy] * D[3]}};
}

OutlineCentre outlineCentre(const ProjectionCamera& camera, const CircleInCamera& circle) {
    if (isPoint(circle)) {
        return pointCentre(camera, circle.centre);
    }
    // In two steps, so that the eight directions carry 7 derivatives and not 11.
    using First = ceres::Jet<double, 9>;
    using Second = ceres::Jet<double, 7>;
    First in[9];
    for (std::size_t i = 0; i < 3; ++i) {
        in[i] = First(circle.centre[i], static_cast<int>(i));
        in[3 + i] = First(circle.first[i], static_cast<int>(3 + i));
        in[6 + i] = First(circle.second[i], static_cast<int>(6 + i));
    }
    const auto e = ellipseOf(camera.isParallel, in, in + 3, in + 6);
    const NormalisedEllipse<Second> f{Second(e.x.a, 0), Second(e.y.a, 1), Second(e.a.a, 2), Second(e.b.a, 3),
                                      Second(e.c.a, 4)};
    const auto& p = camera.p;
    Second centre[2];
    distortedEllipse<Second>(f, Second(p[kK1], 5), Second(p[kK2], 6), centre, nullptr);

    const Eigen::Matrix<double, 9, 1> x = centre[0].v[0] * e.x.v + centre[0].v[1] * e.y.v + centre[0].v[2] * e.a.v +
                                          centre[0].v[3] * e.b.v + centre[0].v[4] * e.c.v;
    const Eigen::Matrix<double, 9, 1> y = centre[1].v[0] * e.x.v + centre[1].v[1] * e.y.v + centre[1].v[2] * e.a.v +
                                          centre[1].v[3] * e.b.v + centre[1].v[4] * e.c.v;
    OutlineCentre result;
    result.centre = toPixel(p, centre[0].a, centre[1].a);
    for (std::size_t i = 0; i < 9; ++i) {
        const auto k = static_cast<Eigen::Index>(i);
        result.byCircle[0][i] = p[kFx] * x[k] + p[kSkew] * y[k];
        result.byCircle[1][i] = p[kFy] * y[k];
    }
    const auto byLens = [&](Eigen::Index k) {
        return Point2d{p[kFx] * centre[0].v[k] + p[kSkew] * centre[1].v[k], p[kFy] * centre[1].v[k]};
    };
    const Point2d k1 = byLens(5);
    const Point2d k2 = byLens(6);
    result.byParameters[0] = {centre[0].a, centre[1].a, 0.0, 1.0, 0.0, k1.x, k2.x};
    result.byParameters[1] = {0.0, 0.0, centre[1].a, 0.0, 1.0, k1.y, k2.y};
    return result;
}

}  // namespace zelm::measure
