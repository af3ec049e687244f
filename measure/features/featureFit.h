// Fits shapes to points: least squares of orthogonal distances.
#ifndef ZELM_MEASURE_FEATURE_FIT_H
#define ZELM_MEASURE_FEATURE_FIT_H

#include <Eigen/Core>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "featureShape.h"

namespace zelm::measure {

// ZelmMeasureFeatureStatus of the interface.
enum class FeatureStatus { ok, few, undetermined, notConverged, noMajority, small, noPart };

// The points of a call, with covariances of their own errors; none: all points are known alike.
struct FeaturePoints {
    std::vector<Eigen::Vector3d> points;
    std::vector<Eigen::Matrix3d> noise;

    bool isKnown() const { return !noise.empty(); }
};

using PointIndices = std::vector<std::size_t>;

struct FeatureFit {
    FeatureStatus status = FeatureStatus::few;
    Shape shape;
    PointIndices used;
    std::size_t leftOut = 0;
};

// What is fitted to which points. `weighted`: each by how well it is known.
struct FeatureTask {
    FeatureKind kind = FeatureKind::point;
    bool weighted = true;
    bool robust = false;
};

// Weights of a point's rows: the inverse of their covariance, or the identity.
Eigen::MatrixXd weightOf(const ShapeDistance& d, const FeaturePoints& points, std::size_t index, bool weighted);

// A shape that is near the points, from closed forms and, of cylinders, tries of directions. Nothing where the points
// do not determine one.
std::optional<Shape> startOf(FeatureKind kind, const FeaturePoints& points, std::span<const std::size_t> indices);

// All points take part.
FeatureFit fitAll(const FeatureTask& task, const FeaturePoints& points, PointIndices indices);
// Points that are far from what the majority tells are left out.
FeatureFit fitRobust(const FeatureTask& task, const FeaturePoints& points, const PointIndices& indices);

// Improves a shape; whether it converged.
FeatureStatus improve(Shape& shape, const FeaturePoints& points, std::span<const std::size_t> indices, bool weighted);

}  // namespace zelm::measure

#endif
