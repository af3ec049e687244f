#include "adjustmentChecks.h"

#include <Eigen/Eigenvalues>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "adjustStart.h"
#include "checkEquations.h"
#include "flawSearch.h"
#include "platePose.h"
#include "pointShift.h"
#include "significance.h"

namespace zelm::measure {
namespace {

constexpr double kDiameterLimit = 0.03;       // of a factor less 1; it moves centres by thousandths of a pixel
constexpr double kDiameterDeviation = 0.005;  // of measured diameters: what blur adds to or takes from them
constexpr std::size_t kFewestScales = 8;
constexpr double kDegrees = 180.0 / std::numbers::pi;

class Checker {
public:
    explicit Checker(const CheckedAdjustment& a)
        : adjusted(a),
          equations(checkEquations(*a.state, *a.views, *a.summary, a.isPair)),
          free(freeOfShared(*a.state, *a.options, equations.otherSeen)),
          plain(equations, free, {}),
          shifts(equations, plain.sharedCovariance()) {}

    std::vector<Check> run();

private:
    Check halves() const;
    Check start(const Flaw& flaw) const;
    void judge(const Flaw& flaw, Check& check) const;
    void addLenses(std::vector<Check>& checks) const;
    void addMoved(std::vector<Check>& checks) const;
    Check lens(const Flaw& flaw) const;
    Check bow(const Flaw& flaw) const;
    Check pitch(const Flaw& flaw) const;
    Check diameter(const Flaw& flaw, DotKind kind) const;
    Check moved(const Flaw& flaw) const;
    Check leftOut(std::size_t view) const;
    // Of the flaws of a check the clearest that was found, or the likeliest.
    template <class Of>
    const Flaw* clearest(Of of) const;

    const CheckedAdjustment& adjusted;
    CheckEquations equations;
    std::vector<std::vector<double>> free;
    ScoreTest plain;
    ShiftOfPoints shifts;
    std::vector<Flaw> flaws;
};

double deviationAlong(const Eigen::MatrixXd& covariance, const Eigen::VectorXd& direction) {
    return std::sqrt(std::max(0.0, direction.dot(covariance * direction)));
}

Check Checker::halves() const {
    Check check;
    const HalvesResult result = plain.compareHalves();
    if (!result.isDone) {
        return check;
    }
    check.p = std::min(1.0, result.p * kChecks);
    // Each half lies half the difference from the whole.
    const PointShift half = shifts.of(0.5 * result.difference);
    check.shift = half.shift;
    check.value = 2.0 * half.shift;
    check.limit = 2.0 * half.limit;
    if (half.limit > 0.0) {
        const Eigen::Matrix3d C = half.byShared * result.covariance * half.byShared.transpose();
        check.deviation = std::sqrt(std::max(0.0, Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d>(C).eigenvalues()[2]));
    }
    check.verdict = check.p >= kFalseAlarms ? CheckVerdict::fine
                    : half.matters()        ? CheckVerdict::wrong
                                            : CheckVerdict::notable;
    return check;
}

Check Checker::start(const Flaw& flaw) const {
    Check check;
    check.kind = flaw.kind;
    check.side = flaw.side;
    check.group = flaw.group;
    check.isEstimated = flaw.isEstimated;
    check.view = flaw.candidate.isMotion ? static_cast<int>(flaw.candidate.view) : -1;
    check.p = flaw.result.isDone ? flaw.p() : 1.0;
    return check;
}

// With the value known: how far it moves points, and whether that matters.
void Checker::judge(const Flaw& flaw, Check& check) const {
    if (!flaw.result.isDone) {
        return;
    }
    Eigen::VectorXd change = plain.absorbed(flaw.candidate, flaw.result.value);
    if (flaw.kind == CheckKind::lens) {
        for (std::size_t i = 0; i < flaw.candidate.shared.size(); ++i) {
            change[static_cast<Index>(flaw.candidate.shared[i])] = -flaw.result.value[static_cast<Index>(i)];
        }
    }
    const PointShift worst =
        shifts.of(flaw.isEstimated ? Eigen::VectorXd(Eigen::VectorXd::Zero(change.size())) : change);
    check.shift = worst.shift;
    check.limit = worst.shift > 0.0 ? std::fabs(check.value) * worst.limit / worst.shift : 0.0;
    check.verdict = check.p >= kFalseAlarms ? CheckVerdict::fine
                    : worst.matters()       ? CheckVerdict::wrong
                                            : CheckVerdict::notable;
}

template <class Of>
const Flaw* Checker::clearest(Of of) const {
    const Flaw* best = nullptr;
    for (const Flaw& flaw : flaws) {
        if (!of(flaw)) {
            continue;
        }
        const bool isClearer = best == nullptr || (flaw.isFound != best->isFound ? flaw.isFound
                                                   : flaw.isFound ? flaw.result.evidence > best->result.evidence
                                                                  : flaw.result.p < best->result.p);
        if (isClearer) {
            best = &flaw;
        }
    }
    return best;
}

Check Checker::lens(const Flaw& flaw) const {
    Check check = start(flaw);
    const auto side = static_cast<std::size_t>(flaw.side);
    const double rows = equations.sideRows[side];
    if (flaw.result.isDone && rows > 0.0) {
        const double noise2 = plain.unitVariance() * equations.sideVariance[side] / rows;
        check.value = std::sqrt(flaw.result.statistic * noise2 / rows);
        check.deviation = std::sqrt(flaw.result.count * noise2 / rows);
        check.coefficient = flaw.result.value[0];
        check.coefficientSigma = std::sqrt(flaw.result.covariance(0, 0));
    }
    judge(flaw, check);
    return check;
}

void Checker::addLenses(std::vector<Check>& checks) const {
    for (const int side : {0, 1}) {
        if (!adjusted.isPair && static_cast<Side>(side) != adjusted.state->base) {
            continue;
        }
        checks.push_back(
            lens(*clearest([&](const Flaw& flaw) { return flaw.kind == CheckKind::lens && flaw.side == side; })));
    }
}

Check Checker::bow(const Flaw& flaw) const {
    Check check = start(flaw);
    std::array<double, 2> low{HUGE_VAL, HUGE_VAL};
    std::array<double, 2> high{-HUGE_VAL, -HUGE_VAL};
    for (const AdjustView& view : *adjusted.views) {
        for (const auto& list : view.dots) {
            for (const DotObservation& dot : list) {
                for (std::size_t i = 0; dot.fate == DotFate::used && i < 2; ++i) {
                    low[i] = std::min(low[i], dot.place[i]);
                    high[i] = std::max(high[i], dot.place[i]);
                }
            }
        }
    }
    if (flaw.result.isDone && high[0] >= low[0]) {
        const double extent = adjusted.state->bow.extent;
        const double x = 0.5 * (high[0] - low[0]) / extent;
        const double y = 0.5 * (high[1] - low[1]) / extent;
        for (const double sign : {1.0, -1.0}) {
            const Eigen::Vector3d corner(x * x, sign * x * y, y * y);
            const double bend = corner.dot(flaw.result.value);
            if (sign > 0.0 || std::fabs(bend) > std::fabs(check.value)) {
                check.value = bend;
                check.deviation = deviationAlong(flaw.result.covariance, corner);
            }
        }
    }
    judge(flaw, check);
    return check;
}

Check Checker::pitch(const Flaw& flaw) const {
    Check check = start(flaw);
    if (flaw.result.isDone) {
        check.value = flaw.result.value[0];
        check.deviation = std::sqrt(flaw.result.covariance(0, 0));
    }
    judge(flaw, check);
    return check;
}

// The dots' own pixels tell their size better than the bias of their centres does.
Check Checker::diameter(const Flaw& flaw, DotKind kind) const {
    Check check = start(flaw);
    check.kind = kind == kPlainDot ? CheckKind::dotDiameter : CheckKind::markerDiameter;
    judge(flaw, check);
    std::vector<double> scales = (*adjusted.scales)[kind];
    std::erase_if(scales, [](double scale) { return !std::isfinite(scale); });
    double freedom = 0.0;
    if (scales.size() >= kFewestScales) {
        const double middle = median(scales);
        std::vector<double> distances;
        distances.reserve(scales.size());
        for (const double scale : scales) {
            distances.push_back(std::fabs(scale - middle));
        }
        const auto count = static_cast<double>(scales.size());
        // 1.4826: from the median distance to a standard deviation; 1.2533: of a median over that of a mean.
        const double ofMedian = 1.2533 * 1.4826 * median(distances) / std::sqrt(count);
        check.value = middle - 1.0;
        check.deviation = std::hypot(ofMedian, kDiameterDeviation);
        freedom = count - 1.0;
    } else if (flaw.result.isDone) {
        const auto at = static_cast<Index>(kind);
        check.value = flaw.result.value[at];
        check.deviation = std::sqrt(flaw.result.covariance(at, at));
        freedom = static_cast<double>(equations.rows);
    }
    check.p = 1.0;
    check.verdict = CheckVerdict::undone;
    check.shift = check.deviation > 0.0 ? check.shift : 0.0;
    if (!(check.deviation > 0.0)) {
        check.value = 0.0;
        return check;
    }
    const double t = check.value / check.deviation;
    check.p = std::min(1.0, kChecks * squaresTail(t * t, 1.0, freedom));
    check.limit = kDiameterLimit;
    check.verdict = !(check.p < kFalseAlarms)                                       ? CheckVerdict::fine
                    : std::fabs(check.value) > kDiameterLimit && !check.isEstimated ? CheckVerdict::wrong
                                                                                    : CheckVerdict::notable;
    return check;
}

Check Checker::moved(const Flaw& flaw) const {
    Check check = start(flaw);
    if (flaw.result.isDone) {
        // The turn comes before the shift between the cameras: it moves the plate's middle by turn x m.
        Vector3 m = equations.views[flaw.candidate.view].middle;
        for (std::size_t i = 0; i < 3; ++i) {
            m[i] -= adjusted.state->relative[3 + i];
        }
        Eigen::Matrix<double, 3, 6> place = Eigen::Matrix<double, 3, 6>::Zero();
        place.leftCols<3>() << 0.0, m[2], -m[1], -m[2], 0.0, m[0], m[1], -m[0], 0.0;
        place.rightCols<3>().setIdentity();
        const auto sizeOf = [&](const Eigen::MatrixXd& by, double& value, double& deviation) {
            const Eigen::VectorXd v = by * flaw.result.value;
            value = v.norm();
            const Eigen::VectorXd u =
                value > 0.0 ? Eigen::VectorXd(v / value) : Eigen::VectorXd(Eigen::Vector3d::UnitX());
            deviation = deviationAlong(flaw.result.covariance, by.transpose() * u);
        };
        sizeOf(place, check.value, check.deviation);
        sizeOf(Eigen::MatrixXd::Identity(3, 6), check.turnDegrees, check.turnDeviation);
        check.turnDegrees *= kDegrees;
        check.turnDeviation *= kDegrees;
    }
    judge(flaw, check);
    return check;
}

// A view that the adjustment itself left out, since its dots are far from where all others put them.
Check Checker::leftOut(std::size_t view) const {
    const AdjustState& state = *adjusted.state;
    Check check;
    check.kind = CheckKind::moved;
    check.view = static_cast<int>(view);
    check.leftOut = (*adjusted.views)[view].leftOut;
    check.verdict = CheckVerdict::notable;
    check.p = 0.0;
    const auto pose = [&](Side side) { return posedPlate(state, side, (*adjusted.views)[view].dots[side]); };
    const auto base = state.cameras[state.base].isParallel ? std::nullopt : pose(state.base);
    const auto other = state.cameras[state.other()].isParallel ? std::nullopt : pose(state.other());
    if (base && other) {
        const MotionParameters expected = composed(state.relative, *base);
        const MotionParameters motion = composed(*other, inverted(expected));
        Vector3 middle{};
        const auto& dots = (*adjusted.views)[view].dots[state.other()];
        for (const DotObservation& dot : dots) {
            for (std::size_t i = 0; i < 3; ++i) {
                middle[i] += dot.place[i] / static_cast<double>(dots.size());
            }
        }
        const auto placed = [&](const MotionParameters& m) {
            Vector3 X = times(rotationOf({m[0], m[1], m[2]}), middle);
            for (std::size_t i = 0; i < 3; ++i) {
                X[i] += m[3 + i];
            }
            return X;
        };
        const Vector3 from = placed(expected);
        const Vector3 to = placed(*other);
        check.value = std::hypot(to[0] - from[0], to[1] - from[1], to[2] - from[2]);
        check.turnDegrees = kDegrees * std::hypot(motion[0], motion[1], motion[2]);
        if (!std::isfinite(check.value) || !std::isfinite(check.turnDegrees)) {
            check.value = check.turnDegrees = 0.0;
        }
    }
    return check;
}

void Checker::addMoved(std::vector<Check>& checks) const {
    bool any = false;
    for (const Flaw& flaw : flaws) {
        if (flaw.kind == CheckKind::moved && flaw.isFound) {
            checks.push_back(moved(flaw));
            any = true;
        }
    }
    for (std::size_t view = 0; view < adjusted.views->size(); ++view) {
        if (!(*adjusted.views)[view].leftOut.empty()) {
            checks.push_back(leftOut(view));
            any = true;
        }
    }
    if (!any && adjusted.isPair) {
        const Flaw* const best = clearest([](const Flaw& flaw) { return flaw.kind == CheckKind::moved; });
        Check none;
        none.kind = CheckKind::moved;
        checks.push_back(best == nullptr ? none : moved(*best));
    }
}

std::vector<Check> Checker::run() {
    flaws = searchFlaws(equations, free, *adjusted.state, *adjusted.options);
    std::vector<Check> checks{halves()};
    addLenses(checks);
    for (const Flaw& flaw : flaws) {
        if (flaw.kind == CheckKind::bow) {
            checks.push_back(bow(flaw));
        }
    }
    addMoved(checks);
    for (const Flaw& flaw : flaws) {
        if (flaw.kind == CheckKind::pitch) {
            checks.push_back(pitch(flaw));
        } else if (flaw.kind == CheckKind::dotDiameter && adjusted.hasPlate) {
            checks.push_back(diameter(flaw, kPlainDot));
            checks.push_back(diameter(flaw, kMarkerDot));
        }
    }
    for (Check& check : checks) {
        check.isPair = adjusted.isPair;
    }
    return checks;
}

}  // namespace

std::vector<Check> firstOrderChecks(const CheckedAdjustment& adjusted) {
    return Checker(adjusted).run();
}

}  // namespace zelm::measure
