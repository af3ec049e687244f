// Rigid transforms of the plane, given as a frame (origin x, origin y, angle of its x axis).
#include <cmath>

#include "zelm/math.h"

void zelmMathRotatePoint(double dCx, double dCy, double dTheta, double dX, double dY, double* dXOut, double* dYOut) {
    const double c = std::cos(dTheta);
    const double s = std::sin(dTheta);
    *dXOut = (dX - dCx) * c - (dY - dCy) * s + dCx;
    *dYOut = (dY - dCy) * c + (dX - dCx) * s + dCy;
}

void zelmMathCreateTransParam(int32_t iMode, double dX1, double dY1, double dX2, double dY2, double* dOx, double* dOy,
                              double* dTheta) {
    *dOx = iMode != 0 ? dX1 : (dX1 + dX2) * 0.5;
    *dOy = iMode != 0 ? dY1 : (dY1 + dY2) * 0.5;
    *dTheta = std::atan2(dY2 - dY1, dX2 - dX1);
}

void zelmMathTransCoordOfPoint(double dOx, double dOy, double dTheta, double dX, double dY, double* dXOut,
                               double* dYOut) {
    const double c = std::cos(dTheta);
    const double s = std::sin(dTheta);
    *dXOut = c * dX - s * dY + dOx;
    *dYOut = c * dY + s * dX + dOy;
}

void zelmMathTransCoord(double dOx, double dOy, double dTheta, double dX, double dY, double* dXOut, double* dYOut) {
    zelmMathTransCoordOfPoint(dOx, dOy, dTheta, dX, dY, dXOut, dYOut);
}

void zelmMathInvTransCoordOfPoint(double dOx, double dOy, double dTheta, double dX, double dY, double* dXOut,
                                  double* dYOut) {
    const double c = std::cos(dTheta);
    const double s = std::sin(dTheta);
    *dXOut = c * (dX - dOx) + s * (dY - dOy);
    *dYOut = -s * (dX - dOx) + c * (dY - dOy);
}

void zelmMathInvCoord(double dOx, double dOy, double dTheta, double* dOxOut, double* dOyOut, double* dThetaOut) {
    const double c = std::cos(dTheta);
    const double s = std::sin(dTheta);
    *dOxOut = -(c * dOx) - s * dOy;
    *dOyOut = s * dOx - c * dOy;
    *dThetaOut = -dTheta;
}

void zelmMathComposeCoord(double dOx1, double dOy1, double dTheta1, double dOx2, double dOy2, double dTheta2,
                          double* dOx, double* dOy, double* dTheta) {
    zelmMathTransCoordOfPoint(dOx1, dOy1, dTheta1, dOx2, dOy2, dOx, dOy);
    *dTheta = zelmMathAddAngle(1, 0, dTheta1, dTheta2);
}
