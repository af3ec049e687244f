// The dots that a rig was calibrated from, and how well it fits them.
#ifndef ZELM_MEASURE_RIG_DOTS_H
#define ZELM_MEASURE_RIG_DOTS_H

#include <cstddef>
#include <vector>

#include "plateDots.h"
#include "rig.h"

namespace zelm::measure {

// A dot and how far it is from the projection of its place.
struct CalibratedDot {
    Dot dot;
    Point2d error{};  // measured minus projected, pixels
};

// Those dots of a view that have a place on the plate, which the pose tells: all but damaged data.
std::vector<CalibratedDot> calibratedDots(const Rig& rig, const Pattern& plate, char side, std::size_t view);

// Distances of the view's dot pairs from each other's epipolar lines, left image and right image in turn, undistorted
// pixels.
std::vector<double> epipolarDistances(const Rig& rig, const Pattern& plate, std::size_t view);

}  // namespace zelm::measure

#endif
