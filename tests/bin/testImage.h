// An image that owns its pixels, for the tests of binary images.
#ifndef ZELM_TEST_IMAGE_H
#define ZELM_TEST_IMAGE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "random.h"
#include "zelm/bin.h"

namespace zelmtest {

struct TestImage {
    TestImage(std::int32_t imageWidth, std::int32_t imageHeight, std::uint8_t fill = 0)
        : width(imageWidth),
          height(imageHeight),
          pixels(static_cast<std::size_t>(imageWidth) * static_cast<std::size_t>(imageHeight), fill) {}

    std::uint8_t& at(std::int32_t x, std::int32_t y) {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
    std::uint8_t at(std::int32_t x, std::int32_t y) const { return const_cast<TestImage*>(this)->at(x, y); }
    void fillRect(const ZelmRect& r, std::uint8_t value) {
        for (std::int32_t y = r.y; y < r.y + r.height; ++y) {
            for (std::int32_t x = r.x; x < r.x + r.width; ++x) {
                at(x, y) = value;
            }
        }
    }
    ZelmImage record() { return {pixels.data(), width, height}; }
    ZelmRect all() const { return {0, 0, width, height}; }

    std::int32_t width;
    std::int32_t height;
    std::vector<std::uint8_t> pixels;
};

// Each pixel 255 with the given probability, else 0.
inline TestImage noiseImage(Random& random, std::int32_t width, std::int32_t height, double share) {
    TestImage image(width, height);
    for (auto& pixel : image.pixels) {
        pixel = random.uniform() < share ? 255 : 0;
    }
    return image;
}

inline TestImage grayNoise(Random& random, std::int32_t width, std::int32_t height) {
    TestImage image(width, height);
    for (auto& pixel : image.pixels) {
        pixel = static_cast<std::uint8_t>(random.integer(0, 255));
    }
    return image;
}

// A region of at least the given size inside the image.
inline ZelmRect randomRegion(Random& random, const TestImage& image, std::int32_t smallest) {
    const std::int32_t width = random.integer(smallest, image.width);
    const std::int32_t height = random.integer(smallest, image.height);
    return {random.integer(0, image.width - width), random.integer(0, image.height - height), width, height};
}

}  // namespace zelmtest

#endif
