#include "ellipseFoot.h"

#include <cmath>
#include <numbers>

namespace zelm::measure {

EllipsePlace placeOn(const Ellipse2d& ellipse, double angle) {
    const double c = std::cos(ellipse.angle);
    const double s = std::sin(ellipse.angle);
    const double ct = std::cos(angle);
    const double st = std::sin(angle);
    const double x = ellipse.a * ct;
    const double y = ellipse.b * st;
    const double length = std::hypot(ellipse.b * ct, ellipse.a * st);
    const double nx = ellipse.b * ct / length;
    const double ny = ellipse.a * st / length;
    return {angle,
            {ellipse.x + c * x - s * y, ellipse.y + s * x + c * y},
            {c * nx - s * ny, s * nx + c * ny},
            ellipse.a * ellipse.b / (length * length * length)};
}

EllipseFoot footOn(const Ellipse2d& ellipse, Point2d pixel) {
    constexpr int kSteps = 6;
    const double c = std::cos(ellipse.angle);
    const double s = std::sin(ellipse.angle);
    const double x = c * (pixel.x - ellipse.x) + s * (pixel.y - ellipse.y);
    const double y = c * (pixel.y - ellipse.y) - s * (pixel.x - ellipse.x);
    double angle = std::atan2(y / ellipse.b, x / ellipse.a);
    for (int step = 0; step < kSteps; ++step) {
        const double ct = std::cos(angle);
        const double st = std::sin(angle);
        const double ex = x - ellipse.a * ct;
        const double ey = y - ellipse.b * st;
        const double slope = -ex * ellipse.a * st + ey * ellipse.b * ct;
        const double tangent = ellipse.a * ellipse.a * st * st + ellipse.b * ellipse.b * ct * ct;
        const double bend = ex * ellipse.a * ct + ey * ellipse.b * st;
        const double curvature = tangent + bend;
        angle += slope / (curvature > 0.25 * tangent ? curvature : tangent);
    }
    const double ct = std::cos(angle);
    const double st = std::sin(angle);
    const double length = std::hypot(ellipse.b * ct, ellipse.a * st);
    const double distance = ((x - ellipse.a * ct) * ellipse.b * ct + (y - ellipse.b * st) * ellipse.a * st) / length;
    const double turn = 2.0 * std::numbers::pi;
    angle = std::fmod(angle, turn);
    return {angle < 0.0 ? angle + turn : angle, distance};
}

double perimeterOf(const Ellipse2d& ellipse) {
    // Ramanujan 1914, right to a thousandth for all but the flattest.
    const double sum = ellipse.a + ellipse.b;
    return std::numbers::pi * (3.0 * sum - std::sqrt((3.0 * ellipse.a + ellipse.b) * (ellipse.a + 3.0 * ellipse.b)));
}

}  // namespace zelm::measure
