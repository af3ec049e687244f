// What is wrong with a set of images, once for all the views that it explains.
#ifndef ZELM_MEASURE_PAIRING_CAUSES_H
#define ZELM_MEASURE_PAIRING_CAUSES_H

#include <cstddef>
#include <vector>

#include "pairingJudge.h"

namespace zelm::measure {

// ZelmMeasureSetCauseKind of the interface.
enum class SetCauseKind {
    undetermined,    // the images of a side do not determine their camera
    noAgreement,     // no two pairs of images agree
    shifted,         // one list is shifted against the other one
    exchangedViews,  // two images of a list have changed places
    otherImages,     // images fit others, in no such order
    copies,
    turned,
    mirrored,
    sideMirrored,     // all images of one side
    exchangedImages,  // left and right images within views
    otherSession,
    nothingFits,
    sameViews,   // views that show the plate in the same place as an earlier one
    sameImages,  // left and right image are the same
};

struct SetCause {
    SetCauseKind kind = SetCauseKind::noAgreement;
    std::array<bool, kSides> sides{};  // whose images; both: the dots do not tell
    int offset = 0;                    // of shifted: the right image of view i fits the left one of view i + offset
    bool isCyclic = false;             // of shifted: and goes on at the other end
    int quarterTurns = 0;              // of turned, clockwise
    std::vector<std::size_t> views;    // that it explains
    PoseDifference difference{};       // of otherSession
};

// The causes, those that explain most first; what is merely of no use last.
std::vector<SetCause> causesOf(const SetJudgement& judgement);

}  // namespace zelm::measure

#endif
