/// @file
/// Registration: lays a model point set on a reference point set of the same size and order.
///
/// With the model point m relative to the position (x, y) of the model pose, the motion that is sought takes it to
/// s * R(a) * m + t, near its reference point. A result pose holds t, the scale s and the angle a + that of the model
/// pose. All functions are reentrant.
#ifndef ZELM_MATCH_H
#define ZELM_MATCH_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// How zelmMatchBasic() estimates the motion. Rigid motions have the scale 1.
enum {
    ZELM_MATCH_RIGID = 0,              ///< least squares
    ZELM_MATCH_SIMILARITY = 1,         ///< least squares
    ZELM_MATCH_RIGID_ROBUST = 2,       ///< least squares, re-weighted
    ZELM_MATCH_SIMILARITY_ROBUST = 3,  ///< least squares, re-weighted
    ZELM_MATCH_RIGID_MINIMAX = 4,      ///< least distance of the worst point
    ZELM_MATCH_SIMILARITY_MINIMAX = 5  ///< least distance of the worst point
};

/// Success of the robust modes where the points fit exactly.
enum { ZELM_MATCH_EXACT = 1 };

/// A pose in the plane.
typedef struct ZelmMatchPose {
    double x;      ///< position
    double y;      ///< position
    double angle;  ///< radians
    double scale;  ///< not read from the model pose; from mode 5 it may be negative
} ZelmMatchPose;

/// Estimates the motion of the model points onto the reference points.
///
/// All modes start with the closed form of least squares (planar case of Horn, J. Opt. Soc. Am. A 4, 1987; its scale
/// is the one of Umeyama 1991). A model without extent (n * sum |m|^2 - |sum m|^2 below 1e-13) keeps the scale 1.
///
/// The robust modes re-weight by Tukey's biweight (Holland and Welsch 1977; Beaton and Tukey 1974) in up to 20 passes:
/// w = (1 - (e / k)^2)^2 for distances e below k = threshold * 1.4826 * median e, else 0. They end when the weights
/// change by less than 0.02 of their sum; those are not used for another solve (`docs/decisions.md#settled-weights`).
/// With a threshold of 4, a fifth of the points off by many times the noise does not pull the result, if the first
/// solve still tells them apart.
///
/// The minimax modes minimise the radius of zelmCgSmallestEnclosingCircle() around the residual vectors, over the angle
/// (mode 4: downhill walk and golden sections) or over angle and scale (mode 5: simplex). They assume one minimum near
/// the least-squares estimate and never return a worse one; an outlier counts in full. Mode 5 may
/// end at a negative scale (a half turn): -s at the angle a is the motion of scale s at a + pi. Rules and figures:
/// `docs/limits.md`, Minimax registration.
///
/// @param iN         [in]  number of points, >= 2
/// @param taRef      [in]  iN reference points
/// @param taModel    [in]  iN model points
/// @param tModelPose [in]  the model points count relative to its position; its angle is added to that of the result
/// @param iMode      [in]  ZELM_MATCH_...
/// @param dThreshold [in]  cut-off of the robust modes in standard deviations, > 0; else ignored
/// @param tResult    [out] may be tModelPose; written unless ZELM_ERR_PARAM is returned, with the estimate reached so
///     far (least squares in closed form, if nothing better); angle in (-pi, pi]; scale negative at times in mode 5
/// @return ZELM_OK; ZELM_MATCH_EXACT from a robust mode when k is below 1e-13; ZELM_ERR_PARAM: an unknown mode, iN < 2,
///     a NULL pointer, a robust mode with a threshold that is not > 0; ZELM_ERR_MEMORY; ZELM_ERR_DEGENERATE: a robust
///     mode rejected every point, or a minimax mode met a circle that is not finite. Points that are not finite, or
///     whose squares are not, end in ZELM_ERR_DEGENERATE from modes 2 to 5 and in a result that means nothing from 0
///     and 1. Memory: three numbers a point in modes 2 and 3, one point a point in modes 4 and 5. Time: O(iN) a pass,
///     O(iN log iN) a circle of the minimax modes
ZELM_API int32_t zelmMatchBasic(int32_t iN, const Point2d* taRef, const Point2d* taModel,
                                const ZelmMatchPose* tModelPose, int32_t iMode, double dThreshold,
                                ZelmMatchPose* tResult);

/// Applies a result of zelmMatchBasic() to the model points and measures what remains.
/// @param iN         [in]  number of points, >= 2
/// @param taRef      [in]  iN reference points
/// @param taModel    [in]  iN model points
/// @param tModelPose [in]  as given to zelmMatchBasic()
/// @param tResult    [in]  as found by it
/// @param taMoved    [out] iN moved model points; may be taModel or taRef
/// @param daDistance [out] iN distances between moved and reference points
/// @return ZELM_OK; ZELM_ERR_PARAM when iN < 2 or a pointer is NULL
ZELM_API int32_t zelmMatchPoints(int32_t iN, const Point2d* taRef, const Point2d* taModel,
                                 const ZelmMatchPose* tModelPose, const ZelmMatchPose* tResult, Point2d* taMoved,
                                 double* daDistance);

/// The difference of two poses.
/// @param tA, tB     [in]  poses
/// @param dDx, dDy   [out] position of tB less that of tA
/// @param dAngle     [out] angle of tB less that of tA, not wrapped
/// @param dScale     [out] scale of tB (not a ratio)
/// @return ZELM_OK; ZELM_ERR_PARAM when a pointer is NULL
ZELM_API int32_t zelmMatchDelta(const ZelmMatchPose* tA, const ZelmMatchPose* tB, double* dDx, double* dDy,
                                double* dAngle, double* dScale);

ZELM_END_DECLS

#endif
