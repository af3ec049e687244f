#include "epipolarLine.h"

#include <cmath>

#include "failure.h"

namespace zelm::tool {

Zelm2ViewEpiLine epipolarLine(const LoadedRig& rig, char target, Point2d pixel) {
    Zelm2ViewEpiLine line{};
    const std::int32_t status = zelm2ViewCalcEpiLine(rig.calib(), target, &pixel, &line);
    if (status < 0) {
        failData("pixel ({}, {}): so far outside the image that the lens distortion cannot be removed", pixel.x,
                 pixel.y);
    }
    if (!std::isfinite(line.a) || !std::isfinite(line.b) || !std::isfinite(line.c)) {
        failData("pixel ({}, {}): shows the other camera itself, whose view of it is a point, not a line", pixel.x,
                 pixel.y);
    }
    return line;
}

bool isVisible(const Zelm2ViewEpiLine& line) {
    return line.x0 != 0.0 || line.y0 != 0.0 || line.x1 != 0.0 || line.y1 != 0.0;
}

void drawLine(Canvas& canvas, const Zelm2ViewEpiLine& line, double x, Colour colour) {
    if (isVisible(line)) {
        canvas.line({line.x0 + x, line.y0}, {line.x1 + x, line.y1}, colour);
    }
}

}  // namespace zelm::tool
