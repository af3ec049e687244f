/// Numeric helpers: vectors, angles, planar frames, lines in coefficient form, statistics.
#ifndef ZELM_MATH_H
#define ZELM_MATH_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

ZELM_API double zelmMathCalcInnerProduct(int32_t iN, const double* daU, const double* daV);
ZELM_API void zelmMathCalcOuterProduct(const double* daU, const double* daV, double* daOut);
ZELM_API double zelmMathCalcNorm(int32_t iN, const double* daV);
ZELM_API double zelmMathCalcArgument(const Point2d* tP);
ZELM_API int32_t zelmMathNormalization(int32_t iN, double* daV);
ZELM_API int32_t zelmMathCalcAngle(int32_t iN, const double* daU, const double* daV, double* dAngle);
ZELM_API int32_t zelmMathStat(int32_t iN, const double* daData, double* dMean, double* dVariance, double* dDeviation);
ZELM_API double zelmMathAreaTriangle(double dX1, double dY1, double dX2, double dY2, double dX3, double dY3);
ZELM_API double zelmMathSignAreaTriangle(double dX1, double dY1, double dX2, double dY2, double dX3, double dY3);
ZELM_API void zelmMathInvMatrixOfSyn3X3(const double* daM, double* daOut);

ZELM_API void zelmMathRotatePoint(double dCx, double dCy, double dTheta, double dX, double dY, double* dXOut,
                                  double* dYOut);
ZELM_API void zelmMathCreateTransParam(int32_t iMode, double dX1, double dY1, double dX2, double dY2, double* dOx,
                                       double* dOy, double* dTheta);
ZELM_API void zelmMathTransCoordOfPoint(double dOx, double dOy, double dTheta, double dX, double dY, double* dXOut,
                                        double* dYOut);
ZELM_API void zelmMathTransCoord(double dOx, double dOy, double dTheta, double dX, double dY, double* dXOut,
                                 double* dYOut);
ZELM_API void zelmMathInvTransCoordOfPoint(double dOx, double dOy, double dTheta, double dX, double dY, double* dXOut,
                                           double* dYOut);
ZELM_API void zelmMathInvCoord(double dOx, double dOy, double dTheta, double* dOxOut, double* dOyOut,
                               double* dThetaOut);
ZELM_API void zelmMathComposeCoord(double dOx1, double dOy1, double dTheta1, double dOx2, double dOy2, double dTheta2,
                                   double* dOx, double* dOy, double* dTheta);

ZELM_API double zelmMathAddAngle(int32_t iFull, int32_t iDegrees, double dA, double dB);
ZELM_API double zelmMathPrimeAngle(int32_t iFull, int32_t iDegrees, double dA);
ZELM_API int32_t zelmMathCheckAngle(double dA, double dB, double dTolerance);
ZELM_API double zelmMathCrossAngle(double dA1, double dB1, double dC1, double dA2, double dB2, double dC2);

ZELM_API double zelmMathGetDistFromPointToPoint(double dX1, double dY1, double dX2, double dY2);
ZELM_API double zelmMathGetDistFromPointToLine(double dA, double dB, double dC, double dX, double dY);
ZELM_API double zelmMathGetDistAndCrossPointFromPointToLine(double dA, double dB, double dC, double dX, double dY,
                                                            double* dFx, double* dFy);
ZELM_API int32_t zelmMathCrossPoint(double dA1, double dB1, double dC1, double dA2, double dB2, double dC2, double* dX,
                                    double* dY);
ZELM_API int32_t zelmMathGetLineFrom2Points(double dX1, double dY1, double dX2, double dY2, double* dA, double* dB,
                                            double* dC);
ZELM_API void zelmMathGetOrthogonalLineFromLineAndPoint(double dA, double dB, double dC, double dX, double dY,
                                                        double* dAOut, double* dBOut, double* dCOut);
ZELM_API void zelmMathTransAbcToRq(double dA, double dB, double dC, double* dR, double* dQ);
ZELM_API double zelmMathGetDistFromPointToCircle(double dCx, double dCy, double dR, double dX, double dY, double* dPx,
                                                 double* dPy);
ZELM_API double zelmMathExtremumOfQuadraticCurves(double dA, double dB, double dC, double* dX);
ZELM_API double zelmMathExtremumOfQuadraticSurface(double dA, double dB, double dC, double dD, double dE, double dF,
                                                   double* dX, double* dY);

ZELM_END_DECLS

#endif
