// What images that do not agree as given may be: of another view, turned or mirrored, or the other camera's.
#ifndef ZELM_MEASURE_PAIRING_EXPLANATION_H
#define ZELM_MEASURE_PAIRING_EXPLANATION_H

#include <array>
#include <cstddef>
#include <vector>

#include "pairingConsensus.h"

namespace zelm::measure {

using PosedImages = std::array<std::vector<PosedImage>, kSides>;

// The poses of all images before the cameras of a state. They refer to the fitter's dots.
PosedImages posesOf(const AdjustState& state, const PairingFitter& fitter, std::size_t views);

// Adds to the consensus the pairs of images that an adjustment of all confirms. Views that fit as given stay so.
void explainOthers(AgreedSet& agreed, const PairingFitter& fitter);

}  // namespace zelm::measure

#endif
