// Epipolar lines for people: found, refused in words, drawn.
#ifndef ZELM_TOOL_EPIPOLAR_LINE_H
#define ZELM_TOOL_EPIPOLAR_LINE_H

#include <zelmLib.h>

#include "canvas.h"
#include "rigFile.h"

namespace zelm::tool {

// The line, in the undistorted image of camera `target`, of a raw pixel of the other camera. Throws Failure when the
// pixel has none.
Zelm2ViewEpiLine epipolarLine(const LoadedRig& rig, char target, Point2d pixel);

// Whether any of it lies in the image.
bool isVisible(const Zelm2ViewEpiLine& line);

// Draws the visible part of a line of an image whose left edge is at column x of the canvas.
void drawLine(Canvas& canvas, const Zelm2ViewEpiLine& line, double x, Colour colour);

}  // namespace zelm::tool

#endif
