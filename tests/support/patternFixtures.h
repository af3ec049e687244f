// Rendered plates for the tests of pattern reading.
#ifndef ZELM_TEST_PATTERN_FIXTURES_H
#define ZELM_TEST_PATTERN_FIXTURES_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "renderView.h"
#include "stereoFixtures.h"

namespace zelmtest {

namespace render = zelm::render;

// The description that a user of this plate would write.
inline Zelm2ViewPatternDesc describe(const render::Plate& plate) {
    auto pattern = plainPattern();
    pattern.d0 = render::fieldExtentX(plate);
    pattern.d1 = render::fieldExtentY(plate);
    pattern.d2 = plate.dotDiameter;
    pattern.d3 = plate.markerDiameter;
    pattern.d4 = plate.pitchX;
    pattern.d5 = plate.pitchY;
    pattern.d6 = plate.markerX * plate.pitchX;
    pattern.d7 = plate.markerY * plate.pitchY;
    pattern.polarity = plate.polarity == render::Polarity::lightDots ? 1 : 0;
    return pattern;
}

// A camera of the tests: 640 x 480, a little over 40 degrees wide.
inline render::Camera testCamera() {
    render::Camera camera;
    camera.width = 640;
    camera.height = 480;
    camera.fx = camera.fy = 845.0;
    camera.cx = 319.5;
    camera.cy = 239.5;
    return camera;
}

// 7 x 5 dots around the corner marker at a pitch of 12.
inline render::Plate smallPlate() {
    render::Plate plate;
    plate.minX = -3;
    plate.maxX = 3;
    plate.minY = -2;
    plate.maxY = 2;
    plate.pitchX = plate.pitchY = 12.0;
    plate.dotDiameter = 5.0;
    plate.markerDiameter = 8.75;
    plate.markerX = 2;
    plate.markerY = 2;
    return plate;
}

inline render::Aim aimAt(const render::Camera& camera, double scale, double roll = 0.0, double tilt = 0.0,
                         double tiltAxis = 0.0) {
    render::Aim aim;
    aim.pixel = {camera.cx, camera.cy};
    aim.scale = scale;
    aim.rollDegrees = roll;
    aim.tiltDegrees = tilt;
    aim.tiltAxisDegrees = tiltAxis;
    return aim;
}

inline render::RenderedView renderAt(const render::Plate& plate, const render::Camera& camera, const render::Aim& aim,
                                     double noise = 0.0) {
    render::Optics optics;
    optics.levels = render::GrayLevels::matching(plate.polarity);
    optics.noiseSigma = noise;
    return render::renderView(plate, camera, render::aimedPose(camera, aim), optics);
}

// The truth nearest to an image point.
inline const render::DotTruth& nearestTruth(const std::vector<render::DotTruth>& truths, const Point2d& point) {
    return *std::min_element(truths.begin(), truths.end(), [&point](const auto& a, const auto& b) {
        const auto distance = [&point](const render::DotTruth& t) {
            return std::hypot(t.ellipse.centre.x - point.x, t.ellipse.centre.y - point.y);
        };
        return distance(a) < distance(b);
    });
}

// Dots that stand farther than this from their truth, or with other plane coordinates. The grid assignment tells dots
// apart that lie many pixels away from each other; half a pixel is far above the error of any dot's centre.
inline int countWrongDots(const std::vector<render::DotTruth>& truths, const Zelm2ViewPtnEntry& entry,
                          double mostPixels = 0.5) {
    int wrong = 0;
    for (std::int32_t i = 0; i < entry.count; ++i) {
        const auto& truth = nearestTruth(truths, entry.image[i]);
        const bool isNear = std::hypot(truth.ellipse.centre.x - entry.image[i].x,
                                       truth.ellipse.centre.y - entry.image[i].y) <= mostPixels;
        const bool isPlaced = std::fabs(entry.plane[i].x - truth.dot.centre.x) < 1e-9 &&
                              std::fabs(entry.plane[i].y - truth.dot.centre.y) < 1e-9;
        wrong += isNear && isPlaced ? 0 : 1;
    }
    return wrong;
}

}  // namespace zelmtest

#endif
