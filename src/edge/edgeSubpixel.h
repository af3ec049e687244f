// Sub-pixel position of one edge in a profile.
#ifndef ZELM_EDGE_SUBPIXEL_H
#define ZELM_EDGE_SUBPIXEL_H

#include <cstdint>
#include <span>

#include "edgeProfile.h"
#include "edgeSelect.h"

namespace zelm {

struct EdgePosition {
    double sample;    // sample index along the segment
    double strength;  // largest derivative, gray levels a sample
};

// The derivative-of-Gaussian filter of size 5 or 7; empty for any other size.
std::span<const double> edgeKernel(int32_t iFilterSize);

// 1 with the position, 0 when the derivative has no clear maximum, ZELM_ERR_MEMORY when the filter leaves the profile.
// Overwrites the profile around the edge.
int32_t locateEdge(EdgeProfile& profile, const EdgeCandidate& edge, int32_t iFilterSize, EdgePosition& position);

}  // namespace zelm

#endif
