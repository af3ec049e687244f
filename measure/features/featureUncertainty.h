// How well features are known: what each point's errors and the calibration's do to them.
#ifndef ZELM_MEASURE_FEATURE_UNCERTAINTY_H
#define ZELM_MEASURE_FEATURE_UNCERTAINTY_H

#include <Eigen/Core>
#include <optional>
#include <utility>
#include <vector>

#include "calibrationCovariance.h"
#include "featureFit.h"
#include "rig.h"

namespace zelm::measure {

using FeatureByPoint = Eigen::Matrix<double, kShapeNumbers, 3>;
using FeatureByRig = Eigen::Matrix<double, kShapeNumbers, static_cast<Eigen::Index>(kRigParameters)>;
using ByRig = Eigen::Matrix<double, 3, static_cast<Eigen::Index>(kRigParameters)>;

// What the calibration does to the points; none: nothing is known of it.
struct SharedErrors {
    std::vector<ByRig> byRig;  // of each point, its derivatives by the parameters of the rig
    Eigen::Matrix<double, static_cast<Eigen::Index>(kRigParameters), static_cast<Eigen::Index>(kRigParameters)>
        covariance;
    double freedom = 0.0;  // that it was estimated from; 0: it is known

    bool isKnown() const { return !byRig.empty(); }
};

// Derivatives of a feature's location, direction and radius.
struct FeatureSensitivity {
    std::vector<std::pair<std::size_t, FeatureByPoint>> byPoint;  // of those that take part
    FeatureByRig byRig = FeatureByRig::Zero();
};

// Of a feature that was fitted.
FeatureSensitivity sensitivityOf(const FeatureFit& fit, const FeatureTask& task, const FeaturePoints& points,
                                 const SharedErrors& shared);

// How the residuals of a fit came out.
struct Residuals {
    double freedom = 0.0;    // coordinates less parameters
    double variance = 0.0;   // of a coordinate, the same for all
    double chiSquare = 0.0;  // where errors are known
};
Residuals residualsOf(const FeatureFit& fit, const FeaturePoints& points);

// The part of a covariance that points' own errors make, which are known or as the residuals tell.
Eigen::Matrix3d noiseOf(const FeaturePoints& points, std::size_t index, double variance);

}  // namespace zelm::measure

#endif
