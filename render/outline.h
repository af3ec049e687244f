// Projected outlines of dots and of the plate as nodes of a quadrature along the curve.
#ifndef ZELM_RENDER_OUTLINE_H
#define ZELM_RENDER_OUTLINE_H

#include <vector>

#include "camera.h"

namespace zelm::render {

// A point of the outline and the weights dx, dy that make a sum over all nodes of f * dy (or f * dx) the integral of f
// along the closed curve.
struct OutlineNode {
    Pixel pixel;
    double dx = 0.0;
    double dy = 0.0;
};

// Nodes of a circle's image, at most `spacing` pixels apart and at least kMinCircleNodes. Equal steps of the circle's
// angle make the trapezoidal rule, which converges exponentially on a smooth closed curve.
inline constexpr int kMinCircleNodes = 48;
std::vector<OutlineNode> circleOutline(const PlateDot& dot, const Camera& camera, const Pose& pose, double spacing);

// Nodes of the image of the plate's edge: Gauss-Legendre panels at most `panel` pixels long.
std::vector<OutlineNode> plateOutline(const Plate& plate, const Camera& camera, const Pose& pose, double panel);

// Corners of a polygon with edges at most `spacing` pixels long, for the exact area coverage of a sharp image.
std::vector<Pixel> circlePolygon(const PlateDot& dot, const Camera& camera, const Pose& pose, double spacing);
std::vector<Pixel> platePolygon(const Plate& plate, const Camera& camera, const Pose& pose, double spacing);

}  // namespace zelm::render

#endif
