// What a camera sees of a printed circle: the ellipse of its outline, through projection and lens.
//
// The projection of a circle is an ellipse whose centre is not the projection of the circle's centre, and the lens
// moves the outline once more. What readers and fits of dots measure is the centre of the ellipse through that outline.
#ifndef ZELM_MEASURE_DOT_OUTLINE_H
#define ZELM_MEASURE_DOT_OUTLINE_H

#include <array>
#include <cstddef>

#include "projection.h"

namespace zelm::measure {

// A circle in the camera's frame: centre + cos(a) first + sin(a) second.
struct CircleInCamera {
    Vector3 centre{};
    Vector3 first{};
    Vector3 second{};
};

struct OutlineEllipse {
    Point2d centre{};              // of the ellipse, pixels
    std::array<double, 4> axes{};  // row-major: the outline is centre + axes (cos, sin)
};

// With its derivatives by centre, first and second of the circle, 9 numbers, and by the camera's parameters.
struct OutlineCentre {
    Point2d centre{};
    std::array<std::array<double, 9>, 2> byCircle{};
    std::array<std::array<double, kCameraParameters>, 2> byParameters{};
};

// A circle without a radius is a point, which is seen where it is. The circle lies before a perspective camera; other
// circles give numbers that mean nothing.
OutlineEllipse dotOutline(const ProjectionCamera& camera, const CircleInCamera& circle);
OutlineCentre outlineCentre(const ProjectionCamera& camera, const CircleInCamera& circle);

}  // namespace zelm::measure

#endif
