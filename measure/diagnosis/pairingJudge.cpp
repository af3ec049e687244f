#include "pairingJudge.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <optional>

#include "pairingConsensus.h"
#include "pairingExplanation.h"
#include "platePose.h"

namespace zelm::measure {
namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kLooseLimit = 3.0;  // times the limit: for one that takes no part in the adjustment
constexpr double kSameNoise = 4.0;   // times the noise, and at least
// this, in pixels, by which two images differ that show the plate in the same place. Two cameras never do.
constexpr double kSamePixels = 0.1;
constexpr double kNominalFocal = 1.2;      // of the image's longer side, for tilts where the camera is not determined
constexpr double kSameWithoutNoise = 0.4;  // pixels; the same where the noise is not known
// Pixels. Beyond, the plate's file or the camera model are wrong, and single views are not to blame.
constexpr double kMaxTypical = 0.4;
constexpr std::size_t kMinShared = 6;  // dots by which images are compared

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

class Judge {
public:
    explicit Judge(const SetOfImages& given) { agreed.set = given; }

    SetJudgement run() {
        judgement.views.resize(views());
        markUnread();
        takeOutSameImages();
        const CamerasAlone alone{calibratedAlone(set, kLeft), calibratedAlone(set, kRight)};
        tellTilts(alone);
        agreed = agreedOf(set, readableViews(), alone);
        judgement.isDetermined = agreed.isDetermined;
        judgement.isSideMirrored = agreed.isSideMirrored;
        judgement.mayBeMirrored = agreed.mayBeMirrored;
        if (consensus.count() >= kMinAgreeing) {
            const PairingFitter fitter(set, cameras[kLeft], cameras[kRight]);
            explainOthers(agreed, fitter);
            poses = posesOf(consensus.fit.state, fitter, views());
            tell();
            findSession();
        } else {
            tellCopiesOfUnknown();
        }
        tellSameViews();
        return std::move(judgement);
    }

private:
    std::size_t views() const { return set.views(); }
    bool isReadable(std::size_t view) const {
        const ViewFate fate = judgement.views[view].fate;
        return fate != ViewFate::unread && fate != ViewFate::sameImages;
    }

    void markUnread() {
        for (std::size_t i = 0; i < views(); ++i) {
            const bool isRead = set.images[kLeft][i].size() >= kMinShared && set.images[kRight][i].size() >= kMinShared;
            judgement.views[i].fate = isRead ? ViewFate::unknown : ViewFate::unread;
            judgement.views[i].misfit = kInfinite;
        }
    }

    // One image given twice tells nothing of a second camera, and would spoil what its other images tell.
    void takeOutSameImages() {
        for (std::size_t i = 0; i < views(); ++i) {
            if (isReadable(i) && differenceOf(set.images[kLeft][i], set.images[kRight][i]) <= kSamePixels) {
                judgement.views[i].fate = ViewFate::sameImages;
                set.images[kLeft][i].clear();
                set.images[kRight][i].clear();
            }
        }
    }

    std::vector<std::size_t> readableViews() const {
        std::vector<std::size_t> readable;
        for (std::size_t i = 0; i < views(); ++i) {
            if (isReadable(i)) {
                readable.push_back(i);
            }
        }
        return readable;
    }

    void tellTilts(const CamerasAlone& alone) {
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

    // Prefers the image as given where a copy of it took its place.
    void preferGiven() {
        for (ImagePair& pair : consensus.pairs) {
            for (const Side side : {kLeft, kRight}) {
                const Side other = side == kLeft ? kRight : kLeft;
                const std::size_t own = pair[other].image;  // the view that the other image is listed in
                if (pair[side].image != own && pair[side].storing.isPlain() && pair[side].listed == side &&
                    pair[other].listed == other && !consensus.isCoupled(side, own) &&
                    isSame(side, own, pair[side].image)) {
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
            if (isReadable(i)) {
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
        std::vector<std::size_t> others;
        for (std::size_t i = 0; i < views(); ++i) {
            if (judgement.views[i].fate == ViewFate::nothingFits) {
                others.push_back(i);
            }
        }
        const Session session = sharedSession(agreed, others);
        judgement.session = session.difference;
        for (const std::size_t view : session.views) {
            judgement.views[view].fate = ViewFate::otherSession;
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

    AgreedSet agreed;
    SetOfImages& set = agreed.set;
    std::array<SingleCamera, kSides>& cameras = agreed.cameras;
    Consensus& consensus = agreed.consensus;
    PosedImages poses;
    SetJudgement judgement;
};

}  // namespace

SetJudgement judgeSet(const SetOfImages& set) {
    return Judge(set).run();
}

}  // namespace zelm::measure
