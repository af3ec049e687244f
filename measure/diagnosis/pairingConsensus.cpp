#include "pairingConsensus.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "pairingVote.h"
#include "platePose.h"

namespace zelm::measure {
namespace {

constexpr std::size_t kProposals = 3;  // of the vote, that are adjusted
constexpr double kMinShare = 0.6;      // of the views that fit as given, beyond which no other pairing is looked for
// Few views may leave a camera undetermined that is sound; what many leave so, or what fits no camera, is no view of
// this plate.
constexpr std::size_t kMaxRoughViews = 6;
constexpr double kMaxRoughError = 0.004;   // of the image's width: lens and principal point are not estimated
constexpr double kMaxMirroredError = 2.0;  // pixels; of images that were mirrored indeed, some tenths are left

// In a mirror, columns of another pitch than the rows' are taken for rows: no camera sees a plate so.
bool hasUnequalPitches(const Pattern& plate) {
    constexpr double kMaxDifference = 1e-3;
    return std::fabs(plate.d4 / plate.d5 - 1.0) > kMaxDifference;
}

std::vector<std::pair<std::size_t, std::size_t>> indicesOf(const std::vector<ImagePair>& pairs) {
    std::vector<std::pair<std::size_t, std::size_t>> indices;
    indices.reserve(pairs.size());
    for (const ImagePair& pair : pairs) {
        indices.emplace_back(pair[kLeft].image, pair[kRight].image);
    }
    return indices;
}

std::vector<ImagePair> asGivenPairs(const CandidatePairing& candidate) {
    std::vector<ImagePair> pairs;
    pairs.reserve(candidate.pairs.size());
    for (const auto& [left, right] : candidate.pairs) {
        pairs.push_back(asGiven(left, right));
    }
    return pairs;
}

std::vector<ImagePair> pairsOfViews(const std::vector<std::size_t>& views) {
    std::vector<ImagePair> pairs;
    pairs.reserve(views.size());
    for (const std::size_t view : views) {
        pairs.push_back(asGiven(view, view));
    }
    return pairs;
}

// In a mirror the plate's longer side lies across: its outermost dots are never read.
std::array<bool, kSides> sidesThatMayBeMirrored(const SetOfImages& images) {
    const int columns = static_cast<int>(std::floor(0.5 * images.plate.d0 / images.plate.d4 + 1e-9));
    const int rows = static_cast<int>(std::floor(0.5 * images.plate.d1 / images.plate.d5 + 1e-9));
    std::array<bool, kSides> lacks{};
    for (const Side side : {kLeft, kRight}) {
        int shown = 0;
        for (const ImageDots& dots : images.images[side]) {
            for (const Dot& dot : dots) {
                shown = std::max(shown, std::abs(columns > rows ? dot.index.x : dot.index.y));
            }
        }
        lacks[side] = columns != rows && shown <= std::min(columns, rows);
    }
    return lacks[kLeft] != lacks[kRight] ? lacks : std::array<bool, kSides>{true, true};
}

PoseDifference differenceOf(const PlatePose& a, const PlatePose& b) {
    const Vector3 from = timesTransposed(a.R, a.t);
    const Vector3 to = timesTransposed(b.R, b.t);
    double trace = 0.0;  // of the turn between both
    for (std::size_t i = 0; i < a.R.size(); ++i) {
        trace += a.R[i] * b.R[i];
    }
    return {std::acos(std::clamp(0.5 * (trace - 1.0), -1.0, 1.0)),
            std::hypot(to[0] - from[0], to[1] - from[1], to[2] - from[2])};
}

class Finder {
public:
    Finder(const SetOfImages& given, const std::vector<std::size_t>& readable, const CamerasAlone& camerasAlone)
        : pairs(pairsOfViews(readable)), alone(camerasAlone) {
        agreed.set = given;
    }

    AgreedSet run() {
        if (hasMirroredTwin(set.plate) && hasUnequalPitches(set.plate)) {
            determineMirrored();
        }
        agreed.isDetermined = alone[kLeft] && alone[kRight];
        determineRoughly();
        if (alone[kLeft] && alone[kRight]) {
            cameras = {*alone[kLeft], *alone[kRight]};
            find();
        }
        if (agreed.isSideMirrored && consensus.count() <= kMinAgreeing) {
            // A mirror that no view confirms only happened to settle what the images leave open.
            agreed.isSideMirrored = agreed.isDetermined = false;
            consensus = {};
        }
        return std::move(agreed);
    }

private:
    void mirror(Side side) {
        for (ImageDots& dots : set.images[side]) {
            dots = restored(set, side, dots, {0, true});
        }
    }

    // A side of which the images determine a camera only when they are mirrored back.
    void determineMirrored() {
        for (const Side side : {kLeft, kRight}) {
            if (alone[side] || !alone[side == kLeft ? kRight : kLeft]) {
                continue;
            }
            const std::vector<ImageDots> plain = set.images[side];
            mirror(side);
            alone[side] = calibratedAlone(set, side);
            if (alone[side] && alone[side]->error > kMaxMirroredError) {
                alone[side].reset();
            }
            agreed.isSideMirrored = alone[side].has_value();
            agreed.mayBeMirrored = {side == kLeft, side == kRight};
            if (!alone[side]) {
                set.images[side] = plain;
            }
        }
    }

    void determineRoughly() {
        for (const Side side : {kLeft, kRight}) {
            if (!alone[side] && set.views() > kMinAgreeing && set.views() <= kMaxRoughViews) {
                const std::optional<SingleCamera> rough = roughlyCalibrated(set, side);
                if (rough && rough->error <= kMaxRoughError * set.sizes[side].width) {
                    alone[side] = rough;
                }
            }
        }
    }

    void find() {
        const CandidatePairing shared = sharedBy(set, cameras[kLeft], cameras[kRight], indicesOf(pairs));
        consensus = adjusted(asGivenPairs(shared), shared.relative, false);
        if (consensus.count() >= kMinAgreeing &&
            static_cast<double>(consensus.count()) >= kMinShare * static_cast<double>(pairs.size())) {
            return;
        }
        // Few views determine cameras so badly that images which belong together look far apart before both cameras are
        // adjusted together. No other pairing is looked for while the set as it is may be sound.
        if (pairs.size() <= kMaxRoughViews) {
            Consensus all = adjusted(pairs, shared.relative, false);
            if (all.count() >= kMinAgreeing && all.count() == pairs.size()) {
                consensus = std::move(all);
                return;
            }
        }
        vote(false);
        if (hasMirroredTwin(set.plate) && !agreed.isSideMirrored && 2 * consensus.count() < pairs.size()) {
            // With equal pitches, a mirrored left camera comes to the same as a mirrored right one.
            voteMirrored(kRight);
            if (hasUnequalPitches(set.plate) && !agreed.isSideMirrored) {
                voteMirrored(kLeft);
            }
        }
        if (consensus.count() < kMinAgreeing) {
            consensus = adjusted(pairs, shared.relative, false);
        }
    }

    Consensus adjusted(const std::vector<ImagePair>& some, const PlatePose& relative, bool isSideMirrored) const {
        Consensus result;
        if (some.size() < kMinAgreeing) {
            return result;
        }
        if (auto fit = PairingFitter(set, cameras[kLeft], cameras[kRight]).fitMost(some, relative)) {
            result = {some, std::move(*fit), isSideMirrored};
            result.dropMisfits();
        }
        return result;
    }

    void vote(bool isSideMirrored) {
        for (const CandidatePairing& candidate : proposePairings(set, cameras[kLeft], cameras[kRight], kProposals)) {
            if (candidate.pairs.size() <= consensus.count()) {
                continue;  // no better, whatever an adjustment says
            }
            Consensus other = adjusted(asGivenPairs(candidate), candidate.relative, isSideMirrored);
            if (other.count() >= kMinAgreeing && other.count() > consensus.count()) {
                consensus = std::move(other);
            }
        }
    }

    // As if all images of a side were mirrored.
    void voteMirrored(Side side) {
        const Consensus before = consensus;
        const SetOfImages plainSet = set;
        const auto plainCameras = cameras;
        mirror(side);
        if (auto camera = calibratedAlone(set, side); camera && camera->error <= kMaxMirroredError) {
            cameras[side] = std::move(*camera);
            vote(true);
        }
        // Two pairs that agree by chance are no reason to believe in a mirror.
        const bool isBetter = consensus.isSideMirrored && consensus.count() > before.count() + 1;
        if (!isBetter) {
            consensus = before;
            set = plainSet;
            cameras = plainCameras;
        } else {
            agreed.isSideMirrored = true;
            agreed.mayBeMirrored = hasUnequalPitches(set.plate)
                                       ? std::array<bool, kSides>{side == kLeft, side == kRight}
                                       : sidesThatMayBeMirrored(plainSet);
        }
    }

    const std::vector<ImagePair> pairs;  // as given
    CamerasAlone alone;
    AgreedSet agreed;
    SetOfImages& set = agreed.set;
    std::array<SingleCamera, kSides>& cameras = agreed.cameras;
    Consensus& consensus = agreed.consensus;
};

}  // namespace

ImagePair asGiven(std::size_t left, std::size_t right) {
    return {MeantImage{kLeft, left, {}}, MeantImage{kRight, right, {}}};
}

void Consensus::dropMisfits() {
    std::vector<ImagePair> kept;
    std::vector<double> misfits;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        if (fit.fits[i]) {
            kept.push_back(pairs[i]);
            misfits.push_back(fit.misfits[i]);
        }
    }
    pairs = std::move(kept);
    fit.misfits = std::move(misfits);
    fit.fits.assign(pairs.size(), true);
}

bool Consensus::isCoupled(Side listed, std::size_t image) const {
    return std::any_of(pairs.begin(), pairs.end(), [&](const ImagePair& pair) {
        return (pair[kLeft].listed == listed && pair[kLeft].image == image) ||
               (pair[kRight].listed == listed && pair[kRight].image == image);
    });
}

AgreedSet agreedOf(const SetOfImages& set, const std::vector<std::size_t>& readable, const CamerasAlone& alone) {
    return Finder(set, readable, alone).run();
}

Session sharedSession(const AgreedSet& agreed, const std::vector<std::size_t>& views) {
    const auto& [left, right] = agreed.cameras;
    const CandidatePairing shared = sharedBy(agreed.set, left, right, indicesOf(pairsOfViews(views)));
    const std::vector<ImagePair> pairs = asGivenPairs(shared);
    Session session;
    if (pairs.size() < kMinAgreeing) {
        return session;
    }
    const auto fit = PairingFitter(agreed.set, left, right).fitMost(pairs, shared.relative);
    for (std::size_t k = 0; fit && fit->count() >= kMinAgreeing && k < pairs.size(); ++k) {
        if (fit->fits[k]) {
            session.views.push_back(pairs[k][kLeft].image);
        }
    }
    if (!session.views.empty()) {
        session.difference =
            differenceOf(platePoseOf(agreed.consensus.fit.state.relative), platePoseOf(fit->state.relative));
    }
    return session;
}

}  // namespace zelm::measure
