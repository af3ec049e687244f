// The dots of a view of a plate, measured anew on the pixels of both images.
#ifndef ZELM_MEASURE_PLATE_PAIR_H
#define ZELM_MEASURE_PLATE_PAIR_H

#include <optional>
#include <vector>

#include "image.h"
#include "platePoints.h"

namespace zelm::measure {

// A dot each of those read: nothing where the pixels of an image do not confirm it. Each perspective image tells the
// plate's place before its own camera, so that cameras that have moved against each other do not matter. Throws Fault
// where the dots do not place the plate.
std::vector<std::optional<DotPair>> refinedPair(const Rig& rig, const Pattern& plate, const std::vector<DotPair>& read,
                                                const DenseImage& left, const DenseImage& right);

}  // namespace zelm::measure

#endif
