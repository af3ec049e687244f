/// @file
/// Numeric helpers: vectors, angles, planar frames, lines in coefficient form, statistics.
///
/// Arguments: flags and counts first, then doubles by value, then outputs. Angles are radians unless a flag says
/// degrees. Pointers are not checked. Outputs of functions that return a status are written only on success. All
/// functions are pure, allocate nothing and are reentrant.
///
/// A length, determinant or squared length of 1e-9 or less is degenerate in this family; so is one that is infinite or
/// not a number. Functions that return a value have no guards beyond those stated: a division by zero gives a value
/// that is not finite. Input that is not finite never makes a function hang.
#ifndef ZELM_MATH_H
#define ZELM_MATH_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

// Vectors and statistics

/// The sum of u[i] * v[i], from 0.0 in increasing i; 0.0 for iN below 1.
/// @param iN  [in] entries
/// @param daU [in] iN
/// @param daV [in] iN
/// @return the inner product
ZELM_API double zelmMathCalcInnerProduct(int32_t iN, const double* daU, const double* daV);

/// Out = u x v for vectors of 3; Out may be u or v.
/// @param daU   [in]  3
/// @param daV   [in]  3
/// @param daOut [out] 3
ZELM_API void zelmMathCalcOuterProduct(const double* daU, const double* daV, double* daOut);

/// The Euclidean length of v; 0.0 for iN below 1. Squares of entries beyond 1e154 overflow.
/// @param iN  [in] entries
/// @param daV [in] iN
/// @return the length
ZELM_API double zelmMathCalcNorm(int32_t iN, const double* daV);

/// The direction of a point from the origin, atan2(y, x), in [-pi, pi].
/// @param tP [in] the point
/// @return the direction in radians
ZELM_API double zelmMathCalcArgument(const Point2d* tP);

/// Divides a vector by its length.
/// @param iN  [in]     entries
/// @param daV [in,out] iN, unchanged on failure
/// @return ZELM_OK, or ZELM_ERR_DEGENERATE if the length is degenerate (or iN below 1)
ZELM_API int32_t zelmMathNormalization(int32_t iN, double* daV);

/// The angle between two vectors.
/// @param iN     [in]  entries
/// @param daU    [in]  iN
/// @param daV    [in]  iN
/// @param dAngle [out] in [0, pi]: the arc cosine of u.v / (|u| |v|) clamped to [-1, 1]. Near 0 and pi its resolution
///                     is about 1e-8
/// @return ZELM_OK, or ZELM_ERR_DEGENERATE if a length is degenerate
ZELM_API int32_t zelmMathCalcAngle(int32_t iN, const double* daU, const double* daV, double* dAngle);

/// Mean, variance and standard deviation of a sample, in two passes.
/// @param iN         [in]  values, at least 2
/// @param daData     [in]  iN
/// @param dMean      [out] sum / iN
/// @param dVariance  [out] sum of (x - mean)^2 / iN (`docs/decisions.md#population-variance`)
/// @param dDeviation [out] square root of the variance
/// @return ZELM_OK, or ZELM_ERR_DEGENERATE if iN is below 2
ZELM_API int32_t zelmMathStat(int32_t iN, const double* daData, double* dMean, double* dVariance, double* dDeviation);

/// The area of a triangle, never negative.
/// @param dX1, dY1, dX2, dY2, dX3, dY3 [in] the corners
/// @return the area
ZELM_API double zelmMathAreaTriangle(double dX1, double dY1, double dX2, double dY2, double dX3, double dY3);

/// The signed area ((y3-y1)(x2-x1) - (x3-x1)(y2-y1)) / 2: positive when the corners run counter-clockwise with y
/// upwards, that is clockwise on the screen.
/// @param dX1, dY1, dX2, dY2, dX3, dY3 [in] the corners
/// @return the signed area
ZELM_API double zelmMathSignAreaTriangle(double dX1, double dY1, double dX2, double dY2, double dX3, double dY3);

/// The inverse of a 3 x 3 matrix by its adjugate. Despite its name it assumes no symmetry.
/// @param daM   [in]  3 x 3, row-major
/// @param daOut [out] 3 x 3, may be M. Left as it is, without any report, if the determinant is degenerate
ZELM_API void zelmMathInvMatrixOfSyn3X3(const double* daM, double* daOut);

// Planar frames. A frame (ox, oy, theta) has its origin at (ox, oy) and its x axis at the angle theta.

/// Turns (x, y) about (cx, cy) by theta.
/// @param dCx, dCy [in] the centre
/// @param dTheta [in] the angle in radians
/// @param dX, dY [in] the point
/// @param dXOut, dYOut [out] the turned point
ZELM_API void zelmMathRotatePoint(double dCx, double dCy, double dTheta, double dX, double dY, double* dXOut,
                                  double* dYOut);

/// The frame whose x axis points from (x1, y1) towards (x2, y2).
/// @param iMode [in] 0: the origin is the midpoint of the two; otherwise (x1, y1)
/// @param dX1, dY1 [in] the first point
/// @param dX2, dY2 [in] the second point
/// @param dOx, dOy [out] the origin
/// @param dTheta [out] the direction of the x axis in radians
ZELM_API void zelmMathCreateTransParam(int32_t iMode, double dX1, double dY1, double dX2, double dY2, double* dOx,
                                       double* dOy, double* dTheta);

/// Local to global: (ox + x cos theta - y sin theta, oy + x sin theta + y cos theta).
/// @param dOx, dOy, dTheta [in] the frame
/// @param dX, dY [in] the point in the frame
/// @param dXOut, dYOut [out] the point outside
ZELM_API void zelmMathTransCoordOfPoint(double dOx, double dOy, double dTheta, double dX, double dY, double* dXOut,
                                        double* dYOut);

/// The same as zelmMathTransCoordOfPoint.
/// @param dOx, dOy, dTheta [in] the frame
/// @param dX, dY [in] the point in the frame
/// @param dXOut, dYOut [out] the point outside
ZELM_API void zelmMathTransCoord(double dOx, double dOy, double dTheta, double dX, double dY, double* dXOut,
                                 double* dYOut);

/// Global to local, the inverse of zelmMathTransCoordOfPoint.
/// @param dOx, dOy, dTheta [in] the frame
/// @param dX, dY [in] the point outside
/// @param dXOut, dYOut [out] the point in the frame
ZELM_API void zelmMathInvTransCoordOfPoint(double dOx, double dOy, double dTheta, double dX, double dY, double* dXOut,
                                           double* dYOut);

/// The inverse frame: its local-to-global transform undoes that of the given frame. Its angle is -theta, not wrapped.
/// @param dOx, dOy, dTheta [in] the frame
/// @param dOxOut, dOyOut, dThetaOut [out] the inverse frame
ZELM_API void zelmMathInvCoord(double dOx, double dOy, double dTheta, double* dOxOut, double* dOyOut,
                               double* dThetaOut);

/// Frame 2, given within frame 1, as a global frame. Its angle is zelmMathAddAngle(1, 0, theta1, theta2).
/// @param dOx1, dOy1, dTheta1 [in] frame 1
/// @param dOx2, dOy2, dTheta2 [in] frame 2 within frame 1
/// @param dOx, dOy, dTheta [out] frame 2 as a global frame
ZELM_API void zelmMathComposeCoord(double dOx1, double dOy1, double dTheta1, double dOx2, double dOy2, double dTheta2,
                                   double* dOx, double* dOy, double* dTheta);

// Angles. iFull selects the period 2h: a full turn when non-zero, a half turn (undirected lines) when zero; iDegrees
// the unit. So h is 180 or pi, or 90 or pi/2.
//
// Wrapping steps by whole periods, one at a time. Angles of more than 65536 periods are first reduced by an exact
// remainder, so that every finite angle is wrapped at once; angles that are not finite give NaN.

/// The sum of two angles, wrapped.
///
/// The first operand is wrapped into (-h, h], the second into [-h, h], then their sum into [-h, h]. So in
/// degrees (-180, 0) gives 180, (0, -180) gives -180 (`docs/decisions.md#add-angle-end`).
/// @param iFull [in] non-zero: period of a full turn; zero: of a half turn
/// @param iDegrees [in] non-zero: degrees; zero: radians
/// @param dA, dB [in] the operands
/// @return the sum in [-h, h]; NaN if an operand is not finite
ZELM_API double zelmMathAddAngle(int32_t iFull, int32_t iDegrees, double dA, double dB);

/// An angle wrapped into (-h, h]; NaN if it is not finite.
/// @param iFull [in] non-zero: period of a full turn; zero: of a half turn
/// @param iDegrees [in] non-zero: degrees; zero: radians
/// @param dA [in] the angle
/// @return the wrapped angle
ZELM_API double zelmMathPrimeAngle(int32_t iFull, int32_t iDegrees, double dA);

/// Whether two directions (radians, period 2 pi) differ by at most the tolerance.
/// @param dA, dB [in] the directions in radians
/// @param dTolerance [in] largest difference in radians
/// @return 1 or 0; 0 if an argument is not a number or an angle not finite
ZELM_API int32_t zelmMathCheckAngle(double dA, double dB, double dTolerance);

/// The acute angle between two lines.
///
/// Taken between the feet of the perpendiculars from the origin, (r, q) of zelmMathTransAbcToRq; where a foot is within
/// 1e-9 of the origin, between the normals, which is the same angle.
/// @param dA1, dB1, dC1 [in] the first line
/// @param dA2, dB2, dC2 [in] the second line
/// @return in [0, pi/2]; NaN if a line has a = b = 0 or a coefficient that is not a number
ZELM_API double zelmMathCrossAngle(double dA1, double dB1, double dC1, double dA2, double dB2, double dC2);

// Points and lines a*x + b*y + c = 0, which need not be normalised.

/// The distance of two points.
/// @param dX1, dY1 [in] the first point
/// @param dX2, dY2 [in] the second point
/// @return the distance
ZELM_API double zelmMathGetDistFromPointToPoint(double dX1, double dY1, double dX2, double dY2);

/// The distance |a x + b y + c| / sqrt(a^2 + b^2) of a point from a line; not finite for a = b = 0.
/// @param dA, dB, dC [in] the line
/// @param dX, dY [in] the point
/// @return the distance
ZELM_API double zelmMathGetDistFromPointToLine(double dA, double dB, double dC, double dX, double dY);

/// The distance of a point from a line, and the foot of its perpendicular.
/// @param dA, dB, dC [in] the line
/// @param dX, dY [in] the point
/// @param dFx [out] the foot, x; not written if a^2 + b^2 is degenerate
/// @param dFy [out] the foot, y; likewise
/// @return the distance; positive infinity if a^2 + b^2 is degenerate
ZELM_API double zelmMathGetDistAndCrossPointFromPointToLine(double dA, double dB, double dC, double dX, double dY,
                                                            double* dFx, double* dFy);

/// The point where two lines cross.
/// @param dA1, dB1, dC1 [in] the first line
/// @param dA2, dB2, dC2 [in] the second line
/// @param dX, dY [out] the crossing
/// @return ZELM_OK, or ZELM_ERR_DEGENERATE, nothing written, if b1 a2 - a1 b2 is degenerate (parallel lines). The
///         coefficients are not normalised first
ZELM_API int32_t zelmMathCrossPoint(double dA1, double dB1, double dC1, double dA2, double dB2, double dC2, double* dX,
                                    double* dY);

/// The normalised line through two points, its normal ((y2 - y1), (x1 - x2)) / distance: the opposite of the normal
/// that the Clp2d family gives (`docs/decisions.md#line-normals`).
/// @param dX1, dY1 [in] the first point
/// @param dX2, dY2 [in] the second point
/// @param dA, dB, dC [out] the line
/// @return ZELM_OK, or ZELM_ERR_DEGENERATE, nothing written, if the distance is degenerate
ZELM_API int32_t zelmMathGetLineFrom2Points(double dX1, double dY1, double dX2, double dY2, double* dA, double* dB,
                                            double* dC);

/// The line through a point at right angles to a line: (b, -a, a y - b x), not normalised. c is not used.
/// @param dA, dB, dC [in] the line
/// @param dX, dY [in] the point
/// @param dAOut, dBOut, dCOut [out] the line at right angles
ZELM_API void zelmMathGetOrthogonalLineFromLineAndPoint(double dA, double dB, double dC, double dX, double dY,
                                                        double* dAOut, double* dBOut, double* dCOut);

/// The line in the form (r, q): with m the larger of a and b in magnitude (a on a tie), sign kept, r = -c / m and q the
/// direction atan2(b / m, a / m) of the normal. r is the distance from the origin times sqrt(a^2 + b^2) / |m|, with a
/// sign. Not finite for a = b = 0.
/// @param dA, dB, dC [in] the line
/// @param dR [out] r
/// @param dQ [out] q in radians
ZELM_API void zelmMathTransAbcToRq(double dA, double dB, double dC, double* dR, double* dQ);

/// The distance of a point from a circle, and the circle's nearest point. From the centre that is the point in the
/// direction of the x axis.
/// @param dCx, dCy [in] the centre
/// @param dR [in] the radius
/// @param dX, dY [in] the point
/// @param dPx, dPy [out] the nearest point of the circle
/// @return the distance
ZELM_API double zelmMathGetDistFromPointToCircle(double dCx, double dCy, double dR, double dX, double dY, double* dPx,
                                                 double* dPy);

/// The extremum of a x^2 + b x + c.
/// @param dA, dB, dC [in] the coefficients a, b, c
/// @param dX [out] its place b / (-2 a); not finite for a = 0
/// @return the value there
ZELM_API double zelmMathExtremumOfQuadraticCurves(double dA, double dB, double dC, double* dX);

/// The stationary point of a x^2 + b x y + c y^2 + d x + e y + f.
/// @param dA, dB, dC, dD, dE, dF [in] the coefficients a to f
/// @param dX [out] (2 c d - b e) / (b^2 - 4 a c); not finite for b^2 = 4 a c
/// @param dY [out] (2 a e - b d) / (b^2 - 4 a c); likewise
/// @return the value there
ZELM_API double zelmMathExtremumOfQuadraticSurface(double dA, double dB, double dC, double dD, double dE, double dF,
                                                   double* dX, double* dY);

ZELM_END_DECLS

#endif
