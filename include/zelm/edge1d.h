/// One gray-level edge on a segment, to sub-pixel precision.
#ifndef ZELM_EDGE1D_H
#define ZELM_EDGE1D_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// Parameters of the edge search.
typedef struct ZelmEdge1dParam {
    int32_t halfWidth;        ///< the profile is averaged over +-halfWidth samples across the segment; usual 1
    int32_t contrastPercent;  ///< edge threshold in per cent of the profile's range; usual 30
    int32_t minContrast;      ///< lower bound of the edge threshold in gray levels; usual 5
    int32_t flatTolerance;    ///< neighbouring values that differ by at most this are flat; usual 1
    int32_t minFlatRun;       ///< flat steps that confirm a plateau; usual 2
    int32_t filterSize;       ///< derivative filter of the sub-pixel step: 5 or 7; usual 7
    int32_t selector;         ///< selection rule 0..4
} ZelmEdge1dParam;

ZELM_API int32_t zelmEdge1dDiffMax(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                                   Point2d* tEdgePoint, double* dStrength);
ZELM_API int32_t zelmEdge1dGenDiffMax(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                                      Point2d* tEdgePoint, double* dStrength);
ZELM_API int32_t zelmEdge1dGenNearest(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                                      Point2d* tEdgePoint, double* dStrength);
ZELM_API int32_t zelmEdge1dGenGradMax(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                                      Point2d* tEdgePoint, double* dStrength);
ZELM_API int32_t zelmEdge1dGenNearestC(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                                       Point2d* tEdgePoint, double* dStrength);
ZELM_API int32_t zelmEdge1dManual(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                                  const ZelmEdge1dParam* tParam, Point2d* tEdgePoint, double* dStrength);

ZELM_END_DECLS

#endif
