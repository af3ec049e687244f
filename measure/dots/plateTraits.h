// What an image of a plate that cannot be read shows.
#ifndef ZELM_MEASURE_PLATE_TRAITS_H
#define ZELM_MEASURE_PLATE_TRAITS_H

#include "plateDots.h"

namespace zelm::measure {

// The level that all but the brightest thousandth of the pixels stay within.
int brightLevel(const DenseImage& image);

// Spots of the size of a marker, beside dots of the usual size.
int countMarkerSized(const DenseImage& image, const Pattern& plate);

// Dots that are read when dark and bright are exchanged; 0 when the plate is not read so either.
int countOppositeDots(const DenseImage& image, const Pattern& plate);

}  // namespace zelm::measure

#endif
