#include "circleStart.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace zelm::measure {
namespace {

constexpr double kMinTilt = 0.1;  // radians; nearly upright circles are tried to both sides all the same

// The part of a direction that is square to another one, of unit length.
Vector3 squareTo(const Vector3& direction, const Vector3& axis) {
    const double along = dot(direction, axis);
    return unit({direction[0] - along * axis[0], direction[1] - along * axis[1], direction[2] - along * axis[2]});
}

// The direction across the view that the image shows along the ellipse's minor axis.
std::optional<Vector3> minorDirection(const TargetPixel& seen, const Vector3& view, const Ellipse2d& ellipse) {
    const Vector3 u = squareTo(seen.dx, view);
    const Vector3 v = cross(view, u);
    const Point2d wanted{-std::sin(ellipse.angle), std::cos(ellipse.angle)};
    const double xu = dot(seen.dx, u);
    const double xv = dot(seen.dx, v);
    const double yu = dot(seen.dy, u);
    const double yv = dot(seen.dy, v);
    const double determinant = xu * yv - xv * yu;
    const double a = (wanted.x * yv - wanted.y * xv) / determinant;
    const double b = (wanted.y * xu - wanted.x * yu) / determinant;
    const double length = std::hypot(a, b);
    if (!std::isfinite(length) || !(length > 0.0)) {
        return std::nullopt;
    }
    return Vector3{(a * u[0] + b * v[0]) / length, (a * u[1] + b * v[1]) / length, (a * u[2] + b * v[2]) / length};
}

}  // namespace

std::vector<SpaceCircle> startCircles(const std::array<TargetCamera, 2>& cameras,
                                      const std::array<Ellipse2d, 2>& ellipses, const Vector3& centre) {
    std::vector<SpaceCircle> circles;
    for (std::size_t side = 0; side < 2; ++side) {
        const auto seen = cameras[side].project(centre);
        if (!seen) {
            continue;
        }
        const Vector3 view = cameras[side].towards(centre);
        const auto minor = minorDirection(*seen, view, ellipses[side]);
        if (!minor) {
            continue;
        }
        const double scale = std::sqrt(0.5 * (dot(seen->dx, seen->dx) + dot(seen->dy, seen->dy)));
        const double tilt = std::max(std::acos(std::clamp(ellipses[side].b / ellipses[side].a, 0.0, 1.0)), kMinTilt);
        for (const double s : {std::sin(tilt), -std::sin(tilt)}) {
            const double c = std::cos(tilt);
            circles.push_back(
                {centre,
                 unit({c * view[0] + s * (*minor)[0], c * view[1] + s * (*minor)[1], c * view[2] + s * (*minor)[2]}),
                 ellipses[side].a / scale});
        }
    }
    return circles;
}

}  // namespace zelm::measure
