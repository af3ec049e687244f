#include "zelm/edge1d.h"

#include "edge1dSearch.h"

namespace {

constexpr ZelmEdge1dParam defaultsWithSelector(int32_t selector) {
    return {.halfWidth = 1,
            .contrastPercent = 30,
            .minContrast = 5,
            .flatTolerance = 1,
            .minFlatRun = 2,
            .filterSize = 7,
            .selector = selector};
}

int32_t search(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
               const ZelmEdge1dParam& tParam, Point2d* tEdgePoint, double* dStrength) {
    if (tImage == nullptr || tImage->pixels == nullptr || tImage->width < 1 || tImage->height < 1) {
        return ZELM_ERR_PARAM;
    }
    if (tP1 == nullptr || tP2 == nullptr || iSign < -1 || iSign > 1 || tEdgePoint == nullptr || dStrength == nullptr) {
        return ZELM_ERR_PARAM;
    }
    return zelm::innerEdge1dSearch(*tImage, *tP1, *tP2, iSign, tParam, *tEdgePoint, *dStrength);
}

}  // namespace

int32_t zelmEdge1dDiffMax(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                          Point2d* tEdgePoint, double* dStrength) {
    return search(tImage, tP1, tP2, iSign, defaultsWithSelector(0), tEdgePoint, dStrength);
}

int32_t zelmEdge1dGenDiffMax(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                             Point2d* tEdgePoint, double* dStrength) {
    return search(tImage, tP1, tP2, iSign, defaultsWithSelector(1), tEdgePoint, dStrength);
}

int32_t zelmEdge1dGenNearest(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                             Point2d* tEdgePoint, double* dStrength) {
    return search(tImage, tP1, tP2, iSign, defaultsWithSelector(2), tEdgePoint, dStrength);
}

int32_t zelmEdge1dGenGradMax(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                             Point2d* tEdgePoint, double* dStrength) {
    return search(tImage, tP1, tP2, iSign, defaultsWithSelector(3), tEdgePoint, dStrength);
}

int32_t zelmEdge1dGenNearestC(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                              Point2d* tEdgePoint, double* dStrength) {
    return search(tImage, tP1, tP2, iSign, defaultsWithSelector(4), tEdgePoint, dStrength);
}

int32_t zelmEdge1dManual(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2, int32_t iSign,
                         const ZelmEdge1dParam* tParam, Point2d* tEdgePoint, double* dStrength) {
    if (tParam == nullptr || tParam->selector < 0 || tParam->selector > 4) {
        return ZELM_ERR_PARAM;
    }
    return search(tImage, tP1, tP2, iSign, *tParam, tEdgePoint, dStrength);
}
