// Descriptions and handles that the tests of the stereo pair share.
#ifndef ZELM_TEST_STEREO_FIXTURES_H
#define ZELM_TEST_STEREO_FIXTURES_H

#include <cstdint>

#include "zelmLib.h"

namespace zelmtest {

// Closes its object at the end of a test.
struct Handle {
    Zelm2ViewCalib* calib = nullptr;

    Handle() = default;
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { zelm2ViewCalibClose(&calib); }
    [[nodiscard]] Zelm2ViewCalib* get() const { return calib; }
};

// 13 x 11 dots at a pitch of 10, markers 3 pitches from the corner marker, dark dots.
inline Zelm2ViewPatternDesc plainPattern() {
    Zelm2ViewPatternDesc pattern{};
    pattern.d0 = 120.0;
    pattern.d1 = 100.0;
    pattern.d2 = 4.0;
    pattern.d3 = 7.0;
    pattern.d4 = 10.0;
    pattern.d5 = 10.0;
    pattern.d6 = 30.0;
    pattern.d7 = 30.0;
    pattern.markers = 3;
    pattern.polarity = 0;
    pattern.minDotArea = 20;
    pattern.minEdgeStrength = 2.0;
    pattern.minDots = 20;
    return pattern;
}

inline Zelm2ViewCameraDesc cameraPair(std::int32_t leftModel, std::int32_t rightModel, std::int32_t width = 640,
                                      std::int32_t height = 480) {
    return {leftModel, width, height, rightModel, width, height};
}

}  // namespace zelmtest

#endif
