// What is wrong with each view of a set of images, and which image would fit.
#ifndef ZELM_MEASURE_PAIRING_JUDGE_H
#define ZELM_MEASURE_PAIRING_JUDGE_H

#include <array>
#include <cstddef>
#include <vector>

#include "pairingConsensus.h"

namespace zelm::measure {

// ZelmMeasurePairingFate of the interface.
enum class ViewFate {
    fits,
    unread,        // one of its images has no dots
    otherImage,    // at least one of its images fits another image of the other side
    copy,          // an image that shows what another one of its side shows
    stored,        // an image that fits when it is turned or mirrored
    exchanged,     // the left camera's image is the right one
    otherSession,  // it agrees with some other views that do not fit, on another pair of cameras
    nothingFits,
    unknown,     // too few pairs of images agree to judge by
    sameImages,  // both images are of one camera at one moment
};

constexpr std::size_t kNoImage = static_cast<std::size_t>(-1);

struct ViewJudgement {
    ViewFate fate = ViewFate::unknown;
    Side side = kLeft;                                              // of the image at fault: of copy and stored
    Storing storing{};                                              // of stored
    std::array<std::size_t, kSides> fitsImage{kNoImage, kNoImage};  // of each image, the one of the other side
    std::size_t copyOf = kNoImage;                                  // of copy: the view that has the same image
    std::size_t sameView = kNoImage;     // an earlier view that shows the plate in the same place, in both
    double misfit = 0.0;                 // of the two images as given, pixels; infinite where not told
    std::array<double, kSides> tilts{};  // of the plate against the image plane, radians; negative: unknown
};

struct SetJudgement {
    std::vector<ViewJudgement> views;
    bool isDetermined = false;                 // each camera is determined by its own images
    std::size_t agreeing = 0;                  // pairs of images that agree on one pair of cameras
    bool isSideMirrored = false;               // all images of one side
    std::array<bool, kSides> mayBeMirrored{};  // the side that is; both: the dots do not tell which
    double noise = 0.0;                        // median misfit of what agrees, pixels
    double limit = 0.0;                        // misfit that still passes for noise, pixels
    PoseDifference session;                    // of the views of another session
};

SetJudgement judgeSet(const SetOfImages& set);

}  // namespace zelm::measure

#endif
