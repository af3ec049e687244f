// Dots that differ from the others in shape or size.
#ifndef ZELM_PATTERN_OUTLIERS_H
#define ZELM_PATTERN_OUTLIERS_H

#include <cstdint>

#include "patternDots.h"

namespace zelm {

// Removes them. ZELM_ERR_PATTERN for fewer than 2 dots to compare.
std::int32_t rejectOutlierDots(DotList* dots);

}  // namespace zelm

#endif
