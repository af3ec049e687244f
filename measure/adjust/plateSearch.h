// The dots of a plate in an image whose camera and pose are known: each looked for where it must be, and taken only
// when its own pixels show it.
#ifndef ZELM_MEASURE_PLATE_SEARCH_H
#define ZELM_MEASURE_PLATE_SEARCH_H

#include <vector>

#include "adjustProblem.h"
#include "adjustStart.h"
#include "dotFit.h"
#include "predictedDot.h"

namespace zelm::measure {

struct PlateSearch {
    const Pattern* plate = nullptr;
    const DotPlaces* places = nullptr;
    const AdjustState* state = nullptr;
    Side side = kLeft;

    struct Found {
        DotObservation dot;
        DotFitResult fit;
    };
    // All dots of the plate that the image should show whole. `pose`: from the plate to the base camera.
    std::vector<Found> find(const DenseImage& image, const MotionParameters& pose) const;
};

}  // namespace zelm::measure

#endif
