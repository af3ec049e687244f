/// @file
/// Computational geometry: point sets, segments and convex polygons.
///
/// Polygons are arrays of vertices in order, either orientation, closed implicitly; a polygon of 2 vertices is one
/// segment. Tolerance: 1e-13 (caller's units, and units squared for cross products); segments and polygons of less than
/// a thousandth of a unit are too small for it. All functions are reentrant.
/// Output arrays are the caller's; no function checks their capacity.
#ifndef ZELM_CG_H
#define ZELM_CG_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// How two segments A and B meet.
enum {
    ZELM_SEGMENTS_APART = 0,      ///< no common point; no point is written
    ZELM_SEGMENTS_CROSS = 1,      ///< proper crossing of the interiors
    ZELM_SEGMENTS_ENDPOINTS = 2,  ///< an endpoint of each, also collinear segments end to end
    ZELM_SEGMENTS_A_ON_B = 3,     ///< an endpoint of A lies within B
    ZELM_SEGMENTS_B_ON_A = 4,     ///< an endpoint of B lies within A
    ZELM_SEGMENTS_OVERLAP = 5     ///< collinear with a common stretch; no point is written
};

/// Sorts points by polar angle about the lowest one (smallest y, then smallest x), nearer first on a ray; that pivot
/// comes first. Heap sort, O(n log n), nothing allocated; the order of equal points is fixed by the sort.
/// @param iN        [in]  number of points, >= 2
/// @param taPoints  [in]  iN points
/// @param taSorted  [out] iN points
/// @return ZELM_OK; ZELM_ERR_PARAM when iN < 2 or a pointer is NULL
ZELM_API int32_t zelmCgSortByArgument(int32_t iN, const Point2d* taPoints, Point2d* taSorted);

/// Convex hull (Graham 1972), counter-clockwise in a y-up frame from the lowest point. O(n log n), nothing allocated.
/// @param iN       [in]  number of points, >= 1
/// @param taPoints [in]  iN points
/// @param iCount   [out] number of hull vertices
/// @param taHull   [out] room for iN points: the hull, then the other points in no defined order
/// @return ZELM_OK; ZELM_ERR_PARAM when iN < 1 or a pointer is NULL
ZELM_API int32_t zelmCgConvexHull(int32_t iN, const Point2d* taPoints, int32_t* iCount, Point2d* taHull);

/// An approximation of the smallest enclosing circle: the centre walks towards the farthest hull vertex with a step
/// that is halved every five moves (in the manner of Badoiu and Clarkson, 2003). The radius is measured from the centre
/// before its last move.
/// @param iN       [in]  number of points, >= 1
/// @param taPoints [in]  iN points
/// @param tCentre  [out] centre
/// @param dRadius  [out] radius; for 2 points the distance of the first from the centre
/// @return ZELM_OK; ZELM_ERR_PARAM when iN < 1 or a pointer is NULL; ZELM_ERR_MEMORY
ZELM_API int32_t zelmCgSmallestEnclosingCircle(int32_t iN, const Point2d* taPoints, Point2d* tCentre, double* dRadius);

/// Classifies how the segments A = A1A2 and B = B1B2 meet.
/// @param tA1, tA2, tB1, tB2 [in]  end points
/// @param iKind              [out] ZELM_SEGMENTS_...
/// @param tPoint             [out] the common point; not written for kinds 0 and 5
/// @return ZELM_OK; ZELM_ERR_PARAM when a pointer is NULL
ZELM_API int32_t zelmCgIntersectionOfTwoSegments(const Point2d* tA1, const Point2d* tA2, const Point2d* tB1,
                                                 const Point2d* tB2, int32_t* iKind, Point2d* tPoint);

/// Where a point lies relative to a convex polygon. O(n).
/// @param iN        [in]  number of vertices, >= 3
/// @param taPolygon [in]  iN vertices
/// @param tP        [in]  point
/// @param iResult   [out] 1 inside, 0 outside, 2 on the boundary
/// @return ZELM_OK; ZELM_ERR_PARAM when iN < 3 or a pointer is NULL
ZELM_API int32_t zelmCgPointInConvexPolygon(int32_t iN, const Point2d* taPolygon, const Point2d* tP, int32_t* iResult);

/// Where a line crosses the boundary of a convex polygon. A line along an edge gives 0 points, even when one was found
/// before (`docs/decisions.md#edge-along-line`). O(n).
/// @param iN        [in]  number of vertices, >= 2
/// @param taPolygon [in]  iN vertices
/// @param tLine     [in]  line, any scale; not NULL (not checked)
/// @param taPoints  [out] room for 2 points; as many are written as are found
/// @return the number of points 0, 1 or 2; ZELM_ERR_PARAM when iN < 2, a polygon or output pointer is NULL or the
///         line's normal is shorter than 1e-13
ZELM_API int32_t zelmCgIntersectionLineAndConvexPolygon(int32_t iN, const Point2d* taPolygon, const Line2d* tLine,
                                                        Point2d* taPoints);

/// Where a segment crosses the boundary of a convex polygon. A segment along an edge gives 0 points. O(n).
/// @param iN        [in]  number of vertices, >= 2
/// @param taPolygon [in]  iN vertices
/// @param tS1, tS2  [in]  end points of the segment
/// @param taPoints  [out] room for 2 points; as many are written as are found
/// @return the number of points 0, 1 or 2; ZELM_ERR_PARAM when iN < 2 or a pointer is NULL
ZELM_API int32_t zelmCgIntersectionSegmentAndConvexPolygon(int32_t iN, const Point2d* taPolygon, const Point2d* tS1,
                                                           const Point2d* tS2, Point2d* taPoints);

ZELM_END_DECLS

#endif
