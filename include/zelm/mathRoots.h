/// @file
/// Numeric helpers: real roots of polynomials up to degree 4 in closed form, and the distance from a point to an
/// ellipse, which is built on them.
///
/// Coefficients run from the highest power down. The root finders never fail: they write the roots and return their
/// number; entries beyond that number keep their contents unless said otherwise. Pointers are not checked; outputs may
/// be inputs. All functions are pure, run in constant time, allocate nothing and are reentrant. Input that is not
/// finite gives no roots or roots that are not numbers, never a hang.
///
/// Closed forms are fast but not uniformly accurate. Each function states what it loses; where that matters, polish a
/// root by Newton steps.
#ifndef ZELM_MATH_ROOTS_H
#define ZELM_MATH_ROOTS_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// The real roots of a x^2 + b x + c, without cancellation between b and the root of the discriminant.
///
/// Order of the roots: 0 and -b/a where c is 0 (0 alone where b is, too); otherwise q/a and c/q with
/// q = -(b + sign(b) sqrt(D)) / 2, the larger in magnitude first (sign(0) = +1). A double root (D exactly 0) is
/// reported once. Where a is 0 (or not a number) the root of b x + c; where b is 0, too, none.
///
/// Roots closer to each other than about 1e-8 of their size may come out as one, as none, or apart by as much.
/// Coefficients beyond 1e154 overflow D; a D that is not a number means no roots. See `docs/limits.md`.
/// @param daCoef  [in]  a, b, c
/// @param daRoots [out] 2
/// @return 0, 1 or 2
ZELM_API int32_t zelmMathQuadraticRoots(const double* daCoef, double* daRoots);

/// The real roots of a x^3 + b x^2 + c x + d, by Cardano's and Viete's formulas.
///
/// With p = b/a, Q = (p^2 - 3 c/a) / 9 and R the usual cubic form: where R^2 <= Q^3 three roots
/// -2 sqrt(Q) cos((phi + 2 pi k) / 3) - p/3 for k = 0, 1, 2 and phi = arccos(R / sqrt(Q^3)): the smallest, the largest,
/// the middle one. Roots that coincide are reported as often as they occur; where Q^3 is 0 in this case (a triple
/// root), three times -p/3. Otherwise one root, and the other two entries are set to 0.0.
///
/// |a| of 1e-9 or less, or not finite, means no roots: the polynomial is not reduced to a quadratic, nor is it scaled.
///
/// The value of the polynomial at a root is within 5e-14 |a| s^3 of 0, s being about the size of the largest root, for
/// s between 1e-45 and 1e50. Two roots closer than about 1e-7 s, or three closer than about 1e-4 s, may come out as one
/// or the other way round. See `docs/limits.md`.
/// @param daCoef  [in]  a, b, c, d
/// @param daRoots [out] 3, all written unless the result is 0
/// @return 0, 1 or 3
ZELM_API int32_t zelmMathCubicRoots(const double* daCoef, double* daRoots);

/// The real roots of a x^4 + b x^3 + c x^2 + d x + e, by Ferrari's method.
///
/// With y = x + b/(4a) the quartic is y^4 + p y^2 + q y + r. From the largest real root z of its resolvent cubic
/// z^3 - p z^2 - 4 r z + (4 p r - q^2) follow, with S = sqrt(z - p) and t = q/(2 S), the factors y^2 - S y + (z/2 + t)
/// and y^2 + S y + (z/2 - t). The roots of the first factor come first, each pair in the order of
/// zelmMathQuadraticRoots; a double root of one factor is reported once.
///
/// |a| of 1e-9 or less, or not finite, means no roots. So does z <= p: where q is exactly 0 and r < 0, the two real
/// roots are not found, as of x^4 - 1 (`docs/decisions.md#quartic-even`).
///
/// Four real roots are good to 1e-14 |a| s^4 in the polynomial's value, s being about the size of the largest root; two
/// real roots beside a close complex pair, and roots close to each other, lose digits or are missed. See
/// `docs/limits.md`.
/// @param daCoef  [in]  a, b, c, d, e
/// @param daRoots [out] 4
/// @return 0 to 4
ZELM_API int32_t zelmMathQuarticRoots(const double* daCoef, double* daRoots);

/// The distance from a point to an ellipse, and the ellipse's nearest point.
///
/// Let (X, Y) be the point in the ellipse's own frame and k = b^2 - a^2. The ellipse stands at right angles to the line
/// to the point where the sine of its parameter is a root of a quartic, solved by zelmMathQuarticRoots; of the
/// ellipse's points at these sines the nearest is taken, the first on a tie.
///
/// The quartic's limits are those of this function: circles and nearly circular ellipses are refused (use
/// zelmMathGetDistFromPointToCircle), points on and close to an own axis lose digits or are refused, far ones lose
/// digits of the nearest point. `docs/limits.md` says where; elsewhere the distance is right to a few roundings.
/// @param dCx, dCy   [in]  centre
/// @param dA         [in]  semi-axis along the own x axis; need not be the longer one
/// @param dB         [in]  semi-axis along the own y axis
/// @param dTheta     [in]  angle of the own x axis
/// @param dPx, dPy   [in]  point
/// @param dX, dY     [out] nearest point of the ellipse
/// @param dDistance  [out] its distance from the point
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when no nearest point is found: the quartic has fewer than 2 roots, or none of
///         them gives a point nearer than 1e7
ZELM_API int32_t zelmMathGetDistFromPointToEllipse(double dCx, double dCy, double dA, double dB, double dTheta,
                                                   double dPx, double dPy, double* dX, double* dY, double* dDistance);

ZELM_END_DECLS

#endif
