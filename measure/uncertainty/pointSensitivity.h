// How the pixels of a point and the parameters of the rig move the point.
#ifndef ZELM_MEASURE_POINT_SENSITIVITY_H
#define ZELM_MEASURE_POINT_SENSITIVITY_H

#include <array>
#include <cstddef>
#include <optional>

#include "projection.h"
#include "rig.h"

namespace zelm::measure {

// Parameters that move a point in the left camera's frame: all but the plate's place in it.
constexpr std::size_t kPairParameters = kFrameRotation;

using Symmetric3 = std::array<double, 6>;  // xx, xy, xz, yy, yz, zz
using Symmetric2 = std::array<double, 3>;  // xx, xy, yy

// Of a point in the left camera's frame, to first order.
struct PointSensitivity {
    Vector3 point{};
    std::array<std::array<double, 4>, 3> byPixels{};                    // raw: left x, y, right x, y
    std::array<std::array<double, kPairParameters>, 3> byParameters{};  // with the pixels held
};

// Derivatives at points, with one calibration.
class SensitivityModel {
public:
    explicit SensitivityModel(const Rig& rig);

    Vector3 inLeft(const Point3d& X) const;
    // At a point of the plate's frame. Nothing where rays are parallel to rounding.
    std::optional<PointSensitivity> at(const Point3d& X) const;

    // The same point in the plate's frame: its derivatives by all parameters.
    using ByParameters = std::array<std::array<double, kRigParameters>, 3>;
    ByParameters inPlate(const PointSensitivity& s) const;
    // A covariance of the left camera's frame in the plate's.
    Symmetric3 inPlate(const Symmetric3& covariance) const;
    // And back.
    Symmetric3 inLeft(const Symmetric3& covariance) const;

private:
    ProjectionCamera left;
    ProjectionCamera right;
    Motion frame;     // X_left = R X_plate + t
    Motion relative;  // X_right = R X_left + t
};

// The covariance that independent errors of both pixels make, left camera's frame.
Symmetric3 imageCovariance(const PointSensitivity& s, const Symmetric2& left, const Symmetric2& right);

// Of a linear form of the first n parameters: g C g', from the lower triangle.
template <std::size_t n>
double varianceOf(const std::array<double, n>& g, const CalibrationCovariance& covariance) {
    double sum = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        const double* const row = &covariance.matrix[kRigParameters * i];
        double product = 0.5 * row[i] * g[i];
        for (std::size_t j = 0; j < i; ++j) {
            product += row[j] * g[j];
        }
        sum += g[i] * product;
    }
    return sum > 0.0 ? 2.0 * sum : 0.0;  // rounding of what cancels
}

// B C B'.
Symmetric3 calibrationCovariance(const SensitivityModel::ByParameters& B, const CalibrationCovariance& covariance);

}  // namespace zelm::measure

#endif
