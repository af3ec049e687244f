// Simulated sets of images at the level of dots: random pairs of cameras, plates and views, sound or with a fault whose
// name is known.
#ifndef ZELM_TEST_IMAGE_SET_TRIALS_H
#define ZELM_TEST_IMAGE_SET_TRIALS_H

#include <cstdint>
#include <string>
#include <vector>

#include "pairingCauses.h"

namespace zelmtest {

enum class SetFault {
    none,
    shifted,
    cyclic,
    missing,
    exchangedViews,
    copied,
    turned,
    turnedQuarter,
    mirrored,
    sideMirrored,
    exchangedImages,
    moved,
    otherSession,
    sameView,
    count,
};
const char* nameOf(SetFault fault);

struct SetTrial {
    zelm::measure::SetOfImages set;
    SetFault fault = SetFault::none;
    std::string words;  // what kind of rig, how many views
    zelm::measure::SetCauseKind kind{};
    int offset = 0;                     // of shifted
    std::vector<std::size_t> views;     // to be named; of shifted: those whose right image has a partner
    std::vector<std::size_t> partners;  // of the right images of these views, of copied: the view that has it; or empty
    zelm::measure::Side side = zelm::measure::kLeft;  // of copied, turned, mirrored
    bool isSideTold = false;                          // the side is to be named
    zelm::measure::PoseDifference session;            // of otherSession
};

// The same for the same seed. `views`: 0 for 3 to 30.
SetTrial makeSetTrial(SetFault fault, std::uint64_t seed, int views = 0);

struct SetVerdict {
    bool isRight = false;  // no cause of a sound set; of a fault, its name and images
    std::string words;     // what was said
    zelm::measure::SetJudgement judgement;
    std::vector<zelm::measure::SetCause> causes;
};
SetVerdict judgeTrial(const SetTrial& trial);

}  // namespace zelmtest

#endif
