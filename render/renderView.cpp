#include "renderView.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "coverage.h"
#include "outline.h"
#include "randomSource.h"

namespace zelm::render {
namespace {

constexpr double kNodesPerSigma = 1.0 / 0.8;  // the trapezoidal rule's error is then about exp(-30)
constexpr double kPanelSigmas = 1.0;          // the Gauss-Legendre panels' error is then about 4e-10
constexpr double kSharpDotEdge = 0.02;        // pixels; a dot of radius 10 px then comes out 3e-6 px too small
constexpr double kSharpPlateEdge = 0.25;      // pixels; the plate's edges are nearly straight

// +1 when the camera looks at the printed side: outlines then run from x towards y.
double orientation(const Camera& camera, const Pose& pose) {
    const ProjectedPoint p = project(camera, pose, {0.0, 0.0});
    return p.dxdX * p.dydY - p.dxdY * p.dydX < 0.0 ? -1.0 : 1.0;
}

void addPlate(Coverage& coverage, const Plate& plate, const Camera& camera, const Pose& pose, double sigma,
              double level) {
    if (sigma > 0.0) {
        coverage.add(plateOutline(plate, camera, pose, kPanelSigmas * sigma), level);
    } else {
        coverage.addSharp(platePolygon(plate, camera, pose, kSharpPlateEdge), level);
    }
}

void addDot(Coverage& coverage, const PlateDot& dot, const Camera& camera, const Pose& pose, double sigma,
            double level) {
    if (sigma > 0.0) {
        coverage.add(circleOutline(dot, camera, pose, sigma / kNodesPerSigma), level);
    } else {
        coverage.addSharp(circlePolygon(dot, camera, pose, kSharpDotEdge), level);
    }
}

void shine(LevelImage& image, const Camera& camera, const Light& light) {
    double* level = image.levels.data();
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            *level++ *= light.at(camera, x, y);
        }
    }
}

}  // namespace

LevelImage renderLevels(const Plate& plate, const Camera& camera, const Pose& pose, const Optics& optics) {
    checkPlate(plate);
    checkCamera(camera);
    checkOptics(optics);
    const GrayLevels& levels = optics.levels;
    const double sign = orientation(camera, pose);
    Coverage coverage(camera.width, camera.height, optics.blurSigma);
    addPlate(coverage, plate, camera, pose, optics.blurSigma, sign * (levels.plate - levels.ground));
    for (const PlateDot& dot : plateDots(plate)) {
        addDot(coverage, dot, camera, pose, optics.blurSigma, sign * (levels.dots - levels.plate));
    }
    LevelImage image{camera.width, camera.height, std::move(coverage).finish(levels.ground)};
    shine(image, camera, optics.light);
    return image;
}

GrayImage digitise(const LevelImage& levels, double noiseSigma, std::uint64_t seed) {
    RandomSource random(seed);
    GrayImage image{levels.width, levels.height, {}};
    image.pixels.reserve(levels.levels.size());
    for (const double level : levels.levels) {
        const double noisy = noiseSigma > 0.0 ? level + noiseSigma * random.normal() : level;
        image.pixels.push_back(static_cast<std::uint8_t>(std::clamp(std::floor(noisy + 0.5), 0.0, 255.0)));
    }
    return image;
}

RenderedView renderView(const Plate& plate, const Camera& camera, const Pose& pose, const Optics& optics,
                        std::uint64_t seed) {
    return {digitise(renderLevels(plate, camera, pose, optics), optics.noiseSigma, seed),
            dotTruths(plate, camera, pose)};
}

RenderedPair renderPair(const Plate& plate, const StereoRig& rig, const Pose& left, const Optics& optics,
                        std::uint64_t seed) {
    // Any constant will do that keeps the right seeds away from the left seeds of other views.
    constexpr std::uint64_t kRightSeed = 0x5851F42D4C957F2DULL;
    return {renderView(plate, rig.left, left, optics, seed),
            renderView(plate, rig.right, compose(rig.rightFromLeft, left), optics, seed ^ kRightSeed)};
}

}  // namespace zelm::render
