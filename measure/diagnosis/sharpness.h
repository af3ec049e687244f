// How sharp an image of a plate is, by the edges of its dots.
#ifndef ZELM_MEASURE_SHARPNESS_H
#define ZELM_MEASURE_SHARPNESS_H

#include <optional>
#include <vector>

#include "edgeSpread.h"

namespace zelm::measure {

struct Sharpness {
    std::size_t dots = 0;  // whose edges could be measured
    TensorAxes spread;     // standard deviations of the point spread, pixels
    double smear = 0.0;    // length of a straight smear that makes the largest of the smallest, pixels
    double radius = 0.0;   // median of the dots', pixels
    double inside = 0.0;   // median gray levels
    double outside = 0.0;
    double noise = 0.0;  // median of what the fits leave, gray levels
};

// A spot to measure, and how far outside its outline nothing else stands.
struct SharpnessSpot {
    SpotEllipse ellipse;
    double reach = 0.0;
};

// Medians over the spots, of which at most 30 are taken, spread over the list.
Sharpness sharpnessOf(const DenseImage& image, const std::vector<SharpnessSpot>& spots, int polarity);

// The spots that cover the given pixels, each by the threshold midway between the levels around it.
std::vector<SharpnessSpot> spotsAt(const DenseImage& image, const std::vector<Point2d>& seeds, int polarity);

}  // namespace zelm::measure

#endif
