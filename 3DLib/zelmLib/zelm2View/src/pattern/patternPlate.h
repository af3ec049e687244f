// The plate that carries the dots.
#ifndef ZELM_PATTERN_PLATE_H
#define ZELM_PATTERN_PLATE_H

#include <cstdint>

#include "zelm/base.h"

namespace zelm {

// Bounding box of the largest blob of the polarity opposite to the dots'. ZELM_ERR_PATTERN_PLATE if no such blob covers
// a twentieth of the image, or if the image is of one gray level.
std::int32_t findPatternPlate(const ZelmImage& image, std::int32_t dotPolarity, ZelmRect* plate);

}  // namespace zelm

#endif
