// The centre of one dot near a given pixel.
#ifndef ZELM_MEASURE_DOT_CENTRE_H
#define ZELM_MEASURE_DOT_CENTRE_H

#include <zelmLib.h>

#include <optional>

#include "image.h"

namespace zelm::measure {

enum class DotPolarity { dark, bright };

// The ellipse through the outline of the dot that covers the pixel `near`; nothing where dotCentre() finds none.
std::optional<Ellipse2d> dotEllipse(const DenseImage& image, Point2d near, DotPolarity polarity);

// The centre of the dot that covers the pixel `near`: of the ellipse through its outline, which 20 rays from its inside
// find to a fraction of a pixel. A dot of which up to 40 % of the outline is hidden is measured by the arc that is
// seen, less surely. Nothing when no outline there is an ellipse of some 4 to 120 pixels.
std::optional<Point2d> dotCentre(const DenseImage& image, Point2d near, DotPolarity polarity);

}  // namespace zelm::measure

#endif
