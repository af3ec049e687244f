// Rendered images spoilt on purpose, for trying what tells faults apart.
#ifndef ZELM_TEST_IMAGE_FAULTS_H
#define ZELM_TEST_IMAGE_FAULTS_H

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "renderView.h"

namespace zelmtest {

// A level between pixels, bilinear; those beyond the image are as its edge.
inline double levelAt(const zelm::render::LevelImage& image, double x, double y) {
    const double cx = std::clamp(x, 0.0, image.width - 1.001);
    const double cy = std::clamp(y, 0.0, image.height - 1.001);
    const int left = static_cast<int>(cx);
    const int top = static_cast<int>(cy);
    const double u = cx - left;
    const double v = cy - top;
    const int right = std::min(left + 1, image.width - 1);
    const int bottom = std::min(top + 1, image.height - 1);
    return (1.0 - v) * ((1.0 - u) * image.at(left, top) + u * image.at(right, top)) +
           v * ((1.0 - u) * image.at(left, bottom) + u * image.at(right, bottom));
}

// What moves by `length` pixels in that direction, radians, at an even speed while the shutter is open.
inline zelm::render::LevelImage smeared(const zelm::render::LevelImage& image, double length, double direction) {
    const int steps = std::max(2, 2 * static_cast<int>(std::ceil(length)));
    zelm::render::LevelImage result = image;
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            double sum = 0.0;
            for (int k = 0; k < steps; ++k) {
                const double way = length * ((k + 0.5) / steps - 0.5);
                sum += levelAt(image, x + way * std::cos(direction), y + way * std::sin(direction));
            }
            result.levels[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                          static_cast<std::size_t>(x)] = sum / steps;
        }
    }
    return result;
}

}  // namespace zelmtest

#endif
