#include "featureFit.h"

#include <Eigen/Cholesky>
#include <Eigen/Eigenvalues>
#include <Eigen/LU>
#include <algorithm>
#include <cmath>

#include "fault.h"

namespace zelm::measure {
namespace {

constexpr int kMaxSteps = 200;
constexpr int kMaxWeights = 10;       // times that the weights follow the shape
constexpr double kSmallStep = 1e-13;  // of the extent
constexpr double kSettled = 1e-9;     // of the extent, when the weights change
constexpr double kSingular = 1e-14;   // of the normal equations, scaled to a unit diagonal
constexpr double kMostRadius = 1e6;   // of the extent: what is flatter is none

using Normal = Eigen::MatrixXd;

double extentOf(const FeaturePoints& points, std::span<const std::size_t> indices) {
    double extent = 0.0;
    for (const std::size_t i : indices) {
        extent = std::max(extent, (points.points[i] - points.points[indices.front()]).norm());
    }
    return extent;
}

std::vector<Eigen::MatrixXd> weightsOf(const Shape& shape, const FeaturePoints& points,
                                       std::span<const std::size_t> indices, bool weighted) {
    std::vector<Eigen::MatrixXd> weights;
    weights.reserve(indices.size());
    for (const std::size_t i : indices) {
        weights.push_back(weightOf(distanceOf(shape, points.points[i]), points, i, weighted));
    }
    return weights;
}

double costOf(const Shape& shape, const FeaturePoints& points, std::span<const std::size_t> indices,
              const std::vector<Eigen::MatrixXd>& weights) {
    double sum = 0.0;
    for (std::size_t k = 0; k < indices.size(); ++k) {
        const ShapeDistance d = distanceOf(shape, points.points[indices[k]]);
        sum += d.rows.dot(weights[k] * d.rows);
    }
    return sum;
}

// Gauss-Newton with the damping of Levenberg (1944) and Marquardt (1963), the weights held.
FeatureStatus descend(Shape& shape, const FeaturePoints& points, std::span<const std::size_t> indices,
                      const std::vector<Eigen::MatrixXd>& weights, double extent) {
    const Eigen::Index m = shape.parameters();
    double damping = 1e-6;
    double cost = costOf(shape, points, indices, weights);
    for (int step = 0; step < kMaxSteps; ++step) {
        Normal N = Normal::Zero(m, m);
        ShapeParameters b = ShapeParameters::Zero(m);
        for (std::size_t k = 0; k < indices.size(); ++k) {
            const ShapeDistance d = distanceOf(shape, points.points[indices[k]]);
            N += d.byParameters.transpose() * weights[k] * d.byParameters;
            b -= d.byParameters.transpose() * weights[k] * d.rows;
        }
        const ShapeParameters scale = N.diagonal().cwiseSqrt();
        if (!(scale.minCoeff() > 0.0) || !scale.allFinite()) {
            return FeatureStatus::undetermined;
        }
        const Normal scaled = scale.cwiseInverse().asDiagonal() * N * scale.cwiseInverse().asDiagonal();
        const ShapeParameters right = b.cwiseQuotient(scale);
        for (;;) {
            const Normal damped = scaled + damping * Normal::Identity(m, m);
            const ShapeParameters change = damped.ldlt().solve(right).cwiseQuotient(scale);
            const Shape next = shape.moved(change);
            const double nextCost = costOf(next, points, indices, weights);
            // Shifts against the extent, tilts as they are.
            const Eigen::Matrix<double, kShapeNumbers, 1> moves = shape.byParameters() * change;
            const double size =
                std::max({moves.head<3>().norm() / extent, moves.segment<3>(3).norm(), std::fabs(moves[6]) / extent});
            if (nextCost <= cost && next.radius >= 0.0) {
                shape = next;
                cost = nextCost;
                damping = std::max(damping * 0.1, 1e-15);
                if (size <= kSmallStep) {
                    return FeatureStatus::ok;
                }
                break;
            }
            if (size <= kSmallStep || damping > 1e12) {  // rounding keeps it from going down further
                return std::isfinite(cost) ? FeatureStatus::ok : FeatureStatus::notConverged;
            }
            damping *= 10.0;
        }
    }
    return FeatureStatus::notConverged;
}

bool isDetermined(const Shape& shape, const FeaturePoints& points, std::span<const std::size_t> indices,
                  double extent) {
    const Eigen::Index m = shape.parameters();
    Normal N = Normal::Zero(m, m);
    for (const std::size_t i : indices) {
        const ShapeDistance d = distanceOf(shape, points.points[i]);
        N += d.byParameters.transpose() * d.byParameters;
    }
    const ShapeParameters scale = N.diagonal().cwiseSqrt();
    if (!(scale.minCoeff() > 0.0) || shape.radius > kMostRadius * extent) {
        return false;
    }
    const Normal scaled = scale.cwiseInverse().asDiagonal() * N * scale.cwiseInverse().asDiagonal();
    return Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd>(Eigen::MatrixXd(scaled)).eigenvalues()[0] > kSingular;
}

}  // namespace

Eigen::MatrixXd weightOf(const ShapeDistance& d, const FeaturePoints& points, std::size_t index, bool weighted) {
    const Eigen::Index rows = d.rows.size();
    if (!weighted || !points.isKnown()) {
        return Eigen::MatrixXd::Identity(rows, rows);
    }
    const Eigen::MatrixXd C = d.byPoint * points.noise[index] * d.byPoint.transpose();
    return C.inverse();
}

FeatureStatus improve(Shape& shape, const FeaturePoints& points, std::span<const std::size_t> indices, bool weighted) {
    const double extent = extentOf(points, indices);
    if (!(extent > 0.0)) {
        // One point, or several that are the same: a point is all that they are.
        return shape.kind == FeatureKind::point ? FeatureStatus::ok : FeatureStatus::undetermined;
    }
    const bool follows = weighted && points.isKnown();
    for (int round = 0; round < (follows ? kMaxWeights : 1); ++round) {
        const Shape before = shape;
        const FeatureStatus status =
            descend(shape, points, indices, weightsOf(shape, points, indices, weighted), extent);
        if (status != FeatureStatus::ok) {
            return status;
        }
        if ((shape.location - before.location).norm() <= kSettled * extent &&
            (shape.direction - before.direction).norm() <= kSettled &&
            std::fabs(shape.radius - before.radius) <= kSettled * extent) {
            break;
        }
    }
    return isDetermined(shape, points, indices, extent) ? FeatureStatus::ok : FeatureStatus::undetermined;
}

FeatureFit fitAll(const FeatureTask& task, const FeaturePoints& points, PointIndices indices) {
    FeatureFit fit;
    fit.shape.kind = task.kind;
    fit.used = std::move(indices);
    if (fit.used.size() < fit.shape.minPoints()) {
        return fit;
    }
    const auto start = startOf(task.kind, points, fit.used);
    fit.status = FeatureStatus::undetermined;
    if (start) {
        fit.shape = *start;
        fit.status = improve(fit.shape, points, fit.used, task.weighted);
    }
    return fit;
}

}  // namespace zelm::measure
