#include "projection.h"

#include <cmath>

#include "rig.h"

namespace zelm::measure {
namespace {

constexpr double kSmallAngle = 1e-4;  // radians below which series are exact to rounding

// a I + b [r]x + c r r'.
Matrix3 combination(double a, double b, double c, const Vector3& r) {
    return {a + c * r[0] * r[0],        c * r[0] * r[1] - b * r[2], c * r[0] * r[2] + b * r[1],
            c * r[1] * r[0] + b * r[2], a + c * r[1] * r[1],        c * r[1] * r[2] - b * r[0],
            c * r[2] * r[0] - b * r[1], c * r[2] * r[1] + b * r[0], a + c * r[2] * r[2]};
}

}  // namespace

CameraParameters parametersOf(const ZelmCameraIntrinsics& i) {
    return {i.A[0], i.A[1], i.A[4], i.A[2], i.A[5], i.k1, i.k2};
}

ProjectionCamera projectionOf(const RigCamera& camera) {
    return {camera.isParallel(), parametersOf(camera.intrinsics)};
}

Point2d pixelOf(const ProjectionCamera& camera, const Vector3& point) {
    const auto& p = camera.p;
    const double w = camera.isParallel ? 1.0 : 1.0 / point[2];
    const double x = point[0] * w;
    const double y = point[1] * w;
    const double r2 = x * x + y * y;
    const double scale = 1.0 + (p[kK1] + p[kK2] * r2) * r2;
    return {p[kFx] * scale * x + p[kSkew] * scale * y + p[kCx], p[kFy] * scale * y + p[kCy]};
}

Projection project(const ProjectionCamera& camera, const Vector3& point) {
    const auto& p = camera.p;
    const double w = camera.isParallel ? 1.0 : 1.0 / point[2];
    const double x = point[0] * w;
    const double y = point[1] * w;
    const double r2 = x * x + y * y;
    const double scale = 1.0 + (p[kK1] + p[kK2] * r2) * r2;
    const double slope = 2.0 * (p[kK1] + 2.0 * p[kK2] * r2);  // of the scale, by x over x
    const double xd = scale * x;
    const double yd = scale * y;

    Projection result;
    result.pixel = {p[kFx] * xd + p[kSkew] * yd + p[kCx], p[kFy] * yd + p[kCy]};
    result.byParameters[0] = {
        xd, yd, 0.0, 1.0, 0.0, (p[kFx] * x + p[kSkew] * y) * r2, (p[kFx] * x + p[kSkew] * y) * r2 * r2};
    result.byParameters[1] = {0.0, 0.0, yd, 0.0, 1.0, p[kFy] * y * r2, p[kFy] * y * r2 * r2};

    const double xdByX = scale + slope * x * x;
    const double cross = slope * x * y;
    const double ydByY = scale + slope * y * y;
    const std::array<double, 2> byX{p[kFx] * xdByX + p[kSkew] * cross, p[kFy] * cross};
    const std::array<double, 2> byY{p[kFx] * cross + p[kSkew] * ydByY, p[kFy] * ydByY};
    for (std::size_t row = 0; row < 2; ++row) {
        const double byDepth = camera.isParallel ? 0.0 : -(byX[row] * x + byY[row] * y) * w;
        result.byPoint[row] = {byX[row] * w, byY[row] * w, byDepth};
    }
    return result;
}

Matrix3 rotationOf(const Vector3& r) {
    const double angle2 = dot(r, r);
    const double angle = std::sqrt(angle2);
    if (angle < kSmallAngle) {
        return combination(1.0 - angle2 / 2.0, 1.0 - angle2 / 6.0, 0.5 - angle2 / 24.0, r);
    }
    const double half = std::sin(0.5 * angle);
    const double versine = 2.0 * half * half;
    return combination(std::cos(angle), std::sin(angle) / angle, versine / angle2, r);
}

Matrix3 leftJacobian(const Vector3& r) {
    const double angle2 = dot(r, r);
    const double angle = std::sqrt(angle2);
    if (angle < kSmallAngle) {
        return combination(1.0 - angle2 / 6.0, 0.5 - angle2 / 24.0, 1.0 / 6.0 - angle2 / 120.0, r);
    }
    const double half = std::sin(0.5 * angle);
    const double ratio = std::sin(angle) / angle;
    return combination(ratio, 2.0 * half * half / angle2, (1.0 - ratio) / angle2, r);
}

}  // namespace zelm::measure
