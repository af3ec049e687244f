#include "noise.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zelm::measure {

double noiseOf(const ZelmMeasureImage& image) {
    // A filter that lets neither slopes nor curvature along the axes through (Immerkaer, 1996), in blocks; the
    // smoothest twentieth of the blocks tells.
    constexpr int kBlock = 16;
    constexpr double kPart = 0.05;
    constexpr double kLeast = 0.3;  // gray levels: what rounding to whole ones makes
    std::vector<double> blocks;
    for (int y0 = 1; y0 + kBlock < image.height; y0 += kBlock) {
        for (int x0 = 1; x0 + kBlock < image.width; x0 += kBlock) {
            std::int64_t sum = 0;
            for (int y = y0; y < y0 + kBlock; ++y) {
                const std::uint8_t* const p = image.pixels + y * image.stride;
                for (int x = x0; x < x0 + kBlock; ++x) {
                    const std::uint8_t* const a = p + x;
                    const std::uint8_t* const up = a - image.stride;
                    const std::uint8_t* const down = a + image.stride;
                    const int v =
                        up[-1] - 2 * up[0] + up[1] - 2 * a[-1] + 4 * a[0] - 2 * a[1] + down[-1] - 2 * down[0] + down[1];
                    sum += v * v;
                }
            }
            // The squares of the filter's factors add up to 36.
            blocks.push_back(std::sqrt(static_cast<double>(sum) / (36.0 * kBlock * kBlock)));
        }
    }
    if (blocks.empty()) {
        return 1.0;
    }
    const auto tenth = blocks.begin() + static_cast<std::ptrdiff_t>(kPart * static_cast<double>(blocks.size()));
    std::nth_element(blocks.begin(), tenth, blocks.end());
    return std::max(*tenth, kLeast);
}

}  // namespace zelm::measure
