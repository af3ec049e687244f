// The absolute orientation of the plane in closed form: Horn, "Closed-form solution of absolute orientation using unit
// quaternions", J. Opt. Soc. Am. A 4, 1987, whose planar case needs a single arc tangent; scale by projection onto the
// model (Umeyama 1991).

#include "closedFormMotion.h"

#include <cmath>

namespace zelm {
namespace {

constexpr double kNoExtent = 1e-13;  // squared extent of the model points, times their number squared

double dot(const Point2d& u, const Point2d& v) {
    return u.x * v.x + u.y * v.y;
}
double cross(const Point2d& u, const Point2d& v) {
    return u.x * v.y - u.y * v.x;
}

Point2d centroid(std::size_t n, const Point2d* points) {
    double x = 0.0;
    double y = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        x += points[i].x;
        y += points[i].y;
    }
    const auto count = static_cast<double>(n);
    return {x / count, y / count};
}

// scale * R(angle) * p
Point2d turned(double angle, double scale, const Point2d& p) {
    return MotionOfPoints({angle, scale, {0.0, 0.0}})(p);
}

}  // namespace

Motion closedFormMotion(const PointPairs& pairs, bool withScale) {
    const Point2d c = centroid(pairs.n, pairs.ref);
    double D = 0.0;
    double C = 0.0;
    double S2 = 0.0;
    Point2d S{0.0, 0.0};
    for (std::size_t i = 0; i < pairs.n; ++i) {
        const Point2d m = pairs.model(i);
        const Point2d q{pairs.ref[i].x - c.x, pairs.ref[i].y - c.y};
        D += dot(m, q);
        C += cross(m, q);
        S.x += m.x;
        S.y += m.y;
        S2 += dot(m, m);
    }
    const auto n = static_cast<double>(pairs.n);
    const double angle = std::atan2(C, D);
    const double extent = n * S2 - S.x * S.x - S.y * S.y;
    const double scale = withScale && extent >= kNoExtent ? n * std::sqrt(D * D + C * C) / extent : 1.0;
    const Point2d moved = turned(angle, scale / n, S);
    return {angle, scale, {c.x - moved.x, c.y - moved.y}};
}

Motion weightedMotion(const PointPairs& pairs, const double* weights, bool withScale) {
    double W = 0.0;
    double dots = 0.0;
    double crosses = 0.0;
    double squares = 0.0;
    Point2d M{0.0, 0.0};
    Point2d P{0.0, 0.0};
    for (std::size_t i = 0; i < pairs.n; ++i) {
        const double w = weights[i];
        const Point2d m = pairs.model(i);
        const Point2d& ref = pairs.ref[i];
        W += w;
        M.x += w * m.x;
        M.y += w * m.y;
        P.x += w * ref.x;
        P.y += w * ref.y;
        dots += w * dot(m, ref);
        crosses += w * cross(m, ref);
        squares += w * dot(m, m);
    }
    const double D = W * dots - dot(M, P);
    const double C = W * crosses - cross(M, P);
    const double angle = std::atan2(C, D);
    const double extent = W * squares - dot(M, M);
    const double scale = withScale && extent >= kNoExtent ? std::sqrt(D * D + C * C) / extent : 1.0;
    const Point2d moved = turned(angle, scale, M);
    return {angle, scale, {(P.x - moved.x) / W, (P.y - moved.y) / W}};
}

}  // namespace zelm
