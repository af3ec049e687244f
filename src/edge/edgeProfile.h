// The gray-level profile along a segment.
#ifndef ZELM_EDGE_PROFILE_H
#define ZELM_EDGE_PROFILE_H

#include <cstdint>

#include "workBuffer.h"
#include "zelm/base.h"

namespace zelm {

constexpr int32_t kEdgeGuard = 10;  // cells held free on each side of the profile, for the derivative filter

// A segment as it is sampled: sample i stands at start + i * unit, i = 0..last.
struct EdgeSegment {
    Point2d start;
    Point2d unit;
    int64_t last;
    double length;  // pixels; last is its whole part
};

// Samples first..first + count - 1 of a segment; sample first + j is stored in cell j + kEdgeGuard. What the segment
// has beyond them lies outside the image and repeats the end values.
struct EdgeProfile {
    EdgeSegment segment;
    int64_t first = 0;
    int64_t count = 0;
    int32_t minimum = 0;  // of the quantised values
    int32_t maximum = 0;
    WorkBuffer<int32_t> quantised;
    WorkBuffer<double> gray;
    WorkBuffer<double> derivative;
};

// Bilinear gray value, or -1.0 for x < 0, y < 0, x >= width - 1 or y >= height - 1.
double innerEdge1dSampleGray(const ZelmImage& tImage, double x, double y);

// ZELM_ERR_PARAM for a point that is not finite or a segment of 2^31 pixels or more, ZELM_ERR_DEGENERATE for two equal
// points.
int32_t makeEdgeSegment(const Point2d& tP1, const Point2d& tP2, EdgeSegment& segment);

// Samples, fills and quantises. iKeep: samples to keep on each side of what lies inside the image.
// ZELM_ERR_MEMORY, or ZELM_ERR_DEGENERATE when no sample lies inside the image.
int32_t readEdgeProfile(const ZelmImage& tImage, const EdgeSegment& segment, int32_t iHalfWidth, int32_t iKeep,
                        EdgeProfile& profile);

}  // namespace zelm

#endif
