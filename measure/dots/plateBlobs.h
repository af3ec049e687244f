// The spots of an image that a plate's dots could be.
#ifndef ZELM_MEASURE_PLATE_BLOBS_H
#define ZELM_MEASURE_PLATE_BLOBS_H

#include <algorithm>
#include <vector>

#include "image.h"

namespace zelm::measure {

using Pattern = Zelm2ViewPatternDesc;

std::vector<ZelmBlob> blobsOf(const DenseImage& image, const Pattern& plate, const ZelmRect& region);

// Of at least one value; of an even number of values the larger middle one.
inline double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace zelm::measure

#endif
