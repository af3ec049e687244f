// Two calibrations of one camera, as far as its image shows.
#ifndef ZELM_MEASURE_IMAGE_DIFFERENCE_H
#define ZELM_MEASURE_IMAGE_DIFFERENCE_H

#include <optional>

#include "projection.h"
#include "rig.h"

namespace zelm::measure {

struct ImageDifference {
    double rms = 0.0;  // pixels
    double worst = 0.0;
    Point2d worstAt{};
    double unturned = 0.0;  // RMS before the turn
    Vector3 turn{};         // rotation vector: the first camera's frame to the second one's
};

// The direction (x, y, 1) of a raw pixel; nothing where the lens cannot be undone.
std::optional<Vector3> sightOf(const Rig& rig, char side, Point2d raw);

// The second camera's images of the directions of a grid of the first one's pixels, after the turn that brings them
// closest. Throws Fault where the first lens cannot be undone over the image.
ImageDifference imageDifference(const Rig& first, const Rig& second, char side);

}  // namespace zelm::measure

#endif
