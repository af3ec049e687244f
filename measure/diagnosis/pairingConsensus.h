// The pair of cameras on which most images of a set agree, and which of its images show one plate in one place.
#ifndef ZELM_MEASURE_PAIRING_CONSENSUS_H
#define ZELM_MEASURE_PAIRING_CONSENSUS_H

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "pairingFit.h"

namespace zelm::measure {

constexpr std::size_t kMinAgreeing = 2;  // pairs of images: two share a relative pose by six numbers

// The images as listed, of these views.
ImagePair asGiven(std::size_t left, std::size_t right);

// Pairs of images that agree, and by what.
struct Consensus {
    std::vector<ImagePair> pairs;
    PairingFit fit;
    bool isSideMirrored = false;

    std::size_t count() const { return fit.count(); }
    void dropMisfits();
    bool isCoupled(Side listed, std::size_t image) const;  // is part of one of its pairs
};

using CamerasAlone = std::array<std::optional<SingleCamera>, kSides>;

// A set, and what its images agree on.
struct AgreedSet {
    SetOfImages set;                           // as given, or with one side mirrored back
    std::array<SingleCamera, kSides> cameras;  // each by its own images
    Consensus consensus;                       // of fewer than kMinAgreeing pairs: there is none
    bool isDetermined = false;                 // the images of each side determine their camera
    bool isSideMirrored = false;
    std::array<bool, kSides> mayBeMirrored{};  // the side that is; both: the dots do not tell which
};

// `readable` are the views of which both images have dots; `alone` is each camera as its images determine it.
AgreedSet agreedOf(const SetOfImages& set, const std::vector<std::size_t>& readable, const CamerasAlone& alone);

// How otherwise the right camera stands to the left one.
struct PoseDifference {
    double turn = 0.0;   // radians
    double shift = 0.0;  // of its centre, plate units
};

struct Session {
    std::vector<std::size_t> views;
    PoseDifference difference;  // from what the set agrees on
};
// Those of the views as given that share another relative pose of the cameras; none where they are too few.
Session sharedSession(const AgreedSet& agreed, const std::vector<std::size_t>& views);

}  // namespace zelm::measure

#endif
