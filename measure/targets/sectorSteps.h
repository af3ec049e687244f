// Blurred steps laid through the pixels around an ellipse, a step for each sector of its outline.
#ifndef ZELM_MEASURE_SECTOR_STEPS_H
#define ZELM_MEASURE_SECTOR_STEPS_H

#include <zelmLib.h>

#include <vector>

#include "dotCentre.h"
#include "image.h"

namespace zelm::measure {

struct SectorStep {
    double angle = 0.0;      // parameter angle of the sector's middle
    double offset = 0.0;     // pixels outwards from the ellipse to the step
    double deviation = 0.0;  // standard, of the offset: from the noise that the steps leave
    bool sound = false;      // the step explains the pixels and has the polarity's sign
};

// A sector for each 3 pixels of the outline, 12 to 64. Each has its own step offset; the blur belongs to all. So do the
// gray levels of a small dot, where a sector holds few pixels; sectors of larger ones have their own.
std::vector<SectorStep> sectorSteps(const DenseImage& image, const Ellipse2d& ellipse, DotPolarity polarity);

}  // namespace zelm::measure

#endif
