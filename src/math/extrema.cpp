// Stationary points of quadratic curves and surfaces.
#include "zelm/math.h"

double zelmMathExtremumOfQuadraticCurves(double dA, double dB, double dC, double* dX) {
    const double x = dB / (-2.0 * dA);
    *dX = x;
    return dA * x * x + dB * x + dC;
}

double zelmMathExtremumOfQuadraticSurface(double dA, double dB, double dC, double dD, double dE, double dF, double* dX,
                                          double* dY) {
    const double discriminant = dB * dB - 4.0 * dA * dC;
    const double x = (2.0 * dC * dD - dB * dE) / discriminant;
    const double y = (2.0 * dA * dE - dB * dD) / discriminant;
    *dX = x;
    *dY = y;
    return dA * x * x + dB * x * y + dC * y * y + dD * x + dE * y + dF;
}
