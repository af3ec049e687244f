// Points of a flat target as the cameras see them, and the start of an adjustment that they tell.
#ifndef ZELM_MEASURE_POINT_TARGET_H
#define ZELM_MEASURE_POINT_TARGET_H

#include <array>
#include <optional>
#include <vector>

#include "adjustProblem.h"
#include "adjustStart.h"
#include "rig.h"

namespace zelm::measure {

// ZelmMeasurePointViewStatus of the interface.
enum class PointViewStatus { ok, few, line };

struct PointTarget {
    std::array<RigCamera, kSides> cameras;  // models and sizes; without a width there is no such camera
    std::vector<AdjustView> views;
    std::optional<Pattern> plate;  // whose dots the points are; else they are points

    bool has(Side side) const { return cameras[side].width > 0; }
    bool isPair() const { return has(kLeft) && has(kRight); }
    Side only() const { return has(kLeft) ? kLeft : kRight; }
};

// Throws Fault for a record that cannot be meant.
PointTarget pointTargetOf(const ZelmMeasureTargetPoints& points, const std::optional<Pattern>& plate,
                          const DotPlaces& places);

// Whether some image of the view tells where the target stands.
PointViewStatus statusOf(const AdjustView& view);

// Each camera on its own, and their relative pose. Writes the intrinsics into the target's cameras, and leaves views
// out whose target has no place. Throws Fault where the points do not determine a camera.
AdjustState startOf(PointTarget& target);

}  // namespace zelm::measure

#endif
