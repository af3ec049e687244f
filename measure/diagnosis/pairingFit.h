// Whether pairs of images agree on one pair of cameras: an adjustment of them all, to the noise of their dots.
#ifndef ZELM_MEASURE_PAIRING_FIT_H
#define ZELM_MEASURE_PAIRING_FIT_H

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "pairedImages.h"

namespace zelm::measure {

// An image of the set as it may have been meant.
struct MeantImage {
    Side listed = kLeft;  // the list that names it
    std::size_t image = 0;
    Storing storing{};
    auto operator<=>(const MeantImage&) const = default;
};

// Two images that may show one plate in one place: what the left and what the right camera saw.
using ImagePair = std::array<MeantImage, kSides>;

struct PairingFit {
    AdjustState state;            // cameras and relative pose
    std::vector<double> misfits;  // of each pair, standard deviation of a coordinate by the worse image, pixels
    std::vector<bool> fits;       // of each pair: it agrees with the others to its noise
    double typical = 0.0;         // median misfit of those that fit, pixels
    double limit = 0.0;           // misfit that still passes for noise, pixels

    std::size_t count() const;
};

class PairingFitter {
public:
    PairingFitter(const SetOfImages& imageSet, const SingleCamera& leftCamera, const SingleCamera& rightCamera);

    // Images of no pair help to determine their cameras. Nothing where the pairs do not agree.
    std::optional<PairingFit> fit(const std::vector<ImagePair>& pairs, const PlatePose& relative) const;
    // Also without one of the pairs, where few do not agree: the adjustment itself leaves out one of four or more.
    std::optional<PairingFit> fitMost(const std::vector<ImagePair>& pairs, const PlatePose& relative) const;

    const std::vector<DotObservation>& observations(Side side, std::size_t image) const { return plain[side][image]; }
    std::vector<DotObservation> observations(const MeantImage& image) const;

private:
    std::optional<PlatePose> startPose(Side camera, const MeantImage& image, const AdjustState& state) const;

    const SetOfImages& set;
    std::array<const SingleCamera*, kSides> singles;
    std::array<std::vector<std::vector<DotObservation>>, kSides> plain;
};

// An image's dots, and the pose that they tell of the plate; none where they tell none.
struct PosedImage {
    const std::vector<DotObservation>* dots = nullptr;
    std::optional<MotionParameters> pose;
};

// Standard deviation of a coordinate of one camera's dots where the other camera's dots put the plate, the mean of both
// ways; infinite where they tell no pose.
double transferMisfit(const AdjustState& state, const PosedImage& left, const PosedImage& right);

}  // namespace zelm::measure

#endif
