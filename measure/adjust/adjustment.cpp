#include "adjustment.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <utility>

#include "fault.h"
#include "platePose.h"
#include "rigBlock.h"

namespace zelm::measure {
namespace {

constexpr std::size_t kViewsForTilt = 3;   // of a parallel camera
constexpr std::size_t kFewestDots = 6;     // of an image that places a plate
constexpr std::size_t kFewestScales = 20;  // of refined dots that tell a diameter
constexpr double kMinPlaced = 0.75;        // of the dots that were read, on the plate's grid
constexpr double kWorse = 1.05;            // times the residuals of the reader's dots, and the refined ones are worse

// Throws unless the camera's dots are there, and on the plate's grid but for a few.
void checkPlaced(const RigCamera& camera, const std::vector<AdjustView>& views, Side side) {
    std::size_t read = 0;
    for (const auto& dots : camera.dots) {
        read += dots.size();
    }
    if (read == 0) {
        refuse("the rig has no dots to adjust: open it from the object that was calibrated");
    }
    std::size_t placed = 0;
    for (const AdjustView& view : views) {
        placed += view.dots[side].size();
    }
    if (static_cast<double>(placed) < kMinPlaced * static_cast<double>(read)) {
        refuse("only " + std::to_string(placed) + " of " + std::to_string(read) + " dots of the " +
               (side == kLeft ? "left" : "right") +
               " camera lie on the plate's grid: give the plate that the rig was calibrated with");
    }
}

// So that so many more can be added without memory; grows as a vector does by itself.
template <class Element>
void makeRoom(std::vector<Element>& list, std::size_t more) {
    if (list.capacity() - list.size() < more) {
        list.reserve(std::max(list.size() + more, 2 * list.size()));
    }
}

MotionParameters base(const AdjustState& state, Side side, const MotionParameters& pose) {
    return side == state.base ? pose : composed(inverted(state.relative), pose);
}

}  // namespace

Adjustment::Adjustment(const Rig& rig, const Pattern& pattern, const AdjustOptions& chosen, DotPlaces measured)
    : plate(pattern),
      options(chosen),
      places(std::move(measured)),
      cameras{rig.left, rig.right},
      start(stateOf(rig, pattern)),
      current(viewsOf(rig, pattern, start, places)) {
    for (const Side side : {kLeft, kRight}) {
        checkPlaced(cameras[side], current, side);
    }
    holdWhatIsHeld();
    holdTiltOfSeldomSeen();
}

Adjustment::Adjustment(PointTarget target, const AdjustOptions& chosen, DotPlaces measured)
    : plate(target.plate), options(chosen), places(std::move(measured)), start(startOf(target)) {
    cameras = target.cameras;
    current = std::move(target.views);
    holdWhatIsHeld();
}

void Adjustment::holdWhatIsHeld() {
    if (options.holdSkew) {
        for (ProjectionCamera& camera : start.cameras) {
            camera.p[kSkew] = 0.0;
        }
    }
    if (options.squarePixels) {
        for (ProjectionCamera& camera : start.cameras) {
            camera.p[kFx] = camera.p[kFy] = 0.5 * (camera.p[kFx] + camera.p[kFy]);
        }
    }
}

const Pattern& Adjustment::requirePlate() const {
    if (!plate) {
        refuse("points of a target are taken as they are: only dots of a plate can be measured anew");
    }
    return *plate;
}

void Adjustment::requirePair() const {
    if (!isPair()) {
        refuse("one camera alone makes no rig");
    }
}

void Adjustment::holdTiltOfSeldomSeen() {
    const Side other = start.other();
    const auto views = std::count_if(current.begin(), current.end(),
                                     [&](const AdjustView& view) { return view.dots[other].size() >= kFewestDots; });
    start.isTiltHeld = start.cameras[other].isParallel && static_cast<std::size_t>(views) < kViewsForTilt;
}

const Adjustment::Outcome& Adjustment::solved() const {
    if (!outcome) {
        refuse("the adjustment is not solved yet");
    }
    return *outcome;
}

void Adjustment::requireCurrent() const {
    solved();
    if (hasNewDots) {
        refuse("the dots were measured anew: solve the adjustment once more");
    }
}

void Adjustment::solve() {
    AdjustState state = outcome ? outcome->state : start;
    state.isTiltHeld = start.isTiltHeld;
    std::vector<AdjustView> views = current;
    AdjustOptions now = options;
    if (hasNewDots && options.estimateFactors) {
        // The dots' own pixels tell their size far better than the bias of their centres does.
        now.estimateFactors = false;
    }
    const AdjustSummary summary = adjust(state, views, now);
    const AdjustCovariance covariance = covarianceOf(state, views, now, summary);
    Outcome next{state, summary, covariance, now};
    if (outcome && !hasNewDots && !hasRefined) {
        next.summary.rmsBefore = outcome->summary.rmsBefore;
    }
    if (reading) {
        next.summary.rmsBefore = reading->outcome.summary.rmsBefore;
    }
    if (hasNewDots && reading && next.summary.deviation() > kWorse * reading->outcome.summary.deviation()) {
        Reading first = *reading;
        outcome = std::move(first.outcome);
        current = std::move(first.views);
        hasRefined = false;
    } else {
        outcome = std::move(next);
        current = std::move(views);
        hasRefined = hasRefined || hasNewDots;
    }
    hasNewDots = false;
}

void Adjustment::requireSize(Side side, const DenseImage& image) const {
    const RigCamera& camera = cameras[side];
    if (image.width() != camera.width || image.height() != camera.height) {
        refuse("an image of " + std::to_string(image.width()) + " x " + std::to_string(image.height()) +
               " pixels, but the camera's are " + std::to_string(camera.width) + " x " + std::to_string(camera.height));
    }
}

PlateSearch Adjustment::searchOf(Side side) const {
    return {&requirePlate(), &places, &outcome->state, side};
}

std::array<double, kDotKinds> Adjustment::factorsWith(const Scales& fresh) const {
    std::array<double, kDotKinds> factors = outcome->state.factors;
    if (!options.estimateFactors) {
        return factors;
    }
    for (const DotKind kind : {kPlainDot, kMarkerDot}) {
        std::vector<double> list = scales[kind];
        list.insert(list.end(), fresh[kind].begin(), fresh[kind].end());
        if (list.size() >= (kind == kMarkerDot ? kSides : kFewestScales)) {
            factors[kind] = median(std::move(list));
        }
    }
    return factors;
}

std::optional<Adjustment::Reading> Adjustment::keptReading() const {
    return reading ? std::nullopt : std::optional(Reading{*outcome, current});
}

RefinedCounts Adjustment::refine(Side side, std::size_t view, const DenseImage& image) {
    solved();
    requirePlate();
    require(view < current.size(), "the adjustment has no such view");
    requireSize(side, image);
    std::optional<Reading> kept = keptReading();
    Scales fresh;
    AdjustView& target = current[view];
    std::map<GridIndex, DotObservation> read;
    for (const DotObservation& dot : target.dots[side]) {
        read.emplace(dot.index, dot);
    }
    const DotFate fate = target.leftOut.empty() ? DotFate::used : DotFate::viewLeftOut;
    RefinedCounts counts;
    counts.read = static_cast<int>(read.size());
    std::vector<DotObservation> dots;
    for (PlateSearch::Found& found : searchOf(side).find(image, outcome->state.poses[view])) {
        const auto known = read.find(found.dot.index);
        const bool wasRead = known != read.end();
        if (found.fit.ok) {
            found.dot.fate = fate;
            fresh[found.dot.kind].push_back(found.fit.scale * outcome->state.factors[found.dot.kind]);
            dots.push_back(found.dot);
            ++(wasRead ? counts.refined : counts.added);
        }
        if (wasRead) {
            if (!found.fit.ok) {
                dots.push_back(known->second);
                dots.back().fate = DotFate::notConfirmed;
                ++counts.refused;
            }
            read.erase(known);
        }
    }
    for (const auto& [index, dot] : read) {  // of which the plate or the image should show nothing
        dots.push_back(dot);
        dots.back().fate = DotFate::notConfirmed;
        ++counts.refused;
    }
    const std::array<double, kDotKinds> factors = factorsWith(fresh);
    for (const DotKind kind : {kPlainDot, kMarkerDot}) {
        makeRoom(scales[kind], fresh[kind].size());
    }
    // From here on nothing asks for memory.
    outcome->state.factors = factors;
    for (const DotKind kind : {kPlainDot, kMarkerDot}) {
        scales[kind].insert(scales[kind].end(), fresh[kind].begin(), fresh[kind].end());
    }
    target.dots[side] = std::move(dots);
    if (kept) {
        reading = std::move(kept);
    }
    hasNewDots = true;
    return counts;
}

std::optional<MotionParameters> Adjustment::basePoseOf(Side side, const DenseImage& image) const {
    if (outcome->state.cameras[side].isParallel) {
        return std::nullopt;
    }
    const DotReading read = readDots(image, *plate, nullptr);
    if (read.status < 0) {
        return std::nullopt;
    }
    std::vector<DotObservation> dots;
    for (const Dot& placed : indexDots(image, *plate, read.points)) {
        dots.push_back(plateDot(*plate, placed.index, places));
        dots.back().pixel = placed.pixel;
    }
    const auto pose = posedPlate(outcome->state, side, dots);
    return pose ? std::optional(base(outcome->state, side, *pose)) : std::nullopt;
}

std::array<int, kSides> Adjustment::addView(const DenseImage& left, const DenseImage& right) {
    solved();
    requirePlate();
    requirePair();
    requireSize(kLeft, left);
    requireSize(kRight, right);
    auto pose = basePoseOf(kLeft, left);
    if (!pose) {
        pose = basePoseOf(kRight, right);
    }
    std::array<int, kSides> counts{};
    if (!pose) {
        return counts;
    }
    AdjustView added;
    for (const Side side : {kLeft, kRight}) {
        for (const PlateSearch::Found& found : searchOf(side).find(side == kLeft ? left : right, *pose)) {
            if (found.fit.ok) {
                added.dots[side].push_back(found.dot);
            }
        }
        counts[side] = static_cast<int>(added.dots[side].size());
    }
    if (added.dots[kLeft].size() + added.dots[kRight].size() < kFewestDots) {
        return {};
    }
    std::optional<Reading> kept = keptReading();
    makeRoom(current, 1);
    makeRoom(outcome->state.poses, 1);
    makeRoom(outcome->covariance.poses, 1);
    // From here on nothing asks for memory.
    if (kept) {
        reading = std::move(kept);
    }
    current.push_back(std::move(added));
    outcome->state.poses.push_back(*pose);
    outcome->covariance.poses.emplace_back();
    hasNewDots = true;
    return counts;
}

Point2d Adjustment::centreOf(Side side, std::size_t view, const DotObservation& dot) const {
    const ImageParameters image = imageParameters(solved().state, side, view, dot.kind);
    const CircleInCamera circle = circleOf(image, dot.place, dot.radius);
    const Point2d ellipse = dotOutline(image.camera, circle).centre;
    const Point2d centre = pixelOf(image.camera, circle.centre);
    return {dot.pixel.x - ellipse.x + centre.x, dot.pixel.y - ellipse.y + centre.y};
}

// Of a view that took no part, the pose that one of its images tells.
MotionParameters Adjustment::finalPose(std::size_t view) const {
    const AdjustState& state = outcome->state;
    if (!current[view].leftOut.empty()) {
        for (const Side side : {state.base, state.other()}) {
            if (const auto pose = posedPlate(state, side, current[view].dots[side])) {
                return base(state, side, *pose);
            }
        }
    }
    return state.poses[view];
}

ZelmCameraExtrinsics Adjustment::adjustedPose(Side side, std::size_t view) const {
    const AdjustState& state = solved().state;
    if (state.cameras[side].isParallel && view > 0 && current[view].dots[side].empty()) {
        return {};
    }
    const MotionParameters own = finalPose(view);
    const MotionParameters pose = side == state.base ? own : composed(state.relative, own);
    return poseRecordOfVector({pose[0], pose[1], pose[2]}, {pose[3], pose[4], pose[5]});
}

RigCamera Adjustment::adjustedCamera(Side side, std::size_t views) const {
    const AdjustState& state = solved().state;
    RigCamera camera;
    camera.model = cameras[side].model;
    camera.width = cameras[side].width;
    camera.height = cameras[side].height;
    camera.intrinsics = intrinsicsRecord(camera.model, state.cameras[side].p);
    std::copy(std::begin(cameras[side].intrinsics.reserved), std::end(cameras[side].intrinsics.reserved),
              camera.intrinsics.reserved);
    camera.poses.reserve(views);
    for (std::size_t view = 0; view < views; ++view) {
        camera.poses.push_back(adjustedPose(side, view));
    }
    return camera;
}

// The centres of the dots that take part, view by view.
std::vector<std::vector<Point2d>> Adjustment::usedCentres(Side side) const {
    std::vector<std::vector<Point2d>> views(current.size());
    for (std::size_t view = 0; view < current.size(); ++view) {
        for (const DotObservation& dot : current[view].dots[side]) {
            if (dot.fate == DotFate::used) {
                views[view].push_back(centreOf(side, view, dot));
            }
        }
    }
    return views;
}

Matrix3 Adjustment::adjustedFundamental() const {
    requirePair();
    requireCurrent();
    constexpr std::size_t kViewsOfBlock = 3;  // that a block has at least; view 0 alone tells the matrix
    const std::size_t views = std::min(kViewsOfBlock, current.size());
    return rigOfCameras(adjustedCamera(kLeft, views), adjustedCamera(kRight, views)).fundamental;
}

RigCamera Adjustment::startCamera(Side side) const {
    RigCamera camera;
    camera.model = cameras[side].model;
    camera.width = cameras[side].width;
    camera.height = cameras[side].height;
    camera.intrinsics = intrinsicsRecord(camera.model, start.cameras[side].p);
    camera.poses.reserve(start.poses.size());
    for (std::size_t view = 0; view < start.poses.size(); ++view) {
        const MotionParameters pose = poseOf(start, side, view);
        camera.poses.push_back(poseRecordOfVector({pose[0], pose[1], pose[2]}, {pose[3], pose[4], pose[5]}));
    }
    return camera;
}

Rig Adjustment::startRig() const {
    requirePair();
    return rigOfCameras(startCamera(kLeft), startCamera(kRight));
}

Rig Adjustment::adjustedRig() const {
    requirePair();
    requireCurrent();
    Rig rig = rigOfCameras(adjustedCamera(kLeft, current.size()), adjustedCamera(kRight, current.size()));
    rig.left.dots = usedCentres(kLeft);
    rig.right.dots = usedCentres(kRight);
    rig.covariance = outcome->covariance.rig;
    return rig;
}

}  // namespace zelm::measure
