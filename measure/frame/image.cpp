#include "image.h"

#include <cstring>

namespace zelm::measure {

void checkImage(const ZelmMeasureImage* image) {
    require(image != nullptr && image->pixels != nullptr, "an image is NULL");
    require(image->width > 0 && image->height > 0, "an image's width and height must be greater than 0");
    require(image->stride >= image->width, "an image's stride is less than its width");
}

DenseImage::DenseImage(const ZelmMeasureImage& image) : columns(image.width), rows(image.height), first(image.pixels) {
    if (image.stride == image.width) {
        return;
    }
    const auto width = static_cast<std::size_t>(columns);
    copy.resize(width * static_cast<std::size_t>(rows));
    for (std::size_t y = 0; y < static_cast<std::size_t>(rows); ++y) {
        std::memcpy(copy.data() + y * width, image.pixels + static_cast<std::ptrdiff_t>(y) * image.stride, width);
    }
    first = copy.data();
}

}  // namespace zelm::measure
