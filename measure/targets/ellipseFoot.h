// The place on an ellipse that is nearest to a pixel.
#ifndef ZELM_MEASURE_ELLIPSE_FOOT_H
#define ZELM_MEASURE_ELLIPSE_FOOT_H

#include <zelmLib.h>

namespace zelm::measure {

// A place on an ellipse: its parameter angle, position, outward normal and curvature.
struct EllipsePlace {
    double angle = 0.0;  // radians
    Point2d pixel{};
    Point2d normal{};
    double curvature = 0.0;  // 1 / pixel
};

EllipsePlace placeOn(const Ellipse2d& ellipse, double angle);

// Found by Newton steps from the pixel's own direction; good for pixels within half a semi-minor axis of the outline.
struct EllipseFoot {
    double angle = 0.0;     // of the foot, 0 to 2 pi
    double distance = 0.0;  // pixels, positive outside
};
EllipseFoot footOn(const Ellipse2d& ellipse, Point2d pixel);

double perimeterOf(const Ellipse2d& ellipse);

}  // namespace zelm::measure

#endif
