// Reading the dot pattern in one image.
#ifndef ZELM_PATTERN_READER_H
#define ZELM_PATTERN_READER_H

#include <cstdint>

#include "zelm/twoView.h"

namespace zelm {

// Finds the pattern's dots in the region, or on the plate if region is NULL, and replaces the entry's lists by them. A
// failure before any dots were labelled leaves the entry as it was; a later one leaves it empty, or, if just too few
// dots lie on the grid (ZELM_ERR_PATTERN), with those that do.
std::int32_t innerReadPattern(const ZelmImage& image, const ZelmRect* region, const Zelm2ViewPatternDesc& pattern,
                              Zelm2ViewPtnEntry* entry);

}  // namespace zelm

#endif
