// How many pixels of a region have each gray level.
#ifndef ZELM_GRAY_HISTOGRAM_H
#define ZELM_GRAY_HISTOGRAM_H

#include <cstdint>

#include "zelm/base.h"

namespace zelm {

constexpr int kGrayLevels = 256;

// Counts wrap around in 32 bits. A region without pixels has none.
void grayHistogram(const ZelmImage& image, const ZelmRect& region, uint32_t (&histogram)[kGrayLevels]);

}  // namespace zelm

#endif
