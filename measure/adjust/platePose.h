// The pose of a plate from the dots of one image, and the dots that an image must show.
#ifndef ZELM_MEASURE_PLATE_POSE_H
#define ZELM_MEASURE_PLATE_POSE_H

#include <optional>
#include <span>

#include "adjustProblem.h"
#include "predictedDot.h"

namespace zelm::measure {

// The pose to the camera of a perspective side; nothing where the dots do not determine one. Robust against some wrong
// dots.
std::optional<MotionParameters> posedPlate(const AdjustState& state, Side side, std::span<const DotObservation> dots);

}  // namespace zelm::measure

#endif
