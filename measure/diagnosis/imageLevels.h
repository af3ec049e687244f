// The gray levels of an image, and how wide its sharpest edges are, without knowing what it shows.
#ifndef ZELM_MEASURE_IMAGE_LEVELS_H
#define ZELM_MEASURE_IMAGE_LEVELS_H

#include <zelmLib.h>

#include <array>

#include "image.h"

namespace zelm::measure {

struct ImageLevels {
    int dark = 0;                // all but two thousandths of the pixels are at least as bright
    int bright = 0;              // all but two thousandths are at most as bright
    double saturated = 0.0;      // share of the pixels at the largest levels
    double widest = 0.0;         // width of the steepest edges across the direction in which they are widest, pixels
    double narrowest = 0.0;      // and across that direction
    double direction = 0.0;      // of the widest, radians
    double widestStep = 0.0;     // median of the levels' change across the widest edges over all the levels
    double narrowestStep = 0.0;  // and across the narrowest ones: 1 of a step, whatever blurs it; 2 of an even slope
};

// The first gray level at which the counts of all levels exceed a share of their sum.
int levelOfShare(const std::array<double, 256>& counts, double share);

// Without the widths of edges.
ImageLevels levelsOf(const DenseImage& image, const ZelmRect& region);

// Adds the widths of the steepest edges.
void measureEdges(const DenseImage& image, const ZelmRect& region, ImageLevels& levels);

}  // namespace zelm::measure

#endif
