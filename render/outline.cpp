#include "outline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace zelm::render {
namespace {

constexpr double kMaxNodes = 2e6;  // of one outline; beyond, the image is so large that nobody can look at the node

int stepsFor(double length, double spacing, int least) {
    return std::max(least, static_cast<int>(std::min(std::ceil(length / spacing), kMaxNodes)));
}

// A bound of the image's speed along the plane, by the Frobenius norm of the derivatives.
double speed(const ProjectedPoint& p) {
    return std::hypot(std::hypot(p.dxdX, p.dxdY), std::hypot(p.dydX, p.dydY));
}

// Number of equal steps of the circle's angle that keeps neighbours within `spacing` pixels.
int circleSteps(const PlateDot& dot, const Camera& camera, const Pose& pose, double spacing) {
    constexpr int kProbes = 8;
    double fastest = 0.0;
    for (int i = 0; i < kProbes; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / kProbes;
        const PlanePoint p = {dot.centre.x + dot.radius * std::cos(angle), dot.centre.y + dot.radius * std::sin(angle)};
        fastest = std::max(fastest, speed(project(camera, pose, p)));
    }
    return stepsFor(2.0 * std::numbers::pi * dot.radius * fastest, spacing, kMinCircleNodes);
}

struct Side {
    PlanePoint from, to;
};

std::array<Side, 4> plateSides(const Plate& plate) {
    const PlateBounds b = plateBounds(plate);
    const PlanePoint p00{b.left, b.top}, p10{b.right, b.top}, p11{b.right, b.bottom}, p01{b.left, b.bottom};
    return {Side{p00, p10}, Side{p10, p11}, Side{p11, p01}, Side{p01, p00}};
}

PlanePoint along(const Side& side, double s) {
    return {side.from.x + s * (side.to.x - side.from.x), side.from.y + s * (side.to.y - side.from.y)};
}

int sideSteps(const Side& side, const Camera& camera, const Pose& pose, double spacing) {
    const double length = std::hypot(side.to.x - side.from.x, side.to.y - side.from.y);
    double fastest = 0.0;
    for (const double s : {0.0, 0.25, 0.5, 0.75, 1.0}) {
        fastest = std::max(fastest, speed(project(camera, pose, along(side, s))));
    }
    return stepsFor(length * fastest, spacing, 1);
}

// The node at an outline point that moves by (dX, dY) in the plane.
OutlineNode nodeAt(const ProjectedPoint& p, double dX, double dY) {
    return {p.pixel, p.dxdX * dX + p.dxdY * dY, p.dydX * dX + p.dydY * dY};
}

}  // namespace

std::vector<OutlineNode> circleOutline(const PlateDot& dot, const Camera& camera, const Pose& pose, double spacing) {
    const int steps = circleSteps(dot, camera, pose, spacing);
    const double step = 2.0 * std::numbers::pi / steps;
    std::vector<OutlineNode> nodes;
    nodes.reserve(static_cast<std::size_t>(steps));
    for (int i = 0; i < steps; ++i) {
        const double x = dot.radius * std::cos(i * step);
        const double y = dot.radius * std::sin(i * step);
        const ProjectedPoint p = project(camera, pose, {dot.centre.x + x, dot.centre.y + y});
        nodes.push_back(nodeAt(p, -y * step, x * step));
    }
    return nodes;
}

std::vector<OutlineNode> plateOutline(const Plate& plate, const Camera& camera, const Pose& pose, double panel) {
    // Abscissae and weights of the five-point Gauss-Legendre rule on [0, 1].
    const double inner = std::sqrt(5.0 - 2.0 * std::sqrt(10.0 / 7.0)) / 6.0;
    const double outer = std::sqrt(5.0 + 2.0 * std::sqrt(10.0 / 7.0)) / 6.0;
    const double innerWeight = (322.0 + 13.0 * std::sqrt(70.0)) / 1800.0;
    const double outerWeight = (322.0 - 13.0 * std::sqrt(70.0)) / 1800.0;
    const std::array<double, 5> abscissa = {0.5 - outer, 0.5 - inner, 0.5, 0.5 + inner, 0.5 + outer};
    const std::array<double, 5> weight = {outerWeight, innerWeight, 64.0 / 225.0, innerWeight, outerWeight};

    std::vector<OutlineNode> nodes;
    for (const Side& side : plateSides(plate)) {
        const int panels = sideSteps(side, camera, pose, panel);
        for (int i = 0; i < panels; ++i) {
            for (std::size_t k = 0; k < abscissa.size(); ++k) {
                const ProjectedPoint p = project(camera, pose, along(side, (i + abscissa[k]) / panels));
                const double share = weight[k] / panels;
                nodes.push_back(nodeAt(p, share * (side.to.x - side.from.x), share * (side.to.y - side.from.y)));
            }
        }
    }
    return nodes;
}

std::vector<Pixel> circlePolygon(const PlateDot& dot, const Camera& camera, const Pose& pose, double spacing) {
    std::vector<Pixel> corners;
    for (const OutlineNode& node : circleOutline(dot, camera, pose, spacing)) {
        corners.push_back(node.pixel);
    }
    return corners;
}

std::vector<Pixel> platePolygon(const Plate& plate, const Camera& camera, const Pose& pose, double spacing) {
    std::vector<Pixel> corners;
    for (const Side& side : plateSides(plate)) {
        const int steps = sideSteps(side, camera, pose, spacing);
        for (int i = 0; i < steps; ++i) {
            corners.push_back(project(camera, pose, along(side, static_cast<double>(i) / steps)).pixel);
        }
    }
    return corners;
}

}  // namespace zelm::render
