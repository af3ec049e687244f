// The plate of a plan, and how a view shows it.
#ifndef ZELM_MEASURE_PLAN_PLATE_H
#define ZELM_MEASURE_PLAN_PLATE_H

#include <array>
#include <vector>

#include "planPair.h"
#include "plateDots.h"

namespace zelm::measure {

// Dots as a plan sees them. Of a field of many dots fewer stand for all: each for `weight` of them.
struct PlanPlate {
    std::vector<Vector3> dots;  // places, plate units
    double weight = 1.0;
    double radius = 0.0;               // of a dot, plate units
    std::array<Vector3, 3> markers{};  // places
    double markerRadius = 0.0;
    double halfWidth = 0.0;   // of the field with its outermost dots
    double halfHeight = 0.0;  //
    double minDots = 0.0;     // that an image has to show
    double minDotArea = 0.0;  // pixels
};

// Throws Fault for numbers that cannot be meant.
PlanPlate planPlate(const Pattern& pattern);

// What a view shows.
struct PlateSight {
    std::array<double, kSides> dots{};  // of the field
    std::array<double, kSides>
        tilts{};           // against the line of sight to the plate's middle, radians; over pi / 2: its back
    bool markers = false;  // both cameras see all of them
    double dotArea = 0.0;  // of the dot in the middle where it is smaller, pixels
};

// The pose is from the plate to the left camera.
PlateSight sightOf(const PlanPair& pair, const PlanPlate& plate, const MotionParameters& pose);
// The share of an image that the field takes.
double fillOf(const PlanPair& pair, const PlanPlate& plate, const MotionParameters& pose, Side side);

// Pixels from a dot's centre to the edge of the image that it needs.
double marginOf(const PlanPair& pair, Side side, const Vector3& inLeft, double radius);

// R X + t.
Vector3 moved(const Motion& motion, const Vector3& point);
Motion motionOf(const MotionParameters& parameters);

}  // namespace zelm::measure

#endif
