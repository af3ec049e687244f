// What is true of a rendered dot.
#ifndef ZELM_RENDER_TRUTH_H
#define ZELM_RENDER_TRUTH_H

#include <vector>

#include "camera.h"

namespace zelm::render {

struct EllipseTruth {
    Pixel centre;
    double a = 0.0;      // semi-major axis in pixels
    double b = 0.0;      // semi-minor axis
    double angle = 0.0;  // of the major axis in radians, from x towards y, in (-pi/2, pi/2]
};

// The three centres differ: perspective and lens move the middle of a circle's image away from the image of its middle.
struct DotTruth {
    PlateDot dot;
    Pixel centre;          // image of the dot's centre
    Pixel centroid;        // of the area inside the dot's projected outline: what a gray-level centroid measures
    EllipseTruth ellipse;  // that fits the projected outline best: what an ellipse through edge points measures
    double radius = 0.0;   // pixels, of the circle with the same area
};

// Truth of every printed dot, in the order of plateDots. Throws std::domain_error where `project` does.
std::vector<DotTruth> dotTruths(const Plate& plate, const Camera& camera, const Pose& pose);

// Truth of one dot.
DotTruth dotTruth(const PlateDot& dot, const Camera& camera, const Pose& pose);

}  // namespace zelm::render

#endif
