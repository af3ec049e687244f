// Renders what a camera sees of a dot plate, as an 8-bit image with its truth.
//
// The image is exact rather than sampled: a pixel is the integral, over its square, of the scene convolved with the
// Gaussian blur, computed by Green's theorem as an integral along the projected outlines (through pose, projection and
// lens), by rules that converge to rounding. The light multiplies the blurred image; then noise is added, and
// the sum is rounded and clipped to 0..255.
#ifndef ZELM_RENDER_RENDER_VIEW_H
#define ZELM_RENDER_RENDER_VIEW_H

#include <cstdint>
#include <vector>

#include "scene.h"
#include "truth.h"

namespace zelm::render {

// Gray levels before noise and rounding; pixel (x, y) is levels[y * width + x].
struct LevelImage {
    int width = 0;
    int height = 0;
    std::vector<double> levels;

    double at(int x, int y) const {
        return levels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
};

// An 8-bit image; pixel (x, y) is pixels[y * width + x].
struct GrayImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;

    std::uint8_t at(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
};

struct RenderedView {
    GrayImage image;
    std::vector<DotTruth> dots;  // in the order of plateDots
};

struct RenderedPair {
    RenderedView left;
    RenderedView right;
};

// Exact levels, without noise. Throws std::invalid_argument for parameters out of range and std::domain_error when a
// part of the plate is behind the camera or beyond the reach of the lens model.
LevelImage renderLevels(const Plate& plate, const Camera& camera, const Pose& pose, const Optics& optics);

// Adds the noise, rounds and clips. The same seed gives the same noise.
GrayImage digitise(const LevelImage& levels, double noiseSigma, std::uint64_t seed);

// The whole view: renderLevels, digitise and dotTruths.
RenderedView renderView(const Plate& plate, const Camera& camera, const Pose& pose, const Optics& optics,
                        std::uint64_t seed = 1);

// Both views of a rig, with independent noise. `left` is the plate's pose in the left camera.
RenderedPair renderPair(const Plate& plate, const StereoRig& rig, const Pose& left, const Optics& optics,
                        std::uint64_t seed = 1);

}  // namespace zelm::render

#endif
