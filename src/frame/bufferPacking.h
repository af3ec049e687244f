// Dense gray planes from platform buffers.
#ifndef ZELM_BUFFER_PACKING_H
#define ZELM_BUFFER_PACKING_H

#include <cstdint>

#include "zelm/base.h"

namespace zelm {

// plane holds width * height bytes, stride = width. A buffer of no rows produces nothing.

// Truncated mean (R + G + B) / 3, not the weighted gray of the exported conversion: docs/decisions.md#two-grays.
void packARGB8888ToGrayAverage(const vImage_Buffer& buffer, std::uint8_t* plane);

void packPlanar8(const vImage_Buffer& buffer, std::uint8_t* plane);

}  // namespace zelm

#endif
