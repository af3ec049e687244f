// The noise of an image.
#ifndef ZELM_MEASURE_NOISE_H
#define ZELM_MEASURE_NOISE_H

#include <zelmMeasure.h>

namespace zelm::measure {

// The standard deviation of an image's noise in gray levels, from what its smoothest parts show.
double noiseOf(const ZelmMeasureImage& image);

}  // namespace zelm::measure

#endif
