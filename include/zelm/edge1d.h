/// @file
/// One gray-level edge on a segment, to sub-pixel precision.
///
/// Six entry points over one engine, in four steps.
///
/// Profile. Samples stand one pixel apart from p1 towards p2, floor(|p2 - p1|) + 1 of them; each is the mean of
/// bilinear gray values at the sample and at 1..halfWidth pixels on either side of the segment, a widening that stops
/// at the first pair of which one lies outside the image. The bilinear support must lie inside: the last row and the
/// last column are never sampled. Samples before the image repeat the first value inside, samples after it the last
/// one.
///
/// Threshold. T is the larger of minContrast and contrastPercent of the range of the profile rounded to gray levels.
///
/// Candidates. Neighbouring rounded values that differ by at most flatTolerance are flat; minFlatRun flat steps make a
/// plateau. A candidate is the transition between two neighbouring plateaus whose levels differ by at least T in the
/// sense asked for; the level of a plateau is the mean of the minFlatRun + 1 values next to the transition.
///
/// Noise. Where the profile turns back and forth as only noise does, or has no candidate, minFlatRun + 1 neighbours
/// that stay together within a band of 2/3 of T are flat too, unless all their steps exceed flatTolerance in one sense
/// (such slopes only if nothing else is found). The band is halved, down to the bare tolerance, and the profile walked
/// again as long as no edge is found or a plateau moves by T itself. All of this is symmetric in the two directions.
///
/// Position. The transition, with one step more on each side if that still changes in its sense, is held constant
/// beyond its ends, in noise beyond the two plateaus. It is filtered by the derivative of a Gaussian (Canny, 1986) of
/// sigma 1.5 (size 7) or 1 (size 5) samples; a Gaussian through the largest derivative and its neighbours gives
/// position and strength (gray levels a pixel).
///
/// Accuracy. On noise-free straight edges of 8-bit images with a blur of 0.5 to 1.5 pixels, met at right angles at any
/// position and in any direction, the error is at most 0.013 pixel (root mean square 0.005) at a contrast of 240 gray
/// levels, 0.02 (0.006) at 120 and 0.09 (0.025) at 30; at an incidence of 60 degrees and a contrast of 120 or more it
/// is at most 0.04 (0.016) across the edge. Noise adds to that. With the usual parameters no ray of a dot of radius 6
/// to 20 pixels was lost to Gaussian noise of 3 gray levels at a contrast of 48, nor of 8 at 120. docs/edge1d.md has
/// tables.
#ifndef ZELM_EDGE1D_H
#define ZELM_EDGE1D_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// Parameters of the edge search.
typedef struct ZelmEdge1dParam {
    int32_t halfWidth;        ///< the profile is averaged over +-halfWidth samples across the segment; usual 1
    int32_t contrastPercent;  ///< edge threshold in per cent of the profile's range; usual 30
    int32_t minContrast;      ///< lower bound of the edge threshold in gray levels; usual 5
    int32_t flatTolerance;    ///< neighbouring values that differ by at most this are flat; below 0 acts as 0; usual 1
    int32_t minFlatRun;       ///< flat steps that confirm a plateau; acts within 1..4096; usual 2
    int32_t filterSize;       ///< derivative filter of the sub-pixel step: 5 or 7, others find no edge; usual 7
    int32_t selector;         ///< selection rule 0..4
} ZelmEdge1dParam;

/// Finds the edge of the largest difference, by the gray values at the very ends of the two plateaus.
///
/// The parameters of this and the next four functions are the usual ones: halfWidth 1, contrastPercent 30, minContrast
/// 5, flatTolerance 1, minFlatRun 2, filterSize 7. Among candidates that the rule holds equal the first from p1 wins.
/// @param tImage     [in]  gray image
/// @param tP1        [in]  first point of the segment, pixels; it may lie outside the image
/// @param tP2        [in]  second point
/// @param iSign      [in]  +1: gray rises from p1 to p2; -1: it falls; 0: either
/// @param tEdgePoint [out] position on the segment's line; written only on result 1
/// @param dStrength  [out] largest derivative along the segment, gray levels a pixel, positive; only on result 1
/// @return 1: an edge was found. 0: no edge satisfies the rule, or its derivative has no clear maximum.
///         ZELM_ERR_PARAM: image, its pixels, a point or an output is NULL; width or height < 1; iSign outside -1..1; a
///         point is not finite, or the segment is 2^31 pixels long or longer.
///         ZELM_ERR_DEGENERATE: the two points are equal, or no sample of the segment lies inside the image.
///         ZELM_ERR_MEMORY: a work buffer could not be allocated, or the window of the filter leaves the profile (only
///         with a filterSize other than 5 or 7).
/// Memory: three work buffers, together 20 bytes a sample. They hold the samples within a pixel of the image, at most
/// minFlatRun + 11 more on each side, and 20 cells: what they take grows with the image, not with the segment, however
/// far that runs outside. The result is that of the whole segment. Reentrant: yes.
ZELM_API int32_t zelmEdge1dDiffMax(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                                   Point2d* tEdgePoint, double* dStrength);

/// Finds the edge of the largest difference between the levels of its plateaus. All else as zelmEdge1dDiffMax.
/// @param tImage [in] the image
/// @param tP1, tP2 [in] ends of the segment
/// @param iSign [in] 1, -1 or 0, as there
/// @param tEdgePoint [out] the edge
/// @param dStrength [out] its strength
/// @return as zelmEdge1dDiffMax
ZELM_API int32_t zelmEdge1dGenDiffMax(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                                      Point2d* tEdgePoint, double* dStrength);

/// Finds the first edge from p1. All else as zelmEdge1dDiffMax.
/// @param tImage [in] the image
/// @param tP1, tP2 [in] ends of the segment
/// @param iSign [in] 1, -1 or 0, as there
/// @param tEdgePoint [out] the edge
/// @param dStrength [out] its strength
/// @return as zelmEdge1dDiffMax
ZELM_API int32_t zelmEdge1dGenNearest(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                                      Point2d* tEdgePoint, double* dStrength);

/// Finds the steepest edge: the largest difference of levels divided by the distance between the plateaus. All else as
/// zelmEdge1dDiffMax.
/// @param tImage [in] the image
/// @param tP1, tP2 [in] ends of the segment
/// @param iSign [in] 1, -1 or 0, as there
/// @param tEdgePoint [out] the edge
/// @param dStrength [out] its strength
/// @return as zelmEdge1dDiffMax
ZELM_API int32_t zelmEdge1dGenGradMax(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                                      Point2d* tEdgePoint, double* dStrength);

/// Finds the edge whose middle lies closest to the middle of the segment. All else as zelmEdge1dDiffMax.
/// @param tImage [in] the image
/// @param tP1, tP2 [in] ends of the segment
/// @param iSign [in] 1, -1 or 0, as there
/// @param tEdgePoint [out] the edge
/// @param dStrength [out] its strength
/// @return as zelmEdge1dDiffMax
ZELM_API int32_t zelmEdge1dGenNearestC(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                                       Point2d* tEdgePoint, double* dStrength);

/// Finds an edge by the caller's own parameters. Selectors 0 to 4 choose as zelmEdge1dDiffMax, GenDiffMax, GenNearest,
/// GenGradMax and GenNearestC do.
/// @param tImage [in] the image
/// @param tP1, tP2 [in] ends of the segment
/// @param iSign [in] 1, -1 or 0, as there
/// @param tParam [in] the parameters
/// @param tEdgePoint [out] the edge
/// @param dStrength [out] its strength
/// @return as zelmEdge1dDiffMax; ZELM_ERR_PARAM also when tParam is NULL or its selector is outside 0..4
ZELM_API int32_t zelmEdge1dManual(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                                  const ZelmEdge1dParam* tParam, Point2d* tEdgePoint, double* dStrength);

ZELM_END_DECLS

#endif
