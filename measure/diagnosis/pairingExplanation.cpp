#include "pairingExplanation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "platePose.h"

namespace zelm::measure {
namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kMaxGuess = 0.015;  // of the image's width: an image so near to where it should be may fit

struct Guess {
    ImagePair pair{};
    double misfit = kInfinite;
};

class Explainer {
public:
    Explainer(AgreedSet& agreed, const PairingFitter& pairingFitter)
        : set(agreed.set), cameras(agreed.cameras), consensus(agreed.consensus), fitter(pairingFitter) {}

    void run() {
        explain();
        preferGiven();
    }

private:
    // Adds the guesses that an adjustment of all confirms. What changes an image may also help to determine the
    // cameras, and so to judge what is left: twice is enough.
    void explain() {
        poses = posesOf(consensus.fit.state, fitter, views());
        for (int round = 0; round < 2; ++round) {
            const std::vector<ImagePair> more = withGuesses();
            const std::size_t before = consensus.count();
            if (more.size() > before) {
                accept(more);
            }
            if (consensus.count() == before) {
                return;
            }
            poses = posesOf(consensus.fit.state, fitter, views());
        }
    }

    // That images changed places may be said only where the views as given do not fit: of views that are alike, either
    // order fits to the noise.
    void preferGiven() {
        for (const ImagePair& pair : std::vector<ImagePair>(consensus.pairs)) {
            const bool isStillThere =
                std::find(consensus.pairs.begin(), consensus.pairs.end(), pair) != consensus.pairs.end();
            if (!isStillThere || !isOfTwoViews(pair) || !mayFitAsGiven(pair[kLeft].image) ||
                !mayFitAsGiven(pair[kRight].image)) {
                continue;
            }
            const std::vector<ImagePair> given = withGiven(pair[kLeft].image, pair[kRight].image);
            if (given.size() < consensus.count()) {
                continue;
            }
            auto fit = fitter.fit(given, platePoseOf(consensus.fit.state.relative));
            if (fit && fit->count() == given.size()) {
                consensus = {given, std::move(*fit), consensus.isSideMirrored};
            }
        }
    }

    // Where its images are too far apart, an adjustment need not be asked. Views that cannot be read are no hindrance.
    bool mayFitAsGiven(std::size_t view) const {
        const double misfit = transferMisfit(consensus.fit.state, poses[kLeft][view], poses[kRight][view]);
        return misfit < maxGuess() || !std::isfinite(misfit);
    }

    double maxGuess() const { return kMaxGuess * std::max(set.sizes[kLeft].width, set.sizes[kRight].width); }

    // Of two views in one list each, nothing else being changed.
    static bool isOfTwoViews(const ImagePair& pair) {
        return pair == asGiven(pair[kLeft].image, pair[kRight].image) && pair[kLeft].image != pair[kRight].image;
    }

    // The pairs of the consensus, but these views as they are given.
    std::vector<ImagePair> withGiven(std::size_t a, std::size_t b) const {
        std::vector<ImagePair> pairs = consensus.pairs;
        const auto isOfThem = [&](const MeantImage& image) { return image.image == a || image.image == b; };
        std::erase_if(pairs, [&](const ImagePair& p) { return isOfThem(p[kLeft]) || isOfThem(p[kRight]); });
        for (const std::size_t view : {a, b}) {
            if (cameras[kLeft].poses[view] && cameras[kRight].poses[view]) {
                pairs.push_back(asGiven(view, view));
            }
        }
        return pairs;
    }

    std::size_t views() const { return set.views(); }
    bool isFree(Side side, std::size_t image) const {
        return cameras[side].poses[image].has_value() && !consensus.isCoupled(side, image);
    }

    // The pairs of the consensus, and the best guesses beside them, of each image one.
    std::vector<ImagePair> withGuesses() const {
        std::vector<ImagePair> more = consensus.pairs;
        for (const Guess& guess : guesses()) {
            const auto clashes = [&](const ImagePair& pair) {
                return pair[kLeft].image == guess.pair[kLeft].image || pair[kRight].image == guess.pair[kRight].image;
            };
            if (std::none_of(more.begin(), more.end(), clashes)) {
                more.push_back(guess.pair);
            }
        }
        return more;
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

    PosedImage posed(Side camera, const std::vector<DotObservation>& dots) const {
        return {&dots, posedPlate(consensus.fit.state, camera, dots)};
    }

    // The best explanation of a view that does not fit, of those that change its own images.
    Guess guessChanged(std::size_t view) const {
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
    std::vector<Guess> guesses() const {
        std::vector<Guess> list;
        const double most = maxGuess();
        for (std::size_t i = 0; i < views(); ++i) {
            if (!isFree(kLeft, i)) {
                continue;
            }
            for (std::size_t j = 0; j < views(); ++j) {
                if (isFree(kRight, j)) {
                    const double misfit = transferMisfit(consensus.fit.state, poses[kLeft][i], poses[kRight][j]);
                    if (misfit < most) {
                        list.push_back({asGiven(i, j), misfit});
                    }
                }
            }
            if (isFree(kRight, i)) {
                if (const Guess guess = guessChanged(i); guess.misfit < most) {
                    list.push_back(guess);
                }
            }
        }
        std::sort(list.begin(), list.end(), [](const Guess& a, const Guess& b) { return a.misfit < b.misfit; });
        return list;
    }

    // All at once, or else one by one.
    void accept(const std::vector<ImagePair>& more) {
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
        if (adopt(more)) {
            return;
        }
        for (std::size_t i = before; i < more.size(); ++i) {
            std::vector<ImagePair> pairs = consensus.pairs;
            pairs.push_back(more[i]);
            adopt(pairs);
        }
    }

    const SetOfImages& set;
    const std::array<SingleCamera, kSides>& cameras;
    Consensus& consensus;
    const PairingFitter& fitter;
    PosedImages poses;
};

}  // namespace

PosedImages posesOf(const AdjustState& state, const PairingFitter& fitter, std::size_t views) {
    PosedImages poses;
    for (const Side side : {kLeft, kRight}) {
        poses[side].reserve(views);
        for (std::size_t i = 0; i < views; ++i) {
            const std::vector<DotObservation>& dots = fitter.observations(side, i);
            poses[side].push_back({&dots, posedPlate(state, side, dots)});
        }
    }
    return poses;
}

void explainOthers(AgreedSet& agreed, const PairingFitter& fitter) {
    Explainer(agreed, fitter).run();
}

}  // namespace zelm::measure
