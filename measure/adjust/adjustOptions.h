// The caller's options of an adjustment and its plate, checked.
#ifndef ZELM_MEASURE_ADJUST_OPTIONS_H
#define ZELM_MEASURE_ADJUST_OPTIONS_H

#include <zelmMeasure.h>

#include "adjustProblem.h"
#include "adjustStart.h"

namespace zelm::measure {

// They throw Fault for what cannot be meant.
AdjustOptions optionsOf(const ZelmMeasureAdjustOptions& options);
DotPlaces placesOf(const ZelmMeasureAdjustOptions& options);
void checkPlate(const Zelm2ViewPatternDesc& plate);

}  // namespace zelm::measure

#endif
