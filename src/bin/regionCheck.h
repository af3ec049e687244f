// The one-sided check of a region that binarisation and morphology share.
#ifndef ZELM_REGION_CHECK_H
#define ZELM_REGION_CHECK_H

#include <cstdint>

#include "zelm/base.h"

namespace zelm {

// Whether the region's far edges lie inside an image. Neither the near edges nor any other image are looked at: see
// docs/decisions.md#region-one-sided.
inline bool endsInside(const ZelmRect& region, const ZelmImage& image) {
    return static_cast<int64_t>(region.x) + region.width <= image.width &&
           static_cast<int64_t>(region.y) + region.height <= image.height;
}

}  // namespace zelm

#endif
