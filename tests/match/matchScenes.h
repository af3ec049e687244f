// Point sets to be matched, and the exact smallest enclosing circle.
#ifndef ZELM_TEST_MATCH_SCENES_H
#define ZELM_TEST_MATCH_SCENES_H

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "random.h"
#include "zelm/match.h"

namespace zelmtest {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegree = kPi / 180.0;

using Points = std::vector<Point2d>;

struct MatchScene {
    Points ref;
    Points model;
    ZelmMatchPose modelPose{0.0, 0.0, 0.0, 1.0};

    [[nodiscard]] std::int32_t n() const { return static_cast<std::int32_t>(ref.size()); }
    std::int32_t match(std::int32_t mode, double threshold, ZelmMatchPose* result) const {
        return zelmMatchBasic(n(), ref.data(), model.data(), &modelPose, mode, threshold, result);
    }
};

// A point relative to the origin, moved.
inline Point2d movedBy(double angle, double scale, const Point2d& shift, const Point2d& p) {
    const double c = scale * std::cos(angle);
    const double s = scale * std::sin(angle);
    return {c * p.x - s * p.y + shift.x, s * p.x + c * p.y + shift.y};
}

// Model points in a field of 100 x 100, moved and with noise.
inline MatchScene makeScene(Random& random, std::int32_t n, double angle, double scale, const Point2d& shift,
                            double sigma) {
    MatchScene scene;
    for (std::int32_t i = 0; i < n; ++i) {
        const double x = random.uniform(-50.0, 50.0);
        const double y = random.uniform(-50.0, 50.0);
        scene.model.push_back({x, y});
        Point2d p = movedBy(angle, scale, shift, {x, y});
        p.x += sigma * random.normal();
        p.y += sigma * random.normal();
        scene.ref.push_back(p);
    }
    return scene;
}

inline double angleBetween(double a, double b) {
    return std::fabs(std::remainder(a - b, 2.0 * kPi));
}

// Distances of the moved model points from the reference points.
inline std::vector<double> distancesOf(const MatchScene& scene, const ZelmMatchPose& result) {
    Points moved(scene.ref.size());
    std::vector<double> distances(scene.ref.size());
    EXPECT_EQ(zelmMatchPoints(scene.n(), scene.ref.data(), scene.model.data(), &scene.modelPose, &result, moved.data(),
                              distances.data()),
              ZELM_OK);
    return distances;
}

// --- the exact smallest enclosing circle (incremental, Welzl 1991 without the shuffle)

inline bool holds(const Circle2d& c, const Point2d& p) {
    return std::hypot(p.x - c.x, p.y - c.y) <= c.r * (1.0 + 1e-14);
}

inline Circle2d circleOfTwo(const Point2d& a, const Point2d& b) {
    const Point2d c = {0.5 * (a.x + b.x), 0.5 * (a.y + b.y)};
    return {c.x, c.y, std::hypot(a.x - c.x, a.y - c.y)};
}

inline Circle2d circleOfThree(const Point2d& a, const Point2d& b, const Point2d& c) {
    const double bx = b.x - a.x;
    const double by = b.y - a.y;
    const double cx = c.x - a.x;
    const double cy = c.y - a.y;
    const double d = 2.0 * (bx * cy - by * cx);
    const double ux = (cy * (bx * bx + by * by) - by * (cx * cx + cy * cy)) / d;
    const double uy = (bx * (cx * cx + cy * cy) - cx * (bx * bx + by * by)) / d;
    return {a.x + ux, a.y + uy, std::hypot(ux, uy)};
}

// The signature of the library's internal circle, which has a work array.
inline Circle2d exactEnclosingCircle(std::size_t n, const Point2d* p, Point2d*) {
    Circle2d c = {p[0].x, p[0].y, 0.0};
    for (std::size_t i = 1; i < n; ++i) {
        if (holds(c, p[i])) {
            continue;
        }
        c = {p[i].x, p[i].y, 0.0};
        for (std::size_t j = 0; j < i; ++j) {
            if (holds(c, p[j])) {
                continue;
            }
            c = circleOfTwo(p[i], p[j]);
            for (std::size_t k = 0; k < j; ++k) {
                if (!holds(c, p[k])) {
                    c = circleOfThree(p[i], p[j], p[k]);
                }
            }
        }
    }
    return c;
}

}  // namespace zelmtest

#endif
