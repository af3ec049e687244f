// The outline of a dot as points that are found independently of each other, each with its own uncertainty.
#ifndef ZELM_MEASURE_OUTLINE_EDGES_H
#define ZELM_MEASURE_OUTLINE_EDGES_H

#include <zelmLib.h>

#include <optional>
#include <vector>

#include "dotCentre.h"
#include "image.h"

namespace zelm::measure {

struct OutlineEdge {
    Point2d pixel{};
    double deviation = 0.0;  // standard, across the outline, pixels: from the noise of the pixels around
};

struct SeenOutline {
    Ellipse2d ellipse{};             // through the edges
    std::vector<OutlineEdge> edges;  // none: too few to tell a circle from
    double share = 0.0;  // of the outline that is seen: of the sectors, those whose edges are on the ellipse
};

// The outline of the dot that covers the pixel `near`. It is cut into sectors of some 3 pixels; in each, a step from
// one level to the other, blurred as in all others, is laid through all pixels near the outline. Sectors that no such
// step explains (shadows, what hides the dot) are left out, and their neighbours with them. Nothing when no outline
// there is an ellipse; no edges when less than two fifths of it are left.
std::optional<SeenOutline> seenOutline(const DenseImage& image, Point2d near, DotPolarity polarity);

}  // namespace zelm::measure

#endif
