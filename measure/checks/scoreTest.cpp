#include "scoreTest.h"

#include <Eigen/Cholesky>
#include <Eigen/Eigenvalues>
#include <algorithm>
#include <array>
#include <cmath>

#include "significance.h"

namespace zelm::measure {
namespace {

constexpr double kUndetermined = 1e-11;  // of an eigenvalue, scaled to a unit diagonal
constexpr double kLeastFreedom = 20.0;   // for a test that means something
constexpr std::size_t kLeastViews = 6;   // for halves of three
constexpr Index kWide = static_cast<Index>(kWideParameters);

Eigen::MatrixXd columnsOf(const std::vector<std::vector<double>>& directions) {
    Eigen::MatrixXd B = Eigen::MatrixXd::Zero(kWide, static_cast<Index>(directions.size()));
    for (std::size_t i = 0; i < directions.size(); ++i) {
        for (std::size_t k = 0; k < directions[i].size(); ++k) {
            B(static_cast<Index>(k), static_cast<Index>(i)) = directions[i][k];
        }
    }
    return B;
}

void append(Eigen::MatrixXd& columns, const Eigen::VectorXd& column) {
    columns.conservativeResize(Eigen::NoChange, columns.cols() + 1);
    columns.col(columns.cols() - 1) = column;
}

Eigen::MatrixXd selection(const Candidate& candidate) {
    Eigen::MatrixXd C = Eigen::MatrixXd::Zero(kWide, static_cast<Index>(candidate.shared.size()));
    for (std::size_t i = 0; i < candidate.shared.size(); ++i) {
        C(static_cast<Index>(candidate.shared[i]), static_cast<Index>(i)) = 1.0;
    }
    return C;
}

}  // namespace

ScaledInverse scaledInverse(const Eigen::MatrixXd& matrix, const Eigen::VectorXd& diagonal) {
    ScaledInverse result{Eigen::MatrixXd::Zero(matrix.rows(), matrix.cols()), 0};
    Eigen::VectorXd s = Eigen::VectorXd::Zero(diagonal.size());
    for (Index i = 0; i < s.size(); ++i) {
        s[i] = diagonal[i] > 0.0 && std::isfinite(diagonal[i]) ? 1.0 / std::sqrt(diagonal[i]) : 0.0;
    }
    const Eigen::MatrixXd scaled = s.asDiagonal() * matrix * s.asDiagonal();
    if (matrix.rows() == 0 || !scaled.allFinite()) {
        return result;
    }
    const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> eigen(0.5 * (scaled + scaled.transpose()));
    for (Index i = 0; i < s.size(); ++i) {
        if (eigen.eigenvalues()[i] > kUndetermined) {
            const Eigen::VectorXd v = s.asDiagonal() * eigen.eigenvectors().col(i);
            result.inverse.noalias() += v * v.transpose() / eigen.eigenvalues()[i];
            ++result.rank;
        }
    }
    return result;
}

bool ScoreTest::isFreed(std::size_t view) const {
    return std::any_of(found.begin(), found.end(), [&](const Candidate& c) { return c.isMotion && c.view == view; });
}

ScoreTest::ReducedView ScoreTest::reduced(const ViewEquations& view) const {
    const bool hasMotion = isFreed(static_cast<std::size_t>(&view - equations.views.data()));
    const auto own = static_cast<Index>(hasMotion ? kViewParameters : kViewMotion);
    const Eigen::MatrixXd rowsOfOwn = view.normal.topRows(own);
    const ScaledInverse known = scaledInverse(rowsOfOwn.leftCols(own), view.normal.diagonal().head(own));
    const auto kept = view.normal.rows() - static_cast<Index>(kViewMotion);
    const Eigen::MatrixXd mixed = rowsOfOwn.rightCols(kept);
    ReducedView result;
    result.normal = view.normal.bottomRightCorner(kept, kept) - mixed.transpose() * known.inverse * mixed;
    const Eigen::VectorXd step = known.inverse * view.right.head(own);
    result.right = view.right.tail(kept) - mixed.transpose() * step;
    result.squares = step.dot(view.right.head(own));
    result.parameters = static_cast<double>(known.rank);
    return result;
}

ScoreTest::ScoreTest(const CheckEquations& all, const std::vector<std::vector<double>>& directions,
                     const std::vector<Candidate>& before)
    : equations(all), found(before) {
    normal = Eigen::MatrixXd::Zero(kWide, kWide);
    right = scale = Eigen::VectorXd::Zero(kWide);
    squares = equations.squares;
    freedom = static_cast<double>(equations.rows);
    for (const ViewEquations& view : equations.views) {
        if (view.rows == 0) {
            views.emplace_back();
            continue;
        }
        views.push_back(reduced(view));
        normal += views.back().normal.bottomRightCorner(kWide, kWide);
        right += views.back().right.tail(kWide);
        scale += view.normal.diagonal().tail(kWide);
        squares -= views.back().squares;
        freedom -= views.back().parameters;
    }
    free = columnsOf(directions);
    for (const Candidate& candidate : found) {
        const Eigen::MatrixXd C = selection(candidate);
        for (Index i = 0; i < C.cols(); ++i) {
            if ((free.transpose() * C.col(i)).isZero()) {
                append(free, C.col(i));
            }
        }
    }
    if (free.cols() == 0 || equations.rows == 0) {
        return;
    }
    const Eigen::VectorXd diagonal = (free.transpose() * scale.asDiagonal() * free).diagonal();
    const ScaledInverse solved = scaledInverse(free.transpose() * normal * free, diagonal);
    inverse = solved.inverse;
    rest = free.transpose() * right;
    squares -= rest.dot(inverse * rest);
    freedom -= static_cast<double>(solved.rank);
    determined = freedom >= kLeastFreedom && squares > 0.0 && std::isfinite(squares);
}

ScoreTest::Block ScoreTest::blockOf(const Candidate& candidate) const {
    if (candidate.isMotion) {
        constexpr Index kMotion = kViewParameters - kViewMotion;
        const ReducedView& r = views[candidate.view];
        return {r.normal.topLeftCorner(kMotion, kMotion), r.normal.topRightCorner(kMotion, kWide),
                r.right.head(kMotion), equations.views[candidate.view].normal.diagonal().segment(kViewMotion, kMotion)};
    }
    const Eigen::MatrixXd C = selection(candidate);
    return {C.transpose() * normal * C, C.transpose() * normal, C.transpose() * right, C.transpose() * scale};
}

ScoreResult ScoreTest::test(const Candidate& candidate) const {
    ScoreResult result;
    if (!determined || (candidate.isMotion && (!equations.views[candidate.view].seesBoth || isFreed(candidate.view)))) {
        return result;
    }
    const Block block = blockOf(candidate);
    const Eigen::MatrixXd along = block.mixed * free;
    const Eigen::MatrixXd gain = along * inverse;
    const Eigen::MatrixXd own = block.own - gain * along.transpose();
    const ScaledInverse solved = scaledInverse(own, block.scale);
    const Eigen::VectorXd gradient = block.right - gain * rest;
    const Eigen::VectorXd step = solved.inverse * gradient;
    result.value = step;
    for (std::size_t i = 0; i < candidate.present.size(); ++i) {
        result.value[static_cast<Index>(i)] += candidate.present[i];
    }
    result.count = static_cast<double>(solved.rank);
    const double left = squares - gradient.dot(step);
    const double below = freedom - result.count;
    const double variance = left / below;
    result.statistic = result.value.dot(own * result.value) / variance;
    result.isDone = solved.rank > 0 && below >= kLeastFreedom && left > 0.0 && std::isfinite(result.statistic);
    if (result.isDone) {
        result.covariance = variance * solved.inverse;
        result.p = squaresTail(result.statistic, result.count, below);
        const auto rows = static_cast<double>(equations.rows);
        result.evidence = rows * std::log1p(result.statistic / below) - result.count * std::log(rows);
    }
    return result;
}

Eigen::VectorXd ScoreTest::absorbed(const Candidate& candidate, const Eigen::VectorXd& value) const {
    return free * (inverse * (free.transpose() * (blockOf(candidate).mixed.transpose() * value)));
}

Eigen::MatrixXd ScoreTest::sharedCovariance() const {
    if (!determined) {
        return Eigen::MatrixXd::Zero(kWide, kWide);
    }
    return unitVariance() * free * inverse * free.transpose();
}

HalvesResult ScoreTest::compareHalves() const {
    struct Half {
        Eigen::MatrixXd normal = Eigen::MatrixXd::Zero(kWide, kWide);
        Eigen::VectorXd right = Eigen::VectorXd::Zero(kWide);
        Eigen::VectorXd scale = Eigen::VectorXd::Zero(kWide);
    };
    std::array<Half, 2> halves;
    std::size_t used = 0;
    for (std::size_t i = 0; i < views.size(); ++i) {
        if (equations.views[i].rows > 0) {
            Half& half = halves[used++ % 2];
            half.normal += views[i].normal.bottomRightCorner(kWide, kWide);
            half.right += views[i].right.tail(kWide);
            half.scale += equations.views[i].normal.diagonal().tail(kWide);
        }
    }
    HalvesResult result;
    if (!determined || used < kLeastViews) {
        return result;
    }
    Eigen::VectorXd d = Eigen::VectorXd::Zero(free.cols());
    Eigen::MatrixXd C = Eigen::MatrixXd::Zero(free.cols(), free.cols());
    for (const double sign : {1.0, -1.0}) {
        const Half& half = halves[sign > 0.0 ? 0 : 1];
        const Eigen::VectorXd diagonal = (free.transpose() * half.scale.asDiagonal() * free).diagonal();
        const ScaledInverse solved = scaledInverse(free.transpose() * half.normal * free, diagonal);
        if (solved.rank < free.cols()) {
            return result;
        }
        d += sign * solved.inverse * (free.transpose() * half.right);
        C += solved.inverse;
    }
    const auto count = static_cast<double>(free.cols());
    const double chiSquare = d.dot(C.ldlt().solve(d));
    const double below = freedom - count;
    const double variance = (squares - chiSquare) / below;
    result.isDone = below >= kLeastFreedom && variance > 0.0 && std::isfinite(chiSquare);
    if (result.isDone) {
        result.p = squaresTail(chiSquare / variance, count, below);
        result.difference = free * d;
        result.covariance = variance * free * C * free.transpose();
    }
    return result;
}

}  // namespace zelm::measure
