// The distance from a point to an ellipse.
#include <cmath>
#include <initializer_list>
#include <numbers>

#include "zelm/mat.h"
#include "zelm/math.h"
#include "zelm/mathRoots.h"

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kMaxDistance = 1e7;  // no point of the ellipse at this distance or beyond is accepted

// The map from a frame's coordinates to global ones, as a homogeneous matrix.
struct FrameMatrix {
    double m[9];

    FrameMatrix(double ox, double oy, double theta)
        : m{std::cos(theta), -std::sin(theta), ox, std::sin(theta), std::cos(theta), oy, 0.0, 0.0, 1.0} {}

    [[nodiscard]] Point2d operator*(const Point2d& p) const {
        const double homogeneous[3] = {p.x, p.y, 1.0};
        double mapped[3];
        zelmMatMul(3, 3, m, 3, 1, homogeneous, mapped);
        return {mapped[0], mapped[1]};
    }
};

FrameMatrix inverseFrameMatrix(double ox, double oy, double theta) {
    double inverseOx = 0.0;
    double inverseOy = 0.0;
    double inverseTheta = 0.0;
    zelmMathInvCoord(ox, oy, theta, &inverseOx, &inverseOy, &inverseTheta);
    return {inverseOx, inverseOy, inverseTheta};
}

// The sines of the angles t at which the line from (x, y), in the ellipse's frame, to (a cos t, b sin t) stands at
// right angles to the ellipse.
int32_t sinesOfNormals(double a, double b, double x, double y, double* sines) {
    const double k = b * b - a * a;
    const double ax = a * x;
    const double by = b * y;
    const double quartic[5] = {k * k, -2.0 * b * y * k, ax * ax + by * by - k * k, 2.0 * b * y * k, -(by * by)};
    return zelmMathQuarticRoots(quartic, sines);
}

struct Nearest {
    Point2d point;
    double distance;
};

}  // namespace

int32_t zelmMathGetDistFromPointToEllipse(double dCx, double dCy, double dA, double dB, double dTheta, double dPx,
                                          double dPy, double* dX, double* dY, double* dDistance) {
    const Point2d local = inverseFrameMatrix(dCx, dCy, dTheta) * Point2d{dPx, dPy};
    double sines[4];
    const int32_t count = sinesOfNormals(dA, dB, local.x, local.y, sines);
    if (count < 2) {
        return ZELM_ERR_DEGENERATE;
    }
    const FrameMatrix toGlobal(dCx, dCy, dTheta);
    Nearest nearest{{0.0, 0.0}, kMaxDistance};
    for (int32_t i = 0; i < count; ++i) {
        const double t1 = std::asin(sines[i]);  // not a number, and never the nearest, for a root beyond 1
        const double t2 = t1 >= 0.0 ? kPi - t1 : -kPi - t1;
        for (const double t : {t1, t2}) {
            const Point2d candidate = toGlobal * Point2d{dA * std::cos(t), dB * std::sin(t)};
            const double distance = zelmMathGetDistFromPointToPoint(candidate.x, candidate.y, dPx, dPy);
            if (distance < nearest.distance) {
                nearest = {candidate, distance};
            }
        }
    }
    if (!(nearest.distance < kMaxDistance)) {
        return ZELM_ERR_DEGENERATE;
    }
    *dX = nearest.point.x;
    *dY = nearest.point.y;
    *dDistance = nearest.distance;
    return ZELM_OK;
}
