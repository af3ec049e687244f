/// @file
/// Three-dimensional primitives: points, lines and planes in space; their distances, perpendiculars, intersections and
/// angles.
///
/// Everything is passed by pointer; pointers are not checked, and an output may be one of the inputs. Status functions
/// return ZELM_OK or ZELM_ERR_DEGENERATE and write their outputs only on success. Lengths, directions and normals below
/// 1e-14 count as degenerate; the tests of cross products and of dot products, too, are of the vectors as given, not of
/// unit vectors. Input that is not finite is not looked for: it mostly gives output that is not a number. All functions
/// are pure, run in constant time, allocate nothing and are reentrant.
#ifndef ZELM_CLP3D_H
#define ZELM_CLP3D_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// A line in space: a point of it and its direction. Produced with a direction of length 1; any length from 1e-14 on is
/// accepted.
typedef struct Line3d {
    double x;   ///< a point of the line
    double y;   ///< likewise
    double z;   ///< likewise
    double dx;  ///< direction
    double dy;  ///< likewise
    double dz;  ///< likewise
} Line3d;

/// The plane a*x + b*y + c*z + d = 0. Produced with a normal (a, b, c) of length 1; any length from 1e-14 on is
/// accepted.
typedef struct Plane3d {
    double a;  ///< normal
    double b;  ///< likewise
    double c;  ///< likewise
    double d;  ///< offset: minus the distance from the origin along a unit normal
} Plane3d;

/// Distance of two points.
/// @param tP1, tP2  [in]  points
/// @param dDistance [out] Euclidean distance
ZELM_API void zelmClp3dDistanceTwoPoints(const Point3d* tP1, const Point3d* tP2, double* dDistance);

/// Midpoint of two points.
/// @param tP1, tP2 [in]  points
/// @param tCenter  [out] (P1 + P2) / 2
ZELM_API void zelmClp3dCenterTwoPoints(const Point3d* tP1, const Point3d* tP2, Point3d* tCenter);

/// The line through two points.
/// @param tP1, tP2 [in]  points
/// @param tLine    [out] line at P1 with the unit direction from P1 to P2
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the points are closer than 1e-14
ZELM_API int32_t zelmClp3dLineTwoPoints(const Point3d* tP1, const Point3d* tP2, Line3d* tLine);

/// The foot of the perpendicular from a point to a line.
/// @param tP    [in]  point
/// @param tLine [in]  line, direction of any length
/// @param tFoot [out] the point of the line closest to P
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the direction is shorter than 1e-14
ZELM_API int32_t zelmClp3dFootOfPerpendicularToLine(const Point3d* tP, const Line3d* tLine, Point3d* tFoot);

/// The perpendicular from a point to a line, as a line.
/// @param tP    [in]  point
/// @param tLine [in]  line, direction of any length
/// @param tOut  [out] line at P with the unit direction towards the foot
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the direction is shorter than 1e-14 or P is closer than 1e-14 to its foot,
///         that is on the line. A P that is on the line only up to rounding may give a line of arbitrary direction
ZELM_API int32_t zelmClp3dVerticalLinePointAndLine(const Point3d* tP, const Line3d* tLine, Line3d* tOut);

/// Distance of a point from a line.
/// @param tP        [in]  point
/// @param tLine     [in]  line, direction of any length
/// @param dDistance [out] distance, not negative
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the direction is shorter than 1e-14
ZELM_API int32_t zelmClp3dDistancePointToLine(const Point3d* tP, const Line3d* tLine, double* dDistance);

/// Distance of two lines.
/// @param tLine1, tLine2 [in]  lines, directions of any length
/// @param dDistance      [out] distance, not negative. Lines whose directions as given have a cross product shorter
///                             than 1e-14 are taken as parallel: the distance of the first line's point from the second
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when a direction is shorter than 1e-14
ZELM_API int32_t zelmClp3dDistanceTwoLines(const Line3d* tLine1, const Line3d* tLine2, double* dDistance);

/// The plane through three points; its normal is that of the turn P1, P2, P3 by the right-hand rule.
/// @param tP1, tP2, tP3 [in]  points
/// @param tPlane        [out] plane with a unit normal
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when P2 or P3 is closer than 1e-14 to P1, or (P2 - P1) x (P3 - P1), twice the
///         area of the triangle, is shorter than 1e-14
ZELM_API int32_t zelmClp3dPlaneThreePoints(const Point3d* tP1, const Point3d* tP2, const Point3d* tP3, Plane3d* tPlane);

/// The plane through a point with a given normal.
/// @param tP      [in]  point
/// @param tVector [in]  normal, any length
/// @param tPlane  [out] plane with a unit normal
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the normal is shorter than 1e-14
ZELM_API int32_t zelmClp3dVerticalPlanePointAndVector(const Point3d* tP, const Point3d* tVector, Plane3d* tPlane);

/// The line through a point perpendicular to a plane.
/// @param tP     [in]  point
/// @param tPlane [in]  plane, normal of any length
/// @param tLine  [out] line at P with the plane's unit normal as direction
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the normal is shorter than 1e-14
ZELM_API int32_t zelmClp3dVerticalLinePointAndPlane(const Point3d* tP, const Plane3d* tPlane, Line3d* tLine);

/// Distance of a point from a plane.
/// @param tP        [in]  point
/// @param tPlane    [in]  plane, normal of any length
/// @param dDistance [out] distance, not negative
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the normal is shorter than 1e-14
ZELM_API int32_t zelmClp3dDistancePointToPlane(const Point3d* tP, const Plane3d* tPlane, double* dDistance);

/// The intersection of a line and a plane.
/// @param tLine  [in]  line, direction of any length
/// @param tPlane [in]  plane, normal of any length
/// @param tPoint [out] intersection
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the direction or the normal is shorter than 1e-14, or their dot product
///         as given is below 1e-14 in magnitude (line parallel to the plane or in it)
ZELM_API int32_t zelmClp3dIntersectionLineAndPlane(const Line3d* tLine, const Plane3d* tPlane, Point3d* tPoint);

/// The foot of the perpendicular from a point to a plane: where the line through P along the normal, as it is given,
/// meets the plane.
/// @param tP     [in]  point
/// @param tPlane [in]  plane
/// @param tFoot  [out] the point of the plane closest to P
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the normal is shorter than 1e-7, not 1e-14
///         (`docs/decisions.md#raw-normal-foot`)
ZELM_API int32_t zelmClp3dFootOfPerpendicularToPlane(const Point3d* tP, const Plane3d* tPlane, Point3d* tFoot);

/// The angle between a line and a plane.
/// @param tLine  [in]  line, direction of any length
/// @param tPlane [in]  plane, normal of any length
/// @param dAngle [out] radians in [0, pi/2]: 0 for a line parallel to the plane. Near 0 its resolution is about 1e-8
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when the direction or the normal is shorter than 1e-14, or when direction .
///         normal is below 1e-14 and normal . point + d is above 1e-14. Both tests are signed, so that some lines
///         are refused in one direction and accepted in the other: `docs/decisions.md#signed-line-plane`
ZELM_API int32_t zelmClp3dAngleLineAndPlane(const Line3d* tLine, const Plane3d* tPlane, double* dAngle);

/// The intersection of two planes.
/// @param tPlane1, tPlane2 [in]  planes, normals of any length
/// @param tLine            [out] line at its point nearest to the origin, with unit direction normal1 x normal2
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when a normal, or the cross product of the normals as given (parallel planes),
///         is shorter than 1e-14
ZELM_API int32_t zelmClp3dIntersectionTwoPlanes(const Plane3d* tPlane1, const Plane3d* tPlane2, Line3d* tLine);

/// The acute angle between two planes.
/// @param tPlane1, tPlane2 [in]  planes, normals of any length
/// @param dAngle           [out] radians in [0, pi/2]. Near pi/2 its resolution is about 1e-8
/// @return ZELM_OK; ZELM_ERR_DEGENERATE when a normal is shorter than 1e-14, or the planes are parallel (angle below
///         1e-14) and more than 1e-14 apart
ZELM_API int32_t zelmClp3dAngleTwoPlanes(const Plane3d* tPlane1, const Plane3d* tPlane2, double* dAngle);

ZELM_END_DECLS

#endif
