/// @file
/// Robust least-squares fits of means, lines, planes, conics, ellipsoids and cones.
///
/// All fits take the same five arguments. The points are moved into a normalised frame first (centred on their mean,
/// scaled so that their mean distance from it is sqrt(2), in one, two and three dimensions alike), so that results
/// move, turn and scale with the points. A plain fit then weighs all points equally.
///
/// A robust fit re-weights the points from their residuals r and fits again (iteratively re-weighted least squares,
/// Holland and Welsch 1977) with Tukey's biweight (Beaton and Tukey 1974): w = (1 - (r / k)^2)^2 for r < k, else 0,
/// with the cut-off k = dThreshold * 1.4826 * median r; 1.4826 * median r estimates the standard deviation of normal
/// residuals. It ends when the weights change by less than 0.02 of their sum (the last weights are then not used for
/// another fit), when k is below 1e-12 of the normalised frame (all residuals vanish), or after 20 re-weighted fits,
/// which is success as well. With exactly the least number of points nothing is re-weighted. A threshold of 3.5 costs
/// 8 % of the standard deviation that a plain fit of clean points has, about 16 % with only 20 points; smaller ones
/// cost more and may drift or reject all points. The start is the plain fit, so outliers may be far or many but not
/// both: a tenth of the points off by 60 standard deviations is handled, outliers farther off than the extent of the
/// points are not in general.
///
/// Arguments that all fits share:
///
/// @param iN         [in]  number of points
/// @param points     [in]  the points; only read
/// @param iRobust    [in]  0: plain fit; 1: robust fit
/// @param dThreshold [in]  cut-off in standard deviations of the residuals; > 0 for a robust fit, ignored by a plain
///         one
/// @param result     [out] written on success only (but see zelmFitCone()); must not overlap the points
///
/// Statuses that all fits share:
///
/// @return ZELM_OK; ZELM_ERR_PARAM (nothing allocated): fewer points than the least number, NULL points or result,
///     iRobust other than 0 and 1, a robust fit with a threshold that is not > 0; ZELM_ERR_MEMORY;
///     ZELM_ERR_FIT_DATA: every point was rejected, or a robust fit met residuals that are not numbers;
///     ZELM_ERR_EIGEN_NOT_CONVERGED (not of means and circles): points that are not finite; of lines and planes also
///     points that all coincide, or of which only coinciding ones keep a weight
///
/// Points that are not finite, or so large that their squares are not, end in one of these statuses or in ZELM_OK with
/// results that mean nothing. Memory: a few doubles a point, freed before return. No shared state: calls on different
/// results may run at the same time. Time: O(iN) a step.
#ifndef ZELM_FIT_H
#define ZELM_FIT_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// Mean of numbers; residual |x - mean|. At least 2. Numbers that all coincide are their own mean.
///
/// @param iN         [in]  count, >= 2
/// @param daPoints   [in]  iN doubles
/// @param iRobust    [in]  0 or 1, see above
/// @param dThreshold [in]  see above
/// @param dResult    [out] the mean
/// @return the statuses that all fits share
ZELM_API int32_t zelmFitMean1dim(int32_t iN, const double* daPoints, int32_t iRobust, double dThreshold,
                                 double* dResult);

/// Mean point in the plane; residual: distance from the mean. At least 2 points.
///
/// @param iN         [in]  count, >= 2
/// @param taPoints   [in]  iN points
/// @param iRobust    [in]  0 or 1, see above
/// @param dThreshold [in]  see above
/// @param tResult    [out] the mean
/// @return the statuses that all fits share
ZELM_API int32_t zelmFitMean2dim(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold,
                                 Point2d* tResult);

/// Mean point in space; residual: distance from the mean. At least 2 points.
///
/// @param iN         [in]  count, >= 2
/// @param taPoints   [in]  iN points
/// @param iRobust    [in]  0 or 1, see above
/// @param dThreshold [in]  see above
/// @param tResult    [out] the mean
/// @return the statuses that all fits share
ZELM_API int32_t zelmFitMean3dim(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold,
                                 Point3d* tResult);

/// Line in the plane by total least squares (Pearson 1901): the perpendicular distances count, so no slope is special.
/// At least 2 points. A plain fit reaches the Cramér-Rao bound. Points that all coincide have no direction and end in
/// ZELM_ERR_EIGEN_NOT_CONVERGED; where the rounding of their mean sets them apart from it, a line through them of
/// arbitrary direction may come out.
///
/// @param iN         [in]  count, >= 2
/// @param taPoints   [in]  iN points
/// @param iRobust    [in]  0 or 1, see above
/// @param dThreshold [in]  see above
/// @param tResult    [out] a*x + b*y + c = 0 with a^2 + b^2 = 1; which of the two signs is not defined
/// @return the statuses that all fits share
ZELM_API int32_t zelmFitLine(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold, Line2d* tResult);

/// Line in space by total least squares (Pearson 1901). At least 2 points; points that all coincide as in
/// zelmFitLine().
///
/// @param iN         [in]  count, >= 2
/// @param taPoints   [in]  iN points
/// @param iRobust    [in]  0 or 1, see above
/// @param dThreshold [in]  see above
/// @param daResult   [out] 6 doubles: the weighted centroid of the points, then the unit direction, of either sign
/// @return the statuses that all fits share
ZELM_API int32_t zelmFitLineIn3d(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold,
                                 double* daResult);

/// Plane by total least squares (Pearson 1901). At least 3 points. Points on one line give a plane through it,
/// points that all coincide what they give in zelmFitLine().
///
/// @param iN         [in]  count, >= 3
/// @param taPoints   [in]  iN points
/// @param iRobust    [in]  0 or 1, see above
/// @param dThreshold [in]  see above
/// @param daResult   [out] 4 doubles: a*x + b*y + c*z + d = 0 with (a, b, c) a unit vector of either sign
/// @return the statuses that all fits share
ZELM_API int32_t zelmFitPlane(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold,
                              double* daResult);

/// Ellipse by direct least squares with the constraint 4AC - B^2 > 0 (Fitzgibbon, Pilu and Fisher, IEEE Trans. PAMI 21,
/// 1999); residual: the algebraic distance. At least 5 points.
///
/// On the full outline of a dot the centre reaches the Cramér-Rao bound to a few percent without significant bias. On a
/// short arc ellipses come out too small, as of every fit by algebraic distances. Five points, or more that lie exactly
/// on a conic (an eigenvalue of the scatter matrix is below 1e-12), give that conic if it is an ellipse. With noise
/// some ellipse fits best, whatever the points look like: only points that lie on a hyperbola to about a millionth of
/// their extent are refused. Points exactly on a parabola or on a line, or that coincide, end in a failure or in
/// numbers that mean nothing.
///
/// @param iN         [in]  count, >= 5
/// @param taPoints   [in]  iN points
/// @param iRobust    [in]  0 or 1, see above
/// @param dThreshold [in]  see above
/// @param tResult    [out] the ellipse, a >= b; the angle of a circle is arbitrary, and the sign of a quarter turn is
///     that of the eigenvector
/// @return the statuses that all fits share; ZELM_ERR_FIT_DATA also when a robust fit leaves fewer than 5 points with
///     weight; ZELM_ERR_FIT_NOT_ELLIPSE: the best conic is no ellipse; ZELM_ERR_SINGULAR: degenerate points
ZELM_API int32_t zelmFitEllipse(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold,
                                Ellipse2d* tResult);

/// The ellipse of zelmFitEllipse() by its coefficients.
///
/// They are divided by the norm that they have in the normalised frame, so their own norm is in general not 1
/// (`docs/decisions.md#conic-norm`).
///
/// @param iN         [in]  count, >= 5
/// @param taPoints   [in]  iN points
/// @param iRobust    [in]  0 or 1, see above
/// @param dThreshold [in]  see above
/// @param daResult   [out] 6 doubles A, B, C, D, E, F: A*x^2 + B*x*y + C*y^2 + D*x + E*y + F = 0; either sign
/// @return as zelmFitEllipse()
ZELM_API int32_t zelmFitEllipseC(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold,
                                 double* daResult);

/// Conic of any kind: the coefficients that have unit norm in the normalised frame and the least algebraic distance
/// there (Bookstein, Computer Graphics and Image Processing 9, 1979, compares such norms). At least 5 points.
///
/// @param iN         [in]  count, >= 5
/// @param taPoints   [in]  iN points
/// @param iRobust    [in]  0 or 1, see above
/// @param dThreshold [in]  see above
/// @param daResult   [out] 6 doubles, as of zelmFitEllipseC()
/// @return the statuses that all fits share; ZELM_ERR_FIT_DATA also when a robust fit leaves fewer than 5 points with
///     weight
ZELM_API int32_t zelmFitConics(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold,
                               double* daResult);

/// Circle by its algebraic equation x^2 + y^2 = p0*x + p1*y + p2 (Kasa 1976), solved by pivoted QR with iterative
/// refinement. At least 3 points; 3 give the circle through them and are never re-weighted.
///
/// A robust fit differs from the others: weights |1 - (r / k)^2|, which enter the cost squared, and at most 10
/// corrections. On a full outline the fit reaches the Cramér-Rao bound; on a short arc circles come out too small.
///
/// @param iN         [in]  count, >= 3
/// @param taPoints   [in]  iN points
/// @param iRobust    [in]  0 or 1, see above
/// @param dThreshold [in]  see above
/// @param tResult    [out] the circle; the radius is not a number if the equation has no real circle
/// @return ZELM_OK; ZELM_ERR_PARAM as of the other fits, and for points on one line or in one place, or that are not
///     finite; ZELM_ERR_MEMORY; ZELM_ERR_FIT_DATA: fewer than 3 independent points kept weight, or memory ran out, in
///     the robust loop
ZELM_API int32_t zelmFitCircle(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold,
                               Circle2d* tResult);

/// Ellipsoid by direct least squares (as zelmFitEllipse(), with 10 coefficients): the sum of the principal minors of
/// the quadratic part is held positive, the constraint of Li and Griffiths, "Least squares ellipsoid specific fitting"
/// (Geometric Modeling and Processing 2004), without its term in the trace; residual: the algebraic distance. At least
/// 9 points.
///
/// The angles are defined in `docs/limits.md`, with what the fit reaches on full surfaces, caps and in noise. On the
/// full surface the parameters come within 1.05 (axes 10 : 8 : 6) to 1.7 (20 : 5 : 2) of the Cramér-Rao bound; on a cap
/// ellipsoids come out too small. Nine points, or more exactly on a quadric, give that quadric if it is an ellipsoid.
///
/// @param iN         [in]  count, >= 9
/// @param taPoints   [in]  iN points
/// @param iRobust    [in]  0 or 1, see above
/// @param dThreshold [in]  see above
/// @param tResult    [out] the ellipsoid, a >= b >= c
/// @return the statuses that all fits share; ZELM_ERR_FIT_DATA also when a robust fit leaves fewer than 9 points with
///     weight; ZELM_ERR_FIT_NOT_ELLIPSOID: the best quadric is no ellipsoid; ZELM_ERR_SINGULAR: degenerate points
ZELM_API int32_t zelmFitEllipsoid(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold,
                                  Ellipsoid3d* tResult);

/// Cone of any cross section: the quadric of least algebraic distance among those whose coefficients have unit norm in
/// the normalised frame, if its quadratic part is that of a cone, that is indefinite and not singular. At least 9
/// points.
///
/// Nothing forces the quadric to have an apex: with noise it is a slender hyperboloid, and hyperboloids themselves
/// pass, and some spheres (`docs/decisions.md#cone-radicand`). `docs/limits.md` has figures.
///
/// @param iN         [in]  count, >= 9
/// @param taPoints   [in]  iN points
/// @param iRobust    [in]  0 or 1, see above
/// @param dThreshold [in]  see above
/// @param daResult   [out] 10 doubles p of p0*x^2 + p1*y^2 + p2*z^2 + p3*x*y + p4*x*z + p5*y*z + p6*x + p7*y + p8*z +
///     p9 = 0, of unit norm (that of the result, unlike zelmFitConics()) and either sign; with ZELM_ERR_FIT_NOT_CONE
///     the quadric that was refused, in the normalised frame
/// @return the statuses that all fits share; ZELM_ERR_FIT_DATA also when a robust fit leaves fewer than 9 points with
///     weight; ZELM_ERR_FIT_NOT_CONE: the determinant of the quadratic part is below 1e-12 in the normalised frame
///     (cylinders, planes), or its eigenvalues are all of one sign (ellipsoids)
ZELM_API int32_t zelmFitCone(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold, double* daResult);

ZELM_END_DECLS

#endif
