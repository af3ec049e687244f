#include "planner.h"

#include <Eigen/Cholesky>
#include <Eigen/Eigenvalues>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>
#include <string>

#include "adjustStart.h"
#include "fault.h"

namespace zelm::measure {
namespace {

constexpr double kDefaultNoise = 0.02;  // pixels; plates in noise of 2 gray levels and a blur of 1.5 stay below
constexpr double kDefaultTilt = 50.0 * std::numbers::pi / 180.0;
constexpr std::size_t kMinViews = 3;     // that an adjustment takes
constexpr double kUndetermined = 1e-12;  // of the least eigenvalue, scaled to a unit diagonal; as of an adjustment
constexpr const char* kRemedy = " is not determined by these views: take views that differ more in tilt and place";
constexpr double kPrior = 1e-4;  // information: a deviation of a hundred units of the basis, some hundred pixels

bool isFinite(const Vector3& v) {
    return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]);
}

bool isSize(double x) {
    return std::isfinite(x) && x >= 0.0;
}

PlanVolume volumeOf(const ZelmMeasurePlanOptions& o) {
    const PlanVolume volume{{o.centre[0], o.centre[1], o.centre[2]}, {o.extent[0], o.extent[1], o.extent[2]}};
    const Vector3& e = volume.extent;
    if (!isFinite(volume.centre) || !isFinite(e) || !(e[0] > 0.0) || !(e[1] > 0.0) || !(e[2] >= 0.0)) {
        refuse("the volume's size must be greater than 0");
    }
    if (!(volume.centre[2] - 0.5 * e[2] > 0.0)) {
        refuse("the volume reaches behind the cameras: give a greater distance, or less depth");
    }
    return volume;
}

const ZelmMeasurePlanOptions& checked(const ZelmMeasurePlanOptions& o) {
    if (!isSize(o.length) || !isSize(o.noise) || !isSize(o.pointNoise) || !isSize(o.maxTilt)) {
        refuse("length, noise and tilt must be 0 or greater");
    }
    if (!isSize(o.focusNear) || !isSize(o.focusFar) || (o.focusFar > 0.0 && o.focusFar <= o.focusNear)) {
        refuse("the range of focus must be from a smaller to a greater depth");
    }
    return o;
}

double noiseOf(const ZelmMeasurePlanOptions& o) {
    return checked(o).noise > 0.0 ? o.noise : kDefaultNoise;
}

// Three significant digits.
std::string textOf(double value) {
    std::array<char, 40> text{};
    const auto end = std::to_chars(text.begin(), text.end(), value, std::chars_format::general, 3).ptr;
    return {text.begin(), end};
}

}  // namespace

Planner::Planner(const PlanPair& p, const Pattern& pattern, const ZelmMeasurePlanOptions& o)
    : pair(p),
      plate(planPlate(pattern)),
      basis(pair, volumeOf(o).centre[2], o.holdSkew != 0, o.squarePixels != 0),
      lengths(pair, volumeOf(o), basis, checked(o).length, o.pointNoise > 0.0 ? o.pointNoise : noiseOf(o)),
      noise(noiseOf(o)),
      byWorst(o.criterion == ZELM_MEASURE_PLAN_WORST),
      candidates(planCandidates(pair, plate, volumeOf(o), basis, noise, o.maxTilt > 0.0 ? o.maxTilt : kDefaultTilt)) {
    for (const PlanCandidate& candidate : candidates) {
        if (!candidate.information.reduced.allFinite()) {
            refuse("the views' equations are not finite: are noise and lengths in pixels and plate units?");
        }
    }
}

void Planner::take(const std::vector<MotionParameters>& poses) {
    std::vector<PlanCandidate> all = taken;
    all.reserve(taken.size() + poses.size());
    for (const MotionParameters& pose : poses) {
        all.push_back({pose, informationOf(pair, plate, basis, pose, noise)});
        const ViewInformation& information = all.back().information;
        if (!information.reduced.allFinite() || !(information.all.sum() > 0.0)) {
            refuse("neither camera sees a dot of a view that was taken: are its pose and the plate in the same units?");
        }
    }
    taken = std::move(all);
    planned.clear();
}

const PlanCandidate& Planner::at(std::size_t index) const {
    return index < taken.size() ? taken[index] : candidates[planned[index - taken.size()]];
}

void Planner::add(const ViewInformation& information, Knowledge& knowledge) {
    knowledge.sum.reduced += information.reduced;
    knowledge.sum.all += information.all;
    ++knowledge.views;
}

Planner::Knowledge Planner::knowledge(std::size_t views) const {
    Knowledge result;
    for (std::size_t i = 0; i < views; ++i) {
        add(at(i).information, result);
    }
    return result;
}

PlanMatrix Planner::withHeld(const PlanMatrix& information) const {
    PlanMatrix result = information;
    result.diagonal() += basis.held();
    return result;
}

// With a little knowledge beforehand, so that the first views are chosen well too.
PlanSearch Planner::search() const {
    PlanMatrix start = withHeld(knowledge(taken.size()).sum.reduced);
    start.diagonal().array() += kPrior;
    return {candidates, lengths, byWorst, start};
}

LengthScore Planner::determined(const Knowledge& known) const {
    if (known.views < kMinViews) {
        refuse("only " + std::to_string(known.views) + (known.views == 1 ? " view" : " views") +
               ": a calibration takes at least " + std::to_string(kMinViews));
    }
    PlanVector all = known.sum.all + basis.held();
    Eigen::Index least = 0;
    if (!(all.minCoeff(&least) > 0.0)) {
        refuse(basis.nameOf(PlanVector::Unit(least)) + kRemedy);
    }
    all = all.cwiseSqrt().cwiseInverse();
    const PlanMatrix information = withHeld(known.sum.reduced);
    const Eigen::SelfAdjointEigenSolver<PlanMatrix> eigen(all.asDiagonal() * information * all.asDiagonal());
    const auto score = lengths.score(information);
    if (!(eigen.eigenvalues()[0] > kUndetermined) || !score) {
        refuse(basis.nameOf(eigen.eigenvectors().col(0)) + kRemedy);
    }
    return *score;
}

LengthScore Planner::scoreOrNone(const Knowledge& known) const {
    try {
        return determined(known);
    } catch (const Fault&) {
        return {};
    }
}

bool Planner::meets(const PlanSearch& found, double tolerance) const {
    if (taken.size() + found.chosen().size() < kMinViews) {
        return false;
    }
    const auto score = lengths.score(found.sum());
    if (!score || !(criterionOf(*score) <= tolerance)) {
        return false;
    }
    Knowledge known = knowledge(taken.size());
    for (const std::size_t i : found.chosen()) {
        add(candidates[i].information, known);
    }
    const LengthScore sure = scoreOrNone(known);
    return criterionOf(sure) > 0.0 && criterionOf(sure) <= tolerance;
}

void Planner::refuseTolerance(const PlanSearch& found, double tolerance) const {
    const double image = criterionOf(lengths.imageScore());
    const std::string noiseAlone = "the noise of the measured points alone makes " + textOf(image);
    const std::string wanted = "a U95 of " + textOf(tolerance) + " cannot be met: ";
    const std::string better = "less noise, a longer focal length or a greater baseline";
    if (image >= tolerance) {
        refuse(wanted + noiseAlone + ", however many views: it takes " + better);
    }
    const auto score = lengths.score(found.sum());
    const std::size_t all = taken.size() + found.chosen().size();
    refuse(wanted + std::to_string(all) + " views give " + (score ? textOf(criterionOf(*score)) : "none") + ", and " +
           noiseAlone + ": it takes more views, a plate of more dots, " + better);
}

PlanSearch Planner::grown(std::size_t most, double tolerance) const {
    PlanSearch found = search();
    while (taken.size() + found.chosen().size() < most && !(tolerance > 0.0 && meets(found, tolerance))) {
        const std::size_t next = found.next();
        if (next == candidates.size()) {
            break;
        }
        found.add(next);
    }
    return found;
}

// Exchanges end at different plans of nearly one worth, as they begin: both ways to one view less are tried.
PlanSearch Planner::shrunk(PlanSearch found, double tolerance) const {
    while (!found.chosen().empty()) {
        PlanSearch fewer = found;
        fewer.dropLeast();
        fewer.exchange();
        if (!meets(fewer, tolerance)) {
            fewer = grown(taken.size() + found.chosen().size() - 1, 0.0);
            fewer.exchange();
        }
        if (!meets(fewer, tolerance)) {
            break;
        }
        found = fewer;
    }
    return found;
}

void Planner::fewest(double tolerance, std::size_t most) {
    if (tolerance > 0.0 && criterionOf(lengths.imageScore()) >= tolerance) {
        refuseTolerance(search(), tolerance);
    }
    PlanSearch found = grown(most, tolerance);
    found.exchange();
    if (tolerance > 0.0) {
        if (!meets(found, tolerance)) {
            refuseTolerance(found, tolerance);
        }
        found = shrunk(found, tolerance);
    }
    found.order();
    planned = found.chosen();
}

ZelmMeasurePlanView Planner::describe(const MotionParameters& pose, const Knowledge& after) const {
    ZelmMeasurePlanView view{};
    const PlateHold hold = holdOf(pair, pose);
    std::copy(hold.position.begin(), hold.position.end(), view.position);
    view.tilt = hold.tilt;
    view.azimuth = hold.azimuth;
    view.roll = hold.roll;
    const PlateSight sight = sightOf(pair, plate, pose);
    for (const Side side : {kLeft, kRight}) {
        view.tilts[side] = sight.tilts[side];
        view.fill[side] = fillOf(pair, plate, pose, side);
        view.dots[side] = static_cast<std::int32_t>(std::lround(sight.dots[side]));
    }
    const Motion motion = motionOf(pose);
    std::copy(motion.R.begin(), motion.R.end(), view.pose.R);
    std::copy(motion.t.begin(), motion.t.end(), view.pose.t);
    std::copy_n(pose.begin(), 3, view.pose.r);
    const LengthScore score = scoreOrNone(after);
    view.worst = score.worst;
    view.rms = score.rms;
    return view;
}

ZelmMeasurePlanView Planner::next() const {
    PlanSearch found = search();
    for (const std::size_t i : planned) {
        found.add(i);
    }
    const std::size_t best = found.next();
    if (best == candidates.size()) {
        refuse("every pose of the plate is in the plan already");
    }
    Knowledge known = knowledge(views());
    add(candidates[best].information, known);
    return describe(candidates[best].pose, known);
}

ZelmMeasurePlanView Planner::view(std::size_t index) const {
    ZelmMeasurePlanView result = describe(at(index).pose, knowledge(index + 1));
    result.taken = index < taken.size() ? 1 : 0;
    return result;
}

ZelmMeasurePlanFigures Planner::figures() const {
    const LengthScore score = determined(knowledge(views()));
    const LengthScore image = lengths.imageScore();
    ZelmMeasurePlanFigures f{};
    f.views = static_cast<std::int32_t>(views());
    f.taken = static_cast<std::int32_t>(taken.size());
    f.lengths = lengths.count();
    f.length = lengths.length();
    f.seen = lengths.seen();
    f.worst = score.worst;
    f.rms = score.rms;
    f.worstImage = image.worst;
    f.rmsImage = image.rms;
    return f;
}

PlanMatrix Planner::covariance() const {
    const Knowledge known = knowledge(views());
    determined(known);
    PlanMatrix inverse = withHeld(known.sum.reduced).ldlt().solve(PlanMatrix::Identity());
    inverse.diagonal() -= basis.held();
    return basis.covariance(0.5 * (inverse + inverse.transpose()));
}

}  // namespace zelm::measure
