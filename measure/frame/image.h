// Gray images in the caller's memory.
#ifndef ZELM_MEASURE_IMAGE_H
#define ZELM_MEASURE_IMAGE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "fault.h"

namespace zelm::measure {

// Throws unless the image can be meant.
void checkImage(const ZelmMeasureImage* image);

// An image whose rows follow one another, as the core's functions take it: the caller's own, or a copy.
class DenseImage {
public:
    // The caller's image outlives this one.
    explicit DenseImage(const ZelmMeasureImage& image);

    int width() const { return columns; }
    int height() const { return rows; }
    const std::uint8_t* pixels() const { return first; }
    const std::uint8_t* row(int y) const { return first + static_cast<std::ptrdiff_t>(y) * columns; }

    // The core's record, which has no form for reading alone; what takes it here does not write.
    ZelmImage record() const { return {const_cast<std::uint8_t*>(first), columns, rows}; }

private:
    int columns;
    int rows;
    std::vector<std::uint8_t> copy;
    const std::uint8_t* first;
};

}  // namespace zelm::measure

#endif
