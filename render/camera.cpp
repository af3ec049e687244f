#include "camera.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

namespace zelm::render {
namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;

// A plane point in camera coordinates, divided by its depth where the projection does so, with its derivatives.
struct Normalised {
    double x = 0.0, y = 0.0;
    double xX = 0.0, xY = 0.0;  // derivatives by the plane coordinates
    double yX = 0.0, yY = 0.0;
    double depth = 1.0;  // 1 under parallel projection
};

Normalised normalise(const Camera& camera, const Pose& pose, PlanePoint p) {
    const auto& R = pose.R;
    const double x = R[0] * p.x + R[1] * p.y + pose.t[0];
    const double y = R[3] * p.x + R[4] * p.y + pose.t[1];
    if (camera.projection == Projection::parallel) {
        return {x, y, R[0], R[1], R[3], R[4], 1.0};
    }
    const double z = R[6] * p.x + R[7] * p.y + pose.t[2];
    const double xn = x / z;
    const double yn = y / z;
    return {xn, yn, (R[0] - xn * R[6]) / z, (R[1] - xn * R[7]) / z, (R[3] - yn * R[6]) / z, (R[4] - yn * R[7]) / z, z};
}

// Slope of the distorted radius r (1 + k1 r^2 + k2 r^4); the image folds where it is not positive.
double radialSlope(const Camera& camera, double r2) {
    return 1.0 + (3.0 * camera.k1 + 5.0 * camera.k2 * r2) * r2;
}

// Whether the slope stays positive from the principal point out to r2.
bool isUnfolded(const Camera& camera, double r2) {
    if (!(radialSlope(camera, r2) > 0.0)) {
        return false;
    }
    const double lowest = -3.0 * camera.k1 / (10.0 * camera.k2);  // where the slope is extreme; NaN without lens
    return !(lowest > 0.0 && lowest < r2) || radialSlope(camera, lowest) > 0.0;
}

// No lens throws a point ten times as far out: k1 and k2 are then meant for another kind of projection, and drawing the
// outlines of such a plate would take for ever.
constexpr double kMaxRadialGain = 10.0;

bool isWithinGain(const Camera& camera, double r2) {
    return 1.0 + (camera.k1 + camera.k2 * r2) * r2 <= kMaxRadialGain;
}

bool isUsable(const Camera& camera, const Normalised& n) {
    const double r2 = n.x * n.x + n.y * n.y;
    return n.depth > 0.0 && isUnfolded(camera, r2) && isWithinGain(camera, r2);
}

double shear(const Camera& camera) {
    return camera.skew + camera.fy * std::tan(camera.theta);
}

std::array<double, 9> multiply(const std::array<double, 9>& a, const std::array<double, 9>& b) {
    std::array<double, 9> c{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            c[3 * i + j] = a[3 * i] * b[j] + a[3 * i + 1] * b[3 + j] + a[3 * i + 2] * b[6 + j];
        }
    }
    return c;
}

std::array<double, 3> rotate(const std::array<double, 9>& R, const std::array<double, 3>& v) {
    return {R[0] * v[0] + R[1] * v[1] + R[2] * v[2], R[3] * v[0] + R[4] * v[1] + R[5] * v[2],
            R[6] * v[0] + R[7] * v[1] + R[8] * v[2]};
}

}  // namespace

void checkCamera(const Camera& camera) {
    constexpr int kMaxSide = 32768;  // pixels
    if (camera.width <= 0 || camera.height <= 0 || camera.width > kMaxSide || camera.height > kMaxSide) {
        throw std::invalid_argument("width and height must be between 1 and 32768 pixels");
    }
    if (!(camera.fx > 0.0) || !(camera.fy > 0.0)) {
        throw std::invalid_argument("fx and fy must be positive");
    }
    for (const double value :
         {camera.fx, camera.fy, camera.skew, camera.cx, camera.cy, std::tan(camera.theta), camera.k1, camera.k2}) {
        if (!std::isfinite(value)) {
            throw std::invalid_argument("every parameter must be a finite number");
        }
    }
}

std::array<double, 9> cameraMatrix(const Camera& camera) {
    return {camera.fx, shear(camera), camera.cx, 0.0, camera.fy, camera.cy, 0.0, 0.0, 1.0};
}

ProjectedPoint project(const Camera& camera, const Pose& pose, PlanePoint point) {
    const Normalised n = normalise(camera, pose, point);
    if (!isUsable(camera, n)) {
        throw std::domain_error("a point of the plate is behind the camera or beyond the reach of the lens model");
    }
    const double s = shear(camera);
    const double r2 = n.x * n.x + n.y * n.y;
    const double gain = 1.0 + (camera.k1 + camera.k2 * r2) * r2;
    const double gainSlope = camera.k1 + 2.0 * camera.k2 * r2;  // by r2
    const double gainX = gainSlope * 2.0 * (n.x * n.xX + n.y * n.yX);
    const double gainY = gainSlope * 2.0 * (n.x * n.xY + n.y * n.yY);
    const double dx = camera.fx * n.x + s * n.y;  // ideal pixel from the principal point
    const double dy = camera.fy * n.y;
    ProjectedPoint result;
    result.pixel = {camera.cx + gain * dx, camera.cy + gain * dy};
    result.dxdX = gain * (camera.fx * n.xX + s * n.yX) + gainX * dx;
    result.dxdY = gain * (camera.fx * n.xY + s * n.yY) + gainY * dx;
    result.dydX = gain * camera.fy * n.yX + gainX * dy;
    result.dydY = gain * camera.fy * n.yY + gainY * dy;
    return result;
}

bool canProject(const Camera& camera, const Pose& pose, PlanePoint point) {
    return isUsable(camera, normalise(camera, pose, point));
}

std::array<double, 9> rotationFromVector(const std::array<double, 3>& r) {
    const double angle = std::hypot(r[0], r[1], r[2]);
    if (angle == 0.0) {
        return {1, 0, 0, 0, 1, 0, 0, 0, 1};
    }
    const double x = r[0] / angle, y = r[1] / angle, z = r[2] / angle;
    const double c = std::cos(angle), s = std::sin(angle), v = 1.0 - c;
    return {v * x * x + c,     v * x * y - s * z, v * x * z + s * y, v * x * y + s * z, v * y * y + c,
            v * y * z - s * x, v * x * z - s * y, v * y * z + s * x, v * z * z + c};
}

// By the quaternion with the largest component taken first (Shepperd 1978), which is accurate at every angle.
std::array<double, 3> vectorFromRotation(const std::array<double, 9>& R) {
    const double trace = R[0] + R[4] + R[8];
    const std::array<double, 4> squares = {trace, R[0], R[4], R[8]};  // largest first: w, x, y or z
    const auto largest = std::max_element(squares.begin(), squares.end()) - squares.begin();
    double w = 0.0, x = 0.0, y = 0.0, z = 0.0;
    if (largest == 0) {
        w = 1.0 + trace, x = R[7] - R[5], y = R[2] - R[6], z = R[3] - R[1];
    } else if (largest == 1) {
        w = R[7] - R[5], x = 1.0 + 2.0 * R[0] - trace, y = R[1] + R[3], z = R[2] + R[6];
    } else if (largest == 2) {
        w = R[2] - R[6], x = R[1] + R[3], y = 1.0 + 2.0 * R[4] - trace, z = R[5] + R[7];
    } else {
        w = R[3] - R[1], x = R[2] + R[6], y = R[5] + R[7], z = 1.0 + 2.0 * R[8] - trace;
    }
    if (w < 0.0) {
        w = -w, x = -x, y = -y, z = -z;
    }
    const double length = std::hypot(x, y, z);
    const double scale = length > 0.0 ? 2.0 * std::atan2(length, w) / length : 0.0;
    return {scale * x, scale * y, scale * z};
}

Pose compose(const Pose& outer, const Pose& inner) {
    const std::array<double, 3> t = rotate(outer.R, inner.t);
    return {multiply(outer.R, inner.R), {t[0] + outer.t[0], t[1] + outer.t[1], t[2] + outer.t[2]}};
}

Pose inverse(const Pose& pose) {
    const auto& R = pose.R;
    const std::array<double, 9> transposed = {R[0], R[3], R[6], R[1], R[4], R[7], R[2], R[5], R[8]};
    const std::array<double, 3> t = rotate(transposed, pose.t);
    return {transposed, {-t[0], -t[1], -t[2]}};
}

Pose aimedPose(const Camera& camera, const Aim& aim) {
    const double axis = aim.tiltAxisDegrees * kRadiansPerDegree;
    const double tilt = aim.tiltDegrees * kRadiansPerDegree;
    const auto tilted = rotationFromVector({tilt * std::cos(axis), tilt * std::sin(axis), 0.0});
    const auto rolled = rotationFromVector({0.0, 0.0, aim.rollDegrees * kRadiansPerDegree});
    Pose pose;
    pose.R = multiply(tilted, rolled);
    const bool parallel = camera.projection == Projection::parallel;
    const double depth = parallel ? 1.0 : camera.fx / aim.scale;
    const double yn = (aim.pixel.y - camera.cy) / camera.fy;
    const double xn = (aim.pixel.x - camera.cx - shear(camera) * yn) / camera.fx;
    const std::array<double, 3> offset = rotate(pose.R, {aim.point.x, aim.point.y, 0.0});
    pose.t = {xn * depth - offset[0], yn * depth - offset[1], depth - offset[2]};
    return pose;
}

}  // namespace zelm::render
