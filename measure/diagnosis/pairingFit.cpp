#include "pairingFit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "adjuster.h"
#include "fault.h"
#include "platePose.h"

namespace zelm::measure {
namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kRayleighMedian = 1.17741;  // median length of a plane normal vector, standard deviations
// Images of one view that belong together leave no more than their own camera leaves of each; what does not belong
// together leaves pixels (docs/diagnosis.md#the-images-of-a-set).
constexpr double kMinLimit = 0.3;     // pixels
constexpr double kMaxOverOwn = 4.0;   // times what the cameras leave one by one
constexpr double kMaxLimit = 3.0;     // pixels
constexpr double kMinNoise = 0.01;    // pixels
constexpr std::size_t kFewPairs = 4;  // of which the adjustment by itself leaves out none, or one

double medianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double misfitOf(const std::vector<DotObservation>& dots) {
    std::vector<double> lengths;
    lengths.reserve(dots.size());
    for (const DotObservation& dot : dots) {
        const double length = std::hypot(dot.residual.x, dot.residual.y);
        lengths.push_back(std::isfinite(length) ? length : kInfinite);
    }
    return lengths.empty() ? kInfinite : medianOf(std::move(lengths)) / kRayleighMedian;
}

// How far the dots are from where the camera of that side sees them on a plate of that pose.
double misfitAt(const AdjustState& state, Side side, const MotionParameters& pose,
                const std::vector<DotObservation>& dots) {
    const ImageParameters image{state.cameras[side], nullptr, pose.data(), 1.0, state.bow.b.data(), state.bow.extent};
    std::vector<DotObservation> predicted = dots;
    for (DotObservation& dot : predicted) {
        const Point2d centre = dotOutline(image.camera, circleOf(image, dot.place, dot.radius)).centre;
        dot.residual = {dot.pixel.x - centre.x, dot.pixel.y - centre.y};
    }
    return misfitOf(predicted);
}

}  // namespace

std::size_t PairingFit::count() const {
    return static_cast<std::size_t>(std::count(fits.begin(), fits.end(), true));
}

PairingFitter::PairingFitter(const SetOfImages& imageSet, const SingleCamera& leftCamera,
                             const SingleCamera& rightCamera)
    : set(imageSet), singles{&leftCamera, &rightCamera} {
    for (const Side side : {kLeft, kRight}) {
        for (const ImageDots& dots : set.images[side]) {
            plain[side].push_back(observationsOf(set.plate, dots));
        }
    }
}

std::vector<DotObservation> PairingFitter::observations(const MeantImage& image) const {
    if (image.storing.isPlain()) {
        return plain[image.listed][image.image];
    }
    return observationsOf(set.plate, restored(set, image.listed, set.images[image.listed][image.image], image.storing));
}

std::optional<PlatePose> PairingFitter::startPose(Side camera, const MeantImage& image,
                                                  const AdjustState& state) const {
    if (image.listed == camera && image.storing.isPlain()) {
        return singles[camera]->poses[image.image];
    }
    const auto pose = posedPlate(state, camera, observations(image));
    return pose ? std::optional(platePoseOf(*pose)) : std::nullopt;
}

std::optional<PairingFit> PairingFitter::fit(const std::vector<ImagePair>& pairs, const PlatePose& relative) const {
    PairingFit result;
    AdjustState& state = result.state;
    state.cameras = {singles[kLeft]->camera, singles[kRight]->camera};
    state.relative = parametersOf(relative);
    state.bow.extent = 0.5 * std::hypot(set.plate.d0, set.plate.d1);
    std::vector<AdjustView> views;
    std::set<std::pair<Side, std::size_t>> taken;
    const MotionParameters back = inverted(state.relative);
    for (const ImagePair& pair : pairs) {
        AdjustView view;
        MotionParameters pose{0, 0, 0, 0, 0, 1};
        for (const Side camera : {kRight, kLeft}) {  // the left one's pose is the better start
            view.dots[camera] = observations(pair[camera]);
            taken.emplace(pair[camera].listed, pair[camera].image);
            if (const auto start = startPose(camera, pair[camera], state)) {
                pose = camera == kLeft ? parametersOf(*start) : composed(back, parametersOf(*start));
            }
        }
        views.push_back(std::move(view));
        state.poses.push_back(pose);
    }
    for (const Side side : {kLeft, kRight}) {
        for (std::size_t i = 0; i < set.views(); ++i) {
            if (singles[side]->poses[i] && !taken.contains({side, i})) {
                AdjustView view;
                view.dots[side] = plain[side][i];
                views.push_back(std::move(view));
                const MotionParameters pose = parametersOf(*singles[side]->poses[i]);
                state.poses.push_back(side == kLeft ? pose : composed(back, pose));
            }
        }
    }
    // The noise need not be found by rounds of adjusting: each camera by itself tells it well enough for this.
    const double own = std::max(singles[kLeft]->error, singles[kRight]->error);
    AdjustOptions options;
    options.knownNoise = std::max(own, kMinNoise);
    try {
        adjust(state, views, options);
    } catch (const Fault&) {
        return std::nullopt;
    }
    result.limit = std::clamp(kMaxOverOwn * own, kMinLimit, kMaxLimit);
    std::vector<double> good;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const double misfit = std::max(misfitOf(views[i].dots[kLeft]), misfitOf(views[i].dots[kRight]));
        result.misfits.push_back(misfit);
        // Also a view that the adjustment left out for a little: its images show the plate in one place all the same.
        result.fits.push_back(misfit <= result.limit);
        if (result.fits.back()) {
            good.push_back(misfit);
        }
    }
    result.typical = good.empty() ? 0.0 : medianOf(std::move(good));
    return result;
}

std::optional<PairingFit> PairingFitter::fitMost(const std::vector<ImagePair>& pairs, const PlatePose& relative) const {
    std::optional<PairingFit> best = fit(pairs, relative);
    if (pairs.size() > kFewPairs || pairs.size() < 3 || (best && best->count() == pairs.size())) {
        return best;
    }
    for (std::size_t without = 0; without < pairs.size(); ++without) {
        std::vector<ImagePair> others = pairs;
        others.erase(others.begin() + static_cast<std::ptrdiff_t>(without));
        std::optional<PairingFit> other = fit(others, relative);
        if (other && (!best || other->count() > best->count() ||
                      (other->count() == best->count() && other->typical < best->typical))) {
            other->misfits.insert(other->misfits.begin() + static_cast<std::ptrdiff_t>(without), kInfinite);
            other->fits.insert(other->fits.begin() + static_cast<std::ptrdiff_t>(without), false);
            best = std::move(other);
        }
    }
    return best;
}

double transferMisfit(const AdjustState& state, const PosedImage& left, const PosedImage& right) {
    if (!left.pose || !right.pose) {
        return kInfinite;
    }
    return 0.5 * (misfitAt(state, kRight, composed(state.relative, *left.pose), *right.dots) +
                  misfitAt(state, kLeft, composed(inverted(state.relative), *right.pose), *left.dots));
}

}  // namespace zelm::measure
