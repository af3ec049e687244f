// The pixels on both sides of an ellipse, sorted into sectors of its outline.
#ifndef ZELM_MEASURE_SECTOR_BAND_H
#define ZELM_MEASURE_SECTOR_BAND_H

#include <zelmLib.h>

#include <vector>

#include "image.h"

namespace zelm::measure {

struct BandPixel {
    double distance = 0.0;  // pixels from the ellipse, positive outside
    double gray = 0.0;
    double cosine = 0.0;  // of the outline's normal nearby against the rows, not negative
    double sine = 0.0;    // likewise
};

// One list a sector, counted by the parameter angle from 0. The band reaches 3.5 pixels to either side, less about a
// dot that is small.
std::vector<std::vector<BandPixel>> sectorBands(const DenseImage& image, const Ellipse2d& ellipse);

}  // namespace zelm::measure

#endif
