// Planes with waves printed on them, as the cameras of a rig see them, in closed form.
#ifndef ZELM_TEST_TEXTURED_PLANE_H
#define ZELM_TEST_TEXTURED_PLANE_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

#include "measureRigs.h"

namespace zelmtest {

// Waves of many directions, none shorter than `shortest` units; never the same twice.
class Waves {
public:
    explicit Waves(double shortest, std::uint64_t seed = 5) {
        Random random(seed);
        for (auto& w : waves) {
            const double angle = random.uniform(0.0, 3.14159265358979);
            const double frequency = 2.0 * 3.14159265358979 / (shortest * random.uniform(1.0, 3.0));
            w = {frequency * std::cos(angle), frequency * std::sin(angle), random.uniform(0.0, 6.28)};
        }
    }
    double operator()(double x, double y) const {
        double sum = 0.0;
        for (const auto& w : waves) {
            sum += std::cos(w[0] * x + w[1] * y + w[2]);
        }
        return 128.0 + 16.0 * sum;
    }

private:
    std::array<std::array<double, 3>, 24> waves{};
};

// A plane of the world: `pose` carries its own coordinates there.
struct TexturedPlane {
    render::Pose pose;
    std::function<double(double, double)> gray;  // of its coordinates

    [[nodiscard]] Point3d world(render::PlanePoint p) const {
        const auto X = inCamera(pose, {p.x, p.y, 0.0});
        return {X[0], X[1], X[2]};
    }
};

// Where the ray of a pixel as taken meets a plane, by Newton's method on the renderer's projection.
inline render::PlanePoint planePointAt(const RigTruth& rig, const TexturedPlane& plane, char side, Point2d pixel,
                                       render::PlanePoint start = {}) {
    const render::Pose pose = render::compose(rig.pose(side), plane.pose);
    render::PlanePoint p = start;
    for (int i = 0; i < 20; ++i) {
        const render::ProjectedPoint at = render::project(rig.camera(side), pose, p);
        const double rx = pixel.x - at.pixel.x;
        const double ry = pixel.y - at.pixel.y;
        const double determinant = at.dxdX * at.dydY - at.dxdY * at.dydX;
        p.x += (at.dydY * rx - at.dxdY * ry) / determinant;
        p.y += (at.dxdX * ry - at.dydX * rx) / determinant;
        if (std::fabs(rx) + std::fabs(ry) < 1e-6) {  // the step just made is quadratically better
            break;
        }
    }
    return p;
}

inline Point3d worldPointAt(const RigTruth& rig, const TexturedPlane& plane, Point2d leftPixel) {
    return plane.world(planePointAt(rig, plane, 'L', leftPixel));
}

using GrayPixels = std::vector<std::uint8_t>;

// A camera's picture of a plane, sampled at the pixels' centres: for waves of several pixels.
inline GrayPixels pictureOf(const RigTruth& rig, const TexturedPlane& plane, char side, double noise = 0.0) {
    Random random(side == 'L' ? 11 : 12);
    GrayPixels pixels;
    render::PlanePoint row{};
    for (int y = 0; y < rig.left.height; ++y) {
        render::PlanePoint p = row;
        for (int x = 0; x < rig.left.width; ++x) {
            p = planePointAt(rig, plane, side, {static_cast<double>(x), static_cast<double>(y)}, p);
            row = x == 0 ? p : row;
            const double value = plane.gray(p.x, p.y) + (noise > 0.0 ? noise * random.normal() : 0.0);
            pixels.push_back(static_cast<std::uint8_t>(std::clamp(value + 0.5, 0.0, 255.0)));
        }
    }
    return pixels;
}

// The gray value between the pixels of a picture.
inline double grayAt(const GrayPixels& pixels, int width, double x, double y) {
    const int x0 = static_cast<int>(std::floor(x));
    const int y0 = static_cast<int>(std::floor(y));
    const double fx = x - x0;
    const double fy = y - y0;
    const auto at = [&](int column, int row) {
        return static_cast<double>(pixels[static_cast<std::size_t>(width * row + column)]);
    };
    return (1.0 - fy) * ((1.0 - fx) * at(x0, y0) + fx * at(x0 + 1, y0)) +
           fy * ((1.0 - fx) * at(x0, y0 + 1) + fx * at(x0 + 1, y0 + 1));
}

// A rig and its two pictures of a plane.
struct PlanePictures {
    RigTruth rig;
    TexturedPlane plane;
    GrayPixels left;
    GrayPixels right;

    PlanePictures(const RigTruth& rigTruth, const TexturedPlane& texturedPlane, double noise = 0.0)
        : rig(rigTruth),
          plane(texturedPlane),
          left(pictureOf(rig, plane, 'L', noise)),
          right(pictureOf(rig, plane, 'R', noise)) {}
    [[nodiscard]] ZelmMeasureImage image(char side) const {
        return {side == 'L' ? left.data() : right.data(), rig.left.width, rig.left.height, rig.left.width};
    }
    [[nodiscard]] double depthAt(Point2d leftPixel) const {
        return rig.depth('L', worldPointAt(rig, plane, leftPixel));
    }
};

// A plane a little behind the plate of view 0, slanted by some 20 degrees, with waves of 8 pixels and more (7 in a
// parallel camera of 3 pixels a unit).
inline TexturedPlane slantedPlane() {
    return {poseOfVectors({0.2, 0.3, 0.0}, {0.0, 0.0, 4.0}), Waves(2.2)};
}

}  // namespace zelmtest

#endif
