#include "truth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "outline.h"

namespace zelm::render {
namespace {

constexpr double kSpacing = 0.5;    // pixels between nodes; the sums over them converge exponentially
constexpr int kMaxSteps = 20;       // Gauss-Newton steps of the ellipse
constexpr double kMinStep = 1e-12;  // pixels

// Area, centroid and second central moments of the region inside an outline.
struct Moments {
    double area = 0.0;
    Pixel centroid;
    double xx = 0.0, xy = 0.0, yy = 0.0;
};

// By Green's theorem, about a point near the outline for accuracy.
Moments momentsOf(const std::vector<OutlineNode>& outline) {
    const Pixel origin = outline.front().pixel;
    double area = 0.0, mx = 0.0, my = 0.0, mxx = 0.0, mxy = 0.0, myy = 0.0;
    for (const OutlineNode& node : outline) {
        const double x = node.pixel.x - origin.x;
        const double y = node.pixel.y - origin.y;
        area += 0.5 * (x * node.dy - y * node.dx);
        mx += 0.5 * x * x * node.dy;
        my -= 0.5 * y * y * node.dx;
        mxx += x * x * x * node.dy / 3.0;
        myy -= y * y * y * node.dx / 3.0;
        mxy += 0.5 * x * x * y * node.dy;
    }
    const double cx = mx / area;
    const double cy = my / area;
    return {std::abs(area),
            {origin.x + cx, origin.y + cy},
            mxx / area - cx * cx,
            mxy / area - cx * cy,
            myy / area - cy * cy};
}

// An ellipse as centre and symmetric shape matrix S: points p with (p - c)' S (p - c) = 1.
struct Conic {
    double x, y, s11, s12, s22;
};

Conic conicFrom(const Moments& m) {
    const double determinant = 4.0 * (m.xx * m.yy - m.xy * m.xy);  // covariance of a filled ellipse is axes^2 / 4
    return {m.centroid.x, m.centroid.y, m.yy / determinant, -m.xy / determinant, m.xx / determinant};
}

// Solves the 5 x 5 positive definite system in place by elimination; its condition is mild by construction.
std::array<double, 5> solve(std::array<std::array<double, 6>, 5> m) {
    for (std::size_t k = 0; k < 5; ++k) {
        for (std::size_t i = k + 1; i < 5; ++i) {
            const double factor = m[i][k] / m[k][k];
            for (std::size_t j = k; j < 6; ++j) {
                m[i][j] -= factor * m[k][j];
            }
        }
    }
    std::array<double, 5> x{};
    for (std::size_t k = 5; k-- > 0;) {
        x[k] = m[k][5];
        for (std::size_t j = k + 1; j < 5; ++j) {
            x[k] -= m[k][j] * x[j];
        }
        x[k] /= m[k][k];
    }
    return x;
}

// One Gauss-Newton step of the squared distances to first order (Sampson 1982). The shape's unknowns are scaled by the
// square of the size so that all five are lengths.
std::array<double, 5> sampsonStep(const std::vector<OutlineNode>& outline, const Conic& e, double size) {
    std::array<std::array<double, 6>, 5> normal{};
    for (const OutlineNode& node : outline) {
        const double u = node.pixel.x - e.x;
        const double v = node.pixel.y - e.y;
        const double gu = 2.0 * (e.s11 * u + e.s12 * v);
        const double gv = 2.0 * (e.s12 * u + e.s22 * v);
        const double g = std::hypot(gu, gv);
        const double distance = (e.s11 * u * u + 2.0 * e.s12 * u * v + e.s22 * v * v - 1.0) / g;
        const double unit = 1.0 / (g * size * size * size);
        const std::array<double, 6> row = {-gu / g, -gv / g, u * u * unit, 2.0 * u * v * unit, v * v * unit, -distance};
        for (std::size_t i = 0; i < 5; ++i) {
            for (std::size_t j = 0; j < 6; ++j) {
                normal[i][j] += row[i] * row[j];
            }
        }
    }
    return solve(normal);
}

EllipseTruth ellipseFrom(const Conic& e) {
    const double mean = 0.5 * (e.s11 + e.s22);
    const double half = std::hypot(0.5 * (e.s11 - e.s22), e.s12);
    double angle = 0.5 * std::atan2(-2.0 * e.s12, e.s22 - e.s11);  // the small eigenvalue's direction
    if (angle <= -0.5 * std::numbers::pi) {
        angle += std::numbers::pi;
    }
    return {{e.x, e.y}, 1.0 / std::sqrt(mean - half), 1.0 / std::sqrt(mean + half), angle};
}

// The ellipse with the least sum of squared distances from the outline's nodes; without lens distortion it is exact.
EllipseTruth fitEllipse(const std::vector<OutlineNode>& outline, const Moments& moments) {
    Conic e = conicFrom(moments);
    const double size = std::sqrt(moments.area / std::numbers::pi);
    for (int i = 0; i < kMaxSteps; ++i) {
        const std::array<double, 5> d = sampsonStep(outline, e, size);
        const double shape = 1.0 / (size * size * size);
        e = {e.x + d[0], e.y + d[1], e.s11 + d[2] * shape, e.s12 + d[3] * shape, e.s22 + d[4] * shape};
        if (std::all_of(d.begin(), d.end(), [](double step) { return std::abs(step) < kMinStep; })) {
            break;
        }
    }
    return ellipseFrom(e);
}

}  // namespace

DotTruth dotTruth(const PlateDot& dot, const Camera& camera, const Pose& pose) {
    const std::vector<OutlineNode> outline = circleOutline(dot, camera, pose, kSpacing);
    const Moments moments = momentsOf(outline);
    DotTruth truth;
    truth.dot = dot;
    truth.centre = project(camera, pose, dot.centre).pixel;
    truth.centroid = moments.centroid;
    truth.ellipse = fitEllipse(outline, moments);
    truth.radius = std::sqrt(moments.area / std::numbers::pi);
    return truth;
}

std::vector<DotTruth> dotTruths(const Plate& plate, const Camera& camera, const Pose& pose) {
    std::vector<DotTruth> truths;
    for (const PlateDot& dot : plateDots(plate)) {
        truths.push_back(dotTruth(dot, camera, pose));
    }
    return truths;
}

}  // namespace zelm::render
