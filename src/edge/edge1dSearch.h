// The engine behind every one-dimensional edge search.
#ifndef ZELM_EDGE1D_SEARCH_H
#define ZELM_EDGE1D_SEARCH_H

#include <cstdint>

#include "zelm/edge1d.h"

namespace zelm {

// 1: found, outputs written; 0: no edge; or a status. Arguments are valid apart from the points' values.
int32_t innerEdge1dSearch(const ZelmImage& tImage, const Point2d& tP1, const Point2d& tP2, int32_t iSign,
                          const ZelmEdge1dParam& tParam, Point2d& tEdgePoint, double& dStrength);

}  // namespace zelm

#endif
