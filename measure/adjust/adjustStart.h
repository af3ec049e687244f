// From a calibrated rig with its dots to what an adjustment works on.
#ifndef ZELM_MEASURE_ADJUST_START_H
#define ZELM_MEASURE_ADJUST_START_H

#include <cstddef>
#include <map>
#include <vector>

#include "adjustProblem.h"
#include "rig.h"

namespace zelm::measure {

// Measured places of dots on the plate, plate units, by their grid index; those not listed stand where they should.
using DotPlaces = std::map<GridIndex, Vector3>;

// The start: the rig's own parameters. Throws Fault for a rig of two parallel cameras, which its one view determines.
AdjustState stateOf(const Rig& rig, const Pattern& plate);

// The dots of all views, put on the plate's grid by the state.
std::vector<AdjustView> viewsOf(const Rig& rig, const Pattern& plate, const AdjustState& state,
                                const DotPlaces& places);

// A dot of the plate that was not seen, for places of the grid.
DotObservation plateDot(const Pattern& plate, GridIndex index, const DotPlaces& places);

MotionParameters motionParameters(const Matrix3& R, const Vector3& t);
// After `first`, `second`.
MotionParameters composed(const MotionParameters& second, const MotionParameters& first);
MotionParameters inverted(const MotionParameters& motion);
// From the plate of a view to the camera of a side.
MotionParameters poseOf(const AdjustState& state, Side side, std::size_t view);

}  // namespace zelm::measure

#endif
