#include "pairingJudge.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numbers>
#include <optional>

#include "pairingFit.h"
#include "pairingVote.h"
#include "platePose.h"

namespace zelm::measure {
namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr std::size_t kProposals = 3;    // of the vote, that are adjusted
constexpr std::size_t kMinAgreeing = 2;  // pairs of images: two share a relative pose by six numbers
constexpr double kMinShare = 0.6;        // of the views that fit as given, beyond which no other pairing is looked for
constexpr double kMaxGuess = 0.015;      // of the image's width: an image so near to where it should be may fit
constexpr double kLooseLimit = 3.0;      // times the limit: for one that takes no part in the adjustment
constexpr double kSameNoise = 4.0;       // times the noise, and at least
constexpr double kSamePixels = 0.1;      // this, by which two images differ that show the plate in the same place
constexpr double kNominalFocal = 1.2;    // of the image's longer side, for tilts where the camera is not determined
constexpr double kSameWithoutNoise = 0.4;  // pixels; the same where the noise is not known
// Few views may leave a camera undetermined that is sound; what many leave so, or what fits no camera, is no view of
// this plate.
constexpr std::size_t kMaxRoughViews = 6;
constexpr double kMaxRoughError = 0.004;   // of the image's width: lens and principal point are not estimated
constexpr double kMaxMirroredError = 2.0;  // pixels; of images that were mirrored indeed, some tenths are left
// Pixels. Beyond, the plate's file or the camera model are wrong, and single views are not to blame.
constexpr double kMaxTypical = 0.4;
constexpr std::size_t kMinShared = 6;  // dots by which images are compared

ImagePair asGiven(std::size_t left, std::size_t right) {
    return {MeantImage{kLeft, left, {}}, MeantImage{kRight, right, {}}};
}

// Root mean square of the distances between the same dots of two images; infinite where they share too few.
double differenceOf(const ImageDots& a, const ImageDots& b) {
    std::map<GridIndex, Point2d> pixels;
    for (const Dot& dot : a) {
        pixels.emplace(dot.index, dot.pixel);
    }
    double sum = 0.0;
    std::size_t count = 0;
    for (const Dot& dot : b) {
        if (const auto other = pixels.find(dot.index); other != pixels.end()) {
            const double x = dot.pixel.x - other->second.x;
            const double y = dot.pixel.y - other->second.y;
            sum += x * x + y * y;
            ++count;
        }
    }
    const bool isEnough = count >= kMinShared && 2 * count >= std::max(a.size(), b.size());
    return isEnough ? std::sqrt(sum / static_cast<double>(count)) : kInfinite;
}

// A consensus: the pairs of images that agree, and by what.
struct Consensus {
    std::vector<ImagePair> pairs;
    PairingFit fit;
    bool isSideMirrored = false;

    std::size_t count() const { return fit.count(); }
    void dropMisfits() {
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
};

class Judge {
public:
    explicit Judge(const SetOfImages& given) : set(given) {}

    SetJudgement run() {
        judgement.views.resize(set.views());
        markUnread();
        std::array<std::optional<SingleCamera>, kSides> alone{calibratedAlone(set, kLeft),
                                                              calibratedAlone(set, kRight)};
        tellTilts(alone);
        if (hasMirroredTwin(set.plate) && hasUnequalPitches()) {
            determineMirrored(alone);
        }
        judgement.isDetermined = alone[kLeft] && alone[kRight];
        for (const Side side : {kLeft, kRight}) {
            if (!alone[side] && views() > kMinAgreeing && views() <= kMaxRoughViews) {
                const std::optional<SingleCamera> rough = roughlyCalibrated(set, side);
                if (rough && rough->error <= kMaxRoughError * set.sizes[side].width) {
                    alone[side] = rough;
                }
            }
        }
        if (alone[kLeft] && alone[kRight]) {
            cameras = {*alone[kLeft], *alone[kRight]};
            findConsensus();
        }
        if (judgement.isSideMirrored && consensus.count() <= kMinAgreeing) {
            // A mirror that no view confirms only happened to settle what the images leave open.
            judgement.isSideMirrored = judgement.isDetermined = false;
            consensus = {};
        }
        if (consensus.count() >= kMinAgreeing) {
            const PairingFitter fitter(set, cameras[kLeft], cameras[kRight]);
            explainOthers(fitter);
            tell();
            findSession();
        }
        if (consensus.count() < kMinAgreeing) {
            tellCopiesOfUnknown();
        }
        tellSameViews();
        return std::move(judgement);
    }

private:
    std::size_t views() const { return set.views(); }
    bool isReadable(std::size_t view) const { return judgement.views[view].fate != ViewFate::unread; }
    bool hasDots(Side side, std::size_t image) const { return cameras[side].poses[image].has_value(); }

    void markUnread() {
        for (std::size_t i = 0; i < views(); ++i) {
            const bool isRead = set.images[kLeft][i].size() >= kMinShared && set.images[kRight][i].size() >= kMinShared;
            judgement.views[i].fate = isRead ? ViewFate::unknown : ViewFate::unread;
            judgement.views[i].misfit = kInfinite;
        }
    }

    void tellTilts(const std::array<std::optional<SingleCamera>, kSides>& alone) {
        for (const Side side : {kLeft, kRight}) {
            AdjustState nominal;
            const ImageSize size = set.sizes[side];
            const double f = kNominalFocal * std::max(size.width, size.height);
            nominal.cameras[side].p = {f, 0.0, f, 0.5 * (size.width - 1), 0.5 * (size.height - 1), 0.0, 0.0};
            nominal.bow.extent = std::hypot(set.plate.d0, set.plate.d1);
            for (std::size_t i = 0; i < views(); ++i) {
                std::optional<PlatePose> pose;
                if (alone[side]) {
                    pose = alone[side]->poses[i];
                } else if (const auto found =
                               posedPlate(nominal, side, observationsOf(set.plate, set.images[side][i]))) {
                    pose = platePoseOf(*found);
                }
                judgement.views[i].tilts[side] = pose ? std::acos(std::clamp(pose->R[8], -1.0, 1.0)) : -1.0;
            }
        }
    }

    // In a mirror, columns of another pitch than the rows' are taken for rows: no camera sees a plate so.
    bool hasUnequalPitches() const {
        constexpr double kMaxDifference = 1e-3;
        return std::fabs(set.plate.d4 / set.plate.d5 - 1.0) > kMaxDifference;
    }

    void mirror(Side side) {
        for (ImageDots& dots : set.images[side]) {
            dots = restored(set, side, dots, {0, true});
        }
    }

    // A side of which the images determine a camera only when they are mirrored back.
    void determineMirrored(std::array<std::optional<SingleCamera>, kSides>& alone) {
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
            judgement.isSideMirrored = alone[side].has_value();
            judgement.mayBeMirrored = {side == kLeft, side == kRight};
            if (!alone[side]) {
                set.images[side] = plain;
            }
        }
    }

    void findConsensus() {
        const std::vector<ImagePair> given = givenPairs();
        consensus = tryPairing(given);
        if (static_cast<double>(consensus.count()) >= kMinShare * static_cast<double>(given.size()) &&
            consensus.count() >= kMinAgreeing) {
            return;
        }
        vote(false);
        if (hasMirroredTwin(set.plate) && !judgement.isSideMirrored && 2 * consensus.count() < given.size()) {
            // With equal pitches, a mirrored left camera comes to the same as a mirrored right one.
            voteMirrored(kRight);
            if (hasUnequalPitches() && !judgement.isSideMirrored) {
                voteMirrored(kLeft);
            }
        }
        if (consensus.count() < kMinAgreeing) {
            // Cameras that three views hardly determine may be further off than is usual.
            consensus =
                adjusted(given, sharedBy(set, cameras[kLeft], cameras[kRight], indicesOf(given)).relative, false);
        }
    }

    static std::vector<std::pair<std::size_t, std::size_t>> indicesOf(const std::vector<ImagePair>& pairs) {
        std::vector<std::pair<std::size_t, std::size_t>> indices;
        indices.reserve(pairs.size());
        for (const ImagePair& pair : pairs) {
            indices.emplace_back(pair[kLeft].image, pair[kRight].image);
        }
        return indices;
    }

    std::vector<ImagePair> givenPairs() const {
        std::vector<ImagePair> pairs;
        for (std::size_t i = 0; i < views(); ++i) {
            if (isReadable(i)) {
                pairs.push_back(asGiven(i, i));
            }
        }
        return pairs;
    }

    // Of pairs as given, those that roughly agree.
    Consensus tryPairing(const std::vector<ImagePair>& pairs) const {
        const CandidatePairing shared = sharedBy(set, cameras[kLeft], cameras[kRight], indicesOf(pairs));
        return adjusted(asGivenPairs(shared), shared.relative, false);
    }

    static std::vector<ImagePair> asGivenPairs(const CandidatePairing& candidate) {
        std::vector<ImagePair> pairs;
        pairs.reserve(candidate.pairs.size());
        for (const auto& [left, right] : candidate.pairs) {
            pairs.push_back(asGiven(left, right));
        }
        return pairs;
    }

    Consensus adjusted(const std::vector<ImagePair>& pairs, const PlatePose& relative, bool isSideMirrored) const {
        Consensus result;
        if (pairs.size() < kMinAgreeing) {
            return result;
        }
        if (auto fit = PairingFitter(set, cameras[kLeft], cameras[kRight]).fitMost(pairs, relative)) {
            result = {pairs, std::move(*fit), isSideMirrored};
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
            judgement.isSideMirrored = true;
            judgement.mayBeMirrored = hasUnequalPitches() ? std::array<bool, kSides>{side == kLeft, side == kRight}
                                                          : sidesThatMayBeMirrored(plainSet);
        }
    }

    // In a mirror the plate's longer side lies across: its outermost dots are never read.
    static std::array<bool, kSides> sidesThatMayBeMirrored(const SetOfImages& images) {
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

    // The ways in which a single image may have been stored.
    std::vector<Storing> storings(Side side) const {
        std::vector<Storing> list;
        const bool isSquare = set.sizes[side].width == set.sizes[side].height;
        for (const bool isMirrored : {false, true}) {
            for (int turns = 0; turns < 4; ++turns) {
                const Storing storing{turns, isMirrored};
                if (!storing.isPlain() && (isSquare || turns % 2 == 0) && (!isMirrored || hasMirroredTwin(set.plate))) {
                    list.push_back(storing);
                }
            }
        }
        return list;
    }

    struct Guess {
        ImagePair pair{};
        double misfit = kInfinite;
    };

    PosedImage posed(Side camera, const std::vector<DotObservation>& dots) const {
        return {&dots, posedPlate(consensus.fit.state, camera, dots)};
    }

    void poseAll(const PairingFitter& fitter) {
        for (const Side side : {kLeft, kRight}) {
            poses[side].clear();
            for (std::size_t i = 0; i < views(); ++i) {
                poses[side].push_back(posed(side, fitter.observations(side, i)));
            }
        }
    }

    bool isCoupled(Side side, std::size_t image) const {
        return std::any_of(consensus.pairs.begin(), consensus.pairs.end(), [&](const ImagePair& pair) {
            return (pair[kLeft].listed == side && pair[kLeft].image == image) ||
                   (pair[kRight].listed == side && pair[kRight].image == image);
        });
    }

    // The best explanation of a view that does not fit, of those that change its own images.
    Guess guessChanged(const PairingFitter& fitter, std::size_t view) const {
        Guess best;
        const auto consider = [&](const ImagePair& pair) {
            const auto left = fitter.observations(pair[kLeft]);
            const auto right = fitter.observations(pair[kRight]);
            const double misfit = transferMisfit(consensus.fit.state, posed(kLeft, left), posed(kRight, right));
            if (misfit < best.misfit) {
                best = {pair, misfit};
            }
        };
        for (const Side side : {kLeft, kRight}) {
            for (const Storing storing : storings(side)) {
                ImagePair pair = asGiven(view, view);
                pair[side].storing = storing;
                consider(pair);
            }
        }
        const auto& sizes = set.sizes;
        if (sizes[kLeft].width == sizes[kRight].width && sizes[kLeft].height == sizes[kRight].height) {
            consider({MeantImage{kRight, view, {}}, MeantImage{kLeft, view, {}}});
        }
        return best;
    }

    // Pairs of images of which none is taken, and views with a changed image, that may agree with the consensus.
    std::vector<Guess> guesses(const PairingFitter& fitter) const {
        std::vector<Guess> list;
        const double most = kMaxGuess * std::max(set.sizes[kLeft].width, set.sizes[kRight].width);
        for (std::size_t i = 0; i < views(); ++i) {
            if (!hasDots(kLeft, i) || isCoupled(kLeft, i)) {
                continue;
            }
            for (std::size_t j = 0; j < views(); ++j) {
                if (hasDots(kRight, j) && !isCoupled(kRight, j)) {
                    const double misfit = transferMisfit(consensus.fit.state, poses[kLeft][i], poses[kRight][j]);
                    if (misfit < most) {
                        list.push_back({asGiven(i, j), misfit});
                    }
                }
            }
            if (hasDots(kRight, i) && !isCoupled(kRight, i)) {
                if (const Guess guess = guessChanged(fitter, i); guess.misfit < most) {
                    list.push_back(guess);
                }
            }
        }
        std::sort(list.begin(), list.end(), [](const Guess& a, const Guess& b) { return a.misfit < b.misfit; });
        return list;
    }

    // Adds the guesses that an adjustment of all confirms. What changes an image may also help to determine the
    // cameras, and so to judge what is left: twice is enough.
    void explainOthers(const PairingFitter& fitter) {
        poseAll(fitter);
        for (int round = 0; round < 2; ++round) {
            const std::vector<Guess> list = guesses(fitter);
            Consensus more = consensus;
            for (const Guess& guess : list) {
                const auto clashes = [&](const ImagePair& pair) {
                    return pair[kLeft].image == guess.pair[kLeft].image ||
                           pair[kRight].image == guess.pair[kRight].image;
                };
                if (std::none_of(more.pairs.begin(), more.pairs.end(), clashes)) {
                    more.pairs.push_back(guess.pair);
                }
            }
            if (more.pairs.size() == consensus.pairs.size()) {
                return;
            }
            const std::size_t before = consensus.count();
            accept(fitter, more);
            if (consensus.count() == before) {
                return;
            }
            poseAll(fitter);
        }
    }

    // All at once, or else one by one.
    void accept(const PairingFitter& fitter, const Consensus& more) {
        const PlatePose relative = platePoseOf(consensus.fit.state.relative);
        const std::size_t before = consensus.pairs.size();
        const bool isMirrored = consensus.isSideMirrored;
        const auto adopt = [&](const std::vector<ImagePair>& pairs) {
            auto fit = fitter.fit(pairs, relative);
            if (!fit || fit->count() <= consensus.count() ||
                std::count(fit->fits.begin(), fit->fits.begin() + static_cast<std::ptrdiff_t>(before), false) > 0) {
                return false;
            }
            consensus = {pairs, std::move(*fit), isMirrored};
            consensus.dropMisfits();
            return true;
        };
        if (adopt(more.pairs)) {
            return;
        }
        for (std::size_t i = before; i < more.pairs.size(); ++i) {
            std::vector<ImagePair> pairs = consensus.pairs;
            pairs.push_back(more.pairs[i]);
            adopt(pairs);
        }
    }

    // Prefers the image as given where a copy of it took its place.
    void preferGiven() {
        for (ImagePair& pair : consensus.pairs) {
            for (const Side side : {kLeft, kRight}) {
                const Side other = side == kLeft ? kRight : kLeft;
                const std::size_t own = pair[other].image;  // the view that the other image is listed in
                if (pair[side].image != own && pair[side].storing.isPlain() && pair[side].listed == side &&
                    pair[other].listed == other && !isCoupled(side, own) && isSame(side, own, pair[side].image)) {
                    pair[side].image = own;
                }
            }
        }
    }

    bool isSame(Side side, std::size_t a, std::size_t b) const {
        const double limit =
            judgement.isDetermined ? std::max(kSamePixels, kSameNoise * consensus.fit.typical) : kSameWithoutNoise;
        return differenceOf(set.images[side][a], set.images[side][b]) <= limit;
    }

    void tell() {
        preferGiven();
        judgement.noise = consensus.fit.typical;
        judgement.limit = consensus.fit.limit;
        judgement.agreeing = consensus.count();
        for (std::size_t i = 0; i < views(); ++i) {
            ViewJudgement& view = judgement.views[i];
            if (view.fate != ViewFate::unread) {
                view.misfit = transferMisfit(consensus.fit.state, poses[kLeft][i], poses[kRight][i]);
                view.fate = consensus.fit.typical <= kMaxTypical ? ViewFate::nothingFits : ViewFate::unknown;
            }
        }
        for (std::size_t k = 0; k < consensus.pairs.size(); ++k) {
            tellPair(consensus.pairs[k], consensus.fit.misfits[k]);
        }
        for (std::size_t i = 0; i < views(); ++i) {
            if (judgement.views[i].fate == ViewFate::nothingFits) {
                tellCopy(i);
            }
        }
    }

    void tellPair(const ImagePair& pair, double misfit) {
        const MeantImage& left = pair[kLeft];
        const MeantImage& right = pair[kRight];
        ViewJudgement& view = judgement.views[left.image];
        if (left.listed == kRight) {
            view.fate = ViewFate::exchanged;
        } else if (!left.storing.isPlain() || !right.storing.isPlain()) {
            view.fate = ViewFate::stored;
            view.side = left.storing.isPlain() ? kRight : kLeft;
            view.storing = left.storing.isPlain() ? right.storing : left.storing;
        } else if (left.image == right.image) {
            view.fate = ViewFate::fits;
            view.misfit = misfit;
            view.fitsImage = {right.image, left.image};
        } else {
            view.fitsImage[kLeft] = right.image;
            judgement.views[right.image].fitsImage[kRight] = left.image;
            for (const std::size_t i : {left.image, right.image}) {
                if (isReadable(i)) {
                    judgement.views[i].fate = ViewFate::otherImage;
                }
            }
        }
    }

    // A copy of another image of its side; or an image that fits one which has its partner already.
    void tellCopy(std::size_t i) {
        ViewJudgement& view = judgement.views[i];
        for (const Side side : {kRight, kLeft}) {
            for (std::size_t k = 0; k < views(); ++k) {
                if (k != i && view.copyOf == kNoImage && isSame(side, i, k)) {
                    view.fate = ViewFate::copy;
                    view.side = side;
                    view.copyOf = k;
                }
            }
        }
        if (view.fate == ViewFate::copy) {
            return;
        }
        const double limit = std::min(kLooseLimit * consensus.fit.limit, 0.2 * view.misfit);
        for (std::size_t k = 0; k < views(); ++k) {
            if (k != i && transferMisfit(consensus.fit.state, poses[kLeft][k], poses[kRight][i]) < limit) {
                view.fitsImage[kRight] = k;
                view.fate = ViewFate::otherImage;
            }
            if (k != i && transferMisfit(consensus.fit.state, poses[kLeft][i], poses[kRight][k]) < limit) {
                view.fitsImage[kLeft] = k;
                view.fate = ViewFate::otherImage;
            }
        }
    }

    // Views that agree with one another on another relative pose: the cameras were moved between two sessions.
    void findSession() {
        std::vector<ImagePair> left;
        for (std::size_t i = 0; i < views(); ++i) {
            if (judgement.views[i].fate == ViewFate::nothingFits) {
                left.push_back(asGiven(i, i));
            }
        }
        const CandidatePairing shared = sharedBy(set, cameras[kLeft], cameras[kRight], indicesOf(left));
        const std::vector<ImagePair> pairs = asGivenPairs(shared);
        if (pairs.size() < kMinAgreeing) {
            return;
        }
        const auto fit = PairingFitter(set, cameras[kLeft], cameras[kRight]).fitMost(pairs, shared.relative);
        if (!fit || fit->count() < kMinAgreeing) {
            return;
        }
        for (std::size_t k = 0; k < pairs.size(); ++k) {
            if (fit->fits[k]) {
                judgement.views[pairs[k][kLeft].image].fate = ViewFate::otherSession;
            }
        }
    }

    // Of two images of a side that show the same, while the others of their views do not, either may be the copy.
    void tellCopiesOfUnknown() {
        for (std::size_t i = 0; i < views(); ++i) {
            for (std::size_t k = 0; k < i && isReadable(i); ++k) {
                if (!isReadable(k) || isSame(kLeft, k, i) == isSame(kRight, k, i)) {
                    continue;
                }
                ViewJudgement& view = judgement.views[i];
                view.fate = ViewFate::copy;
                view.side = isSame(kLeft, k, i) ? kLeft : kRight;
                view.copyOf = k;
            }
        }
    }

    void tellSameViews() {
        const auto isBothSame = [&](std::size_t a, std::size_t b) {
            return isSame(kLeft, a, b) && isSame(kRight, a, b);
        };
        for (std::size_t i = 0; i < views(); ++i) {
            for (std::size_t k = 0; k < i && judgement.views[i].sameView == kNoImage; ++k) {
                if (isReadable(i) && isReadable(k) && isBothSame(k, i)) {
                    judgement.views[i].sameView = k;
                }
            }
        }
    }

    SetOfImages set;
    std::array<SingleCamera, kSides> cameras;
    Consensus consensus;
    std::array<std::vector<PosedImage>, kSides> poses;
    SetJudgement judgement;
};

}  // namespace

SetJudgement judgeSet(const SetOfImages& set) {
    return Judge(set).run();
}

}  // namespace zelm::measure
