#include "checkEquations.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "dotCost.h"
#include "predictedDot.h"

namespace zelm::measure {
namespace {

constexpr std::size_t kPointsOfView = 8;  // that tell how far points are moved

constexpr Index kViewColumns = kViewParameters;
constexpr Index kColumns = kViewColumns + static_cast<Index>(kWideParameters);

// What one dot says: two rows.
struct DotRows {
    Eigen::Matrix<double, 2, Eigen::Dynamic> J = Eigen::Matrix<double, 2, Eigen::Dynamic>::Zero(2, kColumns);
    Eigen::Matrix<double, 2, 3> byPlace;  // in the base camera's frame
    Eigen::Vector2d residual;
    Vector3 inCamera{};
    Eigen::Vector3d inBase;
    bool isFinite() const { return J.allFinite() && residual.allFinite(); }
};

DotRows rowsOf(const AdjustState& state, Side side, std::size_t view, const DotObservation& dot) {
    const ImageParameters image = imageParameters(state, side, view, dot.kind);
    const PredictedDot model = predictDot(image, dot.place, dot.radius, RotationDerivative::byTurn);
    DotRows rows;
    rows.inCamera = circleOf(image, dot.place, dot.radius).centre;
    ImageParameters base = image;
    base.relative = nullptr;
    const Vector3 inBase = circleOf(base, dot.place, dot.radius).centre;
    rows.inBase = {inBase[0], inBase[1], inBase[2]};
    rows.residual = {dot.pixel.x - model.centre.x, dot.pixel.y - model.centre.y};
    const Matrix3 R = rotationOf({image.pose[0], image.pose[1], image.pose[2]});
    const auto lens = lensTerms(image.camera, rows.inCamera);
    for (std::size_t row = 0; row < 2; ++row) {
        const auto at = static_cast<Index>(row);
        const auto put = [&](std::size_t column, const auto& values) {
            for (std::size_t i = 0; i < values.size(); ++i) {
                rows.J(at, static_cast<Index>(column + i)) = values[i];
            }
        };
        const std::size_t shared = kViewParameters;
        put(kViewPose, model.byPose[row]);
        put(shared + (side == state.base ? kSharedBase : kSharedOther), model.byCamera[row]);
        if (side != state.base) {
            put(kViewMotion, model.byRelative[row]);
            put(shared + kSharedRelative, model.byRelative[row]);
        }
        put(shared + kSharedFactors + dot.kind, model.byFactor[row]);
        put(shared + kSharedBow, model.byBow[row]);
        put(shared + kWideLens + side * kLensTerms, lens[row]);
        const Vector3 byPlace{model.byPose[row][3], model.byPose[row][4], model.byPose[row][5]};
        rows.byPlace.row(at) << byPlace[0], byPlace[1], byPlace[2];
        // The plate's columns half of it apart, its rows together, so that its size stays.
        const Vector3 onPlate = timesTransposed(R, byPlace);
        put(shared + kWideStretch, std::array{0.5 * (onPlate[0] * dot.place[0] - onPlate[1] * dot.place[1])});
    }
    return rows;
}

class Collector {
public:
    Collector(const AdjustState& s, const AdjustSummary& o, bool pair) : state(s), summary(o), isPair(pair) {}

    void add(std::size_t view, const AdjustView& seen);
    CheckEquations result;

private:
    struct Weighted {
        std::vector<DotRows> rows;
        std::vector<std::array<double, 3>> weights;
    };
    void take(Side side, std::size_t view, const AdjustView& seen);
    void addPoints();

    const AdjustState& state;
    const AdjustSummary& summary;
    bool isPair;
    Weighted list;
    std::map<GridIndex, std::array<const DotObservation*, kSides>> pairs;
    std::map<GridIndex, std::array<std::size_t, kSides>> places;
};

void Collector::take(Side side, std::size_t view, const AdjustView& seen) {
    for (const DotObservation& dot : seen.dots[side]) {
        if (dot.fate != DotFate::used) {
            continue;
        }
        const auto covariance = covarianceOf(dot, summary.noise[side]);
        DotRows rows = rowsOf(state, side, view, dot);
        const auto weight = weightOf(covariance);
        if (!rows.isFinite() || !std::isfinite(weight[0]) || !std::isfinite(weight[1]) || !std::isfinite(weight[2])) {
            continue;
        }
        result.sideRows[side] += 2.0;
        result.sideVariance[side] += covariance[0] + covariance[2];
        pairs[dot.index][side] = &dot;
        places[dot.index][side] = list.rows.size();
        list.rows.push_back(std::move(rows));
        list.weights.push_back(weight);
    }
}

// Some dots that all cameras see, spread over the view's.
void Collector::addPoints() {
    std::vector<GridIndex> both;
    const auto isSeen = [&](const auto& dots) {
        return isPair ? dots[kLeft] != nullptr && dots[kRight] != nullptr : dots[state.base] != nullptr;
    };
    for (const auto& [index, dots] : pairs) {
        if (isSeen(dots)) {
            both.push_back(index);
        }
    }
    const std::size_t count = std::min(both.size(), kPointsOfView);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t chosen = count == 1 ? 0 : i * (both.size() - 1) / (count - 1);
        CheckedPoint point;
        point.byOne = !isPair;
        point.byPlace.setZero();
        point.byShared.setZero(4, static_cast<Index>(kWideParameters));
        for (const Side side : {kLeft, kRight}) {
            if (!isPair && side != state.base) {
                continue;
            }
            const DotRows& rows = list.rows[places[both[chosen]][side]];
            const auto covariance = covarianceOf(*pairs[both[chosen]][side], summary.noise[side]);
            const auto at = static_cast<Index>(2 * side);
            point.place = rows.inBase;
            point.byPlace.middleRows<2>(at) = rows.byPlace;
            point.byShared.middleRows<2>(at) = rows.J.rightCols(static_cast<Index>(kWideParameters));
            point.variances[2 * side] = covariance[0];
            point.variances[2 * side + 1] = covariance[2];
        }
        result.points.push_back(std::move(point));
    }
}

void Collector::add(std::size_t view, const AdjustView& seen) {
    list = {};
    pairs.clear();
    places.clear();
    take(state.base, view, seen);
    const std::size_t ofBase = list.rows.size();
    take(state.other(), view, seen);
    const std::size_t count = list.rows.size();
    ViewEquations equations;
    equations.rows = 2 * count;
    equations.seesBoth = ofBase > 0 && count > ofBase;
    Eigen::MatrixXd J(static_cast<Index>(2 * count), kColumns);
    Eigen::VectorXd r(static_cast<Index>(2 * count));
    for (std::size_t i = 0; i < count; ++i) {
        const auto& W = list.weights[i];
        Eigen::Matrix2d weight;
        weight << W[0], W[1], 0.0, W[2];
        J.middleRows<2>(static_cast<Index>(2 * i)) = weight * list.rows[i].J;
        r.segment<2>(static_cast<Index>(2 * i)) = weight * list.rows[i].residual;
        if (i >= ofBase) {
            for (std::size_t k = 0; k < 3; ++k) {
                equations.middle[k] += list.rows[i].inCamera[k] / static_cast<double>(count - ofBase);
            }
        }
    }
    equations.normal = Eigen::MatrixXd::Zero(kColumns, kColumns);
    equations.right = Eigen::VectorXd::Zero(kColumns);
    if (count > 0) {
        equations.normal.selfadjointView<Eigen::Lower>().rankUpdate(J.transpose());
        equations.normal.triangularView<Eigen::StrictlyUpper>() = equations.normal.transpose();
        equations.right = J.transpose() * r;
    }
    result.squares += r.squaredNorm();
    result.rows += equations.rows;
    result.otherSeen = result.otherSeen || count > ofBase;
    result.views.push_back(std::move(equations));
    addPoints();
}

}  // namespace

CheckEquations checkEquations(const AdjustState& state, const std::vector<AdjustView>& views,
                              const AdjustSummary& summary, bool isPair) {
    Collector collector(state, summary, isPair);
    for (std::size_t view = 0; view < views.size(); ++view) {
        collector.add(view, views[view]);
    }
    return std::move(collector.result);
}

}  // namespace zelm::measure
