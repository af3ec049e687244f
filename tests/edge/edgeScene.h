// Images for the edge tests, in closed form and independent of the library.
#ifndef ZELM_TEST_EDGE_SCENE_H
#define ZELM_TEST_EDGE_SCENE_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

#include "random.h"
#include "zelm/edge1d.h"

namespace zelmtest {

// The share of a step edge, blurred by a Gaussian, that is reached at a distance beyond it.
inline double blurredStep(double distance, double blur) {
    return 0.5 * std::erfc(-distance / (blur * std::sqrt(2.0)));
}

class GrayScene {
public:
    // level(x, y) is the gray level at a pixel centre; it is rounded and clipped.
    GrayScene(int width, int height, const std::function<double(double, double)>& level)
        : pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)),
          image{pixels.data(), width, height} {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const double rounded = std::floor(level(x, y) + 0.5);
                at(x, y) = static_cast<std::uint8_t>(std::clamp(rounded, 0.0, 255.0));
            }
        }
    }
    // Columns of constant gray: the profile of a horizontal segment is the list itself.
    explicit GrayScene(const std::vector<int>& profile, int height = 8)
        : GrayScene(static_cast<int>(profile.size()) + 1, height, [&](double x, double) {
              return profile[std::min(static_cast<std::size_t>(x), profile.size() - 1)];
          }) {}
    GrayScene(const GrayScene&) = delete;
    GrayScene& operator=(const GrayScene&) = delete;

    std::uint8_t& at(int x, int y) {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                      static_cast<std::size_t>(x)];
    }

private:
    std::vector<std::uint8_t> pixels;

public:
    ZelmImage image;
};

struct Found {
    int32_t result = 0;
    Point2d point = {-1.0, -1.0};
    double strength = -1.0;
};

constexpr ZelmEdge1dParam kUsual = {1, 30, 5, 1, 2, 7, 1};

inline Found findEdge(const ZelmImage& image, Point2d p1, Point2d p2, int32_t sign,
                      const ZelmEdge1dParam& param = kUsual) {
    Found found;
    found.result = zelmEdge1dManual(&image, &p1, &p2, sign, &param, &found.point, &found.strength);
    return found;
}

// The edge on a profile of constant columns, searched from its first to its last value.
inline Found findInProfile(const std::vector<int>& profile, int32_t sign, const ZelmEdge1dParam& param = kUsual) {
    const GrayScene scene(profile);
    return findEdge(scene.image, {0.0, 3.0}, {static_cast<double>(profile.size()) - 1.0, 3.0}, sign, param);
}

}  // namespace zelmtest

#endif
