#include "platePair.h"

#include <map>
#include <string>

#include "adjustStart.h"
#include "platePose.h"
#include "plateSearch.h"

namespace zelm::measure {
namespace {

// From the plate to the base camera, as the dots of one image tell it.
MotionParameters basePose(const AdjustState& state, const Pattern& plate, const std::vector<DotPair>& read, Side side) {
    const Side posed = state.cameras[side].isParallel ? state.base : side;
    std::vector<DotObservation> dots;
    for (const DotPair& pair : read) {
        dots.push_back(plateDot(plate, pair.index, {}));
        dots.back().pixel = posed == kLeft ? pair.left : pair.right;
    }
    const auto pose = posedPlate(state, posed, dots);
    if (!pose) {
        refuse("the " + std::to_string(dots.size()) + " dots that both images show do not place the plate before the " +
               (posed == kLeft ? "left" : "right") + " camera: give a view that shows more of it");
    }
    return posed == state.base ? *pose : composed(inverted(state.relative), *pose);
}

}  // namespace

std::vector<std::optional<DotPair>> refinedPair(const Rig& rig, const Pattern& plate, const std::vector<DotPair>& read,
                                                const DenseImage& left, const DenseImage& right) {
    const AdjustState state = stateOf(rig, plate);
    const DotPlaces asPrinted;
    std::array<std::map<GridIndex, Point2d>, kSides> confirmed;
    for (const Side side : {kLeft, kRight}) {
        const PlateSearch search{&plate, &asPrinted, &state, side};
        for (const auto& found : search.find(side == kLeft ? left : right, basePose(state, plate, read, side))) {
            if (found.fit.ok) {
                confirmed[side].emplace(found.dot.index, found.dot.pixel);
            }
        }
    }
    std::vector<std::optional<DotPair>> refined;
    for (const DotPair& dot : read) {
        const auto inLeft = confirmed[kLeft].find(dot.index);
        const auto inRight = confirmed[kRight].find(dot.index);
        const bool isConfirmed = inLeft != confirmed[kLeft].end() && inRight != confirmed[kRight].end();
        refined.push_back(isConfirmed ? std::optional(DotPair{dot.index, inLeft->second, inRight->second})
                                      : std::nullopt);
    }
    return refined;
}

}  // namespace zelm::measure
