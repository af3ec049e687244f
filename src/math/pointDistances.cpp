// Distances of points from points, lines and circles.
#include <cmath>
#include <limits>

#include "mathDegenerate.h"
#include "zelm/math.h"

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
