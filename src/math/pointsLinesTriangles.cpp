// Distances of points, lines a*x + b*y + c = 0 in coefficient form, and areas of triangles.
#include <cmath>
#include <limits>
#include <numbers>

#include "mathDegenerate.h"
#include "zelm/math.h"

// Distances of points from points, lines and circles.

double zelmMathGetDistFromPointToPoint(double dX1, double dY1, double dX2, double dY2) {
    const double dx = dX2 - dX1;
    const double dy = dY2 - dY1;
    return std::sqrt(dx * dx + dy * dy);
}

double zelmMathGetDistFromPointToLine(double dA, double dB, double dC, double dX, double dY) {
    return std::fabs(dA * dX + dB * dY + dC) / std::sqrt(dA * dA + dB * dB);
}

double zelmMathGetDistAndCrossPointFromPointToLine(double dA, double dB, double dC, double dX, double dY, double* dFx,
                                                   double* dFy) {
    const double square = dA * dA + dB * dB;
    if (!zelm::isDivisor(square)) {
        return std::numeric_limits<double>::infinity();
    }
    *dFx = (dB * dB * dX - dA * dB * dY - dA * dC) / square;
    *dFy = (dA * dA * dY - dA * dB * dX - dB * dC) / square;
    return zelmMathGetDistFromPointToLine(dA, dB, dC, dX, dY);
}

double zelmMathGetDistFromPointToCircle(double dCx, double dCy, double dR, double dX, double dY, double* dPx,
                                        double* dPy) {
    const double angle = std::atan2(dY - dCy, dX - dCx);
    *dPx = dCx + dR * std::cos(angle);
    *dPy = dCy + dR * std::sin(angle);
    return zelmMathGetDistFromPointToPoint(dX, dY, *dPx, *dPy);
}

// Lines.

namespace {

constexpr double kPi = std::numbers::pi;

struct Direction {
    double v[2];
};

// The direction of a line's normal, as long as (a, b, c) scaled by the larger of a and b is far from the origin.
Direction footOfOrigin(double r, double q) {
    return {{r * std::cos(q), r * std::sin(q)}};
}

}  // namespace

double zelmMathCrossAngle(double dA1, double dB1, double dC1, double dA2, double dB2, double dC2) {
    double r1 = 0.0;
    double q1 = 0.0;
    double r2 = 0.0;
    double q2 = 0.0;
    zelmMathTransAbcToRq(dA1, dB1, dC1, &r1, &q1);
    zelmMathTransAbcToRq(dA2, dB2, dC2, &r2, &q2);
    double alpha = 0.0;
    if (zelmMathCalcAngle(2, footOfOrigin(r1, q1).v, footOfOrigin(r2, q2).v, &alpha) < 0 &&
        // A foot too close to the origin has no direction; that of the normal is the same line's.
        zelmMathCalcAngle(2, footOfOrigin(1.0, q1).v, footOfOrigin(1.0, q2).v, &alpha) < 0) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    const double beta = kPi - alpha;
    return beta <= kPi / 2.0 ? beta : kPi - beta;
}

int32_t zelmMathCrossPoint(double dA1, double dB1, double dC1, double dA2, double dB2, double dC2, double* dX,
                           double* dY) {
    const double det = dB1 * dA2 - dA1 * dB2;
    if (!zelm::isDivisor(std::fabs(det))) {
        return ZELM_ERR_DEGENERATE;
    }
    *dX = (dB2 * dC1 - dB1 * dC2) / det;
    *dY = (dA1 * dC2 - dA2 * dC1) / det;
    return ZELM_OK;
}

int32_t zelmMathGetLineFrom2Points(double dX1, double dY1, double dX2, double dY2, double* dA, double* dB, double* dC) {
    const double length = zelmMathGetDistFromPointToPoint(dX1, dY1, dX2, dY2);
    if (!zelm::isDivisor(length)) {
        return ZELM_ERR_DEGENERATE;
    }
    *dA = (dY2 - dY1) / length;
    *dB = (dX1 - dX2) / length;
    *dC = ((dX2 - dX1) * dY1 - dX1 * (dY2 - dY1)) / length;
    return ZELM_OK;
}

void zelmMathGetOrthogonalLineFromLineAndPoint(double dA, double dB, double /*dC*/, double dX, double dY, double* dAOut,
                                               double* dBOut, double* dCOut) {
    *dAOut = dB;
    *dBOut = -dA;
    *dCOut = dA * dY - dB * dX;
}

void zelmMathTransAbcToRq(double dA, double dB, double dC, double* dR, double* dQ) {
    const double m = std::fabs(dA) < std::fabs(dB) ? dB : dA;
    *dR = -dC / m;
    *dQ = std::atan2(dB / m, dA / m);
}

// Triangles.

double zelmMathSignAreaTriangle(double dX1, double dY1, double dX2, double dY2, double dX3, double dY3) {
    return ((dY3 - dY1) * (dX2 - dX1) - (dX3 - dX1) * (dY2 - dY1)) * 0.5;
}

double zelmMathAreaTriangle(double dX1, double dY1, double dX2, double dY2, double dX3, double dY3) {
    return std::fabs(zelmMathSignAreaTriangle(dX1, dY1, dX2, dY2, dX3, dY3));
}
