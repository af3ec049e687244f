/// @file
/// Two-dimensional primitives: lines, circles, intersections, feet of perpendiculars, tangents.
///
/// Everything is passed by pointer; pointers are not checked. Status functions return ZELM_OK or ZELM_ERR_DEGENERATE
/// and write their outputs only on success. Lengths, radii and line normals below 1e-14 count as degenerate. All
/// functions run in constant time, allocate at most the work memory of a 2 x 2 or 3 x 3 linear solve, and are
/// reentrant.
#ifndef ZELM_CLP2D_H
#define ZELM_CLP2D_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// Distance of two points.
/// @param tP1, tP2  [in]  points
/// @param dDistance [out] Euclidean distance
ZELM_API void zelmClp2dDistanceTwoPoints(const Point2d* tP1, const Point2d* tP2, double* dDistance);

/// Midpoint of two points.
/// @param tP1, tP2 [in]  points
/// @param tCenter  [out] (P1 + P2) / 2
ZELM_API void zelmClp2dCenterTwoPoints(const Point2d* tP1, const Point2d* tP2, Point2d* tCenter);

/// The line through two points, directed from the first to the second. With direction (dx, dy) the unit normal is
/// (-dy, dx) / length, the left-hand side in a y-up frame.
/// @param tP1, tP2 [in]  points
/// @param tLine    [out] line with a^2 + b^2 = 1
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the points are closer than 1e-14
ZELM_API int32_t zelmClp2dLineTwoPoints(const Point2d* tP1, const Point2d* tP2, Line2d* tLine);

/// The perpendicular bisector of two points; its normal points from the first to the second.
/// @param tP1, tP2 [in]  points
/// @param tLine    [out] line with a^2 + b^2 = 1
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the points are closer than 1e-14
ZELM_API int32_t zelmClp2dMidperpendicularTwoPoints(const Point2d* tP1, const Point2d* tP2, Line2d* tLine);

/// The line through a point perpendicular to a line; its normal is the given one turned by -90 degrees: (b, -a).
/// @param tP    [in]  point
/// @param tLine [in]  line, any scale
/// @param tOut  [out] line with a^2 + b^2 = 1
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the line's normal is shorter than 1e-14
ZELM_API int32_t zelmClp2dVerticalLinePointAndLine(const Point2d* tP, const Line2d* tLine, Line2d* tOut);

/// The line through a point with a given direction.
/// @param tP     [in]  point
/// @param dAngle [in]  direction (cos, sin) of this angle in radians
/// @param tLine  [out] line with a^2 + b^2 = 1
ZELM_API void zelmClp2dLinePointAndSlope(const Point2d* tP, double dAngle, Line2d* tLine);

/// The intersection of two lines.
/// @param tLine1, tLine2 [in]  lines, any scale
/// @param tPoint         [out] intersection
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when a normal is shorter than 1e-14, the lines are parallel, or the work memory
///         of the linear solve could not be obtained
ZELM_API int32_t zelmClp2dIntersectionTwoLines(const Line2d* tLine1, const Line2d* tLine2, Point2d* tPoint);

/// The acute angle between two lines.
/// @param tLine1, tLine2 [in]  lines, any scale
/// @param dAngle         [out] radians in [0, pi/2]
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when a normal is shorter than 1e-14 or the lines are parallel (angle below
///         1e-14) and more than 1e-14 apart
ZELM_API int32_t zelmClp2dAngleTwoLines(const Line2d* tLine1, const Line2d* tLine2, double* dAngle);

/// The bisector of two lines whose normals are turned to one side first (the second line is negated when its unit
/// normal has a negative dot product with the first's); for parallel lines the middle line.
/// @param tLine1, tLine2 [in]  lines, any scale
/// @param tOut           [out] line with a^2 + b^2 = 1
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when a normal is shorter than 1e-14
ZELM_API int32_t zelmClp2dCenterLineOfTwoLines(const Line2d* tLine1, const Line2d* tLine2, Line2d* tOut);

/// Distance of a point from a line.
/// @param tP        [in]  point
/// @param tLine     [in]  line, any scale
/// @param dDistance [out] distance, not negative
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the line's normal is shorter than 1e-14
ZELM_API int32_t zelmClp2dDistancePointToLine(const Point2d* tP, const Line2d* tLine, double* dDistance);

/// The foot of the perpendicular from a point to a line.
/// @param tP    [in]  point
/// @param tLine [in]  line, any scale
/// @param tFoot [out] the point of the line closest to P
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the line's normal is shorter than 1e-14 or the solve fails
ZELM_API int32_t zelmClp2dFootOfPerpendicularToLine(const Point2d* tP, const Line2d* tLine, Point2d* tFoot);

/// A line moved by a vector; a and b are copied, not normalised.
/// @param tLine  [in]  line, any scale
/// @param tShift [in]  translation
/// @param tOut   [out] moved line
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the line's normal is shorter than 1e-14
ZELM_API int32_t zelmClp2dTranslationOfLine(const Line2d* tLine, const Point2d* tShift, Line2d* tOut);

/// Area of a triangle.
/// @param tP1, tP2, tP3 [in]  vertices
/// @param dArea         [out] area, not negative
ZELM_API void zelmClp2dAreaTriangle(const Point2d* tP1, const Point2d* tP2, const Point2d* tP3, double* dArea);

/// Signed area of a triangle, positive when P1, P2, P3 turn counter-clockwise in a y-up frame (clockwise as seen in an
/// image, whose y points down).
/// @param tP1, tP2, tP3 [in]  vertices
/// @param dArea         [out] signed area
ZELM_API void zelmClp2dSignAreaTriangle(const Point2d* tP1, const Point2d* tP2, const Point2d* tP3, double* dArea);

/// The circle through three points.
/// @param tP1, tP2, tP3 [in]  points
/// @param tCircle       [out] circle
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the points are collinear or coincide, or the solve fails
ZELM_API int32_t zelmClp2dCircleThreePoints(const Point2d* tP1, const Point2d* tP2, const Point2d* tP3,
                                            Circle2d* tCircle);

/// The circle with two points as a diameter.
/// @param tP1, tP2 [in]  points
/// @param tCircle  [out] circle
ZELM_API void zelmClp2dCircleTwoPoints(const Point2d* tP1, const Point2d* tP2, Circle2d* tCircle);

/// The intersections of a line and a circle. The line is taken as normalised, as every line of this library is; another
/// scale gives wrong points (`docs/decisions.md#circle-line-scale`).
/// @param tLine    [in]  line with a^2 + b^2 = 1
/// @param tCircle  [in]  circle
/// @param tQ1, tQ2 [out] intersections; Q1 lies along (-b, a) from the foot, Q2 opposite; equal when tangent (within
///                       1e-14)
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the normal or the radius is below 1e-14 or the line misses the circle
ZELM_API int32_t zelmClp2dIntersectionLineAndCircle(const Line2d* tLine, const Circle2d* tCircle, Point2d* tQ1,
                                                    Point2d* tQ2);

/// The two tangents from a point to a circle.
/// @param tP               [in]  point outside the circle or on it
/// @param tCircle          [in]  circle
/// @param tLine1           [out] first tangent line through P, unit normal away from the centre
/// @param tPoint1          [out] its point of contact
/// @param tLine2           [out] second tangent line, likewise
/// @param tPoint2          [out] its point of contact; the first one when P lies on the circle (within 1e-14)
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the radius is below 1e-14, P lies inside the circle, or a solve fails
ZELM_API int32_t zelmClp2dTangentPointToCircle(const Point2d* tP, const Circle2d* tCircle, Line2d* tLine1,
                                               Point2d* tPoint1, Line2d* tLine2, Point2d* tPoint2);

/// The point of a circle closest to a given point. A point at the centre gives non-finite outputs; this is not guarded.
/// @param tP        [in]  point
/// @param tCircle   [in]  circle
/// @param tPoint    [out] closest point of the circle
/// @param dDistance [out] its distance from P
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the radius is below 1e-14
ZELM_API int32_t zelmClp2dClosestToCircle(const Point2d* tP, const Circle2d* tCircle, Point2d* tPoint,
                                          double* dDistance);

ZELM_END_DECLS

#endif
