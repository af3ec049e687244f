#include "adjuster.h"

#include <ceres/ceres.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <memory>
#include <string>

#include "dotCost.h"
#include "fault.h"

namespace zelm::measure {
namespace {

constexpr double kFirstNoise = 0.05;         // pixels; before the residuals tell
constexpr double kLeastNoise = 1e-6;         // pixels; perfect data have some rounding
constexpr double kHuber = 2.0;               // standard deviations
constexpr double kOutlier = 5.0;             // standard deviations; one dot in 270,000 by chance
constexpr double kMovedView = 4.0;           // times the median of the views' residuals
constexpr double kLine = 0.02;               // of the width over the length of what a view shows of the plate
constexpr double kFarOff = 1e5;              // pixels from where the start sees a dot; no image is as wide
constexpr double kMaxResidual = 2.0;         // pixels, RMS; no calibration is worth having beyond
constexpr double kMovedPixels = 0.02;        // a view's residual that is nobody's concern
constexpr int kMaxRounds = 8;                // of weights and outliers
constexpr double kSettledNoise = 0.01;       // relative change
constexpr double kRayleighMedian = 1.17741;  // median length of a plane normal vector, standard deviations
// What damps a step is at least one part in so many of each column's own square. Undamped, the normal equations of
// views that leave a parameter open are singular to rounding; the solver cannot factorise them, and says so on the
// console whatever it is told. Well determined parameters feel nothing of it.
constexpr double kMaxTrustRegion = 1e10;
constexpr std::size_t kMinViews = 3;
constexpr std::size_t kMinDots = 6;  // of a view: its pose takes three

constexpr const char* kDivergence =
    "the adjustment does not converge: check that all views show the same plate with the same lens setting";

class Adjuster {
public:
    Adjuster(AdjustState& s, std::vector<AdjustView>& v, const AdjustOptions& o) : state(s), views(v), options(o) {}

    AdjustSummary run();

private:
    void checkStart();
    void checkViews() const;
    void checkCamera(Side side) const;
    void checkFit() const;
    bool tellsDistance(const AdjustView& view) const;
    void leaveOutPoorViews();
    void solve(bool robust, double tolerance);
    void predict();
    void dropOutliers();
    bool dropMovedView();
    bool estimateNoise(bool robust);
    double noiseOf(Side side, double freedom, bool robust) const;
    std::size_t countUsed(Side side) const;
    std::size_t countParameters() const;
    void fillFigures();

    template <class Work>
    void forEachDot(Work work) {
        for (std::size_t view = 0; view < views.size(); ++view) {
            for (const Side side : {kLeft, kRight}) {
                for (DotObservation& dot : views[view].dots[side]) {
                    work(side, view, dot);
                }
            }
        }
    }
    std::array<double, kSides> rmsOfUsed();

    AdjustState& state;
    std::vector<AdjustView>& views;
    const AdjustOptions& options;
    std::array<double, kSides> noise{kFirstNoise, kFirstNoise};
    bool hasConverged = false;  // the last solve()
    AdjustSummary summary;
};

double normalisedSquare(const DotObservation& dot, double noise) {
    const auto W = weightOf(covarianceOf(dot, noise));
    const double a = W[0] * dot.residual.x + W[1] * dot.residual.y;
    const double b = W[2] * dot.residual.y;
    return a * a + b * b;
}

// With three decimals.
std::string textOf(double pixels) {
    const auto thousandths = static_cast<long>(std::lround(std::min(pixels, 1e6) * 1000.0));
    const std::string digits = std::to_string(1000 + thousandths % 1000);
    return std::to_string(thousandths / 1000) + "." + digits.substr(1);
}

bool isUsed(const DotObservation& dot) {
    return dot.fate == DotFate::used;
}

bool takesPart(const AdjustView& view) {
    const auto any = [](const auto& list) { return std::any_of(list.begin(), list.end(), isUsed); };
    return view.leftOut.empty() && (any(view.dots[kLeft]) || any(view.dots[kRight]));
}

void leaveOut(AdjustView& view, const std::string& why) {
    view.leftOut = why;
    for (auto& list : view.dots) {
        for (DotObservation& dot : list) {
            dot.fate = DotFate::viewLeftOut;
        }
    }
}

void Adjuster::leaveOutPoorViews() {
    for (AdjustView& view : views) {
        if (!takesPart(view)) {
            continue;
        }
        if (!placesPlate(view)) {
            leaveOut(view, "its dots are too few, or all on one line, to tell where the plate is");
        } else if (!tellsDistance(view)) {
            leaveOut(view, "the parallel camera alone sees it, which does not tell how far away the plate is");
        }
    }
}

bool Adjuster::tellsDistance(const AdjustView& view) const {
    const auto isTold = [&](Side side) {
        const auto& dots = view.dots[side];
        return !state.cameras[side].isParallel && std::any_of(dots.begin(), dots.end(), isUsed);
    };
    return isTold(kLeft) || isTold(kRight);
}

// Numbers that mean nothing are refused here: the solver would say so on the console.
void Adjuster::checkStart() {
    predict();
    forEachDot([&](Side, std::size_t view, const DotObservation& dot) {
        const double distance = std::hypot(dot.residual.x, dot.residual.y);
        if (isUsed(dot) && !(distance < kFarOff)) {
            refuse("a dot of view " + std::to_string(view) +
                   " is nowhere near where the calibration sees it: calibrate again");
        }
    });
}

void Adjuster::checkViews() const {
    std::size_t used = 0;
    for (const AdjustView& view : views) {
        used += takesPart(view) ? 1U : 0U;
    }
    if (used < kMinViews) {
        refuse("only " + std::to_string(used) + " views can be adjusted: take at least " + std::to_string(kMinViews));
    }
    checkCamera(kLeft);
    checkCamera(kRight);
}

// A camera whose dots all fell out would keep its start, and pass for known without error.
void Adjuster::checkCamera(Side side) const {
    const bool hasDots =
        std::any_of(views.begin(), views.end(), [&](const AdjustView& view) { return !view.dots[side].empty(); });
    // One view determines a parallel camera whose tilt is held.
    const std::size_t least = state.cameras[side].isParallel ? kMinDots : kMinDots * kMinViews;
    if (hasDots && countUsed(side) < least) {
        refuse("the " + std::string(side == kLeft ? "left" : "right") + " camera has too few dots, " +
               std::to_string(countUsed(side)) + ", that agree with the others: take images that show more of the " +
               "plate, and see that each view's two images belong together");
    }
}

// Views whose two images do not belong together can agree on a rig that is none.
void Adjuster::checkFit() const {
    const double worst = std::max(summary.rms[kLeft], summary.rms[kRight]);
    if (!(worst <= kMaxResidual)) {
        refuse("the dots are " + textOf(worst) + " px from where any one rig sees them: see that each view's two " +
               "images belong together, that neither camera was moved or refocused, and that all show this plate");
    }
    if (!hasConverged) {
        refuse(kDivergence);
    }
}

void Adjuster::solve(bool robust, double tolerance) {
    ceres::Problem::Options problemOptions;
    problemOptions.enable_fast_removal = false;
    problemOptions.loss_function_ownership = ceres::DO_NOT_TAKE_OWNERSHIP;
    problemOptions.cost_function_ownership = ceres::DO_NOT_TAKE_OWNERSHIP;
    problemOptions.manifold_ownership = ceres::DO_NOT_TAKE_OWNERSHIP;
    problemOptions.disable_all_safety_checks = true;
    ceres::HuberLoss huber(kHuber);
    // All that the problem refers to outlives it.
    std::deque<DotCost> residuals;
    std::deque<FreeDirections> manifolds;
    ceres::Problem problem(problemOptions);
    const auto order = std::make_shared<ceres::ParameterBlockOrdering>();
    ceres::Solver::Options solver;
    solver.linear_solver_ordering = order;

    forEachDot([&](Side side, std::size_t view, DotObservation& dot) {
        if (!isUsed(dot)) {
            return;
        }
        std::vector<double*> blocks{state.cameras[side].p.data(), state.poses[view].data()};
        if (side != state.base) {
            blocks.push_back(state.relative.data());
        }
        if (options.estimateFactors) {
            blocks.push_back(&state.factors[dot.kind]);
        }
        if (options.estimateBow) {
            blocks.push_back(state.bow.b.data());
        }
        residuals.emplace_back(state, options, side, view, dot, weightOf(covarianceOf(dot, noise[side])));
        problem.AddResidualBlock(&residuals.back(), robust ? &huber : nullptr, blocks);
    });
    const auto shared = [&](double* block) {
        if (problem.HasParameterBlock(block)) {
            order->AddElementToGroup(block, 1);
        }
    };
    for (const Side side : {kLeft, kRight}) {
        double* const camera = state.cameras[side].p.data();
        shared(camera);
        if (problem.HasParameterBlock(camera)) {
            manifolds.emplace_back(static_cast<int>(kCameraParameters), freeOfCamera(state, options, side));
            problem.SetManifold(camera, &manifolds.back());
        }
    }
    shared(state.relative.data());
    if (problem.HasParameterBlock(state.relative.data())) {
        manifolds.emplace_back(6, freeOfRelative(state));
        problem.SetManifold(state.relative.data(), &manifolds.back());
    }
    shared(&state.factors[kPlainDot]);
    shared(&state.factors[kMarkerDot]);
    shared(state.bow.b.data());
    for (MotionParameters& pose : state.poses) {
        if (problem.HasParameterBlock(pose.data())) {
            order->AddElementToGroup(pose.data(), 0);
        }
    }
    solver.linear_solver_type = ceres::DENSE_SCHUR;
    solver.max_num_iterations = 100;
    solver.function_tolerance = tolerance;
    solver.gradient_tolerance = 0.0;
    solver.parameter_tolerance = tolerance;
    solver.max_trust_region_radius = kMaxTrustRegion;
    solver.num_threads = 1;
    solver.logging_type = ceres::SILENT;
    ceres::Solver::Summary result;
    ceres::Solve(solver, &problem, &result);
    summary.iterations += result.num_successful_steps + result.num_unsuccessful_steps;
    hasConverged = result.termination_type == ceres::CONVERGENCE;
    if (!result.IsSolutionUsable()) {
        refuse(kDivergence);
    }
    // A circle is the same with its radius turned round.
    for (double& factor : state.factors) {
        factor = std::fabs(factor);
    }
}

void Adjuster::predict() {
    forEachDot([&](Side side, std::size_t view, DotObservation& dot) {
        const ImageParameters image = imageParameters(state, side, view, dot.kind);
        const Point2d centre = dotOutline(image.camera, circleOf(image, dot.place, dot.radius)).centre;
        dot.residual = {dot.pixel.x - centre.x, dot.pixel.y - centre.y};
    });
}

void Adjuster::dropOutliers() {
    forEachDot([&](Side side, std::size_t, DotObservation& dot) {
        if (dot.fate == DotFate::viewLeftOut || dot.fate == DotFate::notConfirmed) {
            return;
        }
        const bool fits = normalisedSquare(dot, noise[side]) <= kOutlier * kOutlier;
        dot.fate = fits ? DotFate::used : DotFate::outlier;
    });
}

// Standard deviation of a coordinate that the median of the residuals tells, whatever some wrong dots say; of the worse
// image of the view, since the pose may fit one of them.
double misfitOf(const AdjustView& view) {
    double worst = 0.0;
    for (const auto& list : view.dots) {
        std::vector<double> lengths;
        for (const DotObservation& dot : list) {
            if (isUsed(dot) || dot.fate == DotFate::outlier) {
                lengths.push_back(std::hypot(dot.residual.x, dot.residual.y));
            }
        }
        if (!lengths.empty()) {
            const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
            std::nth_element(lengths.begin(), middle, lengths.end());
            worst = std::max(worst, *middle / kRayleighMedian);
        }
    }
    return worst;
}

// A view whose dots agree with none of the others in size: one at a time, the worst.
bool Adjuster::dropMovedView() {
    std::vector<double> rms(views.size(), 0.0);
    std::vector<double> seen;
    for (std::size_t i = 0; i < views.size(); ++i) {
        if (takesPart(views[i])) {
            rms[i] = misfitOf(views[i]);
            seen.push_back(rms[i]);
        }
    }
    std::nth_element(seen.begin(), seen.begin() + static_cast<std::ptrdiff_t>(seen.size() / 2), seen.end());
    const double median = seen[seen.size() / 2];
    const auto worst = std::max_element(rms.begin(), rms.end());
    if (seen.size() <= kMinViews || *worst <= kMovedView * median || *worst <= kMovedPixels) {
        return false;
    }
    leaveOut(views[static_cast<std::size_t>(worst - rms.begin())],
             "its dots are " + textOf(*worst) + " px from where the other views put them, usual is " + textOf(median) +
                 " px: was the plate or a camera moved between its two images?");
    return true;
}

double Adjuster::noiseOf(Side side, double freedom, bool robust) const {
    std::vector<const DotObservation*> dots;
    for (const AdjustView& view : views) {
        for (const DotObservation& dot : view.dots[side]) {
            if (isUsed(dot)) {
                dots.push_back(&dot);
            }
        }
    }
    if (dots.empty()) {
        return noise[side];
    }
    // The noise that makes the weighted residuals what they ought to be: their median, or their sum of squares.
    const auto excess = [&](double candidate) {
        std::vector<double> squares;
        squares.reserve(dots.size());
        double total = 0.0;
        for (const DotObservation* dot : dots) {
            squares.push_back(normalisedSquare(*dot, candidate));
            total += squares.back();
        }
        if (!robust) {
            return total / (freedom * static_cast<double>(dots.size())) - 1.0;
        }
        const auto middle = squares.begin() + static_cast<std::ptrdiff_t>(squares.size() / 2);
        std::nth_element(squares.begin(), middle, squares.end());
        return *middle / (kRayleighMedian * kRayleighMedian) - 1.0;
    };
    double low = kLeastNoise;
    double high = 100.0;
    if (excess(low) <= 0.0) {
        return low;
    }
    while (high > low * (1.0 + 1e-4)) {
        const double middle = std::sqrt(low * high);
        (excess(middle) > 0.0 ? low : high) = middle;
    }
    return high;
}

// Whether the noise has settled.
bool Adjuster::estimateNoise(bool robust) {
    if (options.knownNoise > 0.0) {
        noise = {options.knownNoise, options.knownNoise};
        return true;
    }
    const auto total = static_cast<double>(countUsed(kLeft) + countUsed(kRight));
    const double perDot = (2.0 * total - static_cast<double>(countParameters())) / total;
    bool settled = true;
    for (const Side side : {kLeft, kRight}) {
        const double next = noiseOf(side, perDot, robust);
        settled = settled && std::fabs(next - noise[side]) <= kSettledNoise * noise[side];
        noise[side] = next;
    }
    return settled;
}

std::size_t Adjuster::countUsed(Side side) const {
    std::size_t count = 0;
    for (const AdjustView& view : views) {
        count += static_cast<std::size_t>(std::count_if(view.dots[side].begin(), view.dots[side].end(), isUsed));
    }
    return count;
}

std::size_t Adjuster::countParameters() const {
    std::size_t count = 0;
    for (const Side side : {kLeft, kRight}) {
        count += countUsed(side) > 0 ? freeOfCamera(state, options, side).size() : 0;
    }
    count += countUsed(state.other()) > 0 ? freeOfRelative(state).size() : 0;
    for (const AdjustView& view : views) {
        const auto any = [](const auto& list) { return std::any_of(list.begin(), list.end(), isUsed); };
        count += any(view.dots[kLeft]) || any(view.dots[kRight]) ? 6U : 0U;
    }
    return count + (options.estimateFactors ? 2U : 0U) + (options.estimateBow ? 3U : 0U);
}

std::array<double, kSides> Adjuster::rmsOfUsed() {
    predict();
    std::array<double, kSides> squares{};
    std::array<double, kSides> counts{};
    forEachDot([&](Side side, std::size_t, const DotObservation& dot) {
        if (isUsed(dot)) {
            squares[side] += dot.residual.x * dot.residual.x + dot.residual.y * dot.residual.y;
            counts[side] += 2.0;
        }
    });
    const auto rms = [&](Side side) { return counts[side] > 0.0 ? std::sqrt(squares[side] / counts[side]) : 0.0; };
    return {rms(kLeft), rms(kRight)};
}

void Adjuster::fillFigures() {
    summary.rms = rmsOfUsed();
    summary.noise = noise;
    summary.parameters = countParameters();
    forEachDot([&](Side side, std::size_t, const DotObservation& dot) {
        if (isUsed(dot)) {
            summary.squares += dot.residual.x * dot.residual.x + dot.residual.y * dot.residual.y;
        }
        summary.observations += isUsed(dot) ? 1U : 0U;
        summary.outliers += dot.fate == DotFate::outlier ? 1U : 0U;
        summary.chiSquare += isUsed(dot) ? normalisedSquare(dot, noise[side]) : 0.0;
    });
    for (const AdjustView& view : views) {
        summary.viewsLeftOut += view.leftOut.empty() ? 0U : 1U;
    }
    summary.freedom = 2.0 * static_cast<double>(summary.observations) - static_cast<double>(summary.parameters);
}

AdjustSummary Adjuster::run() {
    leaveOutPoorViews();
    checkViews();
    checkStart();
    const AdjustState start = state;
    bool robust = true;
    // Views that are left out, of which there are no more than views, do not count as rounds.
    for (int round = 0;;) {
        solve(robust, robust ? 1e-6 : 1e-12);
        predict();
        const bool moved = dropMovedView();
        const bool settled = estimateNoise(robust);
        if (!moved && ++round >= kMaxRounds && !robust) {
            break;
        }
        const std::size_t before = countUsed(kLeft) + countUsed(kRight);
        dropOutliers();
        leaveOutPoorViews();
        const bool same = countUsed(kLeft) + countUsed(kRight) == before;
        if (!robust && settled && same && !moved) {
            break;
        }
        robust = moved || (robust && round == 1 && !same);
        checkViews();
    }
    const AdjustState found = state;
    state = start;
    const auto rmsBefore = rmsOfUsed();
    state = found;
    fillFigures();
    summary.rmsBefore = rmsBefore;
    checkFit();
    return summary;
}

}  // namespace

double AdjustSummary::deviation() const {
    return freedom > 0.0 ? std::sqrt(squares / freedom) : 0.0;
}

bool placesPlate(const AdjustView& view) {
    std::size_t count = 0;
    double x = 0.0, y = 0.0, xx = 0.0, xy = 0.0, yy = 0.0;
    for (const auto& list : view.dots) {
        for (const DotObservation& dot : list) {
            if (isUsed(dot)) {
                ++count;
                x += dot.place[0];
                y += dot.place[1];
                xx += dot.place[0] * dot.place[0];
                xy += dot.place[0] * dot.place[1];
                yy += dot.place[1] * dot.place[1];
            }
        }
    }
    if (count < kMinDots) {
        return false;
    }
    const auto n = static_cast<double>(count);
    const double a = xx - x * x / n;
    const double b = xy - x * y / n;
    const double c = yy - y * y / n;
    const double root = std::hypot(0.5 * (a - c), b);
    return 0.5 * (a + c) - root > kLine * kLine * (0.5 * (a + c) + root);
}

std::array<double, 3> covarianceOf(const DotObservation& dot, double noise) {
    const auto& [xx, xy, yy] = dot.covariance;
    return {xx + noise * noise, xy, yy + noise * noise};
}

AdjustSummary adjust(AdjustState& state, std::vector<AdjustView>& views, const AdjustOptions& options) {
    return Adjuster(state, views, options).run();
}

}  // namespace zelm::measure
