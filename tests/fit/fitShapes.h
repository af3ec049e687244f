// Points on known shapes, for the tests of the fits.
#ifndef ZELM_TEST_FIT_SHAPES_H
#define ZELM_TEST_FIT_SHAPES_H

#include <cmath>
#include <cstdint>
#include <vector>

#include "random.h"
#include "zelm/fit.h"

namespace zelmtest {

constexpr double kPi = 3.14159265358979323846;

inline Point2d onEllipse(const Ellipse2d& e, double t) {
    const double u = e.a * std::cos(t);
    const double v = e.b * std::sin(t);
    return {e.x + u * std::cos(e.angle) - v * std::sin(e.angle), e.y + u * std::sin(e.angle) + v * std::cos(e.angle)};
}

// n points at equal steps of the parameter from `from` over `span`, each coordinate with normal noise.
inline std::vector<Point2d> ellipsePoints(const Ellipse2d& e, std::int32_t n, double sigma, Random& random,
                                          double from = 0.0, double span = 2.0 * kPi) {
    std::vector<Point2d> points;
    for (std::int32_t i = 0; i < n; ++i) {
        Point2d p = onEllipse(e, from + span * i / n);
        p.x += sigma * random.normal();
        p.y += sigma * random.normal();
        points.push_back(p);
    }
    return points;
}

inline std::vector<Point2d> circlePoints(const Circle2d& c, std::int32_t n, double sigma, Random& random) {
    return ellipsePoints({c.x, c.y, c.r, c.r, 0.0}, n, sigma, random);
}

inline Ellipse2d randomEllipse(Random& random) {
    const double a = random.uniform(4.0, 40.0);
    return {random.uniform(-500.0, 500.0), random.uniform(-500.0, 500.0), a, a * random.uniform(0.3, 0.95),
            random.uniform(-kPi / 2.0, kPi / 2.0)};
}

// Difference of two axis directions, in [-pi/2, pi/2].
inline double axisDifference(double a, double b) {
    return std::remainder(a - b, kPi);
}

template <class Points>
std::int32_t count(const Points& points) {
    return static_cast<std::int32_t>(points.size());
}

}  // namespace zelmtest

#endif
