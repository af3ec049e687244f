// A pair in named arrays, by the names that are usual with OpenCV.
#ifndef ZELM_MEASURE_ARRAYS_PAIR_H
#define ZELM_MEASURE_ARRAYS_PAIR_H

#include "foreignPair.h"
#include "namedArrays.h"

namespace zelm::measure {

ForeignPair pairOfArrays(const NamedArrays& arrays);

}  // namespace zelm::measure

#endif
