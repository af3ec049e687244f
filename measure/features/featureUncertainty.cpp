#include "featureUncertainty.h"

#include <Eigen/Cholesky>
#include <Eigen/LU>

namespace zelm::measure {
namespace {

// Along what the location is the mean of its points, and not where distances tell: on a plane, along a line or axis.
Eigen::Matrix3d alongMean(const Shape& shape) {
    const Eigen::Matrix3d along = shape.direction * shape.direction.transpose();
    switch (shape.kind) {
        case FeatureKind::line:
        case FeatureKind::cylinder:
            return along;
        case FeatureKind::plane:
            return Eigen::Matrix3d::Identity() - along;
        default:
            return Eigen::Matrix3d::Zero();
    }
}

// What a tilt does to the location, which is the foot of the points' mean: the mean of a cylinder's points need not lie
// on its axis, nor that of weighted points on their plane.
Eigen::Matrix3d footByTilt(const Shape& shape, const Eigen::Vector3d& meanFromLocation) {
    switch (shape.kind) {
        case FeatureKind::line:
        case FeatureKind::cylinder:
            return shape.direction * meanFromLocation.transpose();
        case FeatureKind::plane:
            return -shape.direction.dot(meanFromLocation) * Eigen::Matrix3d::Identity();
        default:
            return Eigen::Matrix3d::Zero();
    }
}

}  // namespace

FeatureSensitivity sensitivityOf(const FeatureFit& fit, const FeatureTask& task, const FeaturePoints& points,
                                 const SharedErrors& shared) {
    const Shape& shape = fit.shape;
    const Eigen::Index m = shape.parameters();
    Eigen::MatrixXd N = Eigen::MatrixXd::Zero(m, m);
    for (const std::size_t i : fit.used) {
        const ShapeDistance d = distanceOf(shape, points.points[i]);
        N += d.byParameters.transpose() * weightOf(d, points, i, task.weighted) * d.byParameters;
    }
    // The parameters move by -(J' W J)^-1 J' W dr.
    const Eigen::MatrixXd gain = -shape.byParameters() * N.ldlt().solve(Eigen::MatrixXd::Identity(m, m));
    const Eigen::Matrix3d mean = alongMean(shape) / static_cast<double>(fit.used.size());
    Eigen::Vector3d middle = Eigen::Vector3d::Zero();
    for (const std::size_t i : fit.used) {
        middle += points.points[i] / static_cast<double>(fit.used.size());
    }
    const Eigen::Matrix3d byTilt = footByTilt(shape, middle - shape.location);
    FeatureSensitivity result;
    result.byPoint.reserve(fit.used.size());
    for (const std::size_t i : fit.used) {
        const ShapeDistance d = distanceOf(shape, points.points[i]);
        FeatureByPoint by = gain * d.byParameters.transpose() * weightOf(d, points, i, task.weighted) * d.byPoint;
        const Eigen::Matrix3d foot = mean + byTilt * by.middleRows<3>(3);
        by.topRows<3>() += foot;
        if (shared.isKnown()) {
            result.byRig += by * shared.byRig[i];
        }
        result.byPoint.emplace_back(i, by);
    }
    return result;
}

Residuals residualsOf(const FeatureFit& fit, const FeaturePoints& points) {
    Residuals r;
    double squares = 0.0;
    for (const std::size_t i : fit.used) {
        const ShapeDistance d = distanceOf(fit.shape, points.points[i]);
        squares += d.rows.squaredNorm();
        r.freedom += static_cast<double>(d.rows.size());
        if (points.isKnown()) {
            r.chiSquare += d.rows.dot(weightOf(d, points, i, true) * d.rows);
        }
    }
    r.freedom -= static_cast<double>(fit.shape.parameters());
    r.variance = r.freedom > 0.0 ? squares / r.freedom : 0.0;
    return r;
}

Eigen::Matrix3d noiseOf(const FeaturePoints& points, std::size_t index, double variance) {
    return points.isKnown() ? points.noise[index] : Eigen::Matrix3d(Eigen::Matrix3d::Identity() * variance);
}

}  // namespace zelm::measure
