// Shapes near points, from which their fit starts.
#include <Eigen/Cholesky>
#include <Eigen/Eigenvalues>
#include <Eigen/Geometry>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "featureFit.h"

namespace zelm::measure {
namespace {

constexpr double kFlat = 1e-10;     // of the squares of extents: below it there is none but rounding
constexpr int kDirections = 200;    // in which the axis of a cylinder is looked for
constexpr int kBestDirections = 6;  // that are improved

struct Spread {
    Eigen::Vector3d middle = Eigen::Vector3d::Zero();
    Eigen::Vector3d squares;  // of the extents, rising
    Eigen::Matrix3d axes;     // columns
};

Spread spreadOf(const FeaturePoints& points, std::span<const std::size_t> indices) {
    Spread s;
    for (const std::size_t i : indices) {
        s.middle += points.points[i] / static_cast<double>(indices.size());
    }
    Eigen::Matrix3d scatter = Eigen::Matrix3d::Zero();
    for (const std::size_t i : indices) {
        const Eigen::Vector3d p = points.points[i] - s.middle;
        scatter += p * p.transpose();
    }
    const Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> eigen(scatter);
    s.squares = eigen.eigenvalues();
    s.axes = eigen.eigenvectors();
    return s;
}

bool isLine(const Spread& s) {
    return !(s.squares[1] > kFlat * s.squares[2]);
}

// The circle or sphere x^2 = 2 c x + (r^2 - c^2) of points about their middle: linear in c and the bracket.
template <int n>
std::optional<std::pair<Eigen::Matrix<double, n, 1>, double>> algebraic(
    const std::vector<Eigen::Matrix<double, n, 1>>& points) {
    double size = 0.0;
    for (const auto& p : points) {
        size = std::max(size, p.norm());
    }
    Eigen::Matrix<double, n + 1, n + 1> N = Eigen::Matrix<double, n + 1, n + 1>::Zero();
    Eigen::Matrix<double, n + 1, 1> b = Eigen::Matrix<double, n + 1, 1>::Zero();
    for (const auto& p : points) {
        Eigen::Matrix<double, n + 1, 1> row;
        row << 2.0 * p / size, 1.0;
        N += row * row.transpose();
        b += row * p.squaredNorm() / (size * size);
    }
    const Eigen::SelfAdjointEigenSolver<Eigen::Matrix<double, n + 1, n + 1>> eigen(N);
    if (!(size > 0.0) || !(eigen.eigenvalues()[0] > kFlat * eigen.eigenvalues()[n])) {
        return std::nullopt;
    }
    const Eigen::Matrix<double, n + 1, 1> x = N.ldlt().solve(b);
    const Eigen::Matrix<double, n, 1> c = x.template head<n>();
    const double r2 = x[n] + c.squaredNorm();
    if (!(r2 > 0.0)) {
        return std::nullopt;
    }
    return std::pair{Eigen::Matrix<double, n, 1>(c * size), std::sqrt(r2) * size};
}

std::optional<Shape> circleAcross(const Eigen::Vector3d& direction, const Eigen::Vector3d& middle,
                                  const FeaturePoints& points, std::span<const std::size_t> indices, FeatureKind kind) {
    const CrossAxes axes(direction);
    std::vector<Eigen::Vector2d> flat;
    flat.reserve(indices.size());
    for (const std::size_t i : indices) {
        const Eigen::Vector3d p = points.points[i] - middle;
        flat.emplace_back(axes.first.dot(p), axes.second.dot(p));
    }
    const auto circle = algebraic<2>(flat);
    if (!circle) {
        return std::nullopt;
    }
    const auto& [centre, radius] = *circle;
    return Shape{kind, middle + centre[0] * axes.first + centre[1] * axes.second, direction, radius};
}

double squaresOf(const Shape& shape, const FeaturePoints& points, std::span<const std::size_t> indices) {
    double sum = 0.0;
    for (const std::size_t i : indices) {
        sum += distanceOf(shape, points.points[i]).rows.squaredNorm();
    }
    return sum;
}

// Directions all over half a sphere, evenly (a spiral by the golden angle).
Eigen::Vector3d directionOf(int i) {
    const double z = (static_cast<double>(i) + 0.5) / kDirections;
    const double angle = std::numbers::pi * (3.0 - std::sqrt(5.0)) * i;
    const double r = std::sqrt(1.0 - z * z);
    return {r * std::cos(angle), r * std::sin(angle), z};
}

std::optional<Shape> cylinderOf(const Spread& s, const FeaturePoints& points, std::span<const std::size_t> indices) {
    std::vector<std::pair<double, Shape>> tries;
    const auto attempt = [&](const Eigen::Vector3d& direction) {
        if (const auto shape = circleAcross(direction, s.middle, points, indices, FeatureKind::cylinder)) {
            tries.emplace_back(squaresOf(*shape, points, indices), *shape);
        }
    };
    tries.reserve(kDirections + 3);
    for (int i = 0; i < kDirections; ++i) {
        attempt(directionOf(i));
    }
    for (Eigen::Index axis = 0; axis < 3; ++axis) {
        attempt(s.axes.col(axis));
    }
    std::sort(tries.begin(), tries.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::optional<Shape> best;
    double least = HUGE_VAL;
    for (std::size_t i = 0; i < std::min<std::size_t>(kBestDirections, tries.size()); ++i) {
        Shape shape = tries[i].second;
        if (improve(shape, points, indices, false) == FeatureStatus::ok) {
            if (const double squares = squaresOf(shape, points, indices); squares < least) {
                least = squares;
                best = shape;
            }
        }
    }
    return best;
}

std::optional<Shape> sphereOf(const Spread& s, const FeaturePoints& points, std::span<const std::size_t> indices) {
    std::vector<Eigen::Vector3d> about;
    about.reserve(indices.size());
    for (const std::size_t i : indices) {
        about.push_back(points.points[i] - s.middle);
    }
    const auto sphere = algebraic<3>(about);
    if (!sphere) {
        return std::nullopt;
    }
    return Shape{FeatureKind::sphere, s.middle + sphere->first, Eigen::Vector3d::Zero(), sphere->second};
}

}  // namespace

std::optional<Shape> startOf(FeatureKind kind, const FeaturePoints& points, std::span<const std::size_t> indices) {
    const Spread s = spreadOf(points, indices);
    switch (kind) {
        case FeatureKind::point:
            return Shape{kind, s.middle, Eigen::Vector3d::Zero(), 0.0};
        case FeatureKind::line:
            return s.squares[2] > 0.0 ? std::optional(Shape{kind, s.middle, s.axes.col(2), 0.0}) : std::nullopt;
        case FeatureKind::plane:
            return isLine(s) ? std::nullopt : std::optional(Shape{kind, s.middle, s.axes.col(0), 0.0});
        case FeatureKind::circle:
            return isLine(s) ? std::nullopt : circleAcross(s.axes.col(0), s.middle, points, indices, kind);
        case FeatureKind::sphere:
            return sphereOf(s, points, indices);
        case FeatureKind::cylinder:
            break;
    }
    return isLine(s) ? std::nullopt : cylinderOf(s, points, indices);
}

}  // namespace zelm::measure
